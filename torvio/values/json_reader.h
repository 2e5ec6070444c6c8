// Records from JSON text.
#pragma once
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "torvio/values/compiled_records.h"
#include "torvio/values/json.h"

namespace oldtorvio::values {

// A record of any kind.
struct JsonRecord {
  frame::FileKind kind{};
  int version = 0;  // to be saved at, unless the user wants another
  std::string encoding;
  std::shared_ptr<void> record;  // null after an error

  // What is wrong with the text, as a sentence that begins with the path of the member or a line number:
  // "partList.parts[3].x: must be a number, not a string". Control characters in it are escaped.
  std::string error;

  template <frame::FileKind kKind>
  typename FileRecord<kKind>::Record& as() const {
    return *static_cast<typename FileRecord<kKind>::Record*>(record.get());
  }
};

// Fills the buffer with the next bytes of the text and returns how many there were; 0 at its end.
using JsonSource = std::function<std::size_t(char* to, std::size_t size)>;

// A longer text is refused.
inline constexpr std::uint64_t kLargestJsonMiB = 8192;

// Reads a document straight into a new record: besides the record, memory is needed for only one member at a time.
// Throws std::bad_alloc and whatever the source throws.
JsonRecord readJson(const JsonSource& source);
JsonRecord readJson(std::string_view text);

// Saves the record as its kind does; returns the status of the save. The caller flushes the stream. Throws
// std::bad_alloc.
std::int64_t storeRecord(codec::OutStream& to, const JsonRecord& record, int version);
// The same, but refuses versions whose files no load reads as such a save stores them: parts below version 52.
std::int64_t storeLoadable(codec::OutStream& to, const JsonRecord& record, int version);
// Why such a save returned that status, which is not 0, in words.
std::string refusalOf(const JsonRecord& record, std::int64_t status, int version);

}  // namespace oldtorvio::values
