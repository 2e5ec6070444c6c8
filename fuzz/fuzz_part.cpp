// Part files: any bytes load, fail or are refused without harm, and what loads can be saved.
#include "fuzz/fuzz_checks.h"
#include "src/frame/versions.h"
#include "src/part/part_io.h"

using namespace oldtorvio;

namespace {

bool fitsWriter(const TorvPart& part) {
  // What a load keeps as it stands but a save must refuse or repairs on the way.
  for (const Pattern& p : part.patterns)
    if (p.bindFirst.size() != p.bindFifth.size()) return false;
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::span<const std::byte> file(reinterpret_cast<const std::byte*>(data), size);
  int version = 0;
  {
    frame::InStream head(file);
    if (!fuzzing::readVersion(head, version)) return 0;
  }
  if (!frame::kPartVersions.has(version)) return 0;
  const auto body = file.subspan(2);
  TorvPart& part = fuzzing::fresh<TorvPart>();
  if (version < frame::kFirstMainVersion) {
    // Twice, the second time over the record in use.
    frame::InStream first(body), second(body);
    const int result = ReadOldestPart(first, version, part);
    fuzzing::expect(result == 1 || version == frame::kVersion5);
    fuzzing::expect(ReadOldestPart(second, version, part) == result);
    for (const Shape& shape : part.shapes.shapes) fuzzing::expect(shape.valueCount == 9);
    return 0;
  }

  frame::InStream stream(body);
  const int result = ReadPartBody(stream, version, false, part);
  if (result == 0) {
    fuzzing::expect(part.patterns.size() == 1);
    fuzzing::expect(part.patterns.front().items.size() == part.shapes.shapes.size());
    fuzzing::expect(part.toolStations.stations.size() == part.toolStations.tools.size());
    fuzzing::expect(fitsWriter(part));
    fuzzing::expectSettled(
        part, [&](auto& in, TorvPart& to) { return ReadPartBody(in, version, false, to); },
        [&](auto& out, const TorvPart& from) { return WritePartBody(out, version, false, from); });
  }

  // The same bytes in a sheet's form, over the record that the first load left.
  frame::InStream embedded(body);
  (void)ReadPartBody(embedded, version, true, part);
  return 0;
}
