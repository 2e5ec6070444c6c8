#include "torvio/archive/examine.h"

#include <utility>

#include "torvio/values/compiled_records.h"

namespace oldtorvio::archive {

void examineContents(FileResult& result, std::span<const std::byte> bytes, const ExamineOptions& options) {
  Judgement judgement = judge(result.path, bytes, options.judge);
  result.verdict = judgement.verdict;
  result.kind = judgement.kind;
  result.report = std::move(judgement.report);
  if (!result.kind) return;
  if (result.report.status == frame::kDone)
    withFileRecord(*result.kind, [&](auto file) {
      const auto loaded = values::loadRecord<decltype(file)::kKind>(bytes, result.path);
      if (loaded.status != frame::kDone) return;
      result.warnings = warningsOf(*loaded.record);
      if (options.withFacts) result.facts = factsOf(*loaded.record, options.encoding);
    });
  if (result.kind == explain::FileKind::sheet)
    if (auto trace = traceOfSave(bytes, result.report))
      result.warnings.insert(result.warnings.begin(), std::move(*trace));
}

FileResult examineBytes(std::string name, std::span<const std::byte> bytes, const ExamineOptions& options) {
  FileResult result;
  result.path = std::move(name);
  examineContents(result, bytes, options);
  return result;
}

}  // namespace oldtorvio::archive
