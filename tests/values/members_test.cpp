// The lists of members name every member of every record, in declared order.
#include "torvio/values/members.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "tests/values/every_record.h"

namespace oldtorvio::values {

// Records of this test only, the lists of which lack a member. MEMBERS does not compile for them
// (tests/values/incomplete_members.cpp), so the lists are written out.
struct LacksMiddle {
  std::int32_t first = 0, forgotten = 0, last = 0;
};
template <>
struct Members<LacksMiddle> : MembersOf<LacksMiddle> {
  static constexpr auto kInfos = infosIn<2>("first, last");
  static decltype(auto) apply(auto& r, auto&& fn) { return fn(r.first, r.last); }
};
struct LacksEnd {
  std::int32_t first = 0, last = 0;
  std::uint8_t forgotten[4] = {};
};
template <>
struct Members<LacksEnd> : MembersOf<LacksEnd> {
  static constexpr auto kInfos = infosIn<2>("first, last");
  static decltype(auto) apply(auto& r, auto&& fn) { return fn(r.first, r.last); }
};
struct WrongOrder {
  std::int32_t first = 0, last = 0;
};
template <>
struct Members<WrongOrder> : MembersOf<WrongOrder> {
  static constexpr auto kInfos = infosIn<2>("last, first");
  static decltype(auto) apply(auto& r, auto&& fn) { return fn(r.last, r.first); }
};

}  // namespace oldtorvio::values

namespace {

using namespace oldtorvio;
using testing_support::EveryRecord;
using values::MemberInfo;
using values::Members;

constexpr std::size_t roundedUp(std::size_t offset, std::size_t alignment) {
  return (offset + alignment - 1) / alignment * alignment;
}

// Where a list does not go on at the next place that alignment allows: the member there, or "the end".
template <class Record>
std::vector<std::string> gaps() {
  std::vector<std::string> found;
  const auto record = std::make_unique<Record>();
  const auto* const begin = reinterpret_cast<const std::byte*>(record.get());
  std::size_t end = 0;
  Members<Record>::of(std::as_const(*record), [&](const MemberInfo& info, const auto& member) {
    const auto offset = static_cast<std::size_t>(reinterpret_cast<const std::byte*>(&member) - begin);
    if (offset != roundedUp(end, alignof(decltype(member)))) found.emplace_back(info.name);
    end = offset + sizeof member;
  });
  if (sizeof(Record) != roundedUp(end, alignof(Record))) found.emplace_back("the end");
  return found;
}

TEST(Members, CoverEveryByteOfEveryRecordThatIsNotPadding) {
  EveryRecord::each(
      []<class Record>() { EXPECT_EQ(gaps<Record>(), std::vector<std::string>()) << Members<Record>::kRecordName; });
}

TEST(Members, ThatAreMissingOrOutOfOrderLeaveGaps) {
  EXPECT_EQ(gaps<values::LacksMiddle>(), std::vector<std::string>{"last"});
  EXPECT_EQ(gaps<values::LacksEnd>(), std::vector<std::string>{"the end"});
  EXPECT_EQ(gaps<values::WrongOrder>(), (std::vector<std::string>{"last", "first", "the end"}));
}

// Only the members of this record are not bound by position. Every byte that construction sets, whatever the memory
// held before, belongs to a member.
TEST(Members, OfARecordWithABaseLeaveOutNone) {
#if !defined(__clang__)
  GTEST_SKIP() << "g++ sets the padding between the members as well";
#endif
  struct Memory {
    alignas(ShapeProgramEx) std::byte bytes[sizeof(ShapeProgramEx)];
  };
  Memory zeros, ones;
  std::memset(zeros.bytes, 0, sizeof zeros.bytes);
  std::memset(ones.bytes, 0xFF, sizeof ones.bytes);
  // Without parentheses, which would set all to zero first.
  auto* const record = new (zeros.bytes) ShapeProgramEx;
  auto* const other = new (ones.bytes) ShapeProgramEx;
  std::vector<bool> isListed(sizeof(ShapeProgramEx));
  Members<ShapeProgramEx>::of(*record, [&](const MemberInfo&, auto& member) {
    const auto offset = reinterpret_cast<std::byte*>(&member) - zeros.bytes;
    std::fill_n(isListed.begin() + offset, sizeof member, true);
  });
  for (std::size_t i = 0; i < isListed.size(); ++i) EXPECT_TRUE(isListed[i] || zeros.bytes[i] != ones.bytes[i]) << i;
  std::destroy_at(other);
  std::destroy_at(record);
}

// A member is bound by its position and has the name of its place in the list: both must mean the same one.
TEST(Members, HaveTheirDeclaredNames) {
  EveryRecord::each([]<class Record>() {
    SCOPED_TRACE(Members<Record>::kRecordName);
    const auto record = std::make_unique<typename Members<Record>::ByName>();
    const auto addresses = [](auto&... members) { return std::vector<const void*>{&members...}; };
    const auto byName = record->applyByName(addresses);
    EXPECT_EQ(byName, Members<Record>::apply(static_cast<Record&>(*record), addresses));
    EXPECT_EQ(byName.size(), Members<Record>::kInfos.size());
    std::set<std::string_view> names;
    for (const MemberInfo& info : Members<Record>::kInfos) {
      EXPECT_TRUE(names.insert(info.name).second) << info.name;
      EXPECT_FALSE(info.name.empty());
      EXPECT_EQ(info.name.find_first_of(" (),."), std::string_view::npos) << info.name;
    }
  });
}

template <class Record>
std::vector<std::string> namesOf(bool isStored) {
  std::vector<std::string> names;
  for (const MemberInfo& info : Members<Record>::kInfos)
    if (info.isStored == isStored) names.emplace_back(info.name);
  return names;
}

TEST(Members, AreReadFromTheListAsItIsWritten) {
  using Names = std::vector<std::string>;
  EXPECT_EQ(namesOf<MarkEntry>(true), (Names{"markWord1", "markShort", "markWord2", "markWord3"}));
  EXPECT_EQ(namesOf<MarkEntry>(false), Names());
  EXPECT_EQ(namesOf<GroupQuad>(true), Names{"quadWords"});
  EXPECT_EQ(namesOf<ToolStationList>(true),
            (Names{"stations", "headerWord", "secondHeaderWord", "stationModeWord", "tools", "extraWords"}));
  EXPECT_EQ(namesOf<ToolStationList>(false), (Names{"spareWord", "stationModeCode"}));
  const Names program = namesOf<ShapeProgramEx>(true);
  EXPECT_EQ(program.size(), 18U);
  EXPECT_EQ(program.front(), "programWord1");
  EXPECT_EQ(program[11], "programWord7");
  EXPECT_EQ(program[12], "extFlag1");
  EXPECT_EQ(program.back(), "extFlag3");
}

TEST(Members, AreVisitedInOrderAndCanBeChanged) {
  MarkEntry mark;
  std::uint32_t next = 1;
  Members<MarkEntry>::of(mark, [&](const MemberInfo&, auto& member) {
    member = static_cast<std::remove_reference_t<decltype(member)>>(next++);
  });
  EXPECT_EQ(mark.markWord1, 1U);
  EXPECT_EQ(mark.markShort, 2U);
  EXPECT_EQ(mark.markWord2, 3U);
  EXPECT_EQ(mark.markWord3, 4U);
  const MarkEntry other{5, 6, 7, 8};
  std::string sums;
  Members<MarkEntry>::ofBoth(mark, other, [&](const MemberInfo& info, const auto& one, const auto& two) {
    sums += std::string(info.name) + ' ' + std::to_string(one + two) + ' ';
  });
  EXPECT_EQ(sums, "markWord1 6 markShort 8 markWord2 10 markWord3 12 ");
}

// ---- every record that a record holds has members itself ---------------------------------------------

template <class T>
constexpr bool isKnown() {
  if constexpr (values::Number<T> || values::Text<T>)
    return true;
  else if constexpr (values::List<T> || values::Lazy<T>)
    return isKnown<typename T::value_type>();
  else if constexpr (values::Array<T>)
    return isKnown<values::ElementOf<T>>();
  else if constexpr (values::kIsPair<T>)
    return isKnown<typename T::first_type>() && isKnown<typename T::second_type>();
  else
    return EveryRecord::kHas<T>;
}

TEST(Members, AreNumbersTextsListsAndRecordsWithMembers) {
  EveryRecord::each([]<class Record>() {
    const auto record = std::make_unique<Record>();
    Members<Record>::of(*record, [](const MemberInfo& info, auto& member) {
      EXPECT_TRUE(isKnown<std::remove_reference_t<decltype(member)>>()) << Members<Record>::kRecordName << info.name;
    });
  });
  EXPECT_FALSE(values::HasMembers<std::string>);
  EXPECT_FALSE(values::HasMembers<std::int32_t>);
  EXPECT_TRUE(values::HasMembers<const MarkEntry>);
}

}  // namespace
