// The map: reads like the reader and reports every field with its offset and value. The base of everything that
// explains a file.
#pragma once
#include <array>
#include <bit>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "src/frame/codec/reading.h"
#include "src/frame/codec/stream.h"

namespace oldtorvio::explain {

// How a field is stored.
struct StoredForm {
  enum class Kind : std::uint8_t { number, text, bytes, reserved };

  Kind kind = Kind::reserved;
  const char* type = "reserved";  // "i16", "u32", "f64", "text", "bytes"
  std::uint32_t size = 0;         // 0 for all bytes of the line
  // Prints a number that is stored there, as the map does; null for all others.
  void (*print)(std::string& to, const std::byte* from) = nullptr;
};

struct MapLine {
  std::uint64_t offset = 0;
  std::uint64_t size = 0;  // 0 for a remark
  std::string path;        // shapes.shapes[3].x
  std::string value;       // a remark has its text here
  // One, or those of a block, whose path ends with as many names: "origin.x, y". None for a remark.
  std::span<const StoredForm> forms = {};
  std::size_t nameAt = 0;  // where the names begin in the path
};

using MapSink = std::function<void(const MapLine&)>;

// Where a file breaks: the field that could not be read completely, or whose value is refused.
struct Fault {
  std::uint64_t offset = 0;
  std::string path;
  std::string reason;
};

// The path of the fault where a load of this version reads nothing more in any file.
inline constexpr std::string_view kRest = "rest";

// The names in the text of an FIELDS(...): "r.list.count, as<std::int16_t>(r.kind)" has "list.count" and
// "kind".
std::vector<std::string> fieldNames(std::string_view stringised);
// The same, taken apart once for each FIELDS(...): each has a type of its own.
template <class Names>
const std::vector<std::string>& namesOf(const Names& names) {
  static const std::vector<std::string> taken = fieldNames(names());
  return taken;
}

void printValue(std::string& to, std::int64_t value);
void printValue(std::string& to, float value);
void printValue(std::string& to, double value);
void printText(std::string& to, const char* field, std::size_t width);
void printBytes(std::string& to, const std::uint8_t* bytes, std::size_t width);

class Mapper : public codec::Reading<Mapper> {
 public:
  // Without a sink the walk only finds the fault, which is faster.
  Mapper(codec::InStream& in, int version, MapSink sink)
      : Reading(version), in_(in), sink_(std::move(sink)), walked_(in.position()) {}

  const std::optional<Fault>& fault() const { return fault_; }
  // The first that the format tolerates.
  const std::optional<Fault>& tolerated() const { return tolerated_; }
  // The end of the last field. The stream is at its end after a walk that stops.
  std::uint64_t walked() const { return walked_; }

  template <class Names, class... T>
  [[nodiscard]] bool fields(const codec::Fields<Names, T...>& f) {
    const std::vector<std::string>& names = namesOf(f.names);
    std::size_t i = 0;
    return std::apply([&](auto&... m) { return (item(names[i++], m) && ...); }, f.members);
  }
  template <class Names, class M>
  [[nodiscard]] bool fieldOf(const Names& names, std::size_t i, M& member) {
    return item(namesOf(names)[i], member);
  }
  template <class Names, std::size_t N, class T>
  [[nodiscard]] bool numbers(const Names& names, T (&members)[N], std::size_t count) {
    return numberRow(namesOf(names).front(), members, count);
  }
  template <class Names, class M>
  [[nodiscard]] bool indexed(const Names& names, std::size_t i, M& member) {
    return item(namesOf(names).front() + '[' + std::to_string(i) + ']', member);
  }
  template <class Names, class M>
  [[nodiscard]] bool sizedField(const Names& names, M& field, std::size_t size) {
    const std::string& name = namesOf(names).front();
    const std::byte* from = take(name, size);
    if (from == nullptr) return false;
    std::memcpy(std::data(field), from, size);
    if (!advance(size)) return true;
    std::string value;
    if constexpr (std::is_same_v<std::remove_cvref_t<decltype(field[0])>, char>) {
      printText(value, std::data(field), size);
      report(size, name, std::move(value), kText);
    } else {
      printBytes(value, std::data(field), size);
      report(size, name, std::move(value), kBytes);
    }
    return true;
  }
  bool text(std::string& to, std::uint64_t size);
  bool drop(std::size_t size);
  std::uint64_t left() const { return in_.left(); }
  bool has(std::size_t size) { return in_.run(size) != nullptr; }
  std::uint64_t position() const { return in_.position(); }

  template <class Names>
  void enter(const Names& names, std::int64_t index = -1, std::size_t list = 0) {
    enterPath(namesOf(names)[list], index);
  }
  void leave();
  void atRow(std::int64_t row) { row_ = row; }
  template <class Names>
  void refused(const Names& names, std::int64_t value) {
    fault_ = Fault{lastOffset_, pathOf(namesOf(names).front()), "the value " + std::to_string(value) + " is refused"};
  }
  void refusedHere();
  void forgiven();
  // A line of its own that belongs to no byte.
  void remark(std::string text);

 private:
  template <class M>
  bool item(const std::string& name, M& member) {
    using Item = codec::wire::ItemOf<M>;
    if constexpr (Item::kIsRow) {
      return numberRow(name, member, std::extent_v<M>);
    } else {
      const std::byte* from = take(name, Item::kWidth);
      if (from == nullptr) return false;
      Item::load(member, from);
      if (!advance(Item::kWidth)) return true;
      std::string value;
      print(value, member);
      report(Item::kWidth, name, std::move(value), Forms<std::remove_cvref_t<M>>::kAll);
      return true;
    }
  }
  template <class T>
  bool numberRow(const std::string& name, T* members, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
      if (!item(name + '[' + std::to_string(i) + ']', members[i])) return false;
    return true;
  }

  template <codec::Number T>
  static void print(std::string& to, T value) {
    if constexpr (std::is_floating_point_v<T>)
      printValue(to, value);
    else
      printValue(to, static_cast<std::int64_t>(value));
  }
  template <std::size_t N>
  static void print(std::string& to, const char (&text)[N]) {
    printText(to, text, N);
  }
  template <std::size_t N>
  static void print(std::string& to, const std::uint8_t (&bytes)[N]) {
    printBytes(to, bytes, N);
  }
  template <class Stored, class T>
  static void print(std::string& to, const codec::As<Stored, T>& as) {
    print(to, as.member);
  }
  template <class T>
  static void print(std::string& to, const codec::NonZero<T>& number) {
    print(to, number.stored);
  }
  template <class... T>
  static void print(std::string& to, const codec::Block<T...>& block) {
    std::apply([&](auto&... m) { ((print(to, m), to += ' '), ...); }, block.members);
    to.pop_back();
  }

  // The stored forms of what an item consists of.
  static inline constexpr std::array kText{StoredForm{StoredForm::Kind::text, "text", 0, nullptr}};
  static inline constexpr std::array kBytes{StoredForm{StoredForm::Kind::bytes, "bytes", 0, nullptr}};
  template <class M>
  struct Forms;
  template <class Stored>
  static constexpr StoredForm numberForm(void (*print)(std::string&, const std::byte*)) {
    constexpr std::size_t kIndex = std::bit_width(sizeof(Stored)) - 1;
    constexpr std::array kSigned{"i8", "i16", "i32", "i64"}, kUnsigned{"u8", "u16", "u32", "u64"},
        kReal{"", "", "f32", "f64"};
    const char* const type = std::is_floating_point_v<Stored> ? kReal[kIndex]
                             : std::is_signed_v<Stored>       ? kSigned[kIndex]
                                                              : kUnsigned[kIndex];
    return {StoredForm::Kind::number, type, sizeof(Stored), print};
  }

  // The next bytes, not yet reported; or null, with the fault noted and the stream at its end.
  const std::byte* take(const std::string& name, std::size_t size);
  void endsHere(const std::string& name, std::uint64_t size);
  // The field from there to the stream's position was read. Whether it is to be reported.
  bool isReported(std::uint64_t offset);
  // The same for the next bytes, after they were taken.
  bool advance(std::size_t size);
  void report(std::uint64_t size, const std::string& name, std::string value, std::span<const StoredForm> forms);
  void enterPath(const std::string& name, std::int64_t index);
  std::string pathOf(const std::string& name) const;

  codec::InStream& in_;
  MapSink sink_;
  std::string path_;  // ends with "." unless empty
  struct Outer {
    std::size_t pathLength;
    std::int64_t row;
  };
  std::vector<Outer> outer_;  // what a record is inside of
  std::int64_t row_ = 0;
  std::uint64_t lastOffset_ = 0;
  std::uint64_t walked_ = 0;
  std::optional<Fault> fault_;
  std::optional<Fault> tolerated_;
};

template <codec::Number T>
struct Mapper::Forms<T> {
  using Value = std::remove_const_t<T>;
  static void print(std::string& to, const std::byte* from) {
    Value value;
    codec::wire::Item<Value>::load(value, from);
    Mapper::print(to, value);
  }
  static inline constexpr std::array kAll{numberForm<Value>(print)};
};
template <class T, std::size_t N>
struct Mapper::Forms<T[N]> {
  static inline constexpr std::array kAll{std::is_same_v<std::remove_const_t<T>, char>
                                              ? StoredForm{StoredForm::Kind::text, "text", N, nullptr}
                                              : StoredForm{StoredForm::Kind::bytes, "bytes", N, nullptr}};
};
// Printed as the member that it becomes.
template <class Stored, class T>
struct Mapper::Forms<codec::As<Stored, T>> {
  static void print(std::string& to, const std::byte* from) {
    std::remove_const_t<T> member;
    codec::wire::Item<codec::As<Stored, std::remove_const_t<T>>>::load({member}, from);
    Mapper::print(to, member);
  }
  static inline constexpr std::array kAll{numberForm<Stored>(print)};
};
template <class T>
struct Mapper::Forms<codec::NonZero<T>> : Mapper::Forms<T> {};
template <class... T>
struct Mapper::Forms<codec::Block<T...>> {
  static inline constexpr std::array kAll{Forms<std::remove_const_t<T>>::kAll[0]...};
};

}  // namespace oldtorvio::explain
