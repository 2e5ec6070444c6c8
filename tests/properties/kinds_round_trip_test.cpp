// Materials, machines, tool inventories and macros with random content at every version, through their
// files: the mirror of a file is perfect, any cut of it is harmless, and a record takes it over any other.
// The short form runs in every build; OLDTORVIO_LONG_TESTS=1 takes a hundred times the content.
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <memory>

#include "src/file_records.h"
#include "tests/support/files.h"
#include "tests/support/random_records.h"
#include "tests/support/stored_forms/versions.h"
#include "torvio/explain/file_map.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;

bool isLong() { return std::getenv("OLDTORVIO_LONG_TESTS") != nullptr; }

// What the properties ask of a kind of file:
//   versions()               those whose files come back as they were
//   reloadVersions()         the same, one at least on each side of every gate
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
  static std::vector<int> reloadVersions() { return versions(); }
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
  static std::vector<int> reloadVersions() {
    return {52,  59,  60,  61,  62,  71,  80,  90,  92,  100, 101, 110, 111, 112, 120, 121, 130,
            141, 150, 151, 152, 153, 154, 155, 156, 157, 158, 159, 160, 161, 162, 170, 180};
  }
  static Bytes stored(OldMachine& m, int version) {
    return written([&](auto& s) { return WriteOldMachine(s, version, nullptr, m, false); });
  }
};

struct InventoryKind : KindOf<frame::FileKind::toolInventory> {
  static std::vector<int> versions() { return inventoryVersions(); }
  static std::vector<int> reloadVersions() { return versions(); }
  static Bytes stored(OldToolInventory& v, int version) {
    return written([&](auto& s) { return WriteToolInventory(s, version, v); });
  }
};

struct MacroKind : KindOf<frame::FileKind::macro> {
  static std::vector<int> versions() { return macroVersions(); }
  static std::vector<int> reloadVersions() { return versions(); }
  static Bytes stored(OldMacro& m, int version) {
    return written([&](auto& s) { return WriteMacro(s, version, m); });
  }
};

// ---- the mirror ----------------------------------------------------------------------------------

template <class Kind>
void expectPerfectMirror(int rounds) {
  if (isLong()) rounds *= 100;
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
    for (std::uint32_t seed = 0; seed < (isLong() ? 1000U : 5U); ++seed) {
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
  expectHarmlessCuts<Kind>(versions.back(), 0, 0, isLong() ? 1 : 3);
  expectHarmlessCuts<Kind>(versions.back(), 3, 0, isLong() ? 1 : 7);
  for (std::size_t i = 0; i < versions.size(); ++i)
    expectHarmlessCuts<Kind>(versions[i], 2, i % 97, isLong() ? 7 : 997);
}

TEST(KindsCut, MaterialFilesReturnZeroOrOneAndTheRecordLoadsAgain) { expectHarmlessCutsAtEveryVersion<MaterialKind>(); }
TEST(KindsCut, MachineFilesReturnZeroOrOneAndTheRecordLoadsAgain) { expectHarmlessCutsAtEveryVersion<MachineKind>(); }
TEST(KindsCut, InventoryFilesReturnZeroOrOneAndTheRecordLoadsAgain) {
  expectHarmlessCutsAtEveryVersion<InventoryKind>();
}
TEST(KindsCut, MacroFilesReturnZeroOrOneAndTheRecordLoadsAgain) { expectHarmlessCutsAtEveryVersion<MacroKind>(); }

// ---- reload over another version -----------------------------------------------------------------

// Of one field: a record may have bytes between its fields that are never set.
template <class T>
std::string valueOf(const T& field) {
  static_assert(std::is_arithmetic_v<std::remove_all_extents_t<T>>);
  return {reinterpret_cast<const char*>(&field), sizeof field};
}

template <class Record>
struct Spot {
  const char* name;
  std::string (*value)(const Record&);
  bool (*isSet)(int version);  // a load of that version sets it, from the file or a default
};

template <int first, class Record>
Spot<Record> since(const char* name, std::string (*value)(const Record&)) {
  return {name, value, [](int version) { return version >= first; }};
}
// A load of an older file sets its default.
template <class Record>
Spot<Record> always(const char* name, std::string (*value)(const Record&)) {
  return {name, value, [](int) { return true; }};
}

// prepare(random, record, version): gives the lists that keep their elements at a count of zero some elements. That
// rule has tests of its own. tail(version): stored bytes at the end that a load does not take.
template <class Kind, class Prepare, class Tail>
void expectReloadOverEveryOtherVersion(const std::vector<Spot<typename Kind::Record>>& spots, const Prepare& prepare,
                                       const Tail& tail) {
  using Record = typename Kind::Record;
  const TempFolder folder;
  const std::vector<int> versions = Kind::reloadVersions();
  std::map<int, std::unique_ptr<Record>> before, alone;
  const auto path = [&](int version, int which) {
    return folder.path(std::to_string(version) + "_" + std::to_string(which));
  };
  for (const int version : versions)
    for (const int which : {1, 2}) {
      RandomRecords random(static_cast<std::uint32_t>(version * 10 + which), 2);
      const auto made = std::make_unique<Record>();
      Kind::fill(random, *made, version);
      prepare(random, *made, version);
      ASSERT_EQ(Kind::save(path(version, which), *made, version), 0);
      auto& loaded = (which == 1 ? before : alone)[version] = std::make_unique<Record>();
      ASSERT_EQ(Kind::load(path(version, which), *loaded), 0);
    }
  for (const int first : versions)
    for (const int second : versions) {
      const auto record = std::make_unique<Record>();
      ASSERT_EQ(Kind::load(path(first, 1), *record), 0);
      ASSERT_EQ(Kind::load(path(second, 2), *record), 0);
      for (const auto& spot : spots) {
        const Record& source = spot.isSet(second) ? *alone[second] : *before[first];
        ASSERT_EQ(spot.value(*record), spot.value(source)) << spot.name << " of " << second << " over " << first;
      }
      const Bytes again = Kind::stored(*record, second), expected = Kind::stored(*alone[second], second);
      ASSERT_EQ(again.size(), expected.size());
      ASSERT_TRUE(again.cut(again.size() - tail(second)) == expected.cut(expected.size() - tail(second)))
          << second << " over " << first;
    }
}

constexpr auto kNoTail = [](int) -> std::size_t { return 0; };

template <class List, class Field>
std::string firstOf(const List& list, Field field) {
  return list.empty() ? "none" : valueOf(list.front().*field);
}

TEST(KindsReload, MaterialOverEveryOtherVersionHoldsWhatTheLaterFileStoresAndKeepsTheRest) {
  using R = OldMaterial;
  std::vector<Spot<R>> spots{
      since<61, R>("modeA", [](const R& m) { return valueOf(m.modeA); }),
      since<61, R>("toolSets", [](const R& m) { return valueOf(m.toolSets.toleranceB); }),
      since<61, R>("angleRules", [](const R& m) { return firstOf(m.rules.angleRules, &AngleRule::ruleValues); }),
      since<61, R>("choice8", [](const R& m) { return valueOf(m.choice8); }),
      since<61, R>("setting13", [](const R& m) { return valueOf(m.setting13); }),
      since<90, R>("setting14", [](const R& m) { return valueOf(m.setting14); }),
      since<92, R>("headTail3", [](const R& m) { return valueOf(m.head.headTail3); }),
      since<130, R>("groupsA", [](const R& m) { return valueOf(m.palette.groupsA[0].groupWord); }),
      since<130, R>("setting40", [](const R& m) { return valueOf(m.setting40); }),
      since<141, R>("setting41", [](const R& m) { return valueOf(m.setting41); }),
      since<150, R>("stageTail", [](const R& m) { return valueOf(m.stages.stageTail); }),
      since<151, R>("blocks[4]", [](const R& m) { return valueOf(m.stages.blocks[4].motionWord); }),
      since<151, R>("blocks[0]", [](const R& m) { return valueOf(m.stages.blocks[0].lateWord1); }),
      since<152, R>("blocks[7]", [](const R& m) { return valueOf(m.stages.blocks[7].motionWord); }),
      since<154, R>("setting43", [](const R& m) { return valueOf(m.setting43); }),
      since<155, R>("pairRules", [](const R& m) { return valueOf(m.rules.pairRules.at(0).sizeLimitX); }),
      since<158, R>("programWord7", [](const R& m) { return valueOf(m.head.optionA.programWord7); }),
      since<159, R>("setting55", [](const R& m) { return valueOf(m.setting55); }),
      since<161, R>("setting105", [](const R& m) { return valueOf(m.setting105); }),
      since<161, R>("sizeRulesA", [](const R& m) { return valueOf(m.rules.sizeRulesA.at(0).sizeValue5); }),
      since<161, R>("sizeRulesB", [](const R& m) { return valueOf(m.rules.sizeRulesB.at(0).sizeValue6); }),
      since<162, R>("setting109", [](const R& m) { return valueOf(m.setting109); }),
      since<170, R>("setting166", [](const R& m) { return valueOf(m.setting166); }),
      always<R>("version", [](const R& m) { return valueOf(m.version); }),
      always<R>("intParams[55]", [](const R& m) { return valueOf(m.params.intParams[55]); }),
      always<R>("name", [](const R& m) { return m.name; }),
      {"title", [](const R& m) { return valueOf(m.params.title); }, [](int version) { return version >= 60; }},
      {"intParams[551]", [](const R& m) { return valueOf(m.params.intParams[551]); },
       [](int version) { return version >= 80; }},
      {"realParams[600]", [](const R& m) { return valueOf(m.params.realParams[600]); },
       [](int version) { return version >= 80; }},
      {"textParams[400]", [](const R& m) { return valueOf(m.params.textParams[400]); }, [](int) { return false; }},
  };
  expectReloadOverEveryOtherVersion<MaterialKind>(
      spots,
      [](RandomRecords& random, OldMaterial& m, int version) {
        // The table of the file's own version, so that its gates fall together with those of the material.
        random.paramTable(m.params, version);
        // A load takes the material's name from a table whose name is not empty and has a NUL.
        m.params.name[0] = static_cast<char>('a' + random.upTo(25));
        m.params.name[1] = '\0';
        m.params.nameLength = 2;
        m.palette.groupCount = 5;
        m.rules.pairRules.resize(1);
        random.bits(m.rules.pairRules[0].sizeLimitX);
        m.rules.sizeRulesA.resize(1);
        random.bits(m.rules.sizeRulesA[0].sizeValue5);
        m.rules.sizeRulesB.resize(1);
        random.bits(m.rules.sizeRulesB[0].sizeValue6);
      },
      kNoTail);
}

TEST(KindsReload, MachineOverEveryOtherVersionHoldsWhatTheLaterFileStoresAndKeepsTheRest) {
  using R = OldMachine;
  const std::vector<Spot<R>> spots{
      since<60, R>("frameValue4", [](const R& m) { return valueOf(m.frame.frameValue4); }),
      since<60, R>("machineWord1", [](const R& m) { return valueOf(m.machineWord1); }),
      always<R>("stationWord", [](const R& m) { return valueOf(m.stationWord); }),
      since<61, R>("stationsB", [](const R& m) { return valueOf(m.stationsB.headerWord); }),
      since<61, R>("stationsC", [](const R& m) { return firstOf(m.stationsC.stations, &ToolStation::values); }),
      always<R>("stationModeWord", [](const R& m) { return valueOf(m.stationsA.stationModeWord); }),
      always<R>("extraWords", [](const R& m) { return valueOf(m.stationsA.extraWords); }),
      always<R>("machineWord97", [](const R& m) { return valueOf(m.machineWord97); }),
      since<62, R>("machineWord12", [](const R& m) { return valueOf(m.machineWord12); }),
      since<62, R>("machineWord53", [](const R& m) { return valueOf(m.machineWord53); }),
      since<62, R>("ncExtension", [](const R& m) { return valueOf(m.ncExtension); }),
      since<62, R>("machineWord61", [](const R& m) { return valueOf(m.machineWord61); }),
      since<71, R>("machineWord63", [](const R& m) { return valueOf(m.machineWord63); }),
      since<71, R>("programC", [](const R& m) { return valueOf(m.programC.programValue4); }),
      since<80, R>("programD", [](const R& m) { return valueOf(m.programD.extValue3); }),
      since<80, R>("machineWord64", [](const R& m) { return valueOf(m.machineWord64); }),
      always<R>("machineWord65", [](const R& m) { return valueOf(m.machineWord65); }),
      always<R>("machineWord66", [](const R& m) { return valueOf(m.machineWord66); }),
      since<80, R>("wideValue2", [](const R& m) { return valueOf(m.wideValue2); }),
      since<80, R>("material name", [](const R& m) { return m.material.name; }),
      since<80, R>("machineWord82", [](const R& m) { return valueOf(m.machineWord82); }),
      since<90, R>("material setting14", [](const R& m) { return valueOf(m.material.setting14); }),
      since<90, R>("machineWord90", [](const R& m) { return valueOf(m.machineWord90); }),
      since<90, R>("lateByteA", [](const R& m) { return valueOf(m.lateByteA); }),
      since<90, R>("lateWord8", [](const R& m) { return valueOf(m.lateWord8); }),
      since<100, R>("flagTriple", [](const R& m) { return valueOf(m.flagTriple); }),
      since<101, R>("triadCount", [](const R& m) { return valueOf(m.triadCount); }),
      since<110, R>("unitWord", [](const R& m) { return valueOf(m.unitWord); }),
      since<110, R>("units", [](const R& m) { return std::to_string(m.unitTable.units.size()); }),
      since<110, R>("machineWord123", [](const R& m) { return valueOf(m.machineWord123); }),
      since<110, R>("numberColumns", [](const R& m) { return valueOf(m.numberColumns); }),
      since<110, R>("textColumnB", [](const R& m) { return m.textColumnB[2]; }),
      since<111, R>("displayName", [](const R& m) { return valueOf(m.displayName); }),
      since<111, R>("displayTail", [](const R& m) { return valueOf(m.displayTail); }),
      since<112, R>("lateWord2", [](const R& m) { return valueOf(m.lateWord2); }),
      always<R>("lateWord3", [](const R& m) { return valueOf(m.lateWord3); }),
      always<R>("lateWord4", [](const R& m) { return valueOf(m.lateWord4); }),
      always<R>("lateWord5", [](const R& m) { return valueOf(m.lateWord5); }),
      since<121, R>("unitValue16", [](const R& m) { return valueOf(m.unitTable.unitValue16); }),
      since<130, R>("lateText2", [](const R& m) { return valueOf(m.lateText2); }),
      since<130, R>("lateWord7", [](const R& m) { return valueOf(m.lateWord7); }),
      since<141, R>("unitFlag5", [](const R& m) { return valueOf(m.unitTable.unitFlag5); }),
      since<141, R>("lateByteB", [](const R& m) { return valueOf(m.lateByteB); }),
      always<R>("machineWord124", [](const R& m) { return valueOf(m.machineWord124); }),
      always<R>("machineWord127", [](const R& m) { return valueOf(m.machineWord127); }),
      since<151, R>("machineWord128", [](const R& m) { return valueOf(m.machineWord128); }),
      always<R>("machineWord130", [](const R& m) { return valueOf(m.machineWord130); }),
      since<151, R>("machineWord132", [](const R& m) { return valueOf(m.machineWord132); }),
      since<152, R>("lateByteC", [](const R& m) { return valueOf(m.lateByteC); }),
      since<154, R>("setupWords", [](const R& m) { return valueOf(m.setupWords); }),
      always<R>("setup2", [](const R& m) { return valueOf(m.setup2.machineWord92); }),
      always<R>("setup3", [](const R& m) { return valueOf(m.setup3.machineWord92); }),
      since<154, R>("unitValue22", [](const R& m) { return valueOf(m.unitTable.unitValue22); }),
      since<157, R>("endText1", [](const R& m) { return valueOf(m.endText1); }),
      since<157, R>("frameValue8", [](const R& m) { return valueOf(m.frame.frameValue8); }),
      since<158, R>("programWord7", [](const R& m) { return valueOf(m.programC.programWord7); }),
      since<170, R>("endWord", [](const R& m) { return valueOf(m.endWord); }),
      since<180, R>("endText2", [](const R& m) { return valueOf(m.endText2); }),
  };
  expectReloadOverEveryOtherVersion<MachineKind>(
      spots,
      [](RandomRecords& random, OldMachine& m, int) {
        for (auto* list : {&m.stationsA, &m.stationsB, &m.stationsC}) {
          list->stations.assign(1, random.station());
          list->tools.assign(1, random.tool());
        }
        m.segments.resize(1);
        m.stepTables.assign(1, random.stepTable());
      },
      // The late words and lateByteC, which a save stores also where a load takes neither.
      [](int version) -> std::size_t { return version < 151   ? 37
                                              : version < 152 ? 1
                                                              : 0; });
}

TEST(KindsReload, InventoryOverEveryOtherVersionHoldsWhatTheLaterFileStores) {
  using R = OldToolInventory;
  expectReloadOverEveryOtherVersion<InventoryKind>(
      {always<R>("version", [](const R& v) { return valueOf(v.version); }),
       always<R>("pairSecond", [](const R& v) { return valueOf(v.pairSecond); }),
       always<R>("tools", [](const R& v) { return std::to_string(v.tools.size()); }),
       // Entries are new at every load, so that a version without it leaves its default.
       always<R>("entryNameC", [](const R& v) { return valueOf(v.entries.at(0).entryNameC); }),
       always<R>("entryLateWord", [](const R& v) { return valueOf(v.entries.at(0).entryLateWord); }),
       always<R>("specialToolFiles",
                 [](const R& v) {
                   return v.specialToolFiles.empty() ? std::string("none")
                                                     : std::string(v.specialToolFiles.front().data(), 256);
                 })},
      [](RandomRecords&, OldToolInventory& v, int) { v.entries.resize(v.entries.size() + 1); }, kNoTail);
}

TEST(KindsReload, MacroOverEveryOtherVersionHoldsWhatTheLaterFileStoresAndKeepsTheRest) {
  using R = OldMacro;
  expectReloadOverEveryOtherVersion<MacroKind>(
      {always<R>("version", [](const R& m) { return valueOf(m.version); }),
       always<R>("macroBlockLong", [](const R& m) { return valueOf(m.macroBlockLong); }),
       always<R>("shapes", [](const R& m) { return std::to_string(m.shapes.shapes.size()); }),
       always<R>("trailerValue", [](const R& m) { return valueOf(m.shapes.shapes.at(0).trailerValue); }),
       always<R>("items", [](const R& m) { return firstOf(m.items, &PatternItem::toolNumber); }),
       since<60, R>("stationList", [](const R& m) { return valueOf(m.stationList.headerWord); }),
       since<60, R>("stations", [](const R& m) { return firstOf(m.stationList.stations, &ToolStation::values); }),
       since<60, R>("macroTailWords", [](const R& m) { return valueOf(m.macroTailWords); })},
      [](RandomRecords& random, OldMacro& m, int) {
        m.shapes.shapes.assign(1, random.shape());
        m.shapes.shapes[0].rangeValue = m.shapes.shapes[0].auxValue4;
        m.items.assign(1, random.item());
        m.stationList.stations.assign(1, random.station());
        m.stationList.tools.assign(1, random.tool());
      },
      kNoTail);
}

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
