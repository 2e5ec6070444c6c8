#include "torvio/explain/format_table.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <memory>

#include "src/file_records.h"
#include "torvio/explain/format_printer.h"
#include "torvio/explain/record_names.h"

namespace oldtorvio::explain {

namespace {

template <class Record, class... A>
void walkFresh(FormatPrinter& printer, const A&... more) {
  const auto record = std::make_unique<Record>();
  (void)printer.walk(*record, more...);
}

template <class OldPart>
void walkOldPart(FormatPrinter& printer) {
  const auto part = std::make_unique<TorvPart>();
  // A list for an index that is stored in the file; the index of its last shape is printed by name.
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

// Sets the widths and counts that a walk uses but does not read.
void nameSizes(FormatPrinter&, auto&) {}
void nameSizes(FormatPrinter& printer, OldMachine& machine) {
  machine.textWidth = printer.numberCalled("textWidth");
  machine.secondTextWidth = machine.textWidth;
}
void nameSizes(FormatPrinter& printer, OldSheet& sheet) {
  sheet.textWidth = printer.numberCalled("textWidth");
  sheet.clampInfo.clampCount = printer.numberCalled("clampCount");
}

struct Numbered {
  std::string stem;
  int number = -1;  // none
};

Numbered numbered(const std::string& name) {
  std::size_t digits = name.size();
  while (digits > 0 && std::isdigit(static_cast<unsigned char>(name[digits - 1])) != 0) --digits;
  if (digits == name.size() || digits == 0 || name.size() - digits > 6) return {name, -1};
  return {name.substr(0, digits), std::stoi(name.substr(digits))};
}

bool follows(const std::string& name, const std::string& before) {
  const Numbered one = numbered(name), other = numbered(before);
  return other.number >= 0 && one.stem == other.stem && one.number == other.number + 1;
}

// "word1, word2, word3, tail" is "word1 to word3, tail".
std::string joinNames(const std::vector<std::string>& names) {
  constexpr std::size_t kShortestRun = 3;
  std::string all;
  for (std::size_t i = 0; i < names.size();) {
    std::size_t end = i + 1;
    while (end < names.size() && follows(names[end], names[end - 1])) ++end;
    if (end - i < kShortestRun) end = i + 1;
    all.append(all.empty() ? "" : ", ").append(names[i]);
    if (end - i > 1) all.append(" to ").append(names[end - 1]);
    i = end;
  }
  return all;
}

}  // namespace

std::vector<FormatRow> formatRows(FileKind kind) {
  const auto walk = [kind](FormatPrinter& printer) {
    std::int16_t version = 0;
    (void)printer.fields(FIELDS(version));
    withFileRecord(kind, [&](auto file) {
      const auto record = std::make_unique<typename decltype(file)::Record>();
      nameSizes(printer, *record);
      (void)file.walk(printer, *record);
    });
  };
  // For the pattern in it, a part file is a place like any other.
  return FormatPrinter::rows(walk, kind == FileKind::part ? FormatPrinter::Place::given : FormatPrinter::Place::open);
}

std::vector<FormatRow> recordRows(std::string_view name) {
  const auto found =
      std::find_if(kRecords.begin(), kRecords.end(), [&](const auto& one) { return commandName(one.name) == name; });
  return found == kRecords.end() ? std::vector<FormatRow>() : FormatPrinter::rows(found->walk, found->place);
}

std::string markdownOf(const std::vector<FormatRow>& rows) {
  std::string table = "| # | field | stored as | condition |\n|---|---|---|---|\n";
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const FormatRow& row = rows[i];
    table.append("| ").append(std::to_string(i + 1)).append(" | ").append(joinNames(row.fields)).append(" | ");
    table.append(row.storedAs).append(row.fields.size() > 1 ? " each" : "").append(row.storedAs.empty() ? "| " : " | ");
    table.append(row.condition).append(row.condition.empty() ? "|\n" : " |\n");
  }
  return table;
}

std::string formatTable(FileKind kind) { return markdownOf(formatRows(kind)); }
std::string recordTable(std::string_view name) {
  const std::vector<FormatRow> rows = recordRows(name);
  return rows.empty() ? std::string() : markdownOf(rows);
}

std::vector<std::string> recordNames() {
  std::vector<std::string> names;
  names.reserve(kRecords.size());
  for (const RecordTable& one : kRecords) names.push_back(commandName(one.name));
  return names;
}

}  // namespace oldtorvio::explain
