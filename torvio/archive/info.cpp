#include "torvio/archive/info.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <map>

#include "src/sheet/nest.h"
#include "src/tooling/tool_kinds.h"
#include "torvio/archive/facts.h"
#include "torvio/draw/tool_outline.h"
#include "torvio/explain/read_members.h"
#include "torvio/values/compiled_records.h"
#include "torvio/values/quantity.h"

namespace oldtorvio::archive {
namespace {

using frame::FileKind;

template <class T>
std::string digitsOf(T value) {
  char digits[32];
  const auto end = std::to_chars(digits, digits + sizeof digits, value);
  return {digits, end.ptr};
}

template <class T>
InfoValue numberOf(T value) {
  if constexpr (std::is_floating_point_v<T>) {
    if (!std::isfinite(value)) return {"", true};
    return {digitsOf(value == 0 ? T{0} : value), true};
  } else {
    return {digitsOf(value), true};
  }
}

// A number as people read it.
std::string shown(double value) { return draw::sizeText(value); }
std::string shown(float value) { return draw::sizeText(static_cast<double>(value)); }
template <std::integral T>
std::string shown(T value) {
  return digitsOf(value);
}

class InfoBuilder {
 public:
  InfoBuilder(Info& info, const explain::ReadMembers& read, const values::TextEncoding& encoding)
      : info_(info), read_(read), encoding_(encoding) {}

  void describe(const OldSheet& sheet) {
    if (read_.has("sheetLabel")) text("label", "label", decoded(sheet.sheetLabel));
    if (read_.has("height")) size("plate", "width", sheet.width, "height", sheet.height);
    if (read_.has("thickness")) number("thickness", "thickness", sheet.thickness);
    if (read_.has("materialType")) {
      text("material", "materialType", decoded(sheet.materialType));
      text("material group", "materialGroup", decoded(sheet.materialGroup));
    }
    if (read_.has("paramTable")) text("material file", "materialFile", decoded(sheet.paramTable.name));
    if (read_.has("machine")) {
      text("machine", "machine", nameOf(sheet.machine));
      text("machine file", "machineFile", decoded(sheet.machine.path));
    }
    const auto& parts = sheet.partList.parts;
    if (read_.has("partList")) {
      std::uint64_t placements = 0, copies = 0;
      std::set<std::string> orders;
      for (const TorvPart& part : parts) {
        placements += part.patterns.size();
        copies = values::sumOf(copies, values::quantityOf(part));
        if (!fixedText(part.woNumber).empty()) orders.insert(decoded(part.woNumber));
      }
      std::string all;
      for (const std::string& order : orders) all.append(all.empty() ? "" : ", ").append(order);
      text("work orders", "workOrders", all);
      add("parts",
          draw::countText(parts.size(), "part", "parts") + ", " +
              draw::countText(placements, "placement", "placements") + ", " + draw::countText(copies, "copy", "copies"),
          {{"partCount", numberOf(parts.size())},
           {"placementCount", numberOf(placements)},
           {"copyCount", numberOf(copies)}});
    }
    if (read_.has("shapes")) count("own shapes", "shapeCount", sheet.shapes.shapes.size());
    if (read_.has("skeletonShapes")) {
      text("skeleton", "skeleton", decoded(sheet.skeletonDosName));
      count("skeleton shapes", "skeletonShapeCount", sheet.skeletonShapes.shapes.size());
    }
    if (read_.has("workList")) count("sequence", "sequenceLength", sheet.workList.size());
    if (read_.has("clampInfo")) number("clamps", "clampCount", sheet.clampInfo.clampCount);
    if (read_.has("utilization")) number("utilization", "utilization", sheet.utilization);
    listParts(parts, true);
    if (!read_.has("machine.stationsA")) return;
    listTools("toolsUsed", stationListOf(sheet.machine), usedTools(sheet), nullptr);
  }

  void describe(const TorvPart& part) {
    if (read_.has("partName")) text("name", "name", decoded(part.partName));
    describeHead(part);
    if (read_.has("patterns") && !part.patterns.empty()) {
      const Pattern& first = part.patterns.front();
      const double angle = std::atan2(static_cast<double>(first.rotationSin), static_cast<double>(first.rotationCos));
      add("angle", shown(angle) + " rad", {{"angle", numberOf(angle)}});
    }
    if (read_.has("shapes")) {
      count("shapes", "shapeCount", part.shapes.shapes.size());
      listShapes(part.shapes);
    }
    if (!read_.has("toolStations")) return;
    std::vector<std::uint64_t> uses(part.toolStations.tools.size());
    if (!part.patterns.empty())
      for (const PatternItem& item : part.patterns.front().items)
        if (draw::toolAt(part.toolStations, item.toolNumber) != nullptr)
          ++uses[static_cast<std::size_t>(item.toolNumber) - 1];
    listTools("tools", part.toolStations, allOf(part.toolStations), &uses);
  }

  void describe(const SheetPartList& list) {
    count("parts", "partCount", list.parts.size());
    listParts(list.parts, false);
  }

  void describe(const OldSpecialTool& tool) {
    if (read_.has("tool")) describeTool(tool.tool);
    if (read_.has("shapes")) {
      count("shapes", "shapeCount", tool.shapes.shapes.size());
      listShapes(tool.shapes);
    }
    if (read_.has("setupList")) count("setup entries", "setupCount", tool.setupList.entries.size());
  }

  void describe(const OldMachine& machine) {
    if (read_.has("displayName")) text("name", "name", decoded(machine.displayName));
    if (read_.has("machineText1")) text("text 1", "machineText1", decoded(machine.machineText1));
    if (read_.has("machineKind")) number("machine kind", "machineKind", machine.machineKind);
    if (read_.has("secondText")) text("second text", "secondText", decoded(machine.secondText));
    if (read_.has("machineText2")) text("text 2", "machineText2", decoded(machine.machineText2));
    if (read_.has("machineText3")) text("text 3", "machineText3", decoded(machine.machineText3));
    if (read_.has("sizeX")) size("size", "sizeX", machine.sizeX, "sizeY", machine.sizeY);
    if (read_.has("workArea")) {
      std::string all;
      std::vector<std::pair<std::string, InfoValue>> values;
      for (int i = 0; i < 4; ++i) {
        all.append(i == 0 ? "" : ", ").append(shown(machine.workArea.areaValues[i]));
        values.emplace_back("area" + std::to_string(i), numberOf(machine.workArea.areaValues[i]));
      }
      add("work area", all, std::move(values));
    }
    if (read_.has("clampInfo")) number("clamps", "clampCount", machine.clampInfo.clampCount);
    if (read_.has("ncPath")) text("NC path", "ncPath", decoded(machine.ncPath));
    if (read_.has("ncExtension")) text("NC extension", "ncExtension", decoded(machine.ncExtension));
    if (read_.has("material")) text("material", "material", decoded(std::string_view(machine.material.name)));
    const std::pair<const char*, const ToolStationList*> lists[] = {
        {"stationsA", &machine.stationsA}, {"stationsB", &machine.stationsB}, {"stationsC", &machine.stationsC}};
    for (const auto& [name, list] : lists)
      if (read_.has(name) && !list->tools.empty())
        listTools(name, *list, allOf(*list), nullptr, draw::machineHoldsTool);
  }

  void describe(const OldMaterial& material) {
    if (read_.has("name") || !material.name.empty()) text("name", "name", decoded(std::string_view(material.name)));
    if (read_.has("params")) {
      text("title", "title", decoded(material.params.title));
      text("parameters", "parameterTable", decoded(material.params.name));
      number("table version", "parameterVersion", material.params.version);
    }
    if (startsWithTable(FileKind::material, material.version)) return;
    if (read_.has("toolSets")) number("tool sets", "toolSetCount", material.toolSets.setCount);
    if (read_.has("palette")) number("colours", "colourCount", material.palette.colourCount);
    if (read_.has("rules")) count("angle rules", "angleRuleCount", material.rules.angleRules.size());
    InfoTable entries{"entries", {"key", "text"}, {}};
    for (const MaterialEntry& entry : material.entryList)
      entries.rows.push_back({numberOf(entry.entryKey), {decoded(entry.entryText)}});
    addTable(std::move(entries));
  }

  void describe(const OldToolInventory& inventory) {
    if (read_.has("tools")) count("tools", "toolCount", inventory.tools.size());
    if (read_.has("entries")) count("entries", "entryCount", inventory.entries.size());
    InfoTable tools{"tools", {"number", "tool", "dimensions", "orientation", "file"}, {}};
    for (std::size_t i = 0; i < inventory.tools.size(); ++i) {
      const OldTool& tool = inventory.tools[i];
      const auto* const file = tool.shapeCode == kSpecialTool ? specialToolFileOf(inventory, tool) : nullptr;
      std::string name;
      if (file != nullptr) name = decoded(fixedText(*file));
      tools.rows.push_back({numberOf(i + 1),
                            {kindOf(tool)},
                            {draw::dimensionText(tool)},
                            numberOf(tool.orientation),
                            {std::move(name)}});
    }
    addTable(std::move(tools));
  }

  void describe(const OldMacro& macro) {
    if (read_.has("shapes")) {
      count("shapes", "shapeCount", macro.shapes.shapes.size());
      listShapes(macro.shapes);
    }
    if (read_.has("items")) count("items", "itemCount", macro.items.size());
    listTools("tools", macro.stationList, allOf(macro.stationList), nullptr);
  }

 private:
  std::string decoded(std::string_view bytes) const {
    std::string utf8;
    encoding_.appendUtf8(utf8, bytes);
    return utf8;
  }
  template <std::size_t N>
  std::string decoded(const char (&field)[N]) const {
    return decoded(fixedText(field));
  }
  std::string nameOf(const OldMachine& machine) const {
    const std::string name = decoded(machine.displayName);
    return name.empty() ? decoded(machine.machineText1) : name;
  }

  void add(std::string label, std::string shownText, std::vector<std::pair<std::string, InfoValue>> values) {
    info_.facts.push_back({std::move(label), std::move(shownText), std::move(values)});
  }
  void text(const char* label, const char* key, std::string value) {
    if (!value.empty()) add(label, value, {{key, {value}}});
  }
  template <class T>
  void number(const char* label, const char* key, T value) {
    add(label, shown(value), {{key, numberOf(value)}});
  }
  void count(const char* label, const char* key, std::size_t value) {
    add(label, draw::countText(value), {{key, numberOf(value)}});
  }
  void size(const char* label, const char* widthKey, float width, const char* heightKey, float height) {
    add(label, shown(width) + " x " + shown(height), {{widthKey, numberOf(width)}, {heightKey, numberOf(height)}});
  }
  void addTable(InfoTable table) {
    if (!table.rows.empty()) info_.tables.push_back(std::move(table));
  }

  void describeHead(const TorvPart& part) {
    if (read_.has("height")) size("size", "width", part.width, "height", part.height);
    if (read_.has("thickness")) number("thickness", "thickness", part.thickness);
    if (read_.has("materialName")) text("material", "materialName", decoded(part.materialName));
    if (read_.has("materialType")) text("material type", "materialType", decoded(part.materialType));
    if (read_.has("productName")) text("product", "product", decoded(part.productName));
    if (read_.has("assemblyName")) text("assembly", "assembly", decoded(part.assemblyName));
    if (read_.has("revision")) text("revision", "revision", decoded(part.revision));
    if (read_.has("descriptionA")) text("description", "description", decoded(part.descriptionA));
  }

  std::string kindOf(const OldTool& tool) const {
    const std::string_view kind = draw::toolKind(tool.shapeCode);
    return kind.empty() ? "code " + std::to_string(tool.shapeCode) : std::string(kind);
  }
  void describeTool(const OldTool& tool) {
    text("tool", "tool", kindOf(tool));
    text("dimensions", "dimensions", draw::dimensionText(tool));
    number("orientation", "orientation", tool.orientation);
    const std::uint32_t flags = tool.symmetryFlags;
    // No file stores it for other tools.
    if (flags == 0 && tool.shapeCode != kSpecialTool) return;
    text("symmetry", "symmetry", (flags & 1U) != 0 ? "half turn" : (flags & 2U) != 0 ? "quarter turn" : "none");
  }

  void listParts(const std::vector<TorvPart>& parts, bool isSheet) {
    InfoTable table{"parts", {"name", "width", "height", "thickness", "materialType", "shapes"}, {}};
    if (isSheet) table.columns.insert(table.columns.end(), {"quantity", "workOrder"});
    for (const TorvPart& part : parts) {
      auto& row = table.rows.emplace_back();
      row = {{decoded(part.partName)}, numberOf(part.width),         numberOf(part.height),
             numberOf(part.thickness), {decoded(part.materialType)}, numberOf(part.shapes.shapes.size())};
      if (isSheet) row.insert(row.end(), {numberOf(values::quantityOf(part)), {decoded(part.woNumber)}});
    }
    addTable(std::move(table));
  }

  // How often each type occurs.
  void listShapes(const ShapeList& list) {
    std::map<int, std::uint64_t> types;
    for (const Shape& shape : list.shapes) ++types[shape.type];
    InfoTable table{"shapeTypes", {"type", "shapes"}, {}};
    for (const auto& [type, number] : types) table.rows.push_back({numberOf(type), numberOf(number)});
    addTable(std::move(table));
  }

  static std::vector<std::size_t> allOf(const ToolStationList& list) {
    std::vector<std::size_t> all(std::min(list.tools.size(), list.stations.size()));
    for (std::size_t i = 0; i < all.size(); ++i) all[i] = i;
    return all;
  }
  void listTools(const char* key, const ToolStationList& list, const std::vector<std::size_t>& positions,
                 const std::vector<std::uint64_t>* uses,
                 bool (*holdsTool)(const ToolStation&, const OldTool&) = draw::holdsTool) {
    InfoTable table{key, {"station", "tool", "dimensions", "orientation", "file"}, {}};
    if (uses != nullptr) table.columns.emplace_back("shapes");
    const OldTool none;
    for (const std::size_t position : positions) {
      if (position >= list.stations.size() || position >= list.tools.size()) continue;
      const ToolStation& station = list.stations[position];
      const bool isEmpty = !holdsTool(station, list.tools[position]);
      const OldTool& tool = isEmpty ? none : list.tools[position];
      const std::string file = tool.shapeCode == kSpecialTool ? decoded(tool.specialToolPath) : "";
      auto& row = table.rows.emplace_back();
      row = {numberOf(station.stationNumber),
             {isEmpty ? "none" : kindOf(tool)},
             {draw::dimensionText(tool)},
             numberOf(tool.orientation),
             {file}};
      if (uses != nullptr) row.push_back(numberOf((*uses)[position]));
    }
    addTable(std::move(table));
  }

  Info& info_;
  const explain::ReadMembers& read_;
  const values::TextEncoding& encoding_;
};

// ---- as text -------------------------------------------------------------------------------------------

// Characters, not bytes, so that columns align.
std::size_t lengthOf(std::string_view utf8) {
  return static_cast<std::size_t>(
      std::count_if(utf8.begin(), utf8.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

void appendPadded(std::string& to, std::string_view utf8, std::size_t width, bool isRight) {
  const std::size_t length = lengthOf(utf8);
  const std::string blanks(width > length ? width - length : 0, ' ');
  if (isRight) to += blanks;
  to += utf8;
  if (!isRight) to += blanks;
}

void trimEnd(std::string& text) { text.erase(text.find_last_not_of(' ') + 1); }

// "work order" for "workOrder", "stations A" for "stationsA".
std::string inWords(std::string_view key) {
  std::string words;
  for (std::size_t i = 0; i < key.size(); ++i) {
    const bool isCapital = key[i] >= 'A' && key[i] <= 'Z', isLast = i + 1 == key.size();
    if (isCapital) words += ' ';
    words += isCapital && !isLast ? static_cast<char>(key[i] - 'A' + 'a') : key[i];
  }
  return words;
}

void appendTable(std::string& to, const InfoTable& table, std::size_t mostRows) {
  const std::size_t shownRows = std::min(table.rows.size(), mostRows);
  std::vector<std::vector<std::string>> cells(1);
  for (const std::string& column : table.columns) cells[0].push_back(inWords(column));
  std::vector<bool> isRight(table.columns.size()), isEmpty(table.columns.size(), true);
  for (std::size_t i = 0; i < shownRows; ++i) {
    auto& row = cells.emplace_back();
    for (std::size_t column = 0; column < table.columns.size(); ++column) {
      const InfoValue& value = table.rows[i][column];
      isRight[column] = value.isNumber;
      isEmpty[column] = isEmpty[column] && !value.isNumber && value.text.empty();
      row.push_back(value.isNumber && value.text.empty() ? "?" : values::onOneLine(value.text));
    }
  }
  std::vector<std::size_t> widths(table.columns.size());
  for (const auto& row : cells)
    for (std::size_t column = 0; column < row.size(); ++column)
      widths[column] = std::max(widths[column], lengthOf(row[column]));
  to += "  " + inWords(table.key) + "\n";
  for (const auto& row : cells) {
    to += "  ";
    for (std::size_t column = 0; column < row.size(); ++column)
      if (!isEmpty[column]) appendPadded(to += "  ", row[column], widths[column], isRight[column]);
    trimEnd(to);
    to += '\n';
  }
  if (table.rows.size() > shownRows)
    to += "    and " + draw::countText(table.rows.size() - shownRows, "more row", "more rows") + "\n";
}

// ---- as JSON -------------------------------------------------------------------------------------------

void appendJson(std::string& to, const InfoValue& value) {
  if (!value.isNumber) return values::appendJsonString(to, value.text);
  to += value.text.empty() ? "null" : value.text;
}

}  // namespace

Info infoOf(std::string_view path, std::span<const std::byte> bytes, const JudgeOptions& options,
            const values::TextEncoding& encoding) {
  const Judgement judgement = judge(path, bytes, options);
  Info info;
  info.verdict = judgement.verdict;
  info.version = judgement.report.version;
  if (!judgement.kind) return info;
  info.kind = frame::infoOf(*judgement.kind).name;
  const explain::FileReport& report = judgement.report;
  info.fault = report.fault;
  if (report.fault)
    info.remark = explain::describe(*report.fault);
  else if (report.tolerated)
    info.remark = explain::describe(*report.tolerated) + ", which is tolerated";
  else if (!report.endsExactly())
    info.remark = report.unread();
  if (info.verdict == Verdict::foreign || (info.verdict == Verdict::refusedVersion && !report.endsInRest()))
    return info;
  const explain::ReadMembers read(bytes, *judgement.kind);
  InfoBuilder builder(info, read, encoding);
  withFileRecord(*judgement.kind,
                 [&](auto file) { builder.describe(*values::loadRecord<decltype(file)::kKind>(bytes).record); });
  return info;
}

Info unreadableInfo(std::string_view reason) {
  Info info;
  info.verdict = Verdict::unreadable;
  info.remark = reason;
  return info;
}

std::string infoText(std::string_view name, const Info& info, std::size_t mostRows) {
  std::vector<std::pair<std::string, std::string>> lines;
  std::string kind = info.kind;
  // Of a foreign file the first two bytes are no version.
  if (info.version) kind.append(", version ").append(std::to_string(*info.version));
  if (!info.kind.empty()) lines.emplace_back("kind", kind);
  lines.emplace_back("verdict", std::string(nameOf(info.verdict)) + (info.remark.empty() ? "" : ", " + info.remark));
  for (const InfoFact& fact : info.facts) lines.emplace_back(fact.label, fact.text);
  std::size_t width = 0;
  for (const auto& [label, text] : lines) width = std::max(width, lengthOf(label));
  std::string all = values::onOneLine(name) + "\n";
  for (const auto& [label, text] : lines) {
    appendPadded(all += "  ", label, width, false);
    all += "  " + values::onOneLine(text) + "\n";
  }
  for (const InfoTable& table : info.tables) appendTable(all, table, mostRows);
  return all;
}

std::string infoJson(std::string_view name, const Info& info) {
  std::string json = "{\"path\":";
  values::appendJsonString(json, name);
  const auto member = [&](std::string_view key, const InfoValue& value) {
    values::appendJsonString(json += ',', key);
    appendJson(json += ':', value);
  };
  if (!info.kind.empty()) member("kind", {info.kind});
  if (info.version) member("version", numberOf(*info.version));
  member("verdict", {std::string(nameOf(info.verdict))});
  if (!info.remark.empty()) member("remark", {info.remark});
  for (const InfoFact& fact : info.facts)
    for (const auto& [key, value] : fact.values) member(key, value);
  for (const InfoTable& table : info.tables) {
    values::appendJsonString(json += ',', std::string_view(table.key));
    json += ":[";
    for (const auto& row : table.rows) {
      json += &row == &table.rows.front() ? "{" : ",{";
      for (std::size_t i = 0; i < row.size(); ++i) {
        values::appendJsonString(json += i == 0 ? "" : ",", std::string_view(table.columns[i]));
        appendJson(json += ':', row[i]);
      }
      json += '}';
    }
    json += ']';
  }
  return json + "}\n";
}

}  // namespace oldtorvio::archive
