// Stored form of a sheet after its version word, and of the lists that only sheets have.
#pragma once
#include <algorithm>
#include <cstring>
#include <memory>

#include "OldTorvIO/sheet.h"
#include "src/frame/codec/describe.h"
#include "src/frame/text/text.h"
#include "src/machine/machine_layout.h"
#include "src/material/param_layout.h"
#include "src/part/part_layout.h"
#include "src/records/shape_layout.h"
#include "src/records/small_layouts.h"

namespace oldtorvio::codec {

template <>
struct Layout<SheetPartList> {
  static bool describe(auto& io, auto& l) {
    std::int32_t partCount = io.countOf(l.parts);
    return io.fields(FIELDS(partCount))
        // Without parts not even the width is stored, and the list stays as it was.
        && io.when(notEquals(FIELDS(partCount), 0), [&] {
             return io.fields(FIELDS(l.nameWidth))
                 // The width matters only where a name is stored.
                 && io.when(above(FIELDS(partCount), 0), [&] { return io.require(atMost(FIELDS(l.nameWidth), kWidestName)); })
                 && io.clear(FIELDS(l.parts))
                 && io.when(above(FIELDS(partCount), 0), [&] { return describeParts(io, l, partCount); });
           });
  }

 private:
  static constexpr std::int32_t kWidestName = sizeof(TorvPart::partName);
  // A width below 1 would store no name, which is a failed read and a failed write.
  static bool describeParts(auto& io, auto& l, std::int32_t partCount) {
    return io.require(within(FIELDS(l.nameWidth), 1, kWidestName))
        && io.list(FIELDS(l.parts), appended(partCount), PartForm{PartForm::sheet, l.nameWidth});
  }
};

template <>
struct Layout<SheetSetupEntry> {
  static constexpr std::size_t kMinStoredSize = 66;
  static bool describe(auto& io, auto& e) {
    return io.record(FIELDS(e.entry)) && io.fields(FIELDS(e.entryBlocks[0], e.entryBlocks[1], e.entryBlocks[2]));
  }
};

template <>
struct Layout<SheetSetupList> {
  static bool describe(auto& io, auto& l) {
    std::int32_t entryCount = io.countOf(l.entries);
    return io.optionalTail(FIELDS(entryCount))
        && io.when(notEquals(FIELDS(entryCount), 0), [&] {
             return io.clear(FIELDS(l.entries))
                 && io.list(FIELDS(l.entries), appendedAndKept(entryCount))
                 && io.continueOnFailure([&] { return io.record(FIELDS(l.current)); })
                 && io.continueOnFailure([&] {
                      return io.fields(FIELDS(l.currentBlocks[0], l.currentBlocks[1], l.currentBlocks[2]));
                    })
                 && io.fields(FIELDS(l.tailBlock, l.tailWord1, l.tailWord2));
           });
  }
};

template <>
struct Layout<SheetTextEntry> {
  static constexpr std::size_t kMinStoredSize = 792;
  static bool describe(auto& io, auto& e) {
    return io.fields(FIELDS(e.entryWord1, e.entryWord3, e.entryText1, e.entryText2, e.entryText3, e.entryWord4,
                            e.entryWord5, e.entryWord6, e.entryWord7))
        && io.since(180, FIELDS(e.entryWord9));
  }
};

template <>
struct Layout<NamedWorkList> {
  static constexpr std::size_t kMinStoredSize = 272;
  static bool describe(auto& io, auto& l) {
    return io.fields(FIELDS(l.listName, l.listWord1, l.listWord2, l.listWord3)) && io.list(FIELDS(l.entries), kReplaced);
  }
};

template <>
struct Layout<MachineExtensionEntry> {
  static constexpr std::size_t kMinStoredSize = 32;
  static bool describe(auto& io, auto& e) { return io.fields(FIELDS(e.headBlock, e.words)); }
};

template <>
struct Layout<ShapeWorkBlock> {
  static constexpr std::size_t kMinStoredSize = 68;
  static bool describe(auto& io, auto& b) {
    return io.fields(FIELDS(b.blockWords, b.blockValues[0], b.blockValues[1], b.blockValues[2], b.blockValues[3]))
        && io.record(FIELDS(b.blockShapes))
        && io.list(FIELDS(b.work), kReplaced);
  }
};

template <>
struct Layout<RowTable> {
  static bool describe(auto& io, auto& t) {
    return io.fields(FIELDS(t.count))
        && io.require(atMost(FIELDS(t.count), 25))
        && io.rows(t.count, [&](std::size_t i) { return io.fields(FIELDS(t.words[i], t.values[i])); });
  }
};

template <>
struct Layout<ClampRowTable> {
  static bool describe(auto& io, auto& t, std::int32_t clampCount) {
    return io.fields(FIELDS(t.count))
        && io.require(atMost(FIELDS(t.count), 25))
        && io.rows(t.count, [&](std::size_t i) {
             return io.leading(clampCount, FIELDS(t.words[i])) && io.fields(FIELDS(t.values[i]));
           });
  }
};

template <>
struct Layout<OldSheet> {
  static bool describe(auto& io, auto& s) {
    std::int32_t skeletonNameLength = sizeof(OldSheet::skeletonDosName);
    return io.fields(FIELDS(s.textWidth))
        && io.sized(FIELDS(s.sheetLabel), s.textWidth)
        && io.fields(FIELDS(s.width, s.height, s.thickness, s.headerWord))
        && io.since(100, [&] {
             return io.fields(FIELDS(skeletonNameLength))
                 && io.sized(FIELDS(s.skeletonDosName), skeletonNameLength)
                 && io.record(FIELDS(s.skeletonShapes));
           })
        && io.record(FIELDS(s.partList))
        && describeOwnShapes(io, io.unchanged(s))
        && io.list(FIELDS(s.workList), kReplaced)
        && io.record(FIELDS(s.rowTable))
        && io.record(FIELDS(s.clampInfo))
        && io.record(FIELDS(s.clampRowTable), s.clampInfo.clampCount)
        && io.optionalTail([&] { return io.since(154, [&] { return describeSpareWord(io); }); })
        && describeParams(io, s)
        && io.fields(FIELDS(s.leadWords[0], s.leadWords[1], s.leadWords[2], s.leadWords[3], s.leadWords[4]))
        && io.since(54, FIELDS(s.leadWords[5]))
        && describeMachine(io, s)
        && io.since(60, [&] {
             return io.list(FIELDS(s.textEntries), kReplaced)
                 && io.continueOnFailure([&] { return io.list(FIELDS(s.namedWorkLists), kClearedFirst); });
           })
        && io.since(90, FIELDS(s.trailingWords))
        && io.since(102, FIELDS(s.utilization))
        && io.since(111, [&] {
             return io.rows(5, [&](std::size_t i) { return io.sized(FIELDS(s.partTexts[i]), s.textWidth); })
                 && io.fields(FIELDS(s.partTextWord));
           })
        && io.since(112, FIELDS(s.materialGroup, s.materialType, s.materialText3, s.materialText4))
        && io.optionalTail([&] { return io.since(130, FIELDS(s.materialText5)) && io.since(140, FIELDS(s.lateValue)); })
        && io.since(152, [&] {
             // Its result has the reverse meaning, and is ignored.
             return io.continueOnFailure([&] { return io.list(FIELDS(s.blocks), kInvertedSuccess); });
           })
        && io.since(161, FIELDS(s.lateText));
  }

 private:
  // The stored count decides, not the shapes that the record already holds.
  static bool describeOwnShapes(auto& io, auto& s) {
    std::int32_t shapeCount = io.countOf(s.shapes.shapes);
    return io.fields(FIELDS(s.shapes.listTag, s.shapes.listKind, shapeCount))
        && io.list(FIELDS(s.shapes.shapes), counted(shapeCount))
        && io.when(above(FIELDS(shapeCount), 0), [&] {
             return io.fields(FIELDS(s.processSlotCount))
                 && io.rows(s.processSlotCount, [&](std::size_t i) { return io.record(FIELDS(s.processSlots[i])); })
                 && io.list(FIELDS(s.marks), kCountFirst)
                 && io.list(FIELDS(s.profiles), kCountFirst)
                 && io.list(FIELDS(s.stepTables), kCountFirst)
                 && io.record(FIELDS(s.setupList))
                 && io.list(FIELDS(s.patternItems), kCountFirst);
           });
  }

  static bool describeSpareWord(auto& io) {
    std::int32_t spareWord = -1;
    return io.fields(FIELDS(spareWord));
  }

  // A table of version 0 was made by a caller, not loaded: a file has no layout for it. It is stored with
  // its contents in the layout of the file's version.
  static bool hasNoVersion(const ParamTable& table) { return table.version == 0; }
  static bool describeParams(auto& io, auto& s) {
    std::unique_ptr<ParamTable> versioned;
    return io.beforeWrite(s.paramTable, "a paramTable of version 0 is stored in the version of the file", [&](auto& table) {
             if (hasNoVersion(table)) versioned = withVersion(table, io.version());
           })
        && describeParamTable(io, versioned ? *versioned : s.paramTable);
  }
  static bool describeParamTable(auto& io, auto& paramTable) { return io.record(FIELDS(paramTable)); }
  static std::unique_ptr<ParamTable> withVersion(const ParamTable& table, int version) {
    auto versioned = std::make_unique<ParamTable>(table);
    versioned->version = static_cast<std::uint16_t>(version < 60 ? 52 : version);
    // With its NUL, as the suite stores it. A name that fills its field has none.
    const std::size_t nameSize = std::min(fixedText(table.name).size() + 1, sizeof table.name);
    versioned->nameLength = std::max(table.nameLength, static_cast<std::int32_t>(nameSize));
    return versioned;
  }

  static bool describeMachine(auto& io, auto& s) {
    constexpr std::size_t kPathWidth = 256;
    char machinePath[kPathWidth] = {};
    return io.beforeWrite(s.machine, "machinePath is the path of the machine",
                          [&](auto& m) { std::memcpy(machinePath, m.path, kPathWidth); })
        && io.since(61, [&] { return io.sized(FIELDS(machinePath), s.textWidth); })
        && io.record(FIELDS(s.machine), MachineForm<std::remove_reference_t<decltype(s.shapes)>>{
                                       &s.shapes, false, hasNoVersion(s.paramTable) ? 256 : 0})
        && io.afterRead(s.machine, "the machine's path becomes machinePath, empty below 61", [&](auto& m) { frame::setText(m.path, fixedText(machinePath)); })
        && io.when(notEquals(FIELDS(s.machine.hasExtension), 0),
                   [&] { return io.list(FIELDS(s.machine.extension.extensionEntries), kCountFirst); })
        && io.when(equals(FIELDS(s.machine.hasExtension), 0), FIELDS(s.optionWord));
  }
};

}  // namespace oldtorvio::codec
