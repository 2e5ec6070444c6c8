#include "torvio/explain/format_table.h"

#include <algorithm>
#include <array>
#include <memory>

#include "src/machine/machine_layout.h"
#include "src/material/material_layout.h"
#include "src/part/old_part_layout.h"
#include "src/part/part_layout.h"
#include "src/sheet/sheet_layout.h"
#include "src/tooling/inventory_layout.h"
#include "src/tooling/macro_layout.h"
#include "src/tooling/special_tool_layout.h"
#include "torvio/explain/format_printer.h"

namespace oldtorvio::explain {

// Records that several kinds of file embed, and those that stand in one kind more than once.
template <>
inline constexpr std::string_view kTableOf<Shape> = "shape";
template <>
inline constexpr std::string_view kTableOf<ShapeList> = "shape list";
template <>
inline constexpr std::string_view kTableOf<OldTool> = "tool";
template <>
inline constexpr std::string_view kTableOf<ToolStation> = "tool station";
template <>
inline constexpr std::string_view kTableOf<ToolStationList> = "tool station list";
template <>
inline constexpr std::string_view kTableOf<ProcessSlot> = "process slot";
template <>
inline constexpr std::string_view kTableOf<StepTable> = "step table";
template <>
inline constexpr std::string_view kTableOf<SetupEntry> = "setup entry";
template <>
inline constexpr std::string_view kTableOf<SetupList> = "setup list";
template <>
inline constexpr std::string_view kTableOf<MotionBlock> = "motion block";
template <>
inline constexpr std::string_view kTableOf<ProfileRecord> = "profile";
template <>
inline constexpr std::string_view kTableOf<PatternItem> = "pattern item";
template <>
inline constexpr std::string_view kTableOf<WorkEntry> = "work entry";
template <>
inline constexpr std::string_view kTableOf<MarkEntry> = "mark";
template <>
inline constexpr std::string_view kTableOf<Pattern> = "pattern";
template <>
inline constexpr std::string_view kTableOf<TorvPart> = "part body";
template <>
inline constexpr std::string_view kTableOf<ParamTable> = "parameter table";
template <>
inline constexpr std::string_view kTableOf<OldMaterial> = "material body";
template <>
inline constexpr std::string_view kTableOf<OldMachine> = "machine";
template <>
inline constexpr std::string_view kTableOf<ShapeProgram> = "shape program";
template <>
inline constexpr std::string_view kTableOf<ShapeProgramEx> = "extended shape program";
template <>
inline constexpr std::string_view kTableOf<SettingEntry> = "setting entry";
template <>
inline constexpr std::string_view kTableOf<SettingGroup> = "setting group";
template <>
inline constexpr std::string_view kTableOf<MaterialToolSet> = "tool set";
template <>
inline constexpr std::string_view kTableOf<AngleRule> = "angle rule";
template <>
inline constexpr std::string_view kTableOf<SizeRule> = "size rule";
template <>
inline constexpr std::string_view kTableOf<ClampInfo> = "clamp info";
template <>
inline constexpr std::string_view kTableOf<MachineGrid> = "machine grid";
template <>
inline constexpr std::string_view kTableOf<MachineExtension> = "machine extension";
template <>
inline constexpr std::string_view kTableOf<MachineUnitTable> = "unit table";

namespace {

template <class Record, class... A>
void walkFresh(FormatPrinter& teller, const A&... more) {
  const auto record = std::make_unique<Record>();
  (void)teller.walk(*record, more...);
}

template <class OldPart>
void walkOldPart(FormatPrinter& teller) {
  const auto part = std::make_unique<TorvPart>();
  // A list for an index that a file gives; its last place tells itself by its name.
  constexpr std::size_t kShapes = 3001;
  part->shapes.shapes.resize(kShapes);
  teller.call(kShapes - 1, "the last of shapes");
  OldPart old{*part};
  (void)teller.walk(old);
}

void walkMachine(FormatPrinter& teller) {
  const auto machine = std::make_unique<OldMachine>();
  machine->textWidth = teller.numberCalled("textWidth");
  machine->secondTextWidth = machine->textWidth;
  ShapeList shapes;
  (void)teller.walk(*machine, MachineForm<ShapeList>{&shapes});
}

void walkMaterial(FormatPrinter& teller) {
  const auto record = std::make_unique<OldMaterial>();
  OldMaterial& material = *record;
  (void)teller.record(FIELDS(material.params));
  (void)teller.walk(material);
}

void walkSheet(FormatPrinter& teller) {
  const auto sheet = std::make_unique<OldSheet>();
  sheet->textWidth = teller.numberCalled("textWidth");
  sheet->clampInfo.clampCount = teller.numberCalled("clampCount");
  (void)teller.walk(*sheet);
}

struct RecordTable {
  std::string_view name;
  void (*walk)(FormatPrinter&);
  FormatPrinter::Place place = FormatPrinter::Place::open;
};

constexpr std::array kRecords{
    RecordTable{"part-2-3", walkOldPart<codec::Version3Part>},
    RecordTable{"part-5", walkOldPart<codec::Version5Part>},
    RecordTable{"placed-part",
                [](FormatPrinter& t) {
                  walkFresh<TorvPart>(t, PartForm{PartForm::sheet, t.numberCalled("nameWidth")});
                },
                FormatPrinter::Place::given},
    RecordTable{"pattern", [](FormatPrinter& t) { walkFresh<Pattern>(t, false); }},
    RecordTable{"parameter-table", [](FormatPrinter& t) { walkFresh<ParamTable>(t); }},
    RecordTable{"material-body", [](FormatPrinter& t) { walkFresh<OldMaterial>(t); }},
    RecordTable{"setting-entry", [](FormatPrinter& t) { walkFresh<SettingEntry>(t); }},
    RecordTable{"setting-group", [](FormatPrinter& t) { walkFresh<SettingGroup>(t); }},
    RecordTable{"tool-set", [](FormatPrinter& t) { walkFresh<MaterialToolSet>(t); }},
    RecordTable{"angle-rule", [](FormatPrinter& t) { walkFresh<AngleRule>(t, false); }},
    RecordTable{"size-rule-a", [](FormatPrinter& t) { walkFresh<SizeRule>(t, SizeRuleForm::a); },
                FormatPrinter::Place::given},
    RecordTable{"size-rule-b", [](FormatPrinter& t) { walkFresh<SizeRule>(t, SizeRuleForm::b); },
                FormatPrinter::Place::given},
    RecordTable{"shape-program", [](FormatPrinter& t) { walkFresh<ShapeProgram>(t); }},
    RecordTable{"extended-shape-program", [](FormatPrinter& t) { walkFresh<ShapeProgramEx>(t); }},
    RecordTable{"clamp-info", [](FormatPrinter& t) { walkFresh<ClampInfo>(t); }},
    RecordTable{"machine-grid", [](FormatPrinter& t) { walkFresh<MachineGrid>(t); }},
    RecordTable{"machine-extension", [](FormatPrinter& t) { walkFresh<MachineExtension>(t); }},
    RecordTable{"unit-table", [](FormatPrinter& t) { walkFresh<MachineUnitTable>(t); }},
};

void walkBody(FileKind kind, FormatPrinter& teller) {
  switch (kind) {
    case FileKind::part:
      return walkFresh<TorvPart>(teller, PartForm{});
    case FileKind::groupPart: {
      std::vector<TorvPart> parts;
      codec::GroupPartFile<std::vector<TorvPart>> file{parts};
      (void)teller.walk(file);
      return;
    }
    case FileKind::specialTool:
      return walkFresh<OldSpecialTool>(teller);
    case FileKind::machine:
      return walkMachine(teller);
    case FileKind::material:
      return walkMaterial(teller);
    case FileKind::toolInventory:
      return walkFresh<OldToolInventory>(teller);
    case FileKind::macro:
      return walkFresh<OldMacro>(teller);
    default:
      return walkSheet(teller);
  }
}

}  // namespace

std::string formatTable(FileKind kind) {
  const auto walk = [kind](FormatPrinter& teller) {
    std::int16_t version = 0;
    (void)teller.fields(FIELDS(version));
    walkBody(kind, teller);
  };
  // A part body says much by its place, and that of a part file is known.
  return FormatPrinter::table(walk, kind == FileKind::part ? FormatPrinter::Place::given : FormatPrinter::Place::open);
}

std::string recordTable(std::string_view name) {
  const auto found = std::find_if(kRecords.begin(), kRecords.end(), [&](const auto& one) { return one.name == name; });
  return found == kRecords.end() ? std::string() : FormatPrinter::table(found->walk, found->place);
}

std::vector<std::string_view> recordNames() {
  std::vector<std::string_view> names;
  names.reserve(kRecords.size());
  for (const RecordTable& one : kRecords) names.push_back(one.name);
  return names;
}

}  // namespace oldtorvio::explain
