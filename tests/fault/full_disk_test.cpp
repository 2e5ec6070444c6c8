// Records that are stored where there is no room for all of them.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "OldTorvIO.h"
#include "src/machine/machine_io.h"
#include "src/material/material_io.h"
#include "src/part/part_io.h"
#include "src/sheet/sheet_io.h"
#include "src/tooling/inventory_io.h"
#include "src/tooling/macro_io.h"
#include "tests/support/bytes.h"
#include "tests/support/full_file.h"
#include "tests/support/kind_files.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;

// Writes with the file full after 0, 1, 2, ... bytes, up to everything that is stored. A failure in the last `ignored`
// bytes shows only in the stream.
template <class Write>
void expectFailuresWhereverTheFileIsFull(const std::string& what, const Write& write, std::size_t ignored = 0) {
  const std::size_t size = written(write).size();
  ASSERT_LT(size, kRoom) << what;
  const std::size_t step = size / 3000 + 1;
  for (std::size_t left = 0; left < size; left += step) {
    FullFile full(left);
    ASSERT_EQ(write(full.stream()), left + ignored >= size) << what << ", full after " << left << " of " << size;
    ASSERT_TRUE(full.stream().failed()) << what << ", full after " << left << " of " << size;
  }
}

TEST(FullDisk, FailsTheSaveOfARecordAtEveryByte) {
  if (!hasFullDevice()) GTEST_SKIP() << "no device that is always full";
  for (const int version : {54, 110, 152, 180}) {
    const auto check = [&](const std::string& what, const auto& write, std::size_t ignored = 0) {
      expectFailuresWhereverTheFileIsFull(what + " of version " + std::to_string(version), write, ignored);
    };
    RandomRecords random(12, 1);
    const auto machine = std::make_unique<OldMachine>();
    ShapeList sheetShapes;
    fullMachine(random, machine.get(), version);
    machine->gridA.cellByteCount = machine->gridB.cellByteCount = 20;
    check("a machine", [&](OutStream& to) { return WriteOldMachine(to, version, nullptr, *machine, false); });
    check("a sheet's machine",
          [&](OutStream& to) { return WriteOldMachine(to, version, &sheetShapes, *machine, true); });
    const auto material = random.newRecord<OldMaterial>(version);
    check("a material", [&](OutStream& to) { return WriteOldMaterialBody(to, version, *material); });
    const auto inventory = random.newRecord<OldToolInventory>(version);
    check("an inventory", [&](OutStream& to) { return WriteToolInventory(to, version, *inventory); });
    const auto macro = random.newRecord<OldMacro>(version);
    check("a macro", [&](OutStream& to) { return WriteMacro(to, version, *macro); });
    const auto part = random.newRecord<TorvPart>(version);
    check("a part", [&](OutStream& to) { return WritePartBody(to, version, false, *part); });
    const auto sheet = std::make_unique<OldSheet>();
    fullSheet(*sheet, version);
    // Below version 161 the count of the blocks is the last item, and its result is ignored.
    check(
        "a sheet", [&](OutStream& to) { return WriteOldSheet(to, version, *sheet); }, version == 152 ? 4 : 0);
    if (version < 152) continue;
    // After blocks that cannot be stored the save continues, and reports the full disk at its end.
    sheet->blocks.resize(2);
    sheet->blocks[1].blockShapes.shapes.resize(1);
    const std::size_t size = written([&](auto& to) { return WriteOldSheet(to, version, *sheet); }).size();
    for (std::size_t left = size < 400 ? 0 : size - 400; left < size; ++left) {
      FullFile full(left);
      ASSERT_FALSE(WriteOldSheet(full.stream(), version, *sheet) && full.stream().flush()) << left << " of " << size;
      ASSERT_TRUE(full.stream().failed()) << left << " of " << size;
    }
  }
}

}  // namespace
