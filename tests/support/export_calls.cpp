#include "tests/support/export_calls.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <utility>

#include "src/machine/machine_io.h"
#include "src/material/material_io.h"
#include "src/part/part_io.h"
#include "src/sheet/sheet_io.h"
#include "src/tooling/inventory_io.h"
#include "src/tooling/macro_io.h"
#include "src/tooling/special_tool_io.h"
#include "tests/support/kind_files.h"
#include "tests/support/sheet_keys.h"
#include "tests/support/special_tool_files.h"
#include "tests/support/stored_forms/parts.h"

namespace testing_support {
namespace {

using Files = ExportCall::Files;

// ---- files ---------------------------------------------------------------------------------------

Bytes bigPart(std::size_t many) {
  const auto part = RandomRecords(21, 1).newRecord<TorvPart>(180);
  part->shapes.shapes.resize(many);
  part->patterns.resize(1);
  part->patterns[0].items.resize(many);
  return Bytes().i16(180).add(written([&](auto& s) { return WritePartBody(s, 180, false, *part); }));
}

Bytes bigGroup(std::size_t many) {
  const Bytes part = bigPart(many);
  return Bytes().i16(180).i32(0).i32(256).text(256, "A").add(Bytes::of(part.span().subspan(2)));
}

Bytes bigMachine(std::size_t many) {
  RandomRecords random(7, 1);
  const auto m = std::make_unique<OldMachine>();
  fullMachine(random, m.get(), 180);
  m->stepTables.resize(4 * many);
  return Bytes().i16(180).add(written([&](auto& s) { return WriteOldMachine(s, 180, nullptr, *m, false); }));
}

Bytes bigMaterial(std::size_t many) {
  const auto m = RandomRecords(8, 1).newRecord<OldMaterial>(180, [] { return 180; });
  m->entryList.resize(many);
  return Bytes()
      .i16(180)
      .add(written([&](auto& s) { return WriteParamTable(s, m->params); }))
      .add(written([&](auto& s) { return WriteOldMaterialBody(s, 180, *m); }));
}

Bytes bigInventory(std::size_t many) {
  const auto v = RandomRecords(9, 1).newRecord<OldToolInventory>(180);
  v->tools.resize(many);
  v->tools[0].shapeCode = 1;
  return Bytes().i16(180).add(written([&](auto& s) { return WriteToolInventory(s, 180, *v); }));
}

Bytes bigMacro(std::size_t many) {
  const auto m = RandomRecords(10, 1).newRecord<OldMacro>(180);
  m->shapes.shapes.resize(many);
  m->items.resize(many);
  return Bytes().i16(180).add(written([&](auto& s) { return WriteMacro(s, 180, *m); }));
}

Bytes bigSheet(std::size_t many) {
  const auto s = std::make_unique<OldSheet>();
  fullSheet(*s, 180);
  s->shapes.shapes.resize(1 + many);
  return Bytes().i16(180).add(written([&](auto& to) { return WriteOldSheet(to, 180, *s); }));
}

// ---- what is called, and what it changes ---------------------------------------------------------

// Every output that a query may set, with marks that show which it did not.
struct Outputs {
  double d[2];
  float f[24];
  std::int32_t i[8];
  std::uint32_t u[4];
  std::uint8_t b[8];
  std::int32_t flags[602];
  MachineInformation machine;
  char text[12][4096];
  char begun[4096];  // for what is appended to a text

  Outputs() {
    std::memset(static_cast<void*>(this), '#', sizeof *this);
    begun[0] = '\0';
  }
};

std::string bytesOf(const Bytes& bytes) {
  return std::string(reinterpret_cast<const char*>(bytes.span().data()), bytes.size());
}

// The content of a file, which differs from that of no file even if it is empty.
std::string contentOf(const std::string& path) {
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(path, ignored)) return "no file";
  return "file: " + bytesOf(TempFolder::read(path));
}

void removeFile(const std::string& path) {
  std::error_code ignored;
  std::filesystem::remove(path, ignored);
}

using Begin = std::function<void()>;
const Begin kNothing = [] {};

// ask(outputs) returns the status; begin sets what exists once in the process.
template <class Ask>
PreparedCall asking(Ask ask, const Begin& begin = kNothing) {
  const auto out = std::make_shared<Outputs>();
  begin();
  return {[=] { return static_cast<std::int64_t>(ask(*out)); },
          [=] { return std::string(reinterpret_cast<const char*>(out.get()), sizeof *out); },
          [=] {
            *out = Outputs();
            begin();
          }};
}

// write(stream, record) stores the record for comparison; renew(record) empties what a load appends to.
template <class Record, class Load, class Write, class Renew>
PreparedCall loading(const Load& load, const std::string& path, Write write, Renew renew) {
  const auto record = std::make_shared<Record>();
  return {[=, &load] { return load(path.c_str(), record.get()); },
          [=] {
            bool ok = false;
            const Bytes stored = written([&](auto& s) { return write(s, *record); }, &ok);
            return std::string(ok ? "whole " : "not whole ") + bytesOf(stored);
          },
          [=] { renew(*record); }};
}
template <class Record, class Load, class Write>
PreparedCall loading(const Load& load, const std::string& path, Write write) {
  return loading<Record>(load, path, write, [](Record&) {});
}

template <class Ask>
PreparedCall askingLoadedSheet(const Exports& e, const Samples& s, Ask ask) {
  OldSheet* sheet = nullptr;
  (void)e.GetOldSheetHandle(s.path("sheet").c_str(), &sheet);
  const std::shared_ptr<OldSheet> shared(sheet, [&e](OldSheet* one) { e.FreeSheetHandle(one); });
  return asking([=](Outputs& o) { return ask(*shared, o); });
}

// create() returns what destroy() frees; for calls of either.
template <class Create, class Destroy>
auto slotFor(Create, Destroy destroy) {
  using Made = decltype(std::declval<Create>()());
  return std::shared_ptr<Made>(new Made(nullptr), [=](Made* one) {
    if (*one != nullptr) destroy(*one);
    delete one;
  });
}
template <class Create, class Destroy>
PreparedCall creating(Create create, Destroy destroy) {
  const auto slot = slotFor(create, destroy);
  return {[=] {
            *slot = create();
            return std::int64_t{*slot != nullptr};
          },
          [=] { return std::string(*slot != nullptr ? "something" : "nothing"); },
          [=] {
            if (*slot != nullptr) destroy(std::exchange(*slot, nullptr));
          }};
}
template <class Create, class Destroy>
PreparedCall destroying(Create create, Destroy destroy) {
  const auto slot = slotFor(create, destroy);
  *slot = create();
  return {[=] {
            destroy(std::exchange(*slot, nullptr));
            return std::int64_t{0};
          },
          [=] { return std::string(*slot != nullptr ? "something" : "nothing"); },
          [=] {
            if (*slot == nullptr) *slot = create();
          }};
}

constexpr std::uint32_t kValues[9] = {1, 2, 3, 4, 5, 6, 7, 8, 0x3F800000};

// A part with a shape in the builder; it is compared by what it saves.
void beginPart(const Exports& e, const Samples& s) {
  e.InitTorvPart(1.5F, 2.5F, 0.25F, 4, "a", "b", "c", "d", "e", "f");
  for (std::size_t i = 0; i <= s.many(); ++i) (void)e.AddPatIntoGroupPat(1, 1, 2, 3, 0, kValues);
}
std::string builtPart(const Exports& e, const Samples& s) {
  const std::string path = s.path("built");
  const std::int64_t status = e.SaveTorvPart(path.c_str(), 180);
  std::string saved = std::to_string(status) + contentOf(path);
  removeFile(path);
  return saved;
}
template <class Add>
PreparedCall adding(const Exports& e, const Samples& s, Add add) {
  beginPart(e, s);
  return {[=] { return static_cast<std::int64_t>(add()); }, [&] { return builtPart(e, s); }, [&] { beginPart(e, s); }};
}

template <class Edit>
PreparedCall editing(const Samples& s, const std::string& input, Edit edit) {
  s.restore(input);
  const std::string path = s.path(input);
  return {[=] { return edit(path.c_str()); }, [=] { return contentOf(path); }, [=, &s] { s.restore(input); }};
}

std::int64_t openTool(const Exports& e, const std::string& path, Outputs& o) {
  return e.OpenSpecialToolFile(path.c_str(), &o.u[0], &o.f[0], &o.f[1], &o.f[2], &o.f[3], &o.f[4], &o.i[0], &o.f[5],
                               &o.f[6], &o.f[7], &o.f[8], &o.f[9], &o.f[10], &o.i[1], &o.f[11], &o.f[12], &o.f[13],
                               &o.f[14], &o.f[15], &o.f[16], &o.f[17], &o.f[18], &o.b[0]);
}

Begin currentTool(const Exports& e, const std::string& path) {
  return [&e, path] {
    Outputs ignored;
    (void)openTool(e, path, ignored);
  };
}
Begin currentMachine(const Exports& e, const std::string& path) {
  return [&e, path] {
    MachineInformation ignored;
    (void)e.LoadOldMachineInformation(path.c_str(), &ignored);
  };
}
Begin currentInventory(const Exports& e, const std::string& path) {
  return [&e, path] {
    std::uint32_t ignored = 0;
    (void)e.LoadOldToolInventoryForCount(path.c_str(), &ignored);
  };
}

PreparedCall toolOfInventory(const Exports& e, const std::string& path, std::int32_t index) {
  return asking(
      [&e, index](Outputs& o) {
        e.GetOldToolInventoryInformation(index, o.text[0], &o.f[0], &o.f[1], &o.f[2], &o.f[3], &o.i[0], &o.f[4],
                                         &o.f[5], &o.f[6], &o.f[7], &o.f[8], &o.f[9], &o.i[1], &o.f[10], &o.f[11],
                                         &o.f[12], &o.f[13], &o.f[14], &o.f[15]);
        return 0;
      },
      currentInventory(e, path));
}

bool fillsLists(OldSheet& sheet) {
  fullSheet(sheet, 180);
  return true;
}

// ---- the table -----------------------------------------------------------------------------------

#if defined(_WIN32)
const std::vector<std::int64_t> kToolNotOpened{-1};
#else
const std::vector<std::int64_t> kToolNotOpened{-1, -1};  // "win.ini" is a file here
#endif

using E = const Exports&;
using S = const Samples&;

std::vector<ExportCall> makeCalls() {
  std::vector<ExportCall> calls;
  const auto add = [&](ExportCall call) { calls.push_back(std::move(call)); };
  // A load into the caller's record.
  const auto loads = [&](const char* name, const char* form, const char* input, auto prepare) {
    add({name, form, Files::loaded, input, 0, {1}, {-2}, false, prepare});
  };
  // A query that returns 1 if memory runs out, and one that returns 0 after the version word.
  const auto asks = [&](const char* name, const char* form, const char* input, auto prepare) {
    add({name, form, Files::loaded, input, 0, {1}, {-2}, true, prepare});
  };
  const auto asksQuietly = [&](const char* name, const char* input, auto prepare) {
    add({name, "", Files::loaded, input, 0, {1, 0}, {-2}, true, prepare});
  };
  const auto takesNoMemory = [&](const char* name, const char* form, auto prepare) {
    add({name, form, Files::none, "", 0, {}, {}, false, prepare});
  };

  // The part builder.
  takesNoMemory("InitTorvPart", "", [](E e, S s) {
    return PreparedCall{[&] {
                          e.InitTorvPart(1.5F, 2.5F, 0.25F, -4, "name", nullptr, "material", "1", "2", "3");
                          return std::int64_t{0};
                        },
                        [&] {
                          (void)e.AddPatIntoGroupPat(1, 1, 2, 3, 0, kValues);
                          return builtPart(e, s);
                        },
                        kNothing};
  });
  add({"AddPatternToTorvPart",
       "with a special tool",
       Files::tools,
       "named.spt",
       2,
       {-1},
       kToolNotOpened,
       true,
       [](E e, S s) {
         return adding(e, s, [&] {
           return e.AddPatternToTorvPart(1, 2, 3, 4, kValues, 5, 6, 7, 8, 9, 10, "NAMED", 11, 12, 13, 14);
         });
       }});
  add({"AddPatternToTorvPart", "without a tool", Files::none, "", 2, {-1}, {}, true, [](E e, S s) {
         return adding(e, s, [&] {
           return e.AddPatternToTorvPart(1, 2, 3, 4, kValues, 5, 6, 7, 8, 9, 10, nullptr, 11, 12, 13, 14);
         });
       }});
  add({"AddGroupPatIntoTorvPart", "", Files::tools, "named.spt", 4, {-1}, kToolNotOpened, true, [](E e, S s) {
         return adding(e, s, [&] { return e.AddGroupPatIntoTorvPart(1, 2, 0.5F, "named"); });
       }});
  add({"AddPatIntoGroupPat", "", Files::none, "", 2, {0}, {}, true, [](E e, S s) {
         return adding(e, s, [&] { return e.AddPatIntoGroupPat(1, 1, 2, 3, 0, kValues); });
       }});
  add({"SaveTorvPart", "", Files::saved, "saved", 0, {-2}, {-2}, false, [](E e, S s) {
         beginPart(e, s);
         const std::string path = s.path("saved");
         removeFile(path);
         return PreparedCall{[=, &e] { return e.SaveTorvPart(path.c_str(), 180); }, [=] { return contentOf(path); },
                             [=] { removeFile(path); }};
       }});

  // Parts.
  loads("LoadOldPart", "", "part", [](E e, S s) {
    return loading<TorvPart>(
        e.LoadOldPart, s.path("part"), [](auto& to, TorvPart& part) { return WritePartBody(to, 180, false, part); },
        [](TorvPart& part) { part.nestShapeGroups.clear(); });
  });
  asks("GetOldPartInfo", "", "part", [](E e, S s) {
    return asking([&e, path = s.path("part")](Outputs& o) {
      return e.GetOldPartInfo(path.c_str(), o.text[0], &o.f[0], &o.f[1], &o.f[2]);
    });
  });
  for (const char* key : {"angle", "Revision", "MatType", "Thickness"})
    asks("GetOldPartInfo_v1", key, "part", [key](E e, S s) {
      return asking(
          [&e, key, path = s.path("part")](Outputs& o) { return e.GetOldPartInfo_v1(path.c_str(), key, o.text[0]); });
    });
  asks("GetOldPartTool", "", "part", [](E e, S s) {
    return asking(
        [&e, path = s.path("part")](Outputs& o) { return e.GetOldPartTool(path.c_str(), o.text[0], 4096, &o.u[0]); });
  });
  asks("GetOldSptFromPart", "", "part", [](E e, S s) {
    return asking([&e, path = s.path("part")](Outputs& o) { return e.GetOldSptFromPart(path.c_str(), o.begun); });
  });
  asks("GetOldSptFromGroupPart", "", "group", [](E e, S s) {
    return asking([&e, path = s.path("group")](Outputs& o) {
      return e.GetOldSptFromGroupPart(path.c_str(), o.text[0], 4096, &o.u[0]);
    });
  });
  add({"CreateOldPartlistInfo", "", Files::none, "", 1, {0}, {}, true, [](E e, S) {
         return creating([&] { return e.CreateOldPartlistInfo(); },
                         [&](SheetPartList* list) { e.DeleteOldPartlistInfo(list); });
       }});
  takesNoMemory("DeleteOldPartlistInfo", "", [](E e, S s) {
    return destroying(
        [&] {
          SheetPartList* const list = e.CreateOldPartlistInfo();
          (void)e.LoadGroupPart(s.path("group").c_str(), list);
          return list;
        },
        [&](SheetPartList* list) { e.DeleteOldPartlistInfo(list); });
  });
  loads("LoadGroupPart", "", "group", [](E e, S s) {
    return loading<SheetPartList>(
        e.LoadGroupPart, s.path("group"),
        [](auto& to, SheetPartList& list) { return WriteSheetPartList(to, 180, list); },
        [](SheetPartList& list) { list.parts.clear(); });
  });

  // Special tools, inventories, macros.
  loads("LoadOldSpecialTool", "", "tool.spt", [](E e, S s) {
    return loading<OldSpecialTool>(e.LoadOldSpecialTool, s.path("tool.spt"),
                                   [](auto& to, OldSpecialTool& tool) { return WriteSpecialTool(to, 180, tool); });
  });
  add({"OpenSpecialToolFile", "", Files::loaded, "tool.spt", 0, {1}, {-2}, false, [](E e, S s) {
         return asking([&e, path = s.path("tool.spt")](Outputs& o) { return openTool(e, path, o); },
                       currentTool(e, s.path("other.spt")));
       }});
  takesNoMemory("GetShapeAt", "", [](E e, S s) {
    return asking(
        [&e](Outputs& o) {
          e.GetShapeAt(1, &o.i[0], &o.f[0], &o.f[1], &o.f[2], &o.f[3], &o.f[4], &o.f[5]);
          return 0;
        },
        currentTool(e, s.path("tool.spt")));
  });
  loads("LoadOldToolInventory", "", "inventory", [](E e, S s) {
    return loading<OldToolInventory>(e.LoadOldToolInventory, s.path("inventory"),
                                     [](auto& to, OldToolInventory& v) { return WriteToolInventory(to, 180, v); });
  });
  add({"LoadOldToolInventoryForCount", "", Files::loaded, "inventory", 0, {1, 0}, {-2}, false, [](E e, S s) {
         return asking([&e, path = s.path("inventory")](
                           Outputs& o) { return e.LoadOldToolInventoryForCount(path.c_str(), &o.u[0]); },
                       currentInventory(e, s.path("other inventory")));
       }});
  for (const std::int32_t index : {0, 1})
    takesNoMemory("GetOldToolInventoryInformation", index == 0 ? "a tool" : "a special tool",
                  [index](E e, S s) { return toolOfInventory(e, s.path("other inventory"), index); });
  loads("LoadOldMacro", "", "macro", [](E e, S s) {
    return loading<OldMacro>(e.LoadOldMacro, s.path("macro"),
                             [](auto& to, OldMacro& m) { return WriteMacro(to, 180, m); });
  });

  // Materials and machines.
  const auto writeMaterial = [](auto& to, OldMaterial& m) {
    return WriteParamTable(to, m.params) && WriteOldMaterialBody(to, 180, m);
  };
  loads("LoadOldMaterial", "", "material",
        [=](E e, S s) { return loading<OldMaterial>(e.LoadOldMaterial, s.path("material"), writeMaterial); });
  add({"LoadOldMaterial", "only a table", Files::loaded, "table", 0, {1}, {-2, -2}, false, [=](E e, S s) {
         return loading<OldMaterial>(e.LoadOldMaterial, s.path("table"), writeMaterial);
       }});
  loads("LoadOldMachine", "", "machine", [](E e, S s) {
    return loading<OldMachine>(e.LoadOldMachine, s.path("machine"),
                               [](auto& to, OldMachine& m) { return WriteOldMachine(to, 180, nullptr, m, false); });
  });
  asksQuietly("LoadOldMachineInformation", "machine", [](E e, S s) {
    return asking(
        [&e, path = s.path("machine")](Outputs& o) { return e.LoadOldMachineInformation(path.c_str(), &o.machine); },
        currentMachine(e, s.path("other machine")));
  });
  takesNoMemory("LoadOldStationToolFromMachine", "", [](E e, S s) {
    return asking(
        [&e](Outputs& o) {
          e.LoadOldStationToolFromMachine(0, &o.i[0], &o.i[1], &o.f[0], &o.f[1], &o.f[2], &o.i[2], &o.f[3], &o.f[9],
                                          &o.f[10], &o.f[11], &o.f[12], &o.i[3], &o.f[13], &o.f[16], o.text[0],
                                          &o.f[19], &o.f[20], &o.i[4]);
          return 0;
        },
        currentMachine(e, s.path("machine")));
  });
  asksQuietly("GetOldVLMQMachineName", "machine", [](E e, S s) {
    return asking(
        [&e, path = s.path("machine")](Outputs& o) {
          return e.GetOldVLMQMachineName(path.c_str(), o.text[0], &o.u[0], o.text[1], o.text[2], o.text[3]);
        },
        currentMachine(e, s.path("other machine")));
  });
  asks("GetMachineDatasForQD", "", "machine", [](E e, S s) {
    return asking([&e, path = s.path("machine")](Outputs& o) {
      return e.GetMachineDatasForQD(path.c_str(), &o.f[0], &o.f[1], &o.f[2], &o.f[3], &o.f[4], &o.f[5], &o.f[6],
                                    &o.f[7], &o.f[8], &o.f[9], &o.f[10], &o.f[11]);
    });
  });

  // Sheets.
  add({"CreateSheetInfo", "", Files::none, "", 1, {0}, {}, true, [](E e, S) {
         return creating([&] { return e.CreateSheetInfo(); }, [&](OldSheet* sheet) { e.DeleteSheetInfo(sheet); });
       }});
  takesNoMemory("DeleteSheetInfo", "", [](E e, S s) {
    return destroying(
        [&] {
          OldSheet* const sheet = e.CreateSheetInfo();
          (void)e.LoadOldSheet(s.path("sheet").c_str(), sheet);
          return sheet;
        },
        [&](OldSheet* sheet) { e.DeleteSheetInfo(sheet); });
  });
  takesNoMemory("FreeSheetHandle", "", [](E e, S s) {
    return destroying(
        [&] {
          OldSheet* sheet = nullptr;
          (void)e.GetOldSheetHandle(s.path("sheet").c_str(), &sheet);
          return sheet;
        },
        [&](OldSheet* sheet) { e.FreeSheetHandle(sheet); });
  });
  const auto writeSheet = [](auto& to, OldSheet& sheet) { return WriteOldSheet(to, 180, sheet); };
  loads("LoadOldSheet", "", "sheet",
        [=](E e, S s) { return loading<OldSheet>(e.LoadOldSheet, s.path("sheet"), writeSheet); });
  const auto savesSheet = [&](const char* form, std::uint16_t version, bool full) {
    add({"SaveOldSheet", form, Files::saved, "saved", 0, {-2}, {-2}, false, [=](E e, S s) {
           const auto sheet = std::make_shared<OldSheet>();
           if (full && fillsLists(*sheet)) sheet->shapes.shapes.resize(1 + s.many());
           const std::string path = s.path("saved");
           removeFile(path);
           return PreparedCall{[=, &e] { return e.SaveOldSheet(path.c_str(), sheet.get(), version); },
                               [=] { return contentOf(path); }, [=] { removeFile(path); }};
         }});
  };
  savesSheet("full", 180, true);
  savesSheet("fresh, in the oldest layout", 52, false);
  add({"LoadOldSheetInformation", "", Files::loaded, "sheet", 0, {1, 0}, {-2}, false, [](E e, S s) {
         return asking([&e, path = s.path("sheet")](Outputs&) { return e.LoadOldSheetInformation(path.c_str()); });
       }});
  asks("GetOldSheetHandle", "", "sheet", [=](E e, S s) {
    const auto slot = std::shared_ptr<OldSheet*>(new OldSheet*(nullptr), [&e](OldSheet** one) {
      e.FreeSheetHandle(*one);
      delete one;
    });
    return PreparedCall{[=, &e, path = s.path("sheet")] { return e.GetOldSheetHandle(path.c_str(), slot.get()); },
                        [=] {
                          if (*slot == nullptr) return std::string("nothing");
                          return bytesOf(written([&](auto& to) { return writeSheet(to, **slot); }));
                        },
                        [=, &e] { e.FreeSheetHandle(std::exchange(*slot, nullptr)); }};
  });
  for (const char* key : kSheetKeys) {
    // Values that are too long for a text without memory of its own.
    const std::string_view name = key;
    const bool isLong = name.starts_with("part_details") || name.starts_with("partfull");
    add({"GetOldSheetInfoByName", key, Files::none, "", 0, {}, {}, true, [key](E e, S s) {
           return askingLoadedSheet(e, s, [&e, key](OldSheet& sheet, Outputs& o) {
             return e.GetOldSheetInfoByName(&sheet, key, o.text[0]);
           });
         }});
    if (isLong) calls.back().withoutMemory = {1};
  }
  add({"GetOldSheetInfoPartGroupIDs", "", Files::none, "", 0, {}, {}, true, [](E e, S s) {
         return askingLoadedSheet(
             e, s, [&e](OldSheet& sheet, Outputs& o) { return e.GetOldSheetInfoPartGroupIDs(&sheet, o.text[0]); });
       }});
  asksQuietly("GetOldSheetInfo", "sheet", [](E e, S s) {
    return asking([&e, path = s.path("sheet")](Outputs& o) {
      return e.GetOldSheetInfo(path.c_str(), o.text[0], o.text[1], o.text[2], o.text[3], o.text[4], o.text[5],
                               o.text[6], o.text[7], o.text[8], &o.f[0], &o.f[1], &o.f[2], &o.d[0], o.text[9], 4096,
                               &o.i[0], o.text[10], 4096, &o.i[1]);
    });
  });
  asksQuietly("GetOldClampInfo", "sheet", [](E e, S s) {
    return asking([&e, path = s.path("sheet")](Outputs& o) {
      return e.GetOldClampInfo(path.c_str(), &o.u[0], &o.f[0], &o.f[1], &o.f[2], &o.f[3], &o.u[1], &o.f[11]);
    });
  });
  asksQuietly("GetOldVLMQMaterialName", "sheet", [](E e, S s) {
    return asking([&e, path = s.path("sheet")](Outputs& o) {
      return e.GetOldVLMQMaterialName(path.c_str(), o.text[0], o.text[1]);
    });
  });
  asksQuietly("GetOldSkeletonUtil", "sheet", [](E e, S s) {
    return asking([&e, path = s.path("sheet")](Outputs& o) { return e.GetOldSkeletonUtil(path.c_str(), &o.f[0]); });
  });
  // Of a file that ends early it still returns the flags that were read: not all or nothing.
  add({"GetSheetDriverFlags", "", Files::loaded, "sheet", 0, {1}, {-2}, false, [](E e, S s) {
         return asking(
             [&e, path = s.path("sheet")](Outputs& o) { return e.GetSheetDriverFlags(path.c_str(), o.flags); });
       }});
  asks("GetSheetSequenceListSize", "", "sheet", [](E e, S s) {
    return asking(
        [&e, path = s.path("sheet")](Outputs& o) { return e.GetSheetSequenceListSize(path.c_str(), &o.u[0]); });
  });

  // Edits of sheets.
  add({"ReplaceSheetMachineNcPath", "", Files::edited, "edited", 0, {1, 0}, {-2, 0}, false, [](E e, S s) {
         return editing(s, "edited", [&e](const char* path) { return e.ReplaceSheetMachineNcPath(path, "D:\\NC"); });
       }});
  add({"ReplaceSheetSknPatListWithPartPatList",
       "",
       Files::edited,
       "edited",
       0,
       {1, -2, 0},
       {-2, -2, 0, 0},
       false,
       [](E e, S s) {
         return editing(s, "edited", [&e, part = s.path("part")](const char* path) {
           return e.ReplaceSheetSknPatListWithPartPatList(path, part.c_str());
         });
       }});
  add({"UpdateSheetPartWONumber", "", Files::edited, "edited", 0, {1, 0}, {-2, 0}, false, [](E e, S s) {
         return editing(s, "edited",
                        [&e](const char* path) { return e.UpdateSheetPartWONumber(path, "PLATE", "W1", "W2"); });
       }});

  for (ExportCall& call : calls)
    for (const char* name : {"InitTorvPart", "AddPatternToTorvPart", "AddGroupPatIntoTorvPart", "AddPatIntoGroupPat",
                             "SaveTorvPart", "OpenSpecialToolFile", "GetShapeAt", "LoadOldToolInventoryForCount",
                             "GetOldToolInventoryInformation", "LoadOldMachineInformation", "GetOldVLMQMachineName",
                             "LoadOldStationToolFromMachine", "LoadOldSheetInformation"})
      if (call.name == name) call.keepsRoom = true;
  std::ranges::stable_sort(calls, {}, &ExportCall::name);
  return calls;
}

}  // namespace

Samples::Samples(std::size_t many, int version) : many_(many) {
  const int sheetVersion = std::max(version, 152);
  add("part", many == 0 ? storedPartFile(version, {.groupKind = 32001}) : bigPart(many));
  add("group", many == 0 ? storedGroupFile(sheetVersion) : bigGroup(many));
  add("tool.spt", specialToolFile(version, std::vector<int>(many + 2, 1)));
  add("other.spt", specialToolFile(60, {3}));
  add("named.spt", specialToolFile(162, {1, 2}));
  add("machine", many == 0 ? machineFile(version) : bigMachine(many));
  add("other machine", machineFile(54));
  // At version 60 there are only tables.
  add("material", many == 0 ? materialFile(version == 60 ? 61 : version) : bigMaterial(many));
  add("table", materialFile(60));
  add("inventory", many == 0 ? inventoryFile(version) : bigInventory(many));
  add("other inventory", inventoryFile(150));
  add("macro", many == 0 ? macroFile(version) : bigMacro(many));
  add("sheet", many == 0 ? sheetFile(sheetVersion) : bigSheet(many));
  add("edited", content("sheet"));
}

void Samples::add(const std::string& name, const Bytes& content) {
  contents_.emplace(name, content);
  change(name, content);
}

// A file that is made anew reaches the disk when it likes; one that is cut to nothing and written again, at once.
void Samples::replace(const std::string& name, const Bytes& content) const {
  std::error_code ignored;
  std::filesystem::remove_all(path(name), ignored);
  change(name, content);
}

const std::vector<ExportCall>& exportCalls() {
  static const std::vector<ExportCall> calls = makeCalls();
  return calls;
}

}  // namespace testing_support
