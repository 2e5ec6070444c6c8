// The walker that prints a stored form without a file: every field of a layout, whatever the conditions, as a row of
// a table. It walks a record once and reads none of its values; conditions, list rules and defaults print themselves.
#pragma once
#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "src/frame/codec/describe.h"
#include "src/frame/versions.h"
#include "torvio/explain/format_table.h"
#include "torvio/explain/layout_walker.h"
#include "torvio/explain/map.h"
#include "torvio/explain/record_names.h"

namespace oldtorvio::explain {

class FormatPrinter : public LayoutWalker<FormatPrinter> {
 public:
  using Walk = std::function<void(FormatPrinter&)>;

  // Whether `walk` knows where the record is embedded. If so, conditions on the place are decided and not printed.
  enum class Place : std::uint8_t { open, given };

  // The rows of what `walk` walks.
  static std::vector<FormatRow> rows(const Walk& walk, Place place = Place::open);
  static std::string table(const Walk& walk, Place place = Place::open) { return markdownOf(rows(walk, place)); }

  // A value that is printed as the name of a size or count: "text, textWidth bytes".
  std::int32_t numberCalled(const std::string& name);
  void call(std::int64_t value, const std::string& name) { called_[value] = name; }

  // A row that does not come from a verb.
  void remark(const std::string& names, const std::string& stored, const std::string& condition);

  // ---- the verbs ----

  // All versions are printed; a walk that chooses between layouts takes that of the newest.
  static constexpr int version() { return frame::VersionSet::kHighest; }

  template <class Names, class... T>
  [[nodiscard]] bool fields(const codec::Fields<Names, T...>& f) {
    begin(f.names);
    std::size_t i = 0;
    std::apply([&](auto&... m) { (item(i++, m), ...); }, f.members);
    return true;
  }
  template <class X>
  [[nodiscard]] bool since(int first, const X& x) {
    return inside({first, {}}, x);
  }
  template <class X, class... D>
  [[nodiscard]] bool since(int first, const X& x, const codec::Otherwise<D...>& defaults) {
    defaults_ = textsOf(defaults);
    const bool ok = since(first, x);
    defaults_.clear();
    return ok;
  }
  template <class X>
  [[nodiscard]] bool below(int end, const X& x) {
    return inside({0, "below " + std::to_string(end)}, x);
  }
  template <class X>
  [[nodiscard]] bool between(int first, int last, const X& x) {
    return inside({0, std::to_string(first) + " to " + std::to_string(last)}, x);
  }
  template <class Names, codec::Test kTest, std::size_t kCount, class X>
  [[nodiscard]] bool when(const codec::Condition<Names, kTest, kCount>& condition, const X& x) {
    const std::string name = fieldNames(condition.names()).front();
    return inside({0, "if " + name + " is " + comparison(kTest, condition.comparedWith)}, x);
  }
  template <class X>
  [[nodiscard]] bool when(const codec::CustomCondition& condition, const X& x) {
    if (place_ == Place::given || condition.text == nullptr) return !condition.holds || inside({}, x);
    return inside({0, condition.text}, x);
  }

  template <class X>
  [[nodiscard]] bool leading(std::int64_t count, const X& x) {
    begin(x.names);
    if constexpr (std::is_array_v<std::remove_reference_t<std::tuple_element_t<0, decltype(x.members)>>>) {
      using Array = std::remove_cvref_t<decltype(x.only())>;
      add(0, valueText(count) + " × " + numberType<std::remove_extent_t<Array>>(),
          "the first of " + std::to_string(std::extent_v<Array>));
      return true;
    } else {
      return inside({0, "the first " + valueText(count) + " of these"}, x);
    }
  }
  template <class T, class X>
  [[nodiscard]] bool leading(const codec::Computed<T>& count, const X& x) {
    begin(x.names);
    using Array = std::remove_cvref_t<decltype(x.only())>;
    add(0, numberType<std::remove_extent_t<Array>>() + ", " + count.text,
        "the first of " + std::to_string(std::extent_v<Array>));
    return true;
  }
  template <class Stored = void, class X>
  [[nodiscard]] bool slice(const X& x, std::size_t first, std::size_t last) {
    using One = std::remove_cvref_t<decltype(x.only()[0])>;
    begin(x.names);
    names_[0].append("[" + std::to_string(first) + ".." + std::to_string(last) + "]");
    add(0, std::to_string(last - first + 1) + " × " +
               storedType<std::conditional_t<std::is_void_v<Stored>, One, Stored>>());
    return true;
  }
  template <class X>
  [[nodiscard]] bool sized(const X& x, std::int64_t size) {
    using Byte = std::remove_cvref_t<decltype(x.only()[0])>;
    begin(x.names);
    add(0, (std::is_same_v<Byte, char> ? "text " : "raw ") + valueText(size));
    return true;
  }
  template <class X>
  [[nodiscard]] bool lengthText(const X& x) {
    begin(x.names);
    add(0, "length text");
    return true;
  }
  template <class X>
  [[nodiscard]] bool lengthText(const X& x, std::int64_t longest) {
    begin(x.names);
    add(0, "length text", "a length above " + std::to_string(longest) + " is refused");
    return true;
  }
  template <std::size_t Width, class X>
  [[nodiscard]] bool textItem(const X& x) {
    begin(x.names);
    add(0, "text " + std::to_string(Width));
    return true;
  }
  [[nodiscard]] bool reserved(std::size_t size) {
    return addReserved(valueText(static_cast<std::int64_t>(size)) + " bytes");
  }
  template <class T>
  [[nodiscard]] bool reserved(const codec::Computed<T>& size) {
    return addReserved(size.text);
  }
  template <class Fn>
  [[nodiscard]] bool padded(std::size_t size, const Fn& chain) {
    const bool ok = chain();
    remark("fill", "up to " + std::to_string(size) + " bytes with the rows above",
           "dropped; more than that is a failed read");
    return ok;
  }

  template <class Names, codec::Test kTest, std::size_t kCount>
  [[nodiscard]] bool require(const codec::Condition<Names, kTest, kCount>& condition) {
    const std::string text = kTest == codec::Test::atMost   ? "refused above " + valueText(condition.comparedWith[0])
                             : kTest == codec::Test::within ? "refused outside " + rangeText(condition.comparedWith)
                             : kTest == codec::Test::notEquals
                                 ? "refused if " + valueText(condition.comparedWith[0])
                                 : "refused unless " + comparison(kTest, condition.comparedWith);
    addRule(path_ + fieldNames(condition.names()).front(), text);
    return true;
  }
  [[nodiscard]] bool require(const codec::CustomCondition& condition) {
    remark("end", "", std::string("refused: ") + condition.text);
    return true;
  }
  template <class R, class Fn>
  [[nodiscard]] bool afterRead(const R&, const char* what, const Fn&) {
    remark("(load)", "", what);
    return true;
  }
  template <class R, class Fn>
  [[nodiscard]] bool keep(const R&, const Fn&) {
    return true;
  }
  template <class X>
  [[nodiscard]] bool clear(const X& x) {
    begin(x.names);
    remark("(load)", "", name(0) + " is emptied");
    return true;
  }
  template <class X>
  [[nodiscard]] bool optionalTail(const X& x) {
    return inside({0, kTail}, x);
  }
  template <class X>
  [[nodiscard]] bool endOnFailure(const X& x) {
    return inside({0, "any fault ends the record with success"}, x);
  }
  template <class X>
  [[nodiscard]] bool continueOnFailure(const X& x) {
    return inside({0, "a fault is ignored, what was read is kept"}, x);
  }
  template <class Read, class Written>
  [[nodiscard]] bool differs(const Read& read, const Written& written) {
    return inside({0, "reader"}, read) && inside({0, kWriter}, written);
  }
  template <class Read>
  [[nodiscard]] bool onlyRead(const Read& read) {
    return inside({0, "reader"}, [&] { return read(*this); });
  }
  template <class R, class Fn>
  [[nodiscard]] bool beforeWrite(const R&, const char* what, const Fn&) {
    remark("(save)", "", what);
    return true;
  }

  template <class R, class... A>
  [[nodiscard]] bool walk(R& record, const A&... more) {
    return codec::Layout<R>::describe(*this, record, more...);
  }
  template <class X, class... A>
  [[nodiscard]] bool record(const X& x, const A&... more) {
    using R = std::remove_cvref_t<decltype(x.only())>;
    begin(x.names);
    if constexpr (!kTableOf<R>.empty()) {
      add(0, std::string(tableFor<R>(more...)));
      return true;
    } else {
      R fresh;
      return insideOf(name(0), [&] { return walk(fresh, more...); });
    }
  }
  template <class X, class Rule, class... A>
  [[nodiscard]] bool list(const X& x, Rule rule, const A&... more) {
    if constexpr (std::tuple_size_v<decltype(x.members)> == 2) {
      return elements<0>(x, "count-first list, alternating with the next") &&
             elements<1>(x, "alternating with the one before", more...);
    } else if constexpr (requires { x.only().row(0); }) {
      using Row = typename std::remove_cvref_t<decltype(x.only())>::Row;
      begin(x.names);
      add(0, "i32 count and rows", "a count below 1 keeps the columns");
      Row row;
      return insideOf(name(0) + "[i]", [&] { return walk(row); });
    } else {
      return elements<0>(x, ruleText(rule), more...);
    }
  }
  template <class X, class Fn>
  [[nodiscard]] bool element(const X& x, std::size_t, const Fn& chain) {
    begin(x.names);
    return insideOf(name(0) + "[i]", chain);
  }
  template <class Fn>
  [[nodiscard]] bool rows(std::int64_t count, const Fn& row) {
    return eachRow("for each of " + valueText(count), row);
  }
  template <class T, class Fn>
  [[nodiscard]] bool rows(const codec::Computed<T>& count, const Fn& row) {
    return eachRow(std::string("for each ") + count.text, row);
  }
  template <class X, class R, class M>
  [[nodiscard]] bool trailer(const X& x, M R::*) {
    begin(x.names);
    add(0, "one " + storedType<M>() + " for each, without a count");
    return true;
  }

 private:
  static constexpr const char* kTail = "tail";
  static constexpr const char* kWriter = "writer";

  struct Condition {
    int since = 0;     // a version; 0 for none
    std::string text;  // any other condition; empty for none
  };
  struct TableRow {
    std::vector<std::string> names;
    std::string stored;
    std::vector<Condition> conditions;  // those at its first name
    std::string condition;
  };

  explicit FormatPrinter(Place place) : place_(place) {}

  // Sets the names of the current FIELDS(...).
  template <class Names>
  void begin(const Names& names) {
    names_ = fieldNames(names());
    runFrom_ = rows_.size();
  }
  std::string name(std::size_t i) const { return pathOf(names_[i]); }
  std::string pathOf(std::string names) const;
  bool addReserved(const std::string& size);
  // Adds a row, or one more name to the previous row if that has the same FIELDS(...) and type.
  void add(std::size_t i, const std::string& stored, const std::string& condition = {});
  void addRule(const std::string& name, const std::string& text);
  static std::string conditionText(const std::vector<Condition>& conditions);
  std::string valueText(std::int64_t value) const;
  template <std::size_t kCount>
  std::string rangeText(const std::array<std::int64_t, kCount>& range) const {
    return valueText(range.front()) + " to " + valueText(range.back());
  }

  // What a comparison compares with: "2", "not 0", "above 0", "1 or 2", "52 or 60 to 502".
  template <std::size_t kCount>
  std::string comparison(codec::Test test, const std::array<std::int64_t, kCount>& values) const {
    using codec::Test;
    if constexpr (kCount == 4)
      if (test == Test::withinGrown)
        return valueText(values[0]) + " to " + valueText(values[1]) + " (" + valueText(values[3]) + " below version " +
               std::to_string(values[2]) + ")";
    std::string all = test == Test::notEquals ? "not "
                      : test == Test::above   ? "above "
                      : test == Test::atMost  ? "at most "
                                              : "";
    const bool hasRanges = test == Test::within || test == Test::inRanges;
    for (std::size_t i = 0; i < kCount; ++i) {
      const bool endsRange = hasRanges && i % 2 == 1;
      if (endsRange && values[i] == values[i - 1]) continue;
      all.append(i == 0 ? "" : endsRange ? " to " : " or ").append(valueText(values[i]));
    }
    return test == Test::atLeast ? all + " or above" : all;
  }
  template <class Rule>
  std::string ruleText(Rule rule) const {
    using codec::Clear, codec::CountFrom, codec::Failing;
    if constexpr (Rule::kCount == CountFrom::one) return "one, without a count";
    if constexpr (Rule::kCount == CountFrom::caller)
      return valueText(rule.count) + " times" + (Rule::kClear == Clear::unlessZero ? ", 0 keeps the list" : "") +
             (Rule::kFailing == Failing::kept ? ", elements that are cut off are kept" : "");
    if constexpr (Rule::kFailing == Failing::inverted) return "list, a complete element ends it and is dropped";
    if constexpr (Rule::kFailing == Failing::reused) return "list, all elements are read into one object";
    return Rule::kClear == Clear::unlessZero    ? "count-first list"
           : Rule::kClear == Clear::never       ? "list, appended"
           : Rule::kClear == Clear::beforeCount ? "list, emptied before its count"
                                                : "list";
  }

  template <class X>
  bool inside(Condition condition, const X& x) {
    conditions_.push_back(std::move(condition));
    bool ok = true;
    if constexpr (codec::kIsFields<X>)
      ok = fields(x);
    else
      ok = x();
    conditions_.pop_back();
    return ok;
  }
  // Of several rows each says which ones repeat together.
  template <class Fn>
  bool eachRow(const std::string& text, const Fn& row) {
    const std::size_t from = rows_.size(), depth = conditions_.size();
    const bool ok = inside({0, text}, [&] { return row(std::size_t{0}); });
    if (rows_.size() - from > 1) {
      const std::string together = ": rows " + std::to_string(from + 1) + (rows_.size() - from > 2 ? " to " : " and ") +
                                   std::to_string(rows_.size());
      for (std::size_t i = from; i < rows_.size(); ++i) rows_[i].conditions[depth].text += together;
    }
    return ok;
  }
  template <class Fn>
  bool insideOf(const std::string& prefix, const Fn& chain) {
    const std::string outer = std::exchange(path_, prefix + '.');
    const bool ok = chain();
    path_ = outer;
    return ok;
  }

  template <std::size_t Which, class X, class... A>
  bool elements(const X& x, const std::string& how, const A&... more) {
    using Element = typename std::remove_cvref_t<std::tuple_element_t<Which, decltype(x.members)>>::value_type;
    begin(x.names);
    if constexpr (!kTableOf<Element>.empty()) {
      add(Which, how + " (" + std::string(tableFor<Element>(more...)) + ")");
    } else if constexpr (codec::Number<Element>) {
      add(Which, how + " (" + storedType<Element>() + ")");
    } else if constexpr (requires { std::tuple_size<Element>::value; }) {
      add(Which, how + " (text " + std::to_string(std::tuple_size_v<Element>) + ")");
    } else {
      add(Which, how);
      Element fresh;
      (void)insideOf(name(Which) + "[i]", [&] { return walk(fresh, more...); });
    }
    return true;
  }

  template <class M>
  void item(std::size_t i, M& member) {
    if constexpr (std::is_integral_v<M>)
      nameSize(i, member, M{});
    else if constexpr (!codec::Number<M>)
      nameStoredSize(i, member);
    add(i, storedType<std::remove_cv_t<M>>());
  }
  template <class Stored, class T>
  void nameStoredSize(std::size_t i, const codec::As<Stored, T>& as) {
    if constexpr (std::is_integral_v<Stored>) nameSize(i, as.member, Stored{});
  }
  template <class M>
  void nameStoredSize(std::size_t, const M&) {}

  // A field that is a size or count by its name gets a value that is printed as that name.
  template <class T, class Stored>
  void nameSize(std::size_t i, T& member, Stored) {
    if (isSize(names_[i]))
      member = static_cast<T>(sizeof(Stored) == 1 ? shortNumberCalled(names_[i]) : numberCalled(names_[i]));
  }
  static bool isSize(std::string_view name);
  std::int32_t shortNumberCalled(const std::string& name);

  template <codec::Number T>
  static std::string numberType() {
    const char kind = std::is_floating_point_v<T> ? 'f' : std::is_signed_v<T> ? 'i' : 'u';
    return kind + std::to_string(8 * sizeof(T));
  }
  template <class T>
  struct Type;
  template <class T>
  static std::string storedType() {
    return Type<T>::text();
  }

  template <class... D>
  static std::vector<std::string> textsOf(const codec::Otherwise<D...>& defaults) {
    return std::apply([](auto... value) { return std::vector<std::string>{defaultText(value)...}; }, defaults.values);
  }
  static std::string defaultText(const char* value) { return *value == '\0' ? "empty" : value; }
  static std::string defaultText(double value);

  Place place_;
  std::vector<TableRow> rows_;
  std::vector<Condition> conditions_;
  std::string path_;  // ends with "." unless empty
  std::vector<std::string> names_;
  std::vector<std::string> defaults_;  // of the current fields below their version, one for each or one for all
  std::size_t runFrom_ = 0;
  std::map<std::int64_t, std::string> called_;
  std::int32_t nextCalled_ = 30000, nextShort_ = 101;
};

template <codec::Number T>
struct FormatPrinter::Type<T> {
  static std::string text() { return numberType<T>(); }
};
template <class T, std::size_t N>
struct FormatPrinter::Type<T[N]> {
  static std::string text() {
    if constexpr (std::is_same_v<T, char>)
      return "text " + std::to_string(N);
    else if constexpr (sizeof(T) == 1)
      return "raw " + std::to_string(N);
    else
      return std::to_string(N) + " × " + storedType<T>();
  }
};
template <class Stored, class T>
struct FormatPrinter::Type<codec::As<Stored, T>> {
  static std::string text() { return storedType<Stored>(); }
};
template <class T>
struct FormatPrinter::Type<codec::NonZero<T>> {
  static std::string text() { return storedType<T>() + ", 0 keeps what the record holds"; }
};
template <class... T>
struct FormatPrinter::Type<codec::Block<T...>> {
  static std::string text() {
    const std::array<std::string, sizeof...(T)> types{storedType<T>()...};
    std::string all = "block of ";
    for (std::size_t i = 0; i < types.size();) {
      std::size_t end = i + 1;
      while (end < types.size() && types[end] == types[i]) ++end;
      if (i > 0) all += ", ";
      all += (end - i > 1 ? std::to_string(end - i) + " × " : "") + types[i];
      i = end;
    }
    return all;
  }
};

}  // namespace oldtorvio::explain
