// Materials, machines, tool inventories and macros with random content at every version, through their
// files: the mirror of a file is perfect, and any cut of it is harmless.
// The short form runs in every build; OLDTORVIO_LONG_TESTS=1 takes a hundred times the content.
#include <gtest/gtest.h>

#include <memory>

#include "src/file_records.h"
#include "tests/support/files.h"
#include "tests/support/long_tests.h"
#include "tests/support/random_records.h"
#include "tests/support/stored_forms/versions.h"
#include "torvio/explain/file_map.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;

// What the properties ask of a kind of file:
//   versions()               those whose files come back as they were
//   fill(random, r, v)       random content that a load at version v leaves as it is
//   save(path, r, v), load(path, r)
//   stored(r, v)             the bytes that a save stores after the version word, without a file
template <frame::FileKind kKind>
struct KindOf {
  using Record = typename FileRecord<kKind>::Record;
  static void fill(RandomRecords& random, Record& r, int version) { random.record(r, version); }
  static std::int64_t save(const std::string& path, Record& r, int version) {
    return FileRecord<kKind>::save(path.c_str(), r, version);
  }
  static std::int64_t load(const std::string& path, Record& r) { return FileRecord<kKind>::load(path.c_str(), r); }
};

struct MaterialKind : KindOf<frame::FileKind::material> {
  static bool isShort(int version) { return version == 52 || version == 60; }
  static std::vector<int> versions() { return joined({52, 60}, longMaterialVersions()); }
  static void fill(RandomRecords& random, OldMaterial& m, int version) {
    static constexpr int kTables[] = {52, 60, 79, 80, 499};
    // Before a material the table has a version of its own.
    random.record(m, version, [&] { return random.flip() ? version : kTables[random.upTo(4)]; });
  }
  static Bytes stored(OldMaterial& m, int version) {
    return written([&](auto& s) {
      return WriteParamTable(s, m.params) && (isShort(version) || WriteOldMaterialBody(s, version, m));
    });
  }
};

struct MachineKind : KindOf<frame::FileKind::machine> {
  static std::vector<int> versions() { return allVersions(); }
  static Bytes stored(OldMachine& m, int version) {
    return written([&](auto& s) { return WriteOldMachine(s, version, nullptr, m, false); });
  }
};

struct InventoryKind : KindOf<frame::FileKind::toolInventory> {
  static std::vector<int> versions() { return inventoryVersions(); }
  static Bytes stored(OldToolInventory& v, int version) {
    return written([&](auto& s) { return WriteToolInventory(s, version, v); });
  }
};

struct MacroKind : KindOf<frame::FileKind::macro> {
  static std::vector<int> versions() { return macroVersions(); }
  static Bytes stored(OldMacro& m, int version) {
    return written([&](auto& s) { return WriteMacro(s, version, m); });
  }
};

// ---- the mirror ----------------------------------------------------------------------------------

template <class Kind>
void expectPerfectMirror(int rounds) {
  if (isLongRun()) rounds *= 100;
  for (int round = 0; round < rounds; ++round)
    for (const int version : Kind::versions()) {
      // New files: to save over one takes longer than everything else here.
      const TempFolder folder;
      const std::string first = folder.path("first"), second = folder.path("second");
      RandomRecords random(static_cast<std::uint32_t>(round * 1000 + version));
      const auto made = std::make_unique<typename Kind::Record>(), loaded = std::make_unique<typename Kind::Record>();
      Kind::fill(random, *made, version);
      ASSERT_EQ(Kind::save(first, *made, version), 0) << version;
      ASSERT_EQ(Kind::load(first, *loaded), 0) << version;
      ASSERT_EQ(Kind::save(second, *loaded, version), 0) << version;
      const Bytes bytes = TempFolder::read(first);
      ASSERT_EQ(bytes.span()[0], static_cast<std::byte>(version));
      ASSERT_TRUE(TempFolder::read(second) == bytes) << version;
      // What follows relies on the record being stored alike without a file.
      if (round == 0) {
        const Bytes afterTheWord = Kind::stored(*made, version);
        ASSERT_TRUE(Bytes::of(bytes.span().last(afterTheWord.size())) == afterTheWord) << version;
      }
    }
}

TEST(KindsRoundTrip, MaterialFilesAtEveryVersion) { expectPerfectMirror<MaterialKind>(2); }
TEST(KindsRoundTrip, MachineFilesAtEveryVersion) { expectPerfectMirror<MachineKind>(1); }
TEST(KindsRoundTrip, InventoryFilesAtEveryVersion) { expectPerfectMirror<InventoryKind>(4); }
TEST(KindsRoundTrip, MacroFilesAtEveryVersion) { expectPerfectMirror<MacroKind>(4); }

// The writer stores them at every version and always last.
TEST(KindsRoundTrip, MachineFilesBelowVersion152ChangeOnlyInTheirLateWords) {
  for (int version = 52; version < 152; ++version) {
    const TempFolder folder;
    const std::string first = folder.path("first"), second = folder.path("second");
    RandomRecords random(static_cast<std::uint32_t>(version));
    const auto made = std::make_unique<OldMachine>(), loaded = std::make_unique<OldMachine>();
    random.record(*made, 180);
    random.bits(made->machineWord124, made->machineWord128, made->machineWord132, made->lateByteC);
    made->lateByteC |= 1;
    ASSERT_EQ(SaveMachine(first.c_str(), *made, version), 0);
    ASSERT_EQ(LoadOldMachine(first.c_str(), loaded.get()), 0);
    ASSERT_EQ(SaveMachine(second.c_str(), *loaded, version), 0);
    const Bytes before = TempFolder::read(first), after = TempFolder::read(second);
    ASSERT_EQ(before.size(), after.size());
    Bytes tail;
    if (version < 151) tail.u32(0).f32(1.5F).u32(0).f32(1.5F).u32(0).i32(1).i32(1).u32(0).u32(0);
    tail.u8(0);
    const std::size_t kept = before.size() - tail.size();
    ASSERT_TRUE(after == before.cut(kept).add(tail)) << version;
    ASSERT_FALSE(after == before) << version;
  }
}

// Versions 500 to 502 are read and never stored: what they hold comes back from a table of version 60.
TEST(KindsRoundTrip, TablesOfTheOldestLayoutsKeepTheirContentInALaterOne) {
  const struct {
    int version;
    std::size_t afterTheWord;
  } forms[] = {{500, 16 * 4 - 9 * 2 + 21}, {501, 35 * 10 + 21}, {502, 60 * 10 + 21}};
  const TempFolder folder;
  for (const auto& form : forms)
    for (std::uint32_t seed = 0; seed < (isLongRun() ? 1000U : 5U); ++seed) {
      RandomRecords random(seed);
      Bytes file = Bytes().i16(form.version);
      for (std::size_t i = 0; i < form.afterTheWord; ++i) file.u8(static_cast<std::uint8_t>(random.upTo(127)));
      const auto first = std::make_unique<OldMaterial>(), second = std::make_unique<OldMaterial>();
      ASSERT_EQ(LoadOldMaterial(folder.write("old", file).c_str(), first.get()), 0);
      ASSERT_EQ(LoadOldMaterial(folder.write("short", file.cut(file.size() - 20)).c_str(), second.get()), 0)
          << "the first byte of the name is enough";
      ASSERT_EQ(LoadOldMaterial(folder.write("short", file.cut(file.size() - 21)).c_str(), second.get()), 1)
          << "the size of the layout is not what this test takes it for";
      *second = OldMaterial();
      first->params.version = 60;
      first->params.nameLength = 256;
      ASSERT_EQ(SaveMaterial(folder.path("new").c_str(), *first, 60), 0);
      ASSERT_EQ(LoadOldMaterial(folder.path("new").c_str(), second.get()), 0);
      ASSERT_EQ(std::memcmp(&first->params.intParams, &second->params.intParams, sizeof first->params.intParams), 0);
      ASSERT_EQ(std::memcmp(&first->params.realParams, &second->params.realParams, sizeof first->params.realParams), 0);
      ASSERT_EQ(std::string_view(first->params.name, 256), std::string_view(second->params.name, 256));
      ASSERT_EQ(first->name, second->name);
    }
}

// ---- cuts ----------------------------------------------------------------------------------------

// Loads the first n bytes of the file for n = offset, offset + step and so on, each over what the
// load before left, and after each the complete file over that.
template <class Kind>
void expectHarmlessCuts(int version, int mostElements, std::size_t offset, std::size_t step) {
  const TempFolder folder;
  const std::string whole = folder.path("whole"), cut = folder.path("cut");
  RandomRecords random(static_cast<std::uint32_t>(version), mostElements);
  const auto record = std::make_unique<typename Kind::Record>();
  Kind::fill(random, *record, version);
  ASSERT_EQ(Kind::save(whole, *record, version), 0);
  const auto fresh = std::make_unique<typename Kind::Record>();
  ASSERT_EQ(Kind::load(whole, *fresh), 0);
  const Bytes expected = Kind::stored(*fresh, version);
  std::filesystem::copy_file(whole, cut);
  const auto size = static_cast<std::size_t>(std::filesystem::file_size(whole));
  ASSERT_GT(size, 2U);
  for (std::size_t n = size - 1 - offset; n > 0; n -= std::min(step, n)) {
    std::filesystem::resize_file(cut, n);
    const std::int64_t status = Kind::load(cut, *record);
    ASSERT_TRUE(status == 0 || status == 1) << status << " version " << version << " cut at " << n;
    (void)Kind::stored(*record, version);  // whatever the record holds now is there to be read
    ASSERT_EQ(Kind::load(whole, *record), 0) << "version " << version << " after a cut at " << n;
    ASSERT_TRUE(Kind::stored(*record, version) == expected) << "version " << version << " after a cut at " << n;
  }
}

template <class Kind>
void expectHarmlessCutsAtEveryVersion() {
  const std::vector<int> versions = Kind::versions();
  // Every byte where there is little content, every seventh of a large one, some at every version.
  expectHarmlessCuts<Kind>(versions.front(), 0, 0, 1);
  expectHarmlessCuts<Kind>(versions.back(), 0, 0, isLongRun() ? 1 : 3);
  expectHarmlessCuts<Kind>(versions.back(), 3, 0, isLongRun() ? 1 : 7);
  for (std::size_t i = 0; i < versions.size(); ++i)
    expectHarmlessCuts<Kind>(versions[i], 2, i % 97, isLongRun() ? 7 : 997);
}

TEST(KindsCut, MaterialFilesReturnZeroOrOneAndTheRecordLoadsAgain) { expectHarmlessCutsAtEveryVersion<MaterialKind>(); }
TEST(KindsCut, MachineFilesReturnZeroOrOneAndTheRecordLoadsAgain) { expectHarmlessCutsAtEveryVersion<MachineKind>(); }
TEST(KindsCut, InventoryFilesReturnZeroOrOneAndTheRecordLoadsAgain) {
  expectHarmlessCutsAtEveryVersion<InventoryKind>();
}
TEST(KindsCut, MacroFilesReturnZeroOrOneAndTheRecordLoadsAgain) { expectHarmlessCutsAtEveryVersion<MacroKind>(); }

// ---- version words -------------------------------------------------------------------------------

TEST(KindsRoundTrip, AllVersionWordsReturnWhatTheListsSay) {
  const auto set = [](const std::vector<int>& versions) {
    std::vector<bool> all(65536);
    for (const int v : versions) all[static_cast<std::size_t>(v)] = true;
    return all;
  };
  std::vector<int> materials = longMaterialVersions();
  materials.insert(materials.end(), {52, 60, 500, 501, 502});
  const std::vector<bool> isMaterial = set(materials), isMachine = set(allVersions()),
                          isInventory = set(inventoryVersions()), isMacro = set(macroVersions());
  const auto material = std::make_unique<OldMaterial>();
  const auto machine = std::make_unique<OldMachine>();
  OldToolInventory inventory;
  OldMacro macro;
  MachineInformation information;
  char text[4][257];
  float figure[12];
  std::uint32_t count = 0;

  const TempFolder folder;
  const std::string path = folder.write("word", Bytes().zeros(2));
  const char* const p = path.c_str();
  std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
  for (unsigned word = 0; word < 65536; ++word) {
    // After an accepted word nothing is left to read.
    file.seekp(0).put(static_cast<char>(word & 0xFFU)).put(static_cast<char>(word >> 8U)).flush();
    const auto asSigned = static_cast<std::int16_t>(word);
    ASSERT_EQ(LoadOldMaterial(p, material.get()), isMaterial[word] ? 1 : -1) << word;
    ASSERT_EQ(material->version, word);
    ASSERT_EQ(LoadOldMachine(p, machine.get()), isMachine[word] ? 1 : -1) << word;
    ASSERT_EQ(machine->version, asSigned);
    ASSERT_EQ(LoadOldToolInventory(p, &inventory), isInventory[word] ? 1 : -1) << word;
    ASSERT_EQ(inventory.version, asSigned);
    ASSERT_EQ(LoadOldMacro(p, &macro), isMacro[word] ? 1 : -1) << word;
    ASSERT_EQ(macro.version, asSigned);
    // These do not report a fault after the word.
    ASSERT_EQ(LoadOldToolInventoryForCount(p, &count), isInventory[word] ? 0 : -1) << word;
    ASSERT_EQ(LoadOldMachineInformation(p, &information), isInventory[word] ? 0 : -1) << word;
    ASSERT_EQ(GetOldVLMQMachineName(p, text[0], &count, text[1], text[2], text[3]), isInventory[word] ? 0 : -1) << word;
    ASSERT_EQ(GetMachineDatasForQD(p, &figure[0], &figure[1], &figure[2], &figure[3], &figure[4], &figure[5],
                                   &figure[6], &figure[7], &figure[8], &figure[9], &figure[10], &figure[11]),
              isMachine[word] ? 1 : -1)
        << word;
  }
}

// The three flags are numbers of their own, and a file may end after each.
TEST(KindsCut, MachineFlagsThatArrivedBeforeAForgivenCutStay) {
  const TempFolder folder;
  const std::string path = folder.path("machine");
  const auto machine = std::make_unique<OldMachine>();
  machine->textWidth = 256;
  std::memcpy(machine->flagTriple, "\x07\x08\x09", 3);
  ASSERT_EQ(SaveMachine(path.c_str(), *machine, 180), 0);
  std::uint64_t at = 0;
  (void)explain::mapFile(path.c_str(), explain::FileKind::machine, [&](const explain::MapLine& line) {
    if (line.path.starts_with("flagTriple") && at == 0) at = line.offset;
  });
  ASSERT_GT(at, 0U);
  for (std::uint8_t arrived = 0; arrived <= 3; ++arrived) {
    std::filesystem::resize_file(path, at + arrived);
    const auto loaded = std::make_unique<OldMachine>();
    EXPECT_EQ(LoadOldMachine(path.c_str(), loaded.get()), 0);
    for (std::uint8_t i = 0; i < 3; ++i) EXPECT_EQ(loaded->flagTriple[i], i < arrived ? 7 + i : 0) << int{arrived};
    ASSERT_EQ(SaveMachine(path.c_str(), *machine, 180), 0);
  }
}

}  // namespace
