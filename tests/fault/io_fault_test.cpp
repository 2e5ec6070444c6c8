// Files that fail: in opening, reading, writing and closing, and files that are none.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <thread>

#include "tests/support/allocation_meter.h"
#include "tests/support/export_calls.h"
#include "tests/support/io_faults.h"
#include "tests/support/linked_exports.h"

#if !defined(_WIN32)
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#endif

namespace {

using namespace testing_support;
using Files = ExportCall::Files;

bool writes(const ExportCall& call) { return call.files == Files::saved || call.files == Files::edited; }
// Reads its input once, from its beginning to its end.
bool readsOnce(const ExportCall& call) {
  return (call.files == Files::loaded && call.notOpened.size() == 1) ||
         (call.files == Files::edited && call.notOpened.size() == 2);
}

struct Outcome {
  std::int64_t status = 0;
  std::string before, answer;  // of all that the call may change
  bool happened = false;
  std::size_t opened = 0;
  std::array<std::size_t, kIoCalls> counts{};
  std::vector<std::size_t> read, written;

  std::size_t count(IoCall call) const { return counts[static_cast<std::size_t>(call)]; }
};

// An answer may be a file of megabytes, which nobody wants to see printed.
void expectSame(const std::string& a, const std::string& b, const char* what) {
  const auto differ = std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first;
  EXPECT_TRUE(a == b) << what << ": " << a.size() << " and " << b.size() << " bytes, differing at "
                      << differ - a.begin();
}

const auto kNothing = [](IoWatch&) {};

// The calls on one set of samples, with and without faults.
class Bench {
 public:
  explicit Bench(std::size_t many = 0) : samples(many) {}

  Outcome undisturbed(const ExportCall& call) const {
    const PreparedCall p = call.prepare(exports, samples);
    return run(p, nullptr, kNothing);
  }

  // What the call gives where its input has other bytes.
  Outcome withInput(const ExportCall& call, const Bytes& content) const {
    const PreparedCall p = call.prepare(exports, samples);
    samples.replace(call.input, content);
    Outcome outcome = run(p, nullptr, kNothing);
    samples.restore(call.input);
    return outcome;
  }

  // Makes the call with a fault, and with what set(watch) adds, and hands what came of it to judge(outcome). Behind
  // it the call works on what it left, and nothing is held. Gives whether the fault happened.
  template <class Judge, class Set = decltype(kNothing)>
  bool trial(const ExportCall& call, const Outcome& good, const IoFault* fault, const Judge& judge,
             const Set& set = kNothing) const {
    bool happened = false;
    const AllocationMeter meter;
    {
      const PreparedCall p = call.prepare(exports, samples);
      const Outcome outcome = run(p, fault, set);
      happened = outcome.happened;
      judge(outcome);
      p.renew();
      EXPECT_EQ(p.call(), good.status) << "once more";
      expectSame(p.answer(), good.answer, "once more");
    }
    if (!call.keepsRoom) {
      EXPECT_EQ(meter.held(), 0);
    }
    return happened;
  }

  Exports exports = linkedExports();
  Samples samples;

 private:
  template <class Set>
  static Outcome run(const PreparedCall& p, const IoFault* fault, const Set& set) {
    Outcome outcome;
    outcome.before = p.answer();
    {
      IoWatch watch(fault != nullptr ? *fault : IoFault{.n = kNever});
      set(watch);
      outcome.status = p.call();
      outcome.happened = watch.happened();
      outcome.opened = watch.opened();
      outcome.counts = watch.counts();
      outcome.read = watch.moved(IoCall::read);
      outcome.written = watch.moved(IoCall::write);
      EXPECT_EQ(watch.stillOpen(), 0U);
      EXPECT_EQ(watch.closedInVain(), 0U);
    }
    outcome.answer = p.answer();
    return outcome;
  }
};

// A few places in a block of that many bytes, the first always among them, the last before its end.
std::vector<std::size_t> placesIn(std::size_t size, std::size_t most) {
  std::vector<std::size_t> places;
  for (std::size_t at = 0; at < size; at += size / most + 1) places.push_back(at);
  for (const std::size_t at : {std::size_t{1}, std::size_t{2}, size - 1})
    if (at < size) places.push_back(at);
  return places;
}

TEST(IoFaults, EveryExportClosesWhatItOpensAndOpensNoMoreThanItNeeds) {
  const Bench bench;
  for (const ExportCall& call : exportCalls()) {
    const Outcome good = bench.undisturbed(call);
    EXPECT_EQ(good.status, call.whenDone) << call.title();
    EXPECT_EQ(good.count(IoCall::open), call.notOpened.size()) << call.title();
    EXPECT_GE(good.opened, good.count(IoCall::open)) << call.title();
    EXPECT_EQ(good.count(IoCall::close), call.notOpened.size()) << call.title();
    EXPECT_EQ(good.count(IoCall::write) > 0, writes(call)) << call.title();
  }
}

TEST(IoFaults, AFileThatCannotBeOpenedIsToldAndChangesNothing) {
  const Bench bench;
  for (const ExportCall& call : exportCalls()) {
    const Outcome good = bench.undisturbed(call);
    for (const int error : {EACCES, EMFILE, EIO})
      for (const bool forGood : {false, true})
        for (std::size_t n = 0; n < call.notOpened.size(); ++n) {
          SCOPED_TRACE(call.title() + ", file " + std::to_string(n) + (forGood ? " and on" : ""));
          const IoFault fault{IoCall::open, n, forGood, error, 0};
          const auto judge = [&](const Outcome& seen) {
            EXPECT_EQ(seen.status, call.notOpened[n]);
            // A table is opened again when its path and version are known. These two give a count of zero.
            if (call.form != "a table alone" && call.name != "OpenSpecialToolFile" &&
                call.name != "LoadOldToolInventoryForCount")
              expectSame(seen.answer, seen.before, "changed");
          };
          EXPECT_TRUE(bench.trial(call, good, &fault, judge));
        }
  }
}

// The fault that a read meets behind some bytes does what the end of the file there would do.
void expectFaultsToBeEnds(const Bench& bench, std::size_t placesInARead) {
  std::size_t calls = 0;
  for (const ExportCall& call : exportCalls()) {
    if (!readsOnce(call)) continue;
    ++calls;
    const Outcome good = bench.undisturbed(call);
    const Bytes& whole = bench.samples.content(call.input);
    std::size_t begin = 0;
    for (std::size_t n = 0; n < good.read.size(); begin += good.read[n++])
      for (const std::size_t bytes : placesIn(good.read[n], placesInARead)) {
        const Outcome cut = bench.withInput(call, whole.cut(begin + bytes));
        for (const bool forGood : {false, true}) {
          SCOPED_TRACE(call.title() + ", read " + std::to_string(n) + " behind " + std::to_string(bytes) +
                       (forGood ? " and on" : ""));
          const IoFault fault{IoCall::read, n, forGood, EIO, bytes};
          const auto judge = [&](const Outcome& seen) {
            EXPECT_EQ(seen.status, cut.status);
            // An edit that does not come to saving leaves each file as it is.
            const bool stays = call.files == Files::edited && cut.answer == cut.before;
            expectSame(seen.answer, stays ? seen.before : cut.answer, "not as if the file ended");
            if (call.allOrNothing && seen.status != call.whenDone) expectSame(seen.answer, seen.before, "changed");
          };
          EXPECT_TRUE(bench.trial(call, good, &fault, judge));
        }
        if (testing::Test::HasFailure()) return;
      }
  }
  EXPECT_GT(calls, 20U);
}

TEST(IoFaults, AReadThatFailsIsTheEndOfTheFile) { expectFaultsToBeEnds(Bench(), 60); }

TEST(IoFaults, AReadThatFailsInALargeFileIsItsEnd) {
  const Bench bench(8000);
  // Of each several windows.
  for (const char* input : {"part", "group", "tool.spt", "machine", "material", "inventory", "macro", "sheet"})
    EXPECT_GT(bench.samples.content(input).size(), 600U << 10U) << input;
  expectFaultsToBeEnds(bench, 1);
}

TEST(IoFaults, AReadThatFailsInOneOfSeveralFilesIsTold) {
  const Bench bench;
  for (const ExportCall& call : exportCalls()) {
    if (call.files == Files::none || call.files == Files::saved || readsOnce(call)) continue;
    const Outcome good = bench.undisturbed(call);
    ASSERT_GE(good.read.size(), 1U);
    for (std::size_t n = 0; n < good.read.size(); ++n)
      for (const bool forGood : {false, true})
        for (const std::size_t bytes : placesIn(good.read[n], 40)) {
          SCOPED_TRACE(call.title() + ", read " + std::to_string(n) + " behind " + std::to_string(bytes) +
                       (forGood ? " and on" : ""));
          const IoFault fault{IoCall::read, n, forGood, EIO, bytes};
          (void)bench.trial(call, good, &fault, [&](const Outcome& seen) {
            if (call.files == Files::tools) {
              // No folder, or a tool that cannot be loaded; or the fault met what nobody looks at.
              if (seen.status == call.whenDone) return expectSame(seen.answer, good.answer, "not done");
              EXPECT_EQ(seen.status, -1);
              return expectSame(seen.answer, seen.before, "changed");
            }
            if (call.files == Files::loaded) {
              // A table: the version word, then all of it from its beginning.
              EXPECT_EQ(seen.status, n == 0 && bytes >= 2 && !forGood ? 0 : 1);
              return;
            }
            // An edit: the version word, the part, the sheet, of which the last fields may be missing.
            const bool inVersionWord = n == 0 && bytes < 2;
            const bool meetsPart = n == 1 || (n == 0 && forGood);
            EXPECT_EQ(seen.status, inVersionWord ? 1 : meetsPart ? -2 : 0);
            if (n == 0 && !forGood && !inVersionWord) return expectSame(seen.answer, good.answer, "not done");
            if (n < 2) expectSame(seen.answer, seen.before, "changed");
          });
        }
  }
}

// Nobody asks how large a file is to decide what is in it.
TEST(IoFaults, AFileWhoseSizeIsNotToldIsReadToItsEnd) {
  for (const std::size_t many : {0U, 8000U}) {
    const Bench bench(many);
    std::size_t asked = 0;
    for (const ExportCall& call : exportCalls()) {
      if (many != 0 && !readsOnce(call)) continue;
      const Outcome good = bench.undisturbed(call);
      asked += good.count(IoCall::query);
      for (std::size_t n = 0; n < good.count(IoCall::query); ++n)
        for (const bool forGood : {false, true}) {
          SCOPED_TRACE(call.title() + ", question " + std::to_string(n));
          const IoFault fault{IoCall::query, n, forGood, EOVERFLOW, 0};
          EXPECT_TRUE(bench.trial(call, good, &fault, [&](const Outcome& seen) {
            EXPECT_EQ(seen.status, good.status);
            expectSame(seen.answer, good.answer, "another answer");
          }));
        }
    }
#if !defined(_WIN32)
    EXPECT_GT(asked, 50U);
#endif
  }
}

TEST(IoFaults, AFileThatBuffersAgainstAllRequestsIsReadAndWrittenAsEver) {
  const Bench bench;
  for (const ExportCall& call : exportCalls()) {
    const Outcome good = bench.undisturbed(call);
    EXPECT_EQ(good.count(IoCall::buffer), call.notOpened.size());
    if (call.notOpened.empty()) continue;
    SCOPED_TRACE(call.title());
    const IoFault fault{IoCall::buffer, 0, true, EINVAL, 0};
    EXPECT_TRUE(bench.trial(call, good, &fault, [&](const Outcome& seen) {
      EXPECT_EQ(seen.status, good.status);
      expectSame(seen.answer, good.answer, "another answer");
    }));
  }
}

// What stands in a file behind a save or edit that failed: the first bytes of what would have been saved.
void expectFirstBytes(const Outcome& seen, const Outcome& good, std::size_t bytes) {
  const std::string_view head = "file: ";
  expectSame(seen.answer, good.answer.substr(0, head.size() + bytes), "not what had been written");
}

void expectWritesToBeTold(const Bench& bench, const std::vector<int>& errors) {
  for (const ExportCall& call : exportCalls()) {
    if (!writes(call)) continue;
    const Outcome good = bench.undisturbed(call);
    std::size_t begin = 0;
    for (std::size_t n = 0; n < good.written.size(); begin += good.written[n++])
      for (const std::size_t bytes : placesIn(good.written[n], 3))
        for (const bool forGood : {false, true})
          for (const int error : errors) {
            SCOPED_TRACE(call.title() + ", write " + std::to_string(n) + " behind " + std::to_string(bytes) +
                         (forGood ? " and on" : ""));
            const IoFault fault{IoCall::write, n, forGood, error, bytes};
            EXPECT_TRUE(bench.trial(call, good, &fault, [&](const Outcome& seen) {
              EXPECT_EQ(seen.status, call.files == Files::edited ? 0 : -2);
              EXPECT_EQ(seen.count(IoCall::write), n + 1) << "nothing is written behind a gap";
              expectFirstBytes(seen, good, begin + bytes);
            }));
          }
  }
}

TEST(IoFaults, AWriteThatFailsIsToldAndLeavesWhatHadBeenWritten) {
  expectWritesToBeTold(Bench(), {ENOSPC, EIO, EFBIG});
}

TEST(IoFaults, AWriteThatFailsInALargeFileLeavesWhatHadBeenWritten) {
  const Bench bench(20000);
  for (const ExportCall& call : exportCalls())
    if (writes(call) && call.form != "fresh, in the oldest layout") {
      EXPECT_GT(bench.undisturbed(call).written.size(), 2U) << call.title();
    }
  expectWritesToBeTold(bench, {ENOSPC});
}

TEST(IoFaults, AClosingThatFailsMattersToASaveAlone) {
  const Bench bench;
  for (const ExportCall& call : exportCalls()) {
    const Outcome good = bench.undisturbed(call);
    for (std::size_t n = 0; n < good.count(IoCall::close); ++n)
      for (const bool forGood : {false, true}) {
        SCOPED_TRACE(call.title() + ", closing " + std::to_string(n) + (forGood ? " and on" : ""));
        const IoFault fault{IoCall::close, n, forGood, EIO, 0};
        EXPECT_TRUE(bench.trial(call, good, &fault, [&](const Outcome& seen) {
          EXPECT_EQ(seen.status, call.files == Files::saved ? -2 : call.whenDone);
          EXPECT_EQ(seen.count(IoCall::close), good.count(IoCall::close));
          expectSame(seen.answer, good.answer, "another answer");
        }));
      }
  }
}

TEST(IoFaults, AFileThatGetsShorterWhileItIsReadEndsThere) {
  const Bench bench(2000);
  for (const ExportCall& call : exportCalls()) {
    if (!readsOnce(call)) continue;
    const Outcome good = bench.undisturbed(call);
    const Bytes& whole = bench.samples.content(call.input);
    for (const std::size_t size :
         {std::size_t{0}, std::size_t{1}, std::size_t{2}, std::size_t{300}, whole.size() / 2, whole.size() - 4}) {
      SCOPED_TRACE(call.title() + ", down to " + std::to_string(size));
      const Outcome cut = bench.withInput(call, whole.cut(size));
      (void)bench.trial(
          call, good, nullptr,
          [&](const Outcome& seen) {
            EXPECT_EQ(seen.status, cut.status);
            expectSame(seen.answer, cut.answer, "not as if the file had been short from the beginning");
            bench.samples.restore(call.input);
          },
          [&](IoWatch& watch) {
            watch.inFrontOf(IoCall::read, 0, [&] { bench.samples.change(call.input, whole.cut(size)); });
          });
    }
  }
}

TEST(IoFaults, AFileThatGetsLongerWhileItIsReadIsReadAsItWas) {
  const Bench bench;
  for (const ExportCall& call : exportCalls()) {
    if (!readsOnce(call)) continue;
    const Outcome good = bench.undisturbed(call);
    const Bytes longer = Bytes().add(bench.samples.content(call.input)).fill(1000, 1);
    SCOPED_TRACE(call.title());
    (void)bench.trial(
        call, good, nullptr,
        [&](const Outcome& seen) {
          EXPECT_EQ(seen.status, good.status);
          expectSame(seen.answer, good.answer, "another answer");
          bench.samples.restore(call.input);
        },
        [&](IoWatch& watch) { watch.inFrontOf(IoCall::read, 0, [&] { bench.samples.change(call.input, longer); }); });
  }
}

TEST(IoFaults, ASheetThatCanBeReadButNotWrittenStaysAsItIs) {
  const Bench bench;
  for (const ExportCall& call : exportCalls()) {
    if (call.files != Files::edited) continue;
    const Outcome good = bench.undisturbed(call);
    EXPECT_FALSE(good.answer == good.before) << call.title();
    const IoFault fault{IoCall::open, call.notOpened.size() - 1, false, EACCES, 0};
    EXPECT_TRUE(bench.trial(call, good, &fault, [&](const Outcome& seen) {
      EXPECT_EQ(seen.status, 0);
      expectSame(seen.answer, seen.before, "changed");
    }));
  }
}

#if !defined(_WIN32)
TEST(IoFaults, FoldersThatCannotBeReadHaveNoSpecialTools) {
  const Bench bench;
  for (const ExportCall& call : exportCalls()) {
    if (call.files != Files::tools) continue;
    const Outcome good = bench.undisturbed(call);
    EXPECT_GT(good.count(IoCall::folder), 0U);
    for (std::size_t n = 0; n < good.count(IoCall::folder); ++n)
      for (const bool forGood : {false, true}) {
        SCOPED_TRACE(call.title() + ", call " + std::to_string(n));
        const IoFault fault{IoCall::folder, n, forGood, EIO, 0};
        EXPECT_TRUE(bench.trial(call, good, &fault, [&](const Outcome& seen) {
          // An entry of which nothing is told counts as a file.
          if (n > 0 && seen.status == call.whenDone) return expectSame(seen.answer, good.answer, "another answer");
          EXPECT_EQ(seen.status, -1);
          expectSame(seen.answer, seen.before, "changed");
        }));
      }
  }
}
#endif

}  // namespace
