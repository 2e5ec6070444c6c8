#include "torvio/convert/complete_save.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

#include "torvio/convert/sheet_surplus.h"
#include "torvio/values/equal.h"

namespace oldtorvio::convert {
namespace {

using frame::FileKind;

// Loads accept every width up to this one; saves store this one.
constexpr std::int32_t kTextWidth = 256;

bool isTable52(int version) { return version < 60; }

// Gives the table a version that a save stores in the layout of that version, and a valid nameLength.
void makeStorable(ParamTable& table, int version) {
  if (table.version == 0 || paramFormToWrite(table.version) == ParamForm::none || table.version >= 500)
    table.version = static_cast<std::uint16_t>(isTable52(version) ? 52 : std::min(version, 499));
  constexpr std::int32_t kLongest = sizeof table.name;
  if (table.nameLength >= 1 && table.nameLength <= kLongest) return;
  table.nameLength = std::min(kLongest, static_cast<std::int32_t>(fixedText(table.name).size()) + 1);
}

// A load adds the six default rules to any other number than six: those that it will add are not stored.
void makeStorable(MaterialRuleLists& lists) {
  const std::vector<AngleRule> added = MaterialRuleLists::defaultAngleRules();
  std::vector<AngleRule>& rules = lists.angleRules;
  if (rules.size() <= added.size() || rules.size() == 2 * added.size()) return;
  if (std::equal(added.begin(), added.end(), rules.end() - std::ssize(added)))
    rules.resize(rules.size() - added.size());
}

// Four bytes are stored, of which a load takes the first as smallValue and the second as shapesPresent.
void makeStorable(OldMachine& machine, int version, bool isTrailerStored) {
  constexpr int kFirstWithTrailer = 80;
  unsigned shapesPresent = machine.shapesPresent;
  if (shapesPresent == 1 && version >= kFirstWithTrailer && !isTrailerStored) shapesPresent = 0;
  machine.smallValue =
      static_cast<std::int32_t>((static_cast<unsigned>(machine.smallValue) & 0xFFU) | shapesPresent << 8U);
  machine.textWidth = kTextWidth;
  if (machine.secondTextPresent == 1) machine.secondTextWidth = kTextWidth;
  makeStorable(machine.material.rules);
}

// Give the record the values that its file needs to be loaded, and keep all others: widths of texts that a save stores
// in 256 bytes, a version that a save stores parameter tables in, a pattern for a part that has none. Drop what no save
// can store: damaged blocks of a sheet. Records of other kinds need nothing.
void makeStorable(TorvPart& part, int) {
  if (!part.patterns.empty()) return;
  part.patterns.emplace_back().items.resize(part.shapes.shapes.size());
}
void makeStorable(OldMachine& machine, int version) { makeStorable(machine, version, false); }
void makeStorable(OldMaterial& material, int version) {
  if (startsWithTable(FileKind::material, version)) material.params.version = static_cast<std::uint16_t>(version);
  makeStorable(material.params, version);
  makeStorable(material.rules);
}
void makeStorable(OldSheet& sheet, int version) {
  sheet.blocks.clear();
  if (sheet.textWidth < 1 || sheet.textWidth > kTextWidth) sheet.textWidth = kTextWidth;
  makeStorable(sheet.paramTable, version);
  makeStorable(sheet.machine, version, true);
}
void makeStorable(const auto&, int) {}

// ---- what a save of a sheet leaves out -----------------------------------------------------------------

// The file of a sheet whose machine says that the trailer values of the shapes of the sheet are in it. A save does not
// store them: they belong where a load looks for them first.
std::vector<std::byte> withTrailer(const std::vector<std::byte>& bytes, const OldSheet& sheet) {
  std::optional<std::uint64_t> at;
  (void)explain::mapFile(bytes, FileKind::sheet, [&](const explain::MapLine& line) {
    if (!at && line.path == "machine.shapes[0].trailerValue") at = line.offset;
  });
  if (!at) return bytes;
  codec::OutStream trailer;
  if (!codec::Writer(trailer).trailer(FIELDS(sheet.shapes.shapes), &Shape::trailerValue)) return bytes;
  std::vector<std::byte> all(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(*at));
  all.insert(all.end(), trailer.bytes().begin(), trailer.bytes().end());
  all.insert(all.end(), bytes.begin() + static_cast<std::ptrdiff_t>(*at), bytes.end());
  return all;
}

std::vector<std::byte> completed(std::vector<std::byte> bytes, const OldSheet& sheet, int version) {
  constexpr int kFirstWithTrailer = 80;
  const unsigned shapesPresent = (static_cast<unsigned>(sheet.machine.smallValue) >> 8U) & 0xFFU;
  if (shapesPresent == 1 && version >= kFirstWithTrailer && !sheet.shapes.shapes.empty())
    return withTrailer(bytes, sheet);
  return bytes;
}
std::vector<std::byte> completed(std::vector<std::byte> bytes, const auto&, int) { return bytes; }

template <FileKind kKind>
std::string refusal(std::int64_t status, int version) {
  const std::string kind(frame::infoOf(kKind).name);
  if (status == frame::kWrongVersion)
    return "a " + kind + " file cannot be saved in version " + std::to_string(version);
  return "cannot be saved in version " + std::to_string(version) +
         ": a count, a width or a version in it is not possible, or a list that has to have elements is empty";
}

}  // namespace

bool isSaved(FileKind kind, int version) {
  if (version > std::numeric_limits<std::int16_t>::max() || !frame::infoOf(kind).saves(version)) return false;
  if (!startsWithTable(kind, version)) return version >= frame::kFirstMainVersion;
  const auto word = static_cast<std::uint16_t>(version);
  return paramFormToWrite(word) == paramFormToRead(word);
}

std::string savedVersions(FileKind kind) {
  if (kind == FileKind::groupPart) return std::to_string(frame::kFirstGroupPartVersion) + " and above";
  std::string text;
  for (int first = 0; first <= frame::VersionSet::kHighest; ++first) {
    if (!isSaved(kind, first)) continue;
    int last = first;
    while (isSaved(kind, last + 1)) ++last;
    if (last == first + 1) last = first;
    text += (text.empty() ? "" : ", ") + std::to_string(first);
    if (last > first) text += " to " + std::to_string(last);
    first = last;
  }
  return text;
}

int nearestSaved(FileKind kind, int version) {
  if (isSaved(kind, version)) return version;
  if (startsWithTable(kind, version)) return 60;
  int nearest = frame::VersionSet::kHighest;
  for (int other = frame::VersionSet::kHighest; other > version; --other)
    if (isSaved(kind, other)) nearest = other;
  return nearest;
}

template <FileKind kKind>
CompleteSave saveCompletely(typename FileRecord<kKind>::Record& record, int version) {
  if (!isSaved(kKind, version))
    return {{},
            "a " + std::string(frame::infoOf(kKind).name) + " file cannot be saved in version " +
                std::to_string(version) + "; possible versions: " + savedVersions(kKind)};
  makeStorable(record, version);
  values::SavedRecord saved = values::saveRecord<kKind>(record, version);
  if (saved.status != frame::kDone) return {{}, refusal<kKind>(saved.status, version)};
  CompleteSave complete{completed(std::move(saved.bytes), record, version), ""};
  if (const auto surplus = surplusOfSave(complete.bytes, kKind, version))
    complete.bytes = without(complete.bytes, *surplus);
  const explain::FileReport report = explain::checkFile(complete.bytes, kKind);
  if (report.endsExactly() && !report.tolerated) return complete;
  const auto& fault = report.fault ? report.fault : report.tolerated;
  return {{},
          "a file of version " + std::to_string(version) + " made from it would not load" +
              (fault ? ": it breaks in " + fault->path + ": " + fault->reason
                     : ", since it would have " + report.unread())};
}

#define OLDTORVIO_SAVE_COMPLETELY(KIND) \
  template CompleteSave saveCompletely<FileKind::KIND>(FileRecord<FileKind::KIND>::Record&, int);
OLDTORVIO_EACH_FILE_KIND(OLDTORVIO_SAVE_COMPLETELY)
#undef OLDTORVIO_SAVE_COMPLETELY

}  // namespace oldtorvio::convert
