// What a file is: its kind, whether it is sound, and the report of its walk.
#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "torvio/explain/file_map.h"

namespace oldtorvio::archive {

enum class Verdict : std::uint8_t {
  sound,            // the load succeeds and reads the file to its end
  soundWithLosses,  // the load succeeds, but bytes after the last field or after a tolerated fault are not read
  damaged,          // the load fails
  refusedVersion,   // of a known kind, in a version that its load refuses, or never reads to the end
  foreign,          // not a file of this suite
  unreadable,       // the file could not be opened or read
};
inline constexpr int kVerdicts = 6;

// "sound", "sound with losses", "damaged", "refused version", "foreign", "unreadable".
std::string_view nameOf(Verdict verdict);

// An extension that names a kind: ".nst" for sheets. Case is ignored.
struct ExtensionHint {
  std::string extension;
  explain::FileKind kind;
};

struct JudgeOptions {
  std::optional<explain::FileKind> kind;  // of every file, whatever it contains
  std::vector<ExtensionHint> extensions;  // besides ".spt"
};

struct Judgement {
  Verdict verdict = Verdict::foreign;
  std::optional<explain::FileKind> kind;  // none for a foreign file
  explain::FileReport report;             // of checkFile for that kind
};

// Judges the bytes of a file; `path` is only a hint. The formats have no magic number: without an extension that names
// the kind, each kind that accepts the version is judged by how plausible its first fields are before a file is walked.
Judgement judge(std::string_view path, std::span<const std::byte> bytes, const JudgeOptions& options);

}  // namespace oldtorvio::archive
