// Files whose open, read, write or close fails, and paths that are no ordinary files.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <thread>

#include "tests/support/allocation_meter.h"
#include "tests/support/export_calls.h"
#include "tests/support/io_faults.h"
#include "tests/support/linked_exports.h"
#include "tests/support/long_tests.h"

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
// Whether the call reads its input once, from beginning to end.
bool readsOnce(const ExportCall& call) {
  return (call.files == Files::loaded && call.notOpened.size() == 1) ||
         (call.files == Files::edited && call.notOpened.size() == 2);
}

struct Outcome {
  std::int64_t status = 0;
  std::string before, output;  // everything that the call may change, before and after it
  bool happened = false;
  std::size_t opened = 0;
  std::array<std::size_t, kIoCalls> counts{};
  std::vector<std::size_t> read, written;

  std::size_t count(IoCall call) const { return counts[static_cast<std::size_t>(call)]; }
};

// Not EXPECT_EQ, which would print both: an output may be a file of megabytes.
void expectSame(const std::string& a, const std::string& b, const char* what) {
  if (a == b) return;
  const auto differ = std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first;
  ADD_FAILURE() << what << ": " << a.size() << " and " << b.size() << " bytes, differing at " << differ - a.begin();
}

const auto kNothing = [](IoWatch&) {};
const std::function<void()> kNoChange = [] {};

// The calls on one set of samples, with and without faults.
class Bench {
 public:
  explicit Bench(std::size_t many = 0, int version = 180) : samples(many, version) {}

  Outcome undisturbed(const ExportCall& call) const {
    const PreparedCall p = call.prepare(exports, samples);
    return run(p, nullptr, kNothing, kNoChange);
  }

  // The outcome of the call with other bytes in its input.
  Outcome withInput(const ExportCall& call, const Bytes& content) const {
    const PreparedCall p = call.prepare(exports, samples);
    samples.replace(call.input, content);
    Outcome outcome = run(p, nullptr, kNothing, kNoChange);
    samples.restore(call.input);
    return outcome;
  }

  // After install(), makes the call with a fault and with what set(watch) adds, and calls judge(outcome). Then checks that
  // the call works on what was left, and that no memory is leaked. Returns whether the fault happened.
  template <class Judge, class Set = decltype(kNothing)>
  bool trial(const ExportCall& call, const Outcome& good, const IoFault* fault, const Judge& judge,
             const Set& set = kNothing, const std::function<void()>& install = kNoChange) const {
    bool happened = false;
    const AllocationMeter meter;
    {
      const PreparedCall p = call.prepare(exports, samples);
      const Outcome outcome = run(p, fault, set, install);
      happened = outcome.happened;
      judge(outcome);
      p.renew();
      EXPECT_EQ(p.call(), good.status) << "once more";
      expectSame(p.answer(), good.output, "once more");
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
  static Outcome run(const PreparedCall& p, const IoFault* fault, const Set& set,
                     const std::function<void()>& install) {
    Outcome outcome;
    outcome.before = p.answer();
    install();
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
    outcome.output = p.answer();
    return outcome;
  }
};

// A few places in a block of `size` bytes, including the first and the last.
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

TEST(IoFaults, AFileThatCannotBeOpenedIsReportedAndChangesNothing) {
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
            // A table is opened again once its path and version are set. The other two set a count of 0.
            if (call.form != "only a table" && call.name != "OpenSpecialToolFile" &&
                call.name != "LoadOldToolInventoryForCount")
              expectSame(seen.output, seen.before, "changed");
          };
          EXPECT_TRUE(bench.trial(call, good, &fault, judge));
        }
  }
}

// A read that fails after some bytes has the same effect as the end of the file at that place.
void expectFaultsToBeEnds(const Bench& bench, const std::function<std::vector<std::size_t>(std::size_t)>& placesInRead,
                          const std::vector<bool>& kinds) {
  std::size_t calls = 0;
  for (const ExportCall& call : exportCalls()) {
    if (!readsOnce(call)) continue;
    ++calls;
    const Outcome good = bench.undisturbed(call);
    const Bytes& complete = bench.samples.content(call.input);
    std::size_t begin = 0;
    for (std::size_t n = 0; n < good.read.size(); begin += good.read[n++])
      for (const std::size_t bytes : placesInRead(good.read[n])) {
        const Outcome cut = bench.withInput(call, complete.cut(begin + bytes));
        for (const bool forGood : kinds) {
          SCOPED_TRACE(call.title() + ", read " + std::to_string(n) + " after " + std::to_string(bytes) +
                       (forGood ? " and on" : ""));
          const IoFault fault{IoCall::read, n, forGood, EIO, bytes};
          const auto judge = [&](const Outcome& seen) {
            EXPECT_EQ(seen.status, cut.status);
            // An edit that does not get to its save changes no file.
            const bool stays = call.files == Files::edited && cut.output == cut.before;
            expectSame(seen.output, stays ? seen.before : cut.output, "not as if the file ended");
            if (call.allOrNothing && seen.status != call.whenDone) expectSame(seen.output, seen.before, "changed");
          };
          EXPECT_TRUE(bench.trial(call, good, &fault, judge));
        }
        if (testing::Test::HasFailure()) return;
      }
  }
  EXPECT_GT(calls, 20U);
}

TEST(IoFaults, AReadThatFailsIsTheEndOfTheFile) {
  for (const int version : sampleVersions()) {
    SCOPED_TRACE(version);
    const Bench bench(0, version);
    expectFaultsToBeEnds(bench, [](std::size_t size) { return placesIn(size, isLongRun() ? 300 : 30); }, {false, true});
  }
}

TEST(IoFaults, AReadThatFailsInALargeFileIsItsEnd) {
  const Bench bench(8000);
  // Each is several windows long.
  for (const char* input : {"part", "group", "tool.spt", "machine", "material", "inventory", "macro", "sheet"})
    EXPECT_GT(bench.samples.content(input).size(), 600U << 10U) << input;
  if (isLongRun())
    return expectFaultsToBeEnds(bench, [](std::size_t size) { return placesIn(size, 10); }, {false, true});
  expectFaultsToBeEnds(bench, [](std::size_t size) { return std::vector{size / 2}; }, {false});
}

TEST(IoFaults, AReadThatFailsInOneOfSeveralFilesIsReported) {
  const Bench bench;
  for (const ExportCall& call : exportCalls()) {
    if (call.files == Files::none || call.files == Files::saved || readsOnce(call)) continue;
    const Outcome good = bench.undisturbed(call);
    ASSERT_GE(good.read.size(), 1U);
    for (std::size_t n = 0; n < good.read.size(); ++n)
      for (const bool forGood : {false, true})
        for (const std::size_t bytes : placesIn(good.read[n], 40)) {
          SCOPED_TRACE(call.title() + ", read " + std::to_string(n) + " after " + std::to_string(bytes) +
                       (forGood ? " and on" : ""));
          const IoFault fault{IoCall::read, n, forGood, EIO, bytes};
          (void)bench.trial(call, good, &fault, [&](const Outcome& seen) {
            if (call.files == Files::tools) {
              // The folder or the tool cannot be read, or the fault hit something that is not needed.
              if (seen.status == call.whenDone) return expectSame(seen.output, good.output, "not done");
              EXPECT_EQ(seen.status, -1);
              return expectSame(seen.output, seen.before, "changed");
            }
            if (call.files == Files::loaded) {
              // A table: the version word first, then everything from the beginning.
              EXPECT_EQ(seen.status, n == 0 && bytes >= 2 && !forGood ? 0 : 1);
              return;
            }
            // An edit reads the version word, the part, and the sheet, whose last fields may be missing.
            const bool inVersionWord = n == 0 && bytes < 2;
            const bool meetsPart = n == 1 || (n == 0 && forGood);
            EXPECT_EQ(seen.status, inVersionWord ? 1 : meetsPart ? -2 : 0);
            if (n == 0 && !forGood && !inVersionWord) return expectSame(seen.output, good.output, "not done");
            if (n < 2) expectSame(seen.output, seen.before, "changed");
          });
        }
  }
}

// The result must not depend on the reported size of a file.
TEST(IoFaults, AFileOfUnknownSizeIsReadToItsEnd) {
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
            expectSame(seen.output, good.output, "another output");
          }));
        }
    }
#if !defined(_WIN32)
    EXPECT_GT(asked, 50U);
#endif
  }
}

TEST(IoFaults, AFileThatIsBufferedDespiteTheRequestIsReadAndWrittenAsUsual) {
  const Bench bench;
  for (const ExportCall& call : exportCalls()) {
    const Outcome good = bench.undisturbed(call);
    EXPECT_EQ(good.count(IoCall::buffer), call.notOpened.size());
    if (call.notOpened.empty()) continue;
    SCOPED_TRACE(call.title());
    const IoFault fault{IoCall::buffer, 0, true, EINVAL, 0};
    EXPECT_TRUE(bench.trial(call, good, &fault, [&](const Outcome& seen) {
      EXPECT_EQ(seen.status, good.status);
      expectSame(seen.output, good.output, "another output");
    }));
  }
}

// After a failed save or edit, the file has the first bytes of what would have been saved.
void expectFirstBytes(const Outcome& seen, const Outcome& good, std::size_t bytes) {
  const std::string_view head = "file: ";
  expectSame(seen.output, good.output.substr(0, head.size() + bytes), "not what had been written");
}

void expectFailedWritesToBeReported(const Bench& bench, const std::vector<int>& errors, const std::vector<bool>& kinds,
                                    const std::function<std::vector<std::size_t>(std::size_t)>& placesInWrite) {
  for (const ExportCall& call : exportCalls()) {
    if (!writes(call)) continue;
    const Outcome good = bench.undisturbed(call);
    std::size_t begin = 0;
    for (std::size_t n = 0; n < good.written.size(); begin += good.written[n++])
      for (const std::size_t bytes : placesInWrite(good.written[n]))
        for (const bool forGood : kinds)
          for (const int error : errors) {
            SCOPED_TRACE(call.title() + ", write " + std::to_string(n) + " after " + std::to_string(bytes) +
                         (forGood ? " and on" : ""));
            const IoFault fault{IoCall::write, n, forGood, error, bytes};
            EXPECT_TRUE(bench.trial(call, good, &fault, [&](const Outcome& seen) {
              EXPECT_EQ(seen.status, call.files == Files::edited ? 0 : -2);
              EXPECT_EQ(seen.count(IoCall::write), n + 1) << "nothing is written after a gap";
              expectFirstBytes(seen, good, begin + bytes);
            }));
          }
  }
}

TEST(IoFaults, AWriteThatFailsIsReportedAndLeavesWhatHadBeenWritten) {
  expectFailedWritesToBeReported(Bench(), {ENOSPC, EIO, EFBIG}, {false, true},
                                 [](std::size_t size) { return placesIn(size, 3); });
}

TEST(IoFaults, AWriteThatFailsInALargeFileLeavesWhatHadBeenWritten) {
  const Bench bench(20000);
  for (const ExportCall& call : exportCalls())
    if (writes(call) && call.form != "fresh, in the oldest layout") {
      EXPECT_GT(bench.undisturbed(call).written.size(), 2U) << call.title();
    }
  if (isLongRun())
    return expectFailedWritesToBeReported(bench, {ENOSPC}, {false, true},
                                          [](std::size_t size) { return placesIn(size, 9); });
  expectFailedWritesToBeReported(bench, {ENOSPC}, {false}, [](std::size_t size) { return std::vector{size / 2}; });
}

TEST(IoFaults, AFailedCloseIsReportedOnlyByASave) {
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
          expectSame(seen.output, good.output, "another output");
        }));
      }
  }
}

TEST(IoFaults, ARefusedSaveReportsAFailedCloseOnlyIfItHasStoredAVersionWord) {
  const TempFolder folder;
  const std::string path = folder.path("saved");
  const auto sheet = std::make_unique<OldSheet>();
  const auto statusOf = [](auto&& save) {
    const IoWatch watch({IoCall::close, 0, false, EIO, 0});
    const std::int64_t status = save();
    EXPECT_TRUE(watch.happened());
    return status;
  };
  EXPECT_EQ(statusOf([&] { return SaveTorvPart(path.c_str(), 63); }), -1);
  EXPECT_EQ(statusOf([&] { return SaveOldSheet(path.c_str(), sheet.get(), 181); }), -2);
}

TEST(IoFaults, AFileThatGetsShorterWhileItIsReadEndsThere) {
  const Bench bench(2000);
  for (const ExportCall& call : exportCalls()) {
    if (!readsOnce(call)) continue;
    const Outcome good = bench.undisturbed(call);
    const Bytes& complete = bench.samples.content(call.input);
    for (const std::size_t size :
         {std::size_t{0}, std::size_t{1}, std::size_t{2}, std::size_t{300}, complete.size() / 2, complete.size() - 4}) {
      SCOPED_TRACE(call.title() + ", down to " + std::to_string(size));
      const Outcome cut = bench.withInput(call, complete.cut(size));
      (void)bench.trial(
          call, good, nullptr,
          [&](const Outcome& seen) {
            EXPECT_EQ(seen.status, cut.status);
            expectSame(seen.output, cut.output, "not as if the file had been short from the beginning");
            bench.samples.restore(call.input);
          },
          [&](IoWatch& watch) {
            watch.before(IoCall::read, 0, [&] { bench.samples.change(call.input, complete.cut(size)); });
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
          expectSame(seen.output, good.output, "another output");
          bench.samples.restore(call.input);
        },
        [&](IoWatch& watch) { watch.before(IoCall::read, 0, [&] { bench.samples.change(call.input, longer); }); });
  }
}

TEST(IoFaults, AReadOnlySheetIsNotChanged) {
  const Bench bench;
  for (const ExportCall& call : exportCalls()) {
    if (call.files != Files::edited) continue;
    const Outcome good = bench.undisturbed(call);
    EXPECT_FALSE(good.output == good.before) << call.title();
    const IoFault fault{IoCall::open, call.notOpened.size() - 1, false, EACCES, 0};
    EXPECT_TRUE(bench.trial(call, good, &fault, [&](const Outcome& seen) {
      EXPECT_EQ(seen.status, 0);
      expectSame(seen.output, seen.before, "changed");
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
          // An entry that cannot be examined is treated as a file, and several spellings of a folder are tried.
          if ((n > 0 || !forGood) && seen.status == call.whenDone)
            return expectSame(seen.output, good.output, "another output");
          EXPECT_EQ(seen.status, -1);
          expectSame(seen.output, seen.before, "changed");
        }));
      }
  }
}
#endif

// ---- unusual files ---------------------------------------------------------------------------------

bool setsACountToZero(const ExportCall& call) {
  return call.name == "OpenSpecialToolFile" || call.name == "LoadOldToolInventoryForCount";
}

// Makes every call that takes a path after install(path) has replaced the file, and calls judge(call, outcome).
template <class Install, class Judge>
void expectOf(
    const Bench& bench, const Install& install, const Judge& judge, const IoFault* fault = nullptr,
    const std::function<bool(const ExportCall&)>& matters = [](const ExportCall&) { return true; }) {
  std::size_t calls = 0;
  for (const ExportCall& call : exportCalls()) {
    if (call.files == Files::none || !matters(call)) continue;
    ++calls;
    SCOPED_TRACE(call.title());
    const Outcome good = bench.undisturbed(call);
    const std::string path = bench.samples.path(call.input);
    (void)bench.trial(
        call, good, fault,
        [&](const Outcome& seen) {
          judge(call, seen, good);
          std::filesystem::remove_all(path);
          if (call.files != Files::saved) bench.samples.restore(call.input);
        },
        kNothing,
        [&] {
          std::filesystem::remove_all(path);
          install(path, call);
        });
  }
  EXPECT_GT(calls, 2U);
}

// Checks only the status: -2, or -1 from the part builder.
void expectNothingToOpen(const ExportCall& call, const Outcome& seen, const Outcome&) {
  EXPECT_EQ(seen.status, call.files == Files::tools ? -1 : -2);
  if (!setsACountToZero(call) && call.files != Files::edited) expectSame(seen.output, seen.before, "changed");
}

TEST(OddFiles, AFolderInPlaceOfAFileIsNotOpened) {
  const Bench bench;
  expectOf(
      bench, [](const std::string& path, const ExportCall&) { std::filesystem::create_directory(path); },
      expectNothingToOpen);
}

TEST(OddFiles, FilesOfZeroBytesAndOfOneHaveNoVersion) {
  const Bench bench;
  for (const std::size_t size : {0U, 1U})
    expectOf(
        bench,
        [&](const std::string& path, const ExportCall& call) {
          if (call.files != Files::saved) writeFile(path, Bytes().fill(size, 1));
        },
        [](const ExportCall& call, const Outcome& seen, const Outcome& good) {
          if (call.files == Files::saved) return expectSame(seen.output, good.output, "not saved");
          EXPECT_EQ(seen.status, call.files == Files::tools ? -1 : 1);
          // Flags that were not read are set to 0.
          if (setsACountToZero(call) || call.name == "GetSheetDriverFlags" || call.files == Files::edited) return;
          expectSame(seen.output, seen.before, "changed");
        });
}

TEST(OddFiles, APathOfAHundredThousandCharactersIsNotOpened) {
  Bench bench;
  for (const ExportCall& call : exportCalls()) {
    // This save ends the process, and special tools are not found by path.
    if (call.files == Files::none || call.files == Files::tools || call.name == "SaveTorvPart") continue;
    SCOPED_TRACE(call.title());
    const std::string path = bench.samples.path(call.input);
    for (const std::string& longPath : {path + std::string(100000, 'x'), std::string(100000, 'x')}) {
      bench.samples.move(call.input, longPath);
      const Outcome seen = bench.undisturbed(call);
      EXPECT_EQ(seen.status, -2);
      if (!setsACountToZero(call)) expectSame(seen.output, seen.before, "changed");
    }
    bench.samples.move(call.input, path);
  }
}

TEST(OddFiles, NamesOfSpecialToolsAndPartsMayHaveAHundredThousandCharacters) {
  const Bench bench;
  const Exports& e = bench.exports;
  const std::string name(100000, 'x');
  constexpr std::uint32_t kValues[9] = {};
  e.InitTorvPart(1, 2, 3, 4, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
  EXPECT_EQ(e.AddPatternToTorvPart(1, 2, 3, 4, kValues, 0, 0, 0, 0, 0, 0, name.c_str(), 0, 0, 0, 0), -1);
  const std::string sheet = bench.samples.path("sheet");
  EXPECT_EQ(e.UpdateSheetPartWONumber(sheet.c_str(), name.c_str(), nullptr, "W3"), 0);
  EXPECT_EQ(e.UpdateSheetPartWONumber(sheet.c_str(), "PLATE", name.c_str(), "W3"), 0);
  EXPECT_EQ(TempFolder::read(sheet), bench.samples.content("sheet"));
  char value[257] = "unchanged";
  EXPECT_EQ(e.GetOldPartInfo_v1(bench.samples.path("part").c_str(), name.c_str(), value), 1);
  EXPECT_EQ(e.ReplaceSheetSknPatListWithPartPatList(sheet.c_str(), name.c_str()), -2);
  EXPECT_STREQ(value, "unchanged");
}

TEST(OddFiles, APathIsUsedUnchanged) {
  Bench bench;
  std::vector<std::string> names = {"a b", "100%s%d%n", "-", "--help", "~", "$HOME", "a'b", ".hidden", "a;b", "{}"};
#if !defined(_WIN32)
  for (const char* name :
       {"a\nb", "\xFF\xFE", "\xC3\xBC", "a\"b", "*", "?", "a:b", "C:\\PARTS\\A.PRT", "a ", "\t", "|"})
    names.emplace_back(name);
#endif
  const TempFolder folder;
  for (const ExportCall& call : exportCalls()) {
    if (call.files == Files::none || call.files == Files::tools) continue;
    const Outcome good = bench.undisturbed(call);
    const std::string home = bench.samples.path(call.input);
    const auto works = [&](const std::string& path) {
      SCOPED_TRACE(call.title() + " of " + path);
      bench.samples.move(call.input, path);
      if (call.files != Files::saved) bench.samples.restore(call.input);
      const Outcome seen = bench.undisturbed(call);
      EXPECT_EQ(seen.status, good.status);
      // Only outputs that contain no path.
      if (call.allOrNothing || call.name == "SaveOldSheet" || call.files == Files::edited)
        expectSame(seen.output, good.output, "another output");
      EXPECT_TRUE(std::filesystem::is_regular_file(path));
      std::filesystem::remove(path);
      bench.samples.move(call.input, home);
    };
    for (const std::string& name : names) works(folder.path(name));
    works(folder.path() + "//./name");
    works(folder.path() + "/../" + std::filesystem::path(folder.path()).filename().string() + "/name");
    // An empty path, and one that ends with a separator like that of a folder.
    for (const std::string& path : {std::string(), home + "/"}) {
      SCOPED_TRACE(call.title() + " of " + path);
      bench.samples.move(call.input, path);
      const PreparedCall p = call.prepare(bench.exports, bench.samples);
      bench.samples.move(call.input, home);
      if (call.files != Files::saved) bench.samples.restore(call.input);
      const std::string before = p.answer();
      EXPECT_EQ(p.call(), -2);
      if (!setsACountToZero(call)) expectSame(p.answer(), before, "changed");
    }
  }
}

#if !defined(_WIN32)

TEST(OddFiles, CircularLinksAreNotOpened) {
  const Bench bench;
  expectOf(
      bench, [](const std::string& path, const ExportCall&) { std::filesystem::create_symlink(path, path); },
      expectNothingToOpen);
}

bool permissionsAreIgnored() { return ::geteuid() == 0; }

TEST(OddFiles, AFileWithoutPermissionIsNotOpened) {
  if (permissionsAreIgnored()) GTEST_SKIP() << "this user may open everything";
  const Bench bench;
  expectOf(
      bench,
      [&](const std::string& path, const ExportCall& call) {
        writeFile(path, call.files == Files::saved ? Bytes().i16(1) : bench.samples.content(call.input));
        ASSERT_EQ(::chmod(path.c_str(), 0), 0);
      },
      [](const ExportCall& call, const Outcome& seen, const Outcome&) {
        EXPECT_EQ(seen.status, call.files == Files::tools ? -1 : -2);
      });
}

TEST(OddFiles, AReadOnlyFileIsLoadedAndNeverChanged) {
  if (permissionsAreIgnored()) GTEST_SKIP() << "this user may write everything";
  const Bench bench;
  expectOf(
      bench,
      [&](const std::string& path, const ExportCall& call) {
        writeFile(path, call.files == Files::saved ? Bytes().i16(1) : bench.samples.content(call.input));
        ASSERT_EQ(::chmod(path.c_str(), 0444), 0);
      },
      [](const ExportCall& call, const Outcome& seen, const Outcome& good) {
        EXPECT_EQ(seen.status, call.files == Files::saved ? -2 : good.status);
        if (call.files == Files::saved) return expectSame(seen.output, std::string("file: \1\0", 8), "changed");
        expectSame(seen.output, call.files == Files::edited ? seen.before : good.output, "another output");
      });
}

// The device delivers endless zeros, the first two of which are no valid version, and stores nothing.
TEST(OddFiles, ADeviceIsReadUpToItsVersionAndCannotBeSavedTo) {
  if (::access("/dev/full", R_OK | W_OK) != 0)
    GTEST_SKIP() << "this system has no such device, or this user may not use it";
  const Bench bench;
  expectOf(
      bench, [](const std::string& path, const ExportCall&) { std::filesystem::create_symlink("/dev/full", path); },
      [](const ExportCall& call, const Outcome& seen, const Outcome&) {
        const bool isGroup = call.input == "group";
        EXPECT_EQ(seen.status, call.files == Files::saved ? -2 : isGroup ? 1 : -1);
        std::size_t bytes = 0;
        for (const std::size_t one : seen.read) bytes += one;
        EXPECT_LT(bytes, 1U << 20U);
      });
}

// While it exists, no file can grow beyond the limit, as on a full disk.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(std::size_t bytes) : before_(std::signal(SIGXFSZ, SIG_IGN)) {
    (void)::getrlimit(RLIMIT_FSIZE, &old_);
    rlimit lower = old_;
    lower.rlim_cur = bytes;
    (void)::setrlimit(RLIMIT_FSIZE, &lower);
  }
  ~FileSizeLimit() {
    (void)::setrlimit(RLIMIT_FSIZE, &old_);
    (void)std::signal(SIGXFSZ, before_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  void (*before_)(int);
  rlimit old_{};
};

void expectFullDiskToBeReported(const Bench& bench, std::size_t limit, const IoFault* fault) {
  std::optional<FileSizeLimit> full;
  expectOf(
      bench,
      [&](const std::string& path, const ExportCall& call) {
        if (call.files == Files::edited) writeFile(path, bench.samples.content(call.input));
        full.emplace(limit);
      },
      [&](const ExportCall& call, const Outcome& seen, const Outcome& good) {
        full.reset();
        EXPECT_EQ(seen.status, call.files == Files::edited ? 0 : -2);
        expectFirstBytes(seen, good, limit);
      },
      fault, [](const ExportCall& call) { return writes(call) && call.form != "fresh, in the oldest layout"; });
}

TEST(OddFiles, AFullDiskIsReportedAndLeavesWhatWasStored) {
  const Bench bench(15000);
  for (const std::size_t limit : {1U, 100001U, 1U << 20U, 1500000U}) expectFullDiskToBeReported(bench, limit, nullptr);
}

// The host keeps the last bytes until the file is closed.
TEST(OddFiles, AFullDiskIsReportedEvenIfTheHostBuffersWrites) {
  const Bench bench;
  const IoFault buffered{IoCall::buffer, 0, true, EINVAL, 0};
  const IoFault bufferedAlone{IoCall::buffer, kNever, false, EINVAL, 0};
  for (const std::size_t limit : {0U, 1U, 100U, 4096U, 5000U}) {
    expectFullDiskToBeReported(bench, limit, &buffered);
    expectFullDiskToBeReported(bench, limit, &bufferedAlone);
  }
}

// Writes to a pipe until everything is written, or until the reader closes it.
class PipeWriter {
 public:
  PipeWriter(const std::string& path, std::function<bool(int)> write)
      : before_(std::signal(SIGPIPE, SIG_IGN)), thread_([path, write = std::move(write)] {
          const int pipe = ::open(path.c_str(), O_WRONLY);
          if (pipe < 0) return;
          while (write(pipe)) {
          }
          (void)::close(pipe);
        }) {}
  ~PipeWriter() {
    thread_.join();
    (void)std::signal(SIGPIPE, before_);
  }
  PipeWriter(const PipeWriter&) = delete;
  PipeWriter& operator=(const PipeWriter&) = delete;

 private:
  void (*before_)(int);
  std::thread thread_;
};

bool isLoadedOnce(const ExportCall& call) { return call.files == Files::loaded && call.notOpened.size() == 1; }

TEST(OddFiles, APipeIsReadLikeAFileWithTheSameBytes) {
  for (const std::size_t many : {0U, 4000U}) {
    const Bench bench(many);
    for (const double share : {0.0, 0.1, 0.5, 0.9, 1.0}) {
      std::unique_ptr<PipeWriter> writer;
      std::optional<Outcome> cut;
      expectOf(
          bench,
          [&](const std::string& path, const ExportCall& call) {
            const Bytes& complete = bench.samples.content(call.input);
            const Bytes content = complete.cut(static_cast<std::size_t>(static_cast<double>(complete.size()) * share));
            cut = bench.withInput(call, content);
            std::filesystem::remove(path);
            ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
            writer = std::make_unique<PipeWriter>(path, [content, done = std::size_t{0}](int pipe) mutable {
              const auto wrote = ::write(pipe, content.span().data() + done, content.size() - done);
              if (wrote > 0) done += static_cast<std::size_t>(wrote);
              return wrote > 0 && done < content.size();
            });
          },
          [&](const ExportCall&, const Outcome& seen, const Outcome&) {
            writer.reset();
            EXPECT_EQ(seen.status, cut->status);
            expectSame(seen.output, cut->output, "another output than from a file");
            cut.reset();
          },
          nullptr, isLoadedOnce);
    }
  }
}

// The writer offers 16 MiB in place of an endless stream.
TEST(OddFiles, AnEndlessPipeTakesMemoryOnlyForWhatItDelivered) {
  const Bench bench;
  for (const unsigned byte : {0x00U, 0x01U, 0x7FU, 0xFFU}) {
    const std::vector<std::uint8_t> block(1U << 16U, static_cast<std::uint8_t>(byte));
    for (const ExportCall& call : exportCalls()) {
      if (!isLoadedOnce(call)) continue;
      SCOPED_TRACE(call.title() + " from a pipe of " + std::to_string(byte));
      const PreparedCall p = call.prepare(bench.exports, bench.samples);
      const std::string path = bench.samples.path(call.input);
      std::filesystem::remove(path);
      ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
      std::size_t delivered = 0, peak = 0;
      {
        const PipeWriter writer(path, [&delivered, &block, left = 256](int pipe) mutable {
          const std::uint8_t version[2] = {180, 0};
          const auto wrote =
              delivered == 0 ? ::write(pipe, version, sizeof version) : ::write(pipe, block.data(), block.size());
          if (wrote > 0) delivered += static_cast<std::size_t>(wrote);
          return wrote > 0 && --left > 0;
        });
        const AllocationMeter meter;
        const std::int64_t status = p.call();
        EXPECT_TRUE(status == 0 || status == 1 || status == -1) << status;
        peak = meter.peak();
      }
      EXPECT_LE(peak, 16 * delivered + (1U << 21U));
      bench.samples.restore(call.input);
    }
  }
}

#endif

}  // namespace
