// Tool inventories and macros: their stored rows typed once more, and what the loaders, the count and
// the query return.
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "OldTorvIO.h"
#include "src/records/record_io.h"
#include "src/tooling/inventory_io.h"
#include "src/tooling/macro_io.h"
#include "tests/support/bytes.h"
#include "tests/support/files.h"
#include "tests/support/stored_forms.h"
#include "tests/support/stored_forms/versions.h"

namespace {

using namespace testing_support;

// Where the gates of the two files and of what they embed lie.
const std::vector<int> kGates{54, 59, 60, 79, 80, 89, 90, 109, 110, 111, 129, 130, 149, 150, 180};

template <class T>
bool sameRaw(const T& a, const T& b) {
  return std::memcmp(&a, &b, sizeof(T)) == 0;
}

// ---- inventories ---------------------------------------------------------------------------------

std::pair<Bytes, OldToolInventory> madeInventory(int version, const InventoryForm& form = {}) {
  Maker maker;
  OldToolInventory made;
  storedInventory(maker, version, form, made);
  return {maker.bytes, made};
}

// A record that something was loaded into before.
OldToolInventory usedInventory() {
  OldToolInventory used;
  used.tools.resize(5);
  used.entries.resize(6);
  for (InventoryEntry& e : used.entries) e.entryWord = 4711;
  used.specialToolFiles.resize(7);
  for (int i = 0; i < 20; ++i) used.pairFirst[i] = used.pairSecond[i] = 0xAAAAAAAAU;
  return used;
}

int readInventory(const Bytes& bytes, int version, OldToolInventory& into, std::size_t* consumed = nullptr) {
  return readFrom(
      bytes, [&](InStream& s) { return ReadToolInventory(s, version, into); }, consumed);
}

TEST(Inventory, FreshInventoryIsEmpty) {
  const OldToolInventory fresh;
  EXPECT_TRUE(fresh.tools.empty() && fresh.entries.empty() && fresh.specialToolFiles.empty());
  for (int i = 0; i < 20; ++i) EXPECT_EQ(fresh.pairFirst[i] | fresh.pairSecond[i], 0U);
  EXPECT_EQ(fresh.path[0], '\0');
  EXPECT_EQ(fresh.version, 0);
}

TEST(Inventory, FreshEntryHasTheDefaults) {
  const InventoryEntry fresh;
  EXPECT_EQ(fresh.entryWord, 0U);
  EXPECT_EQ(fresh.entryHead, 256);
  EXPECT_STREQ(fresh.entryNameC, "0");
  EXPECT_TRUE(fresh.entryNameA[0] == 0 && fresh.entryNameB[0] == 0);
  EXPECT_TRUE(fresh.entryByteA == 0 && fresh.entryByteB == 0 && fresh.entryShortA == 0 && fresh.entryShortB == 0);
  EXPECT_TRUE(fresh.entryLateWord == 0 && fresh.entryLateReals[0] == 0 && fresh.entryLateReals[1] == 0);
  EXPECT_EQ(fresh.entrySteps.stepByteA[0], 255);
}

TEST(Inventory, EntryLoadsAndSavesTheSameBytesAtEveryVersion) {
  for (int version = 54; version <= kLastVersion; ++version)
    for (const int steps : {0, 3, 20}) {
      SCOPED_TRACE(version);
      Maker maker;
      InventoryEntry made, read;
      storedEntry(maker, version, steps, made);
      std::size_t consumed = 0;
      ASSERT_EQ(readFrom(
                    Bytes(maker.bytes).fill(9, 0xEE), [&](InStream& s) { return ReadInventoryEntry(s, version, read); },
                    &consumed),
                0);
      EXPECT_EQ(consumed, maker.bytes.size());
      Checker checker;
      storedEntry(checker, version, steps, read);
      bool ok = false;
      EXPECT_EQ(written([&](OutStream& s) { return WriteInventoryEntry(s, version, made); }, &ok), maker.bytes);
      EXPECT_TRUE(ok);
    }
}

// Only the late word and reals, and the table's count of steps, may be missing.
TEST(Inventory, ToleratesACutEntryOnlyFromItsLateWordToItsLateReals) {
  for (const int version : {129, 130, 149, 150, 180}) {
    const std::size_t rowTen = 2 + 4 + 256 + 1 + 1 + 256 + 2 + 2 + (version >= 130 ? 256U : 0U);
    const std::size_t rowTwelve = rowTen + (version >= 150 ? 12 : 0);
    Maker maker;
    InventoryEntry made;
    storedEntry(maker, version, 2, made);
    for (std::size_t cut = 0; cut < maker.bytes.size(); ++cut) {
      SCOPED_TRACE(testing::Message() << version << " cut at " << cut);
      const bool tolerated = (cut >= rowTen && cut < rowTwelve) || cut == rowTwelve + 20;
      InventoryEntry read;
      ASSERT_EQ(readFrom(maker.bytes.cut(cut), [&](InStream& s) { return ReadInventoryEntry(s, version, read); }),
                tolerated ? 0 : 1);
      Checker checker(cut);
      storedEntry(checker, version, 2, read);
    }
  }
}

TEST(Inventory, LoadsAtEveryAcceptedVersionByteForByte) {
  const TempFolder folder;
  for (const int version : inventoryVersions()) {
    SCOPED_TRACE(version);
    const auto [bytes, made] = madeInventory(version);
    const std::string path = folder.write("tools.inv", Bytes().i16(version).add(bytes).fill(5, 0xEE));
    for (const bool used : {false, true}) {
      const OldToolInventory before = used ? usedInventory() : OldToolInventory();
      OldToolInventory inventory = before;
      ASSERT_EQ(LoadOldToolInventory(path.c_str(), &inventory), 0);
      expectLoaded(inventory, before, [&, v = version](auto& m, OldToolInventory& one) {
        storedInventory(m, v, {}, one);
        one.version = static_cast<std::int16_t>(v);
        EXPECT_TRUE(setFixedText(one.path, path));
      });
    }
    std::uint32_t count = 77;
    EXPECT_EQ(LoadOldToolInventoryForCount(path.c_str(), &count), 0);
    EXPECT_EQ(count, 3U);
    bool ok = false;
    EXPECT_EQ(written([&, v = version, &one = made](OutStream& s) { return WriteToolInventory(s, v, one); }, &ok),
              bytes);
    EXPECT_TRUE(ok);
    const std::string saved = folder.path("saved.inv");
    EXPECT_EQ(SaveToolInventory(saved.c_str(), made, version), 0);
    EXPECT_EQ(TempFolder::read(saved), Bytes().i16(version).add(bytes));
  }
}

TEST(Inventory, ReadsItsFieldsAtEveryGate) {
  for (const int version : kGates) {
    SCOPED_TRACE(version);
    for (const InventoryForm& form : {InventoryForm{}, InventoryForm{{}, 1, 1}, InventoryForm{{108, 3}, 0, 0}}) {
      const auto [bytes, made] = madeInventory(version, form);
      OldToolInventory inventory;
      std::size_t consumed = 0;
      ASSERT_EQ(readInventory(Bytes(bytes).fill(9, 0xEE), version, inventory, &consumed), 0);
      EXPECT_EQ(consumed, bytes.size());
      expectLoaded(inventory, OldToolInventory(), [&](auto& m, auto& one) { storedInventory(m, version, form, one); });
    }
  }
}

TEST(Inventory, NothingIsReadAfterTheToolCountBelowVersion54) {
  for (const int version : {52, 53}) {
    OldToolInventory inventory = usedInventory();
    EXPECT_EQ(readInventory(madeInventory(54).first, version, inventory), 1);
    EXPECT_EQ(inventory.tools.size(), 5U);
    EXPECT_EQ(inventory.entries.size(), 6U);
    EXPECT_EQ(inventory.specialToolFiles.size(), 7U);
    EXPECT_EQ(inventory.pairFirst[0], 0xAAAAAAAAU);
  }
}

// Lists are emptied after the count (tools: after the pairs), and hold what arrived completely.
TEST(Inventory, CutAtAnyByteFailsAndKeepsWhatArrived) {
  for (const int version : {54, 80, 111, 130, 150}) {
    const InventoryForm form;
    const auto [bytes, made] = madeInventory(version, form);
    const std::size_t pairsEnd = 4 + 20 * 8;
    std::vector<std::size_t> toolEnds, entryEnds, entryTails;
    std::size_t at = pairsEnd;
    for (const std::int32_t code : form.codes) {
      Maker maker;
      OldTool tool;
      storedTool(maker, version, false, code, tool);
      toolEnds.push_back(at += maker.bytes.size());
    }
    const std::size_t entryCountEnd = at += 4;
    for (const std::size_t steps : {2U, 3U}) {
      const std::size_t rowTen = at + 524 + (version >= 130 ? 256U : 0U);
      const std::size_t table = rowTen + (version >= 150 ? 12 : 0);
      for (std::size_t tail = rowTen; tail < table; ++tail) entryTails.push_back(tail);
      entryTails.push_back(table + 20);
      entryEnds.push_back(at = table + 21 + 7 * steps + (version >= 80 ? 1 : 0) + (version >= 90 ? 1 : 0));
    }
    const std::size_t fileCountEnd = at += 4;
    ASSERT_EQ(bytes.size(), fileCountEnd + 2 * 256);
    const auto endedBefore = [](const std::vector<std::size_t>& ends, std::size_t cut) {
      std::size_t n = 0;
      for (const std::size_t end : ends) n += end <= cut ? 1 : 0;
      return n;
    };
    for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
      SCOPED_TRACE(testing::Message() << version << " cut at " << cut);
      OldToolInventory inventory = usedInventory();
      ASSERT_EQ(readInventory(bytes.cut(cut), version, inventory), 1);
      ASSERT_EQ(inventory.tools.size(), cut < pairsEnd ? 5 : endedBefore(toolEnds, cut));
      bool tail = false;
      for (const std::size_t one : entryTails) tail = tail || one == cut;
      ASSERT_EQ(inventory.entries.size(), cut < entryCountEnd ? 6 : endedBefore(entryEnds, cut) + (tail ? 1 : 0));
      ASSERT_EQ(inventory.specialToolFiles.size(), cut < fileCountEnd ? 7 : (cut - fileCountEnd) / 256);
      for (std::size_t i = 0; i < 20; ++i) {
        ASSERT_EQ(inventory.pairFirst[i], cut >= 4 + 8 * i + 4 ? made.pairFirst[i] : 0xAAAAAAAAU) << i;
        ASSERT_EQ(inventory.pairSecond[i], cut >= 4 + 8 * i + 8 ? made.pairSecond[i] : 0xAAAAAAAAU) << i;
      }
    }
  }
}

TEST(Inventory, CountOfZeroKeepsEntriesButNotToolsAndFileNames) {
  for (const int version : kGates)
    for (const std::int32_t tools : {0, -1, -0x7FFFFFFF - 1})
      for (const std::int32_t entries : {0, -1, -0x7FFFFFFF - 1})
        for (const std::int32_t files : {0, -1, -0x7FFFFFFF - 1}) {
          OldToolInventory inventory = usedInventory();
          const Bytes bytes = Bytes().i32(tools).fill(160, 0x11).i32(entries).i32(files);
          std::size_t consumed = 0;
          ASSERT_EQ(readInventory(Bytes(bytes).fill(300, 0xEE), version, inventory, &consumed), 0);
          EXPECT_EQ(consumed, bytes.size());
          EXPECT_EQ(inventory.tools.size(), 0U);
          EXPECT_EQ(inventory.entries.size(), entries == 0 ? 6U : 0U) << entries;
          EXPECT_EQ(inventory.specialToolFiles.size(), 0U);
          EXPECT_EQ(inventory.pairSecond[19], 0x11111111U);
        }
}

TEST(Inventory, RefusesCountsThatTheFileCannotHold) {
  const Bytes head = Bytes().i32(0).zeros(160);
  for (const std::int32_t count : {1000000, 2000000000, 0x7FFFFFFF}) {
    OldToolInventory inventory;
    EXPECT_EQ(readInventory(Bytes().i32(count).zeros(160).zeros(100), 150, inventory), 1);
    EXPECT_EQ(readInventory(Bytes(head).i32(count).zeros(100), 150, inventory), 1);
    EXPECT_EQ(readInventory(Bytes(head).i32(0).i32(count).zeros(100), 150, inventory), 1);
    EXPECT_TRUE(inventory.tools.empty() && inventory.entries.empty() && inventory.specialToolFiles.empty());
  }
}

TEST(Inventory, EachElementStartsFresh) {
  OldToolInventory inventory = usedInventory();
  inventory.tools[0].lateWords[0] = 9;
  inventory.entries[0].entryLateWord = 9;
  inventory.entries[0].entryNameC[0] = 'x';
  const auto [bytes, made] = madeInventory(54);
  ASSERT_EQ(readInventory(bytes, 54, inventory), 0);
  EXPECT_EQ(inventory.tools[0].lateWords[0], 0U);
  EXPECT_EQ(inventory.entries[0].entryLateWord, 0U);
  EXPECT_STREQ(inventory.entries[0].entryNameC, "0");
}

// What loads return at each version: KindsRoundTrip.AllVersionWordsReturnWhatTheListsSay.
TEST(Inventory, FileWithoutABodySetsThePathAndACountOfZero) {
  const TempFolder folder;
  for (const int version : {-1, 0, 52, 53, 54, 61, 180, 181, 500}) {
    const std::string path = folder.write("w.inv", Bytes().i16(version));
    const bool isListed = contains(inventoryVersions(), version);
    OldToolInventory inventory;
    EXPECT_EQ(LoadOldToolInventory(path.c_str(), &inventory), isListed ? 1 : -1) << version;
    EXPECT_EQ(std::string(inventory.path), path);
    std::uint32_t count = 5;
    EXPECT_EQ(LoadOldToolInventoryForCount(path.c_str(), &count), isListed ? 0 : -1) << version;
    EXPECT_EQ(count, 0U);
  }
}

TEST(Inventory, IsSavedOnlyAtTheVersionsOfItsList) {
  const TempFolder folder;
  const OldToolInventory inventory;
  for (int version = 0; version <= 200; ++version)
    EXPECT_EQ(SaveToolInventory(folder.path("s.inv").c_str(), inventory, version),
              contains(inventoryVersions(), version) ? 0 : -1)
        << version;
}

TEST(Inventory, MissingAndShortFilesLeaveTheRecord) {
  const TempFolder folder;
  const std::pair<std::string, int> cases[] = {{folder.path("none.inv"), -2},
                                               {"", -2},
                                               {folder.write("empty.inv", Bytes()), 1},
                                               {folder.write("one.inv", Bytes().u8(150)), 1}};
  for (const auto& [path, status] : cases) {
    OldToolInventory inventory;
    inventory.version = 33;
    inventory.path[0] = 'p';
    EXPECT_EQ(LoadOldToolInventory(path.c_str(), &inventory), status) << path;
    EXPECT_EQ(inventory.version, 33);
    EXPECT_STREQ(inventory.path, "p");
    std::uint32_t count = 5;
    EXPECT_EQ(LoadOldToolInventoryForCount(path.c_str(), &count), status) << path;
    EXPECT_EQ(count, 0U);
  }
}

TEST(Inventory, KeepsItsPathAndCutsOneThatIsTooLong) {
  const TempFolder folder;
  const std::string deep = std::string(200, 'd') + "/" + std::string(100, 'f');
  std::filesystem::create_directories(folder.path(std::string(200, 'd')));
  const Bytes bytes = Bytes().i16(54).add(madeInventory(54).first);
  for (const std::string& name : {std::string("a.inv"), deep}) {
    const std::string path = folder.write(name, bytes);
    OldToolInventory inventory;
    std::memset(inventory.path, 'x', sizeof inventory.path);
    ASSERT_EQ(LoadOldToolInventory(path.c_str(), &inventory), 0);
    const std::string kept = path.substr(0, 255);
    EXPECT_EQ(std::string(inventory.path), kept);
    if (kept.size() < 255) {
      EXPECT_EQ(inventory.path[kept.size() + 1], 'x');
    }
    std::uint32_t count = 0;
    EXPECT_EQ(LoadOldToolInventoryForCount(path.c_str(), &count), 0);
    EXPECT_EQ(count, 3U);
  }
}

// ---- the query of one tool -----------------------------------------------------------------------

OldTool someTool(std::int32_t code, std::int32_t first = 0, std::int32_t second = 0) {
  OldTool t;
  t.orientation = 7.5F;
  t.shapeCode = code;
  t.dimension1 = 3;
  t.dimension2 = 4;
  t.dimension3 = 5;
  t.firstValueCount = first;
  t.secondValueCount = second;
  for (int i = 0; i < 6; ++i) {
    t.firstValues[i] = 10.0F + static_cast<float>(i);
    t.secondValues[i] = 20.0F + static_cast<float>(i);
  }
  return t;
}

struct Info {
  char name[257];
  float dimension[3] = {-1, -1, -1}, orientation = -1, first[6], second[6];
  std::int32_t firstCount = -99, secondCount = -99;

  explicit Info(std::int32_t index) {
    std::memset(name, 0, sizeof name);
    std::memcpy(name, "as it was", 9);
    for (int i = 0; i < 6; ++i) first[i] = second[i] = -1;
    GetOldToolInventoryInformation(index, name, &dimension[0], &dimension[1], &dimension[2], &orientation, &firstCount,
                                   &first[0], &first[1], &first[2], &first[3], &first[4], &first[5], &secondCount,
                                   &second[0], &second[1], &second[2], &second[3], &second[4], &second[5]);
  }
};

std::uint32_t counted(const TempFolder& folder, const Bytes& bytes) {
  std::uint32_t count = 99;
  EXPECT_EQ(LoadOldToolInventoryForCount(folder.write("t.inv", bytes).c_str(), &count), 0);
  return count;
}

TEST(Inventory, NamesToolsByTheirShapeCodeAndLeavesTheNameOfOthers) {
  const std::vector<std::pair<int, std::string>> texts{
      {1, "ROUND"},      {3, "RECTANGLE"},  {9, "RIGHT ANGLE SHEAR"}, {33, "LASER CUTTING TOOL"},
      {103, "SQUARE"},   {104, "SINGLE D"}, {105, "DOUBLE D"},        {106, "OBROUND"},
      {107, "TRIANGLE"}, {108, "BIG"},      {109, "CORNERR"},         {110, "ROUNDED C"},
      {112, "GR"}};
  std::vector<int> codes{std::numeric_limits<int>::min(), std::numeric_limits<int>::max(), 65537, 1025};
  for (int code = -10; code <= 270; ++code) codes.push_back(code);
  const TempFolder folder;
  for (const int version : {54, 60, 90, 110, 111, 180}) {
    std::vector<OldTool> tools;
    for (const int code : codes) tools.push_back(someTool(code));
    for (OldTool& tool : tools) tool.specialToolIndex = 2;
    ASSERT_EQ(counted(folder, storedInventoryFile(version, tools, {"small.spt", "C:\\x\\BIG.spt"})), tools.size());
    for (std::size_t i = 0; i < codes.size(); ++i) {
      const Info info(static_cast<std::int32_t>(i));
      std::string want = "as it was";
      for (const auto& [code, text] : texts)
        if (code == codes[i]) want = text;
      EXPECT_EQ(std::string(info.name), want) << codes[i];
      EXPECT_EQ(info.dimension[0], 3.0F);
      EXPECT_EQ(info.dimension[1], 4.0F);
      EXPECT_EQ(info.dimension[2], 5.0F);
      EXPECT_EQ(info.orientation, 7.5F);
    }
  }
}

TEST(Inventory, QueryCopiesAsManyValuesAsACountOfOneToSix) {
  std::vector<OldTool> tools;
  for (int first = -2; first <= 8; ++first)
    for (int second = -2; second <= 8; ++second) tools.push_back(someTool(1, first, second));
  tools.push_back(someTool(1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()));
  const TempFolder folder;
  for (const int version : {54, 102, 110, 150}) {
    ASSERT_EQ(counted(folder, storedInventoryFile(version, tools, {})), tools.size());
    for (std::size_t n = 0; n < tools.size(); ++n) {
      const Info info(static_cast<std::int32_t>(n));
      const int first = tools[n].firstValueCount, second = tools[n].secondValueCount;
      EXPECT_EQ(info.firstCount, first);
      EXPECT_EQ(info.secondCount, second);
      for (int i = 0; i < 6; ++i) {
        const bool lost = version < 110 && (i == 3 || i == 4);
        const float at = static_cast<float>(i);
        EXPECT_EQ(info.first[i], first > 6 || i >= first ? -1.0F : lost ? 0.0F : 10 + at) << first << " at " << i;
        EXPECT_EQ(info.second[i], second > 6 || i >= second ? -1.0F : lost ? 0.0F : 20 + at) << second << " at " << i;
      }
    }
  }
}

TEST(Inventory, NamesASpecialToolByTheBaseNameOfItsFile) {
  const std::vector<std::pair<std::string, std::string>> names{{"C:\\x\\BIG.spt", "BIG"},
                                                               {"a/b.c/d.e.f", "d.e"},
                                                               {"c:name.spt", "name"},
                                                               {"mixed\\way/to.x\\tool.SPT", "tool"},
                                                               {"plain", "plain"},
                                                               {"C:\\x.y\\NOEXT", "NOEXT"},
                                                               {"folder\\", ""},
                                                               {"name.", "name"},
                                                               {"", ""},
                                                               {std::string("TOOL\0x/y.z", 10), "TOOL"},
                                                               {std::string(256, 'n'), std::string(256, 'n')},
                                                               {std::string(252, 'n') + ".spt", std::string(252, 'n')}};
  std::vector<OldTool> tools;
  std::vector<std::string> files;
  for (const auto& [file, name] : names) {
    files.push_back(file);
    tools.push_back(someTool(108));
    tools.back().specialToolIndex = static_cast<std::int32_t>(files.size());
  }
  const TempFolder folder;
  counted(folder, storedInventoryFile(150, tools, files));
  for (std::size_t i = 0; i < names.size(); ++i)
    EXPECT_EQ(std::string(Info(static_cast<std::int32_t>(i)).name), names[i].second) << names[i].first;
}

TEST(Inventory, QueryOfAMissingToolOrFileNameEndsTheProcess) {
  const TempFolder folder;
  std::vector<OldTool> tools;
  for (const std::int32_t index : {0, -1, 3, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
    tools.push_back(someTool(108));
    tools.back().specialToolIndex = index;
  }
  tools.push_back(someTool(1));
  tools.back().specialToolIndex = 99;
  // A larger inventory leaves a tool with a name in the memory after the last one.
  (void)counted(folder, storedInventoryFile(150, std::vector<OldTool>(8, someTool(1)), {}));
  const auto size = static_cast<std::int32_t>(counted(folder, storedInventoryFile(150, tools, {"a.spt", "b.spt"})));
  ASSERT_EQ(size, 6);
  for (std::int32_t i = 0; i < 5; ++i) EXPECT_DEATH(Info{i}, "invalid vector<T> subscript") << i;
  EXPECT_STREQ(Info(5).name, "ROUND");
  for (const std::int32_t i : {-1, size, std::numeric_limits<int>::max()}) EXPECT_DEATH(Info{i}, "") << i;
}

TEST(Inventory, CountOfADamagedFileIsZeroButItsToolsAreKept) {
  const TempFolder folder;
  const Bytes whole = storedInventoryFile(150, {someTool(3), someTool(103)}, {"a.spt"});
  Maker first;
  OldTool tool;
  storedTool(first, 150, false, 3, tool);
  const std::size_t firstEnd = 2 + 4 + 160 + first.bytes.size();
  for (std::size_t cut = 2; cut < whole.size(); ++cut) {
    const std::string path = folder.write("cut.inv", whole.cut(cut));
    std::uint32_t count = 99;
    ASSERT_EQ(LoadOldToolInventoryForCount(path.c_str(), &count), 0) << cut;
    ASSERT_EQ(count, 0U) << cut;
    if (cut >= firstEnd) {
      ASSERT_STREQ(Info(0).name, "RECTANGLE") << cut;
    }
    OldToolInventory inventory;
    ASSERT_EQ(LoadOldToolInventory(path.c_str(), &inventory), 1) << cut;
  }
}

TEST(Inventory, MissingShortAndRefusedFilesKeepTheCurrentTools) {
  const TempFolder folder;
  counted(folder, storedInventoryFile(60, {someTool(112)}, {}));
  std::uint32_t count = 9;
  EXPECT_EQ(LoadOldToolInventoryForCount(folder.path("none").c_str(), &count), -2);
  EXPECT_EQ(LoadOldToolInventoryForCount(folder.write("s", Bytes().u8(1)).c_str(), &count), 1);
  for (const int version : {1, 6, 52, 53, 61, 62, 71, 181, -150})
    EXPECT_EQ(LoadOldToolInventoryForCount(folder.write("r", Bytes().i16(version).add(madeInventory(54).first)).c_str(),
                                           &count),
              -1)
        << version;
  EXPECT_STREQ(Info(0).name, "GR");
}

TEST(Inventory, WithoutToolsTheRestIsReadAtVersion150) {
  const TempFolder folder;
  const InventoryForm form{{}, 2, 2};
  const std::string path = folder.write("n.inv", Bytes().i16(150).add(madeInventory(150, form).first));
  std::uint32_t count = 9;
  EXPECT_EQ(LoadOldToolInventoryForCount(path.c_str(), &count), 0);
  EXPECT_EQ(count, 0U);
  OldToolInventory inventory;
  EXPECT_EQ(LoadOldToolInventory(path.c_str(), &inventory), 0);
  Checker checker;
  storedInventory(checker, 150, form, inventory);
}

// ---- macros --------------------------------------------------------------------------------------

std::pair<Bytes, OldMacro> madeMacro(int version, const MacroForm& form = {}) {
  Maker maker;
  OldMacro made;
  storedMacro(maker, version, form, made);
  return {maker.bytes, made};
}

int readMacro(const Bytes& bytes, int version, OldMacro& macro, std::size_t* consumed = nullptr) {
  return readFrom(
      bytes, [&](InStream& s) { return ReadMacro(s, version, macro); }, consumed);
}

TEST(LoadsIntoNull, ReturnMinusTwo) {
  const TempFolder folder;
  const std::string file = folder.write("f", Bytes().i16(60).zeros(2000));
  EXPECT_EQ(LoadOldToolInventory(file.c_str(), nullptr), -2);
  EXPECT_EQ(LoadOldMacro(file.c_str(), nullptr), -2);
  EXPECT_EQ(LoadOldSpecialTool(file.c_str(), nullptr), -2);
  EXPECT_EQ(LoadOldMaterial(file.c_str(), nullptr), -2);
  EXPECT_EQ(LoadOldMachine(file.c_str(), nullptr), -2);
  EXPECT_EQ(LoadOldPart(file.c_str(), nullptr), -2);
  EXPECT_EQ(LoadGroupPart(file.c_str(), nullptr), -2);
  EXPECT_EQ(LoadOldSheet(file.c_str(), nullptr), -2);
}

TEST(Macro, FreshMacroIsZeroAndEmpty) {
  const OldMacro fresh;
  // Heads and blocks, the list's tag and kind, no shape, no item.
  EXPECT_EQ(written([&](OutStream& s) { return WriteMacro(s, 52, fresh); }), Bytes().zeros(72).i32(-1).i32(1).zeros(8));
  EXPECT_EQ(fresh.version, 0);
  EXPECT_EQ(fresh.macroTailWords[0], 0U);
  EXPECT_EQ(fresh.macroTailWords[1], 0U);
}

TEST(Macro, LoadsAndStoresItsFieldsAtEveryVersion) {
  for (const int version : allVersions())
    for (const MacroForm& form : {MacroForm{}, MacroForm{{}, 0, {}}, MacroForm{someShapes(), 0, {107, 0, 3}}}) {
      SCOPED_TRACE(version);
      const auto [bytes, made] = madeMacro(version, form);
      OldMacro macro;
      std::size_t consumed = 0;
      ASSERT_EQ(readMacro(Bytes(bytes).fill(9, 0xEE), version, macro, &consumed), 0);
      EXPECT_EQ(consumed, bytes.size());
      expectLoaded(macro, OldMacro(), [&](auto& m, OldMacro& one) { storedMacro(m, version, form, one); });
      bool ok = false;
      EXPECT_EQ(written([&, v = version, &one = made](OutStream& s) { return WriteMacro(s, v, one); }, &ok), bytes);
      EXPECT_TRUE(ok);
    }
}

TEST(Macro, LoadsAndSavesAtEveryAcceptedVersion) {
  const TempFolder folder;
  for (const int version : macroVersions()) {
    SCOPED_TRACE(version);
    const auto [bytes, made] = madeMacro(version);
    const Bytes file = Bytes().i16(version).add(bytes);
    OldMacro macro;
    ASSERT_EQ(LoadOldMacro(folder.write("m.mac", file).c_str(), &macro), 0);
    EXPECT_EQ(macro.version, version);
    Checker checker;
    storedMacro(checker, version, {}, macro);
    EXPECT_EQ(SaveMacro(folder.path("s.mac").c_str(), made, version), 0);
    EXPECT_EQ(TempFolder::read(folder.path("s.mac")), file);
  }
}

TEST(Macro, IsSavedOnlyAtTheVersionsOfItsList) {
  const TempFolder folder;
  const OldMacro macro;
  for (int version = 0; version <= 200; ++version)
    EXPECT_EQ(SaveMacro(folder.path("s.mac").c_str(), macro, version), contains(macroVersions(), version) ? 0 : -1)
        << version;
}

TEST(Macro, MissingAndShortFilesLeaveTheRecord) {
  const TempFolder folder;
  const std::pair<std::string, int> cases[] = {{folder.path("none.mac"), -2},
                                               {"", -2},
                                               {folder.write("empty.mac", Bytes()), 1},
                                               {folder.write("one.mac", Bytes().u8(150)), 1}};
  for (const auto& [path, status] : cases) {
    OldMacro macro;
    macro.version = 33;
    EXPECT_EQ(LoadOldMacro(path.c_str(), &macro), status) << path;
    EXPECT_EQ(macro.version, 33);
  }
}

TEST(Macro, CutAtAnyByteFailsAndKeepsTheFieldsBeforeIt) {
  for (const int version : {52, 54, 60, 62, 80, 110, 180}) {
    const auto [bytes, made] = madeMacro(version);
    Maker shapes;
    ShapeList shapeList;
    storedShapeList(shapes, version, someShapes(), shapeList);
    const std::size_t shapesEnd = 72 + shapes.bytes.size();
    const std::size_t itemSize = version < 62 ? 8 : version < 90 ? 44 : 48;
    const std::size_t trailer = bytes.size() - (version >= 80 ? 12 : 0);
    const std::size_t tail = trailer - (version >= 60 ? 8 : 0);
    for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
      SCOPED_TRACE(testing::Message() << version << " cut at " << cut);
      OldMacro macro;
      ASSERT_EQ(readMacro(bytes.cut(cut), version, macro), 1);
      const OldMacro fresh;
      ASSERT_TRUE(sameRaw(macro.macroHead, cut >= 16 ? made.macroHead : fresh.macroHead));
      ASSERT_TRUE(sameRaw(macro.macroHeadSecond, cut >= 24 ? made.macroHeadSecond : fresh.macroHeadSecond));
      ASSERT_EQ(macro.macroHeadWord, cut >= 28 ? made.macroHeadWord : 0U);
      ASSERT_TRUE(sameRaw(macro.macroBlock, cut >= 36 ? made.macroBlock : fresh.macroBlock));
      ASSERT_TRUE(sameRaw(macro.macroBlockLong, cut >= 72 ? made.macroBlockLong : fresh.macroBlockLong));
      ASSERT_EQ(macro.shapes.listTag, cut >= 76 ? made.shapes.listTag : -1);
      if (cut >= shapesEnd) {
        ASSERT_EQ(macro.shapes.shapes.size(), 3U);
      }
      const std::size_t items = cut < shapesEnd + 4 ? 0 : std::min<std::size_t>((cut - shapesEnd - 4) / itemSize, 2);
      ASSERT_EQ(macro.items.size(), items);
      if (cut >= tail) {
        ASSERT_EQ(macro.stationList.tools.size(), 2U);
      }
      ASSERT_EQ(macro.macroTailWords[0], cut >= tail + 4 ? made.macroTailWords[0] : 0U);
      ASSERT_EQ(macro.macroTailWords[1], cut >= tail + 8 ? made.macroTailWords[1] : 0U);
      for (std::size_t i = 0; i < 3 && cut >= trailer; ++i)
        ASSERT_EQ(macro.shapes.shapes[i].trailerValue,
                  cut >= trailer + 4 * i + 4 ? made.shapes.shapes[i].trailerValue : 0U);
    }
  }
}

// A stored shape count of 0 keeps the shapes, and then the trailer has a value for each of them.
TEST(Macro, TrailerHasOneValueForEachShapeOfTheRecord) {
  const MacroForm none{{}, 0, {}};
  for (const int version : {62, 79, 80, 180}) {
    const Bytes bytes = madeMacro(version, none).first;
    const Bytes more = Bytes(bytes).u32(71).u32(72).u32(73);
    OldMacro macro;
    macro.shapes.shapes.resize(3);
    std::size_t consumed = 0;
    ASSERT_EQ(readMacro(more, version, macro, &consumed), 0);
    EXPECT_EQ(consumed, bytes.size() + (version >= 80 ? 12 : 0));
    for (std::uint32_t i = 0; i < 3; ++i)
      EXPECT_EQ(macro.shapes.shapes[i].trailerValue, version >= 80 ? 71U + i : 0U) << version;
    EXPECT_EQ(readMacro(bytes, version, macro), version >= 80 ? 1 : 0);
  }
}

}  // namespace
