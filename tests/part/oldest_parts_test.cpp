// Part files of the versions 2, 3 and 5, from hand-written bytes.
#include "tests/support/stored_forms/oldest_parts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

#include "OldTorvIO.h"
#include "OldTorvIO/records.h"
#include "src/part/old_part_rules.h"
#include "tests/support/files.h"

namespace {

using namespace testing_support;
using values::firstDifference;
using Record = Version3Setup;

std::uint32_t bits(float v) { return std::bit_cast<std::uint32_t>(v); }
float real(std::uint32_t v) { return std::bit_cast<float>(v); }

// The first member that differs, if any.
template <class R>
void expectSame(const R& got, const R& wanted) {
  EXPECT_EQ(firstDifference(got, wanted), std::nullopt);
}

Shape plainShape(int type, float x = 1.5F, float y = -2.5F) {
  Shape s;
  s.type = static_cast<std::int8_t>(type);
  s.x = x;
  s.y = y;
  for (int i = 0; i < oldestValueCount(type); ++i) s.values[i] = 0.25F * static_cast<float>(i + 1) + 0.001F;
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

// ---- version 5 -----------------------------------------------------------------------------------

// Shapes of all types and of two unknown ones, lists of several lengths.
const Version5Form& fullForm() {
  static const Version5Form form = [] {
    Version5Form f{{}, {3, 0, 1}, {1, 6, 13}, 2};
    for (int type = -1; type <= 26; ++type) f.shapeTypes.push_back(type);
    return f;
  }();
  return form;
}

struct Five {
  std::unique_ptr<TorvPart> part = std::make_unique<TorvPart>();
  Maker m;
  explicit Five(const Version5Form& form = fullForm()) { storedVersion5Part(m, form, *part); }
  Bytes file() const { return Bytes().i16(5).add(m.bytes); }
  // With that count instead of its own.
  Bytes with(Version5Section count, int value) const {
    return Bytes().i16(5).add(patched(m.bytes, m.sections.at(count), Bytes().i16(value)));
  }
};

std::unique_ptr<TorvPart> usedPart() {
  auto used = std::make_unique<TorvPart>();
  Maker other = Maker::ofEveryField(1);
  storedVersion5Part(other, fullForm(), *used);
  std::memcpy(used->materialType, "STEEL", 6);
  std::memset(used->partName, 'N', 256);
  used->workList.resize(3);
  used->partWord2 = used->tailWord1 = used->lateIndex = used->workKind = 4711;
  used->processSlotCount = 7;
  return used;
}

// `cut`: the stored bytes after the version word.
void expectFive(TorvPart& part, const TorvPart& before, std::size_t cut = Checker::kNoCut) {
  Checker checker(part, before, cut);
  storedVersion5Part(checker, fullForm(), part);
}

TEST(PartsOfVersion5, LoadsEveryFieldWithTheSignOfItsShortsAndIgnoresWhatFollows) {
  const auto fresh = std::make_unique<TorvPart>(), used = usedPart();
  for (const std::size_t surplus : {0U, 40U})
    for (const TorvPart* before : {fresh.get(), used.get()}) {
      const auto part = std::make_unique<TorvPart>(*before);
      EXPECT_EQ(load(Five().file().fill(surplus, 0xEE), *part), 0);
      expectFive(*part, *before);
      // What the layout does not store is as it was.
      EXPECT_EQ(part->version, 5);
      EXPECT_TRUE(part->partWord2 == before->partWord2 && part->tailWord1 == before->tailWord1 &&
                  part->lateIndex == before->lateIndex && part->workKind == before->workKind &&
                  part->processSlotCount == before->processSlotCount);
      EXPECT_TRUE(part->shapes.listTag == -1 && part->shapes.listKind == 1);
      EXPECT_TRUE(part->toolStations.stations.empty() && part->toolStations.tools.empty());
      EXPECT_EQ(std::memcmp(part->partName + 21, before->partName + 21, 256 - 21), 0);
      EXPECT_STREQ(part->materialType, "");
    }
}

TEST(PartsOfVersion5, CutAnywhereReturnsOneAndKeepsCompleteFields) {
  const Bytes file = Five().file();
  const auto fresh = std::make_unique<TorvPart>(), used = usedPart();
  for (std::size_t cut = 0; cut < file.size(); ++cut)
    for (const TorvPart* before : {fresh.get(), used.get()}) {
      SCOPED_TRACE("cut at " + std::to_string(cut));
      const auto part = std::make_unique<TorvPart>(*before);
      ASSERT_EQ(load(file.cut(cut), *part), 1);
      ASSERT_EQ(part->version, cut < 2 ? before->version : 5);
      if (cut < 2)
        expectSame(*part, *before);
      else
        expectFive(*part, *before, cut - 2);
      if (HasFailure()) return;
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

TEST(PartsOfVersion5, CountsBelowOneReadOnlyCurrentAndTheTail) {
  for (const int count : {0, -2, -32768}) {
    const Version5Form empty{{}, {}, {}, 0};
    Five five(empty);
    Bytes body = five.m.bytes;
    for (const auto section : {kShapeCount, kPatternCount, kEntryCount, kMarkCount})
      body = patched(body, five.m.sections.at(section), Bytes().i16(count));
    const auto before = usedPart(), used = usedPart();
    ASSERT_EQ(load(Bytes().i16(5).add(body), *used), 0) << count;
    Checker checker(*used, *before);
    storedVersion5Part(checker, empty, *used);
  }
}

TEST(PartsOfVersion5, CountsBeyondTheFileReturnOne) {
  for (const auto count : {kShapeCount, kPatternCount, kEntryCount, kMarkCount})
    EXPECT_EQ(Loaded(Five().with(count, 32767)).status, 1) << count;
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
    TorvPart part;
    auto& entries = part.setupList.entries;
    for (const auto& [type, short3] : one.stored) {
      SetupEntry& e = entries.emplace_back();
      e.setupShort1 = static_cast<std::uint16_t>(type);
      e.setupShort3 = static_cast<std::uint16_t>(short3);
      e.setupWord1 = static_cast<std::uint32_t>(entries.size());
    }
    part.setupList.current.setupShort1 = 8;
    part.setupList.current.setupShort3 = 700;
    part.setupList.current.setupWord3 = 4711;
    const Loaded five(version5File(part));
    ASSERT_EQ(five.status, 0);
    std::vector<std::size_t> kept;
    for (const SetupEntry& e : five.part->setupList.entries) kept.push_back(e.setupWord1 - 1);
    EXPECT_EQ(kept, one.kept) << "type " << one.stored[0].first;
    expectSame(five.part->setupList.current, part.setupList.current);
  }
}

// ---- versions 2 and 3 ----------------------------------------------------------------------------

void setValues(SetupEntry& e, float block1, float block2, float word, int byte) {
  setFromBytes(e.setupBlock, Bytes().f32(block1).f32(block2).span());
  e.setupWord1 = bits(word);
  e.setupByte4 = static_cast<std::uint8_t>(byte);
}
// The entry that a record without a text becomes.
SetupEntry entryOf(const Record& record) {
  SetupEntry e;
  e.setupShort1 = static_cast<std::uint16_t>(record.type);
  e.setupByte1 = e.setupByte2 = e.setupByte3 = '0';
  setValues(e, record.real1, record.real2, record.real3, record.byte);
  e.setupWord2 = bits(record.real0);
  e.setupShort5 = 7;
  e.setupWord3 = bits(1.0F);
  return e;
}

// A continuation has its 27 characters in memory after its type.
SetupEntry continuation(const std::string& text) {
  std::string padded = text;
  padded.resize(kSetupTextSize, '\0');
  const Bytes characters = Bytes().text(kSetupTextSize, padded);
  SetupEntry e;
  e.setupShort1 = 8;
  std::size_t at = 0;
  const auto take = [&](auto&... fields) {
    ((setFromBytes(fields, characters.span().subspan(at, sizeof fields)), at += sizeof fields), ...);
  };
  take(e.setupShort2, e.setupByte1, e.memoryByte1, e.setupShort3, e.setupByte2, e.memoryByte2, e.setupShort4);
  take(e.setupByte3, e.memoryBytes, e.setupBlock, e.setupWord1, e.setupByte4);
  return e;
}

bool isText(int type) { return type == 7 || type == 9 || (type >= 15 && type <= 17); }

std::vector<PatternItem> twoItems() {
  std::vector<PatternItem> items(2);
  items[0].itemWord1 = 5, items[0].toolNumber = 6;
  items[1].itemWord1 = 7, items[1].toolNumber = 8;
  return items;
}

TEST(PartsOfVersions2And3, LoadNeverSucceedsButFillsTheRecordAsFarAsItReads) {
  for (const int version : {2, 3})
    for (const int flags : {0, 1, 2, 255})
      for (const int items : {0, 1}) {
        Version3File old;
        old.version = version;
        old.hasItems = items;
        old.hasShapeFixes = old.hasSlots = old.hasMarks = old.hasLastSection = old.hasSetupReals = flags;
        old.ignored = static_cast<std::uint8_t>(flags);
        old.unusedCount1 = flags - 100;
        old.unusedCount2 = 32767;
        old.shapes = {plainShape(3), plainShape(1)};
        old.setupCount = 1;
        old.setup = Record{}.bytes();
        // Items: two, and one number.
        if (items == 1) old.last = version3Items(twoItems(), {9});
        old.last.fill(400, 0);
        const Loaded loaded(old.bytes());
        const TorvPart& part = *loaded.part;
        EXPECT_EQ(loaded.status, 1);
        EXPECT_EQ(part.version, version);
        EXPECT_TRUE(part.width == 64.5F && part.height == 32.25F);
        EXPECT_EQ(part.shapes.shapes.size(), 2U);
        ASSERT_EQ(part.setupList.entries.size(), 1U);
        expectSame(part.setupList.entries[0], entryOf(Record{}));
        // The items in the pattern are those made from the shapes.
        ASSERT_EQ(part.patterns.size(), 1U);
        ASSERT_EQ(part.patterns[0].items.size(), 2U);
        for (const PatternItem& i : part.patterns[0].items) expectSame(i, PatternItem{});
        EXPECT_TRUE(part.marks.empty() && part.processSlotCount == 0 && part.stepTables.empty());
      }
}

TEST(PartsOfVersions2And3, CutAnywhereKeepsCompleteFields) {
  for (const int items : {0, 1}) {
    Version3File old;
    old.hasItems = items;
    old.hasShapeFixes = 1;
    for (int type = -1; type <= 26; ++type) old.shapes.push_back(plainShape(type));
    std::vector<std::size_t> shapeEnds, entryEnds;
    std::size_t end = Version3File::kHeadSize;
    for (const Shape& shape : old.shapes) shapeEnds.push_back(end += old.stored(shape).size());
    end += 2;
    old.setupCount = 3;
    for (int i = 0; i < 3; ++i) {
      const Bytes record = Record{8}.bytes();  // nothing follows a record of this type
      old.setup.add(record);
      entryEnds.push_back(end += record.size());
    }
    const Bytes file = old.bytes();
    ASSERT_EQ(file.size(), end + old.last.size());
    for (std::size_t cut = 2; cut <= file.size(); ++cut) {
      SCOPED_TRACE("cut at " + std::to_string(cut));
      const auto arrived = [cut](const std::vector<std::size_t>& ends) {
        return static_cast<std::size_t>(std::upper_bound(ends.begin(), ends.end(), cut) - ends.begin());
      };
      const Loaded loaded(file.cut(cut));
      const TorvPart& part = *loaded.part;
      EXPECT_EQ(loaded.status, 1);
      EXPECT_EQ(part.width, cut >= 6 ? 64.5F : 30.0F);
      EXPECT_EQ(part.height, cut >= 10 ? 32.25F : 20.0F);
      EXPECT_EQ(part.shapes.shapes.size(), arrived(shapeEnds));
      EXPECT_EQ(part.patterns.size(), cut >= shapeEnds.back() ? 1U : 0U);
      EXPECT_EQ(part.setupList.entries.size(), arrived(entryEnds));
    }
  }
}

TEST(PartsOfVersions2And3, ShapesAreNumberedByTheirClassUnlessItemsFollow) {
  for (const int hasItems : {0, 1, 2}) {
    Version3File old;
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
      wanted.auxWord = hasItems == 1 ? wanted.auxWord + 1 : oldestKeepsFirstFlag(wanted.type) ? number : 0;
      wanted.flags &= oldestKeepsFirstFlag(wanted.type) ? 0xFFF3U : 0xFFF2U;
      if (wanted.type == 7 && hasItems != 1) wanted.values[0] = static_cast<float>(number);
      if (wanted.type == 9) wanted.values[4] = real(0x3FC90FDB);
      if (wanted.type == 15 || wanted.type == 16) wanted.values[1] = wanted.values[0];
      EXPECT_EQ(firstDifference(shapes[i], wanted), std::nullopt) << "type " << int(wanted.type);
      PatternItem item;
      item.itemWord1 = wanted.flags & 0x310U;
      expectSame(loaded.part->patterns[0].items[i], item);
    }
  }
}

TEST(PartsOfVersions2And3, SecondValueOfTypes15And16IsLimitedToTheFirst) {
  for (const auto& [first, second, wanted] :
       std::vector<std::array<float, 3>>{{2, 3, 2}, {2, -3, 2}, {-2, 3, -2}, {-3, 2, 2}, {2, -2, -2}, {0, 0, 0}})
    for (int type = 10; type <= 21; ++type) {
      Version3File old;
      old.shapes = {plainShape(type)};
      if (oldestValueCount(type) < 2) continue;
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
        if (oldestValueCount(type) < 3) continue;
        for (const float sign : {1.0F, -1.0F}) {
          Shape shape = plainShape(type);
          shape.values[2] = sign * a;
          TorvPart five;
          Version3File old;
          old.version = version;
          five.shapes.shapes = old.shapes = {shape};
          const Loaded loaded(version == 5 ? version5File(five) : old.bytes());
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
      Version3File old;
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
        for (int k = 0; k < oldestValueCount(from.type); ++k) {
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
  Version3File old;
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
  Version3File old;
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
            SetupEntry e = entryOf(record);
            if (type == 4) e.setupByte4 = b != 0 ? 2 : 1;
            if (type == 5 || type == 6) e.setupByte4 = static_cast<std::uint8_t>(b + 1);
            const int side = r1 / r2 > 0 ? 1 : 2;
            if (type == 11 && !(std::abs(double{r1}) < 0.0001))
              setValues(e, r1, r3, r2, side);
            else if (type == 12 && !(std::abs(double{r2}) < 0.0001))
              setValues(e, r3, r2, r1, side);
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
            EXPECT_EQ(firstDifference(entries[i], wanted[i]), std::nullopt) << "type " << wanted[i].setupShort1;
          expectSame(current, wantedCurrent);
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
      record.real3 = 40000;  // no limit where texts follow
      record.texts = static_cast<int>(one.texts.size());
      Bytes setup = record.bytes();
      for (const std::string& text : one.texts) setup.add(setupTextRecord(text));
      setup.add(Record{2}.bytes());
      const auto entries = entriesOf(record.texts + 2, setup);
      const std::size_t parts = (one.joined.size() + 26) / 27;
      ASSERT_EQ(entries.size(), parts + 2) << one.joined;
      SetupEntry head = entryOf(record);
      head.setupByte1 = type == 7 ? '0' : 0;
      head.setupByte2 = head.setupByte3 = head.setupByte4 = 0;
      head.setupShort3 = static_cast<std::uint16_t>(parts);
      expectSame(entries[0], head);
      for (std::size_t i = 0; i < parts; ++i) expectSame(entries[i + 1], continuation(one.joined.substr(27 * i, 27)));
      expectSame(entries.back(), entryOf(Record{2}));
    }
}

// The record says how many texts it has; the section's count only says where the next record would be.
TEST(PartsOfVersions2And3, TextsOfARecordAreReadEvenBeyondTheCountOfTheSection) {
  for (const int type : {7, 9, 15, 16, 17}) {
    Record record{type};
    record.texts = 2;
    const Bytes texts = Bytes().add(setupTextRecord("short")).add(setupTextRecord("er"));
    for (const int count : {1, 2, 3}) {
      const auto entries = entriesOf(count, record.bytes().add(texts).add(Record{2}.bytes()));
      ASSERT_EQ(entries.size(), 2U) << type << " in a section of " << count;
      expectSame(entries[1], continuation("shorter"));
    }
    for (const int negative : {-1, -32768}) {
      record.texts = negative;
      const auto entries = entriesOf(2, record.bytes().add(Record{2}.bytes()));
      ASSERT_EQ(entries.size(), 2U) << type << " of " << negative << " texts";
      EXPECT_EQ(entries[0].setupShort3, 0U);
      expectSame(entries[1], entryOf(Record{2}));
    }
  }
}

TEST(PartsOfVersions2And3, RecordWhoseTextsOrBytesAreCutMakesNoEntry) {
  const auto entriesOfCut = [](const Record& record, const Bytes& texts, std::size_t missing) {
    Version3File old;
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
    const Bytes texts = Bytes().add(setupTextRecord("first")).add(setupTextRecord("second"));
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
    Version3File old;
    old.hasShapeFixes = 1;
    old.shapes = {plainShape(3), plainShape(1)};
    old.setupCount = 20;
    old.setup.add(Record{3}.bytes()).add(Record{type}.bytes());
    old.last = version3Fixes({{1, -25}}).fill(40, 0xFF);
    const Loaded loaded(old.bytes());
    EXPECT_EQ(loaded.status, 1);
    EXPECT_EQ(loaded.part->setupList.entries.size(), 1U) << type;
    ASSERT_EQ(loaded.part->shapes.shapes.size(), 2U);
    Shape fixed;
    fixed.values[8] = -25;
    EXPECT_EQ(firstDifference(loaded.part->shapes.shapes[1], fixed), std::nullopt) << type;
  }
}

TEST(PartsOfVersions2And3, FixedShapesAreReplacedUpToAnIndexOutsideTheList) {
  for (const int hasFixes : {0, 1, 2})
    for (const int hasItems : {0, 1})
      for (const int outside : {3, 32767, -1, -32768}) {
        Version3File old;
        old.hasShapeFixes = hasFixes;
        old.hasItems = hasItems;
        old.shapes = {plainShape(3), plainShape(1), plainShape(6)};
        const Bytes fixes = version3Fixes({{2, 9}, {outside, 8}, {0, 7}});
        old.last = (hasItems == 1 ? version3Items(twoItems()) : Bytes()).add(fixes);
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
  Version3File old;
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
