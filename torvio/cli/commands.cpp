#include "torvio/cli/commands.h"

#include <algorithm>
#include <cstdio>
#include <new>
#include <utility>

#include "torvio/cli/output.h"
#include "torvio/explain/detect.h"
#include "torvio/explain/file_content.h"
#include "torvio/explain/format_table.h"

namespace torvio {
namespace {

using namespace oldtorvio;

constexpr const char* kNoMemory = "cannot be read: not enough memory";

std::string hex(std::uint64_t offset) {
  char digits[32];
  (void)std::snprintf(digits, sizeof digits, "%08llx", static_cast<unsigned long long>(offset));
  return digits;
}

std::string describe(const explain::Fault& fault) {
  return "at " + hex(fault.offset) + " in " + fault.path + ": " + fault.reason;
}

// A file of unknown kind is walked as a part file, up to its version word. Its report must not mention parts.
constexpr explain::FileKind kFallbackKind = explain::FileKind::part;
void nameVersionOfUnknown(explain::FileReport& report) {
  if (report.version) report.fault->reason = std::to_string(*report.version) + " is not a version of any kind of file";
}

struct Checked {
  std::string kind;
  explain::FileReport report;
};

Checked checked(const std::string& path, std::span<const std::byte> bytes, std::optional<explain::FileKind> forced) {
  if (forced) return {std::string(frame::infoOf(*forced).name), explain::checkFile(bytes, *forced)};
  if (auto detected = explain::detect(path, bytes))
    return {std::string(frame::infoOf(detected->kind).name), std::move(detected->report)};
  Checked unknown{"unknown kind", explain::checkFile(bytes, kFallbackKind)};
  nameVersionOfUnknown(unknown.report);
  return unknown;
}

// Prints the lines of a map. The text is reused, since there may be millions of lines.
class LinePrinter {
 public:
  void operator()(const explain::MapLine& line) {
    char start[64];
    const auto offset = static_cast<unsigned long long>(line.offset), size = static_cast<unsigned long long>(line.size);
    if (line.size == 0)
      (void)std::snprintf(start, sizeof start, "%08llx        ", offset);
    else
      (void)std::snprintf(start, sizeof start, "%08llx %6llu ", offset, size);
    text_.assign(start).append(line.path);
    text_.append(line.size > 0 ? " = " : line.path.empty() ? "" : ": ").append(line.value).append("\n");
    print(text_);
  }

 private:
  std::string text_;
};

struct Verdict {
  std::string text;
  ExitCode code;
};

Verdict check(const std::string& path, std::optional<explain::FileKind> forced) try {
  const explain::FileContent file(path);
  if (!file.error().empty()) return {file.error(), kNotReadOrWritten};
  const auto& [kind, report] = checked(path, file.bytes(), forced);
  std::string text = kind + ", version " + (report.version ? std::to_string(*report.version) : "-");
  text += ", status " + std::to_string(report.status);
  text += ", " + std::to_string(report.walked) + " of " + std::to_string(report.size) + " bytes";
  if (report.fault)
    text += ", " + describe(*report.fault);
  else if (report.tolerated)
    text += ", " + describe(*report.tolerated) + ", which is tolerated";
  else if (!report.endsExactly())
    text += ", " + report.unread();
  return {text, report.status == 0 ? kSound : kDamaged};
} catch (const std::bad_alloc&) {
  return {kNoMemory, kNotReadOrWritten};
}

}  // namespace

ExitCode mapCommand(const std::string& path, std::optional<explain::FileKind> forced) try {
  const explain::FileContent file(path);
  if (!file.error().empty()) {
    printError(onOneLine(path) + ": " + file.error());
    return kNotReadOrWritten;
  }
  const auto detected = forced ? std::nullopt : explain::detect(path, file.bytes());
  const auto kind = detected ? std::optional(detected->kind) : forced;
  explain::FileReport report = explain::mapFile(file.bytes(), kind.value_or(kFallbackKind), LinePrinter());
  if (!report.fault) return kSound;
  if (!kind) nameVersionOfUnknown(report);
  print("FAULT " + describe(*report.fault) + "\n");
  return kDamaged;
} catch (const std::bad_alloc&) {
  printError(onOneLine(path) + ": " + kNoMemory);
  return kNotReadOrWritten;
}

ExitCode checkCommand(const std::vector<std::string>& paths, std::optional<explain::FileKind> forced) {
  ExitCode worst = kSound;
  for (const std::string& path : paths) {
    const Verdict verdict = check(path, forced);
    print(onOneLine(path) + ": " + verdict.text + "\n");
    worst = std::max(worst, verdict.code);
  }
  return worst;
}

ExitCode formatCommand(const std::string& name) {
  const auto kind = kindNamed(name);
  print(kind ? explain::formatTable(*kind) : explain::recordTable(name));
  return kSound;
}

std::vector<std::string> kindNames() {
  std::vector<std::string> names;
  for (const frame::FileKindInfo& kind : frame::kFileKinds) names.emplace_back(kind.name);
  return names;
}

std::vector<std::string> recordNames() {
  std::vector<std::string> names;
  for (const std::string_view record : explain::recordNames()) names.emplace_back(record);
  return names;
}

std::optional<explain::FileKind> kindNamed(const std::string& name) {
  for (const frame::FileKindInfo& kind : frame::kFileKinds)
    if (kind.name == name) return kind.kind;
  return std::nullopt;
}

}  // namespace torvio
