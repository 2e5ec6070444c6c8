// The comparison of two values by a tree of their members.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "torvio/compare/alignment.h"
#include "torvio/compare/diff.h"
#include "torvio/compare/member_tree.h"
#include "torvio/values/json_writer.h"

namespace oldtorvio::compare {

class Differ {
 public:
  // All paths begin with those of the two values.
  Differ(const DiffOptions& options, const DifferenceSink& sink, std::string pathInA = {}, std::string pathInB = {});

  // Returns whether they are the same; only what was compared counts if the sink ended the comparison.
  bool compare(const MemberNode& node, const void* a, const void* b);

 private:
  struct ListPair;

  void compareValues(const MemberNode& node, const void* a, const void* b);
  void compareMembers(const MemberNode& node, const void* a, const void* b);
  void compareList(const MemberNode& node, const void* a, const void* b);
  void compareElements(const MemberNode& element, const void* a, const void* b, std::size_t i, std::size_t j);
  Alignment aligned(ListPair lists);
  void pairGaps(Alignment& alignment, const ListPair& lists, const std::vector<Key>& namesOfA,
                const std::vector<Key>& namesOfB);
  void pairSimilar(Alignment& alignment, const ListPair& lists, const Alignment::Gap& gap,
                   const std::vector<Key>& namesOfA, const std::vector<Key>& namesOfB) const;

  void compareEntries(const MemberNode& node, const void* a, const void* b);
  void report(Difference::Change change, const MemberNode& node, const void* a, const void* b,
              Side notStoredIn = Side::none);
  std::string textOf(const MemberNode& node, const void* value);
  void shorten(std::string& a, std::string& b) const;
  std::string nameFor(const MemberNode& node, const void* record);

  const DiffOptions& options_;
  const DifferenceSink& sink_;
  std::string pathInA_, pathInB_;
  std::string name_;  // as JSON
  bool isOwnName_ = false;
  values::JsonValues json_;
  bool areSame_ = true, isStopped_ = false;
  // How many pairs of elements may still be compared for similarity.
  std::uint64_t similaritiesLeft_ = 2'000'000;
};

}  // namespace oldtorvio::compare
