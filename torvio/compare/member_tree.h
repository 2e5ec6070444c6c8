// Which members of a record are compared, and how: a tree over its Type with the settings of one comparison.
#pragma once
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "torvio/compare/diff.h"
#include "torvio/values/types.h"

namespace oldtorvio::compare {

// How to treat a member, by its path without positions and whether it is in an element of a list or array; or an entry
// of an array.
struct Treatment {
  bool isLeftOut = false;
  bool isFirstOnly = false;  // for a list: only its first element is compared
  Side notStoredIn = Side::none;
};
using TreatmentOf =
    std::function<Treatment(const std::string& path, bool isInElement, std::optional<std::size_t> entry)>;

struct MemberNode {
  const values::Type* type = nullptr;
  std::string_view name;   // of a member of a record
  std::size_t offset = 0;  // in that record
  Side notStoredIn = Side::none;
  bool isFirstOnly = false;
  bool isComplete = true;                     // all members below belong to the identity
  std::vector<MemberNode> members;            // of a record or pair, without those that are left out
  std::unique_ptr<const MemberNode> element;  // of an array, list or lazy array

  std::vector<Treatment> entries;  // of an array; empty if all are treated alike

  // Whether an entry of an array belongs to the identity.
  bool hasEntry(std::size_t i) const {
    return entries.empty() || (!entries[i].isLeftOut && entries[i].notStoredIn == Side::none);
  }

  // The identity, without members that one side does not store. What can be compared as bytes is in runs, the rest are
  // positions in `members`.
  struct Run {
    std::size_t offset = 0, size = 0;
  };
  bool isBytes = false;  // the complete value can be compared as bytes
  std::vector<Run> runs;
  std::vector<std::size_t> rest;
  // Members that can name it; the first that is not empty does.
  std::vector<std::size_t> names;

  // Whether nothing in the value has a path of its own.
  bool isLeaf() const;
  // How many elements of a list are compared.
  std::size_t lengthOf(const void* list) const {
    const std::size_t length = type->length(list);
    return isFirstOnly && length > 1 ? 1 : length;
  }
};

// Without a treatment all members are compared, but those that no file stores only if `storedOnly` is false.
MemberNode memberTree(const values::Type& type, const DiffOptions& options, const TreatmentOf& treatmentOf = {});

// Whether all that identifies the elements of a list is the same: numbers, texts and the rest.
bool areSame(const MemberNode& node, const void* a, const void* b, double tolerance);
// Negative, 0 or positive: a is before, the same as or after b, by their values, member by member. Unlike hashes and
// bytes in memory, this is the same on every host.
int orderOf(const MemberNode& node, const void* a, const void* b);
// Equal for values that areSame() finds the same; with a tolerance, such values may still have different hashes.
std::uint64_t hashOf(const MemberNode& node, const void* value, double tolerance);
// The name of a record; empty if it has none.
std::string_view nameOf(const MemberNode& node, const void* record);
// The member from which nameOf() reads it.
const MemberNode* nameMember(const MemberNode& node, const void* record);

// A number for each value in a record, so that similar records share many. All sketches of a node have the same length.
using Sketch = std::vector<std::uint32_t>;
void appendSketch(Sketch& to, const MemberNode& node, const void* value, double tolerance);
// From 0 for nothing in common to 1. Values that both records share with a new record do not count.
double similarity(const std::uint32_t* a, const std::uint32_t* b, const Sketch& fresh);

}  // namespace oldtorvio::compare
