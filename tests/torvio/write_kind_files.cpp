// Writes small sound files of every kind and version as KIND_VERSION.bin and KIND_VERSION_VARIANT.bin, for tests in other
// languages.
#include <cstdio>
#include <memory>
#include <string>

#include "tests/support/files.h"
#include "tests/support/kind_files.h"
#include "tests/support/sheet_files.h"
#include "tests/support/stored_forms/parts.h"

namespace {

using namespace testing_support;
using oldtorvio::explain::FileKind;

Bytes readableSheet(int version) {
  const auto sheet = std::make_unique<oldtorvio::OldSheet>();
  fullSheet(*sheet, version);
  return readableSheetFile(*sheet, version);
}

// A material file that is a table of such a version. All of its fields have fixed sizes, so it may hold anything.
Bytes oldTable(int version) {
  Bytes bytes = Bytes().i16(version);
  for (int i = 0; i < 1000; ++i) bytes.u8(static_cast<std::uint8_t>(i * 37 + version));
  return bytes;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    (void)std::fputs("usage: torvio_kind_files FOLDER\n", stderr);
    return 2;
  }
  const auto write = [&](const std::string& kind, int version, const char* variant, const Bytes& bytes) {
    writeFile(std::string(argv[1]) + "/" + kind + "_" + std::to_string(version) + variant + ".bin", bytes);
  };
  for (const Kind& kind : kinds()) {
    const oldtorvio::frame::FileKindInfo& info = oldtorvio::frame::infoOf(kind.kind);
    for (int version = oldtorvio::frame::kFirstMainVersion; version <= oldtorvio::frame::VersionSet::kHighest;
         ++version) {
      if (!info.accepts(version)) continue;
      write(kind.name, version, "", kind.kind == FileKind::sheet ? readableSheet(version) : kind.file(version));
      if (kind.kind == FileKind::part) write(kind.name, version, "_plain", storedPartFile(version));
    }
  }
  for (int version = 500; version <= 502; ++version) write("material", version, "", oldTable(version));
  return 0;
}
