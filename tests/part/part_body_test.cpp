// The part body at every version from 52 to 180, in a part file and in a sheet.
#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <memory>
#include <string>
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
  Sections sections;

  MadePart(int version, const StoredPartForm& form) {
    Maker maker;
    storedPart(maker, version, form, *part);
    bytes = maker.bytes;
    sections = maker.sections;
  }
};

// A part that holds something else in every field and list.
std::unique_ptr<TorvPart> usedPart() {
  auto part = std::make_unique<TorvPart>();
  for (const bool embedded : {true, false}) {
    Maker other = Maker::ofEveryField(1);
    storedPart(other, 180, {embedded, true, 32002}, *part);
  }
  part->recordWord = part->memoryWord1 = part->memoryWord2 = part->memoryWord3 = part->version = 0x7A7A7A7A;
  part->transformKind = 9;
  std::memset(part->partName, 'u', sizeof part->partName);
  part->patterns.resize(3);
  part->marks.resize(4);
  part->workList.resize(4);
  // Slots are compared where they are in the record: a load that begins with these has to set them.
  part->processSlots = {};
  part->nestShapeGroups.clear();  // a load adds to these
  return part;
}

int read(const Bytes& bytes, int version, bool embedded, TorvPart& part, std::size_t* consumed = nullptr) {
  return readFrom(
      bytes, [&](auto& s) { return ReadPartBody(s, version, embedded, part); }, consumed);
}

std::vector<StoredPartForm> allForms() {
  std::vector<StoredPartForm> forms;
  for (const bool embedded : {false, true})
    for (const bool options : {false, true})
      for (const std::int32_t kind : {0, 32002}) forms.push_back({embedded, options, kind});
  return forms;
}

TEST(PartBody, LoadsTheFieldsOfItsVersionAndStoresTheSameBytes) {
  for (const StoredPartForm& form : allForms())
    for (const int version : allVersions()) {
      SCOPED_TRACE("version " + std::to_string(version) + (form.embedded ? " embedded" : ""));
      const MadePart made(version, form);
      bool ok = false;
      ASSERT_EQ(written([&](auto& s) { return WritePartBody(s, version, form.embedded, *made.part); }, &ok),
                made.bytes);
      ASSERT_TRUE(ok);
      for (const bool used : {false, true}) {
        const auto before = used ? usedPart() : std::make_unique<TorvPart>();
        const auto part = std::make_unique<TorvPart>(*before);
        std::size_t consumed = 0;
        ASSERT_EQ(read(Bytes(made.bytes).fill(5, 0xEE), version, form.embedded, *part, &consumed), 0);
        ASSERT_EQ(consumed, made.bytes.size());
        expectLoaded(*part, *before, [&](auto& m, TorvPart& p) { storedPart(m, version, form, p); });
        if (HasFailure()) return;
      }
    }
}

TEST(PartBody, CutAtAnyByteFailsExceptInTheLastShapesTailAndKeepsWhatArrived) {
  for (const StoredPartForm& form : {StoredPartForm{false, true, 32002}, StoredPartForm{true, false, 0}})
    for (const int version : partVersions()) {
      const MadePart made(version, form);
      // From 161 on a file may end with a shape, whose last two words may be missing.
      const bool endsWithShape = version == 161 || (version > 161 && version < 180 && !form.embedded);
      const auto fresh = std::make_unique<TorvPart>(), used = usedPart();
      const auto part = std::make_unique<TorvPart>();
      for (std::size_t cut = 0; cut < made.bytes.size(); ++cut) {
        const bool tolerated = endsWithShape && cut >= made.bytes.size() - 8;
        const TorvPart& before = cut % 2 == 0 ? *fresh : *used;
        // The fields are compared at some of the cuts: all versions together show those of every field.
        const bool isCompared = (cut + static_cast<std::size_t>(version)) % 13 == 0 || cut + 40 > made.bytes.size();
        if (isCompared)
          *part = before;
        else
          part->nestShapeGroups.clear();
        std::size_t consumed = 0;
        ASSERT_EQ(read(made.bytes.cut(cut), version, form.embedded, *part, &consumed), tolerated ? 0 : 1)
            << "version " << version << " cut at " << cut << " of " << made.bytes.size();
        ASSERT_EQ(consumed, cut);
        if (!isCompared) continue;
        SCOPED_TRACE("version " + std::to_string(version) + " cut at " + std::to_string(cut));
        Checker checker(*part, before, cut);
        storedPart(checker, version, form, *part);
        if (HasFailure()) return;
      }
    }
}

TEST(PartBody, FreshPartHasTheDefaults) {
  for (const bool embedded : {false, true}) {
    const auto part = std::make_unique<TorvPart>();
    Checker defaults(0);
    storedPart(defaults, 180, {embedded, true, 32002}, *part);
  }
  const auto p = std::make_unique<TorvPart>();
  EXPECT_STREQ(p->partName, "NEW PART");
  EXPECT_EQ(std::bit_cast<std::uint32_t>(p->thickness), 0x3D4CCCCDU);
  EXPECT_EQ(std::bit_cast<std::uint64_t>(p->optionReal), 0x3FA999999999999AU);
  EXPECT_EQ(p->memoryWord1, 1);
  EXPECT_EQ(p->transformKind, 1);
  for (int i = 0; i < 9; ++i) EXPECT_EQ(p->transform[i], i % 4 == 0 ? 1.0F : 0.0F);
  EXPECT_STREQ(p->partFullDosName, "");
  EXPECT_TRUE(p->scratchShapes.shapes.empty());
  for (const std::int32_t zero : {p->recordWord, p->version, p->memoryWord2, p->memoryWord3}) EXPECT_EQ(zero, 0);
  for (ProcessSlot& slot : p->processSlots) {
    Checker defaults(0);
    storedSlot(defaults, 180, slot);
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

TEST(PartBody, MapNamesEveryByteOnceAndACutFileAsFarAsItGoes) {
  for (const int version : {52, 80, 110, 151, 180}) {
    const MadePart made(version, StoredPartForm{false, true, 32002});
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

TEST(PartBody, CustomTextDIsStoredBeforeCustomTextC) {
  const MadePart made(111, StoredPartForm{});
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

TEST(PartBody, StopsAfterTheDescriptionsWhenAskedTo) {
  for (const bool embedded : {false, true})
    for (const int version : allVersions()) {
      SCOPED_TRACE(version);
      const StoredPartForm form{embedded, true, 0};
      const MadePart made(version, form);
      const std::size_t end = made.sections.at(kPartTail);
      const auto before = usedPart();
      const auto part = std::make_unique<TorvPart>(*before);
      std::size_t consumed = 0;
      const auto stopping = [&](auto& s) { return ReadPartBody(s, version, embedded, *part, true); };
      ASSERT_EQ(readFrom(made.bytes, stopping, &consumed), 0);
      EXPECT_EQ(consumed, end);
      Checker checker(*part, *before, end);
      storedPartFront(checker, version, form, *part);
      EXPECT_EQ(part->workList.size(), 4U) << "the work list is not emptied yet";
      EXPECT_EQ(part->workKind, before->workKind);
      if (HasFailure()) return;
    }
}

TEST(PartBody, TextsBelowVersion62LoseOnlyTheirFirstByte) {
  const MadePart made(61, StoredPartForm{});
  const auto part = std::make_unique<TorvPart>();
  for (char* text : {part->descriptionA, part->descriptionB, part->revision, part->materialType, part->descriptionC})
    std::strcpy(text, "OLD");
  ASSERT_EQ(read(made.bytes, 61, false, *part), 0);
  for (const char* text :
       {part->descriptionA, part->descriptionB, part->revision, part->materialType, part->descriptionC}) {
    EXPECT_EQ(text[0], '\0');
    EXPECT_STREQ(text + 1, "LD");
  }
}

TEST(PartBody, ItemsFollowTheShapesInAPartFileAndStayInASheet) {
  for (const int version : {52, 61, 80, 112, 180})
    for (const bool embedded : {false, true})
      for (const std::size_t shapes : {0U, 1U, 3U})
        for (const int items : {0, 1, 3, 5}) {
          SCOPED_TRACE("version " + std::to_string(version) + ", " + std::to_string(items) + " items for " +
                       std::to_string(shapes) + " shapes" + (embedded ? ", embedded" : ""));
          const MadePart made(version, {embedded, true, 0, std::vector<ShapeForm>(shapes), items});
          const auto part = std::make_unique<TorvPart>();
          ASSERT_EQ(read(made.bytes, version, embedded, *part), 0);
          const auto& list = part->patterns.at(0).items;
          const auto& stored = made.part->patterns.at(0).items;
          ASSERT_EQ(list.size(), embedded ? stored.size() : shapes);
          for (std::size_t i = 0; i < list.size(); ++i) {
            const PatternItem item = i < stored.size() ? stored[i] : PatternItem();
            EXPECT_EQ(list[i].itemWord1, item.itemWord1) << i;
            EXPECT_EQ(list[i].toolNumber, item.toolNumber) << i;
            EXPECT_EQ(list[i].lateWord, item.lateWord) << i;
          }
        }
}

TEST(PartBody, ReservedRunIsDiscardedAndStoredAsZeros) {
  const MadePart made(80, StoredPartForm{});
  const std::size_t at = made.sections.at(kPartFlags) + 2;
  const auto part = std::make_unique<TorvPart>();
  ASSERT_EQ(read(patched(made.bytes, at, Bytes().fill(499, 0xEE)), 80, false, *part), 0);
  EXPECT_EQ(written([&](auto& s) { return WritePartBody(s, 80, false, *part); }), made.bytes);
}

TEST(PartBody, GroupCutInItsShortsGetsADefaultItemForEachShape) {
  const MadePart made(110, {false, true, 32006});
  const std::size_t pattern = made.sections.at(kPartPattern);
  for (const std::size_t shorts : {0U, 1U, 8U, 15U}) {
    const Bytes file = patched(made.bytes, pattern, Bytes().u32(51).u32(52)).cut(pattern + 44 + 8 + 28 + 17 + shorts);
    const auto got = std::make_unique<TorvPart>();
    EXPECT_EQ(read(file, 110, false, *got), 1) << "the count of process slots is missing";
    ASSERT_EQ(got->patterns.size(), 1U);
    EXPECT_EQ(got->patterns[0].headWord, 51) << "the grid is not reset either";
    EXPECT_EQ(got->patterns[0].gridCount1, 52U);
    ASSERT_EQ(got->patterns[0].items.size(), got->shapes.shapes.size());
    for (const PatternItem& item : got->patterns[0].items) EXPECT_EQ(item.itemWord1, 0U);
  }
}

TEST(PartBody, CountOfZeroShapesKeepsOldShapesAndTheirTrailerAndItemsFollowThem) {
  const Bytes bytes = MadePart(80, {false, false, 0, {}}).bytes;
  const auto part = std::make_unique<TorvPart>();
  part->shapes.shapes.resize(2);
  part->shapes.shapes[0].flags = 11;
  // Two trailer values are now read, which the file of an empty list does not hold.
  EXPECT_EQ(read(bytes, 80, false, *part), 1);
  EXPECT_EQ(part->shapes.shapes.size(), 2U);
  EXPECT_EQ(read(Bytes(bytes).u32(21).u32(22), 80, false, *part), 0);
  EXPECT_EQ(part->shapes.shapes[0].flags, 11U);
  EXPECT_EQ(part->shapes.shapes[0].trailerValue, 21U);
  EXPECT_EQ(part->shapes.shapes[1].trailerValue, 22U);
  ASSERT_EQ(part->patterns.size(), 1U);
  EXPECT_EQ(part->patterns[0].items.size(), 2U);
}

TEST(PartBody, WorkListIsEmptiedWhateverItsCountAndRefusesOneBeyondTheFile) {
  const Bytes bytes = MadePart(71, {true, false, 0}).bytes;
  // Version 71 ends with workKind, the count 2 and two entries of 49 bytes.
  const Bytes front = bytes.cut(bytes.size() - 2 * 49 - 4);
  for (const int count : {0, -1, -2147483647}) {
    const auto part = usedPart();
    EXPECT_EQ(read(Bytes(front).i32(count), 71, true, *part), 0) << count;
    EXPECT_TRUE(part->workList.empty());
  }
  for (const std::int64_t count : {3LL, 2000000000LL, 2147483647LL}) {
    const auto part = std::make_unique<TorvPart>();
    EXPECT_EQ(read(Bytes(front).i32(count).zeros(2 * 49 + 48), 71, true, *part), 1) << count;
    EXPECT_EQ(part->workList.size(), 2U);
  }
}

TEST(PartBody, SlotsAfterTheStoredOnesKeepTheirValues) {
  for (const int version : {52, 80, 180}) {
    const auto part = std::make_unique<TorvPart>();
    part->processSlots[2].slotWord4 = 60;
    part->processSlots[249].firstLength = 63;
    ASSERT_EQ(read(MadePart(version, {}).bytes, version, false, *part), 0);
    EXPECT_EQ(part->processSlots[2].slotWord4, 60U);
    EXPECT_EQ(part->processSlots[249].firstLength, 63.0F);
  }
}

}  // namespace
