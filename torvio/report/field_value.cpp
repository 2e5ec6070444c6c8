#include "torvio/report/field_value.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>

namespace oldtorvio::report {
namespace {

using explain::MapField;
using Kind = explain::StoredForm::Kind;

std::string_view bytesOf(const MapField& field, std::span<const std::byte> file) {
  return {reinterpret_cast<const char*>(file.data()) + field.offset, static_cast<std::size_t>(field.size)};
}
std::string_view textOf(std::string_view bytes) { return bytes.substr(0, bytes.find('\0')); }

std::string numberOf(const MapField& field, std::span<const std::byte> file) {
  std::string text;
  field.form->print(text, file.data() + field.offset);
  return text;
}
bool isNan(std::string_view number) { return number.ends_with("nan"); }

// Whether a character may change what a terminal or page does with the text around it.
bool isActive(char32_t c) {
  return (c >= 0x80 && c < 0xA0) || c == 0x061C || c == 0x200E || c == 0x200F || (c >= 0x2028 && c <= 0x202E) ||
         (c >= 0x2066 && c <= 0x2069) || c == 0xFEFF;
}

}  // namespace

void appendInertJsonString(std::string& to, std::string_view utf8) {
  std::string json;
  values::appendJsonString(json, utf8);
  to += inert(json);
}

std::string inert(std::string_view utf8) {
  std::string all;
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    const auto at = [&](std::size_t n) {
      return i + n < utf8.size() ? static_cast<unsigned char>(utf8[i + n]) : static_cast<unsigned char>(0);
    };
    const auto isContinuation = [&](std::size_t n) { return (at(n) & 0xC0U) == 0x80U; };
    std::size_t length = 1;
    char32_t c = at(0);
    if (c >= 0xC2 && c < 0xE0 && isContinuation(1)) {
      c = (c & 0x1FU) << 6U | (at(1) & 0x3FU);
      length = 2;
    } else if (c >= 0xE0 && c < 0xF0 && isContinuation(1) && isContinuation(2)) {
      c = (c & 0x0FU) << 12U | (at(1) & 0x3FU) << 6U | (at(2) & 0x3FU);
      length = 3;
    }
    if (c < 0x20 || c == 0x7F || (length > 1 && isActive(c))) {
      char escape[8];
      (void)std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(c & 0xFFFFU));
      all += escape;
    } else {
      all += utf8.substr(i, length);
    }
    i += length - 1;
  }
  return all;
}

void appendJsonValue(std::string& to, const MapField& field, std::span<const std::byte> file,
                     const values::TextEncoding& encoding) {
  const std::string_view bytes = bytesOf(field, file);
  switch (field.form->kind) {
    case Kind::number: {
      const std::string number = numberOf(field, file);
      if (isNan(number))
        to += "\"NaN\"";
      else if (number.ends_with("inf"))
        to += number.starts_with('-') ? "\"-Infinity\"" : "\"Infinity\"";
      else
        to += number;
      return;
    }
    case Kind::text: {
      std::string utf8;
      encoding.appendUtf8(utf8, textOf(bytes));
      return appendInertJsonString(to, utf8);
    }
    case Kind::bytes: {
      constexpr std::string_view kHex = "0123456789abcdef";
      to += '"';
      for (const char c : bytes) {
        const auto code = static_cast<unsigned char>(c);
        to += kHex[code >> 4U];
        to += kHex[code & 0xFU];
      }
      to += '"';
      return;
    }
    case Kind::reserved:
      to += "null";
  }
}

void appendDecodedValue(std::string& to, const MapField& field, std::span<const std::byte> file,
                        const values::TextEncoding& encoding) {
  const std::string_view bytes = bytesOf(field, file);
  switch (field.form->kind) {
    case Kind::number:
      to += numberOf(field, file);
      return;
    case Kind::text: {
      appendJsonValue(to, field, file, encoding);
      if (const std::string note = noteOf(field, file); !note.empty()) to.append(" (").append(note).append(")");
      return;
    }
    case Kind::bytes:
      return explain::printBytes(to, reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    case Kind::reserved:
      to += "(dropped)";
  }
}

std::string noteOf(const MapField& field, std::span<const std::byte> file) {
  const std::string_view bytes = bytesOf(field, file);
  if (field.form->kind == Kind::number && isNan(numberOf(field, file))) {
    std::string bits = "bits 0x";
    for (std::size_t i = bytes.size(); i-- > 0;) {
      char digits[4];
      (void)std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned>(static_cast<unsigned char>(bytes[i])));
      bits += digits;
    }
    return bits;
  }
  if (field.form->kind != Kind::text) return {};
  const std::string_view text = textOf(bytes);
  if (text.size() == bytes.size()) return "no NUL";
  const auto after = std::count_if(bytes.begin() + static_cast<std::ptrdiff_t>(text.size()), bytes.end(),
                                   [](char c) { return c != '\0'; });
  if (after == 0) return {};
  return std::to_string(after) + (after == 1 ? " nonzero byte" : " nonzero bytes") + " after the NUL";
}

}  // namespace oldtorvio::report
