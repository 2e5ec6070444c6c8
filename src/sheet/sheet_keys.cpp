// Queries of a loaded sheet.
#include <cmath>
#include <string>
#include <string_view>

#include "OldTorvIO.h"
#include "OldTorvIO/sheet.h"
#include "src/frame/entry.h"
#include "src/frame/text/text.h"
#include "src/sheet/nest.h"

namespace oldtorvio {
namespace {

using namespace codec;
using namespace frame;

std::string fixed6(double value) {
  std::string text;
  appendFixed6(text, value);
  return text;
}

std::string integer(std::int64_t value) {
  std::string text;
  appendInteger(text, value);
  return text;
}

std::int32_t signedQuantityOf(const TorvPart& part) { return static_cast<std::int32_t>(quantityOf(part)); }

// The items of all parts, without the last character.
template <class Item>
std::string listOf(const OldSheet& sheet, const Item& append) {
  std::string text;
  for (const TorvPart& part : sheet.partList.parts) append(text, part);
  if (!text.empty()) text.pop_back();
  return text;
}

void appendPathAndCount(std::string& text, const TorvPart& part) {
  text.append(fixedText(part.partFullDosName)).append(" |").append(integer(signedQuantityOf(part))).append(" |");
}
void appendWithOrder(std::string& text, std::string_view name, const TorvPart& part) {
  text.append(name).append(" |").append(integer(signedQuantityOf(part))).append(" |");
  text.append(fixedText(part.woNumber)).append(" |");
}
void appendDetails(std::string& text, const TorvPart& part) {
  text.append(fixedText(part.partFullDosName)).append("|");
  text.append(fixed6(static_cast<double>(part.width))).append("|");
  text.append(fixed6(static_cast<double>(part.height))).append("|");
  text.append(integer(signedQuantityOf(part))).append("|").append(fixedText(part.woNumber)).append("|;|");
}

// The cut shapes of the skeleton have a mark in values[8].
std::string cutArea(const OldSheet& sheet) {
  constexpr std::int8_t kCutType = 17;
  constexpr double kMark = 0.17456;
  double sum = 0;
  for (const Shape& shape : sheet.skeletonShapes.shapes)
    if (shape.type == kCutType && std::fabs(static_cast<double>(shape.values[8]) + kMark) < 0.0001)
      sum += static_cast<double>(shape.values[7]);
  return fixed6(sum);
}

struct Key {
  std::string_view name;
  std::string (*value)(const OldSheet&);
};

// The size of the field: a name without a NUL fills it.
constexpr std::size_t kLongestSkeletonName = sizeof(OldSheet::skeletonDosName);

const Key kKeys[] = {
    {"Material_Group", [](const OldSheet& s) { return std::string(fixedText(s.materialGroup)); }},
    {"width", [](const OldSheet& s) { return fixed6(static_cast<double>(s.width)); }},
    {"height", [](const OldSheet& s) { return fixed6(static_cast<double>(s.height)); }},
    {"part_count", [](const OldSheet& s) { return integer(static_cast<std::int64_t>(s.partList.parts.size())); }},
    {"partfulldosname_and_count", [](const OldSheet& s) { return listOf(s, appendPathAndCount); }},
    {"partfulldosname_and_count_and_wonumber",
     [](const OldSheet& s) {
       return listOf(s, [](auto& text, auto& part) { appendWithOrder(text, fixedText(part.partFullDosName), part); });
     }},
    {"partname_and_count_and_wonumber",
     [](const OldSheet& s) {
       return listOf(s, [](auto& text, auto& part) { appendWithOrder(text, fixedText(part.partName), part); });
     }},
    {"part_details_01", [](const OldSheet& s) { return listOf(s, appendDetails); }},
    {"sheet_mat_type", [](const OldSheet& s) { return std::string(fixedText(s.materialType)); }},
    {"sheet_thickness", [](const OldSheet& s) { return fixed6(static_cast<double>(s.thickness)); }},
    // The name is used as a printf format.
    {"preSkeletonDosName",
     [](const OldSheet& s) { return printedWithoutValues(fixedText(s.skeletonDosName), kLongestSkeletonName); }},
    {"totalSknPartCutArea", cutArea},
    {"sheet_utilization", [](const OldSheet& s) { return fixed6(static_cast<double>(s.utilization)); }},
    {"sheet_sequence_size", [](const OldSheet& s) { return integer(static_cast<std::int64_t>(s.workList.size())); }},
};

}  // namespace
}  // namespace oldtorvio

using namespace oldtorvio;

extern "C" int64_t GetOldSheetInfoByName(const OldSheet* sheet, const char* key, char* value) noexcept {
  if (sheet == nullptr || key == nullptr || value == nullptr) return kNotOpened;
  return guarded(kDamaged, [&]() -> std::int64_t {
    for (const Key& one : kKeys)
      if (equalNoCase(key, one.name)) {
        copyOut(value, one.value(*sheet));
        break;
      }
    return kDone;
  });
}

extern "C" int64_t GetOldSheetInfoPartGroupIDs(const OldSheet* sheet, char* value) noexcept {
  if (sheet == nullptr) return kNotOpened;
  return guarded(kDamaged, [&]() -> std::int64_t {
    std::string text;
    for (const TorvPart& part : sheet->partList.parts) {
      for (const Pattern& pattern : part.patterns)
        if (const auto group = static_cast<std::int32_t>(pattern.patternWord); group > 0)
          text.append(integer(group)).append("|");
      text += ',';
    }
    copyOut(value, text);
    return kDone;
  });
}
