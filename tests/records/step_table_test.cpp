// Step tables and their lists: stored bytes for every count and version, refused counts, and cut files.
#include <gtest/gtest.h>

#include <algorithm>
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

using oldtorvio::StepTable;
using oldtorvio::StepTableList;
using oldtorvio::codec::InStream;
using oldtorvio::codec::OutStream;
using testing_support::Bytes;
using testing_support::readFrom;
using testing_support::written;

// Both gates from both sides, and the ends of what a version word can hold.
const std::vector<int> kVersions = {0, 52, 79, 80, 81, 89, 90, 91, 161, 65535};
constexpr int kNever = 65536;
constexpr std::size_t kBytesBeforeStepCount = 20;

// A field in stored order: its bytes, the first version that stores it, and how a table holds it.
struct Field {
  std::string name;
  std::function<Bytes(const StepTable&)> get;
  std::function<void(StepTable&, const Bytes&)> put;
  Bytes stored;
  int since = 0;
  bool zeroBelow = false;  // a load of an older version sets zero
  bool tail = false;       // a load goes well without it and what follows
};

template <class At>
Field plain(std::string name, At at, const Bytes& stored, int since = 0, bool zeroBelow = false, bool tail = false) {
  return {std::move(name),
          [at](const StepTable& table) {
            const auto& field = at(table);
            return testing_support::bytesOf(field);
          },
          [at](StepTable& table, const Bytes& bytes) {
            auto& field = at(table);
            ASSERT_EQ(sizeof field, bytes.size());
            testing_support::setFromBytes(field, bytes.span());
          },
          stored,
          since,
          zeroBelow,
          tail};
}

#define AT(field) \
#field, [=](auto& table) -> auto& { return table.field; }

// One table of `count` entries with a value of its own in each field; `k` tells tables of a list apart.
std::vector<Field> fieldsOf(int count, std::uint32_t k = 0) {
  std::vector<Field> all = {
      plain(AT(tableWord1), Bytes().u32(0x11121310U + k)),
      plain(AT(tableBlock), Bytes().raw({0x21, 0x22, 0x23, 0x24, 0x25, 0x26, 0x27, 0x28})),
      plain(AT(tableWord2), Bytes().u32(0x31323334U)),
      plain(AT(tableWord3), Bytes().u32(0x41424344U)),
      plain(AT(stepCount), Bytes().i8(count), 0, false, true),
  };
  std::vector<Field> unused;
  for (std::size_t i = 0; i < 20; ++i) {
    const bool isStored = static_cast<int>(i) < count;
    std::vector<Field>& to = isStored ? all : unused;
    const int since = isStored ? 0 : kNever;
    const auto n = static_cast<std::uint8_t>(i);
    to.push_back(plain(AT(stepByteA[i]), Bytes().u8(static_cast<std::uint8_t>(0x10 + n)), since));
    to.push_back(plain(AT(stepWord[i]), Bytes().u32(0xE1E2E300U + n), since));
    to.push_back(plain(AT(stepByteB[i]), Bytes().u8(static_cast<std::uint8_t>(0x40 + n)), since));
    to.push_back(plain(AT(stepByteC[i]), Bytes().u8(static_cast<std::uint8_t>(0x70 + n)), since));
  }
  all.push_back(plain(AT(tableFlag), Bytes().u8(0x51), 80, true));
  all.push_back(plain(AT(lateFlag), Bytes().u8(0x52), 90));
  all.push_back(plain(AT(memoryFlag1), Bytes().u8(0x61), kNever));
  all.push_back(plain(AT(memoryFlag2), Bytes().u8(0x62), kNever));
  all.push_back(plain(AT(memoryWords), Bytes().u32(0x63636301U).u32(0x63636302U).u32(0x63636303U), kNever));
  all.insert(all.end(), unused.begin(), unused.end());
  return all;
}

Bytes storedAt(const std::vector<Field>& fields, int version) {
  Bytes all;
  for (const Field& field : fields) {
    if (version >= field.since) all.add(field.stored);
  }
  return all;
}

StepTable holding(const std::vector<Field>& fields) {
  StepTable table;
  for (const Field& field : fields) field.put(table, field.stored);
  return table;
}

// A table of which no byte is what the fields would load.
StepTable usedBefore(const std::vector<Field>& fields) {
  StepTable table;
  for (const Field& field : fields) {
    Bytes other;
    for (std::byte one : field.stored.span()) other.u8(std::to_integer<std::uint8_t>(~one));
    field.put(table, other);
  }
  return table;
}

// Compares every field with what `size` stored bytes leave on top of `before`; gives the result that
// such a load has.
int expectLoaded(const std::vector<Field>& fields, int version, std::size_t size, const StepTable& table,
                 const StepTable& before) {
  bool reached = true;
  int result = 0;
  std::size_t end = 0;
  for (const Field& field : fields) {
    Bytes expected = field.get(before);
    if (reached && version >= field.since) {
      end += field.stored.size();
      reached = end <= size;
      if (reached) {
        expected = field.stored;
      } else {
        result = field.tail ? 0 : 1;
      }
    } else if (reached && field.zeroBelow) {
      expected = Bytes().zeros(field.stored.size());
    }
    EXPECT_EQ(field.get(table), expected) << field.name;
  }
  return result;
}

int readTable(const Bytes& bytes, int version, StepTable& table, std::size_t* consumed = nullptr) {
  return readFrom(
      bytes, [&](InStream& s) { return oldtorvio::ReadStepTable(s, version, table); }, consumed);
}

int readList(const Bytes& bytes, int version, StepTableList& list, std::size_t* consumed = nullptr) {
  return readFrom(
      bytes, [&](InStream& s) { return oldtorvio::ReadStepTableList(s, version, list); }, consumed);
}

void checkLoad(const std::vector<Field>& fields, int version, const Bytes& bytes, const StepTable& before) {
  StepTable table = before;
  std::size_t consumed = 0;
  const int result = readTable(bytes, version, table, &consumed);
  EXPECT_EQ(result, expectLoaded(fields, version, bytes.size(), table, before));
  EXPECT_EQ(consumed, bytes.size());
}

// The fields in front of the count of steps.
Bytes beginning() { return Bytes().u32(11).raw({1, 2, 3, 4, 5, 6, 7, 8}).u32(12).u32(13); }

TEST(FreshStepTable, HasTwentyUnusedStepsAndItsMemoryFlagsSet) {
  const StepTable table;
  EXPECT_EQ(table.tableFlag, 0);
  EXPECT_EQ(table.tableWord1, 0U);
  for (std::uint8_t one : table.tableBlock) EXPECT_EQ(one, 0);
  EXPECT_EQ(table.tableWord2, 0U);
  EXPECT_EQ(table.tableWord3, 0U);
  EXPECT_EQ(table.stepCount, 0);
  ASSERT_EQ(std::size(table.stepByteA), 20U);
  for (std::size_t i = 0; i < 20; ++i) {
    EXPECT_EQ(table.stepByteA[i], 255) << i;
    EXPECT_EQ(table.stepWord[i], 0U) << i;
    EXPECT_EQ(table.stepByteB[i], 1) << i;
    EXPECT_EQ(table.stepByteC[i], 0) << i;
  }
  EXPECT_EQ(table.memoryFlag1, 1);
  EXPECT_EQ(table.memoryFlag2, 1);
  for (std::uint32_t one : table.memoryWords) EXPECT_EQ(one, 0U);
  EXPECT_EQ(table.lateFlag, 0);
}

TEST(StepTable, LoadsAndSavesTheSameBytesForEveryCountAndVersion) {
  for (int version : kVersions) {
    for (int count = 0; count <= 20; ++count) {
      SCOPED_TRACE("version " + std::to_string(version) + " count " + std::to_string(count));
      const auto fields = fieldsOf(count);
      const Bytes bytes = storedAt(fields, version);
      EXPECT_EQ(bytes.size(),
                21U + 7U * static_cast<std::size_t>(count) + (version >= 80 ? 1U : 0U) + (version >= 90 ? 1U : 0U));
      checkLoad(fields, version, bytes, StepTable());
      bool ok = false;
      EXPECT_EQ(written([&](OutStream& s) { return oldtorvio::WriteStepTable(s, version, holding(fields)); }, &ok),
                bytes);
      EXPECT_TRUE(ok);
    }
  }
}

TEST(StepTable, StoresTheStepsOneByOne) {
  StepTable table;
  table.stepCount = 2;
  table.stepByteA[0] = 1;
  table.stepByteA[1] = 5;
  table.stepWord[0] = 0x0A0B0C02U;
  table.stepWord[1] = 0x0A0B0C06U;
  table.stepByteB[0] = 3;
  table.stepByteB[1] = 7;
  table.stepByteC[0] = 4;
  table.stepByteC[1] = 8;
  EXPECT_EQ(written([&](OutStream& s) { return oldtorvio::WriteStepTable(s, 90, table); }),
            Bytes().zeros(20).raw({2, 1, 2, 0x0C, 0x0B, 0x0A, 3, 4, 5, 6, 0x0C, 0x0B, 0x0A, 7, 8, 0, 0}));
}

TEST(StepTable, ReloadKeepsTheStepsBeyondTheCountAndClearsTheFlagBelow80) {
  for (int version : kVersions) {
    for (int count : {0, 1, 7, 19, 20}) {
      SCOPED_TRACE("version " + std::to_string(version) + " count " + std::to_string(count));
      const auto fields = fieldsOf(count);
      checkLoad(fields, version, storedAt(fields, version), usedBefore(fields));
    }
  }
}

TEST(StepTable, CutAtEveryByteKeepsWhatArrivedWhole) {
  for (int version : kVersions) {
    for (int count : {0, 1, 2, 20}) {
      const auto fields = fieldsOf(count);
      const Bytes bytes = storedAt(fields, version);
      for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
        SCOPED_TRACE("version " + std::to_string(version) + " count " + std::to_string(count) + " cut " +
                     std::to_string(cut));
        checkLoad(fields, version, bytes.cut(cut), StepTable());
        checkLoad(fields, version, bytes.cut(cut), usedBefore(fields));
        if (HasFailure()) return;
      }
    }
  }
}

TEST(StepTable, FailsInFrontOfTheCountSucceedsWithoutItAndFailsBehindIt) {
  for (int version : {79, 80, 90}) {
    const auto fields = fieldsOf(3);
    const Bytes bytes = storedAt(fields, version);
    for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
      StepTable table;
      EXPECT_EQ(readTable(bytes.cut(cut), version, table), cut == kBytesBeforeStepCount || cut == bytes.size() ? 0 : 1)
          << version << ' ' << cut;
    }
  }
}

TEST(StepTable, WithoutACountKeepsTheFlagBelow80) {
  StepTable table;
  table.tableFlag = 9;
  table.stepCount = 4;
  EXPECT_EQ(readTable(beginning(), 79, table), 0);
  EXPECT_EQ(table.tableWord3, 13U);
  EXPECT_EQ(table.stepCount, 4);
  EXPECT_EQ(table.tableFlag, 9);
}

TEST(StepTable, NegativeCountReadsNoStepsStaysAndIsSavedAgain) {
  for (int count : {-1, -2, -20, -127, -128}) {
    SCOPED_TRACE(count);
    const Bytes bytes = beginning().i8(count).u8(0x51).u8(0x52);
    StepTable table;
    std::size_t consumed = 0;
    EXPECT_EQ(readTable(bytes, 90, table, &consumed), 0);
    EXPECT_EQ(consumed, bytes.size());
    EXPECT_EQ(table.stepCount, count);
    EXPECT_EQ(table.tableFlag, 0x51);
    EXPECT_EQ(table.lateFlag, 0x52);
    EXPECT_EQ(std::memcmp(table.stepByteA, StepTable().stepByteA, sizeof table.stepByteA), 0);
    bool ok = false;
    EXPECT_EQ(written([&](OutStream& s) { return oldtorvio::WriteStepTable(s, 90, table); }, &ok), bytes);
    EXPECT_TRUE(ok);
  }
}

TEST(StepTable, CountAboveTwentyIsRefusedAsSoonAsItIsRead) {
  for (int count = 21; count <= 127; ++count) {
    SCOPED_TRACE(count);
    StepTable table;
    table.tableFlag = 9;
    std::size_t consumed = 0;
    EXPECT_EQ(readTable(beginning().i8(count).fill(1000, 0x33), 90, table, &consumed), 1);
    EXPECT_EQ(consumed, kBytesBeforeStepCount + 1);
    EXPECT_EQ(table.tableWord1, 11U);
    EXPECT_EQ(table.tableWord3, 13U);
    EXPECT_EQ(std::memcmp(table.stepByteA, StepTable().stepByteA, sizeof table.stepByteA), 0);
    EXPECT_EQ(std::memcmp(table.stepWord, StepTable().stepWord, sizeof table.stepWord), 0);
    EXPECT_EQ(table.tableFlag, 9);
  }
}

TEST(StepTable, SaveOfACountAboveTwentyStoresNoSteps) {
  const Bytes whole = storedAt(fieldsOf(20), 90);
  for (int count = 21; count <= 127; ++count) {
    StepTable table = holding(fieldsOf(20));
    table.stepCount = static_cast<std::int8_t>(count);
    bool ok = true;
    const Bytes bytes = written([&](OutStream& s) { return oldtorvio::WriteStepTable(s, 90, table); }, &ok);
    EXPECT_FALSE(ok) << count;
    EXPECT_LE(bytes.size(), kBytesBeforeStepCount + 1) << count;
    EXPECT_EQ(bytes.cut(kBytesBeforeStepCount), whole.cut(kBytesBeforeStepCount)) << count;
  }
}

// A list whose tables have 0, 1, 2, ... steps.
Bytes storedList(int version, int count) {
  Bytes bytes = Bytes().i32(count);
  for (int k = 0; k < count; ++k) bytes.add(storedAt(fieldsOf(k, static_cast<std::uint32_t>(k)), version));
  return bytes;
}

void expectTable(int version, std::size_t k, const StepTable& table) {
  EXPECT_EQ(
      expectLoaded(fieldsOf(static_cast<int>(k), static_cast<std::uint32_t>(k)), version, 1000, table, StepTable()), 0);
}

TEST(StepTableList, LoadsAndSavesItsTablesInOrderAtEveryVersion) {
  for (int version : kVersions) {
    for (int count = 0; count <= 4; ++count) {
      SCOPED_TRACE("version " + std::to_string(version) + " count " + std::to_string(count));
      const Bytes bytes = storedList(version, count);
      StepTableList list;
      std::size_t consumed = 0;
      EXPECT_EQ(readList(bytes, version, list, &consumed), 0);
      EXPECT_EQ(consumed, bytes.size());
      ASSERT_EQ(list.size(), static_cast<std::size_t>(count));
      for (std::size_t k = 0; k < list.size(); ++k) expectTable(version, k, list[k]);
      bool ok = false;
      EXPECT_EQ(written([&](OutStream& s) { return oldtorvio::WriteStepTableList(s, version, list); }, &ok), bytes);
      EXPECT_TRUE(ok);
    }
  }
}

TEST(StepTableList, EachTableStartsFreshBehindALongerOne) {
  StepTableList list(5, usedBefore(fieldsOf(20)));
  const Bytes bytes = Bytes().i32(2).add(storedAt(fieldsOf(20, 0), 90)).add(storedAt(fieldsOf(1, 1), 90));
  EXPECT_EQ(readList(bytes, 90, list), 0);
  ASSERT_EQ(list.size(), 2U);
  expectLoaded(fieldsOf(20, 0), 90, 1000, list[0], StepTable());
  expectLoaded(fieldsOf(1, 1), 90, 1000, list[1], StepTable());
}

TEST(StepTableList, KeepsItsTablesWhenTheStoredCountIsZero) {
  StepTableList list(3, holding(fieldsOf(2)));
  std::size_t consumed = 0;
  EXPECT_EQ(readList(Bytes().i32(0).fill(100, 0x11), 90, list, &consumed), 0);
  EXPECT_EQ(consumed, 4U);
  ASSERT_EQ(list.size(), 3U);
  EXPECT_EQ(list[2].tableWord3, 0x41424344U);
}

TEST(StepTableList, IsEmptiedByACountBelowZero) {
  for (int count : {-1, -2, std::numeric_limits<int>::min()}) {
    StepTableList list(3);
    std::size_t consumed = 0;
    EXPECT_EQ(readList(Bytes().i32(count).fill(100, 0x11), 90, list, &consumed), 0) << count;
    EXPECT_EQ(consumed, 4U) << count;
    EXPECT_TRUE(list.empty()) << count;
  }
}

TEST(StepTableList, CutInsideItsCountIsAFailureThatKeepsTheTables) {
  for (std::size_t cut = 0; cut < 4; ++cut) {
    StepTableList list(3);
    EXPECT_EQ(readList(Bytes().i32(1).cut(cut), 90, list), 1) << cut;
    EXPECT_EQ(list.size(), 3U) << cut;
  }
}

TEST(StepTableList, CutAtEveryByteKeepsTheTablesThatWereComplete) {
  for (int version : {79, 80, 90}) {
    const Bytes bytes = storedList(version, 3);
    for (std::size_t cut = 4; cut < bytes.size(); ++cut) {
      SCOPED_TRACE("version " + std::to_string(version) + " cut " + std::to_string(cut));
      // A table that ends in front of its count of steps is complete as well.
      std::size_t complete = 0;
      bool failed = false;
      std::size_t left = cut - 4;
      for (int k = 0; k < 3 && !failed; ++k) {
        const std::size_t size = storedAt(fieldsOf(k), version).size();
        failed = left < size && left != kBytesBeforeStepCount;
        if (!failed) ++complete;
        left -= std::min(left, size);
      }
      StepTableList list(4, usedBefore(fieldsOf(3)));
      EXPECT_EQ(readList(bytes.cut(cut), version, list), failed ? 1 : 0);
      ASSERT_EQ(list.size(), complete);
      for (std::size_t k = 0; k < complete; ++k) {
        EXPECT_EQ(list[k].tableWord1, 0x11121310U + k);
        EXPECT_EQ(list[k].tableWord3, 0x41424344U);
      }
    }
  }
}

TEST(StepTableList, TableThatEndsInFrontOfItsCountIsTakenAndTheNextOneFails) {
  StepTableList list;
  EXPECT_EQ(readList(Bytes().i32(2).add(beginning()), 90, list), 1);
  ASSERT_EQ(list.size(), 1U);
  EXPECT_EQ(list[0].tableWord1, 11U);
  EXPECT_EQ(list[0].tableWord3, 13U);
  EXPECT_EQ(list[0].stepCount, 0);
  // As the last one of the list it is no failure at all.
  EXPECT_EQ(readList(Bytes().i32(1).add(beginning()), 90, list), 0);
  ASSERT_EQ(list.size(), 1U);
}

TEST(StepTableList, RefusedTableKeepsTheTablesInFrontOfIt) {
  StepTableList list;
  const Bytes bytes = Bytes().i32(3).add(storedAt(fieldsOf(2), 90)).add(beginning()).i8(21).fill(400, 0);
  EXPECT_EQ(readList(bytes, 90, list), 1);
  ASSERT_EQ(list.size(), 1U);
  expectLoaded(fieldsOf(2), 90, 1000, list[0], StepTable());
}

TEST(StepTableList, CountBeyondTheFileIsAFailure) {
  for (int count : {5, 1000000, 2000000000, std::numeric_limits<int>::max()}) {
    StepTableList list;
    EXPECT_EQ(readList(Bytes().i32(count).zeros(96), 90, list), 1) << count;
    EXPECT_EQ(list.size(), 4U) << count;  // an all-zero table takes 23 bytes
  }
}

TEST(StepTableList, SaveStopsAtATableThatCannotBeStored) {
  StepTableList list(3);
  list[1].stepCount = 21;
  bool ok = true;
  const Bytes bytes = written([&](OutStream& s) { return oldtorvio::WriteStepTableList(s, 90, list); }, &ok);
  EXPECT_FALSE(ok);
  EXPECT_LE(bytes.size(), 4 + 23 + kBytesBeforeStepCount + 1);
  EXPECT_EQ(bytes.cut(4 + 23), Bytes().i32(3).zeros(23));
}

TEST(StepTableList, SaveIntoAFileThatTakesNothingIsFalse) {
  const StepTableList list(100000);
  std::FILE* file = testing_support::unwritableFile();
  ASSERT_NE(file, nullptr);
  {
    OutStream stream(file);
    EXPECT_FALSE(oldtorvio::WriteStepTableList(stream, 90, list));
  }
  std::fclose(file);
}

}  // namespace
