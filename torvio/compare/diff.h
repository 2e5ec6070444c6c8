// Where two records or two files differ, member by member over Members.
//
// Elements of lists are matched before they are compared: records with a name (parts, tools, materials) by that name,
// others by what they hold. An element that was inserted, removed or moved is one difference, and what is before and
// after it is compared with its counterpart.
#pragma once
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>

#include "OldTorvIO.h"
#include "src/frame/file_kinds.h"
#include "torvio/values/json.h"

namespace oldtorvio::compare {

struct DiffOptions {
  double tolerance = 0;  // of floats that are finite; 0 compares bits
  std::string encoding{values::kDefaultEncoding};
  bool storedOnly = true;  // leave out members that no file stores
};

struct Difference {
  enum class Change : std::uint8_t {
    changed,
    onlyInA,
    onlyInB,
    moved,  // an element that is at another place among those that both have; what changed in it follows
  };
  Change change = Change::changed;
  // Of members, as in maps and JSON: "patterns[0].items[3].toolNumber". One is empty for an element that only the other
  // record has.
  std::string pathInA, pathInB;
  // The values as JSON on one line, shortened for records and lists. Empty where there is none.
  std::string a, b;
};

// Takes the differences in the order of the members. Returns false to end the comparison.
using DifferenceSink = std::function<bool(const Difference&)>;

// Return whether both are the same.
bool diffRecords(const TorvPart& a, const TorvPart& b, const DiffOptions& options, const DifferenceSink& sink);
bool diffRecords(const SheetPartList& a, const SheetPartList& b, const DiffOptions& options,
                 const DifferenceSink& sink);
bool diffRecords(const OldSpecialTool& a, const OldSpecialTool& b, const DiffOptions& options,
                 const DifferenceSink& sink);
bool diffRecords(const OldMachine& a, const OldMachine& b, const DiffOptions& options, const DifferenceSink& sink);
bool diffRecords(const OldMaterial& a, const OldMaterial& b, const DiffOptions& options, const DifferenceSink& sink);
bool diffRecords(const OldToolInventory& a, const OldToolInventory& b, const DiffOptions& options,
                 const DifferenceSink& sink);
bool diffRecords(const OldMacro& a, const OldMacro& b, const DiffOptions& options, const DifferenceSink& sink);
bool diffRecords(const OldSheet& a, const OldSheet& b, const DiffOptions& options, const DifferenceSink& sink);

}  // namespace oldtorvio::compare
