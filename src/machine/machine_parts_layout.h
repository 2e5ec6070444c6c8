// Stored forms of the tables of a machine.
#pragma once
#include "OldTorvIO/machine_parts.h"
#include "src/frame/codec/describe.h"

namespace oldtorvio::codec {

template <>
struct Layout<ClampInfo> {
  static constexpr std::size_t kMinStoredSize = 24;
  static bool describe(auto& io, auto& c) {
    return io.fields(FIELDS(c.clampWord1, c.clampWord2, c.clampWord3, c.clampWord4, c.clampCount))
        && io.require(atMost(FIELDS(c.clampCount), 8))
        && io.leading(c.clampCount, FIELDS(c.clampPositions))
        && io.fields(FIELDS(c.clampSpacing));
  }
};

template <>
struct Layout<MachineFrame> {
  static bool describe(auto& io, auto& f) {
    return io.fields(FIELDS(f.frameValue1, f.frameValue2, f.frameValue3))
        && io.since(60, FIELDS(f.frameValue4, f.frameValue5, f.frameValue6, f.frameValue9, f.frameValue10,
                               f.frameValue11))
        && io.since(157, FIELDS(f.frameValue7, f.frameValue8));
  }
};

template <>
struct Layout<WorkArea> {
  static bool describe(auto& io, auto& w) {
    return io.fields(FIELDS(block(w.areaValues[0], w.areaValues[1], w.areaValues[2], w.areaValues[3]), w.areaTail));
  }
};

template <>
struct Layout<MachineGrid> {
  static bool describe(auto& io, auto& g) {
    auto storedWidth = static_cast<std::uint32_t>(g.gridWidth);
    return io.fields(FIELDS(block(g.gridHead1, g.gridHead2)))
        && io.afterRead(g, "a file that ends here leaves cellByteCount 40000", [](auto& r) { r.cellByteCount = 40000; })
        && io.fields(FIELDS(g.cellByteCount))
        && io.sized(FIELDS(g.gridCells), g.cellByteCount)
        && io.fields(FIELDS(g.cellSizeX, g.cellSizeY, storedWidth))
        && io.afterRead(g, "gridIsNarrow is 1 for a width below 65536; gridWidth takes its lower 16 bits", [&](auto& r) {
             r.gridIsNarrow = storedWidth < 0x10000U ? 1 : 0;
             r.gridWidth = static_cast<std::int32_t>(storedWidth & 0xFFFFU);
           })
        && io.fields(FIELDS(g.gridValue1, g.gridValue2));
  }
};

template <>
struct Layout<GridSegment> {
  static constexpr std::size_t kMinStoredSize = 20;
  static bool describe(auto& io, auto& s) {
    return io.fields(FIELDS(s.segmentHead, s.segmentValue, s.segmentWord, s.segmentKind));
  }
};

template <>
struct Layout<MachineExtension> {
  static bool describe(auto& io, auto& e) {
    return io.fields(FIELDS(e.extensionValue1, e.extensionValue2, e.extensionValue3, e.extensionValue4,
                            e.extensionValue5, e.extensionValue6, e.extensionValue7, e.extensionValue8,
                            e.extensionValue9, e.extensionValue10, e.extensionValue11, e.extensionValue12))
        && io.fields(FIELDS(block(e.extensionValue13, e.extensionValue14), e.extensionValue15, e.extensionValue16,
                            block(e.extensionValue17, e.extensionValue18, e.extensionValue19, e.extensionValue20),
                            block(e.extensionValue21, e.extensionValue22, e.extensionValue23, e.extensionValue24)))
        && io.fields(FIELDS(e.extensionValue25, e.extensionValue26, e.extensionValue27, e.extensionValue28,
                            e.extensionValue29, e.extensionValue30, e.extensionValue31, e.extensionValue32,
                            e.extensionValue33, e.extensionValue34, e.extensionValue35, e.extensionValue36,
                            e.extensionValue37, e.extensionValue38, e.extensionValue39, e.extensionValue40,
                            e.extensionValue41, e.extensionValue42, e.extensionValue43, e.extensionValue44))
        && io.fields(FIELDS(block(e.extensionValue45, e.extensionValue46), e.extensionValue47, e.extensionValue48,
                            e.extensionValue49, e.extensionValue50))
        && io.list(FIELDS(e.extensionWords), kReplaced);
  }
};

template <>
struct Layout<MachineUnitEntry> {
  static constexpr std::size_t kMinStoredSize = 28;
  static bool describe(auto& io, auto& e) {
    return io.fields(FIELDS(e.entryValue2, e.entryValue3, e.entryValue8, e.entryValue4, e.entryValue5, e.entryValue6,
                            e.entryValue7))
        && io.since(141, FIELDS(e.entryValue1));
  }
};

template <>
struct Layout<MachineUnit> {
  static constexpr std::size_t kMinStoredSize = 12;
  static bool describe(auto& io, auto& u) {
    return io.fields(FIELDS(u.unitKey1, u.unitKey2)) && io.list(FIELDS(u.unitEntries), kReplaced);
  }
};

// Machines have it since version 110.
template <>
struct Layout<MachineUnitTable> {
  static bool describe(auto& io, auto& t) {
    return io.fields(FIELDS(t.unitFlag1, t.unitFlag2, t.unitValue1, t.unitValue2, t.unitValue3, t.unitValue4,
                            t.unitValue5, t.unitValue6, t.unitValue7))
        && io.list(FIELDS(t.units), kReplaced)
        && io.since(121, FIELDS(t.unitValue8, t.unitValue9, t.unitValue10, t.unitValue11, t.unitValue12, t.unitValue13,
                                t.unitValue14, t.unitValue15, t.unitValue16))
        && io.since(141, FIELDS(t.unitFlag4, t.unitValue17, t.unitValue18, t.unitValue19, t.unitFlag5, t.unitValue20,
                                t.unitValue21))
        && io.since(154, FIELDS(t.unitValue22));
  }
};

}  // namespace oldtorvio::codec
