// The part builder: one part per process, built call by call and then saved.
//
// Invariants: the first pattern has one item for each shape; stations and tools have the same length.
// A call that adds something adds all of it or nothing.
#include <algorithm>
#include <bit>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "OldTorvIO.h"
#include "OldTorvIO/part.h"
#include "OldTorvIO/special_tool.h"
#include "src/builder/angle.h"
#include "src/frame/entry.h"
#include "src/frame/text/text.h"
#include "src/part/part_io.h"
#include "src/records/shape_groups.h"
#include "src/records/tool_layout.h"
#include "src/tooling/special_tool_io.h"

namespace oldtorvio {
namespace {

using namespace codec;
using namespace frame;

TorvPart partBuilder;

// The longest path that fits a 256-byte text with its NUL.
constexpr std::size_t kLongestToolPath = 255;
// For the tool of a group: checked before its file is searched for.
constexpr std::size_t kLongestGroupToolPath = 259;

std::int32_t shapeCount() { return static_cast<std::int32_t>(partBuilder.shapes.shapes.size()); }

template <class List>
void reserveFor(List& list, std::size_t more) {
  const std::size_t needed = list.size() + more;
  if (needed > list.capacity()) list.reserve(std::max(needed, 2 * list.capacity()));
}

// Makes room for shapes and their items, and creates the first pattern if there is none. Nothing after this can fail.
void prepareToAdd(std::size_t count) {
  reserveFor(partBuilder.shapes.shapes, count);
  if (!partBuilder.patterns.empty()) {
    reserveFor(partBuilder.patterns.front().items, count);
    return;
  }
  Pattern first;
  first.items.reserve(count);
  partBuilder.patterns.push_back(std::move(first));
}

void addPrepared(Shape&& shape, const PatternItem& item) {
  partBuilder.shapes.shapes.push_back(std::move(shape));
  partBuilder.patterns.front().items.push_back(item);
}

Shape makeShape(float x, float y, std::uint8_t type, std::uint32_t flags, const std::uint32_t* values) {
  Shape shape;
  shape.type = static_cast<std::int8_t>(type);
  shape.flags = flags;
  shape.x = x;
  shape.y = y;
  static_assert(sizeof shape.values == 9 * sizeof *values);
  std::memcpy(shape.values, values, sizeof shape.values);
  return shape;
}

std::uint32_t bitsOf(float value) { return std::bit_cast<std::uint32_t>(value); }

// The 1-based station of the tool with that name, or 0. A load leaves the name of a tool empty, so an empty name finds
// the first station and any other finds none.
std::int32_t stationNamed(std::string_view toolName) {
  const auto& tools = partBuilder.toolStations.tools;
  for (std::size_t i = 0; i < tools.size(); ++i)
    if (equalNoCase(tools[i].name, toolName)) return static_cast<std::int32_t>(i + 1);
  return 0;
}

constexpr std::string_view kToolExtension = ".spt";

// The path of the first file with that name in the folder of special tools, as this host opens it.
std::optional<std::string> findToolFile(std::string_view toolName) {
  std::string folder = GetSpecialToolFolder();
  if (!folder.ends_with('\\')) folder += '\\';
  const std::string wanted = std::string(toolName).append(kToolExtension);
  std::optional<std::string> found;
  walkFolder(folder, [&](const std::string& fileName, const std::string& path) {
    if (!equalNoCase(fileName, wanted)) return true;
    if (folder.size() + fileName.size() > kLongestToolPath) EndProcess();
    found = path;
    return false;
  });
  return found;
}

std::unique_ptr<OldSpecialTool> loadTool(const std::string& path) {
  auto tool = std::make_unique<OldSpecialTool>();
  if (LoadOldSpecialTool(path.c_str(), tool.get()) != kDone) tool.reset();
  return tool;
}

ToolStation makeStation(const OldTool& tool, float stationValue) {
  ToolStation station;
  station.stationNumber = static_cast<std::int32_t>(partBuilder.toolStations.stations.size() + 1);
  station.orientation = tool.orientation;
  station.valueCount = tool.firstValueCount;
  std::memcpy(station.values, tool.firstValues, sizeof station.values);
  station.stationType = tool.firstValueCount > 0 ? 0 : 2;
  station.stationValue = stationValue;
  return station;
}

template <std::size_t N>
void setIfGiven(char (&field)[N], const char* text) {
  if (text != nullptr) setText(field, text);
}

}  // namespace
}  // namespace oldtorvio

using namespace oldtorvio;
using namespace oldtorvio::codec;
using namespace oldtorvio::frame;

extern "C" void InitTorvPart(float width, float height, float thickness, int16_t partKind, const char* partName,
                             const char* assemblyName, const char* materialName, const char* customText1,
                             const char* customText2, const char* customText3) noexcept {
  // Reconstructed in place: a second part is too large for the stack, and the heap may have no room for it.
  std::destroy_at(&partBuilder);
  std::construct_at(&partBuilder);
  partBuilder.partKind = partKind;
  partBuilder.width = width;
  partBuilder.height = height;
  partBuilder.thickness = thickness;
  setIfGiven(partBuilder.partName, partName);
  setIfGiven(partBuilder.assemblyName, assemblyName);
  setIfGiven(partBuilder.materialName, materialName);
  setIfGiven(partBuilder.customText1, customText1);
  setIfGiven(partBuilder.customText2, customText2);
  setIfGiven(partBuilder.customText3, customText3);
}

extern "C" int32_t AddPatternToTorvPart(float x, float y, uint8_t type, uint32_t flags, const uint32_t* values,
                                        uint32_t itemWord1, float itemWord2, float pairA, float pairB, float pairC,
                                        float pairD, const char* toolName, int16_t itemShort1, int16_t itemShort2,
                                        float itemWord3, float itemWord4) noexcept {
  return guarded(std::int32_t{-1}, [&]() -> std::int32_t {
    PatternItem item;
    item.itemWord1 = itemWord1;
    item.itemWord2 = bitsOf(itemWord2);
    item.itemPair1[0] = bitsOf(pairA);
    item.itemPair1[1] = bitsOf(pairB);
    item.itemPair2[0] = bitsOf(pairC);
    item.itemPair2[1] = bitsOf(pairD);
    item.itemShort1 = static_cast<std::uint32_t>(std::int32_t{itemShort1});
    item.itemShort2 = static_cast<std::uint32_t>(std::int32_t{itemShort2});
    item.itemWord3 = bitsOf(itemWord3);
    item.itemWord4 = bitsOf(itemWord4);

    std::unique_ptr<OldSpecialTool> newTool;
    if (toolName != nullptr) {
      item.toolNumber = stationNamed(toolName);
      if (item.toolNumber == 0) {
        const auto path = findToolFile(toolName);
        if (path) newTool = loadTool(*path);
        if (!newTool) return -1;
        reserveFor(partBuilder.toolStations.stations, 1);
        reserveFor(partBuilder.toolStations.tools, 1);
      }
    }
    prepareToAdd(1);
    if (newTool) {
      partBuilder.toolStations.stations.push_back(makeStation(newTool->tool, itemWord2));
      partBuilder.toolStations.tools.push_back(std::move(newTool->tool));
      item.toolNumber = static_cast<std::int32_t>(partBuilder.toolStations.stations.size());
    }
    addPrepared(makeShape(x, y, type, flags, values), item);
    return shapeCount();
  });
}

extern "C" int32_t AddGroupPatIntoTorvPart(float x, float y, float angle, const char* toolName) noexcept {
  return guarded(std::int32_t{-1}, [&]() -> std::int32_t {
    if (toolName == nullptr) return -1;
    // Joined as they are: no separator is added, no case is folded.
    const std::string path = GetSpecialToolFolder().append(toolName).append(kToolExtension);
    if (path.size() > kLongestGroupToolPath) EndProcess();
    const auto file = findFile(path);
    if (!file) return -1;
    const auto tool = loadTool(*file);
    if (!tool) return -1;

    std::vector<Shape> members = std::move(tool->shapes.shapes);
    std::erase_if(members, [](const Shape& shape) { return shape.type == kGroupHead; });

    const std::int32_t firstMember = shapeCount() + 2;
    Shape head;
    head.type = kGroupHead;
    head.x = x;
    head.y = y;
    head.values[0] = static_cast<float>(firstMember);
    head.values[1] = static_cast<float>(members.size());
    head.values[2] = reducedAngle(angle, tool->tool.symmetryFlags);
    head.textFlag = firstMember;
    setText(head.text, path);

    prepareToAdd(1 + members.size());
    addPrepared(std::move(head), PatternItem());
    for (Shape& member : members) {
      member.flags = kGroupMember;
      addPrepared(std::move(member), PatternItem());
    }
    return shapeCount();
  });
}

extern "C" uint16_t AddPatIntoGroupPat(int32_t groupIndex, float x, float y, uint8_t type, uint64_t /*ignored*/,
                                       const uint32_t* values) noexcept {
  return guarded(std::uint16_t{0}, [&]() -> std::uint16_t {
    if (groupIndex < 1) return 0;
    prepareToAdd(1);
    addPrepared(makeShape(x, y, type, kGroupMember, values), PatternItem());
    // Checked after the member is added, so the member may be its own head.
    if (groupIndex > shapeCount()) EndProcess();
    partBuilder.shapes.shapes[static_cast<std::size_t>(groupIndex - 1)].values[1] += 1.0F;
    return static_cast<std::uint16_t>(shapeCount());
  });
}

extern "C" int64_t SaveTorvPart(const char* path, int16_t version) noexcept {
  if (path == nullptr) return kNotOpened;
  setText(partBuilder.partFullDosName, path);
  partBuilder.version = version;
  return SavePart(path, partBuilder, version);
}
