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
#include <unordered_map>
#include <vector>

#include "src/frame/codec/reading.h"
#include "src/frame/codec/stream.h"
#include "torvio/explain/offset_range.h"

namespace oldtorvio::explain {

// How a field is stored.
struct StoredForm {
  enum class Kind : std::uint8_t { number, text, bytes, reserved };

  Kind kind = Kind::reserved;
  const char* type = "reserved";  // "i16", "u32", "f64", "text", "bytes"
  std::uint32_t size = 0;         // 0: all bytes of the line
  // Prints a number from its stored bytes, as the map does; null for everything else.
  void (*print)(std::string& to, const std::byte* from) = nullptr;
};

struct MapLine {
  std::uint64_t offset = 0;
  std::uint64_t size = 0;  // 0 for a remark
  std::string path;        // shapes.shapes[3].x
  std::string value;       // the text of a remark
  // One, or several for a block, whose path ends with as many names: "origin.x, y". None for a remark.
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

// The path of the fault at the point where no load of a file of this version reads on.
inline constexpr std::string_view kRest = "rest";

// The names in the text of a FIELDS(...): those in "r.list.count, as<std::int16_t>(r.kind)" are "list.count"
// and "kind".
std::vector<std::string> fieldNames(std::string_view stringised);
// The same for one walk, which parses each text when it first needs a name in it.
class FieldNames {
 public:
  const std::vector<std::string>& of(const char* text) {
    std::vector<std::string>& names = known_[text];
    if (names.empty()) names = fieldNames(text);
    return names;
  }

 private:
  // By the addresses of the texts: each FIELDS(...) has one.
  std::unordered_map<const void*, std::vector<std::string>> known_;
};

void printValue(std::string& to, std::int64_t value);
void printValue(std::string& to, float value);
void printValue(std::string& to, double value);
void printText(std::string& to, const char* field, std::size_t width);
void printBytes(std::string& to, const std::uint8_t* bytes, std::size_t width);

class Mapper : public codec::Reading<Mapper> {
 public:
  // Without a sink the walk only finds the fault, which is faster. So it does outside the wanted bytes: only the fields
  // that overlap them are reported, and all remarks.
  Mapper(codec::InStream& in, int version, MapSink sink, OffsetRange wanted = {})
      : Reading(version), in_(in), sink_(std::move(sink)), wanted_(wanted), walked_(in.position()) {}

  const std::optional<Fault>& fault() const { return fault_; }
  // The first fault that the format tolerates.
  const std::optional<Fault>& tolerated() const { return tolerated_; }
  // The end of the last field. The stream is at its end after a walk that stops.
  std::uint64_t walked() const { return walked_; }

  template <class Names, class... T>
  [[nodiscard]] bool fields(const codec::Fields<Names, T...>& f) {
    std::size_t i = 0;
    return std::apply([&](auto&... m) { return (item({f.names(), i++}, m) && ...); }, f.members);
  }
  template <class Names, class M>
  [[nodiscard]] bool fieldOf(const Names& names, std::size_t i, M& member) {
    return item({names(), i}, member);
  }
  template <class Names, std::size_t N, class T>
  [[nodiscard]] bool numbers(const Names& names, T (&members)[N], std::size_t count) {
    return numberRow({names()}, members, count);
  }
  template <class Names, class M>
  [[nodiscard]] bool indexed(const Names& names, std::size_t i, M& member) {
    return item({names(), 0, static_cast<std::int64_t>(i)}, member);
  }
  template <class Names, class M>
  [[nodiscard]] bool sizedField(const Names& names, M& member, std::size_t size) {
    constexpr bool kIsText = std::is_same_v<std::remove_cvref_t<decltype(member[0])>, char>;
    const std::byte* const from = field({names()}, size, kIsText ? kText : kBytes);
    if (from != nullptr) std::memcpy(std::data(member), from, size);
    return from != nullptr;
  }
  bool text(std::string& to, std::uint64_t size);
  bool drop(std::size_t size);
  std::uint64_t left() const { return in_.left(); }
  bool has(std::size_t size) { return in_.run(size) != nullptr; }
  std::uint64_t position() const { return in_.position(); }

  template <class Names>
  void enter(const Names& names, std::int64_t index = -1, std::size_t list = 0) {
    levels_.push_back({{names(), list, index}, row_, 0});
  }
  void leave();
  void atRow(std::int64_t row) { row_ = row; }
  template <class Names>
  void refused(const Names& names, std::int64_t value) {
    fault_ = Fault{lastOffset_, pathOf({names()}), "the value " + std::to_string(value) + " is refused"};
  }
  void refusedHere();
  void forgiven();
  // Reports a separate line that belongs to no byte.
  void remark(std::string text);

 private:
  // A field or a list in the text of a FIELDS(...), or an entry of it.
  struct Name {
    const char* names;
    std::size_t at = 0;
    std::int64_t index = -1;
  };

  template <class M>
  bool item(const Name& name, M& member) {
    using Item = codec::wire::ItemOf<M>;
    if constexpr (Item::kIsRow) {
      return numberRow(name, member, std::extent_v<M>);
    } else {
      const std::byte* const from = field(name, Item::kWidth, Forms<std::remove_cvref_t<M>>::kAll);
      if (from != nullptr) Item::load(member, from);
      return from != nullptr;
    }
  }
  template <class T>
  bool numberRow(Name name, T* members, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      name.index = static_cast<std::int64_t>(i);
      if (!item(name, members[i])) return false;
    }
    return true;
  }

  template <codec::Number T>
  static void print(std::string& to, T value) {
    if constexpr (std::is_floating_point_v<T>)
      printValue(to, value);
    else
      printValue(to, static_cast<std::int64_t>(value));
  }

  // The stored forms of the parts of an item.
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

  // Reads the next bytes, a field of these forms, and reports them. Null if the file has fewer.
  const std::byte* field(const Name& name, std::size_t size, std::span<const StoredForm> forms);
  void endsHere(const Name& name, std::uint64_t size);
  // Called when the field from that offset to the stream's position was read. Returns whether to report it.
  bool isReported(std::uint64_t offset);
  void report(std::uint64_t size, const Name& name, std::string value, std::span<const StoredForm> forms);
  // The path of what the walk is inside, with a "." at the end; empty for the file.
  const std::string& path();
  std::string pathOf(const Name& name);
  void appendName(std::string& path, const Name& name, std::int64_t row);

  codec::InStream& in_;
  MapSink sink_;
  OffsetRange wanted_;
  struct Level {
    Name name;
    std::int64_t row;      // of the enclosing record or list
    std::size_t pathSize;  // with its own name, once that is part of path_
  };
  // The records and lists that the walk is inside. Most walks need few paths, so each is made when it is needed:
  // path_ has the names of the first named_ of them.
  std::vector<Level> levels_;
  std::string path_;
  FieldNames names_;
  std::size_t named_ = 0;
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
