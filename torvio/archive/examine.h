// One file, examined: what it is, and what is known about it.
#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "torvio/archive/facts.h"
#include "torvio/archive/verdict.h"
#include "torvio/archive/warnings.h"

namespace oldtorvio::archive {

struct FileResult {
  std::string path;
  bool isNamed = true;
  bool isFolder = false;  // one that could not be read
  Verdict verdict = Verdict::unreadable;
  std::string error;                      // why the file could not be read
  std::optional<explain::FileKind> kind;  // none for a foreign file
  explain::FileReport report;             // unless it could not be read
  std::vector<Warning> warnings;
  std::optional<Facts> facts;            // of a file that loads, if ExamineOptions::withFacts
  std::optional<std::int64_t> modified;  // in nanoseconds since 1970; none for a pipe or device
  std::optional<std::uint64_t> size;     // of a regular file, before it was read
  bool isKnown = false;                  // from an earlier run, and unchanged since
};

struct ExamineOptions {
  JudgeOptions judge;
  bool withFacts = false;
  values::TextEncoding encoding;  // of texts in facts
};

// Sets verdict, kind, report, warnings and facts of a file with these bytes; result.path is its name.
void examineContents(FileResult& result, std::span<const std::byte> bytes, const ExamineOptions& options);
// Examines the bytes of a file of that name, wherever they come from.
FileResult examineBytes(std::string name, std::span<const std::byte> bytes, const ExamineOptions& options);

}  // namespace oldtorvio::archive
