// Writes the seed files of the fuzz targets into corpus folders: small files of every accepted
// version, and some of them cut.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>

#include "src/frame/versions.h"
#include "src/part/part_io.h"
#include "src/tooling/special_tool_io.h"
#include "tests/support/random_records.h"

using namespace oldtorvio;

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: make_seeds CORPUS_FOLDER\n";
    return 2;
  }
  const std::filesystem::path root(argv[1]);
  for (const char* kind : {"part", "group_part", "special_tool"}) std::filesystem::create_directories(root / kind);

  const auto shortened = [](const std::filesystem::path& path) {
    const auto size = std::filesystem::file_size(path);
    std::filesystem::path cut = path;
    cut += "_cut";
    std::filesystem::copy_file(path, cut, std::filesystem::copy_options::overwrite_existing);
    std::filesystem::resize_file(cut, size - size / 3);
  };
  for (int version = frame::kFirstMainVersion; version <= frame::VersionSet::kHighest; ++version) {
    testing_support::RandomRecords random(static_cast<std::uint32_t>(version), 1);
    const std::string name = "version_" + std::to_string(version);
    if (frame::kPartVersions.has(version)) {
      const auto part = std::make_unique<TorvPart>();
      random.part(*part, version);
      (void)SavePart((root / "part" / name).c_str(), *part, version);
      if (version % 3 == 0) shortened(root / "part" / name);
    }
    if (version >= frame::kFirstGroupPartVersion && frame::kPartVersions.has(version)) {
      SheetPartList list;
      for (int n = random.upTo(1); n >= 0; --n) random.part(list.parts.emplace_back(), version);
      (void)SaveGroupPart((root / "group_part" / name).c_str(), list, version, 1 + random.upTo(255));
      shortened(root / "group_part" / name);
    }
    if (frame::kSpecialToolVersions.has(version)) {
      (void)SaveSpecialTool((root / "special_tool" / name).c_str(), random.specialTool(), version);
      if (version % 3 == 0) shortened(root / "special_tool" / name);
    }
  }
  return 0;
}
