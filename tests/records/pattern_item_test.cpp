// Pattern items and their lists: stored bytes at every version, zeros below 62, and cut files.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "src/records/record_io.h"
#include "tests/support/bytes.h"
#include "tests/support/host.h"

namespace {

using oldtorvio::PatternItem;
using oldtorvio::PatternItemList;
using oldtorvio::codec::InStream;
using oldtorvio::codec::OutStream;
using testing_support::Bytes;
using testing_support::readFrom;
using testing_support::written;

// Both gates from both sides, and the ends of what a version word can hold.
const std::vector<int> kVersions = {0, 52, 61, 62, 63, 89, 90, 91, 161, 65535};
constexpr int kNever = 65536;

// A field in stored order: its bytes, the first version that stores it, and how an item holds it.
struct Field {
  std::string name;
  std::function<Bytes(const PatternItem&)> get;
  std::function<void(PatternItem&, const Bytes&)> put;
  Bytes stored;
  int since = 0;
  bool zeroBelow = false;  // a load of an older version sets zero
};

template <class At>
Field plain(std::string name, At at, const Bytes& stored, int since = 0, bool zeroBelow = false) {
  return {std::move(name),
          [at](const PatternItem& item) {
            const auto& field = at(item);
            return testing_support::bytesOf(field);
          },
          [at](PatternItem& item, const Bytes& bytes) {
            auto& field = at(item);
            ASSERT_EQ(sizeof field, bytes.size());
            testing_support::setFromBytes(field, bytes.span());
          },
          stored,
          since,
          zeroBelow};
}

#define AT(field) \
#field, [](auto& item) -> auto& { return item.field; }

// One item with a value of its own in each field; `k` tells items of a list apart.
std::vector<Field> fieldsOf(std::uint32_t k = 0) {
  return {
      plain(AT(itemWord1), Bytes().u32(0x11121310U + k)),
      plain(AT(toolNumber), Bytes().i32(-559038737)),
      plain(AT(itemWord2), Bytes().u32(0x21222320U + k), 62, true),
      plain(AT(itemPair1), Bytes().u32(0x31323334U).u32(0x35363738U), 62, true),
      plain(AT(itemPair2), Bytes().u32(0x41424344U).u32(0x45464748U), 62, true),
      plain(AT(itemShort1), Bytes().u32(0xFFFF8001U), 62, true),
      plain(AT(itemShort2), Bytes().u32(0x00017002U), 62, true),
      plain(AT(itemWord3), Bytes().u32(0x51525354U), 62, true),
      plain(AT(itemWord4), Bytes().u32(0x61626364U), 62, true),
      plain(AT(lateWord), Bytes().u32(0x71727374U), 90),
      plain(AT(memoryWord1), Bytes().u32(0x81828384U), kNever),
      plain(AT(memoryWord2), Bytes().u32(0x91929394U), kNever),
  };
}

Bytes storedAt(const std::vector<Field>& fields, int version) {
  Bytes all;
  for (const Field& field : fields) {
    if (version >= field.since) all.add(field.stored);
  }
  return all;
}

PatternItem holding(const std::vector<Field>& fields) {
  PatternItem item;
  for (const Field& field : fields) field.put(item, field.stored);
  return item;
}

// An item of which no byte is what the file holds.
PatternItem usedBefore() {
  PatternItem item;
  for (const Field& field : fieldsOf()) {
    Bytes other;
    for (std::byte one : field.stored.span()) other.u8(std::to_integer<std::uint8_t>(~one));
    field.put(item, other);
  }
  return item;
}

// Compares every field with what `size` stored bytes leave on top of `before`; true if they suffice.
bool expectLoaded(const std::vector<Field>& fields, int version, std::size_t size, const PatternItem& item,
                  const PatternItem& before) {
  bool reached = true;
  std::size_t end = 0;
  for (const Field& field : fields) {
    Bytes expected = field.get(before);
    if (reached && version >= field.since) {
      end += field.stored.size();
      reached = end <= size;
      if (reached) expected = field.stored;
    } else if (reached && field.zeroBelow) {
      expected = Bytes().zeros(field.stored.size());
    }
    EXPECT_EQ(field.get(item), expected) << field.name;
  }
  return reached;
}

void checkLoad(int version, const Bytes& bytes, const PatternItem& before) {
  PatternItem item = before;
  std::size_t consumed = 0;
  const int result = readFrom(
      bytes, [&](InStream& s) { return oldtorvio::ReadPatternItem(s, version, item); }, &consumed);
  EXPECT_EQ(result, expectLoaded(fieldsOf(), version, bytes.size(), item, before) ? 0 : 1);
  EXPECT_EQ(consumed, bytes.size());
}

int readList(const Bytes& bytes, int version, PatternItemList& list, std::size_t* consumed = nullptr) {
  return readFrom(
      bytes, [&](InStream& s) { return oldtorvio::ReadPatternItemList(s, version, list); }, consumed);
}

TEST(FreshPatternItem, IsAllZero) {
  const PatternItem item;
  for (const Field& field : fieldsOf()) {
    EXPECT_EQ(field.get(item), Bytes().zeros(field.stored.size())) << field.name;
  }
}

TEST(PatternItem, LoadsItsStoredFieldsAtEveryVersion) {
  for (int version : kVersions) {
    SCOPED_TRACE(version);
    checkLoad(version, storedAt(fieldsOf(), version), PatternItem());
  }
}

TEST(PatternItem, TakesEightBytesBelow62Then44AndFrom90On48) {
  for (int version : kVersions) {
    bool ok = false;
    const Bytes bytes =
        written([&](OutStream& s) { return oldtorvio::WritePatternItem(s, version, holding(fieldsOf())); }, &ok);
    EXPECT_TRUE(ok) << version;
    EXPECT_EQ(bytes, storedAt(fieldsOf(), version)) << version;
    EXPECT_EQ(bytes.size(), version < 62 ? 8U : version < 90 ? 44U : 48U) << version;
  }
}

TEST(PatternItem, ReloadSetsZerosBelow62AndLeavesTheLateWordBelow90) {
  for (int version : kVersions) {
    SCOPED_TRACE(version);
    checkLoad(version, storedAt(fieldsOf(), version), usedBefore());
  }
}

TEST(PatternItem, CutAtEveryByteFailsAndKeepsWhatArrivedWhole) {
  for (int version : kVersions) {
    const Bytes bytes = storedAt(fieldsOf(), version);
    for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
      SCOPED_TRACE("version " + std::to_string(version) + " cut " + std::to_string(cut));
      checkLoad(version, bytes.cut(cut), PatternItem());
      checkLoad(version, bytes.cut(cut), usedBefore());
      if (HasFailure()) return;
    }
  }
}

TEST(PatternItem, PairsArriveAsBlocks) {
  const Bytes bytes = storedAt(fieldsOf(), 62);
  for (std::size_t cut = 12; cut < 20; ++cut) {
    PatternItem item;
    EXPECT_EQ(readFrom(bytes.cut(cut), [&](InStream& s) { return oldtorvio::ReadPatternItem(s, 62, item); }), 1);
    EXPECT_EQ(item.itemPair1[0], 0U) << cut;
  }
  for (std::size_t cut = 20; cut < 28; ++cut) {
    PatternItem item;
    EXPECT_EQ(readFrom(bytes.cut(cut), [&](InStream& s) { return oldtorvio::ReadPatternItem(s, 62, item); }), 1);
    EXPECT_EQ(item.itemPair1[1], 0x35363738U) << cut;
    EXPECT_EQ(item.itemPair2[0], 0U) << cut;
  }
}

Bytes storedList(int version, std::uint32_t count) {
  Bytes bytes = Bytes().u32(count);
  for (std::uint32_t k = 0; k < count; ++k) bytes.add(storedAt(fieldsOf(k), version));
  return bytes;
}

TEST(PatternItemList, LoadsAndSavesItsItemsInOrderAtEveryVersion) {
  for (int version : kVersions) {
    for (std::uint32_t count = 0; count <= 4; ++count) {
      SCOPED_TRACE("version " + std::to_string(version) + " count " + std::to_string(count));
      const Bytes bytes = storedList(version, count);
      PatternItemList list;
      std::size_t consumed = 0;
      EXPECT_EQ(readList(bytes, version, list, &consumed), 0);
      EXPECT_EQ(consumed, bytes.size());
      ASSERT_EQ(list.size(), count);
      for (std::uint32_t k = 0; k < count; ++k) expectLoaded(fieldsOf(k), version, 1000, list[k], PatternItem());
      bool ok = false;
      EXPECT_EQ(written([&](OutStream& s) { return oldtorvio::WritePatternItemList(s, version, list); }, &ok), bytes);
      EXPECT_TRUE(ok);
    }
  }
}

TEST(PatternItemList, EachItemStartsFromZeroWhateverTheListHeldBefore) {
  for (int version : kVersions) {
    SCOPED_TRACE(version);
    PatternItemList list(5, usedBefore());
    EXPECT_EQ(readList(storedList(version, 2), version, list), 0);
    ASSERT_EQ(list.size(), 2U);
    for (std::uint32_t k = 0; k < 2; ++k) expectLoaded(fieldsOf(k), version, 1000, list[k], PatternItem());
  }
}

TEST(PatternItemList, KeepsItsItemsWhenTheStoredCountIsZero) {
  PatternItemList list(3, usedBefore());
  std::size_t consumed = 0;
  EXPECT_EQ(readList(Bytes().i32(0).fill(100, 0xEE), 90, list, &consumed), 0);
  EXPECT_EQ(consumed, 4U);
  ASSERT_EQ(list.size(), 3U);
  EXPECT_EQ(list[2].lateWord, usedBefore().lateWord);
}

TEST(PatternItemList, IsEmptiedByACountBelowZero) {
  for (int count : {-1, -2, std::numeric_limits<int>::min()}) {
    PatternItemList list(3);
    std::size_t consumed = 0;
    EXPECT_EQ(readList(Bytes().i32(count).fill(100, 0xEE), 90, list, &consumed), 0) << count;
    EXPECT_EQ(consumed, 4U) << count;
    EXPECT_TRUE(list.empty()) << count;
  }
}

TEST(PatternItemList, CutInsideItsCountIsAFailureThatKeepsTheItems) {
  for (std::size_t cut = 0; cut < 4; ++cut) {
    PatternItemList list(3);
    EXPECT_EQ(readList(Bytes().i32(1).cut(cut), 90, list), 1) << cut;
    EXPECT_EQ(list.size(), 3U) << cut;
  }
}

TEST(PatternItemList, CutAtEveryByteKeepsTheItemsThatWereComplete) {
  for (int version : kVersions) {
    const std::size_t one = storedAt(fieldsOf(), version).size();
    const Bytes bytes = storedList(version, 3);
    for (std::size_t cut = 4; cut < bytes.size(); ++cut) {
      SCOPED_TRACE("version " + std::to_string(version) + " cut " + std::to_string(cut));
      PatternItemList list(4, usedBefore());
      EXPECT_EQ(readList(bytes.cut(cut), version, list), 1);
      ASSERT_EQ(list.size(), (cut - 4) / one);
      for (std::uint32_t k = 0; k < list.size(); ++k) expectLoaded(fieldsOf(k), version, 1000, list[k], PatternItem());
    }
  }
}

TEST(PatternItemList, CountBeyondTheFileIsAFailure) {
  for (int count : {3, 1000000, 2000000000, std::numeric_limits<int>::max()}) {
    PatternItemList list;
    EXPECT_EQ(readList(Bytes().i32(count).zeros(96), 90, list), 1) << count;
    EXPECT_EQ(list.size(), 2U) << count;
  }
}

TEST(PatternItemList, SaveIntoAFileThatTakesNothingIsFalse) {
  const PatternItemList list(100000);
  std::FILE* file = testing_support::unwritableFile();
  ASSERT_NE(file, nullptr);
  {
    OutStream stream(file);
    EXPECT_FALSE(oldtorvio::WritePatternItemList(stream, 90, list));
  }
  std::fclose(file);
}

}  // namespace
