// Shapes and their lists.
#pragma once
#include <string>
#include <vector>

#include "tests/support/stored_forms/walkers.h"

namespace testing_support {

struct ShapeForm {
  int type = 3;
  int valueCount = 9;
  int extraCount = 2;
  bool text = false;
  std::string note = {};
};

// `before`: the shape of which this one keeps the end that a file leaves out.
template <class M>
void storedShape(M& m, int version, const ShapeForm& form, Shape& s, const Shape* before = nullptr) {
  m.fixed(s.type, form.type);
  numbers(m, s.auxWord, s.flags);
  m.together(8);
  numbers(m, s.x, s.y);
  fixedOr(m, s.valueCount, form.valueCount, 9);
  for (int i = 0; i < 9; ++i) since(m, i < form.valueCount, [&](auto& n) { n.number(s.values[i]); });
  numberOr(m, s.linkIndex, -1);
  m.number(s.auxValue1);
  fixedOr(m, s.extraCount, form.extraCount, 2);
  for (int i = 0; i < 2; ++i) since(m, i < form.extraCount, [&](auto& n) { n.number(s.extraValues[i]); });
  m.fixed(s.textFlag, form.text ? 4 : 0);
  since(m, form.text, [&](auto& n) { n.block(s.text); });
  numbers(m, s.auxValue2, s.auxValue3, s.auxValue4);
  since(m, version >= 112 && version <= 120, [&](auto& n) { n.number(s.rangeValue); });
  since(m, version >= 151, [&](auto& n) { numbers(n, s.lateByte1, s.lateByte2, s.lateByte3, s.lateWord1); });
  since(m, version >= 153, [&](auto& n) { n.number(s.lateByte4); });
  since(m, version >= 158, [&](auto& n) { n.number(s.lateWord2); });
  since(m, version >= 160, [&](auto& n) { n.text(s.note, form.note); });
  since(m, version >= 161, [&](auto& n) {
    for (int i = 0; i < 2; ++i) numberOr(n, s.tailPair[i], before != nullptr ? before->tailPair[i] : 0U);
  });
}

inline const std::vector<ShapeForm>& someShapes() {
  static const std::vector<ShapeForm> forms{{3, 9, 2, false, ""}, {0, 0, 0, true, "a note"}, {-7, 4, 1, false, "x"}};
  return forms;
}

template <class M>
void storedShapes(M& m, int version, const std::vector<ShapeForm>& forms, std::vector<Shape>& shapes) {
  unlessZero(m, shapes, forms.size(), [&] {
    list(m, shapes, forms.size(), [&](auto& n, Shape& s, std::size_t i) { storedShape(n, version, forms[i], s); });
  });
}

template <class M>
void storedShapeList(M& m, int version, const std::vector<ShapeForm>& forms, ShapeList& l) {
  numberOr(m, l.listTag, -1);
  numberOr(m, l.listKind, 1);
  storedShapes(m, version, forms, l.shapes);
}

}  // namespace testing_support
