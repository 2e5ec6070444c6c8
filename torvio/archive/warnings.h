// What is wrong with a file although its structure is sound: values that harm programs that use it.
#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "torvio/explain/file_map.h"

namespace oldtorvio::archive {

// The codes:
//   tool-ends-process    a tool number of a sheet for which GetOldSheetInfo ends the calling process
//   tool-past-stations   a tool number of a sheet without a station, which GetOldSheetInfo ignores
//   save-ends-process    a sheet with blocks for which SaveOldSheet and the edits end the calling process
//   edit-ruins-sheet     a sheet whose file an edit leaves unreadable or incomplete
//   saved-below-152      a sheet whose file has the surplus bytes of a save or an edit below version 152
//   index-ends-process   a tool of an inventory for which GetOldToolInventoryInformation ends the calling process
//   not-finite           a real number that is infinite or not a number
//   absurd-size          a size below 0 or above a million
//   text-fills-field     a text without a NUL
struct Warning {
  std::string code;
  std::string field;  // the first place: "partList.parts[0].patterns[2].items[5].toolNumber"
  std::string text;   // one sentence, without texts of the file

  friend bool operator==(const Warning&, const Warning&) = default;
};

// Each code is reported once for each field, whatever the indexes of its lists, and there are at most this many
// warnings. The last one then says how many are left out.
inline constexpr std::size_t kMostWarnings = 20;

// The warnings about a successfully loaded record. Defined for the records of all kinds of files.
template <class Record>
std::vector<Warning> warningsOf(const Record& record);

// Whether the file of a sheet that does not end exactly was saved below version 152. Such a save stores bytes of the
// machine that no load expects; without them the rest of the file is sound.
std::optional<Warning> traceOfSave(std::span<const std::byte> bytes, const explain::FileReport& report);

}  // namespace oldtorvio::archive
