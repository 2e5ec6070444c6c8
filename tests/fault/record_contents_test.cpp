// The fuzz targets compare records with fuzz/record_contents.h, which must not miss a member.
#include "fuzz/record_contents.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <new>
#include <vector>

namespace {

using namespace oldtorvio;

// Marks the bytes of one record that are compared, including its list and text objects.
class Marks {
 public:
  Marks(const void* record, std::size_t size) : from_(static_cast<const std::byte*>(record)), isCompared_(size) {}
  void bytes(const void* at, std::size_t size) {
    const auto offset = static_cast<const std::byte*>(at) - from_;
    if (offset < 0 || static_cast<std::size_t>(offset) >= isCompared_.size()) return;
    std::fill_n(isCompared_.begin() + offset, size, true);
  }
  template <class V>
  bool list(const V& list) {
    bytes(&list, sizeof list);
    return true;
  }
  bool isCompared(std::size_t offset) const { return isCompared_[offset]; }

 private:
  const std::byte* from_;
  std::vector<bool> isCompared_;
};

// A run of bytes that the construction of a record sets, but that is not compared. g++ sets padding too where it zeroes
// arrays of records at once.
struct Run {
  std::size_t first, last;
  bool operator==(const Run&) const = default;
  bool looksLikePadding() const {
#if defined(__clang__)
    return false;
#else
    const auto fillsUp = [this](std::size_t unit) {
      return first % unit != 0 && first / unit == last / unit && last % unit == unit - 1;
    };
    return fillsUp(4) || fillsUp(8);
#endif
  }
};
std::ostream& operator<<(std::ostream& to, const Run& run) { return to << run.first << " to " << run.last; }

template <class Record>
std::vector<Run> missedBytes() {
  struct Aligned {
    alignas(Record) std::byte bytes[sizeof(Record)];
  };
  const auto zeros = std::make_unique<Aligned>(), ones = std::make_unique<Aligned>();
  std::memset(zeros->bytes, 0, sizeof zeros->bytes);
  std::memset(ones->bytes, 0xFF, sizeof ones->bytes);
  // Without parentheses, which would zero the memory first.
  auto* const record = new (zeros->bytes) Record;
  auto* const other = new (ones->bytes) Record;
  Marks marks(record, sizeof(Record));
  fuzzing::RecordTeller teller(marks, fuzzing::Extent::all);
  EXPECT_TRUE(fuzzing::tell(teller, *record));
  std::vector<Run> missed;
  for (std::size_t i = 0; i < sizeof(Record); ++i) {
    if (zeros->bytes[i] != ones->bytes[i] || marks.isCompared(i)) continue;
    if (!missed.empty() && missed.back().last + 1 == i)
      missed.back().last = i;
    else
      missed.push_back({i, i});
  }
  std::erase_if(missed, [](const Run& run) { return run.looksLikePadding(); });
  std::destroy_at(other);
  std::destroy_at(record);
  return missed;
}

template <class Record>
class ContentsOf : public testing::Test {};

using Records = testing::Types<Shape, ShapeList, OldTool, ToolStation, ToolStationList, Pattern, PlacedShapeList,
                               ShapeGroup, ContourGroup, BindingSet, TorvPart, OldSpecialTool, InventoryEntry,
                               OldToolInventory, OldMacro, OldMaterial, OldMachine, OldSheet>;
TYPED_TEST_SUITE(ContentsOf, Records);

TYPED_TEST(ContentsOf, ARecordIncludesEveryMember) { EXPECT_EQ(missedBytes<TypeParam>(), std::vector<Run>()); }

// Any difference in a member matters, whether it is stored or not.
TEST(RecordContents, DifferIfAnyMemberDiffers) {
  using fuzzing::Extent;
  const auto differ = [](auto change, Extent extent) {
    const auto one = std::make_unique<OldSheet>(), other = std::make_unique<OldSheet>();
    one->partList.parts.resize(1);
    other->partList.parts.resize(1);
    EXPECT_TRUE(fuzzing::haveEqualContents(*one, *other, extent));
    change(*other);
    return !fuzzing::haveEqualContents(*one, *other, extent);
  };
  for (const Extent extent : {Extent::counted, Extent::all}) {
    EXPECT_TRUE(differ([](OldSheet& s) { s.utilization = -0.0F; }, extent));
    EXPECT_TRUE(differ([](OldSheet& s) { s.machine.setup3.clampInfo.clampPositions[7] = 0; }, extent));
    EXPECT_TRUE(differ([](OldSheet& s) { s.machine.textColumnB[2] = "x"; }, extent));
    EXPECT_TRUE(differ([](OldSheet& s) { s.machine.material.rules.angleRules[5].sizeLimitY += 1; }, extent));
    EXPECT_TRUE(differ([](OldSheet& s) { s.partList.parts[0].patterns.emplace_back(); }, extent));
    EXPECT_TRUE(differ([](OldSheet& s) { s.partList.parts[0].shapes.shapes.emplace_back().note = "x"; }, extent));
    EXPECT_TRUE(differ([](OldSheet& s) { s.blocks.emplace_back(); }, extent));
  }
  EXPECT_TRUE(differ([](OldSheet& s) { s.partList.parts[0].processSlots[249].slotByte = 1; }, Extent::all));
  EXPECT_TRUE(differ([](OldSheet& s) { s.paramTable.textParams[600][80] = 'x'; }, Extent::all));
}

}  // namespace
