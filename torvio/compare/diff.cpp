#include "torvio/compare/diff.h"

#include "torvio/compare/differ.h"

namespace oldtorvio::compare {
namespace {

bool diffOfKind(frame::FileKind kind, const void* a, const void* b, const DiffOptions& options,
                const DifferenceSink& sink) {
  const MemberNode tree = memberTree(values::typeOfRecord(kind), options);
  return Differ(options, sink).compare(tree, a, b);
}

}  // namespace

using frame::FileKind;

bool diffRecords(const TorvPart& a, const TorvPart& b, const DiffOptions& options, const DifferenceSink& sink) {
  return diffOfKind(FileKind::part, &a, &b, options, sink);
}
bool diffRecords(const SheetPartList& a, const SheetPartList& b, const DiffOptions& options,
                 const DifferenceSink& sink) {
  return diffOfKind(FileKind::groupPart, &a, &b, options, sink);
}
bool diffRecords(const OldSpecialTool& a, const OldSpecialTool& b, const DiffOptions& options,
                 const DifferenceSink& sink) {
  return diffOfKind(FileKind::specialTool, &a, &b, options, sink);
}
bool diffRecords(const OldMachine& a, const OldMachine& b, const DiffOptions& options, const DifferenceSink& sink) {
  return diffOfKind(FileKind::machine, &a, &b, options, sink);
}
bool diffRecords(const OldMaterial& a, const OldMaterial& b, const DiffOptions& options, const DifferenceSink& sink) {
  return diffOfKind(FileKind::material, &a, &b, options, sink);
}
bool diffRecords(const OldToolInventory& a, const OldToolInventory& b, const DiffOptions& options,
                 const DifferenceSink& sink) {
  return diffOfKind(FileKind::toolInventory, &a, &b, options, sink);
}
bool diffRecords(const OldMacro& a, const OldMacro& b, const DiffOptions& options, const DifferenceSink& sink) {
  return diffOfKind(FileKind::macro, &a, &b, options, sink);
}
bool diffRecords(const OldSheet& a, const OldSheet& b, const DiffOptions& options, const DifferenceSink& sink) {
  return diffOfKind(FileKind::sheet, &a, &b, options, sink);
}

}  // namespace oldtorvio::compare
