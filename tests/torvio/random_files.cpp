#include "tests/torvio/random_files.h"

#include <memory>
#include <span>
#include <utility>

#include "tests/support/any_content.h"
#include "tests/support/random_records.h"
#include "torvio/values/compiled_records.h"
#include "torvio/values/equal.h"

namespace testing_support {
namespace {

using namespace oldtorvio;

// A save stores words of the machine that a load of the versions 60 to 151 does not expect: it takes them for what
// follows the machine, which therefore has to be zeros.
void makeReadable(auto&, int) {}
void makeReadable(OldSheet& sheet, int version) {
  if (version < 60 || version >= 152) return;
  OldMachine& m = sheet.machine;
  m.machineWord124 = m.machineWord126 = m.machineWord128 = m.machineWord131 = m.machineWord132 = 0;
  m.machineWord125 = m.machineWord127 = 0;
  m.machineWord129 = m.machineWord130 = 0;
  m.lateByteC = 0;
  m.hasExtension = 0;
  sheet.optionWord = 0;
  sheet.textEntries.clear();
  sheet.namedWorkLists.clear();
}

template <frame::FileKind kKind>
Bytes randomFileOf(int version, std::uint32_t seed) {
  RandomRecords random(seed, static_cast<int>(seed % 3));
  // No save stores these: bytes as the load expects them.
  if (kKind == frame::FileKind::part && version < frame::kFirstMainVersion) return Bytes().i16(version).zeros(4000);
  if (kKind == frame::FileKind::material && version >= 500) {
    Bytes table = Bytes().i16(version);
    for (int i = 0; i < 1000; ++i) table.u8(static_cast<std::uint8_t>(random.upTo(255)));
    return table;
  }
  // Sheets of such a version are stored as the newest, and have the word of their own.
  const bool isLate = kKind == frame::FileKind::sheet && version >= 500;
  const int layout = isLate ? 180 : version;
  const auto record = random.newRecord<typename FileRecord<kKind>::Record>(layout);
  makeReadable(*record, layout);
  const auto saved = values::saveRecord<kKind>(*record, layout);
  if (!isLate) return Bytes::of(saved.bytes);
  return Bytes().i16(version).add(Bytes::of(std::span(saved.bytes).subspan(2)));
}

}  // namespace

std::vector<int> versionsOf(frame::FileKind kind) {
  std::vector<int> all;
  for (int version = 0; version <= 600; ++version)
    if (frame::infoOf(kind).accepts(version) && !(kind == frame::FileKind::part && version < 5)) all.push_back(version);
  return all;
}

Bytes randomFile(frame::FileKind kind, int version, std::uint32_t seed) {
  return withFileRecord(kind, [&](auto file) { return randomFileOf<decltype(file)::kKind>(version, seed); });
}

void fillWithAnything(frame::FileKind kind, void* record, std::uint32_t seed) {
  withFileRecord(kind,
                 [&](auto file) { AnyContent(seed).fill(*static_cast<typename decltype(file)::Record*>(record)); });
}

std::optional<std::string> differenceOf(frame::FileKind kind, const void* one, const void* other) {
  return withFileRecord(kind, [&](auto file) {
    using Record = typename decltype(file)::Record;
    return values::firstDifference(*static_cast<const Record*>(one), *static_cast<const Record*>(other));
  });
}

}  // namespace testing_support
