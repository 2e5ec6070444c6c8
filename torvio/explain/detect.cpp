#include "torvio/explain/detect.h"

#include <tuple>

#include "src/frame/text.h"

namespace oldtorvio::map {
namespace {

// Higher is likelier. A kind that refuses the version is no candidate at all.
using Likelihood = std::tuple<bool, bool, std::uint64_t, bool>;

std::optional<Likelihood> likelihood(const FileReport& report) {
  const bool refused = report.fault && report.fault->path == "version";
  if (!report.version || refused) return std::nullopt;
  // A wrong kind may be content after a few bytes, while the right one comes to the damage: so behind a
  // file that is sound but for a little at its end it counts most how far the walk came.
  const bool isSound = report.status == 0;
  const bool isNearlyAll = isSound && report.walked >= report.size - report.size / 8;
  return Likelihood{report.endsExactly(), isNearlyAll, report.walked, isSound};
}

}  // namespace

std::optional<FileKind> detectKind(const std::string& path) {
  constexpr std::string_view kSpecialToolExtension = ".spt";
  if (path.size() >= kSpecialToolExtension.size() &&
      frame::equalNoCase(std::string_view(path).substr(path.size() - kSpecialToolExtension.size()),
                         kSpecialToolExtension))
    return FileKind::specialTool;

  std::optional<FileKind> best;
  std::optional<Likelihood> bestLikelihood;
  for (const KindName& candidate : fileKinds()) {
    const auto likely = likelihood(checkFile(path.c_str(), candidate.kind));
    if (!likely || (bestLikelihood && *likely <= *bestLikelihood)) continue;
    best = candidate.kind;
    bestLikelihood = likely;
  }
  return best;
}

}  // namespace oldtorvio::map
