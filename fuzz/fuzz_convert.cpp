// Conversions and recoveries: of any bytes, in any version. What comes out loads completely, has everything that it can
// have, and loses nothing when it is converted or recovered again.
//
// An input has a byte for the kind, one for the version, and the file.
#include <string>
#include <vector>

#include "fuzz/fuzz_checks.h"
#include "torvio/convert/convert.h"
#include "torvio/convert/recover.h"
#include "torvio/values/text_encoding.h"

using namespace oldtorvio;
using convert::Converted;
using convert::Recovered;

namespace {

void expectReadable(const convert::Report& report, const std::string& error) {
  fuzzing::expect(values::onOneLine(error) == error);
  const std::string json = convert::jsonOf(report, "file", error);
  fuzzing::expect(json.size() > 2 && json.ends_with("}\n"));
  const std::string object = json.substr(0, json.size() - 1);
  fuzzing::expect(values::onOneLine(object) == object);
  std::string lines = convert::textOf(report);
  fuzzing::expect(lines.empty() || lines.back() == '\n');
  std::erase(lines, '\n');
  fuzzing::expect(values::onOneLine(lines) == lines);
}

// A load reads the new file to its last byte.
void expectSound(const std::vector<std::byte>& file, frame::FileKind kind, int version) {
  const explain::FileReport report = explain::checkFile(file, kind);
  fuzzing::expect(report.status == 0 && report.version == version && report.endsExactly() && !report.tolerated);
}

void expectConversion(fuzzing::Bytes file, frame::FileKind kind, int version) {
  convert::ConvertOptions options;
  options.allowLoss = true;
  const Converted made = convert::convert(file, kind, version, options);
  expectReadable(made.report, made.error);
  fuzzing::expect(made.bytes.empty() == !made.error.empty());

  // Without the permission to lose anything, the same file or none.
  const Converted careful = convert::convert(file, kind, version);
  expectReadable(careful.report, careful.error);
  const bool isRefused = !made.error.empty() || !made.report.isComplete();
  fuzzing::expect(careful.error.empty() == !isRefused);
  fuzzing::expect(careful.bytes == (isRefused ? std::vector<std::byte>() : made.bytes));
  if (!made.error.empty()) return;

  expectSound(made.bytes, kind, version);
  // A load changes some values, such as a machineWord1 that is nearly zero: the new file has what was stored, and the
  // one after it what was loaded.
  const Converted again = convert::convert(made.bytes, kind, version);
  fuzzing::expect(again.error.empty() && again.report.isComplete());
  const Converted settled = convert::convert(again.bytes, kind, version);
  fuzzing::expect(settled.error.empty() && settled.report.isComplete() && settled.bytes == again.bytes);
}

void expectRecovery(fuzzing::Bytes file, frame::FileKind kind) {
  const Recovered made = convert::recover(file, kind);
  expectReadable(made.report, made.error);
  if (made.bytes.empty()) return fuzzing::expect(made.isSound || !made.error.empty());
  fuzzing::expect(!made.isSound && made.error.empty());
  expectSound(made.bytes, kind, made.report.to);
  fuzzing::expect(convert::recover(made.bytes, kind).isSound);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 2) return 0;
  const frame::FileKind kind = frame::kFileKinds[data[0] % frame::kFileKinds.size()].kind;
  const fuzzing::Bytes file = fuzzing::bytesOf(data + 2, size - 2);
  expectConversion(file, kind, data[1]);
  expectRecovery(file, kind);
  return 0;
}
