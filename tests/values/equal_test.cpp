// Records are equal exactly if every member is, and the first that differs is found by its path.
#include "torvio/values/equal.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/values/every_record.h"

namespace {

using namespace oldtorvio;
using testing_support::EveryRecord;
using values::equalContents;
using values::firstDifference;
using values::MemberInfo;
using values::Members;

// ---- one change after another ------------------------------------------------------------------------

// The indices of short arrays, and of long ones the first, one in the middle and the last.
std::vector<std::size_t> someOf(std::size_t size) {
  if (size > 12) return {0, size / 2, size - 1};
  std::vector<std::size_t> all(size);
  for (std::size_t i = 0; i < size; ++i) all[i] = i;
  return all;
}

// Gives every list within `value` one element.
template <class T>
void fillLists(T& value) {
  if constexpr (values::Text<T>) {
    value = "text";
  } else if constexpr (values::List<T>) {
    value.assign(1, typename T::value_type());
    fillLists(value.front());
  } else if constexpr (values::Array<T>) {
    for (auto& element : value) fillLists(element);
  } else if constexpr (values::HasMembers<T>) {
    Members<T>::of(value, [](const MemberInfo&, auto& member) { fillLists(member); });
  }
}

// Changes the value in one place after another, calls check(path of the place) and takes the change back.
using Check = std::function<void(const std::string& path)>;
template <class T>
void changeEach(T& value, const std::string& path, const Check& check) {
  if constexpr (values::Number<T> || values::FixedText<T>) {
    auto* const bytes = reinterpret_cast<unsigned char*>(&value);
    for (const std::size_t i : someOf(sizeof value)) {
      bytes[i] ^= 1U;
      check(path);
      bytes[i] ^= 1U;
    }
  } else if constexpr (values::Text<T>) {
    value += '\0';
    check(path);
    value.pop_back();
    value.back() ^= 1;
    check(path);
    value.back() ^= 1;
  } else if constexpr (values::kIsPair<T>) {
    changeEach(value.first, path + ".first", check);
    changeEach(value.second, path + ".second", check);
  } else if constexpr (values::HasMembers<T>) {
    Members<T>::of(value, [&](const MemberInfo& info, auto& member) {
      changeEach(member, (path.empty() ? path : path + '.') + std::string(info.name), check);
    });
  } else {
    if constexpr (values::List<T>) {
      value.emplace_back();
      check(path);
      value.pop_back();
    }
    for (const std::size_t i : someOf(std::size(value)))
      changeEach(value[i], path + '[' + std::to_string(i) + ']', check);
  }
}

TEST(EqualContents, DifferWhereAnyMemberDiffers) {
  EveryRecord::each([]<class Record>() {
    SCOPED_TRACE(Members<Record>::kRecordName);
    const auto record = std::make_unique<Record>();
    fillLists(*record);
    const auto other = std::make_unique<Record>(*record);
    int changes = 0, overlooked = 0;
    changeEach(*other, "", [&](const std::string& path) {
      ++changes;
      if (!equalContents(*record, *other) && firstDifference(*record, *other) == path) return;
      if (++overlooked <= 3)
        ADD_FAILURE() << path << ": " << firstDifference(*record, *other).value_or("no difference");
    });
    EXPECT_EQ(overlooked, 0);
    EXPECT_GE(static_cast<std::size_t>(changes), Members<Record>::kInfos.size());
    EXPECT_TRUE(equalContents(*record, *other));
    EXPECT_EQ(firstDifference(*record, *other), std::nullopt);
  });
}

// What the memory held before shows in the padding and nowhere else.
TEST(EqualContents, IgnoresPadding) {
  EveryRecord::each([]<class Record>() {
    struct Memory {
      alignas(Record) std::byte bytes[sizeof(Record)];
    };
    const auto zeros = std::make_unique<Memory>(), ones = std::make_unique<Memory>();
    std::memset(zeros->bytes, 0, sizeof zeros->bytes);
    std::memset(ones->bytes, 0xFF, sizeof ones->bytes);
    // Without parentheses, which would set all to zero first.
    auto* const record = new (zeros->bytes) Record;
    auto* const other = new (ones->bytes) Record;
    EXPECT_TRUE(*record == *other) << Members<Record>::kRecordName;
    std::destroy_at(other);
    std::destroy_at(record);
  });
}

// ---- numbers -----------------------------------------------------------------------------------------

TEST(EqualContents, ComparesFloatsByTheirBits) {
  Shape one, other;
  one.x = other.x = std::numeric_limits<float>::quiet_NaN();
  EXPECT_TRUE(one == other);
  other.x = -other.x;
  EXPECT_FALSE(one == other);
  other = one;
  one.values[8] = 0;
  other.values[8] = -0.0F;
  EXPECT_FALSE(one == other);
  EXPECT_EQ(firstDifference(one, other), "values[8]");
}

// ---- texts and lists ---------------------------------------------------------------------------------

TEST(EqualContents, ComparesTextsBeyondTheirNul) {
  SheetTextEntry one, other;
  other.entryText2[255] = 'x';
  EXPECT_EQ(firstDifference(one, other), "entryText2");
  const auto machine = std::make_unique<OldMachine>(), copy = std::make_unique<OldMachine>();
  machine->textColumnB[2] = std::string("\0x", 2);
  copy->textColumnB[2] = std::string("\0y", 2);
  EXPECT_EQ(firstDifference(*machine, *copy), "textColumnB[2]");
}

TEST(EqualContents, ComparesListsByLengthBeforeElements) {
  TorvPart one, other;
  one.marks.resize(2);
  other.marks.resize(3);
  other.marks[0].markShort = 1;
  EXPECT_EQ(firstDifference(one, other), "marks");
  one.marks.resize(3);
  EXPECT_EQ(firstDifference(one, other), "marks[0].markShort");
  EXPECT_TRUE(one.patterns == other.patterns);
}

TEST(FirstDifference, IsThatOfTheFirstMemberInDeclaredOrder) {
  TorvPart one;
  one.patterns.resize(2);
  one.patterns[1].items.resize(4);
  TorvPart other = one;
  other.finalWord2 = 1;
  EXPECT_EQ(firstDifference(one, other), "finalWord2");
  other.patterns[1].bindFourth.push_back(0);
  EXPECT_EQ(firstDifference(one, other), "patterns[1].bindFourth");
  other.patterns[1].items[3].toolNumber = 7;
  EXPECT_EQ(firstDifference(one, other), "patterns[1].items[3].toolNumber");
  other.width = 1;
  EXPECT_EQ(firstDifference(one, other), "width");
}

// ---- lazy arrays -------------------------------------------------------------------------------------

bool hasNoMemory(const ProcessSlots& slots) { return &slots[0] == &slots[249]; }

TEST(EqualContents, TakesNoMemoryForElementsOfLazyArrays) {
  const TorvPart one;
  TorvPart other;
  EXPECT_TRUE(one == other);
  EXPECT_EQ(firstDifference(one, other), std::nullopt);
  EXPECT_TRUE(hasNoMemory(one.processSlots));
  EXPECT_TRUE(hasNoMemory(other.processSlots));
  // An element that holds its default is equal to one without memory.
  other.processSlots[249].slotByte = 0;
  EXPECT_FALSE(hasNoMemory(other.processSlots));
  EXPECT_TRUE(one == other);
  other.processSlots[249].slotByte = 1;
  EXPECT_EQ(firstDifference(one, other), "processSlots[249].slotByte");
  EXPECT_TRUE(hasNoMemory(one.processSlots));
}

}  // namespace
