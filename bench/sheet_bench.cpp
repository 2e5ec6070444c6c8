// Sheets of 1, 50 and 2,000 parts: loads and saves, queries compared with the load of their file, edits compared with a
// load and a save.
#include <algorithm>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "OldTorvIO.h"
#include "bench/part_files.h"
#include "bench/sheet_files.h"
#include "bench/suites.h"
#include "src/part/part_io.h"
#include "src/part/part_layout.h"
#include "src/sheet/sheet_io.h"
#include "src/sheet/sheet_layout.h"
#include "tests/support/sheet_keys.h"

namespace {

using namespace oldtorvio;
using bench::floorSave;
using bench::folder;
using bench::freadLoad;
using bench::registerPrepared;
using bench::registerQuery;
using bench::registerTimed;
using bench::require;

enum class Way { floor, fread };

// More than one part adds to any output.
constexpr std::size_t kMaxBytesPerPart = 1024;

bool freadSheet(const std::string& path, OldSheet& to) { return freadLoad(path, to); }

struct SheetCase {
  std::string name;
  std::string path;
  std::unique_ptr<OldSheet> like = std::make_unique<OldSheet>();  // the record that a load of the file returns
  std::vector<std::byte> content;

  explicit SheetCase(int parts) : name("SheetOf" + std::to_string(parts)), path(folder().path(name.c_str())) {
    require(SaveOldSheet(path.c_str(), bench::sheetOf(parts).get(), bench::kVersion) == 0,
            "a sheet that cannot be saved");
    content = bench::contentOf(path);
    require(LoadOldSheet(path.c_str(), like.get()) == 0, "a sheet that cannot be loaded");
    requireStoredAsFile(*like);
    const auto fread = std::make_unique<OldSheet>();
    require(freadSheet(path, *fread), "a sheet that fread cannot load");
    requireStoredAsFile(*fread);
  }

  std::size_t size() const { return content.size(); }
  std::string load() const { return "Load" + name; }

 private:
  void requireStoredAsFile(OldSheet& sheet) const {
    constexpr std::size_t kVersionWord = 2;
    codec::OutStream out;
    require(WriteOldSheet(out, bench::kVersion, sheet), "a sheet that cannot be written");
    require(std::ranges::equal(out.bytes(), std::span(content).subspan(kVersionWord)), "loads that differ");
  }
};

void registerLoadAndSave(const SheetCase& one) {
  bench::registerLoads(one.load(), one.path, *one.like, LoadOldSheet, freadSheet, bench::fillSheet);
  const std::string saved = folder().path("saved sheet");
  registerTimed("Save" + one.name + "/library", one.size(), [=, &one] {
    require(SaveOldSheet(saved.c_str(), one.like.get(), bench::kVersion) == 0, "a save that fails");
  });
  registerTimed("Save" + one.name + "/floor", one.size(), [=, &one] { floorSave(saved, one.content); });
}

void registerQueries(const SheetCase& one) {
  // Output buffers belong to the caller: their allocation is not measured.
  const auto longText = std::make_shared<std::vector<char>>((one.like->partList.parts.size() + 1) * kMaxBytesPerPart);
  const auto query = [&](const char* name, auto call) { registerQuery(name, one.load(), one.path, call); };

  query("GetOldSheetInfo", [longText](const char* path) {
    char texts[9][261];
    float sizes[3];
    double lateValue = 0;
    static char tools[65536];
    std::int32_t namesLength = 0, toolsLength = 0;
    const std::int64_t status =
        GetOldSheetInfo(path, texts[0], texts[1], texts[2], texts[3], texts[4], texts[5], texts[6], texts[7], texts[8],
                        &sizes[0], &sizes[1], &sizes[2], &lateValue, longText->data(),
                        static_cast<std::int32_t>(longText->size()), &namesLength, tools, sizeof tools, &toolsLength);
    return namesLength > 1 && toolsLength > 1 ? status : -1;
  });
  query("LoadOldSheetInformation", LoadOldSheetInformation);
  query("GetOldSheetHandle", [](const char* path) {
    OldSheet* sheet = nullptr;
    const std::int64_t status = GetOldSheetHandle(path, &sheet);
    FreeSheetHandle(sheet);
    return status;
  });
  query("GetOldSheetInfoByName, all keys", [longText, &one](const char*) {
    std::int64_t failed = 0;
    for (const char* key : testing_support::kSheetKeys)
      failed |= GetOldSheetInfoByName(one.like.get(), key, longText->data());
    return failed;
  });
  query("GetOldSheetInfoPartGroupIDs",
        [longText, &one](const char*) { return GetOldSheetInfoPartGroupIDs(one.like.get(), longText->data()); });
  query("GetOldClampInfo", [](const char* path) {
    std::uint32_t word = 0, count = 0;
    float values[4], positions[8];
    return GetOldClampInfo(path, &word, &values[0], &values[1], &values[2], positions, &count, &values[3]);
  });
  query("GetOldVLMQMaterialName", [](const char* path) {
    char text3[257], text5[257];
    return GetOldVLMQMaterialName(path, text3, text5);
  });
  query("GetOldSkeletonUtil", [](const char* path) {
    float utilization = 0;
    return GetOldSkeletonUtil(path, &utilization);
  });
  query("GetSheetDriverFlags", [](const char* path) {
    std::int32_t flags[ParamTable::kNumbers];
    return GetSheetDriverFlags(path, flags);
  });
  query("GetSheetSequenceListSize", [](const char* path) {
    std::uint32_t count = 0;
    return GetSheetSequenceListSize(path, &count);
  });
}

// The floor of an edit is the floor of the load and that of the save; one fread per field is followed by the same save.
// Each works on a copy of the file that is recreated before. also(way) loads what else an edit loads.
template <class Edit, class Also>
void registerEdit(const SheetCase& one, const std::string& name, Edit edit, Also also) {
  const std::string path = one.path + " edited";
  const auto restore = [path, &one] { floorSave(path, one.content); };
  restore();
  require(edit(path.c_str()) == 0, "an edit that fails");
  const auto edited = std::make_shared<std::vector<std::byte>>(bench::contentOf(path));
  require(*edited != one.content, "an edit that changes nothing");

  const auto timed = [&](const char* way, auto once) {
    registerPrepared(name + " of " + one.name + "/" + way, one.size() + edited->size(), restore, once);
  };
  timed("library", [=] { require(edit(path.c_str()) == 0, "an edit that fails"); });
  timed("floor", [=, &one] {
    also(Way::floor);
    const auto sheet = bench::floorLoad(path, bench::Reads::throughWindow, *one.like, bench::fillSheet);
    benchmark::DoNotOptimize(sheet.get());
    floorSave(path, *edited);
  });
  timed("fread", [=] {
    also(Way::fread);
    const auto sheet = std::make_unique<OldSheet>();
    require(freadSheet(path, *sheet), "a load that fails");
    floorSave(path, *edited);
  });
}

void registerEdits(const SheetCase& one) {
  const auto nothing = [](Way) {};
  registerEdit(
      one, "ReplaceSheetMachineNcPath",
      [](const char* path) { return ReplaceSheetMachineNcPath(path, "D:\\NC\\ELSEWHERE"); }, nothing);
  registerEdit(
      one, "UpdateSheetPartWONumber",
      [](const char* path) { return UpdateSheetPartWONumber(path, "part 0", nullptr, "WO-NEW"); }, nothing);

  static const std::unique_ptr<TorvPart> likePart = bench::smallPart();
  static const std::string partPath = folder().path("skeleton part");
  require(SavePart(partPath.c_str(), *likePart, bench::kVersion) == 0, "a part that cannot be saved");
  registerEdit(
      one, "ReplaceSheetSknPatList",
      [](const char* path) { return ReplaceSheetSknPatListWithPartPatList(path, partPath.c_str()); },
      [](Way way) {
        if (way == Way::floor) {
          const auto part = bench::floorLoad(partPath, bench::Reads::throughWindow, *likePart, bench::fillPart);
          benchmark::DoNotOptimize(part.get());
        } else {
          const auto part = std::make_unique<TorvPart>();
          require(freadLoad(partPath, *part, PartForm{}), "a load that fails");
        }
      });
}

}  // namespace

void bench::registerSheets() {
  static const SheetCase all[] = {SheetCase(1), SheetCase(50), SheetCase(2000)};
  for (const SheetCase& one : all) {
    registerLoadAndSave(one);
    registerQueries(one);
    registerEdits(one);
  }
}
