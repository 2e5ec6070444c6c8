#include "torvio/explain/detect.h"

#include <tuple>
#include <utility>

#include "src/frame/text/text.h"
#include "torvio/explain/file_content.h"

namespace oldtorvio::explain {
namespace {

// Compared in this order, higher is likelier. A kind that refuses the version is not a candidate.
using Likelihood = std::tuple<bool, bool, std::uint64_t, bool>;

std::optional<Likelihood> likelihood(const FileReport& report) {
  const bool refused = report.fault && report.fault->path == "version";
  if (!report.version || refused) return std::nullopt;
  // A wrong kind may be complete after a few bytes, while the right one reads up to the fault. So unless nearly all of
  // the file is sound, the number of bytes read matters most.
  const bool isSound = report.status == 0;
  const bool isNearlyAll = isSound && report.walked >= report.size - report.size / 8;
  return Likelihood{report.endsExactly(), isNearlyAll, report.walked, isSound};
}

// The kind by extension, whatever the file contains.
std::optional<FileKind> kindOfName(std::string_view path) {
  for (const frame::FileKindInfo& info : frame::kFileKinds)
    if (!info.extension.empty() && path.size() >= info.extension.size() &&
        frame::equalNoCase(path.substr(path.size() - info.extension.size()), info.extension))
      return info.kind;
  return std::nullopt;
}

}  // namespace

std::optional<Detected> detect(std::string_view path, std::span<const std::byte> bytes) {
  if (const auto named = kindOfName(path)) return Detected{*named, checkFile(bytes, *named)};
  std::optional<Detected> best;
  std::optional<Likelihood> bestLikelihood;
  for (const frame::FileKindInfo& candidate : frame::kFileKinds) {
    FileReport report = checkFile(bytes, candidate.kind);
    const auto likely = likelihood(report);
    if (!likely || (bestLikelihood && *likely <= *bestLikelihood)) continue;
    best = Detected{candidate.kind, std::move(report)};
    bestLikelihood = likely;
  }
  return best;
}

std::optional<FileKind> detectKind(const std::string& path) {
  if (const auto named = kindOfName(path)) return named;
  const FileContent file(path);
  const auto detected = detect(path, file.bytes());
  return detected ? std::optional(detected->kind) : std::nullopt;
}

}  // namespace oldtorvio::explain
