// Part and group part files through the exported loads, and the saves behind them.
#include <gtest/gtest.h>

#include <memory>

#include "OldTorvIO.h"
#include "src/part/part_io.h"
#include "tests/support/files.h"
#include "tests/support/stored_forms.h"

namespace {

using namespace testing_support;

Bytes partFile(int version, const PartForm2& form = {}) {
  Maker maker;
  const auto part = std::make_unique<TorvPart>();
  storedPart(maker, version, form, *part);
  return Bytes().i16(version).add(maker.bytes);
}

Bytes groupFile(int version, std::int32_t extra, std::int32_t nameSize, int parts) {
  Bytes b = Bytes().i16(version).i32(extra).i32(nameSize);
  for (int i = 0; i < parts; ++i) {
    const std::string name = "PART " + std::to_string(i);
    b.text(static_cast<std::size_t>(nameSize), name);
    Maker maker;
    const auto part = std::make_unique<TorvPart>();
    storedPart(maker, version, {}, *part);
    b.add(maker.bytes);
  }
  return b;
}

TEST(LoadOldPart, LoadsEveryAcceptedVersionAndRemembersPathAndVersion) {
  const TempFolder folder;
  for (const int version : partVersions()) {
    const std::string path = folder.write("a.part", partFile(version));
    const auto part = std::make_unique<TorvPart>();
    ASSERT_EQ(LoadOldPart(path.c_str(), part.get()), 0) << version;
    EXPECT_EQ(part->version, version);
    EXPECT_EQ(std::string(part->partFullDosName), path);
    Checker checker;
    storedPart(checker, version, {}, *part);
    const std::string copy = folder.path("copy.part");
    ASSERT_EQ(SavePart(copy.c_str(), *part, version), 0);
    EXPECT_EQ(TempFolder::read(copy), partFile(version));
  }
}

TEST(LoadOldPart, AllVersionWordsGiveWhatTheListSays) {
  const TempFolder folder;
  const auto part = std::make_unique<TorvPart>();
  for (int word = 0; word < 65536; ++word) {
    const std::string path = folder.write("v", Bytes().u16(static_cast<std::uint16_t>(word)));
    const bool main = std::find(partVersions().begin(), partVersions().end(), word) != partVersions().end();
    const bool accepted = main || word == 2 || word == 3 || word == 5;
    ASSERT_EQ(LoadOldPart(path.c_str(), part.get()), accepted ? 1 : -1) << word;
    ASSERT_EQ(part->version, static_cast<std::int16_t>(word)) << "kept also when it is refused";
    float size[3] = {-1, -1, -1};
    char text[8] = "same";
    if (word < 300 || word % 8192 == 0) {
      ASSERT_EQ(GetOldPartInfo(path.c_str(), text, &size[0], &size[1], &size[2]), accepted ? 1 : -1);
      ASSERT_STREQ(text, "same");
      ASSERT_EQ(size[0], -1.0F);
    }
  }
}

TEST(LoadOldPart, MissingEmptyAndOneByteFiles) {
  const TempFolder folder;
  const auto part = std::make_unique<TorvPart>();
  part->version = 7;
  EXPECT_EQ(LoadOldPart(folder.path("none").c_str(), part.get()), -2);
  EXPECT_EQ(LoadOldPart("", part.get()), -2);
  EXPECT_EQ(LoadOldPart(nullptr, part.get()), -2);
  EXPECT_EQ(LoadOldPart(folder.path().c_str(), part.get()), -2) << "a folder cannot be opened";
  EXPECT_EQ(LoadOldPart(folder.write("one", Bytes().u8(180)).c_str(), part.get()), 1);
  EXPECT_EQ(LoadOldPart(folder.write("one", Bytes().u8(180)).c_str(), nullptr), -2);
  EXPECT_EQ(part->version, 7);
}

TEST(LoadOldPart, SetsTheOptionFieldsAnewForEveryAcceptedVersion) {
  const TempFolder folder;
  for (const int version : {2, 3, 5, 62, 180}) {
    const auto part = std::make_unique<TorvPart>();
    part->optionWord = part->optionCount = part->optionValue = 9;
    part->optionReal = 9;
    std::strcpy(part->optionText, "text");
    (void)LoadOldPart(folder.write("v", Bytes().i16(version)).c_str(), part.get());
    EXPECT_EQ(part->optionWord, 0);
    EXPECT_EQ(part->optionCount, 1);
    EXPECT_EQ(part->optionReal, 0.05);
    EXPECT_EQ(part->optionValue, 0);
    EXPECT_STREQ(part->optionText, "");
    EXPECT_EQ(part->optionText[1], 'e') << "only the first byte is cleared";
  }
  const auto refused = std::make_unique<TorvPart>();
  refused->optionCount = 9;
  EXPECT_EQ(LoadOldPart(folder.write("v", Bytes().i16(53)).c_str(), refused.get()), -1);
  EXPECT_EQ(refused->optionCount, 9);
  EXPECT_EQ(refused->partFullDosName[0], '\0');
}

TEST(LoadOldPart, OptionBlockIsReadOnlyWhereTheFileAnnouncesIt) {
  const TempFolder folder;
  for (const bool options : {false, true}) {
    const auto part = std::make_unique<TorvPart>();
    ASSERT_EQ(LoadOldPart(folder.write("v", partFile(80, {false, options, 0})).c_str(), part.get()), 0);
    EXPECT_EQ(part->hasOptions, options ? 1 : 0);
    EXPECT_EQ(part->optionReal == 0.05, !options);
  }
}

TEST(LoadOldPart, CopiesThePathAndLeavesTheBytesBehindIt) {
  const TempFolder folder;
  const std::string path = folder.write("a", partFile(62));
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
  std::filesystem::copy_file(folder.write("a.part", partFile(62)), path);
  const auto part = std::make_unique<TorvPart>();
  ASSERT_EQ(LoadOldPart(path.c_str(), part.get()), 0);
  EXPECT_EQ(std::string(part->partFullDosName), path.substr(0, 259));
}

TEST(LoadOldPart, BytesBehindTheLastFieldAreNotLookedAt) {
  const TempFolder folder;
  const auto part = std::make_unique<TorvPart>();
  EXPECT_EQ(LoadOldPart(folder.write("a", partFile(110).fill(1000, 0xEE)).c_str(), part.get()), 0);
}

TEST(LoadOldPart, FilesLargerThanTheReadingWindowLoadWhereverAFieldCrossesItsEdge) {
  const TempFolder folder;
  const auto made = std::make_unique<TorvPart>();
  made->patterns.emplace_back();
  for (int shift = 0; shift < 40; ++shift) {
    made->shapes.shapes.assign(1500, Shape());
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
    ASSERT_GT(std::filesystem::file_size(path), 200000U);
    const auto part = std::make_unique<TorvPart>();
    ASSERT_EQ(LoadOldPart(path.c_str(), part.get()), 0);
    ASSERT_EQ(part->shapes.shapes.size(), made->shapes.shapes.size());
    ASSERT_EQ(SavePart(copy.c_str(), *part, 180), 0);
    ASSERT_EQ(TempFolder::read(copy), TempFolder::read(path));
  }
}

TEST(LoadOldPart, ReadsFromAPipeAsFromAFile) {
  const TempFolder folder;
  const std::string pipe = folder.path("pipe"), file = folder.write("a", partFile(180).fill(200000, 1));
  ASSERT_EQ(std::system(("mkfifo '" + pipe + "' && (cat '" + file + "' > '" + pipe + "' &)").c_str()), 0);
  const auto part = std::make_unique<TorvPart>();
  EXPECT_EQ(LoadOldPart(pipe.c_str(), part.get()), 0);
  EXPECT_EQ(part->shapes.shapes.size(), 3U);
}

TEST(SavePart, KeepsWhatHadBeenStoredBeforeAFault) {
  const TempFolder folder;
  const auto part = std::make_unique<TorvPart>();  // without a pattern
  const std::string path = folder.path("x");
  EXPECT_EQ(SavePart(path.c_str(), *part, 180), -2);
  EXPECT_EQ(TempFolder::read(path).cut(6), Bytes().i16(180).f32(30.0F));
  part->shapes.shapes.resize(2);
  part->shapes.shapes[1].valueCount = 10;
  EXPECT_EQ(SavePart(path.c_str(), *part, 52), -2);
}

TEST(SavePart, FullDiskGivesMinusTwoForSmallAndLargeParts) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no /dev/full on this system";
  const auto part = std::make_unique<TorvPart>();
  part->patterns.emplace_back();
  EXPECT_EQ(SavePart("/dev/full", *part, 180), -2);
  part->shapes.shapes.resize(10000);
  EXPECT_EQ(SavePart("/dev/full", *part, 180), -2);
}

TEST(SavePart, AllVersionWordsGiveWhatTheListSays) {
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

// ---- group part files ----------------------------------------------------------------------------

struct List {
  SheetPartList* list = CreateOldPartlistInfo();
  ~List() { DeleteOldPartlistInfo(list); }
};

TEST(PartList, IsCreatedEmptyWithANameWidthOf256) {
  const List one;
  ASSERT_NE(one.list, nullptr);
  EXPECT_TRUE(one.list->parts.empty());
  EXPECT_EQ(one.list->nameWidth, 256);
  DeleteOldPartlistInfo(nullptr);
}

TEST(LoadGroupPart, AppendsEachPartInStoredOrder) {
  const TempFolder folder;
  for (const int version : {152, 155, 160, 161, 162, 170, 180, 181, 500, 32767})
    for (const std::int32_t nameSize : {7, 255, 256}) {
      const List one;
      const std::string path = folder.write("g", groupFile(version, 2, nameSize, 3));
      for (const std::size_t loads : {1U, 2U}) {
        ASSERT_EQ(LoadGroupPart(path.c_str(), one.list), 0) << version;
        ASSERT_EQ(one.list->parts.size(), 3 * loads);
      }
      for (std::size_t i = 0; i < 3; ++i) {
        TorvPart& part = one.list->parts[i];
        EXPECT_EQ(std::string(part.partName), "PART " + std::to_string(i));
        EXPECT_EQ(part.version, 0);
        EXPECT_EQ(part.partFullDosName[0], '\0');
        Checker checker;
        storedPart(checker, version, {}, part);
      }
      one.list->parts.resize(3);
      const std::string copy = folder.path("copy");
      ASSERT_EQ(SaveGroupPart(copy.c_str(), *one.list, version, nameSize), 0);
      EXPECT_EQ(TempFolder::read(copy), TempFolder::read(path));
    }
}

TEST(LoadGroupPart, NameIsReadStraightOverTheDefault) {
  const TempFolder folder;
  const List one;
  ASSERT_EQ(LoadGroupPart(folder.write("g", groupFile(152, 0, 3, 1)).c_str(), one.list), 0);
  EXPECT_STREQ(one.list->parts[0].partName, "PAR PART") << "\"NEW PART\" with its first three bytes replaced";
}

TEST(LoadGroupPart, AllVersionWordsBelow152GiveOneAndNoneGivesMinusOne) {
  const TempFolder folder;
  const List one;
  const Bytes rest = Bytes().i32(0).i32(256);
  for (int word = 0; word < 65536; word += word > 300 && word < 65000 ? 7 : 1) {
    const std::string path = folder.write("v", Bytes().u16(static_cast<std::uint16_t>(word)).add(rest));
    ASSERT_EQ(LoadGroupPart(path.c_str(), one.list), 1) << word;
  }
  const Bytes whole = groupFile(180, 0, 256, 1);
  for (const int version : {151, 0, -1, 52}) {
    const Bytes file = Bytes().i16(version).add(Bytes::of(whole.span().subspan(2)));
    EXPECT_EQ(LoadGroupPart(folder.write("v", file).c_str(), one.list), 1);
  }
  EXPECT_TRUE(one.list->parts.empty());
}

TEST(LoadGroupPart, MissingShortAndNull) {
  const TempFolder folder;
  const List one;
  EXPECT_EQ(LoadGroupPart(folder.path("none").c_str(), one.list), -2);
  EXPECT_EQ(LoadGroupPart("", one.list), -2);
  EXPECT_EQ(LoadGroupPart(nullptr, one.list), -2);
  EXPECT_EQ(LoadGroupPart(folder.write("g", groupFile(180, 0, 256, 1)).c_str(), nullptr), -2);
  const Bytes whole = groupFile(180, 0, 256, 1);
  for (std::size_t cut = 0; cut < 300; ++cut)
    EXPECT_EQ(LoadGroupPart(folder.write("g", whole.cut(cut)).c_str(), one.list), 1);
}

TEST(LoadGroupPart, NameBlockSizesOutside1To256AreRefused) {
  const TempFolder folder;
  for (const std::int32_t size : {-2000000000, -1, 0, 257, 2000000000}) {
    const List one;
    const Bytes file = Bytes().i16(180).i32(0).i32(size).zeros(20000);
    EXPECT_EQ(LoadGroupPart(folder.write("g", file).c_str(), one.list), 1);
    EXPECT_TRUE(one.list->parts.empty());
    one.list->parts.emplace_back().patterns.emplace_back();
    EXPECT_EQ(SaveGroupPart(folder.path("h").c_str(), *one.list, 180, size), -2);
  }
}

TEST(LoadGroupPart, ExtraCountsOfZeroAndBelowGiveOnePart) {
  const TempFolder folder;
  for (const std::int32_t extra : {0, -1, -2000000000}) {
    const List one;
    EXPECT_EQ(LoadGroupPart(folder.write("g", groupFile(180, extra, 256, 1)).c_str(), one.list), 0);
    EXPECT_EQ(one.list->parts.size(), 1U);
  }
}

TEST(LoadGroupPart, PartsReadBeforeAFaultStay) {
  const TempFolder folder;
  for (const std::int32_t extra : {2, 2000000000}) {
    const List one;
    EXPECT_EQ(LoadGroupPart(folder.write("g", groupFile(180, extra, 256, 2)).c_str(), one.list), 1);
    EXPECT_EQ(one.list->parts.size(), 2U);
  }
}

TEST(SaveGroupPart, RefusesAnEmptyListAndVersionsBelow152) {
  const TempFolder folder;
  SheetPartList list;
  EXPECT_EQ(SaveGroupPart(folder.path("g").c_str(), list, 180), -2);
  list.parts.emplace_back().patterns.emplace_back();
  EXPECT_EQ(SaveGroupPart(folder.path("g").c_str(), list, 151), -1);
  EXPECT_EQ(SaveGroupPart(folder.path("g").c_str(), list, 152), 0);
}

}  // namespace
