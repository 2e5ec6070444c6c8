// Ranges of the bytes of a file.
#include "torvio/explain/offset_range.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using oldtorvio::explain::OffsetRange;

TEST(OffsetRanges, AreDecimalOrHexadecimalAndIncludeBothEnds) {
  const struct {
    const char* text;
    std::uint64_t first, last;
  } cases[] = {{"18", 18, 18},         {"0x12", 18, 18},
               {"0X1f..0x2F", 31, 47}, {"3..3", 3, 3},
               {"0..10", 0, 10},       {"7..", 7, UINT64_MAX},
               {"..7", 0, 7},          {"18446744073709551615", UINT64_MAX, UINT64_MAX}};
  for (const auto& one : cases) {
    const auto range = OffsetRange::parsed(one.text);
    ASSERT_TRUE(range.has_value()) << one.text;
    EXPECT_EQ(range->first, one.first) << one.text;
    EXPECT_EQ(range->last, one.last) << one.text;
  }
  for (const char* text : {"", "..", "0x", "x", "-1", "5..3", "1...3", "1 ", "18446744073709551616", "1..x", "0x1g"})
    EXPECT_FALSE(OffsetRange::parsed(text).has_value()) << text;
}

TEST(OffsetRanges, OverlapFieldsThatShareAByteWithThem) {
  const OffsetRange range{10, 12};
  EXPECT_FALSE(range.overlaps(6, 4));
  EXPECT_TRUE(range.overlaps(6, 5));
  EXPECT_TRUE(range.overlaps(11, 1));
  EXPECT_TRUE(range.overlaps(12, 100));
  EXPECT_FALSE(range.overlaps(13, 1));
  EXPECT_TRUE(range.overlaps(0, 100));
  EXPECT_TRUE(range.overlaps(10, 0));
  EXPECT_FALSE(range.overlaps(13, 0));
  EXPECT_FALSE(range.overlaps(9, 0));
}

}  // namespace
