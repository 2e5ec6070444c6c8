#include "torvio/compare/stored_members.h"

#include <cstdint>
#include <memory>
#include <tuple>
#include <type_traits>
#include <utility>

#include "src/file_records.h"
#include "torvio/explain/map.h"
#include "torvio/values/all_members.h"

namespace oldtorvio::compare {
namespace {

using Paths = std::set<std::string, std::less<>>;

// Walks a layout without a file: what the version stores, under all conditions on values. Whatever it walks into is
// a record of its own that nothing changes.
class Walker : public codec::RecordWalker<Walker> {
 public:
  Walker(int version, Paths& paths) : RecordWalker(version), paths_(paths) {}

  static constexpr codec::Stop stop() { return codec::Stop::none; }

  template <class Names, class... T>
  [[nodiscard]] bool fields(const codec::Fields<Names, T...>& f) {
    add(f.names());
    return true;
  }
  template <class... D>
  static void absent(const auto&, const codec::Otherwise<D...>&) {}
  template <class Names, codec::Test kTest, std::size_t kCount, class X>
  [[nodiscard]] bool when(const codec::Condition<Names, kTest, kCount>&, const X& x) {
    return nested(x);
  }
  template <class X>
  [[nodiscard]] bool when(const codec::PlaceCondition& condition, const X& x) {
    return !condition.holds || nested(x);
  }

  template <class X>
  [[nodiscard]] bool leading(std::int64_t, const X& x) {
    return fields(x);
  }
  template <class Stored = void, class X>
  [[nodiscard]] bool slice(const X& x, std::size_t, std::size_t) {
    return fields(x);
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
  [[nodiscard]] static bool require(const codec::PlaceCondition& condition) { return condition.holds; }
  template <class R>
  static R& unchanged(R& record) {
    return record;
  }
  template <class R, class Fn>
  [[nodiscard]] bool beforeWrite(const R&, const char*, const Fn&) {
    return true;
  }
  template <class Read, class Written>
  [[nodiscard]] bool differs(const Read& read, const Written&) {
    return nested(read);
  }
  template <class Read>
  [[nodiscard]] bool onlyRead(const Read& read) {
    return read(*this);
  }
  template <class T>
  constexpr T either(T forReaders, T) const {
    return forReaders;
  }
  static constexpr bool has(std::size_t) { return true; }

  template <class R, class... A>
  [[nodiscard]] bool walk(R& record, const A&... more) {
    return codec::Layout<R>::describe(*this, record, more...);
  }
  template <class X, class... A>
  [[nodiscard]] bool record(const X& x, const A&... more) {
    // What follows may depend on sizes in it, but not on whether all of it is stored.
    inside(add(x.names()), [&] { walkFresh<std::remove_cvref_t<decltype(x.only())>>(more...); });
    return true;
  }
  template <class V>
  std::int32_t countOf(const V&) const {
    return 0;
  }
  template <class X, class Rule, class... A>
  [[nodiscard]] bool list(const X& x, Rule, const A&... more) {
    std::size_t i = 0;
    const std::vector<std::string> names = add(x.names());
    std::apply([&](auto&... lists) { (elements(names[i++], lists, more...), ...); }, x.members);
    return true;
  }
  template <class X, class Fn>
  [[nodiscard]] bool element(const X& x, std::size_t, const Fn& chain) {
    inside(add(x.names()), [&] { (void)chain(); });
    return true;
  }
  template <class Fn>
  [[nodiscard]] bool rows(std::int64_t, const Fn& row) {
    return row(std::size_t{0});
  }
  template <class X, class R, class M>
  [[nodiscard]] bool trailer(const X& x, M R::*member) {
    inside(add(x.names()), [&] {
      const R fresh{};
      values::Members<R>::of(fresh, [&](const values::MemberInfo& info, const auto& one) {
        if (static_cast<const void*>(&one) == static_cast<const void*>(&(fresh.*member))) addPath(info.name);
      });
    });
    return true;
  }

  template <class R, class... A>
  void walkFresh(const A&... more) {
    const auto fresh = std::make_unique<R>();
    (void)walk(*fresh, more...);
  }

 private:
  // "p.groups[i].shapes" is "groups.shapes".
  static std::string withoutPositions(std::string_view name) {
    std::string all;
    int depth = 0;
    for (const char c : name) {
      if (c == '[') ++depth;
      if (depth == 0) all += c;
      if (c == ']') --depth;
    }
    return all;
  }
  void addPath(std::string_view name) {
    std::string path = prefix_;
    path += name;
    // With what holds it.
    for (std::size_t end = path.find('.', prefix_.size()); end != std::string::npos; end = path.find('.', end + 1))
      paths_.emplace(path, 0, end);
    paths_.insert(std::move(path));
  }
  // Returns the names, of a block each with a name of its own.
  std::vector<std::string> add(std::string_view stringised) {
    std::vector<std::string> names;
    for (const std::string& block : explain::fieldNames(stringised))
      for (std::size_t from = 0; from <= block.size();) {
        const std::size_t end = std::min(block.find(", ", from), block.size());
        names.push_back(withoutPositions(std::string_view(block).substr(from, end - from)));
        addPath(names.back());
        from = end + 2;
      }
    return names;
  }

  template <class Fn>
  void inside(const std::vector<std::string>& names, const Fn& chain) {
    const std::string outer = prefix_;
    prefix_ += names.front() + '.';
    chain();
    prefix_ = outer;
  }
  template <class L, class... A>
  void elements(const std::string& name, L& list, const A&... more) {
    if constexpr (requires { list.row(0); }) {
      inside({name}, [&] { walkFresh<typename std::remove_cvref_t<L>::Row>(); });
    } else {
      using Element = typename std::remove_cvref_t<L>::value_type;
      if constexpr (values::HasMembers<Element>)
        inside({name}, [&] {
          if constexpr (requires(Element & one) { codec::Layout<Element>::describe(*this, one, more...); })
            walkFresh<Element>(more...);
          else
            walkFresh<Element>();
        });
    }
  }

  Paths& paths_;
  std::string prefix_;  // ends with "." unless empty
};

}  // namespace

StoredMembers::StoredMembers(frame::FileKind kind, int version) {
  withFileRecord(kind, [&](auto file) {
    const auto record = std::make_unique<typename decltype(file)::Record>();
    // The oldest layouts refer to shapes that they have read.
    if constexpr (decltype(file)::kKind == frame::FileKind::part) record->shapes.shapes.resize(1);
    Walker walker(version, paths_);
    if (!startsWithTable(kind, version)) {
      (void)file.walk(walker, *record);
    } else if constexpr (decltype(file)::kKind == frame::FileKind::material) {
      (void)walker.record(FIELDS(record->params));
    }
    // The word that every file begins with.
    if constexpr (requires { record->version; }) paths_.insert("version");
    if constexpr (decltype(file)::kKind == frame::FileKind::specialTool) paths_.insert("tool.fileVersion");
  });
}

}  // namespace oldtorvio::compare
