// The part body at every version from 52 to 180, in a part file and in a sheet.
#include <gtest/gtest.h>

#include <memory>

#include "src/frame/map.h"
#include "src/part/part_io.h"
#include "src/part/part_layout.h"
#include "src/records/record_io.h"
#include "tests/support/stored_forms.h"

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
  return readFrom(bytes, [&](auto& s) { return ReadPartBody(s, version, embedded, part); }, consumed);
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
      ASSERT_EQ(written([&](auto& s) { return WritePartBody(s, version, form.embedded, *made.part); }, &ok), made.bytes);
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

std::vector<frame::MapLine> linesOf(const Bytes& bytes, int version, std::optional<frame::Fault>* fault = nullptr) {
  std::vector<frame::MapLine> lines;
  frame::InStream stream(bytes.span());
  frame::Mapper mapper(stream, version, [&](const frame::MapLine& line) {
    if (line.size > 0) lines.push_back(line);
  });
  const auto part = std::make_unique<TorvPart>();
  (void)frame::Layout<TorvPart>::describe(mapper, *part, PartForm{});
  if (fault != nullptr) *fault = mapper.fault();
  return lines;
}

TEST(PartBody, MapTellsEveryByteOnceAndACutFileAsFarAsItGoes) {
  for (const int version : {52, 80, 110, 151, 180}) {
    const MadePart made(version, PartForm2{false, true, 32002});
    const auto whole = linesOf(made.bytes, version);
    std::uint64_t at = 0;
    for (const frame::MapLine& line : whole) {
      ASSERT_EQ(line.offset, at) << line.path;
      at += line.size;
    }
    EXPECT_EQ(at, made.bytes.size());

    for (std::size_t cut = 0; cut < made.bytes.size(); cut += 7) {
      std::optional<frame::Fault> fault;
      const auto lines = linesOf(made.bytes.cut(cut), version, &fault);
      ASSERT_TRUE(fault.has_value());
      std::size_t same = 0;
      while (same < lines.size() && lines[same].path == whole[same].path && lines[same].value == whole[same].value) ++same;
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
  const std::size_t behindNote = written([&](auto& s) {
                                   return WriteShapeList(s, 80, made.part->shapes) && WriteSetupList(s, made.part->setupList);
                                 }).size() + 8 + 63 + 16 + 256;
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
                         }).size() + 8 + 63 + 16 + 256 + 2;
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
  for (const std::int32_t zero : {p->recordWord, p->version, p->optionWord, p->optionValue, p->tailWord2, p->customWord1,
                                  p->finalWord2, p->lateWords[5], static_cast<std::int32_t>(p->lateBlock2[7]),
                                  static_cast<std::int32_t>(p->processSlotCount)})
    EXPECT_EQ(zero, 0);
}

}  // namespace
