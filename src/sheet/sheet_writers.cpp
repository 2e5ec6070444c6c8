// The writers of the largest records of sheet_io.h, in a file of their own because they take long to compile.
#include "src/frame/codec/writer.h"
#include "src/sheet/sheet_io.h"
#include "src/sheet/sheet_layout.h"

namespace oldtorvio {

bool WriteSheetPartList(OutStream& stream, int version, const SheetPartList& list) {
  return codec::writeRecord(stream, version, list);
}

bool WriteOldSheet(OutStream& stream, int version, OldSheet& sheet) {
  return codec::writeRecord(stream, version, sheet);
}

}  // namespace oldtorvio
