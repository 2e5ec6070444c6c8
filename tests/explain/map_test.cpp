// The words of the map.
#include "torvio/explain/map.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <tuple>
#include <vector>

#include "OldTorvIO.h"
#include "OldTorvIO/records.h"
#include "src/file_records.h"
#include "src/frame/codec/writer.h"
#include "src/part/part_io.h"
#include "src/records/shape_layout.h"
#include "src/records/small_layouts.h"
#include "src/records/tool_layout.h"
#include "tests/support/files.h"
#include "tests/support/kind_files.h"
#include "tests/support/special_tool_files.h"
#include "torvio/explain/file_map.h"
#include "torvio/explain/kind_names.h"
#include "torvio/explain/map_fields.h"

namespace {

using namespace oldtorvio::codec;
using namespace oldtorvio::explain;
using namespace testing_support;
namespace explain = oldtorvio::explain;

TEST(Map, NamesComeFromTheTextOfTheFields) {
  const auto names = fieldNames("r.width, as<std::int16_t>(r.kind), block(p.x, p.y), r.list.count, plain, t.row[i]");
  EXPECT_EQ(names, (std::vector<std::string>{"width", "kind", "x, y", "list.count", "plain", "row[i]"}));
  EXPECT_EQ(fieldNames("(r.a, r.b),plain"), (std::vector<std::string>{"a, b", "plain"}));
}

// Whatever the standard library calls them: quiet, signalling, with any payload.
TEST(Map, NaNsHaveTheSameNamesOnEveryHost) {
  const auto printed = [](auto value) {
    std::string to;
    printValue(to, value);
    return to;
  };
  for (const std::uint32_t bits : {0x7FC00000U, 0x7F954DDCU, 0x7FFFFFFFU}) {
    EXPECT_EQ(printed(std::bit_cast<float>(bits)), "nan");
    EXPECT_EQ(printed(std::bit_cast<float>(bits | 0x80000000U)), "-nan");
    const std::uint64_t wide = std::uint64_t{0x7FF0000000000000} | bits;
    EXPECT_EQ(printed(std::bit_cast<double>(wide)), "nan");
    EXPECT_EQ(printed(std::bit_cast<double>(wide | std::uint64_t{1} << 63U)), "-nan");
  }
  EXPECT_EQ(printed(0.1F), "0.1");
  EXPECT_EQ(printed(-0.25), "-0.25");
}

TEST(Map, TextsAreQuotedAndEscapedAndBytesAfterTheirEndAreCounted) {
  const auto printed = [](std::string_view field) {
    std::string to;
    printText(to, field.data(), field.size());
    return to;
  };
  EXPECT_EQ(printed(std::string_view("ab\0\0", 4)), "\"ab\"");
  EXPECT_EQ(printed("ab"), "\"ab\" (no NUL)");
  EXPECT_EQ(printed(std::string_view("a\0x\0y", 5)), "\"a\" (2 nonzero bytes after the NUL)");
  EXPECT_EQ(printed(std::string_view("\0x\0", 3)), "\"\" (1 nonzero byte after the NUL)");
  EXPECT_EQ(printed(std::string_view("\x1F !~\x7F\x80\0", 7)), "\"\\x1f !~\\x7f\\x80\"");
  EXPECT_EQ(printed(std::string_view("\"\\\n\xE4\0", 5)), "\"\\\"\\\\\\x0a\\xe4\"");
}

// A record with every kind of field.
struct Sample {
  std::int16_t small = -2;
  float real = 0.5F;
  double wide = 0.25;
  std::uint8_t raw[3] = {1, 0xAB, 0};
  std::uint32_t row[2] = {7, 8};
  std::int32_t kind = 3;
  std::string note = "n";
  std::vector<std::uint32_t> numbers = {5, 6};
  char name[4] = "nam";
};

}  // namespace

template <>
struct oldtorvio::codec::Layout<Sample> {
  static bool describe(auto& io, auto& s) {
    return io.fields(FIELDS(s.small, block(s.real, s.wide), s.raw, s.row, as<std::int16_t>(s.kind))) &&
           io.lengthText(FIELDS(s.note)) && io.list(FIELDS(s.numbers), kCountFirst) && io.sized(FIELDS(s.name), 2) &&
           io.reserved(3) && io.require(within(FIELDS(s.kind), 0, 3)) &&
           io.optionalTail([&] { return io.fields(FIELDS(s.wide)); });
  }
};

namespace {

std::vector<std::string> linesOf(const Bytes& bytes, std::optional<Fault>* fault = nullptr) {
  std::vector<std::string> lines;
  InStream stream(bytes.span());
  Mapper mapper(stream, 180, [&](const MapLine& l) {
    lines.push_back(std::to_string(l.offset) + "+" + std::to_string(l.size) + " " + l.path + " = " + l.value);
  });
  Sample sample;
  (void)mapper.walk(sample);
  if (fault != nullptr) *fault = mapper.fault();
  return lines;
}

TEST(Map, EveryKindOfFieldHasALine) {
  const Bytes bytes = written([](OutStream& s) { return writeRecord(s, 180, Sample()); });
  EXPECT_EQ(linesOf(bytes),
            (std::vector<std::string>{"0+2 small = -2", "2+12 real, wide = 0.5 0.25", "14+3 raw = 01 ab 00",
                                      "17+4 row[0] = 7", "21+4 row[1] = 8", "25+2 kind = 3", "27+4 note.length = 1",
                                      "31+1 note.text = \"n\" (no NUL)", "32+4 numbers.count = 2",
                                      "36+4 numbers[0] = 5", "40+4 numbers[1] = 6", "44+2 name = \"na\" (no NUL)",
                                      "46+3 reserved = (dropped)", "49+8 wide = 0.25"}));
}

// In paths of their own: rows, lists in turns, trailers, what is tolerated inside a record.
TEST(Map, NamesTheRowTheListAndTheRecordThatItIsIn) {
  const auto pathsOf = [](const Bytes& bytes, int version, auto&& record) {
    std::vector<std::string> paths;
    InStream stream(bytes.span());
    Mapper mapper(stream, version, [&](const MapLine& line) { paths.push_back(line.path); });
    (void)mapper.record(FIELDS(record));
    return paths;
  };
  const auto has = [](const std::vector<std::string>& paths, const std::string& path) {
    return std::find(paths.begin(), paths.end(), path) != paths.end();
  };
  oldtorvio::StepTable steps;
  steps.stepCount = 2;
  const Bytes table = written([&](OutStream& s) { return writeRecord(s, 180, steps); });
  const auto rows = pathsOf(table, 180, oldtorvio::StepTable());
  EXPECT_TRUE(has(rows, "record.stepByteA[0]") && has(rows, "record.stepWord[1]"));
  EXPECT_FALSE(has(rows, "record.stepWord[2]") || has(rows, "record.stepWord[i]"));
  EXPECT_EQ(pathsOf(table.cut(20), 180, oldtorvio::StepTable()).back(), "record") << "where a fault is tolerated";

  oldtorvio::ToolStationList list;
  list.stations.resize(2);
  list.tools.resize(2);
  const Bytes stored = written([&](OutStream& s) { return writeRecord(s, 180, list); });
  const auto turns = pathsOf(stored, 180, oldtorvio::ToolStationList());
  EXPECT_TRUE(has(turns, "record.stations[1].stationNumber") && has(turns, "record.tools[0].shapeCode"));
  EXPECT_FALSE(has(turns, "record.tools[0].stationNumber") || has(turns, "record.stations[0].shapeCode"));

  oldtorvio::ShapeList shapes;
  shapes.shapes.resize(2);
  std::vector<std::string> trailers;
  const Bytes eight = Bytes().zeros(8);
  InStream stream(eight.span());
  Mapper mapper(stream, 180, [&](const MapLine& line) { trailers.push_back(line.path); });
  EXPECT_TRUE(describeShapeTrailer(mapper, shapes));
  EXPECT_EQ(trailers, (std::vector<std::string>{"shapes[0].trailerValue", "shapes[1].trailerValue"}));
}

TEST(Map, FaultSaysWhereAndWhyAFileBreaks) {
  const Bytes bytes = written([](OutStream& s) { return writeRecord(s, 180, Sample()); });
  const struct {
    std::size_t cut;
    std::uint64_t offset;
    const char* path;
    const char* reason;
  } cases[] = {
      {1, 0, "small", "needs 2 bytes, the file has 1"},        {13, 2, "real, wide", "needs 12 bytes, the file has 11"},
      {23, 21, "row[1]", "needs 4 bytes, the file has 2"},     {31, 31, "note.text", "needs 1 byte, the file has 0"},
      {42, 40, "numbers[1]", "needs 4 bytes, the file has 2"}, {45, 44, "name", "needs 2 bytes, the file has 1"},
      {48, 46, "reserved", "needs 3 bytes, the file has 2"}};
  for (const auto& one : cases) {
    std::optional<Fault> fault;
    (void)linesOf(bytes.cut(one.cut), &fault);
    ASSERT_TRUE(fault.has_value()) << one.cut;
    EXPECT_EQ(fault->offset, one.offset);
    EXPECT_EQ(fault->path, one.path);
    EXPECT_EQ(fault->reason, one.reason);
  }
  std::optional<Fault> fault;
  EXPECT_EQ(linesOf(bytes.cut(52), &fault).back(),
            "52+0  = fails at wide (needs 8 bytes, the file has 3), which is tolerated there");
  EXPECT_FALSE(fault.has_value());
}

TEST(Map, RefusedValueIsTheFault) {
  Sample sample;
  sample.kind = 4;
  const Bytes front = written([&](OutStream& s) {
    (void)writeRecord(s, 180, sample);
    return true;
  });
  std::optional<Fault> fault;
  (void)linesOf(front, &fault);
  ASSERT_TRUE(fault.has_value());
  EXPECT_EQ(fault->path, "kind");
  EXPECT_EQ(fault->reason, "the value 4 is refused");
}

// ---- complete files ------------------------------------------------------------------------------

TEST(FileMap, SoundFilesAreWalkedToTheirEnd) {
  const TempFolder folder;
  for (const int version : partVersions()) {
    const Bytes file = storedPartFile(version);
    const std::string path = folder.write("p", file);
    for (const explain::FileReport& report :
         {explain::checkFile(path.c_str(), explain::FileKind::part),
          explain::mapFile(path.c_str(), explain::FileKind::part, [](const MapLine&) {})}) {
      EXPECT_EQ(report.status, 0);
      EXPECT_EQ(report.version, version);
      EXPECT_EQ(report.walked, file.size());
      EXPECT_EQ(report.size, file.size());
      EXPECT_TRUE(report.endsExactly());
    }
  }
}

TEST(FileMap, OnlyASoundFileThatGoesOnHasARemarkAboutItsRest) {
  const TempFolder folder;
  const auto remarksOf = [&](const Bytes& file) {
    int remarks = 0;
    (void)explain::mapFile(folder.write("r", file).c_str(), explain::FileKind::part,
                           [&](const MapLine& line) { remarks += line.size == 0 ? 1 : 0; });
    return remarks;
  };
  EXPECT_EQ(remarksOf(storedPartFile(180)), 0);
  EXPECT_EQ(remarksOf(storedPartFile(180).zeros(1)), 1);
  EXPECT_EQ(remarksOf(storedPartFile(180).zeros(2)), 1);
}

TEST(FileMap, BytesAfterTheLastFieldAreReportedAndNoFault) {
  const TempFolder folder;
  const std::string path = folder.write("p", storedPartFile(180).zeros(5));
  std::string last;
  const auto report =
      explain::mapFile(path.c_str(), explain::FileKind::part, [&](const MapLine& line) { last = line.value; });
  EXPECT_EQ(report.status, 0);
  EXPECT_FALSE(report.endsExactly());
  EXPECT_EQ(report.walked + 5, report.size);
  EXPECT_EQ(last, "5 unread bytes after the last field");
}

TEST(FileMap, StatusIsThatOfTheLoad) {
  const TempFolder folder;
  const auto statusOf = [&](const Bytes& bytes, explain::FileKind kind) {
    return explain::checkFile(folder.write("p", bytes).c_str(), kind).status;
  };
  const auto none = explain::checkFile(folder.path("none").c_str(), explain::FileKind::part);
  EXPECT_EQ(none.status, -2);
  ASSERT_TRUE(none.fault);
  EXPECT_EQ(none.fault->offset, 0U);
  EXPECT_EQ(none.fault->path, "");
  EXPECT_EQ(statusOf(specialToolFile(80, {1}), explain::FileKind::specialTool), -1) << "however sound";
  EXPECT_EQ(statusOf(Bytes().i16(5).zeros(1000), explain::FileKind::part), 0) << "version 5 with nothing in it";
  EXPECT_EQ(statusOf(Bytes().i16(61).i16(53).zeros(1000), explain::FileKind::material), -1)
      << "a table without a layout";
  EXPECT_EQ(statusOf(Bytes().i16(61).i16(52).zeros(9000), explain::FileKind::material), 1) << "a name of no length";
  oldtorvio::SheetPartList group;
  group.parts.emplace_back().patterns.emplace_back();
  ASSERT_EQ(oldtorvio::SaveGroupPart(folder.path("g").c_str(), group, 300), 0);
  EXPECT_EQ(explain::checkFile(folder.path("g").c_str(), explain::FileKind::groupPart).status, 0) << "no upper version";
  EXPECT_EQ(statusOf(Bytes().u8(1), explain::FileKind::part), 1);
  EXPECT_EQ(statusOf(Bytes().i16(53), explain::FileKind::part), -1);
  EXPECT_EQ(statusOf(Bytes().i16(5), explain::FileKind::part), 1);
  EXPECT_EQ(statusOf(Bytes().i16(52), explain::FileKind::part), 1);
  EXPECT_EQ(statusOf(Bytes().i16(151), explain::FileKind::groupPart), 1);
  EXPECT_EQ(statusOf(Bytes().i16(80), explain::FileKind::specialTool), -1);
  EXPECT_EQ(statusOf(Bytes().i16(1), explain::FileKind::specialTool), -1);
  EXPECT_EQ(statusOf(specialToolFile(52, {1}), explain::FileKind::specialTool), 0);
}

// Of nothing but a version word, which the load refuses or misses the rest of.
TEST(FileMap, StatusIsThatOfTheLoadForEachVersionWordOfEachKind) {
  const TempFolder folder;
  for (const frame::FileKindInfo& kind : frame::kFileKinds)
    oldtorvio::withFileRecord(kind.kind, [&](auto file) {
      const auto record = std::make_unique<typename decltype(file)::Record>();
      for (int version = -3; version < 520; ++version) {
        const std::string path = folder.overwrite("p", Bytes().i16(version));
        EXPECT_EQ(explain::checkFile(path.c_str(), kind.kind).status, file.load(path.c_str(), *record))
            << kind.name << ' ' << version;
      }
    });
}

TEST(Map, FileOfUnknownKindHasItsVersionAndAFaultThatSaysWhy) {
  const auto mapped = [](const Bytes& bytes) {
    std::string lines;
    const FileReport report = mapFile(bytes.span(), std::nullopt,
                                      [&](const MapLine& line) { lines += line.path + " = " + line.value + "; "; });
    EXPECT_EQ(report.size, bytes.size());
    return lines + (report.fault ? describe(*report.fault) : "no fault");
  };
  EXPECT_EQ(mapped({}), "at 00000000 in version: needs 2 bytes, the file has 0");
  EXPECT_EQ(mapped(Bytes().i16(7).zeros(9)),
            "version = 7; at 00000000 in version: 7 is not a version of any kind of file");
  EXPECT_EQ(mapped(Bytes().i16(180).zeros(9)),
            "version = 180; at 00000000 in version: unlike any kind of file; choose the kind (--kind)");
  const Bytes part = Bytes().i16(180);
  EXPECT_EQ(mapFile(part.span(), std::optional(FileKind::part), [](const MapLine&) {}).fault->offset, 2U);
}

TEST(Map, RefusedVersionIsAFaultOfTheVersion) {
  const Bytes file = Bytes().i16(7).zeros(9);
  const FileReport part = mapFile(file.span(), FileKind::part, [](const MapLine&) {});
  EXPECT_EQ(part.status, -1);
  EXPECT_EQ(part.walked, 2U);
  EXPECT_EQ(describe(*part.fault), "at 00000000 in version: 7 is not a version of a part file");
  const FileReport group = mapFile(file.span(), FileKind::groupPart, [](const MapLine&) {});
  EXPECT_EQ(group.status, 1) << "the load does not distinguish it from damage";
  EXPECT_EQ(group.fault->reason, "7 is not a version of a group-part file");
}

TEST(Map, StatusOfAFileOfUnknownKindSaysWhetherAnyKindHasItsVersion) {
  const auto mapped = [](const Bytes& bytes) { return mapFile(bytes.span(), std::nullopt, [](const MapLine&) {}); };
  EXPECT_EQ(mapped(Bytes().i16(7).zeros(9)).status, -1);
  EXPECT_EQ(mapped(Bytes().i16(180).zeros(9)).status, 1);
  EXPECT_EQ(mapped(Bytes().i16(180).zeros(9)).walked, 2U);
  const FileReport cut = mapped(Bytes().u8(180));
  EXPECT_EQ(cut.status, 1);
  EXPECT_EQ(cut.walked, 0U);
}

// Whole lines: what a walk reports of some bytes is what it reports of them in a walk over all.
using WholeLine = std::tuple<std::uint64_t, std::uint64_t, std::string, std::string, std::size_t, const StoredForm*>;
std::vector<WholeLine> linesOf(std::span<const std::byte> file, FileKind kind, OffsetRange wanted, FileReport& report) {
  std::vector<WholeLine> lines;
  report = mapFile(
      file, kind,
      [&](const MapLine& l) { lines.emplace_back(l.offset, l.size, l.path, l.value, l.nameAt, l.forms.data()); },
      wanted);
  return lines;
}

TEST(Map, WantedBytesChooseLinesAndChangeNothingElse) {
  for (const auto& kind : kinds()) {
    const Bytes whole = kind.file(kind.versions.back());
    for (const std::size_t cut : {whole.span().size(), whole.span().size() / 2}) {
      const std::span<const std::byte> file = whole.span().first(cut);
      FileReport all, some;
      const std::vector<WholeLine> lines = linesOf(file, kind.kind, {}, all);
      for (const OffsetRange wanted : {OffsetRange{0, 0}, OffsetRange{1, 2}, OffsetRange{cut / 3, cut / 3 + 40},
                                       OffsetRange{cut - 1}, OffsetRange{cut + 5}, OffsetRange{0, cut}}) {
        std::vector<WholeLine> expected;
        for (const WholeLine& line : lines)
          if (std::get<1>(line) == 0 || wanted.overlaps(std::get<0>(line), std::get<1>(line))) expected.push_back(line);
        EXPECT_EQ(linesOf(file, kind.kind, wanted, some), expected) << kind.name << " from " << wanted.first;
        EXPECT_EQ(some.status, all.status);
        EXPECT_EQ(some.walked, all.walked);
        ASSERT_EQ(some.fault.has_value(), all.fault.has_value());
        if (!all.fault) continue;
        EXPECT_EQ(some.fault->path, all.fault->path);
        EXPECT_EQ(some.fault->offset, all.fault->offset);
      }
    }
  }
}

TEST(Map, FieldsOfABlockHaveTheirOffsetsAndNames) {
  std::vector<std::pair<std::string, std::uint64_t>> found;
  const auto note = [&](const MapField& field) { found.emplace_back(std::string(field.path), field.offset); };
  const StoredForm forms[] = {{StoredForm::Kind::number, "f32", 4, nullptr},
                              {StoredForm::Kind::number, "u8", 1, nullptr},
                              {StoredForm::Kind::number, "f64", 8, nullptr}};
  eachField(MapLine{100, 13, "a.origin.x, y, z", "", forms, 9}, note);
  EXPECT_EQ(found, (std::vector<std::pair<std::string, std::uint64_t>>{
                       {"a.origin.x", 100}, {"a.origin.y", 104}, {"a.origin.z", 105}}));
}

TEST(Map, ReservedBytesAreOneFieldOfThatType) {
  std::size_t count = 0;
  for (const auto& kind : kinds())
    (void)mapFile(kind.file(kind.versions.back()).span(), kind.kind, [&](const MapLine& line) {
      if (!line.path.ends_with("reserved")) return;
      ++count;
      ASSERT_EQ(line.forms.size(), 1U);
      EXPECT_EQ(line.forms[0].kind, StoredForm::Kind::reserved);
      EXPECT_STREQ(line.forms[0].type, "reserved");
      EXPECT_EQ(line.forms[0].size, 0U) << "all bytes of the line";
    });
  EXPECT_GT(count, 0U);
}

TEST(Map, KindsAreFoundByTheirNames) {
  EXPECT_EQ(kindNames().front(), "part");
  for (const std::string& name : kindNames()) EXPECT_EQ(oldtorvio::frame::infoOf(*kindNamed(name)).name, name);
  EXPECT_EQ(kindNamed("Part"), std::nullopt);
}

}  // namespace
