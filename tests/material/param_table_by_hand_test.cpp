// Parameter tables: the five stored layouts typed row by row, and what the reader and the writer make
// of each of them.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "src/material/material_io.h"
#include "tests/support/bytes.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;

using Table = std::unique_ptr<ParamTable>;  // too large for small stacks

constexpr int kRead[] = {52, 60, 61, 79, 80, 81, 150, 499, 500, 501, 502};

// How a run of entries stands in the file.
enum class As { kTitle, kInt, kShort, kReal, kFloat, kText, kLength, kName, kOldName };

struct Row {
  As as;
  int first = 0, last = 0;
};

// The rows behind the version word; `writes` for the layout that the writer takes.
std::vector<Row> rowsOf(int version, bool writes = false) {
  if (version == 52)
    return {{As::kInt, 55, 89},    {As::kInt, 101, 125}, {As::kReal, 55, 89},
            {As::kReal, 101, 125}, {As::kLength},        {As::kName}};
  if (version == 502 && !writes)
    return {{As::kShort, 55, 89}, {As::kShort, 101, 125}, {As::kReal, 55, 89}, {As::kReal, 101, 125}, {As::kOldName}};
  if (version == 501 && !writes) return {{As::kShort, 55, 89}, {As::kReal, 55, 89}, {As::kOldName}};
  if (version == 500 && !writes)
    return {{As::kFloat, 55, 55}, {As::kShort, 55, 55}, {As::kFloat, 56, 56}, {As::kFloat, 57, 57},
            {As::kShort, 56, 56}, {As::kShort, 57, 57}, {As::kShort, 58, 58}, {As::kShort, 59, 59},
            {As::kFloat, 58, 58}, {As::kShort, 60, 60}, {As::kShort, 61, 61}, {As::kShort, 62, 62},
            {As::kShort, 63, 63}, {As::kFloat, 59, 59}, {As::kFloat, 60, 60}, {As::kFloat, 61, 61},
            {As::kOldName}};
  std::vector<Row> rows{{As::kTitle}};
  for (const As as : {As::kInt, As::kReal, As::kText}) {
    rows.push_back({as, 55, 89});
    rows.push_back({as, 101, 125});
    rows.push_back({as, 401, 500});
    if (version >= 80) rows.push_back({as, 551, 600});
  }
  rows.push_back({As::kLength});
  rows.push_back({As::kName});
  return rows;
}

template <std::size_t N>
void fillRaw(char (&block)[N], unsigned seed) {
  for (std::size_t i = 0; i < N; ++i) block[i] = static_cast<char>(seed * 7 + i * 13 + 1);
}

// A table whose every slot, also those that no layout stores, has a value of its own. All integers fit
// in 16 bits and all reals in a float, so that each layout can hold them; none is zero.
Table filled(int version, int seed, std::int32_t nameLength) {
  auto table = std::make_unique<ParamTable>();
  table->version = static_cast<std::uint16_t>(version);
  fillRaw(table->title, static_cast<unsigned>(seed));
  for (int n = 0; n < ParamTable::kNumbers; ++n) {
    table->intParams[n] = (n % 2 == 0 ? 1 : -1) * (seed * 1000 + n + 1);
    table->realParams[n] = (n % 3 == 0 ? -1 : 1) * (seed * 1000 + n + 0.25);
    fillRaw(table->textParams[n], static_cast<unsigned>(seed * 1000 + n));
  }
  table->nameLength = nameLength;
  fillRaw(table->name, static_cast<unsigned>(seed + 40));
  return table;
}
Table copyOf(const Table& table) { return std::make_unique<ParamTable>(*table); }

// One thing that arrives whole or not at all.
struct Item {
  Bytes bytes;
  std::function<void(ParamTable&)> take;
};

template <std::size_t N>
Bytes raw(const char (&block)[N], std::size_t size = N) {
  return Bytes().text(size, std::string_view(block, size));
}

// The stored form of `from` under its version: the version word and each item of each row.
std::vector<Item> itemsOf(const ParamTable& from, bool writes = false) {
  const ParamTable* f = &from;
  std::vector<Item> items;
  items.push_back({Bytes().u16(f->version), [f](ParamTable& t) { t.version = f->version; }});
  for (const Row& row : rowsOf(f->version, writes))
    for (int n = row.first; n <= row.last; ++n) {
      const auto integer = [f, n](ParamTable& t) { t.intParams[n] = f->intParams[n]; };
      const auto real = [f, n](ParamTable& t) { t.realParams[n] = f->realParams[n]; };
      const auto size = static_cast<std::size_t>(f->nameLength);
      switch (row.as) {
        case As::kTitle:
          items.push_back({raw(f->title), [f](ParamTable& t) { std::memcpy(t.title, f->title, 256); }});
          break;
        case As::kInt:
          items.push_back({Bytes().i32(f->intParams[n]), integer});
          break;
        case As::kShort:
          items.push_back({Bytes().i16(f->intParams[n]), integer});
          break;
        case As::kReal:
          items.push_back({Bytes().f64(f->realParams[n]), real});
          break;
        case As::kFloat:
          items.push_back({Bytes().f32(static_cast<float>(f->realParams[n])), real});
          break;
        case As::kText:
          items.push_back(
              {raw(f->textParams[n]), [f, n](ParamTable& t) { std::memcpy(t.textParams[n], f->textParams[n], 81); }});
          break;
        case As::kLength:
          items.push_back({Bytes().i32(f->nameLength), [f](ParamTable& t) { t.nameLength = f->nameLength; }});
          break;
        case As::kName:
          items.push_back({raw(f->name, size), [f, size](ParamTable& t) { std::memcpy(t.name, f->name, size); }});
          break;
        case As::kOldName:
          items.push_back({raw(f->name, 21), [f](ParamTable& t) { std::memcpy(t.name, f->name, 21); }});
          break;
      }
    }
  return items;
}

Bytes joined(const std::vector<Item>& items) {
  Bytes all;
  for (const Item& item : items) all.add(item.bytes);
  return all;
}
Bytes storedForm(const Table& table) { return joined(itemsOf(*table)); }
Bytes writtenForm(const Table& table) { return joined(itemsOf(*table, true)); }

// `from` read into a copy of `prior`.
Table expected(const Table& from, const Table& prior) {
  Table want = copyOf(prior);
  for (const Item& item : itemsOf(*from)) item.take(*want);
  return want;
}

// The first member in which two tables differ; empty for none.
std::string difference(const ParamTable& a, const ParamTable& b, bool names = true) {
  if (a.version != b.version) return "version";
  if (std::memcmp(a.title, b.title, sizeof a.title) != 0) return "title";
  for (int n = 0; n < ParamTable::kNumbers; ++n) {
    if (a.intParams[n] != b.intParams[n]) return "intParams " + std::to_string(n);
    if (a.realParams[n] != b.realParams[n]) return "realParams " + std::to_string(n);
    if (std::memcmp(a.textParams[n], b.textParams[n], 81) != 0) return "textParams " + std::to_string(n);
  }
  if (a.nameLength != b.nameLength) return "nameLength";
  if (names && std::memcmp(a.name, b.name, sizeof a.name) != 0) return "name";
  return "";
}

int readInto(const Bytes& bytes, ParamTable& table, std::size_t* consumed = nullptr) {
  return readFrom(
      bytes, [&](InStream& s) { return ReadParamTable(s, table); }, consumed);
}
Bytes write(const ParamTable& table, bool* ok = nullptr) {
  return written([&](OutStream& s) { return WriteParamTable(s, table); }, ok);
}

bool readable(int word) { return (word >= 60 && word <= 499) || word == 52 || (word >= 500 && word <= 502); }

TEST(ParamTableByHand, IsAllZeroWhenFresh) {
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

TEST(ParamTableByHand, HasTheSizeOfItsLayout) {
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
TEST(ParamTableByHand, ReadsEveryLayoutAndKeepsTheRest) {
  for (const int version : kRead)
    for (const std::int32_t length : {1, 9, 255, 256})
      for (const bool used : {false, true}) {
        SCOPED_TRACE(testing::Message() << version << ", name of " << length << ", used " << used);
        const Table from = filled(version, 1, length);
        const Table prior = used ? filled(7, 2, 100) : std::make_unique<ParamTable>();
        const Table table = copyOf(prior);
        ASSERT_EQ(readInto(storedForm(from), *table), 0);
        EXPECT_EQ(difference(*table, *expected(from, prior)), "");
      }
}

TEST(ParamTableByHand, GoesByItsVersionWordAlone) {
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
    ASSERT_EQ(difference(*table, *prior), "") << word;
  }
}

TEST(ParamTableByHand, ConsumesOnlyTheWordOfAVersionWithoutALayout) {
  for (const int word : {0, 1, 5, 51, 53, 54, 59, 503, 504, 1000, 0x7FFF, 0x8000, 0x803C, 0xFFFF}) {
    const Table prior = filled(7, 2, 100);
    const Table table = copyOf(prior);
    std::size_t consumed = 0;
    EXPECT_EQ(readInto(Bytes().u16(static_cast<std::uint16_t>(word)).fill(21000, 0x31), *table, &consumed), -1);
    EXPECT_EQ(consumed, 2U) << word;
    EXPECT_EQ(table->version, word);
    table->version = 7;
    EXPECT_EQ(difference(*table, *prior), "") << word;
  }
}

// Every cut gives 1 and leaves exactly the items in front of it, with two exceptions of the name: the
// length is 0 once its place is reached, and one byte of the old 21 is enough.
TEST(ParamTableByHand, KeepsWhatArrivedWholeAtEveryCut) {
  for (const int version : {52, 60, 80, 500, 501, 502}) {
    const Table from = filled(version, 1, 9);
    const auto items = itemsOf(*from);
    const Bytes all = joined(items);
    const bool old = version >= 500;
    const Table prior = filled(7, 2, 100);
    const Table want = copyOf(prior);
    const Table table = copyOf(prior);
    std::size_t at = 0;
    for (std::size_t i = 0; i < items.size(); ++i) {
      const bool isName = i + 1 == items.size();
      if (!old && i + 2 == items.size()) want->nameLength = 0;
      for (std::size_t part = 0; part < items[i].bytes.size(); ++part) {
        *table = *prior;
        const bool oneByte = old && isName && part == 1;
        ASSERT_EQ(readInto(all.cut(at + part), *table), oneByte ? 0 : 1) << version << " cut at " << at + part;
        ASSERT_EQ(difference(*table, *want, !(old && isName && part > 0)), "") << version << " cut at " << at + part;
      }
      at += items[i].bytes.size();
      items[i].take(*want);
    }
  }
}

TEST(ParamTableByHand, LoadsAnOldNameOfWhichOnlyTheFirstByteIsThere) {
  for (const int version : {500, 501, 502}) {
    const Table from = filled(version, 1, 0);
    const Bytes all = storedForm(from);
    for (std::size_t there = 0; there <= 21; ++there) {
      const Table prior = filled(7, 2, 100);
      const Table table = copyOf(prior);
      EXPECT_EQ(readInto(all.cut(all.size() - 21 + there), *table), there == 1 || there == 21 ? 0 : 1) << there;
      EXPECT_EQ(table->nameLength, 100);
      if (there == 1) {
        EXPECT_EQ(table->name[0], from->name[0]);
        EXPECT_EQ(std::memcmp(table->name + 1, prior->name + 1, 255), 0);
      }
      if (there == 21) {
        EXPECT_EQ(std::memcmp(table->name, from->name, 21), 0);
        EXPECT_EQ(std::memcmp(table->name + 21, prior->name + 21, 235), 0);
      }
    }
  }
}

TEST(ParamTableByHand, WidensOldIntegersWithTheirSignAndOldRealsExactly) {
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

TEST(ParamTableByHand, TakesSixteenValuesAndANameAtVersion500) {
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

TEST(ParamTableByHand, KeepsIntegers490And492WhereTheFileStoresZero) {
  for (const int version : {60, 79, 80, 499})
    for (const int stored490 : {0, 9, -9})
      for (const int stored492 : {0, 11}) {
        const Table from = filled(version, 1, 3);
        for (int n = 401; n <= 500; ++n) from->intParams[n] = 0;
        from->intParams[490] = stored490;
        from->intParams[492] = stored492;
        from->realParams[490] = from->realParams[492] = 0.0;
        std::memset(from->textParams[490], 0, 81);
        std::memset(from->textParams[492], 0, 81);
        const Table prior = filled(7, 2, 100);
        prior->intParams[490] = 7;
        prior->intParams[492] = 70;
        prior->realParams[490] = 7.0;
        const Table want = expected(from, prior);
        want->intParams[490] = stored490 == 0 ? 7 : stored490;
        want->intParams[492] = stored492 == 0 ? 70 : stored492;
        const Table table = copyOf(prior);
        ASSERT_EQ(readInto(storedForm(from), *table), 0);
        EXPECT_EQ(difference(*table, *want), "") << version << ": " << stored490 << ", " << stored492;
        EXPECT_EQ(table->intParams[491], 0);
        EXPECT_EQ(table->realParams[490], 0.0);
        EXPECT_EQ(table->textParams[490][0], '\0');
      }
}

TEST(ParamTableByHand, RefusesANameLengthThatTheNameCannotHold) {
  for (const int version : {52, 60, 80})
    for (const std::int32_t length : {0, -1, 257, 0x7FFFFFFF, -0x7FFFFFFF - 1}) {
      const Table from = filled(version, 1, 0);
      const Bytes whole = storedForm(from);
      const Table prior = filled(7, 2, 100);
      const Table table = copyOf(prior);
      EXPECT_EQ(readInto(whole.cut(whole.size() - 4).i32(length).fill(400, 0x41), *table), 1) << length;
      const Table want = expected(from, prior);
      want->nameLength = table->nameLength;
      EXPECT_EQ(difference(*table, *want), "") << version << ", " << length;
      if (length == 0) {
        EXPECT_EQ(table->nameLength, 0);
      }
    }
}

TEST(ParamTableByHand, SucceedsOnlyWithTheWholeName) {
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

TEST(ParamTableByHand, IsWrittenInTheMainLayoutFromVersion60On) {
  for (const int version : {52, 60, 61, 79, 80, 150, 499, 500, 501, 502, 503, 1000, 0x7FFF})
    for (const std::int32_t length : {1, 9, 256}) {
      const Table table = filled(version, 1, length);
      bool ok = false;
      const Bytes bytes = write(*table, &ok);
      EXPECT_TRUE(ok) << version;
      EXPECT_TRUE(bytes == writtenForm(table)) << version << ", name of " << length << ": " << bytes.size();
    }
}

TEST(ParamTableByHand, IsLongerBy4650BytesAtVersion80) {
  EXPECT_EQ(write(*filled(80, 1, 5)).size(), write(*filled(79, 1, 5)).size() + 4650);
}

TEST(ParamTableByHand, LeavesTwoBytesOfAVersionThatCannotBeWritten) {
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

TEST(ParamTableByHand, WritesEntries490And492AlsoWhenTheyAreZero) {
  for (const int version : {60, 80}) {
    const Table table = filled(version, 1, 5);
    table->intParams[490] = table->intParams[492] = 0;
    bool ok = false;
    EXPECT_TRUE(write(*table, &ok) == writtenForm(table));
    EXPECT_TRUE(ok);
  }
}

TEST(ParamTableByHand, CannotBeWrittenWithoutAName) {
  for (const int version : {52, 60, 80, 501}) {
    const Table table = filled(version, 1, 0);
    bool ok = true;
    EXPECT_TRUE(write(*table, &ok) == writtenForm(table)) << version;
    EXPECT_FALSE(ok);
  }
}

TEST(ParamTableByHand, WritesNoNameOfALengthThatTheNameCannotHold) {
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
TEST(ParamTableByHand, OfAnOldLayoutIsWrittenBackInTheMainOne) {
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
      EXPECT_NE(difference(*again, *table), "");
    }
}

TEST(ParamTableByHand, ComesBackAsItWasFromTheLayoutsThatAreWritten) {
  for (const int version : {52, 60, 79, 80, 499}) {
    const Table table = filled(version, 3, 77);
    const Table prior = filled(7, 2, 100);
    const Table again = copyOf(prior);
    ASSERT_EQ(readInto(write(*table), *again), 0);
    EXPECT_EQ(difference(*again, *expected(table, prior)), "");
    EXPECT_TRUE(write(*again) == write(*table));
  }
}

}  // namespace
