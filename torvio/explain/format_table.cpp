#include "torvio/explain/format_table.h"

#include <algorithm>
#include <array>
#include <memory>

#include "src/file_records.h"
#include "torvio/explain/format_printer.h"

namespace oldtorvio::explain {

// Records that several kinds of file embed, and those that one kind embeds more than once.
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
inline constexpr std::string_view kTableOf<TorvPart> = "part";
template <>
inline std::string_view tableFor<TorvPart>(const PartForm& form) {
  return form.place == PartForm::sheet ? "placed part" : "grouped part";
}
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
void walkFresh(FormatPrinter& printer, const A&... more) {
  const auto record = std::make_unique<Record>();
  (void)printer.walk(*record, more...);
}

template <class OldPart>
void walkOldPart(FormatPrinter& printer) {
  const auto part = std::make_unique<TorvPart>();
  // A list for an index that a file gives; the index of its last shape is printed by name.
  constexpr std::size_t kShapes = 3001;
  part->shapes.shapes.resize(kShapes);
  printer.call(kShapes - 1, "the last of shapes");
  OldPart old{*part};
  (void)printer.walk(old);
}

struct RecordTable {
  std::string_view name;
  void (*walk)(FormatPrinter&);
  FormatPrinter::Place place = FormatPrinter::Place::open;
};

// A record that other tables refer to, by the name that they use.
template <class Record, auto... more>
constexpr RecordTable tableOf() {
  return {kTableOf<Record>, [](FormatPrinter& printer) { walkFresh<Record>(printer, more...); }};
}

constexpr std::array kRecords{
    RecordTable{"part 2 3", walkOldPart<codec::Version3Part>},
    RecordTable{"part 5", walkOldPart<codec::Version5Part>},
    RecordTable{"placed part",
                [](FormatPrinter& printer) {
                  walkFresh<TorvPart>(printer, PartForm{PartForm::sheet, printer.numberCalled("nameWidth")});
                },
                FormatPrinter::Place::given},
    RecordTable{"grouped part",
                [](FormatPrinter& printer) {
                  walkFresh<TorvPart>(printer, PartForm{PartForm::group, printer.numberCalled("nameBlockSize")});
                },
                FormatPrinter::Place::given},
    tableOf<Pattern, false>(),
    tableOf<PatternItem>(),
    tableOf<Shape>(),
    tableOf<ShapeList>(),
    tableOf<OldTool, true>(),
    tableOf<ToolStation>(),
    tableOf<ToolStationList>(),
    tableOf<ProcessSlot>(),
    tableOf<StepTable>(),
    tableOf<SetupEntry>(),
    tableOf<SetupList>(),
    tableOf<MotionBlock>(),
    tableOf<ProfileRecord>(),
    tableOf<WorkEntry>(),
    tableOf<MarkEntry>(),
    tableOf<ParamTable>(),
    tableOf<OldMaterial>(),
    tableOf<SettingEntry>(),
    tableOf<SettingGroup>(),
    tableOf<MaterialToolSet>(),
    tableOf<AngleRule, false>(),
    RecordTable{"size rule a", [](FormatPrinter& printer) { walkFresh<SizeRule>(printer, SizeRuleForm::a); },
                FormatPrinter::Place::given},
    RecordTable{"size rule b", [](FormatPrinter& printer) { walkFresh<SizeRule>(printer, SizeRuleForm::b); },
                FormatPrinter::Place::given},
    tableOf<ShapeProgram>(),
    tableOf<ShapeProgramEx>(),
    tableOf<ClampInfo>(),
    tableOf<MachineGrid>(),
    tableOf<MachineExtension>(),
    tableOf<MachineUnitTable>(),
};

// "shape list" is "shape-list" on a command line.
std::string commandName(std::string_view name) {
  std::string all(name);
  std::replace(all.begin(), all.end(), ' ', '-');
  return all;
}

// Widths and counts that a walk begins with, where it does not read them.
void nameSizes(FormatPrinter&, auto&) {}
void nameSizes(FormatPrinter& printer, OldMachine& machine) {
  machine.textWidth = printer.numberCalled("textWidth");
  machine.secondTextWidth = machine.textWidth;
}
void nameSizes(FormatPrinter& printer, OldSheet& sheet) {
  sheet.textWidth = printer.numberCalled("textWidth");
  sheet.clampInfo.clampCount = printer.numberCalled("clampCount");
}

}  // namespace

std::string formatTable(FileKind kind) {
  const auto walk = [kind](FormatPrinter& printer) {
    std::int16_t version = 0;
    (void)printer.fields(FIELDS(version));
    withFileRecord(kind, [&](auto file) {
      const auto record = std::make_unique<typename decltype(file)::Record>();
      nameSizes(printer, *record);
      (void)file.walk(printer, *record);
    });
  };
  // A part file is a place of its own for the pattern in it.
  return FormatPrinter::table(walk, kind == FileKind::part ? FormatPrinter::Place::given : FormatPrinter::Place::open);
}

std::string recordTable(std::string_view name) {
  const auto found =
      std::find_if(kRecords.begin(), kRecords.end(), [&](const auto& one) { return commandName(one.name) == name; });
  return found == kRecords.end() ? std::string() : FormatPrinter::table(found->walk, found->place);
}

std::vector<std::string> recordNames() {
  std::vector<std::string> names;
  names.reserve(kRecords.size());
  for (const RecordTable& one : kRecords) names.push_back(commandName(one.name));
  return names;
}

}  // namespace oldtorvio::explain
