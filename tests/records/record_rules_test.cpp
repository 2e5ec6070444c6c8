// The rules of the embedded records that a table of fields does not show.
#include <gtest/gtest.h>

#include "src/records/record_io.h"
#include "tests/support/stored_forms.h"

namespace {

using namespace testing_support;

// ---- tools ---------------------------------------------------------------------------------------

Bytes toolBytes(int version, std::int32_t code, bool path, float dimension3 = 0) {
  Bytes b;
  b.f32(0).i32(code);
  if (code == 108 && version >= 90) b.zeros(24);
  b.i32(0);
  if (path && code == 108) b.zeros(256);
  b.i32(77).f32(1).f32(2).f32(dimension3);
  const std::size_t row = version >= 110 ? 24 : 16;
  b.i32(0).zeros(row).i32(0).zeros(row).zeros(8);
  if (version >= 60) b.zeros(8);
  if (version >= 110) b.zeros(16);
  if (version >= 111) b.zeros(8 + 256);
  return b;
}

TEST(Tool, FreshToolHasTheToldDefaults) {
  OldTool tool;
  tool.shapeCode = 5;
  tool.name = "x";
  tool.runtimeIndexA = 3;
  InitOldTool(tool);
  EXPECT_EQ(tool.shapeCode, 0);
  EXPECT_EQ(tool.name, "");
  EXPECT_EQ(tool.runtimeIndexA, -1);
  EXPECT_EQ(tool.runtimeIndexB, -1);
  EXPECT_EQ(tool.specialToolPath[0], '\0');
  EXPECT_EQ(tool.lateFlag, 0);
}

TEST(Tool, SpecialToolOfAStationAtVersion90StoresItsBlockAndPathInFrontOfAuxWord1) {
  const auto auxWordAt = [](int version, bool path) {
    OldTool tool;
    tool.shapeCode = 108;
    tool.auxWord1 = 0xABCDEF01;
    const Bytes bytes = written([&](auto& s) { return WriteOldTool(s, version, path, tool); });
    for (std::size_t i = 0; i + 4 <= bytes.size(); ++i)
      if (std::memcmp(bytes.span().data() + i, "\x01\xEF\xCD\xAB", 4) == 0) return i;
    return std::size_t{0};
  };
  EXPECT_EQ(auxWordAt(90, true), 4U + 4 + 24 + 4 + 256);
  EXPECT_EQ(auxWordAt(90, false), 4U + 4 + 24 + 4);
  EXPECT_EQ(auxWordAt(60, false), 4U + 4 + 4) << "no special block below version 90";
}

TEST(Tool, SymmetryComesFromTheThirdDimensionOfASpecialTool) {
  const struct {
    float dimension3;
    std::uint32_t flags;
  } cases[] = {{1.0F, 1},
               {1.00005F, 1},
               {0.99995F, 1},
               {1.0002F, 0},
               {2.0F, 2},
               {2.00005F, 2},
               {2.0002F, 0},
               {0, 0},
               {1.5F, 0},
               {-1.0F, 0},
               {std::numeric_limits<float>::quiet_NaN(), 0},
               {3.0F, 0}};
  for (const auto& one : cases) {
    OldTool tool;
    tool.symmetryFlags = 0xFF;
    ASSERT_EQ(
        readFrom(toolBytes(110, 108, false, one.dimension3), [&](auto& s) { return ReadOldTool(s, 110, false, tool); }),
        0);
    EXPECT_EQ(tool.symmetryFlags, one.flags) << one.dimension3;
  }
  OldTool round;
  round.symmetryFlags = 2;
  ASSERT_EQ(readFrom(toolBytes(110, 1, false, 1.0F), [&](auto& s) { return ReadOldTool(s, 110, false, round); }), 0);
  EXPECT_EQ(round.symmetryFlags, 2U) << "other tools keep their flags";
}

TEST(Tool, TriangleStoresItsSecondDimensionFirst) {
  OldTool tool;
  tool.shapeCode = 107;
  tool.dimension1 = 3;
  tool.dimension2 = 4;
  for (const int version : {52, 90, 110, 111, 180}) {
    const Bytes bytes = written([&](auto& s) { return WriteOldTool(s, version, true, tool); });
    EXPECT_EQ(Bytes::of(bytes.span().subspan(16, 8)), Bytes().f32(4).f32(3));
    OldTool loaded;
    ASSERT_EQ(readFrom(bytes, [&](auto& s) { return ReadOldTool(s, version, true, loaded); }), 0);
    EXPECT_EQ(loaded.dimension1, 3.0F);
    EXPECT_EQ(loaded.dimension2, 4.0F);
  }
}

TEST(Tool, MiddleTwoValuesAreLostBelowVersion110) {
  OldTool tool;
  for (int i = 0; i < 6; ++i) tool.firstValues[i] = tool.secondValues[i] = static_cast<float>(i + 1);
  const Bytes bytes = written([&](auto& s) { return WriteOldTool(s, 100, true, tool); });
  OldTool loaded;
  for (float& one : loaded.firstValues) one = 99;
  ASSERT_EQ(readFrom(bytes, [&](auto& s) { return ReadOldTool(s, 100, true, loaded); }), 0);
  for (int i = 0; i < 6; ++i) EXPECT_EQ(loaded.firstValues[i], i == 3 || i == 4 ? 0.0F : static_cast<float>(i + 1));
}

TEST(Tool, LateWordsComeWithVersion110AndTheTailWith111) {
  EXPECT_EQ(toolBytes(110, 1, true).size(), toolBytes(109, 1, true).size() + 16 + 16);
  EXPECT_EQ(toolBytes(111, 1, true).size(), toolBytes(110, 1, true).size() + 264);
  for (const int version : {109, 110, 111}) {
    const OldTool tool;
    EXPECT_EQ(written([&](auto& s) { return WriteOldTool(s, version, true, tool); }).size(),
              toolBytes(version, 1, true).size());
  }
}

TEST(Tool, NameIsEmptyAfterEveryRead) {
  for (const Bytes& bytes : {Bytes(), toolBytes(110, 1, false)}) {
    OldTool tool;
    tool.name = "PUNCH";
    (void)readFrom(bytes, [&](auto& s) { return ReadOldTool(s, 110, false, tool); });
    EXPECT_EQ(tool.name, "");
  }
}

// ---- stations ------------------------------------------------------------------------------------

TEST(ToolStationList, ModeCodeIsBits8To11OfTheModeWord) {
  ToolStationList list;
  ASSERT_EQ(
      readFrom(Bytes().i32(0).i32(0).i32(0x0A02).i32(0), [&](auto& s) { return ReadToolStationList(s, 90, list); }), 0);
  EXPECT_EQ(list.stationModeCode, 10U);
  ASSERT_EQ(readFrom(Bytes().i32(0).i32(0).i32(0), [&](auto& s) { return ReadToolStationList(s, 80, list); }), 0);
  EXPECT_EQ(list.stationModeWord, 2U);
  EXPECT_EQ(list.stationModeCode, 0U);
}

TEST(ToolStationList, ExtraWordCountMustBeOneOrTwo) {
  for (const std::int32_t count : {-1, 0, 1, 2, 3, 2000000000}) {
    ToolStationList list;
    list.extraWords[0] = list.extraWords[1] = 99;
    Bytes bytes = Bytes().i32(0).i32(0).i32(0).i32(count);
    for (int i = 0; i < std::min(count, 2); ++i) bytes.i32(7 + i);
    const bool good = count == 1 || count == 2;
    EXPECT_EQ(readFrom(bytes.i32(0), [&](auto& s) { return ReadToolStationList(s, 100, list); }), good ? 0 : 1)
        << count;
    EXPECT_EQ(list.extraWords[0], good ? 7U : 0U);
    EXPECT_EQ(list.extraWords[1], count == 2 ? 8U : 0U);
  }
  ToolStationList below;
  below.extraWords[1] = 5;
  ASSERT_EQ(readFrom(Bytes().i32(0).i32(0), [&](auto& s) { return ReadToolStationList(s, 60, below); }), 0);
  EXPECT_EQ(below.extraWords[1], 0U) << "cleared at every version";
}

TEST(ToolStationList, CountOfZeroKeepsTheListsAndANegativeOneEmptiesThem) {
  for (const std::int32_t count : {0, -1}) {
    ToolStationList list;
    list.stations.resize(2);
    list.tools.resize(2);
    ASSERT_EQ(readFrom(Bytes().i32(0).i32(count), [&](auto& s) { return ReadToolStationList(s, 52, list); }), 0);
    EXPECT_EQ(list.stations.size(), count == 0 ? 2U : 0U);
    EXPECT_EQ(list.tools.size(), count == 0 ? 2U : 0U);
  }
}

TEST(ToolStationList, StationWhoseToolCannotBeReadStays) {
  ToolStationList made;
  made.stations.resize(2);
  made.tools.resize(2);
  const Bytes bytes = written([&](auto& s) { return WriteToolStationList(s, 52, made); });
  ToolStationList list;
  EXPECT_EQ(readFrom(bytes.cut(bytes.size() - 1), [&](auto& s) { return ReadToolStationList(s, 52, list); }), 1);
  EXPECT_EQ(list.stations.size(), 2U);
  EXPECT_EQ(list.tools.size(), 1U);
}

TEST(ToolStationList, ListsOfDifferentLengthCannotBeStored) {
  ToolStationList list;
  AddToolStation(list, ToolStation());
  bool ok = true;
  (void)written([&](auto& s) { return WriteToolStationList(s, 52, list); }, &ok);
  EXPECT_FALSE(ok);
  AddTool(list, OldTool());
  (void)written([&](auto& s) { return WriteToolStationList(s, 52, list); }, &ok);
  EXPECT_TRUE(ok);
}

TEST(ToolStation, TypeZeroHasAtLeastOneValue) {
  for (const std::int32_t type : {0, 2})
    for (const std::int32_t count : {-4, 0, 1, 3}) {
      ToolStation made, loaded;
      made.stationType = type;
      made.valueCount = count;
      const Bytes bytes = written([&](auto& s) { return WriteToolStation(s, 180, made); });
      ASSERT_EQ(readFrom(bytes, [&](auto& s) { return ReadToolStation(s, 180, loaded); }), 0);
      EXPECT_EQ(loaded.valueCount, type == 0 && count < 1 ? 1 : count);
    }
}

TEST(ToolStation, EndBehindWordHIsToleratedAtVersion130) {
  const ToolStation made;
  const Bytes bytes = written([&](auto& s) { return WriteToolStation(s, 130, made); });
  ToolStation loaded;
  loaded.wordI = loaded.wordJ = 9;
  EXPECT_EQ(readFrom(bytes.cut(bytes.size() - 8), [&](auto& s) { return ReadToolStation(s, 130, loaded); }), 0);
  EXPECT_EQ(loaded.wordI, 9U);
  EXPECT_EQ(readFrom(bytes.cut(bytes.size() - 3), [&](auto& s) { return ReadToolStation(s, 130, loaded); }), 0);
  EXPECT_EQ(loaded.wordI, 0U);
  EXPECT_EQ(loaded.wordJ, 9U);
}

TEST(ToolStation, MorePairValuesRunOnIntoTheWordsBehindAndAreReadOver) {
  const ToolStation fresh;
  const std::size_t inFront = written([&](auto& s) { return WriteToolStation(s, 99, fresh); }).size() + 4;
  const auto front = [&](int version) {
    return written([&](auto& s) { return WriteToolStation(s, version, fresh); }).cut(inFront);
  };
  for (std::int32_t count = -1; count <= 10; ++count)
    for (const int version : {100, 110, 112, 130}) {
      Bytes bytes = front(version);
      bytes.i32(count);
      for (int i = 0; i < count; ++i) bytes.f32(static_cast<float>(i + 1));
      bytes.i32(101).i32(102).f32(103);
      if (version >= 110) bytes.i32(104);
      if (version >= 112) bytes.i32(105);
      if (version >= 130) bytes.i32(106).i32(107);
      ToolStation s;
      std::size_t consumed = 0;
      const int result = readFrom(
          bytes, [&](auto& in) { return ReadToolStation(in, version, s); }, &consumed);
      if (count > 9) {
        EXPECT_EQ(result, 1);
        EXPECT_EQ(consumed, inFront + 4) << "refused as soon as the count has been read";
        continue;
      }
      ASSERT_EQ(result, 0);
      EXPECT_EQ(consumed, bytes.size());
      EXPECT_EQ(s.pairValues[0], count >= 1 ? 1.0F : 0.0F);
      EXPECT_EQ(s.pairValues[1], count >= 2 ? 2.0F : 0.0F);
      EXPECT_EQ(s.wordE, 101U);
      EXPECT_EQ(s.wordF, 102);
      EXPECT_EQ(s.realF, 103.0F);
      const auto spilled = [&](int at, std::uint32_t stored, bool isStored) {
        if (isStored) return stored;
        return count > at ? std::bit_cast<std::uint32_t>(static_cast<float>(at + 1)) : 0U;
      };
      EXPECT_EQ(s.wordG, spilled(5, 104, version >= 110));
      EXPECT_EQ(s.wordH, spilled(6, 105, version >= 112));
      EXPECT_EQ(s.wordI, spilled(7, 106, version >= 130));
      EXPECT_EQ(s.wordJ, spilled(8, 107, version >= 130));
    }
}

// ---- shapes --------------------------------------------------------------------------------------

TEST(ShapeList, EmptyListStoresTwelveBytesTagFirst) {
  ShapeList list;
  list.listKind = 7;
  list.listTag = 9;
  EXPECT_EQ(written([&](auto& s) { return WriteShapeList(s, 180, list); }), Bytes().i32(9).i32(7).i32(0));
}

TEST(ShapeList, CountOfZeroKeepsTheShapesAndANegativeOneDropsThem) {
  for (const std::int32_t count : {0, -1}) {
    ShapeList list;
    list.shapes.resize(2);
    EXPECT_EQ(readFrom(Bytes().i32(1).i32(2).i32(count), [&](auto& s) { return ReadShapeList(s, 180, list); }), 0);
    EXPECT_EQ(list.shapes.size(), count == 0 ? 2U : 0U);
    EXPECT_EQ(list.listTag, 1);
  }
}

TEST(Shape, CountsOutsideTheirRangeAreRefusedByReaderAndWriter) {
  const auto attempt = [](std::int32_t values, std::int32_t extras) {
    Bytes bytes =
        Bytes().u8(1).i32(0).i32(0).zeros(8).i32(values).zeros(static_cast<std::size_t>(std::clamp(values, 0, 9)) * 4);
    bytes.i32(0).i32(0).i32(extras).zeros(static_cast<std::size_t>(std::clamp(extras, 0, 2)) * 4).zeros(1000);
    Shape shape, made;
    made.valueCount = values;
    made.extraCount = extras;
    bool ok = false;
    (void)written([&](auto& s) { return WriteShape(s, 150, made); }, &ok);
    const int result = readFrom(bytes, [&](auto& s) { return ReadShape(s, 150, shape); });
    EXPECT_EQ(ok, result == 0) << "reader and writer agree";
    return result;
  };
  for (const std::int32_t values : {-2000000000, -1, 0, 9, 10, 2000000000})
    EXPECT_EQ(attempt(values, 2), values >= 0 && values <= 9 ? 0 : 1) << values;
  for (const std::int32_t extras : {-2000000000, -1, 0, 2, 3, 2000000000})
    EXPECT_EQ(attempt(9, extras), extras >= 0 && extras <= 2 ? 0 : 1) << extras;
}

TEST(Shape, RangeValueReplacesAuxValue4ForTypes4And5AtVersions112To120) {
  for (int version = 110; version <= 122; ++version)
    for (const int type : {3, 4, 5, 6}) {
      Shape made, loaded;
      made.type = static_cast<std::int8_t>(type);
      made.auxValue4 = 7;
      made.rangeValue = 9;
      const Bytes bytes = written([&](auto& s) { return WriteShape(s, version, made); });
      ASSERT_EQ(readFrom(bytes, [&](auto& s) { return ReadShape(s, version, loaded); }), 0);
      const bool stored = version >= 112 && version <= 120;
      EXPECT_EQ(loaded.auxValue4, stored && (type == 4 || type == 5) ? 9U : 7U);
      EXPECT_EQ(loaded.rangeValue, stored ? 9U : 0U);
    }
}

TEST(Shape, WithoutATextFlagTheTextStays) {
  for (const std::int32_t flag : {-5, 0, 1, 2000000000}) {
    Shape made, loaded;
    made.textFlag = flag;
    std::strcpy(made.text, "stored");
    std::strcpy(loaded.text, "held before");
    const Bytes bytes = written([&](auto& s) { return WriteShape(s, 62, made); });
    ASSERT_EQ(readFrom(bytes, [&](auto& s) { return ReadShape(s, 62, loaded); }), 0);
    EXPECT_STREQ(loaded.text, flag > 0 ? "stored" : "held before");
  }
}

TEST(Shape, TextFullOfBytesLoadsWithoutATerminatorAndIsStoredUnchanged) {
  Shape made, loaded;
  made.textFlag = 1;
  std::memset(made.text, 'x', sizeof made.text);
  const Bytes bytes = written([&](auto& s) { return WriteShape(s, 62, made); });
  ASSERT_EQ(readFrom(bytes, [&](auto& s) { return ReadShape(s, 62, loaded); }), 0);
  EXPECT_EQ(written([&](auto& s) { return WriteShape(s, 62, loaded); }), bytes);
  EXPECT_EQ(loaded.text[255], 'x');
}

Bytes shapeUpToNote() {
  const Shape fresh;
  const Bytes whole = written([&](auto& s) { return WriteShape(s, 160, fresh); });
  return whole.cut(whole.size() - 4);
}

TEST(Shape, NoteOfLengthZeroOrBelowStaysAsItWas) {
  for (const std::int32_t length : {0, -1, -2000000000}) {
    Shape loaded;
    loaded.note = "held before";
    ASSERT_EQ(readFrom(shapeUpToNote().i32(length), [&](auto& s) { return ReadShape(s, 160, loaded); }), 0);
    EXPECT_EQ(loaded.note, "held before");
  }
}

TEST(Shape, NoteEndsAtItsFirstNul) {
  Shape loaded;
  ASSERT_EQ(
      readFrom(shapeUpToNote().i32(5).raw({'a', 'b', 0, 'c', 'd'}), [&](auto& s) { return ReadShape(s, 160, loaded); }),
      0);
  EXPECT_EQ(loaded.note, "ab");
}

TEST(Shape, NoteThatTheFileCannotHoldGivesOneAndLeavesTheNote) {
  for (const std::int32_t length : {6, 2000000000}) {
    Shape loaded;
    loaded.note = "held";
    EXPECT_EQ(
        readFrom(shapeUpToNote().i32(length).raw({1, 2, 3, 4, 5}), [&](auto& s) { return ReadShape(s, 160, loaded); }),
        1);
    EXPECT_EQ(loaded.note, "held");
  }
}

TEST(Shape, LongNotesRoundTrip) {
  for (const std::size_t size : {1U, 4095U, 4096U, 4097U, 70000U}) {
    Shape made, loaded;
    made.note.assign(size, 'n');
    const Bytes bytes = written([&](auto& s) { return WriteShape(s, 161, made); });
    ASSERT_EQ(readFrom(bytes, [&](auto& s) { return ReadShape(s, 161, loaded); }), 0);
    EXPECT_EQ(loaded.note, made.note);
  }
}

TEST(Shape, CutInsideItsTailPairIsNoFaultAndKeepsTheWholeWord) {
  Shape made;
  made.tailPair[0] = 5;
  made.tailPair[1] = 6;
  const Bytes bytes = written([&](auto& s) { return WriteShape(s, 161, made); });
  for (std::size_t missing = 0; missing <= 8; ++missing) {
    Shape loaded;
    EXPECT_EQ(readFrom(bytes.cut(bytes.size() - missing), [&](auto& s) { return ReadShape(s, 161, loaded); }), 0);
    EXPECT_EQ(loaded.tailPair[0], missing <= 4 ? 5U : 0U);
    EXPECT_EQ(loaded.tailPair[1], missing == 0 ? 6U : 0U);
  }
}

TEST(ShapeTrailer, HoldsOneValueForEachShapeAndNoCount) {
  ShapeList list;
  EXPECT_EQ(written([&](auto& s) { return WriteShapeTrailer(s, list); }).size(), 0U);
  for (const std::size_t count : {1U, 3U, 1024U, 1025U, 5000U}) {
    list.shapes.resize(count);
    for (std::size_t i = 0; i < count; ++i) list.shapes[i].trailerValue = static_cast<std::uint32_t>(i + 1);
    Bytes expected;
    for (std::size_t i = 0; i < count; ++i) expected.u32(static_cast<std::uint32_t>(i + 1));
    EXPECT_EQ(written([&](auto& s) { return WriteShapeTrailer(s, list); }), expected);
    ShapeList loaded;
    loaded.shapes.resize(count);
    EXPECT_EQ(readFrom(expected, [&](auto& s) { return ReadShapeTrailer(s, loaded); }), 0);
    EXPECT_EQ(loaded.shapes.back().trailerValue, count);
    EXPECT_EQ(readFrom(expected.cut(expected.size() - 1), [&](auto& s) { return ReadShapeTrailer(s, loaded); }), 1);
  }
}

TEST(ShapeTrailer, FollowsTheShapesThatACountOfZeroKept) {
  ShapeList list;
  list.shapes.resize(2);
  readFrom(Bytes().i32(-1).i32(1).i32(0).i32(41).i32(42), [&](auto& s) {
    EXPECT_EQ(ReadShapeList(s, 180, list), 0);
    EXPECT_EQ(ReadShapeTrailer(s, list), 0);
    return 0;
  });
  EXPECT_EQ(list.shapes[1].trailerValue, 42U);
}

// ---- small records -------------------------------------------------------------------------------

TEST(ProcessSlot, BelowVersion80FiveFieldsReturnToTheirDefaultsAndTheToolWordsStay) {
  for (const int version : {70, 79, 80, 89}) {
    ProcessSlot slot;
    slot.firstLength = 9;
    slot.firstAngle = 9;
    slot.secondLength = 9;
    slot.secondAngle = 9;
    slot.slotKind = 9;
    slot.toolUse = 1;
    Bytes bytes = Bytes().zeros(24);
    if (version >= 80) bytes.f32(1).f32(2).f32(3).f32(4).i32(5);
    ASSERT_EQ(readFrom(bytes, [&](auto& s) { return ReadProcessSlot(s, version, slot); }), 0);
    EXPECT_EQ(slot.firstLength, version >= 80 ? 1.0F : 0.25F);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(slot.secondAngle),
              version >= 80 ? std::bit_cast<std::uint32_t>(4.0F) : 0x3F490FDBU);
    EXPECT_EQ(slot.slotKind, version >= 80 ? 5 : 3);
    EXPECT_EQ(slot.toolUse, 1);
  }
}

TEST(StepTable, FreshTableHasTheToldDefaults) {
  const StepTable t;
  for (std::size_t i = 0; i < 20; ++i) {
    EXPECT_EQ(t.stepByteA[i], 255);
    EXPECT_EQ(t.stepWord[i], 0U);
    EXPECT_EQ(t.stepByteB[i], 1);
    EXPECT_EQ(t.stepByteC[i], 0);
  }
  EXPECT_EQ(t.memoryFlag1, 1);
  EXPECT_EQ(t.memoryFlag2, 1);
}

TEST(StepTable, CountsOf0AndBelowReadNoEntriesAndCountsAbove20AreRefused) {
  for (const int count : {-128, -1, 0, 20, 21, 127}) {
    StepTable t;
    Bytes bytes = Bytes().zeros(20).i8(count).zeros(static_cast<std::size_t>(std::clamp(count, 0, 20)) * 7).zeros(2);
    std::size_t consumed = 0;
    EXPECT_EQ(readFrom(
                  bytes, [&](auto& s) { return ReadStepTable(s, 90, t); }, &consumed),
              count > 20 ? 1 : 0)
        << count;
    EXPECT_EQ(consumed, count > 20 ? 21U : bytes.size());
    EXPECT_EQ(t.stepCount, count);
    bool ok = false;
    (void)written([&](auto& s) { return WriteStepTable(s, 90, t); }, &ok);
    EXPECT_EQ(ok, count <= 20);
  }
}

TEST(StepTable, TableFlagReturnsToZeroBelowVersion80) {
  for (const int version : {79, 80}) {
    StepTable t;
    t.tableFlag = 9;
    ASSERT_EQ(readFrom(Bytes().zeros(21).u8(5), [&](auto& s) { return ReadStepTable(s, version, t); }), 0);
    EXPECT_EQ(t.tableFlag, version >= 80 ? 5 : 0);
  }
}

TEST(StepTableList, GoesOnBehindATableThatEndsInFrontOfItsCount) {
  StepTableList list;
  EXPECT_EQ(readFrom(Bytes().i32(2).zeros(20), [&](auto& s) { return ReadStepTableList(s, 90, list); }), 1);
  EXPECT_EQ(list.size(), 1U) << "the first table is kept, the second cannot begin";
  EXPECT_EQ(readFrom(Bytes().i32(1).zeros(20), [&](auto& s) { return ReadStepTableList(s, 90, list); }), 0);
}

TEST(SetupList, WithoutEntriesStoresFourBytesAndLosesTheRest) {
  SetupList list;
  list.current.setupShort1 = 5;
  list.tailWord2 = 6;
  EXPECT_EQ(written([&](auto& s) { return WriteSetupList(s, list); }), Bytes().i32(0));
  list.entries.resize(2);
  EXPECT_EQ(readFrom(Bytes().i32(0), [&](auto& s) { return ReadSetupList(s, list); }), 0);
  EXPECT_EQ(list.entries.size(), 2U);
  EXPECT_EQ(list.tailWord2, 6U);
}

TEST(SetupList, NegativeCountEmptiesTheEntriesAndGoesOnToTheRest) {
  SetupList list;
  list.entries.resize(2);
  EXPECT_EQ(readFrom(Bytes().i32(-1).u16(7).zeros(40).zeros(8).i32(8).i32(9),
                     [&](auto& s) { return ReadSetupList(s, list); }),
            0);
  EXPECT_TRUE(list.entries.empty());
  EXPECT_EQ(list.current.setupShort1, 7);
  EXPECT_EQ(list.tailWord1, 8U);
  EXPECT_EQ(list.tailWord2, 9U);
}

TEST(ProfileRecord, StoresItsBlocksFromVersion80) {
  const ProfileRecord fresh;
  const auto sizeAt = [&](int version) {
    return written([&](auto& s) { return WriteProfileRecord(s, version, fresh); }).size();
  };
  EXPECT_EQ(sizeAt(53), 48U);
  EXPECT_EQ(sizeAt(79), 52U);
  EXPECT_EQ(sizeAt(80), 52U + 56 + 2 * (28 + 21 + 1) + 16);
  ProfileRecord loaded;
  ASSERT_EQ(readFrom(Bytes().zeros(52), [&](auto& s) { return ReadProfileRecord(s, 79, loaded); }), 0);
  EXPECT_EQ(loaded.firstBlock.motionKind, 5);
  EXPECT_EQ(loaded.secondBlock.motionKind, 3);
  EXPECT_EQ(loaded.secondBlock.motionLength1, 0.125F);
  EXPECT_EQ(std::bit_cast<std::uint32_t>(loaded.firstBlock.motionAngle1), 0x3FC90FDBU);
}

TEST(MotionBlock, HoldsSevenWordsTwoMoreFrom151AndThreeMoreFrom152) {
  const MotionBlock fresh;
  const auto sizeAt = [&](int version) {
    return written([&](auto& s) { return WriteMotionBlock(s, version, fresh); }).size();
  };
  const std::size_t steps = 21 + 1 + 1;
  EXPECT_EQ(sizeAt(150), 7U * 4 + steps);
  EXPECT_EQ(sizeAt(151), 9U * 4 + steps);
  EXPECT_EQ(sizeAt(152), 12U * 4 + steps);
}

TEST(PatternItem, Stores8Then44Then48Bytes) {
  const PatternItem fresh;
  const auto sizeAt = [&](int version) {
    return written([&](auto& s) { return WritePatternItem(s, version, fresh); }).size();
  };
  EXPECT_EQ(sizeAt(61), 8U);
  EXPECT_EQ(sizeAt(62), 44U);
  EXPECT_EQ(sizeAt(89), 44U);
  EXPECT_EQ(sizeAt(90), 48U);
}

TEST(PatternItem, Below62TheMiddleFieldsBecomeZeroAndTheLateWordStays) {
  PatternItem item;
  item.itemWord2 = item.itemPair1[0] = item.itemPair2[1] = item.itemShort1 = item.itemShort2 = 9;
  item.itemWord3 = item.itemWord4 = item.lateWord = 9;
  ASSERT_EQ(readFrom(Bytes().i32(1).i32(2), [&](auto& s) { return ReadPatternItem(s, 61, item); }), 0);
  EXPECT_EQ(item.itemWord2 + item.itemPair1[0] + item.itemPair2[1] + item.itemShort1 + item.itemShort2 +
                item.itemWord3 + item.itemWord4,
            0U);
  EXPECT_EQ(item.lateWord, 9U);
}

TEST(WorkEntry, Stores29BytesAtVersion59And65AtVersion130) {
  const WorkEntry fresh;
  const auto sizeAt = [&](int version) {
    return written([&](auto& s) { return WriteWorkEntry(s, version, fresh); }).size();
  };
  EXPECT_EQ(sizeAt(59), 29U);
  EXPECT_EQ(sizeAt(60), 45U);
  EXPECT_EQ(sizeAt(61), 49U);
  EXPECT_EQ(sizeAt(80), 53U);
  EXPECT_EQ(sizeAt(130), 65U);
}

TEST(CountFirstLists, KeepTheirElementsAtZeroAndDropThemBelow) {
  const auto check = [](auto list, auto read) {
    list.resize(2);
    EXPECT_EQ(readFrom(Bytes().i32(0), [&](auto& s) { return read(s, list); }), 0);
    EXPECT_EQ(list.size(), 2U);
    EXPECT_EQ(readFrom(Bytes().zeros(3), [&](auto& s) { return read(s, list); }), 1);
    EXPECT_EQ(list.size(), 2U);
    EXPECT_EQ(readFrom(Bytes().i32(-1), [&](auto& s) { return read(s, list); }), 0);
    EXPECT_TRUE(list.empty());
    EXPECT_EQ(readFrom(Bytes().i32(2000000000).zeros(100), [&](auto& s) { return read(s, list); }), 1);
  };
  check(MarkList(), [](auto& s, auto& l) { return ReadMarkList(s, l); });
  check(PatternItemList(), [](auto& s, auto& l) { return ReadPatternItemList(s, 90, l); });
  check(ProfileList(), [](auto& s, auto& l) { return ReadProfileList(s, 90, l); });
  check(StepTableList(), [](auto& s, auto& l) { return ReadStepTableList(s, 90, l); });
}

}  // namespace
