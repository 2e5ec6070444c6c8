// Damaged files of every kind: each bit flipped, each number at its extremes, each count and width at its limit and one
// above. Whatever the file contains, the load stays within its limits of memory and time, the record can be queried,
// saved, loaded again and destroyed, and the queries by path return.
//
// The short form tests some of the bits and, for each field name, one number that is a count or has a limit;
// OLDTORVIO_LONG_TESTS=1 tests every bit and every number of every version, and prints the slowest load of each kind.
#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "OldTorvIO.h"
#include "src/file_records.h"
#include "src/frame/versions.h"
#include "src/records/tool_layout.h"
#include "tests/support/allocation_meter.h"
#include "tests/support/files.h"
#include "tests/support/kind_files.h"
#include "tests/support/long_tests.h"
#include "tests/support/sheet_files.h"
#include "tests/support/sheet_hazards.h"
#include "tests/support/sheet_keys.h"
#include "tests/support/special_tool_files.h"
#include "tests/support/stored_forms/oldest_parts.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;
using frame::FileKind;

constexpr std::size_t kMiB = 1U << 20U;
constexpr double kMaxSeconds = 2;  // far more than any host needs

// ---- the kinds -----------------------------------------------------------------------------------------

const Kind& kindOf(FileKind kind) { return kinds()[static_cast<std::size_t>(kind)]; }
std::string nameOf(FileKind kind) {
  std::string name = kindOf(kind).name;
  std::ranges::replace(name, '-', ' ');
  return name;
}

// How a kind is queried and saved.
template <FileKind kKind>
struct Subject {
  using Record = typename FileRecord<kKind>::Record;
  // Makes the queries by path; `status` is that of the load.
  void (*queryByPath)(const char* path, std::int64_t status, const Record& record);
  // Stores the record, or returns false; records whose save would end the process are not saved.
  bool (*store)(OutStream& out, int version, Record& record);
  // Prepares a record that already holds data, so that a load has the same result as one into a fresh record.
  void (*beforeLoad)(Record& record) = [](Record&) {};
  std::set<std::int64_t> statuses = {-1, 0, 1};
  std::string name = nameOf(kKind);
  std::vector<int> versions = kindOf(kKind).versions;  // the first and the last in the short form
  Bytes (*file)(int version) = kindOf(kKind).file;
};

// Version 2 with items and 3 with fixes (their loads always return 1), and 5. One element in each list.
Bytes oldestPartFile(int version) {
  if (version == 5) {
    const auto part = std::make_unique<TorvPart>();
    Maker m;
    storedVersion5Part(m, {}, *part);
    return Bytes().i16(5).add(m.bytes).zeros(64);
  }
  Version3File file;
  file.version = version;
  file.hasItems = version == 2 ? 1 : 0;
  file.hasShapeFixes = 1;
  Shape& shape = file.shapes.emplace_back();
  shape.type = 1;
  shape.x = shape.y = shape.values[0] = 1.5F;
  file.setupCount = 1;
  file.setup = Version3Setup{2}.bytes();
  file.last = version == 2 ? version3Items({PatternItem()}, {2}) : version3Fixes({{0, 2}});
  file.last.zeros(64);
  return file.bytes();
}

// Small in every respect: the short table, short texts.
Bytes smallSheetFile(int version) {
  const auto s = std::make_unique<OldSheet>();
  fullSheet(*s, version);
  RandomRecords(12, 1).paramTable(s->paramTable, 52);
  s->textWidth = 9;
  s->machine.path[8] = '\0';
  return readableSheetFile(*s, version);
}

void queryPart(const char* path, std::int64_t status, const TorvPart& part) {
  char text[257];
  float f[3];
  std::uint32_t length = 0;
  EXPECT_EQ(GetOldPartInfo(path, text, &f[0], &f[1], &f[2]), status);
  for (const char* key : {"angle", "Revision", "MatType", "Thickness"})
    EXPECT_EQ(GetOldPartInfo_v1(path, key, text), status);
  EXPECT_EQ(GetOldPartTool(path, nullptr, 0, &length), status);
  std::vector<char> tools(length + 1), paths(258 * part.toolStations.tools.size() + 1);
  EXPECT_EQ(GetOldPartTool(path, tools.data(), static_cast<std::int32_t>(tools.size()), &length), status);
  EXPECT_EQ(std::strlen(tools.data()), length);
  EXPECT_EQ(GetOldSptFromPart(path, paths.data()), status);
  EXPECT_LT(std::strlen(paths.data()), paths.size());
}

void queryGroup(const char* path, std::int64_t status, const SheetPartList&) {
  std::uint32_t length = 0;
  EXPECT_EQ(GetOldSptFromGroupPart(path, nullptr, 0, &length), status);
  std::vector<char> paths(length + 1);
  EXPECT_EQ(GetOldSptFromGroupPart(path, paths.data(), static_cast<std::int32_t>(paths.size()), &length), status);
}

void querySpecialTool(const char* path, std::int64_t status, const OldSpecialTool&) {
  std::uint32_t count = 0;
  float f[19];
  std::int32_t n[2];
  std::uint8_t late = 0;
  EXPECT_EQ(
      OpenSpecialToolFile(path, &count, &f[0], &f[1], &f[2], &f[3], &f[4], &n[0], &f[5], &f[6], &f[7], &f[8], &f[9],
                          &f[10], &n[1], &f[11], &f[12], &f[13], &f[14], &f[15], &f[16], &f[17], &f[18], &late),
      status);
  for (std::int64_t i = -1; i <= static_cast<std::int64_t>(count); ++i)
    GetShapeAt(static_cast<std::int32_t>(i), &n[0], &f[0], &f[1], &f[2], &f[3], &f[4], &f[5]);
}

void queryMachine(const char* path, std::int64_t status, const OldMachine& machine) {
  const bool isKnown = frame::isKnownSheetVersion(machine.version);
  float f[14], values[6], dimensions[3], offsets[3];
  std::int32_t n[5];
  char text[4][257];
  std::uint32_t kind = 0;
  EXPECT_EQ(
      GetMachineDatasForQD(path, &f[0], &f[1], &f[2], &f[3], &f[4], &f[5], &f[6], &f[7], &f[8], &f[9], &f[10], &f[11]),
      status);
  MachineInformation information{};
  information.infoStationCount = 0;
  EXPECT_EQ(LoadOldMachineInformation(path, &information), isKnown ? 0 : -1);
  for (std::int32_t i = 0; i < information.infoStationCount; ++i)
    LoadOldStationToolFromMachine(i, &n[0], &n[1], &f[0], &f[1], &f[2], &n[2], values, &f[3], &f[4], &f[5], &f[6],
                                  &n[3], dimensions, offsets, text[0], &f[7], &f[8], &n[4]);
  EXPECT_EQ(GetOldVLMQMachineName(path, text[0], &kind, text[1], text[2], text[3]), isKnown ? 0 : -1);
}

void queryInventory(const char* path, std::int64_t status, const OldToolInventory& inventory) {
  std::uint32_t count = 0;
  EXPECT_EQ(LoadOldToolInventoryForCount(path, &count), status == 1 ? 0 : status);
  EXPECT_EQ(count, status == 0 ? inventory.tools.size() : 0);
  char name[257];
  float f[16];
  std::int32_t n[2];
  for (std::uint32_t i = 0; i < count; ++i) {
    const OldTool& tool = inventory.tools[i];
    const auto index = static_cast<std::int64_t>(tool.specialToolIndex);
    const auto fileCount = static_cast<std::int64_t>(inventory.specialToolFiles.size());
    // A special tool without a file would end the process.
    if (tool.shapeCode == kSpecialTool && (index < 1 || index > fileCount)) continue;
    GetOldToolInventoryInformation(static_cast<std::int32_t>(i), name, &f[0], &f[1], &f[2], &f[3], &n[0], &f[4], &f[5],
                                   &f[6], &f[7], &f[8], &f[9], &n[1], &f[10], &f[11], &f[12], &f[13], &f[14], &f[15]);
  }
}

// Queries the record and the file.
void querySheet(const char* path, std::int64_t status, const OldSheet& sheet) {
  std::size_t room = 2048;
  for (const TorvPart& part : sheet.partList.parts) room += 1024 + 12 * part.patterns.size();
  std::vector<char> value(room);
  for (const char* key : kSheetKeys) EXPECT_EQ(GetOldSheetInfoByName(&sheet, key, value.data()), 0);
  EXPECT_EQ(GetOldSheetInfoPartGroupIDs(&sheet, value.data()), 0);

  const std::int64_t quiet = frame::isKnownSheetVersion(sheet.version) ? 0 : -1;
  float f[4], positions[8];
  std::uint32_t word = 0, count = 0;
  std::int32_t flags[601], length[2] = {};
  double late = 0;
  char text[9][261];
  EXPECT_EQ(GetSheetDriverFlags(path, flags), status);
  EXPECT_EQ(GetSheetSequenceListSize(path, &count), status);
  EXPECT_EQ(GetOldClampInfo(path, &word, &f[0], &f[1], &f[2], positions, &count, &f[3]), quiet);
  EXPECT_EQ(GetOldVLMQMaterialName(path, text[0], text[1]), quiet);
  EXPECT_EQ(GetOldSkeletonUtil(path, &f[0]), quiet);
  EXPECT_EQ(LoadOldSheetInformation(path), quiet);
  if (!namesNoStationPastTheLast(sheet)) return;
  char one = 0;
  EXPECT_EQ(GetOldSheetInfo(path, text[0], text[1], text[2], text[3], text[4], text[5], text[6], text[7], text[8],
                            &f[0], &f[1], &f[2], &late, &one, 1, &length[0], &one, 1, &length[1]),
            quiet);
}

template <class Record>
void noQueries(const char*, std::int64_t, const Record&) {}

Subject<FileKind::part> parts() {
  return {queryPart,
          [](OutStream& out, int version, TorvPart& part) { return WritePartBody(out, version, false, part); },
          // Loads append to these.
          [](TorvPart& part) { part.nestShapeGroups.clear(); }};
}

Subject<FileKind::part> oldestParts() {
  return {.queryByPath = queryPart,
          .store = [](OutStream& out, int, TorvPart& part) { return WritePartBody(out, 180, true, part); },
          // These versions do not set the fields of later ones, which a damaged version word may have changed.
          .beforeLoad = [](TorvPart& part) { part = TorvPart(); },
          .name = "oldest part",
          .versions = {2, 3, 5},
          .file = oldestPartFile};
}

Subject<FileKind::groupPart> groupParts() {
  return {.queryByPath = queryGroup,
          .store =
              [](OutStream& out, int version, SheetPartList& list) {
                return !list.parts.empty() && WritePartBody(out, version, false, list.parts.back());
              },
          .statuses = {0, 1}};
}

Subject<FileKind::specialTool> specialTools() {
  return {querySpecialTool,
          [](OutStream& out, int version, OldSpecialTool& tool) { return WriteSpecialTool(out, version, tool); },
          // A file without entries keeps those of the record.
          [](OldSpecialTool& tool) { tool.setupList = {}; }};
}

Subject<FileKind::machine> machines() {
  return {queryMachine, [](OutStream& out, int version, OldMachine& machine) {
            return WriteOldMachine(out, version, nullptr, machine, false);
          }};
}

bool storeMaterial(OutStream& out, int version, OldMaterial& material) {
  return WriteParamTable(out, material.params) &&
         (frame::isParamTableVersion(version) || WriteOldMaterialBody(out, version, material));
}
Subject<FileKind::material> materials() {
  Subject<FileKind::material> subject{noQueries<OldMaterial>, storeMaterial};
  std::erase_if(subject.versions, frame::isParamTableVersion);
  return subject;
}
Subject<FileKind::material> tables() {
  return {
      .queryByPath = noQueries<OldMaterial>, .store = storeMaterial, .name = "parameter table", .versions = {52, 60}};
}

Subject<FileKind::toolInventory> inventories() {
  return {queryInventory, [](OutStream& out, int version, OldToolInventory& inventory) {
            return WriteToolInventory(out, version, inventory);
          }};
}

Subject<FileKind::macro> macros() {
  return {noQueries<OldMacro>,
          [](OutStream& out, int version, OldMacro& macro) { return WriteMacro(out, version, macro); }};
}

Subject<FileKind::sheet> sheets() {
  return {.queryByPath = querySheet,
          .store =
              [](OutStream& out, int version, OldSheet& sheet) {
                return blocksCanBeStored(sheet.blocks, version) && WriteOldSheet(out, version, sheet);
              },
          .versions = {52, 101, 152, 161, 180},
          .file = smallSheetFile};
}

// ---- one damaged file ------------------------------------------------------------------------------------

template <FileKind kKind>
class Sweep {
 public:
  using Record = typename Subject<kKind>::Record;

  Sweep(const Subject<kKind>& subject, int version)
      : subject_(subject), version_(version), good_(subject.file(version)), goodPath_(folder_.write("good", good_)) {
    const auto record = std::make_unique<Record>();
    goodStatus_ = load(goodPath_, *record);
    EXPECT_EQ(goodStatus_, version == 2 || version == 3 ? 1 : 0) << subject_.name << " " << version;
    stored_ = storedForm(*record);
    (void)explain::mapFile(goodPath_.c_str(), kKind, [&](const explain::MapLine& line) {
      if (line.size == 1 || line.size == 2 || line.size == 4) numbers_.push_back(line);
    });
  }

  void flipBits() {
    constexpr std::size_t kBitsOfTheShortForm = 250;
    const std::size_t bits = good_.size() * 8;
    // Odd, so that every bit of a byte is flipped at times.
    const std::size_t step = isLongRun() ? 1 : (bits / kBitsOfTheShortForm) | 1U;
    for (std::size_t bit = 0; bit < bits; bit += step)
      check(changed(bit / 8, 1, [bit](std::uint64_t byte) { return byte ^ (1U << (bit % 8)); }),
            "bit " + std::to_string(bit));
  }

  void setNumbers() {
    std::set<std::string> seen;
    for (const explain::MapLine& line : numbers_) {
      // One element of each list and array is enough, and one of each group of numbered fields.
      if (!isLongRun() && !seen.insert(withoutDigits(line.path)).second) continue;
      const auto size = static_cast<unsigned>(line.size);
      const std::int64_t largest = (std::int64_t{1} << (8 * size - 1)) - 1;
      const auto set = [&](std::int64_t value) {
        return changed(static_cast<std::size_t>(line.offset), size,
                       [value](std::uint64_t) { return static_cast<std::uint64_t>(value); });
      };
      // A byte may be a count up to 255.
      const std::int64_t highest = size == 1 && !isRefused(set(largest), line) ? 255 : largest;
      const bool hasBound = isRefused(set(highest), line);
      if (!isLongRun() && !hasBound && !isCount(line.path)) continue;
      std::set<std::int64_t> values = {0, 1, -1, largest, -largest - 1};
      if (hasBound) {
        const std::int64_t bound = largestAccepted(highest, [&](std::int64_t v) { return !isRefused(set(v), line); });
        bounds_.insert(bound);
        values.insert({bound, bound + 1});
      }
      for (const std::int64_t value : values) check(set(value), line.path + " = " + std::to_string(value));
    }
  }

  const std::set<std::int64_t>& bounds() const { return bounds_; }
  std::size_t count() const { return count_; }
  double slowest() const { return slowest_; }
  const std::string& slowestCase() const { return slowestCase_; }

 private:
  static std::int64_t load(const std::string& path, Record& record) {
    return FileRecord<kKind>::load(path.c_str(), record);
  }

  template <class Change>
  Bytes changed(std::size_t offset, unsigned size, Change&& change) const {
    std::vector<std::byte> bytes(good_.span().begin(), good_.span().end());
    std::uint64_t value = 0;
    for (unsigned i = 0; i < size; ++i) value |= std::to_integer<std::uint64_t>(bytes[offset + i]) << (8 * i);
    value = change(value);
    for (unsigned i = 0; i < size; ++i) bytes[offset + i] = static_cast<std::byte>((value >> (8 * i)) & 0xFFU);
    return Bytes::of(bytes);
  }

  static std::string withoutDigits(std::string path) {
    std::erase_if(path, [](char c) { return c >= '0' && c <= '9'; });
    return path;
  }

  // Whether a load refuses exactly this value.
  bool isRefused(const Bytes& file, const explain::MapLine& line) {
    const auto report =
        explain::mapFile(folder_.overwrite("refused", file).c_str(), kKind, [](const explain::MapLine&) {});
    for (const auto& fault : {report.fault, report.tolerated})
      if (fault && fault->offset == line.offset && fault->reason.find("refused") != std::string::npos) return true;
    return false;
  }
  template <class Accepts>
  static std::int64_t largestAccepted(std::int64_t refused, Accepts&& accepts) {
    std::int64_t accepted = -1;
    while (refused - accepted > 1) {
      const std::int64_t middle = accepted + (refused - accepted) / 2;
      (accepts(middle) ? accepted : refused) = middle;
    }
    return accepted;
  }

  std::optional<Bytes> storedForm(Record& record) const {
    bool ok = false;
    Bytes bytes = written([&](OutStream& out) { return subject_.store(out, version_, record); }, &ok);
    return ok ? std::optional(std::move(bytes)) : std::nullopt;
  }

  void check(const Bytes& file, const std::string& what) {
    SCOPED_TRACE(subject_.name + " of version " + std::to_string(version_) + ", " + what);
    ++count_;
    const std::string path = folder_.overwrite("damaged", file);
    const auto record = std::make_unique<Record>();
    const std::clock_t from = std::clock();
    std::int64_t status = 0;
    std::size_t peak = 0;
    {
      const AllocationMeter meter;
      status = load(path, *record);
      peak = meter.peak();
    }
    const double seconds = static_cast<double>(std::clock() - from) / CLOCKS_PER_SEC;
    if (seconds > slowest_) {
      slowest_ = seconds;
      slowestCase_ = std::to_string(version_) + " " + what;
    }
    EXPECT_TRUE(subject_.statuses.contains(status)) << status;
    EXPECT_LE(peak, 16 * file.size() + sizeof(Record) + kMiB);
    EXPECT_LT(seconds, kMaxSeconds);
    subject_.queryByPath(path.c_str(), status, *record);
    (void)storedForm(*record);
    // A load of the sound file has the same result as one into a fresh record.
    subject_.beforeLoad(*record);
    EXPECT_EQ(load(goodPath_, *record), goodStatus_);
    EXPECT_TRUE(storedForm(*record) == stored_) << "loaded again";
  }

  const Subject<kKind>& subject_;
  int version_;
  TempFolder folder_;
  Bytes good_;
  std::string goodPath_;
  std::int64_t goodStatus_ = 0;
  std::optional<Bytes> stored_;
  std::vector<explain::MapLine> numbers_;
  std::set<std::int64_t> bounds_;
  std::size_t count_ = 0;
  double slowest_ = 0;
  std::string slowestCase_;
};

// bounds: the limits of counts and widths in these files, of all versions together.
template <FileKind kKind>
void sweep(const Subject<kKind>& subject, std::set<std::int64_t> bounds) {
  std::set<std::int64_t> found;
  std::size_t count = 0;
  double slowest = 0;
  std::string slowestCase;
  for (const int version : subject.versions) {
    if (!isLongRun() && version != subject.versions.front() && version != subject.versions.back()) continue;
    Sweep<kKind> one(subject, version);
    one.flipBits();
    one.setNumbers();
    found.insert(one.bounds().begin(), one.bounds().end());
    count += one.count();
    if (one.slowest() > slowest) {
      slowest = one.slowest();
      slowestCase = one.slowestCase();
    }
    if (testing::Test::HasFailure()) break;
  }
  EXPECT_EQ(found, bounds) << subject.name;
  testing::Test::RecordProperty("files", static_cast<int>(count));
  testing::Test::RecordProperty("slowest_microseconds", static_cast<int>(slowest * 1e6));
  testing::Test::RecordProperty("slowest", slowestCase);
  if (isLongRun())
    std::cout << subject.name << ": " << count << " files, slowest load " << slowest * 1e3 << " ms (" << slowestCase
              << ")\n";
}

// The limits are, for shapes 9 values and 2 extra values, for stations 9 pair values and 2 extra words, for step tables
// 20 steps, for parts 250 slots; for names and texts 256 bytes, in sheets 260; for materials a table version of 502, a
// name of 10000 bytes, 6 tool sets and setting lists, 20 colours, 5 groups, 10 entries or 5 pairs of a rule; for
// machines 8 clamps, 40000 cells, 255 triads, 3 columns; for sheets 25 rows.
TEST(DamagedFiles, OfPartsDoNoHarm) { sweep(parts(), {2, 9, 20, 250}); }
TEST(DamagedFiles, OfOldestPartsDoNoHarm) { sweep(oldestParts(), {}); }
TEST(DamagedFiles, OfGroupPartsDoNoHarm) { sweep(groupParts(), {2, 9, 20, 250, 256}); }
TEST(DamagedFiles, OfSpecialToolsDoNoHarm) { sweep(specialTools(), {2, 9}); }
TEST(DamagedFiles, OfMachinesDoNoHarm) { sweep(machines(), {2, 3, 5, 6, 8, 9, 10, 20, 255, 256, 10000, 40000}); }
TEST(DamagedFiles, OfMaterialsDoNoHarm) { sweep(materials(), {2, 5, 6, 9, 10, 20, 256, 502, 10000}); }
TEST(DamagedFiles, OfParameterTablesDoNoHarm) { sweep(tables(), {256}); }
TEST(DamagedFiles, OfToolInventoriesDoNoHarm) { sweep(inventories(), {20}); }
TEST(DamagedFiles, OfMacrosDoNoHarm) { sweep(macros(), {2, 9}); }
TEST(DamagedFiles, OfSheetsDoNoHarm) {
  sweep(sheets(), {2, 3, 5, 6, 8, 9, 10, 20, 25, 250, 255, 256, 260, 502, 10000, 40000});
}

}  // namespace
