// The walker that describes a stored form in the language of Kaitai Struct (.ksy). Like FormatPrinter it walks a record
// once, whatever the conditions. Sizes and counts get unique values, by which they are recognised where they are used;
// conditions, list rules and places are data.
#pragma once
#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "src/frame/codec/describe.h"
#include "src/frame/versions.h"
#include "src/part/part_layout.h"
#include "torvio/explain/layout_walker.h"
#include "torvio/explain/map.h"
#include "torvio/explain/record_names.h"

namespace oldtorvio::report {

using explain::fieldNames;
using explain::kTableOf;

class KaitaiPrinter : public explain::LayoutWalker<KaitaiPrinter> {
 public:
  KaitaiPrinter();

  // What cannot be described, and why. A description with problems must not be used.
  const std::vector<std::string>& problems() const { return problems_; }
  // "meta" and what follows. `id` is the name of the type, `doc` begins its description.
  std::string ksy(const std::string& id, const std::string& title, const std::string& doc) const;

  // Adds the definition of an instance of the root, which expressions can use, such as "starts_with_table".
  void addInstance(const std::string& definition) { instances_.push_back(definition); }
  // The fields that the next walk() describes exist only under this condition.
  void bodyCondition(const std::string& condition) { bodyCondition_ = condition; }
  // The version word, the first field of the file.
  void versionWord(const std::string& valid, const std::string& condition = {});

  // ---- the verbs ----

  static constexpr int version() { return frame::VersionSet::kHighest; }

  template <class Names, class... T>
  [[nodiscard]] bool fields(const codec::Fields<Names, T...>& f) {
    const std::vector<std::string> names = fieldNames(f.names());
    std::size_t i = 0;
    std::apply([&](auto&... m) { (item(names[i++], m), ...); }, f.members);
    return true;
  }
  template <class X>
  [[nodiscard]] bool since(int first, const X& x) {
    return under(std::string(kVersion) + " >= " + std::to_string(first), x);
  }
  template <class X, class... D>
  [[nodiscard]] bool since(int first, const X& x, const codec::Otherwise<D...>&) {
    return since(first, x);
  }
  template <class X>
  [[nodiscard]] bool below(int end, const X& x) {
    return under(std::string(kVersion) + " < " + std::to_string(end), x);
  }
  template <class X>
  [[nodiscard]] bool between(int first, int last, const X& x) {
    const std::string version(kVersion);
    return under(version + " >= " + std::to_string(first) + " and " + version + " <= " + std::to_string(last), x);
  }
  template <class Names, codec::Test kTest, std::size_t kCount, class X>
  [[nodiscard]] bool when(const codec::Condition<Names, kTest, kCount>& condition, const X& x) {
    return under(comparison(condition), x);
  }
  template <class X>
  [[nodiscard]] bool when(const codec::CustomCondition& condition, const X& x) {
    return !condition.holds || nested(x);
  }

  template <class X>
  [[nodiscard]] bool leading(std::int64_t count, const X& x) {
    const std::vector<std::string> names = fieldNames(x.names());
    using First = std::remove_reference_t<std::tuple_element_t<0, decltype(x.members)>>;
    if constexpr (std::is_array_v<First>) {
      addRow<std::remove_extent_t<First>>(names[0], expressionOf(count), 0);
      return true;
    } else {
      std::size_t i = 0;
      const auto one = [&](auto& member) {
        const std::string isThere = expressionOf(count) + " > " + std::to_string(i);
        return under(isThere, [&] {
          item(names[i], member);
          ++i;
          return true;
        });
      };
      return std::apply([&](auto&... m) { return (one(m) && ...); }, x.members);
    }
  }
  template <class Stored = void, class X>
  [[nodiscard]] bool slice(const X& x, std::size_t first, std::size_t last) {
    using One = std::remove_reference_t<decltype(x.only()[0])>;
    using Item = std::conditional_t<std::is_void_v<Stored>, One, Stored>;
    addRow<Item>(fieldNames(x.names())[0], std::to_string(last - first + 1), first);
    return true;
  }
  template <class X>
  [[nodiscard]] bool sized(const X& x, std::int64_t size) {
    using Byte = std::remove_cvref_t<decltype(x.only()[0])>;
    addSized(fieldNames(x.names())[0], expressionOf(size), std::is_same_v<Byte, char>);
    return true;
  }
  template <class X>
  [[nodiscard]] bool lengthText(const X& x) {
    addLengthText(fieldNames(x.names())[0], -1);
    return true;
  }
  template <class X>
  [[nodiscard]] bool lengthText(const X& x, std::int64_t longest) {
    addLengthText(fieldNames(x.names())[0], longest);
    return true;
  }
  template <std::size_t Width, class X>
  [[nodiscard]] bool textItem(const X& x) {
    addSized(fieldNames(x.names())[0], std::to_string(Width), true);
    return true;
  }
  [[nodiscard]] bool reserved(std::size_t size);
  template <class Fn>
  [[nodiscard]] bool padded(std::size_t size, const Fn& chain) {
    const std::size_t group = enter("padded", "", Node::inner);
    attributes_[group].size = std::to_string(size);
    const bool ok = chain();
    addFill();
    leave();
    return ok;
  }

  template <class Names, codec::Test kTest, std::size_t kCount>
  [[nodiscard]] bool require(const codec::Condition<Names, kTest, kCount>& condition) {
    addRule(fieldNames(condition.names()).front(), condition.value, comparison(condition));
    return true;
  }
  [[nodiscard]] bool require(const codec::CustomCondition& condition) {
    if (!condition.holds) notes_.insert(std::string("Refused by a load: ") + condition.text + ".");
    return true;
  }
  template <class R, class Fn>
  [[nodiscard]] bool afterRead(R&, const char* what, const Fn&) {
    addDoc(std::string("After a load: ") + what + ".");
    return true;
  }
  // Sizes need the values that it moves.
  template <class R, class Fn>
  [[nodiscard]] bool keep(R& record, const Fn& fn) {
    fn(record);
    return true;
  }
  template <class X>
  [[nodiscard]] bool optionalTail(const X& x) {
    notes_.insert(
        "An optional tail is read unless the file ends before it. A load also accepts a file that ends inside one, and "
        "then reads no further field of the record.");
    return under("not _io.eof", x);
  }
  template <class X>
  [[nodiscard]] bool endOnFailure(const X& x) {
    notes_.insert("A shape program that a load cannot read completely ends its record without an error.");
    return nested(x);
  }
  template <class X>
  [[nodiscard]] bool continueOnFailure(const X& x) {
    notes_.insert("There are records that a load may fail to read and then goes on after them; see the format tables.");
    return nested(x);
  }

  // The body of a file.
  template <class R, class... A>
  [[nodiscard]] bool walk(R& record, const A&... more) {
    if (bodyCondition_.empty()) return codec::Layout<R>::describe(*this, record, more...);
    return under(bodyCondition_, [&] { return codec::Layout<R>::describe(*this, record, more...); });
  }
  template <class X, class... A>
  [[nodiscard]] bool record(const X& x, const A&... more) {
    using R = std::remove_cvref_t<decltype(x.only())>;
    const std::string name = fieldNames(x.names())[0];
    enter(name, typeName<R>(name), Node::record);
    attributes_[nodes_[node_].attribute].origin = name;
    (addParameter(more), ...);
    const bool ok = codec::Layout<R>::describe(*this, x.only(), more...);
    leave();
    return ok;
  }
  template <class X, class Rule, class... A>
  [[nodiscard]] bool list(const X& x, Rule rule, const A&... more) {
    using codec::CountFrom, codec::Failing;
    const std::vector<std::string> names = fieldNames(x.names());
    std::string count = expressionOf(rule.count);
    if constexpr (Rule::kCount == CountFrom::file) {
      count = token(addNumber<std::int32_t>(names[0] + "Count"));
      attributes_.back().origin = names[0] + ".count";
    }
    if constexpr (Rule::kFailing == Failing::inverted) {
      notes_.insert("A complete element ends the list " + names[0] +
                    " and is dropped, whatever its count: so there is one. A load goes on after elements that are not "
                    "complete.");
      count = "(" + count + " > 0 ? 1 : 0)";
    }
    if constexpr (Rule::kFailing == Failing::kept)
      notes_.insert("Elements of " + names[0] + " that are cut off are kept by a load.");
    lists_[static_cast<const void*>(&std::get<0>(x.members))] = count;
    if constexpr (std::tuple_size_v<decltype(x.members)> == 2) {
      return rowsOf(count, [&] { return element<0>(x, names, "") && element<1>(x, names, "", more...); });
    } else if constexpr (requires { x.only().row(0); }) {
      using Row = typename std::remove_cvref_t<decltype(x.only())>::Row;
      return elementOf<Row>(names[0], count);
    } else {
      return element<0>(x, names, count, more...);
    }
  }
  template <class X, class Fn>
  [[nodiscard]] bool element(const X& x, std::size_t, const Fn&) {
    problems_.push_back("the elements of " + fieldNames(x.names())[0] + " are described one by one");
    return true;
  }
  template <class Fn>
  [[nodiscard]] bool rows(std::int64_t count, const Fn& row) {
    return rowsOf(expressionOf(count), [&] { return row(std::size_t{0}); });
  }
  template <class X, class R, class M>
  [[nodiscard]] bool trailer(const X& x, M R::*) {
    const auto found = lists_.find(static_cast<const void*>(&x.only()));
    // A list that is not stored has no elements.
    if (found == lists_.end()) return true;
    const std::string name = fieldNames(x.names())[0];
    addRow<M>(name + "Trailer", found->second, 0);
    attributes_.back().origin = name + "[].trailerValue";
    return true;
  }

 private:
  // In expressions: the version of the file, and "{7}" the attribute with that number. Both are written differently in
  // different types, so they are replaced when a type is printed.
  static constexpr const char* kVersion = "{v}";
  static std::string token(std::size_t attribute) { return "{" + std::to_string(attribute) + "}"; }

  struct Attribute {
    std::size_t node = 0;  // the type that it is in
    std::string id;
    std::string origin;  // its name in a map; "[]" is its index there, "[i]" that of the row that it is in
    std::string type;
    std::string size;
    std::string repeat;
    std::size_t firstIndex = 0;
    bool toEnd = false;
    bool isParameter = false;
    std::string argument;                 // of a parameter, in the enclosing type
    std::vector<std::string> conditions;  // in its type
    std::vector<std::string> reachedBy;   // all conditions, including those of enclosing types
    std::vector<std::string> valid;
    std::size_t child = 0;  // a type, or 0
  };
  struct Node {
    // A record can be used in other types; an inner type is a part of the enclosing one, and may use its fields.
    enum Kind : std::uint8_t { record, inner } kind = record;
    std::string name;
    std::size_t outer = 0;      // itself for the root
    std::size_t attribute = 0;  // that has this type
    std::size_t conditionsFrom = 0;
    std::vector<std::size_t> attributes;
    std::vector<std::string> docs;
    // What the values represented before they became parameters.
    std::vector<std::tuple<std::int64_t, std::string, std::size_t>> outside;
    std::set<std::string> ids;  // without underscores and capitals, as other languages write them
  };
  struct Printed {
    std::vector<std::pair<std::string, std::string>> types;  // names and texts
    std::map<std::size_t, std::string> names;                // of nodes
  };

  template <class X>
  bool nested(const X& x) {
    if constexpr (codec::kIsFields<X>)
      return fields(x);
    else
      return x();
  }
  template <class X>
  bool under(std::string condition, const X& x) {
    conditions_.push_back(std::move(condition));
    const bool ok = nested(x);
    conditions_.pop_back();
    return ok;
  }

  // ---- fields ----

  template <class M>
  void item(const std::string& name, M& member) {
    using Value = std::remove_cv_t<M>;
    if constexpr (codec::Number<Value>) {
      const std::size_t field = addNumber<Value>(name);
      if constexpr (std::is_integral_v<Value> && !std::is_const_v<M>) nameSize(field, name, member, sizeof(Value));
    } else if constexpr (std::is_array_v<M>) {
      addRow<std::remove_extent_t<M>>(name, std::to_string(std::extent_v<M>), 0);
    } else {
      special(name, member);
    }
  }
  template <class Stored, class T>
  void special(const std::string& name, const codec::As<Stored, T>& as) {
    const std::size_t field = addNumber<Stored>(name);
    if constexpr (std::is_integral_v<Stored>) nameSize(field, name, as.member, sizeof(Stored));
  }
  template <class T>
  void special(const std::string& name, const codec::NonZero<T>&) {
    (void)addNumber<T>(name);
  }
  template <class... T>
  void special(std::string names, const codec::Block<T...>& block) {
    const auto next = [&names] {
      constexpr std::string_view kBetween = ", ";
      const std::string first = names.substr(0, names.find(kBetween));
      names.erase(0, first.size() + kBetween.size());
      return first;
    };
    std::apply([&](auto&... m) { (item(next(), m), ...); }, block.members);
  }
  template <codec::Number T>
  static std::string numberType() {
    const char kind = std::is_floating_point_v<T> ? 'f' : std::is_signed_v<T> ? 's' : 'u';
    return kind + std::to_string(sizeof(T));
  }
  template <codec::Number T>
  std::size_t addNumber(const std::string& name) {
    const std::size_t field = add(name, name);
    attributes_[field].type = numberType<std::remove_cv_t<T>>();
    return field;
  }
  // Numbers one by one, texts and blocks of bytes as one; an array of texts has a text for each entry.
  template <class T>
  void addRow(const std::string& name, const std::string& count, std::size_t firstIndex) {
    using Item = std::remove_cv_t<T>;
    if constexpr (codec::Number<Item> && sizeof(Item) == 1) {
      addSized(name, count, std::is_same_v<Item, char>);
      return;
    } else if constexpr (codec::Number<Item>) {
      (void)addNumber<Item>(name);
    } else {
      static_assert(std::is_array_v<Item> && sizeof(std::remove_extent_t<Item>) == 1);
      addSized(name, std::to_string(std::extent_v<Item>), std::is_same_v<std::remove_extent_t<Item>, char>);
    }
    Attribute& field = attributes_.back();
    field.origin += "[]";
    field.repeat = count;
    field.firstIndex = firstIndex;
  }
  void addSized(const std::string& name, const std::string& size, bool isText);
  void addLengthText(const std::string& name, std::int64_t longest);
  void addFill();
  std::size_t add(const std::string& name, const std::string& origin);
  void addRule(const std::string& name, std::int64_t value, const std::string& rule);
  void addDoc(const std::string& text);

  // ---- records and lists ----

  template <class R>
  static std::string typeName(const std::string& otherwise) {
    return std::string(kTableOf<R>.empty() ? std::string_view(otherwise) : kTableOf<R>);
  }
  template <class Fn>
  bool rowsOf(const std::string& count, const Fn& row) {
    const std::size_t rows = enter("rows", "", Node::inner);
    attributes_[rows].repeat = count;
    const bool ok = row();
    nameRows(rows);
    leave();
    return ok;
  }
  // One element in a row, or, with a count, all elements.
  template <std::size_t Which, class X, class... A>
  bool element(const X& x, const std::vector<std::string>& names, const std::string& count, const A&... more) {
    using Element = typename std::remove_cvref_t<std::tuple_element_t<Which, decltype(x.members)>>::value_type;
    return elementOf<Element>(names[Which], count, more...);
  }
  template <class Element, class... A>
  bool elementOf(const std::string& name, const std::string& count, const A&... more) {
    if constexpr (codec::Number<Element>) {
      (void)addNumber<Element>(name);
    } else if constexpr (requires { std::tuple_size<Element>::value; }) {
      addSized(name, std::to_string(std::tuple_size_v<Element>), true);
    } else {
      const std::size_t field = enter(name, typeName<Element>(name + "Entry"), Node::record);
      setElement(field, name, count);
      (addParameter(more), ...);
      Element fresh;
      const bool ok = codec::Layout<Element>::describe(*this, fresh, more...);
      leave();
      return ok;
    }
    setElement(attributes_.size() - 1, name, count);
    return true;
  }
  void setElement(std::size_t field, const std::string& name, const std::string& count);
  // Begins the type of a new field. The name of an inner type is that of its field.
  std::size_t enter(const std::string& name, const std::string& type, Node::Kind kind);
  void leave();
  void nameRows(std::size_t rows);

  // The further arguments of the description of a record: sizes become parameters of the type.
  template <class P>
  void addParameter(const P& value) {
    if constexpr (std::is_same_v<P, PartForm>)
      addSizeParameter(value.nameBlockSize);
    else if constexpr (std::is_integral_v<P> && !std::is_same_v<P, bool>)
      addSizeParameter(value);
  }
  void addSizeParameter(std::int64_t value);

  // ---- sizes and expressions ----

  // A field that is a size or count by its name gets a value that represents it.
  template <class T>
  void nameSize(std::size_t field, const std::string& name, T& member, std::size_t storedSize) {
    if (isSize(name)) member = static_cast<T>(valueFor(field, static_cast<std::int64_t>(member), storedSize));
  }
  static bool isSize(std::string_view name);
  std::int64_t valueFor(std::size_t field, std::int64_t before, std::size_t storedSize);
  std::string expressionOf(std::int64_t value) const;

  template <class Names, codec::Test kTest, std::size_t kCount>
  std::string comparison(const codec::Condition<Names, kTest, kCount>& condition) {
    std::vector<std::string> values;
    for (const std::int64_t value : condition.comparedWith) values.push_back(expressionOf(value));
    return comparison(fieldNames(condition.names()).front(), condition.value, kTest, values);
  }
  std::string comparison(const std::string& name, std::int64_t value, codec::Test test,
                         const std::vector<std::string>& values);
  // The field of that name that was described last, in this type or those that it may use.
  std::optional<std::size_t> find(std::size_t node, const std::string& path) const;
  std::optional<std::size_t> findInside(std::size_t node, const std::string& path) const;

  // ---- printing ----

  std::string rendered(const std::string& expression, std::size_t node) const;
  std::string pathTo(std::size_t attribute, std::size_t node) const;
  std::string conditionsOf(const Attribute& field) const;
  bool usesVersion(std::size_t node) const;
  std::string bodyOf(std::size_t node, Printed& printed, const std::string& indent) const;
  std::string attributeText(const Attribute& field, Printed& printed, const std::string& indent) const;
  std::string typeCall(const Attribute& field, Printed& printed) const;

  std::vector<Attribute> attributes_;
  std::vector<Node> nodes_;
  std::size_t node_ = 0;
  std::vector<std::string> conditions_;
  std::string bodyCondition_;
  std::vector<std::string> instances_;
  std::set<std::string> notes_;
  mutable std::vector<std::string> problems_;
  std::map<const void*, std::string> lists_;     // counts of lists, by where these are
  std::map<std::int64_t, std::string> called_;   // what values represent
  std::map<std::int64_t, std::size_t> fieldOf_;  // the field of a value
  std::int64_t next32_ = 1'000'000, next16_ = 20'000, next8_ = 65;
};

}  // namespace oldtorvio::report
