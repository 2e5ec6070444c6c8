// Part files: any bytes load, fail or are refused without harm, also into a record that already holds data, and
// what loads can be saved and queried.
#include <cstring>

#include "OldTorvIO.h"
#include "fuzz/fuzz_checks.h"
#include "src/frame/text/text.h"
#include "src/frame/versions.h"
#include "src/part/part_io.h"

using namespace oldtorvio;

namespace {

bool fitsWriter(const TorvPart& part) {
  // False for what a load keeps, but a save refuses or corrects.
  for (const Pattern& p : part.patterns)
    if (p.bindFirst.size() != p.bindFifth.size()) return false;
  return true;
}

int load(fuzzing::Bytes body, int version, bool embedded, bool stopEarly, const fuzzing::RecordPair<TorvPart>& pair) {
  return fuzzing::loadPair(
      body, pair, [&](auto& in, TorvPart& to) { return ReadPartBody(in, version, embedded, to, stopEarly); },
      [&](TorvPart& to) { return fuzzing::walkPartBody(body, version, embedded, stopEarly, to); });
}

// What a load sets before it reads the body.
void setBeside(TorvPart& part, int version) {
  part.version = version;
  frame::setPath(part.partFullDosName, fuzzing::ScratchFile::path());
}

void askByPath(std::int64_t status, const TorvPart& part, std::size_t which) {
  const char* const path = fuzzing::ScratchFile::path();
  char text[257];
  float f[3];
  std::uint32_t length = 0;
  switch (which % 4) {
    case 0:
      fuzzing::expect(GetOldPartInfo(path, text, &f[0], &f[1], &f[2]) == status);
      if (status == 0)
        fuzzing::expect(text == fixedText(part.materialType) && std::memcmp(&f[0], &part.width, 4) == 0 &&
                        std::memcmp(&f[1], &part.height, 4) == 0 && std::memcmp(&f[2], &part.thickness, 4) == 0);
      break;
    case 1:
      for (const char* key : {"angle", "Revision", "MatType", "Thickness"})
        fuzzing::expect(GetOldPartInfo_v1(path, key, text) == status && (status != 0 || std::strlen(text) < 257));
      fuzzing::expect(GetOldPartInfo_v1(path, "", text) == 1);
      break;
    case 2: {
      fuzzing::expect(GetOldPartTool(path, nullptr, 0, &length) == status);
      std::vector<char> tools(length + 1);
      fuzzing::expect(GetOldPartTool(path, tools.data(), static_cast<std::int32_t>(length + 1), &length) == status);
      fuzzing::expect(std::strlen(tools.data()) == length);
      break;
    }
    default: {
      const std::size_t room = 258 * part.toolStations.tools.size();
      std::vector<char> paths(room + 1);
      fuzzing::expect(GetOldSptFromPart(path, paths.data()) == status && std::strlen(paths.data()) <= room);
      break;
    }
  }
}

void loadByPath(fuzzing::Bytes file, std::int64_t status, const fuzzing::RecordPair<TorvPart>& pair, std::size_t turn) {
  if (turn % 16 != 0) return;
  const fuzzing::ScratchFile scratch(file);
  fuzzing::expectLoadedByPath(status, pair, LoadOldPart);
  askByPath(status, pair.read, turn / 16);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fuzzing::Bytes file = fuzzing::bytesOf(data, size);
  int version = 0;
  {
    codec::InStream head(file);
    if (!fuzzing::readVersion(head, version)) return 0;
  }
  if (!frame::kPartVersions.has(version)) return 0;
  const fuzzing::Bytes body = file.subspan(2);
  const std::size_t turn = fuzzing::turnOf(file);
  const auto pair = fuzzing::RecordPair<TorvPart>::fresh();
  pair.both([&](TorvPart& part) { setBeside(part, version); });
  const TorvPart& part = pair.read;
  if (version < frame::kFirstMainVersion) {
    const auto loadOldest = [&] { return fuzzing::loadFilePair<frame::FileKind::part>(body, version, pair); };
    const int result = loadOldest();
    fuzzing::expect(result == 1 || version == frame::kVersion5);
    loadByPath(file, result, pair, turn);
    // The second time the record already holds data.
    fuzzing::expect(loadOldest() == result);
    for (const Shape& shape : part.shapes.shapes) fuzzing::expect(shape.valueCount == 9);
    return 0;
  }

  const int result = load(body, version, false, false, pair);
  loadByPath(file, result, pair, turn);
  if (result == 0) {
    fuzzing::expect(part.patterns.size() == 1);
    fuzzing::expect(part.patterns.front().items.size() == part.shapes.shapes.size());
    fuzzing::expect(part.toolStations.stations.size() == part.toolStations.tools.size());
    fuzzing::expect(fitsWriter(part));
    fuzzing::expectStable(
        part, [&](auto& in, TorvPart& to) { return ReadPartBody(in, version, false, to); },
        [&](auto& out, const TorvPart& from) { return WritePartBody(out, version, false, from); });
  }

  // The same bytes in a sheet's form, over the record that the first load left, up to the descriptions or all.
  (void)load(body, version, true, turn % 8 == 1, pair);
  return 0;
}
