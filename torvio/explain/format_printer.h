// The walker that tells a stored form without a file: every row of a description, whatever the
// conditions, as a row of a table. It walks a record at its defaults, of which nothing is looked at.
//
// What a `when` asks for cannot be seen, so it is found out: the walk is made again and again with one
// whole number after the other at other values, and the answers are compared.
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
#include "torvio/explain/map.h"

namespace oldtorvio::explain {

// The name of a record that has a table of its own; others tell it in one row by that name. A record
// without one is told field by field where it stands.
template <class Record>
inline constexpr std::string_view kTableOf{};

class FormatPrinter {
 public:
  using Walk = std::function<void(FormatPrinter&)>;

  // Whether the walk says where the record stands, so that a condition which no field changes is known.
  enum class Place : std::uint8_t { open, given };

  // The table of what `walk` walks, which it does several times: each with a fresh record.
  static std::string table(const Walk& walk, Place place = Place::open);

  // A value that sizes and counts are told by: "text, textWidth bytes".
  std::int32_t numberCalled(const std::string& name);
  void call(std::int64_t value, const std::string& name) { called_[value] = name; }

  // A row that no verb tells.
  void remark(const std::string& names, const std::string& stored, const std::string& condition);

  // ---- the verbs ----

  int version() const { return 0; }

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
    defaults_ = isPrinting() ? textsOf(defaults) : std::vector<std::string>();
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
  template <class X>
  [[nodiscard]] bool when(bool stored, const X& x) {
    const Question question = ask(stored);
    const std::size_t before = rows_.size();
    const bool ok = inside({0, question.text}, x);
    if (question.isNever) rows_.resize(before);
    return ok;
  }

  template <class X>
  [[nodiscard]] bool leading(std::int64_t count, const X& x) {
    begin(x.names);
    if constexpr (std::is_array_v<std::remove_reference_t<std::tuple_element_t<0, decltype(x.members)>>>) {
      using Array = std::remove_cvref_t<decltype(x.only())>;
      add(0, sizeText(count) + " × " + numberType<std::remove_extent_t<Array>>(),
          "the first of " + std::to_string(std::extent_v<Array>));
      return true;
    } else {
      return inside({0, "the first " + sizeText(count) + " of these"}, x);
    }
  }
  template <class X>
  [[nodiscard]] bool slice(const X& x, std::size_t first, std::size_t last) {
    using One = std::remove_cvref_t<decltype(x.only()[0])>;
    return sliceOf(x, first, last, storedType<One>());
  }
  template <class Stored, class X>
  [[nodiscard]] bool sliceAs(const X& x, std::size_t first, std::size_t last) {
    return sliceOf(x, first, last, storedType<Stored>());
  }
  template <class X>
  [[nodiscard]] bool nonZero(const X& x) {
    return inside({0, "a stored 0 keeps what the record holds"}, x);
  }
  template <class X>
  [[nodiscard]] bool sized(const X& x, std::int64_t size) {
    using Byte = std::remove_cvref_t<decltype(x.only()[0])>;
    begin(x.names);
    add(0, (std::is_same_v<Byte, char> ? "text " : "raw ") + sizeText(size));
    return true;
  }
  template <class X>
  [[nodiscard]] bool bytesOrOne(const X& x, std::size_t size) {
    begin(x.names);
    add(0, "text " + std::to_string(size), "the file may end behind its first byte");
    return true;
  }
  template <class X>
  [[nodiscard]] bool lengthText(const X& x) {
    begin(x.names);
    add(0, "length text");
    return true;
  }
  template <class X>
  [[nodiscard]] bool lengthTextOrEmpty(const X& x, std::int64_t longest) {
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
  [[nodiscard]] bool reserved(std::size_t size);
  template <class Fn>
  [[nodiscard]] bool padded(std::size_t size, const Fn& chain) {
    const bool ok = chain();
    remark("fill", "up to " + std::to_string(size) + " bytes with the rows above",
           "dropped; more than that is a failed read");
    return ok;
  }

  template <class X, class T>
  [[nodiscard]] bool range(const X& x, T lowest, T highest) {
    if (lowest > highest) {
      rule(x.names, "refused");
      return true;
    }
    // No reader comes further with another value, and what follows may count on that.
    auto& value = x.only();
    if (!isPrinting() && (value < lowest || value > highest))
      value = static_cast<std::remove_cvref_t<decltype(value)>>(lowest);
    rule(x.names, "refused outside " + valueText(lowest) + " to " + valueText(highest));
    return true;
  }
  template <class X>
  [[nodiscard]] bool atMost(const X& x, std::int64_t highest) {
    rule(x.names, "refused above " + valueText(highest));
    return true;
  }
  [[nodiscard]] bool notReadOn() {
    remark("end", "", "refused: nothing behind is read");
    return true;
  }
  template <class R>
  static R& unchanged(R& record) {
    return record;
  }
  template <class R, class Fn>
  [[nodiscard]] bool afterRead(const R&, const Fn&) {
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
    return inside({0, "a fault changes nothing"}, x);
  }
  template <class X, class Rest>
  [[nodiscard]] bool skipUnless(const X& x, const Rest& rest) {
    return inside({0, "where the file ends in it, the record has ended"}, x) && rest();
  }
  template <class Read, class Written>
  [[nodiscard]] bool differs(const Read& read, const Written& written) {
    return inside({0, "reader"}, read) && inside({0, kWriter}, written);
  }
  template <class Read>
  [[nodiscard]] bool onlyRead(const Read& read) {
    return inside({0, "reader"}, [&] { return read(*this); });
  }
  template <class T>
  constexpr T either(T forReaders, T) const {
    return forReaders;
  }
  template <class R, class Fn>
  [[nodiscard]] bool beforeWrite(const R&, const Fn&) {
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
      add(0, std::string(kTableOf<R>));
      return true;
    } else {
      R fresh;
      return insideOf(name(0), [&] { return walk(fresh, more...); });
    }
  }
  template <class X, class... A>
  [[nodiscard]] bool replaced(const X& x, const A&... more) {
    return inside({0, "read into a fresh one"}, [&] { return record(x, more...); });
  }

  template <class V>
  std::int32_t countOf(const V&) const {
    return 0;
  }
  template <class X, class... A>
  [[nodiscard]] bool countFirst(const X& x, const A&... more) {
    return list<0>(x, "count-first list", more...);
  }
  template <class X, class... A>
  [[nodiscard]] bool counted(std::int64_t count, const X& x, const A&... more) {
    return list<0>(x, sizeText(count) + " times, 0 keeps the list", more...);
  }
  template <class X, class... A>
  [[nodiscard]] bool countThenClear(const X& x, const A&... more) {
    return list<0>(x, "list", more...);
  }
  template <class X>
  [[nodiscard]] bool clear(const X&) {
    return true;
  }
  template <class X, class... A>
  [[nodiscard]] bool append(const X& x, const A&... more) {
    return list<0>(x, "list behind what there is", more...);
  }
  template <class X, class... A>
  [[nodiscard]] bool appendRun(std::int64_t count, const X& x, const A&... more) {
    return list<0>(x, sizeText(count) + " times", more...);
  }
  template <class X, class... A>
  [[nodiscard]] bool forgivingRun(std::int64_t count, const X& x, const A&... more) {
    return list<0>(x, sizeText(count) + " times, a fault changes nothing", more...);
  }
  template <class X, class... A>
  [[nodiscard]] bool invertedSuccessList(const X& x, const A&... more) {
    return list<0>(x, "list, a sound element ends it and is dropped", more...);
  }
  template <class X, class Fn>
  [[nodiscard]] bool element(const X& x, std::size_t, const Fn& chain) {
    begin(x.names);
    return insideOf(name(0) + "[i]", chain);
  }
  template <class X, class... A>
  [[nodiscard]] bool reusedElement(const X& x, const A&... more) {
    return list<0>(x, "list, one element read over and over", more...);
  }
  template <class X, class... A>
  [[nodiscard]] bool interleaved(const X& x, const A&... more) {
    return list<0>(x, "count-first list, in turns with the next") &&
           list<1>(x, "in turns with the one before", more...);
  }
  template <class X>
  [[nodiscard]] bool columns(const X& x) {
    using Row = typename std::remove_cvref_t<decltype(x.only())>::Row;
    begin(x.names);
    add(0, "i32 count and rows", "a count below 1 keeps the columns");
    Row row;
    return insideOf(name(0) + "[i]", [&] { return walk(row); });
  }
  template <class Fn>
  [[nodiscard]] bool rows(std::int64_t count, const Fn& row) {
    return inside({0, count > 0 ? "for each of " + valueText(count) : "for each"}, [&] { return row(std::size_t{0}); });
  }
  template <class X, class... A>
  [[nodiscard]] bool single(const X& x, const A&... more) {
    return list<0>(x, "one, without a count", more...);
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
    int since = 0;     // a version, or
    std::string text;  // anything else; neither says nothing
  };
  struct TableRow {
    std::vector<std::string> names;
    std::string stored;
    std::vector<Condition> conditions;  // when it began
    std::string condition;
  };
  // One walk that only answers: the number of a whole-number field, and the value that it is given.
  struct Probe {
    std::optional<std::size_t> field;
    std::int64_t value = 0;
  };

  struct Question {
    std::string text;
    bool isNever = false;
  };

  explicit FormatPrinter(std::vector<Question> questions) : questions_(std::move(questions)) {}
  explicit FormatPrinter(Probe probe) : probe_(probe) {}

  static std::vector<Question> learnQuestions(const Walk& walk, Place place);
  bool isPrinting() const { return !probe_; }
  Question ask(bool stored);
  std::string markdown() const;

  // Names of the FIELDS(...) at hand.
  template <class Names>
  void begin(const Names& names) {
    text_ = names();
    names_ = isPrinting() ? explain::fieldNames(text_) : std::vector<std::string>();
    runFrom_ = rows_.size();
  }
  std::string name(std::size_t i) const { return isPrinting() ? pathOf(names_[i]) : std::string(); }
  std::string pathOf(std::string names) const;
  // A row, or one more name in the row before, if that is of the same FIELDS(...) and type.
  void add(std::size_t i, const std::string& stored, const std::string& condition = {});
  template <class Names>
  void rule(const Names& names, const std::string& text) {
    if (isPrinting()) addRule(path_ + explain::fieldNames(names()).front(), text);
  }
  void addRule(const std::string& name, const std::string& text);
  static std::string conditionText(const std::vector<Condition>& conditions);
  std::string valueText(std::int64_t value) const;
  std::string sizeText(std::int64_t size) const { return size > 0 ? valueText(size) : "so many"; }

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
  template <class Fn>
  bool insideOf(const std::string& prefix, const Fn& chain) {
    const std::string outer = std::exchange(path_, prefix + '.');
    const bool ok = chain();
    path_ = outer;
    return ok;
  }

  template <class X>
  bool sliceOf(const X& x, std::size_t first, std::size_t last, const std::string& type) {
    begin(x.names);
    if (isPrinting()) names_[0].append("[" + std::to_string(first) + ".." + std::to_string(last) + "]");
    add(0, std::to_string(last - first + 1) + " × " + type);
    return true;
  }

  template <std::size_t Which, class X, class... A>
  bool list(const X& x, const std::string& how, const A&... more) {
    using Element = typename std::remove_cvref_t<std::tuple_element_t<Which, decltype(x.members)>>::value_type;
    begin(x.names);
    if constexpr (!kTableOf<Element>.empty()) {
      add(Which, how + " (" + std::string(kTableOf<Element>) + ")");
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
    if constexpr (codec::Number<std::remove_cv_t<M>>) {
      if constexpr (std::is_integral_v<M>)
        touch(
            i, [&](auto value) { member = static_cast<M>(value); }, M{});
    } else {
      touchAs(i, member);
    }
    if (isPrinting()) add(i, storedType<std::remove_cv_t<M>>());
  }
  template <class Stored, class T>
  void touchAs(std::size_t i, const codec::As<Stored, T>& as) {
    if constexpr (std::is_integral_v<Stored>)
      touch(
          i, [&](auto value) { as.member = static_cast<T>(value); }, Stored{});
  }
  template <class M>
  void touchAs(std::size_t, const M&) {}

  // Gives a whole number the value of the probe, or one that a size or count is known by.
  template <class Set, class Stored>
  void touch(std::size_t i, const Set& set, Stored) {
    const std::size_t number = wholeNumbers_++;
    if (isPrinting()) {
      if (isSize(names_[i])) set(sizeof(Stored) == 1 ? shortNumberCalled(names_[i]) : numberCalled(names_[i]));
    } else if (probe_->field == number && std::in_range<Stored>(probe_->value)) {
      set(probe_->value);
      probed_ = explain::fieldNames(text_)[i];
      probedIsSigned_ = std::is_signed_v<Stored>;
    }
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
    return std::apply([](auto... value) { return std::vector<std::string>{numberText(value)...}; }, defaults.values);
  }
  static std::string numberText(double value);

  std::optional<Probe> probe_;
  std::vector<bool> answers_;  // of a probe
  std::string probed_;         // name of the field that took the value
  bool probedIsSigned_ = false;
  std::vector<Question> questions_;  // what each `when` asks for
  std::size_t whens_ = 0, wholeNumbers_ = 0;

  std::vector<TableRow> rows_;
  std::vector<Condition> conditions_;
  std::string path_;  // ends with "." unless empty
  std::string_view text_;
  std::vector<std::string> names_;
  std::vector<std::string> defaults_;  // of the fields at hand, below their version
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
