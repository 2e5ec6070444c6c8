#include "torvio/explain/read_members.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <memory>
#include <string>
#include <tuple>
#include <type_traits>

#include "src/file_records.h"
#include "src/frame/codec/reader.h"
#include "src/frame/codec/reading.h"
#include "torvio/explain/map.h"

namespace oldtorvio::explain {
namespace {

using MemberNames = std::set<std::string, std::less<>>;

// Reads like the reader and notes the members that it reads, but not those of list elements.
class NameReader : public codec::Reading<NameReader> {
 public:
  NameReader(codec::InStream& in, int version, MemberNames& names) : Reading(version), in_(in), names_(names) {}

  // ---- what a walker supplies ----

  template <class Names, class... T>
  [[nodiscard]] bool fields(const codec::Fields<Names, T...>& f) {
    std::size_t i = 0;
    return std::apply([&](auto&... m) { return (fieldOf(f.names, i++, m) && ...); }, f.members);
  }
  template <class Names, class M>
  [[nodiscard]] bool fieldOf(const Names& names, std::size_t i, M& member) {
    return item(member) && note(names(), i);
  }
  template <class Names, class M>
  [[nodiscard]] bool indexed(const Names& names, std::size_t, M& member) {
    return fieldOf(names, 0, member);
  }
  template <class Names, std::size_t N, class T>
  [[nodiscard]] bool numbers(const Names& names, T (&members)[N], std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
      if (!indexed(names, i, members[i])) return false;
    return true;
  }
  template <class Names, class M>
  [[nodiscard]] bool sizedField(const Names& names, M& field, std::size_t size) {
    const std::byte* from = take(size);
    if (from == nullptr) return false;
    std::memcpy(std::data(field), from, size);
    return note(names(), 0);
  }
  bool text(std::string& to, std::uint64_t size) { return in_.append(to, size) ? true : fallShort(); }
  bool drop(std::size_t size) { return in_.skip(size) ? true : fallShort(); }
  std::uint64_t left() const { return in_.left(); }
  bool has(std::size_t size) { return in_.run(size) != nullptr; }
  std::uint64_t position() const { return in_.position(); }

  // ---- where the walk is ----

  template <class Names>
  void enter(const Names& names, std::int64_t index = -1, std::size_t list = 0) {
    enterList(names(), list, index);
  }
  void leave() {
    if (elements_ > 0) {
      --elements_;
      return;
    }
    path_.resize(lengths_.back());
    lengths_.pop_back();
  }

 private:
  template <class M>
  bool item(M& member) {
    using Item = codec::wire::ItemOf<M>;
    if constexpr (Item::kIsRow) {
      return std::all_of(std::begin(member), std::end(member), [this](auto& number) { return this->item(number); });
    } else {
      const std::byte* from = take(Item::kWidth);
      if (from == nullptr) return false;
      Item::load(member, from);
      return true;
    }
  }
  const std::byte* take(std::size_t size) {
    const std::byte* from = in_.run(size);
    if (from == nullptr)
      (void)fallShort();
    else
      in_.consume(size);
    return from;
  }
  bool fallShort() {
    in_.toEnd();
    return fellShort();
  }

  void enterList(const char* names, std::size_t list, std::int64_t index) {
    if (elements_ > 0) {
      ++elements_;
      return;
    }
    const std::string& name = fieldNames_.of(names)[list];
    // A list or array of which only elements are stored is read if it has one: "slots[i]".
    if (index >= 0 || name.ends_with(']')) {
      if (index <= 0) noteAll(name);
      ++elements_;
      return;
    }
    lengths_.push_back(path_.size());
    path_ += name;
    path_ += '.';
  }

  // Always true, so that a field that has been read can end with it.
  bool note(const char* names, std::size_t i) {
    if (elements_ == 0) noteAll(fieldNames_.of(names)[i]);
    return true;
  }
  // A block has several names: "sizeX, sizeY".
  void noteAll(std::string_view names) {
    while (!names.empty()) {
      const std::size_t end = std::min(names.find(','), names.size());
      noteOne(names.substr(0, std::min(names.find('['), end)));
      names.remove_prefix(end);
      names.remove_prefix(std::min(names.find_first_not_of(", "), names.size()));
    }
  }
  // Notes a member and the records that it belongs to.
  void noteOne(std::string_view name) {
    const std::string path = path_ + std::string(name);
    for (std::size_t end = path.find('.');; end = path.find('.', end + 1)) {
      const std::string_view member = std::string_view(path).substr(0, end);
      if (names_.find(member) == names_.end()) names_.emplace(member);
      if (end == std::string::npos) return;
    }
  }

  codec::InStream& in_;
  MemberNames& names_;
  FieldNames fieldNames_;
  std::string path_;  // ends with "." unless empty
  std::vector<std::size_t> lengths_;
  std::size_t elements_ = 0;  // how many elements, and records in elements, the walk is inside
};

}  // namespace

ReadMembers::ReadMembers(std::span<const std::byte> bytes, FileKind kind) : isComplete_(false) {
  std::int16_t version = 0;
  codec::InStream head(bytes);
  if (!codec::readUnversioned(head, version)) return;
  names_.emplace("version");
  if (!frame::infoOf(kind).accepts(version)) return;
  codec::InStream stream(bytes.subspan(startsWithTable(kind, version) ? 0 : sizeof version));
  NameReader io(stream, version, names_);
  withFileRecord(kind, [&](auto file) {
    const auto record = std::make_unique<typename decltype(file)::Record>();
    (void)file.walk(io, *record);
  });
}

}  // namespace oldtorvio::explain
