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
#include "src/frame/codec/describe.h"

namespace oldtorvio::codec {

template <>
struct Layout<ProcessSlot> {
  static constexpr std::size_t kMinStoredSize = 24;
  static constexpr bool kFastPath = true;
  static bool describe(auto& io, auto& s) {
    constexpr ProcessSlot kFresh;
    return io.fields(FIELDS(s.slotWord1, s.slotWord2, s.slotBlock, s.slotWord3, s.slotWord4)) &&
           io.since(80, FIELDS(s.firstLength, s.firstAngle, s.secondLength, s.secondAngle, s.slotKind),
                    otherwise(kFresh.firstLength, kFresh.firstAngle, kFresh.secondLength, kFresh.secondAngle,
                              kFresh.slotKind)) &&
           io.since(90,
                    FIELDS(s.toolUse, s.toolActive, s.slotByte, s.toolChoice, s.firstToolNumber, s.secondToolNumber));
  }
};

template <>
struct Layout<StepTable> {
  static constexpr std::size_t kMinStoredSize = 20;
  static constexpr bool kFastPath = true;
  static bool describe(auto& io, auto& t) {
    constexpr int kMostSteps = 20;
    return io.fields(FIELDS(t.tableWord1, t.tableBlock, t.tableWord2, t.tableWord3)) &&
           io.optionalTail(FIELDS(t.stepCount)) && io.require(atMost(FIELDS(t.stepCount), kMostSteps)) &&
           io.rows(t.stepCount,
                   [&](std::size_t i) {
                     return io.fields(FIELDS(t.stepByteA[i], t.stepWord[i], t.stepByteB[i], t.stepByteC[i]));
                   }) &&
           io.since(80, FIELDS(t.tableFlag), otherwise(0)) && io.since(90, FIELDS(t.lateFlag));
  }
};

// As stored by parts of version 5.
inline bool describeShortSetupEntry(auto& io, auto& e) {
  return io.fields(FIELDS(e.setupShort1, e.setupShort2, e.setupByte1, e.setupShort3, e.setupByte2, e.setupShort4,
                          e.setupByte3, e.setupBlock, e.setupWord1, e.setupByte4, e.setupWord2, e.setupShort5,
                          e.setupWord3));
}

template <>
struct Layout<SetupEntry> {
  static constexpr std::size_t kMinStoredSize = 42;
  static bool describe(auto& io, auto& e) {
    return describeShortSetupEntry(io, e) && io.fields(FIELDS(e.setupReal1, e.setupReal2));
  }
};

template <>
struct Layout<SetupList> {
  static constexpr std::size_t kMinStoredSize = 4;
  static bool describe(auto& io, auto& l) {
    std::int32_t entryCount = io.countOf(l.entries);
    return io.fields(FIELDS(entryCount))
           // Without entries nothing else is stored; a negative count stores the rest.
           && io.when(notEquals(FIELDS(entryCount), 0), [&] {
                return io.clear(FIELDS(l.entries)) && io.list(FIELDS(l.entries), appended(entryCount)) &&
                       io.record(FIELDS(l.current)) && io.fields(FIELDS(l.tailBlock, l.tailWord1, l.tailWord2));
              });
  }
};

template <>
struct Layout<MotionBlock> {
  static constexpr std::size_t kMinStoredSize = 48;
  static bool describe(auto& io, auto& m) {
    return io.fields(FIELDS(m.motionKind, m.motionWord, m.motionValue, m.motionLength1, m.motionAngle1, m.motionAngle2,
                            m.motionLength2)) &&
           io.optionalTail([&] {
             return io.since(151, FIELDS(m.lateWord1, m.lateWord2)) &&
                    io.since(152, FIELDS(m.lateWord3, m.lateWord4, m.lateWord5));
           }) &&
           io.record(FIELDS(m.steps));
  }
};

template <>
struct Layout<ProfileRecord> {
  static constexpr std::size_t kMinStoredSize = 48;
  static constexpr std::size_t minStoredSize(int version) { return version < 80 ? kMinStoredSize : 224; }
  static bool describe(auto& io, auto& p) {
    return io.fields(FIELDS(p.profileHead, p.profileIndex, p.profileWord1, p.profileWord2, p.profileCondition1,
                            p.profileBlock, p.profileCondition2, p.profileWord4)) &&
           io.since(54, FIELDS(p.profileWord3)) &&
           io.since(80,
                    [&] {
                      return io.fields(FIELDS(p.profileWords)) && io.record(FIELDS(p.firstBlock)) &&
                             io.record(FIELDS(p.secondBlock)) &&
                             io.fields(FIELDS(p.tailWord1, p.profileWord5, p.profileLink, p.tailWord2));
                    }) &&
           io.optionalTail([&] {
             return io.since(150, FIELDS(p.tailWord3)) &&
                    io.since(151, FIELDS(p.tailByte1, p.tailByte2, p.tailByte3, p.tailWord4, p.tailByte4)) &&
                    io.since(152, FIELDS(p.tailByte5)) && io.since(161, FIELDS(p.tailWord5));
           });
  }
};

template <>
struct Layout<PatternItem> {
  static constexpr std::size_t kMinStoredSize = 8;
  static constexpr bool kFastPath = true;
  static bool describe(auto& io, auto& i) {
    return io.fields(FIELDS(i.itemWord1, i.toolNumber)) &&
           io.since(62,
                    FIELDS(i.itemWord2, block(i.itemPair1[0], i.itemPair1[1]), block(i.itemPair2[0], i.itemPair2[1]),
                           i.itemShort1, i.itemShort2, i.itemWord3, i.itemWord4),
                    otherwise(0)) &&
           io.since(90, FIELDS(i.lateWord));
  }
};

template <>
struct Layout<WorkEntry> {
  static constexpr std::size_t kMinStoredSize = 29;
  static constexpr bool kFastPath = true;
  static bool describe(auto& io, auto& w) {
    return io.fields(FIELDS(w.workWord1, w.workByte, w.workWord2)) &&
           io.since(60, FIELDS(w.workWord3, w.workWord4, w.workWord5, w.workWord6)) &&
           io.since(61, FIELDS(w.workWord7)) && io.since(80, FIELDS(w.workWord8)) &&
           io.since(130, FIELDS(w.workWord9, w.workBlock)) &&
           io.fields(FIELDS(w.workValue5, w.workValue1, w.workValue2, w.workValue3, w.workValue4));
  }
};

template <>
struct Layout<MarkEntry> {
  static constexpr std::size_t kMinStoredSize = 14;
  static constexpr bool kFastPath = true;
  static bool describe(auto& io, auto& m) {
    return io.fields(FIELDS(m.markWord1, m.markShort, m.markWord2, m.markWord3));
  }
};

}  // namespace oldtorvio::codec
