// Parameter tables: their five stored layouts, and what the reader and the writer make of each of them.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "src/material/material_io.h"
#include "tests/support/stored_forms/param_tables.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;

using Table = std::unique_ptr<ParamTable>;  // too large for small stacks

constexpr int kRead[] = {52, 60, 61, 79, 80, 81, 150, 499, 500, 501, 502};

// A table whose every slot, also those that no layout stores, has a value of its own. All integers fit
// in 16 bits and all reals in a float, so that each layout can hold them.
Table filled(int version, int seed, std::int32_t nameLength) {
  auto table = std::make_unique<ParamTable>();
  table->version = static_cast<std::uint16_t>(version);
  Maker text(static_cast<unsigned>(seed));
  text.block(table->title);
  for (int n = 0; n < ParamTable::kNumbers; ++n) {
    table->intParams[n] = (n % 2 == 0 ? 1 : -1) * (seed * 1000 + n + 1);
    table->realParams[n] = (n % 3 == 0 ? -1 : 1) * (seed * 1000 + n + 0.25);
    text.block(table->textParams[n]);
  }
  table->nameLength = nameLength;
  text.block(table->name);
  return table;
}
Table copyOf(const Table& table) { return std::make_unique<ParamTable>(*table); }

Bytes storedForm(const Table& table, bool writer = false) {
  return heldParamBytes({table->version, table->nameLength, writer}, *table);
}
Bytes writtenForm(const Table& table) { return storedForm(table, true); }

// The table that a Maker fills for that form.
Table made(const ParamForm& form) {
  auto table = std::make_unique<ParamTable>();
  Maker m;
  storedParamTable(m, form, *table);
  return table;
}
// The fields of the form up to the cut are those of made(), all others those of `prior`.
void expectLoaded(const ParamForm& form, ParamTable& table, const ParamTable& prior,
                  std::size_t cut = Checker::kNoCut) {
  Checker c(table, prior, cut);
  storedParamTable(c, form, table);
}
bool same(const ParamTable& a, const ParamTable& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

int readInto(const Bytes& bytes, ParamTable& table, std::size_t* consumed = nullptr) {
  return readFrom(
      bytes, [&](InStream& s) { return ReadParamTable(s, table); }, consumed);
}
Bytes write(const ParamTable& table, bool* ok = nullptr) {
  return written([&](OutStream& s) { return WriteParamTable(s, table); }, ok);
}

bool readable(int word) { return (word >= 60 && word <= 499) || word == 52 || (word >= 500 && word <= 502); }

TEST(ParamTables, IsAllZeroWhenFresh) {
  const auto table = std::make_unique<ParamTable>();
  EXPECT_EQ(table->version, 0);
  EXPECT_EQ(table->title[0], '\0');
  for (int n = 0; n < ParamTable::kNumbers; ++n) {
    ASSERT_EQ(table->intParams[n], 0) << n;
    ASSERT_EQ(table->realParams[n], 0.0) << n;
    ASSERT_EQ(table->textParams[n][0], '\0') << n;
  }
  EXPECT_EQ(table->nameLength, 0);
  EXPECT_EQ(table->name[0], '\0');
}

TEST(ParamTables, HasTheSizeOfItsLayout) {
  const std::pair<int, std::size_t> sizes[] = {{52, 726 + 9},    {60, 15142 + 9}, {79, 15142 + 9}, {80, 19792 + 9},
                                               {499, 19792 + 9}, {500, 69},       {501, 373},      {502, 623}};
  for (const auto& [version, size] : sizes) {
    SCOPED_TRACE(version);
    const Table from = filled(version, 1, 9);
    EXPECT_EQ(storedForm(from).size(), size);
    std::size_t consumed = 0;
    const auto table = std::make_unique<ParamTable>();
    EXPECT_EQ(readInto(storedForm(from).fill(700, 0xEE), *table, &consumed), 0);
    EXPECT_EQ(consumed, size);
  }
}

// What the layout does not cover keeps its value, in a fresh table and in a used one.
TEST(ParamTables, ReadsEveryLayoutAndKeepsTheRest) {
  for (const int version : kRead)
    for (const std::int32_t length : {1, 9, 255, 256})
      for (const bool used : {false, true}) {
        SCOPED_TRACE(testing::Message() << version << ", name of " << length << ", used " << used);
        const ParamForm form{version, length};
        const Table prior = used ? filled(7, 2, 100) : std::make_unique<ParamTable>();
        const Table table = copyOf(prior);
        ASSERT_EQ(readInto(paramBytes(form), *table), 0);
        expectLoaded(form, *table, *prior);
      }
}

TEST(ParamTables, DependsOnlyOnItsVersionWord) {
  const Table prior = filled(7, 2, 100);
  const Table table = copyOf(prior);
  for (int word = 0; word < 65536; ++word) {
    std::size_t consumed = 99;
    table->version = 7;
    ASSERT_EQ(readInto(Bytes().u16(static_cast<std::uint16_t>(word)), *table, &consumed), readable(word) ? 1 : -1)
        << word;
    ASSERT_EQ(table->version, word);
    ASSERT_EQ(consumed, 2U) << word;
    if (word > 700 && word % 997 != 0) continue;
    table->version = 7;
    ASSERT_TRUE(same(*table, *prior)) << word;
  }
}

TEST(ParamTables, ConsumesOnlyTheWordOfAVersionWithoutALayout) {
  for (const int word : {0, 1, 5, 51, 53, 54, 59, 503, 504, 1000, 0x7FFF, 0x8000, 0x803C, 0xFFFF}) {
    const Table prior = filled(7, 2, 100);
    const Table table = copyOf(prior);
    std::size_t consumed = 0;
    EXPECT_EQ(readInto(Bytes().u16(static_cast<std::uint16_t>(word)).fill(21000, 0x31), *table, &consumed), -1);
    EXPECT_EQ(consumed, 2U) << word;
    EXPECT_EQ(table->version, word);
    table->version = 7;
    EXPECT_TRUE(same(*table, *prior)) << word;
  }
}

// Every cut returns 1 and keeps exactly the items before it, with two exceptions of the name: the
// length is 0 once its place is reached, and one byte of the old 21 is enough.
TEST(ParamTables, CutKeepsCompleteFields) {
  for (const int version : {52, 60, 80, 500, 501, 502}) {
    const bool old = version >= 500;
    const Bytes all = paramBytes({version, 9});
    const std::size_t nameAt = all.size() - (old ? 21 : 9), lengthAt = old ? all.size() : nameAt - 4;
    const Table used = filled(7, 2, 100), prior = copyOf(used), table = copyOf(used);
    for (std::size_t cut = 0; cut < all.size(); ++cut) {
      *table = *used;
      ASSERT_EQ(readInto(all.cut(cut), *table), old && cut == nameAt + 1 ? 0 : 1) << version << " cut at " << cut;
      prior->nameLength = cut < lengthAt ? used->nameLength : 0;
      // Inside long runs of values each 97th cut shows enough.
      if (cut > 300 && cut + 50 < all.size() && cut % 97 > 8) continue;
      expectLoaded({version, 9, false, !old || cut <= nameAt}, *table, *prior, cut);
      if (HasFailure()) FAIL() << version << " cut at " << cut;
    }
  }
}

TEST(ParamTables, LoadsAnOldNameAsFarAsItIsThereAndSucceedsIfThatIsOneByteOrAll) {
  for (const int version : {500, 501, 502}) {
    const Table from = filled(version, 1, 0);
    const Bytes all = storedForm(from);
    for (std::size_t there = 0; there <= 21; ++there) {
      const Table prior = filled(7, 2, 100);
      const Table table = copyOf(prior);
      EXPECT_EQ(readInto(all.cut(all.size() - 21 + there), *table), there == 1 || there == 21 ? 0 : 1) << there;
      EXPECT_EQ(table->nameLength, 100);
      EXPECT_EQ(std::memcmp(table->name, from->name, there), 0) << there;
      EXPECT_EQ(std::memcmp(table->name + there, prior->name + there, 256 - there), 0) << there;
    }
  }
}

TEST(ParamTables, WidensOldIntegersWithTheirSignAndOldRealsExactly) {
  for (const int version : {500, 501, 502})
    for (const int value : {-1, -32768, 32767, 0, 256}) {
      const Table from = filled(version, 1, 0);
      from->intParams[55] = value;
      from->intParams[63] = -value;
      const double tenth = static_cast<double>(0.1F);
      from->realParams[55] = tenth;
      from->realParams[61] = -tenth;
      const auto table = std::make_unique<ParamTable>();
      ASSERT_EQ(readInto(storedForm(from), *table), 0);
      EXPECT_EQ(table->intParams[55], value);
      EXPECT_EQ(table->intParams[63], value == -32768 ? -32768 : -value);
      EXPECT_EQ(table->realParams[55], tenth);
      EXPECT_EQ(table->realParams[61], -tenth);
    }
}

TEST(ParamTables, Version500StoresSixteenValuesAndAName) {
  const Table prior = filled(7, 2, 100);
  const Table table = copyOf(prior);
  Bytes bytes;
  bytes.u16(500).f32(1.5F).i16(-1).f32(2.5F).f32(3.5F).i16(2).i16(3).i16(4).i16(5).f32(4.5F);
  bytes.i16(6).i16(7).i16(8).i16(-9).f32(5.5F).f32(6.5F).f32(-7.5F).text(21, "STEEL");
  ASSERT_EQ(bytes.size(), 69U);
  ASSERT_EQ(readInto(bytes, *table), 0);
  const int integers[] = {-1, 2, 3, 4, 5, 6, 7, 8, -9};
  const double reals[] = {1.5, 2.5, 3.5, 4.5, 5.5, 6.5, -7.5};
  for (int i = 0; i < 9; ++i) EXPECT_EQ(table->intParams[55 + i], integers[i]) << i;
  for (int i = 0; i < 7; ++i) EXPECT_EQ(table->realParams[55 + i], reals[i]) << i;
  EXPECT_EQ(table->intParams[64], prior->intParams[64]);
  EXPECT_EQ(table->realParams[62], prior->realParams[62]);
  EXPECT_STREQ(table->name, "STEEL");
}

TEST(ParamTables, KeepsIntegers490And492WhereTheFileStoresZero) {
  for (const int version : {60, 79, 80, 499})
    for (const int stored490 : {0, 9, -9})
      for (const int stored492 : {0, 11}) {
        const ParamForm form{version, 3};
        const Table from = made(form), whole = copyOf(from);
        from->intParams[490] = stored490;
        from->intParams[491] = 0;
        from->intParams[492] = stored492;
        from->realParams[490] = 0.0;
        std::memset(from->textParams[490], 0, 81);
        const Table prior = filled(7, 2, 100);
        prior->intParams[490] = 7;
        prior->intParams[492] = 70;
        const Table table = copyOf(prior);
        ASSERT_EQ(readInto(storedForm(from), *table), 0);
        EXPECT_EQ(table->intParams[490], stored490 == 0 ? 7 : stored490) << version;
        EXPECT_EQ(table->intParams[491], 0) << "no other integer is kept";
        EXPECT_EQ(table->intParams[492], stored492 == 0 ? 70 : stored492) << version;
        EXPECT_EQ(table->realParams[490], 0.0);
        EXPECT_EQ(table->textParams[490][0], '\0');
        for (const int n : {490, 491, 492}) table->intParams[n] = whole->intParams[n];
        table->realParams[490] = whole->realParams[490];
        std::memcpy(table->textParams[490], whole->textParams[490], 81);
        expectLoaded(form, *table, *prior);
      }
}

TEST(ParamTables, RefusesANameLengthThatTheNameCannotHold) {
  for (const int version : {52, 60, 80})
    for (const std::int32_t length : {0, -1, 257, 0x7FFFFFFF, -0x7FFFFFFF - 1}) {
      const Bytes whole = paramBytes({version, 0});
      const Table prior = filled(7, 2, 100);
      const Table table = copyOf(prior);
      EXPECT_EQ(readInto(whole.cut(whole.size() - 4).i32(length).fill(400, 0x41), *table), 1) << length;
      if (length == 0) {
        EXPECT_EQ(table->nameLength, 0);
      }
      table->nameLength = prior->nameLength;
      expectLoaded({version, 0}, *table, *prior, whole.size() - 4);
    }
}

TEST(ParamTables, SucceedsOnlyWithTheCompleteName) {
  for (const int version : {52, 60, 80})
    for (const std::int32_t length : {1, 2, 256}) {
      const Bytes whole = storedForm(filled(version, 1, length));
      const auto table = std::make_unique<ParamTable>();
      EXPECT_EQ(readInto(whole.cut(whole.size() - 1), *table), 1);
      EXPECT_EQ(table->nameLength, length);
      EXPECT_EQ(table->name[0], '\0');
      EXPECT_EQ(readInto(whole, *table), 0);
    }
}

TEST(ParamTables, IsWrittenInTheMainLayoutFromVersion60On) {
  for (const int version : {52, 60, 61, 79, 80, 150, 499, 500, 501, 502, 503, 1000, 0x7FFF})
    for (const std::int32_t length : {1, 9, 256}) {
      const Table table = filled(version, 1, length);
      bool ok = false;
      const Bytes bytes = write(*table, &ok);
      EXPECT_TRUE(ok) << version;
      EXPECT_TRUE(bytes == writtenForm(table)) << version << ", name of " << length << ": " << bytes.size();
    }
}

TEST(ParamTables, IsLongerBy4650BytesAtVersion80) {
  EXPECT_EQ(write(*filled(80, 1, 5)).size(), write(*filled(79, 1, 5)).size() + 4650);
}

TEST(ParamTables, LeavesTwoBytesOfAVersionThatCannotBeWritten) {
  const Table table = filled(0, 1, 5);
  for (int word = 0; word < 65536; ++word) {
    if (word == 52 || (word >= 60 && word < 0x8000)) continue;
    table->version = static_cast<std::uint16_t>(word);
    bool ok = true;
    const Bytes bytes = write(*table, &ok);
    ASSERT_FALSE(ok) << word;
    ASSERT_EQ(bytes, Bytes().u16(table->version)) << word;
  }
}

TEST(ParamTables, WritesEntries490And492AlsoWhenTheyAreZero) {
  for (const int version : {60, 80}) {
    const Table table = filled(version, 1, 5);
    table->intParams[490] = table->intParams[492] = 0;
    bool ok = false;
    EXPECT_TRUE(write(*table, &ok) == writtenForm(table));
    EXPECT_TRUE(ok);
  }
}

TEST(ParamTables, CannotBeWrittenWithoutAName) {
  for (const int version : {52, 60, 80, 501}) {
    const Table table = filled(version, 1, 0);
    bool ok = true;
    EXPECT_TRUE(write(*table, &ok) == writtenForm(table)) << version;
    EXPECT_FALSE(ok);
  }
}

TEST(ParamTables, WritesNoNameOfALengthThatTheNameCannotHold) {
  for (const int version : {52, 60, 80})
    for (const std::int32_t length : {-1, 257, 0x7FFFFFFF}) {
      const Table table = filled(version, 1, 0);
      Bytes entries = writtenForm(table);
      entries = entries.cut(entries.size() - 4);
      table->nameLength = length;
      bool ok = true;
      const Bytes bytes = write(*table, &ok);
      EXPECT_FALSE(ok);
      EXPECT_TRUE(bytes == entries || bytes == Bytes(entries).i32(length)) << version << ": " << bytes.size();
    }
}

// The old layouts know no name length: without one from elsewhere the table cannot be written back.
TEST(ParamTables, OldLayoutIsWrittenInTheMainOne) {
  for (const int version : {500, 501, 502})
    for (const std::int32_t length : {0, 5}) {
      const auto table = std::make_unique<ParamTable>();
      table->nameLength = length;
      ASSERT_EQ(readInto(storedForm(filled(version, 1, 0)), *table), 0);
      bool ok = length == 0;
      const Bytes bytes = write(*table, &ok);
      EXPECT_EQ(ok, length != 0);
      EXPECT_TRUE(bytes == writtenForm(table)) << version;
      EXPECT_EQ(bytes.cut(258), Bytes().u16(static_cast<std::uint16_t>(version)).zeros(256));
      const auto again = std::make_unique<ParamTable>();
      std::size_t consumed = 0;
      EXPECT_EQ(readInto(bytes, *again, &consumed), 0);
      EXPECT_EQ(consumed, storedForm(filled(version, 1, 0)).size());
      EXPECT_FALSE(same(*again, *table));
    }
}

TEST(ParamTables, RoundTripsInTheLayoutsThatAreWritten) {
  for (const int version : {52, 60, 79, 80, 499}) {
    const ParamForm form{version, 77};
    const Table table = made(form), prior = filled(7, 2, 100), again = copyOf(prior);
    ASSERT_EQ(readInto(write(*table), *again), 0);
    expectLoaded(form, *again, *prior);
    EXPECT_TRUE(write(*again) == write(*table));
  }
}

}  // namespace
