#include "torvio/report/field_value.h"

#include <algorithm>
#include <cstdint>

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

}  // namespace

std::string inert(std::string_view utf8) {
  std::string all;
  while (!utf8.empty()) {
    const auto [code, size] = values::firstCharacter(utf8);
    const std::size_t length = std::max(size, std::size_t{1});
    if (size > 0 && values::isActive(code))
      values::appendCodeInHex(all += "\\u", code);
    else
      all += utf8.substr(0, length);
    utf8.remove_prefix(length);
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
      return values::appendJsonString(to, utf8);
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
