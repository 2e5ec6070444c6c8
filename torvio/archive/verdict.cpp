#include "torvio/archive/verdict.h"

#include <array>

#include "src/frame/text/text.h"
#include "torvio/archive/plausibility.h"

namespace oldtorvio::archive {
namespace {

using explain::FileKind;
using explain::FileReport;

bool hasExtension(std::string_view path, std::string_view extension) {
  if (extension.empty() || path.size() < extension.size()) return false;
  return frame::equalNoCase(path.substr(path.size() - extension.size()), extension);
}

// The kind that the extension names. Extensions of the caller are tried first.
std::optional<FileKind> kindOfExtension(std::string_view path, const JudgeOptions& options) {
  for (const ExtensionHint& hint : options.extensions)
    if (hasExtension(path,
                     hint.extension.starts_with('.') || hint.extension.empty() ? hint.extension : '.' + hint.extension))
      return hint.kind;
  for (const frame::FileKindInfo& info : frame::kFileKinds)
    if (hasExtension(path, info.extension)) return info.kind;
  return std::nullopt;
}

Verdict verdictOf(const FileReport& report, FileKind kind) {
  if (report.version && !frame::infoOf(kind).accepts(*report.version)) return Verdict::refusedVersion;
  if (report.endsInRest()) return Verdict::refusedVersion;
  if (report.status != frame::kDone) return Verdict::damaged;
  return report.endsExactly() && !report.tolerated ? Verdict::sound : Verdict::soundWithLosses;
}

}  // namespace

std::string_view nameOf(Verdict verdict) {
  static constexpr std::array<std::string_view, kVerdicts> kNames{"sound",           "sound with losses", "damaged",
                                                                  "refused version", "foreign",           "unreadable"};
  return kNames[static_cast<std::size_t>(verdict)];
}

Judgement judge(std::string_view path, std::span<const std::byte> bytes, const JudgeOptions& options) {
  std::optional<FileKind> kind = options.kind;
  if (!kind) kind = kindOfExtension(path, options);
  if (!kind) kind = likeliestKind(bytes);
  if (!kind) {
    Judgement foreign;
    foreign.report.status = frame::kWrongVersion;
    foreign.report.version = versionOf(bytes);
    foreign.report.size = bytes.size();
    return foreign;
  }
  Judgement judgement{Verdict::damaged, kind, explain::checkFile(bytes, *kind)};
  judgement.verdict = verdictOf(judgement.report, *kind);
  return judgement;
}

}  // namespace oldtorvio::archive
