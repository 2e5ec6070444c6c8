// Material files in both forms: any bytes load, fail or are refused without harm, also into a record that already
// holds data, and what loads can be saved.
#include "OldTorvIO.h"
#include "fuzz/fuzz_checks.h"
#include "src/frame/text/text.h"
#include "src/frame/versions.h"
#include "src/material/material_io.h"

using namespace oldtorvio;

namespace {

int loadTable(fuzzing::Bytes from, const fuzzing::RecordPair<OldMaterial>& pair, std::size_t& bytesRead) {
  const fuzzing::RecordPair<ParamTable> tables{pair.read.params, pair.walked.params};
  return fuzzing::loadPair(
      from, tables,
      [&](auto& in, ParamTable& to) {
        const int status = ReadParamTable(in, to);
        bytesRead = static_cast<std::size_t>(in.position());
        return status;
      },
      [&](ParamTable& to) { return fuzzing::walkParamTable(from, to); });
}

int loadBody(fuzzing::Bytes body, int version, const fuzzing::RecordPair<OldMaterial>& pair) {
  return fuzzing::loadPair(
      body, pair, [&](auto& in, OldMaterial& to) { return ReadOldMaterialBody(in, version, to); },
      [&](OldMaterial& to) { return fuzzing::walkMaterialBody(body, version, to); });
}

// What a load sets besides the table and the body.
void setOutside(OldMaterial& material, int version, bool isLoadedTable) {
  frame::setPath(material.path, fuzzing::ScratchFile::path());
  material.version = static_cast<std::uint16_t>(version);
  const std::string_view name = fixedText(material.params.name);
  if (isLoadedTable && !name.empty() && name.size() < 256) material.name = name;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fuzzing::Bytes file = fuzzing::bytesOf(data, size);
  int version = 0;
  {
    codec::InStream head(file);
    if (!fuzzing::readVersion(head, version) || !frame::isMaterialVersion(version)) return 0;
  }
  const std::size_t turn = fuzzing::turnOf(file);
  const auto pair = fuzzing::RecordPair<OldMaterial>::fresh();
  OldMaterial& material = pair.read;
  const bool isTable = frame::isParamTableVersion(version);
  const fuzzing::Bytes table = isTable ? file : file.subspan(2);
  std::size_t bytesRead = 0;
  const int tableStatus = loadTable(table, pair, bytesRead);
  fuzzing::expect(tableStatus >= -1 && tableStatus <= 1);
  // Tables of version 500 to 502 are stored in a layout that does not match their version.
  if (tableStatus == 0 && material.params.version < 500)
    fuzzing::expectStable(
        material.params, [](auto& in, ParamTable& to) { return ReadParamTable(in, to); },
        [](auto& out, const ParamTable& from) { return WriteParamTable(out, from); });

  const bool hasBody = tableStatus == 0 && !isTable;
  const fuzzing::Bytes body = table.subspan(bytesRead);
  const int status = hasBody ? loadBody(body, version, pair) : tableStatus;
  pair.both([&](OldMaterial& m) { setOutside(m, version, isTable && tableStatus == 0); });
  if (turn % 16 == 0) {
    const fuzzing::ScratchFile scratch(file);
    fuzzing::expectLoadedByPath(status, pair, LoadOldMaterial);
  }
  if (!hasBody) return 0;

  // A load appends rules to angle rules that are not six: the bytes never become stable.
  if (status == 0 && material.rules.angleRules.size() == 6) {
    const auto write = [&](auto& out, OldMaterial& from) { return WriteOldMaterialBody(out, version, from); };
    fuzzing::expectStable(
        material, [&](auto& in, OldMaterial& to) { return ReadOldMaterialBody(in, version, to); }, write);
    // A save changes the record.
    (void)fuzzing::stored([&](auto& out) { return write(out, pair.walked); });
  }
  (void)loadBody(body, version < 130 ? 180 : 61, pair);
  return 0;
}
