// The room of a list whose elements hold lists: which of it is kept shows in its capacity.
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <vector>

#include "src/frame/codec/reader.h"
#include "tests/support/bytes.h"

namespace {

struct Box {
  std::int32_t kind = 0;
  std::vector<std::int32_t> numbers;
};

}  // namespace

template <>
struct oldtorvio::codec::Layout<Box> {
  static constexpr std::size_t kMinStoredSize = 8;
  static bool describe(auto& io, auto& box) {
    return io.fields(FIELDS(box.kind)) && io.require(within(FIELDS(box.kind), 0, 1)) &&
           io.list(FIELDS(box.numbers), kCountFirst);
  }
};

namespace {

using namespace oldtorvio::codec;
using testing_support::Bytes;

constexpr std::int32_t kTooMany = std::numeric_limits<std::int32_t>::max();

// Loads a list that claims `claimed` boxes of a file with so many bytes after the claim: boxes with so many
// numbers each, then one that is refused. Gives the capacity of the list.
std::size_t roomAfter(std::int32_t claimed, const std::vector<std::int32_t>& boxes, std::size_t bytes,
                      std::size_t roomBefore = 0) {
  Bytes all;
  for (const std::int32_t numbers : boxes) all.i32(0).i32(numbers).zeros(4 * static_cast<std::size_t>(numbers));
  if (all.size() + 4 <= bytes) all.i32(2);
  EXPECT_LE(all.size(), bytes);
  const Bytes file = Bytes().i32(claimed).add(all).zeros(bytes - all.size());
  InStream stream(file.span());
  Reader io(stream, 180);
  std::vector<Box> list;
  list.reserve(roomBefore);
  (void)io.list(FIELDS(list), kCountFirst);
  EXPECT_EQ(list.size(), boxes.size());
  return list.capacity();
}

// One box with a number, then empty ones.
std::vector<std::int32_t> boxesWithOneNumber(std::size_t count) {
  std::vector<std::int32_t> boxes(count);
  boxes[0] = 1;
  return boxes;
}

TEST(ListsOfLists, KeepTheirCapacityWhileTheFileCanHoldAllClaimedElements) {
  EXPECT_EQ(roomAfter(10, {5}, 8 + 5 * 4 + 9 * 8), 10U) << "nine more of the smallest";
  EXPECT_EQ(roomAfter(10, {5}, 8 + 5 * 4 + 9 * 8 - 1), 1U) << "a byte less";
  EXPECT_EQ(roomAfter(2, {5}, 8 + 5 * 4 + 8, 100), 100U);
  EXPECT_EQ(roomAfter(2, {5}, 8 + 5 * 4 + 8 - 1, 100), 2U);
  EXPECT_EQ(roomAfter(1, {5}, 8 + 5 * 4, 100), 100U) << "nothing is claimed after the last";
}

TEST(ListsOfLists, ReleaseUnusedCapacityWhenAnInnerListNeedsMemory) {
  EXPECT_EQ(roomAfter(kTooMany, {0}, 80), 11U) << "an empty one wants none";
  EXPECT_EQ(roomAfter(kTooMany, {1}, 80), 1U);
}

TEST(ListsOfLists, KeepCapacityThatIsHalfUsed) {
  EXPECT_EQ(roomAfter(kTooMany, {0, 0, 0, 0, 0, 0, 1}, 88), 12U) << "six of twelve";
  EXPECT_EQ(roomAfter(kTooMany, {0, 0, 0, 0, 0, 1}, 88), 11U) << "five: room for what came and can come";
}

TEST(ListsOfLists, ReleaseCapacityOnlyOnce) {
  // 255 boxes, then room for all that can come: it stays, although the lists that follow need some as well.
  std::vector<std::int32_t> boxes = boxesWithOneNumber(256);
  const std::size_t room = roomAfter(kTooMany, boxes, 8156);
  EXPECT_EQ(room, 1020U);
  boxes.insert(boxes.end(), {1, 1, 1});
  EXPECT_EQ(roomAfter(kTooMany, boxes, 8156), room);
}

TEST(ListsOfLists, DoubleTheirCapacityUpToAQuarterOfThePossibleElementsThenReserveAll) {
  const std::size_t room[] = {1, 3, 3, 7, 7, 7, 7, 15};
  for (std::size_t count = 1; count <= 8; ++count)
    EXPECT_EQ(roomAfter(kTooMany, boxesWithOneNumber(count), 9236), room[count - 1]) << count;
  EXPECT_EQ(roomAfter(kTooMany, boxesWithOneNumber(256), 9236), 511U) << "900 more could come";
  EXPECT_EQ(roomAfter(kTooMany, boxesWithOneNumber(256), 8156), 1020U) << "765 more could";
  EXPECT_EQ(roomAfter(1000, boxesWithOneNumber(256), 8000), 1000U) << "never more than are claimed";
}

}  // namespace
