// Files as an archive has them: all kinds and versions with plausible contents, a third of them damaged, and files that
// are something else.
#pragma once
#include <cstdint>
#include <string>

#include "tests/support/bytes.h"
#include "torvio/explain/file_map.h"

namespace testing_support {

struct MadeFile {
  oldtorvio::explain::FileKind kind;
  int version;
  std::string damage;  // "none", "cut", "overwritten" or "flipped", and where
  std::size_t intact;  // bytes before the damage
  Bytes bytes;

  bool isDamaged() const { return damage != "none"; }
};

// The same seed and number make the same file.
MadeFile madeFile(std::uint32_t seed, std::uint32_t number);

inline constexpr std::uint32_t kForeignForms = 12;
// Random bytes, texts, zeros, headers of other formats with random bytes after them.
Bytes foreignFile(std::uint32_t seed, std::uint32_t number);
// Whether it is a table of small numbers after a version that files of this suite have.
bool isTableOfNumbers(std::uint32_t number);

}  // namespace testing_support
