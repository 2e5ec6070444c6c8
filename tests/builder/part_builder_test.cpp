// The part builder: what it holds after each call, seen through the files that it saves.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>
#include <numbers>
#include <random>
#include <set>

#include "OldTorvIO.h"
#include "OldTorvIO/records.h"
#include "src/builder/angle.h"
#include "src/frame/host/platform.h"
#include "src/part/part_io.h"
#include "tests/support/bytes.h"
#include "tests/support/files.h"
#include "tests/support/host.h"
#include "tests/support/stored_forms.h"
#include "tests/support/stored_forms/versions.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;
namespace fs = std::filesystem;

const std::vector<int> kPartVersions = joined({2, 3, 5}, partVersions());

// ---- special tool files ---------------------------------------------------------------------------

// firstByte begins the sixty symmetry bytes.
Bytes toolFile(const OldTool& t, const std::vector<Shape>& shapes, int version = 180, std::uint8_t firstByte = 0) {
  OldSpecialTool file;
  file.tool = t;
  file.specialValue = 8.5F;
  file.shapes.shapes = shapes;
  file.shapes.listTag = 6;
  file.shapes.listKind = 9;
  file.setupList.entries.resize(1);
  return heldSpecialToolFile(version, file, firstByte, 1);
}

OldTool someTool(int code = 108, std::int32_t firstValueCount = 3) {
  OldTool t;
  t.orientation = 0.75F, t.shapeCode = code, t.specialToolIndex = 4, t.auxWord1 = 5;
  t.dimension1 = 11, t.dimension2 = 12, t.dimension3 = 13;
  t.firstValueCount = firstValueCount, t.secondValueCount = 2;
  for (int i = 0; i < 6; ++i) t.firstValues[i] = 1.5F + float(i), t.secondValues[i] = -3.5F - float(i);
  t.auxWord2 = 21, t.auxWord3 = 22, t.extraValues[0] = 0.125F, t.extraValues[1] = 0.375F;
  if (code == 108) std::memset(t.specialBlock, 0x5A, sizeof t.specialBlock);
  for (std::uint32_t i = 0; i < 4; ++i) t.lateWords[i] = 31 + i;
  std::memset(t.tailBlock, 0x77, sizeof t.tailBlock);
  std::memset(t.tailText, 't', sizeof t.tailText);
  return t;
}

Shape someShape(int type, int seed) {
  Shape s;
  s.type = static_cast<std::int8_t>(type), s.auxWord = seed, s.flags = 0xFFFFFF7FU;
  s.x = float(seed) + 0.5F, s.y = float(-seed), s.valueCount = seed % 10, s.extraCount = seed % 3;
  for (int i = 0; i < s.valueCount; ++i) s.values[i] = float(seed * 10 + i);
  for (int i = 0; i < s.extraCount; ++i) s.extraValues[i] = std::uint32_t(seed * 100 + i);
  s.linkIndex = seed + 1, s.auxValue1 = 41, s.auxValue2 = 42, s.auxValue3 = 43, s.auxValue4 = 44;
  s.textFlag = seed % 2;
  if (s.textFlag > 0) std::strcpy(s.text, "member");
  s.lateByte1 = 1, s.lateByte2 = 2, s.lateByte3 = 3, s.lateWord1 = 4, s.lateByte4 = 5, s.lateWord2 = 6;
  s.note = "a note", s.tailPair[0] = 7, s.tailPair[1] = 8;
  return s;
}

// ---- a fresh builder, and the part that it should hold -----------------------------------------------

struct Bench {
  TempFolder folder;
  std::unique_ptr<TorvPart> part = std::make_unique<TorvPart>();

  Bench() { InitTorvPart(30.0F, 20.0F, 0.05F, 1, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr); }

  std::string setting(const std::string& end = "") const { return WinIni::folderSetting(folder.path() + end); }
  std::int32_t count() const { return static_cast<std::int32_t>(part->shapes.shapes.size()); }
  void append(const Shape& shape, const PatternItem& item = {}) {
    part->shapes.shapes.push_back(shape);
    if (part->patterns.empty()) part->patterns.emplace_back();
    part->patterns[0].items.push_back(item);
  }
  void station(const OldTool& tool, float stationValue) {
    ToolStation s;
    s.stationNumber = static_cast<std::int32_t>(part->toolStations.stations.size()) + 1;
    s.orientation = tool.orientation, s.valueCount = tool.firstValueCount, s.stationValue = stationValue;
    s.stationType = tool.firstValueCount > 0 ? 0 : 2;
    std::copy(std::begin(tool.firstValues), std::end(tool.firstValues), s.values);
    part->toolStations.stations.push_back(s);
    part->toolStations.tools.push_back(tool);
  }
  void group(float x, float y, float angle, const std::string& path, const std::vector<Shape>& toolShapes) {
    Shape head;
    head.type = 7, head.x = x, head.y = y, head.textFlag = count() + 2;
    head.values[0] = float(count() + 2), head.values[2] = angle;
    path.copy(head.text, 255);
    const std::size_t at = part->shapes.shapes.size();
    append(head);
    for (Shape s : toolShapes) {
      if (s.type == 7) continue;
      s.flags = 128;
      append(s);
      part->shapes.shapes[at].values[1] += 1.0F;
    }
  }
  Bytes saved(int version = 180) const {
    EXPECT_EQ(SaveTorvPart(folder.path("built.prt").c_str(), static_cast<std::int16_t>(version)), 0) << version;
    return TempFolder::read(folder.path("built.prt"));
  }
  // Saves at each version, the last one loaded back.
  std::unique_ptr<TorvPart> check(std::vector<int> versions = {5, 60, 90, 110, 162, 180}) const {
    auto loaded = std::make_unique<TorvPart>();
    for (int version : versions) {
      EXPECT_EQ(SavePart(folder.path("hand.prt").c_str(), *part, version), 0);
      EXPECT_TRUE(saved(version) == TempFolder::read(folder.path("hand.prt"))) << "version " << version;
      if (version < 52) continue;
      loaded = std::make_unique<TorvPart>();
      EXPECT_EQ(LoadOldPart(folder.path("built.prt").c_str(), loaded.get()), 0) << version;
      EXPECT_EQ(loaded->shapes.shapes.size(), part->shapes.shapes.size()) << version;
      EXPECT_EQ(loaded->patterns.size(), 1U) << version;
      EXPECT_EQ(loaded->patterns.at(0).items.size(), part->shapes.shapes.size()) << version;
    }
    return loaded;
  }
};

// One call of AddPatternToTorvPart, every argument with a value of its own.
struct Call {
  float x = 1.25F, y = -2.5F;
  std::uint8_t type = 200;
  std::uint32_t flags = 0xFFFF0140U;
  std::array<std::uint32_t, 9> values = {0x3F800001U, 0x7FA00001U, 0x80000000U, 3, 4, 5, 6, 7, 0xFFFFFFFFU};
  std::uint32_t itemWord1 = 0xDEADBEEFU;
  float itemWord2 = 0.625F, a = 81, b = -82, c = 83.5F, d = -84.5F;
  std::int16_t short1 = -1, short2 = 32767;
  float itemWord3 = 0.3F, itemWord4 = -0.4F;

  std::int32_t operator()(const char* tool = nullptr) const {
    return AddPatternToTorvPart(x, y, type, flags, values.data(), itemWord1, itemWord2, a, b, c, d, tool, short1,
                                short2, itemWord3, itemWord4);
  }
  void model(Bench& bench, std::int32_t toolNumber = 0) const {
    const auto bits = [](float v) { return std::bit_cast<std::uint32_t>(v); };
    Shape s;
    s.x = x, s.y = y, s.type = static_cast<std::int8_t>(type), s.flags = flags;
    std::memcpy(s.values, values.data(), sizeof s.values);
    PatternItem i;
    i.itemWord1 = itemWord1, i.toolNumber = toolNumber, i.itemWord2 = bits(itemWord2);
    i.itemPair1[0] = bits(a), i.itemPair1[1] = bits(b), i.itemPair2[0] = bits(c), i.itemPair2[1] = bits(d);
    i.itemShort1 = static_cast<std::uint32_t>(std::int32_t{short1});
    i.itemShort2 = static_cast<std::uint32_t>(std::int32_t{short2});
    i.itemWord3 = bits(itemWord3), i.itemWord4 = bits(itemWord4);
    bench.append(s, i);
  }
};

std::uint16_t addMember(std::int32_t groupIndex, std::uint64_t ignored = 0) {
  const Call c;
  return AddPatIntoGroupPat(groupIndex, c.x, c.y, c.type, ignored, c.values.data());
}
void modelMember(Bench& bench, std::size_t groupIndex) {
  const Call c;
  Shape s;
  s.x = c.x, s.y = c.y, s.type = static_cast<std::int8_t>(c.type), s.flags = 128;
  std::memcpy(s.values, c.values.data(), sizeof s.values);
  bench.append(s);
  bench.part->shapes.shapes[groupIndex - 1].values[1] += 1.0F;
}

using Texts = std::array<const char*, 6>;
void initTexts(const Texts& t) { InitTorvPart(1.5F, 2.5F, 3.5F, -1, t[0], t[1], t[2], t[3], t[4], t[5]); }

std::string padded(const std::string& front, const std::string& end, std::size_t size) {
  return front + std::string(size - front.size() - end.size(), 'n') + end;
}

// ---- Life of the builder --------------------------------------------------------------------------

// The complete part is compared, also the old bytes after the NUL of a text.
TEST(PartBuilder, InitSetsTheNumbersAndLeavesTextsThatAreNull) {
  const std::array<std::size_t, 6> capacity = {256, 21, 21, 256, 256, 256};
  for (std::size_t one = 0; one <= 6; ++one)  // six: none is given
    for (const std::size_t size : {0U, 1U, 5U, 20U, 255U}) {
      Bench bench;
      TorvPart& p = *bench.part;
      const std::array<char*, 6> fields = {p.partName,    p.assemblyName, p.materialName,
                                           p.customText1, p.customText2,  p.customText3};
      const std::string text(size, 't');
      Texts t = {};
      if (one < 6) t[one] = text.c_str();
      Call{}();
      if (one < 6 && size >= capacity[one]) {
        EXPECT_DEATH(initTexts(t), "") << one;
        continue;
      }
      initTexts(t);
      p.width = 1.5F, p.height = 2.5F, p.thickness = 3.5F, p.partKind = -1;
      if (one < 6) std::strcpy(fields[one], t[one]);
      ASSERT_EQ(Call{}(), 1) << one;
      Call{}.model(bench);
      const auto q = bench.check({60, 180});
      EXPECT_EQ(q->partKind, -1);
      EXPECT_EQ(q->thickness, 3.5F);
      EXPECT_STREQ(q->productName, "NEW PRODUCT");
      EXPECT_EQ(q->assemblyName, one == 1 ? text : "NEW ASSEMBLY");
      EXPECT_EQ(q->materialName, one == 2 ? text : "NEW MATERIAL");
    }
  for (std::size_t one = 0; one < 6; ++one) {
    const std::string tooLong(capacity[one], 'l');
    Texts t = {};
    t[one] = tooLong.c_str();
    EXPECT_DEATH(initTexts(t), "") << one;
  }
}

// 0 when everything is as documented; a process of its own, for the builder before any call.
int builderAsLoaded() {
  const TempFolder folder;
  const std::string path = folder.path("p.prt");
  auto p = std::make_unique<TorvPart>();
  if (SaveTorvPart(path.c_str(), 180) != -2) return 1;
  if (Call{}() != 1) return 2;
  if (SaveTorvPart(path.c_str(), 180) != 0 || LoadOldPart(path.c_str(), p.get()) != 0) return 3;
  if (p->shapes.shapes.size() != 1 || p->patterns.at(0).items.size() != 1) return 4;
  if (p->width != 30.0F || p->height != 20.0F || p->partKind != 1) return 5;
  return std::strcmp(p->assemblyName, "NEW ASSEMBLY") == 0 ? 0 : 6;
}

TEST(PartBuilder, WorksWithoutInit) {
  const std::string style = ::testing::FLAGS_gtest_death_test_style;
  if (!testing_support::kStartsProcesses) GTEST_SKIP() << "an emulated processor";
  ::testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(std::_Exit(builderAsLoaded()), ::testing::ExitedWithCode(0), "");
  ::testing::FLAGS_gtest_death_test_style = style;
}

TEST(PartBuilder, SavesExactlyTheVersionsOfPartFilesAndLeavesAnEmptyFileForTheOthers) {
  Bench bench;
  Call{}();
  Call{}.model(bench);
  const std::string path = bench.folder.path("built.prt");
  for (int version = -3; version <= 520; ++version) {
    bench.folder.write("built.prt", Bytes().fill(9, 9));
    const bool good = contains(kPartVersions, version);
    ASSERT_EQ(SaveTorvPart(path.c_str(), static_cast<std::int16_t>(version)), good ? 0 : -1) << version;
    if (!good) {
      EXPECT_EQ(fs::file_size(path), 0U) << version;
    }
  }
  EXPECT_EQ(SaveTorvPart(path.c_str(), -32768), -1);
  bench.check({kPartVersions.begin(), kPartVersions.end()});
  EXPECT_EQ(Call{}(), 2);
}

TEST(PartBuilder, KeepsItsListsOverASave) {
  Bench bench;
  for (std::int32_t n = 1; n <= 4; ++n) {
    ASSERT_EQ(Call{}(), n);
    Call{}.model(bench);
    EXPECT_EQ(bench.check({180})->shapes.shapes.size(), std::size_t(n));
  }
}

TEST(PartBuilder, ReturnsMinus2WhereNoFileCanBeMadeOrNoShapeWasAdded) {
  Bench bench;
  EXPECT_EQ(SaveTorvPart(bench.folder.path("built.prt").c_str(), 180), -2);
  EXPECT_EQ(SaveTorvPart(bench.folder.path("built.prt").c_str(), 63), -1);
  Call{}();
  Call{}.model(bench);
  EXPECT_EQ(SaveTorvPart(bench.folder.path("no/such.prt").c_str(), 180), -2);
  EXPECT_EQ(SaveTorvPart(bench.folder.path("no/such.prt").c_str(), 63), -2);
  EXPECT_EQ(SaveTorvPart(bench.folder.path().c_str(), 180), -2);
  EXPECT_EQ(SaveTorvPart("", 180), -2);
  EXPECT_EQ(SaveTorvPart(nullptr, 180), -2);
  if (fs::exists("/dev/full")) {
    EXPECT_EQ(SaveTorvPart("/dev/full", 180), -2);
  }
  bench.check();
}

TEST(PartBuilder, SavesToAPathOf259CharactersAndEndsTheProcessAt260) {
  Bench bench;
  Call{}();
  const std::string front = bench.folder.path();
  const auto path = [&](std::size_t size) { return front + std::string(size - front.size() - 1, '/') + "p"; };
  auto loaded = std::make_unique<TorvPart>();
  ASSERT_EQ(SaveTorvPart(path(259).c_str(), 180), 0);
  ASSERT_EQ(LoadOldPart(path(259).c_str(), loaded.get()), 0);
  EXPECT_EQ(loaded->partFullDosName, path(259));
  EXPECT_DEATH(SaveTorvPart(path(260).c_str(), 180), "");
  EXPECT_DEATH(SaveTorvPart(path(260).c_str(), 63), "");
}

TEST(PartBuilder, OldestVersionsTakeTheMainLayoutWhichTheirLoadMisreads) {
  const Bench bench;
  InitTorvPart(1, 2, 3, 4, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
  const std::uint32_t values[9] = {11, 12, 13, 14, 15, 16, 17, 18, 19};
  AddPatternToTorvPart(1, 2, 3, 5, values, 0, 0, 0, 0, 0, 0, nullptr, 0, 0, 0, 0);
  for (const int version : {2, 3, 5}) {
    EXPECT_EQ(bench.saved(version).cut(10), Bytes().i16(version).f32(1).f32(2));
    const auto part = std::make_unique<TorvPart>();
    EXPECT_EQ(LoadOldPart(bench.folder.path("built.prt").c_str(), part.get()), version == 5 ? 0 : 1);
    EXPECT_EQ(part->version, version);
    EXPECT_EQ(part->shapes.shapes.size(), 0U);
  }
}

// ---- Shapes without and with a special tool --------------------------------------------------------

TEST(NamedTools, AShapeWithoutAToolNeedsNoStation) {
  Bench bench;
  ASSERT_EQ(Call{}(), 1);
  Call{}.model(bench);
  const auto p = bench.check({kPartVersions.begin(), kPartVersions.end()});
  const Shape& s = p->shapes.shapes[0];
  EXPECT_EQ(s.type, -56);
  EXPECT_EQ(s.flags, 0xFFFF0140U);
  EXPECT_EQ(s.linkIndex, -1);
  EXPECT_EQ(s.valueCount, 9);
  EXPECT_EQ(s.extraCount, 2);
  EXPECT_EQ(std::memcmp(s.values, Call{}.values.data(), sizeof s.values), 0);
  const PatternItem& i = p->patterns[0].items[0];
  EXPECT_EQ(i.toolNumber, 0);
  EXPECT_EQ(i.itemWord1, 0xDEADBEEFU);
  EXPECT_EQ(i.itemShort1, 0xFFFFFFFFU);
  EXPECT_EQ(i.itemShort2, 32767U);
  EXPECT_EQ(i.itemPair1[1], std::bit_cast<std::uint32_t>(-82.0F));
  EXPECT_EQ(i.itemPair2[0], std::bit_cast<std::uint32_t>(83.5F));
  EXPECT_EQ(i.lateWord, 0U);
  EXPECT_TRUE(p->toolStations.stations.empty());
  EXPECT_EQ(p->patterns[0].rotationCos, 1.0F);
}

TEST(NamedTools, EachNamedShapeGetsAStationAndAToolOfItsOwn) {
  Bench bench;
  const WinIni ini(bench.setting());
  bench.folder.write("PUNCH1.SPT", toolFile(someTool(), {someShape(1, 1)}));
  for (std::int32_t n = 1; n <= 3; ++n) {
    Call call;
    call.itemWord2 = float(n) + 0.25F;
    ASSERT_EQ(call("pUnCh1"), n);
    bench.station(someTool(), call.itemWord2);
    call.model(bench, n);
  }
  {
    const WinIni nowhere(WinIni::folderSetting(bench.folder.path("nowhere")));
    ASSERT_EQ(Call{}(""), 4);  // takes the first station without looking for a file
    Call{}.model(bench, 1);
  }
  const auto p = bench.check();
  EXPECT_EQ(p->setupList.entries.size(), 0U);
  for (std::size_t i = 0; i < 3; ++i) {
    const ToolStation& s = p->toolStations.stations.at(i);
    EXPECT_EQ(s.stationNumber, std::int32_t(i) + 1);
    EXPECT_EQ(p->patterns[0].items[i].toolNumber, std::int32_t(i) + 1);
    EXPECT_EQ(s.toolCount, 0);
    EXPECT_EQ(s.stationValue, float(i) + 1.25F);
    EXPECT_EQ(s.orientation, 0.75F);
    EXPECT_EQ(s.realB, -1.0F);
    EXPECT_EQ(s.values[5], 6.5F);
    EXPECT_STREQ(p->toolStations.tools.at(i).specialToolPath, "");
    EXPECT_EQ(p->toolStations.tools[i].dimension3, 13.0F);
  }
  EXPECT_EQ(p->patterns[0].items[3].toolNumber, 1);

  InitTorvPart(30.0F, 20.0F, 0.05F, 1, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
  *bench.part = TorvPart();
  ASSERT_EQ(Call{}("PUNCH1"), 1);
  bench.station(someTool(), Call{}.itemWord2);
  Call{}.model(bench, 1);
  bench.check();
}

TEST(NamedTools, TheValueCountDecidesTheTypeOfTheStation) {
  for (int code : {1, 33, 106, 108})
    for (std::int32_t valueCount : {-5, 0, 1, 3, 6, 1000}) {
      Bench bench;
      const WinIni ini(bench.setting());
      bench.folder.write("a.spt", toolFile(someTool(code, valueCount), {}));
      ASSERT_EQ(Call{}("a"), 1);
      bench.station(someTool(code, valueCount), Call{}.itemWord2);
      Call{}.model(bench, 1);
      const auto p = bench.check({110, 180});
      EXPECT_EQ(p->toolStations.stations.at(0).stationType, valueCount > 0 ? 0 : 2) << valueCount;
      EXPECT_EQ(p->toolStations.stations.at(0).valueCount, valueCount);
    }
}

TEST(NamedTools, FindsTheFileOnlyByItsName) {
  struct Row {
    const char* file;
    const char* name;
    bool found;
  };
  const Row rows[] = {{"PUNCH1.SPT", "punch1", true},
                      {"punch1.spt", "PUNCH1", true},
                      {"a.b.SpT", "A.B", true},
                      {"plain", "PLAIN", false},
                      {"ab", "AB", false},
                      {"abc.spt.bak", "abc", false},
                      {"abc.spt.bak", "abc.spt.bak", false},
                      {"abc.spt", "abc.spt", false},
                      {"abc.spt.spt", "abc.spt", true},
                      {"abc.spt", "abcd", false},
                      {"abc.spt", "a*", false},
                      {".spt", "", true},
                      {"abc.spt", "", false},
                      {"%s%n.spt", "%S%n", true},
                      {"[.spt", "{", false},
                      {"sub/abc.spt", "abc", false},
                      {"\xC3\x89.spt", "\xC3\xA9", false}};
  for (const Row& row : rows) {
    Bench bench;
    const WinIni ini(bench.setting());
    fs::create_directory(bench.folder.path("sub"));
    bench.folder.write(row.file, toolFile(someTool(), {}));
    EXPECT_EQ(Call{}(row.name), row.found ? 1 : -1) << row.file << " as " << row.name;
    EXPECT_EQ(Call{}(), row.found ? 2 : 1) << row.file;
  }
}

TEST(NamedTools, FindsTheFolderWithAndWithoutItsSeparatorAndReadsTheSettingAtEachCall) {
  Bench bench;
  bench.folder.write("a.spt", toolFile(someTool(), {}));
  const std::string key = "ZRK_DEFAULT_SPECIAL_TOOL_PATH=", here = bench.folder.path(), bad = here + "/nowhere";
  const std::pair<std::string, bool> rows[] = {
      {"[Kestrada64bit]\n" + key + here + "\n", true},
      {"[Kestrada64bit]\n" + key + here + "\\\n", true},
      {"[Kestrada]\n" + key + here + "\n", true},
      {"[Kestrada]\n" + key + here + "\n[Kestrada64bit]\n" + key + bad + "\n", false},
      {"[Kestrada64bit]\n" + key + here + "\n[Kestrada]\n" + key + bad + "\n", true},
      {"[Kestrada64bit]\n" + key + "\n[Kestrada]\n" + key + here + "\n", true},
      {"", false}};
  std::int32_t n = 0;
  for (const auto& [text, found] : rows) {
    const WinIni ini(text);
    EXPECT_EQ(Call{}("a"), found ? ++n : -1) << text;
  }
}

TEST(NamedTools, IgnoresAFolderOfTheSameName) {
  Bench bench;
  const WinIni ini(bench.setting());
  fs::create_directory(bench.folder.path("abc.spt"));
  EXPECT_EQ(Call{}("abc"), -1);
#if !defined(_WIN32)  // where no file is beside a folder of its name
  bench.folder.write("ABC.SPT", toolFile(someTool(), {}));
  EXPECT_EQ(Call{}("abc"), 1);
#endif
}

TEST(NamedTools, UsesTheFirstOfSeveralFilesOfTheName) {
  Bench bench;
  const WinIni ini(bench.setting());
  if (!kNamesDifferByCase) GTEST_SKIP() << "this system has one file for both names";
  std::vector<std::string> order;
  for (const char* name : {"abc.spt", "ABC.SPT", "ABC.spt.spt"}) bench.folder.write(name, Bytes());
  oldtorvio::frame::walkFolder(bench.folder.path(), [&](const std::string& name, const std::string&) {
    if (name.size() < 8) order.push_back(name);
    return true;
  });
  ASSERT_EQ(order.size(), 2U);
  bench.folder.write(order[1], toolFile(someTool(), {}));
  EXPECT_EQ(Call{}("abc"), -1) << "the second is ignored";
  bench.folder.overwrite(order[0], toolFile(someTool(), {}));
  EXPECT_EQ(Call{}("abc"), 1);
}

TEST(NamedTools, AcceptsAFullPathOf255CharactersAndEndsTheProcessAt256) {
  Bench bench;
  const WinIni ini(bench.setting());
  for (std::size_t size : {255U, 256U}) {
    const std::string file = padded("", ".spt", size - bench.folder.path().size() - 1);
    const std::string name = file.substr(0, file.size() - 4);
    bench.folder.write(file, size == 255 ? toolFile(someTool(), {}) : Bytes());  // ends before it is loaded
    if (size == 255) {
      EXPECT_EQ(Call{}(name.c_str()), 1);
    } else {
      EXPECT_DEATH(Call{}(name.c_str()), "");
    }
  }
  bench.folder.write("a.spt", toolFile(someTool(), {}));
  EXPECT_EQ(Call{}("a"), 2);  // a long path that is not the one asked for does no harm
  EXPECT_EQ(Call{}(std::string(4000, 'z').c_str()), -1);
}

// ---- Groups -----------------------------------------------------------------------------------------

TEST(Groups, CopiesTheShapesOfTheToolAfterTheirHead) {
  const std::vector<Shape> five = {someShape(1, 1), someShape(7, 2), someShape(4, 3), someShape(-7, 14),
                                   someShape(25, 29)};
  Bench bench;
  const WinIni ini(bench.setting(kSeparator));
  const std::string path = bench.folder.path("A.spt"), longer = bench.folder.path("longer name.spt");
  bench.folder.write("A.spt", toolFile(someTool(), five));
  bench.folder.write("longer name.spt", toolFile(someTool(), {someShape(7, 4)}));
  ASSERT_EQ(AddGroupPatIntoTorvPart(3.5F, -4.5F, 100.0F, "A"), 5);
  bench.group(3.5F, -4.5F, 100.0F, path, five);
  const auto p = bench.check();
  EXPECT_EQ(p->shapes.shapes[0].values[0], 2.0F);
  EXPECT_EQ(p->shapes.shapes[0].values[1], 4.0F);
  EXPECT_EQ(p->shapes.shapes[0].textFlag, 2);
  EXPECT_EQ(p->shapes.shapes[0].text, path);
  EXPECT_EQ(p->shapes.shapes[2].note, "a note");
  EXPECT_EQ(p->shapes.shapes[0].flags & 128U, 0U);
  EXPECT_TRUE(p->toolStations.stations.empty());
  for (std::size_t i = 1; i < 5; ++i) EXPECT_EQ(p->shapes.shapes[i].flags, 128U);

  ASSERT_EQ(AddGroupPatIntoTorvPart(1, 2, -3, "longer name"), 6);  // only a head
  bench.group(1, 2, -3, longer, {});
  ASSERT_EQ(AddGroupPatIntoTorvPart(7, 8, 9, "A"), 11);  // nothing of the head before
  bench.group(7, 8, 9, path, five);
  EXPECT_EQ(bench.check()->shapes.shapes[6].values[0], 8.0F);
}

// `steps` single steps from angle, each rounded to single precision; below zero they go down.
float stepped(float angle, int steps, double step) {
  for (; steps > 0; --steps) angle = static_cast<float>(double{angle} + step);
  for (; steps < 0; ++steps) angle = static_cast<float>(double{angle} - step);
  return angle;
}

TEST(Groups, ReducesTheAngleByTheSymmetryOfTheTool) {
  constexpr double kHalf = 3.141592653589793, kQuarter = 1.5707963267948966;
  struct Tool {
    int code;
    float dimension3;
    std::uint8_t byte;
    double step;
  };
  const Tool tools[] = {{1, 1, 0, 0},       {1, 0, 1, kHalf},      {1, 0, 2, kQuarter}, {1, 0, 3, 0},
                        {108, 1, 0, kHalf}, {108, 2, 0, kQuarter}, {108, 3, 0, 0},      {108, 2, 1, kHalf},
                        {108, 1, 2, kHalf}, {108, 0, 2, kQuarter}};
  const float inf = std::numeric_limits<float>::infinity(), nan = std::numeric_limits<float>::quiet_NaN();
  constexpr int kUpAndDown = 1 << 20;  // rounding lands above the range: the next step goes down
  struct Row {
    float angle;
    int half, quarter;  // steps to be taken
  };
  const Row rows[] = {{0, 0, 0},
                      {-0.0F, 0, 0},
                      {2.0F, 0, -1},
                      {3.0F, 0, -1},
                      {4.0F, -1, -2},
                      {-1.0F, 1, 1},
                      {10.0F, -3, -6},
                      {1000.0F, -318, -636},
                      {-1000.0F, 319, 637},
                      {3.1415925F, 0, -1},
                      {3.1415927F, -1, -2},
                      {1.5707964F, 0, -1},
                      {1.5707962F, 0, 0},
                      {-1e-10F, kUpAndDown, kUpAndDown},
                      {1e20F, 0, 0},
                      {inf, 0, 0},
                      {nan, 0, 0}};
  for (const Tool& tool : tools) {
    Bench bench;
    const WinIni ini(bench.setting(kSeparator));
    OldTool t = someTool(tool.code);
    t.dimension3 = tool.dimension3;
    bench.folder.write("A.spt", toolFile(t, {}, 180, tool.byte));
    for (const Row& row : rows) {
      ASSERT_EQ(AddGroupPatIntoTorvPart(1, 2, row.angle, "A"), bench.count() + 1);
      const int steps = tool.step == kHalf ? row.half : row.quarter;
      float want = row.angle;
      if (tool.step != 0) {
        want = steps != kUpAndDown ? stepped(row.angle, steps, tool.step)
                                   : stepped(stepped(row.angle, 1, tool.step), -1, tool.step);
      }
      bench.group(1, 2, want, bench.folder.path("A.spt"), {});
      bench.saved();
      auto p = std::make_unique<TorvPart>();
      ASSERT_EQ(LoadOldPart(bench.folder.path("built.prt").c_str(), p.get()), 0);
      EXPECT_EQ(std::bit_cast<std::uint32_t>(p->shapes.shapes.back().values[2]), std::bit_cast<std::uint32_t>(want))
          << "angle " << row.angle << " code " << tool.code << " " << tool.dimension3 << " byte " << int{tool.byte};
    }
    bench.check({180});
  }
}

TEST(ReducedAngle, EveryStepIsTakenInDoubleAndRoundedToSingle) {
  for (const std::uint32_t flags : {1U, 2U, 3U}) {
    const double step = (flags & 1U) != 0 ? 3.141592653589793 : 1.5707963267948966;
    for (float start = -400.0F; start < 400.0F; start += 0.37F) {
      float expected = start;
      while (static_cast<double>(expected) < 0) expected = static_cast<float>(static_cast<double>(expected) + step);
      while (static_cast<double>(expected) > step) expected = static_cast<float>(static_cast<double>(expected) - step);
      const float got = reducedAngle(start, flags);
      if (expected >= 0.0F) {
        EXPECT_EQ(got, expected) << start;
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
  // The single nearest to half a turn is above it.
  EXPECT_LT(reducedAngle(static_cast<float>(std::numbers::pi), 1), 0.001F);
}

TEST(ReducedAngle, AngleThatAStepDoesNotChangeAndNanAreKept) {
  const float infinity = std::numeric_limits<float>::infinity();
  for (const float angle : {1e10F, -1e10F, 3e38F, infinity, -infinity})
    for (const std::uint32_t flags : {1U, 2U}) EXPECT_EQ(reducedAngle(angle, flags), angle);
  EXPECT_TRUE(std::isnan(reducedAngle(std::numeric_limits<float>::quiet_NaN(), 1)));
}

TEST(Groups, JoinsFolderAndNameWithoutASeparator) {
  struct Row {
    const char* end;  // of the setting
    const char* file;
    const char* name;
    bool found;
  };
  const Row rows[] = {{kSeparator, "A.spt", "A", true},
                      {"\\", "A.spt", "A", true},
                      {"", "A.spt", "A", false},
                      {"/TOOLS", "TOOLSA.spt", "A", true},
                      {"/TOOLS", "TOOLS/A.spt", "A", false},
                      {kSeparator, "A.spt", "A.spt", false},
                      {kSeparator, "A.spt.spt", "A.spt", true},
                      {kSeparator, "TOOLS/A.spt", "TOOLS/A", true},
                      {kSeparator, ".spt", "", true},
                      {kSeparator, "%s%n.spt", "%s%n", true},
                      {kSeparator, "A", "A", false},
                      {kSeparator, "A.spt", "a", !kNamesDifferByCase},
                      {kSeparator, "A.SPT", "A", !kNamesDifferByCase},
                      {kSeparator, "A.spt", nullptr, false}};
  for (const Row& row : rows) {
    Bench bench;
    const WinIni ini(bench.setting(row.end));
    fs::create_directory(bench.folder.path("TOOLS"));
    bench.folder.write(row.file, toolFile(someTool(), {someShape(2, 5)}));
    const char* name = row.name != nullptr ? row.name : "(null)";
    EXPECT_EQ(AddGroupPatIntoTorvPart(0, 0, 0, row.name), row.found ? 2 : -1) << row.end << " and " << name;
    if (row.found) {
      bench.group(0, 0, 0, bench.folder.path() + row.end + row.name + ".spt", {someShape(2, 5)});
      bench.check({180});
    }
  }
}

TEST(Groups, AcceptsALoadedPathOf255CharactersAndAnyPathOf259) {
  Bench bench;
  const WinIni ini(bench.setting(kSeparator));
  for (std::size_t size = 254; size <= 261; ++size) {
    const std::string path = padded(bench.folder.path() + kSeparator, ".spt", size);
    const std::string file = path.substr(bench.folder.path().size() + 1), name = file.substr(0, file.size() - 4);
    const auto add = [&] { return AddGroupPatIntoTorvPart(0, 0, 0, name.c_str()); };
    if (size >= 260) {
      EXPECT_DEATH(add(), "") << size;
      continue;
    }
    EXPECT_EQ(add(), -1) << size;  // no such file
    bench.folder.write(file, Bytes().i16(110));
    EXPECT_EQ(add(), -1) << size;  // one that cannot be loaded
    bench.folder.write(file, toolFile(someTool(), {}));
    if (size >= 256) {
      EXPECT_DEATH(add(), "") << size;
    } else {
      EXPECT_EQ(add(), bench.count() + 1) << size;
      bench.group(0, 0, 0, path, {});
    }
  }
  bench.check({180});
}

TEST(Groups, AddsAMemberAndCountsItInAnyShape) {
  Bench bench;
  const WinIni ini(bench.setting(kSeparator));
  bench.folder.write("A.spt", toolFile(someTool(), {someShape(1, 1)}));
  for (std::int32_t index : {0, -1, std::numeric_limits<std::int32_t>::min()}) EXPECT_EQ(addMember(index), 0);
  EXPECT_DEATH(addMember(2), "");
  ASSERT_EQ(addMember(1), 1);  // its own head
  modelMember(bench, 1);
  EXPECT_EQ(bench.check({180})->patterns[0].items.size(), 1U);
  ASSERT_EQ(AddGroupPatIntoTorvPart(0, 0, 0, "A"), 3);
  bench.group(0, 0, 0, bench.folder.path("A.spt"), {someShape(1, 1)});
  std::uint16_t n = 3;
  for (std::int32_t index : {2, 2, 3, 1, 8, 2}) {
    EXPECT_EQ(addMember(index, ~std::uint64_t{0}), ++n);
    modelMember(bench, std::size_t(index));
  }
  EXPECT_EQ(addMember(0), 0);
  EXPECT_DEATH(addMember(11), "");
  EXPECT_DEATH(addMember(std::numeric_limits<std::int32_t>::max()), "");
  const auto p = bench.check();
  EXPECT_EQ(p->shapes.shapes[1].values[1], 4.0F);
  EXPECT_EQ(p->shapes.shapes[1].values[0], 3.0F);
}

TEST(Groups, CountOfMembersIsCutTo16Bits) {
  const Bench bench;
  for (int i = 0; i < 65534; ++i) Call{}();
  for (int want : {65535, 0, 1, 2}) EXPECT_EQ(addMember(1), want);
  EXPECT_EQ(Call{}(), 65539);
}

// ---- Both ways of naming a tool -----------------------------------------------------------------------

TEST(PartBuilder, FailedCallAddsNothingToAnyList) {
  Bench bench;
  const WinIni ini(bench.setting(kSeparator));
  bench.folder.write("good.spt", toolFile(someTool(), {someShape(1, 1)}));
  ASSERT_EQ(AddGroupPatIntoTorvPart(0, 0, 0, "good"), 2);
  ASSERT_EQ(Call{}("good"), 3);
  const Bytes before = bench.saved();
  const auto fails = [&](const Bytes& file) {
    bench.folder.write("bad.spt", file);
    return Call{}("bad") == -1 && AddGroupPatIntoTorvPart(0, 0, 0, "bad") == -1;
  };
  for (int version : {110, 180}) {
    const Bytes whole = toolFile(someTool(), {someShape(1, 9), someShape(7, 3), someShape(2, 5)}, version);
    for (std::size_t n = 0; n < whole.size(); ++n) ASSERT_TRUE(fails(whole.cut(n))) << version << " cut at " << n;
  }
  for (int version : {-1, 0, 1, 2, 5, 51, 53, 61, 62, 71, 80, 163, 181, 500}) {
    Bytes file = Bytes().i16(version).add(Bytes().zeros(2000));
    EXPECT_TRUE(fails(file)) << version;
  }
  fs::remove(bench.folder.path("bad.spt"));
  EXPECT_EQ(Call{}("bad"), -1);
  EXPECT_EQ(AddGroupPatIntoTorvPart(0, 0, 0, "bad"), -1);
  EXPECT_EQ(AddGroupPatIntoTorvPart(0, 0, 0, nullptr), -1);
  EXPECT_EQ(addMember(0), 0);
  EXPECT_TRUE(bench.saved() == before);
  EXPECT_EQ(Call{}(), 4);
}

TEST(PartBuilder, AnyOrderOfCallsKeepsShapesAndItemsSideBySide) {
  const std::vector<Shape> shapes = {someShape(1, 1), someShape(7, 2), someShape(5, 8)};
  for (unsigned seed = 1; seed <= 25; ++seed) {
    std::mt19937 random(seed);
    Bench bench;
    const WinIni ini(bench.setting(kSeparator));
    bench.folder.write("A.spt", toolFile(someTool(), shapes));
    for (int step = 0; step < 15; ++step) {
      const auto kind = random() % 5;
      const std::int32_t stations = static_cast<std::int32_t>(bench.part->toolStations.stations.size());
      if (kind == 0) {
        ASSERT_EQ(Call{}(), bench.count() + 1);
        Call{}.model(bench);
      } else if (kind == 1) {
        ASSERT_EQ(Call{}("a"), bench.count() + 1);
        bench.station(someTool(), Call{}.itemWord2);
        Call{}.model(bench, stations + 1);
      } else if (kind == 2) {
        ASSERT_EQ(Call{}(""), stations > 0 ? bench.count() + 1 : -1);
        if (stations > 0) Call{}.model(bench, 1);
      } else if (kind == 3) {
        const float angle = float(random() % 100) - 50.0F;
        ASSERT_EQ(AddGroupPatIntoTorvPart(float(step), 1, angle, "A"), bench.count() + 3);
        bench.group(float(step), 1, angle, bench.folder.path("A.spt"), shapes);
      } else {
        const std::size_t index = random() % (bench.part->shapes.shapes.size() + 1) + 1;
        ASSERT_EQ(addMember(static_cast<std::int32_t>(index)), bench.count() + 1);
        modelMember(bench, index);
      }
    }
    bench.check({62, 180});
  }
}

}  // namespace
