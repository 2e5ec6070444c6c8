// What files are judged to be: verdicts, extensions, kinds by content, damage, foreign files.
#include "torvio/archive/verdict.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/kind_files.h"
#include "tests/support/special_tool_files.h"
#include "tests/support/stored_forms/parts.h"
#include "tests/torvio/corpus.h"
#include "torvio/archive/plausibility.h"

namespace {

using namespace testing_support;
using namespace oldtorvio::archive;
using oldtorvio::explain::FileKind;
namespace frame = oldtorvio::frame;

Judgement judged(const Bytes& bytes, std::string_view path = "") { return judge(path, bytes.span(), {}); }

std::string textOf(const Judgement& judgement) {
  return std::string(nameOf(judgement.verdict)) + ", " +
         (judgement.kind ? std::string(frame::infoOf(*judgement.kind).name) : "no kind");
}

// Whatever the bytes are.
void expectConsistent(const Judgement& judgement, std::size_t size) {
  EXPECT_EQ(judgement.kind.has_value(), judgement.verdict != Verdict::foreign);
  EXPECT_EQ(judgement.report.status == 0,
            judgement.verdict == Verdict::sound || judgement.verdict == Verdict::soundWithLosses);
  EXPECT_EQ(judgement.report.size, size);
  EXPECT_LE(judgement.report.walked, size);
}

TEST(Verdict, HasAName) {
  EXPECT_EQ(nameOf(Verdict::sound), "sound");
  EXPECT_EQ(nameOf(Verdict::soundWithLosses), "sound with losses");
  EXPECT_EQ(nameOf(Verdict::damaged), "damaged");
  EXPECT_EQ(nameOf(Verdict::refusedVersion), "refused version");
  EXPECT_EQ(nameOf(Verdict::foreign), "foreign");
  EXPECT_EQ(nameOf(Verdict::unreadable), "unreadable");
}

// Their fields hold random bits, so that only their structure says what they are.
TEST(Verdict, SmallFilesOfEveryKindAreRecognisedAtEveryVersion) {
  for (const Kind& kind : kinds())
    for (int version = 52; version <= 180; ++version) {
      const bool isTested = std::find(kind.versions.begin(), kind.versions.end(), version) != kind.versions.end();
      if (!isTested && (kind.kind == FileKind::sheet || !frame::infoOf(kind.kind).accepts(version))) continue;
      const Bytes file = kind.file(version);
      const Judgement judgement = judged(file);
      EXPECT_EQ(judgement.kind, kind.kind) << kind.name << version << ": " << textOf(judgement);
      // A save of a machine below version 152 stores words after the last field of a load.
      const bool hasMore = kind.kind == FileKind::machine && version < 152;
      EXPECT_EQ(judgement.verdict, hasMore ? Verdict::soundWithLosses : Verdict::sound)
          << kind.name << version << ": " << textOf(judgement);
      expectConsistent(judgement, file.size());
    }
}

TEST(Verdict, MaterialsThatAreATableOfOldLayoutsAreRecognised) {
  Bytes file = Bytes().i16(501);
  for (int i = 0; i < 35; ++i) file.i16(i % 3);
  for (int i = 0; i < 35; ++i) file.f64(0.25 * i);
  EXPECT_EQ(textOf(judged(file.text(21, "STEEL"))), "sound, material");
}

// Group parts and sheets of such versions load, though no version of the suite is known to have written them.
TEST(Verdict, VersionsAboveThoseOfTheSuiteNeedMoreEvidence) {
  for (std::uint32_t i = 1; i < 200; i += 8) {
    MadeFile made = madeFile(3, i);
    ASSERT_EQ(made.kind, FileKind::groupPart);
    if (made.isDamaged()) continue;
    std::vector<std::byte> bytes(made.bytes.span().begin(), made.bytes.span().end());
    bytes[0] = std::byte{200};
    const Judgement judgement = judge("", bytes, {});
    EXPECT_TRUE(!judgement.kind || judgement.kind == FileKind::groupPart) << textOf(judgement);
  }
  EXPECT_EQ(judged(Bytes().i16(200).i32(0).i32(256).zeros(256)).verdict, Verdict::foreign);
}

TEST(Verdict, LoadOfTheOldestPartsNeverSucceeds) {
  std::size_t oldest = 0;
  for (std::uint32_t i = 0; oldest < 10; i += 8) {
    const MadeFile made = madeFile(4, i);
    if (made.isDamaged() || made.version > 3) continue;
    ++oldest;
    // Which does not mean that they are damaged.
    EXPECT_EQ(textOf(judged(made.bytes)), "refused version, part") << i;
    JudgeOptions options;
    options.kind = FileKind::part;
    const Bytes cut = made.bytes.cut(40);
    EXPECT_EQ(textOf(judge("", cut.span(), options)), "damaged, part") << i;
  }
}

TEST(Verdict, BytesAfterTheLastFieldAndToleratedFaultsAreLosses) {
  EXPECT_EQ(textOf(judged(specialToolFile(60, {3}).zeros(7))), "sound with losses, special-tool");
  EXPECT_EQ(textOf(judged(storedPartFile(80).zeros(37))), "sound with losses, part");
  const Bytes machine = machineFile(152);
  const Judgement cut = judged(machine.cut(machine.size() - 1));
  EXPECT_EQ(textOf(cut), "sound with losses, machine");
  EXPECT_TRUE(cut.report.tolerated);
}

TEST(Verdict, ExtensionDecidesTheKind) {
  const Bytes part = storedPartFile(60), tool = specialToolFile(60, {3});
  EXPECT_EQ(textOf(judged(part)), "sound, part");
  EXPECT_EQ(textOf(judged(part, "x.spt.bak")), "sound, part");
  for (const char* path : {"a.spt", "C:\\tools\\A.SpT", ".spt"}) {
    EXPECT_EQ(textOf(judged(part, path)), "damaged, special-tool") << path;
    EXPECT_EQ(textOf(judged(tool, path)), "sound, special-tool") << path;
  }
}

TEST(Verdict, ExtensionsCanBeConfigured) {
  const JudgeOptions options{
      std::nullopt,
      {{".nst", FileKind::sheet}, {"mat", FileKind::material}, {".SPT", FileKind::macro}, {"", FileKind::part}}};
  const Bytes bytes = Bytes().i16(60).zeros(9);
  const auto kindOf = [&](const char* path) { return judge(path, bytes.span(), options).kind; };
  EXPECT_EQ(kindOf("a.NST"), FileKind::sheet);
  EXPECT_EQ(kindOf("a.Mat"), FileKind::material);
  EXPECT_EQ(kindOf("amat"), std::nullopt) << "no extension";
  EXPECT_EQ(kindOf("a.spt"), FileKind::macro) << "before the built-in one";
  EXPECT_EQ(kindOf("a"), std::nullopt) << "an empty extension names nothing";
}

TEST(Verdict, GivenKindIsThatOfEveryFile) {
  JudgeOptions options;
  options.kind = FileKind::sheet;
  EXPECT_EQ(textOf(judge("a.spt", sheetFile(180).span(), options)), "sound, sheet");
  EXPECT_EQ(textOf(judge("", specialToolFile(60, {3}).span(), options)), "damaged, sheet");
  EXPECT_EQ(textOf(judge("", {}, options)), "damaged, sheet");
}

TEST(Verdict, NamedKindMayRefuseTheVersion) {
  const Judgement judgement = judged(Bytes().i16(50).zeros(9), "a.spt");
  EXPECT_EQ(textOf(judgement), "refused version, special-tool");
  EXPECT_EQ(judgement.report.status, frame::kWrongVersion);
  EXPECT_EQ(judgement.report.version, 50);
  JudgeOptions options;
  options.kind = FileKind::groupPart;
  EXPECT_EQ(textOf(judge("", storedPartFile(80).span(), options)), "refused version, group-part");
  EXPECT_EQ(textOf(judged(Bytes().i16(50).zeros(9))), "foreign, no kind") << "unless a name says what it is";
}

TEST(Verdict, EmptyAndTinyFilesAreForeignUnlessTheirNameSaysMore) {
  for (const Bytes& bytes : {Bytes(), Bytes().u8(60), Bytes().i16(60), Bytes().i16(152).zeros(3), Bytes().i16(3)}) {
    const Judgement judgement = judged(bytes);
    EXPECT_EQ(judgement.verdict, Verdict::foreign) << bytes;
    EXPECT_EQ(judgement.report.version.has_value(), bytes.size() >= 2);
    expectConsistent(judgement, bytes.size());
  }
  EXPECT_EQ(textOf(judged(Bytes(), "a.spt")), "damaged, special-tool");
  EXPECT_EQ(textOf(judged(Bytes().u8(60), "a.spt")), "damaged, special-tool");
}

TEST(Verdict, ZerosAreForeignAtAnyLengthAndVersion) {
  for (const int version : {0, 1, 2, 3, 5, 52, 60, 100, 152, 180, 500, 1000})
    for (const std::size_t size : {100U, 1000U, 5000U, 200000U})
      EXPECT_EQ(judged(Bytes().i16(version).zeros(size)).verdict, Verdict::foreign) << version << ' ' << size;
}

// Nothing but zeros, but it ends where the last list of that kind ends: a file without anything in its lists.
TEST(Verdict, FileWithoutAnElementIsRecognisedByItsEnd) {
  EXPECT_EQ(textOf(judged(Bytes().i16(60).zeros(172))), "sound, tool-inventory");
  EXPECT_EQ(judged(Bytes().i16(60).zeros(171)).verdict, Verdict::foreign);
  EXPECT_EQ(judged(Bytes().i16(60).zeros(250)).verdict, Verdict::foreign);
}

// A part without a name has next to nothing in its first bytes, and then cuts in these are foreign.
TEST(Verdict, CutPartKeepsItsKindFrom256BytesOnUnlessNothingIsThere) {
  int parts = 0, cuts = 0, foreign = 0;
  for (std::uint32_t i = 0; i < 160; i += 8) {
    const MadeFile made = madeFile(5, i);
    ASSERT_EQ(made.kind, FileKind::part);
    if (made.isDamaged() || made.version < 52) continue;
    ++parts;
    for (std::size_t size = 256; size < made.bytes.size(); size += made.bytes.size() / 20) {
      const Judgement judgement = judged(made.bytes.cut(size));
      ++cuts;
      foreign += judgement.kind ? 0 : 1;
      if (!judgement.kind) continue;
      EXPECT_EQ(judgement.kind, FileKind::part) << i << ", version " << made.version << ", " << size;
    }
  }
  EXPECT_GT(parts, 8);
  EXPECT_LE(foreign * 50, cuts);
}

// Every length of a file of each kind: the verdict is defined, and no other kind is called sound.
TEST(Verdict, EveryLengthOfAFileHasAVerdict) {
  for (const Kind& kind : kinds()) {
    const Bytes file = kind.file(kind.versions.back());
    const std::size_t step = file.size() / 400 + 1;
    for (std::size_t size = 0; size < file.size(); size += step) {
      const Judgement judgement = judged(file.cut(size));
      expectConsistent(judgement, size);
      EXPECT_TRUE(judgement.kind == kind.kind || judgement.verdict != Verdict::sound) << kind.name << size;
    }
  }
}

TEST(Verdict, HostileBytesHaveAVerdict) {
  RandomRecords random(12);
  for (const Kind& kind : kinds()) {
    const Bytes file = kind.file(kind.versions.back());
    for (int n = 0; n < 300; ++n) {
      std::vector<std::byte> bytes(file.span().begin(), file.span().end());
      for (int i = random.upTo(20); i >= 0; --i) {
        // Also whole words, which make extreme counts.
        const auto at = static_cast<std::size_t>(random.upTo(static_cast<int>(bytes.size()) - 5));
        const bool isWord = random.flip();
        const auto value = static_cast<std::byte>(random.flip() ? 0xFF : random.upTo(255));
        std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), isWord ? 4 : 1, value);
        if (isWord && random.flip()) bytes[at + 3] = std::byte{0x7F};
      }
      bytes.resize(static_cast<std::size_t>(random.upTo(static_cast<int>(bytes.size()))));
      expectConsistent(judge("", bytes, {}), bytes.size());
    }
  }
}

TEST(Verdict, KindsOfPlausibleFilesAreRightAndForeignFilesHaveNone) {
  constexpr std::uint32_t kFiles = 1000, kForeign = 1200;
  std::size_t sound = 0, damaged = 0, wrongOfSound = 0, wrongOfDamaged = 0, wrongCalledSound = 0;
  std::size_t intact = 0, lostOfIntact = 0, ours = 0, tables = 0, oursOfTables = 0;
  for (std::uint32_t i = 0; i < kFiles; ++i) {
    const MadeFile made = madeFile(2, i);
    const Judgement judgement = judged(made.bytes);
    expectConsistent(judgement, made.bytes.size());
    ++(made.isDamaged() ? damaged : sound);
    // Where damage leaves nothing to go by, a file is called foreign.
    const bool isLost = made.isDamaged() && !judgement.kind;
    if (made.isDamaged() && made.intact >= 256) {
      ++intact;
      lostOfIntact += isLost ? 1U : 0U;
    }
    if (judgement.kind == made.kind || isLost) continue;
    ++(made.isDamaged() ? wrongOfDamaged : wrongOfSound);
    wrongCalledSound += judgement.report.status == 0 ? 1U : 0U;
  }
  std::string calledOurs;
  for (std::uint32_t i = 0; i < kForeign; ++i) {
    const Judgement judgement = judged(foreignFile(2, i));
    // Small numbers after one of our versions may as well be the counts of one of our files.
    const bool isTable = isTableOfNumbers(i);
    tables += isTable ? 1U : 0U;
    if (judgement.verdict == Verdict::foreign) continue;
    ++(isTable ? oursOfTables : ours);
    calledOurs += " " + std::to_string(i) + " (" + textOf(judgement) + ")";
  }
  ASSERT_GT(sound, kFiles / 2);
  ASSERT_GT(damaged, kFiles / 4);
  ASSERT_GT(intact, kFiles / 8);
  EXPECT_LE(wrongOfSound * 1000, sound * 5);
  EXPECT_LE(wrongOfDamaged * 100, damaged * 2);
  EXPECT_EQ(wrongCalledSound, 0U);
  EXPECT_LE(lostOfIntact * 100, intact * 2);
  EXPECT_LE(ours * 1000, kForeign) << calledOurs;
  ASSERT_GT(tables, kForeign / 20);
  EXPECT_LE(oursOfTables * 100, tables * 5) << calledOurs;
}

}  // namespace
