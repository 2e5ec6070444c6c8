// Sheet handles, the facts of a sheet file and the values by key, each compared with a second, plain implementation of
// its rules.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "OldTorvIO.h"
#include "OldTorvIO/sheet.h"
#include "tests/support/bytes.h"
#include "tests/support/comma_locale.h"
#include "tests/support/files.h"
#include "tests/support/sheet_keys.h"
#include "tests/support/stored_forms/versions.h"

namespace {

using namespace oldtorvio;
using testing_support::Bytes;
using testing_support::CommaLocale;
using testing_support::openFiles;
using testing_support::TempFolder;
using SheetPtr = std::unique_ptr<OldSheet>;

// ---- helpers ----------------------------------------------------------------------------------------

const std::vector<int>& kVersions = testing_support::inventoryVersions();

bool isKnown(int word) { return testing_support::contains(kVersions, word); }

#if defined(__GNUC__)
__attribute__((format(printf, 1, 2)))
#endif
std::string
print(const char* format, ...) {
  char text[1200];
  va_list all;
  va_start(all, format);
  std::vsnprintf(text, sizeof text, format, all);
  va_end(all);
  return text;
}

template <std::size_t N>
void put(char (&field)[N], const std::string& text) {
  std::memset(field, 0, N);
  std::memcpy(field, text.data(), std::min(N, text.size()));
}

template <std::size_t N>
std::string get(const char (&field)[N]) {
  return std::string(field, strnlen(field, N));
}

// Tool n is round and n wide.
std::string tool(int n) { return print("1 %2d.000  0.000  0.000  0.000,", n); }

void setStations(ToolStationList& list, int count) {
  list.stations.assign(static_cast<std::size_t>(count), {});
  list.tools.assign(static_cast<std::size_t>(count), {});
  for (int i = 0; i < count; ++i) {
    list.stations[static_cast<std::size_t>(i)].stationNumber = i + 1;
    list.stations[static_cast<std::size_t>(i)].toolCount = 1;
    list.tools[static_cast<std::size_t>(i)].shapeCode = 1;
    list.tools[static_cast<std::size_t>(i)].dimension1 = static_cast<float>(i + 1);
  }
}

// A sheet with one shape of its own (without it a file keeps neither slots nor items) and `stations` tools.
SheetPtr makeSheet(int stations = 6) {
  auto sheet = std::make_unique<OldSheet>();
  sheet->shapes.shapes.resize(1);
  setStations(sheet->machine.stationsA, stations);
  return sheet;
}

PatternItem item(int number) {
  PatternItem one;
  one.toolNumber = number;
  return one;
}

ProcessSlot slot(int number) {
  ProcessSlot one;
  one.toolUse = 1;
  one.toolActive = 1;
  one.firstToolNumber = static_cast<std::uint16_t>(number);
  return one;
}

ProfileRecord profile(std::int32_t code = 7, std::int32_t kind = 3, std::uint32_t first = 1, std::uint32_t second = 1) {
  ProfileRecord one;
  one.profileWords[1] = static_cast<std::uint32_t>(code);
  one.firstBlock.motionKind = kind;
  one.profileCondition1 = first;
  one.profileCondition2 = second;
  return one;
}

TorvPart& addPart(OldSheet& sheet, const std::vector<std::vector<int>>& patterns, const std::vector<int>& slots = {}) {
  sheet.partList.parts.emplace_back();
  TorvPart& part = sheet.partList.parts.back();
  part.shapes.shapes.resize(1);
  for (const auto& numbers : patterns) {
    part.patterns.emplace_back();
    for (int n : numbers) part.patterns.back().items.push_back(item(n));
  }
  for (int n : slots) part.processSlots[part.processSlotCount++] = slot(n);
  return part;
}

void addItems(OldSheet& sheet, const std::vector<int>& counted, int skipped = 28) {
  for (int i = 0; i < skipped; ++i) sheet.patternItems.push_back(item(0));
  for (int n : counted) sheet.patternItems.push_back(item(n));
}

void addSlots(OldSheet& sheet, const std::vector<int>& numbers) {
  for (int n : numbers) sheet.processSlots[sheet.processSlotCount++] = slot(n);
}

// Station n (1-based) is the special one of a machine of kind 4.
void markSpecial(OldSheet& sheet, std::size_t n, std::uint8_t byte = 2) {
  sheet.machine.machineKind = 4;
  sheet.machine.stationsA.stations.at(n - 1).byteA = byte;
}

// All outputs of the query, filled with marks that no result contains.
struct Info {
  std::array<std::array<char, 300>, 9> texts;
  std::array<float, 3> sizes = {-1, -2, -3};
  double late = -4;
  std::string parts = std::string(100000, '#'), tools = std::string(100000, '#');
  std::int32_t partsLength = -5, toolsLength = -6;
  Info() {
    for (auto& one : texts) one.fill('#');
  }
  bool operator==(const Info&) const = default;

  std::int64_t ask(const std::string& path, std::int32_t partsSize = 100000, std::int32_t toolsSize = 100000) {
    auto& t = texts;
    return GetOldSheetInfo(path.c_str(), t[0].data(), t[1].data(), t[2].data(), t[3].data(), t[4].data(), t[5].data(),
                           t[6].data(), t[7].data(), t[8].data(), &sizes[0], &sizes[1], &sizes[2], &late, parts.data(),
                           partsSize, &partsLength, tools.data(), toolsSize, &toolsLength);
  }
};

// A file that a reader takes as it was meant: below version 152 a save stores words at the end of the machine that no
// reader expects there, which would shift all after them.
std::string save(const TempFolder& folder, OldSheet& sheet, int version = 180) {
  const std::string path = folder.path("sheet.sht");
  EXPECT_EQ(SaveOldSheet(path.c_str(), &sheet, static_cast<std::uint16_t>(version)), 0) << version;
  if (version >= 152) return path;
  std::size_t after = 4;  // the option word; then what each version added after the machine
  const std::pair<int, std::size_t> added[] = {{60, 8},        {90, 12},   {102, 4}, {111, 5 * 256 + 4},
                                               {112, 4 * 256}, {130, 256}, {140, 8}};
  for (const auto& [since, size] : added) after += version >= since ? size : 0;
  const Bytes whole = TempFolder::read(path);
  const std::size_t start = whole.size() - after, extra = version < 151 ? 9 * 4 + 1 : 1;
  return folder.write("sheet.sht", whole.cut(start - extra).add(Bytes::of(whole.span().subspan(start))));
}

// The tools string of the sheet as a file of the version.
std::string toolsOf(OldSheet& sheet, int version = 180) {
  const TempFolder folder;
  Info info;
  EXPECT_EQ(info.ask(save(folder, sheet, version)), 0);
  EXPECT_EQ(info.toolsLength, static_cast<std::int32_t>(std::strlen(info.tools.c_str())));
  return info.tools.c_str();
}

// ---- handles ----------------------------------------------------------------------------------------

TEST(SheetHandles, NewSheetHasTheDefaultsAndIsFreedByEitherFunction) {
  for (auto* release : {&DeleteSheetInfo, &FreeSheetHandle}) {
    release(nullptr);
    OldSheet* sheet = CreateSheetInfo();
    ASSERT_NE(sheet, nullptr);
    EXPECT_STREQ(sheet->sheetName, "NEW SHEET");
    EXPECT_EQ(sheet->width, 60.0F);
    EXPECT_EQ(sheet->height, 45.0F);
    EXPECT_EQ(sheet->thickness, 0.048F);
    EXPECT_EQ(sheet->textWidth, 256);
    EXPECT_EQ(sheet->version, 0);
    EXPECT_TRUE(sheet->partList.parts.empty());
    addPart(*sheet, {{1, 2}, {3}});
    release(sheet);
  }
}

TEST(SheetHandles, NewSheetIsSavedAndLoadedInEachKnownVersion) {
  const TempFolder folder;
  const std::string path = folder.path("new.sht");
  for (int version : kVersions) {
    OldSheet* fresh = CreateSheetInfo();
    ASSERT_EQ(SaveOldSheet(path.c_str(), fresh, static_cast<std::uint16_t>(version)), 0) << version;
    DeleteSheetInfo(fresh);
    OldSheet* handle = nullptr;
    ASSERT_EQ(GetOldSheetHandle(path.c_str(), &handle), 0) << version;
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(handle->version, version);
    EXPECT_EQ(handle->width, 60.0F);
    EXPECT_EQ(handle->height, 45.0F);
    EXPECT_EQ(handle->thickness, 0.048F);
    FreeSheetHandle(handle);
  }
}

TEST(SheetHandles, HandleOutlivesItsFileAndSharesNothingWithAnother) {
  const TempFolder folder;
  auto sheet = makeSheet();
  sheet->width = 12.5F;
  put(addPart(*sheet, {{1}}).partName, "FLANGE");
  const std::string path = save(folder, *sheet, 162);
  OldSheet* one = nullptr;
  OldSheet* two = nullptr;
  ASSERT_EQ(GetOldSheetHandle(path.c_str(), &one), 0);
  ASSERT_EQ(GetOldSheetHandle(path.c_str(), &two), 0);
  ASSERT_NE(one, two);
  std::filesystem::remove(path);
  one->width = 1;
  one->partList.parts.clear();
  FreeSheetHandle(one);
  EXPECT_EQ(two->width, 12.5F);
  ASSERT_EQ(two->partList.parts.size(), 1U);
  EXPECT_STREQ(two->partList.parts[0].partName, "FLANGE");
  char count[16] = {};
  EXPECT_EQ(GetOldSheetInfoByName(two, "part_count", count), 0);
  EXPECT_STREQ(count, "1");
  DeleteSheetInfo(two);
}

// A readable body follows each version word, so that only the word decides.
TEST(SheetHandles, OnlyListedVersionsFrom54To180AreAccepted) {
  const TempFolder folder;
  auto sheet = makeSheet();
  save(folder, *sheet);
  std::set<int> words = {1001, 5000, 32767, 32768, 32768 + 180, 65535 - 180, 65535};
  for (int word = 0; word <= 1000; ++word) words.insert(word);
  auto* const mark = reinterpret_cast<OldSheet*>(std::uintptr_t{16});
  for (int word : words) {
    const std::string path = folder.overwrite("sheet.sht", Bytes().u16(static_cast<std::uint16_t>(word)));
    OldSheet* handle = mark;
    const std::int64_t status = GetOldSheetHandle(path.c_str(), &handle);
    Info info;
    const std::int64_t infoStatus = info.ask(path);
    if (isKnown(word)) {
      EXPECT_TRUE(status == 0 || status == 1) << word;
      EXPECT_EQ(infoStatus, 0) << word;
    } else {
      EXPECT_EQ(status, -1) << word;
      EXPECT_EQ(infoStatus, -1) << word;
      EXPECT_EQ(info, Info()) << word;
    }
    EXPECT_EQ(handle == mark, status != 0) << word;
    if (status == 0) FreeSheetHandle(handle);
  }
  // Only the loader reads a file of version 500.
  const std::string path = folder.overwrite("sheet.sht", Bytes().u16(500));
  EXPECT_EQ(LoadOldSheet(path.c_str(), sheet.get()), 0);
}

TEST(SheetHandles, PathsVersionsAndPointersAreCheckedInThatOrderAndFilesAreClosed) {
  const TempFolder folder;
  auto sheet = makeSheet();
  const std::string good = save(folder, *sheet), missing = folder.path("missing.sht");
  const std::string empty = folder.write("empty.sht", Bytes()), one = folder.write("one.sht", Bytes().u8(180));
  const std::string word = folder.write("word.sht", Bytes().u16(180)), odd = folder.write("odd.sht", Bytes().u16(53));
  const std::string old = folder.write("old.sht", Bytes().u16(52));
  OldSheet* out = nullptr;
  const std::size_t before = openFiles();
  const struct {
    const char* path;
    OldSheet** out;
    std::int64_t status;
  } cases[] = {{missing.c_str(), &out, -2}, {missing.c_str(), nullptr, -2}, {good.c_str(), nullptr, -2},
               {odd.c_str(), nullptr, -2},  {empty.c_str(), nullptr, -2},   {nullptr, &out, -2},
               {empty.c_str(), &out, 1},    {one.c_str(), &out, 1},         {word.c_str(), &out, 1},
               {odd.c_str(), &out, -1},     {old.c_str(), &out, -1}};
  for (const auto& c : cases) {
    EXPECT_EQ(GetOldSheetHandle(c.path, c.out), c.status) << (c.path == nullptr ? "null" : c.path);
    EXPECT_EQ(out, nullptr);
  }
  const std::pair<std::string, int> infos[] = {{missing, -2}, {empty, 1}, {one, 1}, {odd, -1}, {old, -1}, {word, 0}};
  for (const auto& [path, status] : infos) {
    Info info;
    EXPECT_EQ(info.ask(path), status) << path;
    EXPECT_EQ(info, Info()) << path;
  }
  EXPECT_EQ(GetOldSheetHandle(good.c_str(), &out), 0);
  EXPECT_EQ(openFiles(), before);
  FreeSheetHandle(out);
}

// What the loader makes of a cut file, the handle and the query make of it too; the query hides the failure.
TEST(SheetHandles, CutBodyReturnsTheStatusOfTheLoad) {
  const TempFolder folder;
  for (int version : {54, 130, 140, 154, 180}) {
    auto sheet = makeSheet();
    addPart(*sheet, {{1}});
    const Bytes whole = TempFolder::read(save(folder, *sheet, version));
    int good = 0;
    for (std::size_t cut = 2; cut <= whole.size(); cut += cut + 1200 < whole.size()  ? 499
                                                          : cut + 330 < whole.size() ? 61
                                                                                     : 1) {
      const std::string path = folder.write("cut.sht", whole.cut(cut));
      auto direct = std::make_unique<OldSheet>();
      const std::int64_t status = LoadOldSheet(path.c_str(), direct.get());
      ASSERT_TRUE(status == 0 || status == 1);
      OldSheet* handle = nullptr;
      EXPECT_EQ(GetOldSheetHandle(path.c_str(), &handle), status) << version << " cut at " << cut;
      EXPECT_EQ(handle != nullptr, status == 0);
      FreeSheetHandle(handle);
      Info info;
      EXPECT_EQ(info.ask(path), 0);
      EXPECT_EQ(info != Info(), status == 0) << version << " cut at " << cut;
      good += status == 0 ? 1 : 0;
    }
    // A cut inside the fifth material text, or inside the late value, is not seen as a fault.
    if (version < 152) {
      EXPECT_EQ(good, 1 + (version >= 130 ? 256 : 0) + (version >= 140 ? 8 : 0)) << version;
    }
  }
}

// ---- facts of a sheet file ---------------------------------------------------------------------------

void fillTexts(OldSheet& sheet, char letter) {
  const std::string full(256, letter);
  sheet.paramTable.version = 180;
  sheet.paramTable.nameLength = 256;
  sheet.machine.textWidth = 256;
  put(sheet.paramTable.name, letter == 0 ? "" : full);
  for (char(*field)[256] : {&sheet.materialGroup, &sheet.materialType, &sheet.materialText3, &sheet.materialText4,
                            &sheet.materialText5, &sheet.sheetLabel}) {
    put(*field, letter == 0 ? "" : full);
  }
  put(sheet.machine.path, letter == 0 ? "" : full);
}

TEST(SheetInfo, TextsAndNumbersOfEachVersionAreCopiedOut) {
  const TempFolder folder;
  for (int version : kVersions) {
    auto sheet = makeSheet();
    fillTexts(*sheet, 0);
    put(sheet->paramTable.name, "STEEL");
    put(sheet->materialGroup, "group %s");
    put(sheet->materialType, "type");
    put(sheet->materialText3, "three");
    put(sheet->materialText4, "four");
    put(sheet->materialText5, "five");
    put(sheet->machine.path, "C:\\m\\press.mac");
    put(sheet->sheetLabel, "LABEL");
    sheet->width = 2500.25F;
    sheet->height = -0.5F;
    sheet->thickness = 0.125F;
    sheet->lateValue = 1.0 / 3;
    Info info;
    ASSERT_EQ(info.ask(save(folder, *sheet, version)), 0);
    const bool group = version >= 112;
    const std::string expected[9] = {"STEEL.mat",
                                     group ? "group %s" : "",
                                     group ? "type" : "",
                                     group ? "three" : "",
                                     group ? "four" : "",
                                     version >= 130 ? "five" : "",
                                     version >= 61 ? "C:\\m\\press.mac" : "",
                                     "LABEL",
                                     "STEEL.mat"};
    for (std::size_t i = 0; i < 9; ++i) {
      EXPECT_STREQ(info.texts[i].data(), expected[i].c_str()) << version << " text " << i;
      EXPECT_EQ(info.texts[i][expected[i].size() + 1], '#') << "after the NUL of text " << i;
    }
    EXPECT_EQ(info.sizes, (std::array<float, 3>{2500.25F, -0.5F, 0.125F})) << version;
    EXPECT_EQ(info.late, version >= 140 ? 1.0 / 3 : 0.0) << version;
    EXPECT_STREQ(info.parts.c_str(), ",");
    EXPECT_STREQ(info.tools.c_str(), ",");
    EXPECT_EQ(info.partsLength, 1);
    EXPECT_EQ(info.toolsLength, 1);
  }
}

TEST(SheetInfo, TextsWithoutANulAreCopiedUpToTheirWidth) {
  const TempFolder folder;
  for (char letter : {'x', '\0'}) {
    auto sheet = makeSheet();
    fillTexts(*sheet, letter);
    put(addPart(*sheet, {}).partName, std::string(letter == 0 ? 0 : 256, letter));
    Info info;
    ASSERT_EQ(info.ask(save(folder, *sheet)), 0);
    const std::string text(letter == 0 ? 0 : 256, letter);
    for (std::size_t i = 0; i < 9; ++i) {
      EXPECT_EQ(std::string(info.texts[i].data()), i % 8 == 0 ? text + ".mat" : text) << i;
    }
    EXPECT_EQ(std::string(info.parts.c_str()), "," + text + ",");
  }
}

TEST(SheetInfo, StringsAreCopiedOnlyIfTheyFitAndTheirLengthAlwaysReturned) {
  const TempFolder folder;
  auto sheet = makeSheet();
  put(addPart(*sheet, {{2}}).partName, "A");
  put(addPart(*sheet, {{3}}).partName, "B");
  const std::string path = save(folder, *sheet), tools = "," + tool(2) + tool(3);
  const auto length = static_cast<std::int32_t>(tools.size());
  for (std::int32_t size : {-2147483647 - 1, -1, 0, 1, 4, 5, 6, 7, length - 1, length, length + 1, 50000}) {
    Info info;
    const Info untouched;
    ASSERT_EQ(info.ask(path, size, 100000), 0);
    EXPECT_EQ(info.partsLength, 5);
    EXPECT_EQ(info.parts.substr(0, 7), 5 < size ? std::string(",A,B,\0#", 7) : "#######") << size;
    EXPECT_STREQ(info.tools.c_str(), tools.c_str());
    Info other;
    ASSERT_EQ(other.ask(path, 100000, size), 0);
    EXPECT_EQ(other.toolsLength, length);
    EXPECT_EQ(other.tools == untouched.tools, !(length < size)) << size;
    if (length < size) {
      EXPECT_STREQ(other.tools.c_str(), tools.c_str());
    }
    EXPECT_STREQ(other.parts.c_str(), ",A,B,");
  }
}

// A nest in a few words. P: a part with a pattern, p: a further pattern, i: an item, s: a slot of the part, I and S: an
// item and a slot of the sheet, F and G: a counting profile of the pattern and of the sheet, *: a special station,
// n and m: its station has toolCount 0 and -1, z: its tool has no code, =: its tool is that of station 1, k: the kind
// of machine, b: stations in the second list, ten larger, w: the word that chooses it, N: no shape in the sheet.
SheetPtr makeNest(const std::string& words) {
  SheetPtr sheet = makeSheet();
  addItems(*sheet, {});
  std::istringstream from(words);
  for (std::string word; from >> word;) {
    const int n = word.size() > 1 ? std::stoi(word.substr(1)) : 0;
    const auto i = static_cast<std::size_t>(n) - 1;
    ToolStationList& list = sheet->machine.stationsA;
    TorvPart* const part = sheet->partList.parts.empty() ? nullptr : &sheet->partList.parts.back();
    switch (word[0]) {
      case 'P':
        addPart(*sheet, {{}});
        break;
      case 'p':
        part->patterns.emplace_back();
        break;
      case 'i':
        part->patterns.back().items.push_back(item(n));
        break;
      case 's':
        part->processSlots[part->processSlotCount++] = slot(n);
        break;
      case 'I':
        addItems(*sheet, {n}, 0);
        break;
      case 'S':
        addSlots(*sheet, {n});
        break;
      case 'F':
        part->patterns.back().profiles = {profile(8), profile(17)};
        break;
      case 'G':
        sheet->profiles = {profile(8), profile()};
        break;
      case '*':
        markSpecial(*sheet, i + 1, 0xFE);
        break;
      case 'n':
        list.stations[i].toolCount = 0;
        break;
      case 'm':
        list.stations[i].toolCount = -1;
        break;
      case 'z':
        list.tools[i].shapeCode = 0;
        break;
      case '=':
        list.tools[i].dimension1 = 1.0004F;
        break;
      case 'k':
        sheet->machine.machineKind = n;
        break;
      case 'w':
        sheet->machine.stationWord = 0x80000000U;
        break;
      case 'N':
        sheet->shapes.shapes.clear();
        break;
      case 'b':
        setStations(sheet->machine.stationsB, n);
        for (OldTool& one : sheet->machine.stationsB.tools) one.dimension1 += 10;
        break;
      default:
        ADD_FAILURE() << word;
    }
  }
  return sheet;
}

TEST(SheetInfo, ToolsOfTheNestAreCollectedByTheRules) {
  const struct {
    const char* nest;
    std::vector<int> used;
  } cases[] = {
      {"", {}},
      {"P i5 i1 p i3 i5 i1", {5, 1, 3}},             // in the order of first use
      {"P i0 i-1 i8 i6 i70000 i-2147483648", {6}},   // numbers outside
      {"P i4 s6 s3 p i3 P i2 s1", {4, 3, 6, 2, 1}},  // a part's patterns before its slots
      {"S1 S2 I3 I4 P i5 s6", {5, 6, 3, 4, 1, 2}},   // parts, items, slots of the sheet
      {"S32768 S65535 S0 S40000 S32767 S5", {5}},    // slot numbers are signed
      {"n1 n2 m3 P i2 s1 s2 s3 S1 S4", {2, 3, 4}},   // a slot needs a tool, an item does not
      {"I1 S2 P i3 s4 N", {3, 4}},                   // a sheet without shapes stores neither
      {"*3 P i5", {5}},                              // a special station without a profile
      {"*3 G P i5 S4", {5, 4, 3}},                   // by the sheet's profile, at the end
      {"*3 P i5 p F P S4", {5, 4, 3}},               // by that of a pattern
      {"*3 G P i3 i1", {3, 1}},                      // noted before, it keeps its place
      {"*6 *2 G P i2 i1", {2, 1}},                   // the first one ends the search
      {"*3 n3 G", {3}},                              // it needs no tool
      {"*3 k5 G", {}},                               // another kind of machine
      {"b2 w P i2 i1", {12, 11}},                    // the second list
      {"b1 P i2 i1", {2, 1}},                        // not without its word
      {"w P i2 i1", {2, 1}},                         // not when it is empty
      {"*3 b3 w G P i1", {11}},                      // a special station of the other list
      {"z2 P i1 i2 i3", {1, 3}},                     // no code, no text
      {"=2 P i1 i2 i3", {1, 3}},                     // equal texts side by side
      {"=3 P i1 i2 i3", {1, 2, 1}},                  // and with another between them
      {"=3 z2 P i1 i2 i3", {1}},                     // a tool without text does not part them
  };
  for (const auto& one : cases) {
    std::string expected = ",";
    for (int n : one.used) expected += tool(n);
    EXPECT_EQ(toolsOf(*makeNest(one.nest)), expected) << one.nest;
  }
}

TEST(SheetInfo, First28ItemsOfTheSheetAreIgnored) {
  for (int count : {1, 27, 28}) {
    auto sheet = makeSheet();
    sheet->patternItems.assign(static_cast<std::size_t>(count), item(2));
    EXPECT_EQ(toolsOf(*sheet), ",") << count;
    addItems(*sheet, {3, 2, 3}, 28 - count);
    EXPECT_EQ(toolsOf(*sheet), "," + tool(3) + tool(2)) << count;
  }
}

TEST(SheetInfo, SlotNamesAToolByItsUseItsActivityAndItsChoice) {
  for (int use : {0, 1, 2, 257, 65535}) {
    for (int active : {0, 1, 128, 255}) {
      for (int choice : {0, 1, 255}) {
        for (bool inPart : {true, false}) {
          auto sheet = makeSheet();
          addPart(*sheet, {}, {3});
          addSlots(*sheet, {3});
          ProcessSlot& one = inPart ? sheet->partList.parts[0].processSlots[0] : sheet->processSlots[0];
          one.toolUse = static_cast<std::uint16_t>(use);
          one.toolActive = static_cast<std::uint8_t>(active);
          one.toolChoice = static_cast<std::uint8_t>(choice);
          one.secondToolNumber = 2;
          const std::string own = use != 1 || active == 0 ? "" : tool(choice == 0 ? 3 : 2);
          const std::string both = own == tool(3) || own.empty() ? tool(3) : inPart ? own + tool(3) : tool(3) + own;
          EXPECT_EQ(toolsOf(*sheet), "," + both) << use << " " << active << " " << choice;
        }
      }
    }
  }
}

TEST(SheetInfo, SlotCountOfAPartIsUnsignedAndThatOfTheSheetSigned) {
  for (int count : {0, 1, 2, 126, 127, 128, 200, 249, 250}) {
    auto sheet = makeSheet();
    TorvPart& part = addPart(*sheet, {});
    part.processSlotCount = static_cast<std::uint8_t>(count);
    sheet->processSlotCount = static_cast<std::int8_t>(count);
    if (count > 0) part.processSlots[count - 1] = slot(2);
    if (count > 0) sheet->processSlots[count - 1] = slot(3);
    if (count < 250) part.processSlots[count] = sheet->processSlots[count] = slot(4);
    EXPECT_EQ(toolsOf(*sheet), "," + (count > 0 ? tool(2) : "") + (count > 0 && count < 128 ? tool(3) : "")) << count;
  }
}

TEST(SheetInfo, OnlyTheSecondBitMakesAStationSpecialAndOnlyTheFirstTwoListsAreUsed) {
  for (int byte = 0; byte < 256; ++byte) {
    SheetPtr sheet = makeNest("G P i5");
    markSpecial(*sheet, 2, static_cast<std::uint8_t>(byte));
    setStations(sheet->machine.stationsC, 1);
    EXPECT_EQ(toolsOf(*sheet), "," + tool(5) + ((byte / 2) % 2 == 1 ? tool(2) : "")) << byte;
  }
  SheetPtr sheet = makeNest("*3 P i5");
  sheet->partList.parts[0].profiles = {profile()};  // a part's own profiles are ignored
  EXPECT_EQ(toolsOf(*sheet), "," + tool(5));
}

TEST(SheetInfo, ProfileIsUsedByItsCodeItsMotionKindAndBothConditions) {
  const std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
  const struct {
    ProfileRecord record;
    bool counts;
  } cases[] = {{profile(7), true},
               {profile(17), true},
               {profile(1007), true},
               {profile(2147483647), true},
               {profile(0), false},
               {profile(6), false},
               {profile(8), false},
               {profile(70), false},
               {profile(-3), false},
               {profile(-7), false},
               {profile(-9), false},
               {profile(lowest), false},
               {profile(lowest + 1), false},
               {profile(7, 5), false},
               {profile(7, 0), true},
               {profile(7, -5), true},
               {profile(7, 3, 0, 1), false},
               {profile(7, 3, 1, 0), false},
               {profile(7, 3, 0x80000000U, 0x80000000U), true},
               {ProfileRecord(), false}};
  for (const auto& one : cases) {
    for (int place = 0; place < 2; ++place) {
      auto sheet = makeSheet();
      markSpecial(*sheet, 2);
      TorvPart& part = addPart(*sheet, {{5}});
      (place == 0 ? sheet->profiles : part.patterns[0].profiles) = {ProfileRecord(), one.record, ProfileRecord()};
      EXPECT_EQ(toolsOf(*sheet), "," + tool(5) + (one.counts ? tool(2) : ""))
          << static_cast<std::int32_t>(one.record.profileWords[1]) << " kind " << one.record.firstBlock.motionKind;
    }
  }
}

// Below 90 a slot names no tool, below 80 a profile has no code.
TEST(SheetInfo, EachVersionReportsTheToolsThatItsFileStores) {
  for (int version : kVersions) {
    auto sheet = makeSheet();
    markSpecial(*sheet, 6);
    sheet->profiles = {profile()};
    addPart(*sheet, {{3}}, {5});
    addItems(*sheet, {1});
    addSlots(*sheet, {4});
    const bool slots = version >= 90;
    EXPECT_EQ(toolsOf(*sheet, version), "," + tool(3) + (slots ? tool(5) : "") + tool(1) + (slots ? tool(4) : "") +
                                            (version >= 80 ? tool(6) : ""))
        << version;
  }
}

TEST(SheetInfo, EachToolIsPrintedByItsCode) {
  const float inf = std::numeric_limits<float>::infinity(), nan = std::numeric_limits<float>::quiet_NaN();
  const struct {
    std::int32_t code;
    const char* path;
    float dimensions[3], orientation;
    const char* text;
  } cases[] = {
      {3, "", {1.5F, 2.25F, -0.125F}, 90, "3  1.500  2.250 -0.125 90.000,"},
      {-33, "", {123456.5F, 0, -0.0F}, -12.0625F, "-33 123456.500  0.000 -0.000 -12.062,"},
      {2147483647, "", {0.0005F, 0.0004F, 999.9996F}, 0, "2147483647  0.001  0.000 1000.000  0.000,"},
      {1, "", {inf, -inf, nan}, -nan, "1    inf   -inf    nan   -nan,"},
      {108, "C:\\tools\\star.spt", {1, 2, 3}, 45, "108 star 45.000,"},
      {108, "/tools/deep/star.one.spt", {}, 0.5F, "108 star.one  0.500,"},
      {108, "C:/mixed\\both/last.SPT", {}, 0, "108 last  0.000,"},
      {108, "D:loose.spt", {}, 0, "108 loose  0.000,"},
      {108, "plain", {}, 0, "108 plain  0.000,"},
      {108, "C:\\v1.2\\noext", {}, 0, "108 noext  0.000,"},
      {108, "C:\\folder\\", {}, 0, "108   0.000,"},
      {108, "C:\\folder\\.spt", {}, 0, "108   0.000,"},
      {108, "two words %d.spt", {}, 0, "108 two words %d  0.000,"},
      {108, "x\\dot..spt", {}, 0, "108 dot.  0.000,"},
      {108, "", {}, -7.25F, "108  -7.250,"},
      {0, "C:\\tools\\star.spt", {1, 2, 3}, 45, ""},
  };
  for (const auto& one : cases) {
    auto sheet = makeSheet();
    OldTool& t = sheet->machine.stationsA.tools[1];
    t.shapeCode = one.code;
    put(t.specialToolPath, one.path);
    t.dimension1 = one.dimensions[0];
    t.dimension2 = one.dimensions[1];
    t.dimension3 = one.dimensions[2];
    t.orientation = one.orientation;
    addPart(*sheet, {{2}});
    EXPECT_EQ(toolsOf(*sheet), std::string(",") + one.text) << one.path;
  }
}

TEST(SheetInfo, SpecialToolsOfOneNameInTwoFoldersAreOneText) {
  auto sheet = makeSheet();
  auto& tools = sheet->machine.stationsA.tools;
  for (std::size_t i : {0U, 1U, 2U, 4U}) tools[i].shapeCode = 108;
  put(tools[0].specialToolPath, "a\\star.spt");
  put(tools[1].specialToolPath, "b\\star.old");
  put(tools[2].specialToolPath, "b\\Star.spt");
  put(tools[4].specialToolPath, "b\\star.spt");
  addPart(*sheet, {{1, 2, 3, 5}});
  EXPECT_EQ(toolsOf(*sheet), ",108 star  0.000,108 Star  0.000,108 star  0.000,");
}

TEST(SheetInfo, UsedToolNumberOnePastTheLastStationEndsTheProcess) {
  const std::pair<const char*, std::function<void(OldSheet&)>> cases[] = {
      {"item",
       [](OldSheet& s) {
         addPart(s, {{1}, {7}});
       }},
      {"part slot", [](OldSheet& s) { addPart(s, {}, {7}); }},
      {"sheet item", [](OldSheet& s) { addItems(s, {7}); }},
      {"sheet slot", [](OldSheet& s) { addSlots(s, {7}); }},
      {"no stations", [](OldSheet& s) { setStations(s.machine.stationsA, 0), addPart(s, {{1}}); }},
      {"shorter second list", [](OldSheet& s) {
         setStations(s.machine.stationsB, 2);
         s.machine.stationWord = 1;
         addPart(s, {{3}});
       }}};
  for (const auto& [what, fill] : cases) {
    auto sheet = makeSheet();
    fill(*sheet);
    const TempFolder folder;
    const std::string path = save(folder, *sheet);
    EXPECT_DEATH((void)Info().ask(path), "") << what;
  }
}

TEST(SheetInfo, IgnoredToolNumberOnePastTheLastStationIsHarmless) {
  auto sheet = makeSheet();
  sheet->patternItems.assign(28, item(7));
  addSlots(*sheet, {7, 7, 2, 1, 8, 9});
  sheet->processSlots[0].toolUse = 0;
  sheet->processSlots[1].toolActive = 0;
  sheet->processSlots[2].secondToolNumber = 7;
  sheet->processSlots[3].firstToolNumber = 7;
  sheet->processSlots[3].secondToolNumber = 1;
  sheet->processSlots[3].toolChoice = 1;
  sheet->processSlots[6] = slot(7);
  addPart(*sheet, {{8}}, {6, 7}).processSlotCount = 1;
  EXPECT_EQ(toolsOf(*sheet), "," + tool(6) + tool(2) + tool(1));
  setStations(sheet->machine.stationsA, 0);
  sheet->machine.machineKind = 4;
  sheet->profiles = {profile()};
  addPart(*sheet, {{0, -1, 2, 3}});
  sheet->processSlotCount = 0;
  sheet->partList.parts[0].processSlotCount = 0;
  EXPECT_EQ(toolsOf(*sheet), ",");
}

// ---- the tool list, implemented a second time ------------------------------------------------------------------

struct ToolList {
  std::string text = ",";
  bool second = false, special = false, dropped = false, slots = false, items = false;
};

std::string baseName(std::string path) {
  if (path.size() >= 2 && path[1] == ':' && std::isalpha(static_cast<unsigned char>(path[0]))) path.erase(0, 2);
  path.erase(0, path.find_last_of("\\/") + 1);
  return path.substr(0, path.rfind('.'));
}

bool anyCounts(const ProfileList& list) {
  for (const ProfileRecord& one : list) {
    if (static_cast<std::int32_t>(one.profileWords[1]) % 10 == 7 && one.firstBlock.motionKind != 5 &&
        one.profileCondition1 != 0 && one.profileCondition2 != 0) {
      return true;
    }
  }
  return false;
}

ToolList expectedTools(const OldSheet& sheet) {
  ToolList list;
  const OldMachine& machine = sheet.machine;
  list.second = machine.stationWord != 0 && !machine.stationsB.stations.empty();
  const ToolStationList& stations = list.second ? machine.stationsB : machine.stationsA;
  const int size = static_cast<int>(stations.stations.size());
  std::vector<int> used;
  const auto note = [&](int n) {
    if (n < 1 || n > size + 1 || std::find(used.begin(), used.end(), n) != used.end()) return false;
    used.push_back(n);
    return true;
  };
  const auto tryslot = [&](const ProcessSlot& one) {
    if (one.toolUse != 1 || one.toolActive == 0) return;
    const int n = static_cast<std::int16_t>(one.toolChoice != 0 ? one.secondToolNumber : one.firstToolNumber);
    if (n < 1 || n > size + 1 || stations.stations.at(static_cast<std::size_t>(n - 1)).toolCount == 0) return;
    if (note(n)) list.slots = true;
  };
  bool counts = false;
  for (const TorvPart& part : sheet.partList.parts) {
    for (const Pattern& pattern : part.patterns) {
      for (const PatternItem& one : pattern.items) (void)note(one.toolNumber);
      counts = counts || anyCounts(pattern.profiles);
    }
    for (int i = 0; i < std::min<int>(part.processSlotCount, 250); ++i) tryslot(part.processSlots[i]);
  }
  for (std::size_t i = 28; i < sheet.patternItems.size(); ++i) {
    if (note(sheet.patternItems[i].toolNumber)) list.items = true;
  }
  for (int i = 0; i < sheet.processSlotCount; ++i) tryslot(sheet.processSlots[i]);
  counts = counts || anyCounts(sheet.profiles);
  if (machine.machineKind == 4) {
    for (int i = 0; i < size; ++i) {
      if ((stations.stations[static_cast<std::size_t>(i)].byteA & 2U) == 0) continue;
      if (counts) list.special = note(i + 1);
      break;
    }
  }
  std::string last;
  for (int n : used) {
    const OldTool& t = stations.tools.at(static_cast<std::size_t>(n - 1));
    if (t.shapeCode == 0) continue;
    std::string text;
    if (t.shapeCode == 108) {
      text = print("108 %s %6.3f", baseName(get(t.specialToolPath)).c_str(), static_cast<double>(t.orientation));
    } else {
      text = print("%d %6.3f %6.3f %6.3f %6.3f", t.shapeCode, static_cast<double>(t.dimension1),
                   static_cast<double>(t.dimension2), static_cast<double>(t.dimension3),
                   static_cast<double>(t.orientation));
    }
    if (text == last) {
      list.dropped = true;
    } else {
      list.text += text + ",";
    }
    last = text;
  }
  return list;
}

class Dice {
 public:
  explicit Dice(unsigned seed) : engine_(seed) {}
  int upTo(int last) { return static_cast<int>(engine_() % (static_cast<unsigned>(last) + 1U)); }
  template <class T>
  T of(std::initializer_list<T> all) {
    return *(all.begin() + upTo(static_cast<int>(all.size()) - 1));
  }
  // A tool number for `size` stations, never the fatal one.
  int number(int size) {
    const int n = upTo(20) == 0 ? of({-40000, -1, 70000, 32000}) : upTo(size + 4);
    return n == size + 1 ? 0 : n;
  }
  void stations(ToolStationList& list, int size) {
    setStations(list, size);
    for (auto& one : list.stations) {
      one.toolCount = of({0, 1, 1, 1, 2, -1});
      one.byteA = of<std::uint8_t>({0, 0, 0, 1, 2, 0xFD, 0xFF});
    }
    for (auto& one : list.tools) {
      one.shapeCode = of({0, 1, 1, 3, 108, 108, 33});
      one.dimension1 = of({1.0F, 1.0001F, 2.5F, 12345.679F});
      one.dimension2 = of({0.0F, 0.0F, -0.75F});
      one.orientation = of({0.0F, 0.0F, 90.0F});
      put(one.specialToolPath,
          of<std::string>({"a\\star.spt", "C:\\b/star.spt", "E:moon.x.spt", "sun", "1:\\v.2/end"}));
    }
  }
  ProcessSlot slot(int size) {
    ProcessSlot one;
    one.toolUse = of<std::uint16_t>({0, 1, 1, 1, 1, 2, 257});
    one.toolActive = of<std::uint8_t>({0, 1, 1, 128});
    one.toolChoice = of<std::uint8_t>({0, 0, 1, 2});
    const bool counts = one.toolUse == 1 && one.toolActive != 0;
    one.firstToolNumber = static_cast<std::uint16_t>(counts && one.toolChoice == 0 ? number(size) : upTo(size + 2));
    one.secondToolNumber = static_cast<std::uint16_t>(counts && one.toolChoice != 0 ? number(size) : upTo(size + 2));
    return one;
  }
  void profiles(ProfileList& list) {
    for (int i = upTo(3); i > 1; --i) {
      list.push_back(profile(of({7, 17, 107, 7, 8, -9}), of({3, 0, 3, 5}), of({1U, 1U, 1U, 0U}), of({1U, 2U, 3U, 0U})));
    }
  }

 private:
  std::mt19937 engine_;
};

TEST(SheetInfo, ToolsOfRandomSheetsFollowASecondImplementationOfTheRules) {
  const TempFolder folder;
  Dice dice(20240611);
  int listed = 0, second = 0, special = 0, dropped = 0, slots = 0, items = 0;
  for (int round = 0; round < 2500; ++round) {
    SheetPtr sheet = makeSheet(0);
    OldMachine& machine = sheet->machine;
    dice.stations(machine.stationsA, dice.upTo(7));
    dice.stations(machine.stationsB, dice.of({0, 1, 3, 5}));
    machine.stationWord = dice.of({0U, 1U, 0xFFFFFFFFU});
    machine.machineKind = dice.of({1, 2, 4, 4, 4});
    const bool takesSecond = machine.stationWord != 0 && !machine.stationsB.stations.empty();
    const int size = static_cast<int>((takesSecond ? machine.stationsB : machine.stationsA).stations.size());
    for (int p = dice.upTo(3); p > 0; --p) {
      TorvPart& part = addPart(*sheet, {});
      part.patterns.resize(static_cast<std::size_t>(dice.upTo(2)));
      for (Pattern& pattern : part.patterns) {
        for (int i = dice.upTo(3); i > 0; --i) pattern.items.push_back(item(dice.number(size)));
        dice.profiles(pattern.profiles);
      }
      part.processSlotCount = dice.of<std::uint8_t>({0, 0, 1, 2, 3, 130});
      for (int i = 0; i < part.processSlotCount; i += part.processSlotCount == 130 ? 43 : 1) {
        part.processSlots[i] = dice.slot(size);
      }
    }
    const int skipped = dice.of({0, 27, 28, 28, 28});
    for (int i = 0; i < skipped; ++i) sheet->patternItems.push_back(item(dice.upTo(size + 2)));
    if (skipped == 28) {
      for (int i = dice.upTo(3); i > 0; --i) sheet->patternItems.push_back(item(dice.number(size)));
    }
    sheet->processSlotCount = dice.of<std::int8_t>({0, 1, 2, 3, -2, -128});
    for (int i = 0; i < 4; ++i) sheet->processSlots[i] = dice.slot(size);
    dice.profiles(sheet->profiles);
    if (dice.upTo(9) == 0) sheet->shapes.shapes.clear();

    const std::string path = save(folder, *sheet);
    OldSheet* loaded = nullptr;
    ASSERT_EQ(GetOldSheetHandle(path.c_str(), &loaded), 0);
    const ToolList one = expectedTools(*loaded);
    FreeSheetHandle(loaded);
    Info info;
    ASSERT_EQ(info.ask(path), 0);
    ASSERT_STREQ(info.tools.c_str(), one.text.c_str()) << "round " << round;
    ASSERT_EQ(info.toolsLength, static_cast<std::int32_t>(one.text.size()));
    if (!sheet->shapes.shapes.empty()) {
      ASSERT_EQ(one.text, expectedTools(*sheet).text) << "changed by the save: round " << round;
    }
    listed += one.text.size() > 1 ? 1 : 0;
    second += one.second ? 1 : 0;
    special += one.special ? 1 : 0;
    dropped += one.dropped ? 1 : 0;
    slots += one.slots ? 1 : 0;
    items += one.items ? 1 : 0;
  }
  // The sheets do reach each of the rules.
  EXPECT_GT(listed, 1000);
  for (int count : {second, special, dropped, slots, items}) EXPECT_GT(count, 20);
}

// ---- values by key -----------------------------------------------------------------------------------

const std::vector<std::string> kKeys(std::begin(testing_support::kSheetKeys), std::end(testing_support::kSheetKeys));

// What is in the value after the query; "#" where it was not changed. Nothing is written after the NUL.
std::string value(const OldSheet& sheet, const std::string& key) {
  std::string buffer(60000, '#');
  EXPECT_EQ(GetOldSheetInfoByName(&sheet, key.c_str(), buffer.data()), 0) << key;
  const std::size_t end = buffer.find('\0');
  if (end == std::string::npos) return buffer == std::string(60000, '#') ? "#" : "spoilt";
  EXPECT_EQ(buffer.find_first_not_of('#', end + 1), std::string::npos) << key;
  return buffer.substr(0, end);
}

std::string groupIds(const OldSheet& sheet) {
  std::string buffer(60000, '#');
  EXPECT_EQ(GetOldSheetInfoPartGroupIDs(&sheet, buffer.data()), 0);
  return buffer.c_str();
}

std::string lower(std::string text) {
  for (char& c : text) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
  return text;
}

SheetPtr makeAnswers() {
  SheetPtr sheet = makeSheet();
  put(sheet->materialGroup, "GROUP %d");
  put(sheet->materialType, "TYPE %s");
  put(sheet->skeletonDosName, "C:\\skeleton.prt");
  sheet->width = 2500.5F;
  sheet->height = -1250.25F;
  sheet->thickness = 0.1F;
  sheet->utilization = 0.75F;
  sheet->workList.resize(3);
  sheet->blocks.resize(2);
  sheet->skeletonShapes.shapes.resize(1);
  sheet->skeletonShapes.shapes[0].type = 17;
  sheet->skeletonShapes.shapes[0].values[7] = 6.5F;
  sheet->skeletonShapes.shapes[0].values[8] = -0.17456F;
  for (int i = 0; i < 2; ++i) {
    TorvPart& part = addPart(*sheet, {});
    put(part.partName, i == 0 ? "name 1" : "name %s");
    put(part.partFullDosName, i == 0 ? "A" : "B%d%n");
    put(part.woNumber, i == 0 ? "W" : "");
    part.width = i == 0 ? 1.0F : 0.1F;
    part.height = i == 0 ? 2.0F : -3.5F;
    part.patterns.resize(2);
    part.patterns[0].gridCount1 = 2;
    part.patterns[0].gridCount2 = 3;
    if (i == 0) part.patterns.pop_back();
  }
  return sheet;
}

TEST(SheetKeys, EachKeyReturnsItsValue) {
  const SheetPtr sheet = makeAnswers();
  const std::string expected[14] = {"GROUP %d",
                                    "2500.500000",
                                    "-1250.250000",
                                    "2",
                                    "A |6 |B%d%n |7 ",
                                    "A |6 |W |B%d%n |7 | ",
                                    "name 1 |6 |W |name %s |7 | ",
                                    "A|1.000000|2.000000|6|W|;|B%d%n|0.100000|-3.500000|7||;",
                                    "TYPE %s",
                                    "0.100000",
                                    "C:\\skeleton.prt",
                                    "6.500000",
                                    "0.750000",
                                    "3"};
  for (std::size_t i = 0; i < kKeys.size(); ++i) EXPECT_EQ(value(*sheet, kKeys[i]), expected[i]) << kKeys[i];
  sheet->partList.parts.pop_back();
  EXPECT_EQ(value(*sheet, "partfulldosname_and_count"), "A |6 ");
  EXPECT_EQ(value(*sheet, "part_details_01"), "A|1.000000|2.000000|6|W|;");
}

TEST(SheetKeys, EmptySheetSupportsEveryKey) {
  const auto sheet = std::make_unique<OldSheet>();
  const std::string expected[14] = {"", "60.000000", "45.000000", "0", "",         "",         "",
                                    "", "",          "0.048000",  "",  "0.000000", "0.000000", "0"};
  for (std::size_t i = 0; i < kKeys.size(); ++i) EXPECT_EQ(value(*sheet, kKeys[i]), expected[i]) << kKeys[i];
  EXPECT_EQ(groupIds(*sheet), "");
}

TEST(SheetKeys, NullPointersAreRefusedWhateverTheKey) {
  const auto sheet = std::make_unique<OldSheet>();
  char buffer[300] = "kept";
  for (const std::string& key : kKeys) {
    EXPECT_EQ(GetOldSheetInfoByName(nullptr, key.c_str(), buffer), -2);
    EXPECT_EQ(GetOldSheetInfoByName(sheet.get(), key.c_str(), nullptr), -2);
  }
  EXPECT_EQ(GetOldSheetInfoByName(sheet.get(), "unknown", nullptr), -2);
  EXPECT_EQ(GetOldSheetInfoByName(sheet.get(), nullptr, buffer), -2);
  EXPECT_EQ(GetOldSheetInfoPartGroupIDs(nullptr, buffer), -2);
  EXPECT_EQ(GetOldSheetInfoPartGroupIDs(nullptr, nullptr), -2);
  EXPECT_STREQ(buffer, "kept");
}

TEST(SheetKeys, CaseIsIgnoredForLettersAToZOnly) {
  const SheetPtr sheet = makeAnswers();
  std::set<std::string> known;
  for (const std::string& key : kKeys) known.insert(lower(key));
  for (const std::string& key : kKeys) {
    const std::string expected = value(*sheet, key);
    std::string upper = lower(key), mixed = upper;
    for (std::size_t i = 0; i < key.size(); ++i) {
      if (upper[i] >= 'a' && upper[i] <= 'z') upper[i] = static_cast<char>(upper[i] - 32);
      if (i % 2 == 0) mixed[i] = upper[i];
    }
    for (const std::string& form : {upper, lower(key), mixed}) EXPECT_EQ(value(*sheet, form), expected) << form;
    for (const std::string& form : {key + " ", " " + key, key + "s", key.substr(1), key.substr(0, key.size() - 1)}) {
      EXPECT_EQ(value(*sheet, form), "#") << form;
    }
    for (std::size_t i = 0; i < key.size(); ++i) {
      for (int byte = 0; byte < 256; ++byte) {
        std::string form = key;
        form[i] = static_cast<char>(byte);
        form.resize(std::strlen(form.c_str()));
        if (known.contains(lower(form))) continue;
        char buffer[4] = "#?!";
        ASSERT_EQ(GetOldSheetInfoByName(sheet.get(), form.c_str(), buffer), 0);
        ASSERT_STREQ(buffer, "#?!") << form;
      }
    }
  }
  EXPECT_EQ(value(*sheet, ""), "#");
}

TEST(SheetKeys, NanInfinityAndTheLargestNumbersArePrintedAsInTheCLocale) {
  const auto sheet = std::make_unique<OldSheet>();
  const float inf = std::numeric_limits<float>::infinity(), nan = std::numeric_limits<float>::quiet_NaN();
  const std::pair<float, const char*> cases[] = {
      {nan, "nan"},
      {-nan, "-nan"},
      {inf, "inf"},
      {-inf, "-inf"},
      {-0.0F, "-0.000000"},
      {1e-7F, "0.000000"},
      {0.1F, "0.100000"},
      {16777217.0F, "16777216.000000"},
      {1.1F, "1.100000"},
      {1234567.1F, "1234567.125000"},
      {std::numeric_limits<float>::max(), "340282346638528859811704183484516925440.000000"}};
  TorvPart& part = addPart(*sheet, {});
  const auto check = [&] {
    for (const auto& [number, text] : cases) {
      sheet->width = sheet->height = sheet->thickness = sheet->utilization = part.width = part.height = number;
      for (const char* key : {"width", "height", "sheet_thickness", "sheet_utilization"}) {
        EXPECT_EQ(value(*sheet, key), text) << key;
      }
      EXPECT_EQ(value(*sheet, "part_details_01"), std::string("|") + text + "|" + text + "|0||;");
    }
  };
  check();
  const CommaLocale comma;
  if (comma.isSet()) check();
}

TEST(SheetKeys, QuantityIsASumOfProductsIn32Bits) {
  const struct {
    std::vector<std::pair<std::uint32_t, std::uint32_t>> grids;
    const char* text;
  } cases[] = {{{}, "0"},
               {{{2, 3}, {1, 1}}, "7"},
               {{{0, 5}}, "0"},
               {{{65536, 65536}}, "0"},
               {{{65536, 65536}, {1, 9}}, "9"},
               {{{65536, 32768}}, "-2147483648"},
               {{{46341, 46341}}, "-2147479015"},
               {{{0xFFFFFFFFU, 2}}, "-2"},
               {{{0xFFFFFFFFU, 0xFFFFFFFFU}}, "1"},
               {{{0x7FFFFFFFU, 1}, {1, 1}}, "-2147483648"},
               {{{0x7FFFFFFFU, 1}, {1, 1}, {0xFFFFFFFFU, 1}}, "2147483647"}};
  for (const auto& one : cases) {
    const auto sheet = std::make_unique<OldSheet>();
    TorvPart& part = addPart(*sheet, {});
    for (const auto& [first, second] : one.grids) {
      part.patterns.emplace_back();
      part.patterns.back().gridCount1 = first;
      part.patterns.back().gridCount2 = second;
    }
    const std::string quantity = one.text;
    EXPECT_EQ(value(*sheet, "partfulldosname_and_count"), " |" + quantity + " ");
    EXPECT_EQ(value(*sheet, "partfulldosname_and_count_and_wonumber"), " |" + quantity + " | ");
    EXPECT_EQ(value(*sheet, "partname_and_count_and_wonumber"), "NEW PART |" + quantity + " | ");
    EXPECT_EQ(value(*sheet, "part_details_01"), "|30.000000|20.000000|" + quantity + "||;");
  }
}

TEST(SheetKeys, TextsWithoutANulAreCopiedUpToTheirWidth) {
  const SheetPtr sheet = makeSheet();
  const std::string a(256, 'a'), b(256, 'b'), n(256, 'n'), p(260, 'p'), w(256, 'w');
  put(sheet->materialGroup, a);
  put(sheet->materialType, b);
  put(sheet->skeletonDosName, std::string(260, 's'));
  TorvPart& part = addPart(*sheet, {{}});
  put(part.partName, n);
  put(part.partFullDosName, p);
  put(part.woNumber, w);
  EXPECT_EQ(value(*sheet, "Material_Group"), a);
  EXPECT_EQ(value(*sheet, "sheet_mat_type"), b);
  EXPECT_EQ(value(*sheet, "partfulldosname_and_count"), p + " |1 ");
  EXPECT_EQ(value(*sheet, "partfulldosname_and_count_and_wonumber"), p + " |1 |" + w + " ");
  EXPECT_EQ(value(*sheet, "partname_and_count_and_wonumber"), n + " |1 |" + w + " ");
  EXPECT_EQ(value(*sheet, "part_details_01"), p + "|30.000000|20.000000|1|" + w + "|;");
  EXPECT_EQ(value(*sheet, "preSkeletonDosName"), std::string(260, 's'));
}

TEST(SheetKeys, ListsOfManyPartsKeepTheirOrderAndLoseOnlyTheirLastBar) {
  const auto sheet = std::make_unique<OldSheet>();
  std::string plain, numbered, named, details, ids;
  for (int i = 0; i < 300; ++i) {
    TorvPart& part = addPart(*sheet, {});
    const std::string path = print("p\\%d|.prt", i), name = print("n%d", i), order = i % 3 == 0 ? "" : print("W%d", i);
    put(part.partFullDosName, path);
    put(part.partName, name);
    put(part.woNumber, order);
    part.width = static_cast<float>(i) / 8;
    part.height = static_cast<float>(-i);
    part.patterns.resize(static_cast<std::size_t>(i % 3));
    for (Pattern& one : part.patterns) {
      one.gridCount2 = static_cast<std::uint32_t>(i);
      one.patternWord = static_cast<std::uint32_t>(i % 7 - 2);
      if (i % 7 > 2) ids += print("%d|", i % 7 - 2);
    }
    ids += ",";
    const int quantity = i % 3 * i;
    plain += print("%s |%d |", path.c_str(), quantity);
    numbered += print("%s |%d |%s |", path.c_str(), quantity, order.c_str());
    named += print("%s |%d |%s |", name.c_str(), quantity, order.c_str());
    details +=
        print("%s|%f|%f|%d|%s|;|", path.c_str(), i / 8.0, static_cast<double>(part.height), quantity, order.c_str());
  }
  for (std::string* one : {&plain, &numbered, &named, &details}) one->pop_back();
  EXPECT_EQ(value(*sheet, "part_count"), "300");
  EXPECT_EQ(value(*sheet, "partfulldosname_and_count"), plain);
  EXPECT_EQ(value(*sheet, "partfulldosname_and_count_and_wonumber"), numbered);
  EXPECT_EQ(value(*sheet, "partname_and_count_and_wonumber"), named);
  EXPECT_EQ(value(*sheet, "part_details_01"), details);
  EXPECT_EQ(groupIds(*sheet), ids);
}

TEST(SheetKeys, NameOfTheSkeletonIsAFormatWithoutValues) {
  const std::string blanks(260, ' '), zeros(260, '0');
  const std::pair<std::string, std::string> cases[] = {
      {"", ""},
      {"plain name.prt", "plain name.prt"},
      {"100%%", "100%"},
      {"%%", "%"},
      {"%%%%", "%%"},
      {"%%d", "%d"},
      {"%%%d", "%0"},
      {"a%db", "a0b"},
      {"%i %u %o %x %X", "0 0 0 0 0"},
      {"%5d|", "    0|"},
      {"%-5d|", "0    |"},
      {"%05d", "00000"},
      {"%.3d", "000"},
      {"%6.3d|", "   000|"},
      {"%.0d|", "|"},
      {"%+d", "+0"},
      {"% d", " 0"},
      {"%#x", "0"},
      {"%#o", "0"},
      {"%hd %hhd %ld %lld %zu", "0 0 0 0 0"},
      {"%ld%lu%llx", "000"},
      {"%I64d %I32x %Id|%I6|%I", "0 0 0|6|"},
      {"%-", ""},
      {"%f", "0.000000"},
      {"%F", "0.000000"},
      {"%lf", "0.000000"},
      {"%.2f", "0.00"},
      {"%8.3f|", "   0.000|"},
      {"%-8.3f|", "0.000   |"},
      {"%08.3f|", "0000.000|"},
      {"%+.1f", "+0.0"},
      {"%.0f", "0"},
      {"%#.0f", "0."},
      {"%e", "0.000000e+00"},
      {"%E", "0.000000E+00"},
      {"%.1e", "0.0e+00"},
      {"%g %G", "0 0"},
      {"%#g", "0.00000"},
      {"a%sb", "ab"},
      {"%5s|", "     |"},
      {"%-5s|", "     |"},
      {"%.3s|", "|"},
      {"%", ""},
      {"50%", "50"},
      {"50%-5.2", "50"},
      {"%a %A", "0x0p+0 0X0P+0"},
      {"%.2a %#a", "0x0.00p+0 0x0.p+0"},
      {"%012a|%010A|", "0x0000000p+0|0X00000P+0|"},
      {"a%cb", "a"},
      {"%3cx", "  "},
      {"%Cb", ""},
      {"%p", "0000000000000000"},
      {"a%Sb", "ab"},
      {"%I64d%I32u%Ix", "000"},
      {"%Id4%Id2", "0402"},
      {"%*d|%-*d|", "0|0|"},
      {"%.*f|%.*d|", "0||"},
      {"%+i% i%+u", "+0 00"},
      {"%.0o|%#.0o|%#.0x|", "|0||"},
      {"%05.3d", "  000"},
      {"%+05d", "+0000"},
      {"%#.0g %#.1g %#.2g", "0. 0. 0.0"},
      {"%9d%10d", "        0         0"},
      {"%1d%2d%+1d", "0 0+0"},
      {"%:", ":"},
      {"%\x01", "\x01"},
      {"%/", "/"},
      {"C:\\n\\%s.prt", "C:\\n\\.prt"},
      {"a%nb", "ab"},
      {"%n%n%n%n%n%n%n%n", ""},
      {"%s%s%s%s%s%s%s%s%d", "0"},
      {"%y", "y"},
      {"a%kb", "akb"},
      {"50%?", "50?"},
      {"%\xE4", "\xE4"},
      {"%;%d", ";0"},
      {"%)%(", ")("},
      {"50%25x", "50                        0"},
      {"%260d", blanks.substr(1) + "0"},
      {"%261d", blanks},
      {"%5000s", blanks},
      {"%0300d", zeros},
      {"%999999999d", blanks},
      {"%.300f", "0." + zeros.substr(2)},
      {std::string(256, 'q') + "%9d", std::string(256, 'q') + "    "},
      {std::string(248, 'q') + "%%%d%s%%end", std::string(248, 'q') + "%0%end"},
      {std::string(259, 'q'), std::string(259, 'q')},
      {std::string(260, 'q'), std::string(260, 'q')}};
  const auto sheet = std::make_unique<OldSheet>();
  for (const auto& [name, text] : cases) {
    put(sheet->skeletonDosName, name);
    EXPECT_EQ(value(*sheet, "preSkeletonDosName"), text) << name;
  }
}

// Whatever the name, the result is a text of at most 260 characters, and a name without "%" is copied as it is.
TEST(SheetKeys, NoSkeletonNameWritesOutsideTheResult) {
  const auto sheet = std::make_unique<OldSheet>();
  Dice dice(77);
  const std::string letters = "%%%%%0123456789.*$-+ #'hlLjztqIwdiuoxXfFeEgGaAcCsSpnm\\/:y";
  for (int round = 0; round < 20000; ++round) {
    std::string name;
    for (int i = dice.of({1, 3, 8, 40, 260}); i > 0; --i) {
      name += letters[static_cast<std::size_t>(dice.upTo(static_cast<int>(letters.size()) - 1))];
    }
    put(sheet->skeletonDosName, name);
    ASSERT_LE(value(*sheet, "preSkeletonDosName").size(), 260U) << name;
    std::erase(name, '%');
    put(sheet->skeletonDosName, name);
    ASSERT_EQ(value(*sheet, "preSkeletonDosName"), name);
  }
}

TEST(SheetKeys, CutAreaSumsTheSeventhValueOfMarkedShapes) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const struct {
    int type;
    float mark;
    bool counts;
  } marks[] = {{17, -0.17456F, true},   {17, -0.1747F, false},  {17, -0.17447F, true},   {17, -0.17445F, false},
               {17, -0.17465F, true},   {17, -0.17467F, false}, {17, -0.1745F, true},    {17, -0.174661F, false},
               {17, -0.174458F, false}, {17, 0.17456F, false},  {17, 0, false},          {17, nan, false},
               {16, -0.17456F, false},  {18, -0.17456F, false}, {-17, -0.17456F, false}, {7, -0.17456F, false}};
  for (const auto& one : marks) {
    const auto sheet = std::make_unique<OldSheet>();
    sheet->skeletonShapes.shapes.resize(1);
    Shape& shape = sheet->skeletonShapes.shapes[0];
    shape.type = static_cast<std::int8_t>(one.type);
    for (int i = 0; i < 7; ++i) shape.values[i] = 100;
    shape.values[7] = 2.5F;
    shape.values[8] = one.mark;
    EXPECT_EQ(value(*sheet, "totalSknPartCutArea"), one.counts ? "2.500000" : "0.000000")
        << one.type << " " << one.mark;
  }
  // In double precision and in the order of the list.
  const std::pair<std::vector<float>, const char*> sums[] = {{{1e8F, 0.25F}, "100000000.250000"},
                                                             {{0.1F, 0.2F}, "0.300000"},
                                                             {{1e16F, 1, -1e16F}, "0.000000"},
                                                             {{1e16F, -1e16F, 1}, "1.000000"},
                                                             {{-0.0F}, "0.000000"},
                                                             {{-1.5F, -1}, "-2.500000"},
                                                             {{nan, 1}, "nan"}};
  for (const auto& [parts, text] : sums) {
    const auto sheet = std::make_unique<OldSheet>();
    for (float area : parts) {
      for (int type : {17, 3}) {
        sheet->skeletonShapes.shapes.emplace_back();
        sheet->skeletonShapes.shapes.back().type = static_cast<std::int8_t>(type);
        sheet->skeletonShapes.shapes.back().values[7] = area;
        sheet->skeletonShapes.shapes.back().values[8] = -0.17456F;
      }
    }
    sheet->shapes = sheet->skeletonShapes;  // the sheet's own shapes are ignored
    sheet->shapes.shapes.resize(1);
    EXPECT_EQ(value(*sheet, "totalSknPartCutArea"), text);
  }
}

TEST(SheetKeys, GroupIdsAboveZeroOfEachPartComeBeforeItsComma) {
  const std::pair<std::vector<std::vector<std::uint32_t>>, const char*> cases[] = {
      {{}, ""},
      {{{}}, ","},
      {{{12, 13}, {}, {5}}, "12|13|,,5|,"},
      {{{0}, {1}, {0x80000000U, 0xFFFFFFFFU}, {0x7FFFFFFFU}}, ",1|,,2147483647|,"},
      {{{4, 0, 4, 4}}, "4|4|4|,"}};
  for (const auto& [parts, text] : cases) {
    const auto sheet = std::make_unique<OldSheet>();
    for (const auto& ids : parts) {
      TorvPart& part = addPart(*sheet, {});
      for (std::uint32_t id : ids) {
        part.patterns.emplace_back();
        part.patterns.back().patternWord = id;
      }
    }
    EXPECT_EQ(groupIds(*sheet), text);
  }
}

TEST(SheetKeys, HandleOfAnOlderFileHasWhatItsVersionStores) {
  const TempFolder folder;
  for (int version : kVersions) {
    SheetPtr sheet = makeAnswers();
    sheet->blocks.clear();
    const std::string path = save(folder, *sheet, version);
    OldSheet* handle = nullptr;
    ASSERT_EQ(GetOldSheetHandle(path.c_str(), &handle), 0) << version;
    EXPECT_EQ(value(*handle, "Material_Group"), version >= 112 ? "GROUP %d" : "") << version;
    EXPECT_EQ(value(*handle, "sheet_mat_type"), version >= 112 ? "TYPE %s" : "") << version;
    EXPECT_EQ(value(*handle, "sheet_utilization"), version >= 102 ? "0.750000" : "0.000000") << version;
    EXPECT_EQ(value(*handle, "preSkeletonDosName"), version >= 100 ? "C:\\skeleton.prt" : "") << version;
    EXPECT_EQ(value(*handle, "totalSknPartCutArea"), version >= 100 ? "6.500000" : "0.000000") << version;
    EXPECT_EQ(value(*handle, "partfulldosname_and_count_and_wonumber"),
              version >= 162 ? "A |6 |W |B%d%n |7 | " : "A |6 | |B%d%n |7 | ")
        << version;
    EXPECT_EQ(value(*handle, "sheet_sequence_size"), "3") << version;
    EXPECT_EQ(value(*handle, "width"), "2500.500000") << version;
    FreeSheetHandle(handle);
  }
}

}  // namespace
