// Stored forms of parts of version 5 and of versions 2 and 3, after the version word. They are read
// only: a save at these versions takes the main layout.
#pragma once
#include <algorithm>
#include <string>

#include "OldTorvIO/part.h"
#include "src/frame/codec/describe.h"
#include "src/frame/versions.h"
#include "src/part/old_part_rules.h"
#include "src/part/part_layout.h"
#include "src/records/small_layouts.h"

namespace oldtorvio::codec {

// Type, auxWord and flags have been read.
inline bool describeOldGeometry(auto& io, auto& s) {
  return io.afterRead(s, "only types 10 to 13 keep bit 0 of flags", [](auto& r) {
             if (!keepsFirstFlag(r.type)) r.flags &= ~1U;
           })
      && io.fields(FIELDS(s.x, s.y))
      && io.leading(computed("as many as the type has", oldValueCount(s.type)), FIELDS(s.values));
}

inline bool describeOldItem(auto& io, auto& i) {
  return io.fields(FIELDS(as<std::int16_t>(i.itemWord1), as<std::int16_t>(i.toolNumber)));
}

struct Version5Part {
  TorvPart& part;
};

template <>
struct Layout<Version5Part> {
  static bool describe(auto& io, auto& file) {
    TorvPart& p = file.part;
    std::int16_t shapeCount = 0, patternCount = 0, markCount = 0;
    return io.clear(FIELDS(p.patterns))
        && io.clear(FIELDS(p.workList))
        && io.sized(FIELDS(p.partName), 21)
        && io.fields(FIELDS(p.width, p.height, p.productName, p.assemblyName, p.materialName,
                            as<std::int16_t>(p.partKind), as<std::int16_t>(p.partWord1), p.thickness))
        && io.afterRead(p, "materialType becomes empty", [](auto& r) { r.materialType[0] = '\0'; })
        && io.clear(FIELDS(p.shapes.shapes))
        && io.fields(FIELDS(shapeCount))
        && io.rows(shapeCount, [&](std::size_t i) { return describeShape(io, p, i); })
        && io.fields(FIELDS(patternCount))
        && io.rows(patternCount, [&](std::size_t i) { return describePattern(io, p, i); })
        && describeSetupList(io, p.setupList)
        && io.clear(FIELDS(p.marks))
        && io.fields(FIELDS(markCount))
        && io.rows(markCount, [&](std::size_t i) { return describeMark(io, p, i); });
  }

 private:
  static bool describeShape(auto& io, TorvPart& p, std::size_t i) {
    Shape s;
    return io.element(FIELDS(p.shapes.shapes), i, [&] {
             return io.fields(FIELDS(s.type, as<std::int16_t>(s.auxWord), as<std::int16_t>(s.flags)))
                 && describeOldGeometry(io, s);
           })
        && io.afterRead(s, "angles are limited to a full turn, degenerate arcs are fixed", [&](auto& r) {
             limitToFullTurn(r, kFullTurnVersion5);
             fixDegenerateArc(r);
             p.shapes.shapes.push_back(r);
           });
  }

  static bool describePattern(auto& io, TorvPart& p, std::size_t i) {
    Pattern t;
    std::int16_t itemCount = 0;
    return io.element(FIELDS(p.patterns), i, [&] {
             return io.fields(FIELDS(as<std::int16_t>(t.headWord), as<std::int16_t>(t.gridCount1),
                                     as<std::int16_t>(t.gridCount2), t.gridStep1, t.gridStep2,
                                     block(t.originX, t.originY, t.rotationCos, t.rotationSin), itemCount))
                 && io.rows(itemCount, [&](std::size_t n) {
                      PatternItem item;
                      return io.element(FIELDS(t.items), n, [&] { return describeOldItem(io, item); })
                          && io.keep(item, [&](auto& r) { t.items.push_back(r); });
                    });
           })
        // A part is placed once, at its own origin, and has no tools that a number could refer to.
        && io.afterRead(t, "gridCount1 and 2 become 1, steps, origin and tool numbers 0", [&](auto& r) {
             r.gridCount1 = r.gridCount2 = 1;
             r.gridStep1 = r.gridStep2 = 0;
             r.originX = r.originY = 0;
             for (PatternItem& item : r.items) item.toolNumber = 0;
             p.patterns.push_back(std::move(r));
           });
  }

  static bool describeSetupList(auto& io, SetupList& l) {
    std::int16_t entryCount = 0;
    ContinuationFilter filter;
    return io.clear(FIELDS(l.entries))
        && io.fields(FIELDS(entryCount))
        && io.rows(entryCount, [&](std::size_t i) {
             SetupEntry e;
             return io.element(FIELDS(l.entries), i, [&] { return describeShortSetupEntry(io, e); })
                 && io.afterRead(e, "dropped if it continues a text that has all its continuations", [&](auto& r) { if (filter.keeps(r)) l.entries.push_back(r); });
           })
        && describeShortSetupEntry(io, l.current)
        && io.fields(FIELDS(l.tailBlock, l.tailWord1, l.tailWord2));
  }

  static bool describeMark(auto& io, TorvPart& p, std::size_t i) {
    MarkEntry m;
    return io.element(FIELDS(p.marks), i, [&] {
             return io.fields(FIELDS(as<std::int16_t>(m.markWord1), m.markShort, m.markWord2, m.markWord3));
           })
        && io.keep(m, [&](auto& r) { p.marks.push_back(r); });
  }
};

// Versions 2 and 3. A load never succeeds: somewhere after the shapes and the setup section it always stops and
// returns 1.
struct Version3Part {
  TorvPart& part;
};

template <>
struct Layout<Version3Part> {
  static bool describe(auto& io, auto& file) {
    TorvPart& p = file.part;
    std::uint8_t hasItems = 0, hasShapeFixes = 0, hasSlots = 0, hasMarks = 0, hasLastSection = 0, hasSetupReals = 0;
    std::int16_t shapeCount = 0, unusedCount1 = 0, unusedCount2 = 0;
    return io.clear(FIELDS(p.patterns))
        && io.clear(FIELDS(p.workList))
        && io.fields(FIELDS(p.width, p.height, hasItems, hasShapeFixes, hasSlots, hasMarks, hasLastSection))
        && io.reserved(47)
        && io.fields(FIELDS(hasSetupReals))
        && io.reserved(11)
        && io.fields(FIELDS(shapeCount, unusedCount1, unusedCount2))
        && io.clear(FIELDS(p.shapes.shapes))
        && describeShapes(io, p, shapeCount, hasItems == 1)
        && io.continueOnFailure([&] { return describeSetupSection(io, p.setupList); })
        && io.when(equals(FIELDS(hasItems), 1), [&] { return describeItems(io); })
        && io.when(equals(FIELDS(hasShapeFixes), 1), [&] { return describeShapeFixes(io, p.shapes.shapes); })
        && io.require(nothingFollows());
  }

 private:
  static CustomCondition nothingFollows() { return custom("nothing after this is read", false); }

  static bool describeShapes(auto& io, TorvPart& p, std::int16_t shapeCount, bool hasItems) {
    OldShapeConverter converter(hasItems);
    Pattern pattern;
    return io.rows(shapeCount, [&](std::size_t i) {
             Shape s;
             std::uint8_t unused1[2] = {}, unused2[2] = {};
             std::int16_t auxWord = 0, flags = 0;
             return io.element(FIELDS(p.shapes.shapes), i, [&] {
                      return io.fields(FIELDS(block(s.type, unused1, auxWord, unused2, flags)))
                          && io.keep(s, [&](auto& r) {
                               r.auxWord = auxWord;
                               r.flags = static_cast<std::uint32_t>(flags);
                             })
                          && describeOldGeometry(io, s);
                    })
                 && io.afterRead(s, "angles are limited to a full turn; auxWord, flags, some values, and the places of group members are converted", [&](auto& r) {
                      limitToFullTurn(r, kFullTurnVersion3);
                      converter.convert(r, p.shapes.shapes.size());
                      p.shapes.shapes.push_back(r);
                      pattern.items.emplace_back().itemWord1 = r.flags & 0x310U;
                    });
           })
        && io.afterRead(p, "one pattern with an item for each shape", [&](auto& r) {
             r.patterns.push_back(std::move(pattern));
           });
  }

  // A record with a text reduces the number of records that follow by the number of its text pieces.
  static bool describeSetupSection(auto& io, SetupList& l) {
    std::int16_t recordCount = 0;
    std::int64_t asText = 0;
    return io.clear(FIELDS(l.entries))
        && io.fields(FIELDS(recordCount))
        && io.rows(recordCount, [&](std::size_t i) {
             const bool isText = asText > 0;
             return io.when(custom("counted as a text of the record before", isText),
                            [&] { return io.afterRead(asText, "nothing is stored", [](auto& left) { --left; }); })
                 && io.when(custom("not a text of a record before", !isText),
                            [&] { return describeSetupRecord(io, l, i, asText); });
           });
  }

  static bool describeSetupRecord(auto& io, SetupList& l, std::size_t i, std::int64_t& asText) {
    OldSetupRecord record;
    std::string text;
    return io.element(FIELDS(l.entries), i, [&] {
             return io.fields(FIELDS(record.bytes))
                 && io.require(custom("records of an unknown type are not read", record.hasKnownType()))
                 && io.when(custom("the type has more bytes", record.bytesAfter() > 0),
                            [&] {
                              return io.reserved(computed("as many bytes as the type has",
                                                          static_cast<std::size_t>(record.bytesAfter())));
                            })
                 && io.when(custom("the type has a text", record.carriesText()), [&] {
                      return io.rows(computed("text of the record", record.textCount()), [&](std::size_t) {
                        std::uint8_t unused[2] = {};
                        char textPiece[OldSetupRecord::kTextSize] = {};
                        return io.fields(FIELDS(unused, textPiece))
                            && io.keep(text, [&](auto& all) {
                                 all.append(textPiece, std::find(std::begin(textPiece), std::end(textPiece), '\0'));
                               });
                      });
                    });
           })
        && io.afterRead(l, "the record becomes entries of a text, the current entry, or an entry", [&](auto& list) {
             if (record.carriesText()) {
               appendText(list, record, text);
               asText = std::max<std::int64_t>(record.textCount(), 0);
             } else if (record.type() == 10) {
               list.current = setupEntryOf(record);
             } else {
               list.entries.push_back(setupEntryOf(record));
             }
           });
  }

  // Discarded: the pattern keeps the items that were created with its shapes.
  static bool describeItems(auto& io) {
    std::int16_t itemCount = 0, numberCount = 0;
    return io.fields(FIELDS(itemCount))
        && io.rows(itemCount, [&](std::size_t) {
             PatternItem item;
             return describeOldItem(io, item);
           })
        && io.fields(FIELDS(numberCount))
        && io.rows(numberCount, [&](std::size_t) {
             std::int16_t number = 0;
             return io.fields(FIELDS(number));
           })
        && io.require(nothingFollows());
  }

  static bool describeShapeFixes(auto& io, std::vector<Shape>& shapes) {
    std::int16_t fixCount = 0;
    return io.fields(FIELDS(fixCount))
        && io.rows(fixCount, [&](std::size_t) {
             std::int16_t shapeIndex = 0, value = 0;
             const auto last = static_cast<std::int64_t>(shapes.size()) - 1;
             return io.fields(FIELDS(shapeIndex, value))
                 && io.require(within(FIELDS(shapeIndex), std::int64_t{0}, last))
                 && io.afterRead(shapes[static_cast<std::size_t>(shapeIndex)], "the shape is reset, value is its values[8]",
                                 [&](auto& shape) {
                      shape = Shape();
                      shape.values[8] = value;
                    });
           });
  }
};

// A part of whichever of these versions the walker has.
template <class Io>
bool walkOldestPart(Io& io, TorvPart& part) {
  Version5Part version5{part};
  Version3Part version3{part};
  return io.version() == frame::kVersion5 ? io.walk(version5) : io.walk(version3);
}

// A part file of any version, after its version word.
template <class Io>
bool walkPartFile(Io& io, TorvPart& part) {
  return io.version() >= frame::kFirstMainVersion ? io.walk(part, PartForm{}) : walkOldestPart(io, part);
}

}  // namespace oldtorvio::codec
