// The stored forms once more, row by row and by hand: what the tests hold the library's own
// descriptions against. Nothing of the library's mechanism is used here.
//
// Each function names the fields of one record in stored order. With a Maker it fills the record with
// values of its own and puts the bytes together; with a Checker it holds a record that was read
// against the same values. Fields that a version does not store are named with absent().
#pragma once
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "OldTorvIO/records.h"
#include "tests/support/bytes.h"

namespace testing_support {

using namespace oldtorvio;

// Gives the n-th field a value of its own.
class Values {
 public:
  template <class T>
  T next() {
    ++n_;
    if constexpr (std::is_floating_point_v<T>)
      return static_cast<T>(n_) + static_cast<T>(0.5);
    else
      return static_cast<T>(0x01020304U * n_ + 0x51U);
  }
  std::uint8_t nextByte() { return static_cast<std::uint8_t>(++n_ * 37U + 11U); }

 private:
  unsigned n_ = 0;
};

class Maker {
 public:
  static constexpr bool kMakes = true;
  Bytes bytes;

  template <class T>
  void number(T& field) {
    field = values_.next<T>();
    append(field);
  }
  template <class T, class V>
  void fixed(T& field, V value) {
    field = static_cast<T>(value);
    append(field);
  }
  template <class T, std::size_t N>
  void block(T (&field)[N]) {
    for (T& one : field) {
      one = static_cast<T>(values_.nextByte());
      bytes.u8(static_cast<std::uint8_t>(one));
    }
  }
  // The next `size` bytes are one item: all its fields arrive, or none.
  void together(std::size_t) {}
  // A count or fill that stands in the file alone.
  void stored(std::int32_t value) { bytes.i32(value); }
  void zeros(std::size_t count) { bytes.zeros(count); }
  void text(std::string& field, const std::string& value) {
    field = value;
    bytes.lengthText(value);
  }
  template <class T>
  void absent(const T&, const T&) {}
  template <class List>
  void size(List& list, std::size_t count) {
    list.resize(count);
    bytes.i32(static_cast<std::int64_t>(count));
  }

 private:
  template <class T>
  void append(T value) {
    if constexpr (std::is_same_v<T, float>)
      bytes.f32(value);
    else if constexpr (std::is_same_v<T, double>)
      bytes.f64(value);
    else if constexpr (sizeof(T) == 1)
      bytes.u8(static_cast<std::uint8_t>(value));
    else if constexpr (sizeof(T) == 2)
      bytes.u16(static_cast<std::uint16_t>(value));
    else
      bytes.u32(static_cast<std::uint32_t>(value));
  }
  Values values_;
};

// Expects fields that lie wholly in front of `cut` to hold the stored values, the others those of a
// record at its defaults.
class Checker {
 public:
  static constexpr bool kMakes = false;
  explicit Checker(std::size_t cut = std::numeric_limits<std::size_t>::max()) : cut_(cut) {}

  template <class T>
  void number(T& field, T fresh = T()) {
    expect(field, values_.next<T>(), fresh, sizeof(T));
  }
  template <class T, class V>
  void fixed(T& field, V value, T fresh = T()) {
    expect(field, static_cast<T>(value), fresh, sizeof(T));
  }
  template <class T, std::size_t N>
  void block(T (&field)[N]) {
    const bool there = at_ + N <= cut_;
    for (std::size_t i = 0; i < N; ++i) {
      const auto value = static_cast<T>(values_.nextByte());
      if (there) {
        EXPECT_EQ(field[i], value) << "byte " << i << " of a block at " << at_;
      }
    }
    at_ += N;
  }
  void together(std::size_t size) { itemEnd_ = at_ + size; }
  void stored(std::int32_t) { at_ += 4; }
  void zeros(std::size_t count) { at_ += count; }
  void text(std::string& field, const std::string& value) {
    at_ += 4 + value.size();
    EXPECT_EQ(field, at_ <= cut_ ? value : std::string());
  }
  template <class T>
  void absent(const T& field, const T& value) {
    EXPECT_EQ(field, value) << "absent behind " << at_;
  }
  template <class List>
  void size(List& list, std::size_t count) {
    at_ += 4;
    if (cut_ == std::numeric_limits<std::size_t>::max()) {
      EXPECT_EQ(list.size(), count) << "list at " << at_;
    }
    list.resize(count);
  }

 private:
  template <class T>
  void expect(const T& field, T value, T fresh, std::size_t width) {
    const T wanted = std::max(at_ + width, at_ < itemEnd_ ? itemEnd_ : 0) <= cut_ ? value : fresh;
    EXPECT_EQ(field, wanted) << "field at " << at_;
    at_ += width;
  }
  std::size_t cut_;
  std::size_t at_ = 0;
  std::size_t itemEnd_ = 0;
  Values values_;
};

template <class M, class T, std::size_t N>
void each(M& m, T (&row)[N]) {
  for (T& one : row) m.number(one);
}

// A default other than zero, for a field that a cut may leave at it.
template <class M, class T>
void numberOr(M& m, T& field, T fresh) {
  if constexpr (M::kMakes)
    m.number(field);
  else
    m.number(field, fresh);
}
template <class M, class T, class V>
void fixedOr(M& m, T& field, V value, T fresh) {
  if constexpr (M::kMakes)
    m.fixed(field, value);
  else
    m.fixed(field, value, fresh);
}

// ---- tools ---------------------------------------------------------------------------------------

template <class M>
void storedTool(M& m, int version, bool pathIsStored, std::int32_t shapeCode, OldTool& t) {
  m.number(t.orientation);
  m.fixed(t.shapeCode, shapeCode);
  if (shapeCode == 108 && version >= 90) m.block(t.specialBlock);
  m.number(t.specialToolIndex);
  if (pathIsStored && shapeCode == 108) m.block(t.specialToolPath);
  m.number(t.auxWord1);
  if (shapeCode == 107) {
    m.number(t.dimension2);
    m.number(t.dimension1);
  } else {
    m.number(t.dimension1);
    m.number(t.dimension2);
  }
  m.number(t.dimension3);
  for (auto [count, row] :
       {std::pair{&t.firstValueCount, &t.firstValues}, std::pair{&t.secondValueCount, &t.secondValues}}) {
    m.number(*count);
    for (int i : {0, 1, 2}) m.number((*row)[i]);
    if (version >= 110) {
      m.number((*row)[3]);
      m.number((*row)[4]);
    } else {
      m.absent((*row)[3], 0.0F);
      m.absent((*row)[4], 0.0F);
    }
    m.number((*row)[5]);
  }
  m.number(t.auxWord2);
  m.number(t.auxWord3);
  if (version >= 60) each(m, t.extraValues);
  if (version >= 110) each(m, t.lateWords);
  if (version >= 111) {
    m.block(t.tailBlock);
    m.block(t.tailText);
  }
}

template <class M>
void storedStation(M& m, int version, ToolStation& s) {
  m.number(s.stationNumber);
  m.number(s.orientation);
  m.number(s.stationType);
  m.number(s.toolCount);
  m.number(s.stationValue);
  each(m, s.limits);
  m.number(s.valueCount);
  each(m, s.values);
  each(m, s.offsets);
  m.number(s.byteA);
  m.number(s.byteB);
  m.number(s.byteD);
  m.number(s.realC);
  if (version >= 60) {
    m.number(s.placeValue);
    m.number(s.placeWord);
  }
  if (version >= 61) {
    each(m, s.wordsC);
    each(m, s.realsE);
  }
  if (version >= 90) {
    m.number(s.wordA);
    m.number(s.realA);
    numberOr(m, s.realB, -1.0F);
    m.number(s.wordB);
    m.number(s.realD);
    m.number(s.byteF);
    m.number(s.byteG);
    m.number(s.byteH);
    m.block(s.stationText);
    m.number(s.byteC);
    m.number(s.byteE);
  } else {
    m.absent(s.realB, -1.0F);
  }
  if (version >= 100) {
    m.number(s.wordD);
    m.stored(2);
    each(m, s.pairValues);
    m.number(s.wordE);
    m.number(s.wordF);
    m.number(s.realF);
  }
  if (version >= 110) m.number(s.wordG);
  if (version >= 112) m.number(s.wordH);
  if (version >= 130) {
    m.number(s.wordI);
    m.number(s.wordJ);
  }
}

// Stations with tools of the shape codes given.
template <class M>
void storedStations(M& m, int version, const std::vector<std::int32_t>& codes, ToolStationList& l) {
  m.number(l.headerWord);
  if (version >= 61)
    m.number(l.secondHeaderWord);
  else
    m.absent(l.secondHeaderWord, 0U);
  if (version >= 90)
    m.number(l.stationModeWord);
  else
    m.absent(l.stationModeWord, 2U);
  m.absent(l.stationModeCode, (l.stationModeWord >> 8U) & 0xFU);
  if (version >= 100) {
    m.stored(2);
    each(m, l.extraWords);
  }
  m.size(l.stations, codes.size());
  l.tools.resize(codes.size());
  for (std::size_t i = 0; i < codes.size(); ++i) {
    storedStation(m, version, l.stations[i]);
    storedTool(m, version, true, codes[i], l.tools[i]);
  }
}

// ---- shapes --------------------------------------------------------------------------------------

struct ShapeForm {
  int type = 3;
  int valueCount = 9;
  int extraCount = 2;
  bool text = false;
  std::string note;
};

template <class M>
void storedShape(M& m, int version, const ShapeForm& form, Shape& s) {
  m.fixed(s.type, form.type);
  m.number(s.auxWord);
  m.number(s.flags);
  m.together(8);
  m.number(s.x);
  m.number(s.y);
  fixedOr(m, s.valueCount, form.valueCount, 9);
  for (int i = 0; i < form.valueCount; ++i) m.number(s.values[i]);
  numberOr(m, s.linkIndex, -1);
  m.number(s.auxValue1);
  fixedOr(m, s.extraCount, form.extraCount, 2);
  for (int i = 0; i < form.extraCount; ++i) m.number(s.extraValues[i]);
  m.fixed(s.textFlag, form.text ? 4 : 0);
  if (form.text) m.block(s.text);
  m.number(s.auxValue2);
  m.number(s.auxValue3);
  m.number(s.auxValue4);
  if (version >= 112 && version <= 120)
    m.number(s.rangeValue);
  else
    m.absent(s.rangeValue, 0U);
  if (version >= 151) {
    m.number(s.lateByte1);
    m.number(s.lateByte2);
    m.number(s.lateByte3);
    m.number(s.lateWord1);
  }
  if (version >= 153) m.number(s.lateByte4);
  if (version >= 158) m.number(s.lateWord2);
  if (version >= 160) m.text(s.note, form.note);
  if (version >= 161) each(m, s.tailPair);
}

inline const std::vector<ShapeForm>& someShapes() {
  static const std::vector<ShapeForm> forms{{3, 9, 2, false, ""}, {0, 0, 0, true, "a note"}, {-7, 4, 1, false, "x"}};
  return forms;
}

template <class M>
void storedShapes(M& m, int version, const std::vector<ShapeForm>& forms, std::vector<Shape>& shapes) {
  m.size(shapes, forms.size());
  for (std::size_t i = 0; i < forms.size(); ++i) storedShape(m, version, forms[i], shapes[i]);
}

template <class M>
void storedShapeList(M& m, int version, const std::vector<ShapeForm>& forms, ShapeList& l) {
  numberOr(m, l.listTag, -1);
  numberOr(m, l.listKind, 1);
  storedShapes(m, version, forms, l.shapes);
}

// ---- small records -------------------------------------------------------------------------------

template <class M>
void storedSlot(M& m, int version, ProcessSlot& s) {
  m.number(s.slotWord1);
  m.number(s.slotWord2);
  m.block(s.slotBlock);
  m.number(s.slotWord3);
  m.number(s.slotWord4);
  const auto quarter = std::bit_cast<float>(0x3F490FDBU);
  if (version >= 80) {
    numberOr(m, s.firstLength, 0.25F);
    numberOr(m, s.firstAngle, quarter);
    numberOr(m, s.secondLength, 0.25F);
    numberOr(m, s.secondAngle, quarter);
    numberOr(m, s.slotKind, 3);
  } else {
    m.absent(s.firstLength, 0.25F);
    m.absent(s.firstAngle, quarter);
    m.absent(s.secondLength, 0.25F);
    m.absent(s.secondAngle, quarter);
    m.absent(s.slotKind, 3);
  }
  if (version >= 90) {
    m.number(s.toolUse);
    m.number(s.toolActive);
    m.number(s.slotByte);
    m.number(s.toolChoice);
    m.number(s.firstToolNumber);
    m.number(s.secondToolNumber);
  }
}

template <class M>
void storedSteps(M& m, int version, int steps, StepTable& t) {
  m.number(t.tableWord1);
  m.block(t.tableBlock);
  m.number(t.tableWord2);
  m.number(t.tableWord3);
  m.fixed(t.stepCount, steps);
  for (int i = 0; i < steps; ++i) {
    const auto at = static_cast<std::size_t>(i);
    numberOr(m, t.stepByteA[at], std::uint8_t{255});
    m.number(t.stepWord[at]);
    numberOr(m, t.stepByteB[at], std::uint8_t{1});
    m.number(t.stepByteC[at]);
  }
  if (version >= 80)
    m.number(t.tableFlag);
  else
    m.absent(t.tableFlag, std::uint8_t{0});
  if (version >= 90) m.number(t.lateFlag);
}

template <class M>
void storedSetupEntry(M& m, SetupEntry& e) {
  m.number(e.setupShort1);
  m.number(e.setupShort2);
  m.number(e.setupByte1);
  m.number(e.setupShort3);
  m.number(e.setupByte2);
  m.number(e.setupShort4);
  m.number(e.setupByte3);
  m.block(e.setupBlock);
  m.number(e.setupWord1);
  m.number(e.setupByte4);
  m.number(e.setupWord2);
  m.number(e.setupShort5);
  m.number(e.setupWord3);
  numberOr(m, e.setupReal1, -1.0F);
  numberOr(m, e.setupReal2, -1.0F);
}

template <class M>
void storedSetupList(M& m, std::size_t entries, SetupList& l) {
  m.size(l.entries, entries);
  if (entries == 0) return;
  for (SetupEntry& e : l.entries) storedSetupEntry(m, e);
  storedSetupEntry(m, l.current);
  m.block(l.tailBlock);
  m.number(l.tailWord1);
  m.number(l.tailWord2);
}

template <class M>
void storedMotion(M& m, int version, std::int32_t kind, MotionBlock& b) {
  numberOr(m, b.motionKind, kind);
  m.number(b.motionWord);
  numberOr(m, b.motionValue, 50.0F);
  numberOr(m, b.motionLength1, 0.125F);
  numberOr(m, b.motionAngle1, std::bit_cast<float>(0x3FC90FDBU));
  numberOr(m, b.motionAngle2, std::bit_cast<float>(0x3F490FDBU));
  numberOr(m, b.motionLength2, 0.125F);
  if (version >= 151) {
    m.number(b.lateWord1);
    m.number(b.lateWord2);
  }
  if (version >= 152) {
    m.number(b.lateWord3);
    m.number(b.lateWord4);
    m.number(b.lateWord5);
  }
  storedSteps(m, version, 2, b.steps);
}

template <class M>
void storedProfile(M& m, int version, ProfileRecord& p) {
  m.block(p.profileHead);
  numberOr(m, p.profileIndex, -1);
  m.number(p.profileWord1);
  m.number(p.profileWord2);
  m.number(p.profileCondition1);
  m.block(p.profileBlock);
  m.number(p.profileCondition2);
  m.number(p.profileWord4);
  if (version >= 54) m.number(p.profileWord3);
  if (version >= 80) {
    each(m, p.profileWords);
    storedMotion(m, version, 5, p.firstBlock);
    storedMotion(m, version, 3, p.secondBlock);
    m.number(p.tailWord1);
    m.number(p.profileWord5);
    numberOr(m, p.profileLink, -1);
    m.number(p.tailWord2);
  } else {
    m.absent(p.firstBlock.motionKind, 5);
    m.absent(p.secondBlock.motionKind, 3);
    m.absent(p.secondBlock.motionValue, 50.0F);
    m.absent(p.profileLink, -1);
  }
  if (version >= 150) m.number(p.tailWord3);
  if (version >= 151) {
    m.number(p.tailByte1);
    m.number(p.tailByte2);
    m.number(p.tailByte3);
    m.number(p.tailWord4);
    m.number(p.tailByte4);
  }
  if (version >= 152) m.number(p.tailByte5);
  if (version >= 161) m.number(p.tailWord5);
}

template <class M>
void storedItem(M& m, int version, PatternItem& i) {
  m.number(i.itemWord1);
  m.number(i.toolNumber);
  if (version >= 62) {
    m.number(i.itemWord2);
    for (auto* pair : {&i.itemPair1, &i.itemPair2}) {
      m.together(8);
      each(m, *pair);
    }
    m.number(i.itemShort1);
    m.number(i.itemShort2);
    m.number(i.itemWord3);
    m.number(i.itemWord4);
  }
  if (version >= 90) m.number(i.lateWord);
}

template <class M>
void storedWork(M& m, int version, WorkEntry& w) {
  m.number(w.workWord1);
  m.number(w.workByte);
  m.number(w.workWord2);
  if (version >= 60) {
    m.number(w.workWord3);
    m.number(w.workWord4);
    m.number(w.workWord5);
    m.number(w.workWord6);
  }
  if (version >= 61) m.number(w.workWord7);
  if (version >= 80) m.number(w.workWord8);
  if (version >= 130) {
    m.number(w.workWord9);
    m.block(w.workBlock);
  }
  m.number(w.workValue5);
  m.number(w.workValue1);
  m.number(w.workValue2);
  m.number(w.workValue3);
  m.number(w.workValue4);
}

template <class M>
void storedMark(M& m, MarkEntry& k) {
  m.number(k.markWord1);
  m.number(k.markShort);
  m.number(k.markWord2);
  m.number(k.markWord3);
}

// ---- patterns ------------------------------------------------------------------------------------

struct PatternForm {
  std::int32_t groupKind = 0;
  bool embedded = true;
  std::size_t items = 2;
  std::size_t bindings = 2;
};

// At versions 151 to 155 a load sets the third bind column from lateWord3.
template <class M>
void storedPattern(M& m, int version, const PatternForm& form, Pattern& p) {
  if (form.embedded) {
    m.number(p.headWord);
    numberOr(m, p.gridCount1, 1U);
    numberOr(m, p.gridCount2, 1U);
    m.number(p.gridStep1);
    m.number(p.gridStep2);
  } else {
    // The head of a part file's pattern is dropped when it is read.
    Pattern dropped;
    if constexpr (!M::kMakes) {
      EXPECT_EQ(p.headWord, 0);
      EXPECT_TRUE(p.gridCount1 == 1 && p.gridCount2 == 1 && p.gridStep1 == 0 && p.gridStep2 == 0);
    }
    m.fixed(dropped.headWord, 0);
    m.fixed(dropped.gridCount1, 1);
    m.fixed(dropped.gridCount2, 1);
    m.fixed(dropped.gridStep1, 0);
    m.fixed(dropped.gridStep2, 0);
  }
  m.together(16);
  m.number(p.originX);
  m.number(p.originY);
  numberOr(m, p.rotationCos, 1.0F);
  m.number(p.rotationSin);
  m.number(p.patternWord);
  m.fixed(p.groupKind, form.groupKind);
  if (form.groupKind != 0) {
    m.block(p.groupBlock);
    each(m, p.groupWords);
    if (version >= 110) {
      m.number(p.bindWord1);
      m.number(p.bindWord2);
      m.number(p.bindWord3);
      m.number(p.bindByte);
      m.number(p.bindWord4);
      for (std::uint16_t& one : p.bindShorts) numberOr(m, one, std::uint16_t{0xFFFF});
      m.size(p.bindFirst, form.bindings);
      p.bindSecond.resize(form.bindings);
      p.bindThird.resize(form.bindings);
      p.bindFourth.resize(form.bindings);
      p.bindFifth.resize(form.bindings);
      for (std::size_t i = 0; i < form.bindings; ++i) {
        m.number(p.bindFirst[i].first);
        m.number(p.bindFirst[i].second);
        m.number(p.bindSecond[i].first);
        m.number(p.bindSecond[i].second);
        if (version >= 156) m.number(p.bindThird[i]);
        if (version >= 160) {
          m.number(p.bindFourth[i]);
          m.number(p.bindFifth[i]);
        }
      }
    }
    if (version >= 151) {
      m.number(p.lateWord1);
      m.number(p.lateWord2);
      m.number(p.lateWord3);
      if (version <= 155)
        for (std::uint32_t third : p.bindThird) m.absent(third, p.lateWord3);
    }
  }
  m.size(p.items, form.items);
  for (PatternItem& i : p.items) storedItem(m, version, i);
  if (version >= 80) {
    m.size(p.profiles, 1);
    storedProfile(m, version, p.profiles[0]);
    m.size(p.stepTables, 1);
    storedSteps(m, version, 1, p.stepTables[0]);
  }
}

// ---- part bodies ---------------------------------------------------------------------------------

struct PartForm2 {
  bool embedded = false;
  bool options = true;
  std::int32_t groupKind = 0;
};

template <class M>
void storedExtensions(M& m, int version, TorvPart& p) {
  if (version >= 151) {
    m.size(p.nestShapeGroups, 2);
    for (ShapeGroup& g : p.nestShapeGroups) {
      m.number(g.groupWord);
      if (version >= 152)
        m.number(g.groupByte);
      else
        m.absent(g.groupByte, std::uint8_t{0});
      storedShapeList(m, version, someShapes(), g.shapes);
    }
  }
  if (version >= 152) each(m, p.lateWords);
  if (version >= 154) {
    m.size(p.contourGroups, 2);
    for (ContourGroup& g : p.contourGroups) {
      m.number(g.contourWord1);
      m.number(g.contourWord2);
      m.number(g.contourWord3);
      storedShapes(m, version, someShapes(), g.shapes);
      if (version >= 155) m.number(g.contourByte);
    }
  }
  if (version >= 161) {
    m.size(p.bindingSets, 2);
    for (BindingSet& s : p.bindingSets) {
      m.number(s.setWord);
      m.size(s.numbers, 3);
      for (std::uint32_t& one : s.numbers) m.number(one);
      m.size(s.entries, 2);
      for (BindingEntry& e : s.entries) {
        m.number(e.entryWord2);
        m.number(e.entryWord1);
        storedShape(m, version, ShapeForm{}, e.shape);
      }
    }
  }
}

template <class M>
void storedPart(M& m, int version, const PartForm2& form, TorvPart& p) {
  m.number(p.width);
  m.number(p.height);
  m.block(p.productName);
  m.block(p.assemblyName);
  m.block(p.materialName);
  m.number(p.partKind);
  m.number(p.partWord1);
  m.number(p.thickness);
  m.number(p.partWord2);
  storedShapeList(m, version, someShapes(), p.shapes);
  storedSetupList(m, 2, p.setupList);
  m.block(p.noteText);
  if (version >= 80) {
    m.number(p.headFlag);
    m.fixed(p.hasOptions, form.options ? 1 : 0);
    m.zeros(499);
  } else {
    m.absent(p.headFlag, std::uint8_t{0});
  }
  const PatternForm pattern{form.groupKind, form.embedded, p.shapes.shapes.size(), 2};
  if (form.embedded) {
    m.size(p.patterns, 2);
    for (Pattern& one : p.patterns) storedPattern(m, version, pattern, one);
  } else {
    storedStations(m, version, {1, 108, 107}, p.toolStations);
    p.patterns.resize(1);
    storedPattern(m, version, pattern, p.patterns[0]);
  }
  m.fixed(p.processSlotCount, 2);
  storedSlot(m, version, p.processSlots[0]);
  storedSlot(m, version, p.processSlots[1]);
  m.size(p.marks, 2);
  for (MarkEntry& one : p.marks) storedMark(m, one);
  m.size(p.profiles, 1);
  storedProfile(m, version, p.profiles[0]);
  m.size(p.stepTables, 1);
  storedSteps(m, version, 3, p.stepTables[0]);
  m.number(p.tailWord1);
  m.number(p.tailWord2);
  if (version >= 62) {
    m.block(p.descriptionA);
    m.block(p.descriptionB);
    m.block(p.revision);
    m.block(p.materialType);
    m.block(p.descriptionC);
    m.number(p.lateIndex);
  } else {
    m.absent(p.descriptionA[0], '\0');
    m.absent(p.revision[0], '\0');
    m.absent(p.lateIndex, -1);
  }
  if (version >= 71) {
    m.number(p.workKind);
    m.size(p.workList, 2);
    for (WorkEntry& one : p.workList) storedWork(m, version, one);
  } else {
    m.absent(p.workKind, 2);
  }
  if (version >= 80) {
    for (Shape& one : p.shapes.shapes) m.number(one.trailerValue);
    if (form.options) {
      m.number(p.optionWord);
      m.number(p.optionReal);
      m.number(p.optionCount);
      m.number(p.optionValue);
      m.block(p.optionText);
    }
  }
  if (version >= 102) {
    m.block(p.placedShapes.placedBlock);
    storedShapes(m, version, {ShapeForm{}, ShapeForm{2, 9, 2, true, "placed"}}, p.placedShapes.shapes.shapes);
  }
  if (version >= 110) {
    m.block(p.customTextA);
    m.block(p.customTextB);
    m.number(p.customWord1);
    m.number(p.customWord2);
    m.block(p.customText1);
    m.block(p.customText2);
    m.block(p.customText3);
    m.number(p.customWord3);
    m.number(p.customWord4);
  }
  if (version >= 111) {
    m.block(p.customTextD);
    m.block(p.customTextC);
  }
  if (version >= 112) m.block(p.customTextE);
  if (version >= 140) {
    m.block(p.lateBlock1);
    m.block(p.lateBlock2);
  }
  storedExtensions(m, version, p);
  if (version >= 162 && form.embedded) m.block(p.woNumber);
  if (version >= 180) {
    m.block(p.finalTextA);
    m.block(p.finalTextB);
    m.block(p.finalTextC);
    m.block(p.finalTextD);
    m.number(p.finalWord1);
    m.number(p.finalWord2);
  }
}

// ---- special tool files --------------------------------------------------------------------------

template <class M>
void storedSpecialTool(M& m, int version, std::int32_t shapeCode, OldSpecialTool& s) {
  storedTool(m, version, false, shapeCode, s.tool);
  m.zeros(60);
  m.number(s.specialValue);
  storedShapeList(m, version, someShapes(), s.shapes);
  storedSetupList(m, 2, s.setupList);
}

// Every version, and those that part files have.
inline std::vector<int> allVersions() {
  std::vector<int> all;
  for (int v = 52; v <= 180; ++v) all.push_back(v);
  return all;
}
inline const std::vector<int>& partVersions() {
  static const std::vector<int> all{52,  54,  60,  61,  62,  71,  80,  90,  91,  92,  100, 101,
                                    102, 110, 111, 112, 120, 121, 130, 140, 141, 150, 151, 152,
                                    153, 154, 155, 156, 157, 158, 159, 160, 161, 162, 170, 180};
  return all;
}

}  // namespace testing_support
