// Flat questions about part and group part files.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>

#include "OldTorvIO.h"
#include "src/part/part_io.h"
#include "tests/support/comma_locale.h"
#include "tests/support/files.h"
#include "tests/support/host.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;

OldTool toolOf(std::int32_t code, float dimension1 = 0, float orientation = 0, const char* path = "") {
  OldTool tool;
  tool.shapeCode = code;
  tool.dimension1 = dimension1;
  tool.orientation = orientation;
  std::strcpy(tool.specialToolPath, path);
  return tool;
}

class PartQueries : public testing::Test {
 protected:
  PartQueries() { part_->patterns.emplace_back(); }
  void addTool(const OldTool& tool) {
    part_->toolStations.stations.emplace_back();
    part_->toolStations.tools.push_back(tool);
  }
  const char* saved(int version = 180) {
    EXPECT_EQ(SavePart(path_.c_str(), *part_, version), 0);
    return path_.c_str();
  }
  std::string tools(std::int32_t size = 4096) {
    std::string text(4096, '#');
    std::uint32_t length = 0;
    EXPECT_EQ(GetOldPartTool(saved(), text.data(), size, &length), 0);
    if (static_cast<std::int64_t>(length) >= size) {
      EXPECT_EQ(text, std::string(4096, '#'));
      return "(" + std::to_string(length) + ")";
    }
    EXPECT_EQ(text[length], '\0');
    EXPECT_EQ(text[length + 1], '#');
    return text.substr(0, length);
  }
  std::string answer(const char* key) {
    char text[512] = "unchanged";
    EXPECT_EQ(GetOldPartInfo_v1(saved(), key, text), 0);
    return text;
  }
  TempFolder folder_;
  std::string path_ = folder_.path("p.part");
  std::unique_ptr<TorvPart> part_ = std::make_unique<TorvPart>();
};

TEST_F(PartQueries, InfoGivesMaterialTypeAndSize) {
  std::strcpy(part_->materialType, "STEEL");
  part_->width = 1.5F;
  part_->height = 2.5F;
  part_->thickness = 0.25F;
  char text[300];
  float w = 0, h = 0, t = 0;
  ASSERT_EQ(GetOldPartInfo(saved(), text, &w, &h, &t), 0);
  EXPECT_STREQ(text, "STEEL");
  EXPECT_EQ(w, 1.5F);
  EXPECT_EQ(h, 2.5F);
  EXPECT_EQ(t, 0.25F);
  std::memset(part_->materialType, 'x', sizeof part_->materialType);
  ASSERT_EQ(GetOldPartInfo(saved(), text, &w, &h, &t), 0);
  EXPECT_EQ(std::string(text), std::string(256, 'x')) << "a text without a NUL is taken up to its width";
}

TEST_F(PartQueries, KeysAreTakenWithoutRegardToCase) {
  std::strcpy(part_->revision, "REV-7");
  std::strcpy(part_->materialType, "BRASS");
  part_->thickness = 0.05F;
  for (const char* key : {"angle", "ANGLE", "Angle"}) EXPECT_EQ(answer(key), "0");
  for (const char* key : {"Revision", "revision"}) EXPECT_EQ(answer(key), "REV-7");
  for (const char* key : {"MatType", "MATTYPE"}) EXPECT_EQ(answer(key), "BRASS");
  for (const char* key : {"Thickness", "tHICKNESS"}) EXPECT_EQ(answer(key), "0.05");
}

TEST_F(PartQueries, UnknownKeysAndNullsGiveOneAndLeaveTheValue) {
  char text[32] = "unchanged";
  for (const char* key : {"Width", "", "angle ", "angl", "Material"})
    EXPECT_EQ(GetOldPartInfo_v1(saved(), key, text), 1);
  EXPECT_EQ(GetOldPartInfo_v1(nullptr, "angle", text), 1);
  EXPECT_EQ(GetOldPartInfo_v1(saved(), nullptr, text), 1);
  EXPECT_EQ(GetOldPartInfo_v1(saved(), "angle", nullptr), 1);
  EXPECT_STREQ(text, "unchanged");
}

TEST(PartQuery, AngleOfAPartWithoutPatternsIsZero) {
  const TempFolder folder;
  char text[32] = "unchanged";
  EXPECT_EQ(GetOldPartInfo_v1(folder.write("5", Bytes().i16(5).zeros(1000)).c_str(), "angle", text), 0);
  EXPECT_STREQ(text, "0");
}

TEST_F(PartQueries, AngleIsThatOfTheFirstPattern) {
  const struct {
    float cosine, sine;
    const char* text;
  } cases[] = {{1, 0, "0"}, {0, 1, "1.5708"}, {-1, 0, "3.14159"},  {0, -1, "-1.5708"},
               {0, 0, "0"}, {1, -0.0F, "-0"}, {1, 1e-6F, "1e-06"}, {std::numeric_limits<float>::quiet_NaN(), 0, "nan"}};
  for (const auto& one : cases) {
    part_->patterns[0].rotationCos = one.cosine;
    part_->patterns[0].rotationSin = one.sine;
    EXPECT_EQ(answer("angle"), one.text);
  }
}

TEST_F(PartQueries, ThicknessIsPrintedShort) {
  const std::pair<float, const char*> cases[] = {{0, "0"},
                                                 {1e10F, "1e+10"},
                                                 {123456.0F, "123456"},
                                                 {1234567.0F, "1.23457e+06"},
                                                 {-0.0001F, "-0.0001"},
                                                 {0.00001F, "1e-05"},
                                                 {0.1F, "0.1"},
                                                 {std::numeric_limits<float>::infinity(), "inf"},
                                                 {-std::numeric_limits<float>::infinity(), "-inf"},
                                                 {std::numeric_limits<float>::quiet_NaN(), "nan"},
                                                 {-std::numeric_limits<float>::quiet_NaN(), "-nan"}};
  for (const auto& [value, text] : cases) {
    part_->thickness = value;
    EXPECT_EQ(answer("Thickness"), text);
  }
}

TEST_F(PartQueries, ToolStringHasAnItemForEachToolButCodeZero) {
  EXPECT_EQ(tools(), "");
  addTool(toolOf(1, 0.5F));
  EXPECT_EQ(tools(), "1  0.500  0.000  0.000  0.000,");
  addTool(toolOf(0, 9));
  addTool(toolOf(108, 0, 1.25F, "C:\\KESTRADA\\SPECTOOL\\Corner.A.spt"));
  EXPECT_EQ(tools(), "1  0.500  0.000  0.000  0.000,108 Corner.A  1.250,");
}

TEST_F(PartQueries, NumbersOfTheToolStringArePaddedToSix) {
  const std::pair<float, const char*> cases[] = {
      {-0.5F, "-0.500"},
      {123.4567F, "123.457"},
      {0.0005F, " 0.001"},
      {0.00049F, " 0.000"},
      {-12345.0F, "-12345.000"},
      {2.5F, " 2.500"},
      {std::numeric_limits<float>::infinity(), "   inf"},
      {std::numeric_limits<float>::quiet_NaN(), "   nan"},
      {std::numeric_limits<float>::max(), "340282346638528859811704183484516925440.000"}};
  for (const auto& [value, text] : cases) {
    part_->toolStations = ToolStationList();
    addTool(toolOf(-3, value));
    EXPECT_EQ(tools(), std::string("-3 ") + text + "  0.000  0.000  0.000,");
  }
}

TEST_F(PartQueries, BaseNamesDropDriveFolderAndExtension) {
  const std::pair<const char*, const char*> cases[] = {{"", ""},
                                                       {"a", "a"},
                                                       {"a.spt", "a"},
                                                       {"C:a.spt", "a"},
                                                       {"C:\\x\\a.spt", "a"},
                                                       {"/x/y.z/a", "a"},
                                                       {"x\\y/a.b.c", "a.b"},
                                                       {"x/", ""},
                                                       {".spt", ""},
                                                       {"1:a", "1:a"},
                                                       {"x.y\\a", "a"}};
  for (const auto& [path, base] : cases) {
    part_->toolStations = ToolStationList();
    addTool(toolOf(108, 0, 0, path));
    EXPECT_EQ(tools(), std::string("108 ") + base + "  0.000,");
  }
}

TEST_F(PartQueries, TextAsLongAsTheSizeIsNotCopiedButItsLengthIsGiven) {
  addTool(toolOf(1, 0.5F));
  const std::int32_t length = 30;
  EXPECT_EQ(tools(length), "(30)");
  EXPECT_EQ(tools(0), "(30)");
  EXPECT_EQ(tools(-5), "(30)");
  EXPECT_EQ(tools(length + 1), "1  0.500  0.000  0.000  0.000,");
}

TEST_F(PartQueries, SpecialToolsAreAppendedEachBetweenCommas) {
  char text[2048] = "";
  EXPECT_EQ(GetOldSptFromPart(saved(), text), 0);
  EXPECT_STREQ(text, "");
  addTool(toolOf(108, 0, 0, "A"));
  addTool(toolOf(1));
  addTool(toolOf(108, 0, 0, "B"));
  EXPECT_EQ(GetOldSptFromPart(saved(), text), 0);
  EXPECT_STREQ(text, ",A,,B,");
  EXPECT_EQ(GetOldSptFromPart(saved(), text), 0);
  EXPECT_STREQ(text, ",A,,B,,A,,B,") << "the buffer is not cleared";
}

TEST_F(PartQueries, FailedLoadsGiveTheirStatusAndLeaveTheOutputs) {
  const std::string missing = folder_.path("none"), refused = folder_.write("r", Bytes().i16(53)),
                    cut = folder_.write("c", TempFolder::read(saved()).cut(50)),
                    oldest = folder_.write("o", Bytes().i16(3).zeros(500));
  const std::pair<const char*, std::int64_t> cases[] = {
      {missing.c_str(), -2}, {refused.c_str(), -1}, {cut.c_str(), 1}, {oldest.c_str(), 1}};
  char text[64] = "unchanged";
  float w = -1, h = -1, t = -1;
  std::uint32_t length = 99;
  for (const auto& [path, status] : cases) {
    EXPECT_EQ(GetOldPartInfo(path, text, &w, &h, &t), status);
    EXPECT_EQ(GetOldPartInfo_v1(path, "angle", text), status);
    EXPECT_EQ(GetOldPartTool(path, text, 64, &length), status);
    EXPECT_EQ(GetOldSptFromPart(path, text), status);
  }
  EXPECT_EQ(GetOldPartInfo(nullptr, text, &w, &h, &t), -2);
  EXPECT_EQ(GetOldPartTool(nullptr, text, 64, &length), -2);
  EXPECT_EQ(GetOldSptFromPart(nullptr, text), -2);
  EXPECT_EQ(GetOldSptFromGroupPart(nullptr, text, 64, &length), -2);
  EXPECT_STREQ(text, "unchanged");
  EXPECT_EQ(w, -1.0F);
  EXPECT_EQ(h, -1.0F);
  EXPECT_EQ(t, -1.0F);
  EXPECT_EQ(length, 99U);
}

TEST_F(PartQueries, SpecialToolsOfAGroupAreClosedByACommaEachAndDoublesStay) {
  SheetPartList list;
  for (const char* path : {"A", "B", "A"}) {
    TorvPart& part = list.parts.emplace_back();
    part.patterns.emplace_back();
    part.toolStations.stations.resize(2);
    part.toolStations.tools = {toolOf(108, 0, 0, path), toolOf(1)};
  }
  ASSERT_EQ(SaveGroupPart(path_.c_str(), list, 180), 0);
  char text[64] = "unchanged";
  std::uint32_t length = 0;
  EXPECT_EQ(GetOldSptFromGroupPart(path_.c_str(), text, 6, &length), 0);
  EXPECT_EQ(length, 6U);
  EXPECT_STREQ(text, "unchanged");
  EXPECT_EQ(GetOldSptFromGroupPart(path_.c_str(), text, 7, &length), 0);
  EXPECT_STREQ(text, "A,B,A,");
}

TEST_F(PartQueries, FaultInTheMiddleOfAGroupGivesOneWithoutText) {
  SheetPartList list;
  list.parts.resize(2);
  for (TorvPart& part : list.parts) part.patterns.emplace_back();
  ASSERT_EQ(SaveGroupPart(path_.c_str(), list, 180), 0);
  const Bytes whole = TempFolder::read(path_);
  char text[64] = "unchanged";
  std::uint32_t length = 99;
  EXPECT_EQ(GetOldSptFromGroupPart(folder_.write("c", whole.cut(whole.size() - 5)).c_str(), text, 64, &length), 1);
  EXPECT_EQ(GetOldSptFromGroupPart(folder_.write("v", Bytes().i16(151)).c_str(), text, 64, &length), 1);
  EXPECT_STREQ(text, "unchanged");
  EXPECT_EQ(length, 99U);
}

TEST_F(PartQueries, HostsCommaLocaleChangesNoNumber) {
  addTool(toolOf(1, 0.5F));
  part_->thickness = 0.25F;
  const CommaLocale comma;
  if (!comma.isSet()) GTEST_SKIP() << "neither a locale with a decimal comma nor its sources are installed";
  EXPECT_EQ(tools(), "1  0.500  0.000  0.000  0.000,");
  EXPECT_EQ(answer("Thickness"), "0.25");
}

}  // namespace
