// Where two records or two files differ, member by member over Members.
//
// Elements of lists are matched before they are compared: records with a name (parts, tools, materials) by that name,
// others by content. An element that was inserted, removed or moved is one difference, and the elements before and
// after it are compared with their counterparts.
#pragma once
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>

#include "src/file_records.h"
#include "torvio/values/json.h"

namespace oldtorvio::compare {

enum class Side : std::uint8_t { none, a, b };

struct DiffOptions {
  double tolerance = 0;  // of floats that are finite; 0 compares bits
  std::string encoding{values::kDefaultEncoding};
  bool storedOnly = true;   // leave out members that no file stores
  bool commonOnly = false;  // leave out members that the version of one of the files does not store, and the version
  bool byPosition = false;  // compare elements of lists with those at the same position, as for a record and its copy
  // Values of more characters end with "..."; 0 for complete JSON.
  std::size_t longestValue = 200;
};

struct Difference {
  enum class Change : std::uint8_t {
    changed,
    onlyInA,
    onlyInB,
    moved,  // an element that is at another place among those that both have; changes in it follow
  };
  Change change = Change::changed;
  // Paths of members, as in maps and JSON: "patterns[0].items[3].toolNumber". One is empty for an element that only the
  // other record has.
  std::string pathInA, pathInB;
  // The values as JSON on one line, see DiffOptions::longestValue. Empty where there is none.
  std::string a, b;
  // The name of the innermost part, tool or other named element that contains the member, as a JSON string. Empty if
  // there is none.
  std::string name;
  bool isOwnName = false;  // the name is that of an element which was inserted, removed or moved
  // The file that does not store the member, because of its version: its value is what a load sets. Set by diffFiles.
  Side notStoredIn = Side::none;
};

// Takes the differences in the order of the members. Returns false to end the comparison.
using DifferenceSink = std::function<bool(const Difference&)>;

// Returns whether both are the same. They are of that kind of file.
bool diffRecords(frame::FileKind kind, const void* a, const void* b, const DiffOptions& options,
                 const DifferenceSink& sink);
template <class Record>
bool diffRecords(const Record& a, const Record& b, const DiffOptions& options, const DifferenceSink& sink) {
  return diffRecords(kindOfRecord<Record>(), &a, &b, options, sink);
}

// ---- files -------------------------------------------------------------------------------------------

struct FileToCompare {
  std::span<const std::byte> bytes;
  frame::FileKind kind = frame::FileKind::part;
  // For a sheet or group part file: compare this part, by its name (UTF-8), or by its position from 0 if none has that
  // name. Empty to compare all of the file, or the part that is in the other file.
  std::string part;
  // The name of a part file, by which its part is found in a sheet or group part file. It is not opened.
  std::string path;
};

struct ComparedFile {
  std::int64_t status = 0;  // of the load; not 0 if only a part of the file could be read
  std::optional<int> version;
  std::string place;  // of what was compared, such as "partList.parts[3]"; empty for all of the file
  std::string part;   // the name of that part, as JSON
};

struct FileDifferences {
  // Why there is nothing to compare: a sentence without a full stop. It may quote the files: escape it.
  std::string error;
  // The file that the error is about, if it is about one.
  Side errorIn = Side::none;
  bool areSame = false;
  std::uint64_t differences = 0;  // passed to the sink
  std::uint64_t notStored = 0;    // how many of them are of members that one file does not store
  ComparedFile a, b;
};

// Compares the records of two files, whatever their bytes are. Files of different kinds are compared if one contains
// what the other is: a part, a list of parts, a machine, a material. Members that only one of these kinds stores are
// then left out, and so is what places a part on its sheet. For a damaged file, what was read is compared.
// `begins`, if there is one, is called once it is known what is compared, before the first difference.
FileDifferences diffFiles(const FileToCompare& a, const FileToCompare& b, const DiffOptions& options,
                          const DifferenceSink& sink, const std::function<void(const FileDifferences&)>& begins = {});

}  // namespace oldtorvio::compare
