// Names for the users of the records: the types of a status, a sheet set back to a new one, the list of known sheet
// versions, and texts in fixed fields.
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "OldTorvIO.h"
#include "OldTorvIO/fixed_text.h"
#include "OldTorvIO/sheet.h"
#include "src/frame/versions.h"
#include "tests/support/any_content.h"
#include "tests/support/files.h"
#include "tests/support/stored_forms/versions.h"
#include "torvio/values/equal.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;

// ---- types ---------------------------------------------------------------------------------------

static_assert(std::is_same_v<::Status, std::int64_t>);
static_assert(std::is_same_v<::Status32, std::int32_t>);
static_assert(std::is_same_v<::VersionWord, std::int16_t>);
static_assert(std::is_same_v<decltype(LoadOldPart("", nullptr)), ::Status>);
static_assert(std::is_same_v<decltype(LoadOldSheetInformation("")), ::Status32>);
static_assert(std::is_same_v<decltype(SaveTorvPart("", ::VersionWord{180})), ::Status>);

// The 27 bytes after the type of a setup entry end with setupByte4.
static_assert(offsetof(SetupEntry, setupShort2) == 2);
static_assert(offsetof(SetupEntry, setupBlock) == 16);
static_assert(offsetof(SetupEntry, setupWord1) == 24);
static_assert(offsetof(SetupEntry, setupByte4) == 28);

// ---- a new sheet ---------------------------------------------------------------------------------

// What InitOldSheet sets.
void setNewSheetValues(OldSheet& s) {
  std::strcpy(s.sheetName, "NEW SHEET");
  s.width = 60;
  s.height = 45;
  s.thickness = 0.048F;
  s.shapes.listKind = 0;
  s.textWidth = 256;
  s.processSlotMode = s.auxiliaryFlag = 1;
  s.processSlotCount = 0;
  s.rowTable.count = s.clampRowTable.count = 0;
  s.headerWord = s.partTextWord = 0;
  s.utilization = 0;
  const auto clear = [](auto&... arrays) { (std::memset(arrays, 0, sizeof arrays), ...); };
  clear(s.leadWords, s.trailingWords, s.rowTable.words, s.rowTable.values, s.clampRowTable.words);
  clear(s.clampRowTable.values);
  for (char* const text :
       {s.sheetPath, s.sheetLabel, s.skeletonDosName, s.partTexts[0], s.partTexts[1], s.partTexts[2], s.partTexts[3],
        s.partTexts[4], s.materialGroup, s.materialType, s.materialText3, s.materialText4, s.materialText5, s.lateText})
    *text = '\0';
}

TEST(InitOldSheet, SetsTheValuesOfANewSheetAndKeepsTheListsAndEverythingElse) {
  for (std::uint32_t seed = 0; seed < 8; ++seed) {
    const auto sheet = std::make_unique<OldSheet>();
    AnyContent(seed).fill(*sheet);
    const auto want = std::make_unique<OldSheet>(*sheet);
    setNewSheetValues(*want);
    for (int calls = 1; calls <= 2; ++calls) {
      oldtorvio::InitOldSheet(*sheet);
      ASSERT_EQ(values::firstDifference(*sheet, *want), std::nullopt) << "seed " << seed;
    }
  }
}

TEST(InitOldSheet, ChangesNothingInANewSheet) {
  const auto made = std::make_unique<OldSheet>(), again = std::make_unique<OldSheet>(),
             want = std::make_unique<OldSheet>();
  setNewSheetValues(*want);
  EXPECT_EQ(values::firstDifference(*made, *want), std::nullopt);
  oldtorvio::InitOldSheet(*again);
  EXPECT_EQ(values::firstDifference(*again, *made), std::nullopt);
  EXPECT_EQ(made->clampInfo.clampCount, 2);
  EXPECT_EQ(made->scratchShapes.listKind, 1);
  EXPECT_EQ(made->skeletonShapes.listKind, 1);
  EXPECT_EQ(made->shapes.listTag, -1);
}

// ---- known sheet versions ------------------------------------------------------------------------

TEST(KnownSheetVersionsList, HasTheDocumentedVersionsAndNoOther) {
  const std::vector<int> known = testing_support::joined({1, 6, 52}, testing_support::inventoryVersions());
  for (int v = -70000; v <= 70000; ++v)
    ASSERT_EQ(oldtorvio::KnownSheetVersions.has(v), testing_support::contains(known, v)) << v;
  for (const int v : {std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
    EXPECT_FALSE(oldtorvio::KnownSheetVersions.has(v));
}

// ---- texts in fixed fields -----------------------------------------------------------------------

TEST(FixedText, EndsAtItsNulOrWithItsField) {
  EXPECT_EQ(fixedText(std::array<char, 4>{'a', 'b', '\0', 'c'}), "ab");
  const char cut[4] = {'a', 'b', '\0', 'c'}, full[4] = {'a', 'b', 'c', 'd'}, empty[4] = {'\0', 'b', 'c', 'd'};
  const char last[4] = {'a', 'b', 'c', '\0'}, one[1] = {'x'}, none[1] = {'\0'};
  EXPECT_EQ(fixedText(cut), "ab");
  EXPECT_EQ(fixedText(full), "abcd");
  EXPECT_EQ(fixedText(empty), "");
  EXPECT_EQ(fixedText(last), "abc");
  EXPECT_EQ(fixedText(one), "x");
  EXPECT_EQ(fixedText(none), "");
  EXPECT_EQ(fixedText(cut).data(), static_cast<const char*>(cut)) << "not a copy";
  const std::array<char, 4> arrayFull = {'a', 'b', 'c', 'd'}, arrayEmpty = {};
  EXPECT_EQ(fixedText(arrayFull), "abcd");
  EXPECT_EQ(fixedText(arrayFull).data(), arrayFull.data());
  EXPECT_EQ(fixedText(arrayEmpty), "");
  static_assert(std::is_same_v<decltype(fixedText(cut)), std::string_view>);
  static_assert(std::is_same_v<decltype(fixedText(arrayFull)), std::string_view>);
}

template <class Field>
std::string contentOf(const Field& field) {
  return std::string(std::data(field), std::size(field));
}

template <class Field>
void expectCopies() {
  Field field;
  const std::size_t size = std::size(field);
  for (std::size_t length = 0; length <= size + 2; ++length) {
    std::memset(std::data(field), 'z', size);
    const std::string text(length, 't');
    const bool fits = length < size;
    EXPECT_EQ(setFixedText(field, text), fits) << length << " characters in " << size;
    // The text and its NUL; the bytes after them are as they were.
    const std::string want = fits ? text + '\0' + std::string(size - length - 1, 'z') : std::string(size, 'z');
    EXPECT_EQ(contentOf(field), want) << length << " characters in " << size;
    if (fits) {
      EXPECT_EQ(fixedText(field), text);
    }
  }
}

TEST(SetFixedText, CopiesATextThatFitsAndKeepsTheBytesAfterItsNul) {
  expectCopies<char[1]>();
  expectCopies<char[2]>();
  expectCopies<char[21]>();
  expectCopies<char[256]>();
  expectCopies<std::array<char, 1>>();
  expectCopies<std::array<char, 2>>();
  expectCopies<std::array<char, 256>>();
}

template <class Field>
void expectNoNulIsTaken() {
  Field field;
  for (std::size_t length = 1; length < std::size(field) + 2; ++length)
    for (std::size_t at = 0; at < length; ++at) {
      std::memset(std::data(field), 'z', std::size(field));
      std::string text(length, 't');
      text[at] = '\0';
      EXPECT_FALSE(setFixedText(field, text)) << at << " of " << length;
      EXPECT_EQ(contentOf(field), std::string(std::size(field), 'z')) << at << " of " << length;
    }
}

TEST(SetFixedText, RefusesATextWithANul) {
  expectNoNulIsTaken<char[8]>();
  expectNoNulIsTaken<std::array<char, 8>>();
}

TEST(SetFixedText, AcceptsAnyOtherByteAndAView) {
  char field[300];
  std::string all;
  for (int c = 1; c < 256; ++c) all.push_back(static_cast<char>(c));
  EXPECT_TRUE(setFixedText(field, all));
  EXPECT_EQ(fixedText(field), all);
  EXPECT_TRUE(setFixedText(field, std::string_view("abcdef").substr(2, 3)));
  EXPECT_EQ(fixedText(field), "cde");
  EXPECT_TRUE(setFixedText(field, std::string_view()));
  EXPECT_EQ(fixedText(field), "");
  EXPECT_EQ(field[1], 'd');
}

TEST(SetFixedText, TextMayBeAViewOfTheFieldItself) {
  char field[8] = "abcdef";
  EXPECT_TRUE(setFixedText(field, fixedText(field)));
  EXPECT_STREQ(field, "abcdef");
}

TEST(SetFixedText, FillsTheFieldsOfRecords) {
  const auto sheet = std::make_unique<OldSheet>();
  EXPECT_TRUE(setFixedText(sheet->materialGroup, "STEEL"));
  EXPECT_TRUE(setFixedText(sheet->partTexts[2], std::string(255, 'p')));
  EXPECT_FALSE(setFixedText(sheet->partTexts[2], std::string(256, 'q')));
  EXPECT_EQ(fixedText(sheet->partTexts[2]), std::string(255, 'p'));
  sheet->auxiliaryList.emplace_back();
  EXPECT_TRUE(setFixedText(sheet->auxiliaryList[0], "aux"));
  const TempFolder folder;
  ASSERT_EQ(SaveOldSheet(folder.path("sheet").c_str(), sheet.get(), 180), 0);
  const auto loaded = std::make_unique<OldSheet>();
  ASSERT_EQ(LoadOldSheet(folder.path("sheet").c_str(), loaded.get()), 0);
  EXPECT_EQ(fixedText(loaded->materialGroup), "STEEL");
  EXPECT_EQ(fixedText(loaded->partTexts[2]), std::string(255, 'p'));
}

}  // namespace
