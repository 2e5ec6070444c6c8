// The part body at every version from 52 to 180, in a part file and in a sheet.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "src/part/part_io.h"
#include "src/part/part_layout.h"
#include "src/records/record_io.h"
#include "tests/support/stored_forms.h"
#include "torvio/explain/map.h"

namespace {

using namespace testing_support;

struct MadePart {
  std::unique_ptr<TorvPart> part = std::make_unique<TorvPart>();
  Bytes bytes;

  MadePart(int version, const PartForm2& form) {
    Maker maker;
    storedPart(maker, version, form, *part);
    bytes = maker.bytes;
  }
};

int read(const Bytes& bytes, int version, bool embedded, TorvPart& part, std::size_t* consumed = nullptr) {
  return readFrom(
      bytes, [&](auto& s) { return ReadPartBody(s, version, embedded, part); }, consumed);
}

std::vector<PartForm2> allForms() {
  std::vector<PartForm2> forms;
  for (const bool embedded : {false, true})
    for (const bool options : {false, true})
      for (const std::int32_t kind : {0, 32002}) forms.push_back({embedded, options, kind});
  return forms;
}

TEST(PartBody, LoadsTheFieldsOfItsVersionAndStoresTheSameBytes) {
  for (const PartForm2& form : allForms())
    for (const int version : allVersions()) {
      SCOPED_TRACE("version " + std::to_string(version) + (form.embedded ? " embedded" : ""));
      const MadePart made(version, form);
      const auto part = std::make_unique<TorvPart>();
      std::size_t consumed = 0;
      ASSERT_EQ(read(made.bytes, version, form.embedded, *part, &consumed), 0);
      ASSERT_EQ(consumed, made.bytes.size());
      Checker checker;
      storedPart(checker, version, form, *part);
      bool ok = false;
      ASSERT_EQ(written([&](auto& s) { return WritePartBody(s, version, form.embedded, *made.part); }, &ok),
                made.bytes);
      ASSERT_TRUE(ok);
      if (HasFailure()) return;
    }
}

TEST(PartBody, CutAtAnyByteGivesOneExceptInTheLastShapesTail) {
  for (const PartForm2& form : {PartForm2{false, true, 32002}, PartForm2{true, false, 0}})
    for (const int version : partVersions()) {
      const MadePart made(version, form);
      // From 161 on a file may end with a shape, whose last two words may be missing.
      const bool endsWithShape = version == 161 || (version > 161 && version < 180 && !form.embedded);
      const auto part = std::make_unique<TorvPart>();
      for (std::size_t cut = 0; cut < made.bytes.size(); ++cut) {
        *part = TorvPart();
        const bool tolerated = endsWithShape && cut >= made.bytes.size() - 8;
        ASSERT_EQ(read(made.bytes.cut(cut), version, form.embedded, *part), tolerated ? 0 : 1)
            << "version " << version << " cut at " << cut << " of " << made.bytes.size();
      }
    }
}

std::vector<explain::MapLine> linesOf(const Bytes& bytes, int version, std::optional<explain::Fault>* fault = nullptr) {
  std::vector<explain::MapLine> lines;
  codec::InStream stream(bytes.span());
  explain::Mapper mapper(stream, version, [&](const explain::MapLine& line) {
    if (line.size > 0) lines.push_back(line);
  });
  const auto part = std::make_unique<TorvPart>();
  (void)mapper.walk(*part, PartForm{});
  if (fault != nullptr) *fault = mapper.fault();
  return lines;
}

TEST(PartBody, MapTellsEveryByteOnceAndACutFileAsFarAsItGoes) {
  for (const int version : {52, 80, 110, 151, 180}) {
    const MadePart made(version, PartForm2{false, true, 32002});
    const auto whole = linesOf(made.bytes, version);
    std::uint64_t at = 0;
    for (const explain::MapLine& line : whole) {
      ASSERT_EQ(line.offset, at) << line.path;
      at += line.size;
    }
    EXPECT_EQ(at, made.bytes.size());

    for (std::size_t cut = 0; cut < made.bytes.size(); cut += 7) {
      std::optional<explain::Fault> fault;
      const auto lines = linesOf(made.bytes.cut(cut), version, &fault);
      ASSERT_TRUE(fault.has_value());
      std::size_t same = 0;
      while (same < lines.size() && lines[same].path == whole[same].path && lines[same].value == whole[same].value)
        ++same;
      ASSERT_EQ(same, lines.size());
      ASSERT_TRUE(same == 0 || lines.back().offset + lines.back().size <= cut);
      ASSERT_LE(fault->offset, cut);
    }
  }
}

TEST(PartBody, KeepsWhatWasReadBeforeTheFault) {
  const MadePart made(180, PartForm2{});
  const auto part = std::make_unique<TorvPart>();
  const std::size_t behindTheListValues = 8 + 63 + 16 + 8;
  EXPECT_EQ(read(made.bytes.cut(behindTheListValues + 3), 180, false, *part), 1);
  EXPECT_EQ(part->width, made.part->width);
  EXPECT_EQ(part->partWord2, made.part->partWord2);
  EXPECT_EQ(part->shapes.listTag, made.part->shapes.listTag);
  EXPECT_TRUE(part->shapes.shapes.empty());
  EXPECT_STREQ(part->partName, "NEW PART");
}

TEST(PartBody, EndsBehindTheDescriptionsWhenAskedTo) {
  const MadePart made(180, PartForm2{});
  const auto part = std::make_unique<TorvPart>();
  const int result = readFrom(made.bytes, [&](auto& s) { return ReadPartBody(s, 180, false, *part, true); });
  EXPECT_EQ(result, 0);
  EXPECT_EQ(part->lateIndex, made.part->lateIndex);
  EXPECT_TRUE(part->workList.empty());
  EXPECT_EQ(part->workKind, 2);
}

TEST(PartBody, BodyThatEndsBehindItsTailWordsAtVersion61IsComplete) {
  const MadePart made(61, PartForm2{});
  const auto part = std::make_unique<TorvPart>();
  std::size_t consumed = 0;
  EXPECT_EQ(read(made.bytes, 61, false, *part, &consumed), 0);
  EXPECT_EQ(consumed, made.bytes.size());
  EXPECT_EQ(part->tailWord2, made.part->tailWord2);
}

TEST(PartBody, Version61LeavesTheDescriptionsEmptyAndVersion62ReadsThem) {
  for (const int version : {61, 62}) {
    const MadePart made(version, PartForm2{});
    const auto part = std::make_unique<TorvPart>();
    std::strcpy(part->revision, "OLD");
    std::strcpy(part->descriptionA, "OLD");
    std::strcpy(part->materialType, "OLD");
    part->lateIndex = 77;
    ASSERT_EQ(read(made.bytes, version, false, *part), 0);
    if (version == 61) {
      EXPECT_STREQ(part->revision, "");
      EXPECT_EQ(part->revision[1], 'L') << "only the first byte is cleared";
      EXPECT_STREQ(part->descriptionA, "");
      EXPECT_STREQ(part->materialType, "");
      EXPECT_EQ(part->lateIndex, -1);
    } else {
      EXPECT_EQ(std::memcmp(part->revision, made.part->revision, sizeof part->revision), 0);
      EXPECT_EQ(part->lateIndex, made.part->lateIndex);
    }
  }
}

TEST(PartBody, WorkKindIsTwoBelowVersion71) {
  for (const int version : {70, 71}) {
    const MadePart made(version, PartForm2{});
    const auto part = std::make_unique<TorvPart>();
    part->workKind = 9;
    part->workList.resize(4);
    ASSERT_EQ(read(made.bytes, version, false, *part), 0);
    EXPECT_EQ(part->workKind, version == 70 ? 2 : made.part->workKind);
    EXPECT_EQ(part->workList.size(), version == 70 ? 0U : 2U) << "the work list is emptied at any version";
  }
}

TEST(PartBody, CustomTextDStandsInFrontOfCustomTextC) {
  const MadePart made(111, PartForm2{});
  const Bytes atEnd = Bytes::of(made.bytes.span().subspan(made.bytes.size() - 512));
  EXPECT_EQ(std::memcmp(atEnd.span().data(), made.part->customTextD, 256), 0);
  EXPECT_EQ(std::memcmp(atEnd.span().data() + 256, made.part->customTextC, 256), 0);
  EXPECT_EQ(written([&](auto& s) { return WritePartBody(s, 111, false, *made.part); }), made.bytes);
}

TEST(PartBody, WorkOrderNumberIsStoredAt162AndOnlyInTheEmbeddedForm) {
  const auto part = std::make_unique<TorvPart>();
  part->patterns.emplace_back();
  std::strcpy(part->woNumber, "WO-4711");
  const auto sizeAt = [&](int version, bool embedded) {
    return written([&](auto& s) { return WritePartBody(s, version, embedded, *part); }).size();
  };
  EXPECT_EQ(sizeAt(162, true), sizeAt(161, true) + 256);
  EXPECT_EQ(sizeAt(162, false), sizeAt(161, false));
}

TEST(PartBody, ItemsFollowTheShapesInAPartFileAndStayInASheet) {
  for (const std::size_t items : {0U, 1U, 5U}) {
    const auto made = std::make_unique<TorvPart>();
    made->shapes.shapes.resize(3);
    made->patterns.emplace_back().items.resize(items);
    for (PatternItem& item : made->patterns[0].items) item.itemWord1 = 7;
    for (const bool embedded : {false, true}) {
      const Bytes bytes = written([&](auto& s) { return WritePartBody(s, 180, embedded, *made); });
      const auto part = std::make_unique<TorvPart>();
      ASSERT_EQ(read(bytes, 180, embedded, *part), 0);
      const auto& list = part->patterns[0].items;
      ASSERT_EQ(list.size(), embedded ? items : 3U);
      for (std::size_t i = 0; i < list.size(); ++i) EXPECT_EQ(list[i].itemWord1, i < items ? 7U : 0U);
    }
  }
}

TEST(PartBody, OnlyTheFirstPatternIsStoredInAPartFile) {
  const auto made = std::make_unique<TorvPart>();
  made->patterns.resize(2);
  made->patterns[0].patternWord = 11;
  made->patterns[1].patternWord = 22;
  const Bytes bytes = written([&](auto& s) { return WritePartBody(s, 180, false, *made); });
  const auto part = std::make_unique<TorvPart>();
  ASSERT_EQ(read(bytes, 180, false, *part), 0);
  ASSERT_EQ(part->patterns.size(), 1U);
  EXPECT_EQ(part->patterns[0].patternWord, 11U);
  EXPECT_EQ(made->patterns.size(), 2U);
}

TEST(PartBody, PartWithoutAPatternCannotBeStoredAsAPartFileButInASheet) {
  const auto part = std::make_unique<TorvPart>();
  bool ok = true;
  (void)written([&](auto& s) { return WritePartBody(s, 180, false, *part); }, &ok);
  EXPECT_FALSE(ok);
  (void)written([&](auto& s) { return WritePartBody(s, 180, true, *part); }, &ok);
  EXPECT_TRUE(ok);
}

TEST(PartBody, CutReservedRunGivesOne) {
  const MadePart made(80, PartForm2{});
  const std::size_t behindNote =
      written([&](auto& s) {
        return WriteShapeList(s, 80, made.part->shapes) && WriteSetupList(s, made.part->setupList);
      }).size() +
      8 + 63 + 16 + 256;
  const auto part = std::make_unique<TorvPart>();
  for (const std::size_t into : {2U, 250U, 500U}) {
    EXPECT_EQ(read(made.bytes.cut(behindNote + into), 80, false, *part), 1);
    EXPECT_EQ(part->hasOptions, 1);
  }
}

TEST(PartBody, ReservedRunIsDroppedAndStoredAsZeros) {
  const MadePart made(80, PartForm2{});
  const auto part = std::make_unique<TorvPart>();
  Bytes filled;
  const std::size_t at = written([&](auto& s) {
                           return WriteShapeList(s, 80, made.part->shapes) && WriteSetupList(s, made.part->setupList);
                         }).size() +
                         8 + 63 + 16 + 256 + 2;
  filled.add(made.bytes.cut(at)).fill(499, 0xEE).add(Bytes::of(made.bytes.span().subspan(at + 499)));
  ASSERT_EQ(read(filled, 80, false, *part), 0);
  EXPECT_EQ(written([&](auto& s) { return WritePartBody(s, 80, false, *part); }), made.bytes);
}

TEST(PartBody, MoreThan250ProcessSlotsAreRefused) {
  const auto part = std::make_unique<TorvPart>();
  part->patterns.emplace_back();
  for (const int count : {0, 1, 249, 250}) {
    part->processSlotCount = static_cast<std::uint8_t>(count);
    bool ok = false;
    const Bytes bytes = written([&](auto& s) { return WritePartBody(s, 180, false, *part); }, &ok);
    ASSERT_TRUE(ok);
    const auto loaded = std::make_unique<TorvPart>();
    EXPECT_EQ(read(bytes, 180, false, *loaded), 0) << count;
    EXPECT_EQ(loaded->processSlotCount, count);
  }
  part->processSlotCount = 251;
  bool ok = true;
  const Bytes upTo = written([&](auto& s) { return WritePartBody(s, 180, false, *part); }, &ok);
  EXPECT_FALSE(ok);
  Bytes refused = upTo;
  refused.zeros(100000);
  const auto loaded = std::make_unique<TorvPart>();
  std::size_t consumed = 0;
  EXPECT_EQ(read(refused, 180, false, *loaded, &consumed), 1);
  EXPECT_EQ(consumed, upTo.size()) << "refused as soon as the count has been read";
}

TEST(PartBody, FreshPartHasTheToldDefaults) {
  const auto p = std::make_unique<TorvPart>();
  EXPECT_STREQ(p->partName, "NEW PART");
  EXPECT_STREQ(p->productName, "NEW PRODUCT");
  EXPECT_STREQ(p->assemblyName, "NEW ASSEMBLY");
  EXPECT_STREQ(p->materialName, "NEW MATERIAL");
  EXPECT_EQ(p->width, 30.0F);
  EXPECT_EQ(p->height, 20.0F);
  EXPECT_EQ(std::bit_cast<std::uint32_t>(p->thickness), 0x3D4CCCCDU);
  EXPECT_EQ(std::bit_cast<std::uint64_t>(p->optionReal), 0x3FA999999999999AU);
  EXPECT_EQ(p->partKind, 1);
  EXPECT_EQ(p->partWord1, 1);
  EXPECT_EQ(p->partWord2, 11);
  EXPECT_EQ(p->memoryWord1, 1);
  EXPECT_EQ(p->workKind, 2);
  EXPECT_EQ(p->optionCount, 1);
  EXPECT_EQ(p->tailWord1, 1);
  EXPECT_EQ(p->lateIndex, -1);
  EXPECT_EQ(p->transformKind, 1);
  EXPECT_EQ(p->shapes.listKind, 1);
  EXPECT_EQ(p->shapes.listTag, -1);
  for (int i = 0; i < 9; ++i) EXPECT_EQ(p->transform[i], i % 4 == 0 ? 1.0F : 0.0F);
  for (const std::int32_t zero :
       {p->recordWord, p->version, p->optionWord, p->optionValue, p->tailWord2, p->customWord1, p->finalWord2,
        p->lateWords[5], static_cast<std::int32_t>(p->lateBlock2[7]), static_cast<std::int32_t>(p->processSlotCount)})
    EXPECT_EQ(zero, 0);
}

}  // namespace

// The body once more as a plain table of rows: each row knows its bytes, what it does to the part when
// it arrives whole, and whether its absence is forgiven (then the next row decides).
namespace {
namespace rows_of_a_body {

struct Form {
  bool embedded = false;
  bool options = true;
  int shapes = 2;
  int items = 2;
  int patterns = 2;  // embedded form alone
};

struct Row {
  Bytes stored;  // nothing for a step that reads nothing
  std::function<void(TorvPart&)> apply;
  bool forgiven = false;
};

struct Rows {
  std::vector<Row> all;
  std::size_t stopAt = 0;    // number of bytes in front of the end of the descriptions
  std::size_t stopRows = 0;  // and of rows
  PatternList stored;        // the patterns as the file holds them
  Bytes bytes() const {
    Bytes b;
    for (const Row& row : all) b.add(row.stored);
    return b;
  }
};

class Builder {
 public:
  Builder(int version, const Form& form) : version_(version), form_(form) { build(); }
  Rows rows;

 private:
  using Step = std::function<void(TorvPart&)>;
  void add(const Bytes& stored, Step apply) { rows.all.push_back({stored, std::move(apply)}); }
  void step(Step apply) { add(Bytes(), std::move(apply)); }
  void forgiven(const Bytes& stored, Step apply) { rows.all.push_back({stored, std::move(apply), true}); }
  std::uint32_t next() { return ++n_ * 0x00010203U; }
  void word(std::int32_t TorvPart::*field) {
    const std::uint32_t v = next();
    add(Bytes().u32(v), [=](TorvPart& p) { p.*field = static_cast<std::int32_t>(v); });
  }
  void real(float TorvPart::*field) {
    const float v = static_cast<float>(++n_) + 0.25F;
    add(Bytes().f32(v), [=](TorvPart& p) { p.*field = v; });
  }
  // Texts are raw: no NUL at their end here.
  template <std::size_t N>
  void text(char (TorvPart::*field)[N]) {
    const auto v = static_cast<std::uint8_t>(0x30U + ++n_ % 0xC0U);
    add(Bytes().fill(N - 1, v).u8(0x7F), [=](TorvPart& p) {
      std::memset(p.*field, v, N - 1);
      (p.*field)[N - 1] = 0x7F;
    });
  }
  void raw8(std::uint8_t (TorvPart::*field)[8]) {
    const auto v = static_cast<std::uint8_t>(++n_);
    add(Bytes().fill(8, v), [=](TorvPart& p) { std::memset(p.*field, v, 8); });
  }

  // A shape without values. Its last two words may be missing from version 161 on.
  void shape(const Bytes& front, const std::function<std::vector<Shape>&(TorvPart&)>& list) {
    const std::uint32_t flags = next();
    Bytes b = Bytes(front).i8(9).u32(5).u32(flags).f32(2).f32(3).i32(0).i32(-6).u32(7).i32(0).i32(0);
    b.u32(8).u32(10).u32(11);
    if (version_ >= 112 && version_ <= 120) b.u32(12);
    if (version_ >= 151) b.u8(13).u8(14).u8(15).u32(16);
    if (version_ >= 153) b.u8(17);
    if (version_ >= 158) b.u32(18);
    if (version_ >= 160) b.lengthText("n");
    const int version = version_;
    add(b, [=](TorvPart& p) {
      Shape s;
      s.type = 9;
      s.auxWord = 5;
      s.flags = flags;
      s.x = 2;
      s.y = 3;
      s.valueCount = s.extraCount = 0;
      s.linkIndex = -6;
      s.auxValue1 = 7;
      s.auxValue2 = 8;
      s.auxValue3 = 10;
      s.auxValue4 = 11;
      if (version >= 112 && version <= 120) s.rangeValue = 12;
      if (version >= 151) {
        s.lateByte1 = 13;
        s.lateByte2 = 14;
        s.lateByte3 = 15;
        s.lateWord1 = 16;
      }
      if (version >= 153) s.lateByte4 = 17;
      if (version >= 158) s.lateWord2 = 18;
      if (version >= 160) s.note = "n";
      list(p).push_back(s);
    });
    if (version_ >= 161) {
      forgiven(Bytes().u32(19), [=](TorvPart& p) { list(p).back().tailPair[0] = 19; });
      forgiven(Bytes().u32(20), [=](TorvPart& p) { list(p).back().tailPair[1] = 20; });
    }
  }

  static Bytes setupBytes(std::uint16_t n) {
    Bytes b = Bytes().u16(n).u16(2).u8(3).u16(4).u8(5).u16(6).u8(7).fill(8, 8).u32(9).u8(10);
    return b.u32(11).u16(12).u32(13).f32(14).f32(15);
  }
  static SetupEntry setupOf(std::uint16_t n) {
    SetupEntry e;
    e.setupShort1 = n;
    e.setupShort2 = 2;
    e.setupByte1 = 3;
    e.setupShort3 = 4;
    e.setupByte2 = 5;
    e.setupShort4 = 6;
    e.setupByte3 = 7;
    std::memset(e.setupBlock, 8, 8);
    e.setupWord1 = 9;
    e.setupByte4 = 10;
    e.setupWord2 = 11;
    e.setupShort5 = 12;
    e.setupWord3 = 13;
    e.setupReal1 = 14;
    e.setupReal2 = 15;
    return e;
  }

  Bytes patternBytes(std::uint32_t n) const {
    Bytes b = Bytes().u32(n + 1).u32(n + 2).u32(n + 3).u32(n + 4).u32(n + 5).f32(1).f32(2).f32(0).f32(1);
    b.u32(n + 6).i32(0).i32(form_.items);
    for (int i = 0; i < form_.items; ++i) {
      b.i32(70 + i).i32(80 + i);
      if (version_ >= 62) b.fill(36, 0x01);
      if (version_ >= 90) b.i32(90 + i);
    }
    return version_ >= 80 ? b.i32(0).i32(0) : b;
  }
  Pattern patternOf(std::uint32_t n) const {
    Pattern p;
    p.headWord = static_cast<std::int32_t>(n + 1);
    p.gridCount1 = n + 2;
    p.gridCount2 = n + 3;
    p.gridStep1 = n + 4;
    p.gridStep2 = n + 5;
    p.originX = 1;
    p.originY = 2;
    p.rotationCos = 0;
    p.rotationSin = 1;
    p.patternWord = n + 6;
    for (int i = 0; i < form_.items; ++i) {
      PatternItem item;
      item.itemWord1 = static_cast<std::uint32_t>(70 + i);
      item.toolNumber = 80 + i;
      if (version_ >= 62) {
        item.itemWord2 = item.itemShort1 = item.itemShort2 = item.itemWord3 = item.itemWord4 = 0x01010101;
        for (int k : {0, 1}) item.itemPair1[k] = item.itemPair2[k] = 0x01010101;
      }
      if (version_ >= 90) item.lateWord = static_cast<std::uint32_t>(90 + i);
      p.items.push_back(item);
    }
    return p;
  }

  void buildStations() {
    add(Bytes().u32(41), [](TorvPart& p) { p.toolStations.headerWord = 41; });
    if (version_ >= 61)
      add(Bytes().u32(42), [](TorvPart& p) { p.toolStations.secondHeaderWord = 42; });
    else
      step([](TorvPart& p) { p.toolStations.secondHeaderWord = 0; });
    const auto mode = [](std::uint32_t value) {
      return [value](TorvPart& p) {
        p.toolStations.stationModeWord = value;
        p.toolStations.stationModeCode = value == 2 ? 0 : 10;
        p.toolStations.extraWords[0] = p.toolStations.extraWords[1] = 0;
      };
    };
    if (version_ >= 90)
      add(Bytes().u32(0xFFFF0A02), mode(0xFFFF0A02));
    else
      step(mode(2));
    if (version_ >= 100) {
      add(Bytes().i32(2), [](TorvPart&) {});
      add(Bytes().u32(43), [](TorvPart& p) { p.toolStations.extraWords[0] = 43; });
      add(Bytes().u32(44), [](TorvPart& p) { p.toolStations.extraWords[1] = 44; });
    }
    add(Bytes().i32(0), [](TorvPart&) {});
  }

  void buildSlots() {
    add(Bytes().u8(2), [](TorvPart& p) { p.processSlotCount = 2; });
    for (int i = 0; i < 2; ++i) {
      const auto put = [&](const Bytes& b, std::function<void(ProcessSlot&)> f) {
        add(b, [=](TorvPart& p) { f(p.processSlots[i]); });
      };
      const std::uint32_t n = next();
      const auto small = static_cast<std::uint16_t>(1000 + i);
      put(Bytes().u32(n), [=](ProcessSlot& s) { s.slotWord1 = n; });
      put(Bytes().u32(n + 1), [=](ProcessSlot& s) { s.slotWord2 = n + 1; });
      put(Bytes().fill(8, 0x44), [](ProcessSlot& s) { std::memset(s.slotBlock, 0x44, 8); });
      put(Bytes().u32(n + 2), [=](ProcessSlot& s) { s.slotWord3 = n + 2; });
      put(Bytes().u32(n + 3), [=](ProcessSlot& s) { s.slotWord4 = n + 3; });
      if (version_ >= 80) {
        put(Bytes().f32(1.25F), [](ProcessSlot& s) { s.firstLength = 1.25F; });
        put(Bytes().f32(2.25F), [](ProcessSlot& s) { s.firstAngle = 2.25F; });
        put(Bytes().f32(3.25F), [](ProcessSlot& s) { s.secondLength = 3.25F; });
        put(Bytes().f32(4.25F), [](ProcessSlot& s) { s.secondAngle = 4.25F; });
        put(Bytes().i32(-5), [](ProcessSlot& s) { s.slotKind = -5; });
      } else {
        put(Bytes(), [](ProcessSlot& s) {
          s.firstLength = s.secondLength = 0.25F;
          s.firstAngle = s.secondAngle = std::bit_cast<float>(0x3F490FDBU);
          s.slotKind = 3;
        });
      }
      if (version_ >= 90) {
        put(Bytes().u16(small), [=](ProcessSlot& s) { s.toolUse = small; });
        put(Bytes().u8(61), [](ProcessSlot& s) { s.toolActive = 61; });
        put(Bytes().u8(62), [](ProcessSlot& s) { s.slotByte = 62; });
        put(Bytes().u8(63), [](ProcessSlot& s) { s.toolChoice = 63; });
        put(Bytes().u16(64), [](ProcessSlot& s) { s.firstToolNumber = 64; });
        put(Bytes().u16(65), [](ProcessSlot& s) { s.secondToolNumber = 65; });
      }
    }
  }

  void buildWork() {
    add(Bytes().i32(2), [](TorvPart&) {});
    for (std::uint32_t i = 0; i < 2; ++i) {
      // Version 71 and later: the words up to workWord7 are all there.
      Bytes b = Bytes().u32(i + 1).u8(2).u32(3).u32(4).u32(5).u32(6).u32(7).u32(8);
      if (version_ >= 80) b.u32(9);
      if (version_ >= 130) b.u32(10).fill(8, 11);
      b.u32(12).u32(13).u32(14).u32(15).u32(16);
      const int version = version_;
      add(b, [=](TorvPart& p) {
        WorkEntry e;
        e.workWord1 = i + 1;
        e.workByte = 2;
        e.workWord2 = 3;
        e.workWord3 = 4;
        e.workWord4 = 5;
        e.workWord5 = 6;
        e.workWord6 = 7;
        e.workWord7 = 8;
        if (version >= 80) e.workWord8 = 9;
        if (version >= 130) {
          e.workWord9 = 10;
          std::memset(e.workBlock, 11, 8);
        }
        e.workValue5 = 12;
        e.workValue1 = 13;
        e.workValue2 = 14;
        e.workValue3 = 15;
        e.workValue4 = 16;
        p.workList.push_back(e);
      });
    }
  }

  void buildNestGroup() {
    add(Bytes().i32(1), [](TorvPart&) {});
    Bytes front = Bytes().i32(-3);
    if (version_ >= 152) front.u8(4);
    front.i32(5).i32(6).i32(1);
    // The group is appended with its shape, also where that shape's last two words are missing.
    shape(front, [](TorvPart& p) -> std::vector<Shape>& { return p.nestShapeGroups.back().shapes.shapes; });
    const int version = version_;
    Row& row = rows.all[rows.all.size() - (version_ >= 161 ? 3 : 1)];
    row.apply = [version, addShape = row.apply](TorvPart& p) {
      ShapeGroup& g = p.nestShapeGroups.emplace_back();
      g.groupWord = -3;
      if (version >= 152) g.groupByte = 4;
      g.shapes.listTag = 5;
      g.shapes.listKind = 6;
      addShape(p);
    };
  }

  void build() {
    const int version = version_;
    real(&TorvPart::width);
    real(&TorvPart::height);
    text(&TorvPart::productName);
    text(&TorvPart::assemblyName);
    text(&TorvPart::materialName);
    word(&TorvPart::partKind);
    word(&TorvPart::partWord1);
    real(&TorvPart::thickness);
    word(&TorvPart::partWord2);
    add(Bytes().i32(-31), [](TorvPart& p) { p.shapes.listTag = -31; });
    add(Bytes().i32(-32), [](TorvPart& p) { p.shapes.listKind = -32; });
    const int shapes = form_.shapes;
    add(Bytes().i32(shapes), [=](TorvPart& p) {
      if (shapes != 0) p.shapes.shapes.clear();
    });
    for (int i = 0; i < shapes; ++i) shape(Bytes(), [](TorvPart& p) -> std::vector<Shape>& { return p.shapes.shapes; });
    add(Bytes().i32(1), [](TorvPart& p) { p.setupList.entries.clear(); });
    add(setupBytes(33), [](TorvPart& p) { p.setupList.entries.push_back(setupOf(33)); });
    addSetupCurrent();
    add(Bytes().fill(8, 35), [](TorvPart& p) { std::memset(p.setupList.tailBlock, 35, 8); });
    add(Bytes().u32(36), [](TorvPart& p) { p.setupList.tailWord1 = 36; });
    add(Bytes().u32(37), [](TorvPart& p) { p.setupList.tailWord2 = 37; });
    text(&TorvPart::noteText);
    if (version_ >= 80) {
      add(Bytes().u8(38), [](TorvPart& p) { p.headFlag = 38; });
      const std::uint8_t has = form_.options ? 39 : 0;
      add(Bytes().u8(has), [=](TorvPart& p) { p.hasOptions = has; });
      for (int i = 0; i < 499; ++i) add(Bytes().u8(0), [](TorvPart&) {});
    } else {
      step([](TorvPart& p) { p.headFlag = 0; });
    }
    step([](TorvPart& p) { p.patterns.clear(); });

    if (!form_.embedded) {
      buildStations();
      rows.stored = {patternOf(50)};
      Pattern read = patternOf(50);
      read.headWord = 0;
      read.gridCount1 = read.gridCount2 = 1;
      read.gridStep1 = read.gridStep2 = 0;
      read.items.resize(static_cast<std::size_t>(std::max(shapes, 0)));
      add(patternBytes(50), [=](TorvPart& p) { p.patterns.push_back(read); });
    } else {
      add(Bytes().i32(form_.patterns), [](TorvPart&) {});
      for (int i = 0; i < form_.patterns; ++i) {
        const auto n = static_cast<std::uint32_t>(50 + 20 * i);
        const Pattern read = patternOf(n);
        rows.stored.push_back(read);
        add(patternBytes(n), [=](TorvPart& p) { p.patterns.push_back(read); });
      }
    }

    buildSlots();
    add(Bytes().i32(1), [](TorvPart& p) { p.marks.clear(); });
    add(Bytes().u32(1).u16(2).u32(3).u32(4), [](TorvPart& p) { p.marks.push_back({1, 2, 3, 4}); });
    add(Bytes().i32(0), [](TorvPart&) {});  // profiles
    add(Bytes().i32(0), [](TorvPart&) {});  // step tables
    word(&TorvPart::tailWord1);
    word(&TorvPart::tailWord2);

    if (version_ >= 62) {
      text(&TorvPart::descriptionA);
      text(&TorvPart::descriptionB);
      text(&TorvPart::revision);
      text(&TorvPart::materialType);
      text(&TorvPart::descriptionC);
      word(&TorvPart::lateIndex);
    } else {
      step([](TorvPart& p) {
        p.descriptionA[0] = p.descriptionB[0] = p.revision[0] = p.materialType[0] = p.descriptionC[0] = 0;
        p.lateIndex = -1;
      });
    }
    rows.stopAt = rows.bytes().size();
    rows.stopRows = rows.all.size();
    step([](TorvPart& p) { p.workList.clear(); });
    if (version_ >= 71) {
      word(&TorvPart::workKind);
      buildWork();
    } else {
      step([](TorvPart& p) { p.workKind = 2; });
    }
    if (version_ >= 80) {
      for (int i = 0; i < shapes; ++i) {
        const std::uint32_t v = next();
        add(Bytes().u32(v), [=](TorvPart& p) { p.shapes.shapes[static_cast<std::size_t>(i)].trailerValue = v; });
      }
      if (form_.options) {
        word(&TorvPart::optionWord);
        add(Bytes().f64(-12.75), [](TorvPart& p) { p.optionReal = -12.75; });
        word(&TorvPart::optionCount);
        word(&TorvPart::optionValue);
        text(&TorvPart::optionText);
      }
    }
    if (version_ >= 102) {
      add(Bytes().fill(8, 0x66), [](TorvPart& p) { std::memset(p.placedShapes.placedBlock, 0x66, 8); });
      add(Bytes().i32(1), [](TorvPart& p) { p.placedShapes.shapes.shapes.clear(); });
      shape(Bytes(), [](TorvPart& p) -> std::vector<Shape>& { return p.placedShapes.shapes.shapes; });
    }
    if (version_ >= 110) {
      text(&TorvPart::customTextA);
      text(&TorvPart::customTextB);
      word(&TorvPart::customWord1);
      word(&TorvPart::customWord2);
      text(&TorvPart::customText1);
      text(&TorvPart::customText2);
      text(&TorvPart::customText3);
      word(&TorvPart::customWord3);
      word(&TorvPart::customWord4);
    }
    if (version_ >= 111) {
      text(&TorvPart::customTextD);
      text(&TorvPart::customTextC);
    }
    if (version_ >= 112) text(&TorvPart::customTextE);
    if (version_ >= 140) {
      raw8(&TorvPart::lateBlock1);
      raw8(&TorvPart::lateBlock2);
    }
    if (version_ >= 151) buildNestGroup();
    if (version_ >= 152)
      for (int i = 0; i < 6; ++i) {
        const std::uint32_t v = next();
        add(Bytes().u32(v), [=](TorvPart& p) { p.lateWords[i] = static_cast<std::int32_t>(v); });
      }
    if (version_ >= 154) {
      step([](TorvPart& p) { p.contourGroups.clear(); });
      add(Bytes().i32(1), [](TorvPart&) {});
      Bytes b = Bytes().u32(1).u32(2).u32(3).i32(0);
      if (version_ >= 155) b.u8(4);
      add(b, [=](TorvPart& p) {
        ContourGroup g;
        g.contourWord1 = 1;
        g.contourWord2 = 2;
        g.contourWord3 = 3;
        if (version >= 155) g.contourByte = 4;
        p.contourGroups.push_back(g);
      });
    }
    if (version_ >= 161) {
      add(Bytes().i32(1), [](TorvPart& p) { p.bindingSets.clear(); });
      add(Bytes().u32(1).i32(1).u32(2).i32(0), [](TorvPart& p) {
        BindingSet s;
        s.setWord = 1;
        s.numbers = {2};
        p.bindingSets.push_back(s);
      });
    }
    if (version_ >= 162 && form_.embedded) text(&TorvPart::woNumber);
    if (version_ >= 180) {
      text(&TorvPart::finalTextA);
      text(&TorvPart::finalTextB);
      text(&TorvPart::finalTextC);
      text(&TorvPart::finalTextD);
      word(&TorvPart::finalWord1);
      word(&TorvPart::finalWord2);
    }
  }

  void addSetupCurrent() {
    // Read in place, field by field: what arrives of it stays.
    const SetupEntry e = setupOf(34);
    const auto put = [&](const Bytes& b, std::function<void(SetupEntry&)> f) {
      add(b, [=](TorvPart& p) { f(p.setupList.current); });
    };
    put(Bytes().u16(34), [=](SetupEntry& s) { s.setupShort1 = e.setupShort1; });
    put(Bytes().u16(2), [=](SetupEntry& s) { s.setupShort2 = e.setupShort2; });
    put(Bytes().u8(3), [=](SetupEntry& s) { s.setupByte1 = e.setupByte1; });
    put(Bytes().u16(4), [=](SetupEntry& s) { s.setupShort3 = e.setupShort3; });
    put(Bytes().u8(5), [=](SetupEntry& s) { s.setupByte2 = e.setupByte2; });
    put(Bytes().u16(6), [=](SetupEntry& s) { s.setupShort4 = e.setupShort4; });
    put(Bytes().u8(7), [=](SetupEntry& s) { s.setupByte3 = e.setupByte3; });
    put(Bytes().fill(8, 8), [=](SetupEntry& s) { std::memcpy(s.setupBlock, e.setupBlock, 8); });
    put(Bytes().u32(9), [=](SetupEntry& s) { s.setupWord1 = e.setupWord1; });
    put(Bytes().u8(10), [=](SetupEntry& s) { s.setupByte4 = e.setupByte4; });
    put(Bytes().u32(11), [=](SetupEntry& s) { s.setupWord2 = e.setupWord2; });
    put(Bytes().u16(12), [=](SetupEntry& s) { s.setupShort5 = e.setupShort5; });
    put(Bytes().u32(13), [=](SetupEntry& s) { s.setupWord3 = e.setupWord3; });
    put(Bytes().f32(14), [=](SetupEntry& s) { s.setupReal1 = e.setupReal1; });
    put(Bytes().f32(15), [=](SetupEntry& s) { s.setupReal2 = e.setupReal2; });
  }

  int version_;
  Form form_;
  std::uint32_t n_ = 0;
};

// The part that a file cut behind `cut` bytes makes of what it held, and the reader's result.
int applyRows(const Rows& rows, std::size_t cut, TorvPart& part) {
  std::size_t at = 0;
  bool ended = false;
  for (const Row& row : rows.all) {
    at += row.stored.size();
    if (ended || at > cut) {
      if (row.stored.size() == 0) {
        row.apply(part);
        continue;
      }
      if (!row.forgiven) return 1;
      ended = true;
      continue;
    }
    row.apply(part);
  }
  return 0;
}

template <class T>
void same(const char* name, const T& got, const T& want) {
  if constexpr (std::is_array_v<T>)
    EXPECT_EQ(std::memcmp(got, want, sizeof got), 0) << name;
  else
    EXPECT_EQ(got, want) << name;
}

void sameShapes(const char* name, const std::vector<Shape>& got, const std::vector<Shape>& want) {
  ASSERT_EQ(got.size(), want.size()) << name;
  for (std::size_t i = 0; i < got.size(); ++i) {
    const Shape &g = got[i], &w = want[i];
    EXPECT_TRUE(g.type == w.type && g.auxWord == w.auxWord && g.flags == w.flags && g.x == w.x && g.y == w.y &&
                g.valueCount == w.valueCount && g.linkIndex == w.linkIndex && g.auxValue1 == w.auxValue1 &&
                g.extraCount == w.extraCount && g.textFlag == w.textFlag && g.auxValue2 == w.auxValue2 &&
                g.auxValue3 == w.auxValue3 && g.auxValue4 == w.auxValue4 && g.rangeValue == w.rangeValue &&
                g.lateByte1 == w.lateByte1 && g.lateByte2 == w.lateByte2 && g.lateByte3 == w.lateByte3 &&
                g.lateWord1 == w.lateWord1 && g.lateByte4 == w.lateByte4 && g.lateWord2 == w.lateWord2 &&
                g.note == w.note)
        << name << " " << i;
    EXPECT_EQ(g.tailPair[0], w.tailPair[0]) << name << " " << i;
    EXPECT_EQ(g.tailPair[1], w.tailPair[1]) << name << " " << i;
    EXPECT_EQ(g.trailerValue, w.trailerValue) << name << " " << i;
  }
}

void sameSetup(const SetupEntry& g, const SetupEntry& w) {
  EXPECT_TRUE(g.setupShort1 == w.setupShort1 && g.setupShort2 == w.setupShort2 && g.setupByte1 == w.setupByte1 &&
              g.setupShort3 == w.setupShort3 && g.setupByte2 == w.setupByte2 && g.setupShort4 == w.setupShort4 &&
              g.setupByte3 == w.setupByte3 && std::memcmp(g.setupBlock, w.setupBlock, 8) == 0 &&
              g.setupWord1 == w.setupWord1 && g.setupByte4 == w.setupByte4 && g.setupWord2 == w.setupWord2 &&
              g.setupShort5 == w.setupShort5 && g.setupWord3 == w.setupWord3 && g.setupReal1 == w.setupReal1 &&
              g.setupReal2 == w.setupReal2);
}

void samePatterns(const PatternList& got, const PatternList& want) {
  ASSERT_EQ(got.size(), want.size());
  for (std::size_t i = 0; i < got.size(); ++i) {
    const Pattern &g = got[i], &w = want[i];
    EXPECT_TRUE(g.headWord == w.headWord && g.gridCount1 == w.gridCount1 && g.gridCount2 == w.gridCount2 &&
                g.gridStep1 == w.gridStep1 && g.gridStep2 == w.gridStep2 && g.originX == w.originX &&
                g.originY == w.originY && g.rotationCos == w.rotationCos && g.rotationSin == w.rotationSin &&
                g.patternWord == w.patternWord && g.groupKind == w.groupKind)
        << "pattern " << i;
    ASSERT_EQ(g.items.size(), w.items.size());
    for (std::size_t k = 0; k < g.items.size(); ++k) {
      const PatternItem &a = g.items[k], &b = w.items[k];
      EXPECT_TRUE(a.itemWord1 == b.itemWord1 && a.toolNumber == b.toolNumber && a.memoryWord1 == b.memoryWord1 &&
                  a.itemWord2 == b.itemWord2 && a.itemPair1[0] == b.itemPair1[0] && a.itemPair1[1] == b.itemPair1[1] &&
                  a.itemPair2[0] == b.itemPair2[0] && a.itemPair2[1] == b.itemPair2[1] &&
                  a.itemShort1 == b.itemShort1 && a.itemShort2 == b.itemShort2 && a.itemWord3 == b.itemWord3 &&
                  a.itemWord4 == b.itemWord4 && a.memoryWord2 == b.memoryWord2 && a.lateWord == b.lateWord)
          << "pattern " << i << " item " << k;
    }
  }
}

void expectSame(const TorvPart& got, const TorvPart& want) {
#define SAME(field) same(#field, got.field, want.field)
  SAME(recordWord), SAME(partName), SAME(partFullDosName), SAME(width), SAME(height), SAME(productName);
  SAME(assemblyName), SAME(materialName), SAME(partKind), SAME(partWord1), SAME(thickness), SAME(descriptionA);
  SAME(descriptionB), SAME(revision), SAME(materialType), SAME(descriptionC), SAME(lateIndex), SAME(version);
  SAME(shapes.listKind), SAME(shapes.listTag), SAME(transformKind), SAME(transform), SAME(processSlotCount);
  SAME(memoryWord1), SAME(partWord2), SAME(memoryWord2), SAME(workKind), SAME(headFlag), SAME(optionWord);
  SAME(optionReal), SAME(optionCount), SAME(optionValue), SAME(optionText), SAME(noteText), SAME(hasOptions);
  SAME(toolStations.headerWord), SAME(toolStations.secondHeaderWord), SAME(toolStations.stationModeWord);
  SAME(toolStations.spareWord), SAME(toolStations.extraWords), SAME(toolStations.stationModeCode);
  SAME(tailWord1), SAME(tailWord2), SAME(placedShapes.placedBlock), SAME(customTextA), SAME(customTextB);
  SAME(memoryWord3), SAME(customWord1), SAME(customWord2), SAME(customText1), SAME(customText2), SAME(customText3);
  SAME(customWord3), SAME(customWord4), SAME(customTextC), SAME(customTextD), SAME(customTextE), SAME(lateBlock1);
  SAME(lateBlock2), SAME(lateWords), SAME(woNumber), SAME(finalTextA), SAME(finalTextB), SAME(finalTextC);
  SAME(finalTextD), SAME(finalWord1), SAME(finalWord2);
  SAME(setupList.tailBlock), SAME(setupList.tailWord1), SAME(setupList.tailWord2);
  SAME(profiles.size()), SAME(stepTables.size()), SAME(scratchShapes.shapes.size());
  SAME(toolStations.stations.size()), SAME(toolStations.tools.size());
#undef SAME
  sameShapes("shape", got.shapes.shapes, want.shapes.shapes);
  sameShapes("placed shape", got.placedShapes.shapes.shapes, want.placedShapes.shapes.shapes);
  sameSetup(got.setupList.current, want.setupList.current);
  ASSERT_EQ(got.setupList.entries.size(), want.setupList.entries.size());
  for (std::size_t i = 0; i < got.setupList.entries.size(); ++i)
    sameSetup(got.setupList.entries[i], want.setupList.entries[i]);
  samePatterns(got.patterns, want.patterns);
  ASSERT_EQ(got.marks.size(), want.marks.size());
  for (std::size_t i = 0; i < got.marks.size(); ++i) {
    EXPECT_EQ(got.marks[i].markWord1, want.marks[i].markWord1);
    EXPECT_EQ(got.marks[i].markShort, want.marks[i].markShort);
    EXPECT_EQ(got.marks[i].markWord2, want.marks[i].markWord2);
    EXPECT_EQ(got.marks[i].markWord3, want.marks[i].markWord3);
  }
  ASSERT_EQ(got.workList.size(), want.workList.size());
  for (std::size_t i = 0; i < got.workList.size(); ++i) {
    const WorkEntry &g = got.workList[i], &w = want.workList[i];
    EXPECT_TRUE(g.workWord1 == w.workWord1 && g.workByte == w.workByte && g.workValue1 == w.workValue1 &&
                g.workValue2 == w.workValue2 && g.workValue3 == w.workValue3 && g.workValue4 == w.workValue4 &&
                g.workValue5 == w.workValue5 && g.workWord2 == w.workWord2 && g.workWord3 == w.workWord3 &&
                g.workWord4 == w.workWord4 && g.workWord5 == w.workWord5 && g.workWord6 == w.workWord6 &&
                g.workWord7 == w.workWord7 && g.workWord8 == w.workWord8 && g.workWord9 == w.workWord9 &&
                std::memcmp(g.workBlock, w.workBlock, 8) == 0)
        << "work entry " << i;
  }
  for (int i = 0; i < 250; ++i) {
    const ProcessSlot &g = got.processSlots[i], &w = want.processSlots[i];
    EXPECT_TRUE(g.slotWord1 == w.slotWord1 && g.slotWord2 == w.slotWord2 &&
                std::memcmp(g.slotBlock, w.slotBlock, 8) == 0 && g.slotWord3 == w.slotWord3 &&
                g.slotWord4 == w.slotWord4 && g.firstLength == w.firstLength && g.firstAngle == w.firstAngle &&
                g.secondLength == w.secondLength && g.secondAngle == w.secondAngle && g.slotKind == w.slotKind &&
                g.toolUse == w.toolUse && g.toolActive == w.toolActive && g.slotByte == w.slotByte &&
                g.toolChoice == w.toolChoice && g.firstToolNumber == w.firstToolNumber &&
                g.secondToolNumber == w.secondToolNumber)
        << "process slot " << i;
  }
  ASSERT_EQ(got.nestShapeGroups.size(), want.nestShapeGroups.size());
  for (std::size_t i = 0; i < got.nestShapeGroups.size(); ++i) {
    const ShapeGroup &g = got.nestShapeGroups[i], &w = want.nestShapeGroups[i];
    EXPECT_TRUE(g.groupWord == w.groupWord && g.groupByte == w.groupByte && g.shapes.listTag == w.shapes.listTag &&
                g.shapes.listKind == w.shapes.listKind)
        << "nest group " << i;
    sameShapes("nest group shape", g.shapes.shapes, w.shapes.shapes);
  }
  ASSERT_EQ(got.contourGroups.size(), want.contourGroups.size());
  for (std::size_t i = 0; i < got.contourGroups.size(); ++i) {
    const ContourGroup &g = got.contourGroups[i], &w = want.contourGroups[i];
    EXPECT_TRUE(g.contourWord1 == w.contourWord1 && g.contourWord2 == w.contourWord2 &&
                g.contourWord3 == w.contourWord3 && g.contourByte == w.contourByte &&
                g.shapes.size() == w.shapes.size())
        << "contour group " << i;
  }
  ASSERT_EQ(got.bindingSets.size(), want.bindingSets.size());
  for (std::size_t i = 0; i < got.bindingSets.size(); ++i) {
    const BindingSet &g = got.bindingSets[i], &w = want.bindingSets[i];
    EXPECT_TRUE(g.setWord == w.setWord && g.numbers == w.numbers && g.entries.size() == w.entries.size())
        << "binding set " << i;
  }
}

// A part that holds something in every field and list.
std::unique_ptr<TorvPart> usedPart() {
  auto p = std::make_unique<TorvPart>();
  for (char* text :
       {p->partName,    p->partFullDosName, p->descriptionA, p->descriptionB, p->materialType, p->descriptionC,
        p->optionText,  p->noteText,        p->customTextA,  p->customTextB,  p->customText1,  p->customText2,
        p->customText3, p->customTextC,     p->customTextD,  p->customTextE,  p->woNumber,     p->finalTextA,
        p->finalTextB,  p->finalTextC,      p->finalTextD})
    std::memset(text, 'u', 256);
  for (char* text : {p->productName, p->assemblyName, p->materialName, p->revision}) std::memset(text, 'u', 21);
  for (std::int32_t* word :
       {&p->recordWord,  &p->partKind,    &p->partWord1,   &p->lateIndex,   &p->version,     &p->transformKind,
        &p->memoryWord1, &p->partWord2,   &p->memoryWord2, &p->workKind,    &p->optionWord,  &p->optionCount,
        &p->optionValue, &p->tailWord1,   &p->tailWord2,   &p->memoryWord3, &p->customWord1, &p->customWord2,
        &p->customWord3, &p->customWord4, &p->finalWord1,  &p->finalWord2})
    *word = 0x7A7A7A7A;
  for (std::int32_t& word : p->lateWords) word = 0x7B7B7B7B;
  p->width = p->height = p->thickness = 9.75F;
  p->optionReal = 8.125;
  p->headFlag = p->hasOptions = 77;
  p->transform[3] = 6.0F;
  p->shapes.shapes.resize(3);
  p->shapes.listKind = p->shapes.listTag = 66;
  p->scratchShapes.shapes.resize(1);
  p->setupList.entries.resize(2);
  p->setupList.current.setupWord3 = 65;
  p->setupList.tailWord1 = 64;
  p->patterns.resize(3);
  p->marks.resize(2);
  p->profiles.resize(2);
  p->stepTables.resize(2);
  p->workList.resize(4);
  p->processSlotCount = 3;
  for (ProcessSlot& slot : p->processSlots) {
    slot.firstLength = slot.firstAngle = slot.secondLength = slot.secondAngle = 63.0F;
    slot.slotKind = 62;
    slot.toolUse = slot.firstToolNumber = 61;
    slot.slotWord4 = 60;
  }
  p->toolStations.headerWord = p->toolStations.secondHeaderWord = p->toolStations.stationModeWord = 0x0F00;
  p->toolStations.stationModeCode = 15;
  p->toolStations.extraWords[0] = p->toolStations.extraWords[1] = 59;
  p->toolStations.stations.resize(1);
  p->toolStations.tools.resize(1);
  std::memset(p->placedShapes.placedBlock, 58, 8);
  p->placedShapes.shapes.shapes.resize(2);
  std::memset(p->lateBlock1, 57, 8);
  std::memset(p->lateBlock2, 56, 8);
  p->nestShapeGroups.resize(2);
  p->contourGroups.resize(2);
  p->bindingSets.resize(2);
  return p;
}

std::vector<Form> allForms() {
  std::vector<Form> forms;
  for (const bool embedded : {false, true})
    for (const bool options : {false, true}) forms.push_back({embedded, options});
  return forms;
}

std::string nameOf(int version, const Form& form) {
  return "version " + std::to_string(version) + (form.embedded ? ", embedded" : "") +
         (form.options ? ", with options" : "");
}

int readBody(const Bytes& bytes, int version, bool embedded, TorvPart& part, std::size_t* consumed = nullptr) {
  return readFrom(
      bytes, [&](auto& s) { return ReadPartBody(s, version, embedded, part); }, consumed);
}

TEST(PartBodyRows, EveryVersionLoadsItsRowsIntoAFreshAndIntoAUsedPart) {
  for (const Form& form : allForms())
    for (int version = 52; version <= 180; ++version)
      for (const bool used : {false, true}) {
        SCOPED_TRACE(nameOf(version, form) + (used ? ", used" : ""));
        const Rows rows = Builder(version, form).rows;
        const Bytes bytes = rows.bytes();
        const auto want = used ? usedPart() : std::make_unique<TorvPart>();
        const auto got = std::make_unique<TorvPart>(*want);
        ASSERT_EQ(applyRows(rows, bytes.size(), *want), 0);
        std::size_t consumed = 0;
        ASSERT_EQ(readBody(Bytes(bytes).fill(5, 0xEE), version, form.embedded, *got, &consumed), 0);
        EXPECT_EQ(consumed, bytes.size());
        expectSame(*got, *want);
        if (HasFailure()) return;
      }
}

TEST(PartBodyRows, EveryVersionStoresItsRows) {
  for (const Form& form : allForms())
    for (int version = 52; version <= 180; ++version) {
      SCOPED_TRACE(nameOf(version, form));
      const Rows rows = Builder(version, form).rows;
      const Bytes bytes = rows.bytes();
      const auto part = std::make_unique<TorvPart>();
      ASSERT_EQ(applyRows(rows, bytes.size(), *part), 0);
      part->patterns = rows.stored;  // the head as it stands, not as a load resets it
      const TorvPart before = *part;
      bool ok = false;
      ASSERT_EQ(written([&](auto& s) { return WritePartBody(s, version, form.embedded, *part); }, &ok), bytes);
      EXPECT_TRUE(ok);
      expectSame(*part, before);
      if (HasFailure()) return;
    }
}

TEST(PartBodyRows, CutAtAnyByteKeepsTheRowsThatArrivedWhole) {
  const std::vector<int> versions = {52, 61, 62, 79, 80, 102, 110, 151, 161, 162, 180};
  for (const bool embedded : {false, true})
    for (const int version : versions) {
      const Form form{embedded, true};
      const Rows rows = Builder(version, form).rows;
      const Bytes bytes = rows.bytes();
      // Every byte of the small fields; of long runs and texts the first bytes, the last and some between.
      std::vector<std::size_t> cuts;
      std::size_t at = 0;
      for (const Row& row : rows.all) {
        for (std::size_t i = 0; i < row.stored.size(); ++i)
          if (row.stored.size() > 1 ? (i < 9 || i + 2 >= row.stored.size() || i % 61 == 0) : (at + i) % 7 == 0)
            cuts.push_back(at + i);
        at += row.stored.size();
      }
      for (const bool used : {false, true})
        for (const std::size_t cut : cuts) {
          SCOPED_TRACE(nameOf(version, form) + ", cut at " + std::to_string(cut) + (used ? ", used" : ""));
          const auto want = used ? usedPart() : std::make_unique<TorvPart>();
          const auto got = std::make_unique<TorvPart>(*want);
          const int result = applyRows(rows, cut, *want);
          std::size_t consumed = 0;
          ASSERT_EQ(readBody(bytes.cut(cut), version, embedded, *got, &consumed), result);
          EXPECT_EQ(result, 1);
          EXPECT_EQ(consumed, cut);
          expectSame(*got, *want);
          if (HasFailure()) return;
        }
    }
}

TEST(PartBodyRows, CutAtEveryByteOfAWholeFileGivesOne) {
  for (const bool embedded : {false, true})
    for (const int version : {52, 71, 101, 112, 140, 154, 155, 161, 162, 180}) {
      const Bytes bytes = Builder(version, {embedded, true}).rows.bytes();
      const auto part = std::make_unique<TorvPart>();
      for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
        part->nestShapeGroups.clear();
        ASSERT_EQ(readBody(bytes.cut(cut), version, embedded, *part), 1) << "version " << version << " cut at " << cut;
      }
    }
}

TEST(PartBodyRows, StoppingEarlyEndsBehindTheDescriptionsAtEveryVersion) {
  for (const bool embedded : {false, true})
    for (int version = 52; version <= 180; ++version) {
      SCOPED_TRACE(version);
      Rows rows = Builder(version, {embedded, true}).rows;
      const Bytes bytes = rows.bytes();
      rows.all.resize(rows.stopRows);
      const auto want = usedPart();
      const auto got = usedPart();
      ASSERT_EQ(applyRows(rows, rows.stopAt, *want), 0);
      std::size_t consumed = 0;
      const auto stopping = [&](auto& s) { return ReadPartBody(s, version, embedded, *got, true); };
      ASSERT_EQ(readFrom(bytes, stopping, &consumed), 0);
      EXPECT_EQ(consumed, rows.stopAt);
      expectSame(*got, *want);
      EXPECT_EQ(got->workList.size(), 4U) << "the work list is not emptied yet";
      if (HasFailure()) return;
    }
}

TEST(PartBodyRows, ItemListIsForcedToTheShapesInAPartFileAndStaysInASheet) {
  for (const int version : {52, 61, 80, 112, 180})
    for (const bool embedded : {false, true})
      for (const int shapes : {0, 1, 3})
        for (const int items : {0, 1, 3, 5}) {
          SCOPED_TRACE(nameOf(version, {embedded, true}) + ", " + std::to_string(items) + " items for " +
                       std::to_string(shapes) + " shapes");
          const Rows rows = Builder(version, {embedded, true, shapes, items, 1}).rows;
          const auto want = std::make_unique<TorvPart>(), got = std::make_unique<TorvPart>();
          ASSERT_EQ(applyRows(rows, rows.bytes().size(), *want), 0);
          ASSERT_EQ(readBody(rows.bytes(), version, embedded, *got), 0);
          ASSERT_EQ(got->patterns.size(), 1U);
          EXPECT_EQ(got->patterns[0].items.size(), static_cast<std::size_t>(embedded ? items : shapes));
          samePatterns(got->patterns, want->patterns);
        }
}

TEST(PartBodyRows, GroupCutInItsShortsLeavesItemsMadeUpFromTheShapes) {
  for (const std::size_t shorts : {0U, 1U, 8U, 15U}) {
    Rows rows = Builder(110, {false, true, 2, 2}).rows;
    // The pattern's row is replaced by a group that ends in its shorts; the file ends there.
    Bytes file;
    for (const Row& row : rows.all) {
      if (row.stored.size() > 100 && row.stored.cut(4) == Bytes().u32(51)) break;
      file.add(row.stored);
    }
    file.u32(51).u32(52).u32(53).zeros(24).u32(56).i32(32006).zeros(8 + 28 + 17 + shorts);
    const auto got = std::make_unique<TorvPart>();
    EXPECT_EQ(readBody(file, 110, false, *got), 1) << "the count of process slots is missing";
    ASSERT_EQ(got->patterns.size(), 1U);
    EXPECT_EQ(got->patterns[0].headWord, 51) << "the head is not reset either";
    EXPECT_EQ(got->patterns[0].gridCount1, 52U);
    ASSERT_EQ(got->patterns[0].items.size(), 2U);
    for (const PatternItem& item : got->patterns[0].items) EXPECT_EQ(item.itemWord1, 0U);
  }
}

TEST(PartBodyRows, CountOfZeroShapesKeepsOldShapesAndTheirTrailerAndItemsFollowThem) {
  const Rows rows = Builder(80, {false, false, 0, 0}).rows;
  const Bytes bytes = rows.bytes();
  const auto part = std::make_unique<TorvPart>();
  part->shapes.shapes.resize(2);
  part->shapes.shapes[0].flags = 11;
  // Two trailer values are now read, which the file of an empty list does not hold.
  EXPECT_EQ(readBody(bytes, 80, false, *part), 1);
  EXPECT_EQ(part->shapes.shapes.size(), 2U);
  EXPECT_EQ(readBody(Bytes(bytes).u32(21).u32(22), 80, false, *part), 0);
  EXPECT_EQ(part->shapes.shapes[0].flags, 11U);
  EXPECT_EQ(part->shapes.shapes[0].trailerValue, 21U);
  EXPECT_EQ(part->shapes.shapes[1].trailerValue, 22U);
  ASSERT_EQ(part->patterns.size(), 1U);
  EXPECT_EQ(part->patterns[0].items.size(), 2U);
}

TEST(PartBodyRows, NegativeWorkListAndPatternCountsReadNothing) {
  const auto made = Builder(71, {true, false, 0, 0, 0}).rows;
  const Bytes bytes = made.bytes();
  // Version 71 ends with workKind, the count 2 and two entries of 49 bytes.
  const Bytes front = bytes.cut(bytes.size() - 2 * 49 - 4);
  for (const int count : {0, -1, -2147483647}) {
    const auto part = usedPart();
    EXPECT_EQ(readBody(Bytes(front).i32(count), 71, true, *part), 0) << count;
    EXPECT_TRUE(part->workList.empty());
  }
  for (const std::int64_t count : {3LL, 2000000000LL, 2147483647LL}) {
    const auto part = std::make_unique<TorvPart>();
    EXPECT_EQ(readBody(Bytes(front).i32(count).zeros(2 * 49 + 48), 71, true, *part), 1) << count;
    EXPECT_EQ(part->workList.size(), 2U);
  }
}

TEST(PartBodyRows, FreshPartIsEmptyInEveryListAndText) {
  const auto p = std::make_unique<TorvPart>();
  for (const char* text :
       {p->partFullDosName, p->descriptionA, p->descriptionB, p->revision,    p->materialType, p->descriptionC,
        p->optionText,      p->noteText,     p->customTextA,  p->customTextB, p->customText1,  p->customText2,
        p->customText3,     p->customTextC,  p->customTextD,  p->customTextE, p->woNumber,     p->finalTextA,
        p->finalTextB,      p->finalTextC,   p->finalTextD})
    EXPECT_STREQ(text, "");
  EXPECT_TRUE(p->shapes.shapes.empty());
  EXPECT_TRUE(p->setupList.entries.empty());
  EXPECT_TRUE(p->patterns.empty());
  EXPECT_TRUE(p->marks.empty());
  EXPECT_TRUE(p->profiles.empty());
  EXPECT_TRUE(p->scratchShapes.shapes.empty());
  EXPECT_TRUE(p->stepTables.empty());
  EXPECT_TRUE(p->workList.empty());
  EXPECT_TRUE(p->toolStations.stations.empty());
  EXPECT_TRUE(p->toolStations.tools.empty());
  EXPECT_TRUE(p->placedShapes.shapes.shapes.empty());
  EXPECT_TRUE(p->nestShapeGroups.empty());
  EXPECT_TRUE(p->contourGroups.empty());
  EXPECT_TRUE(p->bindingSets.empty());
  for (const std::int32_t zero :
       {p->recordWord, p->memoryWord2, p->memoryWord3, p->customWord2, p->customWord3, p->customWord4, p->finalWord1,
        static_cast<std::int32_t>(p->headFlag), static_cast<std::int32_t>(p->hasOptions)})
    EXPECT_EQ(zero, 0);
  for (const ProcessSlot& slot : p->processSlots) {
    EXPECT_EQ(slot.firstLength, 0.25F);
    EXPECT_EQ(slot.secondLength, 0.25F);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(slot.firstAngle), 0x3F490FDBU);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(slot.secondAngle), 0x3F490FDBU);
    EXPECT_EQ(slot.slotKind, 3);
    EXPECT_EQ(slot.toolUse, 0);
  }
}

}  // namespace rows_of_a_body
}  // namespace
