// What torvio says of files at a glance.
#include "torvio/archive/info.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "OldTorvIO.h"
#include "src/frame/text/text.h"
#include "src/machine/machine_io.h"
#include "tests/support/files.h"
#include "tests/support/kind_files.h"
#include "tests/support/sheet_files.h"
#include "tests/support/special_tool_files.h"
#include "tests/support/stored_forms/parts.h"
#include "tests/tools/run_torvio.h"
#include "torvio/archive/facts.h"
#include "torvio/explain/read_members.h"

namespace {

using namespace oldtorvio;
using namespace oldtorvio::archive;
using namespace testing_support;
using nlohmann::json;
using namespace std::string_literals;

bool contains(const std::string& text, std::string_view part) { return text.find(part) != std::string::npos; }

Info infoOfKind(const Bytes& file, explain::FileKind kind) {
  JudgeOptions options;
  options.kind = kind;
  return infoOf("file", file.span(), options, {});
}

// No control character but the ends of lines, also not in two bytes.
bool isPlain(const std::string& text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto code = static_cast<unsigned char>(text[i]);
    if ((code < 0x20 && text[i] != '\n') || code == 0x7F) return false;
    if (code == 0xC2 && static_cast<unsigned char>(text[i + 1]) < 0xA0) return false;
  }
  return true;
}

Bytes saved(OldSheet& sheet) {
  const TempFolder folder;
  EXPECT_EQ(SaveOldSheet(folder.path("s").c_str(), &sheet, 180), 0);
  return TempFolder::read(folder.path("s"));
}

void addTool(ToolStationList& list, std::int32_t code, float size) {
  ToolStation& station = list.stations.emplace_back();
  station.stationNumber = static_cast<std::int32_t>(list.stations.size());
  station.toolCount = 1;
  OldTool& tool = list.tools.emplace_back();
  tool.shapeCode = code;
  tool.dimension1 = size;
}

std::unique_ptr<OldSheet> nest() {
  auto sheet = std::make_unique<OldSheet>();
  frame::setText(sheet->sheetLabel, "NEST 1");
  frame::setText(sheet->materialType, "DC01");
  frame::setText(sheet->machine.displayName, "PUNCH");
  sheet->machine.textWidth = 256;
  sheet->machine.machineWord1 = 0.5F;
  sheet->width = 96.5F;
  for (const int code : {1, 3, 103, 106, 33}) addTool(sheet->machine.stationsA, code, 0.5F);
  TorvPart& part = sheet->partList.parts.emplace_back();
  frame::setText(part.partName, "BRACKET");
  frame::setText(part.woNumber, "WO-7");
  part.width = 4.25F;
  part.shapes.shapes.resize(3);
  Pattern& pattern = part.patterns.emplace_back();
  pattern.gridCount1 = 3;
  pattern.gridCount2 = 4;
  pattern.items.resize(3);
  pattern.items[0].toolNumber = 4;
  pattern.items[1].toolNumber = 2;
  pattern.items[2].toolNumber = 6;  // one after the last station, where a query of the library ends the process
  return sheet;
}

TEST(Infos, SayWhatASheetContains) {
  const auto sheet = nest();
  const Info info = infoOfKind(saved(*sheet), explain::FileKind::sheet);
  EXPECT_EQ(info.verdict, Verdict::sound);
  const std::string text = infoText("a.sheet", info, 40);
  for (const char* line : {"a.sheet\n", "  kind             sheet, version 180\n", "  verdict          sound\n",
                           "  label            NEST 1\n", "  plate            96.5 x 45\n", "  material         DC01\n",
                           "  machine          PUNCH\n", "  work orders      WO-7\n",
                           "  parts            1 part, 1 placement, 12 copies\n", "  tools used\n"})
    EXPECT_TRUE(contains(text, line)) << line << text;

  const json object = json::parse(infoJson("a.sheet", info));
  EXPECT_EQ(object["path"], "a.sheet");
  EXPECT_EQ(object["kind"], "sheet");
  EXPECT_EQ(object["version"], 180);
  EXPECT_EQ(object["verdict"], "sound");
  EXPECT_EQ(object["width"], 96.5);
  EXPECT_EQ(object["parts"][0]["name"], "BRACKET");
  EXPECT_EQ(object["parts"][0]["width"], 4.25);
  EXPECT_EQ(object["parts"][0]["quantity"], 12);
  EXPECT_EQ(object["parts"][0]["workOrder"], "WO-7");
  EXPECT_EQ(object["copyCount"], 12);
}

TEST(Infos, ListTheToolsThatANestUsesInOrderOfFirstUse) {
  const auto sheet = nest();
  const auto used = [&] {
    std::string stations;
    const json object = json::parse(infoJson("", infoOfKind(saved(*sheet), explain::FileKind::sheet)));
    for (const json& row : object["toolsUsed"]) stations += std::to_string(row["station"].get<int>()) + " ";
    return stations;
  };
  EXPECT_EQ(used(), "4 2 ");
  sheet->shapes.shapes.resize(1);
  sheet->patternItems.resize(29);
  for (PatternItem& item : sheet->patternItems) item.toolNumber = 1;
  sheet->patternItems[28].toolNumber = 3;
  EXPECT_EQ(used(), "4 2 3 ");  // the first 28 items are ignored
  sheet->processSlotCount = 1;
  sheet->processSlots[0].toolUse = 1;
  sheet->processSlots[0].toolActive = 1;
  sheet->processSlots[0].secondToolNumber = 5;
  sheet->processSlots[0].toolChoice = 1;
  EXPECT_EQ(used(), "4 2 3 5 ");
  sheet->processSlots[0].toolActive = 0;
  sheet->machine.machineKind = 4;
  sheet->machine.stationsA.stations[0].byteA = 2;
  EXPECT_EQ(used(), "4 2 3 ");
  ProfileRecord& contour = sheet->profiles.emplace_back();
  contour.profileWords[1] = 17;
  contour.firstBlock.motionKind = 3;
  contour.profileCondition1 = contour.profileCondition2 = 1;
  EXPECT_EQ(used(), "4 2 3 1 ");
  EXPECT_EQ(factsOf(*sheet, {}).toolCount, 4);
}

TEST(Infos, OfEveryKindAndVersionAreTextAndJson) {
  for (const Kind& kind : kinds())
    for (const int version : kind.versions) {
      const Bytes file = kind.file(version);
      const Info info = infoOfKind(file, kind.kind);
      EXPECT_LE(info.verdict, Verdict::soundWithLosses) << kind.name << ' ' << version << info.remark;
      EXPECT_GE(info.facts.size() + info.tables.size(), 2U) << kind.name << ' ' << version;
      const std::string text = infoText("f", info, 3), line = infoJson("f", info);
      EXPECT_TRUE(isPlain(text)) << kind.name << ' ' << version;
      EXPECT_TRUE(isPlain(line)) << kind.name << ' ' << version;
      EXPECT_EQ(std::count(line.begin(), line.end(), '\n'), 1) << kind.name;
      const json object = json::parse(line);
      EXPECT_EQ(object["kind"], kind.name);
      EXPECT_EQ(object["version"], version);

      std::size_t damaged = 0;
      for (std::size_t tenth = 0; tenth < 10; ++tenth) {
        const Info cut = infoOfKind(kind.file(version).cut(file.size() * tenth / 10), kind.kind);
        damaged += cut.verdict == Verdict::damaged ? 1 : 0;
        EXPECT_EQ(json::parse(infoJson("f", cut))["verdict"], nameOf(cut.verdict));
        EXPECT_LE(cut.facts.size(), info.facts.size()) << kind.name << ' ' << version << ' ' << tenth;
      }
      EXPECT_GE(damaged, 5U) << kind.name << ' ' << version;
    }
}

json jsonOf(const Bytes& file, explain::FileKind kind) { return json::parse(infoJson("", infoOfKind(file, kind))); }

// A complete file, and one that ends in the middle.
TEST(ReadMembers, AreThoseOfTheMap) {
  for (const Kind& kind : kinds())
    for (const int version : kind.versions)
      for (const int part : {1, 2}) {
        const Bytes all = kind.file(version), file = all.cut(all.size() / static_cast<std::size_t>(part));
        const explain::ReadMembers read(file.span(), kind.kind);
        std::set<std::string> mapped;
        (void)explain::mapFile(file.span(), kind.kind, [&](const explain::MapLine& line) {
          std::string path = line.path.substr(0, line.path.find_first_of(",["));
          const bool isMember = !path.ends_with("reserved") && !path.ends_with("text") && path != "version";
          if (line.size == 0 || !isMember) return;
          mapped.insert(path);
          EXPECT_TRUE(read.has(path)) << kind.name << ' ' << version << ' ' << path;
        });
        for (const char* name : {"width", "partName", "utilization", "skeletonShapes.shapes", "machine.displayName",
                                 "ncPath", "stationsB.stations", "material.name", "params.title", "rules",
                                 "paramTable.intParams", "machine.clampInfo.clampPositions"}) {
          const auto isOf = [&](const std::string& path) { return path == name || path.starts_with(name + "."s); };
          EXPECT_EQ(read.has(name), std::ranges::any_of(mapped, isOf)) << kind.name << ' ' << version << ' ' << name;
        }
      }
}

TEST(Infos, SayNothingOfWhatAVersionDoesNotStore) {
  const auto sheet = nest();
  const auto ofVersion = [&](int version) {
    return jsonOf(readableSheetFile(*sheet, version), explain::FileKind::sheet);
  };
  EXPECT_FALSE(ofVersion(99).contains("skeletonShapeCount"));
  EXPECT_EQ(ofVersion(100)["skeletonShapeCount"], 0);
  EXPECT_FALSE(ofVersion(101).contains("utilization"));
  EXPECT_EQ(ofVersion(102)["utilization"], 0);
  EXPECT_EQ(ofVersion(54)["width"], 96.5);

  EXPECT_FALSE(jsonOf(machineFile(61), explain::FileKind::machine).contains("ncExtension"));
  EXPECT_TRUE(jsonOf(machineFile(62), explain::FileKind::machine).contains("ncExtension"));
  // The name of a part is stored in sheets and group parts only.
  EXPECT_FALSE(jsonOf(storedPartFile(180), explain::FileKind::part).contains("name"));
  EXPECT_TRUE(jsonOf(storedGroupFile(180), explain::FileKind::groupPart)["parts"][0].contains("name"));
}

TEST(Infos, OfTheOldestPartsAreWhatTheirLoadReads) {
  const Info info = infoOfKind(Bytes().i16(3).f32(30).f32(20).zeros(72), explain::FileKind::part);
  EXPECT_EQ(info.verdict, Verdict::refusedVersion);
  EXPECT_EQ(json::parse(infoJson("", info))["width"], 30);
}

TEST(Infos, StationOfAMachineWithoutAToolHasNone) {
  const auto machine = std::make_unique<OldMachine>();
  machine->textWidth = 256;
  for (ToolStationList* list : {&machine->stationsA, &machine->stationsB}) {
    addTool(*list, 1, 0.5F);
    addTool(*list, 3, 0.5F);
    list->stations[0].toolCount = 0;
  }
  const Bytes file =
      Bytes().i16(180).add(written([&](auto& to) { return WriteOldMachine(to, 180, nullptr, *machine, false); }));
  const json info = jsonOf(file, explain::FileKind::machine);
  EXPECT_EQ(info["stationsA"][0]["tool"], "none");
  EXPECT_EQ(info["stationsA"][0]["dimensions"], "");
  EXPECT_EQ(info["stationsA"][1]["tool"], "RECTANGLE");

  const Facts facts = factsOf(*machine, {});
  EXPECT_EQ(facts.stationCount, 4);
  EXPECT_EQ(facts.toolCount, 2);
  ASSERT_EQ(facts.tools.size(), 2U);
  EXPECT_EQ(facts.tools[0].number, 2);
  EXPECT_EQ(facts.tools[1].list, "stationsB");
}

// The stations of parts that this library builds have a count of 0 and a tool all the same.
TEST(Infos, StationOfAPartHasAToolWhateverItsCount) {
  TorvPart part;
  addTool(part.toolStations, 1, 0.5F);
  part.toolStations.stations[0].toolCount = 0;
  EXPECT_EQ(factsOf(part, {}).toolCount, 1);
}

TEST(Infos, QuantitiesDoNotWrap) {
  const auto sheet = nest();
  sheet->partList.parts[0].patterns[0].gridCount1 = 65'536;
  sheet->partList.parts[0].patterns[0].gridCount2 = 65'537;
  sheet->partList.parts[0].patterns.emplace_back();
  sheet->partList.parts[0].patterns.emplace_back().gridCount2 = 0;
  const json info = jsonOf(saved(*sheet), explain::FileKind::sheet);
  EXPECT_EQ(info["parts"][0]["quantity"], 4'295'032'833);
  EXPECT_EQ(info["copyCount"], 4'295'032'833);
  EXPECT_EQ(info["placementCount"], 3);
  const Facts facts = factsOf(*sheet, {});
  EXPECT_EQ(facts.parts[0].quantity, 4'295'032'833);
  EXPECT_EQ(facts.placementCount, 4'295'032'833);
  for (Pattern& pattern : sheet->partList.parts[0].patterns) pattern.gridCount1 = pattern.gridCount2 = 0xFFFFFFFF;
  EXPECT_EQ(factsOf(*sheet, {}).placementCount, std::numeric_limits<std::int64_t>::max());
}

TEST(Infos, SymmetryCodeOfASpecialToolIsNoDimension) {
  const auto infoWith = [](float third) {
    return jsonOf(specialToolFile(180, {3}, third), explain::FileKind::specialTool);
  };
  EXPECT_EQ(infoWith(2)["dimensions"], "11 x 12");
  EXPECT_EQ(infoWith(2)["symmetry"], "quarter turn");
  EXPECT_EQ(infoWith(1)["symmetry"], "half turn");
  EXPECT_EQ(infoWith(3)["dimensions"], "11 x 12 x 3");
  EXPECT_EQ(infoWith(3)["symmetry"], "none");
}

TEST(Infos, OfADamagedFileHaveOnlyWhatWasRead) {
  const auto sheet = nest();
  const Bytes all = saved(*sheet);
  const auto upTo = [&](std::size_t size) {
    JudgeOptions options;
    options.kind = explain::FileKind::sheet;
    return json::parse(infoJson("", infoOf("s", all.span().first(size), options, {})));
  };
  const json early = upTo(200), late = upTo(300);
  EXPECT_EQ(early["verdict"], "damaged");
  EXPECT_FALSE(early.contains("width"));
  EXPECT_EQ(late["width"], 96.5);
  EXPECT_FALSE(late.contains("machine"));
  EXPECT_TRUE(contains(late["remark"].get<std::string>(), "needs "));
}

TEST(Infos, OfOtherFilesAreTheirVerdict) {
  const Info foreign = infoOf("x", Bytes().raw({0xFF, 0xFF, 1}).span(), {}, {});
  EXPECT_EQ(foreign.verdict, Verdict::foreign);
  EXPECT_TRUE(foreign.facts.empty() && foreign.tables.empty());
  // Its first bytes are no version.
  const Info text = infoOf("x", Bytes().text(20, "hi, this is a note").span(), {}, {});
  EXPECT_EQ(infoText("x", text, 40), "x\n  verdict  foreign\n");
  const Info refused = infoOfKind(Bytes().i16(499).zeros(1000), explain::FileKind::sheet);
  EXPECT_EQ(refused.verdict, Verdict::refusedVersion);
  EXPECT_TRUE(refused.facts.empty() && refused.tables.empty());
  const Info missing = unreadableInfo("cannot be opened");
  EXPECT_EQ(json::parse(infoJson("m", missing)),
            json({{"path", "m"}, {"verdict", "unreadable"}, {"remark", "cannot be opened"}}));
}

TEST(Infos, TextsOfTheFileHaveNoEffect) {
  const auto sheet = nest();
  frame::setText(sheet->sheetLabel, "\x1b[31m\r\nverdict  sound\x9b\x07\"\\");
  frame::setText(sheet->partList.parts[0].partName, "A\nB\tC");
  std::fill(std::begin(sheet->materialType), std::end(sheet->materialType), '\x9b');  // without a NUL
  const Bytes file = saved(*sheet);
  JudgeOptions options;
  options.kind = explain::FileKind::sheet;
  for (const std::string& encodingName : values::TextEncoding::names()) {
    const auto encoding = *values::TextEncoding::named(encodingName);
    const Info info = infoOf("s", file.span(), options, encoding);
    const std::string text = infoText("name\nof\x1b", info, 40), line = infoJson("name\nof\x1b", info);
    EXPECT_TRUE(isPlain(text)) << encodingName;
    EXPECT_TRUE(isPlain(line)) << encodingName;
    EXPECT_TRUE(contains(text, "\\x1b[31m\\r\\nverdict  sound"));
    EXPECT_TRUE(contains(text, "A\\nB\\tC"));
    std::string label;
    encoding.appendUtf8(label, fixedText(sheet->sheetLabel));
    EXPECT_EQ(json::parse(line)["label"], label) << encodingName;
    EXPECT_EQ(json::parse(line)["path"], "name\nof\x1b");
  }
}

TEST(Infos, LongTablesAreCutInTextOnly) {
  const auto sheet = nest();
  for (int i = 0; i < 99; ++i) sheet->partList.parts.emplace_back();
  const Info info = infoOfKind(saved(*sheet), explain::FileKind::sheet);
  EXPECT_TRUE(contains(infoText("s", info, 40), "and 60 more rows\n"));
  // A column without a text in any row, as that of the materials, is left out.
  EXPECT_TRUE(contains(infoText("s", info, 40), " thickness  shapes  quantity  work order\n"));
  EXPECT_FALSE(contains(infoText("s", info, 1000), "more row"));
  EXPECT_EQ(json::parse(infoJson("s", info))["parts"].size(), 100U);
}

TEST(Infos, NanAndInfinityAreNullInJson) {
  const auto sheet = nest();
  sheet->width = std::numeric_limits<float>::quiet_NaN();
  sheet->partList.parts[0].height = -std::numeric_limits<float>::infinity();
  const Info info = infoOfKind(saved(*sheet), explain::FileKind::sheet);
  const json object = json::parse(infoJson("s", info));
  EXPECT_TRUE(object["width"].is_null());
  EXPECT_TRUE(object["parts"][0]["height"].is_null());
  EXPECT_TRUE(contains(infoText("s", info, 40), "? x 45"));
}

TEST(InfoCommand, PrintsABlockOrALineForEachFile) {
  const TempFolder folder;
  const auto sheet = nest();
  const std::string one = folder.write("one.sheet", saved(*sheet));
  const std::string cut = folder.write("cut.sheet", saved(*sheet).cut(300));
  const Outcome text = torvio("info " + one + " " + cut + " " + folder.path("none"));
  EXPECT_EQ(text.code, 3);
  EXPECT_TRUE(contains(text.output, "one.sheet\n  kind ")) << text.output;
  EXPECT_TRUE(contains(text.output, "\n\n" + cut + "\n")) << text.output;
  EXPECT_TRUE(contains(text.output, "unreadable, cannot be opened")) << text.output;
  EXPECT_EQ(torvio("info " + one).code, 0);
  EXPECT_EQ(torvio("info --kind sheet " + cut).code, 1);

  const Outcome lines = torvio("info --json " + one + " " + one);
  EXPECT_EQ(lines.code, 0);
  ASSERT_EQ(std::count(lines.output.begin(), lines.output.end(), '\n'), 2);
  EXPECT_EQ(json::parse(lines.output.substr(0, lines.output.find('\n')))["label"], "NEST 1");
}

}  // namespace
