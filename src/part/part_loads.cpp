// Loads of part and group part files, and the lists for group part files.
#include <new>

#include "OldTorvIO.h"
#include "OldTorvIO/part_list.h"
#include "src/part/part_file_records.h"

using namespace oldtorvio;

extern "C" int64_t LoadOldPart(const char* path, TorvPart* part) noexcept {
  return frame::loadRecord<frame::FileKind::part>(path, part);
}

extern "C" int64_t LoadGroupPart(const char* path, SheetPartList* list) noexcept {
  return frame::loadRecord<frame::FileKind::groupPart>(path, list);
}

extern "C" SheetPartList* CreateOldPartlistInfo() noexcept { return new (std::nothrow) SheetPartList; }

extern "C" void DeleteOldPartlistInfo(SheetPartList* list) noexcept { delete list; }
