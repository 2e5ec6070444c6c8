// Shape programs, which machines and materials embed.
#pragma once
#include "tests/support/stored_forms/shapes.h"
#include "tests/support/stored_forms/small_records.h"

namespace testing_support {

template <class M>
void storedProgram(M& m, int version, std::size_t groups, std::int32_t freshWord3, ShapeProgram& p) {
  numbersOr(m, 1, p.programWord1, p.programWord2);
  numberOr(m, p.programWord3, freshWord3);
  m.number(p.programWord4);
  numberOr(m, p.programWord5, 1);
  m.number(p.programWord6);
  numberOr(m, p.programValue1, 0.008F);
  numberOr(m, p.programValue2, 0.5F);
  numberOr(m, p.programValue3, 0.25F);
  numberOr(m, p.programValue4, 1.0F);
  list(m, p.programGroups, groups, [&](auto& n, ShapeProgramGroup& g, std::size_t) {
    storedShapeList(n, version, {ShapeForm{}}, g.groupShapes);
    list(n, g.groupQuads, 2, [](auto& o, GroupQuad& q, std::size_t) { each(o, q.quadWords); });
    storedStepTables(n, version, 2, 2, g.groupSteps);
    list(n, g.groupSlots, 2, [&](auto& o, ProcessSlot& s, std::size_t) { storedSlot(o, version, s); });
  });
  since(m, version >= 158, [&](auto& n) { n.number(p.programWord7); });
}

template <class M>
void storedProgramEx(M& m, int version, std::size_t groups, ShapeProgramEx& p) {
  storedProgram(m, version, groups, 0, p);
  m.number(p.extFlag1);
  numberOr(m, p.extValue1, 0.5F);
  numberOr(m, p.extValue2, 1.0F);
  numbersOr(m, 1, p.extFlag2);
  numberOr(m, p.extValue3, 1.5F);
  numbersOr(m, 1, p.extFlag3);
}

}  // namespace testing_support
