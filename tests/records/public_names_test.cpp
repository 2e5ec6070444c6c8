// Names for the users of the records: the types of a status, a sheet set back to a new one, the list of known sheet
// versions, and texts in fixed fields.
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "OldTorvIO.h"
#include "OldTorvIO/fixed_text.h"
#include "OldTorvIO/sheet.h"
#include "src/frame/versions.h"
#include "tests/support/bytes.h"
#include "tests/support/files.h"
#include "tests/support/stored_forms/versions.h"

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

// Numbers, and arrays of any depth, set to something that is no default.
template <class T>
void dirty(T& field) {
  if constexpr (std::is_array_v<T>) {
    for (auto& one : field) dirty(one);
  } else {
    field = static_cast<T>(77);
  }
}
template <class T>
bool isAll(const T& field, int value) {
  if constexpr (std::is_array_v<T>) {
    for (const auto& one : field)
      if (!isAll(one, value)) return false;
    return true;
  } else {
    return field == static_cast<T>(value);
  }
}

std::unique_ptr<OldSheet> dirtySheet() {
  auto owner = std::make_unique<OldSheet>();
  OldSheet& s = *owner;
  dirty(s.version), dirty(s.sheetName), dirty(s.sheetPath), dirty(s.width), dirty(s.height), dirty(s.thickness);
  s.partList.parts.resize(2), dirty(s.partList.nameWidth);
  s.setupList.entries.resize(3), dirty(s.setupList.tailWord1), dirty(s.setupList.tailBlock);
  s.shapes.shapes.resize(4), dirty(s.shapes.listKind), dirty(s.shapes.listTag);
  s.patternItems.resize(5), s.marks.resize(6), s.profiles.resize(7);
  dirty(s.transformKind), dirty(s.transform);
  s.scratchShapes.shapes.resize(8), dirty(s.scratchShapes.listKind), dirty(s.scratchShapes.listTag);
  dirty(s.headerWord), s.stepTables.resize(9);
  dirty(s.processSlotCount), dirty(s.processSlotMode);
  s.processSlots[0].slotKind = s.processSlots[249].slotKind = 77;
  s.auxiliaryList.resize(10), dirty(s.auxiliaryFlag), s.blocks.resize(11), dirty(s.textWidth), dirty(s.sheetLabel);
  s.workList.resize(12);
  dirty(s.rowTable.count), dirty(s.rowTable.words), dirty(s.rowTable.values);
  dirty(s.clampRowTable.count), dirty(s.clampRowTable.words), dirty(s.clampRowTable.values);
  dirty(s.clampInfo.clampCount), dirty(s.clampInfo.clampSpacing), dirty(s.clampInfo.clampPositions);
  dirty(s.paramTable.version), dirty(s.paramTable.intParams), dirty(s.paramTable.nameLength), dirty(s.paramTable.name);
  dirty(s.leadWords), dirty(s.machine.textWidth), dirty(s.machine.path), dirty(s.optionWord);
  s.textEntries.resize(13), s.namedWorkLists.resize(14), dirty(s.trailingWords);
  s.skeletonShapes.shapes.resize(15), dirty(s.skeletonShapes.listKind), dirty(s.skeletonShapes.listTag);
  dirty(s.skeletonDosName), dirty(s.utilization), dirty(s.partTexts), dirty(s.partTextWord);
  dirty(s.materialGroup), dirty(s.materialType), dirty(s.materialText3), dirty(s.materialText4), dirty(s.materialText5);
  dirty(s.lateValue), dirty(s.lateText);
  return owner;
}

void expectNewSheetValues(const OldSheet& s) {
  EXPECT_EQ(fixedText(s.sheetName), "NEW SHEET");
  EXPECT_EQ(fixedText(s.sheetPath), "");
  EXPECT_EQ(s.width, 60.0F);
  EXPECT_EQ(s.height, 45.0F);
  EXPECT_EQ(s.thickness, 0.048F);
  EXPECT_EQ(s.processSlotCount, 0);
  EXPECT_EQ(s.rowTable.count, 0);
  EXPECT_TRUE(isAll(s.rowTable.words, 0) && isAll(s.rowTable.values, 0));
  EXPECT_EQ(s.clampRowTable.count, 0);
  EXPECT_TRUE(isAll(s.clampRowTable.words, 0) && isAll(s.clampRowTable.values, 0));
  EXPECT_EQ(s.shapes.listKind, 0);
  EXPECT_EQ(s.headerWord, 0U);
  EXPECT_EQ(fixedText(s.sheetLabel), "");
  EXPECT_TRUE(isAll(s.leadWords, 0));
  EXPECT_TRUE(isAll(s.trailingWords, 0));
  EXPECT_EQ(fixedText(s.skeletonDosName), "");
  EXPECT_EQ(s.utilization, 0.0F);
  for (const auto& text : s.partTexts) EXPECT_EQ(fixedText(text), "");
  EXPECT_EQ(s.partTextWord, 0U);
  for (const auto* text : {&s.materialGroup, &s.materialType, &s.materialText3, &s.materialText4, &s.materialText5})
    EXPECT_EQ(fixedText(*text), "");
  EXPECT_EQ(fixedText(s.lateText), "");
  EXPECT_EQ(s.processSlotMode, 1);
  EXPECT_EQ(s.auxiliaryFlag, 1);
  EXPECT_EQ(s.textWidth, 256);
}

TEST(InitOldSheet, SetsTheValuesOfANewSheet) {
  const auto sheet = dirtySheet();
  oldtorvio::InitOldSheet(*sheet);
  expectNewSheetValues(*sheet);
  oldtorvio::InitOldSheet(*sheet);
  expectNewSheetValues(*sheet);
}

TEST(InitOldSheet, KeepsTheListsAndEverythingElse) {
  const auto owner = dirtySheet();
  const OldSheet& s = *owner;
  oldtorvio::InitOldSheet(*owner);
  EXPECT_EQ(s.version, 77);
  EXPECT_EQ(s.partList.parts.size(), 2U);
  EXPECT_EQ(s.partList.nameWidth, 77);
  EXPECT_EQ(s.setupList.entries.size(), 3U);
  EXPECT_EQ(s.setupList.tailWord1, 77U);
  EXPECT_TRUE(isAll(s.setupList.tailBlock, 77));
  EXPECT_EQ(s.shapes.shapes.size(), 4U);
  EXPECT_EQ(s.shapes.listTag, 77);
  EXPECT_EQ(s.patternItems.size(), 5U);
  EXPECT_EQ(s.marks.size(), 6U);
  EXPECT_EQ(s.profiles.size(), 7U);
  EXPECT_EQ(s.transformKind, 77);
  EXPECT_TRUE(isAll(s.transform, 77));
  EXPECT_EQ(s.scratchShapes.shapes.size(), 8U);
  EXPECT_EQ(s.scratchShapes.listKind, 77);
  EXPECT_EQ(s.scratchShapes.listTag, 77);
  EXPECT_EQ(s.stepTables.size(), 9U);
  EXPECT_EQ(s.processSlots[0].slotKind, 77);
  EXPECT_EQ(s.processSlots[249].slotKind, 77);
  EXPECT_EQ(s.auxiliaryList.size(), 10U);
  EXPECT_EQ(s.blocks.size(), 11U);
  EXPECT_EQ(s.workList.size(), 12U);
  EXPECT_EQ(s.clampInfo.clampCount, 77);
  EXPECT_EQ(s.clampInfo.clampSpacing, 77.0F);
  EXPECT_TRUE(isAll(s.clampInfo.clampPositions, 77));
  EXPECT_EQ(s.paramTable.version, 77);
  EXPECT_TRUE(isAll(s.paramTable.intParams, 77));
  EXPECT_EQ(s.paramTable.nameLength, 77);
  EXPECT_TRUE(isAll(s.paramTable.name, 77));
  EXPECT_EQ(s.machine.textWidth, 77);
  EXPECT_TRUE(isAll(s.machine.path, 77));
  EXPECT_EQ(s.optionWord, 77U);
  EXPECT_EQ(s.textEntries.size(), 13U);
  EXPECT_EQ(s.namedWorkLists.size(), 14U);
  EXPECT_EQ(s.skeletonShapes.shapes.size(), 15U);
  EXPECT_EQ(s.skeletonShapes.listKind, 77);
  EXPECT_EQ(s.skeletonShapes.listTag, 77);
  EXPECT_EQ(s.lateValue, 77.0);
}

TEST(InitOldSheet, ChangesNothingInANewSheet) {
  const TempFolder folder;
  const auto made = std::make_unique<OldSheet>(), again = std::make_unique<OldSheet>();
  expectNewSheetValues(*made);
  oldtorvio::InitOldSheet(*again);
  EXPECT_EQ(again->clampInfo.clampCount, 2);
  EXPECT_EQ(again->scratchShapes.listKind, 1);
  EXPECT_EQ(again->skeletonShapes.listKind, 1);
  EXPECT_EQ(again->shapes.listTag, -1);
  for (const std::uint16_t version : std::vector<std::uint16_t>{52, 60, 111, 180}) {
    ASSERT_EQ(SaveOldSheet(folder.path("made").c_str(), made.get(), version), 0);
    ASSERT_EQ(SaveOldSheet(folder.path("again").c_str(), again.get(), version), 0);
    EXPECT_TRUE(TempFolder::read(folder.path("made")) == TempFolder::read(folder.path("again"))) << version;
  }
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
