// The stored form of stations and of the list of stations and tools, put together field by field.
#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <functional>
#include <memory>

#include "src/records/record_io.h"
#include "tests/support/bytes.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;

// One stored field and what its arrival changes in the record. A field without bytes stands for
// something that the reader does at this place.
template <class R>
struct Field {
  Bytes stored;
  std::function<void(R&)> arrive;
};

using StationFields = std::vector<Field<ToolStation>>;

// Rows 1 to 38, and where the rows end that must arrive.
struct StationForm {
  StationFields fields;
  std::size_t mandatory = 0;

  Bytes bytes() const {
    Bytes all;
    for (const auto& field : fields) all.add(field.stored);
    return all;
  }
};

template <class T>
void addWord(StationFields& to, const ToolStation& from, T ToolStation::*member) {
  const T value = from.*member;
  to.push_back({Bytes().u32(std::bit_cast<std::uint32_t>(value)), [=](ToolStation& s) { s.*member = value; }});
}
template <class T, std::size_t N>
void addWords(StationFields& to, const ToolStation& from, T (ToolStation::*member)[N]) {
  for (std::size_t i = 0; i < N; ++i) {
    const T value = (from.*member)[i];
    to.push_back({Bytes().u32(std::bit_cast<std::uint32_t>(value)), [=](ToolStation& s) { (s.*member)[i] = value; }});
  }
}
void addByte(StationFields& to, const ToolStation& from, std::uint8_t ToolStation::*member) {
  const std::uint8_t value = from.*member;
  to.push_back({Bytes().u8(value), [=](ToolStation& s) { s.*member = value; }});
}

StationForm formOf(const ToolStation& station, int version) {
  StationForm form;
  StationFields& f = form.fields;
  const auto word = [&](auto member) { addWord(f, station, member); };
  const auto words = [&](auto member) { addWords(f, station, member); };
  const auto byte = [&](auto member) { addByte(f, station, member); };
  word(&ToolStation::stationNumber);
  word(&ToolStation::orientation);
  word(&ToolStation::stationType);
  word(&ToolStation::toolCount);
  word(&ToolStation::stationValue);
  words(&ToolStation::limits);
  word(&ToolStation::valueCount);
  f.push_back({Bytes(), [](ToolStation& s) {
                 if (s.stationType == 0 && s.valueCount <= 0) s.valueCount = 1;
               }});
  words(&ToolStation::values);
  words(&ToolStation::offsets);
  byte(&ToolStation::byteA);
  byte(&ToolStation::byteB);
  byte(&ToolStation::byteD);
  word(&ToolStation::realC);
  if (version >= 60) {
    word(&ToolStation::placeValue);
    word(&ToolStation::placeWord);
  }
  if (version >= 61) {
    words(&ToolStation::wordsC);
    words(&ToolStation::realsE);
  }
  if (version >= 90) {
    word(&ToolStation::wordA);
    word(&ToolStation::realA);
    word(&ToolStation::realB);
    word(&ToolStation::wordB);
    word(&ToolStation::realD);
    byte(&ToolStation::byteF);
    byte(&ToolStation::byteG);
    byte(&ToolStation::byteH);
    Bytes text;
    for (const char one : station.stationText) text.u8(static_cast<std::uint8_t>(one));
    f.push_back({text, [station](ToolStation& s) { std::memcpy(s.stationText, station.stationText, 24); }});
    byte(&ToolStation::byteC);
    byte(&ToolStation::byteE);
  }
  if (version >= 100) {
    word(&ToolStation::wordD);
    f.push_back({Bytes().i32(2), [](ToolStation&) {}});
    words(&ToolStation::pairValues);
    word(&ToolStation::wordE);
    word(&ToolStation::wordF);
    word(&ToolStation::realF);
  }
  if (version >= 110) word(&ToolStation::wordG);
  if (version >= 112) word(&ToolStation::wordH);
  form.mandatory = form.bytes().size();
  if (version >= 130) {
    word(&ToolStation::wordI);
    word(&ToolStation::wordJ);
  }
  return form;
}

// Every field another value; `seed` tells two stations apart.
ToolStation distinctStation(int seed = 0) {
  ToolStation s;
  float real = 2.5F + 500.0F * static_cast<float>(seed);
  std::uint32_t word = 0x21324354U + static_cast<std::uint32_t>(seed) * 0x00FEDCBBU;
  int byte = 3 + 40 * seed;
  const auto next = [&](auto& to) {
    using T = std::remove_reference_t<decltype(to)>;
    if constexpr (std::is_same_v<T, float>)
      to = real += 1.75F;
    else if constexpr (sizeof(T) == 4)
      to = static_cast<T>(word += 0x01010307U);
    else
      to = static_cast<T>(1 + byte++ % 255);
  };
  const auto all = [&](auto&... fields) { (next(fields), ...); };
  all(s.placeValue, s.placeWord, s.stationNumber, s.orientation, s.stationType, s.toolCount, s.stationValue);
  for (float& one : s.limits) next(one);
  next(s.valueCount);
  for (float& one : s.values) next(one);
  for (float& one : s.offsets) next(one);
  all(s.byteA, s.byteB, s.byteC, s.wordA, s.realA, s.realB, s.byteD, s.byteE, s.realC, s.wordB, s.realD);
  for (std::uint32_t& one : s.wordsC) next(one);
  for (float& one : s.realsE) next(one);
  all(s.byteF, s.byteG, s.byteH);
  for (char& one : s.stationText) next(one);
  next(s.wordD);
  for (float& one : s.pairValues) next(one);
  all(s.wordE, s.wordF, s.realF, s.wordG, s.wordH, s.wordI, s.wordJ);
  return s;
}

// The names of the fields in which two stations differ, bit by bit.
std::string differences(const ToolStation& a, const ToolStation& b) {
  std::string names;
  const auto compare = [&](const char* name, const auto& x, const auto& y) {
    if (std::memcmp(&x, &y, sizeof x) != 0) names += std::string(name) + " ";
  };
  compare("placeValue", a.placeValue, b.placeValue);
  compare("placeWord", a.placeWord, b.placeWord);
  compare("stationNumber", a.stationNumber, b.stationNumber);
  compare("orientation", a.orientation, b.orientation);
  compare("stationType", a.stationType, b.stationType);
  compare("toolCount", a.toolCount, b.toolCount);
  compare("stationValue", a.stationValue, b.stationValue);
  compare("limits", a.limits, b.limits);
  compare("valueCount", a.valueCount, b.valueCount);
  compare("values", a.values, b.values);
  compare("offsets", a.offsets, b.offsets);
  compare("byteA", a.byteA, b.byteA);
  compare("byteB", a.byteB, b.byteB);
  compare("byteC", a.byteC, b.byteC);
  compare("wordA", a.wordA, b.wordA);
  compare("realA", a.realA, b.realA);
  compare("realB", a.realB, b.realB);
  compare("byteD", a.byteD, b.byteD);
  compare("byteE", a.byteE, b.byteE);
  compare("realC", a.realC, b.realC);
  compare("wordB", a.wordB, b.wordB);
  compare("realD", a.realD, b.realD);
  compare("wordsC", a.wordsC, b.wordsC);
  compare("realsE", a.realsE, b.realsE);
  compare("byteF", a.byteF, b.byteF);
  compare("byteG", a.byteG, b.byteG);
  compare("byteH", a.byteH, b.byteH);
  compare("stationText", a.stationText, b.stationText);
  compare("wordD", a.wordD, b.wordD);
  compare("pairValues", a.pairValues, b.pairValues);
  compare("wordE", a.wordE, b.wordE);
  compare("wordF", a.wordF, b.wordF);
  compare("realF", a.realF, b.realF);
  compare("wordG", a.wordG, b.wordG);
  compare("wordH", a.wordH, b.wordH);
  compare("wordI", a.wordI, b.wordI);
  compare("wordJ", a.wordJ, b.wordJ);
  return names;
}

// What `before` becomes when the first `cut` bytes of the stored form are all there is.
template <class R>
R afterReading(R before, const std::vector<Field<R>>& fields, std::size_t cut) {
  std::size_t end = 0;
  for (const auto& field : fields) {
    end += field.stored.size();
    if (end > cut) break;
    field.arrive(before);
  }
  return before;
}

ToolStation wholeReading(const ToolStation& stored, int version, const ToolStation& before = {}) {
  const StationForm form = formOf(stored, version);
  return afterReading(before, form.fields, form.bytes().size());
}

int readStation(const Bytes& bytes, int version, ToolStation& station, std::size_t* consumed = nullptr) {
  return readFrom(
      bytes, [&](InStream& s) { return ReadToolStation(s, version, station); }, consumed);
}
Bytes writtenStation(const ToolStation& station, int version) {
  bool ok = false;
  const Bytes bytes = written([&](OutStream& s) { return WriteToolStation(s, version, station); }, &ok);
  EXPECT_TRUE(ok);
  return bytes;
}

// Both sides of every gate, and the ends of the signed 16 bits.
const int kVersions[] = {-32768, -1,  0,   2,   52,  54,  59,  60,  61,  62,  80,  89,  90,
                         99,     100, 109, 110, 111, 112, 120, 129, 130, 150, 162, 180, 32767};
const std::int32_t kCounts[] = {INT_MIN, -1, 0, 1, 6, 7, INT_MAX};

// ---- one station ---------------------------------------------------------------------------------

TEST(ToolStationByHand, FreshStationIsZeroButForOneReal) {
  // Compared with a station that holds no bit but those of -1.0.
  ToolStation zero = distinctStation();
  std::memset(static_cast<void*>(&zero), 0, sizeof zero);
  zero.realB = -1.0F;
  EXPECT_EQ(differences(ToolStation(), zero), "");
}

TEST(ToolStationByHand, TakesAsManyBytesAsItsVersionSays) {
  const std::pair<int, std::size_t> cases[] = {{52, 83},   {59, 83},   {60, 91},   {61, 127},  {89, 127},
                                               {90, 176},  {99, 176},  {100, 204}, {109, 204}, {110, 208},
                                               {111, 208}, {112, 212}, {129, 212}, {130, 220}, {180, 220}};
  for (const auto& [version, size] : cases)
    EXPECT_EQ(writtenStation(distinctStation(), version).size(), size) << version;
}

TEST(ToolStationByHand, WritesEachFieldAtItsPlace) {
  for (const int version : kVersions)
    EXPECT_EQ(writtenStation(distinctStation(), version), formOf(distinctStation(), version).bytes()) << version;
}

TEST(ToolStationByHand, ReadsEachFieldIntoAFreshStation) {
  for (const int version : kVersions) {
    SCOPED_TRACE(version);
    const Bytes bytes = formOf(distinctStation(), version).bytes();
    ToolStation station;
    std::size_t consumed = 0;
    EXPECT_EQ(readStation(Bytes(bytes).fill(9, 0xEE), version, station, &consumed), 0);
    EXPECT_EQ(consumed, bytes.size());
    EXPECT_EQ(differences(station, wholeReading(distinctStation(), version)), "");
  }
}

TEST(ToolStationByHand, WordsThatTheVersionDoesNotStoreAreLeftAlone) {
  for (const int version : kVersions) {
    SCOPED_TRACE(version);
    ToolStation used;
    const ToolStation other = distinctStation(1);
    used.wordD = other.wordD;
    for (int i = 0; i < 2; ++i) used.pairValues[i] = other.pairValues[i];
    used.wordE = other.wordE;
    used.wordF = other.wordF;
    used.realF = other.realF;
    used.wordG = other.wordG;
    const ToolStation expected = wholeReading(distinctStation(), version, used);
    EXPECT_EQ(readStation(formOf(distinctStation(), version).bytes(), version, used), 0);
    EXPECT_EQ(differences(used, expected), "");
  }
}

TEST(ToolStationByHand, CutAtAnyByteFailsButForgivesItsLastTwoWords) {
  for (const int version : kVersions) {
    const StationForm form = formOf(distinctStation(), version);
    const Bytes bytes = form.bytes();
    for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
      ToolStation station;
      station.wordI = 71;
      station.wordJ = 72;
      const ToolStation expected = afterReading(station, form.fields, cut);
      std::size_t consumed = 0;
      ASSERT_EQ(readStation(bytes.cut(cut), version, station, &consumed), cut < form.mandatory ? 1 : 0)
          << "version " << version << ", cut " << cut;
      ASSERT_EQ(consumed, cut);
      ASSERT_EQ(differences(station, expected), "") << "version " << version << ", cut " << cut;
    }
  }
}

TEST(ToolStationByHand, FileThatEndsBehindItsLastMandatoryWordLoads) {
  const Bytes bytes = formOf(distinctStation(), 130).bytes();
  ToolStation station;
  EXPECT_EQ(readStation(bytes.cut(bytes.size() - 8), 130, station), 0);
  EXPECT_EQ(station.wordH, distinctStation().wordH);
  EXPECT_EQ(station.wordI, 0U);
  EXPECT_EQ(station.wordJ, 0U);
}

TEST(ToolStationByHand, StationOfTypeZeroHasAtLeastOneValue) {
  for (const int version : {52, 61, 90, 130})
    for (const std::int32_t type : {0, 1, 2, -1, 256})
      for (const std::int32_t count : kCounts) {
        ToolStation stored = distinctStation();
        stored.stationType = type;
        stored.valueCount = count;
        const Bytes bytes = formOf(stored, version).bytes();
        EXPECT_EQ(writtenStation(stored, version), bytes) << "the writer stores the count as it stands";
        ToolStation station;
        ASSERT_EQ(readStation(bytes, version, station), 0);
        EXPECT_EQ(station.valueCount, type == 0 && count <= 0 ? 1 : count) << "type " << type;
        for (int i = 0; i < 6; ++i) EXPECT_EQ(station.values[i], stored.values[i]) << "all six are stored";
      }
}

TEST(ToolStationByHand, Version60HasAPlaceButNoLateBlocks) {
  ToolStation station;
  ASSERT_EQ(readStation(formOf(distinctStation(), 60).bytes(), 60, station), 0);
  EXPECT_EQ(station.placeValue, distinctStation().placeValue);
  EXPECT_EQ(station.placeWord, distinctStation().placeWord);
  for (const std::uint32_t one : station.wordsC) EXPECT_EQ(one, 0U);
  for (const float one : station.realsE) EXPECT_EQ(one, 0.0F);
  EXPECT_EQ(station.realB, -1.0F);
}

TEST(ToolStationByHand, TextIsTakenAsItStands) {
  ToolStation stored = distinctStation();
  for (const int nulAt : {-1, 0, 5, 23}) {
    ToolStation one = stored;
    if (nulAt >= 0) one.stationText[nulAt] = '\0';
    const Bytes bytes = formOf(one, 90).bytes();
    ToolStation station;
    ASSERT_EQ(readStation(bytes, 90, station), 0);
    EXPECT_EQ(std::memcmp(station.stationText, one.stationText, 24), 0);
    EXPECT_EQ(writtenStation(station, 90), bytes);
  }
}

// A station of a version from 100 on whose two pair values are replaced by `count` and that many words.
Bytes withPairs(const ToolStation& station, int version, std::int64_t count, const std::vector<std::uint32_t>& words) {
  const Bytes whole = formOf(station, version).bytes();
  const std::size_t countAt = 83 + 8 + 36 + 49 + 4;
  Bytes bytes = whole.cut(countAt);
  bytes.i32(count);
  for (const std::uint32_t one : words) bytes.u32(one);
  return bytes.add(Bytes::of(whole.span().subspan(countAt + 12)));
}

// The slots behind the first pair value, in the order in which words spill over them.
void spill(ToolStation& to, std::size_t at, std::uint32_t word) {
  switch (at) {
    case 0:
      to.pairValues[0] = std::bit_cast<float>(word);
      break;
    case 1:
      to.pairValues[1] = std::bit_cast<float>(word);
      break;
    case 2:
      to.wordE = word;
      break;
    case 3:
      to.wordF = static_cast<std::int32_t>(word);
      break;
    case 4:
      to.realF = std::bit_cast<float>(word);
      break;
    case 5:
      to.wordG = word;
      break;
    case 6:
      to.wordH = word;
      break;
    case 7:
      to.wordI = word;
      break;
    case 8:
      to.wordJ = word;
      break;
    default:
      FAIL() << "no such slot";
  }
}

std::vector<std::uint32_t> spilledWords(std::size_t count) {
  std::vector<std::uint32_t> words;
  for (std::size_t i = 0; i < count; ++i) words.push_back(0x40A00000U + 0x1111U * static_cast<std::uint32_t>(i));
  return words;
}

// What a fresh station holds behind `count` spilled words, the later rows of the version read over them.
ToolStation spilledOver(const ToolStation& stored, int version, std::size_t count) {
  ToolStation expected = wholeReading(stored, version);
  const ToolStation rowsOnly = expected;
  expected.pairValues[0] = expected.pairValues[1] = 0;
  const std::vector<std::uint32_t> words = spilledWords(count);
  for (std::size_t i = 0; i < count; ++i) spill(expected, i, words[i]);
  expected.wordE = rowsOnly.wordE;
  expected.wordF = rowsOnly.wordF;
  expected.realF = rowsOnly.realF;
  if (version >= 110) expected.wordG = rowsOnly.wordG;
  if (version >= 112) expected.wordH = rowsOnly.wordH;
  if (version >= 130) {
    expected.wordI = rowsOnly.wordI;
    expected.wordJ = rowsOnly.wordJ;
  }
  return expected;
}

TEST(ToolStationByHand, PairValuesSpillOverTheWordsBehindThem) {
  for (const int version : {100, 109, 110, 111, 112, 129, 130, 180})
    for (std::size_t count = 0; count <= 9; ++count) {
      SCOPED_TRACE(testing::Message() << "version " << version << ", count " << count);
      const Bytes bytes = withPairs(distinctStation(), version, static_cast<std::int64_t>(count), spilledWords(count));
      ToolStation station;
      std::size_t consumed = 0;
      EXPECT_EQ(readStation(bytes, version, station, &consumed), 0);
      EXPECT_EQ(consumed, bytes.size());
      EXPECT_EQ(differences(station, spilledOver(distinctStation(), version, count)), "");
    }
}

TEST(ToolStationByHand, NegativeCountOfPairValuesReadsNone) {
  for (const int version : {100, 130})
    for (const std::int64_t count : {-1LL, static_cast<long long>(INT_MIN)}) {
      ToolStation station;
      EXPECT_EQ(readStation(withPairs(distinctStation(), version, count, {}), version, station), 0);
      EXPECT_EQ(differences(station, spilledOver(distinctStation(), version, 0)), "");
    }
}

TEST(ToolStationByHand, MoreThanNinePairValuesAreRefusedAtTheirCount) {
  for (const std::int64_t count : {10LL, 11LL, 256LL, 2000000000LL, static_cast<long long>(INT_MAX)})
    for (const int version : {100, 112, 130}) {
      const Bytes bytes = withPairs(distinctStation(), version, count, spilledWords(40));
      ToolStation station;
      EXPECT_EQ(readStation(bytes, version, station), 1);
      const StationForm upToWordD = formOf(distinctStation(), 90);
      ToolStation expected = afterReading(ToolStation(), upToWordD.fields, upToWordD.bytes().size());
      expected.wordD = distinctStation().wordD;
      EXPECT_EQ(differences(station, expected), "");
    }
}

TEST(ToolStationByHand, CutAmongSpilledWordsKeepsThoseThatArrived) {
  const Bytes bytes = withPairs(distinctStation(), 100, 9, spilledWords(9));
  const std::size_t first = 83 + 8 + 36 + 49 + 4 + 4;
  for (std::size_t cut = first; cut < first + 36; ++cut) {
    ToolStation station;
    ASSERT_EQ(readStation(bytes.cut(cut), 100, station), 1) << cut;
    ToolStation expected = wholeReading(distinctStation(), 90);
    expected.wordD = distinctStation().wordD;
    for (std::size_t i = 0; i < (cut - first) / 4; ++i) spill(expected, i, spilledWords(9)[i]);
    ASSERT_EQ(differences(station, expected), "") << cut;
  }
}

// ---- the list ------------------------------------------------------------------------------------

// A tool by its code, a word and a path; everything else 0.
OldTool plainTool(std::int32_t code, std::uint32_t word, const char* path = "") {
  OldTool tool;
  tool.shapeCode = code;
  tool.auxWord1 = word;
  std::strncpy(tool.specialToolPath, path, sizeof tool.specialToolPath - 1);
  return tool;
}

Bytes storedTool(const OldTool& tool, int version) {
  const bool special = tool.shapeCode == 108;
  Bytes bytes = Bytes().f32(0).i32(tool.shapeCode).zeros(special && version >= 90 ? 24 : 0).i32(0);
  if (special) bytes.text(256, tool.specialToolPath);
  bytes.u32(tool.auxWord1).zeros(12);
  for (int i = 0; i < 2; ++i) bytes.i32(0).zeros(version >= 110 ? 24 : 16);
  return bytes.zeros(8).zeros(version >= 60 ? 8 : 0).zeros(version >= 110 ? 16 : 0).zeros(version >= 111 ? 264 : 0);
}

// A list with a plain tool, a special tool (the one that names its file) and no tool.
ToolStationList distinctList(int seed = 0) {
  ToolStationList list;
  const auto base = static_cast<std::uint32_t>(seed) * 100000U;
  list.headerWord = base + 1001;
  list.secondHeaderWord = base + 1002;
  list.stationModeWord = base + 0xABCD0713U;
  list.extraWords[0] = base + 1004;
  list.extraWords[1] = base + 1005;
  list.tools = {plainTool(1, base + 11), plainTool(108, base + 12, "D:\\SPECTOOL\\star.spt"), plainTool(0, base + 13)};
  for (int i = 0; i < 3; ++i) list.stations.push_back(distinctStation(3 * seed + i));
  return list;
}

// The head up to and with the station count.
Bytes storedHead(const ToolStationList& list, int version, std::int64_t stationCount) {
  Bytes bytes = Bytes().u32(list.headerWord);
  if (version >= 61) bytes.u32(list.secondHeaderWord);
  if (version >= 90) bytes.u32(list.stationModeWord);
  if (version >= 100) bytes.i32(2).u32(list.extraWords[0]).u32(list.extraWords[1]);
  return bytes.i32(stationCount);
}

Bytes storedList(const ToolStationList& list, int version) {
  Bytes bytes = storedHead(list, version, static_cast<std::int64_t>(list.stations.size()));
  for (std::size_t i = 0; i < list.stations.size(); ++i)
    bytes.add(formOf(list.stations[i], version).bytes()).add(storedTool(list.tools[i], version));
  return bytes;
}

int readList(const Bytes& bytes, int version, ToolStationList& list, std::size_t* consumed = nullptr) {
  return readFrom(
      bytes, [&](InStream& s) { return ReadToolStationList(s, version, list); }, consumed);
}
Bytes writtenList(const ToolStationList& list, int version) {
  bool ok = false;
  const Bytes bytes = written([&](OutStream& s) { return WriteToolStationList(s, version, list); }, &ok);
  EXPECT_TRUE(ok);
  return bytes;
}

// The head's words in `list`, but for the lists, are those of the stored one as the version has them.
void expectHead(const ToolStationList& list, const ToolStationList& stored, int version) {
  EXPECT_EQ(list.headerWord, stored.headerWord);
  EXPECT_EQ(list.secondHeaderWord, version >= 61 ? stored.secondHeaderWord : 0U);
  EXPECT_EQ(list.stationModeWord, version >= 90 ? stored.stationModeWord : 2U);
  EXPECT_EQ(list.stationModeCode, version >= 90 ? (stored.stationModeWord >> 8U) % 16U : 0U);
  EXPECT_EQ(list.extraWords[0], version >= 100 ? stored.extraWords[0] : 0U);
  EXPECT_EQ(list.extraWords[1], version >= 100 ? stored.extraWords[1] : 0U);
}

// The first elements of the list are those of the stored one, each read into a fresh record.
void expectStations(const ToolStationList& list, const ToolStationList& stored, int version, std::size_t stations,
                    std::size_t tools) {
  ASSERT_EQ(list.stations.size(), stations);
  ASSERT_EQ(list.tools.size(), tools);
  for (std::size_t i = 0; i < stations; ++i)
    EXPECT_EQ(differences(list.stations[i], wholeReading(stored.stations[i], version)), "") << "station " << i;
  for (std::size_t i = 0; i < tools; ++i) {
    EXPECT_EQ(list.tools[i].shapeCode, stored.tools[i].shapeCode);
    EXPECT_EQ(list.tools[i].auxWord1, stored.tools[i].auxWord1);
    EXPECT_STREQ(list.tools[i].specialToolPath, stored.tools[i].specialToolPath);
  }
}

TEST(ToolStationListByHand, FreshListIsEmptyAndZero) {
  const ToolStationList list;
  EXPECT_TRUE(list.stations.empty());
  EXPECT_TRUE(list.tools.empty());
  for (const std::uint32_t one : {list.headerWord, list.secondHeaderWord, list.stationModeWord, list.spareWord,
                                  list.extraWords[0], list.extraWords[1], list.stationModeCode})
    EXPECT_EQ(one, 0U);
}

TEST(ToolStationListByHand, WritesItsHeadAndThenStationsAndToolsInTurns) {
  for (const int version : kVersions)
    EXPECT_EQ(writtenList(distinctList(), version), storedList(distinctList(), version)) << version;
}

TEST(ToolStationListByHand, EmptyListStoresItsHead) {
  ToolStationList list = distinctList();
  list.stations.clear();
  list.tools.clear();
  for (const int version : kVersions) EXPECT_EQ(writtenList(list, version), storedHead(list, version, 0)) << version;
}

TEST(ToolStationListByHand, DerivedAndSpareWordsAreNotStored) {
  ToolStationList other = distinctList();
  other.spareWord = 77;
  other.stationModeCode = 5;
  for (const int version : kVersions) EXPECT_EQ(writtenList(other, version), storedList(distinctList(), version));
}

TEST(ToolStationListByHand, ReadsIntoAFreshAndIntoAUsedList) {
  for (const int version : kVersions)
    for (const bool used : {false, true}) {
      SCOPED_TRACE(testing::Message() << "version " << version << (used ? ", used" : ", fresh"));
      const ToolStationList stored = distinctList();
      const Bytes bytes = storedList(stored, version);
      ToolStationList list = used ? distinctList(1) : ToolStationList();
      list.spareWord = 77;
      list.stationModeCode = 88;
      std::size_t consumed = 0;
      EXPECT_EQ(readList(Bytes(bytes).fill(5, 0xEE), version, list, &consumed), 0);
      EXPECT_EQ(consumed, bytes.size());
      EXPECT_EQ(list.spareWord, 77U) << "memory only";
      expectHead(list, stored, version);
      expectStations(list, stored, version, 3, 3);
    }
}

TEST(ToolStationListByHand, ModeCodeIsTheThirdHalfByteOfTheModeWord) {
  const std::pair<std::uint32_t, std::uint32_t> cases[] = {{0, 0},          {2, 0},         {0xFF, 0},   {0x100, 1},
                                                           {0x0A02, 10},    {0xF00, 15},    {0x1000, 0}, {0x1F00, 15},
                                                           {0xFFFFF5FF, 5}, {0xFFFFF0FF, 0}};
  for (const int version : {90, 99, 100, 180})
    for (const auto& [word, code] : cases) {
      ToolStationList stored, list;
      stored.stationModeWord = word;
      ASSERT_EQ(readList(storedHead(stored, version, 0), version, list), 0);
      EXPECT_EQ(list.stationModeWord, word);
      EXPECT_EQ(list.stationModeCode, code) << std::hex << word;
    }
  for (const int version : {52, 80, 89}) {
    ToolStationList list = distinctList();
    list.stationModeCode = 9;
    ASSERT_EQ(readList(storedHead(list, version, 0), version, list), 0);
    EXPECT_EQ(list.stationModeWord, 2U);
    EXPECT_EQ(list.stationModeCode, 0U);
  }
}

TEST(ToolStationListByHand, OneOrTwoExtraWordsAreReadAndNoOtherCount) {
  for (const int version : {100, 112, 180})
    for (const std::int32_t count : {INT_MIN, -1, 0, 1, 2, 3, 4, INT_MAX}) {
      SCOPED_TRACE(testing::Message() << "version " << version << ", count " << count);
      const ToolStationList stored = distinctList();
      const Bytes bytes = Bytes()
                              .u32(1)
                              .u32(2)
                              .u32(3)
                              .i32(count)
                              .u32(501)
                              .add(count == 2 ? Bytes().u32(502) : Bytes())
                              .i32(1)
                              .add(formOf(stored.stations[0], version).bytes())
                              .add(storedTool(stored.tools[0], version));
      ToolStationList list = distinctList(1);
      const bool good = count == 1 || count == 2;
      EXPECT_EQ(readList(bytes, version, list), good ? 0 : 1);
      EXPECT_EQ(list.extraWords[0], good ? 501U : 0U);
      EXPECT_EQ(list.extraWords[1], count == 2 ? 502U : 0U);
      EXPECT_EQ(list.headerWord, 1U);
      if (good)
        expectStations(list, stored, version, 1, 1);
      else
        expectStations(list, distinctList(1), 180, 3, 3);
    }
}

TEST(ToolStationListByHand, ExtraWordsAreClearedWhereTheFileHasNone) {
  for (const int version : {52, 61, 90, 99}) {
    ToolStationList list = distinctList();
    ASSERT_EQ(readList(storedHead(list, version, 0), version, list), 0);
    EXPECT_EQ(list.extraWords[0], 0U) << version;
    EXPECT_EQ(list.extraWords[1], 0U) << version;
  }
}

TEST(ToolStationListByHand, StationCountOfZeroKeepsTheListsAndANegativeOneEmptiesThem) {
  for (const int version : kVersions)
    for (const std::int32_t count : {0, -1, -2, INT_MIN}) {
      SCOPED_TRACE(testing::Message() << "version " << version << ", count " << count);
      const ToolStationList stored = distinctList();
      ToolStationList list = distinctList(1);
      std::size_t consumed = 0;
      const Bytes head = storedHead(stored, version, count);
      EXPECT_EQ(readList(Bytes(head).add(storedList(stored, version)), version, list, &consumed), 0);
      EXPECT_EQ(consumed, head.size());
      expectHead(list, stored, version);
      if (count == 0)
        expectStations(list, distinctList(1), 180, 3, 3);
      else
        expectStations(list, stored, version, 0, 0);
    }
}

TEST(ToolStationListByHand, CutAtAnyByteKeepsTheElementsThatArrivedWhole) {
  for (const int version : {52, 60, 61, 90, 100, 110, 111, 112, 129, 130, 180}) {
    const ToolStationList stored = distinctList();
    const std::size_t head = storedHead(stored, version, 3).size();
    const Bytes bytes = storedList(stored, version);
    for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
      SCOPED_TRACE(testing::Message() << "version " << version << ", cut " << cut);
      ToolStationList list = distinctList(1);
      std::size_t consumed = 0;
      ASSERT_EQ(readList(bytes.cut(cut), version, list, &consumed), 1);
      ASSERT_EQ(consumed, cut);
      if (cut < head) {
        ASSERT_EQ(list.stations.size(), 3U) << "the lists are emptied behind their count";
        ASSERT_EQ(list.tools.size(), 3U);
        ASSERT_EQ(list.headerWord, cut < 4 ? distinctList(1).headerWord : stored.headerWord);
        continue;
      }
      // A station counts as whole from its last mandatory word on: its tool is then what is missing.
      std::size_t at = head, stations = 0, tools = 0;
      ToolStationList cutOff = stored;
      for (std::size_t i = 0; i < 3; ++i) {
        const StationForm form = formOf(stored.stations[i], version);
        if (cut >= at + form.mandatory) {
          cutOff.stations[i] = afterReading(ToolStation(), form.fields, cut - at);
          ++stations;
        }
        at += form.bytes().size() + storedTool(stored.tools[i], version).size();
        if (cut >= at) ++tools;
      }
      ASSERT_EQ(list.stations.size(), stations);
      ASSERT_EQ(list.tools.size(), tools);
      for (std::size_t i = 0; i < stations; ++i)
        ASSERT_EQ(differences(list.stations[i], cutOff.stations[i]), "") << "station " << i;
      for (std::size_t i = 0; i < tools; ++i) ASSERT_EQ(list.tools[i].auxWord1, stored.tools[i].auxWord1);
    }
  }
}

TEST(ToolStationListByHand, WordsOfTheHeadArriveOneByOne) {
  const ToolStationList stored = distinctList(), used = distinctList(1);
  const Bytes bytes = storedHead(stored, 100, 3);
  for (std::size_t cut = 0; cut < bytes.size(); ++cut) {
    SCOPED_TRACE(cut);
    ToolStationList list = used;
    list.stationModeCode = 99;
    ASSERT_EQ(readList(bytes.cut(cut), 100, list), 1);
    EXPECT_EQ(list.headerWord, (cut >= 4 ? stored : used).headerWord);
    EXPECT_EQ(list.secondHeaderWord, (cut >= 8 ? stored : used).secondHeaderWord);
    EXPECT_EQ(list.stationModeWord, (cut >= 12 ? stored : used).stationModeWord);
    EXPECT_EQ(list.stationModeCode, cut >= 12 ? (stored.stationModeWord >> 8U) % 16U : 99U);
    EXPECT_EQ(list.extraWords[0], cut >= 20 ? stored.extraWords[0] : cut >= 12 ? 0U : used.extraWords[0]);
    EXPECT_EQ(list.extraWords[1], cut >= 24 ? stored.extraWords[1] : cut >= 12 ? 0U : used.extraWords[1]);
  }
}

TEST(ToolStationListByHand, ForgivenStationWithoutItsToolStaysAlone) {
  const ToolStationList stored = distinctList();
  const Bytes bytes = storedHead(stored, 130, 1).add(formOf(stored.stations[0], 130).bytes());
  ToolStationList list;
  EXPECT_EQ(readList(bytes.cut(bytes.size() - 8), 130, list), 1) << "the tool cannot be read";
  EXPECT_EQ(list.stations.size(), 1U);
  EXPECT_TRUE(list.tools.empty());
}

TEST(ToolStationListByHand, CountBeyondTheFileFails) {
  for (const std::int64_t count : {2LL, 1000LL, 2000000000LL, static_cast<long long>(INT_MAX)})
    for (const int version : {52, 90, 130}) {
      const ToolStationList stored = distinctList();
      ToolStationList list;
      EXPECT_EQ(readList(storedHead(stored, version, count)
                             .add(formOf(stored.stations[0], version).bytes())
                             .add(storedTool(stored.tools[0], version)),
                         version, list),
                1);
      expectStations(list, stored, version, 1, 1);
    }
}

TEST(ToolStationListByHand, StationIsDefaultedWhateverTheOneBeforeItHeld) {
  // Only the first station spills over the words that version 100 does not store.
  const ToolStation stored = distinctStation();
  const Bytes bytes = Bytes()
                          .zeros(12)
                          .i32(2)
                          .zeros(8)
                          .i32(2)
                          .add(withPairs(stored, 100, 9, spilledWords(9)))
                          .add(storedTool(plainTool(1, 1), 100))
                          .add(formOf(stored, 100).bytes())
                          .add(storedTool(plainTool(1, 2), 100));
  ToolStationList list;
  ASSERT_EQ(readList(bytes, 100, list), 0);
  EXPECT_EQ(differences(list.stations.at(0), spilledOver(stored, 100, 9)), "");
  EXPECT_EQ(differences(list.stations.at(1), wholeReading(stored, 100)), "");
}

TEST(ToolStationListByHand, AddingAppendsCopies) {
  ToolStationList list = distinctList();
  ToolStation station = distinctStation(9);
  OldTool tool = plainTool(106, 4711);
  AddToolStation(list, station);
  AddTool(list, tool);
  station.stationNumber = 0;
  tool.auxWord1 = 0;
  ASSERT_EQ(list.stations.size(), 4U);
  ASSERT_EQ(list.tools.size(), 4U);
  EXPECT_EQ(differences(list.stations[3], distinctStation(9)), "");
  EXPECT_EQ(list.tools[3].shapeCode, 106);
  EXPECT_EQ(list.tools[3].auxWord1, 4711U);
  EXPECT_EQ(differences(list.stations[0], distinctStation(0)), "");
}

TEST(ToolStationListByHand, WritersGiveFalseOnceTheFileTakesNoMore) {
  const auto failsSometime = [](auto&& write) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> full(std::fopen("/dev/full", "wb"), &std::fclose);
    OutStream stream(full.get());
    bool ok = true;
    for (int i = 0; ok && i < 100000; ++i) ok = write(stream);
    return !ok && !stream.flush();
  };
  if (std::FILE* full = std::fopen("/dev/full", "wb"); full != nullptr)
    std::fclose(full);
  else
    GTEST_SKIP() << "no device that is always full";
  EXPECT_TRUE(failsSometime([](OutStream& s) { return WriteToolStation(s, 180, distinctStation()); }));
  EXPECT_TRUE(failsSometime([](OutStream& s) { return WriteToolStationList(s, 180, distinctList()); }));
}

}  // namespace
