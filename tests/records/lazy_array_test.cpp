// Numbered places that take memory only where they are written to.
#include "OldTorvIO/lazy_array.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "OldTorvIO/process_slot.h"
#include "tests/support/allocation_meter.h"

namespace {

using oldtorvio::LazyArray;
using testing_support::AllocationMeter;

struct Seven {
  int value = 7;
};
using Fifty = LazyArray<Seven, 50>;

TEST(LazyArray, HoldsDefaultsAndTakesNoMemoryUntilAnElementIsWritten) {
  const AllocationMeter meter;
  const oldtorvio::ProcessSlots slots;
  int count = 0;
  for (const oldtorvio::ProcessSlot& slot : slots) {
    EXPECT_EQ(slot.slotKind, 3);
    EXPECT_EQ(slot.firstLength, 0.25F);
    ++count;
  }
  EXPECT_EQ(count, 250);
  EXPECT_EQ(slots.size(), 250U);
  EXPECT_EQ(meter.count(), 0U);
}

TEST(LazyArray, ElementsThatWereNotWrittenHoldTheirDefault) {
  for (std::size_t written = 0; written < Fifty::size(); ++written) {
    Fifty places;
    places[written].value = 1;
    for (std::size_t i = 0; i < Fifty::size(); ++i)
      EXPECT_EQ(std::as_const(places)[i].value, i == written ? 1 : 7) << written << " " << i;
  }
  Fifty all;
  int number = 0;
  for (Seven& one : all) one.value = number++;
  number = 0;
  for (const Seven& one : std::as_const(all)) EXPECT_EQ(one.value, number++);
  EXPECT_EQ(number, 50);
}

TEST(LazyArray, ReferencesStayValidWhenOtherElementsAreWritten) {
  Fifty places;
  Seven& first = places[0];
  for (std::size_t i = 1; i < Fifty::size(); ++i) places[i].value = 2;
  first.value = 5;
  EXPECT_EQ(places[0].value, 5);
}

TEST(LazyArray, WorksWithTheAlgorithmsOfTheStandardLibrary) {
  Fifty places;
  static_assert(std::forward_iterator<decltype(places.begin())>);
  static_assert(std::forward_iterator<decltype(std::as_const(places).begin())>);
  places[31].value = 1;
  const auto found = std::find_if(places.begin(), places.end(), [](const Seven& one) { return one.value == 1; });
  EXPECT_EQ(std::distance(places.begin(), found), 31);
  auto next = found;
  EXPECT_EQ(next++->value, 1);
  EXPECT_EQ(next->value, 7);
  EXPECT_EQ(std::distance(places.begin(), places.end()), 50);
  EXPECT_EQ(std::distance(std::as_const(places).begin(), std::as_const(places).end()), 50);
}

TEST(LazyArray, IteratorsOfTwoArraysAreNeverEqual) {
  Fifty first, second;
  EXPECT_TRUE(first.begin() == first.begin());
  EXPECT_TRUE(first.begin() != second.begin());
  EXPECT_FALSE(first.begin() == second.begin());
}

TEST(LazyArray, CopiesAreDeepAndMovesLeaveDefaults) {
  Fifty places;
  places[3].value = 1;
  places[49].value = 2;
  Fifty copy(places);
  copy[3].value = 9;
  EXPECT_EQ(places[3].value, 1);
  EXPECT_EQ(copy[49].value, 2);
  Fifty assigned;
  assigned[20].value = 4;
  assigned = places;
  EXPECT_EQ(assigned[3].value, 1);
  EXPECT_EQ(std::as_const(assigned)[20].value, 7);
  Fifty& same = assigned;
  assigned = same;
  EXPECT_EQ(assigned[49].value, 2);
  const Fifty moved(std::move(assigned));
  EXPECT_EQ(moved[49].value, 2);
  EXPECT_EQ(std::as_const(assigned)[49].value, 7);  // NOLINT(bugprone-use-after-move): what is left is documented
}

}  // namespace
