// Special tool files, the current special tool, and the folder of special tools.
#include <gtest/gtest.h>

#include "OldTorvIO.h"
#include "src/tooling/special_tool_io.h"
#include "tests/support/files.h"
#include "tests/support/host.h"
#include "tests/support/special_tool_files.h"
#include "tests/support/stored_forms/versions.h"

namespace {

using namespace testing_support;

const std::vector<int>& kAccepted = specialToolVersions();

struct Answers {
  std::uint32_t shapeCount = 99;
  float orientation = -1, specialValue = -1, dimension[3] = {-1, -1, -1}, first[6], second[6], extra[2] = {-1, -1};
  std::int32_t firstCount = -1, secondCount = -1;
  std::uint8_t lateFlag = 77;
  std::int32_t status = -99;

  explicit Answers(const std::string& path) {
    for (int i = 0; i < 6; ++i) first[i] = second[i] = -1;
    status = OpenSpecialToolFile(path.c_str(), &shapeCount, &orientation, &specialValue, &dimension[0], &dimension[1],
                                 &dimension[2], &firstCount, &first[0], &first[1], &first[2], &first[3], &first[4],
                                 &first[5], &secondCount, &second[0], &second[1], &second[2], &second[3], &second[4],
                                 &second[5], &extra[0], &extra[1], &lateFlag);
  }
  bool untouched() const {
    return orientation == -1 && specialValue == -1 && dimension[0] == -1 && firstCount == -1 && first[5] == -1 &&
           secondCount == -1 && second[0] == -1 && extra[1] == -1 && lateFlag == 77;
  }
};

TEST(SpecialToolFile, LoadsAtEveryAcceptedVersionByteForByte) {
  const TempFolder folder;
  for (const int version : kAccepted)
    for (const std::int32_t code : {0, 1, 107, 108}) {
      SCOPED_TRACE(version);
      Maker maker;
      OldSpecialTool made;
      storedSpecialTool(maker, version, code, made);
      const std::string path = folder.write("a.spt", Bytes().i16(version).add(maker.bytes).fill(9, 0xFF));
      OldSpecialTool tool;
      ASSERT_EQ(LoadOldSpecialTool(path.c_str(), &tool), 0);
      Checker checker;
      storedSpecialTool(checker, version, code, tool);
      EXPECT_EQ(tool.tool.fileVersion, version);
      EXPECT_EQ(written([&](auto& s) { return WriteSpecialTool(s, version, made); }), maker.bytes);
      for (std::size_t cut = 0; cut < maker.bytes.size(); ++cut) {
        OldSpecialTool part;
        ASSERT_EQ(readFrom(maker.bytes.cut(cut), [&](auto& s) { return ReadSpecialTool(s, version, part); }), 1) << cut;
        if (code != 108 && cut % 7 != 0) continue;
        Checker arrived(cut);
        storedSpecialTool(arrived, version, code, part);
      }
    }
}

TEST(SpecialToolFile, AllVersionWordsReturnWhatTheListSays) {
  const TempFolder folder;
  for (int word = 0; word < 65536; ++word) {
    const std::string path = folder.overwrite("v.spt", Bytes().u16(static_cast<std::uint16_t>(word)));
    const bool accepted = std::find(kAccepted.begin(), kAccepted.end(), word) != kAccepted.end();
    OldSpecialTool tool;
    ASSERT_EQ(LoadOldSpecialTool(path.c_str(), &tool), accepted ? 1 : -1) << word;
    ASSERT_EQ(tool.tool.fileVersion, static_cast<std::int16_t>(word)) << "kept also when it is refused";
    if (word < 400 || word % 4096 == 0) {
      const Answers answers(path);
      ASSERT_EQ(answers.status, accepted ? 1 : -1) << word;
    }
  }
}

TEST(SpecialToolFile, AFreshRecordHasNoValueNoShapesAndNoSetup) {
  const OldSpecialTool fresh;
  EXPECT_EQ(fresh.specialValue, 0.0F);
  EXPECT_TRUE(fresh.shapes.shapes.empty());
  EXPECT_TRUE(fresh.setupList.entries.empty());
}

TEST(SpecialToolFile, MissingEmptyOneByteAndFolderPaths) {
  const TempFolder folder;
  OldSpecialTool tool;
  tool.tool.fileVersion = 5;
  EXPECT_EQ(LoadOldSpecialTool(folder.path("none").c_str(), &tool), -2);
  EXPECT_EQ(LoadOldSpecialTool("", &tool), -2);
  EXPECT_EQ(LoadOldSpecialTool(folder.path().c_str(), &tool), -2);
  EXPECT_EQ(LoadOldSpecialTool(nullptr, &tool), -2);
  EXPECT_EQ(LoadOldSpecialTool(folder.write("short", Bytes().u8(52)).c_str(), &tool), 1);
  EXPECT_EQ(LoadOldSpecialTool(folder.write("empty", Bytes()).c_str(), &tool), 1);
  EXPECT_EQ(LoadOldSpecialTool(folder.write("x", Bytes()).c_str(), nullptr), -2);
  EXPECT_EQ(tool.tool.fileVersion, 5);
}

TEST(SpecialToolFile, FirstSymmetryByteAddsToWhatTheDimensionSays) {
  for (const int version : {52, 110, 180})
    for (const std::int32_t code : {1, 107, 108})
      for (const float dimension3 : {0.0F, 1.0F, 2.0F, 3.0F})
        for (const int first : {0, 1, 2, 3, 4, 255})
          for (const int others : {0, 1, 2, 255}) {
            OldSpecialTool made, tool, again;
            made.tool.shapeCode = code;
            made.tool.dimension3 = dimension3;
            const Bytes file =
                heldSpecialToolFile(version, made, static_cast<std::uint8_t>(first), static_cast<std::uint8_t>(others));
            ASSERT_EQ(readFrom(from(file, 2), [&](auto& s) { return ReadSpecialTool(s, version, tool); }), 0);
            unsigned flags = code == 108 && dimension3 == 1 ? 1U : code == 108 && dimension3 == 2 ? 2U : 0U;
            if (first == 1 || first == 2) flags |= static_cast<unsigned>(first);
            EXPECT_EQ(tool.tool.symmetryFlags, flags) << code << " " << dimension3 << " " << first << " " << others;
            const Bytes stored = written([&](auto& s) { return WriteSpecialTool(s, version, tool); });
            ASSERT_EQ(readFrom(stored, [&](auto& s) { return ReadSpecialTool(s, version, again); }), 0);
            EXPECT_EQ(again.tool.symmetryFlags, flags);
          }
}

TEST(SpecialToolFile, ForOtherShapeCodesOnlyTheByteStoresTheFlags) {
  for (const std::uint32_t flags : {0U, 1U, 2U}) {
    OldSpecialTool tool, again;
    tool.tool.shapeCode = 1;
    tool.tool.dimension3 = 1;
    tool.tool.symmetryFlags = flags;
    const Bytes stored = written([&](auto& s) { return WriteSpecialTool(s, 110, tool); });
    ASSERT_EQ(readFrom(stored, [&](auto& s) { return ReadSpecialTool(s, 110, again); }), 0);
    EXPECT_EQ(again.tool.symmetryFlags, flags);
  }
}

TEST(SpecialToolFile, ReloadKeepsWhatTheLaterFileDoesNotStore) {
  OldSpecialTool tool;
  tool.tool.extraValues[1] = 41;
  tool.tool.firstValues[3] = 42;
  tool.tool.tailText[0] = 'x';
  tool.tool.symmetryFlags = 2;
  tool.tool.specialBlock[5] = 9;
  tool.shapes.shapes.resize(3);
  tool.setupList.entries.resize(2);
  const auto load = [&](int version, std::int32_t code, const std::vector<ShapeForm>& shapes) {
    OldSpecialTool made;
    Maker m;
    storedSpecialTool(m, version, code, made, shapes, 0);
    return readFrom(m.bytes, [&](auto& s) { return ReadSpecialTool(s, version, tool); });
  };
  EXPECT_EQ(load(54, 1, {}), 0);
  EXPECT_TRUE(tool.tool.extraValues[1] == 41 && tool.tool.tailText[0] == 'x' && tool.tool.specialBlock[5] == 9);
  EXPECT_EQ(tool.tool.firstValues[3], 0.0F);
  EXPECT_EQ(tool.tool.symmetryFlags, 2U);
  EXPECT_EQ(tool.shapes.shapes.size(), 3U);
  EXPECT_EQ(tool.setupList.entries.size(), 2U);
  EXPECT_EQ(load(60, 108, std::vector<ShapeForm>(2)), 0);
  EXPECT_EQ(tool.tool.symmetryFlags, 0U);
  EXPECT_NE(tool.tool.extraValues[1], 41.0F);
  EXPECT_EQ(tool.shapes.shapes.size(), 2U);
}

TEST(SpecialToolFile, WriterRefusesVersionsThatTheLoaderRefuses) {
  const TempFolder folder;
  const OldSpecialTool tool;
  EXPECT_EQ(SaveSpecialTool(folder.path("a").c_str(), tool, 53), -1);
  EXPECT_EQ(SaveSpecialTool(folder.path("a").c_str(), tool, 1), -1);
  EXPECT_EQ(SaveSpecialTool(folder.path("a").c_str(), tool, 52), 0);
  EXPECT_EQ(SaveSpecialTool(folder.path("no/such/folder").c_str(), tool, 52), -2);
}

TEST(CurrentSpecialTool, CopiesOutItsValuesAndShapes) {
  const TempFolder folder;
  for (const int version : kAccepted) {
    SCOPED_TRACE(version);
    // A file that stores everything first, so that nothing is left over from elsewhere.
    ASSERT_EQ(Answers(folder.write("z.spt", specialToolFile(180, {3}))).status, 0);
    Maker maker;
    OldSpecialTool made;
    storedSpecialTool(maker, version, 107, made);
    const OldTool& t = made.tool;
    const Answers a(folder.write("a.spt", Bytes().i16(version).add(maker.bytes)));
    EXPECT_EQ(a.status, 0);
    EXPECT_EQ(a.shapeCount, made.shapes.shapes.size());
    EXPECT_EQ(a.orientation, t.orientation);
    EXPECT_EQ(a.specialValue, made.specialValue);
    EXPECT_EQ(a.dimension[0], t.dimension1);
    EXPECT_EQ(a.dimension[1], t.dimension2);
    EXPECT_EQ(a.dimension[2], t.dimension3);
    EXPECT_EQ(a.firstCount, t.firstValueCount);
    EXPECT_EQ(a.secondCount, t.secondValueCount);
    for (int i = 0; i < 6; ++i) {
      EXPECT_EQ(a.first[i], t.firstValues[i]);
      EXPECT_EQ(a.second[i], t.secondValues[i]);
    }
    // Before 60 those of the first file stay.
    EXPECT_EQ(a.extra[0], version < 60 ? 40.0F : t.extraValues[0]);
    EXPECT_EQ(a.extra[1], version < 60 ? 41.0F : t.extraValues[1]);
    EXPECT_EQ(a.lateFlag, 0);
    for (std::int32_t i = 0; i < 3; ++i) {
      const Shape& shape = made.shapes.shapes[static_cast<std::size_t>(i)];
      std::int32_t type = 99;
      float x = 0, y = 0, v[4] = {};
      GetShapeAt(i, &type, &x, &y, &v[0], &v[1], &v[2], &v[3]);
      EXPECT_EQ(type, shape.type) << "widened with its sign";
      EXPECT_EQ(x, shape.x);
      EXPECT_EQ(y, shape.y);
      for (int k = 0; k < 4; ++k) EXPECT_EQ(v[k], shape.values[k]);
    }
  }
}

TEST(CurrentSpecialTool, ShapeIndexOutsideTheListLeavesTheOutputs) {
  const TempFolder folder;
  const Answers a(folder.write("a.spt", specialToolFile(110, {3, 4})));
  for (const std::int32_t index :
       {-1, 2, 3, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()}) {
    std::int32_t type = 42;
    float x = 42, y = 42, v[4] = {42, 42, 42, 42};
    GetShapeAt(index, &type, &x, &y, &v[0], &v[1], &v[2], &v[3]);
    EXPECT_EQ(type, 42);
    for (const float one : {x, y, v[0], v[1], v[2], v[3]}) EXPECT_EQ(one, 42.0F);
  }
}

TEST(CurrentSpecialTool, MissingShortAndRefusedFilesOnlyClearTheShapeCount) {
  const TempFolder folder;
  ASSERT_EQ(Answers(folder.write("a.spt", specialToolFile(110, {3}))).status, 0);
  const std::pair<std::string, std::int32_t> cases[] = {{folder.path("missing.spt"), -2},
                                                        {folder.write("empty.spt", Bytes()), 1},
                                                        {folder.write("short.spt", Bytes().u8(110)), 1},
                                                        {folder.write("refused.spt", Bytes().i16(53)), -1}};
  for (const auto& [path, status] : cases) {
    const Answers a(path);
    EXPECT_EQ(a.status, status);
    EXPECT_EQ(a.shapeCount, 0U);
    EXPECT_TRUE(a.untouched());
    std::int32_t type = 42;
    float x = 42, y = 42, v[4];
    GetShapeAt(0, &type, &x, &y, &v[0], &v[1], &v[2], &v[3]);
    EXPECT_EQ(type, 3) << "the earlier shapes stay";
  }
}

TEST(CurrentSpecialTool, FileThatFailsAfterItsShapesStillFillsTheOutputs) {
  const TempFolder folder;
  const Bytes whole = specialToolFile(110, {3, 4, 5});
  const Answers a(folder.write("a.spt", whole.cut(whole.size() - 2)));
  EXPECT_EQ(a.status, 1);
  EXPECT_EQ(a.shapeCount, 3U);
  EXPECT_EQ(a.dimension[0], 11.0F);
}

TEST(CurrentSpecialTool, FileWithoutShapesReportsThoseOfTheFileBefore) {
  const TempFolder folder;
  ASSERT_EQ(Answers(folder.write("a.spt", specialToolFile(110, {3, 4}))).shapeCount, 2U);
  const Answers a(folder.write("b.spt", specialToolFile(110, {}, 7.0F)));
  EXPECT_EQ(a.status, 0);
  EXPECT_EQ(a.shapeCount, 2U);
  EXPECT_EQ(a.dimension[2], 7.0F);
}

// Up to its shape count a file keeps the shapes of the one before it, and returns them and
// its own values; from there on its complete shapes count.
TEST(CurrentSpecialTool, FileThatEndsBeforeItsShapesReportsThoseOfTheFileBefore) {
  const TempFolder folder;
  const std::string before = folder.write("a.spt", specialToolFile(110, {3, 4}));
  const Bytes bare = specialToolFile(110, {}), one = specialToolFile(110, {5}), whole = specialToolFile(110, {5, 6, 7});
  const std::size_t shapesAt = bare.size() - 4, shape = one.size() - bare.size();
  for (std::size_t n = 2; n < whole.size(); ++n) {
    ASSERT_EQ(Answers(before).shapeCount, 2U);
    const Answers a(folder.write("b.spt", whole.cut(n)));
    EXPECT_EQ(a.status, 1) << n;
    const std::size_t shapes = n < shapesAt ? 2 : std::min<std::size_t>((n - shapesAt) / shape, 3);
    EXPECT_EQ(a.shapeCount, shapes) << n;
    EXPECT_EQ(a.untouched(), shapes == 0) << n;
  }
}

TEST(CurrentSpecialTool, FieldThatALaterFileDoesNotStoreKeepsItsValue) {
  const TempFolder folder;
  ASSERT_EQ(Answers(folder.write("a.spt", specialToolFile(60, {3}))).extra[0], 40.0F);
  const Answers a(folder.write("b.spt", specialToolFile(54, {3})));
  EXPECT_EQ(a.status, 0);
  EXPECT_EQ(a.extra[0], 40.0F);
}

TEST(CurrentSpecialTool, IsEmptyInAFreshProcess) {
  if (!testing_support::kStartsProcesses) GTEST_SKIP() << "an emulated processor";
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const TempFolder folder;
  const std::string path = folder.write("a.spt", specialToolFile(110, {}));
  EXPECT_EXIT(
      {
        const Answers a(path);
        std::filesystem::remove_all(folder.path());  // leaving so runs no destructor
        std::exit(a.status == 0 && a.shapeCount == 0 && a.untouched() ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

// ---- the folder of special tools -----------------------------------------------------------------

TEST(SpecialToolFolder, IsReadFromTheConfiguration) {
  const std::string fallback = "C:\\KESTRADA\\SPECTOOL\\";
  const std::string key = "ZRK_DEFAULT_SPECIAL_TOOL_PATH=";
  const std::pair<std::string, std::string> cases[] = {
      {"", fallback},
      {"[Kestrada64bit]\n" + key + "D:\\A\\\n", "D:\\A\\"},
      {"[Kestrada]\n" + key + "D:\\B\n", "D:\\B"},
      {"[Kestrada]\n" + key + "D:\\B\n[Kestrada64bit]\n" + key + "D:\\A\n", "D:\\A"},
      {"[Kestrada64bit]\n" + key + "\n[Kestrada]\n" + key + "D:\\B\n", "D:\\B"},
      {"[KESTRADA64BIT]\r\nzrk_default_special_tool_path = D:\\A \r\n", "D:\\A"},
      {"[Kestrada64bit]\n" + key + "\"D:\\A B\\\"\n", "D:\\A B\\"},
      {"[Kestrada64bit]\n" + key + "  'D:\\A B'  \n", "D:\\A B"},
      {"[Kestrada64bit]\n" + key + "\" x \"\n", " x "},
      {"[Kestrada64bit]\n" + key + "\"\"\n[Kestrada]\n" + key + "D:\\B\n", "D:\\B"},
      {"[Kestrada64bit]\n\n" + key + "D:\\A\n", "D:\\A"},
      {"[Kestrada64bit]\n; " + key + "D:\\A\n", fallback},
      {"[Other]\n" + key + "D:\\A\n", fallback},
      {"[Kestrada64bit]\n" + key + "D:\\A\n" + key + "D:\\B\n", "D:\\A"},
      {key + "D:\\A\n", fallback},
      {"[Kestrada64bit]\nOTHER=D:\\A\n[Kestrada]\n" + key + "D:\\B\n", "D:\\B"},
      {"[Kestrada64bit]\nnonsense\n" + key + "D:\\A", "D:\\A"},
      {"[Kestrada64bit]\n[Kestrada64bit]\n" + key + "D:\\A", fallback},
      {"[Kestrada64bit\n" + key + "D:\\A", fallback},
      {"[Kestrada64bit]\n" + key + std::string(300, 'x'), std::string(260, 'x')},
      // A value of quotes only, quotes that do not close or differ, quotes inside, and text after them.
      {"[Kestrada64bit]\n" + key + "\"\"\n[Kestrada]\n" + key + "D:\\B\n", "D:\\B"},
      {"[Kestrada64bit]\n" + key + "\"\n", "\""},
      {"[Kestrada64bit]\n" + key + "\"D:\\A\n", "\"D:\\A"},
      {"[Kestrada64bit]\n" + key + "D:\\A\"\n", "D:\\A\""},
      {"[Kestrada64bit]\n" + key + "\"D:\\A'\n", "\"D:\\A'"},
      {"[Kestrada64bit]\n" + key + "'\"D:\\A\"'\n", "\"D:\\A\""},
      {"[Kestrada64bit]\n" + key + "D:\\\"A\"\n", "D:\\\"A\""},
      {"[Kestrada64bit]\n" + key + "\"D:\\A\" ; note\n", "\"D:\\A\" ; note"},
      // Nothing but a semicolon at the front of a line makes a comment.
      {"[Kestrada64bit]\n" + key + "D:\\A;B\n", "D:\\A;B"},
      {"[Kestrada64bit]\n  ; " + key + "D:\\A\n" + key + "D:\\B\n", "D:\\B"},
      {"[Kestrada64bit]\n# " + key + "D:\\A\n", fallback},
      // Blanks around everything, and inside.
      {"  [Kestrada64bit]  \n\t" + key.substr(0, key.size() - 1) + "\t=\tD:\\A\t\n", "D:\\A"},
      {"[ Kestrada64bit ]\n" + key + "D:\\A\n", "D:\\A"},
      {"[Kestrada64bit] behind\n" + key + "D:\\A\n", "D:\\A"},
      {"[Kestrada64bit]\n\n\n" + key + "D:\\A  B\n", "D:\\A  B"},
      {"[Kestrada64bit]\n" + key + "   \n", fallback},
      // Signs of equality, keys without one, longer and shorter keys.
      {"[Kestrada64bit]\n" + key + "=D:\\A=B\n", "=D:\\A=B"},
      {"[Kestrada64bit]\n" + key.substr(0, key.size() - 1) + "\n", fallback},
      {"[Kestrada64bit]\nX" + key + "D:\\A\n", fallback},
      {"[Kestrada64bit]\n" + key.substr(1) + "D:\\A\n", fallback},
      {"[Kestrada64bit]\n=D:\\A\n" + key + "D:\\B\n", "D:\\B"},
      // Other sections before and after, a bracket inside a value, a line end of its own kind.
      {"[A]\n" + key + "D:\\A\n[Kestrada64bit]\n" + key + "D:\\B\n[C]\n" + key + "D:\\C\n", "D:\\B"},
      {"[Kestrada64bit]\n" + key + "D:\\[A]\n", "D:\\[A]"},
      {"[Kestrada64bit]\r\n" + key + "D:\\A\r\n\r\n", "D:\\A"},
      {"[Kestrada64bit]\n" + key + "D:\\A\n\x1A[Kestrada64bit]\n", "D:\\A"},
      {"[Kestrada64]\n" + key + "D:\\A\n[Kestrada64bits]\n" + key + "D:\\B\n", fallback},
  };
  for (const auto& [content, folder] : cases) {
    const WinIni ini(content);
    EXPECT_EQ(GetSpecialToolFolder(), folder) << content;
  }
}

#if !defined(_WIN32)
TEST(SpecialToolFolder, LooksInTheUsersConfigurationAndThenInTheSystems) {
  const TempFolder user, first, second;
  const auto configure = [](const TempFolder& folder, const std::string& value) {
    std::filesystem::create_directories(folder.path("OldTorvIO"));
    std::ofstream(folder.path("OldTorvIO") + "/win.ini") << WinIni::folderSetting(value);
  };
  const Environment ofUser("XDG_CONFIG_HOME", user.path());
  const Environment ofOthers("XDG_CONFIG_DIRS", "relative::" + first.path() + ":" + second.path());
  EXPECT_EQ(GetSpecialToolFolder(), "C:\\KESTRADA\\SPECTOOL\\");
  configure(second, "second");
  EXPECT_EQ(GetSpecialToolFolder(), "second");
  configure(first, "first");
  EXPECT_EQ(GetSpecialToolFolder(), "first");
  configure(user, "user");
  EXPECT_EQ(GetSpecialToolFolder(), "user");

  const TempFolder home;
  std::filesystem::create_directories(home.path(".config/OldTorvIO"));
  std::ofstream(home.path(".config/OldTorvIO/win.ini")) << WinIni::folderSetting("home");
  const Environment unnamed("XDG_CONFIG_HOME", std::nullopt), atHome("HOME", home.path());
  EXPECT_EQ(GetSpecialToolFolder(), "home");
  const Environment homeless("HOME", std::nullopt);
  EXPECT_EQ(GetSpecialToolFolder(), "first");
  const Environment ofOneOther("XDG_CONFIG_DIRS", second.path());
  EXPECT_EQ(GetSpecialToolFolder(), "second");
  const Environment ofNoOther("XDG_CONFIG_DIRS", std::nullopt);
  (void)GetSpecialToolFolder();  // the system's own folder, whatever it holds
}

TEST(SpecialToolFolder, IsNeverLookedUpInTheWorkingDirectory) {
  const TempFolder here;
  std::filesystem::create_directories(here.path("OldTorvIO"));
  std::ofstream(here.path("OldTorvIO/win.ini")) << WinIni::folderSetting("here");
  std::ofstream(here.path("win.ini")) << WinIni::folderSetting("here");
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path(here.path());
  const Environment ofUser("XDG_CONFIG_HOME", "."), ofOthers("XDG_CONFIG_DIRS", ".");
  EXPECT_EQ(GetSpecialToolFolder(), "C:\\KESTRADA\\SPECTOOL\\");
  std::filesystem::current_path(before);
}
#endif

}  // namespace
