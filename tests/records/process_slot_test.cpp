// Process slots: stored bytes at every version, the values that older versions set, and cut files.
#include <gtest/gtest.h>

#include <bit>
#include <cstdio>
#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "src/records/record_io.h"
#include "tests/support/bytes.h"
#include "tests/support/host.h"

namespace {

using oldtorvio::ProcessSlot;
using oldtorvio::codec::InStream;
using oldtorvio::codec::OutStream;
using testing_support::Bytes;
using testing_support::readFrom;
using testing_support::written;

// Both gates from both sides, and the ends of what a version word can hold.
const std::vector<int> kVersions = {0, 52, 70, 79, 80, 81, 89, 90, 91, 161, 65535};
constexpr std::uint32_t kQuarterPi = 0x3F490FDBU;

// A field in stored order: its bytes, the first version that stores it, and how a slot holds it.
struct Field {
  std::string name;
  std::function<Bytes(const ProcessSlot&)> get;
  std::function<void(ProcessSlot&, const Bytes&)> put;
  Bytes stored;
  int since = 0;
  std::optional<Bytes> below;  // what a load of an older version sets
};

template <class At>
Field plain(std::string name, At at, const Bytes& stored, int since = 0, std::optional<Bytes> below = std::nullopt) {
  return {std::move(name),
          [at](const ProcessSlot& slot) {
            const auto& field = at(slot);
            return testing_support::bytesOf(field);
          },
          [at](ProcessSlot& slot, const Bytes& bytes) {
            auto& field = at(slot);
            ASSERT_EQ(sizeof field, bytes.size());
            testing_support::setFromBytes(field, bytes.span());
          },
          stored,
          since,
          std::move(below)};
}

#define AT(field) \
#field, [](auto& slot) -> auto& { return slot.field; }

const std::vector<Field> kFields = {
    plain(AT(slotWord1), Bytes().u32(0x11121314U)),
    plain(AT(slotWord2), Bytes().u32(0x21222324U)),
    plain(AT(slotBlock), Bytes().raw({0x31, 0x32, 0x33, 0x34, 0x35, 0x36, 0x37, 0x38})),
    plain(AT(slotWord3), Bytes().u32(0x41424344U)),
    plain(AT(slotWord4), Bytes().u32(0x51525354U)),
    plain(AT(firstLength), Bytes().f32(1.5F), 80, Bytes().f32(0.25F)),
    plain(AT(firstAngle), Bytes().f32(2.5F), 80, Bytes().u32(kQuarterPi)),
    plain(AT(secondLength), Bytes().f32(3.5F), 80, Bytes().f32(0.25F)),
    plain(AT(secondAngle), Bytes().f32(4.5F), 80, Bytes().u32(kQuarterPi)),
    plain(AT(slotKind), Bytes().i32(-6), 80, Bytes().i32(3)),
    plain(AT(toolUse), Bytes().u16(0x6162), 90),
    plain(AT(toolActive), Bytes().u8(0x71), 90),
    plain(AT(slotByte), Bytes().u8(0x72), 90),
    plain(AT(toolChoice), Bytes().u8(0x73), 90),
    plain(AT(firstToolNumber), Bytes().u16(0x8182), 90),
    plain(AT(secondToolNumber), Bytes().u16(0x9192), 90),
};

Bytes storedAt(int version) {
  Bytes all;
  for (const Field& field : kFields) {
    if (version >= field.since) all.add(field.stored);
  }
  return all;
}

ProcessSlot holdingAll() {
  ProcessSlot slot;
  for (const Field& field : kFields) field.put(slot, field.stored);
  return slot;
}

// A slot of which no byte is what the file holds.
ProcessSlot usedBefore() {
  ProcessSlot slot;
  for (const Field& field : kFields) {
    Bytes other;
    for (std::byte one : field.stored.span()) other.u8(std::to_integer<std::uint8_t>(~one));
    field.put(slot, other);
  }
  return slot;
}

// Loads `bytes`, a stored slot or its beginning, on top of `before` and compares every field, the
// result and the place.
void checkLoad(int version, const Bytes& bytes, const ProcessSlot& before) {
  ProcessSlot slot = before;
  std::size_t consumed = 0;
  const int result = readFrom(
      bytes, [&](InStream& s) { return oldtorvio::ReadProcessSlot(s, version, slot); }, &consumed);
  bool reached = true;
  std::size_t end = 0;
  for (const Field& field : kFields) {
    Bytes expected = field.get(before);
    if (reached && version >= field.since) {
      end += field.stored.size();
      reached = end <= bytes.size();
      if (reached) expected = field.stored;
    } else if (reached && field.below) {
      expected = *field.below;
    }
    EXPECT_EQ(field.get(slot), expected) << field.name;
  }
  EXPECT_EQ(result, reached ? 0 : 1);
  EXPECT_EQ(consumed, bytes.size());
}

TEST(FreshProcessSlot, HasQuarterLengthsQuarterPiAnglesAndKindThree) {
  const ProcessSlot slot;
  EXPECT_EQ(slot.slotWord1, 0U);
  EXPECT_EQ(slot.slotWord2, 0U);
  for (std::uint8_t one : slot.slotBlock) EXPECT_EQ(one, 0);
  EXPECT_EQ(slot.slotWord3, 0U);
  EXPECT_EQ(slot.slotWord4, 0U);
  EXPECT_EQ(slot.firstLength, 0.25F);
  EXPECT_EQ(std::bit_cast<std::uint32_t>(slot.firstAngle), kQuarterPi);
  EXPECT_EQ(slot.secondLength, 0.25F);
  EXPECT_EQ(std::bit_cast<std::uint32_t>(slot.secondAngle), kQuarterPi);
  EXPECT_EQ(slot.toolUse, 0);
  EXPECT_EQ(slot.toolActive, 0);
  EXPECT_EQ(slot.slotByte, 0);
  EXPECT_EQ(slot.toolChoice, 0);
  EXPECT_EQ(slot.firstToolNumber, 0);
  EXPECT_EQ(slot.secondToolNumber, 0);
  EXPECT_EQ(slot.slotKind, 3);
}

TEST(FreshProcessSlot, StoresItsDefaults) {
  EXPECT_EQ(written([](OutStream& s) { return oldtorvio::WriteProcessSlot(s, 90, ProcessSlot()); }),
            Bytes().zeros(24).f32(0.25F).u32(kQuarterPi).f32(0.25F).u32(kQuarterPi).i32(3).zeros(9));
}

TEST(ProcessSlot, LoadsItsStoredFieldsAtEveryVersion) {
  for (int version : kVersions) {
    SCOPED_TRACE(version);
    checkLoad(version, storedAt(version), ProcessSlot());
  }
}

TEST(ProcessSlot, SavesOnlyWhatTheVersionStores) {
  for (int version : kVersions) {
    bool ok = false;
    const Bytes bytes =
        written([&](OutStream& s) { return oldtorvio::WriteProcessSlot(s, version, holdingAll()); }, &ok);
    EXPECT_TRUE(ok) << version;
    EXPECT_EQ(bytes, storedAt(version)) << version;
    EXPECT_EQ(bytes.size(), version < 80 ? 24U : version < 90 ? 44U : 53U) << version;
  }
}

TEST(ProcessSlot, ReloadSetsTheDefaultsBelow80AndLeavesTheToolFieldsBelow90) {
  for (int version : kVersions) {
    SCOPED_TRACE(version);
    checkLoad(version, storedAt(version), usedBefore());
  }
}

TEST(ProcessSlot, OfVersion70LoadsWithTheDefaultLengthsAnglesAndKind) {
  ProcessSlot slot = usedBefore();
  EXPECT_EQ(readFrom(storedAt(70), [&](InStream& s) { return oldtorvio::ReadProcessSlot(s, 70, slot); }), 0);
  EXPECT_EQ(slot.firstLength, 0.25F);
  EXPECT_EQ(std::bit_cast<std::uint32_t>(slot.firstAngle), kQuarterPi);
  EXPECT_EQ(slot.secondLength, 0.25F);
  EXPECT_EQ(std::bit_cast<std::uint32_t>(slot.secondAngle), kQuarterPi);
  EXPECT_EQ(slot.slotKind, 3);
}

TEST(ProcessSlot, OfVersion80TakesAllFiveFromTheFile) {
  ProcessSlot slot;
  EXPECT_EQ(readFrom(storedAt(80), [&](InStream& s) { return oldtorvio::ReadProcessSlot(s, 80, slot); }), 0);
  EXPECT_EQ(slot.firstLength, 1.5F);
  EXPECT_EQ(slot.firstAngle, 2.5F);
  EXPECT_EQ(slot.secondLength, 3.5F);
  EXPECT_EQ(slot.secondAngle, 4.5F);
  EXPECT_EQ(slot.slotKind, -6);
}

TEST(ProcessSlot, OfVersion89LeavesToolUseZero) {
  ProcessSlot slot;
  std::size_t consumed = 0;
  EXPECT_EQ(readFrom(
                Bytes(storedAt(89)).fill(9, 0xFF), [&](InStream& s) { return oldtorvio::ReadProcessSlot(s, 89, slot); },
                &consumed),
            0);
  EXPECT_EQ(consumed, 44U);
  EXPECT_EQ(slot.toolUse, 0);
  EXPECT_EQ(slot.toolActive, 0);
  EXPECT_EQ(slot.secondToolNumber, 0);
}

TEST(ProcessSlot, CutAtEveryByteFailsAndKeepsWhatArrivedWhole) {
  for (int version : kVersions) {
    const Bytes bytes = storedAt(version);
    for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
      SCOPED_TRACE("version " + std::to_string(version) + " cut " + std::to_string(cut));
      checkLoad(version, bytes.cut(cut), ProcessSlot());
      checkLoad(version, bytes.cut(cut), usedBefore());
      if (HasFailure()) return;
    }
  }
}

TEST(ProcessSlot, CutBelow80DoesNotSetTheDefaultsYet) {
  ProcessSlot slot;
  slot.firstLength = 9;
  slot.slotKind = 9;
  EXPECT_EQ(readFrom(storedAt(79).cut(23), [&](InStream& s) { return oldtorvio::ReadProcessSlot(s, 79, slot); }), 1);
  EXPECT_EQ(slot.firstLength, 9.0F);
  EXPECT_EQ(slot.slotKind, 9);
}

TEST(ProcessSlot, SaveIntoAFileThatTakesNothingIsFalse) {
  std::FILE* file = testing_support::unwritableFile();
  ASSERT_NE(file, nullptr);
  {
    OutStream stream(file);
    bool ok = true;
    // The stream may hold back what is little.
    for (int i = 0; i < 100000 && ok; ++i) ok = oldtorvio::WriteProcessSlot(stream, 90, ProcessSlot());
    EXPECT_FALSE(ok);
  }
  std::fclose(file);
}

}  // namespace
