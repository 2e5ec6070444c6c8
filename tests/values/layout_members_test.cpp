// Layouts and lists of members agree: what a layout moves belongs to a member that files store, and each such
// member is moved by a layout.
#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "src/machine/machine_layout.h"
#include "src/material/material_layout.h"
#include "src/part/old_part_layout.h"
#include "src/part/part_layout.h"
#include "src/sheet/sheet_layout.h"
#include "src/tooling/inventory_layout.h"
#include "src/tooling/macro_layout.h"
#include "src/tooling/special_tool_layout.h"
#include "tests/values/every_record.h"
#include "torvio/values/renamed_fields.h"

namespace {

using namespace oldtorvio;
using testing_support::EveryRecord;
using values::MemberInfo;
using values::Members;

// ---- the walker: walks all that a layout names, at every version and under every condition -----------

struct Moved {
  const std::byte* at;
  std::size_t size;
};

class AddressWalker : public codec::RecordWalker<AddressWalker> {
 public:
  explicit AddressWalker(std::vector<Moved>& moved, int version = codec::kUnversioned)
      : codec::RecordWalker<AddressWalker>(version), moved_(moved) {}

  template <class Names, class... T>
  [[nodiscard]] bool fields(const codec::Fields<Names, T...>& f) {
    std::apply([&](auto&... m) { (move(m), ...); }, f.members);
    return true;
  }
  [[nodiscard]] bool since(int, const auto& x, const auto&...) { return nested(x); }
  [[nodiscard]] bool below(int, const auto& x) { return nested(x); }
  [[nodiscard]] bool between(int, int, const auto& x) { return nested(x); }
  [[nodiscard]] bool when(const auto&, const auto& x) { return nested(x); }
  [[nodiscard]] bool leading(std::int64_t, const auto& x) { return fields(x); }
  [[nodiscard]] bool slice(const auto& x, std::size_t, std::size_t) { return fields(x); }
  [[nodiscard]] bool sized(const auto& x, std::int32_t) { return fields(x); }
  [[nodiscard]] bool lengthText(const auto& x, const auto&...) { return fields(x); }
  template <std::size_t Width>
  [[nodiscard]] bool textItem(const auto& x) {
    return fields(x);
  }
  [[nodiscard]] bool reserved(std::size_t) { return true; }
  [[nodiscard]] bool padded(std::size_t, const auto& chain) { return chain(); }

  static auto& unchanged(auto& record) { return record; }
  [[nodiscard]] bool require(const auto&) { return true; }
  [[nodiscard]] bool beforeWrite(const auto&, const char*, const auto&) { return true; }
  [[nodiscard]] bool differs(const auto& read, const auto& written) { return read() && written(); }
  [[nodiscard]] bool onlyRead(const auto&) { return true; }  // the layouts that are only read have their own walks
  template <class T>
  constexpr T either(T forReaders, T) const {
    return forReaders;
  }

  template <class R>
  [[nodiscard]] bool walk(R& record, const auto&... more) {
    return codec::Layout<R>::describe(*this, record, more...);
  }
  // Lists as such: their elements have layouts of their own.
  std::int32_t countOf(const auto&) const { return 1; }
  [[nodiscard]] bool list(const auto& x, const auto& /*rule*/, const auto&...) { return fields(x); }
  [[nodiscard]] bool element(const auto& x, std::size_t, const auto& chain) { return fields(x) && chain(); }
  // The trailer of a shape is in the list's layout, the number in the shape.
  [[nodiscard]] bool trailer(const auto& x, auto) { return fields(x); }
  [[nodiscard]] bool rows(std::int64_t count, const auto& row) {
    for (std::int64_t i = 0; i < count; ++i) (void)row(static_cast<std::size_t>(i));
    return true;
  }

 private:
  template <class T>
  void move(T& member) {
    add(&member, sizeof member);
  }
  template <class Stored, class T>
  void move(const codec::As<Stored, T>& as) {
    move(as.member);
  }
  template <class T>
  void move(const codec::NonZero<T>& number) {
    move(number.member);
  }
  template <class... T>
  void move(const codec::Block<T...>& block) {
    std::apply([&](auto&... m) { (move(m), ...); }, block.members);
  }

  void add(const void* at, std::size_t size);

  std::vector<Moved>& moved_;
};

void AddressWalker::add(const void* at, std::size_t size) {
  moved_.push_back({static_cast<const std::byte*>(at), size});
}

// ---- the walks of each record ------------------------------------------------------------------------

// Rows are walked as far as the record counts them: all.
void countAll(auto&) {}
void countAll(StepTable& t) { t.stepCount = 20; }
void countAll(AngleRule& r) { r.angleCount = 10; }
void countAll(MaterialToolSetTable& t) { t.setCount = 6; }
void countAll(MaterialPalette& p) { p.colourCount = 20, p.groupCount = 5; }
void countAll(OldMaterial& m) { m.settingListCount = 6; }
void countAll(OldMachine& m) { m.triadCount = 255; }
void countAll(RowTable& t) { t.count = 25; }
void countAll(ClampRowTable& t) { t.count = 25; }
void countAll(TorvPart& p) { p.processSlotCount = 250; }
void countAll(OldSheet& s) { s.processSlotCount = 127; }

void walkAll(AddressWalker& walker, auto& record) { (void)walker.walk(record); }
void walkAll(AddressWalker&, MachineSetup&) {}  // stored by the machine, field by field
void walkAll(AddressWalker& walker, Pattern& pattern) { (void)walker.walk(pattern, true); }
void walkAll(AddressWalker& walker, OldTool& tool) { (void)walker.walk(tool, true); }
void walkAll(AddressWalker& walker, AngleRule& rule) { (void)walker.walk(rule, false); }
void walkAll(AddressWalker& walker, ClampRowTable& table) { (void)walker.walk(table, 8); }
void walkAll(AddressWalker& walker, SizeRule& rule) {
  (void)walker.walk(rule, SizeRuleForm::a);
  (void)walker.walk(rule, SizeRuleForm::b);
}
void walkAll(AddressWalker& walker, OldMachine& machine) {
  ShapeList shapes;
  (void)walker.walk(machine, MachineForm<ShapeList>{&shapes});
}

std::vector<Moved> movedBy(auto& record) {
  std::vector<Moved> moved;
  AddressWalker walker(moved);
  walkAll(walker, record);
  return moved;
}
std::vector<Moved> movedBy(TorvPart& part) {
  std::vector<Moved> moved;
  for (const PartForm& form :
       {PartForm{PartForm::file}, PartForm{PartForm::group, 256}, PartForm{PartForm::sheet, 256}}) {
    AddressWalker walker(moved);
    (void)walker.walk(part, form);
  }
  for (const int version : {frame::kVersion5, 3, 2}) {
    AddressWalker walker(moved, version);
    (void)codec::walkOldestPart(walker, part);
  }
  return moved;
}

// ---- the two compared --------------------------------------------------------------------------------

// Stored, but by way of a local of the layout, of a view of it or of the code around it.
std::set<std::string> storedByOtherWays() {
  std::set<std::string> names{
      // The version word at the beginning of a file.
      "OldMachine.version", "OldMacro.version", "OldMaterial.version", "OldSheet.version", "OldTool.fileVersion",
      "OldToolInventory.version", "TorvPart.version",
      // Names and widths that take effect after a load of what follows them.
      "OldMachine.path", "OldMachine.textWidth", "OldMachine.secondTextWidth", "TorvPart.partFullDosName",
      // Stored in another form.
      "MachineGrid.gridWidth", "OldTool.symmetryFlags",
      // A number of each shape that the owner of the list stores.
      "Shape.trailerValue",
      // A machine stores the fields of its third setup and copies the first into the second.
      "MachineSetup.sizeX", "MachineSetup.sizeY", "MachineSetup.clampInfo", "MachineSetup.clampValue1",
      "MachineSetup.clampValue2", "MachineSetup.machineWord91", "MachineSetup.machineWord92",
      // Stored by the sheet of the machine.
      "MachineExtension.extensionEntries",
      // A material file stores them apart from the body.
      "OldMaterial.params"};
  for (const auto& column : values::kBindColumns) names.insert("Pattern." + std::string(column.member));
  return names;
}

bool isWithin(const Moved& moved, const void* at, std::size_t size) {
  const auto* const begin = static_cast<const std::byte*>(at);
  return moved.at >= begin && moved.at + moved.size <= begin + size;
}
// Elements of a lazy array are outside of the record.
template <class T>
bool belongsTo(const Moved& moved, T& member) {
  if constexpr (values::Lazy<T>) {
    for (auto& element : member)
      if (isWithin(moved, &element, sizeof element)) return true;
    return false;
  } else {
    return isWithin(moved, &member, sizeof member);
  }
}

TEST(LayoutsAndMembers, AgreeOnWhatFilesStore) {
  const std::set<std::string> otherWays = storedByOtherWays();
  EveryRecord::each([&]<class Record>() {
    const std::string recordName(Members<Record>::kRecordName);
    const auto record = std::make_unique<Record>();
    countAll(*record);
    const std::vector<Moved> moved = movedBy(*record);
    std::vector<bool> hasOwner(moved.size());
    Members<Record>::of(*record, [&](const MemberInfo& info, auto& member) {
      const std::string name = recordName + '.' + std::string(info.name);
      bool isMoved = false;
      for (std::size_t i = 0; i < moved.size(); ++i)
        if (belongsTo(moved[i], member)) isMoved = hasOwner[i] = true;
      const bool isElsewhere = otherWays.count(name) == 1;
      EXPECT_EQ(isMoved || isElsewhere, info.isStored) << name;
      EXPECT_FALSE(isMoved && isElsewhere) << name;
    });
    // What lies outside of the record is a local of its layout.
    for (std::size_t i = 0; i < moved.size(); ++i) {
      const auto* const begin = reinterpret_cast<const std::byte*>(record.get());
      const bool isOutside = moved[i].at + moved[i].size <= begin || moved[i].at >= begin + sizeof(Record);
      EXPECT_TRUE(hasOwner[i] || isOutside) << recordName << ", byte " << moved[i].at - begin;
    }
  });
}

}  // namespace
