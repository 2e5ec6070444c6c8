#include "torvio/convert/recover.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <memory>
#include <set>
#include <utility>

#include "src/frame/text/text.h"
#include "torvio/convert/complete_save.h"
#include "torvio/convert/dropped.h"
#include "torvio/convert/losses.h"
#include "torvio/convert/member_path.h"
#include "torvio/convert/read_fields.h"
#include "torvio/convert/sheet_surplus.h"
#include "torvio/values/renamed_fields.h"

namespace oldtorvio::convert {
namespace {

using explain::Fault;
using frame::FileKind;
using values::Form;
using values::Type;

// The first place where a load fails, whether or not it tolerates that.
std::optional<Fault> firstFault(const explain::FileReport& report) {
  if (report.tolerated && (!report.fault || report.tolerated->offset <= report.fault->offset)) return report.tolerated;
  return report.fault;
}

// ---- rows of arrays, which have a count beside them ------------------------------------------------------

struct Rows {
  std::string_view record, array, count;
};
constexpr std::array kRows{
    Rows{"TorvPart", "processSlots", "processSlotCount"},
    Rows{"OldSheet", "processSlots", "processSlotCount"},
    Rows{"RowTable", "words", "count"},
    Rows{"RowTable", "values", "count"},
    Rows{"ClampRowTable", "words", "count"},
    Rows{"ClampRowTable", "values", "count"},
    Rows{"ClampInfo", "clampPositions", "clampCount"},
    Rows{"OldMachine", "triads", "triadCount"},
    Rows{"StepTable", "stepByteA", "stepCount"},
    Rows{"StepTable", "stepWord", "stepCount"},
    Rows{"StepTable", "stepByteB", "stepCount"},
    Rows{"StepTable", "stepByteC", "stepCount"},
    Rows{"MaterialToolSetTable", "sets", "setCount"},
    Rows{"OldMaterial", "settingLists", "settingListCount"},
    Rows{"MaterialPalette", "red", "colourCount"},
    Rows{"MaterialPalette", "green", "colourCount"},
    Rows{"MaterialPalette", "blue", "colourCount"},
    Rows{"MaterialPalette", "groupsE", "groupCount"},
    Rows{"MaterialPalette", "groupsF", "groupCount"},
    Rows{"MaterialPalette", "groupsG", "groupCount"},
    Rows{"MaterialPalette", "groupsH", "groupCount"},
};

std::int64_t integerAt(const Type& type, const void* at) {
  const auto as = [at]<class T>(T value) {
    std::memcpy(&value, at, sizeof value);
    return std::int64_t{value};
  };
  switch (type.form) {
    case Form::int8:
      return as(std::int8_t{});
    case Form::uint8:
      return as(std::uint8_t{});
    case Form::int16:
      return as(std::int16_t{});
    case Form::uint16:
      return as(std::uint16_t{});
    default:
      return as(std::int32_t{});
  }
}
// The value must be small enough for every form.
void setInteger(const Type& type, void* at, std::size_t value) {
  const auto small = static_cast<std::uint8_t>(value);
  std::memset(at, 0, type.size);
  std::memcpy(static_cast<std::byte*>(at) + (std::endian::native == std::endian::big ? type.size - 1 : 0), &small, 1);
}

// The first list or row on a path that is broken inside.
struct Broken {
  std::string list;  // "partList.parts", "processSlots"
  std::size_t index = 0;
  std::string inside;          // the path in the element: "shapes.shapes[3].x"
  const Rows* rows = nullptr;  // null for a list
  std::string owner;           // for rows: the path of their record
  // For a list that is a row: its rows, and how many of them there are up to it.
  const Rows* listRows = nullptr;
  std::size_t rowCount = 0;
};
std::optional<Broken> brokenOn(const Type& root, const std::string& path) {
  const Type* type = &root;
  std::size_t ownerEnd = 0;
  for (const PathStep& step : stepsOf(path)) {
    const auto member = std::find_if(type->members.begin(), type->members.end(),
                                     [&](const values::TypeMember& one) { return one.name == step.name; });
    if (member == type->members.end()) return std::nullopt;
    const auto rows = std::find_if(kRows.begin(), kRows.end(),
                                   [&](const Rows& one) { return one.record == type->name && one.array == step.name; });
    const bool isTool = type->name == "ToolStationList" && step.name == "tools";
    type = member->type;
    // Stations and their tools are read alternately, and the tools have no count of their own.
    if (!step.indexes.empty() && isTool)
      return Broken{path.substr(0, ownerEnd) + (ownerEnd > 0 ? ".stations" : "stations"),
                    step.indexes.front(),
                    path.substr(ownerEnd > 0 ? ownerEnd + 1 : 0),
                    nullptr,
                    {}};
    const std::size_t next = std::min(path.find('.', step.end), path.size());
    const std::string inside = path.substr(std::min(next + 1, path.size()));
    const std::string owner = path.substr(0, ownerEnd);
    if (rows != kRows.end() && step.indexes.size() == 2 && type->element->form == Form::list)
      return Broken{path.substr(0, path.find(']', step.end) + 1),
                    step.indexes[1],
                    inside,
                    nullptr,
                    owner,
                    &*rows,
                    step.indexes[0] + 1};
    if (!step.indexes.empty() && rows != kRows.end())
      return Broken{path.substr(0, step.end), step.indexes.front(), inside, &*rows, owner};
    if (!step.indexes.empty() && type->form == Form::list)
      return Broken{path.substr(0, step.end), step.indexes.front(), inside, nullptr, {}};
    for (std::size_t i = 0; i < step.indexes.size() && type->element != nullptr; ++i) type = type->element;
    ownerEnd = std::min(path.find('.', step.end), path.size());
  }
  return std::nullopt;
}

std::string pathIn(const std::string& owner, std::string_view member) {
  return (owner.empty() ? "" : owner + ".").append(member);
}

// The beginnings of the paths of all fields of the broken element. The fields of a row are in several arrays.
std::vector<std::string> elementPaths(const Broken& broken) {
  const std::string index = '[' + std::to_string(broken.index) + ']';
  if (broken.rows == nullptr) return {broken.list + index};
  std::vector<std::string> paths;
  for (const Rows& one : kRows)
    if (one.record == broken.rows->record && one.count == broken.rows->count)
      paths.push_back(pathIn(broken.owner, one.array) + index);
  return paths;
}

// ---- what was read ---------------------------------------------------------------------------------------

// The part of a file before its first fault.
class SoundPart {
 public:
  SoundPart(std::span<const std::byte> bytes, FileKind kind) : bytes_(bytes), dropped_(bytes) {
    const explain::FileReport report = explain::checkFile(bytes, kind);
    fault_ = firstFault(report);
    // Shapes are complete without the trailer values, which are stored separately.
    if (fault_ && !fault_->path.ends_with("].trailerValue"))
      broken_ = brokenOn(values::typeOfRecord(kind), fault_->path);
    const std::string list = broken_ ? broken_->list + '[' : "";
    const std::vector<std::string> element = broken_ ? elementPaths(*broken_) : std::vector<std::string>();
    bool isListSeen = false;
    (void)explain::mapFile(bytes, kind, [&](const explain::MapLine& line) {
      if (line.size == 0) return;
      read_.see(line);
      if (!elementAt_) dropped_.see(line);
      if (line.path == values::kMachinePath.field) machinePath_ = line;
      if (fault_ && line.path == fault_->path) isRepeated_ = true;
      if (!broken_) return;
      isListSeen = isListSeen || line.path.starts_with(list);
      if (!isListSeen) seeCount(line);
      const auto isOfElement = [&](const std::string& path) { return line.path.starts_with(path); };
      if (!elementAt_ && std::any_of(element.begin(), element.end(), isOfElement)) elementAt_ = line.offset;
    });
    if (!isRepeated_) return;
    broken_.reset();
    elementAt_.reset();
  }

  const std::optional<Fault>& fault() const { return fault_; }
  const std::optional<Broken>& broken() const { return broken_; }
  // Whether the field at the fault was read before: a machine stores some twice.
  bool isRepeated() const { return isRepeated_; }
  // The count that the file has for the broken list.
  std::optional<std::uint64_t> storedCount() const { return storedCount_; }
  // Where its first incomplete element begins.
  std::uint64_t end() const { return elementAt_.value_or(bytes_.size()); }
  const ReadFields& read() const { return read_; }
  // What a load drops from the part that is kept.
  Dropped& dropped() { return dropped_; }
  // Whether there is anything besides the version.
  bool hasBody() const { return read_.count() > 1; }
  std::string_view machinePath() const {
    const auto from =
        bytes_.subspan(static_cast<std::size_t>(machinePath_.offset), static_cast<std::size_t>(machinePath_.size));
    const std::string_view text(reinterpret_cast<const char*>(from.data()), from.size());
    return text.substr(0, std::min(text.find('\0'), text.size()));
  }

 private:
  // The count of a list comes directly before it, or before a width that precedes it.
  void seeCount(const explain::MapLine& line) {
    const std::string_view path = line.path;
    if (!path.ends_with(".count") && !path.ends_with("Count")) return;
    // Next to the list or to a record that contains it; the last one counts.
    const std::string_view owner = path.substr(0, path.rfind('.') + 1);
    const bool isOfList = path.starts_with(broken_->list) && path.substr(broken_->list.size()) == ".count";
    if (!isOfList && (!broken_->list.starts_with(owner) || path.starts_with("unused"))) return;
    std::int64_t count = 0;
    (void)std::from_chars(line.value.data(), line.value.data() + line.value.size(), count);
    // In a group part file the count is that of the parts after the first.
    if (path == "extraPartCount") ++count;
    storedCount_ = static_cast<std::uint64_t>(std::max<std::int64_t>(count, 0));
  }

  std::span<const std::byte> bytes_;
  std::optional<Fault> fault_;
  std::optional<Broken> broken_;
  ReadFields read_;
  Dropped dropped_;
  bool isRepeated_ = false;
  std::optional<std::uint64_t> storedCount_, elementAt_;
  explain::MapLine machinePath_;
};

// ---- what a record keeps ---------------------------------------------------------------------------------

// Drops a station whose tool is missing.
void dropIncomplete(ToolStationList& list) { list.stations.resize(std::min(list.stations.size(), list.tools.size())); }
void dropIncomplete(OldMachine& machine) {
  for (ToolStationList* list : {&machine.stationsA, &machine.stationsB, &machine.stationsC}) dropIncomplete(*list);
}

void makeConsistent(TorvPart& part, const SoundPart&) { dropIncomplete(part.toolStations); }
void makeConsistent(OldMacro& macro, const SoundPart&) { dropIncomplete(macro.stationList); }
void makeConsistent(OldMachine& machine, const SoundPart&) { dropIncomplete(machine); }
void makeConsistent(OldSheet& sheet, const SoundPart& sound) {
  dropIncomplete(sheet.machine);
  // A load keeps these lists with elements that it could not read.
  if (sound.broken() && sound.broken()->list == "setupList.entries")
    sheet.setupList.entries.resize(std::min(sheet.setupList.entries.size(), sound.broken()->index));
  sheet.blocks.clear();
  // A load reads the path before the machine, and sets it after the machine was read.
  if (sheet.machine.path[0] == '\0') frame::setPath(sheet.machine.path, sound.machinePath());
}
void makeConsistent(auto&, const SoundPart&) {}

// Reduces the count of rows. Returns what it was if it was higher.
std::optional<std::uint64_t> shortenRows(const Type& type, void* record, const std::string& owner, const Rows& rows,
                                         std::size_t kept) {
  const std::optional<Place> count = placeAt(type, record, pathIn(owner, rows.count));
  if (!count) return std::nullopt;
  const std::int64_t before = integerAt(*count->type, count->value);
  if (before <= static_cast<std::int64_t>(kept)) return std::nullopt;
  setInteger(*count->type, const_cast<void*>(count->value), kept);
  return static_cast<std::uint64_t>(before);
}

std::uint64_t lengthOf(const Type& type, const void* record, const Broken& broken) {
  if (broken.rows != nullptr) return broken.index;
  const std::optional<Place> list = placeAt(type, record, broken.list);
  return list && list->type->form == Form::list ? list->type->length(list->value) : 0;
}

// Whether the path is of something that the list lost, or the rows and those beside them.
bool isOfBroken(std::string_view path, const Broken& broken) {
  const auto isIn = [path](const std::string& list) { return path.starts_with(list + '['); };
  if (broken.rows == nullptr) return isIn(broken.list);
  return std::any_of(kRows.begin(), kRows.end(), [&](const Rows& one) {
    return one.record == broken.rows->record && one.count == broken.rows->count &&
           isIn(pathIn(broken.owner, one.array));
  });
}

// ---- what is reported ------------------------------------------------------------------------------------

// The members of the new file that were not read. A record or list of which nothing was read is named only once.
class Defaults {
 public:
  Defaults(const Type& type, const ReadFields& read) : type_(type), read_(read) {}

  void see(std::string_view path) {
    std::string pattern = withoutIndexes(memberPathOf(path));
    if (read_.has(pattern)) return;
    std::size_t end = pattern.find('.');
    while (end != std::string::npos && read_.has(std::string_view(pattern).substr(0, end)))
      end = pattern.find('.', end + 1);
    pattern.resize(std::min(end, pattern.size()));
    while (pattern.ends_with("[]")) pattern.resize(pattern.size() - 2);
    if (!seen_.insert(pattern).second || !isMember(pattern)) return;
    names_.push_back(std::move(pattern));
  }
  std::vector<std::string> finished() { return std::move(names_); }

 private:
  // Fields of a file that are not members count elements or fill space.
  bool isMember(const std::string& pattern) const {
    const Type* type = &type_;
    for (const PathStep& step : stepsOf(pattern)) {
      const auto member = std::find_if(type->members.begin(), type->members.end(),
                                       [&](const values::TypeMember& one) { return one.name == step.name; });
      if (member == type->members.end()) return false;
      type = member->type;
      if (!step.indexes.empty() && type->element != nullptr) type = type->element;
    }
    return true;
  }

  const Type& type_;
  const ReadFields& read_;
  std::set<std::string> seen_;
  std::vector<std::string> names_;
};

// The member at the fault if something of it was read; empty if nothing was, or if it is in a list that became shorter.
std::string partialMember(const SoundPart& sound) {
  if (!sound.fault() || sound.broken() || sound.isRepeated()) return "";
  const std::string path = memberPathOf(sound.fault()->path);
  if (sound.read().has(withoutIndexes(path))) return path + " and the elements after it";
  // A text that comes after its length.
  constexpr std::string_view kText = ".text";
  if (!path.ends_with(kText)) return "";
  const std::string member = path.substr(0, path.size() - kText.size());
  return sound.read().has(withoutIndexes(member) + ".length") ? member : "";
}

template <FileKind kKind>
void recoverAs(std::span<const std::byte> bytes, SoundPart& sound, const std::string& encoding, Recovered& to) {
  const Type& type = values::typeOfRecord(kKind);
  Report& report = to.report;
  const auto loaded = values::loadRecord<kKind>(bytes);
  auto& record = *loaded.record;
  Dropped& dropped = sound.dropped();
  if constexpr (kKind == FileKind::sheet)
    if (!record.blocks.empty()) dropped.forgetBlocks();  // reported as a list
  const std::optional<Broken>& broken = sound.broken();
  if (broken && broken->rows != nullptr) (void)shortenRows(type, &record, broken->owner, *broken->rows, broken->index);
  std::optional<std::uint64_t> rowsBefore;
  if (broken && broken->listRows != nullptr)
    rowsBefore = shortenRows(type, &record, broken->owner, *broken->listRows, broken->rowCount);
  makeConsistent(record, sound);
  if constexpr (kKind == FileKind::groupPart)
    if (record.parts.empty()) {
      to.error = "nothing can be recovered: not one part is complete";
      return;
    }
  if constexpr (kKind == FileKind::part)
    if (record.patterns.empty())
      report.notes.emplace_back("The pattern is new: it has an item without a tool for each shape.");

  const auto copy = std::make_unique<typename FileRecord<kKind>::Record>(record);
  CompleteSave saved = saveCompletely<kKind>(*copy, report.to);
  if (!saved.error.empty()) {
    to.error = "cannot be recovered: " + saved.error;
    return;
  }
  if constexpr (kKind == FileKind::sheet)
    if (auto kept = dropped.block().empty() ? std::nullopt
                                            : withBlock(saved.bytes, dropped.block(), *loaded.version, report.to)) {
      saved.bytes = std::move(*kept);
      dropped.forgetBlocks();
    }
  dropped.addTo(report.leftOut);
  if (rowsBefore)
    report.shorter.push_back({pathIn(broken->owner, broken->listRows->array), broken->rowCount, rowsBefore, ""});
  if (broken)
    report.shorter.push_back({broken->list, lengthOf(type, &record, *broken), sound.storedCount(), broken->inside});

  Defaults defaults(type, sound.read());
  (void)explain::mapFile(saved.bytes, kKind, [&](const explain::MapLine& line) {
    explain::eachField(line, [&](const explain::MapField& field) { defaults.see(field.path); });
  });
  report.defaults = defaults.finished();
  if (const std::string partial = partialMember(sound); !partial.empty())
    report.defaults.insert(report.defaults.begin(), partial);

  const auto reloaded = values::loadRecord<kKind>(saved.bytes);
  FileRecord<kKind>::setVersion(*reloaded.record, *loaded.version);
  report.losses = lossesOf<kKind>(record, *reloaded.record, encoding, [&](std::string_view path) {
    return sound.read().has(withoutIndexes(path)) && !(broken && isOfBroken(path, *broken));
  });
  report.newSize = saved.bytes.size();
  to.bytes = std::move(saved.bytes);
}

}  // namespace

Recovered recover(std::span<const std::byte> bytes, FileKind kind, const std::string& encoding) {
  Recovered to;
  Report& report = to.report;
  const explain::FileReport file = explain::checkFile(bytes, kind);
  report.kind = kind;
  report.from = file.version;
  report.size = bytes.size();
  if (!file.version) {
    to.error = "nothing can be recovered: it has no version word";
    return to;
  }
  if (!frame::infoOf(kind).accepts(*file.version)) {
    to.error = "nothing can be recovered: " + std::to_string(*file.version) + " is not a version of a " +
               std::string(frame::infoOf(kind).name) + " file";
    return to;
  }
  report.to = *file.version;
  to.isSound = file.endsExactly() && !file.tolerated;
  if (to.isSound) return to;
  if (const auto surplus = surplusOf(bytes, kind, file)) {
    to.bytes = without(bytes, *surplus);
    report.newSize = to.bytes.size();
    report.leftOut.push_back(
        {surplus->offset, surplus->size, "stored by a save below version 152, and expected by no load"});
    report.notes.emplace_back("Nothing else was changed.");
    return to;
  }

  report.to = nearestSaved(kind, *file.version);
  if (report.to != *file.version)
    report.notes.push_back("Files cannot be saved in version " + std::to_string(*file.version) +
                           ": the new one has version " + std::to_string(report.to) + ".");
  report.fault = firstFault(file);
  const std::uint64_t end = report.fault ? report.fault->offset : file.walked;
  SoundPart sound(bytes.first(static_cast<std::size_t>(end)), kind);
  if (sound.end() < bytes.size())
    report.leftOut.push_back({sound.end(), bytes.size() - sound.end(),
                              !report.fault       ? "unread bytes after the last field"
                              : sound.end() < end ? "the incomplete element and everything after it"
                                                  : "everything from there on"});
  if (!sound.hasBody()) {
    to.error = "nothing can be recovered: it breaks at its beginning" +
               (report.fault ? ", in " + report.fault->path + ": " + report.fault->reason : "");
    return to;
  }
  withFileRecord(kind, [&](auto as) {
    recoverAs<decltype(as)::kKind>(bytes.first(static_cast<std::size_t>(end)), sound, encoding, to);
  });
  return to;
}

}  // namespace oldtorvio::convert
