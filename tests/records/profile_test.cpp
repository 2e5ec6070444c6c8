// Motion blocks, profiles and their lists: stored bytes at every version, tails, and cut files.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
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

using oldtorvio::MotionBlock;
using oldtorvio::ProfileList;
using oldtorvio::ProfileRecord;
using oldtorvio::StepTable;
using oldtorvio::codec::InStream;
using oldtorvio::codec::OutStream;
using testing_support::Bytes;
using testing_support::readFrom;
using testing_support::written;

// Every gate of a profile, its blocks and their steps from both sides, and the ends of what a version
// word can hold.
const std::vector<int> kProfileVersions = {0, 52, 53, 54, 55, 79, 80, 81, 89, 90, 149, 150, 151, 152, 160, 161, 65535};
// A block by itself also stands below version 80 in other files.
const std::vector<int> kBlockVersions = {0, 52, 79, 80, 89, 90, 149, 150, 151, 152, 153, 161, 65535};
constexpr std::uint32_t kHalfPi = 0x3FC90FDBU;
constexpr std::uint32_t kQuarterPi = 0x3F490FDBU;
constexpr int kNever = 65536;

// A field in stored order: its bytes, the first version that stores it, and how a record holds it.
template <class Record>
struct Field {
  std::string name;
  std::function<Bytes(const Record&)> get;
  std::function<void(Record&, const Bytes&)> put;
  Bytes stored;
  int since = 0;
  bool tail = false;       // a load goes well without it and what follows
  bool zeroBelow = false;  // a load of an older version sets zero
};

template <class Record>
using Fields = std::vector<Field<Record>>;

template <class Record, class At>
Field<Record> plain(std::string name, At at, const Bytes& stored, int since = 0, bool tail = false) {
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
          stored,
          since,
          tail};
}

#define AT(field) \
#field, [=](auto& record) -> auto& { return record.field; }

// The fields of a record inside another one.
template <class Outer, class Inner, class At>
void embed(Fields<Outer>& into, const std::string& name, At at, const Fields<Inner>& fields, int since, bool isLast) {
  for (const Field<Inner>& field : fields) {
    into.push_back({name + "." + field.name, [field, at](const Outer& outer) { return field.get(at(outer)); },
                    [field, at](Outer& outer, const Bytes& bytes) { field.put(at(outer), bytes); }, field.stored,
                    std::max(since, field.since),
                    // Where something must follow the record, a file that ends in its tail lacks that.
                    field.tail && isLast,
                    // A version that does not store the record at all does not touch it either.
                    field.zeroBelow && since == 0});
  }
}

// Steps with a value of their own in each field, three of them; `salt` tells tables apart.
Fields<StepTable> stepFields(std::uint8_t salt) {
  const std::uint32_t high = static_cast<std::uint32_t>(salt) << 24U;
  Fields<StepTable> all = {
      plain<StepTable>(AT(tableWord1), Bytes().u32(high + 0x101101U)),
      plain<StepTable>(AT(tableBlock), Bytes().raw({salt, 0x22, 0x23, 0x24, 0x25, 0x26, 0x27, 0x28})),
      plain<StepTable>(AT(tableWord2), Bytes().u32(high + 0x202202U)),
      plain<StepTable>(AT(tableWord3), Bytes().u32(high + 0x303303U)),
      plain<StepTable>(AT(stepCount), Bytes().i8(3), 0, true),
  };
  for (std::size_t i = 0; i < 20; ++i) {
    const int since = i < 3 ? 0 : kNever;
    const auto n = static_cast<std::uint8_t>(salt + i);
    all.push_back(plain<StepTable>(AT(stepByteA[i]), Bytes().u8(n), since));
    all.push_back(plain<StepTable>(AT(stepWord[i]), Bytes().u32(high + 0x404400U + n), since));
    all.push_back(plain<StepTable>(AT(stepByteB[i]), Bytes().u8(static_cast<std::uint8_t>(n + 0x20)), since));
    all.push_back(plain<StepTable>(AT(stepByteC[i]), Bytes().u8(static_cast<std::uint8_t>(n + 0x40)), since));
  }
  // The steps that are not stored stand last.
  std::stable_partition(all.begin(), all.end(), [](const auto& field) { return field.since != kNever; });
  auto unused = std::find_if(all.begin(), all.end(), [](const auto& field) { return field.since == kNever; });
  Field<StepTable> flag = plain<StepTable>(AT(tableFlag), Bytes().u8(static_cast<std::uint8_t>(salt + 0x61)), 80);
  flag.zeroBelow = true;
  const Field<StepTable> late = plain<StepTable>(AT(lateFlag), Bytes().u8(static_cast<std::uint8_t>(salt + 0x62)), 90);
  all.insert(unused, {flag, late});
  return all;
}

Fields<MotionBlock> blockFields(std::uint8_t salt = 0x10) {
  const std::uint32_t high = static_cast<std::uint32_t>(salt) << 24U;
  const float more = static_cast<float>(salt);
  Fields<MotionBlock> all = {
      plain<MotionBlock>(AT(motionKind), Bytes().i32(-100 - salt)),
      plain<MotionBlock>(AT(motionWord), Bytes().u32(high + 0xABCDEFU)),
      plain<MotionBlock>(AT(motionValue), Bytes().f32(1000.5F + more)),
      plain<MotionBlock>(AT(motionLength1), Bytes().f32(2000.5F + more)),
      plain<MotionBlock>(AT(motionAngle1), Bytes().f32(3000.5F + more)),
      plain<MotionBlock>(AT(motionAngle2), Bytes().f32(4000.5F + more)),
      plain<MotionBlock>(AT(motionLength2), Bytes().f32(5000.5F + more)),
      plain<MotionBlock>(AT(lateWord1), Bytes().u32(high + 0x610001U), 151, true),
      plain<MotionBlock>(AT(lateWord2), Bytes().u32(high + 0x620002U), 151, true),
      plain<MotionBlock>(AT(lateWord3), Bytes().u32(high + 0x630003U), 152, true),
      plain<MotionBlock>(AT(lateWord4), Bytes().u32(high + 0x640004U), 152, true),
      plain<MotionBlock>(AT(lateWord5), Bytes().u32(high + 0x650005U), 152, true),
  };
  embed(
      all, "steps", [](auto& block) -> auto& { return block.steps; }, stepFields(static_cast<std::uint8_t>(salt + 1)),
      0, true);
  return all;
}

// One profile with a value of its own in each field; `k` tells profiles of a list apart.
Fields<ProfileRecord> profileFields(std::uint32_t k = 0) {
  Fields<ProfileRecord> all = {
      plain<ProfileRecord>(AT(profileHead), Bytes().raw({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16})),
      plain<ProfileRecord>(AT(profileIndex), Bytes().u32(0x11121310U + k)),
      plain<ProfileRecord>(AT(profileWord1), Bytes().u32(0x21222324U)),
      plain<ProfileRecord>(AT(profileWord2), Bytes().u32(0x31323334U)),
      plain<ProfileRecord>(AT(profileCondition1), Bytes().u32(0x41424344U)),
      plain<ProfileRecord>(AT(profileBlock), Bytes().raw({0x51, 0x52, 0x53, 0x54, 0x55, 0x56, 0x57, 0x58})),
      plain<ProfileRecord>(AT(profileCondition2), Bytes().u32(0x61626364U)),
      plain<ProfileRecord>(AT(profileWord4), Bytes().u32(0x71727374U)),
      plain<ProfileRecord>(AT(profileWord3), Bytes().u32(0x81828384U), 54),
  };
  for (std::size_t i = 0; i < 14; ++i) {
    all.push_back(
        plain<ProfileRecord>(AT(profileWords[i]), Bytes().u32(0x91929300U + static_cast<std::uint32_t>(i)), 80));
  }
  embed(
      all, "firstBlock", [](auto& profile) -> auto& { return profile.firstBlock; }, blockFields(0x10), 80, false);
  embed(
      all, "secondBlock", [](auto& profile) -> auto& { return profile.secondBlock; }, blockFields(0x50), 80, false);
  all.push_back(plain<ProfileRecord>(AT(tailWord1), Bytes().u32(0xA1A2A301U), 80));
  all.push_back(plain<ProfileRecord>(AT(profileWord5), Bytes().u32(0xA1A2A302U), 80));
  all.push_back(plain<ProfileRecord>(AT(profileLink), Bytes().u32(0xA1A2A303U), 80));
  all.push_back(plain<ProfileRecord>(AT(tailWord2), Bytes().u32(0xA1A2A304U), 80));
  all.push_back(plain<ProfileRecord>(AT(tailWord3), Bytes().u32(0xA1A2A305U), 150, true));
  all.push_back(plain<ProfileRecord>(AT(tailByte1), Bytes().u8(0xB1), 151, true));
  all.push_back(plain<ProfileRecord>(AT(tailByte2), Bytes().u8(0xB2), 151, true));
  all.push_back(plain<ProfileRecord>(AT(tailByte3), Bytes().u8(0xB3), 151, true));
  all.push_back(plain<ProfileRecord>(AT(tailWord4), Bytes().u32(0xA1A2A306U), 151, true));
  all.push_back(plain<ProfileRecord>(AT(tailByte4), Bytes().u8(0xB4), 151, true));
  all.push_back(plain<ProfileRecord>(AT(tailByte5), Bytes().u8(0xB5), 152, true));
  all.push_back(plain<ProfileRecord>(AT(tailWord5), Bytes().u32(0xA1A2A307U), 161, true));
  return all;
}

template <class Record>
Bytes storedAt(const Fields<Record>& fields, int version) {
  Bytes all;
  for (const auto& field : fields) {
    if (version >= field.since) all.add(field.stored);
  }
  return all;
}

template <class Record>
Record holding(const Fields<Record>& fields) {
  Record record;
  for (const auto& field : fields) field.put(record, field.stored);
  return record;
}

// A record of which no byte is what the fields would load.
template <class Record>
Record usedBefore(const Fields<Record>& fields) {
  Record record;
  for (const auto& field : fields) {
    Bytes other;
    for (std::byte one : field.stored.span()) other.u8(std::to_integer<std::uint8_t>(~one));
    field.put(record, other);
  }
  return record;
}

// Compares every field with what `size` stored bytes leave on top of `before`; gives the result that
// such a load has.
template <class Record>
int expectLoaded(const Fields<Record>& fields, int version, std::size_t size, const Record& record,
                 const Record& before) {
  bool reached = true;
  int result = 0;
  std::size_t end = 0;
  for (const auto& field : fields) {
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
    EXPECT_EQ(field.get(record), expected) << field.name;
  }
  return result;
}

int read(const Bytes& bytes, int version, MotionBlock& block, std::size_t* consumed = nullptr) {
  return readFrom(
      bytes, [&](InStream& s) { return oldtorvio::ReadMotionBlock(s, version, block); }, consumed);
}
int read(const Bytes& bytes, int version, ProfileRecord& profile, std::size_t* consumed = nullptr) {
  return readFrom(
      bytes, [&](InStream& s) { return oldtorvio::ReadProfileRecord(s, version, profile); }, consumed);
}
int read(const Bytes& bytes, int version, ProfileList& list, std::size_t* consumed = nullptr) {
  return readFrom(
      bytes, [&](InStream& s) { return oldtorvio::ReadProfileList(s, version, list); }, consumed);
}
Bytes saved(int version, const MotionBlock& block, bool* ok = nullptr) {
  return written([&](OutStream& s) { return oldtorvio::WriteMotionBlock(s, version, block); }, ok);
}
Bytes saved(int version, const ProfileRecord& profile, bool* ok = nullptr) {
  return written([&](OutStream& s) { return oldtorvio::WriteProfileRecord(s, version, profile); }, ok);
}
Bytes saved(int version, const ProfileList& list, bool* ok = nullptr) {
  return written([&](OutStream& s) { return oldtorvio::WriteProfileList(s, version, list); }, ok);
}

template <class Record>
void checkLoad(const Fields<Record>& fields, int version, const Bytes& bytes, const Record& before) {
  Record record = before;
  std::size_t consumed = 0;
  const int result = read(bytes, version, record, &consumed);
  EXPECT_EQ(result, expectLoaded(fields, version, bytes.size(), record, before));
  EXPECT_EQ(consumed, bytes.size());
}

template <class Record>
void checkEveryCut(const Fields<Record>& fields, int version) {
  const Bytes bytes = storedAt(fields, version);
  const Record used = usedBefore(fields);
  for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
    SCOPED_TRACE("version " + std::to_string(version) + " cut " + std::to_string(cut));
    checkLoad(fields, version, bytes.cut(cut), Record());
    checkLoad(fields, version, bytes.cut(cut), used);
    if (testing::Test::HasFailure()) return;
  }
}

void expectDefaults(const MotionBlock& block, int kind) {
  EXPECT_EQ(block.motionKind, kind);
  EXPECT_EQ(block.motionWord, 0U);
  EXPECT_EQ(block.motionValue, 50.0F);
  EXPECT_EQ(block.motionLength1, 0.125F);
  EXPECT_EQ(std::bit_cast<std::uint32_t>(block.motionAngle1), kHalfPi);
  EXPECT_EQ(std::bit_cast<std::uint32_t>(block.motionAngle2), kQuarterPi);
  EXPECT_EQ(block.motionLength2, 0.125F);
  EXPECT_EQ(block.lateWord1, 0U);
  EXPECT_EQ(block.lateWord2, 0U);
  EXPECT_EQ(block.lateWord3, 0U);
  EXPECT_EQ(block.lateWord4, 0U);
  EXPECT_EQ(block.lateWord5, 0U);
  EXPECT_EQ(block.steps.stepCount, 0);
  EXPECT_EQ(block.steps.tableFlag, 0);
  EXPECT_EQ(block.steps.lateFlag, 0);
  EXPECT_EQ(block.steps.tableWord1, 0U);
  for (std::size_t i = 0; i < 20; ++i) {
    EXPECT_EQ(block.steps.stepByteA[i], 255) << i;
    EXPECT_EQ(block.steps.stepByteB[i], 1) << i;
  }
}

// A block with a fresh record's values as it is stored from version 90 on: seven fields, the late words
// and a table without steps.
Bytes defaultBlock(int kind, int lateWords) {
  return Bytes()
      .i32(kind)
      .u32(0)
      .f32(50.0F)
      .f32(0.125F)
      .u32(kHalfPi)
      .u32(kQuarterPi)
      .f32(0.125F)
      .zeros(4 * static_cast<std::size_t>(lateWords))
      .zeros(23);
}

TEST(MotionBlock, LoadsAndSavesTheSameBytesAtEveryVersion) {
  const auto fields = blockFields();
  for (int version : kBlockVersions) {
    SCOPED_TRACE(version);
    const Bytes bytes = storedAt(fields, version);
    checkLoad(fields, version, bytes, MotionBlock());
    bool ok = false;
    EXPECT_EQ(saved(version, holding(fields), &ok), bytes);
    EXPECT_TRUE(ok);
  }
}

TEST(MotionBlock, HasSevenWordsBelow151ThenNineAndFrom152OnTwelve) {
  for (int version : kBlockVersions) {
    const std::size_t words = version < 151 ? 7 : version < 152 ? 9 : 12;
    const std::size_t steps = 21U + (version >= 80 ? 1U : 0U) + (version >= 90 ? 1U : 0U);
    EXPECT_EQ(saved(version, MotionBlock()).size(), 4 * words + steps) << version;
  }
}

TEST(MotionBlock, ReloadLeavesTheLateWordsThatTheVersionDoesNotStore) {
  const auto fields = blockFields();
  for (int version : kBlockVersions) {
    SCOPED_TRACE(version);
    checkLoad(fields, version, storedAt(fields, version), usedBefore(fields));
  }
}

TEST(MotionBlock, CutAtEveryByteKeepsWhatArrivedWhole) {
  for (int version : kBlockVersions) checkEveryCut(blockFields(), version);
}

TEST(MotionBlock, CutInItsLateWordsSucceedsWithoutItsSteps) {
  for (int version : {151, 152, 161}) {
    const std::size_t lateEnd = version < 152 ? 36 : 48;
    const Bytes bytes = storedAt(blockFields(), version);
    for (std::size_t cut = 0; cut <= lateEnd; ++cut) {
      MotionBlock block;
      EXPECT_EQ(read(bytes.cut(cut), version, block), cut >= 28 && cut < lateEnd ? 0 : 1) << version << ' ' << cut;
      EXPECT_EQ(block.steps.tableWord1, 0U) << version << ' ' << cut;
      EXPECT_EQ(block.steps.stepCount, 0) << version << ' ' << cut;
    }
  }
}

TEST(MotionBlock, EndsWhereItsStepsEnd) {
  // Cut in front of the count of steps is a success, anywhere else in the steps a failure.
  for (int version : {79, 80, 90, 150, 151, 152}) {
    const std::size_t stepsAt = version < 151 ? 28 : version < 152 ? 36 : 48;
    const Bytes bytes = storedAt(blockFields(), version);
    for (std::size_t cut = stepsAt; cut <= bytes.size(); ++cut) {
      MotionBlock block;
      EXPECT_EQ(read(bytes.cut(cut), version, block), cut == stepsAt + 20 || cut == bytes.size() ? 0 : 1)
          << version << ' ' << cut;
    }
  }
}

TEST(MotionBlock, CountOfStepsAboveTwentyIsRefused) {
  for (int count : {21, 22, 127}) {
    MotionBlock block;
    EXPECT_EQ(read(Bytes().zeros(28).zeros(20).i8(count).zeros(1000), 90, block), 1) << count;
    block = MotionBlock();
    block.steps.stepCount = static_cast<std::int8_t>(count);
    bool ok = true;
    const Bytes bytes = saved(90, block, &ok);
    EXPECT_FALSE(ok) << count;
    EXPECT_LE(bytes.size(), 28U + 20U + 1U) << count;
  }
}

TEST(FreshProfile, HasNoIndexNoLinkAndBlocksOfKindFiveAndThree) {
  const ProfileRecord profile;
  for (std::uint8_t one : profile.profileHead) EXPECT_EQ(one, 0);
  EXPECT_EQ(profile.profileIndex, -1);
  EXPECT_EQ(profile.profileWord1, 0U);
  EXPECT_EQ(profile.profileWord2, 0U);
  EXPECT_EQ(profile.profileWord3, 0U);
  EXPECT_EQ(profile.profileCondition1, 0U);
  for (std::uint8_t one : profile.profileBlock) EXPECT_EQ(one, 0);
  EXPECT_EQ(profile.profileCondition2, 0U);
  EXPECT_EQ(profile.profileWord4, 0U);
  EXPECT_EQ(profile.profileWord5, 0U);
  EXPECT_EQ(profile.profileLink, -1);
  for (std::uint32_t one : profile.profileWords) EXPECT_EQ(one, 0U);
  expectDefaults(profile.firstBlock, 5);
  expectDefaults(profile.secondBlock, 3);
  EXPECT_EQ(profile.tailWord1, 0U);
  EXPECT_EQ(profile.tailWord2, 0U);
  EXPECT_EQ(profile.tailWord3, 0U);
  EXPECT_EQ(profile.tailByte1, 0);
  EXPECT_EQ(profile.tailByte2, 0);
  EXPECT_EQ(profile.tailByte3, 0);
  EXPECT_EQ(profile.tailWord4, 0U);
  EXPECT_EQ(profile.tailByte4, 0);
  EXPECT_EQ(profile.tailByte5, 0);
  EXPECT_EQ(profile.tailWord5, 0U);
}

// A fresh record's values as versions 54 to 79 and 90 and above store them: no steps in either block.
Bytes defaultProfile(int version) {
  Bytes bytes = Bytes().zeros(16).i32(-1).zeros(12).zeros(8).zeros(8).zeros(4);
  if (version < 80) return bytes;
  const int lateWords = version < 151 ? 0 : version < 152 ? 2 : 5;
  bytes.zeros(56).add(defaultBlock(5, lateWords)).add(defaultBlock(3, lateWords)).zeros(8).i32(-1).zeros(4);
  return bytes.zeros(version < 150 ? 0 : version < 151 ? 4 : version < 152 ? 12 : version < 161 ? 13 : 17);
}

TEST(FreshProfile, StoresItsDefaults) {
  EXPECT_EQ(saved(53, ProfileRecord()), Bytes().zeros(16).i32(-1).zeros(12).zeros(8).zeros(8));
  for (int version : {54, 79, 90, 149, 150, 151, 152, 160, 161}) {
    EXPECT_EQ(saved(version, ProfileRecord()), defaultProfile(version)) << version;
  }
}

TEST(Profile, LoadsAndSavesTheSameBytesAtEveryVersion) {
  const auto fields = profileFields();
  for (int version : kProfileVersions) {
    SCOPED_TRACE(version);
    const Bytes bytes = storedAt(fields, version);
    checkLoad(fields, version, bytes, ProfileRecord());
    bool ok = false;
    EXPECT_EQ(saved(version, holding(fields), &ok), bytes);
    EXPECT_TRUE(ok);
  }
}

TEST(Profile, ReloadLeavesFieldsThatTheVersionDoesNotStore) {
  const auto fields = profileFields();
  for (int version : kProfileVersions) {
    SCOPED_TRACE(version);
    checkLoad(fields, version, storedAt(fields, version), usedBefore(fields));
  }
}

TEST(Profile, OfVersion79KeepsTheDefaultsOfBothBlocks) {
  const auto fields = profileFields();
  ProfileList list;
  EXPECT_EQ(read(Bytes().i32(1).add(storedAt(fields, 79)), 79, list), 0);
  ASSERT_EQ(list.size(), 1U);
  expectDefaults(list[0].firstBlock, 5);
  expectDefaults(list[0].secondBlock, 3);
  EXPECT_EQ(list[0].profileLink, -1);
  EXPECT_EQ(list[0].profileWord3, 0x81828384U);
}

TEST(Profile, OfVersion80TakesBothBlocksFromTheFile) {
  ProfileList list;
  EXPECT_EQ(read(Bytes().i32(1).add(storedAt(profileFields(), 80)), 80, list), 0);
  ASSERT_EQ(list.size(), 1U);
  EXPECT_EQ(list[0].firstBlock.motionKind, -116);
  EXPECT_EQ(list[0].secondBlock.motionKind, -180);
  EXPECT_EQ(list[0].firstBlock.steps.stepCount, 3);
  EXPECT_EQ(list[0].secondBlock.steps.stepCount, 3);
}

TEST(Profile, CutAtEveryByteKeepsWhatArrivedWhole) {
  for (int version : kProfileVersions) checkEveryCut(profileFields(), version);
}

TEST(Profile, FailsUpToItsTailAndSucceedsWithinIt) {
  // How many bytes of the end may be missing.
  const std::vector<std::pair<int, std::size_t>> tails = {{0, 0},    {53, 0},   {54, 0},   {79, 0},
                                                          {80, 0},   {149, 0},  {150, 4},  {151, 12},
                                                          {152, 13}, {160, 13}, {161, 17}, {162, 17}};
  for (const auto& [version, tail] : tails) {
    const Bytes bytes = storedAt(profileFields(), version);
    for (std::size_t missing = 0; missing <= bytes.size(); ++missing) {
      ProfileRecord profile;
      EXPECT_EQ(read(bytes.cut(bytes.size() - missing), version, profile), missing <= tail ? 0 : 1)
          << version << ' ' << missing;
    }
  }
}

TEST(Profile, CutInTheTailOfItsFirstBlockLacksTheSecond) {
  const std::size_t blockAt = 52 + 56;
  for (int version : {151, 152}) {
    const Bytes bytes = storedAt(profileFields(), version);
    for (std::size_t cut = blockAt + 28; cut < blockAt + 36; ++cut) {
      ProfileRecord profile;
      EXPECT_EQ(read(bytes.cut(cut), version, profile), 1) << cut;
      EXPECT_EQ(profile.firstBlock.motionLength2, 5016.5F) << cut;
      EXPECT_EQ(profile.secondBlock.motionKind, 3) << cut;
    }
  }
}

Bytes storedList(int version, std::uint32_t count) {
  Bytes bytes = Bytes().u32(count);
  for (std::uint32_t k = 0; k < count; ++k) bytes.add(storedAt(profileFields(k), version));
  return bytes;
}

TEST(ProfileList, LoadsAndSavesItsProfilesInOrderAtEveryVersion) {
  for (int version : kProfileVersions) {
    for (std::uint32_t count = 0; count <= 3; ++count) {
      SCOPED_TRACE("version " + std::to_string(version) + " count " + std::to_string(count));
      const Bytes bytes = storedList(version, count);
      ProfileList list;
      std::size_t consumed = 0;
      EXPECT_EQ(read(bytes, version, list, &consumed), 0);
      EXPECT_EQ(consumed, bytes.size());
      ASSERT_EQ(list.size(), count);
      for (std::uint32_t k = 0; k < count; ++k) {
        expectLoaded(profileFields(k), version, 100000, list[k], ProfileRecord());
      }
      bool ok = false;
      EXPECT_EQ(saved(version, list, &ok), bytes);
      EXPECT_TRUE(ok);
    }
  }
}

TEST(ProfileList, EachProfileStartsFreshWhateverTheListHeldBefore) {
  for (int version : kProfileVersions) {
    SCOPED_TRACE(version);
    ProfileList list(5, usedBefore(profileFields()));
    EXPECT_EQ(read(storedList(version, 2), version, list), 0);
    ASSERT_EQ(list.size(), 2U);
    for (std::uint32_t k = 0; k < 2; ++k) {
      expectLoaded(profileFields(k), version, 100000, list[k], ProfileRecord());
    }
  }
}

TEST(ProfileList, ProfileBehindOneWithStepsStartsWithoutThem) {
  const Bytes bytes = Bytes().i32(2).add(storedAt(profileFields(), 161)).add(defaultProfile(161));
  ProfileList list;
  EXPECT_EQ(read(bytes, 161, list), 0);
  ASSERT_EQ(list.size(), 2U);
  expectDefaults(list[1].firstBlock, 5);
  expectDefaults(list[1].secondBlock, 3);
}

TEST(ProfileList, KeepsItsProfilesWhenTheStoredCountIsZero) {
  const auto fields = profileFields();
  ProfileList list(3, holding(fields));
  std::size_t consumed = 0;
  EXPECT_EQ(read(Bytes().i32(0).fill(900, 0x11), 161, list, &consumed), 0);
  EXPECT_EQ(consumed, 4U);
  ASSERT_EQ(list.size(), 3U);
  for (const auto& field : fields) EXPECT_EQ(field.get(list[2]), field.stored) << field.name;
}

TEST(ProfileList, IsEmptiedByACountBelowZero) {
  for (int count : {-1, -2, std::numeric_limits<int>::min()}) {
    ProfileList list(3);
    std::size_t consumed = 0;
    EXPECT_EQ(read(Bytes().i32(count).fill(900, 0x11), 161, list, &consumed), 0) << count;
    EXPECT_EQ(consumed, 4U) << count;
    EXPECT_TRUE(list.empty()) << count;
  }
}

TEST(ProfileList, CutInsideItsCountIsAFailureThatKeepsTheProfiles) {
  for (std::size_t cut = 0; cut < 4; ++cut) {
    ProfileList list(3);
    EXPECT_EQ(read(Bytes().i32(1).cut(cut), 161, list), 1) << cut;
    EXPECT_EQ(list.size(), 3U) << cut;
  }
}

TEST(ProfileList, CutAtEveryByteKeepsTheProfilesThatWereComplete) {
  const std::vector<std::pair<int, std::size_t>> tails = {{53, 0}, {54, 0}, {80, 0}, {150, 4}, {151, 12}, {161, 17}};
  for (const auto& [version, tail] : tails) {
    const std::size_t one = storedAt(profileFields(), version).size();
    const Bytes bytes = storedList(version, 3);
    const ProfileRecord used = usedBefore(profileFields());
    for (std::size_t cut = 4; cut < bytes.size(); ++cut) {
      // A profile that lacks only some of its tail is taken, and the next one fails.
      const std::size_t complete = (cut - 4 + tail) / one;
      ProfileList list(4, used);
      EXPECT_EQ(read(bytes.cut(cut), version, list), complete == 3 ? 0 : 1) << version << ' ' << cut;
      ASSERT_EQ(list.size(), complete) << version << ' ' << cut;
      for (std::size_t k = 0; k < complete; ++k) {
        EXPECT_EQ(list[k].profileIndex, static_cast<std::int32_t>(0x11121310U + k)) << version << ' ' << cut;
        EXPECT_EQ(list[k].profileWord4, 0x71727374U) << version << ' ' << cut;
      }
    }
  }
}

TEST(ProfileList, RefusedCountOfStepsKeepsTheProfilesInFrontOfIt) {
  const Bytes bad = Bytes().zeros(52 + 56).zeros(28 + 20).i8(21).zeros(2000);
  ProfileList list;
  EXPECT_EQ(read(Bytes().i32(3).add(storedAt(profileFields(), 90)).add(bad), 90, list), 1);
  ASSERT_EQ(list.size(), 1U);
  expectLoaded(profileFields(), 90, 100000, list[0], ProfileRecord());
}

TEST(ProfileList, CountBeyondTheFileIsAFailure) {
  for (int count : {3, 1000000, 2000000000, std::numeric_limits<int>::max()}) {
    ProfileList list;
    EXPECT_EQ(read(Bytes().i32(count).zeros(96), 53, list), 1) << count;
    EXPECT_EQ(list.size(), 2U) << count;  // 48 bytes each
  }
}

TEST(ProfileList, SaveStopsAtAProfileThatCannotBeStored) {
  ProfileList list(3);
  list[1].secondBlock.steps.stepCount = 21;
  bool ok = true;
  const Bytes bytes = saved(90, list, &ok);
  EXPECT_FALSE(ok);
  const std::size_t one = 52 + 56 + 2 * (28 + 23) + 16;
  EXPECT_LE(bytes.size(), 4 + one + 52 + 56 + (28 + 23) + 28 + 20 + 1);
  EXPECT_EQ(bytes.cut(4 + one), Bytes().i32(3).add(defaultProfile(90)));
}

TEST(ProfileList, SaveIntoAFileThatTakesNothingIsFalse) {
  const ProfileList list(20000);
  std::FILE* file = testing_support::unwritableFile();
  ASSERT_NE(file, nullptr);
  {
    OutStream stream(file);
    EXPECT_FALSE(oldtorvio::WriteProfileList(stream, 161, list));
  }
  std::fclose(file);
}

}  // namespace
