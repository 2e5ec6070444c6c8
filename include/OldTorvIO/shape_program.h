// Shape programs: groups of shapes with their process slots and step tables. A machine has four, a material two.
#pragma once
#include <cstdint>
#include <vector>

#include "OldTorvIO/process_slot.h"
#include "OldTorvIO/shape.h"
#include "OldTorvIO/step_table.h"

namespace oldtorvio {

struct GroupQuad {
  std::uint32_t quadWords[4] = {};
};

struct ShapeProgramGroup {
  ShapeList groupShapes;
  std::vector<GroupQuad> groupQuads;
  std::vector<ProcessSlot> groupSlots;  // stored after groupSteps
  std::vector<StepTable> groupSteps;
};

struct ShapeProgram {
  std::int32_t programWord1 = 1, programWord2 = 1, programWord3 = 1;
  std::uint32_t programWord4 = 0;
  std::int32_t programWord5 = 1;
  std::uint32_t programWord6 = 0;
  float programValue1 = 0.008F, programValue2 = 0.5F, programValue3 = 0.25F, programValue4 = 1.0F;
  std::vector<ShapeProgramGroup> programGroups;
  std::uint32_t programWord7 = 0;  // since 158
};

// The default of programWord3 is 0 here. If the ShapeProgram cannot be read, a load continues after this record without
// an error, and the fields below keep their values.
struct ShapeProgramEx : ShapeProgram {
  ShapeProgramEx() { programWord3 = 0; }

  std::uint8_t extFlag1 = 0;
  float extValue1 = 0.5F, extValue2 = 1.0F;
  std::uint8_t extFlag2 = 1;
  float extValue3 = 1.5F;
  std::uint8_t extFlag3 = 1;
};

}  // namespace oldtorvio
