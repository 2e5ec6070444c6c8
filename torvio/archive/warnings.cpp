#include "torvio/archive/warnings.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <string_view>
#include <type_traits>
#include <unordered_map>
#include <utility>

#include "src/file_records.h"
#include "src/frame/versions.h"
#include "src/sheet/nest.h"
#include "src/tooling/tool_kinds.h"
#include "torvio/convert/sheet_surplus.h"
#include "torvio/values/all_members.h"

namespace oldtorvio::archive {
namespace {

using values::MemberInfo;
using values::Members;

// Where a walk over a record is. Kept on the stack; it becomes a text only for a warning.
struct Place {
  static constexpr std::size_t kNoIndex = static_cast<std::size_t>(-1);

  const Place* owner = nullptr;
  std::string_view name;  // empty for an element of a list
  std::size_t index = kNoIndex;

  std::string path() const {
    std::string text = owner != nullptr ? owner->path() : "";
    if (index != kNoIndex) return text.append("[").append(std::to_string(index)).append("]");
    if (!text.empty()) text += '.';
    return text.append(name);
  }
  // The same for all elements of a list.
  std::size_t pattern() const {
    const std::size_t before = owner != nullptr ? owner->pattern() : 0;
    const std::size_t own = index != kNoIndex ? 1 : std::hash<std::string_view>()(name);
    return before * 1'000'003 + own;
  }
};

class Collector {
 public:
  // The text is made by describe() for the first place only.
  template <class Describe>
  void note(std::string_view code, const Place& place, Describe&& describe) {
    const std::size_t key = place.pattern() * 31 + std::hash<std::string_view>()(code);
    const auto known = at_.find(key);
    if (known != at_.end()) {
      if (known->second < counts_.size()) ++counts_[known->second];
      return;
    }
    at_.emplace(key, warnings_.size() < kMostWarnings ? warnings_.size() : kMostWarnings);
    if (warnings_.size() >= kMostWarnings) {
      ++leftOut_;
      return;
    }
    warnings_.push_back({std::string(code), place.path(), describe()});
    counts_.push_back(1);
  }

  std::vector<Warning> finished() {
    for (std::size_t i = 0; i < warnings_.size(); ++i)
      if (counts_[i] > 1)
        warnings_[i].text +=
            "; the same in " + std::to_string(counts_[i] - 1) + " more place" + (counts_[i] > 2 ? "s" : "");
    if (leftOut_ > 0) {
      const std::string more = std::to_string(leftOut_) + " more field" + (leftOut_ > 1 ? "s have" : " has");
      warnings_.back().text += "; " + more + " warnings that are left out";
    }
    return std::move(warnings_);
  }

 private:
  std::vector<Warning> warnings_;
  std::vector<std::size_t> counts_;                  // of the places of each
  std::unordered_map<std::size_t, std::size_t> at_;  // by code and pattern
  std::size_t leftOut_ = 0;
};

std::string inWords(double value) {
  if (std::isnan(value)) return "is not a number";
  if (std::isinf(value)) return value > 0 ? "is infinite" : "is minus infinity";
  // As "%g" does, whatever the locale of the process.
  char digits[32];
  constexpr int kDigits = 6;
  const auto end = std::to_chars(digits, digits + sizeof digits, value, std::chars_format::general, kDigits);
  return "is " + std::string(digits, end.ptr);
}

// ---- every member ------------------------------------------------------------------------------------

// Whether a T may hold a real number or a fixed text.
template <class T>
constexpr bool mayWarn();

struct AnyMayWarn {
  template <class... T>
  constexpr auto operator()(T&...) const {
    return std::bool_constant<(mayWarn<std::remove_const_t<T>>() || ...)>();
  }
};

template <class T>
constexpr bool mayWarn() {
  if constexpr (values::Number<T>)
    return std::is_floating_point_v<T>;
  else if constexpr (values::FixedText<T>)
    return true;
  else if constexpr (values::Text<T>)
    return false;
  else if constexpr (values::kIsPair<T>)
    return mayWarn<typename T::first_type>() || mayWarn<typename T::second_type>();
  else if constexpr (values::Array<T> || values::List<T>)
    return mayWarn<values::ElementOf<T>>();
  else if constexpr (values::Lazy<T>)
    return mayWarn<typename T::value_type>();
  else
    return decltype(Members<T>::apply(std::declval<T&>(), AnyMayWarn()))::value;
}

class Walk {
 public:
  explicit Walk(Collector& to) : to_(to) {}

  template <class T>
  void see(const T& value, const Place& place) {
    if constexpr (!mayWarn<T>()) {
      // Nothing to check.
    } else if constexpr (values::Number<T>) {
      if (!std::isfinite(value))
        to_.note("not-finite", place, [&] { return "The value " + inWords(static_cast<double>(value)); });
    } else if constexpr (values::FixedText<T>) {
      if (std::memchr(std::data(value), 0, std::size(value)) == nullptr)
        to_.note("text-fills-field", place, [&] {
          return "The text fills its field of " + std::to_string(std::size(value)) + " bytes and has no NUL";
        });
    } else if constexpr (values::kIsPair<T>) {
      see(value.first, {&place, "first"});
      see(value.second, {&place, "second"});
    } else if constexpr (values::Array<T> || values::List<T>) {
      for (std::size_t i = 0; i < std::size(value); ++i) see(value[i], {&place, {}, i});
    } else if constexpr (values::Lazy<T>) {
      // Elements without memory are one and the same.
      const auto& none = T()[T::size() - 1];
      for (std::size_t i = 0; i < T::size(); ++i)
        if (const auto& element = value[i]; &element != &none) see(element, {&place, {}, i});
    } else {
      seeRecord(value, place);
    }
  }

  template <class Record>
  void seeRecord(const Record& record, const Place& place) {
    const Place* const owner = place.name.empty() && place.index == Place::kNoIndex ? nullptr : &place;
    Members<Record>::of(record, [&](const MemberInfo& info, const auto& member) {
      if (info.isStored) see(member, {owner, info.name});
    });
    seeSizes(record, owner);
  }

 private:
  void seeSizes(const auto&, const Place*) {}
  void seeSizes(const OldSheet& sheet, const Place* owner) {
    size(sheet.width, {owner, "width"});
    size(sheet.height, {owner, "height"});
    size(sheet.thickness, {owner, "thickness"});
  }
  void seeSizes(const TorvPart& part, const Place* owner) {
    size(part.width, {owner, "width"});
    size(part.height, {owner, "height"});
    size(part.thickness, {owner, "thickness"});
  }
  void seeSizes(const OldMachine& machine, const Place* owner) {
    size(machine.sizeX, {owner, "sizeX"});
    size(machine.sizeY, {owner, "sizeY"});
  }
  void size(float value, const Place& place) {
    constexpr float kLargest = 1e6F;
    if (value < 0 || (value > kLargest && std::isfinite(value)))
      to_.note("absurd-size", place, [&] { return "The size " + inWords(static_cast<double>(value)); });
  }

  Collector& to_;
};

// ---- sheets ------------------------------------------------------------------------------------------

// The tool numbers that GetOldSheetInfo looks up.
class ToolNumbers {
 public:
  ToolNumbers(const OldSheet& sheet, Collector& to) : to_(to), endsProcess_(frame::isKnownSheetVersion(sheet.version)) {
    stations_ = static_cast<std::int64_t>(stationListOf(sheet.machine).stations.size());
    eachToolUse(sheet, [&](const ToolUse& use) {
      if (use.number > stations_) seeUse(use);
    });
  }

 private:
  void seeUse(const ToolUse& use) {
    const Place partList{nullptr, "partList"}, parts{&partList, "parts"}, part{&parts, {}, use.part};
    const Place* const owner = use.part == ToolUse::kOfSheet ? nullptr : &part;
    const Place patterns{owner, "patterns"}, pattern{&patterns, {}, use.pattern};
    const Place list = use.slot != nullptr ? Place{owner, "processSlots"}
                       : owner != nullptr  ? Place{&pattern, "items"}
                                           : Place{nullptr, "patternItems"};
    const Place element{&list, {}, use.position};
    see(use.number, {&element, use.slot == nullptr         ? "toolNumber"
                               : use.slot->toolChoice != 0 ? "secondToolNumber"
                                                           : "firstToolNumber"});
  }
  void see(std::int64_t number, const Place& place) {
    const auto isPast = [&] {
      return "Tool number " + std::to_string(number) + " is past the last of " + std::to_string(stations_) +
             (stations_ == 1 ? " station" : " stations");
    };
    if (number == stations_ + 1 && endsProcess_)
      to_.note("tool-ends-process", place, [&] { return isPast() + ": GetOldSheetInfo ends the calling process"; });
    else
      to_.note("tool-past-stations", place, [&] { return isPast() + " and is ignored"; });
  }

  Collector& to_;
  bool endsProcess_;  // no query accepts other versions
  std::int64_t stations_ = 0;
};

void addOwn(const OldSheet& sheet, Collector& to) {
  (void)ToolNumbers(sheet, to);
  const Place machine{nullptr, "machine"};
  if (!sheet.blocks.empty())
    to.note("save-ends-process", {nullptr, "blocks"}, [&] {
      const std::string count = std::to_string(sheet.blocks.size());
      return sheet.blocks.size() == 1
                 ? std::string("The sheet has a damaged block: a save or an edit ends the calling process")
                 : "The sheet has " + count + " damaged blocks: a save or an edit may end the calling process";
    });
  // Below this version an edit ruins every sheet.
  constexpr int kFirstEditable = 152;
  if (!frame::isKnownSheetVersion(sheet.version) || sheet.version < kFirstEditable) return;
  constexpr std::int32_t kSavedWidth = 256;
  if (sheet.paramTable.version >= 500 && sheet.paramTable.version <= 502) {
    const Place table{nullptr, "paramTable"};
    to.note("edit-ruins-sheet", {&table, "version"}, [&] {
      return "The parameter table has version " + std::to_string(sheet.paramTable.version) +
             ": after an edit the file ends in it";
    });
  }
  if (sheet.machine.textWidth != kSavedWidth)
    to.note("edit-ruins-sheet", {&machine, "textWidth"}, [&] {
      return "The width " + std::to_string(sheet.machine.textWidth) +
             " is not 256: after an edit the sheet cannot be loaded";
    });
  if (sheet.machine.secondTextPresent == 1 && sheet.machine.secondTextWidth != kSavedWidth)
    to.note("edit-ruins-sheet", {&machine, "secondTextWidth"}, [&] {
      return "The width " + std::to_string(sheet.machine.secondTextWidth) +
             " is not 256: an edit loses machine.smallValue";
    });
  // No save sets machine.shapesPresent.
  const std::vector<Shape>& shapes = sheet.shapes.shapes;
  const auto lost = std::find_if(shapes.begin(), shapes.end(), [](const Shape& s) { return s.trailerValue != 0; });
  if (sheet.machine.shapesPresent == 1 && lost != shapes.end()) {
    const Place list{nullptr, "shapes"}, inner{&list, "shapes"};
    const Place shape{&inner, {}, static_cast<std::size_t>(lost - shapes.begin())};
    to.note("edit-ruins-sheet", {&shape, "trailerValue"},
            [] { return std::string("An edit loses the trailer values of the shapes of the sheet"); });
  }
}

void addOwn(const OldToolInventory& inventory, Collector& to) {
  const auto files = static_cast<std::int64_t>(inventory.specialToolFiles.size());
  const Place tools{nullptr, "tools"};
  for (std::size_t i = 0; i < inventory.tools.size(); ++i) {
    const OldTool& tool = inventory.tools[i];
    if (tool.shapeCode != kSpecialTool || specialToolFileOf(inventory, tool) != nullptr) continue;
    const Place element{&tools, {}, i};
    to.note("index-ends-process", {&element, "specialToolIndex"}, [&] {
      return "Index " + std::to_string(tool.specialToolIndex) + " is outside the " + std::to_string(files) +
             (files == 1 ? " file" : " files") +
             " of special tools: GetOldToolInventoryInformation ends the calling process";
    });
  }
}

void addOwn(const auto&, Collector&) {}

}  // namespace

template <class Record>
std::vector<Warning> warningsOf(const Record& record) {
  Collector to;
  addOwn(record, to);
  Walk(to).seeRecord(record, {});
  return to.finished();
}

#define OLDTORVIO_WARNINGS_OF(KIND) \
  template std::vector<Warning> warningsOf(const FileRecord<frame::FileKind::KIND>::Record&);
OLDTORVIO_EACH_FILE_KIND(OLDTORVIO_WARNINGS_OF)
#undef OLDTORVIO_WARNINGS_OF

std::optional<Warning> traceOfSave(std::span<const std::byte> bytes, const explain::FileReport& report) {
  const auto surplus = convert::surplusOf(bytes, explain::FileKind::sheet, report);
  if (!surplus) return std::nullopt;
  return Warning{"saved-below-152", "machine",
                 std::to_string(surplus->size) + (surplus->size == 1 ? " surplus byte" : " surplus bytes") +
                     " after the machine, such as a save or an edit below version 152 writes"};
}

}  // namespace oldtorvio::archive
