// Texts of setup entries in part files of the versions 2 and 3: each continuation entry holds 27 characters in the 27
// bytes that follow its type in memory.
#include <gtest/gtest.h>

#include <bit>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "OldTorvIO.h"
#include "OldTorvIO/records.h"
#include "src/records/record_io.h"
#include "tests/support/files.h"
#include "tests/support/stored_forms/oldest_parts.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;

constexpr std::size_t kPiece = kSetupTextSize;

// A part without shapes and with that setup section.
Bytes oldestPart(int version, int setupCount, const Bytes& setup) {
  Version3File file;
  file.version = version;
  file.setupCount = setupCount;
  file.setup = setup;
  return file.bytes();
}

// The section of one record with those texts; then one of type 2, to show that the reading went on.
struct Section {
  int type;
  std::vector<std::string> texts;

  int count() const { return static_cast<int>(texts.size()) + 2; }
  Bytes bytes() const {
    Bytes b = Version3Setup{type, 0.5F, 1.5F, 2.5F, 3.5F, 9, static_cast<int>(texts.size())}.bytes();
    for (const std::string& text : texts) b.add(setupTextRecord(text));
    return b.add(Version3Setup{2, 1, 2, 3, 4, 5}.bytes());
  }
  std::string joined() const {
    std::string all;
    for (const std::string& text : texts) all += text.substr(0, kPiece).substr(0, text.find('\0'));
    return all;
  }
};

std::unique_ptr<TorvPart> loaded(const Section& section, int version) {
  const TempFolder folder;
  auto part = std::make_unique<TorvPart>();
  const std::string path = folder.write("a.part", oldestPart(version, section.count(), section.bytes()));
  EXPECT_EQ(LoadOldPart(path.c_str(), part.get()), 1);
  return part;
}

// The n-th piece, NUL-padded.
std::string piece(const std::string& joined, std::size_t n) {
  std::string one = joined.substr(kPiece * n, kPiece);
  one.resize(kPiece, '\0');
  return one;
}

std::uint32_t littleEndian(const std::string& text, std::size_t at, std::size_t size) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < size; ++i)
    value |= std::uint32_t{static_cast<std::uint8_t>(text[at + i])} << static_cast<unsigned>(8 * i);
  return value;
}

// Compares an entry with what a piece makes of its fields. The piece begins at byte 2 of the entry, so that its
// characters 3, 7 and 11 to 13 are in no field.
void expectFields(const SetupEntry& e, const std::string& text) {
  EXPECT_EQ(e.setupShort1, 8);
  EXPECT_EQ(e.setupShort2, littleEndian(text, 0, 2));
  EXPECT_EQ(e.setupByte1, littleEndian(text, 2, 1));
  EXPECT_EQ(e.setupShort3, littleEndian(text, 4, 2));
  EXPECT_EQ(e.setupByte2, littleEndian(text, 6, 1));
  EXPECT_EQ(e.setupShort4, littleEndian(text, 8, 2));
  EXPECT_EQ(e.setupByte3, littleEndian(text, 10, 1));
  EXPECT_EQ(bytesOf(e.setupBlock), Bytes().text(8, text.substr(14, 8)));
  EXPECT_EQ(e.setupWord1, littleEndian(text, 22, 4));
  EXPECT_EQ(e.setupByte4, littleEndian(text, 26, 1));
  EXPECT_EQ(e.setupWord2, 0U);
  EXPECT_EQ(e.setupShort5, 0U);
  EXPECT_EQ(e.setupWord3, 0U);
  EXPECT_EQ(e.setupReal1, -1.0F);
  EXPECT_EQ(e.setupReal2, -1.0F);
  EXPECT_EQ(e.memoryWord, 0U);
}

// The 27 bytes of memory after setupShort1. They are those of the text only where numbers begin with their lowest byte.
std::string memoryOf(const SetupEntry& e) {
  std::string bytes(kPiece, '\0');
  std::memcpy(bytes.data(), reinterpret_cast<const char*>(&e) + 2, kPiece);
  return bytes;
}
constexpr bool kMemoryIsText = std::endian::native == std::endian::little;

// A text without a repeated character in 27 of its places.
std::string someText(std::size_t length) {
  std::string text;
  for (std::size_t i = 0; i < length; ++i) text.push_back(static_cast<char>('0' + i % 75));
  return text;
}

// The text cut into records of 27 characters.
Section sectionOf(int type, const std::string& text) {
  Section section{type, {}};
  for (std::size_t at = 0; at < text.size(); at += kPiece) section.texts.push_back(text.substr(at, kPiece));
  return section;
}

const int kTypes[] = {7, 9, 15, 16, 17};
const std::size_t kLengths[] = {0, 1, 2, 3, 4, 13, 14, 22, 25, 26, 27, 28, 53, 54, 55, 80, 81, 82, 270};

void expectEntries(const TorvPart& part, const Section& section) {
  const std::string joined = section.joined();
  const std::size_t pieces = (joined.size() + kPiece - 1) / kPiece;
  const auto& entries = part.setupList.entries;
  ASSERT_EQ(entries.size(), pieces + 2);
  EXPECT_EQ(entries[0].setupShort1, section.type);
  EXPECT_EQ(entries[0].setupShort3, pieces);
  EXPECT_EQ(entries[0].setupByte1, section.type == 7 ? '0' : 0);
  EXPECT_EQ(entries[0].setupByte2, 0);
  EXPECT_EQ(entries[0].setupByte3, 0);
  EXPECT_EQ(entries[0].setupByte4, 0);
  for (std::size_t n = 0; n < pieces; ++n) {
    SCOPED_TRACE(testing::Message() << "piece " << n << " of " << pieces);
    expectFields(entries[n + 1], piece(joined, n));
    if (kMemoryIsText) {
      EXPECT_EQ(memoryOf(entries[n + 1]), piece(joined, n));
    }
  }
  EXPECT_EQ(entries.back().setupShort1, 2);
  EXPECT_EQ(entries.back().setupByte4, 5);
  EXPECT_EQ(entries.back().setupShort5, 7);
}

TEST(OldestSetupTexts, EntryHasNaturalAlignment) {
  EXPECT_EQ(offsetof(SetupEntry, setupShort1), 0U);
  EXPECT_EQ(offsetof(SetupEntry, setupShort2), 2U);
  EXPECT_EQ(offsetof(SetupEntry, setupByte1), 4U);
  EXPECT_EQ(offsetof(SetupEntry, setupShort3), 6U);
  EXPECT_EQ(offsetof(SetupEntry, setupByte2), 8U);
  EXPECT_EQ(offsetof(SetupEntry, setupShort4), 10U);
  EXPECT_EQ(offsetof(SetupEntry, setupByte3), 12U);
  EXPECT_EQ(offsetof(SetupEntry, setupBlock), 16U);
  EXPECT_EQ(offsetof(SetupEntry, setupWord1), 24U);
  EXPECT_EQ(offsetof(SetupEntry, setupByte4), 28U);
  EXPECT_EQ(offsetof(SetupEntry, setupWord2), 32U);
  EXPECT_EQ(offsetof(SetupEntry, setupShort5), 36U);
  EXPECT_EQ(offsetof(SetupEntry, setupWord3), 40U);
}

TEST(OldestSetupTexts, MemoryOnlyBytesOfAFreshEntryAre0) {
  const SetupEntry fresh;
  EXPECT_EQ(fresh.memoryByte1, 0);
  EXPECT_EQ(fresh.memoryByte2, 0);
  EXPECT_EQ(bytesOf(fresh.memoryBytes), Bytes().zeros(3));
  EXPECT_EQ(fresh.memoryWord, 0U);
}

TEST(OldestSetupTexts, EachPieceIsInTheFieldsAtItsPlaceInMemory) {
  for (const int version : {2, 3})
    for (const int type : kTypes)
      for (const std::size_t length : kLengths) {
        SCOPED_TRACE(testing::Message() << length << " characters, type " << type << ", version " << version);
        const Section section = sectionOf(type, someText(length));
        expectEntries(*loaded(section, version), section);
      }
}

TEST(OldestSetupTexts, OneCharacterOfAPieceIsInOneByteAndNoOther) {
  for (std::size_t at = 0; at < kPiece; ++at) {
    // A NUL would end the text, so all the other places hold the same character.
    std::string text(kPiece, '\x01');
    text[at] = '\xF5';
    const Section section{9, {text}};
    expectEntries(*loaded(section, 3), section);
  }
}

TEST(OldestSetupTexts, AllBytesBut0AreCharacters) {
  std::string all;
  for (int c = 1; c < 256; ++c) all.push_back(static_cast<char>(c));
  for (const int type : kTypes) {
    const Section section = sectionOf(type, all);
    expectEntries(*loaded(section, 2), section);
  }
}

TEST(OldestSetupTexts, RecordsAreJoinedUpToTheirFirstNulAndSplitAgain) {
  const std::string full = someText(kPiece), nul("ab\0cdefghijklmnopqrstuvwxyz", 27);
  const std::string lateNul = full.substr(0, 26) + '\0';
  const std::string onlyNul(kPiece, '\0'), nulFirst = '\0' + full.substr(1);
  const std::vector<std::vector<std::string>> cases = {
      {nul},
      {nul, full},
      {full, nul},
      {nul, nul, nul, nul, nul, nul, nul, nul, nul, nul, nul, nul, nul, nul},
      {lateNul},
      {lateNul, "x"},
      {lateNul, lateNul},
      {onlyNul},
      {nulFirst},
      {nulFirst, "x"},
      {onlyNul, full, onlyNul, "y", full},
      {"x", full},
      {"", "", ""},
      {full, full, full, "z"}};
  for (const int version : {2, 3})
    for (const int type : kTypes)
      for (std::size_t i = 0; i < cases.size(); ++i) {
        SCOPED_TRACE(testing::Message() << "case " << i << ", type " << type << ", version " << version);
        const Section section{type, cases[i]};
        expectEntries(*loaded(section, version), section);
      }
}

TEST(OldestSetupTexts, CharactersBetweenTheFieldsAreCopiedWithTheEntryTheListAndThePart) {
  const Section section = sectionOf(16, someText(60));
  auto part = loaded(section, 3);
  for (int copies = 0; copies < 3; ++copies) {
    expectEntries(*part, section);
    const auto copied = std::make_unique<TorvPart>(*part);
    expectEntries(*copied, section);
    const auto assigned = std::make_unique<TorvPart>();
    assigned->setupList.entries.resize(1);
    *assigned = *copied;
    expectEntries(*assigned, section);
    const auto moved = std::make_unique<TorvPart>(std::move(*assigned));
    expectEntries(*moved, section);

    const auto withOther = std::make_unique<TorvPart>();
    const std::vector<SetupEntry> entries = moved->setupList.entries;
    for (const SetupEntry& entry : entries) {
      SetupEntry one = entry;
      SetupEntry two;
      two = one;
      withOther->setupList.entries.push_back(two);
      if (kMemoryIsText && entry.setupShort1 == 8) {
        EXPECT_EQ(memoryOf(one), memoryOf(entry));
        EXPECT_EQ(memoryOf(two), memoryOf(entry));
      }
    }
    expectEntries(*withOther, section);
    part->setupList = withOther->setupList;
  }
}

// A list stores fields: the characters between them do not reach a file.
TEST(OldestSetupTexts, OnlyTheFieldsAreStored) {
  const Section section = sectionOf(15, someText(27));
  const auto part = loaded(section, 3);
  const std::string text = piece(section.joined(), 0);
  ASSERT_EQ(part->setupList.entries.size(), 3U);
  Bytes want;
  want.u16(8).text(2, text.substr(0, 2)).text(1, text.substr(2, 1)).text(2, text.substr(4, 2));
  want.text(1, text.substr(6, 1)).text(2, text.substr(8, 2)).text(1, text.substr(10, 1)).text(8, text.substr(14, 8));
  want.text(4, text.substr(22, 4)).text(1, text.substr(26, 1)).zeros(10).f32(-1).f32(-1);
  ASSERT_EQ(want.size(), 42U);
  const Bytes list = written([&](auto& to) { return WriteSetupList(to, part->setupList); });
  ASSERT_GE(list.size(), 4U + 3 * 42);
  EXPECT_EQ(Bytes::of(list.span().subspan(4 + 42, 42)), want);
}

// A used record and its lists leave nothing in a continuation.
TEST(OldestSetupTexts, ReloadLeavesNothingOfTheEarlierText) {
  const TempFolder folder;
  const auto part = std::make_unique<TorvPart>();
  for (const std::size_t length : {81U, 30U, 1U, 0U, 55U}) {
    const Section section = sectionOf(7, someText(length));
    const std::string path = folder.write("a.part", oldestPart(3, section.count(), section.bytes()));
    EXPECT_EQ(LoadOldPart(path.c_str(), part.get()), 1);
    expectEntries(*part, section);
  }
}

}  // namespace
