// Part files of the versions 2, 3 and 5, from hand-written bytes.
#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

#include "OldTorvIO.h"
#include "OldTorvIO/records.h"
#include "src/part/old_part_rules.h"
#include "tests/support/bytes.h"
#include "tests/support/files.h"

namespace {

using namespace testing_support;
using oldtorvio::MarkEntry;
using oldtorvio::Pattern;
using oldtorvio::PatternItem;
using oldtorvio::SetupEntry;
using oldtorvio::Shape;
using oldtorvio::TorvPart;

// Values that the file holds for each type; type 9 has a fifth that is not stored.
constexpr int kStoredValues[26] = {0, 1, 4, 3, 4, 5, 3, 9, 7, 4, 3, 5, 3, 4, 3, 3, 3, 0, 4, 5, 4, 3, 0, 4, 0, 4};

int storedValues(int type) { return type < 0 || type > 25 ? 0 : kStoredValues[type]; }
bool keepsLowFlag(int type) { return type >= 10 && type <= 13; }
std::uint32_t bits(float v) { return std::bit_cast<std::uint32_t>(v); }
float real(std::uint32_t v) { return std::bit_cast<float>(v); }

Bytes allOf(const Shape& s) {
  Bytes b;
  b.i8(s.type).i32(s.auxWord).u32(s.flags).f32(s.x).f32(s.y);
  for (const float v : s.values) b.f32(v);
  b.i32(s.linkIndex).u32(s.auxValue1).u32(s.extraValues[0]).u32(s.extraValues[1]).i32(s.textFlag);
  b.u32(s.auxValue2).u32(s.auxValue3).u32(s.auxValue4).u32(s.trailerValue).i32(s.valueCount).i32(s.extraCount);
  b.u32(s.rangeValue).u8(s.lateByte1).u8(s.lateByte2).u8(s.lateByte3).u32(s.lateWord1).u8(s.lateByte4);
  return b.u32(s.lateWord2).lengthText(s.note).u32(s.tailPair[0]).u32(s.tailPair[1]).u8(std::uint8_t(s.text[0]));
}

Bytes allOf(const PatternItem& i) {
  Bytes b;
  b.u32(i.itemWord1).i32(i.toolNumber).u32(i.memoryWord1).u32(i.itemWord2).u32(i.itemPair1[0]).u32(i.itemPair1[1]);
  b.u32(i.itemPair2[0]).u32(i.itemPair2[1]).u32(i.itemShort1).u32(i.itemShort2).u32(i.itemWord3).u32(i.itemWord4);
  return b.u32(i.memoryWord2).u32(i.lateWord);
}

// The 34 bytes of the short form: an entry without its two reals.
Bytes shortForm(const SetupEntry& e) {
  Bytes b;
  b.u16(e.setupShort1).u16(e.setupShort2).u8(e.setupByte1).u16(e.setupShort3).u8(e.setupByte2).u16(e.setupShort4);
  b.u8(e.setupByte3);
  for (const std::uint8_t one : e.setupBlock) b.u8(one);
  return b.u32(e.setupWord1).u8(e.setupByte4).u32(e.setupWord2).u16(e.setupShort5).u32(e.setupWord3);
}
Bytes allOf(const SetupEntry& e) { return shortForm(e).f32(e.setupReal1).f32(e.setupReal2).u32(e.memoryWord); }

Bytes allOf(const MarkEntry& m) { return Bytes().u32(m.markWord1).u16(m.markShort).u32(m.markWord2).u32(m.markWord3); }

Shape plainShape(int type, float x = 1.5F, float y = -2.5F) {
  Shape s;
  s.type = static_cast<std::int8_t>(type);
  s.x = x;
  s.y = y;
  for (int i = 0; i < storedValues(type); ++i) s.values[i] = 0.25F * static_cast<float>(i + 1) + 0.001F;
  return s;
}

std::int64_t load(const Bytes& bytes, TorvPart& part) {
  const TempFolder folder;
  return LoadOldPart(folder.write("a.part", bytes).c_str(), &part);
}

struct Loaded {
  std::unique_ptr<TorvPart> part = std::make_unique<TorvPart>();
  std::int64_t status;
  explicit Loaded(const Bytes& bytes) : status(load(bytes, *part)) {}
};

// What a cut at any place leaves: a value is there exactly when its last byte is.
struct Arrival {
  std::size_t end;
  std::string what;
  std::function<bool(const TorvPart&)> there;
};

void expectArrivals(const TorvPart& part, const std::vector<Arrival>& all, std::size_t cut) {
  for (const Arrival& one : all) EXPECT_EQ(one.there(part), one.end <= cut) << one.what << ", cut at " << cut;
}

// ---- version 5 -----------------------------------------------------------------------------------

Bytes storedFive(const Shape& s) {
  Bytes b;
  b.i8(s.type).i16(s.auxWord).u16(static_cast<std::uint16_t>(s.flags)).f32(s.x).f32(s.y);
  for (int i = 0; i < storedValues(s.type); ++i) b.f32(s.values[i]);
  return b;
}

Bytes storedFive(const Pattern& p) {
  Bytes b;
  b.i16(p.headWord).i16(int(p.gridCount1)).i16(int(p.gridCount2)).u32(p.gridStep1).u32(p.gridStep2);
  b.f32(p.originX).f32(p.originY).f32(p.rotationCos).f32(p.rotationSin).i16(static_cast<int>(p.items.size()));
  for (const PatternItem& i : p.items) b.i16(int(i.itemWord1)).i16(i.toolNumber);
  return b;
}

struct Five {
  std::vector<Shape> shapes;
  std::vector<Pattern> patterns;
  std::vector<SetupEntry> entries;
  SetupEntry current;
  std::vector<MarkEntry> marks;
  int shapeCount = -1, patternCount = -1, entryCount = -1, markCount = -1;  // other than the size, if set

  Bytes bytes(std::vector<Arrival>* arrivals = nullptr) const {
    Bytes b;
    const auto arrives = [&](const std::string& what, std::function<bool(const TorvPart&)> there) {
      if (arrivals != nullptr) arrivals->push_back({b.size(), what, std::move(there)});
    };
    const auto count = [&](int stored, std::size_t size) { b.i16(stored == -1 ? static_cast<int>(size) : stored); };
    b.i16(5);
    arrives("version", [](const TorvPart& p) { return p.version == 5; });
    b.text(21, "A FIVE'S NAME");
    arrives("partName", [](const TorvPart& p) { return std::string(p.partName) == "A FIVE'S NAME"; });
    b.f32(101.5F);
    arrives("width", [](const TorvPart& p) { return p.width == 101.5F; });
    b.f32(52.25F);
    arrives("height", [](const TorvPart& p) { return p.height == 52.25F; });
    b.text(21, "PROD");
    arrives("productName", [](const TorvPart& p) { return std::string(p.productName) == "PROD"; });
    b.text(21, "ASSEMBLY OF 21 BYTES.");
    arrives("assembly", [](const TorvPart& p) { return std::string(p.assemblyName, 21) == "ASSEMBLY OF 21 BYTES."; });
    b.text(21, "MAT");
    arrives("materialName", [](const TorvPart& p) { return std::string(p.materialName) == "MAT"; });
    b.i16(-3);
    arrives("partKind", [](const TorvPart& p) { return p.partKind == -3; });
    b.i16(-4);
    arrives("partWord1", [](const TorvPart& p) { return p.partWord1 == -4; });
    b.f32(0.75F);
    arrives("thickness", [](const TorvPart& p) { return p.thickness == 0.75F; });
    count(shapeCount, shapes.size());
    for (std::size_t i = 0; i < shapes.size(); ++i) {
      b.add(storedFive(shapes[i]));
      arrives("shape " + std::to_string(i), [i](const TorvPart& p) { return p.shapes.shapes.size() > i; });
    }
    count(patternCount, patterns.size());
    for (std::size_t i = 0; i < patterns.size(); ++i) {
      b.add(storedFive(patterns[i]));
      arrives("pattern " + std::to_string(i), [i, n = patterns[i].items.size()](const TorvPart& p) {
        return p.patterns.size() > i && p.patterns[i].items.size() == n;
      });
    }
    count(entryCount, entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i) {
      b.add(shortForm(entries[i]));
      arrives("entry " + std::to_string(i), [i](const TorvPart& p) { return p.setupList.entries.size() > i; });
    }
    b.add(shortForm(current));
    arrives("current", [e = current](const TorvPart& p) { return allOf(p.setupList.current) == allOf(e); });
    for (int i = 0; i < 8; ++i) b.u8(std::uint8_t(0xB0 + i));
    arrives("tailBlock", [](const TorvPart& p) { return p.setupList.tailBlock[7] == 0xB7; });
    b.u32(0xC1C2C3C4);
    arrives("tailWord1", [](const TorvPart& p) { return p.setupList.tailWord1 == 0xC1C2C3C4; });
    b.u32(0xD1D2D3D4);
    arrives("tailWord2", [](const TorvPart& p) { return p.setupList.tailWord2 == 0xD1D2D3D4; });
    count(markCount, marks.size());
    for (std::size_t i = 0; i < marks.size(); ++i) {
      b.add(Bytes().i16(static_cast<int>(marks[i].markWord1)).u16(marks[i].markShort));
      b.u32(marks[i].markWord2).u32(marks[i].markWord3);
      arrives("mark " + std::to_string(i),
              [i, m = marks[i]](const TorvPart& p) { return p.marks.size() > i && allOf(p.marks[i]) == allOf(m); });
    }
    return b;
  }
};

SetupEntry entryOf(int type, int short3 = 0) {
  SetupEntry e;
  e.setupShort1 = static_cast<std::uint16_t>(type);
  e.setupShort2 = 0x8102;
  e.setupByte1 = 0x83;
  e.setupShort3 = static_cast<std::uint16_t>(short3);
  e.setupByte2 = 0x85;
  e.setupShort4 = 0x8706;
  e.setupByte3 = 0x88;
  for (int i = 0; i < 8; ++i) e.setupBlock[i] = static_cast<std::uint8_t>(0x90 + i);
  e.setupWord1 = 0xA1A2A3A4;
  e.setupByte4 = 0xA5;
  e.setupWord2 = 0xA6A7A8A9;
  e.setupShort5 = 0xAAAB;
  e.setupWord3 = 0xACADAEAF;
  return e;
}

Pattern patternOf(std::size_t items) {
  Pattern p;
  p.headWord = -77;
  p.gridCount1 = 3;
  p.gridCount2 = 4;
  p.gridStep1 = 5;
  p.gridStep2 = 6;
  p.originX = 7.5F;
  p.originY = 8.5F;
  p.rotationCos = 0.6F;
  p.rotationSin = -0.8F;
  p.items.resize(items);
  for (std::size_t i = 0; i < items; ++i) {
    p.items[i].itemWord1 = static_cast<std::uint32_t>(i) - 2U;
    p.items[i].toolNumber = static_cast<std::int32_t>(i) + 1;
  }
  return p;
}

Five fullFive() {
  Five f;
  for (int type = -1; type <= 26; ++type) {
    f.shapes.push_back(plainShape(type, static_cast<float>(type) + 0.5F, -3.5F));
    f.shapes.back().auxWord = -100 - type;
    f.shapes.back().flags = 0xFFFF8FFFU;
  }
  f.patterns = {patternOf(3), patternOf(0), patternOf(1)};
  f.entries = {entryOf(1), entryOf(6), entryOf(13, 9)};
  f.current = entryOf(8, 700);
  f.marks = {{0xFFFFFFF0U, 0xFFF1, 0x01020304, 0x05060708}, {17, 18, 19, 20}};
  return f;
}

void expectFullFive(const TorvPart& part) {
  const Five f = fullFive();
  ASSERT_EQ(part.shapes.shapes.size(), f.shapes.size());
  for (std::size_t i = 0; i < f.shapes.size(); ++i) {
    Shape wanted = f.shapes[i];
    if (!keepsLowFlag(wanted.type)) wanted.flags &= ~1U;
    if (wanted.type == 9) wanted.values[4] = real(0x3FC90FDB);
    EXPECT_EQ(allOf(part.shapes.shapes[i]), allOf(wanted)) << "type " << int(wanted.type);
  }
  ASSERT_EQ(part.patterns.size(), 3U);
  for (std::size_t i = 0; i < 3; ++i) {
    const Pattern& p = part.patterns[i];
    EXPECT_EQ(p.headWord, -77);
    EXPECT_TRUE(p.gridCount1 == 1 && p.gridCount2 == 1 && p.gridStep1 == 0 && p.gridStep2 == 0);
    EXPECT_TRUE(p.originX == 0 && p.originY == 0 && p.rotationCos == 0.6F && p.rotationSin == -0.8F);
    EXPECT_TRUE(p.groupKind == 0 && p.patternWord == 0 && p.profiles.empty() && p.stepTables.empty());
    ASSERT_EQ(p.items.size(), f.patterns[i].items.size());
    for (std::size_t k = 0; k < p.items.size(); ++k) {
      PatternItem wanted = f.patterns[i].items[k];
      wanted.toolNumber = 0;
      EXPECT_EQ(allOf(p.items[k]), allOf(wanted));
    }
  }
  ASSERT_EQ(part.setupList.entries.size(), 3U);
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(allOf(part.setupList.entries[i]), allOf(f.entries[i]));
  EXPECT_EQ(part.marks.size(), 2U);
  EXPECT_TRUE(part.toolStations.stations.empty() && part.toolStations.tools.empty());
  EXPECT_EQ(part.materialType[0], '\0');
}

TEST(PartsOfVersion5, LoadsEveryFieldWithTheSignOfItsShortsAndIgnoresWhatFollows) {
  std::vector<Arrival> all;
  for (const std::size_t surplus : {0U, 40U}) {
    const Loaded five(fullFive().bytes(&all).fill(surplus, 0xEE));
    EXPECT_EQ(five.status, 0);
    expectArrivals(*five.part, all, std::numeric_limits<std::size_t>::max());
    expectFullFive(*five.part);
    const TorvPart fresh;
    EXPECT_TRUE(five.part->partWord2 == fresh.partWord2 && five.part->tailWord1 == fresh.tailWord1 &&
                five.part->lateIndex == fresh.lateIndex && five.part->workKind == fresh.workKind &&
                five.part->processSlotCount == 0 && five.part->shapes.listTag == -1 && five.part->shapes.listKind == 1);
  }
}

TEST(PartsOfVersion5, CutAnywhereReturnsOneAndKeepsCompleteFields) {
  std::vector<Arrival> all;
  const Bytes file = fullFive().bytes(&all);
  for (std::size_t cut = 0; cut < file.size(); ++cut) {
    const Loaded five(file.cut(cut));
    EXPECT_EQ(five.status, 1) << cut;
    expectArrivals(*five.part, all, cut);
  }
}

TEST(OldShapeConverter, HeadThatIsItselfAMemberIsInItsOwnFrame) {
  for (const float angle : {0.5F, -1.25F, 3.0F}) {
    oldtorvio::Shape head;
    head.type = 7;
    head.flags = 128;
    head.x = 3;
    head.y = 4;
    head.values[2] = angle;
    oldtorvio::OldShapeConverter(true).convert(head, 0);
    EXPECT_NEAR(head.x, 0, 1e-5) << angle;
    EXPECT_NEAR(head.y, 0, 1e-5) << angle;
    EXPECT_NEAR(head.values[2], 0, 1e-5) << angle;
  }
}

TEST(PartsOfVersion5, UsedRecordIsFilledLikeAFreshOne) {
  TorvPart used;
  for (int i = 0; i < 2; ++i) {
    std::memcpy(used.materialType, "STEEL", 6);
    std::memset(used.partName, 'N', 256);
    used.workList.resize(3);
    ASSERT_EQ(load(fullFive().bytes(), used), 0);
    expectFullFive(used);
    EXPECT_STREQ(used.materialType, "");
    EXPECT_TRUE(used.workList.empty());
    EXPECT_TRUE(used.partName[20] == '\0' && used.partName[21] == 'N' && used.partName[255] == 'N');
  }
}

TEST(PartsOfVersion5, CountsBelowOneReadOnlyCurrentAndTheTail) {
  for (const int count : {0, -2, -32768}) {
    Five f;
    f.current = entryOf(3);
    f.shapeCount = f.patternCount = f.entryCount = f.markCount = count;
    std::vector<Arrival> all;
    const Bytes file = f.bytes(&all);
    TorvPart used;
    used.marks.resize(2);
    used.shapes.shapes.resize(2);
    used.setupList.entries.resize(2);
    ASSERT_EQ(load(file, used), 0) << count;
    expectArrivals(used, all, file.size());
    EXPECT_TRUE(used.shapes.shapes.empty() && used.patterns.empty() && used.setupList.entries.empty() &&
                used.marks.empty());
  }
}

TEST(PartsOfVersion5, CountsBeyondTheFileReturnOne) {
  for (int Five::*const count : {&Five::shapeCount, &Five::patternCount, &Five::entryCount, &Five::markCount}) {
    Five f = fullFive();
    f.*count = 32767;
    EXPECT_EQ(Loaded(f.bytes()).status, 1);
  }
}

TEST(PartsOfVersion5, ContinuationsAreKeptOnlyAsFarAsTheirHeadAnnouncedThem) {
  struct Case {
    std::vector<std::pair<int, int>> stored;  // type and setupShort3
    std::vector<std::size_t> kept;
  };
  std::vector<Case> cases{{{{8, 5}, {1, 3}, {8, 1}}, {1}},
                          {{{0, 3}, {18, 3}, {8, 0}, {300, 1}, {8, 0}}, {0, 1, 3}},
                          {{{7, 3}, {8, 0}, {9, 0}, {8, 0}}, {0, 1, 2}}};
  for (int type = 0; type <= 20; ++type) {
    if (type == 8) continue;
    const bool head = type == 7 || type == 9 || type == 15 || type == 16 || type == 17;
    cases.push_back(
        {{{type, 2}, {8, 0}, {8, 0}, {8, 0}}, head ? std::vector<std::size_t>{0, 1, 2} : std::vector<std::size_t>{0}});
    // Others in between keep the remainder.
    if (!head) cases.push_back({{{16, 2}, {8, 9}, {type, 7}, {8, 9}, {8, 9}}, {0, 1, 2, 3}});
  }
  for (const Case& one : cases) {
    Five f = fullFive();
    f.entries.clear();
    for (const auto& [type, short3] : one.stored) {
      f.entries.push_back(entryOf(type, short3));
      f.entries.back().setupWord1 = static_cast<std::uint32_t>(f.entries.size());
    }
    const Loaded five(f.bytes());
    ASSERT_EQ(five.status, 0);
    std::vector<std::size_t> kept;
    for (const SetupEntry& e : five.part->setupList.entries) kept.push_back(e.setupWord1 - 1);
    EXPECT_EQ(kept, one.kept) << "type " << one.stored[0].first;
    EXPECT_EQ(allOf(five.part->setupList.current), allOf(f.current));
  }
}

// ---- versions 2 and 3 ----------------------------------------------------------------------------

struct Old {
  int version = 3;
  int hasItems = 0, hasFixes = 0, otherFlags = 0;
  std::uint8_t reserved = 0;
  int otherCount1 = 0, otherCount2 = 0;
  std::vector<Shape> shapes;
  int shapeCount = -1;
  int setupCount = 0;
  Bytes setup;                    // records of the setup section
  Bytes last = Bytes().zeros(4);  // items or fixes
  static constexpr std::size_t kHeadSize = 80;

  Bytes bytes() const {
    Bytes b;
    const auto others = static_cast<std::uint8_t>(otherFlags);
    b.i16(version).f32(64.5F).f32(32.25F).u8(std::uint8_t(hasItems)).u8(std::uint8_t(hasFixes));
    b.u8(others).u8(others).u8(others).fill(59, reserved);
    b.i16(shapeCount == -1 ? static_cast<int>(shapes.size()) : shapeCount).i16(otherCount1).i16(otherCount2);
    for (const Shape& s : shapes) b.add(stored(s));
    return b.i16(setupCount).add(setup).add(last);
  }
  static Bytes stored(const Shape& s) {
    Bytes b;
    b.i8(s.type).raw({0xE1, 0xE2}).i16(s.auxWord).raw({0xE3, 0xE4}).u16(static_cast<std::uint16_t>(s.flags));
    b.f32(s.x).f32(s.y);
    for (int i = 0; i < storedValues(s.type); ++i) b.f32(s.values[i]);
    return b;
  }
};

struct Record {
  int type = 1;
  float r0 = 0.5F, r1 = 1.5F, r2 = 2.5F, r3 = 3.5F;
  int b = 7;
  int texts = 0x7A7A;

  // The record and the bytes that belong to its type.
  Bytes bytes() const {
    Bytes s;
    s.u16(static_cast<std::uint16_t>(type)).raw({0xD1, 0xD2}).i16(texts).fill(6, 0xD3);
    s.f32(r0).f32(r1).f32(r2).f32(r3).u8(static_cast<std::uint8_t>(b));
    static constexpr std::size_t kBytesAfter[18] = {0, 16, 16, 16, 24, 16, 16, 8, 0, 0, 8, 8, 8, 12, 12, 0, 0, 0};
    return s.fill(type < 18 ? kBytesAfter[type] : 0, 0xD4);
  }
  SetupEntry entry() const {
    SetupEntry e;
    e.setupShort1 = static_cast<std::uint16_t>(type);
    e.setupByte1 = e.setupByte2 = e.setupByte3 = '0';
    set(e, r1, r2, r3, b);
    e.setupWord2 = bits(r0);
    e.setupShort5 = 7;
    e.setupWord3 = bits(1.0F);
    return e;
  }
  static void set(SetupEntry& e, float block1, float block2, float word, int byte) {
    setFromBytes(e.setupBlock, Bytes().f32(block1).f32(block2).span());
    e.setupWord1 = bits(word);
    e.setupByte4 = static_cast<std::uint8_t>(byte);
  }
};

Bytes textRecord(const std::string& text) { return Bytes().raw({0xD5, 0xD6}).text(27, text); }

// A continuation has its 27 characters in memory after its type. Those that lie between two fields are in no field.
Bytes continuation(const std::string& text) {
  std::string padded = text;
  padded.resize(27, '\0');
  Bytes fields;
  fields.u16(8);
  for (const auto& [at, size] : {std::pair{0U, 3U}, {4U, 3U}, {8U, 3U}, {14U, 13U}})
    fields.text(size, padded.substr(at, size));
  return fields.zeros(10).f32(-1).f32(-1).u32(0);
}

bool isText(int type) { return type == 7 || type == 9 || (type >= 15 && type <= 17); }

TEST(PartsOfVersions2And3, LoadNeverSucceedsButFillsTheRecordAsFarAsItReads) {
  for (const int version : {2, 3})
    for (const int flags : {0, 1, 2, 255})
      for (const int items : {0, 1}) {
        Old old;
        old.version = version;
        old.hasItems = items;
        old.hasFixes = old.otherFlags = flags;
        old.reserved = static_cast<std::uint8_t>(flags);
        old.otherCount1 = flags - 100;
        old.otherCount2 = 32767;
        old.shapes = {plainShape(3), plainShape(1)};
        old.setupCount = 1;
        old.setup = Record{}.bytes();
        // Items: two, and one number.
        if (items == 1) old.last = Bytes().i16(2).i16(5).i16(6).i16(7).i16(8).i16(1).i16(9);
        old.last.fill(400, 0);
        const Loaded loaded(old.bytes());
        const TorvPart& part = *loaded.part;
        EXPECT_EQ(loaded.status, 1);
        EXPECT_EQ(part.version, version);
        EXPECT_TRUE(part.width == 64.5F && part.height == 32.25F);
        EXPECT_EQ(part.shapes.shapes.size(), 2U);
        ASSERT_EQ(part.setupList.entries.size(), 1U);
        EXPECT_EQ(allOf(part.setupList.entries[0]), allOf(Record{}.entry()));
        // The items in the pattern are those made from the shapes.
        ASSERT_EQ(part.patterns.size(), 1U);
        ASSERT_EQ(part.patterns[0].items.size(), 2U);
        for (const PatternItem& i : part.patterns[0].items) EXPECT_EQ(allOf(i), allOf(PatternItem{}));
        EXPECT_TRUE(part.marks.empty() && part.processSlotCount == 0 && part.stepTables.empty());
      }
}

TEST(PartsOfVersions2And3, CutAnywhereKeepsCompleteFields) {
  for (const int items : {0, 1}) {
    Old old;
    old.hasItems = items;
    old.hasFixes = 1;
    for (int type = -1; type <= 26; ++type) old.shapes.push_back(plainShape(type));
    std::vector<Arrival> all{{6, "width", [](const TorvPart& p) { return p.width == 64.5F; }},
                             {10, "height", [](const TorvPart& p) { return p.height == 32.25F; }}};
    std::size_t end = Old::kHeadSize;
    for (std::size_t i = 0; i < old.shapes.size(); ++i) {
      end += Old::stored(old.shapes[i]).size();
      all.push_back({end, "shape", [i](const TorvPart& p) { return p.shapes.shapes.size() > i; }});
    }
    all.push_back({end, "pattern", [](const TorvPart& p) { return p.patterns.size() == 1; }});
    end += 2;
    old.setupCount = 3;
    for (std::size_t i = 0; i < 3; ++i) {  // types 8, 8 and 8 have no bytes after their record
      old.setup.add(Record{8}.bytes());
      end += 29;
      all.push_back({end, "entry", [i](const TorvPart& p) { return p.setupList.entries.size() > i; }});
    }
    const Bytes file = old.bytes();
    for (std::size_t cut = 2; cut <= file.size(); ++cut) {
      const Loaded loaded(file.cut(cut));
      EXPECT_EQ(loaded.status, 1) << cut;
      expectArrivals(*loaded.part, all, cut);
    }
  }
}

TEST(PartsOfVersions2And3, ShapesAreNumberedByTheirClassUnlessItemsFollow) {
  for (const int hasItems : {0, 1, 2}) {
    Old old;
    old.hasItems = hasItems;
    for (int type = -1; type <= 26; ++type) {
      old.shapes.push_back(plainShape(type));
      old.shapes.back().auxWord = type % 2 == 0 ? 32767 : -1 - type;
      old.shapes.back().flags = type % 3 == 0 ? 0x001C : 0xFF7F;
    }
    const Loaded loaded(old.bytes());
    EXPECT_EQ(loaded.status, 1);
    const auto& shapes = loaded.part->shapes.shapes;
    ASSERT_EQ(shapes.size(), old.shapes.size());
    ASSERT_EQ(loaded.part->patterns.size(), 1U);
    ASSERT_EQ(loaded.part->patterns[0].items.size(), shapes.size());
    for (std::size_t i = 0; i < shapes.size(); ++i) {
      Shape wanted = old.shapes[i];
      const int number = static_cast<int>(i) + 2;
      wanted.auxWord = hasItems == 1 ? wanted.auxWord + 1 : keepsLowFlag(wanted.type) ? number : 0;
      wanted.flags &= keepsLowFlag(wanted.type) ? 0xFFF3U : 0xFFF2U;
      if (wanted.type == 7 && hasItems != 1) wanted.values[0] = static_cast<float>(number);
      if (wanted.type == 9) wanted.values[4] = real(0x3FC90FDB);
      if (wanted.type == 15 || wanted.type == 16) wanted.values[1] = wanted.values[0];
      EXPECT_EQ(allOf(shapes[i]), allOf(wanted)) << "type " << int(wanted.type);
      PatternItem item;
      item.itemWord1 = wanted.flags & 0x310U;
      EXPECT_EQ(allOf(loaded.part->patterns[0].items[i]), allOf(item));
    }
  }
}

TEST(PartsOfVersions2And3, SecondValueOfTypes15And16IsLimitedToTheFirst) {
  for (const auto& [first, second, wanted] :
       std::vector<std::array<float, 3>>{{2, 3, 2}, {2, -3, 2}, {-2, 3, -2}, {-3, 2, 2}, {2, -2, -2}, {0, 0, 0}})
    for (int type = 10; type <= 21; ++type) {
      Old old;
      old.shapes = {plainShape(type)};
      if (storedValues(type) < 2) continue;
      old.shapes[0].values[0] = first;
      old.shapes[0].values[1] = second;
      const Loaded loaded(old.bytes());
      ASSERT_EQ(loaded.part->shapes.shapes.size(), 1U);
      EXPECT_EQ(loaded.part->shapes.shapes[0].values[1], type == 15 || type == 16 ? wanted : second) << type;
    }
}

TEST(PartsOfVersions2And3, FullTurnIsLimitedToTheConstantOfTheLayout) {
  constexpr float kInf = std::numeric_limits<float>::infinity();
  for (const int version : {2, 3, 5})
    for (int type = 0; type <= 25; ++type)
      for (const float a : {0.0F, 6.0F, real(0x40C90FDA), real(0x40C90FDB), 7.0F, 1e30F, kInf}) {
        if (storedValues(type) < 3) continue;
        for (const float sign : {1.0F, -1.0F}) {
          Shape shape = plainShape(type);
          shape.values[2] = sign * a;
          Five five;
          Old old;
          old.version = version;
          five.shapes = old.shapes = {shape};
          const Loaded loaded(version == 5 ? five.bytes() : old.bytes());
          ASSERT_EQ(loaded.part->shapes.shapes.size(), 1U);
          const bool cut = (type == 2 || type == 5) && a > 6.2831852F;
          const float turn = version == 5 ? real(0x40C90F09) : real(0x40C90FD4);
          EXPECT_EQ(bits(loaded.part->shapes.shapes[0].values[2]), bits(cut ? sign * turn : shape.values[2]))
              << "type " << type << ", " << sign * a;
        }
      }
}

TEST(PartsOfVersions2And3, MembersOfAGroupAreMovedIntoTheFrameOfTheirHead) {
  // Which value is an angle; the two of a vector are -2.
  static constexpr int kField[26] = {-1, -1, 1, 2, -2, 1,  2,  2, 4, 1,  -2, 4,  1,
                                     1,  2,  2, 2, -1, -1, -1, 2, 2, -1, 2,  -1, 2};
  struct Head {
    float angle, x, y;
  };
  for (const Head& head : {Head{0, 0, 0}, Head{0, 10, 5}, Head{0.5F, 10, 5}, Head{-1.25F, -3, 8}, Head{3, 1, 2}})
    for (const bool stored : {true, false}) {  // without a head every member is treated as if it had one of zeros
      Old old;
      Shape first = plainShape(7, head.x, head.y);
      first.values[2] = head.angle;
      if (!stored) first.type = 24;
      old.shapes = {first};
      for (int type = 0; type <= 25; ++type) {
        if (type == 7) continue;
        old.shapes.push_back(plainShape(type, 12, 5));
        old.shapes.back().flags = 128;
        if (kField[type] >= 0) old.shapes.back().values[kField[type]] = 4.0F;
        if (type == 15 || type == 16) old.shapes.back().values[1] = 0;
        old.shapes.push_back(plainShape(type, 12, 5));  // not a member
      }
      const Loaded loaded(old.bytes());
      const auto& shapes = loaded.part->shapes.shapes;
      ASSERT_EQ(shapes.size(), old.shapes.size());
      const float angle = stored ? head.angle : 0.0F, hx = stored ? head.x : 0.0F, hy = stored ? head.y : 0.0F;
      const float c = std::cos(angle), s = std::sin(angle);
      for (std::size_t i = 1; i < shapes.size(); ++i) {
        const Shape& from = old.shapes[i];
        const int field = kField[from.type];
        if (from.flags == 0) {
          EXPECT_TRUE(shapes[i].x == 12 && shapes[i].y == 5);
          continue;
        }
        EXPECT_EQ(shapes[i].x, from.x * c + (-(hx * c) - hy * s) + from.y * s);
        EXPECT_EQ(shapes[i].y, -from.x * s + (hx * s - hy * c) + from.y * c);
        EXPECT_EQ(shapes[i].flags, 128U);
        for (int k = 0; k < storedValues(from.type); ++k) {
          if (k == field) {
            EXPECT_NEAR(shapes[i].values[k],
                        std::remainder(double{from.values[k]} - double{angle}, 2 * std::numbers::pi), 2e-6)
                << "type " << int(from.type);
          } else if (field != -2 || k > 1) {
            EXPECT_EQ(shapes[i].values[k], from.values[k]) << "type " << int(from.type);
          }
        }
        if (field == -2) {
          EXPECT_FLOAT_EQ(shapes[i].values[0], c * from.values[0] + s * from.values[1]);
          EXPECT_FLOAT_EQ(shapes[i].values[1], c * from.values[1] - s * from.values[0]);
        }
      }
    }
}

TEST(PartsOfVersions2And3, HeadThatIsItselfAMemberIsItsOwnOrigin) {
  Old old;
  old.shapes = {plainShape(7, 10, 5), plainShape(7, 3, 4), plainShape(0, 5, 5)};
  old.shapes[0].values[2] = 1;
  old.shapes[1].values[2] = 0;
  old.shapes[1].flags = old.shapes[2].flags = 128;
  const Loaded loaded(old.bytes());
  ASSERT_EQ(loaded.part->shapes.shapes.size(), 3U);
  const auto& all = loaded.part->shapes.shapes;
  EXPECT_TRUE(all[0].x == 10 && all[0].y == 5 && all[0].values[2] == 1);
  EXPECT_TRUE(all[1].x == 0 && all[1].y == 0 && all[1].values[2] == 0 && all[1].values[0] == 3);
  EXPECT_TRUE(all[2].x == 2 && all[2].y == 1);
}

// The entries of one setup section, then `current`.
std::vector<SetupEntry> entriesOf(int count, const Bytes& setup, SetupEntry* current = nullptr) {
  Old old;
  old.setupCount = count;
  old.setup = setup;
  const Loaded loaded(old.bytes());
  EXPECT_EQ(loaded.status, 1);
  if (current != nullptr) *current = loaded.part->setupList.current;
  return loaded.part->setupList.entries;
}

TEST(PartsOfVersions2And3, EachRecordBecomesASetupEntryOfItsType) {
  const float limit = 0.0001F, above = std::nextafter(limit, 1.0F);
  constexpr float kInf = std::numeric_limits<float>::infinity();
  for (const float r1 : {0.0F, limit, -above, above, 5.0F, 31000.0F})
    for (const float r2 : {0.0F, -limit, above, -7.0F, -31000.0F})
      for (const float r3 : {9.0F, 30000.0F, std::nextafter(30000.0F, kInf), -30001.0F, kInf})
        for (const int b : {0, 1, 200, 255}) {
          Bytes setup;
          std::vector<SetupEntry> wanted;
          SetupEntry wantedCurrent;
          for (int type = 1; type <= 17; ++type) {
            const Record record{type, 0.5F, r1, r2, r3, b, 0};
            setup.add(record.bytes());
            SetupEntry e = record.entry();
            if (type == 4) e.setupByte4 = b != 0 ? 2 : 1;
            if (type == 5 || type == 6) e.setupByte4 = static_cast<std::uint8_t>(b + 1);
            const int side = r1 / r2 > 0 ? 1 : 2;
            if (type == 11 && !(std::abs(double{r1}) < 0.0001))
              Record::set(e, r1, r3, r2, side);
            else if (type == 12 && !(std::abs(double{r2}) < 0.0001))
              Record::set(e, r3, r2, r1, side);
            else if (type == 10 || type == 11 || type == 12)
              e.setupWord1 = 0;
            if (type == 10 || isText(type)) e.setupByte2 = e.setupByte3 = e.setupByte4 = 0;
            if (isText(type) && type != 7) e.setupByte1 = 0;
            if (!isText(type) && std::abs(real(e.setupWord1)) > 30000.0F) e.setupWord1 = 0;
            if (type == 10)
              wantedCurrent = e;
            else
              wanted.push_back(e);
          }
          SetupEntry current;
          const auto entries = entriesOf(17, setup, &current);
          ASSERT_EQ(entries.size(), wanted.size());
          for (std::size_t i = 0; i < wanted.size(); ++i)
            EXPECT_EQ(allOf(entries[i]), allOf(wanted[i])) << "type " << wanted[i].setupShort1;
          EXPECT_EQ(allOf(current), allOf(wantedCurrent));
        }
}

TEST(PartsOfVersions2And3, TextsAfterARecordAreJoinedAndSplitIntoContinuations) {
  const std::string full(27, 'f'), nul("ab\0cd", 5);
  struct Case {
    std::vector<std::string> texts;
    std::string joined;
  };
  for (const int type : {7, 9, 15, 16, 17})
    for (const Case& one : std::vector<Case>{{{}, ""},
                                             {{""}, ""},
                                             {{"short", "er"}, "shorter"},
                                             {{nul, "x"}, "abx"},
                                             {{full}, full},
                                             {{full, "g"}, full + "g"},
                                             {{"g", full, "", full}, "g" + full + full},
                                             {{full, full}, full + full}}) {
      Record record{type};
      record.r3 = 40000;  // no limit where texts follow
      record.texts = static_cast<int>(one.texts.size());
      Bytes setup = record.bytes();
      for (const std::string& text : one.texts) setup.add(textRecord(text));
      setup.add(Record{2}.bytes());
      const auto entries = entriesOf(record.texts + 2, setup);
      const std::size_t parts = (one.joined.size() + 26) / 27;
      ASSERT_EQ(entries.size(), parts + 2) << one.joined;
      SetupEntry head = record.entry();
      head.setupByte1 = type == 7 ? '0' : 0;
      head.setupByte2 = head.setupByte3 = head.setupByte4 = 0;
      head.setupShort3 = static_cast<std::uint16_t>(parts);
      EXPECT_EQ(allOf(entries[0]), allOf(head));
      for (std::size_t i = 0; i < parts; ++i)
        EXPECT_EQ(allOf(entries[i + 1]), continuation(one.joined.substr(27 * i, 27)));
      EXPECT_EQ(allOf(entries.back()), allOf(Record{2}.entry()));
    }
}

// The record says how many texts it has; the section's count only says where the next record would be.
TEST(PartsOfVersions2And3, TextsOfARecordAreReadEvenBeyondTheCountOfTheSection) {
  for (const int type : {7, 9, 15, 16, 17}) {
    Record record{type};
    record.texts = 2;
    const Bytes texts = Bytes().add(textRecord("short")).add(textRecord("er"));
    for (const int count : {1, 2, 3}) {
      const auto entries = entriesOf(count, record.bytes().add(texts).add(Record{2}.bytes()));
      ASSERT_EQ(entries.size(), 2U) << type << " in a section of " << count;
      EXPECT_EQ(allOf(entries[1]), continuation("shorter"));
    }
    for (const int negative : {-1, -32768}) {
      record.texts = negative;
      const auto entries = entriesOf(2, record.bytes().add(Record{2}.bytes()));
      ASSERT_EQ(entries.size(), 2U) << type << " of " << negative << " texts";
      EXPECT_EQ(entries[0].setupShort3, 0U);
      EXPECT_EQ(allOf(entries[1]), allOf(Record{2}.entry()));
    }
  }
}

TEST(PartsOfVersions2And3, RecordWhoseTextsOrBytesAreCutMakesNoEntry) {
  const auto entriesOfCut = [](const Record& record, const Bytes& texts, std::size_t missing) {
    Old old;
    old.setupCount = 40;
    old.setup = Record{2}.bytes().add(record.bytes()).add(texts);
    const Bytes all = old.bytes();
    const std::string text(reinterpret_cast<const char*>(all.span().data()), all.size());
    const Bytes section = record.bytes().add(texts);
    const std::string wanted(reinterpret_cast<const char*>(section.span().data()), section.size());
    const std::size_t at = text.find(wanted);
    EXPECT_NE(at, std::string::npos);
    const Loaded loaded(all.cut(at + section.size() - missing));
    EXPECT_EQ(loaded.status, 1);
    return loaded.part->setupList.entries.size();
  };
  for (const int type : {7, 9, 15, 16, 17}) {
    Record record{type};
    record.texts = 2;
    const Bytes texts = Bytes().add(textRecord("first")).add(textRecord("second"));
    for (std::size_t missing = 0; missing <= texts.size() + 1; ++missing)
      EXPECT_EQ(entriesOfCut(record, texts, missing), missing == 0 ? 3U : 1U) << type << " without " << missing;
  }
  for (const int type : {1, 4, 7, 13}) {
    Record record{type};
    record.texts = 0;
    EXPECT_EQ(entriesOfCut(record, Bytes(), 0), 2U) << type;
    for (std::size_t missing = 1; missing < record.bytes().size(); ++missing)
      EXPECT_EQ(entriesOfCut(record, Bytes(), missing), 1U) << type << " without " << missing;
  }
}

TEST(PartsOfVersions2And3, LoadContinuesAfterASetupSectionThatFailed) {
  for (const int type : {0, 18, 300, 0x8001, 0xFFFF}) {
    Old old;
    old.hasFixes = 1;
    old.shapes = {plainShape(3), plainShape(1)};
    old.setupCount = 20;
    old.setup.add(Record{3}.bytes()).add(Record{type}.bytes());
    old.last = Bytes().i16(1).i16(1).i16(-25).fill(40, 0xFF);
    const Loaded loaded(old.bytes());
    EXPECT_EQ(loaded.status, 1);
    EXPECT_EQ(loaded.part->setupList.entries.size(), 1U) << type;
    ASSERT_EQ(loaded.part->shapes.shapes.size(), 2U);
    Shape fixed;
    fixed.values[8] = -25;
    EXPECT_EQ(allOf(loaded.part->shapes.shapes[1]), allOf(fixed)) << type;
  }
}

TEST(PartsOfVersions2And3, FixedShapesAreReplacedUpToAnIndexOutsideTheList) {
  for (const int hasFixes : {0, 1, 2})
    for (const int hasItems : {0, 1})
      for (const int outside : {3, 32767, -1, -32768}) {
        Old old;
        old.hasFixes = hasFixes;
        old.hasItems = hasItems;
        old.shapes = {plainShape(3), plainShape(1), plainShape(6)};
        const Bytes fixes = Bytes().i16(3).i16(2).i16(9).i16(outside).i16(8).i16(0).i16(7);
        old.last = (hasItems == 1 ? Bytes().i16(1).i16(4).i16(4).i16(0) : Bytes()).add(fixes);
        const Loaded loaded(old.bytes());
        EXPECT_EQ(loaded.status, 1);
        const auto& shapes = loaded.part->shapes.shapes;
        ASSERT_EQ(shapes.size(), 3U);
        // After items the fixes are never reached.
        const bool reached = hasFixes == 1 && hasItems == 0;
        EXPECT_EQ(shapes[2].values[8], reached ? 9.0F : 0.0F);
        EXPECT_EQ(int(shapes[2].type), reached ? 0 : 6);
        EXPECT_EQ(int(shapes[0].type), 3);
      }
}

TEST(PartsOfVersions2And3, UsedRecordIsRefilled) {
  Old old;
  old.shapes = {plainShape(3)};
  old.setupCount = 1;
  old.setup = Record{}.bytes();
  TorvPart used;
  for (int i = 0; i < 2; ++i) {
    used.workList.resize(2);
    used.patterns.resize(3);
    EXPECT_EQ(load(old.bytes(), used), 1);
    EXPECT_TRUE(used.shapes.shapes.size() == 1 && used.patterns.size() == 1 && used.workList.empty() &&
                used.setupList.entries.size() == 1);
  }
  for (const int count : {0, -2, -32768}) {
    old.shapes.clear();
    old.shapeCount = old.setupCount = count;
    old.setup = {};
    EXPECT_EQ(load(old.bytes(), used), 1);
    EXPECT_TRUE(used.shapes.shapes.empty() && used.patterns.size() == 1 && used.setupList.entries.empty());
    EXPECT_TRUE(used.patterns[0].items.empty());
  }
}

}  // namespace
