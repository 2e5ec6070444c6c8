#include "torvio/archive/verdict.h"

#include <array>
#include <utility>

#include "src/frame/text/text.h"
#include "torvio/explain/detect.h"

namespace oldtorvio::archive {
namespace {

std::optional<explain::FileKind> hintedKind(std::string_view path, const JudgeOptions& options) {
  for (const ExtensionHint& hint : options.extensions)
    if (path.size() >= hint.extension.size() &&
        frame::equalNoCase(path.substr(path.size() - hint.extension.size()), hint.extension))
      return hint.kind;
  return std::nullopt;
}

Verdict verdictOn(const explain::FileReport& report) {
  if (report.status == frame::kDone)
    return report.endsExactly() && !report.tolerated ? Verdict::sound : Verdict::soundWithLosses;
  const bool isRefused = report.version && report.fault && report.fault->path == "version";
  return isRefused ? Verdict::refusedVersion : Verdict::damaged;
}

}  // namespace

std::string_view nameOf(Verdict verdict) {
  static constexpr std::array<std::string_view, kVerdicts> kNames{"sound",           "sound with losses", "damaged",
                                                                  "refused version", "foreign",           "unreadable"};
  return kNames[static_cast<std::size_t>(verdict)];
}

Judgement judge(std::string_view path, std::span<const std::byte> bytes, const JudgeOptions& options) {
  Judgement judgement;
  judgement.kind = options.kind ? options.kind : hintedKind(path, options);
  if (judgement.kind) {
    judgement.report = explain::checkFile(bytes, *judgement.kind);
  } else if (auto detected = explain::detect(path, bytes)) {
    judgement.kind = detected->kind;
    judgement.report = std::move(detected->report);
  } else {
    judgement.report = explain::checkFile(bytes, explain::FileKind::part);
    return judgement;
  }
  judgement.verdict = verdictOn(judgement.report);
  return judgement;
}

}  // namespace oldtorvio::archive
