// Every export of the list works, and each of its allocations may fail.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "tests/support/allocation_meter.h"
#include "tests/support/export_calls.h"
#include "tests/support/linked_exports.h"

namespace {

using namespace testing_support;
using Files = ExportCall::Files;

TEST(EveryExport, TheTableOfCallsHasExactlyTheListedNames) {
  const std::vector<std::string> listed = exportNames();
  EXPECT_EQ(listed.size(), 45U);
  std::set<std::string> called;
  for (const ExportCall& call : exportCalls()) called.insert(call.name);
  EXPECT_EQ(called, std::set<std::string>(listed.begin(), listed.end()));
}

TEST(EveryExport, WorksAndReturnsTheSameASecondTime) {
  const Samples samples;
  Exports exports = linkedExports();
  for (const ExportCall& call : exportCalls()) {
    const PreparedCall p = call.prepare(exports, samples);
    const std::string before = p.answer();
    EXPECT_EQ(p.call(), call.whenDone) << call.title();
    const std::string answer = p.answer();
    // A call without a visible effect would test nothing.
    if (call.name != "LoadOldSheetInformation") {
      EXPECT_NE(answer, before) << call.title();
    }
    p.renew();
    EXPECT_EQ(p.call(), call.whenDone) << call.title();
    EXPECT_EQ(p.answer(), answer) << call.title();
  }
  exports.each([](const char* name, const auto& function) { EXPECT_GT(function.calls(), 1U) << name; });
}

// Accepts the listed statuses, only in this order.
class Stages {
 public:
  explicit Stages(const std::vector<std::int64_t>& all) : all_(all), seen_(all.size()) {}
  bool accepts(std::int64_t status) {
    while (at_ < all_.size() && all_[at_] != status) ++at_;
    if (at_ < all_.size()) seen_[at_] = true;
    return at_ < all_.size();
  }
  bool sawAll() const {
    return std::ranges::all_of(seen_, [](bool one) { return one; });
  }

 private:
  const std::vector<std::int64_t>& all_;
  std::vector<bool> seen_;
  std::size_t at_ = 0;
};

void expectFailedAllocationsToBeReported(const Samples& samples) {
  const Exports exports = linkedExports();
  for (const ExportCall& call : exportCalls()) {
    std::string good;
    {
      const PreparedCall p = call.prepare(exports, samples);
      ASSERT_EQ(p.call(), call.whenDone) << call.title();
      good = p.answer();
    }
    bool sawAll = true;
    for (const bool forGood : {false, true}) {
      Stages stages(call.withoutMemory);
      bool happened = true;
      const auto failAt = [&](std::size_t n) {
        const PreparedCall p = call.prepare(exports, samples);
        const std::string before = p.answer();
        std::int64_t status = 0;
        {
          const FailingAllocation failing(n, forGood);
          status = p.call();
          happened = failing.happened();
        }
        if (!happened) {
          EXPECT_EQ(status, call.whenDone);
          EXPECT_EQ(p.answer(), good);
          return;
        }
        EXPECT_TRUE(stages.accepts(status)) << "returns " << status;
        const std::string answer = p.answer();
        if (call.allOrNothing) {
          EXPECT_EQ(answer, before);
        }
        // What was stored before the fault stays.
        if (call.files == Files::saved || call.files == Files::edited) {
          EXPECT_TRUE(answer == before || good.starts_with(answer));
        }
        p.renew();
        EXPECT_EQ(p.call(), call.whenDone);
        EXPECT_EQ(p.answer(), good);
      };
      std::size_t n = 0;
      for (; happened && n < 100000; ++n) {
        SCOPED_TRACE(call.title() + ", allocation " + std::to_string(n) + (forGood ? " and on" : ""));
        const AllocationMeter meter;
        failAt(n);
        if (!call.keepsRoom) {
          EXPECT_EQ(meter.held(), 0);
        }
        if (testing::Test::HasFailure()) return;
      }
      EXPECT_EQ(n > 1, !call.withoutMemory.empty()) << call.title();
      sawAll = sawAll && stages.sawAll();
    }
    EXPECT_TRUE(sawAll || call.keepsRoom) << call.title();
  }
}

TEST(EveryExport, ReportsEachFailedAllocationAndWorksAfterwards) {
  for (const int version : sampleVersions()) {
    SCOPED_TRACE(version);
    expectFailedAllocationsToBeReported(Samples(0, version));
  }
}

}  // namespace
