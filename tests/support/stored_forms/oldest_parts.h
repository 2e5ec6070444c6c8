// Parts of version 5 and of versions 2 and 3. No save stores these layouts.
#pragma once
#include <bit>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/stored_forms/walkers.h"

namespace testing_support {

// How many values a shape of each type stores. The fifth of type 9 is not stored: a load makes it a quarter turn.
inline int oldestValueCount(int type) {
  static constexpr int kCounts[26] = {0, 1, 4, 3, 4, 5, 3, 9, 7, 4, 3, 5, 3, 4, 3, 3, 3, 0, 4, 5, 4, 3, 0, 4, 0, 4};
  return type < 0 || type > 25 ? 0 : kCounts[type];
}
inline constexpr auto kQuarterTurn = std::bit_cast<float>(0x3FC90FDBU);
// For other types a load clears bit 0 of flags.
inline bool oldestKeepsFirstFlag(int type) { return type >= 10 && type <= 13; }

// The values are below a full turn, to which a load limits some of them.
template <class M>
void storedOldestGeometry(M& m, Shape& s) {
  numbers(m, s.x, s.y);
  for (int i = 0; i < oldestValueCount(s.type); ++i) m.fixed(s.values[i], 0.25F * static_cast<float>(i + 1) + 0.001F);
}

// A checker compares all members that `stored` does not copy into a new element with their defaults.
template <class M, class Element, class Fn>
void othersAreFresh(M&, const Element& element, Fn&& stored) {
  if constexpr (M::kChecks) {
    Element wanted;
    stored(wanted);
    EXPECT_EQ(oldtorvio::values::firstDifference(element, wanted), std::nullopt);
  }
}

// What a load makes of any stored value.
constexpr auto always(int value) {
  return [value](auto) { return value; };
}

// ---- version 5 -----------------------------------------------------------------------------------

struct Version5Form {
  std::vector<int> shapeTypes{1, 3};
  std::vector<std::size_t> items{1};  // of each pattern
  std::vector<int> entryTypes{1};     // of setup entries; a load drops an 8 that no entry announces
  std::size_t marks = 1;

  static Version5Form of(const TorvPart& p) {
    Version5Form form{{}, {}, {}, p.marks.size()};
    for (const Shape& s : p.shapes.shapes) form.shapeTypes.push_back(s.type);
    for (const Pattern& one : p.patterns) form.items.push_back(one.items.size());
    for (const SetupEntry& e : p.setupList.entries) form.entryTypes.push_back(e.setupShort1);
    return form;
  }
};

// The counts, in stored order.
enum Version5Section { kShapeCount = 401, kPatternCount, kEntryCount, kMarkCount };

template <class M>
void storedVersion5Shape(M& m, int type, Shape& s) {
  m.fixed(s.type, type);
  m.template narrow<std::int16_t>(s.auxWord);
  m.template converted<std::int16_t>(s.flags,
                                     [&](int flags) { return oldestKeepsFirstFlag(type) ? flags : flags & ~1; });
  storedOldestGeometry(m, s);
  othersAreFresh(m, s, [&](Shape& wanted) {
    wanted.type = s.type, wanted.auxWord = s.auxWord, wanted.flags = s.flags;
    wanted.x = s.x, wanted.y = s.y;
    std::copy_n(s.values, oldestValueCount(type), wanted.values);
    if (type == 9) wanted.values[4] = kQuarterTurn;
  });
}

// A load keeps the items of a part without tools, but no tool number.
template <class M>
void storedVersion5Item(M& m, PatternItem& i) {
  m.template narrow<std::int16_t>(i.itemWord1);
  m.template converted<std::int16_t>(i.toolNumber, always(0));
  othersAreFresh(m, i, [&](PatternItem& wanted) { wanted.itemWord1 = i.itemWord1; });
}

template <class M>
void storedVersion5Pattern(M& m, std::size_t items, Pattern& p) {
  m.template narrow<std::int16_t>(p.headWord);
  for (auto* one : {&p.gridCount1, &p.gridCount2}) m.template converted<std::int16_t>(*one, always(1));
  for (auto* one : {&p.gridStep1, &p.gridStep2}) m.replaced(*one, 0U);
  for (auto* one : {&p.originX, &p.originY}) m.replaced(*one, 0.0F);
  numbers(m, p.rotationCos, p.rotationSin);
  list<std::int16_t>(m, p.items, items, [](auto& n, PatternItem& i, std::size_t) { storedVersion5Item(n, i); });
  othersAreFresh(m, p, [&](Pattern& wanted) {
    wanted.headWord = p.headWord, wanted.rotationCos = p.rotationCos, wanted.rotationSin = p.rotationSin;
    wanted.items = p.items;
  });
}

// After its type: a setup entry without its two reals.
template <class M>
void storedShortEntry(M& m, SetupEntry& e) {
  numbers(m, e.setupShort2, e.setupByte1, e.setupShort3, e.setupByte2, e.setupShort4, e.setupByte3);
  m.block(e.setupBlock);
  numbers(m, e.setupWord1, e.setupByte4, e.setupWord2, e.setupShort5, e.setupWord3);
  since(m, false, [&](auto& n) {
    numbers(n, e.memoryByte1, e.memoryByte2);
    n.block(e.memoryBytes);
    numbersOr(n, -1.0F, e.setupReal1, e.setupReal2);
    n.number(e.memoryWord);
  });
}

// After the version word.
template <class M>
void storedVersion5Part(M& m, const Version5Form& form, TorvPart& p) {
  m.clears(p.patterns);
  m.clears(p.workList);
  m.together(21);
  for (int i = 0; i < 21; ++i) m.number(p.partName[i]);
  numberOr(m, p.width, 30.0F);
  numberOr(m, p.height, 20.0F);
  m.block(p.productName, "NEW PRODUCT");
  m.block(p.assemblyName, "NEW ASSEMBLY");
  m.block(p.materialName, "NEW MATERIAL");
  m.template narrow<std::int16_t>(p.partKind, 1);
  m.template narrow<std::int16_t>(p.partWord1, 1);
  numberOr(m, p.thickness, 0.05F);
  m.reset(p.materialType[0], '\0');
  m.clears(p.shapes.shapes);
  m.section(kShapeCount);
  list<std::int16_t>(m, p.shapes.shapes, form.shapeTypes.size(),
                     [&](auto& n, Shape& s, std::size_t i) { storedVersion5Shape(n, form.shapeTypes[i], s); });
  m.section(kPatternCount);
  list<std::int16_t>(m, p.patterns, form.items.size(),
                     [&](auto& n, Pattern& one, std::size_t i) { storedVersion5Pattern(n, form.items[i], one); });
  m.clears(p.setupList.entries);
  m.section(kEntryCount);
  list<std::int16_t>(m, p.setupList.entries, form.entryTypes.size(), [&](auto& n, SetupEntry& e, std::size_t i) {
    n.fixed(e.setupShort1, form.entryTypes[i]);
    storedShortEntry(n, e);
  });
  m.number(p.setupList.current.setupShort1);
  storedShortEntry(m, p.setupList.current);
  m.block(p.setupList.tailBlock);
  numbers(m, p.setupList.tailWord1, p.setupList.tailWord2);
  m.clears(p.marks);
  m.section(kMarkCount);
  list<std::int16_t>(m, p.marks, form.marks, [](auto& n, MarkEntry& k, std::size_t) {
    n.template narrow<std::int16_t>(k.markWord1);
    numbers(n, k.markShort, k.markWord2, k.markWord3);
  });
  m.untouched(p.workList);
}

// The file of a part with the values that it holds.
inline Bytes version5File(TorvPart& part) {
  Maker m = Maker::ofHeldValues();
  storedVersion5Part(m, Version5Form::of(part), part);
  return Bytes().i16(5).add(m.bytes);
}

// ---- versions 2 and 3 ----------------------------------------------------------------------------

// A record of the setup section. Its type determines which bytes follow it.
struct Version3Setup {
  int type = 1;
  float real0 = 0.5F, real1 = 1.5F, real2 = 2.5F, real3 = 3.5F;
  int byte = 7;
  int texts = 0x7A7A;  // how many text records follow, if the type carries a text

  Bytes bytes() const {
    static constexpr std::size_t kBytesAfter[18] = {0, 16, 16, 16, 24, 16, 16, 8, 0, 0, 8, 8, 8, 12, 12, 0, 0, 0};
    Bytes b;
    b.u16(static_cast<std::uint16_t>(type)).fill(2, 0xD1).i16(texts).fill(6, 0xD3);
    b.f32(real0).f32(real1).f32(real2).f32(real3).u8(static_cast<std::uint8_t>(byte));
    return b.fill(type < 18 ? kBytesAfter[type] : 0, 0xD4);
  }
};
inline constexpr std::size_t kSetupTextSize = 27;
inline Bytes setupTextRecord(const std::string& text) { return Bytes().fill(2, 0xD5).text(kSetupTextSize, text); }

// The two sections at the end of a file.
inline Bytes version3Items(std::vector<PatternItem> items, const std::vector<int>& numbers = {}) {
  Maker m = Maker::ofHeldValues();
  list<std::int16_t>(m, items, items.size(), [](auto& n, PatternItem& i, std::size_t) { storedVersion5Item(n, i); });
  m.bytes.i16(static_cast<int>(numbers.size()));
  for (const int number : numbers) m.bytes.i16(number);
  return m.bytes;
}
inline Bytes version3Fixes(const std::vector<std::pair<int, int>>& valuesOfShapes) {
  Bytes b;
  b.i16(static_cast<int>(valuesOfShapes.size()));
  for (const auto& [shape, value] : valuesOfShapes) b.i16(shape).i16(value);
  return b;
}

// Bytes that have no meaning are all `ignored`.
struct Version3File {
  int version = 3;
  float width = 64.5F, height = 32.25F;
  int hasItems = 0, hasShapeFixes = 0, hasSlots = 0, hasMarks = 0, hasLastSection = 0, hasSetupReals = 0;
  std::uint8_t ignored = 0xE1;
  std::vector<Shape> shapes;
  int shapeCount = -1;  // if it is not the size
  int unusedCount1 = 0, unusedCount2 = 0;
  int setupCount = 0;
  Bytes setup;                    // records of the setup section
  Bytes last = Bytes().zeros(4);  // items or fixes
  static constexpr std::size_t kHeadSize = 80;

  Bytes bytes() const {
    Bytes b;
    b.i16(version).f32(width).f32(height);
    for (const int flag : {hasItems, hasShapeFixes, hasSlots, hasMarks, hasLastSection}) b.i8(flag);
    b.fill(47, ignored).i8(hasSetupReals).fill(11, ignored);
    b.i16(shapeCount == -1 ? static_cast<int>(shapes.size()) : shapeCount).i16(unusedCount1).i16(unusedCount2);
    for (const Shape& s : shapes) b.add(stored(s));
    return b.i16(setupCount).add(setup).add(last);
  }
  Bytes stored(Shape s) const {
    Maker m = Maker::ofHeldValues();
    m.number(s.type);
    m.raw(Bytes().fill(2, ignored));
    m.narrow<std::int16_t>(s.auxWord);
    m.raw(Bytes().fill(2, ignored));
    m.narrow<std::int16_t>(s.flags);
    storedOldestGeometry(m, s);
    return m.bytes;
  }
};

}  // namespace testing_support
