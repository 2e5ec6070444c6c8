// Texts in fixed fields, names and numbers.
#include "src/frame/text/text.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <limits>
#include <string>

namespace {

using namespace oldtorvio::frame;
using oldtorvio::fixedText;

TEST(Text, FieldsKeepTheBytesAfterTheNul) {
  char field[8] = {'1', '2', '3', '4', '5', '6', '7', '8'};
  EXPECT_EQ(fixedText(field), "12345678");
  setText(field, "ab");
  EXPECT_EQ(fixedText(field), "ab");
  EXPECT_EQ(field[3], '4');
  setText(field, "");
  EXPECT_EQ(fixedText(field), "");
  EXPECT_EQ(field[1], 'b');
  EXPECT_DEATH(setText(field, "12345678"), "");
}

TEST(Text, DriveIsALetterAndAColon) {
  for (const char* drive : {"a:", "z:", "A:", "Z:", "m:"})
    EXPECT_EQ(baseName(std::string(drive) + "x.y"), "x") << drive;
  for (const char* none : {"@:", "[:", "`:", "{:", "1:", "::", "aa:"})
    EXPECT_EQ(baseName(std::string(none) + "x.y"), std::string(none) + "x") << none;
  EXPECT_EQ(baseName("c:"), "");
  EXPECT_EQ(baseName(":"), ":");
}

TEST(Text, ComparisonFoldsLettersAToZOnly) {
  EXPECT_TRUE(equalNoCase("aZ09_", "Az09_"));
  EXPECT_FALSE(equalNoCase("a", "ab"));
  EXPECT_FALSE(equalNoCase("[", "{"));
  EXPECT_FALSE(equalNoCase("@", "`"));
  EXPECT_FALSE(equalNoCase("\xC4", "\xE4"));
  for (int a = 0; a < 256; ++a)
    for (int b = 0; b < 256; ++b) {
      const char x = static_cast<char>(a), y = static_cast<char>(b);
      const auto lower = [](int c) { return c >= 'A' && c <= 'Z' ? c + 32 : c; };
      ASSERT_EQ(equalNoCase({&x, 1}, {&y, 1}), lower(a) == lower(b));
    }
}

TEST(Text, BaseNameHasNeitherDriveNorFoldersNorExtension) {
  const std::pair<const char*, const char*> cases[] = {{"C:\\A\\B.PRT", "B"},
                                                       {"c:b.prt", "b"},
                                                       {"z:/a/b.c.prt", "b.c"},
                                                       {"Z:b", "b"},
                                                       {"{:b.prt", "{:b"},
                                                       {"@:b.prt", "@:b"},
                                                       {"1:b.prt", "1:b"},
                                                       {"C:", ""},
                                                       {":b", ":b"},
                                                       {"", ""},
                                                       {"C", "C"},
                                                       {"a\\", ""},
                                                       {".prt", ""},
                                                       {"C:.prt", ""},
                                                       {"cc:b", "cc:b"}};
  for (const auto& [path, name] : cases) EXPECT_EQ(baseName(path), name) << path;
}

TEST(Text, NumbersPrintAsInTheCLocale) {
  const double values[] = {0,
                           -0.0,
                           1,
                           -1,
                           0.5,
                           1e-5,
                           123456,
                           1234567,
                           1e100,
                           -1e-300,
                           3.14159265358979,
                           std::numeric_limits<double>::max(),
                           std::numeric_limits<double>::denorm_min()};
  for (const double value : values) {
    char printed[400];
    (void)std::snprintf(printed, sizeof printed, "%g", value);
    EXPECT_EQ(general(value), printed);
    (void)std::snprintf(printed, sizeof printed, "%6.3f", value);
    std::string fixed;
    appendFixed3(fixed, value);
    EXPECT_EQ(fixed, printed);
  }
  std::string integer;
  appendInteger(integer, std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(integer, "-9223372036854775808");
}

TEST(Text, FormatEndsWhereItsViewEnds) {
  constexpr std::string_view kText = "a%I64d";
  const auto printed = [&](std::size_t size) { return printedWithoutValues(kText.substr(0, size), 260); };
  EXPECT_EQ(printed(0), "");
  EXPECT_EQ(printed(1), "a");
  EXPECT_EQ(printed(2), "a");
  EXPECT_EQ(printed(3), "a");
  EXPECT_EQ(printed(4), "a6");
  EXPECT_EQ(printed(5), "a");
  EXPECT_EQ(printed(6), "a0");
}

}  // namespace
