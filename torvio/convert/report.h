// What a new file lacks of the one from which it was made, grouped so that a person can read it.
#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "torvio/explain/file_map.h"

namespace oldtorvio::convert {

// One member that differs, in however many elements of its lists.
struct Loss {
  enum class Effect : std::uint8_t {
    lost,     // the new file has the default of a new record, or lacks the element
    changed,  // it has another value
    added,    // it has an element that was not there
  };
  Effect effect = Effect::lost;
  std::string member;  // "partList.parts[].shapes.shapes[].lateWord1"
  std::uint64_t count = 0;
  std::string path;           // the first of them: "partList.parts[0].shapes.shapes[3].lateWord1"
  std::string before, after;  // its values as JSON, long ones shortened; empty where there is none
};

// Bytes of the file that the new file does not have in any form.
struct LeftOut {
  std::uint64_t offset = 0, size = 0;
  std::string reason;  // "unread bytes after the last field"
};

// A list that lost elements because the file is damaged.
struct ShorterList {
  std::string list;  // "partList.parts"
  std::uint64_t kept = 0;
  std::optional<std::uint64_t> stored;  // the count that the file has
  std::string brokenAt;                 // in the first element that is lost: "shapes.shapes[3].x"; may be empty
};

struct Report {
  explain::FileKind kind{};
  std::optional<int> from;  // version of the file; none if it has none
  int to = 0;               // version of the new file
  std::uint64_t size = 0;   // bytes of the file
  std::uint64_t newSize = 0;

  // Where a damaged file breaks. What comes before that is kept.
  std::optional<explain::Fault> fault;
  std::vector<ShorterList> shorter;
  std::vector<std::string> defaults;  // members that were not read, in the order of the file

  std::vector<LeftOut> leftOut;
  std::vector<Loss> losses;
  std::vector<std::string> notes;  // remarks on what is not a loss

  // Whether the new file has everything that the old one has.
  bool isComplete() const { return !fault && shorter.empty() && defaults.empty() && leftOut.empty() && losses.empty(); }
};

// Lines of at most about 100 characters with a newline each, indented; empty for a complete file without notes.
std::string textOf(const Report& report);

// An object on one line with a newline. `error` says why there is no new file, and is empty if there is one; `isWritten`
// says whether it was written to a file.
std::string jsonOf(const Report& report, std::string_view fileUtf8, std::string_view error,
                   std::optional<bool> isWritten = std::nullopt);

// The path without its indexes: "parts[3].values[2]" becomes "parts[].values[]".
std::string withoutIndexes(std::string_view path);

// "1 byte", "2 bytes".
std::string plural(std::uint64_t count, std::string_view one, std::string_view many);
inline std::string bytesText(std::uint64_t count) { return plural(count, "byte", "bytes"); }

}  // namespace oldtorvio::convert
