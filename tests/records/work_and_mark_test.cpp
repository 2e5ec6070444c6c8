// Work entries and marks: stored bytes at every version, and cut files.
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

using oldtorvio::MarkEntry;
using oldtorvio::MarkList;
using oldtorvio::WorkEntry;
using oldtorvio::codec::InStream;
using oldtorvio::codec::OutStream;
using testing_support::Bytes;
using testing_support::readFrom;
using testing_support::written;

// The gates of a work entry from both sides, and the ends of what a version word can hold.
const std::vector<int> kVersions = {0, 52, 59, 60, 61, 62, 79, 80, 81, 129, 130, 131, 161, 65535};

// A field in stored order: its bytes, the first version that stores it, and how a record holds it.
template <class Record>
struct Field {
  std::string name;
  std::function<Bytes(const Record&)> get;
  std::function<void(Record&, const Bytes&)> put;
  Bytes stored;
  int since = 0;
};

template <class Record, class At>
Field<Record> plain(std::string name, At at, const Bytes& stored, int since = 0) {
  return {std::move(name),
          [at](const Record& record) {
            const auto& field = at(record);
            return testing_support::bytesOf(field);
          },
          [at](Record& record, const Bytes& bytes) {
            auto& field = at(record);
            ASSERT_EQ(sizeof field, bytes.size());
            testing_support::setFromBytes(field, bytes.span());
          },
          stored, since};
}

#define AT(field) \
#field, [](auto& record) -> auto& { return record.field; }

const std::vector<Field<WorkEntry>> kWorkFields = {
    plain<WorkEntry>(AT(workWord1), Bytes().u32(0x11121314U)),
    plain<WorkEntry>(AT(workByte), Bytes().u8(0xF2)),
    plain<WorkEntry>(AT(workWord2), Bytes().u32(0x21222324U)),
    plain<WorkEntry>(AT(workWord3), Bytes().u32(0x31323334U), 60),
    plain<WorkEntry>(AT(workWord4), Bytes().u32(0x41424344U), 60),
    plain<WorkEntry>(AT(workWord5), Bytes().u32(0x51525354U), 60),
    plain<WorkEntry>(AT(workWord6), Bytes().u32(0x61626364U), 60),
    plain<WorkEntry>(AT(workWord7), Bytes().u32(0x71727374U), 61),
    plain<WorkEntry>(AT(workWord8), Bytes().u32(0x81828384U), 80),
    plain<WorkEntry>(AT(workWord9), Bytes().u32(0x91929394U), 130),
    plain<WorkEntry>(AT(workBlock), Bytes().raw({0xA1, 0xA2, 0xA3, 0xA4, 0xA5, 0xA6, 0xA7, 0xA8}), 130),
    plain<WorkEntry>(AT(workValue5), Bytes().u32(0xB5B5B505U)),
    plain<WorkEntry>(AT(workValue1), Bytes().u32(0xB1B1B101U)),
    plain<WorkEntry>(AT(workValue2), Bytes().u32(0xB2B2B202U)),
    plain<WorkEntry>(AT(workValue3), Bytes().u32(0xB3B3B303U)),
    plain<WorkEntry>(AT(workValue4), Bytes().u32(0xB4B4B404U)),
};

// One mark with a value of its own in each field; `k` tells marks of a list apart.
std::vector<Field<MarkEntry>> markFieldsOf(std::uint32_t k = 0) {
  return {
      plain<MarkEntry>(AT(markWord1), Bytes().u32(0x11121310U + k)),
      plain<MarkEntry>(AT(markShort), Bytes().u16(0xF1F2)),
      plain<MarkEntry>(AT(markWord2), Bytes().u32(0x21222320U + k)),
      plain<MarkEntry>(AT(markWord3), Bytes().u32(0x31323334U)),
  };
}

template <class Record>
Bytes storedAt(const std::vector<Field<Record>>& fields, int version) {
  Bytes all;
  for (const auto& field : fields) {
    if (version >= field.since) all.add(field.stored);
  }
  return all;
}

template <class Record>
Record holding(const std::vector<Field<Record>>& fields) {
  Record record;
  for (const auto& field : fields) field.put(record, field.stored);
  return record;
}

// A record of which no byte is what the file holds.
template <class Record>
Record usedBefore(const std::vector<Field<Record>>& fields) {
  Record record;
  for (const auto& field : fields) {
    Bytes other;
    for (std::byte one : field.stored.span()) other.u8(std::to_integer<std::uint8_t>(~one));
    field.put(record, other);
  }
  return record;
}

// Compares every field with what `size` stored bytes leave on top of `before`; true if they suffice.
template <class Record>
bool expectLoaded(const std::vector<Field<Record>>& fields, int version, std::size_t size, const Record& record,
                  const Record& before) {
  bool reached = true;
  std::size_t end = 0;
  for (const auto& field : fields) {
    Bytes expected = field.get(before);
    if (reached && version >= field.since) {
      end += field.stored.size();
      reached = end <= size;
      if (reached) expected = field.stored;
    }
    EXPECT_EQ(field.get(record), expected) << field.name;
  }
  return reached;
}

void checkWork(int version, const Bytes& bytes, const WorkEntry& before) {
  WorkEntry entry = before;
  std::size_t consumed = 0;
  const int result = readFrom(
      bytes, [&](InStream& s) { return oldtorvio::ReadWorkEntry(s, version, entry); }, &consumed);
  EXPECT_EQ(result, expectLoaded(kWorkFields, version, bytes.size(), entry, before) ? 0 : 1);
  EXPECT_EQ(consumed, bytes.size());
}

void checkMark(const Bytes& bytes, const MarkEntry& before) {
  MarkEntry entry = before;
  std::size_t consumed = 0;
  const int result = readFrom(
      bytes, [&](InStream& s) { return oldtorvio::ReadMarkEntry(s, entry); }, &consumed);
  EXPECT_EQ(result, expectLoaded(markFieldsOf(), 0, bytes.size(), entry, before) ? 0 : 1);
  EXPECT_EQ(consumed, bytes.size());
}

int readMarks(const Bytes& bytes, MarkList& list, std::size_t* consumed = nullptr) {
  return readFrom(
      bytes, [&](InStream& s) { return oldtorvio::ReadMarkList(s, list); }, consumed);
}

TEST(FreshWorkEntry, IsAllZero) {
  const WorkEntry entry;
  for (const auto& field : kWorkFields) {
    EXPECT_EQ(field.get(entry), Bytes().zeros(field.stored.size())) << field.name;
  }
}

TEST(WorkEntry, LoadsItsStoredFieldsAtEveryVersion) {
  for (int version : kVersions) {
    SCOPED_TRACE(version);
    checkWork(version, storedAt(kWorkFields, version), WorkEntry());
  }
}

TEST(WorkEntry, GrowsFrom29BytesTo65VersionByVersion) {
  for (int version : kVersions) {
    bool ok = false;
    const Bytes bytes =
        written([&](OutStream& s) { return oldtorvio::WriteWorkEntry(s, version, holding(kWorkFields)); }, &ok);
    EXPECT_TRUE(ok) << version;
    EXPECT_EQ(bytes, storedAt(kWorkFields, version)) << version;
    const std::size_t size = version < 60 ? 29 : version < 61 ? 45 : version < 80 ? 49 : version < 130 ? 53 : 65;
    EXPECT_EQ(bytes.size(), size) << version;
  }
}

TEST(WorkEntry, EndsWithTheSameFiveValuesAtEveryVersionTheFifthFirst) {
  const Bytes last = Bytes().u32(0xB5B5B505U).u32(0xB1B1B101U).u32(0xB2B2B202U).u32(0xB3B3B303U).u32(0xB4B4B404U);
  for (int version : kVersions) {
    const Bytes bytes =
        written([&](OutStream& s) { return oldtorvio::WriteWorkEntry(s, version, holding(kWorkFields)); });
    ASSERT_GE(bytes.size(), last.size()) << version;
    EXPECT_EQ(Bytes::of(bytes.span().last(last.size())), last) << version;
  }
}

TEST(WorkEntry, ReloadLeavesFieldsThatTheVersionDoesNotStore) {
  for (int version : kVersions) {
    SCOPED_TRACE(version);
    checkWork(version, storedAt(kWorkFields, version), usedBefore(kWorkFields));
  }
}

TEST(WorkEntry, CutAtEveryByteFailsAndKeepsWhatArrivedWhole) {
  for (int version : kVersions) {
    const Bytes bytes = storedAt(kWorkFields, version);
    for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
      SCOPED_TRACE("version " + std::to_string(version) + " cut " + std::to_string(cut));
      checkWork(version, bytes.cut(cut), WorkEntry());
      checkWork(version, bytes.cut(cut), usedBefore(kWorkFields));
      if (HasFailure()) return;
    }
  }
}

TEST(WorkEntry, SaveIntoAFileThatTakesNothingIsFalse) {
  std::FILE* file = testing_support::unwritableFile();
  ASSERT_NE(file, nullptr);
  {
    OutStream stream(file);
    bool ok = true;
    // The stream may hold back what is little.
    for (int i = 0; i < 100000 && ok; ++i) ok = oldtorvio::WriteWorkEntry(stream, 130, WorkEntry());
    EXPECT_FALSE(ok);
  }
  std::fclose(file);
}

TEST(FreshMarkEntry, IsAllZero) {
  const MarkEntry entry;
  for (const auto& field : markFieldsOf()) {
    EXPECT_EQ(field.get(entry), Bytes().zeros(field.stored.size())) << field.name;
  }
}

TEST(MarkEntry, TakesFourteenBytes) {
  const Bytes bytes = Bytes().raw({0x10, 0x13, 0x12, 0x11, 0xF2, 0xF1, 0x20, 0x23, 0x22, 0x21, 0x34, 0x33, 0x32, 0x31});
  MarkEntry entry;
  EXPECT_EQ(readFrom(bytes, [&](InStream& s) { return oldtorvio::ReadMarkEntry(s, entry); }), 0);
  EXPECT_EQ(entry.markWord1, 0x11121310U);
  EXPECT_EQ(entry.markShort, 0xF1F2);
  EXPECT_EQ(entry.markWord2, 0x21222320U);
  EXPECT_EQ(entry.markWord3, 0x31323334U);
  bool ok = false;
  EXPECT_EQ(written([&](OutStream& s) { return oldtorvio::WriteMarkEntry(s, entry); }, &ok), bytes);
  EXPECT_TRUE(ok);
}

TEST(MarkEntry, CutAtEveryByteFailsAndKeepsWhatArrivedWhole) {
  const Bytes bytes = storedAt(markFieldsOf(), 0);
  for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
    SCOPED_TRACE(cut);
    checkMark(bytes.cut(cut), MarkEntry());
    checkMark(bytes.cut(cut), usedBefore(markFieldsOf()));
  }
}

Bytes storedMarks(std::uint32_t count) {
  Bytes bytes = Bytes().u32(count);
  for (std::uint32_t k = 0; k < count; ++k) bytes.add(storedAt(markFieldsOf(k), 0));
  return bytes;
}

TEST(MarkList, LoadsAndSavesItsMarksInOrder) {
  for (std::uint32_t count = 0; count <= 5; ++count) {
    SCOPED_TRACE(count);
    const Bytes bytes = storedMarks(count);
    MarkList list;
    std::size_t consumed = 0;
    EXPECT_EQ(readMarks(bytes, list, &consumed), 0);
    EXPECT_EQ(consumed, 4 + 14 * static_cast<std::size_t>(count));
    ASSERT_EQ(list.size(), count);
    for (std::uint32_t k = 0; k < count; ++k) expectLoaded(markFieldsOf(k), 0, 14, list[k], MarkEntry());
    bool ok = false;
    EXPECT_EQ(written([&](OutStream& s) { return oldtorvio::WriteMarkList(s, list); }, &ok), bytes);
    EXPECT_TRUE(ok);
  }
}

TEST(MarkList, ReplacesTheMarksItHeldBefore) {
  MarkList list(5, usedBefore(markFieldsOf()));
  EXPECT_EQ(readMarks(storedMarks(2), list), 0);
  ASSERT_EQ(list.size(), 2U);
  for (std::uint32_t k = 0; k < 2; ++k) expectLoaded(markFieldsOf(k), 0, 14, list[k], MarkEntry());
}

TEST(MarkList, KeepsItsMarksWhenTheStoredCountIsZero) {
  MarkList list(3, holding(markFieldsOf()));
  std::size_t consumed = 0;
  EXPECT_EQ(readMarks(Bytes().i32(0).fill(50, 0xEE), list, &consumed), 0);
  EXPECT_EQ(consumed, 4U);
  ASSERT_EQ(list.size(), 3U);
  for (const MarkEntry& entry : list) expectLoaded(markFieldsOf(), 0, 14, entry, MarkEntry());
}

TEST(MarkList, IsEmptiedByACountBelowZero) {
  for (int count : {-1, -2, std::numeric_limits<int>::min()}) {
    MarkList list(3);
    std::size_t consumed = 0;
    EXPECT_EQ(readMarks(Bytes().i32(count).fill(50, 0xEE), list, &consumed), 0) << count;
    EXPECT_EQ(consumed, 4U) << count;
    EXPECT_TRUE(list.empty()) << count;
  }
}

TEST(MarkList, CutAtEveryByteKeepsTheMarksThatWereComplete) {
  const Bytes bytes = storedMarks(3);
  for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
    SCOPED_TRACE(cut);
    MarkList list(4, usedBefore(markFieldsOf()));
    EXPECT_EQ(readMarks(bytes.cut(cut), list), 1);
    // Without a whole count the list is as it was.
    ASSERT_EQ(list.size(), cut < 4 ? 4U : (cut - 4) / 14);
    for (std::uint32_t k = 0; cut >= 4 && k < list.size(); ++k) {
      expectLoaded(markFieldsOf(k), 0, 14, list[k], MarkEntry());
    }
  }
}

TEST(MarkList, CountBeyondTheFileIsAFailure) {
  for (int count : {7, 1000000, 2000000000, std::numeric_limits<int>::max()}) {
    MarkList list;
    EXPECT_EQ(readMarks(Bytes().i32(count).zeros(96), list), 1) << count;
    EXPECT_EQ(list.size(), 6U) << count;
  }
}

TEST(MarkList, SaveIntoAFileThatTakesNothingIsFalse) {
  const MarkList list(300000);
  std::FILE* file = testing_support::unwritableFile();
  ASSERT_NE(file, nullptr);
  {
    OutStream stream(file);
    EXPECT_FALSE(oldtorvio::WriteMarkList(stream, list));
  }
  std::fclose(file);
}

}  // namespace
