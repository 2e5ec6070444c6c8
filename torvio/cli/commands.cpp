#include "torvio/cli/commands.h"

#include <algorithm>
#include <cstdio>

#include "torvio/explain/detect.h"
#include "torvio/explain/format_table.h"

namespace torvio {
namespace {

using namespace oldtorvio;

std::string describe(const frame::Fault& fault) {
  char offset[32];
  (void)std::snprintf(offset, sizeof offset, "%08llx", static_cast<unsigned long long>(fault.offset));
  if (fault.path.empty()) return fault.reason;
  return "at " + std::string(offset) + " in " + fault.path + ": " + fault.reason;
}

// A file that no kind accepts is walked as a part file, whose refusal then says why.
map::FileKind kindOf(const std::string& path, std::optional<map::FileKind> forced, bool& known) {
  const auto kind = forced ? forced : map::detectKind(path);
  known = kind.has_value();
  return kind.value_or(map::FileKind::part);
}

void printLine(const frame::MapLine& line) {
  if (line.size == 0)
    std::printf("%08llx        %s%s%s\n", static_cast<unsigned long long>(line.offset), line.path.c_str(),
                line.path.empty() ? "" : ": ", line.value.c_str());
  else
    std::printf("%08llx %6llu %s = %s\n", static_cast<unsigned long long>(line.offset),
                static_cast<unsigned long long>(line.size), line.path.c_str(), line.value.c_str());
}

bool checkOne(const std::string& path, std::optional<map::FileKind> forced) {
  bool known = false;
  const map::FileKind kind = kindOf(path, forced, known);
  const map::FileReport report = map::checkFile(path.c_str(), kind);
  const std::string version = report.version ? std::to_string(*report.version) : "-";
  std::printf("%s: %s, version %s, status %lld, %llu of %llu bytes", path.c_str(),
              known ? std::string(map::nameOf(kind)).c_str() : "unknown kind", version.c_str(),
              static_cast<long long>(report.status), static_cast<unsigned long long>(report.walked),
              static_cast<unsigned long long>(report.size));
  if (report.fault)
    std::printf(", %s", describe(*report.fault).c_str());
  else if (report.tolerated)
    std::printf(", %s, which is tolerated", describe(*report.tolerated).c_str());
  else if (!report.endsExactly())
    std::printf(", the rest is not looked at");
  std::printf("\n");
  return report.status == 0;
}

}  // namespace

int mapCommand(const std::string& path, std::optional<map::FileKind> forced) {
  bool known = false;
  const map::FileKind kind = kindOf(path, forced, known);
  const map::FileReport report = map::mapFile(path.c_str(), kind, printLine);
  if (!report.fault) return 0;
  std::printf("FAULT %s\n", describe(*report.fault).c_str());
  return 1;
}

int checkCommand(const std::vector<std::string>& paths, std::optional<map::FileKind> forced) {
  bool allSound = true;
  for (const std::string& path : paths) allSound = checkOne(path, forced) && allSound;
  return allSound ? 0 : 1;
}

std::vector<std::string> formatNames() {
  std::vector<std::string> names;
  for (const map::KindName& kind : map::fileKinds()) names.emplace_back(kind.name);
  for (const std::string_view record : map::recordNames()) names.emplace_back(record);
  return names;
}

int formatCommand(const std::string& name) {
  const auto kinds = map::fileKinds();
  const auto kind = std::find_if(kinds.begin(), kinds.end(), [&](const auto& one) { return one.name == name; });
  const std::string table = kind == kinds.end() ? map::recordTable(name) : map::formatTable(kind->kind);
  (void)std::fwrite(table.data(), 1, table.size(), stdout);
  return 0;
}

}  // namespace torvio
