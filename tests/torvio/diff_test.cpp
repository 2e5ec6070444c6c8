// Differences of records and files: what is one, how elements of lists are matched, and what the command prints.
#include "torvio/compare/diff.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <chrono>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <numeric>
#include <random>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "tests/support/files.h"
#include "tests/support/kind_files.h"
#include "tests/support/long_tests.h"
#include "tests/support/special_tool_files.h"
#include "tests/support/stored_forms/parts.h"
#include "tests/tools/run_torvio.h"
#include "tests/torvio/random_files.h"
#include "torvio/compare/alignment.h"
#include "torvio/compare/stored_members.h"
#include "torvio/values/compiled_records.h"
#include "torvio/values/json_writer.h"
#include "torvio/values/types.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;
using compare::Difference;
using compare::DiffOptions;
using compare::Side;
using frame::FileKind;
using Change = Difference::Change;
using Json = nlohmann::json;

template <class Record>
std::vector<Difference> differences(const Record& a, const Record& b, const DiffOptions& options = {}) {
  std::vector<Difference> all;
  const bool areSame = compare::diffRecords(a, b, options, [&](const Difference& one) {
    all.push_back(one);
    return true;
  });
  EXPECT_EQ(areSame, all.empty());
  return all;
}

// "~ width 1 2", "- marks[3]", "> marks[1] marks[0]".
std::string textOf(const Difference& one) {
  const bool isInA = one.change == Change::onlyInA, isInB = one.change == Change::onlyInB;
  std::string text = isInA ? "- " : isInB ? "+ " : one.change == Change::moved ? "> " : "~ ";
  text += isInB ? one.pathInB : one.pathInA;
  if (!isInA && !isInB && (one.pathInB != one.pathInA || one.change == Change::moved)) text += ' ' + one.pathInB;
  if (one.change == Change::changed) text += ' ' + one.a + ' ' + one.b;
  return text;
}
std::vector<std::string> textsOf(const std::vector<Difference>& all) {
  std::vector<std::string> texts;
  for (const Difference& one : all) texts.push_back(textOf(one));
  return texts;
}
using Texts = std::vector<std::string>;
template <class Record>
Texts texts(const Record& a, const Record& b, const DiffOptions& options = {}) {
  return textsOf(differences(a, b, options));
}

template <std::size_t N>
void setField(char (&field)[N], std::string_view bytes) {
  std::memset(field, 0, N);
  std::memcpy(field, bytes.data(), std::min(bytes.size(), N));
}

template <FileKind kKind>
auto anyRecord(std::uint32_t seed) {
  auto record = std::make_unique<typename FileRecord<kKind>::Record>();
  fillWithAnything(kKind, record.get(), seed);
  return record;
}

DiffOptions ofAllMembers() {
  DiffOptions options;
  options.storedOnly = false;
  return options;
}

// ---- members -----------------------------------------------------------------------------------------

TEST(Diff, RecordIsTheSameAsItself) {
  for (const frame::FileKindInfo& info : frame::kFileKinds)
    withFileRecord(info.kind, [&](auto file) {
      for (std::uint32_t seed = 0; seed < 10; ++seed) {
        const auto record = anyRecord<decltype(file)::kKind>(seed);
        const auto copy = std::make_unique<typename decltype(file)::Record>(*record);
        EXPECT_EQ(texts(*record, *copy), Texts()) << info.name;
        EXPECT_EQ(texts(*record, *copy, ofAllMembers()), Texts()) << info.name;
        DiffOptions tolerant;
        tolerant.tolerance = 0.5;
        EXPECT_EQ(texts(*record, *copy, tolerant), Texts()) << info.name;
      }
    });
}

// Visits every value of a record that has a path of its own, by its type at run time.
class Leaves {
 public:
  using See = std::function<void(const std::string& path, const values::Type& type, void* at, bool isStored)>;
  explicit Leaves(See see) : see_(std::move(see)) {}

  void walk(const values::Type& type, void* at, const std::string& path, bool isStored = true) const {
    using values::Form;
    const auto elementAt = [&](std::size_t i, void* element) {
      walk(*type.element, element, path + '[' + std::to_string(i) + ']', isStored);
    };
    const auto elements = [&](void* first, std::size_t count) {
      for (std::size_t i = 0; i < count; ++i) elementAt(i, static_cast<std::byte*>(first) + i * type.element->size);
    };
    switch (type.form) {
      case Form::array:
        return elements(at, type.count);
      case Form::list:
        return elements(const_cast<void*>(type.data(at)), type.length(at));
      case Form::lazyArray:
        for (const std::size_t i : {std::size_t{0}, std::size_t{5}, type.count - 1}) elementAt(i, type.lazySet(at, i));
        return;
      case Form::record:
        for (const values::TypeMember& member : type.members)
          walk(*member.type, values::memberIn(at, member),
               path.empty() ? std::string(member.name) : path + '.' + std::string(member.name),
               isStored && member.isStored);
        return;
      default:
        see_(path, type, at, isStored);
    }
  }

 private:
  See see_;
};

// Changes a value, and with a second call back.
void change(const values::Type& type, void* at) {
  if (type.form == values::Form::text) {
    auto& text = *static_cast<std::string*>(at);
    text.ends_with("\x01") ? text.pop_back() : text.push_back('\x01');
  } else {
    // Of a text the last byte, which is mostly after its NUL.
    static_cast<unsigned char*>(at)[type.size - 1] ^= 1U;
  }
}

TEST(Diff, ChangeOfOneMemberIsReportedAtItsPath) {
  for (const frame::FileKindInfo& info : frame::kFileKinds)
    withFileRecord(info.kind, [&](auto file) {
      constexpr FileKind kKind = decltype(file)::kKind;
      const values::Type& type = values::typeOfRecord(kKind);
      auto record = anyRecord<kKind>(7);
      std::size_t leaves = 0;
      // A list of parts may be empty.
      for (std::uint32_t seed = 8; leaves < 60; ++seed) {
        leaves = 0;
        Leaves([&](const std::string&, const values::Type&, void*, bool) { ++leaves; }).walk(type, record.get(), "");
        if (leaves < 60) record = anyRecord<kKind>(seed);
      }
      const auto copy = std::make_unique<typename decltype(file)::Record>(*record);
      const std::size_t step = isLongRun() ? 1 : std::max<std::size_t>(leaves / 300, 1);
      std::size_t number = 0, unstored = 0;
      Leaves([&](const std::string& path, const values::Type& leaf, void* at, bool isStored) {
        if (number++ % step != 0 && isStored) return;
        if (!isStored && unstored++ > 100) return;
        change(leaf, at);
        const auto all = differences(*record, *copy, ofAllMembers());
        ASSERT_EQ(all.size(), 1U) << info.name << ' ' << path << ' ' << testing::PrintToString(textsOf(all));
        EXPECT_EQ(all[0].change, Change::changed);
        EXPECT_EQ(all[0].pathInA, path);
        EXPECT_EQ(all[0].pathInB, path);
        EXPECT_NE(all[0].a, all[0].b) << path;
        EXPECT_EQ(differences(*record, *copy).size(), isStored ? 1U : 0U) << path;
        change(leaf, at);
      }).walk(type, copy.get(), "");
      EXPECT_EQ(texts(*record, *copy, ofAllMembers()), Texts());
    });
}

TEST(Diff, ValuesAreThoseOfTheJson) {
  OldSpecialTool a, b;
  b.specialValue = 2.5F;
  setField(b.tool.tailText, "K\xFC");
  b.tool.specialBlock[1] = 0xAB;
  b.tool.lateWords[2] = 7;
  EXPECT_EQ(texts(a, b), (Texts{"~ tool.specialBlock \"\" \"00ab\"", "~ tool.lateWords[2] 0 7",
                                "~ tool.tailText \"\" \"K\u00FC\"", "~ specialValue 0 2.5"}));
  DiffOptions dos;
  dos.encoding = "cp437";
  EXPECT_EQ(texts(a, b, dos)[2], "~ tool.tailText \"\" \"K\u207F\"");
}

TEST(Diff, BitsThatTheJsonShowsAreDifferences) {
  OldSpecialTool a, b;
  a.specialValue = std::bit_cast<float>(0x7fc00000U);
  b.specialValue = std::bit_cast<float>(0x7fc00001U);
  EXPECT_EQ(texts(a, b), (Texts{"~ specialValue {\"bits\":\"7fc00000\"} {\"bits\":\"7fc00001\"}"}));
  b.specialValue = a.specialValue;
  EXPECT_EQ(texts(a, b), Texts());
  a.specialValue = 0;
  b.specialValue = -0.0F;
  EXPECT_EQ(texts(a, b), (Texts{"~ specialValue 0 -0.0"}));
  b.specialValue = 0;
  setField(a.tool.tailText, std::string_view("new\0old", 7));
  setField(b.tool.tailText, "new");
  EXPECT_EQ(texts(a, b), (Texts{"~ tool.tailText {\"text\":\"new\",\"after\":\"6f6c64\"} \"new\""}));
}

TEST(Diff, ToleranceIsForFiniteFloatsOnly) {
  OldSpecialTool a, b;
  DiffOptions options;
  options.tolerance = 0.01;
  a.specialValue = 1;
  b.specialValue = 1.0078125F;
  EXPECT_EQ(texts(a, b, options), Texts());
  b.specialValue = 1.015625F;
  EXPECT_EQ(texts(a, b, options).size(), 1U);
  options.tolerance = 0.015625;
  EXPECT_EQ(texts(a, b, options), Texts());
  b.specialValue = a.specialValue = 0;
  b.specialValue = -0.0F;
  EXPECT_EQ(texts(a, b, options), Texts());
  EXPECT_EQ(texts(a, b).size(), 1U);
  b.specialValue = std::numeric_limits<float>::infinity();
  EXPECT_EQ(texts(a, b, options).size(), 1U);
  a.specialValue = b.specialValue;
  EXPECT_EQ(texts(a, b, options), Texts());
  b.specialValue = std::numeric_limits<float>::quiet_NaN();
  EXPECT_EQ(texts(a, b, options).size(), 1U);
  b.specialValue = a.specialValue;
  b.tool.lateWords[0] = 1;  // no float
  options.tolerance = 100;
  EXPECT_EQ(texts(a, b, options).size(), 1U);
}

TEST(Diff, LongValuesAreShownFromWhereTheyDiffer) {
  OldMaterial a, b;
  a.name = std::string(500, 'x') + "end";
  b.name = std::string(500, 'x') + "END";
  DiffOptions options;
  options.longestValue = 20;
  const auto all = differences(a, b, options);
  ASSERT_EQ(all.size(), 1U);
  EXPECT_EQ(all[0].a, "...xxxxxend\"");
  EXPECT_EQ(all[0].b, "...xxxxxEND\"");
  options.longestValue = 0;
  EXPECT_EQ(differences(a, b, options)[0].a, '"' + a.name + '"');
  // Characters are not cut.
  a.name = "a";
  b.name = "b" + std::string(100, '\xE4');
  options.longestValue = 21;
  const std::string cut = differences(a, b, options)[0].b;
  EXPECT_TRUE(cut.ends_with("\u00E4...")) << cut;
}

TEST(Diff, SinkEndsTheComparison) {
  OldSpecialTool a, b;
  b.specialValue = 1;
  b.tool.dimension1 = 1;
  b.tool.dimension2 = 1;
  int calls = 0;
  EXPECT_FALSE(compare::diffRecords(a, b, {}, [&](const Difference&) { return ++calls < 2; }));
  EXPECT_EQ(calls, 2);
}

// ---- lists -------------------------------------------------------------------------------------------

MarkEntry mark(int number) {
  MarkEntry mark;
  mark.markWord1 = static_cast<std::remove_cvref_t<decltype(mark.markWord1)>>(number);
  mark.markWord3 = static_cast<std::remove_cvref_t<decltype(mark.markWord3)>>(number * 7);
  return mark;
}

struct Marks : testing::Test {
  Marks() {
    for (int i = 0; i < 10; ++i) a.marks.push_back(mark(i));
    b.marks = a.marks;
  }
  TorvPart a, b;
};

TEST_F(Marks, InsertedElementIsOneDifference) {
  for (const int place : {0, 3, 10}) {
    b.marks = a.marks;
    b.marks.insert(b.marks.begin() + place, mark(77));
    const std::string path = "marks[" + std::to_string(place) + "]";
    EXPECT_EQ(texts(a, b), Texts{"+ " + path});
    EXPECT_EQ(texts(b, a), Texts{"- " + path});
  }
}

TEST_F(Marks, ElementThatWasMovedIsOneDifference) {
  b.marks.erase(b.marks.begin() + 2);
  b.marks.insert(b.marks.begin() + 7, mark(2));
  EXPECT_EQ(texts(a, b), Texts{"> marks[2] marks[7]"});
  EXPECT_EQ(texts(b, a), Texts{"> marks[7] marks[2]"});
}

TEST_F(Marks, ChangedElementsAreComparedAmongInsertedOnes) {
  b.marks[4].markWord3 = 1000;
  b.marks.insert(b.marks.begin(), mark(50));
  b.marks.insert(b.marks.begin() + 5, mark(51));
  b.marks[8].markWord1 = 1001;
  b.marks.pop_back();
  const Texts expected{"+ marks[0]", "+ marks[5]", "~ marks[4].markWord3 marks[6].markWord3 28 1000",
                       "~ marks[6].markWord1 marks[8].markWord1 6 1001", "- marks[9]"};
  EXPECT_EQ(texts(a, b), expected);
}

TEST_F(Marks, EqualElementsAreNoDifferences) {
  a.marks.assign(50, mark(1));
  b.marks.assign(53, mark(1));
  EXPECT_EQ(texts(a, b), (Texts{"+ marks[50]", "+ marks[51]", "+ marks[52]"}));
}

TEST(Diff, NumbersOfAListAreMatched) {
  TorvPart a, b;
  a.bindingSets.resize(1);
  a.bindingSets[0].numbers = {1, 2, 3, 4};
  b = a;
  b.bindingSets[0].numbers = {9, 1, 2, 5, 4};
  EXPECT_EQ(texts(a, b),
            (Texts{"+ bindingSets[0].numbers[0]", "~ bindingSets[0].numbers[2] bindingSets[0].numbers[3] 3 5"}));
}

TorvPart partCalled(const std::string& name, float width) {
  TorvPart part;
  setField(part.partName, name);
  part.width = width;
  part.shapes.shapes.resize(3);
  for (std::size_t i = 0; i < 3; ++i) part.shapes.shapes[i].x = width * static_cast<float>(i);
  return part;
}

TEST(Diff, PartsAreMatchedByName) {
  SheetPartList a, b;
  for (int i = 0; i < 20; ++i) a.parts.push_back(partCalled("part " + std::to_string(i), static_cast<float>(i)));
  b = a;
  std::reverse(b.parts.begin(), b.parts.begin() + 2);
  for (TorvPart& part : b.parts) part.height += 1;
  b.parts.insert(b.parts.begin(), partCalled("new", 3));
  const auto all = differences(a, b);
  // The new one, one that was moved, and a height of each.
  EXPECT_EQ(all.size(), 22U) << testing::PrintToString(textsOf(all));
  EXPECT_EQ(textOf(all[0]), "+ parts[0]");
  EXPECT_EQ(all[0].name, "\"new\"");
  EXPECT_TRUE(all[0].isOwnName);
  for (const Difference& one : all) {
    if (one.change != Change::changed) continue;
    EXPECT_TRUE(one.pathInA.ends_with(".height"));
    const std::size_t inA = std::stoul(one.pathInA.substr(6));
    EXPECT_EQ(one.name, "\"part " + std::to_string(inA) + '"');
  }
  EXPECT_EQ(std::count_if(all.begin(), all.end(), [](const auto& one) { return one.change == Change::moved; }), 1);
}

TEST(Diff, RenamedPartIsOneWithAnotherName) {
  SheetPartList a, b;
  for (int i = 0; i < 4; ++i) a.parts.push_back(partCalled("part " + std::to_string(i), static_cast<float>(i) + 50));
  b = a;
  setField(b.parts[2].partName, "renamed");
  EXPECT_EQ(texts(a, b), Texts{"~ parts[2].partName \"part 2\" \"renamed\""});
  // Another part in its place is another part.
  b.parts[2] = partCalled("other", 999);
  b.parts[2].height = 1;
  b.parts[2].shapes.shapes.clear();
  EXPECT_EQ(texts(a, b), (Texts{"- parts[2]", "+ parts[2]"}));
}

TEST(Diff, PartInsertedBeforeTwoThousandIsOneDifference) {
  SheetPartList a, b;
  for (int i = 0; i < 2000; ++i) a.parts.push_back(partCalled("p" + std::to_string(i % 500), static_cast<float>(i)));
  b = a;
  b.parts.insert(b.parts.begin(), partCalled("new", 3));
  EXPECT_EQ(texts(a, b), Texts{"+ parts[0]"});
  b.parts[1001].height = 77;
  EXPECT_EQ(texts(a, b), (Texts{"+ parts[0]", "~ parts[1000].height parts[1001].height 20 77"}));
}

// Changes lists of a record at random: returns whether there was one to change.
class ListChanger {
 public:
  enum class What { insert, erase, move };
  ListChanger(std::uint32_t seed, What what) : engine_(seed), what_(what) {}

  // Counts the lists that can be changed, and changes one of that number.
  template <class T>
  void walk(T& value, bool isStored = true) {
    if constexpr (values::List<T>) {
      if (isStored && value.size() >= (what_ == What::move ? 2U : 1U) && at++ == wanted) changeList(value);
      for (auto& element : value) {
        if constexpr (!values::Number<std::remove_cvref_t<decltype(element)>>) walk(element, isStored);
      }
    } else if constexpr (values::HasMembers<T>) {
      values::Members<T>::of(
          value, [&](const values::MemberInfo& info, auto& member) { this->walk(member, isStored && info.isStored); });
    } else if constexpr (values::Array<T> && !values::FixedText<T>) {
      if constexpr (!values::Number<values::ElementOf<T>>)
        for (auto& element : value) walk(element, isStored);
    }
  }

  std::size_t at = 0, wanted = static_cast<std::size_t>(-1);

 private:
  template <class T>
  void changeList(std::vector<T>& list) {
    const auto place = [&](std::size_t end) { return static_cast<std::ptrdiff_t>(engine_() % end); };
    const std::ptrdiff_t from = place(list.size());
    const T one = list[static_cast<std::size_t>(from)];
    if (what_ == What::insert) {
      list.insert(list.begin() + place(list.size() + 1), one);
      return;
    }
    list.erase(list.begin() + from);
    if (what_ == What::move) list.insert(list.begin() + place(list.size() + 1), one);
  }

  std::mt19937 engine_;
  What what_;
};

template <class Record>
std::size_t listsIn(Record& record, ListChanger::What what) {
  ListChanger counter(0, what);
  counter.walk(record);
  return counter.at;
}

TEST(Diff, OneElementInsertedRemovedOrMovedAnywhereIsOneDifference) {
  std::size_t changed = 0;
  for (const frame::FileKindInfo& info : frame::kFileKinds)
    withFileRecord(info.kind, [&](auto file) {
      using Record = typename decltype(file)::Record;
      for (std::uint32_t seed = 0; seed < 3; ++seed) {
        const auto record = anyRecord<decltype(file)::kKind>(seed);
        for (const auto what : {ListChanger::What::insert, ListChanger::What::erase, ListChanger::What::move}) {
          const std::size_t lists = listsIn(*record, what),
                            step = isLongRun() ? 1 : std::max<std::size_t>(lists / 20, 1);
          for (std::size_t i = 0; i < lists; i += step) {
            const auto copy = std::make_unique<Record>(*record);
            ListChanger changer(seed, what);
            changer.wanted = i;
            changer.walk(*copy);
            const auto all = differences(*record, *copy);
            if (what == ListChanger::What::move && all.empty()) continue;  // to where it was
            ASSERT_EQ(all.size(), 1U) << info.name << testing::PrintToString(textsOf(all));
            EXPECT_EQ(all[0].change, what == ListChanger::What::insert  ? Change::onlyInB
                                     : what == ListChanger::What::erase ? Change::onlyInA
                                                                        : Change::moved);
            ++changed;
          }
        }
      }
    });
  EXPECT_GT(changed, 300U);
}

using Row = std::tuple<Change, std::string, std::string, std::string, std::string>;
Row rowOf(const Difference& one, bool isMirrored) {
  Change change = one.change;
  if (isMirrored && change == Change::onlyInA)
    change = Change::onlyInB;
  else if (isMirrored && change == Change::onlyInB)
    change = Change::onlyInA;
  return isMirrored ? Row(change, one.pathInB, one.pathInA, one.b, one.a)
                    : Row(change, one.pathInA, one.pathInB, one.a, one.b);
}
template <class Record>
void expectMirrored(const Record& a, const Record& b, const DiffOptions& options) {
  std::multiset<Row> one, other;
  for (const Difference& difference : differences(a, b, options)) one.insert(rowOf(difference, false));
  for (const Difference& difference : differences(b, a, options)) other.insert(rowOf(difference, true));
  EXPECT_EQ(one, other);
}

TEST(Diff, SwappedRecordsHaveTheMirroredDifferences) {
  for (const frame::FileKindInfo& info : frame::kFileKinds)
    withFileRecord(info.kind, [&](auto file) {
      constexpr FileKind kKind = decltype(file)::kKind;
      for (std::uint32_t seed = 0; seed < 8; ++seed) {
        const auto a = anyRecord<kKind>(seed), other = anyRecord<kKind>(seed + 100);
        DiffOptions options;
        options.tolerance = seed % 2 == 0 ? 0 : 0.25;
        expectMirrored(*a, *other, options);
        const auto b = std::make_unique<typename decltype(file)::Record>(*a);
        for (std::uint32_t i = 0; i < 12; ++i) {
          const auto what =
              std::array{ListChanger::What::insert, ListChanger::What::erase, ListChanger::What::move}[i % 3];
          ListChanger changer(seed * 100 + i, what);
          const std::size_t lists = listsIn(*b, what);
          if (lists == 0) continue;
          changer.wanted = (seed + 13 * i) % lists;
          changer.walk(*b);
          expectMirrored(*a, *b, options);
        }
      }
    });
  // Lists of few values, where there are many ways to match them.
  std::mt19937 engine(5);
  for (int round = 0; round < 300; ++round) {
    TorvPart a, b;
    for (TorvPart* part : {&a, &b}) {
      part->bindingSets.resize(1);
      for (std::size_t n = engine() % 12; n > 0; --n)
        part->bindingSets[0].numbers.push_back(static_cast<std::uint32_t>(engine() % 3));
      for (std::size_t n = engine() % 8; n > 0; --n) part->marks.push_back(mark(static_cast<int>(engine() % 4)));
    }
    expectMirrored(a, b, {});
  }
}

// ---- the alignment -----------------------------------------------------------------------------------

std::size_t longestCommon(const std::vector<compare::Key>& a, const std::vector<compare::Key>& b) {
  std::vector<std::vector<std::size_t>> best(a.size() + 1, std::vector<std::size_t>(b.size() + 1, 0));
  for (std::size_t i = 1; i <= a.size(); ++i)
    for (std::size_t j = 1; j <= b.size(); ++j)
      best[i][j] = a[i - 1] == b[j - 1] && a[i - 1] != compare::kNoKey ? best[i - 1][j - 1] + 1
                                                                       : std::max(best[i - 1][j], best[i][j - 1]);
  return best[a.size()][b.size()];
}

TEST(Alignment, PairsAsManyElementsInOrderAsPossible) {
  std::mt19937 engine(3);
  for (int round = 0; round < 2000; ++round) {
    std::vector<compare::Key> a(engine() % 20), b(engine() % 20);
    const auto keys = 1 + engine() % 12;
    for (auto* list : {&a, &b})
      for (compare::Key& key : *list) key = engine() % keys;
    compare::Alignment alignment(a.size(), b.size());
    alignment.pairInOrder(a, b);
    std::size_t pairs = 0, last = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
      const std::size_t j = alignment.partnerOfA(i);
      if (j == compare::Alignment::kNone) continue;
      ASSERT_EQ(alignment.partnerOfB(j), i);
      ASSERT_EQ(a[i], b[j]);
      ASSERT_NE(a[i], compare::kNoKey);
      ASSERT_TRUE(pairs == 0 || j > last);
      last = j;
      ++pairs;
    }
    ASSERT_EQ(pairs, longestCommon(a, b)) << testing::PrintToString(a) << testing::PrintToString(b);
  }
}

TEST(Alignment, LargeListsTakeNoQuadraticTime) {
  constexpr std::size_t kCount = 200'000;
  std::vector<compare::Key> a(kCount), b;
  std::iota(a.begin(), a.end(), compare::Key{1});
  const auto pairsOf = [&] {
    compare::Alignment alignment(a.size(), b.size());
    alignment.pairInOrder(a, b);
    alignment.pairMoved(a, b);
    std::size_t pairs = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
      if (alignment.partnerOfA(i) != compare::Alignment::kNone) ++pairs;
    return pairs;
  };
  const auto begin = std::chrono::steady_clock::now();
  b = a;
  std::reverse(b.begin(), b.end());
  EXPECT_EQ(pairsOf(), kCount);
  std::shuffle(b.begin(), b.end(), std::mt19937(1));
  EXPECT_EQ(pairsOf(), kCount);
  for (compare::Key& key : b) key += kCount;  // none in common
  EXPECT_EQ(pairsOf(), 0U);
  // Few keys, which are all over both.
  std::mt19937 engine(2);
  for (compare::Key& key : b) key = 1 + engine() % 5;
  EXPECT_LT(pairsOf(), 10U);
  for (compare::Key& key : a) key = 1 + engine() % 5;
  EXPECT_GT(pairsOf(), kCount / 10);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(60));
}

TEST(Diff, ListsThatAllDifferTakeNoQuadraticTime) {
  TorvPart a, b;
  constexpr std::size_t kCount = 100'000;
  a.marks.resize(kCount);
  b.marks.resize(kCount);
  for (std::size_t i = 0; i < kCount; ++i) {
    a.marks[i] = mark(static_cast<int>(2 * i + 1));
    b.marks[i] = mark(static_cast<int>(2 * i + 2));
  }
  std::size_t count = 0;
  const auto counting = [&](const Difference&) {
    ++count;
    return true;
  };
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_FALSE(compare::diffRecords(a, b, {}, counting));
  EXPECT_EQ(count, 2 * kCount);
  b.marks.resize(kCount / 2);
  EXPECT_FALSE(compare::diffRecords(a, b, {}, counting));
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(60));
}

// ---- files -------------------------------------------------------------------------------------------

struct FileDiff {
  compare::FileDifferences result;
  std::vector<Difference> all;
};
FileDiff diffOf(const compare::FileToCompare& a, const compare::FileToCompare& b, const DiffOptions& options = {}) {
  FileDiff diff;
  diff.result = compare::diffFiles(a, b, options, [&](const Difference& one) {
    diff.all.push_back(one);
    return true;
  });
  EXPECT_EQ(diff.result.differences, diff.all.size());
  return diff;
}

TEST(DiffFiles, StoredMembersAreThoseOfTheVersion) {
  const compare::StoredMembers newest(FileKind::part, 180), older(FileKind::part, 170), oldest(FileKind::part, 52),
      sheet(FileKind::sheet, 180), version5(FileKind::part, 5);
  for (const char* path : {"width", "finalWord1", "patterns.items.toolNumber", "shapes.shapes.trailerValue",
                           "optionText", "placedShapes.shapes.shapes.x", "toolStations.tools.tailText",
                           "processSlots.slotKind", "version", "contourGroups.contourByte"})
    EXPECT_TRUE(newest.has(path)) << path;
  EXPECT_FALSE(older.has("finalWord1"));
  EXPECT_TRUE(older.has("patterns.items.toolNumber"));
  EXPECT_FALSE(oldest.has("placedShapes"));
  EXPECT_FALSE(oldest.has("toolStations.tools.tailText"));
  EXPECT_TRUE(oldest.has("patterns"));
  EXPECT_FALSE(newest.has("woNumber"));
  EXPECT_FALSE(newest.has("recordWord"));
  EXPECT_TRUE(sheet.has("partList.parts.woNumber"));
  EXPECT_FALSE(sheet.has("partList.parts.toolStations"));
  EXPECT_FALSE(compare::StoredMembers(FileKind::part, 79).has("shapes.shapes.trailerValue"));
  EXPECT_TRUE(newest.hasEntry("toolStations.tools.firstValues", 3));
  EXPECT_TRUE(oldest.hasEntry("toolStations.tools.firstValues", 2));
  EXPECT_FALSE(oldest.hasEntry("toolStations.tools.firstValues", 3));
  const compare::StoredMembers material(FileKind::material, 151);
  EXPECT_TRUE(material.hasEntry("stages.blocks", 5));
  EXPECT_FALSE(material.hasEntry("stages.blocks", 6));
  EXPECT_TRUE(material.has("stages.blocks.steps.tableFlag"));
  EXPECT_TRUE(newest.has("patterns.bindFifth"));
  EXPECT_TRUE(compare::StoredMembers(FileKind::part, 159).has("patterns.bindThird"));
  EXPECT_FALSE(compare::StoredMembers(FileKind::part, 159).has("patterns.bindFifth"));
  EXPECT_TRUE(version5.has("width"));
  EXPECT_FALSE(version5.has("descriptionA"));
}

// Members that other kinds of file store, or that a layout keeps in variables, are few.
TEST(DiffFiles, StoredMembersHaveTheNamesOfTheRecords) {
  for (const frame::FileKindInfo& info : frame::kFileKinds) {
    const compare::StoredMembers stored(info.kind, 180);
    std::vector<std::string> missing;
    std::size_t count = 0;
    const std::function<void(const values::Type&, const std::string&)> walk = [&](const values::Type& type,
                                                                                  const std::string& path) {
      if (type.element != nullptr) return walk(*type.element, path);
      if (type.form != values::Form::record) {
        ++count;
        if (!stored.has(path)) missing.push_back(path);
        return;
      }
      for (const values::TypeMember& member : type.members)
        if (member.isStored)
          walk(*member.type, path.empty() ? std::string(member.name) : path + '.' + std::string(member.name));
    };
    walk(values::typeOfRecord(info.kind), "");
    EXPECT_GT(count, 20U) << info.name;
    EXPECT_LE(missing.size() * 10, count) << info.name << testing::PrintToString(missing);
  }
}

TEST(DiffFiles, FileIsTheSameAsItselfAndOtherVersionsSaySo) {
  for (const Kind& kind : kinds())
    for (const int version : kind.versions) {
      const Bytes file = kind.file(version), newest = kind.file(kind.versions.back());
      const auto same = diffOf({file.span(), kind.kind, {}, {}}, {file.span(), kind.kind, {}, {}});
      EXPECT_EQ(same.result.error, "");
      EXPECT_TRUE(same.result.areSame) << kind.name << ' ' << version;
      EXPECT_EQ(same.result.a.version, version);
      const auto other = diffOf({file.span(), kind.kind, {}, {}}, {newest.span(), kind.kind, {}, {}});
      EXPECT_EQ(other.result.areSame, version == kind.versions.back()) << kind.name << ' ' << version;
      if (version != kind.versions.back()) {
        EXPECT_EQ(
            std::count_if(other.all.begin(), other.all.end(), [](const auto& one) { return one.pathInA == "version"; }),
            1)
            << kind.name << ' ' << version;
      }
    }
}

// A record saved at two versions differs only in what the older one does not store.
TEST(DiffFiles, WhatTheVersionDoesNotStoreIsMarked) {
  TorvPart part = partCalled("plate", 12);
  setField(part.customTextA, "since 110");
  part.nestShapeGroups.resize(2);
  part.shapes.shapes[1].note = "since 160";
  part.finalWord1 = 9;
  part.patterns.resize(1);
  part.patterns[0].items.resize(3);
  const auto older = values::saveRecord<FileKind::part>(part, 102),
             newer = values::saveRecord<FileKind::part>(part, 180);
  ASSERT_EQ(older.status, 0);
  ASSERT_EQ(newer.status, 0);
  const auto diff = diffOf({older.bytes, FileKind::part, {}, {}}, {newer.bytes, FileKind::part, {}, {}});
  EXPECT_EQ(textsOf(diff.all)[0], "~ version 102 180");
  EXPECT_EQ(diff.result.notStored + 1, diff.result.differences);
  Texts paths;
  for (const Difference& one : diff.all)
    if (one.notStoredIn == Side::a) paths.push_back(one.pathInB);
  EXPECT_EQ(paths, (Texts{"shapes.shapes[1].note", "customTextA", "nestShapeGroups", "finalWord1"}));
  const auto mirrored = diffOf({newer.bytes, FileKind::part, {}, {}}, {older.bytes, FileKind::part, {}, {}});
  EXPECT_EQ(mirrored.all.back().notStoredIn, Side::b);
  DiffOptions common;
  common.commonOnly = true;
  EXPECT_TRUE(
      diffOf({older.bytes, FileKind::part, {}, {}}, {newer.bytes, FileKind::part, {}, {}}, common).result.areSame);
  // What differs besides is still found.
  part.width = 13;
  const auto changed = values::saveRecord<FileKind::part>(part, 180);
  EXPECT_EQ(textsOf(diffOf({older.bytes, FileKind::part, {}, {}}, {changed.bytes, FileKind::part, {}, {}}, common).all),
            Texts{"~ width 12 13"});
}

// Elements keep their partners even if all of them have something that one version does not store.
TEST(DiffFiles, ElementsAreMatchedByWhatBothVersionsStore) {
  TorvPart part = partCalled("plate", 12);
  part.shapes.shapes.resize(40);
  for (std::size_t i = 0; i < 40; ++i) {
    part.shapes.shapes[i].x = static_cast<float>(i);
    part.shapes.shapes[i].lateWord2 = 5;  // since 158
  }
  part.patterns.resize(1);
  const auto older = values::saveRecord<FileKind::part>(part, 150);
  part.shapes.shapes.erase(part.shapes.shapes.begin());
  const auto newer = values::saveRecord<FileKind::part>(part, 180);
  const auto diff = diffOf({older.bytes, FileKind::part, {}, {}}, {newer.bytes, FileKind::part, {}, {}});
  std::size_t late = 0;
  for (const Difference& one : diff.all) {
    if (!one.pathInB.ends_with(".lateWord2")) continue;
    ++late;
    EXPECT_EQ(one.notStoredIn, Side::a);
    EXPECT_EQ(std::stoul(one.pathInA.substr(14)), std::stoul(one.pathInB.substr(14)) + 1);
  }
  EXPECT_EQ(late, 39U);
  EXPECT_EQ(textsOf(diff.all)[1], "- shapes.shapes[0]");
}

std::unique_ptr<OldSheet> sheetWith(const std::vector<TorvPart>& parts) {
  auto sheet = std::make_unique<OldSheet>();
  sheet->partList.parts = parts;
  for (TorvPart& part : sheet->partList.parts) {
    part.patterns.resize(2);
    for (Pattern& pattern : part.patterns) {
      pattern.items = part.patterns.front().items;
      pattern.originX = 100;
      pattern.gridCount1 = 3;
      pattern.patternWord = 4;
    }
  }
  return sheet;
}

struct PartFiles : testing::Test {
  PartFiles() {
    for (int i = 0; i < 3; ++i) {
      parts.push_back(partCalled("PLATE " + std::to_string(i), static_cast<float>(i) + 10));
      setField(parts.back().partFullDosName, "C:\\PARTS\\FILE" + std::to_string(i) + ".PRT");
      parts.back().patterns.resize(1);
      parts.back().patterns[0].items.resize(3);
    }
    parts[1].toolStations.headerWord = 7;  // no sheet stores it
    const auto placed = sheetWith(parts);
    setField(placed->partList.parts[1].woNumber, "4711");  // no part file stores it
    sheet = values::saveRecord<FileKind::sheet>(*placed, 180).bytes;
    SheetPartList list;
    list.parts = parts;
    group = values::saveRecord<FileKind::groupPart>(list, 180).bytes;
    part = values::saveRecord<FileKind::part>(parts[1], 180).bytes;
  }
  compare::FileToCompare partFile(const std::string& path) const { return {part, FileKind::part, {}, path}; }

  std::vector<TorvPart> parts;
  std::vector<std::byte> sheet, group, part;
};

TEST_F(PartFiles, PartIsTheSameOnASheetAndInAGroup) {
  for (const std::string path : {"/home/x/plate 1.prt", "file1.PRT"}) {
    const auto onSheet = diffOf(partFile(path), {sheet, FileKind::sheet, {}, {}});
    EXPECT_EQ(onSheet.result.error, "");
    EXPECT_EQ(textsOf(onSheet.all), Texts());
    EXPECT_TRUE(onSheet.result.areSame);
    EXPECT_EQ(onSheet.result.b.place, "partList.parts[1]");
    EXPECT_EQ(onSheet.result.b.part, "\"PLATE 1\"");
    // A group part file stores no path.
    const auto inGroup = diffOf({group, FileKind::groupPart, {}, {}}, partFile("plate 1.prt"));
    EXPECT_EQ(textsOf(inGroup.all), Texts());
    EXPECT_TRUE(inGroup.result.areSame);
    EXPECT_EQ(inGroup.result.a.place, "parts[1]");
  }
}

TEST_F(PartFiles, PartIsChosenByNameOrPosition) {
  for (const std::string chosen : {"PLATE 1", "1"})
    EXPECT_TRUE(diffOf(partFile("x.prt"), {sheet, FileKind::sheet, chosen, {}}).result.areSame) << chosen;
  const auto other = diffOf(partFile("x.prt"), {sheet, FileKind::sheet, "PLATE 2", {}});
  ASSERT_FALSE(other.result.areSame);
  EXPECT_EQ(textOf(other.all[0]), "~ width partList.parts[2].width 11 12");
  EXPECT_TRUE(diffOf({group, FileKind::groupPart, "0", {}}, {sheet, FileKind::sheet, "PLATE 0", {}}).result.areSame);
  EXPECT_FALSE(diffOf({sheet, FileKind::sheet, "0", {}}, {sheet, FileKind::sheet, "PLATE 1", {}}).result.areSame);
}

TEST_F(PartFiles, FilesThatCannotBeComparedAreReported) {
  const auto unnamed = diffOf(partFile("x.prt"), {sheet, FileKind::sheet, {}, {}});
  EXPECT_EQ(unnamed.result.error,
            "has no part with the name of the part file; its parts are \"PLATE 0\", \"PLATE 1\", \"PLATE 2\"");
  EXPECT_EQ(unnamed.result.errorIn, Side::b);
  EXPECT_NE(diffOf({sheet, FileKind::sheet, "7", {}}, partFile("")).result.error, "");
  const Bytes machine = machineFile(180), macro = macroFile(180);
  const auto foreign = diffOf(partFile("x"), {machine.span(), FileKind::machine, {}, {}});
  EXPECT_EQ(foreign.result.error, "a part cannot be compared with a machine");
  EXPECT_EQ(diffOf(partFile("x"), {machine.span(), FileKind::machine, "PLATE", {}}).result.error,
            "a machine has no parts");
  EXPECT_EQ(diffOf({macro.span(), FileKind::macro, {}, {}}, {machine.span(), FileKind::machine, {}, {}}).result.error,
            "a macro cannot be compared with a machine");
  EXPECT_EQ(diffOf({{}, FileKind::macro, {}, {}}, partFile("x")).result.error, "has no version word");
  const Bytes refused = Bytes().i16(3).zeros(100);
  EXPECT_EQ(diffOf({refused.span(), FileKind::macro, {}, {}}, partFile("x")).result.error,
            "version 3 is not one of a macro");
}

TEST_F(PartFiles, ListsOfPartsAndMachinesAreFoundInSheets) {
  const auto lists = diffOf({group, FileKind::groupPart, {}, {}}, {sheet, FileKind::sheet, {}, {}});
  EXPECT_EQ(textsOf(lists.all), Texts());
  EXPECT_EQ(lists.result.b.place, "partList");
  std::reverse(parts.begin(), parts.end());
  const auto reversed = values::saveRecord<FileKind::sheet>(*sheetWith(parts), 180).bytes;
  const auto moved = diffOf({group, FileKind::groupPart, {}, {}}, {reversed, FileKind::sheet, {}, {}});
  EXPECT_EQ(moved.all.size(), 2U);
  for (const Difference& one : moved.all) EXPECT_EQ(one.change, Change::moved);

  auto whole = std::make_unique<OldSheet>();
  fullSheet(*whole, 180);
  const auto sheetFileBytes = values::saveRecord<FileKind::sheet>(*whole, 180);
  const auto loaded = values::loadRecord<FileKind::sheet>(sheetFileBytes.bytes);
  ASSERT_EQ(loaded.status, 0);
  const auto machine = values::saveRecord<FileKind::machine>(loaded.record->machine, 180);
  ASSERT_EQ(machine.status, 0);
  const auto machines =
      diffOf({machine.bytes, FileKind::machine, {}, {}}, {sheetFileBytes.bytes, FileKind::sheet, {}, {}});
  EXPECT_EQ(machines.result.error, "");
  EXPECT_EQ(machines.result.b.place, "machine");
  EXPECT_EQ(textsOf(machines.all), Texts());
}

TEST(DiffFiles, DamagedFileIsComparedAsFarAsItWasRead) {
  const Bytes whole = storedPartFile(180);
  std::size_t cuts = 0;
  for (std::size_t size = 2; size < whole.size(); size += whole.size() / 40) {
    const Bytes cut = whole.cut(size);
    const auto diff = diffOf({cut.span(), FileKind::part, {}, {}}, {whole.span(), FileKind::part, {}, {}});
    EXPECT_EQ(diff.result.error, "");
    EXPECT_NE(diff.result.a.status, 0);
    // No member outside of a list has a default that the file does not contain.
    for (const Difference& one : diff.all)
      EXPECT_NE((one.pathInB.empty() ? one.pathInA : one.pathInB).find('['), std::string::npos) << textOf(one);
    ++cuts;
  }
  EXPECT_GT(cuts, 30U);
}

TEST(DiffFiles, AnyBytesAsAnyKindHaveADefinedResult) {
  std::mt19937 engine(11);
  std::vector<std::pair<FileKind, Bytes>> files;
  for (const Kind& kind : kinds()) {
    files.emplace_back(kind.kind, kind.file(kind.versions.back()));
    files.emplace_back(kind.kind, kind.file(kind.versions[kind.versions.size() / 2]));
  }
  std::size_t compared = 0;
  for (int round = 0; round < (isLongRun() ? 20000 : 1500); ++round) {
    std::array<Bytes, 2> bytes;
    std::array<FileKind, 2> fileKinds{};
    const std::size_t first = engine() % files.size();
    for (std::size_t side = 0; side < 2; ++side) {
      const auto& [kind, file] = files[side == 1 && engine() % 2 == 0 ? first : engine() % files.size()];
      fileKinds[side] = engine() % 8 == 0 ? static_cast<FileKind>(engine() % 8) : kind;
      std::vector<std::byte> changed(file.span().begin(), file.span().end());
      for (std::size_t n = engine() % 6; n > 0; --n)
        changed[2 + engine() % (changed.size() - 2)] = static_cast<std::byte>(engine());
      if (engine() % 3 == 0) changed.resize(engine() % changed.size());
      bytes[side] = Bytes::of(changed);
    }
    DiffOptions options;
    options.tolerance = engine() % 2 == 0 ? 0 : 0.1;
    options.commonOnly = engine() % 4 == 0;
    const auto diff = diffOf({bytes[0].span(), fileKinds[0], engine() % 4 == 0 ? "0" : "", "x"},
                             {bytes[1].span(), fileKinds[1], {}, {}}, options);
    if (diff.result.error.empty()) ++compared;
    EXPECT_EQ(diff.result.areSame, diff.result.error.empty() && diff.all.empty());
  }
  EXPECT_GT(compared, 300U);
}

// ---- the command -------------------------------------------------------------------------------------

class DiffCommand : public testing::Test {
 protected:
  DiffCommand() {
    part_ = partCalled("PLATE", 12.5F);
    part_.patterns.resize(1);
    part_.patterns[0].items.resize(3);
    a_ = write("a.prt", part_, 180);
    part_.width = 13;
    part_.marks = {mark(1), mark(2)};
    b_ = write("b.prt", part_, 180);
  }
  std::string write(const std::string& name, TorvPart& part, int version) {
    return folder_.write(name, Bytes::of(values::saveRecord<FileKind::part>(part, version).bytes));
  }
  static std::vector<Json> lines(const std::string& output) {
    std::vector<Json> all;
    for (std::size_t from = 0; from < output.size();) {
      const std::size_t end = output.find('\n', from);
      all.push_back(Json::parse(output.substr(from, end - from)));
      from = end + 1;
    }
    return all;
  }

  TempFolder folder_;
  TorvPart part_;
  std::string a_, b_;
};

TEST_F(DiffCommand, SaysThatFilesAreTheSame) {
  const Outcome run = torvio("diff " + a_ + ' ' + a_);
  EXPECT_EQ(run.code, 0);
  EXPECT_EQ(run.errors, "");
  EXPECT_EQ(run.output, "A  " + a_ + ": part, version 180\nB  " + a_ + ": part, version 180\nNo differences\n");
}

TEST_F(DiffCommand, PrintsDifferencesInColumns) {
  const Outcome run = torvio("diff " + a_ + ' ' + b_);
  EXPECT_EQ(run.code, 1);
  EXPECT_EQ(run.errors, "");
  const std::string body = run.output.substr(run.output.find("\n~") + 1);
  EXPECT_EQ(body,
            "~ width     12.5 -> 13\n"
            "+ marks[0]  {\"markWord1\":1,\"markShort\":0,\"markWord2\":0,\"markWord3\":7}\n"
            "+ marks[1]  {\"markWord1\":2,\"markShort\":0,\"markWord2\":0,\"markWord3\":14}\n"
            "3 differences\n");
}

TEST_F(DiffCommand, JsonHasALineForEachDifferenceAndASummary) {
  const Outcome run = torvio("diff --json " + a_ + ' ' + b_);
  EXPECT_EQ(run.code, 1);
  const std::vector<Json> all = lines(run.output);
  ASSERT_EQ(all.size(), 4U);
  EXPECT_EQ(all[0], Json::parse(R"({"change":"changed","fieldInA":"width","fieldInB":"width","a":12.5,"b":13})"));
  EXPECT_EQ(all[1]["change"], "onlyInB");
  EXPECT_EQ(all[1]["fieldInB"], "marks[0]");
  EXPECT_EQ(all[1]["b"]["markWord3"], 7);
  EXPECT_FALSE(all[1].contains("fieldInA"));
  const Json& summary = all[3]["summary"];
  EXPECT_EQ(summary["same"], false);
  EXPECT_EQ(summary["differences"], 3);
  EXPECT_EQ(summary["printed"], 3);
  EXPECT_EQ(summary["notStored"], 0);
  EXPECT_EQ(summary["a"]["path"], a_);
  EXPECT_EQ(summary["b"]["kind"], "part");
  EXPECT_EQ(summary["b"]["version"], 180);
}

TEST_F(DiffCommand, LimitAndQuietPrintLess) {
  const Outcome limited = torvio("diff --limit 1 " + a_ + ' ' + b_);
  EXPECT_EQ(limited.code, 1);
  EXPECT_NE(limited.output.find("~ width"), std::string::npos);
  EXPECT_EQ(limited.output.find("marks"), std::string::npos);
  EXPECT_TRUE(limited.output.ends_with("... and 2 more\n3 differences\n")) << limited.output;
  const auto json = lines(torvio("diff --json --limit 0 " + a_ + ' ' + b_).output);
  ASSERT_EQ(json.size(), 1U);
  EXPECT_EQ(json[0]["summary"]["differences"], 3);
  EXPECT_EQ(json[0]["summary"]["printed"], 0);
  const Outcome quiet = torvio("diff -q " + a_ + ' ' + b_);
  EXPECT_EQ(quiet.code, 1);
  EXPECT_EQ(quiet.output + quiet.errors, "");
  EXPECT_EQ(torvio("diff --quiet " + a_ + ' ' + a_).code, 0);
}

TEST_F(DiffCommand, ToleranceMakesThemTheSame) {
  part_.marks.clear();
  const std::string c = write("c.prt", part_, 180);
  EXPECT_EQ(torvio("diff " + a_ + ' ' + c).code, 1);
  EXPECT_EQ(torvio("diff --tolerance 0.5 " + a_ + ' ' + c).code, 0);
  EXPECT_EQ(torvio("diff --tolerance 1e-3 " + a_ + ' ' + c).code, 1);
  EXPECT_EQ(torvio("diff --tolerance 1e300 " + a_ + ' ' + c).code, 0);
  for (const std::string bad : {"-1", "x", "nan", "inf", "1x", "''"})
    EXPECT_EQ(torvio("diff --tolerance=" + bad + ' ' + a_ + ' ' + c).code, 2) << bad;
  EXPECT_EQ(torvio("diff --tolerance 1e308 " + a_ + ' ' + c).errors,
            "torvio: diff: --tolerance requires a number from 0 to 1e300, not \"1e308\"\n"
            "Try \"torvio diff --help\".\n");
}

TEST_F(DiffCommand, VersionIsGivenAsTheReason) {
  setField(part_.finalTextA, "new");
  const std::string older = write("older.prt", part_, 150), newer = write("newer.prt", part_, 180);
  const Outcome run = torvio("diff " + older + ' ' + newer);
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.output.find("~ version     150 -> 180\n"), std::string::npos) << run.output;
  EXPECT_NE(run.output.find("~ finalTextA  (not in version 150) -> \"new\"\n"), std::string::npos);
  EXPECT_NE(run.output.find("2 differences, 1 of them in members that one of the versions does not store"),
            std::string::npos);
  EXPECT_EQ(torvio("diff --common " + older + ' ' + newer).code, 0);
  const auto json = lines(torvio("diff --json " + newer + ' ' + older).output);
  EXPECT_EQ(json[1]["notStoredIn"], "b");
  EXPECT_EQ(json[2]["summary"]["notStored"], 1);
}

TEST_F(DiffCommand, PartIsFoundInASheet) {
  TorvPart other = partCalled("OTHER", 1);
  const std::string sheet =
      folder_.write("nest.sht", Bytes::of(values::saveRecord<FileKind::sheet>(*sheetWith({other, part_}), 180).bytes));
  const std::string plate = write("plate.prt", part_, 180);
  const Outcome same = torvio("diff " + plate + ' ' + sheet);
  EXPECT_EQ(same.code, 0) << same.output << same.errors;
  EXPECT_NE(same.output.find("sheet, version 180, partList.parts[1] \"PLATE\"\n"), std::string::npos) << same.output;
  const Outcome changed = torvio("diff --part PLATE " + a_ + ' ' + sheet);
  EXPECT_EQ(changed.code, 1);
  EXPECT_NE(changed.output.find("~ width     12.5 -> 13\n"), std::string::npos) << changed.output;
  const Outcome unknown = torvio("diff " + a_ + ' ' + sheet);
  EXPECT_EQ(unknown.code, 2);
  EXPECT_NE(
      unknown.errors.find("nest.sht: has no part with the name of the part file; its parts are \"OTHER\", \"PLATE\""),
      std::string::npos)
      << unknown.errors;
  EXPECT_EQ(torvio("diff --part NONE " + a_ + ' ' + sheet).code, 2);
  EXPECT_EQ(torvio("diff --part 1 " + a_ + ' ' + b_).code, 2);
}

TEST_F(DiffCommand, FilesThatCannotBeComparedAndMisuseReturnTwo) {
  const Outcome none = torvio("diff " + a_ + ' ' + folder_.path("none"));
  EXPECT_EQ(none.code, 2);
  EXPECT_NE(none.errors.find("none: cannot be opened"), std::string::npos);
  EXPECT_EQ(none.output, "");
  EXPECT_EQ(torvio("diff " + a_).code, 2);
  EXPECT_EQ(torvio("diff " + a_ + ' ' + b_ + ' ' + b_).code, 2);
  EXPECT_EQ(torvio("diff --kind plate " + a_ + ' ' + b_).code, 2);
  EXPECT_EQ(torvio("diff --encoding utf-7 " + a_ + ' ' + b_).code, 2);
  EXPECT_EQ(torvio("diff --limit -1 " + a_ + ' ' + b_).code, 2);
  const std::string text = folder_.write("text", Bytes().i16(-1).zeros(20));
  const Outcome foreign = torvio("diff " + text + ' ' + a_);
  EXPECT_EQ(foreign.code, 2);
  EXPECT_NE(foreign.errors.find("text: -1 is not a version of any kind of file"), std::string::npos) << foreign.errors;
  const std::string refused = folder_.write("refused", Bytes().i16(3).zeros(100));
  EXPECT_EQ(torvio("diff --kind machine " + refused + ' ' + refused).code, 2);
}

TEST_F(DiffCommand, DamagedFileIsComparedAndReturnsTwo) {
  const Bytes whole = TempFolder::read(b_);
  const std::string cut = folder_.write("cut.prt", whole.cut(whole.size() - 1000));
  const Outcome run = torvio("diff --kind part " + a_ + ' ' + cut);
  EXPECT_EQ(run.code, 2);
  EXPECT_NE(run.output.find("~ width     12.5 -> 13\n"), std::string::npos) << run.output;
  EXPECT_NE(run.errors.find("cut.prt: damaged at "), std::string::npos) << run.errors;
  const Outcome same = torvio("diff --kind part " + b_ + ' ' + cut);
  EXPECT_EQ(same.code, 2);
  EXPECT_NE(same.output.find("No differences in what could be read\n"), std::string::npos) << same.output;
  const auto json = lines(torvio("diff --json --kind part " + b_ + ' ' + cut).output);
  EXPECT_FALSE(json.back()["summary"]["a"].contains("fault"));
  EXPECT_TRUE(json.back()["summary"]["b"]["fault"].contains("offset"));
}

TEST_F(DiffCommand, TextsOfFilesAndNamesHaveNoEffect) {
  if (!kIsPosix) GTEST_SKIP() << "no such names";
  std::string hostile =
      "\x1b[2J\n\"</script>\x9B"
      "2J\x07";
  setField(part_.noteText, hostile);
  setField(part_.partName, hostile);
  SheetPartList list;
  list.parts = {part_, part_};
  const std::string a = folder_.write("[a,b]", Bytes::of(values::saveRecord<FileKind::groupPart>(list, 180).bytes));
  list.parts[1].width = 99;
  setField(list.parts[1].noteText, hostile + "\x90");
  const std::string b =
      folder_.write("-q\n\x1b[31m", Bytes::of(values::saveRecord<FileKind::groupPart>(list, 180).bytes));
  for (const std::string options : {"", "--json ", "--limit 1 ", "--encoding cp437 "}) {
    const Outcome run = torvio("diff --kind group-part " + options + "'" + a + "' '" + b + "'");
    EXPECT_EQ(run.code, 1) << run.errors;
    for (std::size_t i = 0; i + 1 < run.output.size(); ++i) {
      const auto code = static_cast<unsigned char>(run.output[i]),
                 after = static_cast<unsigned char>(run.output[i + 1]);
      const bool isControl = (code < 0x20 && code != '\n') || code == 0x7F || (code == 0xC2 && after < 0xA0);
      ASSERT_FALSE(isControl) << run.output;
    }
    const std::size_t expected = options == "--json " ? 3 : options == "--limit 1 " ? 5 : 5;
    EXPECT_EQ(static_cast<std::size_t>(std::count(run.output.begin(), run.output.end(), '\n')), expected) << run.output;
    if (options == "--json ") lines(run.output);
  }
  const Outcome listed = torvio("diff --part $'\\x1b[2J' " + a_ + " '" + a + "' --kind-b group-part");
  EXPECT_EQ(listed.code, 2);
  EXPECT_EQ(listed.errors.find('\x1b'), std::string::npos);
}

TEST_F(DiffCommand, PipesAndClosedOutputAreHandled) {
#if !defined(_WIN32)
  const std::string tool = TORVIO_COMMAND;
  Outcome run = runShell("cat " + b_ + " | " + tool + " diff --kind part " + a_ + " /dev/stdin");
  EXPECT_EQ(run.code, 1);
  EXPECT_NE(run.output.find("3 differences"), std::string::npos);
  run = runShell(tool + " diff " + a_ + ' ' + b_ + " > /dev/full");
  EXPECT_EQ(run.code, 3);
  EXPECT_NE(run.errors.find("cannot write the output"), std::string::npos);
#endif
}

}  // namespace
