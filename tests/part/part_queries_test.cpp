// What the queries of part files and group part files return, over files put together field by field.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "OldTorvIO.h"
#include "tests/support/bytes.h"
#include "tests/support/comma_locale.h"
#include "tests/support/files.h"
#include "tests/support/stored_forms.h"

namespace {

using namespace testing_support;

// ---- files ---------------------------------------------------------------------------------------

OldTool tool(std::int32_t code, float dimension1, float dimension2, float dimension3, float orientation) {
  OldTool t;
  t.shapeCode = code;
  t.dimension1 = dimension1;
  t.dimension2 = dimension2;
  t.dimension3 = dimension3;
  t.orientation = orientation;
  return t;
}
// The path may fill its field.
OldTool special(const std::string& path, float orientation = 0) {
  OldTool t = tool(108, 0, 0, 0, orientation);
  path.copy(t.specialToolPath, sizeof t.specialToolPath);
  return t;
}

TorvPart partWith(const std::vector<OldTool>& tools = {}) {
  TorvPart part;
  part.width = 40;
  part.height = 25;
  part.thickness = 0.125F;
  std::strcpy(part.materialType, "steel");
  std::strcpy(part.revision, "rev B");
  part.patterns.resize(1);
  part.toolStations.stations.resize(tools.size());
  part.toolStations.tools = tools;
  return part;
}

Bytes partFile(int version, const std::vector<OldTool>& tools = {}) { return heldPartFile(version, partWith(tools)); }
// One part for each list of tools.
Bytes groupFile(int version, std::int32_t extra, std::int32_t nameSize,
                const std::vector<std::vector<OldTool>>& toolsOfParts) {
  std::vector<Bytes> bodies;
  for (const auto& tools : toolsOfParts) bodies.push_back(heldPartBody(version, partWith(tools)));
  return storedGroupFile(version, extra, nameSize, bodies);
}

// Calls check(n) with the file shortened to n bytes, from the longest cut down; `wanted` picks the cuts.
template <class Wanted, class Check>
void atEachCut(const std::string& path, std::size_t whole, Wanted wanted, Check check) {
  for (std::size_t n = whole; n-- > 0;) {
    if (!wanted(n)) continue;
    SCOPED_TRACE(testing::Message() << n << " of " << whole << " bytes");
    std::filesystem::resize_file(path, n);
    check(n);
    if (testing::Test::HasFailure()) return;
  }
}

struct Room {
  char text[4096];
  Room() { std::memset(text, '#', sizeof text); }
  bool untouched() const { return std::string(text, sizeof text).find_first_not_of('#') == std::string::npos; }
  // The text up to its NUL; nothing after the NUL may have changed.
  std::string taken() const {
    const std::string all(text, sizeof text);
    const std::size_t end = all.find('\0');
    if (end == std::string::npos) return "no NUL";
    EXPECT_EQ(all.find_first_not_of('#', end + 1), std::string::npos) << "bytes after the NUL changed";
    return all.substr(0, end);
  }
};

std::string answer(const std::string& path, const char* key) {
  Room room;
  EXPECT_EQ(GetOldPartInfo_v1(path.c_str(), key, room.text), 0) << key;
  return room.taken();
}
using SizedQuery = decltype(&GetOldPartTool);
std::string sized(SizedQuery query, const std::string& path) {
  Room room;
  std::uint32_t length = 0;
  EXPECT_EQ(query(path.c_str(), room.text, sizeof room.text, &length), 0);
  const std::string text = room.taken();
  EXPECT_EQ(length, text.size());
  return text;
}
std::string toolString(const std::string& path) { return sized(GetOldPartTool, path); }
std::string groupString(const std::string& path) { return sized(GetOldSptFromGroupPart, path); }
std::string sptString(const std::string& path, const std::string& before = "") {
  Room room;
  std::memcpy(room.text, before.c_str(), before.size() + 1);
  EXPECT_EQ(GetOldSptFromPart(path.c_str(), room.text), 0);
  return room.taken();
}

void expectSizedRefused(SizedQuery query, const char* path, std::int64_t status) {
  Room room;
  std::uint32_t length = 77;
  EXPECT_EQ(query(path, room.text, sizeof room.text, &length), status);
  EXPECT_TRUE(length == 77 && room.untouched());
}
void expectGroupRefused(const char* path, std::int64_t status) {
  expectSizedRefused(GetOldSptFromGroupPart, path, status);
}
// Every part query returns the status and keeps its outputs.
void expectRefused(const char* path, std::int64_t status) {
  Room room;
  float w = -1, h = -2, t = -3;
  EXPECT_EQ(GetOldPartInfo(path, room.text, &w, &h, &t), status);
  EXPECT_TRUE(w == -1 && h == -2 && t == -3);
  for (const char* key : {"angle", "Revision", "MatType", "Thickness"})
    EXPECT_EQ(GetOldPartInfo_v1(path, key, room.text), path == nullptr ? 1 : status) << key;
  EXPECT_TRUE(room.untouched());
  expectSizedRefused(GetOldPartTool, path, status);
  std::strcpy(room.text, "seed");
  EXPECT_EQ(GetOldSptFromPart(path, room.text), status);
  EXPECT_EQ(room.taken(), "seed");
}

// ---- queries of part files -----------------------------------------------------------------------

TEST(PartQueries, EveryVersionSupportsEveryQuery) {
  const TempFolder folder;
  TorvPart part = partWith({tool(1, 0.5F, 0, 0, 0), special("C:\\S\\star.one.spt", 90), tool(0, 1, 2, 3, 4),
                            tool(107, 1.25F, -2, 12345, -45), special("/s/moon.SPT", 0.0625F), tool(-3, 1, 1, 1, 1)});
  part.patterns[0].rotationCos = 0;
  part.patterns[0].rotationSin = 1;
  for (const int v : partVersions()) {
    SCOPED_TRACE(v);
    const std::string path = folder.write("p", heldPartFile(v, part));
    Room room;
    float w = 0, h = 0, t = 0;
    ASSERT_EQ(GetOldPartInfo(path.c_str(), room.text, &w, &h, &t), 0);
    EXPECT_EQ(room.taken(), v >= 62 ? "steel" : "");
    EXPECT_TRUE(w == 40 && h == 25 && t == 0.125F);
    EXPECT_EQ(answer(path, "angle"), "1.5708");
    EXPECT_EQ(answer(path, "Revision"), v >= 62 ? "rev B" : "");
    EXPECT_EQ(answer(path, "MatType"), v >= 62 ? "steel" : "");
    EXPECT_EQ(answer(path, "Thickness"), "0.125");
    EXPECT_EQ(toolString(path),
              "1  0.500  0.000  0.000  0.000,108 star.one 90.000,107  1.250 -2.000 12345.000 -45.000,"
              "108 moon  0.062,-3  1.000  1.000  1.000  1.000,");
    EXPECT_EQ(sptString(path), ",C:\\S\\star.one.spt,,/s/moon.SPT,");
  }
}

TEST(PartQueries, RefusedVersionsAndFilesLeaveTheOutputs) {
  const TempFolder folder;
  for (const int v : {-32768, -1, 0, 1, 4, 6, 51, 53, 63, 70, 72, 163, 169, 171, 179, 181, 32767})
    expectRefused(folder.write("p", partFile(v)).c_str(), -1);
  for (const int v : {2, 3}) {
    expectRefused(folder.write("p", partFile(v)).c_str(), 1);
    expectRefused(folder.write("p", Bytes().i16(v).zeros(500)).c_str(), 1);
  }
  expectRefused(folder.path("missing").c_str(), -2);
  expectRefused(nullptr, -2);
}

TEST(PartQueries, CutFileReturnsOne) {
  const TempFolder folder;
  for (const int v : {61, 112, 180}) {
    const Bytes whole = partFile(v, {special("a.spt"), tool(3, 1, 2, 3, 4)});
    const std::string path = folder.write(std::to_string(v), whole);
    const auto some = [&](std::size_t n) { return n < 8 || n + 12 > whole.size() || n % 11 == 0; };
    atEachCut(path, whole.size(), some, [&](std::size_t) { expectRefused(path.c_str(), 1); });
  }
}

TEST(PartQueries, KeysIgnoreCaseAndUnknownOnesAndNullsReturnOne) {
  const TempFolder folder;
  const std::string path = folder.write("p", partFile(180));
  for (const char* key : {"ANGLE", "Angle", "aNgLe"}) EXPECT_EQ(answer(path, key), "0");
  EXPECT_EQ(answer(path, "REVISION"), "rev B");
  EXPECT_EQ(answer(path, "mattype"), "steel");
  EXPECT_EQ(answer(path, "thickNESS"), "0.125");
  Room room;
  for (const char* key : {"Width", "", "angl", "angle ", "angles", " angle", "Mat Type", "@ngle"})
    EXPECT_EQ(GetOldPartInfo_v1(path.c_str(), key, room.text), 1) << key;
  EXPECT_EQ(GetOldPartInfo_v1(path.c_str(), nullptr, room.text), 1);
  EXPECT_EQ(GetOldPartInfo_v1(nullptr, "angle", room.text), 1);
  EXPECT_EQ(GetOldPartInfo_v1(path.c_str(), "angle", nullptr), 1);
  EXPECT_EQ(GetOldPartInfo_v1(folder.path("missing").c_str(), nullptr, room.text), 1);
  // The part is loaded before the key is checked.
  EXPECT_EQ(GetOldPartInfo_v1(folder.path("missing").c_str(), "Width", room.text), -2);
  EXPECT_EQ(GetOldPartInfo_v1(folder.write("q", partFile(53)).c_str(), "Width", room.text), -1);
  EXPECT_TRUE(room.untouched());
}

TEST(PartQueries, AngleIsTheArcTangentInRadians) {
  const TempFolder folder;
  constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
  const std::vector<std::pair<std::pair<float, float>, const char*>> table{
      {{1, 0}, "0"},          {{0, 1}, "1.5708"},         {{-1, 0}, "3.14159"},  {{-1, -0.0F}, "-3.14159"},
      {{0, -1}, "-1.5708"},   {{3, 4}, "0.927295"},       {{0, 0}, "0"},         {{1, -0.0F}, "-0"},
      {{2, -2}, "-0.785398"}, {{1e30F, 1e-30F}, "1e-60"}, {{1, 1e-6F}, "1e-06"}, {{kNan, 0}, "nan"},
  };
  for (const auto& [pair, text] : table) {
    TorvPart part = partWith();
    part.patterns[0].rotationCos = pair.first;
    part.patterns[0].rotationSin = pair.second;
    const std::string path = folder.write("p", heldPartFile(150, part));
    EXPECT_EQ(answer(path, "angle"), text) << pair.first << ' ' << pair.second;
  }
}

TEST(PartQueries, AngleOfAPartWithoutPatternsIsZero) {
  const TempFolder folder;
  EXPECT_EQ(answer(folder.write("5", Bytes().i16(5).zeros(1000)), "angle"), "0");
}

TEST(PartQueries, NumbersPrintAsTheirFormatsSay) {
  const TempFolder folder;
  constexpr float kInf = std::numeric_limits<float>::infinity(), kNan = std::numeric_limits<float>::quiet_NaN();
  const auto path = [&](float value) {
    TorvPart part = partWith({tool(3, value, 0, 0, 0)});
    part.thickness = value;
    return folder.write("p", heldPartFile(162, part));
  };
  struct Row {
    float value;
    const char *asThickness, *asDimension;
  };
  for (const Row& row : {Row{0, "0", " 0.000"},
                         Row{-0.0F, "-0", "-0.000"},
                         Row{0.05F, "0.05", " 0.050"},
                         Row{0.1F, "0.1", " 0.100"},
                         Row{2.5F, "2.5", " 2.500"},
                         Row{-0.5F, "-0.5", "-0.500"},
                         Row{123.4567F, "123.457", "123.457"},
                         Row{-12345.0F, "-12345", "-12345.000"},
                         Row{0.0005F, "0.0005", " 0.001"},
                         Row{0.00049F, "0.00049", " 0.000"},
                         Row{-0.0001F, "-0.0001", "-0.000"},
                         Row{0.00001F, "1e-05", " 0.000"},
                         Row{1234567.0F, "1.23457e+06", "1234567.000"},
                         Row{1e-7F, "1e-07", " 0.000"},
                         Row{123456.7F, "123457", "123456.703"},
                         Row{1e10F, "1e+10", "10000000000.000"},
                         Row{0.0625F, "0.0625", " 0.062"},
                         Row{kInf, "inf", "   inf"},
                         Row{-kInf, "-inf", "  -inf"},
                         Row{kNan, "nan", "   nan"},
                         Row{-kNan, "-nan", "  -nan"}}) {
    EXPECT_EQ(answer(path(row.value), "Thickness"), row.asThickness);
    EXPECT_EQ(toolString(path(row.value)), std::string("3 ") + row.asDimension + "  0.000  0.000  0.000,");
  }
  EXPECT_EQ(toolString(path(std::numeric_limits<float>::max())),
            "3 340282346638528859811704183484516925440.000  0.000  0.000  0.000,");
}

TEST(PartQueries, SpecialToolIsNamedByItsBaseName) {
  const TempFolder folder;
  const std::string wide(253, 'p');
  const std::vector<std::pair<std::string, std::string>> table{
      {"C:\\SPOT\\a.spt", "a"},
      {"a.b.spt", "a.b"},
      {"C:a.spt", "a"},
      {"/x/y.z/noext", "noext"},
      {".spt", ""},
      {"C:\\dir.d\\", ""},
      {"", ""},
      {"a b.SPT", "a b"},
      {"x/y\\z.spt", "z"},
      {"name.", "name"},
      {"x\\y/z.spt", "z"},
      {"1:a.spt", "1:a"},
      {"C:", ""},
      {"x/", ""},
      {"a", "a"},
      {"x.y\\a", "a"},
      {"a,b.spt", "a,b"},
      {"C:\\" + wide, wide},
  };
  for (const auto& [stored, name] : table) {
    const std::string path = folder.write("p", partFile(100, {special(stored, 1.5F)}));
    EXPECT_EQ(toolString(path), "108 " + name + "  1.500,") << stored;
    EXPECT_EQ(sptString(path), "," + stored + ",") << "the complete path is returned";
  }
}

TEST(PartQueries, TextWithoutANulIsCopiedUpToItsWidth) {
  const TempFolder folder;
  const std::string material(256, 'm'), revision(21, 'r'), toolPath(256, 't');
  TorvPart part = partWith({special(toolPath)});
  material.copy(part.materialType, sizeof part.materialType);
  revision.copy(part.revision, sizeof part.revision);
  const std::string path = folder.write("p", heldPartFile(180, part));
  Room room;
  float w = 0, h = 0, t = 0;
  EXPECT_EQ(GetOldPartInfo(path.c_str(), room.text, &w, &h, &t), 0);
  EXPECT_EQ(room.taken(), material);
  EXPECT_EQ(answer(path, "MatType"), material);
  EXPECT_EQ(answer(path, "Revision"), revision);
  EXPECT_EQ(sptString(path), "," + toolPath + ",");
  EXPECT_EQ(groupString(folder.write("g", groupFile(180, 0, 256, {{special(toolPath)}}))), toolPath + ",");
}

// Copies only where the length is below the size, with sign.
void expectCopiesBelowSize(SizedQuery query, const std::string& path, const std::string& expected) {
  const auto full = static_cast<int>(expected.size());
  for (const int size : {-2147483647 - 1, -1, 0, 1, full - 1, full, full + 1, full + 2, 2147483647}) {
    Room room;
    std::uint32_t length = 77;
    EXPECT_EQ(query(path.c_str(), room.text, size, &length), 0) << size;
    EXPECT_EQ(length, expected.size()) << size;
    if (full < size)
      EXPECT_EQ(room.taken(), expected) << size;
    else
      EXPECT_TRUE(room.untouched()) << size;
  }
}

TEST(PartQueries, ToolStringIsCopiedWhenItsLengthIsBelowTheSize) {
  const TempFolder folder;
  const std::string path = folder.write("p", partFile(180, {tool(1, 0.5F, 0, 0, 0)}));
  expectCopiesBelowSize(GetOldPartTool, path, "1  0.500  0.000  0.000  0.000,");
  expectCopiesBelowSize(GetOldPartTool, folder.write("q", partFile(180, {tool(0, 1, 1, 1, 1)})), "");
  expectCopiesBelowSize(GetOldPartTool, folder.write("r", partFile(180)), "");
}

TEST(PartQueries, SpecialToolsAreAppendedEachBetweenCommas) {
  const TempFolder folder;
  OldTool unused = tool(0, 1, 1, 1, 1);
  std::strcpy(unused.specialToolPath, "x");
  const std::string none = folder.write("n", partFile(180, {tool(1, 1, 1, 1, 1), unused}));
  const std::string two = folder.write("t", partFile(180, {special("A"), tool(1, 1, 1, 1, 1), special("B")}));
  EXPECT_EQ(sptString(none, "before"), "before");
  EXPECT_EQ(sptString(two), ",A,,B,");
  EXPECT_EQ(sptString(two, sptString(two)), ",A,,B,,A,,B,");
}

TEST(PartQueries, CommaLocaleOfTheHostChangesNoNumber) {
  const TempFolder folder;
  const std::string path = folder.write("p", partFile(180, {tool(1, 0.5F, 0, 0, 0)}));
  const CommaLocale comma;
  if (!comma.isSet()) GTEST_SKIP() << "neither a locale with a decimal comma nor its sources are installed";
  EXPECT_EQ(toolString(path), "1  0.500  0.000  0.000  0.000,");
  EXPECT_EQ(answer(path, "Thickness"), "0.125");
}

// ---- group part files ----------------------------------------------------------------------------

using List = std::unique_ptr<SheetPartList, decltype(&DeleteOldPartlistInfo)>;
List newList() { return {CreateOldPartlistInfo(), DeleteOldPartlistInfo}; }

TEST(GroupPartQueries, SpecialToolsAreClosedByACommaEachAndDoublesStay) {
  const TempFolder folder;
  const std::vector<std::vector<OldTool>> tools{
      {special("a"), tool(1, 1, 1, 1, 1), special("a")}, {}, {special("c"), tool(0, 0, 0, 0, 0)}};
  for (const int v : {152, 153, 154, 161, 162, 163, 179, 180, 181, 1000, 32767}) {
    SCOPED_TRACE(v);
    const std::string path = folder.write("g", groupFile(v, 2, 256, tools).fill(7, 0xFF));
    EXPECT_EQ(groupString(path), "a,a,c,");
  }
}

TEST(GroupPartQueries, VersionBelow152ReturnsOneAndNeverMinusOne) {
  const TempFolder folder;
  for (const int v : {-32768, -1, 0, 2, 3, 5, 52, 53, 150, 151}) {
    const std::string path = folder.write("g", groupFile(v, 0, 256, {{}}));
    const List list = newList();
    EXPECT_EQ(LoadGroupPart(path.c_str(), list.get()), 1) << v;
    EXPECT_TRUE(list->parts.empty()) << v;
    expectGroupRefused(path.c_str(), 1);
  }
  const List list = newList();
  EXPECT_EQ(LoadGroupPart(folder.path("missing").c_str(), list.get()), -2);
  expectGroupRefused(folder.path("missing").c_str(), -2);
  expectGroupRefused(nullptr, -2);
}

TEST(GroupPartQueries, CutFileKeepsThePartsBeforeTheCut) {
  const TempFolder folder;
  for (const int v : {152, 180}) {
    const std::vector<OldTool> tools{special("a.spt")};
    const Bytes whole = groupFile(v, 2, 40, {tools, tools, tools});
    const std::size_t part = 40 + heldPartBody(v, partWith(tools)).size();
    ASSERT_EQ(whole.size(), 10 + 3 * part);
    const std::string path = folder.write(std::to_string(v), whole);
    const auto some = [&](std::size_t n) { return n < 12 || (n - 6) % part < 8 || n % 17 == 0; };
    atEachCut(path, whole.size(), some, [&](std::size_t n) {
      const List list = newList();
      EXPECT_EQ(LoadGroupPart(path.c_str(), list.get()), 1);
      EXPECT_EQ(list->parts.size(), n < 10 ? 0 : (n - 10) / part);
      expectGroupRefused(path.c_str(), 1);
    });
  }
}

TEST(GroupPartQueries, PathsAreCopiedWhenTheirLengthIsBelowTheSize) {
  const TempFolder folder;
  const std::string path = folder.write("g", groupFile(180, 1, 256, {{special("C:\\x.spt")}, {special("")}}));
  expectCopiesBelowSize(GetOldSptFromGroupPart, path, "C:\\x.spt,,");
  expectCopiesBelowSize(GetOldSptFromGroupPart, folder.write("h", groupFile(180, 0, 256, {{}})), "");
}

}  // namespace
