// Special tool files, questions about part files and group part files, over files put together by hand.
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
#include "src/tooling/special_tool_io.h"
#include "tests/support/bytes.h"
#include "tests/support/files.h"
#include "tests/support/stored_forms.h"

namespace {

using namespace testing_support;

// ---- hand-made files -----------------------------------------------------------------------------

struct ToolForm {
  int code = 1;
  float d1 = 0, d2 = 0, d3 = 0, orientation = 0;
  std::string path = {};
};

Bytes toolBytes(int version, bool pathIsStored, const ToolForm& t) {
  Bytes b;
  b.f32(t.orientation).i32(t.code);
  if (t.code == 108 && version >= 90) b.zeros(24);
  b.i32(0);
  if (pathIsStored && t.code == 108) b.text(256, t.path);
  b.i32(0).f32(t.code == 107 ? t.d2 : t.d1).f32(t.code == 107 ? t.d1 : t.d2).f32(t.d3);
  b.zeros(2 * (4 + (version < 110 ? 16U : 24U)) + 8);
  return b.zeros((version >= 60 ? 8U : 0U) + (version >= 110 ? 16U : 0U) + (version >= 111 ? 264U : 0U));
}

struct PartForm {
  std::vector<ToolForm> tools;
  float width = 40, height = 25, thickness = 0.125F;
  std::string material = "steel", revision = "rev B";
  float cosine = 1, sine = 0;
};

Bytes partBody(int version, const PartForm& p) {
  const auto since = [version](int first, std::size_t bytes) { return version >= first ? bytes : 0; };
  Bytes b;
  b.f32(p.width).f32(p.height).zeros(3 * 21 + 8).f32(p.thickness).zeros(4);
  b.i32(-1).i32(1).i32(0).i32(0).zeros(256 + since(80, 501));
  b.zeros(4 + since(61, 4) + since(90, 4));
  if (version >= 100) b.i32(2).zeros(8);
  b.i32(static_cast<std::int64_t>(p.tools.size()));
  for (const ToolForm& t : p.tools) {
    b.i32(1).f32(0).i32(0).i32(1).zeros(4 * 15 + 3 + 4 + since(60, 8) + since(61, 36) + since(90, 49));
    if (version >= 100) b.zeros(4).i32(2).zeros(20);
    b.zeros(since(110, 4) + since(112, 4) + since(130, 8)).add(toolBytes(version, true, t));
  }
  b.i32(0).i32(1).i32(1).zeros(16).f32(p.cosine).f32(p.sine).zeros(12 + since(80, 8));
  b.zeros(1 + 12 + 8);
  if (version >= 62) b.zeros(512).text(21, p.revision).text(256, p.material).zeros(260);
  b.zeros(since(71, 8) + since(102, 12) + since(110, 5 * 256 + 16) + since(111, 512) + since(112, 256));
  return b.zeros(since(140, 16) + since(151, 4) + since(152, 24) + since(154, 4) + since(161, 4) + since(180, 1032));
}

Bytes partFile(int version, const PartForm& p) { return Bytes().i16(version).add(partBody(version, p)); }

Bytes groupFile(int version, std::int32_t extra, int nameBlock, const std::vector<PartForm>& parts,
                const std::vector<std::string>& names = {"part0", "part1", "part2"}) {
  Bytes b;
  b.i16(version).i32(extra).i32(nameBlock);
  for (std::size_t i = 0; i < parts.size(); ++i)
    b.text(static_cast<std::size_t>(nameBlock), names[i]).add(partBody(version, parts[i]));
  return b;
}

ToolForm special(const std::string& path, float orientation = 0) { return {108, 0, 0, 0, orientation, path}; }

// A special tool file with outline shapes of the given types and a last field behind them.
Bytes specialFile(int version, const ToolForm& tool, const std::vector<int>& shapeTypes, int firstByte = 0,
                  int otherBytes = 0) {
  Bytes b;
  b.i16(version).add(toolBytes(version, false, tool));
  b.u8(static_cast<std::uint8_t>(firstByte)).fill(59, static_cast<std::uint8_t>(otherBytes)).f32(50);
  b.i32(-1).i32(1).i32(static_cast<std::int64_t>(shapeTypes.size()));
  for (const int type : shapeTypes) {
    Maker maker;
    Shape shape;
    storedShape(maker, version, ShapeForm{type, 9, 2, false, ""}, shape);
    b.add(maker.bytes);
  }
  return b.i32(0);
}

const std::vector<int>& specialVersions() {
  static const std::vector<int> all{52,  54,  60,  90,  91,  92,  100, 101, 102, 110, 111, 112, 120, 121, 130, 140,
                                    141, 150, 151, 152, 153, 154, 155, 156, 157, 158, 159, 160, 161, 162, 170, 180};
  return all;
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
  // The text up to its NUL; nothing behind the NUL may have changed.
  std::string taken() const {
    const std::string all(text, sizeof text);
    const std::size_t end = all.find('\0');
    if (end == std::string::npos) return "no NUL";
    EXPECT_EQ(all.find_first_not_of('#', end + 1), std::string::npos) << "bytes behind the NUL changed";
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
// Every part query answers with the status and leaves its outputs.
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

// ---- special tools -------------------------------------------------------------------------------

struct Opened {
  std::int32_t status = 99;
  std::uint32_t count = 99;
  float f[19];
  std::int32_t n[2] = {-91, -92};
  std::uint8_t late = 93;
  Opened() {
    for (float& one : f) one = -94;
  }
  explicit Opened(const std::string& path) : Opened() {
    status = OpenSpecialToolFile(path.c_str(), &count, &f[0], &f[1], &f[2], &f[3], &f[4], &n[0], &f[5], &f[6], &f[7],
                                 &f[8], &f[9], &f[10], &n[1], &f[11], &f[12], &f[13], &f[14], &f[15], &f[16], &f[17],
                                 &f[18], &late);
  }
  bool untouched() const {
    for (const float one : f)
      if (one != -94) return false;
    return n[0] == -91 && n[1] == -92 && late == 93;
  }
};

struct ShapeAt {
  std::int32_t type = -77;
  float v[6] = {-1, -2, -3, -4, -5, -6};
  explicit ShapeAt(int index) { GetShapeAt(index, &type, &v[0], &v[1], &v[2], &v[3], &v[4], &v[5]); }
  bool untouched() const {
    return type == -77 && v[0] == -1 && v[1] == -2 && v[2] == -3 && v[3] == -4 && v[4] == -5 && v[5] == -6;
  }
};

// The very first use of the current special tool, ahead of every test.
struct FirstUse : testing::Environment {
  static inline std::unique_ptr<Opened> opened;
  void SetUp() override {
    if (opened) return;
    const TempFolder folder;
    opened = std::make_unique<Opened>(folder.write("empty.spt", specialFile(180, {}, {})));
  }
};
const auto* const kFirstUse = testing::AddGlobalTestEnvironment(new FirstUse);

TEST(SpecialToolByHand, AFirstFileWithoutShapesGivesNothingButTheCount) {
  ASSERT_TRUE(kFirstUse != nullptr && FirstUse::opened);
  EXPECT_EQ(FirstUse::opened->status, 0);
  EXPECT_EQ(FirstUse::opened->count, 0U);
  EXPECT_TRUE(FirstUse::opened->untouched());
}

TEST(SpecialToolByHand, BothLoadersAcceptTheSameVersionsAndKeepTheWord) {
  const TempFolder folder;
  std::vector<int> words{-32768, -1, 0x3400, 32767};
  for (int v = 0; v < 260; ++v) words.push_back(v);
  std::vector<int> accepted;
  for (const int v : words) {
    const std::string path = folder.write("t.spt", specialFile(v, {108}, {3}));
    OldSpecialTool tool;
    const std::int64_t status = LoadOldSpecialTool(path.c_str(), &tool);
    EXPECT_EQ(tool.tool.fileVersion, v);
    EXPECT_EQ(Opened(path).status, status) << v;
    if (status == 0)
      accepted.push_back(v);
    else
      EXPECT_TRUE(status == -1 && tool.tool.shapeCode == 0 && tool.shapes.shapes.empty()) << v;
  }
  EXPECT_EQ(accepted, specialVersions());
}

TEST(SpecialToolByHand, EveryVersionLoadsEveryFieldAndIgnoresWhatFollows) {
  const TempFolder folder;
  for (const int v : specialVersions()) {
    for (const int code : {0, 1, 107, 108}) {
      SCOPED_TRACE(testing::Message() << "version " << v << ", code " << code);
      Maker maker;
      OldSpecialTool made;
      storedSpecialTool(maker, v, code, made);
      const std::string path = folder.write("t.spt", Bytes().i16(v).add(maker.bytes).fill(9, 0xFF));
      OldSpecialTool got;
      ASSERT_EQ(LoadOldSpecialTool(path.c_str(), &got), 0);
      Checker checker;
      storedSpecialTool(checker, v, code, got);
      EXPECT_EQ(got.tool.symmetryFlags, 0U);
      EXPECT_EQ(got.tool.specialToolPath[0], '\0');
      EXPECT_TRUE(got.tool.lateFlag == 0 && got.tool.runtimeIndexA == -1 && got.tool.name.empty());
    }
  }
}

TEST(SpecialToolByHand, AnyCutGivesOneAndKeepsWhatArrived) {
  const TempFolder folder;
  for (const int v : {54, 92, 180}) {
    Maker maker;
    OldSpecialTool made;
    storedSpecialTool(maker, v, 108, made);
    const Bytes whole = Bytes().i16(v).add(maker.bytes);
    const std::string path = folder.write(std::to_string(v), whole);
    const auto all = [](std::size_t) { return true; };
    atEachCut(path, whole.size(), all, [&](std::size_t n) {
      OldSpecialTool got;
      EXPECT_EQ(LoadOldSpecialTool(path.c_str(), &got), 1);
      EXPECT_EQ(got.tool.fileVersion, n < 2 ? 0 : v);
      Checker checker(n < 2 ? 0 : n - 2);
      storedTool(checker, v, false, 108, got.tool);
    });
  }
}

TEST(SpecialToolByHand, TheFirstOfSixtyBytesAddsToTheDerivedSymmetry) {
  const TempFolder folder;
  for (const int v : {52, 180})
    for (const int code : {1, 107, 108})
      for (const float d3 : {0.0F, 1.0F, 2.0F, 3.0F})
        for (const int first : {0, 1, 2, 3, 4, 255})
          for (const int others : {0, 1, 2, 255}) {
            OldSpecialTool tool;
            const std::string path = folder.overwrite(std::to_string(v * 1000 + code) + ".spt",
                                                      specialFile(v, {code, 4, 5, d3, 0}, {}, first, others));
            ASSERT_EQ(LoadOldSpecialTool(path.c_str(), &tool), 0);
            unsigned expected = code == 108 && d3 == 1 ? 1U : code == 108 && d3 == 2 ? 2U : 0U;
            if (first == 1 || first == 2) expected |= static_cast<unsigned>(first);
            EXPECT_EQ(tool.tool.symmetryFlags, expected) << code << ' ' << d3 << ' ' << first << ' ' << others;
          }
}

TEST(SpecialToolByHand, AHalfTurnByteOnAQuarterTurnToolLeavesThree) {
  const TempFolder folder;
  OldSpecialTool tool;
  const std::string path = folder.write("t.spt", specialFile(112, {108, 4, 5, 2, 0}, {}, 1));
  EXPECT_EQ(LoadOldSpecialTool(path.c_str(), &tool), 0);
  EXPECT_EQ(tool.tool.symmetryFlags, 3U);
}

TEST(SpecialToolByHand, AFileThatCannotBeOpenedLeavesTheRecordAlone) {
  const TempFolder folder;
  OldSpecialTool tool;
  tool.tool.fileVersion = 7;
  tool.specialValue = 8;
  EXPECT_EQ(LoadOldSpecialTool(folder.path("missing.spt").c_str(), &tool), -2);
  EXPECT_TRUE(tool.tool.fileVersion == 7 && tool.specialValue == 8);
}

TEST(SpecialToolByHand, AReloadKeepsWhatTheLaterFileDoesNotStore) {
  const TempFolder folder;
  OldSpecialTool tool;
  tool.tool.extraValues[1] = 41;
  tool.tool.firstValues[3] = 42;
  tool.tool.tailText[0] = 'x';
  tool.tool.symmetryFlags = 2;
  tool.tool.specialBlock[5] = 9;
  tool.shapes.shapes.resize(3);
  tool.setupList.entries.resize(2);
  const auto load = [&](const Bytes& b) { return LoadOldSpecialTool(folder.write("t.spt", b).c_str(), &tool); };
  EXPECT_EQ(load(specialFile(54, {1}, {}, 1)), 0);
  EXPECT_TRUE(tool.tool.extraValues[1] == 41 && tool.tool.tailText[0] == 'x' && tool.tool.specialBlock[5] == 9);
  EXPECT_EQ(tool.tool.firstValues[3], 0.0F);
  EXPECT_EQ(tool.tool.symmetryFlags, 3U);
  EXPECT_EQ(tool.shapes.shapes.size(), 3U);
  EXPECT_EQ(tool.setupList.entries.size(), 2U);
  EXPECT_EQ(load(specialFile(60, {108}, {5, 6})), 0);
  EXPECT_EQ(tool.tool.symmetryFlags, 0U);
  EXPECT_EQ(tool.tool.extraValues[1], 0.0F);
  EXPECT_EQ(tool.shapes.shapes.size(), 2U);
}

TEST(SpecialToolByHand, OpeningHandsOutTheFieldsByTheirNames) {
  const TempFolder folder;
  for (const int v : specialVersions()) {
    SCOPED_TRACE(v);
    Maker maker;
    OldSpecialTool made;
    storedSpecialTool(maker, v, 107, made);
    // A file that stores everything first, so that nothing is left over from elsewhere.
    ASSERT_EQ(Opened(folder.write("z.spt", specialFile(180, {1}, {3}))).status, 0);
    const Opened got(folder.write("t.spt", Bytes().i16(v).add(maker.bytes)));
    EXPECT_EQ(got.status, 0);
    EXPECT_EQ(got.count, made.shapes.shapes.size());
    const OldTool& t = made.tool;
    std::vector<float> expected{t.orientation, made.specialValue, t.dimension1, t.dimension2, t.dimension3};
    expected.insert(expected.end(), t.firstValues, t.firstValues + 6);
    expected.insert(expected.end(), t.secondValues, t.secondValues + 6);
    expected.insert(expected.end(), t.extraValues, t.extraValues + 2);
    EXPECT_EQ(std::vector<float>(got.f, got.f + 19), expected);
    EXPECT_TRUE(got.n[0] == t.firstValueCount && got.n[1] == t.secondValueCount && got.late == 0);
    for (int i = 0; i < static_cast<int>(made.shapes.shapes.size()); ++i) {
      const Shape& s = made.shapes.shapes[static_cast<std::size_t>(i)];
      const ShapeAt at(i);
      EXPECT_EQ(at.type, static_cast<std::int32_t>(s.type)) << "shape " << i;
      EXPECT_EQ(std::vector<float>(at.v, at.v + 6),
                (std::vector<float>{s.x, s.y, s.values[0], s.values[1], s.values[2], s.values[3]}));
    }
  }
}

TEST(SpecialToolByHand, AShapeIndexOutsideTheListChangesNothing) {
  const TempFolder folder;
  ASSERT_EQ(Opened(folder.write("t.spt", specialFile(180, {108}, {3, -7}))).count, 2U);
  for (const int index : {-2147483647 - 1, -1, 2, 3, 2147483647}) EXPECT_TRUE(ShapeAt(index).untouched()) << index;
  EXPECT_EQ(ShapeAt(0).type, 3);
  EXPECT_EQ(ShapeAt(1).type, -7);
}

TEST(SpecialToolByHand, AMissingRefusedOrWordlessFileOnlyClearsTheCount) {
  const TempFolder folder;
  ASSERT_EQ(Opened(folder.write("t.spt", specialFile(180, {108}, {3, 4}))).count, 2U);
  const std::vector<std::pair<std::string, int>> table{{folder.path("missing.spt"), -2},
                                                       {folder.write("a.spt", specialFile(53, {108}, {3})), -1},
                                                       {folder.write("b.spt", specialFile(0, {108}, {3})), -1},
                                                       {folder.write("c.spt", specialFile(1, {108}, {3})), -1},
                                                       {folder.write("d.spt", Bytes()), 1},
                                                       {folder.write("e.spt", Bytes().u8(180)), 1}};
  for (const auto& [path, status] : table) {
    const Opened got(path);
    EXPECT_EQ(got.status, status) << path;
    EXPECT_EQ(got.count, 0U) << path;
    EXPECT_TRUE(got.untouched()) << path;
    EXPECT_EQ(ShapeAt(1).type, 4) << "the earlier shapes stay";
  }
}

TEST(SpecialToolByHand, ShapesAreReportedBehindAFaultAndFromAnEarlierFile) {
  const TempFolder folder;
  const Bytes whole = specialFile(180, {1, 6, 7, 8, 9}, {3, 4, 5});
  for (std::size_t missing = 1; missing <= 4; ++missing) {
    const Opened got(folder.write("cut.spt", whole.cut(whole.size() - missing)));
    EXPECT_EQ(got.status, 1);
    EXPECT_EQ(got.count, 3U);
    EXPECT_TRUE(got.f[0] == 9 && got.f[1] == 50 && got.f[2] == 6 && got.f[3] == 7 && got.f[4] == 8);
  }
  const Opened later(folder.write("later.spt", specialFile(54, {1, 16, 17, 18, 19}, {})));
  EXPECT_EQ(later.status, 0);
  EXPECT_EQ(later.count, 3U);
  EXPECT_TRUE(later.f[0] == 19 && later.f[2] == 16);
  EXPECT_EQ(ShapeAt(2).type, 5);
}

TEST(SpecialToolByHand, TheFolderIsLookedUpInTwoSections) {
  const std::string key = "ZRK_DEFAULT_SPECIAL_TOOL_PATH=";
  const std::string first = "[Kestrada64bit]\n", second = "[Kestrada]\n";
  const std::string fallback = "C:\\KESTRADA\\SPECTOOL\\";
  const std::string wide(300, 'w');
  const std::vector<std::pair<std::string, std::string>> table{
      {"", fallback},
      {first + key + "D:\\A\n", "D:\\A"},
      {second + key + "D:\\B\\\n", "D:\\B\\"},
      {second + key + "D:\\B\n" + first + key + "D:\\A\n", "D:\\A"},
      {first + key + "\n" + second + key + "D:\\B\n", "D:\\B"},
      {first + "OTHER=D:\\A\n" + second + key + "D:\\B\n", "D:\\B"},
      {first + key + "\n" + second + key + "\n", fallback},
      {key + "D:\\A\n", fallback},
      {"[Elsewhere]\n" + key + "D:\\A\n", fallback},
      {first + key + "  \"D:\\A B\"  \n", "D:\\A B"},
      {first + key + wide + "\n", wide.substr(0, 260)},
  };
  for (const auto& [content, folder] : table) {
    const WinIni ini(content);
    EXPECT_EQ(oldtorvio::GetSpecialToolFolder(), folder) << content;
  }
}

// ---- questions about part files ------------------------------------------------------------------

TEST(PartQueriesByHand, EveryVersionAnswersEveryQuestion) {
  const TempFolder folder;
  PartForm form;
  form.cosine = 0;
  form.sine = 1;
  form.tools = {{1, 0.5F, 0, 0, 0},           special("C:\\S\\star.one.spt", 90), {0, 1, 2, 3, 4},
                {107, 1.25F, -2, 12345, -45}, special("/s/moon.SPT", 0.0625F),    {-3, 1, 1, 1, 1}};
  for (const int v : partVersions()) {
    SCOPED_TRACE(v);
    const std::string path = folder.write("p", partFile(v, form));
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

TEST(PartQueriesByHand, RefusedVersionsAndFilesLeaveTheOutputs) {
  const TempFolder folder;
  for (const int v : {-32768, -1, 0, 1, 4, 6, 51, 53, 63, 70, 72, 163, 169, 171, 179, 181, 32767})
    expectRefused(folder.write("p", partFile(v, {})).c_str(), -1);
  for (const int v : {2, 3}) expectRefused(folder.write("p", partFile(v, {})).c_str(), 1);
  expectRefused(folder.path("missing").c_str(), -2);
  expectRefused(nullptr, -2);
}

TEST(PartQueriesByHand, ACutFileAnswersWithOne) {
  const TempFolder folder;
  for (const int v : {61, 112, 180}) {
    const Bytes whole = partFile(v, {{special("a.spt"), {3, 1, 2, 3, 4}}});
    const std::string path = folder.write(std::to_string(v), whole);
    const auto some = [&](std::size_t n) { return n < 8 || n + 12 > whole.size() || n % 11 == 0; };
    atEachCut(path, whole.size(), some, [&](std::size_t) { expectRefused(path.c_str(), 1); });
  }
}

TEST(PartQueriesByHand, KeysFoldTheirCaseAndOthersGiveOne) {
  const TempFolder folder;
  const std::string path = folder.write("p", partFile(180, {}));
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
  // The part is loaded before the key is looked at.
  EXPECT_EQ(GetOldPartInfo_v1(folder.path("missing").c_str(), "Width", room.text), -2);
  EXPECT_EQ(GetOldPartInfo_v1(folder.write("q", partFile(53, {})).c_str(), "Width", room.text), -1);
  EXPECT_TRUE(room.untouched());
}

TEST(PartQueriesByHand, TheAngleIsTheArcTangentInRadians) {
  const TempFolder folder;
  const std::vector<std::pair<std::pair<float, float>, const char*>> table{
      {{1, 0}, "0"},          {{0, 1}, "1.5708"},         {{-1, 0}, "3.14159"}, {{-1, -0.0F}, "-3.14159"},
      {{0, -1}, "-1.5708"},   {{3, 4}, "0.927295"},       {{0, 0}, "0"},        {{1, -0.0F}, "-0"},
      {{2, -2}, "-0.785398"}, {{1e30F, 1e-30F}, "1e-60"},
  };
  for (const auto& [pair, text] : table) {
    PartForm form;
    form.cosine = pair.first;
    form.sine = pair.second;
    EXPECT_EQ(answer(folder.write("p", partFile(150, form)), "angle"), text) << pair.first << ' ' << pair.second;
  }
}

TEST(PartQueriesByHand, NumbersPrintAsTheirFormatsTell) {
  const TempFolder folder;
  constexpr float kInf = std::numeric_limits<float>::infinity(), kNan = std::numeric_limits<float>::quiet_NaN();
  const auto path = [&](float value) {
    PartForm form;
    form.thickness = value;
    form.tools = {{3, value, 0, 0, 0}};
    return folder.write("p", partFile(162, form));
  };
  struct Row {
    float value;
    const char *asThickness, *asDimension;
  };
  for (const Row& row :
       {Row{0, "0", " 0.000"}, Row{-0.0F, "-0", "-0.000"}, Row{0.05F, "0.05", " 0.050"}, Row{1e-7F, "1e-07", " 0.000"},
        Row{123456.7F, "123457", "123456.703"}, Row{1e10F, "1e+10", "10000000000.000"},
        Row{0.0625F, "0.0625", " 0.062"}, Row{kInf, "inf", "   inf"}, Row{-kInf, "-inf", "  -inf"},
        Row{kNan, "nan", "   nan"}, Row{-kNan, "-nan", "  -nan"}}) {
    EXPECT_EQ(answer(path(row.value), "Thickness"), row.asThickness);
    EXPECT_EQ(toolString(path(row.value)), std::string("3 ") + row.asDimension + "  0.000  0.000  0.000,");
  }
  EXPECT_EQ(toolString(path(std::numeric_limits<float>::max())),
            "3 340282346638528859811704183484516925440.000  0.000  0.000  0.000,");
}

TEST(PartQueriesByHand, ASpecialToolIsNamedByItsBaseName) {
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
      {"a,b.spt", "a,b"},
      {"C:\\" + wide, wide},
  };
  for (const auto& [stored, name] : table) {
    const std::string path = folder.write("p", partFile(100, {{special(stored, 1.5F)}}));
    EXPECT_EQ(toolString(path), "108 " + name + "  1.500,") << stored;
    EXPECT_EQ(sptString(path), "," + stored + ",") << "the path is given whole";
  }
}

TEST(PartQueriesByHand, ATextWithoutItsNulIsTakenUpToItsWidth) {
  const TempFolder folder;
  PartForm form;
  form.material = std::string(256, 'm');
  form.revision = std::string(21, 'r');
  form.tools = {special(std::string(256, 't'))};
  const std::string path = folder.write("p", partFile(180, form));
  Room room;
  float w = 0, h = 0, t = 0;
  EXPECT_EQ(GetOldPartInfo(path.c_str(), room.text, &w, &h, &t), 0);
  EXPECT_EQ(room.taken(), form.material);
  EXPECT_EQ(answer(path, "MatType"), form.material);
  EXPECT_EQ(answer(path, "Revision"), form.revision);
  EXPECT_EQ(sptString(path), "," + form.tools[0].path + ",");
  EXPECT_EQ(groupString(folder.write("g", groupFile(180, 0, 256, {form}))), form.tools[0].path + ",");
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

TEST(PartQueriesByHand, TheToolStringIsCopiedWhenItsLengthIsBelowTheSize) {
  const TempFolder folder;
  const std::string path = folder.write("p", partFile(180, {{{1, 0.5F, 0, 0, 0}}}));
  expectCopiesBelowSize(GetOldPartTool, path, "1  0.500  0.000  0.000  0.000,");
  expectCopiesBelowSize(GetOldPartTool, folder.write("q", partFile(180, {{{0, 1, 1, 1, 1}}})), "");
  expectCopiesBelowSize(GetOldPartTool, folder.write("r", partFile(180, {})), "");
}

TEST(PartQueriesByHand, SpecialToolPathsAreAppendedToTheText) {
  const TempFolder folder;
  const std::string none = folder.write("n", partFile(180, {{{1, 1, 1, 1, 1}, {0, 1, 1, 1, 1, "x"}}}));
  const std::string two = folder.write("t", partFile(180, {{special("A"), {1, 1, 1, 1, 1}, special("B")}}));
  EXPECT_EQ(sptString(none, "before"), "before");
  EXPECT_EQ(sptString(two), ",A,,B,");
  EXPECT_EQ(sptString(two, sptString(two)), ",A,,B,,A,,B,");
}

// ---- group part files ----------------------------------------------------------------------------

using List = std::unique_ptr<SheetPartList, decltype(&DeleteOldPartlistInfo)>;
List newList() { return {CreateOldPartlistInfo(), DeleteOldPartlistInfo}; }

TEST(GroupPartByHand, ANewListIsEmptyAndNullMayBeDeleted) {
  const List list = newList();
  ASSERT_TRUE(list);
  EXPECT_TRUE(list->parts.empty());
  EXPECT_EQ(list->nameWidth, 256);
  DeleteOldPartlistInfo(nullptr);
}

TEST(GroupPartByHand, PartsAreAppendedInStoredOrderAtEveryVersionFrom152) {
  const TempFolder folder;
  std::vector<PartForm> forms(3);
  for (std::size_t i = 0; i < forms.size(); ++i) forms[i].width = static_cast<float>(100 + i);
  forms[0].tools = {special("a"), {1, 1, 1, 1, 1}, special("a")};
  forms[2].tools = {special("c"), {0, 0, 0, 0, 0}};
  for (const int v : {152, 153, 154, 161, 162, 163, 179, 180, 181, 1000, 32767}) {
    SCOPED_TRACE(v);
    const std::string path = folder.write("g", groupFile(v, 2, 256, forms).fill(7, 0xFF));
    const List list = newList();
    for (std::size_t load = 0; load < 2; ++load) {
      EXPECT_EQ(LoadGroupPart(path.c_str(), list.get()), 0);
      ASSERT_EQ(list->parts.size(), 3 * (load + 1));
      for (std::size_t i = 0; i < list->parts.size(); ++i) {
        const TorvPart& part = list->parts[i];
        EXPECT_EQ(std::string(part.partName), "part" + std::to_string(i % 3));
        EXPECT_EQ(part.width, forms[i % 3].width);
        EXPECT_EQ(part.toolStations.tools.size(), forms[i % 3].tools.size());
        EXPECT_EQ(part.patterns.size(), 1U);
        EXPECT_TRUE(part.version == 0 && part.partFullDosName[0] == '\0');
      }
    }
    EXPECT_EQ(list->nameWidth, 256);
    EXPECT_EQ(groupString(path), "a,a,c,");
  }
}

TEST(GroupPartByHand, AVersionBelow152GivesOneAndNeverMinusOne) {
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

TEST(GroupPartByHand, ACutFileKeepsThePartsInFrontOfTheCut) {
  const TempFolder folder;
  for (const int v : {152, 180}) {
    const PartForm form{{special("a.spt")}};
    const Bytes whole = groupFile(v, 2, 40, {form, form, form});
    const std::size_t part = 40 + partBody(v, form).size();
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

TEST(GroupPartByHand, TheCountOfFurtherPartsIsTakenWithItsSign) {
  const TempFolder folder;
  struct Row {
    std::int32_t extra;
    std::int64_t status;
    std::size_t parts;
  };
  for (const Row& row :
       {Row{-2147483647 - 1, 0, 1}, Row{-1, 0, 1}, Row{0, 0, 1}, Row{1, 0, 2}, Row{2, 1, 2}, Row{2000000000, 1, 2}}) {
    const List list = newList();
    const std::string path = folder.write("g", groupFile(180, row.extra, 256, {{}, {}}));
    EXPECT_EQ(LoadGroupPart(path.c_str(), list.get()), row.status) << row.extra;
    EXPECT_EQ(list->parts.size(), row.parts) << row.extra;
  }
}

TEST(GroupPartByHand, ANameBlockIsReadOverTheDefaultName) {
  const TempFolder folder;
  struct Row {
    int size;
    const char *stored, *name;
  };
  for (const Row& row : {Row{4, "ABCD", "ABCDPART"}, Row{1, "x", "xEW PART"}, Row{9, "ABCD", "ABCD"},
                         Row{10, "ABCDEFGHIJ", "ABCDEFGHIJ"}, Row{256, "", ""}}) {
    const List list = newList();
    const std::string path = folder.write("g", groupFile(152, 0, row.size, {{}}, {row.stored}));
    ASSERT_EQ(LoadGroupPart(path.c_str(), list.get()), 0) << row.size;
    EXPECT_EQ(std::string(list->parts[0].partName), row.name) << row.size;
    EXPECT_EQ(list->nameWidth, 256);
  }
}

TEST(GroupPartByHand, ANameBlockOutsideOneTo256IsRefused) {
  const TempFolder folder;
  for (const std::int32_t size : {-2147483647 - 1, -1, 0, 257, 2147483647}) {
    const Bytes file = Bytes().i16(180).i32(0).i32(size).zeros(300).add(partBody(180, {})).zeros(300);
    const List list = newList();
    EXPECT_EQ(LoadGroupPart(folder.write("g", file).c_str(), list.get()), 1) << size;
    EXPECT_TRUE(list->parts.empty()) << size;
  }
}

TEST(GroupPartByHand, ThePathsAreCopiedWhenTheirLengthIsBelowTheSize) {
  const TempFolder folder;
  const std::string path = folder.write("g", groupFile(180, 1, 256, {{{special("C:\\x.spt")}}, {{special("")}}}));
  expectCopiesBelowSize(GetOldSptFromGroupPart, path, "C:\\x.spt,,");
  expectCopiesBelowSize(GetOldSptFromGroupPart, folder.write("h", groupFile(180, 0, 256, {{}})), "");
}

}  // namespace
