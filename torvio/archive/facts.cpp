#include "torvio/archive/facts.h"

#include <algorithm>
#include <limits>
#include <string_view>
#include <utility>

#include "src/file_records.h"
#include "src/sheet/nest.h"
#include "src/tooling/tool_kinds.h"
#include "torvio/draw/tool_outline.h"
#include "torvio/values/quantity.h"

namespace oldtorvio::archive {
namespace {

class Extract {
 public:
  explicit Extract(const values::TextEncoding& encoding) : encoding_(encoding) {}

  Facts facts(const OldSheet& sheet) const {
    Facts facts;
    facts.name = text(sheet.sheetLabel);
    facts.material = text(sheet.paramTable.name);
    facts.materialGroup = text(sheet.materialGroup);
    facts.materialType = text(sheet.materialType);
    facts.machine = text(sheet.machine.path);
    setSize(facts, sheet);
    facts.shapeCount = countOf(sheet.shapes.shapes);
    addParts(facts, sheet.partList.parts);
    std::vector<std::string> orders;
    for (const PartFacts& part : facts.parts)
      if (!part.workOrder.empty() && std::find(orders.begin(), orders.end(), part.workOrder) == orders.end() &&
          orders.size() < kMostOrders)
        orders.push_back(part.workOrder);
    facts.workOrder.emplace();
    for (const std::string& order : orders) facts.workOrder->append(facts.workOrder->empty() ? "" : ", ").append(order);
    addUsedTools(facts, sheet);
    return facts;
  }
  Facts facts(const TorvPart& part) const {
    Facts facts;
    facts.name = text(part.productName);
    facts.assembly = text(part.assemblyName);
    facts.material = text(part.materialName);
    facts.materialType = text(part.materialType);
    setSize(facts, part);
    facts.shapeCount = countOf(part.shapes.shapes);
    addTools(facts, "toolStations", part.toolStations, draw::holdsTool);
    return facts;
  }
  Facts facts(const SheetPartList& list) const {
    Facts facts;
    addParts(facts, list.parts);
    return facts;
  }
  Facts facts(const OldMachine& machine) const {
    Facts facts;
    facts.name = text(machine.displayName);
    facts.width = machine.sizeX;
    facts.height = machine.sizeY;
    facts.material = decoded(machine.material.name);
    addTools(facts, "stationsA", machine.stationsA, draw::machineHoldsTool);
    addTools(facts, "stationsB", machine.stationsB, draw::machineHoldsTool);
    addTools(facts, "stationsC", machine.stationsC, draw::machineHoldsTool);
    return facts;
  }
  Facts facts(const OldMaterial& material) const {
    Facts facts;
    facts.name = decoded(material.name);
    return facts;
  }
  Facts facts(const OldToolInventory& inventory) const {
    Facts facts;
    facts.toolCount = countOf(inventory.tools);
    for (std::size_t i = 0; i < inventory.tools.size(); ++i) {
      const OldTool& tool = inventory.tools[i];
      facts.tools.push_back(toolFacts("tools", i, tool));
      const auto* const file = tool.shapeCode == kSpecialTool ? specialToolFileOf(inventory, tool) : nullptr;
      if (file != nullptr) facts.tools.back().specialTool = text(*file);
    }
    return facts;
  }
  Facts facts(const OldMacro& macro) const {
    Facts facts;
    facts.shapeCount = countOf(macro.shapes.shapes);
    addTools(facts, "stationList", macro.stationList, draw::holdsTool);
    return facts;
  }
  Facts facts(const OldSpecialTool& file) const {
    Facts facts;
    facts.shapeCount = countOf(file.shapes.shapes);
    facts.toolCount = 1;
    facts.tools.push_back(toolFacts("tool", 0, file.tool));
    return facts;
  }

 private:
  static constexpr std::size_t kMostOrders = 100;

  template <class Field>
  std::string text(const Field& field) const {
    return decoded(fixedText(field));
  }
  std::string decoded(std::string_view bytes) const {
    std::string utf8;
    encoding_.appendUtf8(utf8, bytes);
    return utf8;
  }
  static std::int64_t countOf(const auto& list) { return static_cast<std::int64_t>(list.size()); }

  static std::int64_t signedCount(std::uint64_t count) {
    constexpr std::uint64_t kMost = std::numeric_limits<std::int64_t>::max();
    return static_cast<std::int64_t>(std::min(count, kMost));
  }

  static void setSize(Facts& facts, const auto& record) {
    facts.width = record.width;
    facts.height = record.height;
    facts.thickness = record.thickness;
  }

  void addParts(Facts& facts, const std::vector<TorvPart>& parts) const {
    std::uint64_t placements = 0;
    facts.parts.reserve(parts.size());
    for (const TorvPart& part : parts) {
      facts.parts.push_back({text(part.partName), text(part.partFullDosName), text(part.materialName),
                             text(part.woNumber), part.width, part.height, part.thickness,
                             signedCount(values::quantityOf(part))});
      placements = values::sumOf(placements, values::quantityOf(part));
    }
    facts.partCount = countOf(parts);
    facts.placementCount = signedCount(placements);
  }

  ToolFacts toolFacts(std::string_view list, std::size_t at, const OldTool& tool) const {
    ToolFacts facts{std::string(list), static_cast<std::int64_t>(at) + 1,
                    tool.shapeCode,    tool.dimension1,
                    tool.dimension2,   tool.dimension3,
                    tool.orientation,  {}};
    if (tool.shapeCode == kSpecialTool) facts.specialTool = text(tool.specialToolPath);
    return facts;
  }
  // `holdsTool` says which stations hold a tool: in a machine, stations count their tools.
  void addTools(Facts& facts, std::string_view list, const ToolStationList& stations, auto holdsTool) const {
    std::int64_t tools = 0;
    for (std::size_t i = 0; i < std::min(stations.stations.size(), stations.tools.size()); ++i) {
      if (!holdsTool(stations.stations[i], stations.tools[i])) continue;
      facts.tools.push_back(toolFacts(list, i, stations.tools[i]));
      ++tools;
    }
    facts.stationCount = facts.stationCount.value_or(0) + countOf(stations.stations);
    facts.toolCount = facts.toolCount.value_or(0) + tools;
  }

  void addUsedTools(Facts& facts, const OldSheet& sheet) const {
    const ToolStationList& list = stationListOf(sheet.machine);
    const char* const name = usesSecondStationList(sheet.machine) ? "machine.stationsB" : "machine.stationsA";
    std::vector<std::size_t> used = usedTools(sheet);
    std::ranges::sort(used);
    for (const std::size_t position : used)
      if (list.tools[position].shapeCode != 0) facts.tools.push_back(toolFacts(name, position, list.tools[position]));
    facts.stationCount = countOf(list.stations);
    facts.toolCount = countOf(facts.tools);
  }

  const values::TextEncoding& encoding_;
};

}  // namespace

std::vector<std::size_t> usedTools(const OldSheet& sheet) {
  const ToolStationList& list = stationListOf(sheet.machine);
  const std::size_t count = std::min(list.stations.size(), list.tools.size());
  std::vector<bool> isKnown(count);
  std::vector<std::size_t> positions;
  const auto note = [&](const ToolUse& use) {
    if (use.number < 1 || static_cast<std::uint64_t>(use.number) > count) return;
    const auto position = static_cast<std::size_t>(use.number) - 1;
    if (isKnown[position] || (use.slot != nullptr && list.stations[position].toolCount == 0)) return;
    isKnown[position] = true;
    positions.push_back(position);
  };
  eachToolUse(sheet, note);
  if (const auto special = specialStationOf(sheet)) note({.number = *special});
  return positions;
}

template <class Record>
Facts factsOf(const Record& record, const values::TextEncoding& encoding) {
  return Extract(encoding).facts(record);
}

template Facts factsOf(const TorvPart&, const values::TextEncoding&);
template Facts factsOf(const SheetPartList&, const values::TextEncoding&);
template Facts factsOf(const OldSpecialTool&, const values::TextEncoding&);
template Facts factsOf(const OldMachine&, const values::TextEncoding&);
template Facts factsOf(const OldMaterial&, const values::TextEncoding&);
template Facts factsOf(const OldToolInventory&, const values::TextEncoding&);
template Facts factsOf(const OldMacro&, const values::TextEncoding&);
template Facts factsOf(const OldSheet&, const values::TextEncoding&);

}  // namespace oldtorvio::archive
