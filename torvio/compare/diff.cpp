#include "torvio/compare/diff.h"

#include "torvio/compare/differ.h"

namespace oldtorvio::compare {

bool diffRecords(frame::FileKind kind, const void* a, const void* b, const DiffOptions& options,
                 const DifferenceSink& sink) {
  const MemberNode tree = memberTree(values::typeOfRecord(kind), options);
  return Differ(options, sink).compare(tree, a, b);
}

}  // namespace oldtorvio::compare
