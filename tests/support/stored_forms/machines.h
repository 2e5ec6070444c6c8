// Machines and their tables. The sections of a body are numbered in stored order.
#pragma once
#include <algorithm>
#include <string>

#include "tests/support/stored_forms/materials.h"
#include "tests/support/stored_forms/programs.h"
#include "tests/support/stored_forms/tools.h"

namespace testing_support {

// What a stored body looks like. `writer`: as the writer lays it out, else as a file may hold it.
struct MachineForm {
  bool writer = false;
  bool limits = true, second = true, shapes = false, extension = true, steps = true;
  int width = 256, secondWidth = 256;
  int blockMode = 2, gridMode = 2, programMode = 1;
  int segments = 2;
  std::int32_t lateLength = 5;  // of the discarded bytes after it
};

// Below version 152 a save stores fields at the end of a machine that no load expects there: how many bytes.
inline std::size_t lateMachineBytes(int version) { return version < 151 ? 9 * 4 + 1 : version < 152 ? 1 : 0; }

// The material inside a machine, without elements in any list.
inline MaterialForm materialOfMachines() {
  MaterialForm form = MaterialForm::bare();
  form.name = "brass";
  return form;
}

template <class M>
void storedClamp(M& m, int count, int base, ClampInfo& c) {
  base += 1000 * static_cast<int>(m.seed());
  for (auto* word : {&c.clampWord1, &c.clampWord2, &c.clampWord3, &c.clampWord4}) m.fixed(*word, base++);
  count = countIn(m, c.clampCount, count, 2);
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
void storedGrid(M& m, std::size_t cells, MachineGrid& g) {
  m.together(8);
  numbers(m, g.gridHead1, g.gridHead2);
  fixedOr(m, g.cellByteCount, cells, 40000);
  m.together(cells);
  for (std::size_t i = 0; i < cells; ++i)
    fixedOr(m, g.gridCells[i], (i * 7 + 3) & 0xFFU, static_cast<std::uint8_t>(i < 10000 ? 1 : 0));
  numbersOr(m, 5.0F, g.cellSizeX, g.cellSizeY);
  fixedOr(m, g.gridWidth, 4321, 10);
  m.reset(g.gridIsNarrow, 1);
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
  // A fresh record holds two words.
  list(
      m, e.extensionWords, 3, [](auto& n, std::int32_t& word, std::size_t) { n.number(word); }, 2);
}

template <class M>
void storedUnits(M& m, int version, std::size_t units, MachineUnitTable& t) {
  numbers(m, t.unitFlag1, t.unitFlag2);
  numbers(m, t.unitValue1, t.unitValue2, t.unitValue3, t.unitValue4, t.unitValue5, t.unitValue6);
  numbersOr(m, 1, t.unitValue7);
  // The first unit has two entries, the others none.
  list(m, t.units, units, [&](auto& n, MachineUnit& u, std::size_t i) {
    numbers(n, u.unitKey1, u.unitKey2);
    list(n, u.unitEntries, i == 0 ? 2 : 0, [&](auto& o, MachineUnitEntry& e, std::size_t) {
      numbers(o, e.entryValue2);
      numbersOr(o, 1, e.entryValue3, e.entryValue8);
      numbers(o, e.entryValue4, e.entryValue5, e.entryValue6, e.entryValue7);
      since(o, version >= 141, [&](auto& p) { p.number(e.entryValue1); });
    });
  });
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

template <class M>
void storedHeader(M& m, const MachineForm& form, OldMachine& x) {
  m.section(1);
  if (form.writer) {
    m.stored(256);
    x.textWidth = form.width;
  } else {
    m.fixed(x.textWidth, form.width);
  }
  m.section(2);
  leadingText(m, x.machineText1, static_cast<std::size_t>(form.width), 'A');
  m.section(3);
  numbersOr(m, 1, x.machineKind);
  m.section(4);
  std::size_t used = 4;
  m.fixed(x.limitsPresent, form.limits ? 1 : 0);
  m.section(5);
  if (form.limits) {
    used += 16;
    if (M::kChecks && m.reached(73, 0)) {
      m.zeros(8);  // the finishing steps change them
    } else {
      fixedOr(m, x.limitA, 2.5, -0.1F);
      fixedOr(m, x.limitB, 9.0, -0.1F);
    }
    numbersOr(m, 0.05F, x.limitC);
    numbers(m, x.limitWord);
  } else {
    if constexpr (M::kLoads) x.limitB = -0.125F;
    if (m.reaches(0)) {
      m.reset(x.limitC, 0.048F);
      m.reset(x.limitWord, 0U);
    }
  }
  m.section(6);
  m.fixed(x.secondTextPresent, form.second ? 1 : 0);
  m.section(7);
  if (form.second) {
    used += 4 + static_cast<std::size_t>(form.secondWidth);
    if (form.writer) {
      m.stored(256);
      x.secondTextWidth = form.secondWidth;
    } else {
      m.fixed(x.secondTextWidth, form.secondWidth);
    }
    leadingText(m, x.secondText, static_cast<std::size_t>(form.secondWidth), 'K');
  }
  m.section(8);
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
    if constexpr (!M::kChecks) x.smallValue = small;
    m.section(9);
    m.fixed(x.shapesPresent, form.shapes ? 1 : 0);
  }
  m.section(10);
  m.raw(Bytes().fill(500 - used, form.writer ? 0 : 0xEE));
}

// Sections 23 to 34, which a negative gridMode leaves out.
template <class M>
void storedMiddle(M& m, int version, const MachineForm& form, OldMachine& x) {
  const bool skipped = form.gridMode < 0;
  since(m, !skipped, [&](auto& n) {
    n.section(23);
    since(n, form.gridMode == 2, [&](auto& o) { storedGrid(o, 100, x.gridB); });
    since(n, form.gridMode == 1 || form.gridMode == 2, [&](auto& o) { storedGrid(o, 37, x.gridA); });
    n.section(24);
    numbers(n, x.gridWord1);
    numbersOr(n, 1.5707964F, x.gridAngle);
    numbers(n, x.gridWord3);
    n.section(25);
    n.stored(form.segments);
    n.section(26);
    since(n, form.segments > 0, [&](auto& o) {
      o.block(x.segmentBox);
      if (!o.reaches(0)) return;
      elements(o, x.segments, static_cast<std::size_t>(form.segments),
               [](auto& p, GridSegment& s, std::size_t) { storedSegment(p, s); });
    });
    n.section(27);
    numbers(n, x.gridFlag1, x.gridFlag2);
  });
  if (!skipped) {
    m.section(28);
    if (m.reached(28, 16 + 4 + 4 * 2 + 4)) {
      if constexpr (M::kLoads) x.clampInfo = {};
      storedClamp(m, 2, 200, x.clampInfo);
      if constexpr (M::kChecks) {
        EXPECT_EQ(x.clampInfo.clampPositions[2], 16.5F) << "of a fresh table, not of the first copy";
      }
    } else {
      m.zeros(32);
    }
  }
  since(m, !skipped, [&](auto& n) {
    n.section(29);
    n.fixed(x.hasExtension, form.extension ? -5 : 0);
    n.section(30);
    since(n, form.extension, [&](auto& o) { storedExtension(o, x.extension); });
    n.section(31);
    numbers(n, x.machineWord91, x.machineWord92);
    n.section(32);
    n.fixed(x.programMode, form.programMode);
    n.section(33);
    since(n, form.programMode == 1, [&](auto& o) { storedProgram(o, version, 2, 1, x.programA); });
    since(n, form.programMode == 2, [&](auto& o) { storedProgramEx(o, version, 2, x.programB); });
    n.section(34);
    numbers(n, x.machineWord93, x.machineWord94, x.machineWord95, x.machineWord96);
    if (form.writer || version < 62)
      fixedOr(n, x.machineWord97, 88.25 + n.seed(), 40.0F);
    else
      n.raw(Bytes().f32(7.5F));
    numbers(n, x.machineWord98, x.machineWord99, x.machineWord100, x.machineWord101, x.machineWord102);
    numbers(n, x.machineWord103, x.machineWord104, x.machineWord105, x.machineWord106, x.machineWord107);
  });
}

template <class M>
void storedSince60(M& m, int version, const MachineForm& form, OldMachine& x) {
  m.section(37);
  since(m, version >= 60, [&](auto& n) {
    numbersOr(n, 0.0001F, x.machineWord1);
    numbers(n, x.machineWord2, x.machineWord3, x.machineWord4, x.machineWord5, x.machineWord6);
    numbers(n, x.machineWord7, x.machineWord8, x.machineWord9, x.machineWord10, x.machineWord11);
  });
  m.section(38);
  since(m, version >= 62, [&](auto& n) {
    numbers(n, x.machineWord12, x.machineWord13, x.machineWord14, x.machineWord15, x.machineWord16);
    numbers(n, x.machineWord17, x.machineWord18, x.machineWord19, x.machineWord20, x.machineWord21);
    numbers(n, x.machineWord22, x.machineWord23, x.machineWord24);
    numbersOr(n, 3, x.machineWord25);
  });
  m.section(39);
  if (version >= 62)
    fixedOr(m, x.machineWord97, 88.25 + m.seed(), form.gridMode >= 0 && m.reached(34, 20) ? 7.5F : 40.0F);
  m.section(40);
  since(m, version >= 62, [&](auto& n) {
    numbers(n, x.machineWord26, x.machineWord27, x.machineWord28, x.machineWord29, x.machineWord30);
    numbers(n, x.machineWord31, x.machineWord32, x.machineWord33, x.machineWord34, x.machineWord35);
    numbers(n, x.machineWord36, x.machineWord37, x.machineWord38, x.machineWord39, x.machineWord40);
    numbers(n, x.machineWord41, x.machineWord42, x.machineWord43);
    numbersOr(n, 1, x.machineWord44);
    numbersOr(n, -1, x.machineWord45, x.machineWord46, x.machineWord47, x.machineWord48);
    numbersOr(n, -1, x.machineWord49, x.machineWord50, x.machineWord51, x.machineWord52);
    numbers(n, x.machineWord53);
    n.section(41);
    leadingText(n, x.ncPath, 256, 'c');
    n.block(x.ncExtension, "nc");
    n.section(42);
    numbers(n, x.machineWord54, x.machineWord55, x.machineWord56, x.machineWord57);
    numbers(n, x.machineWord58, x.machineWord59, x.machineWord60, x.machineWord61);
  });
  m.section(43);
  since(m, version >= 71, [&](auto& n) {
    numbers(n, x.machineWord62, x.machineWord63);
    n.section(44);
    storedProgram(n, version, 2, 1, x.programC);
  });
}

template <class M>
void storedSince80(M& m, int version, const MachineForm& form, OldMachine& x, ShapeList& shapes) {
  m.section(45);
  since(m, version >= 80, [&](auto& n) {
    storedProgramEx(n, version, 2, x.programD);
    n.section(46);
    numbers(n, x.machineWord64);
  });
  for (auto* word : {&x.machineWord65, &x.machineWord66}) {
    if (version >= 80)
      numbersOr(m, -1, *word);
    else
      m.reset(*word, -1);
  }
  since(m, version >= 80, [&](auto& n) {
    numbers(n, x.machineWord67);
    numbersOr(n, 1000, x.machineWord68);
    numbers(n, x.machineWord69, x.machineWord70, x.machineWord71, x.machineWord72, x.machineWord73);
    n.section(47);
    numbers(n, x.machineWord74, x.machineWord75, x.machineWord76);
    numbersOr(n, 2.0F, x.machineWord77);
    numbers(n, x.machineWord78);
    n.section(48);
    n.block(x.wideValue1);
    n.block(x.wideValue2);
    n.section(49);
    numbers(n, x.machineWord79);
    n.section(50);
    storedMaterial(n, version, materialOfMachines(), x.material);
    n.section(51);
    numbers(n, x.machineWord80, x.machineWord81);
    numbersOr(n, 1.5F, x.machineWord82);
    n.section(52);
    if (form.shapes)
      for (Shape& one : shapes.shapes) n.number(one.trailerValue);
  });
  m.section(53);
  since(m, version >= 90, [&](auto& n) {
    numbers(n, x.machineWord83, x.machineWord84, x.machineWord85, x.machineWord86);
    numbers(n, x.machineWord87, x.machineWord88, x.machineWord89, x.machineWord90);
    n.section(54);
    numbers(n, x.lateByteA);
    n.section(55);
    numbers(n, x.lateWord8);
  });
  m.section(56);
  since(m, version >= 100, [&](auto& n) { each(n, x.flagTriple); });
  m.section(57);
  since(m, version >= 101, [&](auto& n) {
    numbers(n, x.triadWord1, x.triadWord2);
    const int triads = countIn(n, x.triadCount, 3 + static_cast<int>(n.seed()));
    n.section(58);
    for (int i = 0; i < triads; ++i) {
      n.together(7);
      each(n, x.triads[i]);
    }
  });
}

template <class M>
void storedSince110(M& m, int version, const MachineForm& form, OldMachine& x) {
  m.section(59);
  since(m, version >= 110, [&](auto& n) {
    numbers(n, x.unitWord);
    n.section(60);
    storedUnits(n, version, 2, x.unitTable);
    n.section(61);
    numbers(n, x.machineWord108, x.machineWord109, x.machineWord110, x.machineWord111);
    numbers(n, x.machineWord112, x.machineWord113, x.machineWord114, x.machineWord115);
    numbers(n, x.machineWord116, x.machineWord117, x.machineWord118, x.machineWord119);
    numbers(n, x.machineWord120, x.machineWord121, x.machineWord122, x.machineWord123);
    n.section(62);
    for (auto& column : x.numberColumns) {
      n.stored(3);
      each(n, column);
    }
    int section = 63;
    for (auto* column : {&x.textColumnA, &x.textColumnB}) {
      n.section(section);
      n.stored(3);
      for (std::size_t i = 0; i < 3; ++i)
        n.fixedText((*column)[i], "text " + std::to_string(section) + std::to_string(i), 256, section,
                    4 + 256 * (i + 1));
      ++section;
    }
  });
  m.section(65);
  since(m, version >= 111, [&](auto& n) {
    leadingText(n, x.displayName, 256, 'd');
    n.block(x.displayTail);
  });
  m.section(66);
  since(m, version >= 112, [&](auto& n) { numbers(n, x.lateWord1, x.lateWord2); });
  if (version >= 112) {
    numbersOr(m, 0.0001F, x.lateWord5);
    numbers(m, x.lateWord4);
    numbersOr(m, 1, x.lateWord3);
  } else {
    m.reset(x.lateWord5, 0.0001F);
    m.reset(x.lateWord4, 0U);
    m.reset(x.lateWord3, 1);
  }
  m.section(67);
  since(m, version >= 130, [&](auto& n) {
    leadingText(n, x.lateText1, 256, 'e');
    numbers(n, x.lateWord6);
    leadingText(n, x.lateText2, 256, 'f');
    leadingText(n, x.lateExtension, 11, 'g');
    numbers(n, x.lateWord7);
    n.section(68);
    n.raw(Bytes().fill(13 * 8 + 2 * 4, form.writer ? 0 : 0x5A));
    n.section(69);
    const std::int32_t length = form.writer ? 0 : form.lateLength;
    n.stored(length);
    n.raw(Bytes().fill(static_cast<std::size_t>(std::max(length, 0)), 0x5B));
  });
  m.section(70);
  since(m, version >= 141, [&](auto& n) { numbers(n, x.lateByteB); });
}

// What a load derives from the fields before the last ones.
inline void finishLoad(int version, OldMachine& x) {
  x.limitA = x.limitB = std::max({x.limitB, x.workArea.areaValues[0], x.workArea.areaValues[1]});
  x.setup2 = {x.sizeX, x.sizeY, x.clampInfo, x.clampValue1, x.clampValue2, x.machineWord91, x.machineWord92};
  if (version < 154) x.setup3 = x.setup2;
}

template <class M>
void storedEnd(M& m, int version, const MachineForm& form, OldMachine& x) {
  m.section(71);
  if (form.writer || version >= 151) {
    numbers(m, x.machineWord124, x.machineWord125, x.machineWord126, x.machineWord127, x.machineWord128);
    numbers(m, x.machineWord129, x.machineWord130, x.machineWord131, x.machineWord132);
  } else {
    m.reset(x.machineWord124, 0U);
    m.reset(x.machineWord125, 1.5F);
    m.reset(x.machineWord126, 0U);
    m.reset(x.machineWord127, 1.5F);
    m.reset(x.machineWord129, 1);
    m.reset(x.machineWord130, 1);
  }
  m.section(72);
  since(m, form.writer || version >= 152, [&](auto& n) { numbers(n, x.lateByteC); });
  m.section(73);
  if constexpr (M::kLoads) finishLoad(version, x);
  since(m, version >= 154, [&](auto& n) {
    const float fresh[5] = {0, 0.5F, 0.5F, 0.04F, 0};
    for (int i = 0; i < 5; ++i) numbersOr(n, fresh[i], x.setupWords[i]);
    n.section(74);
  });
  if (version >= 154) {
    MachineSetup& s = x.setup3;
    m.together(8);
    numbers(m, s.sizeX, s.sizeY);
    m.section(75);
    storedClamp(m, 5, 300, s.clampInfo);
    m.section(76);
    numbersOr(m, 3.189F, s.clampValue1);
    numbersOr(m, 0.3937F, s.clampValue2);
    numbers(m, s.machineWord91, s.machineWord92);
  }
  m.section(77);
  since(m, version >= 157, [&](auto& n) { leadingText(n, x.endText1, 256, 'h'); });
  m.section(78);
  since(m, version >= 170, [&](auto& n) {
    numbers(n, x.endWord);
    n.section(79);
    n.raw(Bytes().fill(800, form.writer ? 0 : 0x5C));
  });
  m.section(80);
  since(m, version >= 180, [&](auto& n) { leadingText(n, x.endText2, 256, 'i'); });
  m.section(81);
}

template <class M>
void storedMachine(M& m, int version, const MachineForm& form, OldMachine& x, ShapeList& shapes) {
  storedHeader(m, form, x);
  const auto width = static_cast<std::size_t>(form.writer ? 256 : form.second ? form.secondWidth : form.width);
  m.section(11);
  m.together(8);
  numbers(m, x.sizeX, x.sizeY);
  m.section(12);
  storedFrame(m, version, x.frame);
  m.section(13);
  if (form.writer || form.gridMode < 0) {
    storedClamp(m, 2, 200, x.clampInfo);
  } else {
    Maker first;
    ClampInfo dropped;
    storedClamp(first, 3, 100, dropped);
    m.raw(first.bytes);
  }
  m.section(14);
  numbersOr(m, 3.189F, x.clampValue1);
  numbersOr(m, 0.3937F, x.clampValue2);
  numbers(m, x.clampWord);
  m.section(15);
  leadingText(m, x.machineText2, width, 'a');
  m.section(16);
  leadingText(m, x.machineText3, width, 'b');
  m.section(17);
  storedArea(m, x.workArea);
  m.section(18);
  storedStations(m, version, {1, 107}, x.stationsA);
  m.section(19);
  if (version >= 61) {
    numbers(m, x.stationWord);
    storedStations(m, version, {2}, x.stationsB);
    storedStations(m, version, {108}, x.stationsC);
  } else {
    m.reset(x.stationWord, 0U);
  }
  if constexpr (M::kChecks) {
    if (version < 61) {
      EXPECT_TRUE(x.stationsB.stations.empty() && x.stationsC.stations.empty());
      EXPECT_EQ(x.stationsB.stationModeWord, ToolStationList().stationModeWord) << "untouched";
    }
  }
  m.section(20);
  m.fixed(x.blockMode, form.blockMode);
  m.section(21);
  if (form.blockMode == 2) m.block(x.blockB);
  if (form.blockMode == 1 || form.blockMode == 2) m.block(x.blockA);
  m.section(22);
  if (!form.writer && form.gridMode < 0) {
    m.raw(Bytes().i32(form.gridMode));
    m.reset(x.gridMode, 0);
  } else {
    m.fixed(x.gridMode, form.gridMode);
  }
  storedMiddle(m, version, form, x);
  m.section(35);
  m.fixed(x.stepListPresent, form.steps ? 7 : 0);
  m.section(36);
  if (form.steps) {
    storedStepTables(m, version, 2, 3, x.stepTables);
  }
  storedSince60(m, version, form, x);
  storedSince80(m, version, form, x, shapes);
  storedSince110(m, version, form, x);
  storedEnd(m, version, form, x);
}

}  // namespace testing_support
