#include "torvio/convert/sheet_surplus.h"

#include "src/frame/versions.h"

namespace oldtorvio::convert {
namespace {

using explain::FileKind;

// The first field after the machine of a sheet.
std::optional<std::size_t> endOfMachine(std::span<const std::byte> bytes) {
  std::optional<std::size_t> end;
  (void)explain::mapFile(bytes, FileKind::sheet, [&](const explain::MapLine& line) {
    const bool isNext = line.path == "optionWord" || line.path == "machine.extension.extensionEntries.count";
    if (isNext && line.size > 0 && !end) end = static_cast<std::size_t>(line.offset);
  });
  return end;
}

}  // namespace

std::optional<Surplus> surplusOfSave(std::span<const std::byte> bytes, FileKind kind, int version) {
  constexpr int kFirstWithoutSurplus = 152, kFirstWithLateWords = 151;
  const bool hasMachine = kind == FileKind::machine || kind == FileKind::sheet;
  if (!hasMachine || version < frame::kFirstMainVersion || version >= kFirstWithoutSurplus) return std::nullopt;
  // machineWord124 to machineWord132 and lateByteC; a load of 151 expects the words.
  const std::size_t size = version < kFirstWithLateWords ? 37 : 1;
  if (bytes.size() < size) return std::nullopt;
  const std::optional<std::size_t> at =
      kind == FileKind::sheet ? endOfMachine(bytes) : std::optional(bytes.size() - size);
  if (!at || *at + size > bytes.size()) return std::nullopt;
  return Surplus{*at, size};
}

std::optional<Surplus> surplusOf(std::span<const std::byte> bytes, FileKind kind, const explain::FileReport& report) {
  if (!report.version || report.endsExactly()) return std::nullopt;
  const std::optional<Surplus> surplus = surplusOfSave(bytes, kind, *report.version);
  if (!surplus) return std::nullopt;
  // A tolerated fault at the end: the file is truncated there, and its last bytes are not a surplus.
  const explain::FileReport rest = explain::checkFile(without(bytes, *surplus), kind);
  return rest.endsExactly() && !rest.tolerated ? surplus : std::nullopt;
}

std::vector<std::byte> without(std::span<const std::byte> bytes, const Surplus& surplus) {
  std::vector<std::byte> rest;
  rest.reserve(bytes.size() - surplus.size);
  const auto before = bytes.first(surplus.offset), after = bytes.subspan(surplus.offset + surplus.size);
  rest.insert(rest.end(), before.begin(), before.end());
  rest.insert(rest.end(), after.begin(), after.end());
  return rest;
}

}  // namespace oldtorvio::convert
