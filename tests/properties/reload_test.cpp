// A load over a record that already holds data, for each version over each other: the record then holds what the later
// file stores, the defaults that its load sets, and everything else as it was. The stored forms say which is which.
#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "OldTorvIO.h"
#include "src/machine/machine_io.h"
#include "src/material/material_io.h"
#include "src/sheet/sheet_io.h"
#include "tests/support/files.h"
#include "tests/support/long_tests.h"
#include "tests/support/stored_forms.h"
#include "tests/support/stored_forms/materials.h"
#include "tests/support/stored_forms/param_tables.h"
#include "tests/support/stored_forms/sheets.h"
#include "torvio/values/equal.h"

namespace {

using namespace testing_support;
using values::firstDifference;

// What the tests need of a kind of file:
//   versions()                one at least on each side of every gate
//   file(version, isEarlier)  after the version word; the earlier file has other values and other counts
//   load(path, record)
//   apply(version, before, record)  what the later file makes of a record, apart from the version
struct MaterialKind {
  using Record = OldMaterial;
  static bool isShort(int version) { return version == 52 || version == 60; }
  static std::vector<int> versions() { return joined({52, 60}, longMaterialVersions()); }
  // The table of the file's own version, so that its gates are those of the material.
  static ParamForm table(int version) { return {version, 9}; }
  static MaterialForm form(bool isEarlier) {
    MaterialForm form;
    form.groups = 5;
    if (isEarlier) form.entries = form.settings = form.pairs = form.sizes = form.programs = 3;
    if (isEarlier) form.choices = {1, 1, 1, 1, 1, 1, 1, 1};
    return form;
  }
  static Bytes file(int version, bool isEarlier) {
    const auto made = std::make_unique<OldMaterial>();
    Maker params(isEarlier ? 1 : 0), body(isEarlier ? 1 : 0);
    storedParamTable(params, table(version), made->params);
    if (isShort(version)) return Bytes::of(params.bytes.span().subspan(2));
    storedMaterial(body, version, form(isEarlier), *made);
    return Bytes(params.bytes).add(body.bytes);
  }
  static constexpr auto load = LoadOldMaterial;
  static void apply(int version, const OldMaterial&, OldMaterial& m) {
    Loader params, body;
    storedParamTable(params, table(version), m.params);
    // The name of a table alone is that of the material.
    if (isShort(version))
      m.name = fixedText(m.params.name);
    else
      storedMaterial(body, version, form(false), m);
  }
};

struct MachineKind {
  using Record = OldMachine;
  static std::vector<int> versions() {
    return {52,  59,  60,  61,  62,  71,  80,  90,  92,  100, 101, 110, 111, 112, 120, 121, 130,
            141, 150, 151, 152, 153, 154, 155, 156, 157, 158, 159, 160, 161, 162, 170, 180};
  }
  static MachineForm form(bool isEarlier) {
    MachineForm form;
    if (isEarlier) form.segments = 1;
    return form;
  }
  static Bytes file(int version, bool isEarlier) {
    const auto made = std::make_unique<OldMachine>();
    ShapeList shapes;
    Maker m(isEarlier ? 1 : 0);
    storedMachine(m, version, form(isEarlier), *made, shapes);
    return m.bytes;
  }
  static constexpr auto load = LoadOldMachine;
  static void apply(int version, const OldMachine&, OldMachine& x) {
    ShapeList shapes;
    Loader loader;
    storedMachine(loader, version, form(false), x, shapes);
  }
};

struct SpecialToolKind {
  using Record = OldSpecialTool;
  static std::vector<int> versions() { return specialToolVersions(); }
  // Only the load of a tool with code 108 sets the flags of its symmetry, here to none.
  static std::int32_t code(int version, bool isEarlier) { return isEarlier || version % 2 == 0 ? 108 : 107; }
  static Bytes file(int version, bool isEarlier) {
    OldSpecialTool made;
    Maker m(isEarlier ? 1 : 0);
    if (!isEarlier) {
      storedSpecialTool(m, version, code(version, false), made);
      return m.bytes;
    }
    storedSpecialTool(m, version, code(version, true), made, {ShapeForm()}, 3);
    Maker tool = Maker::ofHeldValues();
    storedTool(tool, version, false, made.tool.shapeCode, made.tool);
    return patched(m.bytes, tool.bytes.size(), Bytes().u8(1));  // flag 1
  }
  static constexpr auto load = LoadOldSpecialTool;
  static void apply(int version, const OldSpecialTool& before, OldSpecialTool& tool) {
    EXPECT_EQ(before.tool.symmetryFlags, 1U);
    if (code(version, false) == 108) tool.tool.symmetryFlags = 0;
    Loader loader;
    storedSpecialTool(loader, version, code(version, false), tool);
  }
};

struct InventoryKind {
  using Record = OldToolInventory;
  static std::vector<int> versions() { return inventoryVersions(); }
  static InventoryForm form(bool isEarlier) { return isEarlier ? InventoryForm{{3}, 3, 1} : InventoryForm(); }
  static Bytes file(int version, bool isEarlier) {
    OldToolInventory made;
    Maker m(isEarlier ? 1 : 0);
    storedInventory(m, version, form(isEarlier), made);
    return m.bytes;
  }
  static constexpr auto load = LoadOldToolInventory;
  static void apply(int version, const OldToolInventory&, OldToolInventory& inventory) {
    Loader loader;
    storedInventory(loader, version, form(false), inventory);
  }
};

struct MacroKind {
  using Record = OldMacro;
  static std::vector<int> versions() { return macroVersions(); }
  static MacroForm form(bool isEarlier) { return isEarlier ? MacroForm{{ShapeForm()}, 3, {3}} : MacroForm(); }
  static Bytes file(int version, bool isEarlier) {
    OldMacro made;
    Maker m(isEarlier ? 1 : 0);
    storedMacro(m, version, form(isEarlier), made);
    return m.bytes;
  }
  static constexpr auto load = LoadOldMacro;
  static void apply(int version, const OldMacro&, OldMacro& macro) {
    Loader loader;
    storedMacro(loader, version, form(false), macro);
  }
};

struct PartKind {
  using Record = TorvPart;
  static std::vector<int> versions() { return partVersions(); }
  static StoredPartForm form(int version, bool isEarlier) {
    return isEarlier ? StoredPartForm{false, true, 32002, {ShapeForm()}} : StoredPartForm{false, version % 2 == 0};
  }
  static Bytes file(int version, bool isEarlier) {
    const auto made = std::make_unique<TorvPart>();
    Maker m(isEarlier ? 1 : 0);
    storedPart(m, version, form(version, isEarlier), *made);
    return m.bytes;
  }
  static constexpr auto load = LoadOldPart;
  static void apply(int version, const TorvPart& before, TorvPart& part) {
    const TorvPart fresh;
    part.optionWord = fresh.optionWord;
    part.optionReal = fresh.optionReal;
    part.optionCount = fresh.optionCount;
    part.optionValue = fresh.optionValue;
    part.optionText[0] = '\0';
    Loader loader;
    storedPart(loader, version, form(version, false), part);
    // Those of the file come after those of the record.
    auto& groups = part.nestShapeGroups;
    const auto& first = before.nestShapeGroups;
    if (version >= 151) groups.insert(groups.begin(), first.begin(), first.end());
  }
};

// What the load of a file makes of its version.
void setVersion(auto& record, int version) { record.version = static_cast<decltype(record.version)>(version); }
void setVersion(OldSpecialTool& record, int version) { record.tool.fileVersion = static_cast<std::int16_t>(version); }

// And of its path.
void setPath(OldMaterial& record, const std::string& path) { EXPECT_TRUE(setFixedText(record.path, path)); }
void setPath(OldToolInventory& record, const std::string& path) { EXPECT_TRUE(setFixedText(record.path, path)); }
void setPath(OldMachine&, const std::string&) {}
void setPath(OldSpecialTool&, const std::string&) {}
void setPath(OldMacro&, const std::string&) {}
void setPath(TorvPart& record, const std::string& path) { EXPECT_TRUE(setFixedText(record.partFullDosName, path)); }

template <class Kind>
class Reload : public ::testing::Test {};
using Kinds = ::testing::Types<MaterialKind, MachineKind, SpecialToolKind, InventoryKind, MacroKind, PartKind>;
TYPED_TEST_SUITE(Reload, Kinds);

TYPED_TEST(Reload, OverEveryOtherVersionTheRecordHoldsWhatTheLaterFileStoresAndKeepsTheRest) {
  using Record = typename TypeParam::Record;
  const TempFolder folder;
  const std::vector<int> versions = TypeParam::versions();
  std::map<int, std::unique_ptr<Record>> befores;
  std::map<int, std::string> later;
  for (const int version : versions) {
    const auto write = [&](const char* name, bool isEarlier) {
      return folder.write(name + std::to_string(version),
                          Bytes().i16(version).add(TypeParam::file(version, isEarlier)));
    };
    auto& before = befores[version] = std::make_unique<Record>();
    ASSERT_EQ(TypeParam::load(write("earlier", true).c_str(), before.get()), 0) << version;
    later[version] = write("later", false);
  }
  for (const int first : versions)
    for (const int second : versions) {
      const Record& before = *befores[first];
      const auto record = std::make_unique<Record>(before), wanted = std::make_unique<Record>(before);
      ASSERT_EQ(TypeParam::load(later[second].c_str(), record.get()), 0) << second << " over " << first;
      TypeParam::apply(second, before, *wanted);
      setVersion(*wanted, second);
      setPath(*wanted, later[second]);
      ASSERT_EQ(firstDifference(*record, *wanted), std::nullopt) << second << " over " << first;
    }
}

// ---- sheets --------------------------------------------------------------------------------------

// Which lists have elements.
enum class Lists {
  full,
  empty,    // only that of the sheet's shapes
  noShapes  // all but that, so that nothing of the sheet's own work is stored
};

SheetForm sheetForm(Lists lists) {
  SheetForm form;
  form.extension = lists != Lists::noShapes;
  form.shapes = lists != Lists::noShapes;
  if (lists == Lists::empty) {
    form.elements = form.ownWork = 0;
    form.slots = form.rows = form.clampRows = 0;
  }
  return form;
}

std::unique_ptr<OldSheet> usedSheet(int version) {
  SheetForm form = sheetForm(Lists::full);
  form.elements = form.ownWork = 3;
  form.slots = 1;
  form.nameWidth = 100;
  form.clamps = 8;
  form.rows = form.clampRows = 25;
  const auto made = std::make_unique<OldSheet>();
  Maker m(1);
  storedSheet(m, version, form, *made);
  auto used = std::make_unique<OldSheet>();
  EXPECT_EQ(readFrom(m.bytes, [&](auto& from) { return ReadOldSheet(from, version, *used); }), 0) << version;
  // What no file sets, and what that of a full sheet does not store.
  std::strcpy(used->sheetName, "in use");
  std::strcpy(used->sheetPath, "somewhere");
  used->transformKind = 4;
  used->transform[2][1] = 5;
  used->processSlotMode = 6;
  used->auxiliaryFlag = 7;
  used->auxiliaryList.resize(2);
  used->scratchShapes.shapes.resize(3);
  used->blocks.resize(2);
  used->optionWord = 8;
  std::memset(used->machine.path, 'm', 255);
  return used;
}

TEST(SheetReload, OverEveryOtherVersionTheRecordHoldsWhatTheLaterFileStoresAndKeepsTheRest) {
  const std::vector<int> versions{52,  53,  54,  59,  60,  61,  62,  70,  71,  79,  80,  89,  90,  91,  92,  99,  100,
                                  101, 102, 109, 110, 111, 112, 120, 121, 129, 130, 139, 140, 141, 149, 150, 151, 152,
                                  153, 154, 155, 156, 157, 158, 159, 160, 161, 162, 169, 170, 179, 180, 500};
  std::map<int, std::unique_ptr<OldSheet>> befores;
  for (const int version : versions) befores[version] = usedSheet(version);
  for (const int second : versions)
    for (const Lists lists : {Lists::full, Lists::empty, Lists::noShapes}) {
      SheetForm form = sheetForm(lists);
      if (second == 500) form.tableVersion = 180;
      const auto made = std::make_unique<OldSheet>();
      Maker m;
      storedSheet(m, second, form, *made);
      for (const int first : versions) {
        // Each version over each other with full lists; with empty ones every seventh pair, but where it is long.
        if (lists != Lists::full && !isLongRun() && (first * 3 + second) % 7 != 0) continue;
        const OldSheet& before = *befores[first];
        const auto record = std::make_unique<OldSheet>(before);
        ASSERT_EQ(readFrom(m.bytes, [&](auto& from) { return ReadOldSheet(from, second, *record); }), 0)
            << second << " over " << first;
        expectLoaded(*record, before, [&](auto& loader, OldSheet& s) { storedSheet(loader, second, form, s); });
        if (HasFailure()) FAIL() << second << " over " << first << ", lists " << static_cast<int>(lists);
      }
    }
}

}  // namespace
