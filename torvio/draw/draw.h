// Pictures of files: a sheet with its parts, a part with its tool work, parts side by side, a machine with its tools.
#pragma once
#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "OldTorvIO.h"
#include "src/frame/file_kinds.h"
#include "torvio/draw/picture.h"

namespace oldtorvio::draw {

// Limits on what one picture shows. What exceeds them is counted in its notes.
inline constexpr std::uint64_t kMostPlacements = 10000;  // rectangles of a sheet
inline constexpr std::uint64_t kMostMarks = 2000;        // shapes of one part on a sheet
inline constexpr std::uint64_t kMostMarksOfPart = 20000;
inline constexpr std::uint64_t kMostMarksOfSheet = 60000;  // over all placements, or all parts of a group
inline constexpr std::uint64_t kMostListed = 60;           // parts in the table of a sheet
inline constexpr std::uint64_t kMostParts = 200;           // of a group part

// Each returns a complete SVG 1.1 document, or for a page an element: without scripts or references, and of bounded
// size whatever the record contains.
std::string drawRecord(const OldSheet& sheet, const FileNote& file, const PictureOptions& options);
std::string drawRecord(const TorvPart& part, const FileNote& file, const PictureOptions& options);
std::string drawRecord(const SheetPartList& list, const FileNote& file, const PictureOptions& options);
std::string drawRecord(const OldMachine& machine, const FileNote& file, const PictureOptions& options);

// Whether there is one for the record of that kind.
bool canDraw(frame::FileKind kind);
// Those kinds, in words.
inline constexpr const char* kDrawableKinds = "sheets, parts, group parts and machines";

struct DrawnFile {
  std::string svg;    // empty if the kind cannot be drawn
  std::string kind;   // "sheet, version 180"
  std::string fault;  // as in FileNote
  bool isUnreadVersion = false;
};
// Draws a file in memory. A fault is named in the picture, which shows what was read before it. `name` is UTF-8.
DrawnFile drawFile(std::span<const std::byte> bytes, frame::FileKind kind, std::string_view name,
                   const PictureOptions& options);

}  // namespace oldtorvio::draw
