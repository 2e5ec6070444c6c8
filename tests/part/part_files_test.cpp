// Part files through the exported load, and their save.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "OldTorvIO.h"
#include "src/part/part_io.h"
#include "tests/support/files.h"
#include "tests/support/stored_forms.h"
#include "tests/support/stored_forms/versions.h"

namespace {

using namespace testing_support;

TEST(LoadOldPart, LoadsEveryAcceptedVersionAndRemembersPathAndVersion) {
  const TempFolder folder;
  for (const int version : partVersions()) {
    const std::string path = folder.write("a.part", storedPartFile(version));
    const auto part = std::make_unique<TorvPart>();
    ASSERT_EQ(LoadOldPart(path.c_str(), part.get()), 0) << version;
    EXPECT_EQ(part->version, version);
    EXPECT_EQ(std::string(part->partFullDosName), path);
    Checker checker;
    storedPart(checker, version, {}, *part);
    const std::string copy = folder.path("copy.part");
    ASSERT_EQ(SavePart(copy.c_str(), *part, version), 0);
    EXPECT_EQ(TempFolder::read(copy), storedPartFile(version));
  }
}

TEST(LoadOldPart, CopiesThePathAndKeepsTheBytesAfterIt) {
  const TempFolder folder;
  const std::string path = folder.write("a", storedPartFile(62));
  const auto part = std::make_unique<TorvPart>();
  std::memset(part->partFullDosName, 'x', sizeof part->partFullDosName);
  ASSERT_EQ(LoadOldPart(path.c_str(), part.get()), 0);
  EXPECT_EQ(std::string(part->partFullDosName), path);
  EXPECT_EQ(part->partFullDosName[path.size() + 1], 'x');
  ASSERT_EQ(LoadOldPart(part->partFullDosName, part.get()), 0) << "a record can be loaded from the path it holds";
}

TEST(LoadOldPart, LongPathsLoadAndKeepTheirFirst259Characters) {
  const TempFolder folder;
  std::string deep = folder.path();
  while (deep.size() < 260) {
    deep += "/abcdefghijklmnopqrstuvwxyz";
    std::filesystem::create_directory(deep);
  }
  const std::string path = deep + "/a.part";
  std::filesystem::copy_file(folder.write("a.part", storedPartFile(62)), path);
  const auto part = std::make_unique<TorvPart>();
  ASSERT_EQ(LoadOldPart(path.c_str(), part.get()), 0);
  EXPECT_EQ(std::string(part->partFullDosName), path.substr(0, 259));
}

TEST(LoadOldPart, BytesAfterTheLastFieldAreIgnored) {
  const TempFolder folder;
  const auto part = std::make_unique<TorvPart>();
  EXPECT_EQ(LoadOldPart(folder.write("a", storedPartFile(110).fill(1000, 0xEE)).c_str(), part.get()), 0);
}

TEST(LoadOldPart, FilesLargerThanTheReadingWindowLoadWhereverAFieldCrossesItsEdge) {
  const TempFolder folder;
  const auto made = std::make_unique<TorvPart>();
  made->patterns.emplace_back();
  for (int shift = 0; shift < 40; ++shift) {
    made->shapes.shapes.assign(7500, Shape());
    for (std::size_t i = 0; i < made->shapes.shapes.size(); ++i) {
      Shape& s = made->shapes.shapes[i];
      s.auxWord = static_cast<std::int32_t>(i);
      s.valueCount = static_cast<std::int32_t>(i % 10);
      s.textFlag = i % 50 == 0 ? 1 : 0;
      if (i % 7 == 0) s.note.assign(i % 90, 'n');
    }
    made->shapes.shapes[0].note.assign(static_cast<std::size_t>(shift), 's');
    made->patterns[0].items.resize(made->shapes.shapes.size());
    const std::string path = folder.path("large.part"), copy = folder.path("copy.part");
    ASSERT_EQ(SavePart(path.c_str(), *made, 180), 0);
    ASSERT_GT(std::filesystem::file_size(path), 1000000U);
    const auto part = std::make_unique<TorvPart>();
    ASSERT_EQ(LoadOldPart(path.c_str(), part.get()), 0);
    ASSERT_EQ(part->shapes.shapes.size(), made->shapes.shapes.size());
    ASSERT_EQ(SavePart(copy.c_str(), *part, 180), 0);
    ASSERT_EQ(TempFolder::read(copy), TempFolder::read(path));
  }
}

#if !defined(_WIN32)
TEST(LoadOldPart, ReadsFromAPipeAsFromAFile) {
  const TempFolder folder;
  const std::string pipe = folder.path("pipe"), file = folder.write("a", storedPartFile(180).fill(200000, 1));
  ASSERT_EQ(std::system(("mkfifo '" + pipe + "' && (cat '" + file + "' > '" + pipe + "' &)").c_str()), 0);
  const auto part = std::make_unique<TorvPart>();
  EXPECT_EQ(LoadOldPart(pipe.c_str(), part.get()), 0);
  EXPECT_EQ(part->shapes.shapes.size(), 3U);
}
#endif

TEST(SavePart, AllVersionWordsReturnWhatTheListSays) {
  const TempFolder folder;
  const auto part = std::make_unique<TorvPart>();
  part->patterns.emplace_back();
  const std::string path = folder.path("v");
  for (int version = -32768; version < 32768; version += version < -2 || version > 200 ? 97 : 1) {
    const bool main = std::find(partVersions().begin(), partVersions().end(), version) != partVersions().end();
    const bool accepted = main || version == 2 || version == 3 || version == 5;
    ASSERT_EQ(SavePart(path.c_str(), *part, version), accepted ? 0 : -1) << version;
    ASSERT_EQ(std::filesystem::file_size(path) > 0, accepted);
  }
}

// ---- the record around a load, and the bytes of a saved file -------------------------------------

// The body of a fresh part with a fresh pattern, in the form of a part file.
Bytes emptyBody(int version, bool options = false) {
  const auto part = std::make_unique<TorvPart>();
  part->hasOptions = options ? 1 : 0;
  part->optionWord = 0x0A0B0C0D;
  part->optionReal = 7.5;
  part->optionCount = 8;
  part->optionValue = 9;
  std::strcpy(part->optionText, "option");
  return heldPartBody(version, *part);
}

const std::vector<int>& allAccepted() {
  static const std::vector<int> all = joined({2, 3, 5}, partVersions());
  return all;
}
bool isAccepted(int word) { return contains(allAccepted(), word); }

// A record with a mark in each field that a load may set before it reads the body.
std::unique_ptr<TorvPart> markedPart() {
  auto part = std::make_unique<TorvPart>();
  part->version = 4711;
  std::memset(part->partFullDosName, 'p', sizeof part->partFullDosName);
  part->optionWord = 21;
  part->optionReal = 22;
  part->optionCount = 23;
  part->optionValue = 24;
  std::memset(part->optionText, 'o', sizeof part->optionText);
  part->width = 25;
  part->patterns.resize(2);
  part->workList.resize(3);
  part->nestShapeGroups.resize(1);
  return part;
}

void expectOptionsReset(const TorvPart& part) {
  EXPECT_EQ(part.optionWord, 0);
  EXPECT_EQ(std::bit_cast<std::uint64_t>(part.optionReal), 0x3FA999999999999AU);
  EXPECT_EQ(part.optionCount, 1);
  EXPECT_EQ(part.optionValue, 0);
  EXPECT_EQ(part.optionText[0], '\0');
  for (std::size_t i = 1; i < sizeof part.optionText; ++i) ASSERT_EQ(part.optionText[i], 'o') << i;
}

void expectOptionsKept(const TorvPart& part) {
  EXPECT_EQ(part.optionWord, 21);
  EXPECT_EQ(part.optionReal, 22);
  EXPECT_EQ(part.optionCount, 23);
  EXPECT_EQ(part.optionValue, 24);
  EXPECT_EQ(part.optionText[0], 'o');
}

void expectPath(const TorvPart& part, const std::string& path) {
  ASSERT_LT(path.size() + 1, sizeof part.partFullDosName);
  EXPECT_STREQ(part.partFullDosName, path.c_str());
  for (std::size_t i = path.size() + 1; i < sizeof part.partFullDosName; ++i) ASSERT_EQ(part.partFullDosName[i], 'p');
}

TEST(LoadOldPart, VersionIsStoredWithItsSignAndARefusedOneChangesNothingElse) {
  const TempFolder folder;
  // The word is followed by a body that no accepted version can read to its end.
  const std::string path = folder.write("v", Bytes().u16(0).f32(30).f32(20));
  std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
  for (int word = 0; word < 65536; ++word) {
    // Written over in place: making the file anew each time would cost far more than the loads.
    const char bytes[2] = {static_cast<char>(word & 0xFF), static_cast<char>(word >> 8)};
    ASSERT_TRUE(file.seekp(0).write(bytes, 2).flush());
    const auto part = markedPart();
    ASSERT_EQ(LoadOldPart(path.c_str(), part.get()), isAccepted(word) ? 1 : -1) << word;
    ASSERT_EQ(part->version, word < 32768 ? word : word - 65536);
    if (isAccepted(word)) {
      expectPath(*part, path);
      expectOptionsReset(*part);
      EXPECT_EQ(part->width, word == 5 ? 25.0F : 30.0F) << word;
    } else {
      EXPECT_EQ(part->partFullDosName[0], 'p');
      expectOptionsKept(*part);
      EXPECT_EQ(part->width, 25.0F);
      EXPECT_EQ(part->patterns.size(), 2U);
      EXPECT_EQ(part->workList.size(), 3U);
    }
    if (HasFailure()) return;
  }
}

TEST(LoadOldPart, FileWithoutACompleteVersionWordLeavesTheRecord) {
  const TempFolder folder;
  struct Attempt {
    std::string path;
    std::int64_t result;
  };
  for (const Attempt& attempt :
       {Attempt{folder.path("none"), -2}, Attempt{"", -2}, Attempt{folder.path("none/below"), -2},
        Attempt{folder.path(), -2}, Attempt{folder.write("empty", Bytes()), 1},
        Attempt{folder.write("one", Bytes().u8(180)), 1}}) {
    SCOPED_TRACE(attempt.path);
    const auto part = markedPart();
    EXPECT_EQ(LoadOldPart(attempt.path.c_str(), part.get()), attempt.result);
    EXPECT_EQ(part->version, 4711);
    EXPECT_EQ(part->partFullDosName[0], 'p');
    expectOptionsKept(*part);
    EXPECT_EQ(part->patterns.size(), 2U);
    EXPECT_EQ(part->workList.size(), 3U);
  }
  EXPECT_EQ(LoadOldPart(nullptr, std::make_unique<TorvPart>().get()), -2);
  EXPECT_EQ(LoadOldPart(folder.path("one").c_str(), nullptr), -2);
}

TEST(LoadOldPart, OptionFieldsAreResetUnlessTheFileStoresThem) {
  const TempFolder folder;
  for (const int version : allAccepted()) {
    if (version < 52) continue;
    for (const bool options : {false, true}) {
      SCOPED_TRACE(version);
      const auto part = markedPart();
      const std::string path = folder.write("o", Bytes().i16(version).add(emptyBody(version, options)));
      ASSERT_EQ(LoadOldPart(path.c_str(), part.get()), 0);
      if (version >= 80 && options) {
        EXPECT_EQ(part->optionWord, 0x0A0B0C0D);
        EXPECT_EQ(part->optionReal, 7.5);
        EXPECT_EQ(part->optionCount, 8);
        EXPECT_EQ(part->optionValue, 9);
        EXPECT_STREQ(part->optionText, "option");
        EXPECT_EQ(part->optionText[255], '\0');
      } else {
        expectOptionsReset(*part);
      }
    }
  }
}

TEST(LoadOldPart, KeepsTheNameAndTheWorkOrderNumberWhichNoPartFileStores) {
  const TempFolder folder;
  const auto part = std::make_unique<TorvPart>();
  std::strcpy(part->woNumber, "kept in a part file");
  std::strcpy(part->partName, "kept");
  for (const int version : {111, 162, 170, 180}) {
    ASSERT_EQ(LoadOldPart(folder.write("a", Bytes().i16(version).add(emptyBody(version))).c_str(), part.get()), 0);
    EXPECT_STREQ(part->woNumber, "kept in a part file") << version;
    EXPECT_STREQ(part->partName, "kept") << version;
  }
}

TEST(LoadOldPart, EveryLoadAndSaveClosesItsFile) {
  const TempFolder folder;
  const auto part = std::make_unique<TorvPart>();
  part->patterns.emplace_back();
  const auto withoutPattern = std::make_unique<TorvPart>();
  const std::string good = folder.write("good", Bytes().i16(180).add(emptyBody(180)));
  const std::string shortBody = folder.write("short", Bytes().i16(180));
  const std::string oneByte = folder.write("one", Bytes().u8(1));
  const std::string refused = folder.write("refused", Bytes().i16(6).zeros(50));
  const std::string old = folder.write("old", Bytes().i16(5).zeros(50));
  const bool hasFull = std::filesystem::exists("/dev/full");
  const std::size_t before = openFiles();
  for (int i = 0; i < 20; ++i) {
    EXPECT_EQ(LoadOldPart(good.c_str(), part.get()), 0);
    for (const std::string& path : {shortBody, oneByte, old}) EXPECT_EQ(LoadOldPart(path.c_str(), part.get()), 1);
    EXPECT_EQ(LoadOldPart(refused.c_str(), part.get()), -1);
    part->patterns.resize(1);
    EXPECT_EQ(SavePart(folder.path("s").c_str(), *part, 180), 0);
    EXPECT_EQ(SavePart(folder.path("s").c_str(), *part, 63), -1);
    EXPECT_EQ(SavePart(folder.path("s").c_str(), *withoutPattern, 180), -2);
    if (hasFull) {
      EXPECT_EQ(SavePart("/dev/full", *part, 180), -2);
    }
  }
  EXPECT_EQ(openFiles(), before);
}

TEST(SavePart, FreshPartIsStoredAtEveryVersion) {
  const TempFolder folder;
  for (const int version : allAccepted())
    for (const bool options : {false, true}) {
      SCOPED_TRACE(version);
      const auto part = std::make_unique<TorvPart>();
      part->patterns.emplace_back();
      part->hasOptions = options ? 1 : 0;
      part->optionWord = 0x0A0B0C0D;
      part->optionReal = 7.5;
      part->optionCount = 8;
      part->optionValue = 9;
      std::strcpy(part->optionText, "option");
      part->version = 1234;  // the file gets the version asked for
      const std::string path = folder.path("a.part");
      EXPECT_EQ(SavePart(path.c_str(), *part, version), 0);
      EXPECT_EQ(TempFolder::read(path), Bytes().i16(version).add(emptyBody(version, options)));
      EXPECT_EQ(part->version, 1234);
      EXPECT_EQ(part->partFullDosName[0], '\0');
    }
}

TEST(SavePart, FileThatCannotBeOpenedReturnsMinusTwoAtAnyVersion) {
  const TempFolder folder;
  const auto part = std::make_unique<TorvPart>();
  part->patterns.emplace_back();
  for (const int version : {63, 180}) {
    EXPECT_EQ(SavePart(folder.path("none/below").c_str(), *part, version), -2);
    EXPECT_EQ(SavePart("", *part, version), -2);
    EXPECT_EQ(SavePart(folder.path().c_str(), *part, version), -2);
  }
  EXPECT_FALSE(std::filesystem::exists(folder.path("none")));
}

TEST(SavePart, ShorterPartReplacesALongerFile) {
  const TempFolder folder;
  const std::string path = folder.write("a", Bytes().fill(100000, 9));
  const auto part = std::make_unique<TorvPart>();
  part->patterns.emplace_back();
  ASSERT_EQ(SavePart(path.c_str(), *part, 52), 0);
  EXPECT_EQ(TempFolder::read(path), Bytes().i16(52).add(emptyBody(52)));
}

TEST(SavePart, ValuesOutsideTheirRangeReturnMinusTwoAndTheFileEndsBeforeThem) {
  const TempFolder folder;
  const Bytes whole = Bytes().i16(100).add(emptyBody(100));
  const auto save = [&](const TorvPart& part) {
    const std::string path = folder.path("bad");
    EXPECT_EQ(SavePart(path.c_str(), part, 100), -2);
    return TempFolder::read(path);
  };
  const auto part = std::make_unique<TorvPart>();
  part->patterns.emplace_back();
  part->processSlotCount = 251;
  // Word, head of the body, shapes, setup, note, flags, stations, pattern.
  const std::size_t slotsAt = 2 + 8 + 63 + 16 + 12 + 4 + 256 + 501 + (12 + 12 + 4) + (44 + 12);
  const Bytes slots = save(*part);
  EXPECT_EQ(slots.cut(slotsAt), whole.cut(slotsAt));
  EXPECT_LE(slots.size(), slotsAt + 1) << "no slot is stored";

  part->processSlotCount = 0;
  part->patterns.clear();
  const Bytes withoutPattern = save(*part);
  EXPECT_EQ(withoutPattern, whole.cut(withoutPattern.size()));

  for (const int count : {-1, 10}) {
    part->patterns.resize(1);
    part->shapes.shapes.assign(1, Shape());
    part->shapes.shapes[0].valueCount = count;
    const Bytes shape = save(*part);
    const std::size_t shapesAt = 2 + 8 + 63 + 16 + 8;
    EXPECT_EQ(shape.cut(shapesAt), whole.cut(shapesAt));
    EXPECT_LE(shape.size(), shapesAt + 4 + 17 + 4) << "no value is stored";
  }
}

TEST(SavePart, FullDiskReturnsMinusTwoForSmallAndLargeParts) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no /dev/full on this system";
  const auto part = std::make_unique<TorvPart>();
  part->patterns.emplace_back();
  for (const int version : allAccepted()) EXPECT_EQ(SavePart("/dev/full", *part, version), -2) << version;
  for (const int version : {0, 63, 181}) EXPECT_EQ(SavePart("/dev/full", *part, version), -1) << version;
  part->shapes.shapes.resize(10000);
  EXPECT_EQ(SavePart("/dev/full", *part, 180), -2);
}

}  // namespace
