// The stored form of one tool, put together field by field.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdio>
#include <functional>
#include <limits>
#include <memory>

#include "src/records/record_io.h"
#include "tests/support/bytes.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;

// One stored field and what its arrival changes in the record. A field without bytes stands for
// something that the reader does at this place.
struct Field {
  Bytes stored;
  std::function<void(OldTool&)> arrive;
};

class Fields {
 public:
  explicit Fields(const OldTool& from) : from_(from) {}
  template <class T>
  void word(T OldTool::*member) {
    const T value = from_.*member;
    all_.push_back({Bytes().u32(std::bit_cast<std::uint32_t>(value)), [=](OldTool& to) { to.*member = value; }});
  }
  template <class T, std::size_t N>
  void entry(T (OldTool::*member)[N], std::size_t at) {
    const T value = (from_.*member)[at];
    all_.push_back({Bytes().u32(std::bit_cast<std::uint32_t>(value)), [=](OldTool& to) { (to.*member)[at] = value; }});
  }
  template <class T, std::size_t N>
  void block(T (OldTool::*member)[N]) {
    Bytes stored;
    for (const T one : from_.*member) stored.u8(static_cast<std::uint8_t>(one));
    all_.push_back({stored, [=, from = from_](OldTool& to) { std::memcpy(to.*member, from.*member, N); }});
  }
  void step(std::function<void(OldTool&)> step) { all_.push_back({Bytes(), std::move(step)}); }
  const std::vector<Field>& all() const { return all_; }

 private:
  OldTool from_;
  std::vector<Field> all_;
};

// The flags that a tool of code 108 repeats by: compared in double, computed in single precision.
std::uint32_t symmetryOf(float dimension3) {
  const float offHalf = dimension3 - 1.0F;
  if (std::fabs(static_cast<double>(offHalf)) < 0.0001) return 1;
  const float offQuarter = dimension3 - 2.0F;
  return std::fabs(static_cast<double>(offQuarter)) < 0.0001 ? 2 : 0;
}

std::vector<Field> fieldsOf(const OldTool& tool, int version, bool pathIsStored) {
  Fields f(tool);
  f.word(&OldTool::orientation);
  f.word(&OldTool::shapeCode);
  if (tool.shapeCode == 108 && version >= 90) f.block(&OldTool::specialBlock);
  f.word(&OldTool::specialToolIndex);
  if (tool.shapeCode == 108 && pathIsStored) f.block(&OldTool::specialToolPath);
  f.word(&OldTool::auxWord1);
  f.word(tool.shapeCode == 107 ? &OldTool::dimension2 : &OldTool::dimension1);
  f.word(tool.shapeCode == 107 ? &OldTool::dimension1 : &OldTool::dimension2);
  f.word(&OldTool::dimension3);
  if (tool.shapeCode == 108) f.step([](OldTool& to) { to.symmetryFlags = symmetryOf(to.dimension3); });
  for (const auto& [count, values] : {std::pair{&OldTool::firstValueCount, &OldTool::firstValues},
                                      std::pair{&OldTool::secondValueCount, &OldTool::secondValues}}) {
    f.word(count);
    for (std::size_t i = 0; i < 3; ++i) f.entry(values, i);
    if (version >= 110) {
      f.entry(values, 3);
      f.entry(values, 4);
    } else {
      f.step([v = values](OldTool& to) { (to.*v)[3] = (to.*v)[4] = 0; });
    }
    f.entry(values, 5);
  }
  f.word(&OldTool::auxWord2);
  f.word(&OldTool::auxWord3);
  if (version >= 60)
    for (std::size_t i = 0; i < 2; ++i) f.entry(&OldTool::extraValues, i);
  if (version >= 110)
    for (std::size_t i = 0; i < 4; ++i) f.entry(&OldTool::lateWords, i);
  if (version >= 111) {
    f.block(&OldTool::tailBlock);
    f.block(&OldTool::tailText);
  }
  return f.all();
}

Bytes storedForm(const OldTool& tool, int version, bool pathIsStored) {
  Bytes all;
  for (const Field& field : fieldsOf(tool, version, pathIsStored)) all.add(field.stored);
  return all;
}

// Every field another value, no two alike; `seed` tells two tools apart. The texts hold no NUL up to
// their last byte.
OldTool distinctTool(std::int32_t shapeCode, int seed = 0) {
  OldTool tool;
  float real = 1.5F + static_cast<float>(seed) * 1000.0F;
  std::uint32_t word = 0x11223344U + static_cast<std::uint32_t>(seed) * 0x01000193U;
  const auto nextReal = [&] { return real += 3.25F; };
  const auto nextWord = [&] { return word += 0x01020305U; };
  tool.orientation = nextReal();
  tool.shapeCode = shapeCode;
  tool.specialToolIndex = static_cast<std::int32_t>(nextWord());
  tool.auxWord1 = nextWord();
  for (float* one : {&tool.dimension1, &tool.dimension2, &tool.dimension3}) *one = nextReal();
  tool.firstValueCount = 4 + seed;
  for (float& one : tool.firstValues) one = nextReal();
  tool.secondValueCount = 5 + seed;
  for (float& one : tool.secondValues) one = nextReal();
  tool.auxWord2 = nextWord();
  tool.auxWord3 = nextWord();
  tool.symmetryFlags = nextWord();
  tool.runtimeIndexA = static_cast<std::int32_t>(nextWord());
  tool.runtimeIndexB = static_cast<std::int32_t>(nextWord());
  for (float& one : tool.extraValues) one = nextReal();
  tool.fileVersion = static_cast<std::int16_t>(1234 + seed);
  tool.lateFlag = static_cast<std::uint8_t>(0x5A + seed);
  tool.lateFlag2 = static_cast<std::uint8_t>(0x6B + seed);
  for (std::uint32_t& one : tool.lateWords) one = nextWord();
  int byte = 7 + 31 * seed;
  const auto fill = [&](auto& bytes) {
    for (auto& one : bytes) one = static_cast<std::remove_reference_t<decltype(one)>>(1 + byte++ % 255);
  };
  fill(tool.specialBlock);
  fill(tool.specialToolPath);
  fill(tool.tailBlock);
  fill(tool.tailText);
  return tool;
}

// The names of the fields in which two tools differ, bit by bit.
std::string differences(const OldTool& a, const OldTool& b) {
  std::string names;
  const auto compare = [&](const char* name, const auto& x, const auto& y) {
    if (std::memcmp(&x, &y, sizeof x) != 0) names += std::string(name) + " ";
  };
  compare("orientation", a.orientation, b.orientation);
  compare("shapeCode", a.shapeCode, b.shapeCode);
  if (a.name != b.name) names += "name ";
  compare("specialToolIndex", a.specialToolIndex, b.specialToolIndex);
  compare("auxWord1", a.auxWord1, b.auxWord1);
  compare("dimension1", a.dimension1, b.dimension1);
  compare("dimension2", a.dimension2, b.dimension2);
  compare("dimension3", a.dimension3, b.dimension3);
  compare("firstValueCount", a.firstValueCount, b.firstValueCount);
  compare("firstValues", a.firstValues, b.firstValues);
  compare("secondValueCount", a.secondValueCount, b.secondValueCount);
  compare("secondValues", a.secondValues, b.secondValues);
  compare("auxWord2", a.auxWord2, b.auxWord2);
  compare("auxWord3", a.auxWord3, b.auxWord3);
  compare("symmetryFlags", a.symmetryFlags, b.symmetryFlags);
  compare("runtimeIndexA", a.runtimeIndexA, b.runtimeIndexA);
  compare("runtimeIndexB", a.runtimeIndexB, b.runtimeIndexB);
  compare("extraValues", a.extraValues, b.extraValues);
  compare("specialBlock", a.specialBlock, b.specialBlock);
  compare("fileVersion", a.fileVersion, b.fileVersion);
  compare("specialToolPath", a.specialToolPath, b.specialToolPath);
  compare("lateFlag", a.lateFlag, b.lateFlag);
  compare("lateFlag2", a.lateFlag2, b.lateFlag2);
  compare("lateWords", a.lateWords, b.lateWords);
  compare("tailBlock", a.tailBlock, b.tailBlock);
  compare("tailText", a.tailText, b.tailText);
  return names;
}

// What `before` becomes when the first `cut` bytes of the stored form are all there is.
OldTool afterReading(OldTool before, const std::vector<Field>& fields, std::size_t cut) {
  std::size_t end = 0;
  for (const Field& field : fields) {
    end += field.stored.size();
    if (end > cut) break;
    field.arrive(before);
  }
  return before;
}

int readTool(const Bytes& bytes, int version, bool pathIsStored, OldTool& tool, std::size_t* consumed = nullptr) {
  return readFrom(
      bytes, [&](InStream& s) { return ReadOldTool(s, version, pathIsStored, tool); }, consumed);
}

Bytes writtenTool(const OldTool& tool, int version, bool pathIsStored) {
  bool ok = false;
  const Bytes bytes = written([&](OutStream& s) { return WriteOldTool(s, version, pathIsStored, tool); }, &ok);
  EXPECT_TRUE(ok);
  return bytes;
}

// Both sides of every gate, and the ends of the signed 16 bits.
const int kVersions[] = {-32768, -1, 0, 2, 52, 59, 60, 61, 89, 90, 91, 109, 110, 111, 112, 130, 162, 180, 32767};
const std::int32_t kCodes[] = {0, 1, 3, 9, 33, 103, 104, 105, 106, 107, 108, 109, 110, 111, 112, -108, 364, INT_MIN};

template <class Fn>
void forEachForm(Fn&& fn) {
  for (const int version : kVersions)
    for (const std::int32_t code : kCodes)
      for (const bool pathIsStored : {false, true}) {
        SCOPED_TRACE(testing::Message() << "version " << version << ", code " << code << ", path " << pathIsStored);
        fn(version, code, pathIsStored);
      }
}

TEST(ToolByHand, FreshToolIsZeroButForItsRuntimeIndices) {
  const OldTool tool;
  EXPECT_EQ(tool.orientation, 0.0F);
  EXPECT_EQ(tool.shapeCode, 0);
  EXPECT_EQ(tool.name, "");
  EXPECT_EQ(tool.specialToolIndex, 0);
  EXPECT_EQ(tool.auxWord1, 0U);
  for (const float one : {tool.dimension1, tool.dimension2, tool.dimension3}) EXPECT_EQ(one, 0.0F);
  EXPECT_EQ(tool.firstValueCount, 0);
  EXPECT_EQ(tool.secondValueCount, 0);
  for (const float one : tool.firstValues) EXPECT_EQ(one, 0.0F);
  for (const float one : tool.secondValues) EXPECT_EQ(one, 0.0F);
  EXPECT_EQ(tool.auxWord2, 0U);
  EXPECT_EQ(tool.auxWord3, 0U);
  EXPECT_EQ(tool.symmetryFlags, 0U);
  EXPECT_EQ(tool.runtimeIndexA, -1);
  EXPECT_EQ(tool.runtimeIndexB, -1);
  for (const float one : tool.extraValues) EXPECT_EQ(one, 0.0F);
  for (const std::uint8_t one : tool.specialBlock) EXPECT_EQ(one, 0);
  EXPECT_EQ(tool.fileVersion, 0);
  EXPECT_EQ(tool.specialToolPath[0], '\0');
  EXPECT_EQ(tool.lateFlag, 0);
  EXPECT_EQ(tool.lateFlag2, 0);
  for (const std::uint32_t one : tool.lateWords) EXPECT_EQ(one, 0U);
  for (const std::uint8_t one : tool.tailBlock) EXPECT_EQ(one, 0);
  EXPECT_EQ(tool.tailText[0], '\0');
}

TEST(ToolByHand, InitGivesAUsedToolTheDefaultsBack) {
  OldTool tool = distinctTool(108);
  tool.name = "a tool";
  InitOldTool(tool);
  EXPECT_EQ(tool.specialToolPath[0], '\0');
  EXPECT_EQ(tool.tailText[0], '\0');
  // Only the first byte of a text is told.
  std::memset(tool.specialToolPath, 0, sizeof tool.specialToolPath);
  std::memset(tool.tailText, 0, sizeof tool.tailText);
  EXPECT_EQ(differences(tool, OldTool()), "");
}

TEST(ToolByHand, TakesAsManyBytesAsItsVersionAndCodeSay) {
  const struct {
    int version;
    std::size_t plain, special, specialWithPath;
  } cases[] = {
      {52, 76, 76, 332},   {59, 76, 76, 332},    {60, 84, 84, 340},    {89, 84, 84, 340},    {90, 84, 108, 364},
      {109, 84, 108, 364}, {110, 116, 140, 396}, {111, 380, 404, 660}, {180, 380, 404, 660},
  };
  for (const auto& one : cases) {
    SCOPED_TRACE(one.version);
    EXPECT_EQ(writtenTool(distinctTool(1), one.version, false).size(), one.plain);
    EXPECT_EQ(writtenTool(distinctTool(1), one.version, true).size(), one.plain) << "only code 108 names a file";
    EXPECT_EQ(writtenTool(distinctTool(108), one.version, false).size(), one.special);
    EXPECT_EQ(writtenTool(distinctTool(108), one.version, true).size(), one.specialWithPath);
  }
}

TEST(ToolByHand, WritesEachFieldAtItsPlace) {
  forEachForm([](int version, std::int32_t code, bool pathIsStored) {
    const OldTool tool = distinctTool(code);
    EXPECT_EQ(writtenTool(tool, version, pathIsStored), storedForm(tool, version, pathIsStored));
  });
}

TEST(ToolByHand, ReadsEachFieldIntoAFreshTool) {
  forEachForm([](int version, std::int32_t code, bool pathIsStored) {
    const OldTool stored = distinctTool(code);
    const Bytes bytes = storedForm(stored, version, pathIsStored);
    OldTool tool;
    std::size_t consumed = 0;
    EXPECT_EQ(readTool(Bytes(bytes).fill(9, 0xEE), version, pathIsStored, tool, &consumed), 0);
    EXPECT_EQ(consumed, bytes.size());
    EXPECT_EQ(differences(tool, afterReading(OldTool(), fieldsOf(stored, version, pathIsStored), bytes.size())), "");
  });
}

TEST(ToolByHand, FieldThatTheVersionDoesNotStoreKeepsWhatAUsedToolHeld) {
  forEachForm([](int version, std::int32_t code, bool pathIsStored) {
    const OldTool stored = distinctTool(code), used = distinctTool(33, 1);
    const Bytes bytes = storedForm(stored, version, pathIsStored);
    OldTool tool = used;
    EXPECT_EQ(readTool(bytes, version, pathIsStored, tool), 0);
    EXPECT_EQ(differences(tool, afterReading(used, fieldsOf(stored, version, pathIsStored), bytes.size())), "");
  });
}

TEST(ToolByHand, CutAtAnyByteFailsAndKeepsWhatArrivedWhole) {
  for (const int version : {52, 60, 90, 109, 110, 111})
    for (const std::int32_t code : {1, 107, 108})
      for (const bool pathIsStored : {false, true}) {
        SCOPED_TRACE(testing::Message() << "version " << version << ", code " << code << ", path " << pathIsStored);
        const OldTool stored = distinctTool(code);
        OldTool used = distinctTool(33, 1);
        // When the two absent values become 0 shows only behind a cut among their neighbours: not told.
        if (version < 110)
          for (float(*values)[6] : {&used.firstValues, &used.secondValues}) (*values)[3] = (*values)[4] = 0;
        const std::vector<Field> fields = fieldsOf(stored, version, pathIsStored);
        const Bytes bytes = storedForm(stored, version, pathIsStored);
        for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
          OldTool tool = used;
          std::size_t consumed = 0;
          ASSERT_EQ(readTool(bytes.cut(cut), version, pathIsStored, tool, &consumed), 1) << cut;
          ASSERT_EQ(consumed, cut);
          ASSERT_EQ(differences(tool, afterReading(used, fields, cut)), "") << cut;
        }
      }
}

TEST(ToolByHand, NameIsEmptyBehindEveryReading) {
  for (const int version : {52, 111}) {
    OldTool tool;
    tool.name = "a tool";
    ASSERT_EQ(readTool(storedForm(distinctTool(1), version, false), version, false, tool), 0);
    EXPECT_EQ(tool.name, "");
  }
}

TEST(ToolByHand, WhatIsKeptInMemoryOnlyIsNotStored) {
  for (const int version : kVersions) {
    const OldTool tool = distinctTool(108);
    OldTool other = tool;
    other.name = "another name";
    other.symmetryFlags ^= 3;
    other.runtimeIndexA = 17;
    other.runtimeIndexB = 18;
    other.fileVersion = 52;
    other.lateFlag = 1;
    other.lateFlag2 = 2;
    EXPECT_EQ(writtenTool(tool, version, true), writtenTool(other, version, true)) << version;
  }
}

TEST(ToolByHand, SpecialToolOfAStationNamesItsFileInFrontOfTheFirstWord) {
  OldTool tool;
  tool.shapeCode = 108;
  tool.auxWord1 = 0xA1B2C3D4U;
  const auto wordAt = [](const Bytes& bytes, std::size_t at) {
    return Bytes::of(bytes.span().subspan(at, 4)) == Bytes().u32(0xA1B2C3D4U);
  };
  EXPECT_TRUE(wordAt(writtenTool(tool, 90, true), 4 + 4 + 24 + 4 + 256));
  EXPECT_TRUE(wordAt(writtenTool(tool, 90, false), 4 + 4 + 24 + 4));

  // The same places in the reader.
  const Bytes head = Bytes().f32(0).i32(108).zeros(24).i32(0);
  const Bytes tail = Bytes().u32(0xA1B2C3D4U).zeros(12 + 4 + 16 + 4 + 16 + 4 + 4 + 8);
  OldTool inStation, inInventory;
  EXPECT_EQ(readTool(Bytes(head).text(256, "D:\\A\\star.spt").add(tail), 90, true, inStation), 0);
  EXPECT_EQ(inStation.auxWord1, 0xA1B2C3D4U);
  EXPECT_STREQ(inStation.specialToolPath, "D:\\A\\star.spt");
  EXPECT_EQ(readTool(Bytes(head).add(tail), 90, false, inInventory), 0);
  EXPECT_EQ(inInventory.auxWord1, 0xA1B2C3D4U);
  EXPECT_STREQ(inInventory.specialToolPath, "");
}

TEST(ToolByHand, SpecialToolBelowVersion90HasNoSpecialBlock) {
  for (const int version : {60, 89}) {
    OldTool tool;
    ASSERT_EQ(readTool(storedForm(distinctTool(108), version, false), version, false, tool), 0);
    for (const std::uint8_t one : tool.specialBlock) EXPECT_EQ(one, 0);
  }
  OldTool tool;
  const OldTool stored = distinctTool(108);
  ASSERT_EQ(readTool(storedForm(stored, 90, false), 90, false, tool), 0);
  EXPECT_EQ(std::memcmp(tool.specialBlock, stored.specialBlock, 24), 0);
}

OldTool readWithDimension3(std::int32_t code, float dimension3, std::uint32_t flagsBefore, int version = 90) {
  OldTool stored = distinctTool(code), tool;
  stored.dimension3 = dimension3;
  tool.symmetryFlags = flagsBefore;
  EXPECT_EQ(readTool(storedForm(stored, version, true), version, true, tool), 0);
  return tool;
}

TEST(ToolByHand, ThirdDimensionOfASpecialToolSaysHowItRepeats) {
  const float infinity = std::numeric_limits<float>::infinity();
  const struct {
    float dimension3;
    std::uint32_t flags;
  } cases[] = {{1.0F, 1},     {1.00005F, 1}, {0.99995F, 1}, {1.0002F, 0},  {0.9998F, 0},   {2.0F, 2},
               {2.00005F, 2}, {1.99995F, 2}, {2.0002F, 0},  {1.9998F, 0},  {0, 0},         {-1.0F, 0},
               {-2.0F, 0},    {3.0F, 0},     {1.5F, 0},     {infinity, 0}, {-infinity, 0}, {std::nanf(""), 0}};
  for (const auto& one : cases)
    for (const std::uint32_t before : {0U, 3U, 0xFFFFFFFFU})
      for (const int version : {52, 60, 90, 110, 180})
        EXPECT_EQ(readWithDimension3(108, one.dimension3, before, version).symmetryFlags, one.flags)
            << one.dimension3 << " at version " << version;
}

TEST(ToolByHand, LimitOfTheSymmetryIsComparedInDouble) {
  // Every single near the four limits: their distance to 1 and 2 is exact in single precision.
  std::uint32_t seen = 0;
  for (const float limit : {0.9999F, 1.0001F, 1.9999F, 2.0001F}) {
    float value = limit;
    for (int i = 0; i < 40; ++i) value = std::nextafter(value, 0.0F);
    for (int i = 0; i < 80; ++i, value = std::nextafter(value, 9.0F)) {
      const std::uint32_t flags = readWithDimension3(108, value, 4).symmetryFlags;
      ASSERT_EQ(flags, symmetryOf(value)) << std::hexfloat << value;
      seen |= 1U << flags;
    }
  }
  EXPECT_EQ(seen, 7U) << "each answer occurs";
}

TEST(ToolByHand, OtherShapeCodesLeaveTheSymmetryAlone) {
  for (const std::int32_t code : kCodes) {
    if (code == 108) continue;
    for (const float dimension3 : {0.0F, 1.0F, 2.0F})
      EXPECT_EQ(readWithDimension3(code, dimension3, 6).symmetryFlags, 6U) << code;
  }
}

TEST(ToolByHand, TriangleStoresItsSecondSideFirst) {
  OldTool triangle;
  triangle.shapeCode = 107;
  triangle.dimension1 = 3;
  triangle.dimension2 = 4;
  triangle.dimension3 = 5;
  for (const int version : kVersions) {
    SCOPED_TRACE(version);
    const Bytes bytes = writtenTool(triangle, version, true);
    EXPECT_EQ(Bytes::of(bytes.span().subspan(16, 12)), Bytes().f32(4).f32(3).f32(5));
    OldTool back;
    ASSERT_EQ(readTool(bytes, version, true, back), 0);
    EXPECT_EQ(back.dimension1, 3.0F);
    EXPECT_EQ(back.dimension2, 4.0F);
    EXPECT_EQ(back.dimension3, 5.0F);
  }
}

TEST(ToolByHand, ValuesThreeAndFourAreLostBelowVersion110) {
  const OldTool tool = distinctTool(1);
  for (const int version : {52, 60, 100, 109, 110, 180}) {
    SCOPED_TRACE(version);
    OldTool back = distinctTool(1, 1);
    ASSERT_EQ(readTool(writtenTool(tool, version, true), version, true, back), 0);
    for (std::size_t i = 0; i < 6; ++i) {
      const bool lost = version < 110 && (i == 3 || i == 4);
      EXPECT_EQ(back.firstValues[i], lost ? 0.0F : tool.firstValues[i]) << i;
      EXPECT_EQ(back.secondValues[i], lost ? 0.0F : tool.secondValues[i]) << i;
    }
    EXPECT_EQ(back.firstValueCount, tool.firstValueCount);
    EXPECT_EQ(back.secondValueCount, tool.secondValueCount);
  }
}

TEST(ToolByHand, LateWordsComeWithVersion110AndTheTailWith111) {
  const OldTool stored = distinctTool(1);
  for (const int version : {109, 110, 111}) {
    OldTool tool;
    ASSERT_EQ(readTool(storedForm(stored, version, false), version, false, tool), 0);
    const OldTool fresh;
    const auto same = [](const auto& a, const auto& b) { return std::memcmp(&a, &b, sizeof a) == 0; };
    EXPECT_TRUE(same(tool.lateWords, version >= 110 ? stored.lateWords : fresh.lateWords)) << version;
    EXPECT_TRUE(same(tool.tailBlock, version >= 111 ? stored.tailBlock : fresh.tailBlock)) << version;
    EXPECT_TRUE(same(tool.tailText, version >= 111 ? stored.tailText : fresh.tailText)) << version;
  }
}

TEST(ToolByHand, CountsAndIndicesAreNotJudged) {
  for (const std::int32_t count : {-1, 0, 6, 7, INT_MIN, INT_MAX})
    for (const int version : {52, 109, 110, 180}) {
      OldTool tool = distinctTool(112);
      tool.firstValueCount = tool.secondValueCount = tool.specialToolIndex = count;
      const Bytes bytes = storedForm(tool, version, true);
      EXPECT_EQ(writtenTool(tool, version, true), bytes);
      OldTool back;
      ASSERT_EQ(readTool(bytes, version, true, back), 0);
      EXPECT_EQ(back.firstValueCount, count);
      EXPECT_EQ(back.secondValueCount, count);
      EXPECT_EQ(back.specialToolIndex, count);
      EXPECT_EQ(back.firstValues[5], tool.firstValues[5]) << "as many values as ever";
    }
}

TEST(ToolByHand, BytesBehindTheNulOfATextSurvive) {
  OldTool tool = distinctTool(108);
  tool.specialToolPath[3] = tool.tailText[5] = '\0';
  const Bytes bytes = storedForm(tool, 111, true);
  OldTool back;
  ASSERT_EQ(readTool(bytes, 111, true, back), 0);
  EXPECT_EQ(std::memcmp(back.specialToolPath, tool.specialToolPath, 256), 0);
  EXPECT_EQ(std::memcmp(back.tailText, tool.tailText, 256), 0);
  EXPECT_EQ(writtenTool(back, 111, true), bytes);
}

TEST(ToolByHand, RealValuesThatAreNoNumbersKeepTheirBits) {
  OldTool tool;
  tool.shapeCode = 1;
  tool.orientation = std::bit_cast<float>(0x7FC12345U);
  tool.dimension2 = std::bit_cast<float>(0xFFC54321U);
  tool.firstValues[5] = -0.0F;
  tool.extraValues[1] = std::numeric_limits<float>::denorm_min();
  const Bytes bytes = storedForm(tool, 60, true);
  OldTool back;
  ASSERT_EQ(readTool(bytes, 60, true, back), 0);
  EXPECT_EQ(differences(back, tool), "");
  EXPECT_EQ(writtenTool(back, 60, true), bytes);
}

TEST(ToolByHand, WriterGivesFalseOnceTheFileTakesNoMore) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> full(std::fopen("/dev/full", "wb"), &std::fclose);
  if (!full) GTEST_SKIP() << "no device that is always full";
  OutStream stream(full.get());
  const OldTool tool = distinctTool(108);
  bool ok = true;
  for (int i = 0; ok && i < 100000; ++i) ok = WriteOldTool(stream, 180, true, tool);
  EXPECT_FALSE(ok);
  EXPECT_FALSE(stream.flush());
}

}  // namespace
