// Detection: any bytes are judged without harm, and a verdict is what a load as the kind that it names comes to.
#include <optional>

#include "fuzz/fuzz_checks.h"
#include "torvio/archive/verdict.h"
#include "torvio/values/compiled_records.h"

using namespace oldtorvio;
using archive::Verdict;

namespace {

bool isSame(const std::optional<explain::Fault>& one, const std::optional<explain::Fault>& other) {
  if (!one || !other) return !one && !other;
  return one->offset == other->offset && one->path == other->path && one->reason == other->reason;
}

bool fits(Verdict verdict, const explain::FileReport& report, bool isAccepted) {
  switch (verdict) {
    case Verdict::sound:
      return isAccepted && report.endsExactly() && !report.fault && !report.tolerated;
    case Verdict::soundWithLosses:
      return isAccepted && report.status == 0 && (!report.endsExactly() || report.tolerated);
    case Verdict::damaged:
      return report.status != 0 && (isAccepted || !report.version) && !report.endsInRest();
    case Verdict::refusedVersion:
      // Or one of which no load reads all.
      return report.status != 0 && report.version && (!isAccepted || report.endsInRest());
    default:
      return false;
  }
}

void expectConsistent(const archive::Judgement& judgement, fuzzing::Bytes file) {
  fuzzing::expect(judgement.report.size == file.size());
  if (!judgement.kind) return fuzzing::expect(judgement.verdict == Verdict::foreign);
  const explain::FileReport report = explain::checkFile(file, *judgement.kind);
  const explain::FileReport& judged = judgement.report;
  fuzzing::expect(judged.status == report.status && judged.version == report.version);
  fuzzing::expect(judged.walked == report.walked && report.walked <= report.size);
  fuzzing::expect(isSame(judged.fault, report.fault) && isSame(judged.tolerated, report.tolerated));
  const bool isAccepted = report.version && frame::infoOf(*judgement.kind).accepts(*report.version);
  fuzzing::expect(fits(judgement.verdict, report, isAccepted));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const fuzzing::Bytes file = fuzzing::bytesOf(data, size);
  const archive::Judgement judgement = archive::judge("", file, {});
  expectConsistent(judgement, file);
  if (judgement.kind)
    withFileRecord(*judgement.kind, [&](auto one) {
      const auto loaded = values::loadRecord<decltype(one)::kKind>(file);
      fuzzing::expect(loaded.status == judgement.report.status);
      // A failed read leaves the stream at its end.
      const bool isClean = loaded.status == 0 && !judgement.report.tolerated;
      fuzzing::expect(!isClean || loaded.walked == judgement.report.walked);
    });
  for (const frame::FileKindInfo& info : frame::kFileKinds) {
    archive::JudgeOptions options;
    options.kind = info.kind;
    const archive::Judgement asKind = archive::judge("", file, options);
    fuzzing::expect(asKind.kind == info.kind);
    expectConsistent(asKind, file);
    // An extension is as good as the option.
    const archive::Judgement asExtension = archive::judge("a.X", file, {{}, {{".x", info.kind}}});
    fuzzing::expect(asExtension.kind == info.kind && asExtension.verdict == asKind.verdict);
  }
  return 0;
}
