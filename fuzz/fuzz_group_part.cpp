// Group part files: any bytes load or fail without harm, also after the parts of a list that already has some, and each
// part that loads can be saved.
#include <cstring>

#include "OldTorvIO.h"
#include "fuzz/fuzz_checks.h"
#include "src/frame/versions.h"
#include "src/part/part_io.h"
#include "src/part/part_layout.h"

using namespace oldtorvio;

namespace {

int load(fuzzing::Bytes body, int version, const fuzzing::RecordPair<SheetPartList>& pair) {
  return fuzzing::loadFilePair<frame::FileKind::groupPart>(body, version, pair);
}

void askByPath(std::int64_t status) {
  const char* const path = fuzzing::ScratchFile::path();
  std::uint32_t length = 0;
  fuzzing::expect(GetOldSptFromGroupPart(path, nullptr, 0, &length) == status);
  std::vector<char> text(length + 1);
  fuzzing::expect(GetOldSptFromGroupPart(path, text.data(), static_cast<std::int32_t>(text.size()), &length) == status);
  fuzzing::expect(std::strlen(text.data()) == length);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fuzzing::Bytes file = fuzzing::bytesOf(data, size);
  codec::InStream stream(file);
  int version = 0;
  if (!fuzzing::readVersion(stream, version) || version < frame::kFirstGroupPartVersion) return 0;
  const fuzzing::Bytes body = file.subspan(2);
  const std::size_t turn = fuzzing::turnOf(file);

  const auto pair = fuzzing::RecordPair<SheetPartList>::fresh();
  const int status = load(body, version, pair);
  const std::vector<TorvPart>& parts = pair.read.parts;
  fuzzing::expect(status != 0 || !parts.empty());
  for (const TorvPart& part : parts) {
    fuzzing::expect(part.version == 0);
    fuzzing::expect(part.patterns.size() == 1 && part.patterns.front().items.size() == part.shapes.shapes.size());
  }
  if (turn % 16 == 0) {
    const fuzzing::ScratchFile scratch(file);
    fuzzing::expectLoadedByPath(status, pair, LoadGroupPart);
    askByPath(status);
  }
  if (status == 0) {
    codec::InStream again(body);
    std::int32_t extraPartCount = 0, nameBlockSize = 0;
    fuzzing::expect(codec::readRecord(again, version, extraPartCount) &&
                    codec::readRecord(again, version, nameBlockSize));
    fuzzing::expectStable(
        pair.read, [&](auto& in, SheetPartList& to) { return ReadGroupPart(in, version, to); },
        [&](auto& out, const SheetPartList& from) {
          const codec::GroupPartFile<const std::vector<TorvPart>> all{
              from.parts, static_cast<std::int32_t>(from.parts.size() - 1), nameBlockSize};
          return codec::writeRecord(out, version, all);
        });
  }
  // The new parts follow those that the list holds.
  const std::size_t before = parts.size();
  fuzzing::expect(load(body, version, pair) == status && parts.size() == 2 * before);
  return 0;
}
