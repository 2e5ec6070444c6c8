// Records with random content that every writer can store.
#pragma once
#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <random>
#include <string>
#include <type_traits>

#include "OldTorvIO/records.h"

namespace testing_support {

class RandomRecords {
 public:
  explicit RandomRecords(std::uint32_t seed, int mostElements = 3) : engine_(seed), most_(mostElements) {}

  // Any bits, so that floats include numbers that are none; the same numbers on every host.
  template <class... T>
  void bits(T&... fields) {
    (bitsOf(fields), ...);
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

  // ---- machines, materials, inventories, macros, sheets. What a load derives or repairs is settled in the
  // ---- record beforehand, so that the mirror of its file is perfect.

  // A table that the writer stores in the layout of its version word: 52, or 60 to 499.
  void paramTable(oldtorvio::ParamTable& t, int version) {
    bits(t.title, t.intParams, t.realParams, t.textParams, t.name);
    t.version = static_cast<std::uint16_t>(version);
    // A zero in the file would keep what the record held.
    for (const int zeroKeeps : {490, 492}) t.intParams[zeroKeeps] |= 1;
    t.nameLength = 1 + upTo(255);
  }
  // Everything but path, version and params.
  void material(oldtorvio::OldMaterial& m) {
    m.name = letters(most_ == 0 ? 0 : upTo(40) == 0 ? 10000 : upTo(30));
    some(m.entryList, [&] {
      oldtorvio::MaterialEntry e;
      bits(e.entryKey, e.entryText);
      return e;
    });
    toolSetTable(m.toolSets);
    palette(m.palette);
    bits(m.stages.stageWord1, m.stages.stageWord2, m.stages.stageTail);
    for (oldtorvio::MotionBlock& block : m.stages.blocks) block = motionBlock();
    ruleLists(m.rules);
    bits(m.modeA, m.modeB, m.modeC);
    if (m.modeB == 6) m.modeB = 10;
    bits(m.setting1, m.setting2, m.setting3, m.setting4, m.setting5, m.setting6, m.setting7, m.setting8, m.setting9,
         m.setting10, m.setting11, m.setting12, m.setting13, m.setting14, m.setting15, m.setting16, m.setting17,
         m.setting18, m.setting19, m.setting20, m.setting21, m.setting22, m.setting23, m.setting24, m.setting25,
         m.setting26, m.setting27, m.setting28, m.setting29, m.setting30, m.setting31, m.setting32, m.setting33,
         m.setting34, m.setting35, m.setting36, m.setting37, m.setting38, m.setting39, m.setting40, m.setting41,
         m.setting42, m.setting43, m.setting44, m.setting45, m.setting46, m.setting47, m.setting48, m.setting49,
         m.setting50, m.setting51, m.setting52, m.setting53, m.setting54, m.setting55, m.setting56, m.setting57,
         m.setting58, m.setting59, m.setting60, m.setting61, m.setting62, m.setting63, m.setting64, m.setting65,
         m.setting66, m.setting67, m.setting68, m.setting69, m.setting70, m.setting71, m.setting72, m.setting73,
         m.setting74, m.setting75, m.setting76, m.setting77, m.setting78, m.setting79, m.setting80, m.setting81,
         m.setting82, m.setting83, m.setting84, m.setting85, m.setting86, m.setting87, m.setting88, m.setting89,
         m.setting90, m.setting91, m.setting92, m.setting93, m.setting94, m.setting95, m.setting96, m.setting97,
         m.setting98, m.setting99, m.setting100, m.setting101, m.setting102, m.setting103, m.setting104, m.setting105,
         m.setting106, m.setting107, m.setting108, m.setting109, m.setting110, m.setting111, m.setting112, m.setting113,
         m.setting114, m.setting115, m.setting116, m.setting117, m.setting118, m.setting119, m.setting120, m.setting121,
         m.setting122, m.setting123, m.setting124, m.setting125, m.setting126, m.setting127, m.setting128, m.setting163,
         m.setting164, m.setting165, m.setting166);
    std::int32_t* const choices[8] = {&m.choice1, &m.choice2, &m.choice3, &m.choice4,
                                      &m.choice5, &m.choice6, &m.choice7, &m.choice8};
    static constexpr int kLimits[8] = {4, 8, 4, 6, 8, 4, 6, 8};
    for (int i = 0; i < 8; ++i) *choices[i] = (flip() ? 1000 : 0) + upTo(kLimits[i]);
    m.settingListCount = static_cast<std::int16_t>(countUpTo(6));
    for (oldtorvio::SettingList& list : m.settingLists) list = settingList();
    bits(m.head.headWords, m.head.headWord11, m.head.headTail1, m.head.headTail2, m.head.headTail3);
    program(m.head.optionA);
    programEx(m.head.optionB);
  }
  void machine(oldtorvio::OldMachine& m, int version) {
    // A save tells this width of every text, whatever the record says.
    m.textWidth = m.secondTextWidth = 256;
    m.shapesPresent = 0;
    m.smallValue = upTo(127);
    bits(m.machineText1, m.machineKind, m.limitA, m.limitB, m.limitC, m.limitWord, m.secondText, m.sizeX, m.sizeY,
         m.clampValue1, m.clampValue2, m.clampWord, m.machineText2, m.machineText3, m.stationWord, m.blockA, m.blockB,
         m.gridWord1, m.gridAngle, m.gridWord3, m.segmentBox, m.gridFlag1, m.gridFlag2, m.ncPath, m.ncExtension,
         m.wideValue1, m.wideValue2, m.lateByteA, m.lateWord8, m.flagTriple, m.triadWord1, m.triadWord2, m.triads,
         m.unitWord, m.numberColumns, m.displayName, m.displayTail, m.lateWord1, m.lateWord2, m.lateWord3, m.lateWord4,
         m.lateWord5, m.lateText1, m.lateWord6, m.lateText2, m.lateExtension, m.lateWord7, m.lateByteB, m.lateByteC,
         m.setupWords, m.endText1, m.endWord, m.endText2);
    bits(m.machineWord1, m.machineWord2, m.machineWord3, m.machineWord4, m.machineWord5, m.machineWord6, m.machineWord7,
         m.machineWord8, m.machineWord9, m.machineWord10, m.machineWord11, m.machineWord12, m.machineWord13,
         m.machineWord14, m.machineWord15, m.machineWord16, m.machineWord17, m.machineWord18, m.machineWord19,
         m.machineWord20, m.machineWord21, m.machineWord22, m.machineWord23, m.machineWord24, m.machineWord25,
         m.machineWord26, m.machineWord27, m.machineWord28, m.machineWord29, m.machineWord30, m.machineWord31,
         m.machineWord32, m.machineWord33, m.machineWord34, m.machineWord35, m.machineWord36, m.machineWord37,
         m.machineWord38, m.machineWord39, m.machineWord40, m.machineWord41, m.machineWord42, m.machineWord43,
         m.machineWord44, m.machineWord45, m.machineWord46, m.machineWord47, m.machineWord48, m.machineWord49,
         m.machineWord50, m.machineWord51, m.machineWord52, m.machineWord53, m.machineWord54, m.machineWord55,
         m.machineWord56, m.machineWord57, m.machineWord58, m.machineWord59, m.machineWord60, m.machineWord61,
         m.machineWord62, m.machineWord63, m.machineWord64, m.machineWord65, m.machineWord66, m.machineWord67,
         m.machineWord68, m.machineWord69, m.machineWord70, m.machineWord71, m.machineWord72, m.machineWord73,
         m.machineWord74, m.machineWord75, m.machineWord76, m.machineWord77, m.machineWord78, m.machineWord79,
         m.machineWord80, m.machineWord81, m.machineWord82, m.machineWord83, m.machineWord84, m.machineWord85,
         m.machineWord86, m.machineWord87, m.machineWord88, m.machineWord89, m.machineWord90, m.machineWord91,
         m.machineWord92, m.machineWord93, m.machineWord94, m.machineWord95, m.machineWord96, m.machineWord97,
         m.machineWord98, m.machineWord99, m.machineWord100, m.machineWord101, m.machineWord102, m.machineWord103,
         m.machineWord104, m.machineWord105, m.machineWord106, m.machineWord107, m.machineWord108, m.machineWord109,
         m.machineWord110, m.machineWord111, m.machineWord112, m.machineWord113, m.machineWord114, m.machineWord115,
         m.machineWord116, m.machineWord117, m.machineWord118, m.machineWord119, m.machineWord120, m.machineWord121,
         m.machineWord122, m.machineWord123, m.machineWord124, m.machineWord125, m.machineWord126, m.machineWord127,
         m.machineWord128, m.machineWord129, m.machineWord130, m.machineWord131, m.machineWord132);
    // One nearer to zero becomes the sizeX.
    if (std::fabs(static_cast<double>(m.machineWord1)) < 0.0001) m.machineWord1 = 0.5F;
    m.limitsPresent = static_cast<std::uint8_t>(upTo(2));
    m.secondTextPresent = static_cast<std::uint8_t>(upTo(2));
    bits(m.frame.frameValue1, m.frame.frameValue2, m.frame.frameValue3, m.frame.frameValue4, m.frame.frameValue5,
         m.frame.frameValue6, m.frame.frameValue7, m.frame.frameValue8, m.frame.frameValue9, m.frame.frameValue10,
         m.frame.frameValue11);
    m.clampInfo = clampInfo();
    bits(m.workArea.areaValues, m.workArea.areaTail);
    m.stationsA = stationList();
    m.stationsB = stationList();
    m.stationsC = stationList();
    m.blockMode = static_cast<std::uint32_t>(upTo(3));
    m.gridMode = upTo(3);
    grid(m.gridA);
    grid(m.gridB);
    some(m.segments, [&] {
      oldtorvio::GridSegment s;
      bits(s.segmentHead, s.segmentValue, s.segmentWord, s.segmentKind);
      return s;
    });
    m.hasExtension = upTo(3) - 1;
    extension(m.extension);
    m.programMode = upTo(3);
    program(m.programA);
    programEx(m.programB);
    program(m.programC);
    programEx(m.programD);
    m.stepListPresent = upTo(2) - 1;
    some(m.stepTables, [&] { return stepTable(); });
    material(m.material);
    m.triadCount = countUpTo(most_ == 0 ? 0 : 255);
    unitTable(m.unitTable);
    for (auto* column : {&m.textColumnA, &m.textColumnB})
      for (std::string& text : *column) text = letters(flip() ? 256 : upTo(12));
    m.setup3.clampInfo = clampInfo();
    bits(m.setup3.sizeX, m.setup3.sizeY, m.setup3.clampValue1, m.setup3.clampValue2, m.setup3.machineWord91,
         m.setup3.machineWord92);
    settle(m, version);
  }
  oldtorvio::OldToolInventory toolInventory() {
    oldtorvio::OldToolInventory v;
    bits(v.pairFirst, v.pairSecond);
    some(v.tools, [&] { return tool(); });
    some(v.entries, [&] {
      oldtorvio::InventoryEntry e;
      bits(e.entryWord, e.entryNameA, e.entryByteA, e.entryByteB, e.entryNameB, e.entryShortA, e.entryShortB,
           e.entryNameC, e.entryHead, e.entryLateWord, e.entryLateReals);
      e.entrySteps = stepTable();
      return e;
    });
    some(v.specialToolFiles, [&] {
      std::array<char, 256> file;
      bits(file);
      return file;
    });
    return v;
  }
  oldtorvio::OldMacro macro() {
    oldtorvio::OldMacro m;
    bits(m.macroHead, m.macroHeadSecond, m.macroHeadWord, m.macroBlock, m.macroBlockLong, m.macroTailWords);
    m.shapes = settledShapeList();
    some(m.items, [&] { return item(); });
    m.stationList = stationList();
    return m;
  }

  // Everything but blocks, which stay empty: no sound file leaves any.
  void sheet(oldtorvio::OldSheet& s, int version) {
    bits(s.width, s.height, s.thickness, s.sheetLabel, s.headerWord, s.leadWords, s.optionWord, s.trailingWords,
         s.skeletonDosName, s.utilization, s.partTexts, s.partTextWord, s.materialGroup, s.materialType,
         s.materialText3, s.materialText4, s.materialText5, s.lateValue, s.lateText);
    s.textWidth = 1 + upTo(255);
    s.skeletonShapes = settledShapeList();
    s.partList.nameWidth = 256;
    some(s.partList.parts, [&] {
      oldtorvio::TorvPart p;
      placedPart(p, version);
      return p;
    });
    if (!s.partList.parts.empty()) s.partList.nameWidth = 1 + upTo(255);
    for (oldtorvio::TorvPart& p : s.partList.parts) {
      placedName(p.partName, s.partList.nameWidth);
      placedName(p.partFullDosName, s.partList.nameWidth);
    }
    s.shapes = settledShapeList();
    // A file without shapes of the sheet itself stores none of these.
    if (!s.shapes.shapes.empty()) {
      s.processSlotCount = static_cast<std::int8_t>(countUpTo(most_));
      for (int i = 0; i < s.processSlotCount; ++i) s.processSlots[i] = slot();
      some(s.marks, [&] { return mark(); });
      some(s.profiles, [&] { return profile(); });
      some(s.stepTables, [&] { return stepTable(); });
      s.setupList = sheetSetupList();
      some(s.patternItems, [&] { return item(); });
    }
    some(s.workList, [&] { return work(); });
    const int mostRows = most_ == 0 ? 0 : 25;
    s.rowTable.count = countUpTo(mostRows);
    bits(s.rowTable.words, s.rowTable.values);
    s.clampInfo = clampInfo();
    s.clampRowTable.count = countUpTo(mostRows);
    bits(s.clampRowTable.words, s.clampRowTable.values);
    // In front of the machine the table has a version of its own.
    static constexpr int kTables[] = {52, 60, 79, 80, 499};
    paramTable(s.paramTable, kTables[upTo(4)]);
    machine(s.machine, version);
    std::memset(s.machine.path, 0, sizeof s.machine.path);
    if (version >= 61) placedName(s.machine.path, s.textWidth);
    s.machine.extension.extensionEntries.clear();
    if (s.machine.hasExtension != 0)
      some(s.machine.extension.extensionEntries, [&] {
        oldtorvio::MachineExtensionEntry e;
        bits(e.headBlock, e.words);
        return e;
      });
    some(s.textEntries, [&] {
      oldtorvio::SheetTextEntry e;
      bits(e.entryWord1, e.entryWord3, e.entryText1, e.entryText2, e.entryText3, e.entryWord4, e.entryWord5,
           e.entryWord6, e.entryWord7, e.entryWord9);
      return e;
    });
    some(s.namedWorkLists, [&] {
      oldtorvio::NamedWorkList l;
      bits(l.listName, l.listWord1, l.listWord2, l.listWord3);
      some(l.entries, [&] { return work(); });
      return l;
    });
  }

  // Sets a text as a load does that takes it from `width` stored bytes.
  template <std::size_t N>
  void placedName(char (&field)[N], int width) {
    const std::string name = letters(upTo(width));
    std::memcpy(field, name.c_str(), std::min(name.size() + 1, N));
  }

  template <class List, class Make>
  void some(List& list, Make&& make) {
    list.clear();
    for (int n = upTo(most_); n > 0; --n) list.push_back(make());
  }

 private:
  template <class T>
  void bitsOf(T& field) {
    if constexpr (std::is_arithmetic_v<T>) {
      unsigned char stored[sizeof field];
      fillBits(stored, sizeof stored);
      if constexpr (std::endian::native == std::endian::big) std::reverse(std::begin(stored), std::end(stored));
      std::memcpy(&field, stored, sizeof field);
    } else {
      for (auto& one : field) bitsOf(one);
    }
  }
  void fillBits(void* to, std::size_t size) {
    auto* at = static_cast<unsigned char*>(to);
    for (std::size_t i = 0; i < size; ++i) at[i] = static_cast<unsigned char>(engine_());
  }

  // A count as files hold them: none below 1.
  int countUpTo(int most) { return upTo(4) == 0 ? -upTo(3) : upTo(most); }
  std::string letters(int length) {
    std::string text;
    for (; length > 0; --length) text += static_cast<char>('!' + upTo(90));
    return text;
  }
  oldtorvio::ShapeList settledShapeList() {
    oldtorvio::ShapeList l = shapeList();
    for (oldtorvio::Shape& s : l.shapes) s.rangeValue = s.auxValue4;
    return l;
  }
  // A part as a sheet keeps it.
  void placedPart(oldtorvio::TorvPart& p, int version) {
    static constexpr char kFreshName[256] = "NEW PART";
    part(p, version);
    std::memcpy(p.partName, kFreshName, sizeof kFreshName);
    p.toolStations = {};
    some(p.patterns, [&] {
      oldtorvio::Pattern one = pattern(static_cast<std::size_t>(upTo(most_)), version);
      bits(one.headWord, one.gridCount1, one.gridCount2, one.gridStep1, one.gridStep2);
      return one;
    });
    for (auto* shapes : {&p.shapes.shapes, &p.placedShapes.shapes.shapes})
      for (oldtorvio::Shape& s : *shapes) s.rangeValue = s.auxValue4;
    // One element reads them all: a note that a shape lacks comes from the one before.
    for (oldtorvio::Shape& s : p.placedShapes.shapes.shapes) s.note += '-';
  }
  oldtorvio::SheetSetupList sheetSetupList() {
    oldtorvio::SheetSetupList l;
    some(l.entries, [&] {
      oldtorvio::SheetSetupEntry e;
      e.entry = setupEntry();
      bits(e.entryBlocks);
      return e;
    });
    if (l.entries.empty()) return l;
    l.current = setupEntry();
    bits(l.currentBlocks, l.tailBlock, l.tailWord1, l.tailWord2);
    return l;
  }
  oldtorvio::SettingList settingList() {
    oldtorvio::SettingList l;
    some(l, [&] {
      oldtorvio::SettingEntry e;
      bits(e.entryWord1, e.entryWord2, e.entryWide, e.entryText, e.entryWord3);
      return e;
    });
    return l;
  }
  void toolSetTable(oldtorvio::MaterialToolSetTable& t) {
    bits(t.toleranceA, t.toleranceB, t.toleranceC, t.toleranceD);
    t.setCount = countUpTo(6);
    for (oldtorvio::MaterialToolSet& s : t.sets) {
      bits(s.setWord1, s.setWord2, s.setWord3, s.setWord4, s.setWord5, s.setWord6);
      s.stepsA = stepTable();
      s.stepsB = stepTable();
    }
  }
  void palette(oldtorvio::MaterialPalette& p) {
    bits(p.paletteMode, p.red, p.green, p.blue);
    p.colourCount = static_cast<std::int16_t>(countUpTo(20));
    p.groupCount = static_cast<std::int16_t>(countUpTo(5));
    for (auto* list : {&p.listA, &p.listB, &p.listC}) *list = settingList();
    for (auto* groups :
         {&p.groupsA, &p.groupsB, &p.groupsC, &p.groupsD, &p.groupsE, &p.groupsF, &p.groupsG, &p.groupsH})
      for (oldtorvio::SettingGroup& g : *groups) {
        bits(g.groupWord);
        g.groupList = settingList();
      }
  }
  oldtorvio::AngleRule angleRule(int mostAngles) {
    oldtorvio::AngleRule r;
    bits(r.ruleCode, r.ruleValues, r.ruleAngles, r.sizeLimitX, r.sizeLimitY);
    r.angleCount = static_cast<std::int8_t>(upTo(mostAngles + 3) - 3);
    return r;
  }
  oldtorvio::SizeRule sizeRule() {
    oldtorvio::SizeRule r;
    bits(r.sizeValue1, r.sizeValue2, r.sizeValue3, r.sizeValue4, r.sizeValue5, r.sizeValue6, r.sizeFlagA, r.sizeFlagB);
    return r;
  }
  void ruleLists(oldtorvio::MaterialRuleLists& l) {
    bits(l.ruleFlag1, l.ruleFlag2, l.ruleFlag3, l.ruleFlag4, l.ruleWord1, l.ruleWord2, l.ruleAngle1, l.ruleAngle2);
    // A load adds the default rules behind any other number.
    l.angleRules.clear();
    for (int i = 0; i < 6; ++i) l.angleRules.push_back(angleRule(10));
    some(l.pairRules, [&] { return angleRule(5); });
    some(l.sizeRulesA, [&] { return sizeRule(); });
    some(l.sizeRulesB, [&] { return sizeRule(); });
  }
  void program(oldtorvio::ShapeProgram& p) {
    bits(p.programWord1, p.programWord2, p.programWord3, p.programWord4, p.programWord5, p.programWord6,
         p.programValue1, p.programValue2, p.programValue3, p.programValue4, p.programWord7);
    some(p.programGroups, [&] {
      oldtorvio::ShapeProgramGroup g;
      g.groupShapes = settledShapeList();
      some(g.groupQuads, [&] {
        oldtorvio::GroupQuad q;
        bits(q.quadWords);
        return q;
      });
      some(g.groupSlots, [&] { return slot(); });
      some(g.groupSteps, [&] { return stepTable(); });
      return g;
    });
  }
  void programEx(oldtorvio::ShapeProgramEx& p) {
    program(p);
    bits(p.extFlag1, p.extValue1, p.extValue2, p.extFlag2, p.extValue3, p.extFlag3);
  }
  oldtorvio::ClampInfo clampInfo() {
    oldtorvio::ClampInfo c;
    bits(c.clampWord1, c.clampWord2, c.clampWord3, c.clampWord4, c.clampPositions, c.clampSpacing);
    c.clampCount = countUpTo(8);
    return c;
  }
  void grid(oldtorvio::MachineGrid& g) {
    bits(g.gridHead1, g.gridHead2, g.cellSizeX, g.cellSizeY, g.gridValue1, g.gridValue2);
    g.gridWidth = upTo(65535);
    g.cellByteCount = 1 + (most_ > 0 && upTo(30) == 0 ? upTo(39999) : upTo(most_ == 0 ? 9 : 99));
    fillBits(g.gridCells, static_cast<std::size_t>(g.cellByteCount));
  }
  void extension(oldtorvio::MachineExtension& e) {
    bits(e.extensionValue1, e.extensionValue2, e.extensionValue3, e.extensionValue4, e.extensionValue5,
         e.extensionValue6, e.extensionValue7, e.extensionValue8, e.extensionValue9, e.extensionValue10,
         e.extensionValue11, e.extensionValue12, e.extensionValue13, e.extensionValue14, e.extensionValue15,
         e.extensionValue16, e.extensionValue17, e.extensionValue18, e.extensionValue19, e.extensionValue20,
         e.extensionValue21, e.extensionValue22, e.extensionValue23, e.extensionValue24, e.extensionValue25,
         e.extensionValue26, e.extensionValue27, e.extensionValue28, e.extensionValue29, e.extensionValue30,
         e.extensionValue31, e.extensionValue32, e.extensionValue33, e.extensionValue34, e.extensionValue35,
         e.extensionValue36, e.extensionValue37, e.extensionValue38, e.extensionValue39, e.extensionValue40,
         e.extensionValue41, e.extensionValue42, e.extensionValue43, e.extensionValue44, e.extensionValue45,
         e.extensionValue46, e.extensionValue47, e.extensionValue48, e.extensionValue49, e.extensionValue50);
    some(e.extensionWords, [&] { return static_cast<std::int32_t>(engine_()); });
  }
  void unitTable(oldtorvio::MachineUnitTable& t) {
    bits(t.unitFlag1, t.unitFlag2, t.unitValue1, t.unitValue2, t.unitValue3, t.unitValue4, t.unitValue5, t.unitValue6,
         t.unitValue7, t.unitValue8, t.unitValue9, t.unitValue10, t.unitValue11, t.unitValue12, t.unitValue13,
         t.unitValue14, t.unitValue15, t.unitValue16, t.unitValue17, t.unitValue18, t.unitValue19, t.unitValue20,
         t.unitValue21, t.unitValue22, t.unitFlag4, t.unitFlag5);
    some(t.units, [&] {
      oldtorvio::MachineUnit u;
      bits(u.unitKey1, u.unitKey2);
      some(u.unitEntries, [&] {
        oldtorvio::MachineUnitEntry e;
        bits(e.entryValue1, e.entryValue2, e.entryValue3, e.entryValue4, e.entryValue5, e.entryValue6, e.entryValue7,
             e.entryValue8);
        return e;
      });
      return u;
    });
  }
  static void settle(oldtorvio::OldMachine& m, int version) {
    const float larger = std::max(m.workArea.areaValues[0], m.workArea.areaValues[1]);
    if (larger > m.limitB) m.limitB = larger;
    m.limitA = m.limitB;
    m.setup2 = {m.sizeX, m.sizeY, m.clampInfo, m.clampValue1, m.clampValue2, m.machineWord91, m.machineWord92};
    if (version < 154) m.setup3 = m.setup2;
    // A save stores these at every version, a load takes none of them.
    if (version < 152) m.lateByteC = 0;
    if (version < 151) {
      m.machineWord124 = m.machineWord126 = m.machineWord128 = m.machineWord131 = m.machineWord132 = 0;
      m.machineWord125 = m.machineWord127 = 1.5F;
      m.machineWord129 = m.machineWord130 = 1;
    }
  }

  std::mt19937 engine_;
  int most_;
};

}  // namespace testing_support
