// The part builder, looked at through the files that it saves.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <numbers>

#include "OldTorvIO.h"
#include "src/builder/angle.h"
#include "tests/support/files.h"
#include "tests/support/part_files.h"

namespace {

using namespace testing_support;

const std::uint32_t kValues[9] = {11, 12, 13, 14, 15, 16, 17, 18, 19};

void init() { InitTorvPart(1, 2, 3, 4, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr); }
std::int32_t addPlain(std::uint8_t type = 3) {
  return AddPatternToTorvPart(1, 2, type, 5, kValues, 0, 0, 0, 0, 0, 0, nullptr, 0, 0, 0, 0);
}
std::int32_t addNamed(const char* name, float stationValue = 0) {
  return AddPatternToTorvPart(1, 2, 3, 5, kValues, 0, stationValue, 0, 0, 0, 0, name, 0, 0, 0, 0);
}

class PartBuilder : public testing::Test {
 protected:
  void SetUp() override { init(); }
  // The builder's content, as a file of version 180 keeps it.
  std::unique_ptr<TorvPart> content() {
    auto part = std::make_unique<TorvPart>();
    const std::string path = folder_.path("builder.part");
    EXPECT_EQ(SaveTorvPart(path.c_str(), 180), 0);
    EXPECT_EQ(LoadOldPart(path.c_str(), part.get()), 0);
    return part;
  }
  TempFolder folder_;
};

TEST_F(PartBuilder, NullTextsLeaveTheDefaultsAndTheNumbersAreSet) {
  InitTorvPart(1.5F, 2.5F, 0.25F, -1, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
  addPlain();
  const auto part = content();
  EXPECT_EQ(part->width, 1.5F);
  EXPECT_EQ(part->height, 2.5F);
  EXPECT_EQ(part->thickness, 0.25F);
  EXPECT_EQ(part->partKind, -1) << "widened with its sign";
  EXPECT_STREQ(part->assemblyName, "NEW ASSEMBLY");
  EXPECT_STREQ(part->materialName, "NEW MATERIAL");
  EXPECT_STREQ(part->productName, "NEW PRODUCT");
  EXPECT_STREQ(part->customText1, "");
  EXPECT_STREQ(part->customText3, "");
}

TEST_F(PartBuilder, TextsGoToTheirFieldsUpToTheirWidth) {
  const std::string twenty(20, 'a'), long255(255, 'c');
  InitTorvPart(1, 2, 3, 4, long255.c_str(), twenty.c_str(), "STEEL", long255.c_str(), "two", "");
  addPlain();
  const auto part = content();
  EXPECT_EQ(std::string(part->assemblyName), twenty);
  EXPECT_STREQ(part->materialName, "STEEL");
  EXPECT_EQ(std::string(part->customText1), long255);
  EXPECT_STREQ(part->customText2, "two");
}

TEST_F(PartBuilder, TextThatDoesNotFitEndsTheProcess) {
  const std::string twentyOne(21, 'a'), long256(256, 'c');
  const char* const small = twentyOne.c_str();
  const char* const large = long256.c_str();
  EXPECT_DEATH(InitTorvPart(1, 2, 3, 4, large, nullptr, nullptr, nullptr, nullptr, nullptr), "");
  EXPECT_DEATH(InitTorvPart(1, 2, 3, 4, nullptr, small, nullptr, nullptr, nullptr, nullptr), "");
  EXPECT_DEATH(InitTorvPart(1, 2, 3, 4, nullptr, nullptr, small, nullptr, nullptr, nullptr), "");
  EXPECT_DEATH(InitTorvPart(1, 2, 3, 4, nullptr, nullptr, nullptr, large, nullptr, nullptr), "");
  EXPECT_DEATH(InitTorvPart(1, 2, 3, 4, nullptr, nullptr, nullptr, nullptr, large, nullptr), "");
  EXPECT_DEATH(InitTorvPart(1, 2, 3, 4, nullptr, nullptr, nullptr, nullptr, nullptr, large), "");
}

TEST_F(PartBuilder, SavePathOf260CharactersEndsTheProcess) {
  addPlain();
  const std::string tooLong = folder_.path() + "/" + std::string(260 - folder_.path().size() - 1, 'p');
  ASSERT_EQ(tooLong.size(), 260U);
  EXPECT_DEATH(SaveTorvPart(tooLong.c_str(), 180), "");
  const std::string fits = tooLong.substr(0, 259);
  EXPECT_EQ(SaveTorvPart(fits.c_str(), 180), 0);
}

TEST_F(PartBuilder, InitForgetsEverythingAddedBefore) {
  addPlain();
  addPlain();
  init();
  EXPECT_EQ(addPlain(), 1);
  EXPECT_EQ(content()->patterns[0].items.size(), 1U);
}

TEST_F(PartBuilder, TwoSavesWithACallBetweenThemGiveTwoFilesTheSecondWithOneMoreShape) {
  addPlain();
  EXPECT_EQ(content()->shapes.shapes.size(), 1U);
  EXPECT_EQ(addPlain(), 2);
  EXPECT_EQ(content()->shapes.shapes.size(), 2U);
}

TEST_F(PartBuilder, RefusedVersionGivesMinusOneAnEmptyFileAndAUsableBuilder) {
  addPlain();
  const std::string path = folder_.write("old", Bytes().zeros(10));
  for (const int word : {63, 0, 4, 6, 51, 53, 181, 500, -1, 32767}) {
    const auto version = static_cast<std::int16_t>(word);
    EXPECT_EQ(SaveTorvPart(path.c_str(), version), -1) << version;
    EXPECT_EQ(TempFolder::read(path).size(), 0U);
  }
  EXPECT_EQ(content()->shapes.shapes.size(), 1U);
}

TEST_F(PartBuilder, BuilderWithoutAShapeCannotBeSaved) {
  EXPECT_EQ(SaveTorvPart(folder_.path("x").c_str(), 180), -2);
  EXPECT_EQ(SaveTorvPart(nullptr, 180), -2);
}

TEST_F(PartBuilder, FilesThatCannotBeOpenedOrWrittenGiveMinusTwo) {
  addPlain();
  EXPECT_EQ(SaveTorvPart(folder_.path("no/such/folder").c_str(), 180), -2);
  EXPECT_EQ(SaveTorvPart(folder_.path().c_str(), 180), -2);
  EXPECT_EQ(SaveTorvPart("", 180), -2);
  if (std::filesystem::exists("/dev/full")) {
    EXPECT_EQ(SaveTorvPart("/dev/full", 180), -2);
  }
}

TEST_F(PartBuilder, OldestVersionsTakeTheMainLayoutWhichTheirLoadMisreads) {
  addPlain();
  for (const int word : {2, 3, 5}) {
    const auto version = static_cast<std::int16_t>(word);
    const std::string path = folder_.path("old");
    EXPECT_EQ(SaveTorvPart(path.c_str(), version), 0);
    const Bytes file = TempFolder::read(path);
    EXPECT_EQ(file.cut(10), Bytes().i16(version).f32(1).f32(2));
    const auto part = std::make_unique<TorvPart>();
    EXPECT_EQ(LoadOldPart(path.c_str(), part.get()), word == 5 ? 0 : 1);
    EXPECT_EQ(part->version, version);
    EXPECT_EQ(part->shapes.shapes.size(), 0U);
  }
}

// ---- adding a pattern ----------------------------------------------------------------------------

TEST_F(PartBuilder, PlainShapeOnAnEmptyBuilderMakesTheFirstPatternAndNoStation) {
  EXPECT_EQ(addPlain(), 1);
  const auto part = content();
  EXPECT_TRUE(part->toolStations.stations.empty());
  ASSERT_EQ(part->patterns.size(), 1U);
  ASSERT_EQ(part->patterns[0].items.size(), 1U);
  EXPECT_EQ(part->patterns[0].items[0].toolNumber, 0);
}

TEST_F(PartBuilder, ArgumentsGoToTheFieldsOfShapeAndItem) {
  EXPECT_EQ(
      AddPatternToTorvPart(1.5F, 2.5F, 200, 0xF0F0F0F0U, kValues, 7, 8.5F, 1, 2, 3, 4, nullptr, -5, 6, 9.5F, 10.5F), 1);
  const auto part = content();
  const Shape& s = part->shapes.shapes[0];
  EXPECT_EQ(s.x, 1.5F);
  EXPECT_EQ(s.y, 2.5F);
  EXPECT_EQ(s.type, static_cast<std::int8_t>(200));
  EXPECT_EQ(s.flags, 0xF0F0F0F0U);
  for (std::size_t i = 0; i < 9; ++i) EXPECT_EQ(std::bit_cast<std::uint32_t>(s.values[i]), kValues[i]);
  EXPECT_EQ(s.linkIndex, -1);
  EXPECT_EQ(s.valueCount, 9);
  EXPECT_EQ(s.extraCount, 2);
  const PatternItem& i = part->patterns[0].items[0];
  const auto bits = [](float f) { return std::bit_cast<std::uint32_t>(f); };
  EXPECT_EQ(i.itemWord1, 7U);
  EXPECT_EQ(i.itemWord2, bits(8.5F));
  EXPECT_EQ(i.itemPair1[0], bits(1));
  EXPECT_EQ(i.itemPair1[1], bits(2));
  EXPECT_EQ(i.itemPair2[0], bits(3));
  EXPECT_EQ(i.itemPair2[1], bits(4));
  EXPECT_EQ(i.itemShort1, static_cast<std::uint32_t>(-5)) << "widened with its sign";
  EXPECT_EQ(i.itemShort2, 6U);
  EXPECT_EQ(i.itemWord3, bits(9.5F));
  EXPECT_EQ(i.itemWord4, bits(10.5F));
  EXPECT_EQ(i.lateWord, 0U);
}

class NamedTools : public PartBuilder {
 protected:
  void SetUp() override {
    PartBuilder::SetUp();
    tools_.write("PUNCH1.SPT", specialToolFile(162, {3}, 0, 0, 3));
    tools_.write("flat.spt", specialToolFile(60, {3}, 0, 0, 0));
    tools_.write("broken.spt", specialToolFile(162, {3}).cut(100));
    tools_.write("refused.spt", Bytes().i16(53));
    tools_.write("bare", specialToolFile(162, {3}));
    tools_.write("abc.spt.bak", specialToolFile(162, {3}));
    std::filesystem::create_directory(tools_.path("folder.spt"));
    std::filesystem::create_directory(tools_.path("sub"));
    tools_.write("sub/deep.spt", specialToolFile(162, {3}));
  }
  TempFolder tools_;
  WinIni ini_{WinIni::folderSetting(tools_.path())};  // without a final separator
};

TEST_F(NamedTools, FileIsFoundWhateverTheCaseAndGivesAStationAndATool) {
  EXPECT_EQ(addNamed("punch1", 0.75F), 1);
  const auto part = content();
  ASSERT_EQ(part->toolStations.stations.size(), 1U);
  const ToolStation& s = part->toolStations.stations[0];
  EXPECT_EQ(part->patterns[0].items[0].toolNumber, 1);
  EXPECT_EQ(s.stationNumber, 1);
  EXPECT_EQ(s.orientation, 0.5F);
  EXPECT_EQ(s.stationType, 0);
  EXPECT_EQ(s.valueCount, 3);
  for (int i = 0; i < 6; ++i) EXPECT_EQ(s.values[i], 20.0F + static_cast<float>(i));
  EXPECT_EQ(s.stationValue, 0.75F);
  EXPECT_EQ(s.toolCount, 0);
  EXPECT_EQ(s.realB, -1.0F);
  const OldTool& t = part->toolStations.tools[0];
  EXPECT_EQ(t.shapeCode, 108);
  EXPECT_EQ(t.dimension1, 11.0F);
  EXPECT_STREQ(t.specialToolPath, "") << "the file does not store it";
  EXPECT_EQ(part->shapes.shapes.size(), 1U) << "the tool's outline does not enter the part";
}

TEST_F(NamedTools, ToolWithoutFirstValuesGivesAStationOfType2) {
  EXPECT_EQ(addNamed("FLAT"), 1);
  const auto part = content();
  EXPECT_EQ(part->toolStations.stations[0].stationType, 2);
  EXPECT_EQ(part->toolStations.stations[0].valueCount, 0);
}

TEST_F(NamedTools, SameNameTwiceGivesTwoStations) {
  EXPECT_EQ(addNamed("punch1"), 1);
  EXPECT_EQ(addNamed("punch1"), 2);
  const auto part = content();
  ASSERT_EQ(part->toolStations.stations.size(), 2U);
  EXPECT_EQ(part->toolStations.stations[1].stationNumber, 2);
  EXPECT_EQ(part->patterns[0].items[1].toolNumber, 2);
  EXPECT_EQ(part->toolStations.tools[0].dimension1, part->toolStations.tools[1].dimension1);
}

TEST_F(NamedTools, EmptyNameTakesTheFirstStationWithoutASearch) {
  EXPECT_EQ(addNamed(""), -1) << "no station yet, and no file of that name";
  EXPECT_EQ(addNamed("punch1"), 1);
  EXPECT_EQ(addNamed("flat"), 2);
  EXPECT_EQ(addNamed(""), 3);
  const auto part = content();
  EXPECT_EQ(part->toolStations.stations.size(), 2U);
  EXPECT_EQ(part->patterns[0].items[2].toolNumber, 1);
}

TEST_F(NamedTools, OnlyFilesOfTheFolderThatBearTheNameAreFound) {
  for (const char* name : {"folder", "abc", "abc.spt", "deep", "sub", "punch", "punch1.spt", "..", "none", "broken",
                           "refused", "bare", "abc.spt.bak"})
    EXPECT_EQ(addNamed(name), -1) << name;
  EXPECT_EQ(addNamed("punch1"), 1);
}

TEST_F(NamedTools, FailedCallAddsNothing) {
  EXPECT_EQ(addPlain(), 1);
  for (const char* name : {"none", "broken", "refused"}) {
    EXPECT_EQ(addNamed(name), -1);
    EXPECT_EQ(AddGroupPatIntoTorvPart(0, 0, 0, name), -1);
  }
  EXPECT_EQ(addPlain(), 2);
  EXPECT_TRUE(content()->toolStations.stations.empty());
}

TEST_F(NamedTools, MissingOrEmptyFolderGivesMinusOne) {
  const TempFolder empty;
  for (const std::string& folder : {empty.path(), empty.path("none")}) {
    const WinIni ini(WinIni::folderSetting(folder));
    EXPECT_EQ(addNamed("punch1"), -1);
  }
}

TEST_F(NamedTools, FoundPathAbove255CharactersEndsTheProcess) {
  std::string folder = tools_.path();
  while (folder.size() < 200) {
    folder += "/abcdefghij";
    std::filesystem::create_directory(folder);
  }
  const std::string fits(255 - folder.size() - 1 - 4, 'n');
  const auto copy = [&](const std::string& name) {
    std::filesystem::copy_file(tools_.path("flat.spt"), folder + "/" + name + ".spt");
  };
  copy(fits);
  copy(fits + "n");
  const WinIni ini(WinIni::folderSetting(folder));
  EXPECT_EQ(addNamed(fits.c_str()), 1);
  EXPECT_DEATH(addNamed((fits + "n").c_str()), "");
}

// ---- groups --------------------------------------------------------------------------------------

class Groups : public PartBuilder {
 protected:
  void SetUp() override {
    PartBuilder::SetUp();
    tools_.write("five.spt", specialToolFile(162, {1, 2, 7, 3, 4}));
    tools_.write("half.spt", specialToolFile(162, {1}, 1.0F));
    tools_.write("quarter.spt", specialToolFile(162, {1}, 2.0F));
    tools_.write("both.spt", specialToolFile(162, {1}, 2.0F, 1));
    tools_.write("heads.spt", specialToolFile(162, {7, 7}));
  }
  float angleOf(const char* tool, float angle) {
    init();
    EXPECT_GT(AddGroupPatIntoTorvPart(0, 0, angle, tool), 0);
    return content()->shapes.shapes[0].values[2];
  }
  TempFolder tools_;
  WinIni ini_{WinIni::folderSetting(tools_.path() + "/")};
};

TEST_F(Groups, HeadCountsTheMembersAndSkipsHeadsOfTheTool) {
  EXPECT_EQ(AddGroupPatIntoTorvPart(1.5F, 2.5F, 100.0F, "five"), 5);
  const auto part = content();
  const auto& shapes = part->shapes.shapes;
  ASSERT_EQ(shapes.size(), 5U);
  EXPECT_EQ(shapes[0].type, 7);
  EXPECT_EQ(shapes[0].flags & 128U, 0U);
  EXPECT_EQ(shapes[0].x, 1.5F);
  EXPECT_EQ(shapes[0].y, 2.5F);
  EXPECT_EQ(shapes[0].values[0], 2.0F);
  EXPECT_EQ(shapes[0].values[1], 4.0F);
  EXPECT_EQ(shapes[0].values[2], 100.0F) << "a tool without symmetry keeps the angle";
  EXPECT_EQ(shapes[0].textFlag, 2);
  EXPECT_EQ(std::string(shapes[0].text), tools_.path() + "/five.spt");
  const int types[] = {1, 2, 3, 4};
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(shapes[i + 1].type, types[i]);
    EXPECT_EQ(shapes[i + 1].flags, 128U) << "the stored flags never reach the part";
    EXPECT_NE(shapes[i + 1].x, 0.0F) << "a member is not moved";
  }
  ASSERT_EQ(part->patterns[0].items.size(), 5U);
  for (const PatternItem& item : part->patterns[0].items) EXPECT_EQ(item.toolNumber, 0);
  EXPECT_TRUE(part->toolStations.stations.empty());
}

TEST_F(Groups, SecondGroupCountsItsPositionsFromTheWholePart) {
  addPlain();
  EXPECT_EQ(AddGroupPatIntoTorvPart(0, 0, 0, "half"), 3);
  EXPECT_EQ(AddGroupPatIntoTorvPart(0, 0, 0, "heads"), 4);
  const auto part = content();
  EXPECT_EQ(part->shapes.shapes[1].values[0], 3.0F);
  EXPECT_EQ(part->shapes.shapes[1].textFlag, 3);
  EXPECT_EQ(part->shapes.shapes[3].values[0], 5.0F);
  EXPECT_EQ(part->shapes.shapes[3].values[1], 0.0F);
}

TEST_F(Groups, AngleIsReducedByTheToolsSymmetry) {
  const double pi = 3.141592653589793;
  EXPECT_EQ(angleOf("half", 4.0F), static_cast<float>(4.0 - pi));
  EXPECT_EQ(angleOf("half", -1.0F), static_cast<float>(-1.0 + pi));
  EXPECT_EQ(angleOf("half", 3.0F), 3.0F);
  EXPECT_EQ(angleOf("quarter", 2.0F), static_cast<float>(2.0 - pi / 2));
  EXPECT_EQ(angleOf("both", 3.0F), 3.0F) << "both symmetries count as the half turn";
  EXPECT_EQ(angleOf("five", 100.0F), 100.0F);
  EXPECT_EQ(angleOf("five", -100.0F), -100.0F);
}

TEST(ReducedAngle, EveryStepIsTakenInDoubleAndRoundedToSingle) {
  for (const std::uint32_t flags : {1U, 2U, 3U}) {
    const double step = (flags & 1U) != 0 ? 3.141592653589793 : 1.5707963267948966;
    for (float start = -400.0F; start < 400.0F; start += 0.37F) {
      float told = start;
      while (static_cast<double>(told) < 0) told = static_cast<float>(static_cast<double>(told) + step);
      while (static_cast<double>(told) > step) told = static_cast<float>(static_cast<double>(told) - step);
      const float got = reducedAngle(start, flags);
      if (told >= 0.0F) {
        EXPECT_EQ(got, told) << start;
      }
      EXPECT_GE(got, 0.0F);
      EXPECT_LE(static_cast<double>(got), step);
    }
  }
}

TEST(ReducedAngle, EndsOfTheRangeBelongToIt) {
  EXPECT_EQ(reducedAngle(0.0F, 1), 0.0F);
  EXPECT_TRUE(std::signbit(reducedAngle(-0.0F, 1)));
  const float below = std::nextafter(static_cast<float>(std::numbers::pi), 0.0F);
  EXPECT_EQ(reducedAngle(below, 1), below);
  // The single nearest to half a turn lies above it.
  EXPECT_LT(reducedAngle(static_cast<float>(std::numbers::pi), 1), 0.001F);
}

TEST(ReducedAngle, AngleThatAStepNoLongerChangesOrThatIsNoNumberStays) {
  const float infinity = std::numeric_limits<float>::infinity();
  for (const float angle : {1e10F, -1e10F, 3e38F, infinity, -infinity})
    for (const std::uint32_t flags : {1U, 2U}) EXPECT_EQ(reducedAngle(angle, flags), angle);
  EXPECT_TRUE(std::isnan(reducedAngle(std::numeric_limits<float>::quiet_NaN(), 1)));
}

TEST_F(Groups, NullNameAndMissingFilesGiveMinusOne) {
  EXPECT_EQ(AddGroupPatIntoTorvPart(0, 0, 0, nullptr), -1);
  EXPECT_EQ(AddGroupPatIntoTorvPart(0, 0, 0, "none"), -1);
  if (kNamesDifferByCase) {
    EXPECT_EQ(AddGroupPatIntoTorvPart(0, 0, 0, "FIVE"), -1) << "the exact spelling is handed to the file system";
  }
  EXPECT_EQ(addPlain(), 1);
}

TEST_F(Groups, FolderAndNameAreGluedTogetherWithoutASeparator) {
  tools_.write("TOOLSA.spt", specialToolFile(162, {1}));
  const WinIni ini(WinIni::folderSetting(tools_.path() + "/TOOLS"));
  EXPECT_EQ(AddGroupPatIntoTorvPart(0, 0, 0, "five"), -1);
  EXPECT_EQ(AddGroupPatIntoTorvPart(0, 0, 0, "A"), 2);
}

TEST_F(Groups, BackslashSeparatesAndIsKeptInTheText) {
  const WinIni ini(WinIni::folderSetting(tools_.path() + "\\"));
  EXPECT_EQ(AddGroupPatIntoTorvPart(0, 0, 0, "five"), 5);
  EXPECT_EQ(std::string(content()->shapes.shapes[0].text), tools_.path() + "\\five.spt");
}

TEST_F(Groups, PathsTooLongEndTheProcess) {
  std::string folder = tools_.path();
  while (folder.size() < 200) {
    folder += "/abcdefghij";
    std::filesystem::create_directory(folder);
  }
  const std::string name255(255 - folder.size() - 1 - 4, 'n');
  for (const std::string& name : {name255, name255 + "n"})
    std::filesystem::copy_file(tools_.path("five.spt"), folder + "/" + name + ".spt");
  const WinIni ini(WinIni::folderSetting(folder + "/"));
  EXPECT_EQ(AddGroupPatIntoTorvPart(0, 0, 0, name255.c_str()), 5);
  EXPECT_DEATH(AddGroupPatIntoTorvPart(0, 0, 0, (name255 + "n").c_str()), "");
  EXPECT_EQ(AddGroupPatIntoTorvPart(0, 0, 0, (name255 + "xxxx").c_str()), -1) << "259 characters, no such file";
  EXPECT_DEATH(AddGroupPatIntoTorvPart(0, 0, 0, (name255 + "xxxxx").c_str()), "");
}

// ---- members -------------------------------------------------------------------------------------

TEST_F(Groups, MemberIsAppendedAndCountedByItsHead) {
  EXPECT_EQ(AddGroupPatIntoTorvPart(0, 0, 0, "half"), 2);
  EXPECT_EQ(AddPatIntoGroupPat(1, 1.5F, 2.5F, 250, ~std::uint64_t{0}, kValues), 3);
  const auto part = content();
  EXPECT_EQ(part->shapes.shapes[0].values[1], 2.0F);
  const Shape& member = part->shapes.shapes[2];
  EXPECT_EQ(member.type, static_cast<std::int8_t>(250));
  EXPECT_EQ(member.flags, 128U);
  EXPECT_EQ(member.x, 1.5F);
  EXPECT_EQ(member.y, 2.5F);
  for (std::size_t i = 0; i < 9; ++i) EXPECT_EQ(std::bit_cast<std::uint32_t>(member.values[i]), kValues[i]);
  EXPECT_EQ(member.linkIndex, -1);
  EXPECT_EQ(part->patterns[0].items.size(), 3U);
}

TEST_F(PartBuilder, GroupIndexBelowOneAddsNothing) {
  EXPECT_EQ(AddPatIntoGroupPat(0, 1, 2, 3, 0, kValues), 0);
  EXPECT_EQ(AddPatIntoGroupPat(-7, 1, 2, 3, 0, kValues), 0);
  EXPECT_EQ(addPlain(), 1);
}

TEST_F(PartBuilder, MemberAtTheIndexOfItselfIsItsOwnHead) {
  const std::uint32_t values[9] = {0, std::bit_cast<std::uint32_t>(5.0F)};
  EXPECT_EQ(AddPatIntoGroupPat(1, 0, 0, 3, 0, values), 1);
  EXPECT_EQ(content()->shapes.shapes[0].values[1], 6.0F);
}

TEST_F(PartBuilder, GroupIndexPastTheNewMemberEndsTheProcess) {
  addPlain();
  EXPECT_DEATH(AddPatIntoGroupPat(3, 0, 0, 3, 0, kValues), "");
  EXPECT_EQ(AddPatIntoGroupPat(2, 0, 0, 3, 0, kValues), 2);
}

TEST_F(PartBuilder, CountOfMembersIsCutTo16Bits) {
  std::uint16_t last = 0;
  for (int i = 0; i < 65537; ++i) last = AddPatIntoGroupPat(1, 0, 0, 3, 0, kValues);
  EXPECT_EQ(last, 1);
  init();
}

}  // namespace
