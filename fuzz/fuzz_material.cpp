// Material files in both forms: any bytes load, fail or are refused without harm, and what loads can
// be saved.
#include "fuzz/fuzz_checks.h"
#include "src/frame/versions.h"
#include "src/material/material_io.h"

using namespace oldtorvio;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::span<const std::byte> file(reinterpret_cast<const std::byte*>(data), size);
  int version = 0;
  {
    frame::InStream head(file);
    if (!fuzzing::readVersion(head, version) || !frame::isMaterialVersion(version)) return 0;
  }
  OldMaterial& material = fuzzing::fresh<OldMaterial>();
  const bool isTable = frame::isParamTableVersion(version);
  frame::InStream stream(isTable ? file : file.subspan(2));
  const int tableStatus = ReadParamTable(stream, material.params);
  fuzzing::expect(tableStatus >= -1 && tableStatus <= 1);
  // Tables of version 500 to 502 are stored in a layout that their version does not tell.
  if (tableStatus == 0 && material.params.version < 500)
    fuzzing::expectSettled(
        material.params, [](auto& in, ParamTable& to) { return ReadParamTable(in, to); },
        [](auto& out, const ParamTable& from) { return WriteParamTable(out, from); });
  if (tableStatus != 0 || isTable) return 0;

  const auto body = file.subspan(static_cast<std::size_t>(stream.position()) + 2);
  // A load appends rules to angle rules that are not six: these never settle.
  if (ReadOldMaterialBody(stream, version, material) == 0 && material.rules.angleRules.size() == 6)
    fuzzing::expectSettled(
        material, [&](auto& in, OldMaterial& to) { return ReadOldMaterialBody(in, version, to); },
        [&](auto& out, OldMaterial& from) { return WriteOldMaterialBody(out, version, from); });

  frame::InStream again(body);
  (void)ReadOldMaterialBody(again, version < 130 ? 180 : 61, material);
  return 0;
}
