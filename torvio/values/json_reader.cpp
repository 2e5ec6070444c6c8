#include "torvio/values/json_reader.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>
#include <system_error>
#include <vector>

#include "torvio/values/text_encoding.h"
#include "torvio/values/types.h"

namespace oldtorvio::values {
namespace {

// Nothing if the number is out of range.
std::optional<float> nearestSingle(const std::string& digits) {
  float single = 0;
#if defined(__cpp_lib_to_chars)
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), single);
  if (error != std::errc()) return std::nullopt;
#else
  // The library of WebAssembly has no from_chars for real numbers; its only locale is "C".
  single = std::strtof(digits.c_str(), nullptr);
  if (!std::isfinite(single)) return std::nullopt;
#endif
  return single;
}

// ---- the text ----------------------------------------------------------------------------------------

// Longer than any member except strings, and than any run of white space should be.
constexpr std::uint64_t kLongestShort = 4U << 20U;
// A text of a file takes up to six characters for each byte.
constexpr std::uint64_t kLongestText = (std::uint64_t{1} << 30U) * 6;

// The characters of the text, block by block. The parser collects each string and number as it is written, so that
// their length has to be limited here.
class Characters {
 public:
  explicit Characters(const JsonSource& source) : source_(source) { refill(); }

  bool isAtEnd() const { return at_ == end_; }
  char current() const { return *at_; }
  void advance() {
    if (++at_ == end_) refill();
  }

  // What comes next begins here, and may have at most this many characters.
  void allow(std::uint64_t most) { limit_ = position() + most; }
  const char* error() const { return error_; }

 private:
  std::uint64_t position() const { return before_ + static_cast<std::uint64_t>(at_ - block_.get()); }
  void refill() {
    before_ += static_cast<std::uint64_t>(end_ - block_.get());
    at_ = end_ = block_.get();
    if (error_ != nullptr) return;
    if (before_ > limit_)
      error_ = "a string or number is too long for any member";
    else if (before_ > kLargestJsonMiB << 20U)
      error_ = "the text is longer than 8192 MiB";
    else
      end_ += source_(block_.get(), kBlock);
  }

  static constexpr std::size_t kBlock = 64U << 10U;
  static_assert(kLargestJsonMiB == 8192);

  const JsonSource& source_;
  std::unique_ptr<char[]> block_ = std::make_unique_for_overwrite<char[]>(kBlock);
  const char* at_ = block_.get();
  const char* end_ = block_.get();
  std::uint64_t before_ = 0;  // characters before the block
  std::uint64_t limit_ = kLongestShort;
  const char* error_ = nullptr;
};

class CharacterIterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = char;

  CharacterIterator() = default;  // the end
  explicit CharacterIterator(Characters& characters) : characters_(&characters) {}
  char operator*() const { return characters_->current(); }
  CharacterIterator& operator++() {
    characters_->advance();
    return *this;
  }
  void operator++(int) { characters_->advance(); }
  // Iterators are only compared with the end.
  friend bool operator==(const CharacterIterator& a, const CharacterIterator&) { return a.characters_->isAtEnd(); }
  friend bool operator!=(const CharacterIterator& a, const CharacterIterator& b) { return !(a == b); }

 private:
  Characters* characters_ = nullptr;
};

constexpr std::size_t kMostQuoted = 60;

// The beginning of a text of the document, on one line and long enough to recognise it.
std::string nameInQuotes(std::string_view text) {
  std::string quote;
  appendJsonString(quote, fileNameAsUtf8(text.substr(0, kMostQuoted)) + (text.size() > kMostQuoted ? "..." : ""));
  return quote;
}

int hexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// ---- the record --------------------------------------------------------------------------------------

struct IntegerRange {
  std::int64_t lowest, highest;
};
template <class T>
constexpr IntegerRange rangeOf() {
  return {std::numeric_limits<T>::lowest(), std::numeric_limits<T>::max()};
}
constexpr IntegerRange kRanges[] = {rangeOf<std::int8_t>(),   rangeOf<std::uint8_t>(), rangeOf<std::int16_t>(),
                                    rangeOf<std::uint16_t>(), rangeOf<std::int32_t>(), rangeOf<std::uint32_t>()};
constexpr bool isInteger(Form form) { return form <= Form::uint32; }

// Receives the document piece by piece and stores it in the record. Each function returns false after an error, which
// ends the parser.
class RecordBuilder {
 public:
  explicit RecordBuilder(Characters& characters) : characters_(characters) {}

  JsonRecord result(bool isParsed) {
    if (error_.empty() && characters_.error() != nullptr) error_ = characters_.error();
    if (error_.empty() && !isParsed) error_ = "not valid JSON";
    if (error_.empty()) checkHead();
    JsonRecord read;
    read.error = error_;
    if (!error_.empty()) return read;
    read.kind = *head_.kind;
    read.version = *head_.version;
    read.encoding = head_.encoding;
    read.record = record_;
    return read;
  }

  // ---- what the parser calls

  bool null() {
    if (isHead() && current() == Key::record && !frames_.empty()) {
      return fail("null, because the file could not be loaded as any kind and version");
    }
    return scalar("null");
  }
  bool boolean(bool) { return scalar("true or false"); }
  bool number_integer(std::int64_t value) {
    // The parser only passes numbers that begin with "-" here, so that a zero is a negative one.
    return value == 0 ? number(0, true) : number(value, false);
  }
  bool number_unsigned(std::uint64_t value) {
    if (value <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
      return number(static_cast<std::int64_t>(value), false);
    Slot slot;
    if (!takeSlot(slot)) return false;
    if (slot.type == nullptr || isInteger(slot.type->form)) return fail("is out of range");
    return storeReal(slot, static_cast<float>(value), static_cast<double>(value));
  }
  bool number_float(double value, const std::string& token) {
    Slot slot;
    if (!takeSlot(slot)) return false;
    if (slot.type == nullptr || isInteger(slot.type->form))
      return fail("must be " + wanted(slot) + ", not " + token.substr(0, kMostQuoted));
    if (slot.type->form == Form::float64) return storeReal(slot, 0, value);
    if (slot.type->form != Form::float32) return failAs(slot, "a number");
    // Not from the double: the number would be rounded twice.
    std::string digits = token;
    // The parser writes numbers with the decimal point of the locale.
    for (char& c : digits)
      if (std::string_view("0123456789+-eE").find(c) == std::string_view::npos) c = '.';
    if (const auto single = nearestSingle(digits)) return storeReal(slot, *single, 0);
    if (std::fabs(value) < 1) return storeReal(slot, std::copysign(0.0F, static_cast<float>(value)), 0);
    return fail(digits.substr(0, kMostQuoted) + " is out of range for a number of 32 bits");
  }
  bool string(std::string& value) {
    Slot slot;
    if (!takeSlot(slot)) return false;
    return slot.type == nullptr ? storeHeadText(value) : storeText(slot, value);
  }
  bool binary(const std::vector<std::uint8_t>&) { return false; }  // not of a text
  bool start_object(std::size_t) {
    if (frames_.empty() && !isStarted_) {
      isStarted_ = true;
      return push({Place::head, nullptr, nullptr});
    }
    Slot slot;
    if (!takeSlot(slot)) return false;
    if (slot.type == nullptr) return startInHead();
    switch (slot.type->form) {
      case Form::record:
        return pushRecord(*slot.type, slot.at);
      case Form::fixedText:
        return push({Place::textObject, slot.type, slot.at});
      case Form::float32:
      case Form::float64:
        return push({Place::bitsObject, slot.type, slot.at});
      default:
        return failAs(slot, "an object");
    }
  }
  bool key(const std::string& name) {
    characters_.allow(kLongestShort);
    switch (frames_.back().place) {
      case Place::record:
        return recordKey(name);
      case Place::head:
        return headKey(name);
      case Place::fault:
        return smallKey(name, {json_names::kOffset, json_names::kField, json_names::kReason});
      case Place::textObject:
        return smallKey(name, {json_names::kText, json_names::kAfter});
      default:
        return smallKey(name, {json_names::kBits});
    }
  }
  bool end_object() {
    characters_.allow(kLongestShort);
    Frame& frame = frames_.back();
    if (frame.place == Place::record && !hasAllMembers(frame)) return false;
    if (frame.place == Place::textObject && !endTextObject(frame)) return false;
    if (frame.place == Place::bitsObject && frame.seen != 1) return failIn("bits: is missing");
    if (frame.place == Place::fault && frame.seen != 7) return failIn("must have offset, field and reason");
    pop();
    return true;
  }
  bool start_array(std::size_t) {
    if (frames_.empty()) return fail("the text must be an object");
    Slot slot;
    if (!takeSlot(slot)) return false;
    if (slot.type == nullptr) return fail("must be " + wanted(slot) + ", not an array");
    const Type& type = *slot.type;
    switch (type.form) {
      case Form::list:
        type.clear(slot.at);
        break;
      case Form::lazyArray:
      case Form::array:
      case Form::pair:
        break;
      default:
        return failAs(slot, "an array");
    }
    return push({Place::elements, &type, slot.at});
  }
  bool end_array() {
    characters_.allow(kLongestShort);
    const Frame& frame = frames_.back();
    const std::size_t wanted = frame.type->form == Form::array  ? frame.type->count
                               : frame.type->form == Form::pair ? frame.type->members.size()
                                                                : frame.index;
    if (frame.index != wanted)
      return failIn("must have " + std::to_string(wanted) + " elements, not " + std::to_string(frame.index));
    pop();
    return true;
  }
  bool parse_error(std::size_t, const std::string&, const nlohmann::json::exception& error) {
    if (characters_.error() != nullptr) return false;
    if (dynamic_cast<const nlohmann::json::out_of_range*>(&error) != nullptr) {
      // A number beyond the range of doubles, which has not been counted as an element yet.
      if (!frames_.empty() && frames_.back().place == Place::elements) ++frames_.back().index;
      return fail("is out of range");
    }
    // "[...] parse error at line 1, column 5: syntax error while parsing value - invalid literal; last read: '...'".
    // What was read may be long and contain anything.
    const std::string_view text = error.what();
    const auto between = [&](std::string_view before, std::string_view after) {
      const std::size_t from = text.find(before);
      if (from == std::string_view::npos) return std::string();
      const std::string_view rest = text.substr(from + before.size());
      return std::string(rest.substr(0, std::min({rest.find(after), rest.size(), std::size_t{100}})));
    };
    const std::string place = between("parse error at ", ":"), reason = between(" - ", ";");
    error_ = (place.empty() ? "" : place + ": ") + "not valid JSON" + (reason.empty() ? "" : ": " + reason);
    return false;
  }

 private:
  enum class Place : std::uint8_t {
    head,   // the document
    fault,  // a fault in it, which is ignored
    record,
    elements,  // of an array, list, lazy array or pair
    textObject,
    bitsObject,
  };
  enum class Key : std::uint8_t { schema, format, kind, version, encoding, record, tolerated, unread, fault };

  struct Frame {
    Place place;
    const Type* type;
    void* at;
    std::size_t index = 0;     // of the next element, or after the current member
    std::size_t seenFrom = 0;  // for a record: where its members in seen_ begin
    std::uint64_t seen = 0;    // for anything else with keys: those that were read, as bits
  };
  // Where the next value goes. Without a type, it goes to the document itself.
  struct Slot {
    const Type* type = nullptr;
    void* at = nullptr;
  };

  // ---- errors

  bool fail(const std::string& what) {
    const std::string path = pathOf(frames_.size());
    error_ = path.empty() ? what : path + ": " + what;
    return false;
  }
  // Reports an error about the innermost object or array itself.
  bool failIn(const std::string& what) {
    const std::string path = pathOf(frames_.size() - 1);
    const bool isMember = what.find(": ") != std::string::npos;
    error_ = path.empty() ? what : path + (isMember ? "." : ": ") + what;
    return false;
  }
  std::string pathOf(std::size_t depth) const {
    std::string path;
    const auto add = [&](std::string_view name) {
      if (!path.empty()) path += '.';
      path += name;
    };
    for (std::size_t i = 0; i < depth; ++i) {
      const Frame& frame = frames_[i];
      if (frame.place == Place::head) {
        // Paths of members begin in the record.
        if (currentHead_ && (depth == 1 || *currentHead_ != Key::record)) add(headNames()[headIndex(*currentHead_)]);
      } else if (frame.place == Place::record) {
        if (frame.index > 0) add(frame.type->members[frame.index - 1].name);
      } else if (frame.place == Place::elements) {
        if (frame.index > 0) path += '[' + std::to_string(frame.index - 1) + ']';
      } else if (!smallName_.empty()) {
        add(smallName_);
      }
    }
    return path;
  }
  bool failAs(const Slot& slot, const std::string& found) { return fail("must be " + wanted(slot) + ", not " + found); }
  std::string wanted(const Slot& slot) const {
    if (slot.type == nullptr) return wantedInHead();
    switch (slot.type->form) {
      case Form::text:
      case Form::fixedText:
      case Form::bytes:
        return "a string";
      case Form::array:
      case Form::list:
      case Form::lazyArray:
      case Form::pair:
        return "an array";
      case Form::record:
        return "an object";
      case Form::float32:
      case Form::float64:
        return "a number";
      default:
        return "an integer";
    }
  }
  std::string wantedInHead() const {
    switch (frames_.back().place) {
      case Place::head:
        switch (current()) {
          case Key::format:
          case Key::version:
          case Key::unread:
            return "an integer";
          case Key::record:
          case Key::tolerated:
          case Key::fault:
            return "an object";
          default:
            return "a string";
        }
      case Place::fault:
        return smallIndex_ == 0 ? "an integer" : "a string";
      default:
        return "a string";
    }
  }
  bool scalar(const char* found) {
    Slot slot;
    return takeSlot(slot) && failAs(slot, found);
  }

  // ---- places

  bool push(Frame frame) {
    const bool hasLongTexts =
        frame.place == Place::elements && frame.type->element != nullptr && frame.type->element->form == Form::text;
    characters_.allow(hasLongTexts ? kLongestText : kLongestShort);
    smallName_ = {};
    frames_.push_back(frame);
    return true;
  }
  bool pushRecord(const Type& type, void* at) {
    Frame frame{Place::record, &type, at};
    frame.seenFrom = seen_.size();
    seen_.resize(seen_.size() + type.members.size(), 0);
    return push(frame);
  }
  void pop() {
    if (frames_.back().place == Place::record) seen_.resize(frames_.back().seenFrom);
    smallName_ = {};
    frames_.pop_back();
  }

  bool takeSlot(Slot& slot) {
    if (frames_.empty()) return fail("the text must be an object");
    Frame& frame = frames_.back();
    if (frame.place == Place::record) {
      const TypeMember& member = frame.type->members[frame.index - 1];
      slot = {member.type, memberIn(frame.at, member)};
      return true;
    }
    if (frame.place != Place::elements) return true;

    const std::size_t i = frame.index++;
    const Type& type = *frame.type;
    switch (type.form) {
      case Form::list:
        slot = {type.element, type.append(frame.at)};
        // Each element sets its own limit.
        if (type.element->form != Form::text) characters_.allow(kLongestShort);
        return true;
      case Form::pair:
        if (i >= type.members.size()) return fail("must not be: a pair has two elements");
        slot = {type.members[i].type, memberIn(frame.at, type.members[i])};
        return true;
      default:
        if (i >= type.count) return fail("must not be: there is room for " + std::to_string(type.count));
        slot = {type.element, type.form == Form::lazyArray
                                  ? type.lazySet(frame.at, i)
                                  : static_cast<std::byte*>(frame.at) + i * type.element->size};
        characters_.allow(type.element->form == Form::text ? kLongestText : kLongestShort);
        return true;
    }
  }

  // ---- members

  bool recordKey(const std::string& name) {
    Frame& frame = frames_.back();
    const std::vector<TypeMember>& members = frame.type->members;
    // Members nearly always come in order, without some that are not stored.
    std::size_t i = frame.index;
    while (i < members.size() && members[i].name != name && !members[i].isStored) ++i;
    if (i >= members.size() || members[i].name != name) {
      i = 0;
      while (i < members.size() && members[i].name != name) ++i;
    }
    if (i == members.size()) {
      frame.index = 0;
      return fail(nameInQuotes(name) + " is not a member of " + std::string(frame.type->name));
    }
    frame.index = i + 1;
    char& seen = seen_[frame.seenFrom + i];
    if (seen != 0) return fail("is there twice");
    seen = 1;
    if (members[i].type->form == Form::text) characters_.allow(kLongestText);
    return true;
  }
  bool hasAllMembers(Frame& frame) {
    const std::vector<TypeMember>& members = frame.type->members;
    for (std::size_t i = 0; i < members.size(); ++i)
      if (members[i].isStored && seen_[frame.seenFrom + i] == 0) {
        frame.index = i + 1;
        return fail("is missing");
      }
    return true;
  }
  bool smallKey(const std::string& name, std::initializer_list<std::string_view> names) {
    Frame& frame = frames_.back();
    const auto* found = std::find(names.begin(), names.end(), name);
    smallName_ = {};
    if (found == names.end()) return fail(nameInQuotes(name) + " is not known here");
    smallIndex_ = static_cast<std::size_t>(found - names.begin());
    smallName_ = *found;
    const std::uint64_t bit = std::uint64_t{1} << smallIndex_;
    if ((frame.seen & bit) != 0) return fail("is there twice");
    frame.seen |= bit;
    return true;
  }

  // ---- the document

  static const std::vector<std::string_view>& headNames() {
    using namespace json_names;
    static const std::vector<std::string_view> names{kSchema, kFormat,    kKind,   kVersion, kEncoding,
                                                     kRecord, kTolerated, kUnread, kFault};
    return names;
  }
  static std::size_t headIndex(Key key) { return static_cast<std::size_t>(key); }
  bool isHead() const { return !frames_.empty() && frames_.back().place == Place::head; }
  Key current() const { return currentHead_.value_or(Key::schema); }
  bool hasHead(Key key) const { return (headSeen_ >> headIndex(key) & 1U) != 0; }

  bool headKey(const std::string& name) {
    const auto& names = headNames();
    const auto found = std::find(names.begin(), names.end(), name);
    currentHead_ = std::nullopt;
    if (found == names.end()) return fail(nameInQuotes(name) + " is not a member of a document");
    currentHead_ = static_cast<Key>(found - names.begin());
    if (hasHead(*currentHead_)) return fail("is there twice");
    headSeen_ |= std::uint64_t{1} << headIndex(*currentHead_);
    return true;
  }
  void checkHead() {
    for (const Key key : {Key::format, Key::kind, Key::version, Key::encoding, Key::record})
      if (!hasHead(key)) {
        error_ = std::string(headNames()[headIndex(key)]) + ": is missing";
        return;
      }
    if (hasHead(Key::fault))
      error_ = "fault: the file was damaged, so that its record is incomplete; remove this member to use what was read";
  }
  bool startInHead() {
    if (!isHead()) return fail("must be " + wantedInHead() + ", not an object");
    switch (current()) {
      case Key::fault:
      case Key::tolerated:
        return push({Place::fault, nullptr, nullptr});
      case Key::record:
        break;
      default:
        return fail("must be " + wantedInHead() + ", not an object");
    }
    for (const Key key : {Key::format, Key::kind, Key::encoding})
      if (!hasHead(key)) return fail("must come after " + std::string(headNames()[headIndex(key)]));
    record_ = newRecord(*head_.kind);
    return pushRecord(typeOfRecord(*head_.kind), record_.get());
  }
  bool storeHeadNumber(std::int64_t value) {
    const Frame& frame = frames_.back();
    if (frame.place == Place::fault) return smallIndex_ == 0 || fail("must be a string, not a number");
    if (frame.place != Place::head) return fail("must be a string, not a number");
    switch (current()) {
      case Key::format:
        if (value == kJsonFormat) return true;
        return fail(std::to_string(value) + " is not known; this program reads format " + std::to_string(kJsonFormat));
      case Key::version:
        if (value < std::numeric_limits<std::int16_t>::min() || value > std::numeric_limits<std::int16_t>::max())
          return fail("must be within -32768 and 32767");
        head_.version = static_cast<int>(value);
        return true;
      case Key::unread:
        return true;
      default:
        return fail("must be " + wantedInHead() + ", not a number");
    }
  }
  bool storeHeadText(const std::string& value) {
    const Frame& frame = frames_.back();
    switch (frame.place) {
      case Place::textObject:
        return storeTextPart(frame, value);
      case Place::bitsObject:
        return storeBits(frame, value);
      case Place::fault:
        return smallIndex_ != 0 || fail("must be an integer, not a string");
      default:
        break;
    }
    switch (current()) {
      case Key::schema:
        return true;
      case Key::kind:
        for (const frame::FileKindInfo& info : frame::kFileKinds)
          if (info.name == value) {
            head_.kind = info.kind;
            return true;
          }
        return fail(nameInQuotes(value) + " is not a kind of file");
      case Key::encoding:
        if (const auto encoding = TextEncoding::named(value)) {
          encoding_ = *encoding;
          head_.encoding = value;
          return true;
        }
        return fail(nameInQuotes(value) + " is not an encoding");
      default:
        return fail("must be " + wantedInHead() + ", not a string");
    }
  }

  // ---- values

  bool number(std::int64_t value, bool isNegativeZero) {
    Slot slot;
    if (!takeSlot(slot)) return false;
    if (slot.type == nullptr) return storeHeadNumber(value);
    const Form form = slot.type->form;
    if (!isInteger(form)) {
      const double asDouble = isNegativeZero ? -0.0 : static_cast<double>(value);
      return storeReal(slot, isNegativeZero ? -0.0F : static_cast<float>(value), asDouble);
    }
    const IntegerRange& range = kRanges[static_cast<std::size_t>(form)];
    if (value < range.lowest || value > range.highest)
      return fail(std::to_string(value) + " is not within " + std::to_string(range.lowest) + " and " +
                  std::to_string(range.highest));
    switch (form) {
      case Form::int8:
      case Form::uint8:
        return store(slot, static_cast<std::uint8_t>(value));
      case Form::int16:
      case Form::uint16:
        return store(slot, static_cast<std::uint16_t>(value));
      default:
        return store(slot, static_cast<std::uint32_t>(value));
    }
  }
  template <class T>
  bool store(const Slot& slot, T value) {
    std::memcpy(slot.at, &value, sizeof value);
    return true;
  }
  bool storeReal(const Slot& slot, float asFloat, double asDouble) {
    if (slot.type->form == Form::float32) return store(slot, asFloat);
    if (slot.type->form == Form::float64) return store(slot, asDouble);
    return failAs(slot, "a number");
  }

  bool storeText(const Slot& slot, const std::string& value) {
    switch (slot.type->form) {
      case Form::text: {
        auto bytes = bytesOf(value);
        if (bytes) *static_cast<std::string*>(slot.at) = std::move(*bytes);
        return bytes.has_value();
      }
      case Form::fixedText: {
        const auto bytes = bytesOf(value);
        if (!bytes) return false;
        if (bytes->find('\0') != std::string::npos)
          return fail("has a NUL; what comes after one is written as {\"text\": ..., \"after\": ...}");
        if (bytes->size() > slot.type->count) return tooLong(slot.type->count, bytes->size());
        auto* field = static_cast<char*>(slot.at);
        std::copy(bytes->begin(), bytes->end(), field);
        std::fill(field + bytes->size(), field + slot.type->count, '\0');
        return true;
      }
      case Form::bytes: {
        auto* const field = static_cast<std::uint8_t*>(slot.at);
        std::size_t size = 0;
        if (!storeHex(value, field, slot.type->count, size)) return false;
        std::fill(field + size, field + slot.type->count, std::uint8_t{0});
        return true;
      }
      default:
        return failAs(slot, "a string");
    }
  }
  bool tooLong(std::size_t room, std::size_t size) {
    return fail("has room for " + std::to_string(room) + " bytes, not for " + std::to_string(size));
  }
  // Fails if the text cannot be stored in the encoding of the document.
  std::optional<std::string> bytesOf(const std::string& utf8) {
    if (std::all_of(utf8.begin(), utf8.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; })) return utf8;
    auto bytes = encoding_.bytesOf(utf8);
    if (!bytes) (void)fail(nameInQuotes(utf8) + " has a character that " + head_.encoding + " lacks");
    return bytes;
  }
  bool storeHex(const std::string& value, std::uint8_t* to, std::size_t room, std::size_t& size) {
    if (value.size() % 2 != 0) return fail("must be pairs of hexadecimal digits");
    size = value.size() / 2;
    if (size > room) return tooLong(room, size);
    for (std::size_t i = 0; i < size; ++i) {
      const int high = hexValue(value[2 * i]), low = hexValue(value[2 * i + 1]);
      if (high < 0 || low < 0) return fail("must be pairs of hexadecimal digits");
      to[i] = static_cast<std::uint8_t>(high * 16 + low);
    }
    return true;
  }

  // Both parts are kept until the object ends: they may come in any order.
  bool storeTextPart(const Frame& frame, const std::string& value) {
    const std::size_t room = frame.type->count;
    if (smallIndex_ == 0) {
      auto bytes = bytesOf(value);
      if (!bytes) return false;
      if (bytes->find('\0') != std::string::npos) return fail("has a NUL; what comes after it belongs to \"after\"");
      if (bytes->size() > room) return tooLong(room, bytes->size());
      text_ = std::move(*bytes);
      return true;
    }
    after_.resize(room);
    std::size_t size = 0;
    if (!storeHex(value, after_.data(), room, size)) return false;
    after_.resize(size);
    return true;
  }
  bool endTextObject(const Frame& frame) {
    if (frame.seen != 3) return failIn((frame.seen & 1U) != 0 ? "after: is missing" : "text: is missing");
    const std::size_t room = frame.type->count, size = text_.size() + 1 + after_.size();
    if (size > room) {
      smallName_ = {};
      return failIn("has room for " + std::to_string(room) + " bytes, not for " + std::to_string(size));
    }
    auto* field = static_cast<char*>(frame.at);
    std::memset(field, 0, room);
    std::copy(text_.begin(), text_.end(), field);
    std::copy(after_.begin(), after_.end(), reinterpret_cast<std::uint8_t*>(field) + text_.size() + 1);
    return true;
  }
  bool storeBits(const Frame& frame, const std::string& value) {
    std::uint8_t digits[8] = {};
    std::size_t size = 0;
    const std::size_t width = frame.type->size;
    if (value.size() != 2 * width) return fail("must be " + std::to_string(2 * width) + " hexadecimal digits");
    if (!storeHex(value, digits, width, size)) return false;
    std::uint64_t bits = 0;
    for (std::size_t i = 0; i < size; ++i) bits = bits << 8U | digits[i];
    const Slot slot{frame.type, frame.at};
    return width == 4 ? store(slot, static_cast<std::uint32_t>(bits)) : store(slot, bits);
  }

  Characters& characters_;
  bool isStarted_ = false;
  std::vector<Frame> frames_;
  std::vector<char> seen_;      // of the members of all records that are open
  std::string_view smallName_;  // the current key of an object that is not a record
  std::size_t smallIndex_ = 0;  // its position among the known keys
  std::string text_;            // of the current text object
  std::vector<std::uint8_t> after_;

  JsonHead head_;
  std::optional<Key> currentHead_;
  std::uint64_t headSeen_ = 0;
  TextEncoding encoding_;
  std::shared_ptr<void> record_;
  std::string error_;
};

}  // namespace

JsonRecord readJson(const JsonSource& source) {
  Characters characters(source);
  RecordBuilder builder(characters);
  const bool isParsed = nlohmann::json::sax_parse(CharacterIterator(characters), CharacterIterator(), &builder);
  return builder.result(isParsed);
}

JsonRecord readJson(std::string_view text) {
  return readJson([&](char* to, std::size_t size) {
    size = std::min(size, text.size());
    std::memcpy(to, text.data(), size);
    text.remove_prefix(size);
    return size;
  });
}

std::int64_t storeRecord(codec::OutStream& to, const JsonRecord& record, int version) {
  return withFileRecord(record.kind, [&](auto file) {
    constexpr frame::FileKind kKind = decltype(file)::kKind;
    return storeRecord<kKind>(to, record.as<kKind>(), version);
  });
}

std::int64_t storeLoadable(codec::OutStream& to, const JsonRecord& record, int version) {
  if (record.kind == frame::FileKind::part && version < frame::kFirstMainVersion) return frame::kWrongVersion;
  return storeRecord(to, record, version);
}

std::string refusalOf(const JsonRecord& record, std::int64_t status, int version) {
  const std::string kind(frame::infoOf(record.kind).name);
  if (status == frame::kWrongVersion)
    return "a " + kind + " file cannot be saved in version " + std::to_string(version);
  if (record.kind == frame::FileKind::sheet && mayEndProcess(record.as<frame::FileKind::sheet>(), version))
    return "blocks: cannot be saved, and has to be empty in version " + std::to_string(version);
  return "the record cannot be saved in version " + std::to_string(version) +
         ": a count, a width or a version in it is not possible, or a list that has to have elements is empty";
}

}  // namespace oldtorvio::values
