// What a catalogue keeps of the contents of a file.
#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "OldTorvIO/sheet.h"
#include "torvio/values/text_encoding.h"

namespace oldtorvio::archive {

// A part of a sheet or of a group part file. Texts are UTF-8.
struct PartFacts {
  std::string name, path, material, workOrder;
  double width = 0, height = 0, thickness = 0;
  std::int64_t quantity = 0;  // placements, with the repeats of each
};

struct ToolFacts {
  std::string list;         // the member that holds it, such as "machine.stationsA"
  std::int64_t number = 0;  // 1-based position in the list: the tool number
  std::int64_t shapeCode = 0;
  double dimension1 = 0, dimension2 = 0, dimension3 = 0, orientation = 0;
  std::string specialTool;  // path of the file of a special tool
};

// Members that the kind of the file does not have are empty.
struct Facts {
  std::optional<std::string> name, assembly, material, materialGroup, materialType, machine, workOrder;
  std::optional<double> width, height, thickness;
  std::optional<std::int64_t> partCount, placementCount, shapeCount, stationCount, toolCount;
  std::vector<PartFacts> parts;
  std::vector<ToolFacts> tools;  // for a sheet, those that GetOldSheetInfo returns, each once
};

// The stations that a nest uses, as positions in their list and in order of first use, by the rules of GetOldSheetInfo:
// those of its items and slots, and last the special station. A number after the last station is not included.
std::vector<std::size_t> usedTools(const OldSheet& sheet);

// The facts of a successfully loaded record. Defined for the records of all kinds of files.
template <class Record>
Facts factsOf(const Record& record, const values::TextEncoding& encoding);

}  // namespace oldtorvio::archive
