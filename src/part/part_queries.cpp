// Queries of part and group part files: each loads the file, copies the results out and discards the rest.
#include <cmath>
#include <memory>
#include <string>

#include "OldTorvIO.h"
#include "OldTorvIO/part_list.h"
#include "src/frame/entry.h"
#include "src/frame/text/text.h"
#include "src/records/tool_layout.h"
#include "src/records/tool_text.h"

namespace oldtorvio {
namespace {

using namespace codec;
using namespace frame;

// Loads the part and, on success, returns the status of query(part). The record is on the heap: callers may have
// small stacks.
template <class Query>
std::int64_t queryPart(const char* path, Query&& query) noexcept {
  return guarded(kDamaged, [&]() -> std::int64_t {
    const auto part = std::make_unique<TorvPart>();
    const std::int64_t status = LoadOldPart(path, part.get());
    return status == kDone ? query(*part) : status;
  });
}

// Calls visit(tool) for the tool of each station, in order.
template <class Visit>
void eachTool(const ToolStationList& list, Visit&& visit) {
  const std::size_t count = std::min(list.stations.size(), list.tools.size());
  for (std::size_t i = 0; i < count; ++i) visit(list.tools[i]);
}

double angleOf(const TorvPart& part) {
  if (part.patterns.empty()) return 0;
  const Pattern& first = part.patterns.front();
  return std::atan2(static_cast<double>(first.rotationSin), static_cast<double>(first.rotationCos));
}

}  // namespace
}  // namespace oldtorvio

using namespace oldtorvio;
using namespace oldtorvio::codec;
using namespace oldtorvio::frame;

extern "C" int64_t GetOldPartInfo(const char* path, char* materialType, float* width, float* height,
                                  float* thickness) noexcept {
  return queryPart(path, [&](const TorvPart& part) {
    copyOut(materialType, fixedText(part.materialType));
    *width = part.width;
    *height = part.height;
    *thickness = part.thickness;
    return kDone;
  });
}

extern "C" int64_t GetOldPartInfo_v1(const char* path, const char* key, char* value) noexcept {
  if (path == nullptr || key == nullptr || value == nullptr) return kDamaged;
  return queryPart(path, [&](const TorvPart& part) {
    if (equalNoCase(key, "angle"))
      copyOut(value, general(angleOf(part)));
    else if (equalNoCase(key, "Revision"))
      copyOut(value, fixedText(part.revision));
    else if (equalNoCase(key, "MatType"))
      copyOut(value, fixedText(part.materialType));
    else if (equalNoCase(key, "Thickness"))
      copyOut(value, general(static_cast<double>(part.thickness)));
    else
      return kDamaged;
    return kDone;
  });
}

extern "C" int64_t GetOldPartTool(const char* path, char* text, int32_t size, uint32_t* length) noexcept {
  return queryPart(path, [&](const TorvPart& part) {
    std::string items;
    eachTool(part.toolStations, [&](const OldTool& tool) {
      if (const std::string item = toolText(tool); !item.empty()) items.append(item).append(",");
    });
    copyOutBounded(items, text, size, *length);
    return kDone;
  });
}

extern "C" int64_t GetOldSptFromPart(const char* path, char* text) noexcept {
  return queryPart(path, [&](const TorvPart& part) {
    std::string paths;
    eachTool(part.toolStations, [&](const OldTool& tool) {
      if (tool.shapeCode == kSpecialTool) paths.append(",").append(fixedText(tool.specialToolPath)).append(",");
    });
    if (!paths.empty()) copyOut(text + std::string_view(text).size(), paths);
    return kDone;
  });
}

extern "C" int64_t GetOldSptFromGroupPart(const char* path, char* text, int32_t size, uint32_t* length) noexcept {
  return guarded(kDamaged, [&]() -> std::int64_t {
    SheetPartList list;
    const std::int64_t status = LoadGroupPart(path, &list);
    if (status != kDone) return status;
    std::string paths;
    for (const TorvPart& part : list.parts)
      eachTool(part.toolStations, [&](const OldTool& tool) {
        if (tool.shapeCode == kSpecialTool) paths.append(fixedText(tool.specialToolPath)).append(",");
      });
    copyOutBounded(paths, text, size, *length);
    return kDone;
  });
}
