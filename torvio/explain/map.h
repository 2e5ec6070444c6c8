// The map: reads like the reader and reports every field with its offset and value. The base of everything that
// explains a file.
#pragma once
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "src/frame/codec/reading.h"
#include "src/frame/codec/stream.h"

namespace oldtorvio::explain {

struct MapLine {
  std::uint64_t offset = 0;
  std::uint64_t size = 0;  // 0 for a remark
  std::string path;        // shapes.shapes[3].x
  std::string value;       // a remark has its text here
};

using MapSink = std::function<void(const MapLine&)>;

// Where a file breaks: the field that could not be read completely, or whose value is refused.
struct Fault {
  std::uint64_t offset = 0;
  std::string path;
  std::string reason;
};

// The names in the text of an FIELDS(...): "r.list.count, as<std::int16_t>(r.kind)" has "list.count" and
// "kind".
std::vector<std::string> fieldNames(std::string_view stringised);

void printValue(std::string& to, std::int64_t value);
void printValue(std::string& to, float value);
void printValue(std::string& to, double value);
void printText(std::string& to, const char* field, std::size_t width);
void printBytes(std::string& to, const std::uint8_t* bytes, std::size_t width);

class Mapper : public codec::Reading<Mapper> {
 public:
  Mapper(codec::InStream& in, int version, MapSink sink) : Reading(version), in_(in), sink_(std::move(sink)) {}

  const std::optional<Fault>& fault() const { return fault_; }
  // The first that the format tolerates.
  const std::optional<Fault>& tolerated() const { return tolerated_; }

  template <class Names, class... T>
  [[nodiscard]] bool fields(const codec::Fields<Names, T...>& f) {
    const std::vector<std::string> names = fieldNames(f.names());
    std::size_t i = 0;
    return std::apply([&](auto&... m) { return (item(names[i++], m) && ...); }, f.members);
  }
  template <class Names, class M>
  [[nodiscard]] bool fieldOf(const Names& names, std::size_t i, M& member) {
    return item(fieldNames(names())[i], member);
  }
  template <class Names, std::size_t N, class T>
  [[nodiscard]] bool numbers(const Names& names, T (&members)[N], std::size_t count) {
    return numberRow(fieldNames(names()).front(), members, count);
  }
  template <class Names, class M>
  [[nodiscard]] bool indexed(const Names& names, std::size_t i, M& member) {
    return item(fieldNames(names()).front() + '[' + std::to_string(i) + ']', member);
  }
  template <class Names, class M>
  [[nodiscard]] bool sizedField(const Names& names, M& field, std::size_t size) {
    const std::string name = fieldNames(names()).front();
    const std::byte* from = take(name, size);
    if (from == nullptr) return false;
    std::memcpy(std::data(field), from, size);
    std::string value;
    if constexpr (std::is_same_v<std::remove_cvref_t<decltype(field[0])>, char>)
      printText(value, std::data(field), size);
    else
      printBytes(value, std::data(field), size);
    report(size, name, std::move(value));
    return true;
  }
  bool text(std::string& to, std::uint64_t size);
  bool drop(std::size_t size);
  std::uint64_t left() const { return in_.left(); }
  bool has(std::size_t size) { return in_.run(size) != nullptr; }
  std::uint64_t position() const { return in_.position(); }

  template <class Names>
  void enter(const Names& names, std::int64_t index = -1, std::size_t list = 0) {
    enterPath(fieldNames(names())[list], index);
  }
  void leave();
  void atRow(std::int64_t row) { row_ = row; }
  template <class Names>
  void refused(const Names& names, std::int64_t value) {
    fault_ =
        Fault{lastOffset_, pathOf(fieldNames(names()).front()), "the value " + std::to_string(value) + " is refused"};
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
      std::string value;
      print(value, member);
      report(Item::kWidth, name, std::move(value));
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

  // The next bytes, not yet reported; or null, with the fault noted and the stream at its end.
  const std::byte* take(const std::string& name, std::size_t size);
  void endsHere(const std::string& name, std::uint64_t size);
  void report(std::uint64_t size, const std::string& name, std::string value);
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
  std::optional<Fault> fault_;
  std::optional<Fault> tolerated_;
};

}  // namespace oldtorvio::explain
