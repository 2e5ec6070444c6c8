// Process slots, step tables, setup lists, motion blocks and profiles, pattern items, work entries, marks.
#pragma once
#include <bit>

#include "tests/support/stored_forms/walkers.h"

namespace testing_support {

template <class M>
void storedSlot(M& m, int version, ProcessSlot& s) {
  numbers(m, s.slotWord1, s.slotWord2);
  m.block(s.slotBlock);
  numbers(m, s.slotWord3, s.slotWord4);
  const auto quarter = std::bit_cast<float>(0x3F490FDBU);
  if (version >= 80) {
    numberOr(m, s.firstLength, 0.25F);
    numberOr(m, s.firstAngle, quarter);
    numberOr(m, s.secondLength, 0.25F);
    numberOr(m, s.secondAngle, quarter);
    numberOr(m, s.slotKind, 3);
  } else {
    m.reset(s.firstLength, 0.25F);
    m.reset(s.firstAngle, quarter);
    m.reset(s.secondLength, 0.25F);
    m.reset(s.secondAngle, quarter);
    m.reset(s.slotKind, 3);
  }
  since(m, version >= 90, [&](auto& n) {
    numbers(n, s.toolUse, s.toolActive, s.slotByte, s.toolChoice, s.firstToolNumber, s.secondToolNumber);
  });
}

template <class M>
void storedSteps(M& m, int version, int steps, StepTable& t) {
  m.number(t.tableWord1);
  m.block(t.tableBlock);
  numbers(m, t.tableWord2, t.tableWord3);
  steps = countIn(m, t.stepCount, steps);
  for (int i = 0; i < 20; ++i)
    since(m, i < steps, [&](auto& n) {
      numberOr(n, t.stepByteA[i], std::uint8_t{255});
      n.number(t.stepWord[i]);
      numberOr(n, t.stepByteB[i], std::uint8_t{1});
      n.number(t.stepByteC[i]);
    });
  if (version >= 80)
    m.number(t.tableFlag);
  else
    m.reset(t.tableFlag, std::uint8_t{0});
  since(m, version >= 90, [&](auto& n) { n.number(t.lateFlag); });
  neverStored(m, [&](auto& n) {
    numbersOr(n, 1, t.memoryFlag1, t.memoryFlag2);
    each(n, t.memoryWords);
  });
}

template <class M>
void storedSetupEntry(M& m, SetupEntry& e) {
  numbers(m, e.setupShort1, e.setupShort2, e.setupByte1, e.setupShort3, e.setupByte2, e.setupShort4, e.setupByte3);
  m.block(e.setupBlock);
  numbers(m, e.setupWord1, e.setupByte4, e.setupWord2, e.setupShort5, e.setupWord3);
  numberOr(m, e.setupReal1, -1.0F);
  numberOr(m, e.setupReal2, -1.0F);
  neverStored(m, [&](auto& n) { n.number(e.memoryWord); });
}

template <class M>
void storedSetupList(M& m, std::size_t entries, SetupList& l) {
  list(m, l.entries, entries, [](auto& n, SetupEntry& e, std::size_t) { storedSetupEntry(n, e); });
  since(m, entries > 0, [&](auto& n) {
    storedSetupEntry(n, l.current);
    n.block(l.tailBlock);
    numbers(n, l.tailWord1, l.tailWord2);
  });
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
  since(m, version >= 151, [&](auto& n) { numbers(n, b.lateWord1, b.lateWord2); });
  since(m, version >= 152, [&](auto& n) { numbers(n, b.lateWord3, b.lateWord4, b.lateWord5); });
  storedSteps(m, version, 2, b.steps);
}

template <class M>
void storedProfile(M& m, int version, ProfileRecord& p) {
  m.block(p.profileHead);
  numberOr(m, p.profileIndex, -1);
  numbers(m, p.profileWord1, p.profileWord2, p.profileCondition1);
  m.block(p.profileBlock);
  numbers(m, p.profileCondition2, p.profileWord4);
  since(m, version >= 54, [&](auto& n) { n.number(p.profileWord3); });
  since(m, version >= 80, [&](auto& n) {
    each(n, p.profileWords);
    storedMotion(n, version, 5, p.firstBlock);
    storedMotion(n, version, 3, p.secondBlock);
    numbers(n, p.tailWord1, p.profileWord5);
    numberOr(n, p.profileLink, -1);
    n.number(p.tailWord2);
  });
  since(m, version >= 150, [&](auto& n) { n.number(p.tailWord3); });
  since(m, version >= 151,
        [&](auto& n) { numbers(n, p.tailByte1, p.tailByte2, p.tailByte3, p.tailWord4, p.tailByte4); });
  since(m, version >= 152, [&](auto& n) { n.number(p.tailByte5); });
  since(m, version >= 161, [&](auto& n) { n.number(p.tailWord5); });
}

template <class M>
void storedItem(M& m, int version, PatternItem& i) {
  numbers(m, i.itemWord1, i.toolNumber);
  if (version >= 62) {
    m.number(i.itemWord2);
    for (auto* pair : {&i.itemPair1, &i.itemPair2}) {
      m.together(8);
      each(m, *pair);
    }
    numbers(m, i.itemShort1, i.itemShort2, i.itemWord3, i.itemWord4);
  } else {
    for (auto* word : {&i.itemWord2, &i.itemPair1[0], &i.itemPair1[1], &i.itemPair2[0], &i.itemPair2[1], &i.itemShort1,
                       &i.itemShort2, &i.itemWord3, &i.itemWord4})
      m.reset(*word, 0U);
  }
  since(m, version >= 90, [&](auto& n) { n.number(i.lateWord); });
  neverStored(m, [&](auto& n) { numbers(n, i.memoryWord1, i.memoryWord2); });
}

template <class M>
void storedWork(M& m, int version, WorkEntry& w) {
  numbers(m, w.workWord1, w.workByte, w.workWord2);
  since(m, version >= 60, [&](auto& n) { numbers(n, w.workWord3, w.workWord4, w.workWord5, w.workWord6); });
  since(m, version >= 61, [&](auto& n) { n.number(w.workWord7); });
  since(m, version >= 80, [&](auto& n) { n.number(w.workWord8); });
  since(m, version >= 130, [&](auto& n) {
    n.number(w.workWord9);
    n.block(w.workBlock);
  });
  numbers(m, w.workValue5, w.workValue1, w.workValue2, w.workValue3, w.workValue4);
}

template <class M>
void storedMark(M& m, MarkEntry& k) {
  numbers(m, k.markWord1, k.markShort, k.markWord2, k.markWord3);
}

// Lists of these, each after its count.
template <class M>
void storedStepTables(M& m, int version, std::size_t count, int steps, StepTableList& l) {
  list(m, l, count, [&](auto& n, StepTable& t, std::size_t) { storedSteps(n, version, steps, t); });
}
template <class M>
void storedProfiles(M& m, int version, std::size_t count, ProfileList& l) {
  list(m, l, count, [&](auto& n, ProfileRecord& p, std::size_t) { storedProfile(n, version, p); });
}
template <class M>
void storedItems(M& m, int version, std::size_t count, PatternItemList& l, std::size_t freshCount = 0) {
  const auto stored = [&](auto& n, PatternItem& i, std::size_t) { storedItem(n, version, i); };
  list(m, l, count, stored, freshCount);
}
template <class M>
void storedWorkList(M& m, int version, std::size_t count, std::vector<WorkEntry>& l) {
  list(m, l, count, [&](auto& n, WorkEntry& w, std::size_t) { storedWork(n, version, w); });
}
template <class M>
void storedMarks(M& m, std::size_t count, MarkList& l) {
  list(m, l, count, [](auto& n, MarkEntry& k, std::size_t) { storedMark(n, k); });
}

}  // namespace testing_support
