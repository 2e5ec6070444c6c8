#include "torvio/values/json_writer.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <type_traits>

#include "torvio/values/text_encoding.h"
#include "torvio/values/types.h"

namespace oldtorvio::values {
namespace {

constexpr std::string_view kHexDigits = "0123456789abcdef";

}  // namespace

// How each byte of a text is written in a JSON string.
class CharacterTable {
 public:
  explicit CharacterTable(const TextEncoding& encoding) {
    for (std::size_t byte = 0; byte < table_.size(); ++byte) {
      std::string utf8, json;
      encoding.appendUtf8(utf8, std::string(1, static_cast<char>(byte)));
      appendJsonString(json, utf8);
      json = json.substr(1, json.size() - 2);
      table_[byte].size = static_cast<std::uint8_t>(json.size());
      std::memcpy(table_[byte].text, json.data(), json.size());
    }
  }

  static constexpr std::size_t kLongest = 8;
  // Writes the byte and returns the end; there is room for kLongest characters.
  char* put(char* to, char byte) const {
    const Entry& entry = table_[static_cast<unsigned char>(byte)];
    std::memcpy(to, entry.text, sizeof entry.text);
    return to + entry.size;
  }

 private:
  struct Entry {
    char text[7] = {};
    std::uint8_t size = 0;
  };
  static_assert(sizeof(Entry) <= kLongest);
  std::array<Entry, 256> table_{};
};

class JsonWriter {
 public:
  JsonWriter(const JsonSink& sink, const TextEncoding& encoding, bool isPretty)
      : sink_(sink), characters_(encoding), isPretty_(isPretty) {}

  void flush() {
    if (used_ > 0 && !isStopped_) sink_({buffer_.get(), used_});
    used_ = 0;
  }
  // Drops what was not flushed.
  void restart() {
    used_ = 0;
    depth_ = 0;
    isFirst_ = true;
    isStopped_ = false;
  }
  // Ends the output: the rest of the value is left out, and what is not flushed is lost.
  void stop() { isStopped_ = true; }

  // ---- structure

  void open(char bracket) {
    put(bracket);
    ++depth_;
    isFirst_ = true;
  }
  void close(char bracket, bool isInline = false) {
    --depth_;
    if (!isFirst_ && !isInline) newLine();
    isFirst_ = false;
    put(bracket);
  }
  void next(bool isInline = false) {
    if (!isFirst_) put(',');
    if (!isInline)
      newLine();
    else if (!isFirst_ && isPretty_)
      put(' ');
    isFirst_ = false;
  }
  void key(std::string_view name) {
    next();
    put('"');
    put(name);
    put(isPretty_ ? std::string_view("\": ") : std::string_view("\":"));
  }
  void lineEnd() { put('\n'); }

  // ---- values

  void value(const Type& type, const void* at) {
    switch (type.form) {
      case Form::text:
        text(*static_cast<const std::string*>(at));
        break;
      case Form::fixedText:
        fixedText({static_cast<const char*>(at), type.count});
        break;
      case Form::bytes:
        hexText({static_cast<const std::uint8_t*>(at), type.count});
        break;
      case Form::array:
        elements(*type.element, at, type.count);
        break;
      case Form::list:
        elements(*type.element, type.data(at), type.length(at));
        break;
      case Form::lazyArray:
        lazyArray(type, at);
        break;
      case Form::pair:
        open('[');
        for (const TypeMember& member : type.members) {
          next(true);
          value(*member.type, memberIn(at, member));
        }
        close(']', true);
        break;
      case Form::record:
        record(type, at);
        break;
      default:
        number(type.form, at);
    }
  }
  template <class T>
  void integer(T value) {
    const auto [end, error] = std::to_chars(room(kLongestNumber), buffer_.get() + kCapacity, value);
    (void)error;
    used_ = static_cast<std::size_t>(end - buffer_.get());
  }
  // UTF-8 that does not come from the file.
  void plainText(std::string_view utf8) {
    std::string json;
    appendJsonString(json, fileNameAsUtf8(utf8));
    put(json);
  }
  void put(std::string_view text) {
    while (!text.empty()) {
      const std::size_t step = std::min(text.size(), kLargestRoom);
      std::memcpy(room(step), text.data(), step);
      used_ += step;
      text.remove_prefix(step);
    }
  }

 private:
  static constexpr std::size_t kCapacity = 64U << 10U;
  static constexpr std::size_t kLargestRoom = 1024;
  static constexpr std::size_t kLongestNumber = 64;

  char* room(std::size_t size) {
    if (kCapacity - used_ < size) flush();
    return buffer_.get() + used_;
  }
  void put(char c) {
    *room(1) = c;
    ++used_;
  }
  void newLine() {
    if (!isPretty_) return;
    put('\n');
    for (int i = 0; i < depth_; ++i) put("  ");
  }

  template <class T>
  static T as(const void* at) {
    T value;
    std::memcpy(&value, at, sizeof value);
    return value;
  }
  void number(Form form, const void* at) {
    switch (form) {
      case Form::int8:
        return integer(int{as<std::int8_t>(at)});
      case Form::uint8:
        return integer(unsigned{as<std::uint8_t>(at)});
      case Form::int16:
        return integer(as<std::int16_t>(at));
      case Form::uint16:
        return integer(as<std::uint16_t>(at));
      case Form::int32:
        return integer(as<std::int32_t>(at));
      case Form::uint32:
        return integer(as<std::uint32_t>(at));
      case Form::float32:
        return real<std::uint32_t>(as<float>(at));
      default:
        return real<std::uint64_t>(as<double>(at));
    }
  }
  template <class Bits, class T>
  void real(T value) {
    const Bits bits = std::bit_cast<Bits>(value);
    if (bits == 0) return put('0');
    if (!std::isfinite(value)) {
      put("{\"");
      put(json_names::kBits);
      put(isPretty_ ? "\": \"" : "\":\"");
      for (int shift = static_cast<int>(sizeof bits) * 8 - 4; shift >= 0; shift -= 4)
        put(kHexDigits[static_cast<std::size_t>((bits >> shift) & 0xFU)]);
      return put("\"}");
    }
    // "-0" would be an integer, which has no negative zero.
    if (value == 0) return put("-0.0");
    integer(value);
  }

  void text(std::string_view bytes) {
    put('"');
    while (!bytes.empty()) {
      const std::size_t step = std::min(bytes.size(), kLargestRoom / CharacterTable::kLongest);
      char* to = room(kLargestRoom);
      for (const char byte : bytes.substr(0, step)) to = characters_.put(to, byte);
      used_ = static_cast<std::size_t>(to - buffer_.get());
      bytes.remove_prefix(step);
    }
    put('"');
  }
  void fixedText(std::string_view field) {
    const std::size_t end = std::min(field.find('\0'), field.size());
    const std::string_view after = field.substr(std::min(end + 1, field.size()));
    if (after.find_first_not_of('\0') == std::string_view::npos) return text(field.substr(0, end));
    open('{');
    next(true);
    name(json_names::kText);
    text(field.substr(0, end));
    next(true);
    name(json_names::kAfter);
    hexText({reinterpret_cast<const std::uint8_t*>(after.data()), after.size()});
    close('}', true);
  }
  void name(std::string_view name) {
    put('"');
    put(name);
    put(isPretty_ ? "\": " : "\":");
  }
  // Omits zeros at the end.
  void hexText(std::span<const std::uint8_t> block) {
    while (!block.empty() && block.back() == 0) block = block.first(block.size() - 1);
    put('"');
    while (!block.empty()) {
      const std::size_t step = std::min(block.size(), kLargestRoom / 2);
      char* to = room(kLargestRoom);
      for (const std::uint8_t byte : block.first(step)) {
        *to++ = kHexDigits[byte >> 4U];
        *to++ = kHexDigits[byte & 0xFU];
      }
      used_ = static_cast<std::size_t>(to - buffer_.get());
      block = block.subspan(step);
    }
    put('"');
  }

  // Numbers are written on one line, and so are pairs of them.
  static bool isInline(const Type& element) { return isNumber(element.form) || element.form == Form::pair; }
  void elements(const Type& element, const void* first, std::size_t count) {
    const bool areInline = isInline(element);
    open('[');
    const auto* at = static_cast<const std::byte*>(first);
    for (std::size_t i = 0; i < count && !isStopped_; ++i, at += element.size) {
      next(areInline);
      value(element, at);
    }
    close(']', areInline);
  }
  // Up to the last element that differs from that of a new record.
  void lazyArray(const Type& type, const void* at) {
    std::size_t count = type.count;
    while (count > 0) {
      const void* last = type.lazyAt(at, count - 1);
      if (last != type.unwritten && !equalContents(*type.element, last, type.unwritten)) break;
      --count;
    }
    open('[');
    for (std::size_t i = 0; i < count && !isStopped_; ++i) {
      next();
      value(*type.element, type.lazyAt(at, i));
    }
    close(']');
  }
  void record(const Type& type, const void* at) {
    open('{');
    for (const TypeMember& member : type.members) {
      const void* of = memberIn(at, member);
      if (!member.isStored && equalContents(*member.type, of, memberIn(type.fresh.get(), member))) continue;
      key(member.name);
      value(*member.type, of);
    }
    close('}');
  }

  const JsonSink& sink_;
  CharacterTable characters_;
  bool isPretty_;
  std::unique_ptr<char[]> buffer_ = std::make_unique_for_overwrite<char[]>(kCapacity);
  std::size_t used_ = 0;
  int depth_ = 0;
  bool isFirst_ = true;
  bool isStopped_ = false;
};

namespace {

void writeFault(JsonWriter& to, std::string_view name, const explain::Fault& fault) {
  to.key(name);
  to.open('{');
  to.key(json_names::kOffset);
  to.integer(fault.offset);
  to.key(json_names::kField);
  to.plainText(fault.path);
  to.key(json_names::kReason);
  to.plainText(fault.reason);
  to.close('}');
}

}  // namespace

void writeJson(const JsonSink& sink, const JsonHead& head, const void* record, const explain::FileReport* report,
               bool isPretty) {
  JsonWriter to(sink, TextEncoding::named(head.encoding).value_or(TextEncoding()), isPretty);
  to.open('{');
  to.key(json_names::kFormat);
  to.integer(kJsonFormat);
  to.key(json_names::kKind);
  if (head.kind)
    to.plainText(frame::infoOf(*head.kind).name);
  else
    to.put("null");
  to.key(json_names::kVersion);
  if (head.version)
    to.integer(*head.version);
  else
    to.put("null");
  to.key(json_names::kEncoding);
  to.plainText(head.encoding);
  to.key(json_names::kRecord);
  if (head.kind && record != nullptr)
    to.value(typeOfRecord(*head.kind), record);
  else
    to.put("null");
  if (report != nullptr) {
    if (report->tolerated) writeFault(to, json_names::kTolerated, *report->tolerated);
    if (!report->fault && report->walked < report->size) {
      to.key(json_names::kUnread);
      to.integer(report->size - report->walked);
    }
    if (report->fault) writeFault(to, json_names::kFault, *report->fault);
  }
  to.close('}');
  to.lineEnd();
  to.flush();
}

void writeFileAsJson(const JsonSink& sink, std::span<const std::byte> bytes, std::optional<frame::FileKind> kind,
                     const explain::FileReport& report, const std::string& encoding, bool isPretty) {
  const JsonHead head{kind, report.version, encoding};
  if (!kind || !report.version || !frame::infoOf(*kind).accepts(*report.version))
    return writeJson(sink, head, nullptr, &report, isPretty);
  withFileRecord(*kind, [&](auto file) {
    // Without its path: the text is the same wherever the file is.
    const auto loaded = loadRecord<decltype(file)::kKind>(bytes);
    writeJson(sink, head, loaded.record.get(), &report, isPretty);
  });
}

class JsonValues::Writer {
 public:
  explicit Writer(std::string_view encoding)
      : json_(sink_, TextEncoding::named(encoding).value_or(TextEncoding()), false) {}

  void append(std::string& to, const Type& type, const void* value, std::size_t atLeast) {
    to_ = &to;
    size_ = 0;
    atLeast_ = atLeast;
    json_.restart();
    json_.value(type, value);
    json_.flush();
  }

 private:
  void take(std::string_view piece) {
    to_->append(piece);
    size_ += piece.size();
    if (atLeast_ != 0 && size_ > atLeast_) json_.stop();
  }

  std::string* to_ = nullptr;
  std::size_t size_ = 0, atLeast_ = 0;
  JsonSink sink_ = [this](std::string_view piece) { take(piece); };
  JsonWriter json_;
};

JsonValues::JsonValues(std::string_view encoding) : writer_(std::make_unique<Writer>(encoding)) {}
JsonValues::~JsonValues() = default;

void JsonValues::append(std::string& to, const Type& type, const void* value, std::size_t atLeast) {
  writer_->append(to, type, value, atLeast);
}

}  // namespace oldtorvio::values
