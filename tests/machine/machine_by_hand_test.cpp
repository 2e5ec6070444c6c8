// The machine body and its tables against bytes put together row by row.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "OldTorvIO.h"
#include "src/machine/machine_io.h"
#include "src/material/material_io.h"
#include "src/records/record_io.h"
#include "tests/support/files.h"
#include "tests/support/stored_forms.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;

constexpr std::size_t kWhole = std::numeric_limits<std::size_t>::max();
using Starts = std::map<int, std::size_t>;

// What a stored body looks like. `writer`: as the writer lays it out, else as a file may hold it.
struct Form {
  bool writer = false;
  bool limits = true, second = true, shapes = false, extension = true, steps = true;
  int width = 256, secondWidth = 256;
  int blockMode = 2, gridMode = 2, programMode = 1;
  int segments = 2;
  std::int32_t lateLength = 5;  // of what stands unread behind it
};

struct MachineMaker : Maker {
  Starts starts;  // where each order begins
  void order(int n) { starts[n] = bytes.size(); }
  bool reached(int, std::size_t) const { return true; }
  void raw(const Bytes& b) { bytes.add(b); }
  void column(std::string& field, const std::string& value, int, std::size_t) {
    field = value;
    bytes.text(256, value);
  }
};

struct MachineChecker : Checker {
  explicit MachineChecker(std::size_t cutAt = kWhole, const Starts* s = nullptr)
      : Checker(cutAt), cut(cutAt), starts(s) {}
  std::size_t cut;
  const Starts* starts;
  void order(int) {}
  // Whether the first `size` bytes of an order arrived.
  bool reached(int n, std::size_t size) const {
    return starts == nullptr ? cut == kWhole : starts->at(n) + size <= cut;
  }
  void raw(const Bytes& b) { zeros(b.size()); }
  void column(std::string& field, const std::string& value, int n, std::size_t end) {
    zeros(256);
    EXPECT_EQ(field, reached(n, end) ? value : std::string());
  }
};

// Fields behind a gate: where they are absent a record has to show its defaults.
template <class M, class Fn>
void since(M& m, bool there, Fn fn) {
  if (there) {
    fn(m);
  } else if constexpr (!M::kMakes) {
    MachineChecker none(0);
    fn(none);
  }
}
template <class M, class... T>
void numbers(M& m, T&... fields) {
  (m.number(fields), ...);
}
template <class M, class V, class... T>
void numbersOr(M& m, V fresh, T&... fields) {
  (numberOr(m, fields, static_cast<T>(fresh)), ...);
}
template <class M, std::size_t N>
void someText(M& m, char (&field)[N], std::size_t width, char first) {
  m.together(width);
  for (std::size_t i = 0; i < width; ++i) m.fixed(field[i], first + static_cast<char>(i % 7));
}

// ---- the tables ----------------------------------------------------------------------------------

template <class M>
void storedClamp(M& m, int count, int base, ClampInfo& c) {
  for (auto* word : {&c.clampWord1, &c.clampWord2, &c.clampWord3, &c.clampWord4}) m.fixed(*word, base++);
  fixedOr(m, c.clampCount, count, 2);
  for (int i = 0; i < count; ++i) fixedOr(m, c.clampPositions[i], base++, 5.5F * static_cast<float>(i + 1));
  fixedOr(m, c.clampSpacing, base, 5.5F);
}

template <class M>
void storedFrame(M& m, int version, MachineFrame& f) {
  numbersOr(m, 15.75F, f.frameValue1);
  numbersOr(m, 1.65F, f.frameValue2);
  numbersOr(m, 31.5F, f.frameValue3);
  since(m, version >= 60, [&](auto& n) {
    numbersOr(n, 0.0F, f.frameValue4);
    numbersOr(n, 10.0F, f.frameValue5, f.frameValue6);
    numbersOr(n, 0.0F, f.frameValue9);
    numbersOr(n, 0.8F, f.frameValue10, f.frameValue11);
  });
  since(m, version >= 157, [&](auto& n) { numbers(n, f.frameValue7, f.frameValue8); });
}

template <class M>
void storedArea(M& m, WorkArea& a) {
  const float fresh[4] = {0, 0, 60.0F, 45.0F};
  m.together(16);
  for (int i = 0; i < 4; ++i) numbersOr(m, fresh[i], a.areaValues[i]);
  m.block(a.areaTail);
}

template <class M>
void storedProgram(M& m, int version, int thirdWord, ShapeProgram& p) {
  numbersOr(m, 1, p.programWord1, p.programWord2);
  numbersOr(m, thirdWord, p.programWord3);
  numbers(m, p.programWord4);
  numbersOr(m, 1, p.programWord5);
  numbers(m, p.programWord6);
  numbersOr(m, 0.008F, p.programValue1);
  numbersOr(m, 0.5F, p.programValue2);
  numbersOr(m, 0.25F, p.programValue3);
  numbersOr(m, 1.0F, p.programValue4);
  m.size(p.programGroups, 2);
  for (ShapeProgramGroup& g : p.programGroups) {
    storedShapeList(m, version, {ShapeForm{}}, g.groupShapes);
    m.size(g.groupQuads, 2);
    for (GroupQuad& q : g.groupQuads) each(m, q.quadWords);
    m.size(g.groupSteps, 1);
    for (StepTable& t : g.groupSteps) storedSteps(m, version, 2, t);
    m.size(g.groupSlots, 2);
    for (ProcessSlot& s : g.groupSlots) storedSlot(m, version, s);
  }
  since(m, version >= 158, [&](auto& n) { n.number(p.programWord7); });
}

template <class M>
void storedProgramEx(M& m, int version, ShapeProgramEx& p) {
  storedProgram(m, version, 0, p);
  numbers(m, p.extFlag1);
  numbersOr(m, 0.5F, p.extValue1);
  numbersOr(m, 1.0F, p.extValue2);
  numbersOr(m, 1, p.extFlag2);
  numbersOr(m, 1.5F, p.extValue3);
  numbersOr(m, 1, p.extFlag3);
}

template <class M>
void storedGrid(M& m, std::size_t cells, MachineGrid& g) {
  m.together(8);
  numbers(m, g.gridHead1, g.gridHead2);
  fixedOr(m, g.cellByteCount, cells, 40000);
  m.together(cells);
  for (std::size_t i = 0; i < cells; ++i)
    fixedOr(m, g.gridCells[i], (i * 7 + 3) & 0xFFU, static_cast<std::uint8_t>(i < 10000 ? 1 : 0));
  numbersOr(m, 5.0F, g.cellSizeX, g.cellSizeY);
  fixedOr(m, g.gridWidth, 4321, 10);
  numbersOr(m, 8, g.gridValue1);
  numbersOr(m, 1.0F, g.gridValue2);
}

template <class M>
void storedSegment(M& m, GridSegment& s) {
  m.block(s.segmentHead);
  numbersOr(m, 1.0F, s.segmentValue);
  numbers(m, s.segmentWord);
  numbersOr(m, 2, s.segmentKind);
}

template <class M>
void storedExtension(M& m, MachineExtension& e) {
  numbersOr(m, 2, e.extensionValue1);
  numbers(m, e.extensionValue2, e.extensionValue3, e.extensionValue4);
  numbersOr(m, 1, e.extensionValue5, e.extensionValue6);
  numbers(m, e.extensionValue7, e.extensionValue8);
  numbersOr(m, 1, e.extensionValue9);
  numbersOr(m, 11, e.extensionValue10);
  numbersOr(m, 0.005F, e.extensionValue11, e.extensionValue12);
  m.together(8);
  numbersOr(m, -26.0F, e.extensionValue13);
  numbers(m, e.extensionValue14);
  numbersOr(m, 31.5F, e.extensionValue15, e.extensionValue16);
  m.together(16);
  numbersOr(m, -26.0F, e.extensionValue17);
  numbers(m, e.extensionValue18);
  numbersOr(m, 72.4F, e.extensionValue19);
  numbersOr(m, 50.9F, e.extensionValue20);
  m.together(16);
  numbersOr(m, -26.0F, e.extensionValue21);
  numbers(m, e.extensionValue22);
  numbersOr(m, 72.4F, e.extensionValue23);
  numbersOr(m, 50.9F, e.extensionValue24);
  numbers(m, e.extensionValue25, e.extensionValue26);
  numbersOr(m, 1.85F, e.extensionValue27);
  numbersOr(m, 3.4F, e.extensionValue28, e.extensionValue29);
  numbersOr(m, 26.0F, e.extensionValue30);
  numbersOr(m, 31.5F, e.extensionValue31);
  numbersOr(m, 23.62F, e.extensionValue32, e.extensionValue33);
  numbersOr(m, 59.0F, e.extensionValue34);
  numbersOr(m, 31.5F, e.extensionValue35);
  numbersOr(m, 98.4F, e.extensionValue36);
  numbersOr(m, 49.2F, e.extensionValue37);
  numbersOr(m, 0.04F, e.extensionValue38);
  numbersOr(m, 0.394F, e.extensionValue39);
  numbersOr(m, 10.63F, e.extensionValue40);
  numbersOr(m, 68.11F, e.extensionValue41);
  numbersOr(m, 5.906F, e.extensionValue42);
  numbersOr(m, 0.005F, e.extensionValue43);
  numbers(m, e.extensionValue44);
  m.together(8);
  numbers(m, e.extensionValue45, e.extensionValue46);
  numbersOr(m, 59.0F, e.extensionValue47);
  numbersOr(m, 31.5F, e.extensionValue48);
  numbersOr(m, 0.5F, e.extensionValue49);
  numbersOr(m, 1, e.extensionValue50);
  if (!m.reached(30, 4 * 50 + 4)) e.extensionWords.assign(3, 0);  // cut: whichever words a record holds
  m.size(e.extensionWords, 3);
  for (std::int32_t& word : e.extensionWords) m.number(word);
}

template <class M>
void storedUnits(M& m, int version, std::size_t units, MachineUnitTable& t) {
  numbers(m, t.unitFlag1, t.unitFlag2);
  numbers(m, t.unitValue1, t.unitValue2, t.unitValue3, t.unitValue4, t.unitValue5, t.unitValue6);
  numbersOr(m, 1, t.unitValue7);
  m.size(t.units, units);
  std::size_t entries = 2;
  for (MachineUnit& u : t.units) {
    numbers(m, u.unitKey1, u.unitKey2);
    m.size(u.unitEntries, entries);
    entries = 0;
    for (MachineUnitEntry& e : u.unitEntries) {
      numbers(m, e.entryValue2);
      numbersOr(m, 1, e.entryValue3, e.entryValue8);
      numbers(m, e.entryValue4, e.entryValue5, e.entryValue6, e.entryValue7);
      since(m, version >= 141, [&](auto& n) { n.number(e.entryValue1); });
    }
  }
  since(m, version >= 121, [&](auto& n) {
    numbers(n, t.unitValue8, t.unitValue9, t.unitValue10, t.unitValue11);
    numbers(n, t.unitValue12, t.unitValue13, t.unitValue14, t.unitValue15);
    numbersOr(n, 1, t.unitValue16);
  });
  since(m, version >= 141, [&](auto& n) {
    numbers(n, t.unitFlag4, t.unitValue17, t.unitValue18);
    numbersOr(n, 1, t.unitValue19);
    numbers(n, t.unitFlag5, t.unitValue20, t.unitValue21);
  });
  since(m, version >= 154, [&](auto& n) { numbersOr(n, 1, t.unitValue22); });
}

// ---- the body ------------------------------------------------------------------------------------

Bytes materialBytes(int version) {
  auto material = std::make_unique<OldMaterial>();
  material->name = "brass";
  material->modeA = 77;
  return written([&](OutStream& s) { return WriteOldMaterialBody(s, version, *material); });
}

template <class M>
void storedHeader(M& m, const Form& form, OldMachine& x) {
  m.order(1);
  if (form.writer) {
    m.stored(256);
    x.textWidth = form.width;
  } else {
    m.fixed(x.textWidth, form.width);
  }
  m.order(2);
  someText(m, x.machineText1, static_cast<std::size_t>(form.width), 'A');
  m.order(3);
  numbersOr(m, 1, x.machineKind);
  m.order(4);
  std::size_t used = 4;
  m.fixed(x.limitsPresent, form.limits ? 1 : 0);
  m.order(5);
  if (form.limits) {
    used += 16;
    if (m.reached(73, 0) && !M::kMakes) {
      m.zeros(8);  // the finishing steps change them
    } else {
      fixedOr(m, x.limitA, 2.5, -0.1F);
      fixedOr(m, x.limitB, 9.0, -0.1F);
    }
    numbersOr(m, 0.05F, x.limitC);
    numbers(m, x.limitWord);
  }
  m.order(6);
  m.fixed(x.secondTextPresent, form.second ? 1 : 0);
  m.order(7);
  if (form.second) {
    used += 4 + static_cast<std::size_t>(form.secondWidth);
    if (form.writer) {
      m.stored(256);
      x.secondTextWidth = form.secondWidth;
    } else {
      m.fixed(x.secondTextWidth, form.secondWidth);
    }
    someText(m, x.secondText, static_cast<std::size_t>(form.secondWidth), 'K');
  }
  m.order(8);
  if (form.writer) {
    m.number(x.smallValue);
    used += 2;  // the other two of its four bytes
    if (form.shapes) {
      m.fixed(x.shapesPresent, 1);
      used += 1;
    }
  } else {
    std::int8_t small = static_cast<std::int8_t>(x.smallValue);
    m.fixed(small, -3);
    if constexpr (M::kMakes) x.smallValue = small;
    m.order(9);
    m.fixed(x.shapesPresent, form.shapes ? 1 : 0);
  }
  m.order(10);
  m.raw(Bytes().fill(500 - used, form.writer ? 0 : 0xEE));
}

// Orders 23 to 34, which a negative gridMode leaves out.
template <class M>
void storedMiddle(M& m, int version, const Form& form, OldMachine& x) {
  const bool skipped = form.gridMode < 0;
  since(m, !skipped, [&](auto& n) {
    n.order(23);
    since(n, form.gridMode == 2, [&](auto& o) { storedGrid(o, 100, x.gridB); });
    since(n, form.gridMode == 1 || form.gridMode == 2, [&](auto& o) { storedGrid(o, 37, x.gridA); });
    n.order(24);
    numbers(n, x.gridWord1);
    numbersOr(n, 1.5707964F, x.gridAngle);
    numbers(n, x.gridWord3);
    n.order(25);
    n.stored(form.segments);
    n.order(26);
    since(n, form.segments > 0, [&](auto& o) {
      o.block(x.segmentBox);
      x.segments.resize(static_cast<std::size_t>(form.segments));
      for (GridSegment& s : x.segments) storedSegment(o, s);
    });
    n.order(27);
    numbers(n, x.gridFlag1, x.gridFlag2);
  });
  if (!skipped) {
    m.order(28);
    if (m.reached(28, 16 + 4 + 4 * 2 + 4)) {
      storedClamp(m, 2, 200, x.clampInfo);
      if constexpr (!M::kMakes) {
        EXPECT_EQ(x.clampInfo.clampPositions[2], 16.5F) << "of a fresh table, not of the first copy";
      }
    } else {
      m.zeros(32);
    }
  }
  since(m, !skipped, [&](auto& n) {
    n.order(29);
    n.fixed(x.hasExtension, form.extension ? -5 : 0);
    n.order(30);
    since(n, form.extension, [&](auto& o) { storedExtension(o, x.extension); });
    n.order(31);
    numbers(n, x.machineWord91, x.machineWord92);
    n.order(32);
    n.fixed(x.programMode, form.programMode);
    n.order(33);
    since(n, form.programMode == 1, [&](auto& o) { storedProgram(o, version, 1, x.programA); });
    since(n, form.programMode == 2, [&](auto& o) { storedProgramEx(o, version, x.programB); });
    n.order(34);
    numbers(n, x.machineWord93, x.machineWord94, x.machineWord95, x.machineWord96);
    if (form.writer || version < 62)
      fixedOr(n, x.machineWord97, 88.25, 40.0F);
    else
      n.raw(Bytes().f32(7.5F));
    numbers(n, x.machineWord98, x.machineWord99, x.machineWord100, x.machineWord101, x.machineWord102);
    numbers(n, x.machineWord103, x.machineWord104, x.machineWord105, x.machineWord106, x.machineWord107);
  });
}

template <class M>
void storedSince60(M& m, int version, const Form& form, OldMachine& x) {
  m.order(37);
  since(m, version >= 60, [&](auto& n) {
    numbersOr(n, 0.0001F, x.machineWord1);
    numbers(n, x.machineWord2, x.machineWord3, x.machineWord4, x.machineWord5, x.machineWord6);
    numbers(n, x.machineWord7, x.machineWord8, x.machineWord9, x.machineWord10, x.machineWord11);
  });
  m.order(38);
  since(m, version >= 62, [&](auto& n) {
    numbers(n, x.machineWord12, x.machineWord13, x.machineWord14, x.machineWord15, x.machineWord16);
    numbers(n, x.machineWord17, x.machineWord18, x.machineWord19, x.machineWord20, x.machineWord21);
    numbers(n, x.machineWord22, x.machineWord23, x.machineWord24);
    numbersOr(n, 3, x.machineWord25);
  });
  m.order(39);
  if (version >= 62) fixedOr(m, x.machineWord97, 88.25, form.gridMode >= 0 && m.reached(34, 20) ? 7.5F : 40.0F);
  m.order(40);
  since(m, version >= 62, [&](auto& n) {
    numbers(n, x.machineWord26, x.machineWord27, x.machineWord28, x.machineWord29, x.machineWord30);
    numbers(n, x.machineWord31, x.machineWord32, x.machineWord33, x.machineWord34, x.machineWord35);
    numbers(n, x.machineWord36, x.machineWord37, x.machineWord38, x.machineWord39, x.machineWord40);
    numbers(n, x.machineWord41, x.machineWord42, x.machineWord43);
    numbersOr(n, 1, x.machineWord44);
    numbersOr(n, -1, x.machineWord45, x.machineWord46, x.machineWord47, x.machineWord48);
    numbersOr(n, -1, x.machineWord49, x.machineWord50, x.machineWord51, x.machineWord52);
    numbers(n, x.machineWord53);
    n.order(41);
    someText(n, x.ncPath, 256, 'c');
    n.block(x.ncExtension);
    n.order(42);
    numbers(n, x.machineWord54, x.machineWord55, x.machineWord56, x.machineWord57);
    numbers(n, x.machineWord58, x.machineWord59, x.machineWord60, x.machineWord61);
  });
  m.order(43);
  since(m, version >= 71, [&](auto& n) {
    numbers(n, x.machineWord62, x.machineWord63);
    n.order(44);
    storedProgram(n, version, 1, x.programC);
  });
}

template <class M>
void storedSince80(M& m, int version, const Form& form, OldMachine& x, ShapeList& shapes) {
  m.order(45);
  since(m, version >= 80, [&](auto& n) {
    storedProgramEx(n, version, x.programD);
    n.order(46);
    numbers(n, x.machineWord64);
    numbersOr(n, -1, x.machineWord65, x.machineWord66);
    numbers(n, x.machineWord67);
    numbersOr(n, 1000, x.machineWord68);
    numbers(n, x.machineWord69, x.machineWord70, x.machineWord71, x.machineWord72, x.machineWord73);
    n.order(47);
    numbers(n, x.machineWord74, x.machineWord75, x.machineWord76);
    numbersOr(n, 2.0F, x.machineWord77);
    numbers(n, x.machineWord78);
    n.order(48);
    n.block(x.wideValue1);
    n.block(x.wideValue2);
    n.order(49);
    numbers(n, x.machineWord79);
    n.order(50);
    const Bytes material = materialBytes(std::max(version, 80));
    n.raw(material);
    if constexpr (std::remove_reference_t<decltype(n)>::kMakes) {
      x.material.name = "brass";
      x.material.modeA = 77;
    } else {
      EXPECT_EQ(x.material.name, n.reached(50, material.size()) ? "brass" : "");
      EXPECT_EQ(x.material.modeA, n.reached(50, material.size()) ? 77U : 0U);
    }
    n.order(51);
    numbers(n, x.machineWord80, x.machineWord81);
    numbersOr(n, 1.5F, x.machineWord82);
    n.order(52);
    if (form.shapes)
      for (Shape& one : shapes.shapes) n.number(one.trailerValue);
  });
  m.order(53);
  since(m, version >= 90, [&](auto& n) {
    numbers(n, x.machineWord83, x.machineWord84, x.machineWord85, x.machineWord86);
    numbers(n, x.machineWord87, x.machineWord88, x.machineWord89, x.machineWord90);
    n.order(54);
    numbers(n, x.lateByteA);
    n.order(55);
    numbers(n, x.lateWord8);
  });
  m.order(56);
  since(m, version >= 100, [&](auto& n) { each(n, x.flagTriple); });
  m.order(57);
  since(m, version >= 101, [&](auto& n) {
    numbers(n, x.triadWord1, x.triadWord2);
    n.fixed(x.triadCount, 3);
    n.order(58);
    for (int i = 0; i < 3; ++i) {
      n.together(7);
      each(n, x.triads[i]);
    }
  });
}

template <class M>
void storedSince110(M& m, int version, const Form& form, OldMachine& x) {
  m.order(59);
  since(m, version >= 110, [&](auto& n) {
    numbers(n, x.unitWord);
    n.order(60);
    storedUnits(n, version, 2, x.unitTable);
    n.order(61);
    numbers(n, x.machineWord108, x.machineWord109, x.machineWord110, x.machineWord111);
    numbers(n, x.machineWord112, x.machineWord113, x.machineWord114, x.machineWord115);
    numbers(n, x.machineWord116, x.machineWord117, x.machineWord118, x.machineWord119);
    numbers(n, x.machineWord120, x.machineWord121, x.machineWord122, x.machineWord123);
    n.order(62);
    for (auto& column : x.numberColumns) {
      n.stored(3);
      each(n, column);
    }
    int order = 63;
    for (auto* column : {&x.textColumnA, &x.textColumnB}) {
      n.order(order);
      n.stored(3);
      for (std::size_t i = 0; i < 3; ++i)
        n.column((*column)[i], "text " + std::to_string(order) + std::to_string(i), order, 4 + 256 * (i + 1));
      ++order;
    }
  });
  m.order(65);
  since(m, version >= 111, [&](auto& n) {
    someText(n, x.displayName, 256, 'd');
    n.block(x.displayTail);
  });
  m.order(66);
  since(m, version >= 112, [&](auto& n) {
    numbers(n, x.lateWord1, x.lateWord2);
    numbersOr(n, 0.0001F, x.lateWord5);
    numbers(n, x.lateWord4);
    numbersOr(n, 1, x.lateWord3);
  });
  m.order(67);
  since(m, version >= 130, [&](auto& n) {
    someText(n, x.lateText1, 256, 'e');
    numbers(n, x.lateWord6);
    someText(n, x.lateText2, 256, 'f');
    someText(n, x.lateExtension, 11, 'g');
    numbers(n, x.lateWord7);
    n.order(68);
    n.raw(Bytes().fill(13 * 8 + 2 * 4, form.writer ? 0 : 0x5A));
    n.order(69);
    const std::int32_t length = form.writer ? 0 : form.lateLength;
    n.stored(length);
    n.raw(Bytes().fill(static_cast<std::size_t>(std::max(length, 0)), 0x5B));
  });
  m.order(70);
  since(m, version >= 141, [&](auto& n) { numbers(n, x.lateByteB); });
}

template <class M>
void storedEnd(M& m, int version, const Form& form, OldMachine& x) {
  m.order(71);
  if (form.writer || version >= 151) {
    numbers(m, x.machineWord124, x.machineWord125, x.machineWord126, x.machineWord127, x.machineWord128);
    numbers(m, x.machineWord129, x.machineWord130, x.machineWord131, x.machineWord132);
  } else if constexpr (!M::kMakes) {
    m.absent(x.machineWord124, 0U);
    m.absent(x.machineWord125, 1.5F);
    m.absent(x.machineWord126, 0U);
    m.absent(x.machineWord127, 1.5F);
    m.absent(x.machineWord129, 1);
    m.absent(x.machineWord130, 1);
  }
  m.order(72);
  since(m, form.writer || version >= 152, [&](auto& n) { numbers(n, x.lateByteC); });
  m.order(73);
  since(m, version >= 154, [&](auto& n) {
    const float fresh[5] = {0, 0.5F, 0.5F, 0.04F, 0};
    for (int i = 0; i < 5; ++i) numbersOr(n, fresh[i], x.setupWords[i]);
    n.order(74);
  });
  if (version >= 154) {
    MachineSetup& s = x.setup3;
    m.together(8);
    numbers(m, s.sizeX, s.sizeY);
    m.order(75);
    storedClamp(m, 5, 300, s.clampInfo);
    m.order(76);
    numbersOr(m, 3.189F, s.clampValue1);
    numbersOr(m, 0.3937F, s.clampValue2);
    numbers(m, s.machineWord91, s.machineWord92);
  }
  m.order(77);
  since(m, version >= 157, [&](auto& n) { someText(n, x.endText1, 256, 'h'); });
  m.order(78);
  since(m, version >= 170, [&](auto& n) {
    numbers(n, x.endWord);
    n.order(79);
    n.raw(Bytes().fill(800, form.writer ? 0 : 0x5C));
  });
  m.order(80);
  since(m, version >= 180, [&](auto& n) { someText(n, x.endText2, 256, 'i'); });
  m.order(81);
}

template <class M>
void storedMachine(M& m, int version, const Form& form, OldMachine& x, ShapeList& shapes) {
  storedHeader(m, form, x);
  const auto width = static_cast<std::size_t>(form.writer ? 256 : form.second ? form.secondWidth : form.width);
  m.order(11);
  m.together(8);
  numbers(m, x.sizeX, x.sizeY);
  m.order(12);
  storedFrame(m, version, x.frame);
  m.order(13);
  if (form.writer || form.gridMode < 0) {
    storedClamp(m, 2, 200, x.clampInfo);
  } else {
    MachineMaker first;
    ClampInfo dropped;
    storedClamp(first, 3, 100, dropped);
    m.raw(first.bytes);
  }
  m.order(14);
  numbersOr(m, 3.189F, x.clampValue1);
  numbersOr(m, 0.3937F, x.clampValue2);
  numbers(m, x.clampWord);
  m.order(15);
  someText(m, x.machineText2, width, 'a');
  m.order(16);
  someText(m, x.machineText3, width, 'b');
  m.order(17);
  storedArea(m, x.workArea);
  m.order(18);
  storedStations(m, version, {1, 107}, x.stationsA);
  m.order(19);
  if (version >= 61) {
    numbers(m, x.stationWord);
    storedStations(m, version, {2}, x.stationsB);
    storedStations(m, version, {108}, x.stationsC);
  } else if constexpr (!M::kMakes) {
    EXPECT_EQ(x.stationWord, 0U);
    EXPECT_TRUE(x.stationsB.stations.empty() && x.stationsC.stations.empty());
    EXPECT_EQ(x.stationsB.stationModeWord, ToolStationList().stationModeWord) << "untouched";
  }
  m.order(20);
  m.fixed(x.blockMode, form.blockMode);
  m.order(21);
  if (form.blockMode == 2) m.block(x.blockB);
  if (form.blockMode == 1 || form.blockMode == 2) m.block(x.blockA);
  m.order(22);
  if (!form.writer && form.gridMode < 0) {
    m.raw(Bytes().i32(form.gridMode));
    if constexpr (!M::kMakes) {
      EXPECT_EQ(x.gridMode, 0);
    }
  } else {
    m.fixed(x.gridMode, form.gridMode);
  }
  storedMiddle(m, version, form, x);
  m.order(35);
  m.fixed(x.stepListPresent, form.steps ? 7 : 0);
  m.order(36);
  if (form.steps) {
    m.size(x.stepTables, 2);
    for (StepTable& t : x.stepTables) storedSteps(m, version, 3, t);
  }
  storedSince60(m, version, form, x);
  storedSince80(m, version, form, x, shapes);
  storedSince110(m, version, form, x);
  storedEnd(m, version, form, x);
}

// ---- helpers -------------------------------------------------------------------------------------

std::unique_ptr<OldMachine> fresh() { return std::make_unique<OldMachine>(); }
ShapeList twoShapes() {
  ShapeList list;
  list.shapes.resize(2);
  return list;
}

struct Made {
  std::unique_ptr<OldMachine> machine = fresh();
  ShapeList shapes = twoShapes();
  MachineMaker m;
  Made(int version, const Form& form) { storedMachine(m, version, form, *machine, shapes); }
  std::size_t at(int order) const { return m.starts.at(order); }
  // The bytes with others in the place of those from `from` on.
  Bytes with(std::size_t from, const Bytes& others) const {
    const std::span<const std::byte> all = m.bytes.span();
    return m.bytes.cut(from).add(others).add(Bytes::of(all.subspan(std::min(all.size(), from + others.size()))));
  }
};

int read(const Bytes& bytes, int version, OldMachine& x, ShapeList* shapes = nullptr, std::size_t* consumed = nullptr) {
  return readFrom(
      bytes, [&](InStream& s) { return ReadOldMachine(s, version, shapes, x); }, consumed);
}
bool write(OldMachine& x, int version, Bytes* bytes = nullptr, const ShapeList* shapes = nullptr, bool flag = false) {
  bool ok = false;
  const Bytes all = written([&](OutStream& s) { return WriteOldMachine(s, version, shapes, x, flag); }, &ok);
  if (bytes != nullptr) *bytes = all;
  return ok;
}
void expectSameClamp(const ClampInfo& a, const ClampInfo& b) {
  EXPECT_TRUE(a.clampWord1 == b.clampWord1 && a.clampWord2 == b.clampWord2 && a.clampWord3 == b.clampWord3 &&
              a.clampWord4 == b.clampWord4 && a.clampCount == b.clampCount && a.clampSpacing == b.clampSpacing);
  for (int i = 0; i < 8; ++i) EXPECT_EQ(a.clampPositions[i], b.clampPositions[i]) << i;
}
void expectFirstSetup(const OldMachine& x, const MachineSetup& s) {
  EXPECT_EQ(s.sizeX, x.sizeX);
  EXPECT_EQ(s.sizeY, x.sizeY);
  expectSameClamp(s.clampInfo, x.clampInfo);
  EXPECT_EQ(s.clampValue1, x.clampValue1);
  EXPECT_EQ(s.clampValue2, x.clampValue2);
  EXPECT_EQ(s.machineWord91, x.machineWord91);
  EXPECT_EQ(s.machineWord92, x.machineWord92);
}
void expectFreshSetup(const MachineSetup& s) {
  EXPECT_TRUE(s.sizeX == 0 && s.sizeY == 0 && s.clampValue1 == 3.189F && s.clampValue2 == 0.3937F);
  EXPECT_TRUE(s.machineWord91 == 0 && s.machineWord92 == 0);
  expectSameClamp(s.clampInfo, ClampInfo());
}

const std::vector<Form>& forms() {
  static const std::vector<Form> all = [] {
    std::vector<Form> f(8);
    f[1].limits = f[1].second = false;
    f[1].width = 13;
    f[2].secondWidth = 9;
    f[2].width = 200;
    f[3].gridMode = -1;
    f[4].gridMode = f[4].blockMode = f[4].programMode = 3;
    f[5].gridMode = f[5].blockMode = 1;
    f[5].programMode = 2;
    f[5].extension = f[5].steps = false;
    f[6].segments = 0;
    f[7].shapes = true;
    return f;
  }();
  return all;
}

// ---- tables --------------------------------------------------------------------------------------

// Stored row by row, read back whole, and 1 at every cut.
template <class T, class Stored, class Read, class Write>
void expectRows(Stored stored, Read readOne, Write writeOne) {
  auto made = std::make_unique<T>(), got = std::make_unique<T>(), used = std::make_unique<T>();
  MachineMaker m;
  stored(m, *made);
  bool ok = false;
  EXPECT_EQ(written([&](OutStream& s) { return writeOne(s, *made); }, &ok), m.bytes);
  EXPECT_TRUE(ok);
  std::size_t consumed = 0;
  EXPECT_EQ(readFrom(
                m.bytes, [&](InStream& s) { return readOne(s, *got); }, &consumed),
            0);
  EXPECT_EQ(consumed, m.bytes.size());
  MachineChecker whole, none(0);
  stored(whole, *got);
  stored(none, *used);
  for (std::size_t cut = 0; cut < m.bytes.size(); ++cut) {
    const Bytes part = m.bytes.cut(cut);
    EXPECT_EQ(readFrom(part, [&](InStream& s) { return readOne(s, *got); }), 1) << cut;
  }
}

TEST(MachineTablesByHand, AreStoredRowByRowAndAnyCutGivesOne) {
  for (int count : {0, 1, 3, 8, -2}) {
    SCOPED_TRACE(count);
    expectRows<ClampInfo>([&](auto& m, ClampInfo& c) { storedClamp(m, count, 50, c); }, ReadClampInfo, WriteClampInfo);
  }
  expectRows<WorkArea>([](auto& m, WorkArea& a) { storedArea(m, a); }, ReadWorkArea, WriteWorkArea);
  expectRows<GridSegment>([](auto& m, GridSegment& s) { storedSegment(m, s); }, ReadGridSegment, WriteGridSegment);
  expectRows<MachineGrid>([](auto& m, MachineGrid& g) { storedGrid(m, 100, g); }, ReadMachineGrid, WriteMachineGrid);
  expectRows<MachineExtension>([](auto& m, MachineExtension& e) { storedExtension(m, e); }, ReadMachineExtension,
                               WriteMachineExtension);
  for (int version : {52, 59, 60, 156, 157, 180}) {
    SCOPED_TRACE(version);
    const auto readOne = [&](InStream& s, MachineFrame& f) { return ReadMachineFrame(s, version, f); };
    const auto writeOne = [&](OutStream& s, MachineFrame& f) { return WriteMachineFrame(s, version, f); };
    expectRows<MachineFrame>([&](auto& m, MachineFrame& f) { storedFrame(m, version, f); }, readOne, writeOne);
  }
  for (int version : {52, 79, 80, 89, 90, 112, 121, 151, 157, 158, 160, 161, 180}) {
    SCOPED_TRACE(version);
    const auto readOne = [&](InStream& s, ShapeProgram& p) { return ReadShapeProgram(s, version, p); };
    const auto writeOne = [&](OutStream& s, ShapeProgram& p) { return WriteShapeProgram(s, version, p); };
    // Up to 157 the last slot ends the program, and its late fields may be short (see ProcessSlot).
    if (version >= 158 || version < 90)
      expectRows<ShapeProgram>([&](auto& m, ShapeProgram& p) { storedProgram(m, version, 1, p); }, readOne, writeOne);
  }
  for (int version : {110, 120, 121, 140, 141, 153, 154, 180}) {
    SCOPED_TRACE(version);
    const auto readOne = [&](InStream& s, MachineUnitTable& t) { return ReadMachineUnitTable(s, version, t); };
    const auto writeOne = [&](OutStream& s, MachineUnitTable& t) { return WriteMachineUnitTable(s, version, t); };
    for (std::size_t units : {0U, 2U})  // what stands behind the list is stored behind an empty one too
      expectRows<MachineUnitTable>([&](auto& m, MachineUnitTable& t) { storedUnits(m, version, units, t); }, readOne,
                                   writeOne);
  }
}

TEST(MachineTablesByHand, AnExtendedProgramWhoseFirstPartFailsCountsAsReadWithoutItsOwnFields) {
  for (int version : {79, 158, 180}) {
    MachineMaker m, head;
    ShapeProgramEx made, got;
    storedProgram(head, version, 0, made);
    storedProgramEx(m, version, made);
    EXPECT_EQ(written([&](OutStream& s) { return WriteShapeProgramEx(s, version, made); }), m.bytes);
    for (std::size_t cut = 0; cut <= m.bytes.size(); ++cut) {
      ShapeProgramEx p;
      const Bytes part = m.bytes.cut(cut);
      const int wanted = cut < head.bytes.size() || cut == m.bytes.size() ? 0 : 1;
      EXPECT_EQ(readFrom(part, [&](InStream& s) { return ReadShapeProgramEx(s, version, p); }), wanted) << cut;
      if (cut <= head.bytes.size()) {
        EXPECT_TRUE(p.extFlag1 == 0 && p.extValue1 == 0.5F && p.extValue2 == 1.0F);
        EXPECT_TRUE(p.extFlag2 == 1 && p.extValue3 == 1.5F && p.extFlag3 == 1);
      } else if (cut == m.bytes.size()) {
        MachineChecker c;
        storedProgramEx(c, version, p);
      }
    }
  }
  // A refused value ends the program part; the stream goes on where it stands.
  MachineMaker m;
  ShapeProgramEx p;
  storedProgram(m, 80, 0, p);
  const std::size_t groups = 10 * 4;  // where the group count stands
  const Bytes claims = m.bytes.cut(groups).i32(2000000000);
  EXPECT_EQ(readFrom(claims, [&](InStream& s) { return ReadShapeProgram(s, 80, p); }), 1);
  EXPECT_EQ(readFrom(claims, [&](InStream& s) { return ReadShapeProgramEx(s, 80, p); }), 0);
}

TEST(MachineTablesByHand, AProgramIsEmptiedBehindItsCountAndDropsTheGroupThatFails) {
  MachineMaker m;
  ShapeProgram made;
  storedProgram(m, 180, 1, made);
  ShapeProgram p;
  p.programGroups.resize(5);
  EXPECT_EQ(readFrom(m.bytes.cut(40), [&](InStream& s) { return ReadShapeProgram(s, 180, p); }), 1);
  EXPECT_EQ(p.programGroups.size(), 5U) << "no count, no emptying";
  EXPECT_EQ(readFrom(m.bytes.cut(44 + 10), [&](InStream& s) { return ReadShapeProgram(s, 180, p); }), 1);
  EXPECT_TRUE(p.programGroups.empty()) << "a partly read group is released";
  for (int count : {0, -4}) {
    p.programGroups.resize(5);
    p.programWord7 = 0;
    const Bytes none = m.bytes.cut(40).i32(count).u32(99);
    EXPECT_EQ(readFrom(none, [&](InStream& s) { return ReadShapeProgram(s, 158, p); }), 0);
    EXPECT_TRUE(p.programGroups.empty());
    EXPECT_EQ(p.programWord7, 99U);
  }
}

TEST(MachineTablesByHand, CountsOutsideTheTablesAreRefusedBothWays) {
  for (int count : {9, 10, 2000000000}) {
    ClampInfo c;
    const Bytes b = Bytes().zeros(16).i32(count).fill(80, 1);
    EXPECT_EQ(readFrom(b, [&](InStream& s) { return ReadClampInfo(s, c); }), 1);
    EXPECT_EQ(c.clampPositions[0], 5.5F);
    EXPECT_EQ(c.clampSpacing, 5.5F);
    c.clampCount = count;
    EXPECT_FALSE(WriteClampInfo(*std::make_unique<OutStream>(), c));
  }
  for (int count : {0, -1, 40001, 2000000000}) {
    auto g = std::make_unique<MachineGrid>();
    const Bytes b = Bytes().zeros(8).i32(count).fill(40040, 9);
    EXPECT_EQ(readFrom(b, [&](InStream& s) { return ReadMachineGrid(s, *g); }), 1) << count;
    EXPECT_EQ(g->gridCells[0], 1);
    EXPECT_EQ(g->cellSizeX, 5.0F);
    g->cellByteCount = count;
    EXPECT_FALSE(WriteMachineGrid(*std::make_unique<OutStream>(), *g)) << count;
  }
}

TEST(MachineTablesByHand, AGridHasFortyThousandCellsTheFirstTenThousandOfThemOne) {
  const auto g = std::make_unique<MachineGrid>();
  EXPECT_EQ(std::size(g->gridCells), 40000U);
  EXPECT_TRUE(g->gridCells[0] == 1 && g->gridCells[9999] == 1 && g->gridCells[10000] == 0);
  EXPECT_EQ(g->gridValue3, 0.25F);
  EXPECT_EQ(g->gridIsNarrow, 1);
  MachineChecker c(0);
  storedGrid(c, 40000, *g);
  // All of them are stored; fewer leave the others alone.
  MachineMaker m;
  auto made = std::make_unique<MachineGrid>();
  storedGrid(m, 40000, *made);
  EXPECT_EQ(m.bytes.size(), 8U + 4 + 40000 + 8 + 4 + 8);
  EXPECT_EQ(written([&](OutStream& s) { return WriteMachineGrid(s, *made); }), m.bytes);
  MachineMaker few;
  storedGrid(few, 100, *made);
  EXPECT_EQ(readFrom(m.bytes, [&](InStream& s) { return ReadMachineGrid(s, *g); }), 0);
  EXPECT_EQ(readFrom(few.bytes, [&](InStream& s) { return ReadMachineGrid(s, *g); }), 0);
  EXPECT_EQ(g->gridCells[100], (100 * 7 + 3) & 0xFF);
  // The count is 40000 before it is read.
  EXPECT_EQ(readFrom(few.bytes.cut(10), [&](InStream& s) { return ReadMachineGrid(s, *g); }), 1);
  EXPECT_EQ(g->cellByteCount, 40000);
}

TEST(MachineTablesByHand, AGridKeepsTheLowHalfOfItsWidth) {
  const struct {
    std::uint32_t stored;
    std::int32_t width, narrow;
  } rows[] = {{10, 10, 1}, {65535, 65535, 1}, {65536, 0, 0}, {70000, 4464, 0}, {0xFFFFFFFFU, 65535, 0}};
  for (const auto& row : rows) {
    auto g = std::make_unique<MachineGrid>();
    const Bytes b = Bytes().zeros(8).i32(1).u8(4).f32(1).f32(2).u32(row.stored).i32(6).f32(7);
    EXPECT_EQ(readFrom(b, [&](InStream& s) { return ReadMachineGrid(s, *g); }), 0);
    EXPECT_EQ(g->gridWidth, row.width) << row.stored;
    EXPECT_EQ(g->gridIsNarrow, row.narrow) << row.stored;
    const Bytes again = written([&](OutStream& s) { return WriteMachineGrid(s, *g); });
    EXPECT_EQ(again, Bytes().zeros(8).i32(1).u8(4).f32(1).f32(2).i32(row.width).i32(6).f32(7));
    EXPECT_EQ(readFrom(again, [&](InStream& s) { return ReadMachineGrid(s, *g); }), 0);
    EXPECT_EQ(g->gridIsNarrow, 1);
  }
}

TEST(MachineTablesByHand, ListsOfExtensionWordsAndUnitsAreEmptiedBehindTheirCount) {
  const MachineExtension plain;
  EXPECT_EQ(plain.extensionWords, (std::vector<std::int32_t>{1, 11}));
  for (int count : {0, -1}) {
    MachineExtension e;
    const Bytes b = Bytes().fill(200, 3).i32(count);
    EXPECT_EQ(readFrom(b.cut(203), [&](InStream& s) { return ReadMachineExtension(s, e); }), 1);
    EXPECT_EQ(e.extensionWords.size(), 2U);
    EXPECT_EQ(readFrom(b, [&](InStream& s) { return ReadMachineExtension(s, e); }), 0);
    EXPECT_TRUE(e.extensionWords.empty());
    for (int version : {110, 120}) {
      MachineUnitTable t;
      t.units.resize(3);
      const Bytes u = Bytes().fill(30, 1).i32(count);
      EXPECT_EQ(readFrom(u.cut(33), [&](InStream& s) { return ReadMachineUnitTable(s, version, t); }), 1);
      EXPECT_EQ(t.units.size(), 3U);
      EXPECT_EQ(readFrom(u, [&](InStream& s) { return ReadMachineUnitTable(s, version, t); }), 0);
      EXPECT_TRUE(t.units.empty());
    }
  }
  MachineExtension e;
  MachineUnitTable t;
  EXPECT_EQ(
      readFrom(Bytes().zeros(200).i32(2000000000).zeros(9), [&](InStream& s) { return ReadMachineExtension(s, e); }),
      1);
  EXPECT_EQ(readFrom(Bytes().zeros(30).i32(2000000000), [&](InStream& s) { return ReadMachineUnitTable(s, 110, t); }),
            1);
  EXPECT_EQ(readFrom(Bytes().zeros(30).i32(1).zeros(8).i32(2000000000).zeros(20),
                     [&](InStream& s) { return ReadMachineUnitTable(s, 110, t); }),
            1);
  EXPECT_TRUE(t.units.empty()) << "a partly read unit is released";
}

// ---- the body ------------------------------------------------------------------------------------

float larger(const OldMachine& x) { return std::max(x.workArea.areaValues[0], x.workArea.areaValues[1]); }

TEST(MachineBodyByHand, EveryOrderStandsFromItsVersionOnInEveryForm) {
  for (int version : allVersions()) {
    for (std::size_t i = 0; i < forms().size(); ++i) {
      SCOPED_TRACE("version " + std::to_string(version) + ", form " + std::to_string(i));
      Made made(version, forms()[i]);
      auto x = fresh();
      ShapeList shapes = twoShapes();
      std::size_t consumed = 0;
      ASSERT_EQ(read(made.m.bytes, version, *x, &shapes, &consumed), 0);
      EXPECT_EQ(consumed, made.m.bytes.size());
      MachineChecker c;
      storedMachine(c, version, forms()[i], *x, shapes);
      EXPECT_GT(larger(*x), 9.0F);
      EXPECT_TRUE(x->limitA == larger(*x) && x->limitB == larger(*x));
      if (!forms()[i].limits) {
        EXPECT_TRUE(x->limitC == 0.048F && x->limitWord == 0);
      }
      expectFirstSetup(*x, x->setup2);
      if (version < 154) expectFirstSetup(*x, x->setup3);
      if (HasFailure()) return;
    }
  }
}

TEST(MachineBodyByHand, TheWriterStoresTheSameOrdersWithItsOwnHeaderAndItsUngatedEnd) {
  for (int version : allVersions()) {
    for (std::size_t i = 0; i < forms().size(); ++i) {
      Form form = forms()[i];
      form.writer = true;
      SCOPED_TRACE("version " + std::to_string(version) + ", form " + std::to_string(i));
      Made made(version, form);
      Bytes got;
      ASSERT_TRUE(write(*made.machine, version, &got, &made.shapes, form.shapes));
      ASSERT_EQ(got.size(), made.m.bytes.size());
      // The fill has no meaning.
      const std::size_t fill = made.at(10), body = made.at(11);
      EXPECT_EQ(got.cut(fill), made.m.bytes.cut(fill));
      EXPECT_TRUE(Bytes::of(got.span().subspan(body)) == Bytes::of(made.m.bytes.span().subspan(body)));
      EXPECT_EQ(made.machine->gridMode, form.gridMode);
      if (HasFailure()) return;
    }
  }
}

TEST(MachineBodyByHand, AFreshRecordHasTheDefaults) {
  Made made(180, Form());
  auto x = fresh();
  ShapeList shapes = twoShapes();
  MachineChecker none(0, &made.m.starts);
  storedMachine(none, 180, Form(), *x, shapes);
  x = fresh();
  EXPECT_EQ(x->version, 0);
  EXPECT_STREQ(x->path, "");
  EXPECT_STREQ(x->ncExtension, "nc");
  EXPECT_TRUE(x->segments.empty() && x->stepTables.empty() && x->unitTable.units.empty());
  for (const auto* block : {&x->blockA, &x->blockB, &x->segmentBox})
    for (std::uint8_t one : *block) EXPECT_EQ(one, 0);
  EXPECT_EQ(x->programA.programWord3, 1);
  EXPECT_EQ(x->programC.programWord3, 1);
  EXPECT_EQ(x->programB.programWord3, 0);
  EXPECT_EQ(x->programD.programWord3, 0);
  EXPECT_TRUE(x->unitTable.unitFlag3 == 0 && x->unitTable.unitValue16 == 1 && x->unitTable.unitValue22 == 1);
  expectFreshSetup(x->setup2);
  expectFreshSetup(x->setup3);
}

// The order that the first missing byte belongs to.
int orderAt(const Starts& starts, std::size_t cut) {
  int order = 0;
  for (const auto& [n, start] : starts)
    if (start <= cut) order = n;
  return order;
}

TEST(MachineBodyByHand, ACutGivesOneExceptInTheOrdersThatForgiveIt) {
  for (int version : {52, 60, 62, 90, 101, 110, 112, 130, 141, 152, 157, 180}) {
    Made made(version, Form());
    const std::size_t size = made.m.bytes.size();
    auto x = fresh();
    int forgiven = 0;
    for (std::size_t cut = 0; cut < size; ++cut) {
      const int order = orderAt(made.m.starts, cut);
      bool forgives = (order == 5 && cut >= made.at(5) + 8) || order == 25 || (order >= 54 && order <= 57) ||
                      (order >= 67 && order <= 72);
      if (order == 36 && version < 60) {  // nothing behind the step tables: what their own reader says
        StepTableList tables;
        const Bytes rest = Bytes::of(made.m.bytes.cut(cut).span().subspan(made.at(36)));
        forgives = readFrom(rest, [&](InStream& s) { return ReadStepTableList(s, version, tables); }) == 0;
      }
      forgiven += forgives ? 1 : 0;
      std::size_t consumed = 0;
      ASSERT_EQ(read(made.m.bytes.cut(cut), version, *x, nullptr, &consumed), forgives ? 0 : 1)
          << "version " << version << " cut at " << cut << " in order " << order;
      ASSERT_EQ(consumed, cut) << "the stream is at its end";
    }
    EXPECT_GE(forgiven, 12);
  }
}

TEST(MachineBodyByHand, WhatArrivedWholeStaysAndAForgivenCutRunsNoFinishingStep) {
  Made made(180, Form());
  // Inside these a cut meets lists and records that come whole or not at all.
  const std::vector<int> lists{13, 18, 19, 26, 28, 30, 33, 36, 44, 45, 50, 60, 75};
  for (std::size_t cut = 0; cut < made.m.bytes.size(); ++cut) {
    const int order = orderAt(made.m.starts, cut);
    const bool atStart = made.at(order) == cut;
    if (std::find(lists.begin(), lists.end(), order) != lists.end() && !atStart) continue;
    if (!atStart && cut % 23 != 0) continue;
    SCOPED_TRACE("cut at " + std::to_string(cut) + " in order " + std::to_string(order));
    auto x = fresh();
    ShapeList shapes = twoShapes();
    read(made.m.bytes.cut(cut), 180, *x, &shapes);
    if (cut > made.at(13) && cut < made.at(28) + 32) {
      EXPECT_TRUE(x->clampInfo.clampWord1 == 100 && x->clampInfo.clampCount == 3);
      EXPECT_EQ(x->clampInfo.clampPositions[2], 106.0F) << "the first copy";
    }
    if (cut < made.at(73)) {
      expectFreshSetup(x->setup2);
      expectFreshSetup(x->setup3);
    } else {
      expectFirstSetup(*x, x->setup2);
      EXPECT_TRUE(x->limitA == larger(*x) && x->limitB == larger(*x));
    }
    MachineChecker c(cut, &made.m.starts);
    storedMachine(c, 180, Form(), *x, shapes);
    if (HasFailure()) return;
  }
}

TEST(MachineBodyByHand, AbsentFieldsKeepWhatTheRecordHoldsButForTheGivenValues) {
  auto x = fresh();
  ASSERT_EQ(read(Made(180, Form()).m.bytes, 180, *x), 0);
  x->machineWord128 = 4711;
  const auto word1 = x->machineWord1;
  const std::string text(x->displayName, 256);
  const std::size_t stations = x->stationsB.stations.size(), units = x->unitTable.units.size();
  x->frame.frameValue7 = 12.5F;
  Form form;
  form.limits = form.second = form.extension = form.steps = false;
  form.segments = form.blockMode = form.gridMode = form.programMode = 0;
  ASSERT_EQ(read(Made(52, form).m.bytes, 52, *x), 0);
  EXPECT_EQ(x->stationWord, 0U);
  EXPECT_TRUE(x->machineWord65 == -1 && x->machineWord66 == -1);
  EXPECT_TRUE(x->lateWord3 == 1 && x->lateWord4 == 0 && x->lateWord5 == 0.0001F);
  EXPECT_TRUE(x->machineWord124 == 0 && x->machineWord126 == 0);
  EXPECT_TRUE(x->machineWord125 == 1.5F && x->machineWord127 == 1.5F);
  EXPECT_TRUE(x->machineWord129 == 1 && x->machineWord130 == 1);
  EXPECT_TRUE(x->limitC == 0.048F && x->limitWord == 0);
  expectFirstSetup(*x, x->setup3);
  EXPECT_TRUE(x->machineWord128 == 4711 && x->machineWord1 == word1 && std::string(x->displayName, 256) == text);
  EXPECT_TRUE(stations == 1 && x->stationsB.stations.size() == stations);
  EXPECT_TRUE(units == 2 && x->unitTable.units.size() == units);
  EXPECT_TRUE(x->segments.size() == 2 && x->stepTables.size() == 2 && x->programA.programGroups.size() == 2);
  EXPECT_EQ(x->frame.frameValue7, 12.5F);
  EXPECT_EQ(x->material.name, "brass");
  EXPECT_EQ(x->gridA.cellByteCount, 37);
  EXPECT_EQ(x->blockA[0], Made(180, Form()).machine->blockA[0]);
}

TEST(MachineBodyByHand, DropsAsManyLateBytesAsTheirLengthSaysAndNoneBelowOne) {
  for (const int version : {130, 140, 141, 152, 180})
    for (const std::int32_t length : {std::numeric_limits<std::int32_t>::min(), -1, 0, 1, 2, 300, 50000}) {
      Form form;
      form.lateLength = length;
      const Made made(version, form);
      auto x = fresh();
      std::size_t consumed = 0;
      ASSERT_EQ(read(made.m.bytes, version, *x, nullptr, &consumed), 0) << version << " " << length;
      EXPECT_EQ(consumed, made.m.bytes.size()) << version << " " << length;
      EXPECT_EQ(x->lateByteB, version < 141 ? fresh()->lateByteB : made.machine->lateByteB) << version << " " << length;
      EXPECT_EQ(x->stepTables.size(), made.machine->stepTables.size()) << version << " " << length;
    }
}

TEST(MachineBodyByHand, DefaultsBelowAVersionAreSetWhereTheItemWouldStand) {
  const struct {
    int version, order;  // a cut right in front of the next item that is stored
    bool late, word151;
  } rows[] = {{110, 64, false, false}, {111, 65, false, false}, {130, 67, true, false}, {150, 70, true, false}};
  for (const auto& row : rows) {
    auto x = fresh();
    x->lateWord3 = 55;
    x->machineWord125 = 55;
    Made made(row.version, Form());
    read(made.m.bytes.cut(made.at(row.order)), row.version, *x);
    EXPECT_EQ(x->lateWord3 == 55, !row.late) << row.version;
    EXPECT_EQ(x->machineWord125, 55.0F) << row.version;
    ASSERT_EQ(read(made.m.bytes, row.version, *x), 0);
    EXPECT_EQ(x->machineWord125, 1.5F);
    if (row.version < 112) {
      EXPECT_EQ(x->lateWord3, 1);
    }
  }
}

TEST(MachineBodyByHand, ANearlyZeroFirstWordBecomesTheSizeRightBehindItsRow) {
  const float above = std::nextafter(0.0001F, 1.0F);
  const struct {
    float stored;
    bool replaced;
  } rows[] = {{0.00005F, true}, {-0.00005F, true}, {0, true},       {-0.0F, true},  {0.0001F, true},
              {-0.0001F, true}, {above, false},    {-above, false}, {-0.5F, false}, {1e30F, false}};
  for (int version : {60, 62, 180}) {
    Made made(version, Form());
    for (const auto& row : rows) {
      const Bytes bytes = made.with(made.at(37), Bytes().f32(row.stored));
      auto x = fresh();
      ASSERT_EQ(read(bytes, version, *x), 0);
      EXPECT_EQ(x->machineWord1, row.replaced ? made.machine->sizeX : row.stored) << row.stored;
      x = fresh();
      if (version > 60) {
        EXPECT_EQ(read(bytes.cut(made.at(38)), version, *x), 1);
        EXPECT_EQ(x->machineWord1, row.replaced ? made.machine->sizeX : row.stored) << "before order 38";
      }
    }
    auto x = fresh();
    ASSERT_EQ(read(made.with(made.at(37), Bytes().f32(std::nanf(""))), version, *x), 0);
    EXPECT_TRUE(std::isnan(x->machineWord1));
  }
}

TEST(MachineBodyByHand, TheLastStepsRaiseTheSecondLimitAndCopyItIntoTheFirst) {
  const struct {
    bool stored;
    float b, area0, area1, wanted;
  } rows[] = {{false, 0, 5, 7, 7},      {false, 0, 7, 5, 7},   {false, 0, -1, -2, -0.125F}, {true, 9, 5, 7, 9},
              {true, 9, 5, 9.5F, 9.5F}, {true, 9, 10, -3, 10}, {true, -9, -7, -8, -7},      {true, 9, 9, 9, 9}};
  for (int version : {52, 90, 154, 180}) {
    for (const auto& row : rows) {
      Form form;
      form.limits = row.stored;
      Made made(version, form);
      Bytes bytes = made.with(made.at(17), Bytes().f32(row.area0).f32(row.area1));
      if (row.stored) {
        const Bytes rest = Bytes::of(bytes.span().subspan(made.at(5) + 8));
        bytes = bytes.cut(made.at(5) + 4).f32(row.b).add(rest);
      }
      auto x = fresh();
      ASSERT_EQ(read(bytes, version, *x), 0);
      EXPECT_TRUE(x->limitA == row.wanted && x->limitB == row.wanted) << row.wanted << " " << x->limitB;
      if (!row.stored) {  // before the last steps
        x = fresh();
        EXPECT_EQ(read(bytes.cut(made.at(25)), version, *x), 0);
        EXPECT_TRUE(x->limitA == -0.125F && x->limitB == -0.125F && x->limitC == 0.048F && x->limitWord == 0);
      }
    }
  }
}

TEST(MachineBodyByHand, TheHeaderKeepsASignedByteWhereTheWriterStoresFour) {
  for (std::int32_t value : {0, 5, -3, 127, 128, 255, 256, 300, 511, 512, 65536, -200}) {
    for (int version : {79, 80, 180}) {
      auto x = fresh();
      x->textWidth = 256;
      x->smallValue = value;
      x->shapesPresent = 1;
      Bytes bytes;
      ASSERT_TRUE(write(*x, version, &bytes));
      EXPECT_EQ(Bytes::of(bytes.span().subspan(266, 4)), Bytes().i32(value));
      auto got = fresh();
      const bool present = ((static_cast<std::uint32_t>(value) >> 8U) & 0xFFU) == 1;
      const int status = read(bytes, version, *got);
      EXPECT_EQ(status, present && version >= 80 ? 1 : 0) << value << " at " << version;
      EXPECT_EQ(got->smallValue, static_cast<std::int8_t>(value));
      EXPECT_EQ(got->shapesPresent, (static_cast<std::uint32_t>(value) >> 8U) & 0xFFU);
      EXPECT_EQ(x->shapesPresent, 1) << "not changed";
    }
  }
  auto x = fresh();
  x->textWidth = 256;
  Bytes bytes;
  ShapeList shapes = twoShapes();
  ASSERT_TRUE(write(*x, 180, &bytes, &shapes, true));
  EXPECT_EQ(x->shapesPresent, 1) << "set by the writer";
  EXPECT_EQ(Bytes::of(bytes.span().subspan(270, 1)), Bytes().u8(1));
}

TEST(MachineBodyByHand, TrailerValuesNeedTheListOfTheCaller) {
  Form form;
  form.shapes = true;
  for (int version : {79, 80, 180}) {
    Made made(version, form);
    auto x = fresh();
    std::size_t consumed = 0;
    EXPECT_EQ(read(made.m.bytes, version, *x, nullptr, &consumed), version >= 80 ? 1 : 0);
    EXPECT_EQ(consumed, version >= 80 ? made.at(52) : made.m.bytes.size());
    // A list without shapes takes nothing.
    ShapeList none;
    EXPECT_EQ(read(made.m.bytes.cut(version >= 80 ? made.at(52) : kWhole), version, *x, &none), version < 90 ? 0 : 1);
    ShapeList three;
    three.shapes.resize(3);
    if (version == 80) {
      EXPECT_EQ(read(made.m.bytes, version, *x, &three), 1);
    }
  }
}

TEST(MachineBodyByHand, AFlagOtherThanOneBringsNothing) {
  Form form;
  form.limits = form.second = false;
  Made made(80, form);
  for (int flag : {2, 128, 255}) {
    Bytes bytes = made.with(made.at(4), Bytes().i8(flag).i8(flag).u8(0).i8(flag));
    auto x = fresh();
    ShapeList shapes = twoShapes();
    std::size_t consumed = 0;
    ASSERT_EQ(read(bytes, 80, *x, &shapes, &consumed), 0) << flag;
    EXPECT_EQ(consumed, bytes.size());
    EXPECT_TRUE(x->limitsPresent == flag && x->secondTextPresent == flag && x->shapesPresent == flag);
    EXPECT_TRUE(x->limitC == 0.048F && x->secondTextWidth == 0);
    EXPECT_EQ(x->machineWord81, made.machine->machineWord81);
  }
}

TEST(MachineBodyByHand, WidthsOfTextsAreOneToTwoHundredFiftySix) {
  for (int width : {-1, 0, 257, 2000000000}) {
    auto x = fresh();
    EXPECT_EQ(read(Bytes().i32(width).fill(3000, 1), 52, *x), 1) << width;
    EXPECT_EQ(x->machineText1[0], 0);
    const Bytes second = Bytes().i32(3).fill(3, 65).i32(1).u8(0).u8(1).i32(width).fill(3000, 1);
    EXPECT_EQ(read(second, 52, *x), 1) << width;
    EXPECT_EQ(x->secondText[0], 0);
    x->textWidth = width;
    x->secondTextPresent = 0;
    EXPECT_FALSE(write(*x, 180)) << width;
    x->textWidth = 256;
    EXPECT_TRUE(write(*x, 180));
    x->secondTextWidth = width;
    EXPECT_TRUE(write(*x, 180)) << "not stored";
    x->secondTextPresent = 1;
    EXPECT_FALSE(write(*x, 180)) << width;
    x->secondTextWidth = 256;
    EXPECT_TRUE(write(*x, 180));
  }
}

TEST(MachineBodyByHand, WritersRefuseCountsThatNoFieldHolds) {
  auto x = fresh();
  x->textWidth = 256;
  ASSERT_TRUE(write(*x, 180));
  x->triadCount = 256;
  EXPECT_FALSE(write(*x, 101));
  EXPECT_TRUE(write(*x, 100)) << "not stored";
  x->triadCount = 255;
  EXPECT_TRUE(write(*x, 180));
  x->clampInfo.clampCount = 9;
  EXPECT_FALSE(write(*x, 52));
  x->clampInfo.clampCount = 8;
  x->setup3.clampInfo.clampCount = 9;
  EXPECT_TRUE(write(*x, 153));
  EXPECT_FALSE(write(*x, 154));
  x->setup3.clampInfo.clampCount = 0;
  x->gridA.cellByteCount = 40001;
  EXPECT_TRUE(write(*x, 180));
  x->gridMode = 1;
  EXPECT_FALSE(write(*x, 180));
}

TEST(MachineBodyByHand, TriadsAreBoundedAndANegativeCountStays) {
  Made made(101, Form());
  const Bytes head = made.m.bytes.cut(made.at(57) + 8);
  for (int count : {-7, 0, 1, 255}) {
    auto x = fresh();
    Bytes bytes = head;
    bytes.i32(count).fill(static_cast<std::size_t>(std::max(0, count)) * 7, 0xAB);
    std::size_t consumed = 0;
    EXPECT_EQ(read(bytes, 101, *x, nullptr, &consumed), 0) << count;
    EXPECT_EQ(consumed, bytes.size());
    EXPECT_EQ(x->triadCount, count);
    EXPECT_EQ(x->triads[0][6], count > 0 ? 0xAB : 0);
    EXPECT_EQ(x->triads[254][6], count == 255 ? 0xAB : 0);
    x->textWidth = 256;
    Bytes again;
    EXPECT_TRUE(write(*x, 101, &again));
    // Behind the triads: the nine words and the byte that the writer stores at every version.
    const std::size_t size = bytes.size() - made.at(57);
    EXPECT_EQ(Bytes::of(again.span().subspan(again.size() - 37 - size, size)),
              Bytes::of(bytes.span().subspan(made.at(57))));
  }
  for (int count : {256, 2000000000}) {
    auto x = fresh();
    Bytes bytes = head;
    EXPECT_EQ(read(bytes.i32(count).fill(2000, 0xAB), 101, *x), 1);
    EXPECT_EQ(x->triads[0][0], 0);
  }
}

TEST(MachineBodyByHand, ColumnsTakeTheirCountsFromTheFileUpToThree) {
  Made made(110, Form());
  const Bytes head = made.m.bytes.cut(made.at(62));
  for (int count : {-1, 0, 1, 2, 3, 4, 2000000000}) {
    const auto n = static_cast<std::size_t>(count < 0 || count > 3 ? 0 : count);
    Bytes numbersOnly = head, texts = head;
    numbersOnly.i32(count).fill(4 * n, 2);
    for (int k = 1; k < 6; ++k) numbersOnly.i32(0);
    numbersOnly.i32(0).i32(0);
    for (int k = 0; k < 6; ++k) texts.i32(0);
    texts.i32(count).fill(256 * n, 'q').i32(count);
    for (std::size_t k = 0; k < n; ++k) texts.text(256, std::string("ab\0cd", 5));
    auto x = fresh();
    x->numberColumns[0][2] = 9;
    x->textColumnA[2] = "old";
    EXPECT_EQ(read(numbersOnly, 110, *x), count > 3 ? 1 : 0) << count;
    EXPECT_EQ(x->numberColumns[0][0], n > 0 ? 0x02020202U : 0U);
    EXPECT_EQ(x->numberColumns[0][2], n > 2 ? 0x02020202U : 9U);
    EXPECT_EQ(read(texts, 110, *x), count > 3 ? 1 : 0) << count;
    EXPECT_EQ(x->textColumnA[0], n > 0 ? std::string(256, 'q') : "");
    EXPECT_EQ(x->textColumnA[2], n > 2 ? std::string(256, 'q') : "old");
    EXPECT_EQ(x->textColumnB[0], n > 0 ? "ab" : "") << "up to its NUL";
  }
  // A text that holds a NUL is stored up to it.
  Form form;
  form.writer = true;
  Made whole(110, form);
  whole.machine->textColumnA[1] = std::string("xy\0z", 4);
  Bytes got;
  ASSERT_TRUE(write(*whole.machine, 110, &got));
  EXPECT_EQ(Bytes::of(got.span().subspan(whole.at(63) + 4 + 256, 256)), Bytes().text(256, "xy"));
}

TEST(MachineBodyByHand, ASegmentCountEmptiesTheListUnlessItIsZero) {
  Made made(52, Form());
  const Bytes rest = Bytes::of(made.m.bytes.span().subspan(made.at(27)));
  for (int count : {0, -1}) {
    auto x = fresh();
    x->segments.resize(4);
    Bytes bytes = made.m.bytes.cut(made.at(25));
    bytes.i32(count).fill(count == 0 ? 0 : 16, 0x77).add(rest);
    EXPECT_EQ(read(bytes, 52, *x), 0);
    EXPECT_EQ(x->segments.size(), count == 0 ? 4U : 0U);
    EXPECT_EQ(x->segmentBox[15], count == 0 ? 0 : 0x77);
    EXPECT_EQ(x->machineWord107, made.machine->machineWord107);
  }
  auto x = fresh();
  EXPECT_EQ(read(made.m.bytes.cut(made.at(25)).i32(2000000000).fill(30, 1), 52, *x), 1);
}

TEST(MachineBodyByHand, AnyNegativeGridModeLeavesOutTheMiddle) {
  for (int mode : {-1, -2, std::numeric_limits<int>::min()}) {
    for (int version : {52, 62, 180}) {
      Form form;
      form.gridMode = mode;
      Made made(version, form);
      auto x = fresh();
      x->machineWord107 = 5;
      x->hasExtension = 6;
      ASSERT_EQ(read(made.m.bytes, version, *x), 0);
      EXPECT_TRUE(x->gridMode == 0 && x->machineWord107 == 5 && x->hasExtension == 6);
    }
  }
}

TEST(MachineBodyByHand, ADiscardedRunLongerThanTheFileIsForgiven) {
  Made made(150, Form());
  auto x = fresh();
  std::size_t consumed = 0;
  const Bytes bytes = made.m.bytes.cut(made.at(69)).i32(2000000000).fill(10, 1);
  EXPECT_EQ(read(bytes, 150, *x, nullptr, &consumed), 0);
  EXPECT_EQ(consumed, bytes.size());
  EXPECT_EQ(x->lateByteB, 0);
  expectFreshSetup(x->setup2);
}

TEST(MachineBodyByHand, AMachineWithoutUnitsReadsAsItWasStored) {
  for (int version : {151, 152, 154, 180}) {
    auto x = fresh();
    x->textWidth = 256;
    x->machineWord108 = 108;
    x->machineWord123 = 123;
    Bytes bytes;
    ASSERT_TRUE(write(*x, version, &bytes));
    // From 151 on only lateByteC stands where the reader may not expect it.
    auto got = fresh();
    ASSERT_EQ(read(bytes, version, *got), 0) << version;
    EXPECT_TRUE(got->machineWord108 == 108 && got->machineWord123 == 123) << version;
    EXPECT_EQ(got->endText2[0], 0);
  }
}

TEST(MachineBodyByHand, FilesLoadFromVersion52To180WithoutGaps) {
  TempFolder folder;
  auto x = fresh();
  EXPECT_EQ(LoadOldMachine(folder.path("none").c_str(), x.get()), -2);
  EXPECT_EQ(LoadOldMachine(folder.write("short", Bytes().u8(52)).c_str(), x.get()), 1);
  EXPECT_EQ(x->version, 0);
  for (int version : {-1, 0, 51, 181, 500, 32767}) {
    EXPECT_EQ(LoadOldMachine(folder.write("refused", Bytes().i16(version).zeros(99)).c_str(), x.get()), -1) << version;
    EXPECT_EQ(x->version, version);
  }
  for (int version : allVersions()) {
    Made made(version, Form());
    const std::string path = folder.write("machine", Bytes().i16(version).add(made.m.bytes));
    x = fresh();
    ASSERT_EQ(LoadOldMachine(path.c_str(), x.get()), 0) << version;
    EXPECT_EQ(x->version, version);
    ShapeList shapes;
    MachineChecker c;
    storedMachine(c, version, Form(), *x, shapes);
    EXPECT_EQ(LoadOldMachine(folder.write("cut", Bytes().i16(version)).c_str(), x.get()), 1);
    if (HasFailure()) return;
  }
  Form form;
  form.shapes = true;
  EXPECT_EQ(LoadOldMachine(folder.write("shapes", Bytes().i16(80).add(Made(80, form).m.bytes)).c_str(), x.get()), 1);
}

}  // namespace
