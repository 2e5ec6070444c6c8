// Stored form of a machine after its version word; sheets embed the same.
#pragma once
#include <algorithm>
#include <cmath>
#include "OldTorvIO/machine.h"
#include "src/frame/codec/describe.h"
#include "src/machine/machine_parts_layout.h"
#include "src/material/material_layout.h"
#include "src/material/shape_program_layout.h"
#include "src/records/shape_layout.h"
#include "src/records/small_layouts.h"
#include "src/records/tool_layout.h"

namespace oldtorvio {

// What the owner of a machine passes to its description.
template <class Shapes>  // ShapeList, const in a writer
struct MachineForm {
  Shapes* shapes = nullptr;      // whose trailer values may be stored in the machine
  bool writeShapeFlag = false;  // the writer marks and stores them
  std::int32_t widthOfNone = 0;  // the width of the stored text if textWidth is 0
};

namespace codec {

template <>
struct Layout<OldMachine> {
  static bool describe(auto& io, auto& m, const auto& form) {
    std::int32_t textWidth = kTextWidth;
    return io.fields(FIELDS(textWidth))
        && io.keep(m, [&](auto& r) { r.textWidth = textWidth; })
        && io.sized(FIELDS(m.machineText1), m.textWidth != 0 ? m.textWidth : io.either(0, form.widthOfNone))
        && io.fields(FIELDS(m.machineKind))
        && io.padded(500, [&] { return describeHead(io, m, form, textWidth); })
        && describeTable(io, m, io.either(textWidth, kTextWidth))
        && io.when(atLeast(FIELDS(m.gridMode), 0), [&] { return describeGrids(io, m); })
        && io.afterRead(m, "a negative gridMode becomes 0", [](auto& r) { r.gridMode = std::max(r.gridMode, 0); })
        && io.fields(FIELDS(m.stepListPresent))
        && io.when(notEquals(FIELDS(m.stepListPresent), 0), [&] { return io.list(FIELDS(m.stepTables), kCountFirst); })
        && describeWords(io, m)
        && io.since(80, [&] { return describeMaterial(io, m, form); })
        && describeLateTables(io, m)
        && describeTail(io, m);
  }

 private:
  // A save stores this width whatever the record's widths are.
  static constexpr std::int32_t kTextWidth = 256;

  // textWidth: the width that was read last, which is that of the texts that follow.
  static bool describeHead(auto& io, auto& m, const auto& form, std::int32_t& textWidth) {
    return io.fields(FIELDS(m.limitsPresent))
        && io.when(equals(FIELDS(m.limitsPresent), 1), [&] {
             return io.fields(FIELDS(m.limitA, m.limitB)) && io.optionalTail(FIELDS(m.limitC, m.limitWord));
           })
        && io.when(notEquals(FIELDS(m.limitsPresent), 1), [&] {
             return io.afterRead(m, "limitA and limitB become -0.125, limitC 0.048, limitWord 0", [](auto& r) {
               r.limitA = r.limitB = -0.125F;
               r.limitC = 0.048F;
               r.limitWord = 0;
             });
           })
        && io.fields(FIELDS(m.secondTextPresent))
        && io.when(equals(FIELDS(m.secondTextPresent), 1), [&] {
             return io.fields(FIELDS(textWidth))
                 && io.keep(m, [&](auto& r) { r.secondTextWidth = textWidth; })
                 && io.sized(FIELDS(m.secondText), m.secondTextWidth);
           })
        // Four bytes are written, of which a reader takes the first as the value and the second as the mark that
        // shapes follow. Both sides then fill up to the same length.
        && io.differs([&] { return io.fields(FIELDS(as<std::int8_t>(m.smallValue), m.shapesPresent)); },
                      [&] {
                        return io.fields(FIELDS(m.smallValue))
                            && io.when(custom("with the shapes of a sheet", form.writeShapeFlag), [&] {
                                 return io.beforeWrite(m, "shapesPresent becomes 1", [](auto& r) { r.shapesPresent = 1; })
                                     && io.fields(FIELDS(m.shapesPresent));
                               });
                      });
  }

  static bool describeTable(auto& io, auto& m, std::int32_t textWidth) {
    return io.fields(FIELDS(block(m.sizeX, m.sizeY)))
        && io.record(FIELDS(m.frame))
        && io.record(FIELDS(m.clampInfo))
        && io.fields(FIELDS(m.clampValue1, m.clampValue2, m.clampWord))
        && io.sized(FIELDS(m.machineText2), textWidth)
        && io.sized(FIELDS(m.machineText3), textWidth)
        && io.record(FIELDS(m.workArea))
        && io.record(FIELDS(m.stationsA))
        && io.since(61, FIELDS(m.stationWord), otherwise(0))
        && io.since(61, [&] { return io.record(FIELDS(m.stationsB)) && io.record(FIELDS(m.stationsC)); })
        && io.fields(FIELDS(m.blockMode))
        && io.when(equals(FIELDS(m.blockMode), 2), FIELDS(m.blockB))
        && io.when(oneOf(FIELDS(m.blockMode), 1, 2), FIELDS(m.blockA))
        && io.fields(FIELDS(m.gridMode));
  }

  static bool describeGrids(auto& io, auto& m) {
    std::int32_t segmentCount = io.countOf(m.segments);
    return io.when(equals(FIELDS(m.gridMode), 2), [&] { return io.record(FIELDS(m.gridB)); })
        && io.when(oneOf(FIELDS(m.gridMode), 1, 2), [&] { return io.record(FIELDS(m.gridA)); })
        && io.fields(FIELDS(m.gridWord1, m.gridAngle, m.gridWord3))
        && io.optionalTail(FIELDS(segmentCount))
        && io.when(notEquals(FIELDS(segmentCount), 0), [&] {
             return io.clear(FIELDS(m.segments))
                 && io.fields(FIELDS(m.segmentBox))
                 && io.list(FIELDS(m.segments), appended(segmentCount));
           })
        && io.fields(FIELDS(m.gridFlag1, m.gridFlag2))
        && describeClampInfoAgain(io, m)
        && io.fields(FIELDS(m.hasExtension))
        && io.when(notEquals(FIELDS(m.hasExtension), 0), [&] { return io.record(FIELDS(m.extension)); })
        && io.fields(FIELDS(m.machineWord91, m.machineWord92, m.programMode))
        && io.when(equals(FIELDS(m.programMode), 1), [&] { return io.record(FIELDS(m.programA)); })
        && io.when(equals(FIELDS(m.programMode), 2), [&] { return io.record(FIELDS(m.programB)); })
        && io.fields(FIELDS(m.machineWord93, m.machineWord94, m.machineWord95, m.machineWord96, m.machineWord97,
                            m.machineWord98, m.machineWord99, m.machineWord100, m.machineWord101, m.machineWord102,
                            m.machineWord103, m.machineWord104, m.machineWord105, m.machineWord106,
                            m.machineWord107));
  }

  // Stored a second time; a load keeps the second. If the second cannot be read, the first stays.
  static bool describeClampInfoAgain(auto& io, auto& m) {
    ClampInfo clampInfo = io.either(ClampInfo(), ClampInfo(m.clampInfo));
    return io.record(FIELDS(clampInfo))
        && io.afterRead(m, "this clampInfo replaces the first", [&](auto& r) { r.clampInfo = clampInfo; });
  }

  static bool describeWords(auto& io, auto& m) {
    return io.since(60, [&] {
             return io.fields(FIELDS(m.machineWord1, m.machineWord2, m.machineWord3, m.machineWord4, m.machineWord5,
                                     m.machineWord6, m.machineWord7, m.machineWord8, m.machineWord9, m.machineWord10,
                                     m.machineWord11))
                 && io.afterRead(m, "machineWord1 becomes sizeX if its absolute value is below 0.0001",
                                 [](auto& r) { if (isBelowLimit(r.machineWord1)) r.machineWord1 = r.sizeX; });
           })
        && io.since(62, FIELDS(m.machineWord12, m.machineWord13, m.machineWord14, m.machineWord15, m.machineWord16,
                               m.machineWord17, m.machineWord18, m.machineWord19, m.machineWord20, m.machineWord21,
                               m.machineWord22, m.machineWord23, m.machineWord24, m.machineWord25))
        // Stored a second time; a load keeps the second.
        && io.since(62, FIELDS(m.machineWord97))
        && io.since(62, FIELDS(m.machineWord26, m.machineWord27, m.machineWord28, m.machineWord29, m.machineWord30,
                               m.machineWord31, m.machineWord32, m.machineWord33, m.machineWord34, m.machineWord35,
                               m.machineWord36, m.machineWord37, m.machineWord38, m.machineWord39, m.machineWord40,
                               m.machineWord41, m.machineWord42, m.machineWord43, m.machineWord44, m.machineWord45,
                               m.machineWord46, m.machineWord47, m.machineWord48, m.machineWord49, m.machineWord50,
                               m.machineWord51, m.machineWord52, m.machineWord53))
        && io.since(62, FIELDS(m.ncPath, m.ncExtension))
        && io.since(62, FIELDS(m.machineWord54, m.machineWord55, m.machineWord56, m.machineWord57, m.machineWord58,
                               m.machineWord59, m.machineWord60, m.machineWord61))
        && io.since(71, [&] { return io.fields(FIELDS(m.machineWord62, m.machineWord63)) && io.record(FIELDS(m.programC)); })
        && io.since(80, [&] { return io.record(FIELDS(m.programD)); })
        && io.since(80, FIELDS(m.machineWord64))
        && io.since(80, FIELDS(m.machineWord65, m.machineWord66), otherwise(-1, -1))
        && io.since(80, FIELDS(m.machineWord67, m.machineWord68, m.machineWord69, m.machineWord70, m.machineWord71,
                               m.machineWord72, m.machineWord73, m.machineWord74, m.machineWord75, m.machineWord76,
                               m.machineWord77, m.machineWord78, m.wideValue1, m.wideValue2, m.machineWord79));
  }
  // Compared in double precision: the float nearest to 0.0001 is below it.
  static bool isBelowLimit(float value) { return std::fabs(static_cast<double>(value)) < 0.0001; }

  static bool describeMaterial(auto& io, auto& m, const auto& form) {
    return io.record(FIELDS(m.material))
        && io.fields(FIELDS(m.machineWord80, m.machineWord81, m.machineWord82))
        && io.when(custom("reader (writer only with the shapes of a sheet)", io.either(true, form.writeShapeFlag)), [&] {
             return io.when(custom("in a machine file", form.shapes == nullptr),
                            [&] { return io.require(notEquals(FIELDS(m.shapesPresent), 1)); })
                 && io.when(equals(FIELDS(m.shapesPresent), 1), [&] { return describeTrailer(io, form.shapes); });
           });
  }

  template <class Shapes>
  static bool describeTrailer(auto& io, Shapes* shapes) {
    Shapes none{};  // for a walk that only describes: a machine file has been refused by now
    return describeShapeTrailer(io, shapes != nullptr ? *shapes : none);
  }

  static bool describeLateTables(auto& io, auto& m) {
    std::int32_t columnCount = kColumnSize;
    return io.since(90, FIELDS(m.machineWord83, m.machineWord84, m.machineWord85, m.machineWord86, m.machineWord87,
                               m.machineWord88, m.machineWord89, m.machineWord90))
        && io.optionalTail([&] {
             return io.since(90, FIELDS(m.lateByteA, m.lateWord8))
                 && io.since(100, FIELDS(m.flagTriple[0], m.flagTriple[1], m.flagTriple[2]))
                 && io.since(101, FIELDS(m.triadWord1, m.triadWord2, m.triadCount));
           })
        && io.since(101, [&] {
             return io.require(atMost(FIELDS(m.triadCount), 255))
                 && io.rows(m.triadCount, [&](std::size_t i) { return io.fields(FIELDS(m.triads[i])); });
           })
        && io.since(110, [&] {
             return io.fields(FIELDS(m.unitWord))
                 && io.continueOnFailure([&] { return io.record(FIELDS(m.unitTable)); })
                 && io.fields(FIELDS(m.machineWord108, m.machineWord109, m.machineWord110, m.machineWord111,
                                     m.machineWord112, m.machineWord113, m.machineWord114, m.machineWord115,
                                     m.machineWord116, m.machineWord117, m.machineWord118, m.machineWord119,
                                     m.machineWord120, m.machineWord121, m.machineWord122, m.machineWord123))
                 && io.rows(6, [&](std::size_t i) {
                      return describeColumnCount(io, columnCount) && io.leading(columnCount, FIELDS(m.numberColumns[i]));
                    })
                 && describeColumnCount(io, columnCount)
                 && io.rows(columnCount, [&](std::size_t i) { return io.template textItem<256>(FIELDS(m.textColumnA[i])); })
                 && describeColumnCount(io, columnCount)
                 && io.rows(columnCount, [&](std::size_t i) { return io.template textItem<256>(FIELDS(m.textColumnB[i])); });
           })
        && io.since(111, FIELDS(m.displayName, m.displayTail))
        && io.since(112, FIELDS(m.lateWord1, m.lateWord2))
        && io.since(112, FIELDS(m.lateWord5, m.lateWord4, m.lateWord3), otherwise(0.0001F, 0, 1));
  }
  static constexpr std::int32_t kColumnSize = 3;
  static bool describeColumnCount(auto& io, std::int32_t& columnCount) {
    return io.fields(FIELDS(columnCount))
        && io.require(atMost(FIELDS(columnCount), kColumnSize));
  }

  static bool describeTail(auto& io, auto& m) {
    std::int32_t lateLength = 0;
    return io.optionalTail([&] {
             return io.since(130, [&] {
                      return io.fields(FIELDS(m.lateText1, m.lateWord6, m.lateText2, m.lateExtension, m.lateWord7))
                          && io.reserved(13 * 8 + 2 * 4)
                          && io.fields(FIELDS(lateLength))
                          && io.when(above(FIELDS(lateLength), 0), [&] { return io.reserved(static_cast<std::size_t>(lateLength)); });
                    })
                 && io.since(141, FIELDS(m.lateByteB))
                 // The writer stores these at every version.
                 && io.differs([&] { return io.since(151, [&] { return describeLateWords(io, m); }); },
                               [&] { return describeLateWords(io, m); })
                 && io.below(151, [&] {
                      return io.afterRead(m, kEarlyLateWords, [](auto& r) {
                        r.machineWord124 = r.machineWord126 = 0;
                        r.machineWord125 = r.machineWord127 = 1.5F;
                        r.machineWord129 = r.machineWord130 = 1;
                      });
                    })
                 && io.differs([&] { return io.since(152, FIELDS(m.lateByteC)); }, [&] { return io.fields(FIELDS(m.lateByteC)); });
           })
        && io.afterRead(m, kFinish, [&](auto& r) { finish(r, io.version()); })
        && io.since(154, [&] {
             return io.fields(FIELDS(m.setupWords, block(m.setup3.sizeX, m.setup3.sizeY)))
                 && io.record(FIELDS(m.setup3.clampInfo))
                 && io.fields(FIELDS(m.setup3.clampValue1, m.setup3.clampValue2, m.setup3.machineWord91,
                                     m.setup3.machineWord92));
           })
        && io.since(157, FIELDS(m.endText1))
        && io.since(170, [&] { return io.fields(FIELDS(m.endWord)) && io.reserved(2 * 100 * 4); })
        && io.since(180, FIELDS(m.endText2));
  }
  static constexpr const char* kEarlyLateWords =
      "machineWord124 and 126 become 0, machineWord125 and 127 1.5, machineWord129 and 130 1";
  static bool describeLateWords(auto& io, auto& m) {
    return io.fields(FIELDS(m.machineWord124, m.machineWord125, m.machineWord126, m.machineWord127, m.machineWord128,
                            m.machineWord129, m.machineWord130, m.machineWord131, m.machineWord132));
  }

  static constexpr const char* kFinish =
      "limitB becomes the larger of areaValues[0] and [1] if that is above it, limitA becomes limitB; setup2, below 154 "
      "also setup3, become the first setup";
  static void finish(auto& m, int version) {
    const float larger = std::max(m.workArea.areaValues[0], m.workArea.areaValues[1]);
    if (larger > m.limitB) m.limitB = larger;
    m.limitA = m.limitB;
    m.setup2 = {m.sizeX, m.sizeY, m.clampInfo, m.clampValue1, m.clampValue2, m.machineWord91, m.machineWord92};
    if (version < 154) m.setup3 = m.setup2;
  }
};

}  // namespace codec
}  // namespace oldtorvio
