#include "torvio/compare/stored_members.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "src/file_records.h"
#include "torvio/explain/layout_walker.h"
#include "torvio/explain/map.h"
#include "torvio/values/renamed_fields.h"
#include "torvio/values/types.h"

namespace oldtorvio::compare {
namespace {

using values::Form;
using values::Type;

template <class T>
inline constexpr bool kIsBlock = false;
template <class... T>
inline constexpr bool kIsBlock<codec::Block<T...>> = true;
template <class T>
inline constexpr bool kIsWrapped = false;
template <class Stored, class T>
inline constexpr bool kIsWrapped<codec::As<Stored, T>> = true;
template <class T>
inline constexpr bool kIsWrapped<codec::NonZero<T>> = true;

// Walks a layout without a file: what the version stores, under all conditions on values. Members are found by their
// addresses in the current record, or by name in records that only layouts know.
class Walker : public codec::RecordWalker<Walker>, public explain::LayoutWalker<Walker> {
 public:
  Walker(int version, StoredMembers::Paths& paths) : RecordWalker(version), paths_(paths) {}

  // Walks a record with the members of that type; null if the type is not known.
  template <class R, class Walk>
  void inRecord(const R& record, const Type* type, const Walk& walk) {
    const bool isKnown = type != nullptr && type->form == Form::record && type->size == sizeof(R);
    const Place outer = std::exchange(
        place_, {reinterpret_cast<const std::byte*>(&record), isKnown ? type : nullptr, false, place_.prefix});
    walk();
    place_ = outer;
  }

  using LayoutWalker::clear;

  template <class Names, class... T>
  [[nodiscard]] bool fields(const codec::Fields<Names, T...>& f) {
    const std::vector<std::string> names = explain::fieldNames(f.names());
    std::size_t i = 0;
    std::apply([&](auto&... members) { (addMember(names[i++], members), ...); }, f.members);
    return true;
  }
  template <class... D>
  static void absent(const auto&, const codec::Otherwise<D...>&) {}
  template <class Names, codec::Test kTest, std::size_t kCount, class X>
  [[nodiscard]] bool when(const codec::Condition<Names, kTest, kCount>&, const X& x) {
    return nested(x);
  }
  template <class X>
  [[nodiscard]] bool when(const codec::CustomCondition& condition, const X& x) {
    return !condition.holds || nested(x);
  }

  // Several numbers: that many of them. An array: as many as its owner counts.
  template <class X>
  [[nodiscard]] bool leading(std::int64_t count, const X& x) {
    const std::vector<std::string> names = explain::fieldNames(x.names());
    std::int64_t i = 0;
    const auto add = [&](auto& member) {
      if (names.size() == 1 || i < count) addMember(names[static_cast<std::size_t>(i)], member);
      ++i;
    };
    std::apply([&](auto&... members) { (add(members), ...); }, x.members);
    return true;
  }
  template <class Stored = void, class X>
  [[nodiscard]] bool slice(const X& x, std::size_t first, std::size_t last) {
    for (std::size_t i = first; i <= last; ++i) addMember(explain::fieldNames(x.names()).front(), x.only()[i]);
    return true;
  }
  template <class X>
  [[nodiscard]] bool sized(const X& x, std::int64_t) {
    return fields(x);
  }
  template <class X>
  [[nodiscard]] bool lengthText(const X& x, std::int64_t = 0) {
    return fields(x);
  }
  template <std::size_t Width, class X>
  [[nodiscard]] bool textItem(const X& x) {
    return fields(x);
  }
  [[nodiscard]] static bool reserved(std::size_t) { return true; }
  template <class Fn>
  [[nodiscard]] bool padded(std::size_t, const Fn& chain) {
    return chain();
  }

  template <class Names, codec::Test kTest, std::size_t kCount>
  [[nodiscard]] bool require(const codec::Condition<Names, kTest, kCount>&) {
    return true;
  }
  [[nodiscard]] static bool require(const codec::CustomCondition& condition) { return condition.holds; }

  template <class R, class... A>
  [[nodiscard]] bool walk(R& record, const A&... more) {
    return codec::Layout<R>::describe(*this, record, more...);
  }
  template <class X, class... A>
  [[nodiscard]] bool record(const X& x, const A&... more) {
    // What follows may depend on sizes in the record, but not on whether all of it is stored.
    walkInner<std::remove_cvref_t<decltype(x.only())>>(addMember(explain::fieldNames(x.names()).front(), x.only()),
                                                       more...);
    return true;
  }
  template <class X, class Rule, class... A>
  [[nodiscard]] bool list(const X& x, Rule, const A&... more) {
    const std::vector<std::string> names = explain::fieldNames(x.names());
    std::size_t i = 0;
    std::apply([&](auto&... lists) { (elements(addMember(names[i++], lists), lists, more...), ...); }, x.members);
    return true;
  }
  template <class X, class Fn>
  [[nodiscard]] bool element(const X& x, std::size_t, const Fn& chain) {
    const Member list = addMember(explain::fieldNames(x.names()).front(), x.only());
    // The fields of the element are read into a separate record.
    const Place outer = std::exchange(place_, {nullptr, nullptr, false, list.path + '.'});
    (void)chain();
    place_ = outer;
    return true;
  }
  // In a new record a stored count is 0: a row then stands for any entry of the arrays.
  template <class Fn>
  [[nodiscard]] bool rows(std::int64_t count, const Fn& row) {
    for (std::int64_t i = 0; i < count; ++i)
      if (!row(static_cast<std::size_t>(i))) return false;
    if (count > 0) return true;
    const bool outer = std::exchange(place_.isRow, true);
    const bool ok = row(std::size_t{0});
    place_.isRow = outer;
    return ok;
  }
  template <class X, class R, class M>
  [[nodiscard]] bool trailer(const X& x, M R::*member) {
    const Member list = addMember(explain::fieldNames(x.names()).front(), x.only());
    const R fresh{};
    if (list.type == nullptr) return true;
    const Place outer =
        std::exchange(place_, {reinterpret_cast<const std::byte*>(&fresh), list.type->element, false, list.path + '.'});
    addMember({}, fresh.*member);
    place_ = outer;
    return true;
  }

 private:
  // The current record.
  struct Place {
    const std::byte* record = nullptr;
    const Type* type = nullptr;
    bool isRow = false;  // any row of its arrays
    std::string prefix;  // of its paths, ends with "." unless empty
  };
  struct Member {
    std::string path;
    const Type* type = nullptr;  // null if it is not in a record of a known type
  };

  // Notes that a member is stored.
  template <class M>
  Member addMember(const std::string& name, M& member) {
    using Plain = std::remove_cvref_t<M>;
    if constexpr (kIsWrapped<Plain>) {
      return addMember(name, member.member);
    } else if constexpr (kIsBlock<Plain>) {
      std::size_t from = 0;
      const auto add = [&](auto& one) {
        const std::size_t end = std::min(name.find(", ", from), name.size());
        addMember(name.substr(std::min(from, name.size()), end - from), one);
        from = end + 2;
      };
      std::apply([&](auto&... members) { (add(members), ...); }, member.members);
      return {};
    } else {
      const auto* const at = reinterpret_cast<const std::byte*>(&member);
      if (place_.type != nullptr && at >= place_.record && at < place_.record + place_.type->size)
        return addFound(static_cast<std::size_t>(at - place_.record), sizeof member);
      return addNamed(name);
    }
  }
  // A variable of the layout itself, which mostly has the name of the member that it becomes.
  Member addNamed(const std::string& name) {
    std::string path = place_.prefix + name.substr(0, name.find('['));
    paths_.try_emplace(path, std::nullopt);
    return {std::move(path), nullptr};
  }
  Member addFound(std::size_t offset, std::size_t size) {
    Member member{place_.prefix, place_.type};
    member.path.resize(member.path.size() - (member.path.empty() ? 0 : 1));
    while (member.type->form == Form::record && (member.type->size != size || member.type == place_.type)) {
      const auto& members = member.type->members;
      const auto inner = std::find_if(members.begin(), members.end(), [&](const values::TypeMember& one) {
        return offset >= one.offset && offset < one.offset + one.type->size;
      });
      if (inner == members.end()) return member;
      if (member.type != place_.type) paths_.try_emplace(member.path);
      offset -= inner->offset;
      member.path.append(member.path.empty() ? "" : ".").append(inner->name);
      member.type = inner->type;
    }
    const auto [stored, isFirst] = paths_.try_emplace(member.path);
    StoredMembers::Entries& entries = stored->second;
    const bool isEntry = member.type->form == Form::array && member.type->size != size;
    if (isEntry && isFirst) entries.emplace();
    if (!isEntry || place_.isRow)
      entries.reset();
    else if (entries)
      entries->insert(offset / member.type->element->size);
    if (isEntry) member.type = member.type->element;
    return member;
  }

  template <class R, class... A>
  void walkInner(const Member& member, const A&... more) {
    const Type* type = member.type;
    if (type != nullptr && type->element != nullptr) type = type->element;
    const auto fresh = std::make_unique<R>();
    const std::string outer = std::exchange(place_.prefix, member.path + '.');
    inRecord(*fresh, type, [&] { (void)walk(*fresh, more...); });
    place_.prefix = outer;
  }
  template <class L, class... A>
  void elements(const Member& member, L& list, const A&... more) {
    if constexpr (requires { list.row(0); }) {
      walkInner<typename std::remove_cvref_t<L>::Row>(member);
    } else {
      using Element = typename std::remove_cvref_t<L>::value_type;
      if constexpr (std::is_class_v<Element>) {
        if constexpr (requires(Element & one) { codec::Layout<Element>::describe(*this, one, more...); })
          walkInner<Element>(member, more...);
        else if constexpr (requires(Element & one) { codec::Layout<Element>::describe(*this, one); })
          walkInner<Element>(member);
      }
    }
  }

  StoredMembers::Paths& paths_;
  Place place_;
};

}  // namespace

StoredMembers::StoredMembers(frame::FileKind kind, int version) {
  withFileRecord(kind, [&](auto file) {
    const auto record = std::make_unique<typename decltype(file)::Record>();
    // The oldest layouts refer to shapes that they have read.
    if constexpr (decltype(file)::kKind == frame::FileKind::part) record->shapes.shapes.resize(1);
    Walker walker(version, paths_);
    walker.inRecord(*record, &values::typeOfRecord(kind), [&] { (void)file.walk(walker, *record); });
    // The layout keeps this in a variable of another name until the record has been read.
    if (has(values::kMachinePath.field)) paths_[std::string(values::kMachinePath.member)];
    if (has("patterns.bindings")) nameBindings("patterns.");
    if (has("partList.parts.patterns.bindings")) nameBindings("partList.parts.patterns.");
    if (has("parts.patterns.bindings")) nameBindings("parts.patterns.");
    // The version word, with which every file begins.
    if constexpr (requires { record->version; }) paths_["version"];
    if constexpr (decltype(file)::kKind == frame::FileKind::specialTool) paths_["tool.fileVersion"];
  });
}

// The columns of a pattern, which files store row by row.
void StoredMembers::nameBindings(const std::string& pattern) {
  for (const auto& [field, member] : values::kBindColumns)
    if (has(pattern + "bindings." + std::string(field))) paths_[pattern + std::string(member)];
}

bool StoredMembers::hasEntry(std::string_view path, std::size_t entry) const {
  const auto found = paths_.find(path);
  return found != paths_.end() && (!found->second || found->second->contains(entry));
}

}  // namespace oldtorvio::compare
