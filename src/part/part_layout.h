// Stored form of a part: patterns, the part extensions, the body wherever it is embedded, group part files.
#pragma once
#include <algorithm>
#include <cstring>
#include <utility>

#include "OldTorvIO/part_list.h"
#include "src/frame/codec/describe.h"
#include "src/frame/text/text.h"
#include "src/records/shape_layout.h"
#include "src/records/small_layouts.h"
#include "src/records/tool_layout.h"

namespace oldtorvio {

// Kinds in this band make a pattern a group.
inline constexpr std::int32_t kFirstGroupKind = 32000;
inline constexpr codec::GrownLimit kLastGroupKind{32006, 110, 32004};
inline bool isGroupKind(std::int32_t kind, int version) {
  return kind >= kFirstGroupKind && kind <= kLastGroupKind.at(version);
}

// Where a part is embedded, which decides what is stored besides its body.
struct PartForm {
  enum Place { file, group, sheet } place = file;
  std::int32_t nameBlockSize = 0;  // of the name blocks before it; 0 in a sheet: there are none
  bool stopEarly = false;          // end after the descriptions

  bool embedded() const { return place == sheet; }
};

// One entry of all five bind columns.
struct ToolBinding {
  std::uint32_t first[2] = {};
  std::uint32_t second[2] = {};
  std::uint32_t third = 0, fourth = 0, fifth = 0;
};

template <class P>  // Pattern or const Pattern
class BindColumns {
 public:
  using Row = ToolBinding;
  explicit BindColumns(P& pattern) : p_(pattern) {}

  std::size_t size() const { return p_.bindFirst.size(); }
  bool sameLengths() const {
    return p_.bindSecond.size() == size() && p_.bindThird.size() == size() && p_.bindFourth.size() == size() &&
           p_.bindFifth.size() == size();
  }
  ToolBinding row(std::size_t i) const {
    return {{p_.bindFirst[i].first, p_.bindFirst[i].second},
            {p_.bindSecond[i].first, p_.bindSecond[i].second},
            p_.bindThird[i],
            p_.bindFourth[i],
            p_.bindFifth[i]};
  }
  void clear() {
    each([](auto& column) { column.clear(); });
  }
  void reserve(std::size_t count) {
    each([count](auto& column) { column.reserve(count); });
  }
  void append(const ToolBinding& row) {
    p_.bindFirst.emplace_back(row.first[0], row.first[1]);
    p_.bindSecond.emplace_back(row.second[0], row.second[1]);
    p_.bindThird.push_back(row.third);
    p_.bindFourth.push_back(row.fourth);
    p_.bindFifth.push_back(row.fifth);
  }

 private:
  template <class Fn>
  void each(const Fn& fn) {
    fn(p_.bindFirst);
    fn(p_.bindSecond);
    fn(p_.bindThird);
    fn(p_.bindFourth);
    fn(p_.bindFifth);
  }

  P& p_;
};

namespace codec {

template <>
struct Layout<ToolBinding> {
  static constexpr std::size_t kMinStoredSize = 16;
  static constexpr bool kFastPath = true;
  static bool describe(auto& io, auto& b) {
    return io.fields(FIELDS(b.first, b.second))
        && io.since(156, FIELDS(b.third))
        && io.since(160, FIELDS(b.fourth, b.fifth));
  }
};

template <>
struct Layout<Pattern> {
  static constexpr std::size_t kMinStoredSize = 44;
  static constexpr std::size_t minStoredSize(int version) { return version < 80 ? kMinStoredSize : 52; }
  static bool describe(auto& io, auto& p, bool embedded) {
    BindColumns bindings(p);
    return io.fields(FIELDS(p.headWord, p.gridCount1, p.gridCount2, p.gridStep1, p.gridStep2,
                            block(p.originX, p.originY, p.rotationCos, p.rotationSin), p.patternWord, p.groupKind))
        && io.afterRead(p, "groupKind becomes 0 if it is no group kind", [&](auto& r) {
             if (!isGroupKind(r.groupKind, io.version())) r.groupKind = 0;
           })
        && io.when(groupKind(io, p), [&] {
             return io.fields(FIELDS(p.groupBlock, p.groupWords))
                 && io.since(110, FIELDS(p.bindWord1, p.bindWord2, p.bindWord3, p.bindByte, p.bindWord4));
           })
        // A short read in the late group data ends the pattern: head and lists stay as they are.
        && io.optionalTail([&] {
             return io.when(groupKind(io, p), [&] {
               return io.since(110, [&] { return io.fields(FIELDS(p.bindShorts)) && io.list(FIELDS(bindings), kPositiveCountFirst); })
                   && io.since(151, FIELDS(p.lateWord1, p.lateWord2, p.lateWord3))
                   && io.between(151, 155, [&] {
                        return io.afterRead(p, "all bindThird become lateWord3", [](auto& r) {
                          std::fill(r.bindThird.begin(), r.bindThird.end(), r.lateWord3);
                        });
                      });
             });
           })
        && io.when(custom("outside a sheet", !embedded), [&] {
             return io.afterRead(p, "headWord becomes 0, the grid 1 by 1 without steps", [](auto& r) { resetHead(r); });
           })
        && io.list(FIELDS(p.items), kCountFirst)
        && io.since(80, [&] { return io.list(FIELDS(p.profiles), kCountFirst) && io.list(FIELDS(p.stepTables), kCountFirst); });
  }

 private:
  static auto groupKind(const auto& io, auto& p) {
    return within(FIELDS(p.groupKind), kFirstGroupKind, kLastGroupKind, io.version());
  }
  // In a part file a pattern is placed once, at the part's own origin.
  static void resetHead(Pattern& p) {
    p.headWord = 0;
    p.gridCount1 = p.gridCount2 = 1;
    p.gridStep1 = p.gridStep2 = 0;
  }
};

template <>
struct Layout<PlacedShapeList> {
  static constexpr std::size_t kMinStoredSize = 12;
  static bool describe(auto& io, auto& l) {
    return io.fields(FIELDS(l.placedBlock)) && io.list(FIELDS(l.shapes.shapes), kReusedElement);
  }
};

template <>
struct Layout<ShapeGroup> {
  static constexpr std::size_t kMinStoredSize = 16;
  static bool describe(auto& io, auto& g) {
    return io.fields(FIELDS(g.groupWord))
        && io.since(152, FIELDS(g.groupByte), otherwise(0))
        && io.record(FIELDS(g.shapes));
  }
};

template <>
struct Layout<ContourGroup> {
  static constexpr std::size_t kMinStoredSize = 16;
  static bool describe(auto& io, auto& g) {
    return io.fields(FIELDS(g.contourWord1, g.contourWord2, g.contourWord3))
        && io.list(FIELDS(g.shapes), kReplaced)
        && io.since(155, FIELDS(g.contourByte));
  }
};

template <>
struct Layout<BindingEntry> {
  static constexpr std::size_t kMinStoredSize = 57;
  static bool describe(auto& io, auto& e) {
    return io.fields(FIELDS(e.entryWord2, e.entryWord1)) && io.record(FIELDS(e.shape));
  }
};

template <>
struct Layout<BindingSet> {
  static constexpr std::size_t kMinStoredSize = 12;
  static bool describe(auto& io, auto& s) {
    return io.fields(FIELDS(s.setWord)) && io.list(FIELDS(s.numbers), kReplaced) && io.list(FIELDS(s.entries), kReplaced);
  }
};

template <>
struct Layout<TorvPart> {
  static constexpr std::size_t kMinStoredSize = 384;
  static constexpr std::size_t minStoredSize(int version) { return version < 62 ? kMinStoredSize : 1433; }
  static bool describe(auto& io, auto& p, const PartForm& form) {
    const bool isPlaced = form.place == PartForm::sheet && form.nameBlockSize != 0;
    return io.when(chosen(form.place == PartForm::group),
                   [&] { return io.sized(FIELDS(p.partName), form.nameBlockSize); })
        && io.when(chosen(isPlaced), [&] { return describePlacedPart(io, p, form); })
        && io.when(chosen(!isPlaced), [&] { return describeBody(io, p, form); });
  }

 private:
  // In a sheet the names are blocks of their own; the record gets their texts after the body.
  static bool describePlacedPart(auto& io, auto& p, const PartForm& form) {
    char partName[256] = {}, partFullDosName[256] = {};
    return io.beforeWrite(p, "the name blocks are those of partName and partFullDosName", [&](auto& r) {
             std::memcpy(partName, r.partName, sizeof partName);
             std::memcpy(partFullDosName, r.partFullDosName, sizeof partFullDosName);
           })
        && io.sized(FIELDS(partName), form.nameBlockSize)
        && io.sized(FIELDS(partFullDosName), form.nameBlockSize)
        && describeBody(io, p, form)
        && io.afterRead(p, "the texts of the name blocks become partName and partFullDosName", [&](auto& r) {
             frame::copyText(r.partName, partName);
             frame::setText(r.partFullDosName, fixedText(partFullDosName));
           });
  }

  static bool describeBody(auto& io, auto& p, const PartForm& form) {
    const bool embedded = form.embedded();
    return io.fields(FIELDS(p.width, p.height, p.productName, p.assemblyName, p.materialName, p.partKind, p.partWord1,
                            p.thickness, p.partWord2))
        && io.record(FIELDS(p.shapes))
        && io.record(FIELDS(p.setupList))
        && io.fields(FIELDS(p.noteText))
        && io.since(80, FIELDS(p.headFlag), otherwise(0))
        && io.since(80, [&] { return io.fields(FIELDS(p.hasOptions)) && io.reserved(499); })
        && io.when(chosen(!embedded), [&] {
             return io.clear(FIELDS(p.patterns))
                 && io.record(FIELDS(p.toolStations))
                 && io.list(FIELDS(p.patterns), kSingle, embedded)
                 && io.afterRead(p, "the pattern gets as many items as there are shapes",
                                 [](auto& r) { r.patterns.back().items.resize(r.shapes.shapes.size()); });
           })
        && io.when(chosen(embedded), [&] { return io.list(FIELDS(p.patterns), kClearedFirst, embedded); })
        && io.fields(FIELDS(p.processSlotCount))
        && io.require(within(FIELDS(p.processSlotCount), 0, 250))
        && io.rows(p.processSlotCount, [&](std::size_t i) { return io.record(FIELDS(p.processSlots[i])); })
        && io.list(FIELDS(p.marks), kCountFirst)
        && io.list(FIELDS(p.profiles), kCountFirst)
        && io.list(FIELDS(p.stepTables), kCountFirst)
        && io.fields(FIELDS(p.tailWord1, p.tailWord2))
        && io.since(62, FIELDS(p.descriptionA, p.descriptionB, p.revision, p.materialType, p.descriptionC),
                    otherwise(""))
        && io.since(62, FIELDS(p.lateIndex), otherwise(-1))
        && io.when(chosen(!form.stopEarly), [&] { return describeLatePart(io, p, embedded); });
  }

  static bool describeLatePart(auto& io, auto& p, bool embedded) {
    return io.clear(FIELDS(p.workList))
        && io.since(71, FIELDS(p.workKind), otherwise(2))
        && io.since(71, [&] { return io.list(FIELDS(p.workList), kReplaced); })
        && io.since(80, [&] {
             return describeShapeTrailer(io, p.shapes)
                 && io.when(notEquals(FIELDS(p.hasOptions), 0), FIELDS(p.optionWord, p.optionReal, p.optionCount,
                                                                       p.optionValue, p.optionText));
           })
        && io.since(102, [&] { return io.record(FIELDS(p.placedShapes)); })
        && io.since(110, FIELDS(p.customTextA, p.customTextB, p.customWord1, p.customWord2, p.customText1,
                                p.customText2, p.customText3, p.customWord3, p.customWord4))
        && io.since(111, FIELDS(p.customTextD, p.customTextC))
        && io.since(112, FIELDS(p.customTextE))
        && io.since(140, FIELDS(p.lateBlock1, p.lateBlock2))
        && io.since(151, [&] { return io.list(FIELDS(p.nestShapeGroups), kAppended); })
        && io.since(152, FIELDS(p.lateWords))
        && io.since(154, [&] { return io.list(FIELDS(p.contourGroups), kClearedFirst); })
        && io.since(161, [&] { return io.list(FIELDS(p.bindingSets), kReplaced); })
        && io.since(162, [&] { return io.when(chosen(embedded), FIELDS(p.woNumber)); })
        && io.since(180, FIELDS(p.finalTextA, p.finalTextB, p.finalTextC, p.finalTextD, p.finalWord1, p.finalWord2));
  }
};

// A group part file after its version word: one part and then extraPartCount more.
template <class Parts>  // a vector of TorvPart, const in a writer
struct GroupPartFile {
  Parts& parts;
  std::int32_t extraPartCount = 0;
  std::int32_t nameBlockSize = 256;
};

template <class Parts>
struct Layout<GroupPartFile<Parts>> {
  static bool describe(auto& io, auto& g) {
    constexpr std::int32_t kWidest = sizeof(TorvPart::partName);
    return io.fields(FIELDS(g.extraPartCount, g.nameBlockSize))
        && io.require(within(FIELDS(g.nameBlockSize), 1, kWidest))
        && io.list(FIELDS(g.parts), appended(std::int64_t{1} + std::max(g.extraPartCount, 0)), PartForm{PartForm::group, g.nameBlockSize});
  }
};

}  // namespace codec
}  // namespace oldtorvio
