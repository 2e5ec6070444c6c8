// Stored form of a sheet behind its version word, and of the lists that only sheets have.
#pragma once
#include <algorithm>
#include <cstring>
#include <memory>

#include "OldTorvIO/sheet.h"
#include "src/frame/describe.h"
#include "src/frame/text.h"
#include "src/machine/machine_layout.h"
#include "src/material/param_layout.h"
#include "src/part/part_layout.h"
#include "src/records/shape_layout.h"
#include "src/records/small_layouts.h"

namespace oldtorvio::frame {

template <>
struct Layout<SheetPartList> {
  static bool describe(auto& io, auto& l) {
    std::int32_t partCount = io.countOf(l.parts);
    return io.fields(F(partCount))
        // Without parts not even the width is stored, and the list stays as it was.
        && io.when(partCount != 0, [&] {
             return io.fields(F(l.nameWidth))
                 // The width matters only where a name is stored.
                 && io.when(partCount > 0, [&] { return io.atMost(F(l.nameWidth), kWidestName); })
                 && io.clear(F(l.parts))
                 && io.when(partCount > 0, [&] { return describeParts(io, l, partCount); });
           });
  }

 private:
  static constexpr std::int32_t kWidestName = sizeof(TorvPart::partName);
  // A width below 1 would store no name, which is a failed read and a failed write.
  static bool describeParts(auto& io, auto& l, std::int32_t partCount) {
    return io.range(F(l.nameWidth), 1, kWidestName)
        && io.appendRun(partCount, F(l.parts), PartForm{PartForm::sheet, l.nameWidth});
  }
};

template <>
struct Layout<SheetSetupEntry> {
  static constexpr std::size_t kLeast = 66;
  static bool describe(auto& io, auto& e) {
    return io.record(F(e.entry)) && io.fields(F(e.entryBlocks[0], e.entryBlocks[1], e.entryBlocks[2]));
  }
};

template <>
struct Layout<SheetSetupList> {
  static bool describe(auto& io, auto& l) {
    std::int32_t entryCount = io.countOf(l.entries);
    return io.tail(F(entryCount))
        && io.when(entryCount != 0, [&] {
             return io.clear(F(l.entries))
                 && io.forgivingRun(entryCount, F(l.entries))
                 && io.ignored([&] { return io.record(F(l.current)); })
                 && io.ignored([&] {
                      return io.fields(F(l.currentBlocks[0], l.currentBlocks[1], l.currentBlocks[2]));
                    })
                 && io.fields(F(l.tailBlock, l.tailWord1, l.tailWord2));
           });
  }
};

template <>
struct Layout<SheetTextEntry> {
  static constexpr std::size_t kLeast = 792;
  static bool describe(auto& io, auto& e) {
    return io.fields(F(e.entryWord1, e.entryWord3, e.entryText1, e.entryText2, e.entryText3, e.entryWord4, e.entryWord5,
                       e.entryWord6, e.entryWord7))
        && io.since(180, F(e.entryWord9));
  }
};

template <>
struct Layout<NamedWorkList> {
  static constexpr std::size_t kLeast = 272;
  static bool describe(auto& io, auto& l) {
    return io.fields(F(l.listName, l.listWord1, l.listWord2, l.listWord3)) && io.countThenClear(F(l.entries));
  }
};

template <>
struct Layout<MachineExtensionEntry> {
  static constexpr std::size_t kLeast = 32;
  static bool describe(auto& io, auto& e) { return io.fields(F(e.headBlock, e.words)); }
};

template <>
struct Layout<ShapeWorkBlock> {
  static constexpr std::size_t kLeast = 68;
  static bool describe(auto& io, auto& b) {
    return io.fields(F(b.blockWords, b.blockValues[0], b.blockValues[1], b.blockValues[2], b.blockValues[3]))
        && io.record(F(b.blockShapes))
        && io.countThenClear(F(b.work));
  }
};

template <>
struct Layout<RowTable> {
  static bool describe(auto& io, auto& t) {
    return io.fields(F(t.count))
        && io.atMost(F(t.count), 25)
        && io.rows(t.count, [&](std::size_t i) { return io.fields(F(t.words[i], t.values[i])); });
  }
};

template <>
struct Layout<ClampRowTable> {
  static bool describe(auto& io, auto& t, std::int32_t clampCount) {
    return io.fields(F(t.count))
        && io.atMost(F(t.count), 25)
        && io.rows(t.count, [&](std::size_t i) {
             return io.leading(clampCount, F(t.words[i])) && io.fields(F(t.values[i]));
           });
  }
};

template <>
struct Layout<OldSheet> {
  static bool describe(auto& io, auto& s) {
    std::int32_t skeletonNameLength = sizeof(OldSheet::skeletonDosName);
    return io.fields(F(s.textWidth))
        && io.sized(F(s.sheetLabel), s.textWidth)
        && io.fields(F(s.width, s.height, s.thickness, s.headerWord))
        && io.since(100, [&] {
             return io.fields(F(skeletonNameLength))
                 && io.sized(F(s.skeletonDosName), skeletonNameLength)
                 && io.record(F(s.skeletonShapes));
           })
        && io.record(F(s.partList))
        && describeOwnShapes(io, io.unchanged(s))
        && io.countThenClear(F(s.workList))
        && io.record(F(s.rowTable))
        && io.record(F(s.clampInfo))
        && io.record(F(s.clampRowTable), s.clampInfo.clampCount)
        && io.tail([&] { return io.since(154, [&] { return describeSpareWord(io); }); })
        && describeParams(io, s)
        && io.fields(F(s.leadWords[0], s.leadWords[1], s.leadWords[2], s.leadWords[3], s.leadWords[4]))
        && io.since(54, F(s.leadWords[5]))
        && describeMachine(io, s)
        && io.since(60, [&] {
             return io.countThenClear(F(s.textEntries))
                 // Emptied before the count is read; a failure inside is ignored.
                 && io.clear(F(s.namedWorkLists))
                 && io.ignored([&] { return io.append(F(s.namedWorkLists)); });
           })
        && io.since(90, F(s.trailingWords))
        && io.since(102, F(s.utilization))
        && io.since(111, [&] {
             return io.rows(5, [&](std::size_t i) { return io.sized(F(s.partTexts[i]), s.textWidth); })
                 && io.fields(F(s.partTextWord));
           })
        && io.since(112, F(s.materialGroup, s.materialType, s.materialText3, s.materialText4))
        && io.tail([&] { return io.since(130, F(s.materialText5)) && io.since(140, F(s.lateValue)); })
        && io.since(152, [&] {
             // Its result has the reverse meaning, and is ignored.
             return io.ignored([&] { return io.reversed(F(s.blocks)); });
           })
        && io.since(161, F(s.lateText));
  }

 private:
  // The file's count decides, not the shapes that the record already holds.
  static bool describeOwnShapes(auto& io, auto& s) {
    std::int32_t shapeCount = io.countOf(s.shapes.shapes);
    return io.fields(F(s.shapes.listTag, s.shapes.listKind, shapeCount))
        && io.counted(shapeCount, F(s.shapes.shapes))
        && io.when(shapeCount > 0, [&] {
             return io.fields(F(s.processSlotCount))
                 && io.rows(s.processSlotCount, [&](std::size_t i) { return io.record(F(s.processSlots[i])); })
                 && io.countFirst(F(s.marks))
                 && io.countFirst(F(s.profiles))
                 && io.countFirst(F(s.stepTables))
                 && io.record(F(s.setupList))
                 && io.countFirst(F(s.patternItems));
           });
  }

  static bool describeSpareWord(auto& io) {
    std::int32_t spareWord = -1;
    return io.fields(F(spareWord));
  }

  // A table of version 0 was made by a caller, not loaded: a file has no layout for it. It is stored with
  // its contents in the layout of the file's version.
  static bool hasNoVersion(const ParamTable& table) { return table.version == 0; }
  static bool describeParams(auto& io, auto& s) {
    return io.differs([&] { return io.record(F(s.paramTable)); },
                      [&] {
                        const auto versioned =
                            hasNoVersion(s.paramTable) ? withVersion(s.paramTable, io.version()) : nullptr;
                        auto& paramTable = versioned ? *versioned : s.paramTable;
                        return io.record(F(paramTable));
                      });
  }
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
    return io.differs([] { return true; },
                      [&] {
                        std::memcpy(machinePath, s.machine.path, kPathWidth);
                        return true;
                      })
        && io.since(61, [&] { return io.sized(F(machinePath), s.textWidth); })
        && io.record(F(s.machine), MachineForm<std::remove_reference_t<decltype(s.shapes)>>{
                                       &s.shapes, false, hasNoVersion(s.paramTable) ? 256 : 0})
        && io.repair(s.machine, [&](auto& m) { setText(m.path, fixedText(machinePath)); })
        && io.when(s.machine.hasExtension != 0, [&] { return io.countFirst(F(s.machine.extension.extensionEntries)); })
        && io.when(s.machine.hasExtension == 0, F(s.optionWord));
  }
};

}  // namespace oldtorvio::frame
