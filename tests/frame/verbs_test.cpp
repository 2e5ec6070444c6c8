// What the verbs of a layout do, each in a record of its own.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "src/frame/codec/reader.h"
#include "src/frame/codec/writer.h"
#include "tests/support/bytes.h"
#include "torvio/explain/map.h"

namespace {

using namespace testing_support;

struct Tailed {
  std::int32_t head = 0, first = 0, second = 0, last = 0;
};
struct Refusing {
  std::int32_t head = 0, kind = 0;
};
struct Outer {
  Tailed inner;
  std::int32_t after = 0;
};
struct Ending {
  Refusing inner;
  std::int32_t last = 0;
};
struct Ignoring {
  Refusing inner;
  std::int32_t last = 0;
};
struct Skipping {
  std::int32_t word = 0;
  std::vector<std::int32_t> list;
};
struct Differing {
  std::int32_t number = 0, marked = 0;
};
struct Texts {
  std::string name = "before", fixed = "before";
};
struct Numbers {
  std::int32_t all[6] = {10, 11, 12, 13, 14, 15};
  char words[3][2] = {};
};
struct Padded {
  std::int32_t count = 0;
  std::array<std::uint8_t, 8> bytes = {};
  std::int32_t last = 0;
};
struct Defaulted {
  std::int32_t number = 1, other = 2, row[3] = {3, 4, 5};
  char text[8] = "before";
  float x = 6, y = 7;
};

}  // namespace

namespace oldtorvio::codec {

template <>
struct Layout<Tailed> {
  static bool describe(auto& io, auto& t) {
    return io.fields(FIELDS(t.head)) && io.optionalTail(FIELDS(t.first, t.second)) && io.fields(FIELDS(t.last));
  }
};
template <>
struct Layout<Refusing> {
  static bool describe(auto& io, auto& r) {
    return io.fields(FIELDS(r.head, r.kind)) && io.require(within(FIELDS(r.kind), 1, 2));
  }
};
template <>
struct Layout<Outer> {
  static bool describe(auto& io, auto& o) { return io.record(FIELDS(o.inner)) && io.fields(FIELDS(o.after)); }
};
template <>
struct Layout<Ending> {
  static bool describe(auto& io, auto& l) {
    return io.endOnFailure([&] { return io.record(FIELDS(l.inner)); }) && io.fields(FIELDS(l.last));
  }
};
template <>
struct Layout<Ignoring> {
  static bool describe(auto& io, auto& i) {
    return io.continueOnFailure([&] { return io.record(FIELDS(i.inner)); }) && io.fields(FIELDS(i.last));
  }
};
template <>
struct Layout<Skipping> {
  static bool describe(auto& io, auto& s) {
    return io.optionalTail(FIELDS(s.word)) && io.list(FIELDS(s.list), kReplaced);
  }
};
template <>
struct Layout<Differing> {
  static bool describe(auto& io, auto& d) {
    return io.differs([&] { return io.fields(FIELDS(as<std::int8_t>(d.number))); },
                      [&] { return io.fields(FIELDS(d.number)); }) &&
           io.beforeWrite(d, "marked becomes 1", [](auto& r) { r.marked = 1; }) &&
           io.when(custom("in a writer", io.either(false, true)), FIELDS(d.marked));
  }
};
template <>
struct Layout<Texts> {
  static bool describe(auto& io, auto& t) {
    return io.lengthText(FIELDS(t.name), 5) && io.template textItem<6>(FIELDS(t.fixed));
  }
};
template <>
struct Layout<Numbers> {
  static bool describe(auto& io, auto& n) {
    return io.slice(FIELDS(n.all), 1, 2) && io.fields(FIELDS(nonZero(n.all[3]))) &&
           io.onlyRead([&](auto& reader) { return reader.template slice<std::int16_t>(FIELDS(n.all), 4, 5); }) &&
           io.slice(FIELDS(n.words), 0, 1);
  }
};
template <>
struct Layout<Padded> {
  static bool describe(auto& io, auto& p) {
    return io.padded(16, [&] {
      return io.fields(FIELDS(p.count)) &&
             io.when(above(FIELDS(p.count), 0), [&] { return io.sized(FIELDS(p.bytes), p.count); });
    }) && io.fields(FIELDS(p.last));
  }
};
template <>
struct Layout<Defaulted> {
  static bool describe(auto& io, auto& d) {
    return io.since(101, FIELDS(d.number, d.other), otherwise(-1, 0)) && io.since(101, FIELDS(d.row), otherwise(9)) &&
           io.since(101, FIELDS(d.text), otherwise("")) && io.since(101, FIELDS(block(d.x, d.y)), otherwise(0.5));
  }
};

}  // namespace oldtorvio::codec

namespace {

using namespace oldtorvio;
using codec::InStream;
using codec::OutStream;
using codec::readRecord;
using codec::writeRecord;

constexpr int kVersion = 100;

template <class Record>
bool readAll(const Bytes& bytes, Record& record, std::size_t* consumed = nullptr) {
  return readFrom(
      bytes, [&](InStream& s) { return readRecord(s, kVersion, record); }, consumed);
}

// The map of the same bytes, line by line.
template <class Record>
std::vector<std::string> mapped(const Bytes& bytes, bool* walked = nullptr) {
  std::vector<std::string> lines;
  InStream stream(bytes.span());
  explain::Mapper io(stream, kVersion,
                     [&](const explain::MapLine& line) { lines.push_back(line.path + " = " + line.value); });
  Record record;
  const bool ok = io.walk(record);
  if (walked != nullptr) *walked = ok;
  if (!ok) lines.push_back("FAULT " + io.fault()->path + ": " + io.fault()->reason);
  return lines;
}

TEST(Verbs, OptionalTailEndsItsRecordWithSuccessWhereverItIsCut) {
  const Bytes all = Bytes().i32(1).i32(2).i32(3).i32(4);
  for (std::size_t cut = 0; cut <= all.size(); ++cut) {
    Tailed t;
    EXPECT_EQ(readAll(Bytes(all).cut(cut), t), (cut >= 4 && cut < 12) || cut == 16) << cut;
    EXPECT_EQ(t.first, cut >= 8 ? 2 : 0);
    EXPECT_EQ(t.second, cut >= 12 ? 3 : 0);
    EXPECT_EQ(t.last, cut >= 16 ? 4 : 0);
  }
  // The owner of the record goes on, and then there is nothing left.
  Outer outer;
  EXPECT_FALSE(readAll(Bytes(all).cut(8), outer));
  EXPECT_EQ(outer.inner.first, 2);
  EXPECT_TRUE(readAll(Bytes(all).i32(5), outer));
  EXPECT_EQ(outer.after, 5);
}

TEST(Verbs, StreamKnowsWhetherAShortReadWasForgiven) {
  const Bytes all = Bytes().i32(1).i32(2).i32(3).i32(4);
  for (std::size_t cut = 0; cut <= all.size(); ++cut) {
    const Bytes file = Bytes(all).cut(cut);
    codec::InStream stream(file.span());
    Tailed t;
    (void)codec::readRecord(stream, kVersion, t);
    EXPECT_EQ(stream.wasForgiven(), cut >= 4 && cut < 12) << cut;
  }
}

TEST(Verbs, OptionalTailForgivesNoRefusal) {
  Refusing r;
  std::int32_t after = 0;
  const auto walk = [&](const Bytes& bytes) {
    return readFrom(bytes, [&](InStream& s) {
      codec::Reader io(s, kVersion);
      const bool walked = io.optionalTail([&] { return io.record(FIELDS(r)); }) && io.fields(FIELDS(after));
      EXPECT_EQ(io.stop(), walked ? codec::Stop::none : codec::Stop::refused);
      return walked;
    });
  };
  EXPECT_FALSE(walk(Bytes().i32(1).i32(3).i32(9)));
  EXPECT_TRUE(walk(Bytes().i32(1).i32(2).i32(9)));
  EXPECT_EQ(after, 9);
}

TEST(Verbs, ListThatKeepsFailingElementsReportsThatItForgave) {
  for (const std::size_t cut : {4U, 6U, 8U}) {
    std::vector<std::int32_t> list;
    const Bytes bytes = Bytes().i32(1).i32(2).cut(cut);
    readFrom(bytes, [&](InStream& s) {
      codec::Reader io(s, kVersion);
      EXPECT_TRUE(io.list(FIELDS(list), codec::appendedAndKept(2)));
      EXPECT_EQ(io.forgave(), cut < 8) << cut;
      EXPECT_EQ(io.stop(), codec::Stop::none) << cut;
      return true;
    });
    EXPECT_EQ(list, (std::vector<std::int32_t>{1, cut < 8 ? 0 : 2})) << cut;
  }
}

TEST(Verbs, EndOnFailureEndsTheRecordWithSuccessAndItsOwnerGoesOn) {
  for (const auto& [bytes, wanted] : {std::pair{Bytes().i32(1).i32(2).i32(9), 9},
                                      std::pair{Bytes().i32(1).i32(3).i32(9), 0}, std::pair{Bytes().i32(1), 0}}) {
    Ending l;
    EXPECT_TRUE(readAll(bytes, l));
    EXPECT_EQ(l.last, wanted);
  }
  Ending l;
  std::size_t consumed = 0;
  EXPECT_TRUE(readAll(Bytes().i32(1).i32(3).i32(9), l, &consumed));
  EXPECT_EQ(consumed, 8U) << "the refused value is consumed, what follows it is not";
}

TEST(Verbs, ContinueOnFailureGoesOnAfterAFailure) {
  Ignoring i;
  EXPECT_TRUE(readAll(Bytes().i32(1).i32(3).i32(9), i));
  EXPECT_EQ(i.last, 9);
  EXPECT_FALSE(readAll(Bytes().i32(1), i)) << "a short read leaves nothing to go on with";
  EXPECT_EQ(i.last, 9);
}

TEST(Verbs, OptionalTailLeavesOutWhatFollowsAShortRead) {
  const Bytes all = Bytes().i32(1).i32(2).i32(3).i32(4);
  for (std::size_t cut = 0; cut <= all.size(); ++cut) {
    Skipping s;
    s.list = {7};
    EXPECT_EQ(readAll(Bytes(all).cut(cut), s), cut < 4 || cut == 16) << cut;
    EXPECT_EQ(s.list.size(), cut < 8 ? 1U : (cut - 8) / 4) << cut;
  }
}

TEST(Verbs, ReaderAndWriterWalkDifferentChains) {
  Differing d;
  d.number = 0x1234;
  const Bytes stored = written([&](OutStream& s) { return writeRecord(s, kVersion, d); });
  EXPECT_EQ(stored, Bytes().i32(0x1234).i32(1));
  EXPECT_EQ(d.marked, 1) << "the writer changes the record";
  Differing back;
  std::size_t consumed = 0;
  EXPECT_TRUE(readAll(stored, back, &consumed));
  EXPECT_EQ(back.number, 0x34);
  EXPECT_EQ(back.marked, 0);
  EXPECT_EQ(consumed, 1U);
}

TEST(Verbs, LengthTextWithALimitIsEmptiedAtZeroAndBelowAndRefusedAboveIt) {
  const Bytes fixed = Bytes().text(6, "fixed");
  const struct {
    Bytes bytes;
    bool read;
    const char* name;
  } cases[] = {
      {Bytes().i32(3).text(3, "abc"), true, "abc"},
      {Bytes().i32(5).text(5, "ab"), true, "ab"},
      {Bytes().i32(0), true, ""},
      {Bytes().i32(-7), true, ""},
      {Bytes().i32(6).text(6, "abcdef"), false, "before"},
      {Bytes().i32(2000000000), false, "before"},
  };
  for (const auto& one : cases) {
    Texts t;
    EXPECT_EQ(readAll(Bytes(one.bytes).add(fixed), t), one.read);
    EXPECT_EQ(t.name, one.name);
    EXPECT_EQ(t.fixed, one.read ? "fixed" : "before");
  }
  Texts cut;
  EXPECT_FALSE(readAll(Bytes().i32(3).text(2, "ab"), cut));
  EXPECT_EQ(cut.name, "before");
  Texts tooLong;
  tooLong.name = "abcdef";
  OutStream out;
  EXPECT_FALSE(writeRecord(out, kVersion, tooLong));
}

TEST(Verbs, TextItemIsFilledWithZerosAndNeverCut) {
  Texts t;
  t.name = "n";
  t.fixed = std::string("abc\0def", 7);
  EXPECT_EQ(written([&](OutStream& s) { return writeRecord(s, kVersion, t); }),
            Bytes().i32(1).text(1, "n").text(6, "abc"));
  t.fixed = "sixsix";
  EXPECT_EQ(written([&](OutStream& s) { return writeRecord(s, kVersion, t); }),
            Bytes().i32(1).text(1, "n").text(6, "sixsix"));
  Texts back;
  EXPECT_TRUE(readAll(Bytes().i32(0).text(6, "sixsix"), back));
  EXPECT_EQ(back.fixed, "sixsix");
  t.fixed = "seven77";
  OutStream out;
  EXPECT_FALSE(writeRecord(out, kVersion, t));
  EXPECT_EQ(out.bytes().size(), 5U);
}

TEST(Verbs, SlicesAreReadEntryByEntryUpToTheEndOfTheFile) {
  const Bytes all = Bytes().i32(1).i32(2).i32(0).i16(-4).i16(5).text(2, "ab").text(2, "c");
  Numbers n;
  EXPECT_TRUE(readAll(all, n));
  const std::int32_t wanted[] = {10, 1, 2, 13, -4, 5};
  EXPECT_TRUE(std::equal(std::begin(wanted), std::end(wanted), n.all)) << "a stored zero keeps 13";
  EXPECT_EQ(std::string(n.words[0], 4), std::string("abc\0", 4));
  for (std::size_t cut = 0; cut < all.size(); ++cut) {
    Numbers part;
    EXPECT_FALSE(readAll(Bytes(all).cut(cut), part)) << cut;
    EXPECT_EQ(part.all[1], cut >= 4 ? 1 : 11);
    EXPECT_EQ(part.all[2], cut >= 8 ? 2 : 12);
    EXPECT_EQ(part.all[4], cut >= 14 ? -4 : 14);
    EXPECT_EQ(part.words[0][0], cut >= 18 ? 'a' : '\0');
  }
  n.all[3] = 0;
  EXPECT_EQ(written([&](OutStream& s) { return writeRecord(s, kVersion, n); }),
            Bytes().i32(1).i32(2).i32(0).text(2, "ab").text(2, "c"));
}

TEST(Verbs, PaddedFillsUpFromItsBeginningWhateverItHolds) {
  for (int count = 0; count <= 8; ++count) {
    Padded p{count, {1, 2, 3, 4, 5, 6, 7, 8}, 99};
    const Bytes stored = written([&](OutStream& s) { return s.room(3) != nullptr && writeRecord(s, kVersion, p); });
    ASSERT_EQ(stored.size(), 23U);
    Padded back;
    const Bytes after = Bytes::of(stored.span().subspan(3));
    EXPECT_TRUE(readAll(after, back));
    EXPECT_EQ(back.last, 99);
    EXPECT_EQ(back.bytes[7], count == 8 ? 8 : 0);
    EXPECT_FALSE(readAll(Bytes(after).cut(15), back)) << "a cut in the fill bytes";
  }
}

TEST(Verbs, MapReportsToleratedFaultsAndNamesEachEntry) {
  EXPECT_EQ(mapped<Tailed>(Bytes().i32(1)),
            (std::vector<std::string>{"head = 1",
                                      " = fails at first (needs 4 bytes, the file has 0), which is tolerated there"}));
  EXPECT_EQ(mapped<Ignoring>(Bytes().i32(1).i32(3).i32(9)),
            (std::vector<std::string>{"inner.head = 1", "inner.kind = 3",
                                      " = fails at inner.kind (the value 3 is refused), which is tolerated there",
                                      "last = 9"}));
  EXPECT_EQ(mapped<Numbers>(Bytes().i32(1).i32(2).i32(0).i16(-4).i16(5).text(2, "ab").text(2, "c")),
            (std::vector<std::string>{"all[1] = 1", "all[2] = 2", "all[3] = 0", "all[4] = -4", "all[5] = 5",
                                      "words[0] = \"ab\" (no NUL)", "words[1] = \"c\""}));
  bool walked = true;
  EXPECT_EQ(mapped<Refusing>(Bytes().i32(1).i32(3), &walked).back(), "FAULT kind: the value 3 is refused");
  EXPECT_FALSE(walked);
  EXPECT_EQ(mapped<Padded>(Bytes().i32(2).u8(5).u8(6).zeros(10).i32(1)),
            (std::vector<std::string>{"count = 2", "bytes = 05 06", "reserved = (dropped)", "last = 1"}));
}

TEST(Verbs, DefaultsAreSetWhereTheVersionDoesNotStoreTheField) {
  Defaulted d;
  EXPECT_TRUE(readAll(Bytes(), d));
  EXPECT_EQ(d.number, -1);
  EXPECT_EQ(d.other, 0);
  for (const std::int32_t one : d.row) EXPECT_EQ(one, 9);
  EXPECT_EQ(std::string(d.text, 7), std::string("\0efore\0", 7)) << "the bytes after the NUL stay";
  EXPECT_EQ(d.x, 0.5F);
  EXPECT_EQ(d.y, 0.5F);
}

TEST(Verbs, ConditionsCompareTheFieldThatWasRead) {
  for (std::int32_t value = -2; value <= 4; ++value) {
    EXPECT_EQ(codec::equals(FIELDS(value), 2).holds, value == 2) << value;
    EXPECT_EQ(codec::notEquals(FIELDS(value), 2).holds, value != 2) << value;
    EXPECT_EQ(codec::above(FIELDS(value), 1).holds, value > 1) << value;
    EXPECT_EQ(codec::atMost(FIELDS(value), 1).holds, value <= 1) << value;
    EXPECT_EQ(codec::within(FIELDS(value), 0, 2).holds, value >= 0 && value <= 2) << value;
    EXPECT_EQ(codec::oneOf(FIELDS(value), -1, 3).holds, value == -1 || value == 3) << value;
    EXPECT_EQ(codec::atLeast(FIELDS(value), 1).holds, value >= 1) << value;
    const auto inRanges = codec::inRanges(FIELDS(value), codec::Range{-1, -1}, codec::Range{1, 3});
    EXPECT_EQ(inRanges.holds, value == -1 || (value >= 1 && value <= 3)) << value;
    EXPECT_EQ(codec::decided(inRanges, true).holds, true);
    EXPECT_EQ(codec::decided(inRanges, false).holds, false);
    for (const int version : {kVersion - 1, kVersion}) {
      const std::int32_t highest = version < kVersion ? 1 : 2;
      const auto within = codec::within(FIELDS(value), 0, codec::GrownLimit{2, kVersion, 1}, version);
      EXPECT_EQ(within.holds, value >= 0 && value <= highest) << value;
    }
  }
}

TEST(Verbs, ConditionsCompareUnsignedAndSmallFieldsByValue) {
  std::uint32_t large = 4000000000U;
  std::int8_t small = -1;
  EXPECT_TRUE(codec::above(FIELDS(large), 0).holds);
  EXPECT_FALSE(codec::atMost(FIELDS(large), 25).holds);
  EXPECT_TRUE(codec::atMost(FIELDS(small), 20).holds);
  EXPECT_FALSE(codec::within(FIELDS(small), 0, 250).holds);
}

// Each list rule over a list that holds 7, from files that count none, one or a negative number of elements, and
// from one that is cut off inside its second element.
TEST(Verbs, ListRulesSayWhenAListIsClearedAndWhatBecomesOfAnElementThatIsCutOff) {
  using List = std::vector<std::int32_t>;
  const auto read = [](auto rule, const Bytes& bytes, bool& ok) {
    List list{7};
    readFrom(bytes, [&](InStream& s) {
      codec::Reader io(s, kVersion);
      ok = io.list(FIELDS(list), rule);
      return ok;
    });
    return list;
  };
  const auto expectLists = [&](auto rule, const char* name, const List& none, const List& negative, const List& one,
                               const List& cut, bool cutPasses) {
    bool ok = false;
    EXPECT_EQ(read(rule, Bytes().i32(0), ok), none) << name;
    EXPECT_TRUE(ok) << name;
    EXPECT_EQ(read(rule, Bytes().i32(-3), ok), negative) << name;
    EXPECT_TRUE(ok) << name;
    EXPECT_EQ(read(rule, Bytes().i32(1).i32(5), ok), one) << name;
    EXPECT_EQ(read(rule, Bytes().i32(2).i32(5).i16(6), ok), cut) << name;
    EXPECT_EQ(ok, cutPasses) << name;
  };
  expectLists(codec::kCountFirst, "kCountFirst", {7}, {}, {5}, {5}, false);
  expectLists(codec::kReplaced, "kReplaced", {}, {}, {5}, {5}, false);
  expectLists(codec::kAppended, "kAppended", {7}, {7}, {7, 5}, {7, 5}, false);
  expectLists(codec::kReusedElement, "kReusedElement", {}, {}, {5}, {5}, false);

  bool ok = false;
  EXPECT_EQ(read(codec::kInvertedSuccess, Bytes().i32(1).i32(5), ok), List{});
  EXPECT_FALSE(ok) << "an element that can be read completely is a failure";
  EXPECT_EQ(read(codec::kInvertedSuccess, Bytes().i32(1).i16(5), ok), List{0});
  EXPECT_TRUE(ok);
  EXPECT_EQ(read(codec::counted(0), Bytes(), ok), List{7});
  EXPECT_EQ(read(codec::counted(-1), Bytes(), ok), List{});
  EXPECT_EQ(read(codec::counted(1), Bytes().i32(5), ok), List{5});
  EXPECT_EQ(read(codec::appended(1), Bytes().i32(5), ok), (List{7, 5}));
  EXPECT_EQ(read(codec::appendedAndKept(2), Bytes().i32(5).i16(6), ok), (List{7, 5, 0}));
  EXPECT_TRUE(ok);
  EXPECT_EQ(read(codec::kSingle, Bytes().i32(5).i32(6), ok), (List{7, 5}));
}

TEST(Verbs, LongBlocksAreMappedAsRuns) {
  std::string text;
  std::vector<std::uint8_t> block(100, 1);
  block[50] = 0xAB;
  explain::printBytes(text, block.data(), block.size());
  EXPECT_EQ(text, "01 x 50, ab, 01 x 49");
  const auto printed = [](std::size_t width, std::initializer_list<std::uint8_t> head) {
    std::vector<std::uint8_t> zeros(width + 1);
    std::copy(head.begin(), head.end(), zeros.begin());
    std::string to;
    explain::printBytes(to, zeros.data(), width);
    return to;
  };
  EXPECT_EQ(printed(100, {7, 1, 1}), "07, 01 x 2, 00 x 97");
  EXPECT_EQ(printed(65, {}), "00 x 65");
  EXPECT_EQ(printed(64, {}).substr(0, 6), "00 00 ") << "short ones are printed in full";
  EXPECT_EQ(printed(64, {}).size(), 64U * 3 - 1);
}

}  // namespace
