// Writes what the fuzz targets start from into corpus folders: small files of every accepted
// version, and some of them cut.
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>

#include "src/file_records.h"
#include "src/frame/text/text.h"
#include "tests/support/random_records.h"
#include "tests/support/sheet_files.h"

#if defined(FUZZ_COMPANION)
#include <initializer_list>
#include <iterator>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "torvio/explain/file_map.h"
#include "torvio/values/json_writer.h"
#endif

using namespace oldtorvio;
using frame::FileKind;
using testing_support::RandomRecords;

namespace {

// Tool inventories and macros share a target.
std::filesystem::path seedPath(const std::filesystem::path& root, FileKind kind, int version) {
  static constexpr const char* kFolders[] = {"part",     "group_part", "special_tool", "machine",
                                             "material", "tooling",    "tooling",      "sheet"};
  const char* const end = kind == FileKind::toolInventory ? "_inventory" : kind == FileKind::macro ? "_macro" : "";
  return root / kFolders[static_cast<std::size_t>(kind)] / ("version_" + std::to_string(version) + end);
}

// Nothing writes these versions: a file of small numbers, so that counts are small as well.
void oldestParts(const std::filesystem::path& folder) {
  for (const char version : {'\2', '\3', '\5'})
    for (const int step : {1, 2, 7}) {
      std::string bytes{version, 0};
      for (int i = 0; i < 700; ++i) bytes += static_cast<char>(i % step == 0 ? 1 + i % 17 : 0);
      std::ofstream(folder / ("oldest_" + std::to_string(version) + "_" + std::to_string(step)), std::ios::binary)
          << bytes;
    }
}

// A sheet as small as one of its version can be: the short table, short texts, a machine without
// elements; with a part and a tool that it uses, or with an element in the lists of its own.
enum class Extra { none, part, lists };
void sheet(const std::filesystem::path& path, int version, Extra extra) {
  RandomRecords random(static_cast<std::uint32_t>(version), 0);
  const auto s = random.newRecord<OldSheet>(version);
  random.paramTable(s->paramTable, 52);
  s->textWidth = 9;
  s->machine.path[8] = '\0';
  if (extra == Extra::part) {
    s->machine.stationWord = 0;
    s->machine.stationsA.stations = {random.station()};
    s->machine.stationsA.tools = {random.tool()};
    s->partList.nameWidth = 12;
    s->partList.parts.resize(1);
    TorvPart& part = s->partList.parts.front();
    frame::setText(part.partName, "left");
    frame::setText(part.partFullDosName, "C:\\left.prt");
    part.patterns.resize(1);
    part.patterns.front().items.resize(1);
    part.patterns.front().items.front().toolNumber = 1;
    part.patterns.front().patternWord = 12;
    part.processSlotCount = 1;
    part.processSlots[0].toolUse = part.processSlots[0].toolActive = 1;
    part.processSlots[0].firstToolNumber = part.processSlots[0].secondToolNumber = 1;
  }
  if (extra == Extra::lists) {
    s->skeletonShapes.shapes.resize(1);
    s->shapes.shapes.resize(1);
    s->processSlotCount = 1;
    s->processSlots[0] = random.slot();
    s->marks = {random.mark()};
    s->profiles = {random.profile()};
    s->stepTables = {random.stepTable()};
    s->setupList.entries.resize(1);
    s->patternItems.resize(30);
    s->workList = {random.work()};
    s->rowTable.count = s->clampRowTable.count = 1;
    s->machine.extension.extensionEntries.resize(1);
    s->textEntries.resize(1);
    s->namedWorkLists.resize(1);
    s->namedWorkLists.front().entries = {random.work()};
  }
  const testing_support::Bytes file = testing_support::readableSheetFile(*s, version);
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(file.span().data()), static_cast<std::streamsize>(file.size()));
}

#if defined(FUZZ_COMPANION)

using Bytes = std::vector<std::byte>;

Bytes contentOf(const std::filesystem::path& path) {
  std::ifstream from(path, std::ios::binary);
  const std::string all((std::istreambuf_iterator<char>(from)), std::istreambuf_iterator<char>());
  const auto bytes = std::as_bytes(std::span(all));
  return {bytes.begin(), bytes.end()};
}

void put(const std::filesystem::path& path, std::initializer_list<std::size_t> head,
         std::initializer_list<Bytes> parts) {
  std::ofstream to(path, std::ios::binary);
  for (const std::size_t byte : head) to.put(static_cast<char>(byte));
  for (const Bytes& part : parts)
    to.write(reinterpret_cast<const char*>(part.data()), static_cast<std::streamsize>(part.size()));
}

// For each kind the oldest file, one between and the newest: single files and pairs.
void companionSeeds(const std::filesystem::path& root) {
  for (const char* target : {"convert", "detection", "diff", "json", "pictures"})
    std::filesystem::create_directories(root / target);
  for (const frame::FileKindInfo& one : frame::kFileKinds) {
    const FileKind kind = one.kind;
    std::vector<std::pair<int, Bytes>> files;
    for (int version = frame::kFirstMainVersion; version <= frame::VersionSet::kHighest; ++version) {
      const std::filesystem::path path = seedPath(root, kind, version);
      if (std::filesystem::exists(path)) files.emplace_back(version, contentOf(path));
    }
    const auto number = static_cast<std::size_t>(kind);
    const auto putPair = [&](const std::string& name, const Bytes& a, const Bytes& b) {
      put(root / "diff" / name, {number, a.size() & 0xFFU, a.size() >> 8U & 0xFFU}, {a, b});
    };
    const Bytes& newest = files.back().second;
    for (const std::size_t at : {std::size_t{0}, files.size() / 2, files.size() - 1}) {
      const auto& [version, file] = files[at];
      const std::string name(std::string(one.name) + "_" + std::to_string(version));
      put(root / "detection" / name, {}, {file});
      const Bytes cut(file.begin(), file.end() - static_cast<std::ptrdiff_t>(file.size() / 3));
      put(root / "detection" / (name + "_cut"), {}, {cut});
      put(root / "pictures" / name, {number}, {file});
      put(root / "convert" / name, {number, 180}, {file});
      put(root / "convert" / (name + "_older"), {number, 150}, {file});
      put(root / "convert" / (name + "_cut"), {number, 180}, {cut});
      Bytes changed = file;
      changed[changed.size() / 2] ^= std::byte{1};
      putPair(name, file, changed);
      putPair(name + "_newest", file, newest);
      std::string text;
      values::writeFileAsJson([&](std::string_view piece) { text += piece; }, file, kind,
                              explain::checkFile(file, kind), std::string(values::kDefaultEncoding));
      std::ofstream(root / "json" / name, std::ios::binary) << text;
    }
  }
}

#endif

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: make_seeds CORPUS_FOLDER\n";
    return 2;
  }
  const std::filesystem::path root(argv[1]);
  for (const frame::FileKindInfo& one : frame::kFileKinds)
    std::filesystem::create_directories(seedPath(root, one.kind, 0).parent_path());

  const auto shortened = [](const std::filesystem::path& path) {
    const auto size = std::filesystem::file_size(path);
    std::filesystem::path cut = path;
    cut += "_cut";
    std::filesystem::copy_file(path, cut, std::filesystem::copy_options::overwrite_existing);
    std::filesystem::resize_file(cut, size - size / 3);
  };
  for (int version = frame::kFirstMainVersion; version <= frame::VersionSet::kHighest; ++version) {
    RandomRecords random(static_cast<std::uint32_t>(version), 1);
    const auto path = [&](FileKind kind) { return seedPath(root, kind, version); };
    // A record of the kind, saved as it is.
    const auto save = [&](auto file) {
      const auto record = random.newRecord<typename decltype(file)::Record>(version);
      (void)file.save(path(file.kKind).string().c_str(), *record, version);
    };
    if (frame::isPartVersion(version)) {
      save(FileRecord<FileKind::part>());
      if (version % 3 == 0) shortened(path(FileKind::part));
    }
    if (frame::isGroupPartVersion(version) && frame::isPartVersion(version)) {
      const auto list = random.newRecord<SheetPartList>(version);
      (void)SaveGroupPart(path(FileKind::groupPart).string().c_str(), *list, version, 1 + random.upTo(255));
      shortened(path(FileKind::groupPart));
    }
    if (version % 4 == 0 && frame::isMachineVersion(version)) {
      RandomRecords few(static_cast<std::uint32_t>(version), version % 8 == 0 ? 0 : 1);
      const auto machine = few.newRecord<OldMachine>(version);
      machine->gridMode = 0;  // cells are large and say little
      (void)SaveMachine(path(FileKind::machine).string().c_str(), *machine, version);
    }
    if (frame::isKnownSheetVersion(version) || version == frame::kFirstMainVersion)
      sheet(path(FileKind::sheet), version,
            version == 101 || version == 141 || version == 162 ? Extra::part
            : version % 2 == 1                                 ? Extra::lists
                                                               : Extra::none);
    if (frame::isMaterialVersion(version)) {
      const auto material = RandomRecords(static_cast<std::uint32_t>(version), 1).newRecord<OldMaterial>(version);
      material->params = {};
      material->params.version = frame::isParamTableVersion(version) ? static_cast<std::uint16_t>(version) : 52;
      material->params.nameLength = 4;
      (void)SaveMaterial(path(FileKind::material).string().c_str(), *material, version);
      if (version % 3 == 0) shortened(path(FileKind::material));
    }
    if (frame::isToolInventoryVersion(version)) save(FileRecord<FileKind::toolInventory>());
    if (frame::isMacroVersion(version)) save(FileRecord<FileKind::macro>());
    if (frame::isSpecialToolVersion(version)) {
      save(FileRecord<FileKind::specialTool>());
      if (version % 3 == 0) shortened(path(FileKind::specialTool));
    }
  }
  oldestParts(root / "part");
#if defined(FUZZ_COMPANION)
  companionSeeds(root);
#endif
  return 0;
}
