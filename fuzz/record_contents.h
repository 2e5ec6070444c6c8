// What a record holds, as bytes that can be compared: two records are alike exactly if these are.
//
// Told by the record's own description, walked as if everything were stored: every version, every
// condition. So a field counts whether or not the file at hand stores it, a list counts with its length and
// all its elements, and numbers count as bits: a NaN equals itself and 0 differs from -0. What no
// description names stands in the `beside` of its record.
//
// Extent::all leaves out nothing but padding and the room that lists have reserved;
// tests/fault/record_contents_test.cpp holds it against the bytes of the records. Extent::counted, much
// quicker, leaves out what stands in arrays behind the count that the record holds for them (no load writes
// there without counting, so a difference would have shown when it was counted), entries of a parameter
// table that no layout stores, and the parameter table of a material inside a machine.
#pragma once
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "OldTorvIO/records.h"
#include "fuzz/record_pair.h"
#include "src/frame/codec/describe.h"
#include "src/machine/machine_layout.h"
#include "src/material/material_layout.h"
#include "src/part/part_layout.h"
#include "src/sheet/sheet_layout.h"
#include "src/tooling/inventory_layout.h"
#include "src/tooling/macro_layout.h"
#include "src/tooling/special_tool_layout.h"

namespace fuzzing {

namespace codec = oldtorvio::codec;

// What is told goes to sink.bytes(at, size); sink.list(list) says that a list begins there, and answers
// whether it is to be told: descriptions name some in two branches of which a file takes one.
template <class Sink>
class RecordTeller : public codec::RecordWalker<RecordTeller<Sink>> {
 public:
  RecordTeller(Sink& sink, Extent extent) : codec::RecordWalker<RecordTeller>(0), sink_(sink), extent_(extent) {}

  template <class Names, class... T>
  [[nodiscard]] bool fields(const codec::Fields<Names, T...>& f) {
    std::apply([&](auto&... m) { (one(m), ...); }, f.members);
    return true;
  }
  template <class X>
  [[nodiscard]] bool since(int, const X& x) {
    return this->nested(x);
  }
  template <class X, class... D>
  [[nodiscard]] bool since(int, const X& x, const codec::Otherwise<D...>&) {
    return this->nested(x);
  }
  template <class X>
  [[nodiscard]] bool below(int, const X& x) {
    return this->nested(x);
  }
  template <class X>
  [[nodiscard]] bool between(int, int, const X& x) {
    return this->nested(x);
  }
  template <class X>
  [[nodiscard]] bool when(bool, const X& x) {
    return this->nested(x);
  }
  template <class X>
  [[nodiscard]] bool leading(std::int64_t, const X& x) {
    return fields(x);
  }
  template <class X>
  [[nodiscard]] bool slice(const X& x, std::size_t first, std::size_t last) {
    auto& all = x.only();
    sink_.bytes(&all[first], (last - first + 1) * sizeof all[0]);
    return true;
  }
  template <class X>
  [[nodiscard]] bool sized(const X& x, std::int32_t size) {
    constexpr std::size_t kLarge = 1024;
    auto& field = x.only();
    static_assert(sizeof(field[0]) == 1);
    if (extent_ == Extent::all || sizeof field < kLarge)
      sink_.bytes(std::data(field), sizeof field);
    else if (size >= 1 && static_cast<std::size_t>(size) <= sizeof field)
      sink_.bytes(std::data(field), static_cast<std::size_t>(size));
    return true;
  }
  template <class X>
  [[nodiscard]] bool lengthText(const X& x) {
    return text(x.only());
  }
  template <class X>
  [[nodiscard]] bool lengthTextOrEmpty(const X& x, std::int32_t) {
    return text(x.only());
  }
  template <std::size_t Width, class X>
  [[nodiscard]] bool textItem(const X& x) {
    return text(x.only());
  }
  [[nodiscard]] bool reserved(std::size_t) { return true; }
  template <class Fn>
  [[nodiscard]] bool padded(std::size_t, const Fn& chain) {
    return chain();
  }

  // A count that was refused counts nothing.
  template <class X, class T>
  [[nodiscard]] bool range(const X& x, T lowest, T highest) {
    const auto value = static_cast<std::int64_t>(x.only());
    const bool isRefused = lowest <= highest && (value < lowest || value > highest);
    refusedCount_ = isRefused ? std::optional(value) : std::nullopt;
    return true;
  }
  template <class X>
  [[nodiscard]] bool atMost(const X& x, std::int64_t highest) {
    const auto value = static_cast<std::int64_t>(x.only());
    refusedCount_ = value > highest ? std::optional(value) : std::nullopt;
    return true;
  }
  template <class Fn>
  [[nodiscard]] bool rows(std::int64_t count, const Fn& row) {
    if (count == refusedCount_ || extent_ == Extent::all) return true;
    for (std::int64_t i = 0; i < count; ++i) (void)row(static_cast<std::size_t>(i));
    return true;
  }
  template <class R>
  static R& unchanged(R& record) {
    return record;
  }
  template <class R, class Fn>
  [[nodiscard]] bool beforeWrite(const R&, const Fn&) {
    return true;
  }
  template <class Read, class Written>
  [[nodiscard]] bool differs(const Read& read, const Written&) {
    return read();
  }
  // The layouts that are only read store what the others store.
  template <class Read>
  [[nodiscard]] bool onlyRead(const Read&) {
    return true;
  }
  template <class T>
  constexpr T either(T forReaders, T) const {
    return forReaders;
  }

  template <class R, class... A>
  [[nodiscard]] bool walk(R& record, const A&... more) {
    beside(record);
    if (extent_ == Extent::all) arrays(record);
    return codec::Layout<R>::describe(*this, record, more...);
  }

  template <class V>
  std::int32_t countOf(const V& list) const {
    return static_cast<std::int32_t>(list.size());
  }
  template <class X, class... A>
  [[nodiscard]] bool countFirst(const X& x, const A&... more) {
    return list(x.only(), more...);
  }
  template <class X, class... A>
  [[nodiscard]] bool counted(std::int32_t, const X& x, const A&... more) {
    return list(x.only(), more...);
  }
  template <class X, class... A>
  [[nodiscard]] bool countThenClear(const X& x, const A&... more) {
    return list(x.only(), more...);
  }
  template <class X, class... A>
  [[nodiscard]] bool append(const X& x, const A&... more) {
    return list(x.only(), more...);
  }
  template <class X, class... A>
  [[nodiscard]] bool appendRun(std::int64_t, const X& x, const A&... more) {
    return list(x.only(), more...);
  }
  template <class X, class... A>
  [[nodiscard]] bool reusedElement(const X& x, const A&... more) {
    return list(x.only(), more...);
  }
  template <class X, class... A>
  [[nodiscard]] bool forgivingRun(std::int64_t, const X& x, const A&... more) {
    return list(x.only(), more...);
  }
  template <class X, class... A>
  [[nodiscard]] bool invertedSuccessList(const X& x, const A&... more) {
    return list(x.only(), more...);
  }
  template <class X, class... A>
  [[nodiscard]] bool single(const X& x, const A&... more) {
    return list(x.only(), more...);
  }
  template <class X, class... A>
  [[nodiscard]] bool interleaved(const X& x, const A&... more) {
    const auto& [first, second] = x.members;
    return list(first) && list(second, more...);
  }
  // Told by their pattern.
  template <class X>
  [[nodiscard]] bool columns(const X&) {
    return true;
  }
  // Told by each shape.
  template <class X, class M>
  [[nodiscard]] bool trailer(const X&, M) {
    return true;
  }

 private:
  // What no description names.
  void beside(const auto&) {}
  void beside(oldtorvio::Shape& s) { one(s.trailerValue); }
  void beside(oldtorvio::StepTable& t) { all(t.memoryFlag1, t.memoryFlag2, t.memoryWords); }
  void beside(oldtorvio::SetupEntry& e) { all(e.memoryByte1, e.memoryByte2, e.memoryBytes, e.memoryWord); }
  void beside(oldtorvio::PatternItem& i) { all(i.memoryWord1, i.memoryWord2); }
  void beside(oldtorvio::OldTool& t) {
    all(t.fileVersion, t.symmetryFlags, t.runtimeIndexA, t.runtimeIndexB, t.lateFlag, t.lateFlag2);
    (void)text(t.name);
  }
  void beside(oldtorvio::ToolStationList& l) { all(l.stationModeCode, l.spareWord); }
  void beside(oldtorvio::Pattern& p) {
    all(p.transformKind, p.transform);
    (void)walk(p.scratchShapes);
    pairs(p.bindFirst);
    pairs(p.bindSecond);
    (void)(list(p.bindThird) && list(p.bindFourth) && list(p.bindFifth));
  }
  void beside(oldtorvio::PlacedShapeList& l) { all(l.shapes.listKind, l.shapes.listTag); }
  void beside(oldtorvio::TorvPart& p) {
    all(p.version, p.partName, p.partFullDosName, p.recordWord, p.transformKind, p.transform, p.memoryWord1,
        p.memoryWord2, p.memoryWord3);
    (void)walk(p.scratchShapes);
  }
  void beside(oldtorvio::MachineGrid& g) { all(g.gridWidth, g.gridIsNarrow, g.gridValue3); }
  void beside(oldtorvio::MachineExtension& e) { (void)list(e.extensionEntries); }
  void beside(oldtorvio::MachineUnitTable& t) { one(t.unitFlag3); }
  void beside(oldtorvio::OldMachine& m) {
    all(m.path, m.version, m.textWidth, m.secondTextWidth);
    for (oldtorvio::MachineSetup* setup : {&m.setup2, &m.setup3}) {
      all(setup->sizeX, setup->sizeY, setup->clampValue1, setup->clampValue2, setup->machineWord91,
          setup->machineWord92);
      (void)walk(setup->clampInfo);
    }
  }
  void beside(oldtorvio::OldMaterial& m) { all(m.path, m.version); }
  void beside(oldtorvio::OldToolInventory& v) { all(v.version, v.path); }
  void beside(oldtorvio::OldMacro& m) { one(m.version); }
  void beside(oldtorvio::SheetTextEntry& e) { all(e.entryWord2, e.entryText4, e.entryWord8); }
  void beside(oldtorvio::OldSheet& s) {
    all(s.version, s.sheetName, s.sheetPath, s.transformKind, s.transform, s.processSlotMode, s.auxiliaryFlag);
    (void)(walk(s.scratchShapes) && list(s.auxiliaryList));
  }

  // Arrays that descriptions walk as far as they are counted.
  void arrays(const auto&) {}
  void arrays(oldtorvio::StepTable& t) {
    for (std::size_t i = 0; i < std::size(t.stepWord); ++i)
      all(t.stepByteA[i], t.stepWord[i], t.stepByteB[i], t.stepByteC[i]);
  }
  void arrays(oldtorvio::TorvPart& p) { places(p.processSlots); }
  void arrays(oldtorvio::ParamTable& t) { all(t.intParams, t.realParams, t.textParams); }
  void arrays(oldtorvio::MaterialToolSetTable& t) { each(t.sets); }
  void arrays(oldtorvio::MaterialPalette& p) {
    all(p.red, p.green, p.blue);
    for (auto* groups :
         {&p.groupsA, &p.groupsB, &p.groupsC, &p.groupsD, &p.groupsE, &p.groupsF, &p.groupsG, &p.groupsH})
      each(*groups);
  }
  void arrays(oldtorvio::MaterialStageTable& t) { each(t.blocks); }
  void arrays(oldtorvio::AngleRule& r) { all(r.ruleValues, r.ruleAngles); }
  void arrays(oldtorvio::OldMaterial& m) {
    (void)walk(m.params);
    for (oldtorvio::SettingList& settings : m.settingLists) (void)list(settings);
  }
  void arrays(oldtorvio::OldToolInventory& v) { all(v.pairFirst, v.pairSecond); }
  void arrays(oldtorvio::OldMachine& m) {
    all(m.triads, m.numberColumns);
    for (auto* column : {&m.textColumnA, &m.textColumnB})
      for (const std::string& one : *column) (void)text(one);
  }
  void arrays(oldtorvio::RowTable& t) { all(t.words, t.values); }
  void arrays(oldtorvio::ClampRowTable& t) { all(t.words, t.values); }
  void arrays(oldtorvio::OldSheet& s) {
    places(s.processSlots);
    all(s.partTexts);
  }

  template <class T, std::size_t N>
  void each(T (&records)[N]) {
    for (T& record : records) (void)walk(record);
  }
  template <class T, std::size_t N>
  void places(oldtorvio::LazyArray<T, N>& records) {
    if (!sink_.list(records)) return;
    // A look at the const one makes none.
    for (const T& record : std::as_const(records)) (void)walk(const_cast<T&>(record));
  }

  void all(auto&... members) { (one(members), ...); }
  template <class M>
  [[gnu::always_inline]] void one(const M& member) {
    static_assert(std::is_arithmetic_v<std::remove_all_extents_t<M>>);
    sink_.bytes(&member, sizeof member);
  }
  template <class Stored, class T>
  void one(const codec::As<Stored, T>& as) {
    one(as.member);
  }
  template <class... T>
  void one(const codec::Block<T...>& block) {
    std::apply([&](auto&... m) { (one(m), ...); }, block.members);
  }
  bool text(const std::string& text) {
    if (sink_.list(text)) {
      one(text.size());
      sink_.bytes(text.data(), text.size());
    }
    return true;
  }
  template <class V, class... A>
  bool list(V& elements, const A&... more) {
    if (!sink_.list(elements)) return true;
    one(elements.size());
    if constexpr (std::is_arithmetic_v<typename V::value_type>)
      sink_.bytes(elements.data(), elements.size() * sizeof(typename V::value_type));
    else
      for (auto& element : elements) (void)walk(element, more...);
    return true;
  }
  template <class V>
  void pairs(const V& elements) {
    if (!sink_.list(elements)) return;
    one(elements.size());
    for (const auto& [first, second] : elements) all(first, second);
  }

  Sink& sink_;
  Extent extent_;
  std::optional<std::int64_t> refusedCount_;
};

// Where a record stands is nothing to the teller, but the descriptions ask for it.
inline bool tell(auto& teller, auto& record) { return teller.walk(record); }
inline bool tell(auto& teller, oldtorvio::Pattern& pattern) { return teller.walk(pattern, true); }
inline bool tell(auto& teller, oldtorvio::OldTool& tool) { return teller.walk(tool, true); }
inline bool tell(auto& teller, oldtorvio::TorvPart& part) { return teller.walk(part, oldtorvio::PartForm{}); }
inline bool tell(auto& teller, oldtorvio::OldMachine& machine) {
  oldtorvio::ShapeList none;
  return teller.walk(machine, oldtorvio::MachineForm<oldtorvio::ShapeList>{&none});
}

// The bytes themselves, in memory that is used over and over.
class ContentBytes {
 public:
  void begin() {
    used_ = 0;
    ++turn_;
    listCount_ = 0;
  }
  // In place, where the size of most is known.
  [[gnu::always_inline]] void bytes(const void* from, std::size_t size) {
    if (bytes_.size() - used_ < size) [[unlikely]]
      grow(size);
    if (size > 0) std::memcpy(bytes_.data() + used_, from, size);
    used_ += size;
  }
  // Once each, as long as there is room to remember them.
  template <class V>
  bool list(const V& list) {
    if (listCount_ == kMostLists) return true;
    const void* const which = &list;
    for (std::size_t at = reinterpret_cast<std::uintptr_t>(which) / 8;; ++at) {
      Told& told = told_[at % told_.size()];
      if (told.turn != turn_) {
        told = {which, turn_};
        ++listCount_;
        return true;
      }
      if (told.list == which) return false;
    }
  }
  std::span<const std::byte> told() const { return std::span(bytes_).first(used_); }

 private:
  struct Told {
    const void* list = nullptr;
    std::uint64_t turn = 0;
  };
  static constexpr std::size_t kMostLists = 8192;

  [[gnu::noinline]] void grow(std::size_t size) { bytes_.resize(2 * (bytes_.size() + size)); }

  std::vector<std::byte> bytes_;
  std::size_t used_ = 0;
  std::vector<Told> told_ = std::vector<Told>(2 * kMostLists);
  std::uint64_t turn_ = 0;
  std::size_t listCount_ = 0;
};

// Whether two records hold the same.
template <class Record>
bool haveEqualContents(Record& one, Record& other, Extent extent) {
  static ContentBytes contents[2];
  Record* const records[] = {&one, &other};
  for (int i = 0; i < 2; ++i) {
    contents[i].begin();
    RecordTeller teller(contents[i], extent);
    (void)tell(teller, *records[i]);
  }
  const auto first = contents[0].told(), second = contents[1].told();
  return first.size() == second.size() && std::memcmp(first.data(), second.data(), first.size()) == 0;
}

}  // namespace fuzzing
