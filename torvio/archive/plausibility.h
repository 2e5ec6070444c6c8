// How well the bytes of a file fit a kind.
#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "src/frame/file_kinds.h"

namespace oldtorvio::archive {

// Evidence for a kind in bits: 10 more make it about a thousand times as likely. Below kMinEvidence a file may be
// anything.
using Evidence = float;
inline constexpr Evidence kMinEvidence = 10;

// How many bytes a kind is judged by first, and all bytes.
inline constexpr std::size_t kBeginning = 2048;
inline constexpr std::size_t kWholeFile = SIZE_MAX;

struct Plausibility {
  Evidence evidence = 0;
  bool isPartial = false;    // the walk ended at `most` bytes
  bool endsExactly = false;  // it succeeded and ended at the end of the file
};

// Walks at most the first `most` bytes as a file of that kind, which must accept the version, and weighs every field:
// texts, numbers, counts against what is left of the file, widths and reserved bytes, and where the walk ends.
Plausibility plausibilityOf(std::span<const std::byte> bytes, frame::FileKind kind, int version,
                            std::size_t most = kBeginning);

// The version word; none for fewer than two bytes.
std::optional<int> versionOf(std::span<const std::byte> bytes);

// The kind that fits best, or none if no kind accepts the version or none fits well enough.
std::optional<frame::FileKind> likeliestKind(std::span<const std::byte> bytes);

}  // namespace oldtorvio::archive
