// Records with random content that every writer can store.
#pragma once
#include <cstring>
#include <random>
#include <string>

#include "OldTorvIO/records.h"

namespace testing_support {

class RandomRecords {
 public:
  explicit RandomRecords(std::uint32_t seed, int mostElements = 3) : engine_(seed), most_(mostElements) {}

  // Any bits, so that floats include numbers that are none.
  template <class... T>
  void bits(T&... fields) {
    (fillBits(&fields, sizeof fields), ...);
  }
  int upTo(int most) { return static_cast<int>(engine_() % static_cast<unsigned>(most + 1)); }
  bool flip() { return upTo(1) == 1; }

  oldtorvio::Shape shape() {
    oldtorvio::Shape s;
    bits(s.auxWord, s.flags, s.x, s.y, s.linkIndex, s.auxValue1, s.auxValue2, s.auxValue3, s.auxValue4, s.trailerValue,
         s.rangeValue, s.lateByte1, s.lateByte2, s.lateByte3, s.lateWord1, s.lateByte4, s.lateWord2, s.tailPair);
    s.type = static_cast<std::int8_t>(upTo(25));
    s.valueCount = upTo(9);
    s.extraCount = upTo(2);
    for (int i = 0; i < s.valueCount; ++i) bits(s.values[i]);
    for (int i = 0; i < s.extraCount; ++i) bits(s.extraValues[i]);
    s.textFlag = flip() ? 1 + upTo(5) : -upTo(5);
    if (s.textFlag > 0) bits(s.text);
    for (int n = upTo(12); n > 0; --n) s.note += static_cast<char>('!' + upTo(90));
    return s;
  }
  oldtorvio::ShapeList shapeList() {
    oldtorvio::ShapeList l;
    bits(l.listKind, l.listTag);
    some(l.shapes, [&] { return shape(); });
    return l;
  }
  oldtorvio::OldTool tool() {
    oldtorvio::OldTool t;
    static constexpr int kCodes[] = {0, 1, 3, 103, 107, 108, 999, -1};
    t.shapeCode = kCodes[upTo(7)];
    bits(t.orientation, t.specialToolIndex, t.auxWord1, t.dimension1, t.dimension2, t.dimension3, t.firstValueCount,
         t.firstValues, t.secondValueCount, t.secondValues, t.auxWord2, t.auxWord3, t.extraValues, t.lateWords,
         t.tailBlock, t.tailText);
    if (t.shapeCode == 108) bits(t.specialBlock, t.specialToolPath);
    return t;
  }
  oldtorvio::ToolStation station() {
    oldtorvio::ToolStation s;
    bits(s.placeValue, s.placeWord, s.stationNumber, s.orientation, s.toolCount, s.stationValue, s.limits, s.values,
         s.offsets, s.byteA, s.byteB, s.byteC, s.wordA, s.realA, s.realB, s.byteD, s.byteE, s.realC, s.wordB, s.realD,
         s.wordsC, s.realsE, s.byteF, s.byteG, s.byteH, s.stationText, s.wordD, s.pairValues, s.wordE, s.wordF, s.realF,
         s.wordG, s.wordH, s.wordI, s.wordJ);
    s.stationType = flip() ? 0 : 2;
    s.valueCount = 1 + upTo(5);
    return s;
  }
  oldtorvio::ToolStationList stationList() {
    oldtorvio::ToolStationList l;
    bits(l.headerWord, l.secondHeaderWord, l.stationModeWord, l.extraWords);
    for (int n = upTo(most_); n > 0; --n) {
      l.stations.push_back(station());
      l.tools.push_back(tool());
    }
    return l;
  }
  oldtorvio::ProcessSlot slot() {
    oldtorvio::ProcessSlot s;
    bits(s.slotWord1, s.slotWord2, s.slotBlock, s.slotWord3, s.slotWord4, s.firstLength, s.firstAngle, s.secondLength,
         s.secondAngle, s.toolUse, s.toolActive, s.slotByte, s.toolChoice, s.firstToolNumber, s.secondToolNumber,
         s.slotKind);
    return s;
  }
  oldtorvio::StepTable stepTable() {
    oldtorvio::StepTable t;
    bits(t.tableFlag, t.tableWord1, t.tableBlock, t.tableWord2, t.tableWord3, t.lateFlag);
    t.stepCount = static_cast<std::int8_t>(flip() ? upTo(20) : -upTo(100));
    for (int i = 0; i < t.stepCount; ++i) {
      const auto at = static_cast<std::size_t>(i);
      bits(t.stepByteA[at], t.stepWord[at], t.stepByteB[at], t.stepByteC[at]);
    }
    return t;
  }
  oldtorvio::SetupEntry setupEntry() {
    oldtorvio::SetupEntry e;
    bits(e.setupShort1, e.setupShort2, e.setupByte1, e.setupShort3, e.setupByte2, e.setupShort4, e.setupByte3,
         e.setupBlock, e.setupWord1, e.setupByte4, e.setupWord2, e.setupShort5, e.setupWord3, e.setupReal1,
         e.setupReal2);
    return e;
  }
  oldtorvio::SetupList setupList() {
    oldtorvio::SetupList l;
    some(l.entries, [&] { return setupEntry(); });
    if (l.entries.empty()) return l;
    l.current = setupEntry();
    bits(l.tailBlock, l.tailWord1, l.tailWord2);
    return l;
  }
  oldtorvio::MotionBlock motionBlock() {
    oldtorvio::MotionBlock m;
    bits(m.motionKind, m.motionWord, m.motionValue, m.motionLength1, m.motionAngle1, m.motionAngle2, m.motionLength2,
         m.lateWord1, m.lateWord2, m.lateWord3, m.lateWord4, m.lateWord5);
    m.steps = stepTable();
    return m;
  }
  oldtorvio::ProfileRecord profile() {
    oldtorvio::ProfileRecord p;
    bits(p.profileHead, p.profileIndex, p.profileWord1, p.profileWord2, p.profileWord3, p.profileCondition1,
         p.profileBlock, p.profileCondition2, p.profileWord4, p.profileWord5, p.profileLink, p.profileWords,
         p.tailWord1, p.tailWord2, p.tailWord3, p.tailByte1, p.tailByte2, p.tailByte3, p.tailWord4, p.tailByte4,
         p.tailByte5, p.tailWord5);
    p.firstBlock = motionBlock();
    p.secondBlock = motionBlock();
    return p;
  }
  oldtorvio::PatternItem item() {
    oldtorvio::PatternItem i;
    bits(i.itemWord1, i.toolNumber, i.itemWord2, i.itemPair1, i.itemPair2, i.itemShort1, i.itemShort2, i.itemWord3,
         i.itemWord4, i.lateWord);
    return i;
  }
  oldtorvio::WorkEntry work() {
    oldtorvio::WorkEntry w;
    bits(w.workWord1, w.workByte, w.workValue1, w.workValue2, w.workValue3, w.workValue4, w.workValue5, w.workWord2,
         w.workWord3, w.workWord4, w.workWord5, w.workWord6, w.workWord7, w.workWord8, w.workWord9, w.workBlock);
    return w;
  }
  oldtorvio::MarkEntry mark() {
    oldtorvio::MarkEntry m;
    bits(m.markWord1, m.markShort, m.markWord2, m.markWord3);
    return m;
  }
  // A pattern as a part file keeps it: head at its reset values, one item for each shape.
  oldtorvio::Pattern pattern(std::size_t items, int version) {
    oldtorvio::Pattern p;
    bits(p.originX, p.originY, p.rotationCos, p.rotationSin, p.patternWord);
    for (std::size_t i = 0; i < items; ++i) p.items.push_back(item());
    if (flip()) {
      p.groupKind = 32000 + upTo(version < 110 ? 4 : 6);
      bits(p.groupBlock, p.groupWords, p.bindWord1, p.bindWord2, p.bindWord3, p.bindByte, p.bindWord4, p.bindShorts,
           p.lateWord1, p.lateWord2, p.lateWord3);
      for (int n = upTo(most_); n > 0; --n) {
        std::uint32_t v[7];
        bits(v);
        p.bindFirst.emplace_back(v[0], v[1]);
        p.bindSecond.emplace_back(v[2], v[3]);
        p.bindThird.push_back(v[4]);
        p.bindFourth.push_back(v[5]);
        p.bindFifth.push_back(v[6]);
      }
    }
    some(p.profiles, [&] { return profile(); });
    some(p.stepTables, [&] { return stepTable(); });
    return p;
  }
  void part(oldtorvio::TorvPart& p, int version) {
    bits(p.partName, p.width, p.height, p.productName, p.assemblyName, p.materialName, p.partKind, p.partWord1,
         p.thickness, p.partWord2, p.descriptionA, p.descriptionB, p.revision, p.materialType, p.descriptionC,
         p.lateIndex, p.workKind, p.headFlag, p.optionWord, p.optionReal, p.optionCount, p.optionValue, p.optionText,
         p.noteText, p.tailWord1, p.tailWord2, p.customTextA, p.customTextB, p.customWord1, p.customWord2,
         p.customText1, p.customText2, p.customText3, p.customWord3, p.customWord4, p.customTextC, p.customTextD,
         p.customTextE, p.lateBlock1, p.lateBlock2, p.lateWords, p.woNumber, p.finalTextA, p.finalTextB, p.finalTextC,
         p.finalTextD, p.finalWord1, p.finalWord2);
    p.hasOptions = flip() ? 1 : 0;
    p.shapes = shapeList();
    p.setupList = setupList();
    p.toolStations = stationList();
    p.patterns.clear();
    p.patterns.push_back(pattern(p.shapes.shapes.size(), version));
    p.processSlotCount = static_cast<std::uint8_t>(upTo(most_));
    for (int i = 0; i < p.processSlotCount; ++i) p.processSlots[i] = slot();
    some(p.marks, [&] { return mark(); });
    some(p.profiles, [&] { return profile(); });
    some(p.stepTables, [&] { return stepTable(); });
    some(p.workList, [&] { return work(); });
    bits(p.placedShapes.placedBlock);
    some(p.placedShapes.shapes.shapes, [&] { return shape(); });
    some(p.nestShapeGroups, [&] {
      oldtorvio::ShapeGroup g;
      bits(g.groupWord, g.groupByte);
      g.shapes = shapeList();
      return g;
    });
    some(p.contourGroups, [&] {
      oldtorvio::ContourGroup g;
      bits(g.contourWord1, g.contourWord2, g.contourWord3, g.contourByte);
      some(g.shapes, [&] { return shape(); });
      return g;
    });
    some(p.bindingSets, [&] {
      oldtorvio::BindingSet s;
      bits(s.setWord);
      some(s.numbers, [&] { return static_cast<std::uint32_t>(engine_()); });
      some(s.entries, [&] {
        oldtorvio::BindingEntry e;
        bits(e.entryWord1, e.entryWord2);
        e.shape = shape();
        return e;
      });
      return s;
    });
  }
  oldtorvio::OldSpecialTool specialTool() {
    oldtorvio::OldSpecialTool s;
    s.tool = tool();
    std::memset(s.tool.specialToolPath, 0, sizeof s.tool.specialToolPath);
    s.tool.symmetryFlags = static_cast<std::uint32_t>(1 + upTo(1));
    bits(s.specialValue);
    s.shapes = shapeList();
    s.setupList = setupList();
    return s;
  }

  template <class List, class Make>
  void some(List& list, Make&& make) {
    list.clear();
    for (int n = upTo(most_); n > 0; --n) list.push_back(make());
  }

 private:
  void fillBits(void* to, std::size_t size) {
    auto* at = static_cast<unsigned char*>(to);
    for (std::size_t i = 0; i < size; ++i) at[i] = static_cast<unsigned char>(engine_());
  }

  std::mt19937 engine_;
  int most_;
};

}  // namespace testing_support
