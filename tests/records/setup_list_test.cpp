// Setup entries and setup lists: stored bytes, the list without entries, and cut files.
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

using oldtorvio::SetupEntry;
using oldtorvio::SetupList;
using oldtorvio::codec::InStream;
using oldtorvio::codec::OutStream;
using testing_support::Bytes;
using testing_support::readFrom;
using testing_support::written;

constexpr std::size_t kEntrySize = 42;

// A field in stored order: its bytes, and how an entry holds it.
struct Field {
  std::string name;
  std::function<Bytes(const SetupEntry&)> get;
  std::function<void(SetupEntry&, const Bytes&)> put;
  Bytes stored;
  bool isStored = true;
};

template <class At>
Field plain(std::string name, At at, const Bytes& stored, bool isStored = true) {
  return {std::move(name),
          [at](const SetupEntry& entry) {
            const auto& field = at(entry);
            return testing_support::bytesOf(field);
          },
          [at](SetupEntry& entry, const Bytes& bytes) {
            auto& field = at(entry);
            ASSERT_EQ(sizeof field, bytes.size());
            testing_support::setFromBytes(field, bytes.span());
          },
          stored, isStored};
}

#define AT(field) \
#field, [](auto& entry) -> auto& { return entry.field; }

// One entry with a value of its own in each field; `k` tells entries of a list apart.
std::vector<Field> fieldsOf(int k = 0) {
  return {
      plain(AT(setupShort1), Bytes().u16(0x1112)),
      plain(AT(setupShort2), Bytes().u16(static_cast<std::uint16_t>(0xF120 + k))),
      plain(AT(setupByte1), Bytes().u8(0x31)),
      plain(AT(setupShort3), Bytes().u16(0x4142)),
      plain(AT(setupByte2), Bytes().u8(0x51)),
      plain(AT(setupShort4), Bytes().u16(0x6162)),
      plain(AT(setupByte3), Bytes().u8(0x71)),
      plain(AT(setupBlock), Bytes().raw({0x81, 0x82, 0x83, 0x84, 0x85, 0x86, 0x87, 0x88})),
      plain(AT(setupWord1), Bytes().u32(0x91929394U)),
      plain(AT(setupByte4), Bytes().u8(0xA1)),
      plain(AT(setupWord2), Bytes().u32(0xB1B2B3B4U)),
      plain(AT(setupShort5), Bytes().u16(0xC1C2)),
      plain(AT(setupWord3), Bytes().u32(0xD1D2D3D4U)),
      plain(AT(setupReal1), Bytes().f32(1.25F + static_cast<float>(k))),
      plain(AT(setupReal2), Bytes().f32(-2.75F)),
      plain(AT(memoryWord), Bytes().u32(0xE1E2E3E4U), false),
  };
}

Bytes stored(const std::vector<Field>& fields) {
  Bytes all;
  for (const Field& field : fields) {
    if (field.isStored) all.add(field.stored);
  }
  return all;
}

SetupEntry holding(const std::vector<Field>& fields) {
  SetupEntry entry;
  for (const Field& field : fields) field.put(entry, field.stored);
  return entry;
}

// An entry of which no byte is what the file holds.
SetupEntry usedBefore() {
  SetupEntry entry;
  for (const Field& field : fieldsOf()) {
    Bytes other;
    for (std::byte one : field.stored.span()) other.u8(std::to_integer<std::uint8_t>(~one));
    field.put(entry, other);
  }
  return entry;
}

// Compares every field with what `size` stored bytes leave on top of `before`; true if they suffice.
bool expectLoaded(const std::vector<Field>& fields, std::size_t size, const SetupEntry& entry,
                  const SetupEntry& before) {
  bool reached = true;
  std::size_t end = 0;
  for (const Field& field : fields) {
    if (field.isStored) end += field.stored.size();
    if (field.isStored && end > size) reached = false;
    EXPECT_EQ(field.get(entry), reached && field.isStored ? field.stored : field.get(before)) << field.name;
  }
  return reached;
}

void checkLoad(const Bytes& bytes, const SetupEntry& before) {
  SetupEntry entry = before;
  std::size_t consumed = 0;
  const int result = readFrom(
      bytes, [&](InStream& s) { return oldtorvio::ReadSetupEntry(s, entry); }, &consumed);
  EXPECT_EQ(result, expectLoaded(fieldsOf(), bytes.size(), entry, before) ? 0 : 1);
  EXPECT_EQ(consumed, bytes.size());
}

int readList(const Bytes& bytes, SetupList& list, std::size_t* consumed = nullptr) {
  return readFrom(
      bytes, [&](InStream& s) { return oldtorvio::ReadSetupList(s, list); }, consumed);
}

// The fields behind the entries: current and the tail.
constexpr int kCurrent = 9;
const Bytes kTail = Bytes().raw({0x21, 0x22, 0x23, 0x24, 0x25, 0x26, 0x27, 0x28}).u32(0x31323334U).u32(0x41424344U);
Bytes storedEnd() { return stored(fieldsOf(kCurrent)).add(kTail); }

Bytes storedEntries(int count) {
  Bytes bytes = Bytes().i32(count);
  for (int k = 0; k < count; ++k) bytes.add(stored(fieldsOf(k)));
  return bytes;
}

Bytes tailOf(const SetupList& list) {
  Bytes bytes;
  for (std::uint8_t one : list.tailBlock) bytes.u8(one);
  return bytes.u32(list.tailWord1).u32(list.tailWord2);
}

// A list with three entries and other values than the file in every field.
SetupList usedList() {
  SetupList list;
  list.entries.assign(3, usedBefore());
  list.current = usedBefore();
  std::memset(list.tailBlock, 0x77, sizeof list.tailBlock);
  list.tailWord1 = 0x77777777U;
  list.tailWord2 = 0x78787878U;
  return list;
}

TEST(FreshSetupEntry, IsZeroExceptForItsTwoReals) {
  const SetupEntry entry;
  for (const Field& field : fieldsOf()) {
    const bool isReal = field.name == "setupReal1" || field.name == "setupReal2";
    EXPECT_EQ(field.get(entry), isReal ? Bytes().f32(-1.0F) : Bytes().zeros(field.stored.size())) << field.name;
  }
}

TEST(SetupEntry, Takes42BytesInTheOrderOfItsFields) {
  const Bytes bytes = stored(fieldsOf());
  EXPECT_EQ(bytes.size(), kEntrySize);
  checkLoad(bytes, SetupEntry());
  checkLoad(bytes, usedBefore());
  bool ok = false;
  EXPECT_EQ(written([](OutStream& s) { return oldtorvio::WriteSetupEntry(s, holding(fieldsOf())); }, &ok), bytes);
  EXPECT_TRUE(ok);
  EXPECT_EQ(written([](OutStream& s) { return oldtorvio::WriteSetupEntry(s, SetupEntry()); }),
            Bytes().zeros(34).f32(-1.0F).f32(-1.0F));
}

TEST(SetupEntry, CutAtEveryByteFailsAndKeepsWhatArrivedWhole) {
  const Bytes bytes = stored(fieldsOf());
  for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
    SCOPED_TRACE(cut);
    checkLoad(bytes.cut(cut), SetupEntry());
    checkLoad(bytes.cut(cut), usedBefore());
  }
}

TEST(FreshSetupList, IsEmptyWithAFreshCurrentAndAZeroTail) {
  const SetupList list;
  EXPECT_TRUE(list.entries.empty());
  for (const Field& field : fieldsOf()) EXPECT_EQ(field.get(list.current), field.get(SetupEntry())) << field.name;
  EXPECT_EQ(tailOf(list), Bytes().zeros(16));
}

TEST(SetupList, LoadsAndSavesEntriesThenCurrentThenTail) {
  for (int count = 1; count <= 4; ++count) {
    SCOPED_TRACE(count);
    const Bytes bytes = storedEntries(count).add(storedEnd());
    EXPECT_EQ(bytes.size(), 4 + kEntrySize * static_cast<std::size_t>(count + 1) + 16);
    SetupList list;
    std::size_t consumed = 0;
    EXPECT_EQ(readList(bytes, list, &consumed), 0);
    EXPECT_EQ(consumed, bytes.size());
    ASSERT_EQ(list.entries.size(), static_cast<std::size_t>(count));
    for (int k = 0; k < count; ++k) {
      expectLoaded(fieldsOf(k), kEntrySize, list.entries[static_cast<std::size_t>(k)], SetupEntry());
    }
    expectLoaded(fieldsOf(kCurrent), kEntrySize, list.current, SetupEntry());
    EXPECT_EQ(tailOf(list), kTail);
    bool ok = false;
    EXPECT_EQ(written([&](OutStream& s) { return oldtorvio::WriteSetupList(s, list); }, &ok), bytes);
    EXPECT_TRUE(ok);
  }
}

TEST(SetupList, ReplacesTheEntriesItHeldBeforeByFreshOnes) {
  SetupList list = usedList();
  EXPECT_EQ(readList(storedEntries(2).add(storedEnd()), list), 0);
  ASSERT_EQ(list.entries.size(), 2U);
  for (int k = 0; k < 2; ++k) {
    expectLoaded(fieldsOf(k), kEntrySize, list.entries[static_cast<std::size_t>(k)], SetupEntry());
  }
  EXPECT_EQ(tailOf(list), kTail);
}

TEST(SetupList, WithoutEntriesStoresFourZeroBytesAndLosesTheRest) {
  SetupList list = usedList();
  list.entries.clear();
  bool ok = false;
  EXPECT_EQ(written([&](OutStream& s) { return oldtorvio::WriteSetupList(s, list); }, &ok), Bytes().zeros(4));
  EXPECT_TRUE(ok);
  SetupList loaded;
  EXPECT_EQ(readList(Bytes().zeros(4), loaded), 0);
  EXPECT_EQ(tailOf(loaded), Bytes().zeros(16));
}

TEST(SetupList, StoredCountOfZeroKeepsEntriesCurrentAndTail) {
  SetupList list = usedList();
  std::size_t consumed = 0;
  EXPECT_EQ(readList(Bytes().i32(0).fill(100, 0xEE), list, &consumed), 0);
  EXPECT_EQ(consumed, 4U);
  ASSERT_EQ(list.entries.size(), 3U);
  for (const Field& field : fieldsOf()) {
    EXPECT_EQ(field.get(list.entries[2]), field.get(usedBefore())) << field.name;
    EXPECT_EQ(field.get(list.current), field.get(usedBefore())) << field.name;
  }
  EXPECT_EQ(tailOf(list), tailOf(usedList()));
}

TEST(SetupList, CountBelowZeroEmptiesTheListAndStillTakesCurrentAndTail) {
  for (int count : {-1, -2, std::numeric_limits<int>::min()}) {
    SCOPED_TRACE(count);
    SetupList list = usedList();
    const Bytes bytes = Bytes().i32(count).add(storedEnd());
    std::size_t consumed = 0;
    EXPECT_EQ(readList(Bytes(bytes).fill(100, 0xEE), list, &consumed), 0);
    EXPECT_EQ(consumed, bytes.size());
    EXPECT_TRUE(list.entries.empty());
    expectLoaded(fieldsOf(kCurrent), kEntrySize, list.current, usedBefore());
    EXPECT_EQ(tailOf(list), kTail);
  }
}

TEST(SetupList, CutAtEveryByteFailsAndKeepsWhatArrivedWhole) {
  for (int count : {-1, 1, 3}) {
    const auto entries = static_cast<std::size_t>(std::max(count, 0));
    const Bytes bytes = (count < 0 ? Bytes().i32(count) : storedEntries(count)).add(storedEnd());
    for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
      SCOPED_TRACE("count " + std::to_string(count) + " cut " + std::to_string(cut));
      SetupList list = usedList();
      std::size_t consumed = 0;
      EXPECT_EQ(readList(bytes.cut(cut), list, &consumed), 1);
      EXPECT_EQ(consumed, cut);
      // Without a whole count everything is as it was.
      const std::size_t complete = cut < 4 ? 3 : std::min(entries, (cut - 4) / kEntrySize);
      ASSERT_EQ(list.entries.size(), complete);
      for (std::size_t k = 0; cut >= 4 && k < complete; ++k) {
        expectLoaded(fieldsOf(static_cast<int>(k)), kEntrySize, list.entries[k], SetupEntry());
      }
      const std::size_t currentAt = 4 + kEntrySize * entries;
      expectLoaded(fieldsOf(kCurrent), cut > currentAt ? std::min(cut - currentAt, kEntrySize) : 0, list.current,
                   usedBefore());
      const std::size_t tailAt = currentAt + kEntrySize;
      const Bytes tail = tailOf(list);
      const Bytes before = tailOf(usedList());
      const std::size_t arrived = cut < tailAt + 8 ? 0 : cut < tailAt + 12 ? 8 : 12;
      EXPECT_EQ(tail.cut(arrived), kTail.cut(arrived));
      EXPECT_EQ(Bytes::of(tail.span().subspan(arrived)), Bytes::of(before.span().subspan(arrived)));
    }
  }
}

TEST(SetupList, CountBeyondTheFileIsAFailure) {
  for (int count : {3, 1000000, 2000000000, std::numeric_limits<int>::max()}) {
    SetupList list;
    EXPECT_EQ(readList(Bytes().i32(count).zeros(96), list), 1) << count;
    EXPECT_EQ(list.entries.size(), 2U) << count;
  }
}

TEST(SetupList, SaveIntoAFileThatTakesNothingIsFalse) {
  SetupList list;
  list.entries.resize(100000);
  std::FILE* file = testing_support::unwritableFile();
  ASSERT_NE(file, nullptr);
  {
    OutStream stream(file);
    EXPECT_FALSE(oldtorvio::WriteSetupList(stream, list));
  }
  std::fclose(file);
}

}  // namespace
