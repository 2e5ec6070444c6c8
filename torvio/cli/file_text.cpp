#include "torvio/cli/file_text.h"

#include <algorithm>
#include <cstdio>

namespace torvio {

std::string hex(std::uint64_t offset) {
  char digits[32];
  (void)std::snprintf(digits, sizeof digits, "%08llx", static_cast<unsigned long long>(offset));
  return digits;
}

std::string describe(const oldtorvio::explain::Fault& fault) {
  return "at " + hex(fault.offset) + " in " + fault.path + ": " + fault.reason;
}

oldtorvio::explain::FileReport mapAs(std::span<const std::byte> bytes, std::optional<oldtorvio::explain::FileKind> kind,
                                     const oldtorvio::explain::MapSink& sink) {
  using namespace oldtorvio;
  if (kind) return explain::mapFile(bytes, *kind, sink);
  // Any kind will do for the version word. No other field is reported.
  const auto word = bytes.first(std::min(bytes.size(), sizeof(std::int16_t)));
  explain::FileReport report = explain::mapFile(word, explain::FileKind::part, [&](const explain::MapLine& line) {
    if (line.path == "version") sink(line);
  });
  report.size = bytes.size();
  if (!report.version) return report;
  bool isKnown = false;
  for (const frame::FileKindInfo& info : frame::kFileKinds) isKnown = isKnown || info.accepts(*report.version);
  const std::string other = std::to_string(*report.version) + " is not a version of any kind of file";
  report.fault =
      explain::Fault{0, "version", isKnown ? "the contents fit no kind of this version; --kind chooses one" : other};
  return report;
}

}  // namespace torvio
