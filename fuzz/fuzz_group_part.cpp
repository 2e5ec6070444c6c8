// Group part files: any bytes load or fail without harm, and each part that loads can be saved.
#include "fuzz/fuzz_checks.h"
#include "src/frame/versions.h"
#include "src/part/part_io.h"
#include "src/part/part_layout.h"

using namespace oldtorvio;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  frame::InStream stream({reinterpret_cast<const std::byte*>(data), size});
  int version = 0;
  if (!fuzzing::readVersion(stream, version) || version < frame::kFirstGroupPartVersion) return 0;

  SheetPartList list;
  frame::GroupPartFile<std::vector<TorvPart>> file{list.parts};
  const bool loaded = frame::readRecord(stream, version, file);
  fuzzing::expect(!loaded || !list.parts.empty());
  for (const TorvPart& part : list.parts) {
    fuzzing::expect(part.version == 0);
    fuzzing::expect(part.patterns.size() == 1 && part.patterns.front().items.size() == part.shapes.shapes.size());
  }
  if (!loaded) return 0;

  fuzzing::expectSettled(
      list,
      [&](auto& in, SheetPartList& to) {
        frame::GroupPartFile<std::vector<TorvPart>> again{to.parts};
        return frame::resultOf(frame::readRecord(in, version, again));
      },
      [&](auto& out, const SheetPartList& from) {
        const frame::GroupPartFile<const std::vector<TorvPart>> again{
            from.parts, static_cast<std::int32_t>(from.parts.size() - 1), file.nameBlockSize};
        return frame::writeRecord(out, version, again);
      });
  return 0;
}
