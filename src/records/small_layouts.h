// Stored forms of the small records: process slots, step tables, setup lists, motion blocks and
// profiles, pattern items, work entries, marks.
#pragma once
#include "OldTorvIO/mark.h"
#include "OldTorvIO/pattern_item.h"
#include "OldTorvIO/process_slot.h"
#include "OldTorvIO/profile.h"
#include "OldTorvIO/setup_list.h"
#include "OldTorvIO/step_table.h"
#include "OldTorvIO/work_list.h"
#include "src/frame/describe.h"

namespace oldtorvio::frame {

template <>
struct Layout<ProcessSlot> {
  static constexpr std::size_t kLeast = 24;
  static constexpr bool kSprints = true;
  static bool describe(auto& io, auto& s) {
    constexpr ProcessSlot kFresh;
    return io.fields(F(s.slotWord1, s.slotWord2, s.slotBlock, s.slotWord3, s.slotWord4))
        && io.since(80, F(s.firstLength, s.firstAngle, s.secondLength, s.secondAngle, s.slotKind),
                    otherwise(kFresh.firstLength, kFresh.firstAngle, kFresh.secondLength, kFresh.secondAngle,
                              kFresh.slotKind))
        && io.since(90, F(s.toolUse, s.toolActive, s.slotByte, s.toolChoice, s.firstToolNumber, s.secondToolNumber));
  }
};

template <>
struct Layout<StepTable> {
  static constexpr std::size_t kLeast = 20;
  static constexpr bool kSprints = true;
  static bool describe(auto& io, auto& t) {
    constexpr int kMostSteps = 20;
    return io.fields(F(t.tableWord1, t.tableBlock, t.tableWord2, t.tableWord3))
        && io.tail(F(t.stepCount))
        && io.atMost(F(t.stepCount), kMostSteps)
        && io.rows(t.stepCount, [&](std::size_t i) {
             return io.fields(F(t.stepByteA[i], t.stepWord[i], t.stepByteB[i], t.stepByteC[i]));
           })
        && io.since(80, F(t.tableFlag), otherwise(0))
        && io.since(90, F(t.lateFlag));
  }
};

// As parts of version 5 store it.
inline bool describeShortSetupEntry(auto& io, auto& e) {
  return io.fields(F(e.setupShort1, e.setupShort2, e.setupByte1, e.setupShort3, e.setupByte2, e.setupShort4,
                     e.setupByte3, e.setupBlock, e.setupWord1, e.setupByte4, e.setupWord2, e.setupShort5,
                     e.setupWord3));
}

template <>
struct Layout<SetupEntry> {
  static constexpr std::size_t kLeast = 42;
  static bool describe(auto& io, auto& e) {
    return describeShortSetupEntry(io, e) && io.fields(F(e.setupReal1, e.setupReal2));
  }
};

template <>
struct Layout<SetupList> {
  static constexpr std::size_t kLeast = 4;
  static bool describe(auto& io, auto& l) {
    std::int32_t entryCount = io.countOf(l.entries);
    return io.fields(F(entryCount))
        // Without entries nothing else is stored; a negative count stores the rest.
        && io.when(entryCount != 0, [&] {
             return io.counted(entryCount, F(l.entries))
                 && io.record(F(l.current))
                 && io.fields(F(l.tailBlock, l.tailWord1, l.tailWord2));
           });
  }
};

template <>
struct Layout<MotionBlock> {
  static constexpr std::size_t kLeast = 48;
  static bool describe(auto& io, auto& m) {
    return io.fields(F(m.motionKind, m.motionWord, m.motionValue, m.motionLength1, m.motionAngle1, m.motionAngle2,
                       m.motionLength2))
        && io.tail([&] {
             return io.since(151, F(m.lateWord1, m.lateWord2))
                 && io.since(152, F(m.lateWord3, m.lateWord4, m.lateWord5));
           })
        && io.record(F(m.steps));
  }
};

template <>
struct Layout<ProfileRecord> {
  static constexpr std::size_t kLeast = 48;
  static constexpr std::size_t leastAt(int version) { return version < 80 ? kLeast : 224; }
  static bool describe(auto& io, auto& p) {
    return io.fields(F(p.profileHead, p.profileIndex, p.profileWord1, p.profileWord2, p.profileCondition1,
                       p.profileBlock, p.profileCondition2, p.profileWord4))
        && io.since(54, F(p.profileWord3))
        && io.since(80, [&] {
             return io.fields(F(p.profileWords))
                 && io.record(F(p.firstBlock))
                 && io.record(F(p.secondBlock))
                 && io.fields(F(p.tailWord1, p.profileWord5, p.profileLink, p.tailWord2));
           })
        && io.tail([&] {
             return io.since(150, F(p.tailWord3))
                 && io.since(151, F(p.tailByte1, p.tailByte2, p.tailByte3, p.tailWord4, p.tailByte4))
                 && io.since(152, F(p.tailByte5))
                 && io.since(161, F(p.tailWord5));
           });
  }
};

template <>
struct Layout<PatternItem> {
  static constexpr std::size_t kLeast = 8;
  static constexpr bool kSprints = true;
  static bool describe(auto& io, auto& i) {
    return io.fields(F(i.itemWord1, i.toolNumber))
        && io.since(62, F(i.itemWord2, block(i.itemPair1[0], i.itemPair1[1]), block(i.itemPair2[0], i.itemPair2[1]),
                          i.itemShort1, i.itemShort2, i.itemWord3, i.itemWord4))
        && io.below(62, [&] {
             return io.repair(i, [](auto& r) {
               r.itemWord2 = r.itemShort1 = r.itemShort2 = r.itemWord3 = r.itemWord4 = 0;
               r.itemPair1[0] = r.itemPair1[1] = r.itemPair2[0] = r.itemPair2[1] = 0;
             });
           })
        && io.since(90, F(i.lateWord));
  }
};

template <>
struct Layout<WorkEntry> {
  static constexpr std::size_t kLeast = 29;
  static constexpr bool kSprints = true;
  static bool describe(auto& io, auto& w) {
    return io.fields(F(w.workWord1, w.workByte, w.workWord2))
        && io.since(60, F(w.workWord3, w.workWord4, w.workWord5, w.workWord6))
        && io.since(61, F(w.workWord7))
        && io.since(80, F(w.workWord8))
        && io.since(130, F(w.workWord9, w.workBlock))
        && io.fields(F(w.workValue5, w.workValue1, w.workValue2, w.workValue3, w.workValue4));
  }
};

template <>
struct Layout<MarkEntry> {
  static constexpr std::size_t kLeast = 14;
  static constexpr bool kSprints = true;
  static bool describe(auto& io, auto& m) {
    return io.fields(F(m.markWord1, m.markShort, m.markWord2, m.markWord3));
  }
};

}  // namespace oldtorvio::frame
