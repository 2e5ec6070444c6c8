// Records with random content that every writer can store and that a load gives back.
#pragma once
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <iterator>
#include <memory>
#include <random>
#include <string>

#include "src/frame/versions.h"
#include "torvio/values/all_members.h"

namespace testing_support {

namespace values = oldtorvio::values;

// A record takes random content in each member that files store; makeStorable() then corrects what a writer refuses or
// a load changes. The same seed makes the same records on every host.
class RandomRecords {
 public:
  // Any bits, so that floats include infinities and NaN; or sizes, small numbers and names as real files have them.
  enum class Content { anyBits, plausible };

  explicit RandomRecords(std::uint32_t seed, int mostElements = 3, Content content = Content::anyBits)
      : engine_(seed), most_(mostElements), isPlausible_(content == Content::plausible) {}

  template <class... T>
  void bits(T&... fields) {
    (fill(fields), ...);
  }
  int upTo(int most) { return static_cast<int>(engine_() % static_cast<unsigned>(most + 1)); }
  bool flip() { return upTo(1) == 1; }

  oldtorvio::Shape shape() { return made<oldtorvio::Shape>(); }
  oldtorvio::OldTool tool() { return made<oldtorvio::OldTool>(); }
  oldtorvio::ToolStation station() { return made<oldtorvio::ToolStation>(); }
  oldtorvio::ProcessSlot slot() { return made<oldtorvio::ProcessSlot>(); }
  oldtorvio::StepTable stepTable() { return made<oldtorvio::StepTable>(); }
  oldtorvio::SetupEntry setupEntry() { return made<oldtorvio::SetupEntry>(); }
  oldtorvio::ProfileRecord profile() { return made<oldtorvio::ProfileRecord>(); }
  oldtorvio::PatternItem item() { return made<oldtorvio::PatternItem>(); }
  oldtorvio::WorkEntry work() { return made<oldtorvio::WorkEntry>(); }
  oldtorvio::MarkEntry mark() { return made<oldtorvio::MarkEntry>(); }
  // A fixed text.
  template <std::size_t N>
  void name(char (&field)[N]) {
    fill(field);
  }
  // ---- the record of a file of that version --------------------------------------------------------

  // A sheet gets everything but blocks, which stay empty: no sound file leaves any.
  template <class Record>
  void record(Record& record, int version) {
    version_ = version;
    fill(record);
  }
  // tableVersion() is the version of the parameter table, if that is not all of the file.
  template <class TableVersion>
  void record(oldtorvio::OldMaterial& material, int version, TableVersion tableVersion) {
    fill(material);
    paramTable(material.params, oldtorvio::frame::isParamTableVersion(version) ? version : tableVersion());
  }
  void record(oldtorvio::OldMaterial& material, int version) {
    record(material, version, [] { return 80; });
  }
  // A group part.
  void record(oldtorvio::SheetPartList& list, int version, int parts) {
    for (; parts > 0; --parts) record(list.parts.emplace_back(), version);
  }
  void record(oldtorvio::SheetPartList& list, int version) { record(list, version, 1 + upTo(1)); }

  template <class Record, class... Choice>
  std::unique_ptr<Record> newRecord(int version, const Choice&... choice) {
    auto owner = std::make_unique<Record>();
    record(*owner, version, choice...);
    return owner;
  }

  // A table that the writer stores in the layout of its version word: 52, or 60 to 499.
  void paramTable(oldtorvio::ParamTable& table, int version) {
    fillMembers(table);
    table.version = static_cast<std::uint16_t>(version);
    // A zero in the file would keep what the record held.
    for (const int zeroKeeps : {490, 492}) table.intParams[zeroKeeps] |= 1;
    table.nameLength = 1 + upTo(255);
  }

 private:
  // ---- any content ---------------------------------------------------------------------------------

  template <class T>
  T made() {
    T value{};
    fill(value);
    return value;
  }
  template <class T>
  void fill(T& value) {
    if (isPlausible_ && fillPlausibly(value)) return;
    if constexpr (values::Number<T>) {
      unsigned char stored[sizeof value];
      fillBytes(stored, sizeof stored);
      if constexpr (std::endian::native == std::endian::big) std::reverse(std::begin(stored), std::end(stored));
      std::memcpy(&value, stored, sizeof value);
    } else if constexpr (values::FixedText<T>) {
      fillBytes(std::data(value), std::size(value));
    } else if constexpr (values::Text<T>) {
      value = letters(upTo(12));
    } else if constexpr (values::Array<T>) {
      for (auto& element : value) fill(element);
    } else if constexpr (values::kIsPair<T>) {
      fill(value.first);
      fill(value.second);
    } else if constexpr (values::List<T>) {
      value.clear();
      for (int n = upTo(most_); n > 0; --n) fill(value.emplace_back());
    } else if constexpr (values::HasMembers<T>) {
      fillMembers(value);
      makeStorable(value);
    }  // Owners fill as much of a lazy array as they count.
  }
  // Whether the value is a number or a text, which has plausible content now.
  template <class T>
  bool fillPlausibly(T& value) {
    if constexpr (std::is_floating_point_v<T>) {
      value = static_cast<T>(plausibleSize());
    } else if constexpr (values::Number<T>) {
      value = static_cast<T>(plausibleNumber(std::is_signed_v<T>));
    } else if constexpr (values::FixedText<T>) {
      plausibleText(std::data(value), std::size(value));
    } else if constexpr (values::Text<T>) {
      value = letters(flip() ? 0 : upTo(24));
    } else {
      return false;
    }
    return true;
  }
  // Lengths in millimetres or inches, angles, factors.
  double plausibleSize() {
    static constexpr double kUsual[] = {1, -1, 0.5, 0.05, 0.125, 1.5, 25.4, 90, 0.7853982, 1.5707964, 3.1415927, 1250};
    switch (upTo(9)) {
      case 0:
      case 1:
      case 2:
        return 0;
      case 3:
      case 4:
        return kUsual[upTo(11)];
      case 5:
        return upTo(5000);
      case 6:
        return -upTo(1000000) / 1000.0;
      case 7:
        return upTo(1000000) / 100000.0;
      default:
        return upTo(3000000) / 1000.0;
    }
  }
  // Counts, numbers, modes, sometimes flags or colours.
  std::int64_t plausibleNumber(bool isSigned) {
    switch (upTo(9)) {
      case 0:
      case 1:
      case 2:
      case 3:
      case 4:
        return 0;
      case 5:
      case 6:
        return 1 + upTo(9);
      case 7:
        return upTo(1000);
      case 8:
        return isSigned ? -1 : std::int64_t{1} << upTo(30);
      default:
        return upTo(3) > 0 ? upTo(255) : upTo(0xFFFFFF);
    }
  }
  // A name and NULs, or any bytes after the first NUL; some names fill their field.
  void plausibleText(char* field, std::size_t width) {
    std::memset(field, 0, width);
    if (upTo(2) == 0) return;
    const int most = static_cast<int>(std::min<std::size_t>(width - 1, upTo(9) == 0 ? width : 40));
    const std::string name = words(upTo(40) == 0 ? static_cast<int>(width) : upTo(most));
    std::memcpy(field, name.data(), name.size());
    if (upTo(14) == 0 && name.size() + 1 < width) fillBytes(field + name.size() + 1, width - name.size() - 1);
  }
  std::string words(int length) {
    static constexpr const char* kWords[] = {"BRACKET", "PLATE-2",  "cover left", "C:\\PARTS\\",
                                             "1.4301",  "St37-2",   "Geh\xE4use", "O'NEIL & CO",
                                             "t=2.0",   "A-4711/3", "FRAME",      "job 12"};
    std::string text;
    while (std::ssize(text) < length) text.append(text.empty() ? "" : " ").append(kWords[upTo(11)]);
    text.resize(static_cast<std::size_t>(length));
    return text;
  }
  void fill(oldtorvio::ParamTable&) {}  // has a version of its own, see paramTable
  template <class Record>
  void fillMembers(Record& record) {
    values::Members<Record>::of(record, [this](const values::MemberInfo& info, auto& member) {
      if (info.isStored) this->fill(member);
    });
  }
  void fillBytes(void* to, std::size_t size) {
    auto* at = static_cast<unsigned char*>(to);
    for (std::size_t i = 0; i < size; i += 4) {
      const auto word = static_cast<std::uint32_t>(engine_());
      for (std::size_t k = i; k < std::min(i + 4, size); ++k) at[k] = static_cast<unsigned char>(word >> (8 * (k - i)));
    }
  }
  std::string letters(int length) {
    if (isPlausible_) return words(length);
    std::string text;
    for (; length > 0; --length) text += static_cast<char>('!' + upTo(90));
    return text;
  }
  // A count as files hold them: none below 1.
  template <class T>
  void count(T& field, int most) {
    field = static_cast<T>(upTo(4) == 0 ? -upTo(3) : upTo(most));
  }
  template <class T>
  void choose(T& field, int most) {
    field = static_cast<T>(upTo(most));
  }
  // What no file stores of an array keeps its defaults.
  template <class T, std::size_t N>
  static void keep(std::int64_t count, T (&array)[N], const T (&defaults)[N]) {
    for (auto i = static_cast<std::size_t>(std::max(count, std::int64_t{0})); i < N; ++i) array[i] = defaults[i];
  }
  template <std::size_t N>
  static void clearText(char (&text)[N]) {
    std::memset(text, 0, N);
  }
  // Sets a text as a load does that takes it from `width` stored bytes: what the field held after it stays.
  template <std::size_t N>
  void takeName(char (&field)[N], int width) {
    const std::string name = letters(upTo(width));
    std::memcpy(field, name.c_str(), std::min(name.size() + 1, N));
  }

  // ---- what is stored and comes back ---------------------------------------------------------------

  void makeStorable(auto&) {}
  void makeStorable(oldtorvio::Shape& s) {
    static const oldtorvio::Shape kFresh;
    choose(s.type, 25);
    choose(s.valueCount, 9);
    choose(s.extraCount, 2);
    keep(s.valueCount, s.values, kFresh.values);
    keep(s.extraCount, s.extraValues, kFresh.extraValues);
    s.textFlag = flip() ? 1 + upTo(5) : -upTo(5);
    if (s.textFlag <= 0) clearText(s.text);
    if (s.type == 4 || s.type == 5) s.rangeValue = s.auxValue4;
  }
  void makeStorable(oldtorvio::OldTool& t) {
    static constexpr int kCodes[] = {0, 1, 3, 103, 107, 108, 999, -1};
    t.shapeCode = kCodes[upTo(7)];
    if (t.shapeCode != 108) {
      std::fill(std::begin(t.specialBlock), std::end(t.specialBlock), std::uint8_t{0});
      clearText(t.specialToolPath);
    }
    t.symmetryFlags = 0;
    t.fileVersion = 0;
  }
  void makeStorable(oldtorvio::OldSpecialTool& s) {
    clearText(s.tool.specialToolPath);
    s.tool.symmetryFlags = static_cast<std::uint32_t>(1 + upTo(1));
  }
  void makeStorable(oldtorvio::ToolStation& s) {
    s.stationType = flip() ? 0 : 2;
    s.valueCount = 1 + upTo(5);
  }
  void makeStorable(oldtorvio::ToolStationList& l) {
    l.tools.clear();
    for (std::size_t n = l.stations.size(); n > 0; --n) l.tools.push_back(tool());
  }
  void makeStorable(oldtorvio::StepTable& t) {
    static const oldtorvio::StepTable kFresh;
    t.stepCount = static_cast<std::int8_t>(flip() ? upTo(20) : -upTo(100));
    keep(t.stepCount, t.stepByteA, kFresh.stepByteA);
    keep(t.stepCount, t.stepWord, kFresh.stepWord);
    keep(t.stepCount, t.stepByteB, kFresh.stepByteB);
    keep(t.stepCount, t.stepByteC, kFresh.stepByteC);
  }
  void makeStorable(oldtorvio::SetupList& l) {
    if (l.entries.empty()) l = {};
  }
  void makeStorable(oldtorvio::SheetSetupList& l) {
    if (l.entries.empty()) l = {};
  }
  // Half of them groups.
  void makeStorable(oldtorvio::Pattern& p) {
    p.groupKind = flip() ? 32000 + upTo(version_ < 110 ? 4 : 6) : 0;
    const std::size_t bindings = p.groupKind == 0 ? 0 : p.bindFirst.size();
    p.bindFirst.resize(bindings);
    p.bindSecond.resize(bindings);
    for (auto& [first, second] : p.bindSecond) bits(first, second);
    for (auto* column : {&p.bindThird, &p.bindFourth, &p.bindFifth}) {
      column->resize(bindings);
      for (std::uint32_t& one : *column) bits(one);
    }
    if (p.groupKind != 0) return;
    const oldtorvio::Pattern fresh;
    keep(0, p.groupBlock, fresh.groupBlock);
    keep(0, p.groupWords, fresh.groupWords);
    keep(0, p.bindShorts, fresh.bindShorts);
    p.bindWord1 = p.bindWord2 = p.bindWord3 = p.bindWord4 = p.lateWord1 = p.lateWord2 = p.lateWord3 = 0;
    p.bindByte = 0;
  }
  void makeStorable(oldtorvio::PlacedShapeList& l) {
    const oldtorvio::ShapeList fresh;
    l.shapes.listKind = fresh.listKind;
    l.shapes.listTag = fresh.listTag;
    // One element reads them all: a text or a note that a shape lacks would be that of the one before.
    for (oldtorvio::Shape& s : l.shapes.shapes) s.note += '-';
  }
  // As a part file keeps it: one pattern, whose head is reset and that has an item for each shape.
  void makeStorable(oldtorvio::TorvPart& p) {
    const oldtorvio::Pattern fresh;
    clearText(p.partFullDosName);
    p.version = 0;
    p.patterns.assign(1, made<oldtorvio::Pattern>());
    oldtorvio::Pattern& pattern = p.patterns.front();
    pattern.headWord = fresh.headWord;
    pattern.gridCount1 = pattern.gridCount2 = fresh.gridCount1;
    pattern.gridStep1 = pattern.gridStep2 = fresh.gridStep1;
    pattern.items.clear();
    for (std::size_t n = p.shapes.shapes.size(); n > 0; --n) pattern.items.push_back(item());
    choose(p.hasOptions, 1);
    choose(p.processSlotCount, most_);
    for (int i = 0; i < p.processSlotCount; ++i) p.processSlots[i] = slot();
  }
  // As a sheet keeps it.
  void place(oldtorvio::TorvPart& p, int nameWidth) {
    static constexpr char kFreshName[sizeof p.partName] = "NEW PART";
    std::memcpy(p.partName, kFreshName, sizeof kFreshName);
    takeName(p.partName, nameWidth);
    takeName(p.partFullDosName, nameWidth);
    p.toolStations = {};
    fill(p.patterns);
  }

  void makeStorable(oldtorvio::OldMaterial& m) {
    m.version = 0;
    m.name = letters(most_ == 0 ? 0 : upTo(40) == 0 ? 10000 : upTo(30));
    if (m.modeB == 6) m.modeB = 10;
    std::int32_t* const choices[8] = {&m.choice1, &m.choice2, &m.choice3, &m.choice4,
                                      &m.choice5, &m.choice6, &m.choice7, &m.choice8};
    static constexpr int kLimits[8] = {4, 8, 4, 6, 8, 4, 6, 8};
    for (int i = 0; i < 8; ++i) {
      const int bank = flip() ? 1000 : 0;
      *choices[i] = bank + upTo(kLimits[i]);
    }
    count(m.settingListCount, 6);
  }
  void makeStorable(oldtorvio::MaterialToolSetTable& t) { count(t.setCount, 6); }
  void makeStorable(oldtorvio::MaterialPalette& p) {
    count(p.colourCount, 20);
    count(p.groupCount, 5);
  }
  void makeStorable(oldtorvio::MaterialRuleLists& l) {
    // A load adds the default rules after any other number.
    l.angleRules.clear();
    while (l.angleRules.size() < 6) l.angleRules.push_back(made<oldtorvio::AngleRule>());
    for (oldtorvio::AngleRule& r : l.angleRules) r.angleCount = static_cast<std::int8_t>(upTo(13) - 3);
    for (oldtorvio::AngleRule& r : l.pairRules) r.angleCount = static_cast<std::int8_t>(upTo(8) - 3);
  }

  void makeStorable(oldtorvio::ClampInfo& c) { count(c.clampCount, 8); }
  void makeStorable(oldtorvio::MachineGrid& g) {
    static const oldtorvio::MachineGrid kFresh;
    choose(g.gridWidth, 65535);
    g.cellByteCount = 1 + (most_ > 0 && upTo(30) == 0 ? upTo(39999) : upTo(most_ == 0 ? 9 : 99));
    keep(g.cellByteCount, g.gridCells, kFresh.gridCells);
  }
  void makeStorable(oldtorvio::MachineExtension& e) { e.extensionEntries.clear(); }  // only sheets store them
  void makeStorable(oldtorvio::OldMachine& m) {
    m.version = 0;
    clearText(m.path);
    // A save stores this width of every text, whatever the record says.
    m.textWidth = m.secondTextWidth = 256;
    m.shapesPresent = 0;
    choose(m.smallValue, 127);
    choose(m.limitsPresent, 2);
    choose(m.secondTextPresent, 2);
    choose(m.blockMode, 3);
    choose(m.gridMode, 3);
    choose(m.programMode, 3);
    m.hasExtension = upTo(3) - 1;
    m.stepListPresent = upTo(2) - 1;
    count(m.triadCount, most_ == 0 ? 0 : 255);
    for (auto* column : {&m.textColumnA, &m.textColumnB})
      for (std::string& text : *column) text = letters(flip() ? 256 : upTo(12));
    // One nearer to zero becomes the sizeX.
    if (std::fabs(static_cast<double>(m.machineWord1)) < 0.0001) m.machineWord1 = 0.5F;
    const float larger = std::max(m.workArea.areaValues[0], m.workArea.areaValues[1]);
    if (larger > m.limitB) m.limitB = larger;
    m.limitA = m.limitB;
    m.setup2 = {m.sizeX, m.sizeY, m.clampInfo, m.clampValue1, m.clampValue2, m.machineWord91, m.machineWord92};
    if (version_ < 154) m.setup3 = m.setup2;
    // A save stores these at every version, a load takes none of them.
    if (version_ < 152) m.lateByteC = 0;
    if (version_ < 151) {
      m.machineWord124 = m.machineWord126 = m.machineWord128 = m.machineWord131 = m.machineWord132 = 0;
      m.machineWord125 = m.machineWord127 = 1.5F;
      m.machineWord129 = m.machineWord130 = 1;
    }
  }

  void makeStorable(oldtorvio::OldToolInventory& v) { v.version = 0; }
  void makeStorable(oldtorvio::OldMacro& m) { m.version = 0; }

  void makeStorable(oldtorvio::RowTable& t) { count(t.count, most_ == 0 ? 0 : 25); }
  void makeStorable(oldtorvio::ClampRowTable& t) { count(t.count, most_ == 0 ? 0 : 25); }
  void makeStorable(oldtorvio::SheetPartList& l) {
    l.nameWidth = l.parts.empty() ? 256 : 1 + upTo(255);
    for (oldtorvio::TorvPart& p : l.parts) place(p, l.nameWidth);
  }
  void makeStorable(oldtorvio::OldSheet& s) {
    static constexpr int kTables[] = {52, 60, 79, 80, 499};
    s.version = 0;
    s.textWidth = 1 + upTo(255);
    s.blocks.clear();
    // A file without shapes of the sheet itself stores none of these.
    if (s.shapes.shapes.empty()) {
      s.processSlotCount = 0;
      s.marks.clear();
      s.profiles.clear();
      s.stepTables.clear();
      s.setupList = {};
      s.patternItems.clear();
    } else {
      count(s.processSlotCount, most_);
      for (int i = 0; i < s.processSlotCount; ++i) s.processSlots[i] = slot();
    }
    paramTable(s.paramTable, kTables[upTo(4)]);
    if (version_ >= 61) takeName(s.machine.path, s.textWidth);
    if (s.machine.hasExtension != 0) fill(s.machine.extension.extensionEntries);
  }

  std::mt19937 engine_;
  int most_;
  bool isPlausible_;
  int version_ = 180;
};

}  // namespace testing_support
