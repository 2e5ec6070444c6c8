// Readers and writers of part files: patterns, part extensions, the body of a part, group part files.
//
// Results as in src/records/record_io.h. `embedded` is true for a part inside a sheet.
#pragma once
#include "OldTorvIO/records.h"
#include "src/frame/codec/record_codec.h"

namespace oldtorvio {

using codec::InStream;
using codec::OutStream;

int ReadPattern(InStream& stream, int version, bool embedded, Pattern& pattern);
bool WritePattern(OutStream& stream, int version, const Pattern& pattern);
int ReadEmbeddedPatternList(InStream& stream, int version, bool embedded, PatternList& list);
bool WriteEmbeddedPatternList(OutStream& stream, int version, const PatternList& list);

DECLARE_RECORD_CODEC(PlacedShapeList, PlacedShapeList);
// Readers and writers of these three return true for success.
DECLARE_CHECKED_CODEC(NestShapeGroups, std::vector<ShapeGroup>);
DECLARE_CHECKED_CODEC(ContourGroups, std::vector<ContourGroup>);
DECLARE_CHECKED_CODEC(BindingSets, std::vector<BindingSet>);

// The body after the version word. stopEarly ends the read with 0 after the descriptions.
int ReadPartBody(InStream& stream, int version, bool embedded, TorvPart& part, bool stopEarly = false);
// A part file of any version, after its version word. Versions 2 and 3 always return 1. There is no writer
// for these two and version 5.
int ReadPartFile(InStream& stream, int version, TorvPart& part);
bool WritePartBody(OutStream& stream, int version, bool embedded, const TorvPart& part);

// A group part file after its version word. The writer returns false unless the list has at least one part and
// nameBlockSize is 1 to 256.
int ReadGroupPart(InStream& stream, int version, SheetPartList& list);
bool WriteGroupPart(OutStream& stream, int version, const SheetPartList& list, std::int32_t nameBlockSize = 256);

// Saves any part as a part file, as SaveTorvPart saves the part builder.
std::int64_t SavePart(const char* path, const TorvPart& part, int version);
// Saves the parts as a group part file. -2 if WriteGroupPart fails, -1 for a version below 152. For samples and tests:
// no export writes group part files.
std::int64_t SaveGroupPart(const char* path, const SheetPartList& list, int version, std::int32_t nameBlockSize = 256);

}  // namespace oldtorvio
