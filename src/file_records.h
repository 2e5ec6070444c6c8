// The record of each kind of file, and how it is loaded, saved and walked.
//
// FileRecord<kind> has
//   kKind              the kind
//   Record             the record that a load fills
//   walk(io, record)   the file after its version word, or all of it if startsWithTable(version); returns the status
//                      of the load
//   read(stream, version, record)  the same by the reader, which is compiled once for this and the load
//   load(path, record), save(path, record, version)
#pragma once
#include <memory>
#include <utility>

#include "OldTorvIO.h"
#include "src/frame/file_kinds.h"
#include "src/machine/machine_io.h"
#include "src/machine/machine_layout.h"
#include "src/material/material_io.h"
#include "src/material/material_layout.h"
#include "src/part/old_part_layout.h"
#include "src/part/part_io.h"
#include "src/part/part_layout.h"
#include "src/sheet/sheet_io.h"
#include "src/sheet/sheet_layout.h"
#include "src/tooling/inventory_io.h"
#include "src/tooling/inventory_layout.h"
#include "src/tooling/macro_io.h"
#include "src/tooling/macro_layout.h"
#include "src/tooling/special_tool_io.h"
#include "src/tooling/special_tool_layout.h"

namespace oldtorvio {

inline std::int64_t statusOf(bool walked) { return walked ? frame::kDone : frame::kDamaged; }

template <frame::FileKind kKind>
struct FileRecord;

// The version word of such a material file is that of the parameter table, which is all that it contains.
constexpr bool startsWithTable(frame::FileKind kind, int version) {
  return kind == frame::FileKind::material && frame::isParamTableVersion(version);
}

template <>
struct FileRecord<frame::FileKind::part> {
  static constexpr frame::FileKind kKind = frame::FileKind::part;
  using Record = TorvPart;
  static std::int64_t load(const char* path, Record& part) { return LoadOldPart(path, &part); }
  static std::int64_t save(const char* path, Record& part, int version) { return SavePart(path, part, version); }
  static std::int64_t walk(auto& io, Record& part) { return statusOf(codec::walkPartFile(io, part)); }
  static std::int64_t read(codec::InStream& stream, int version, Record& part) {
    return ReadPartFile(stream, version, part);
  }
};

template <>
struct FileRecord<frame::FileKind::groupPart> {
  static constexpr frame::FileKind kKind = frame::FileKind::groupPart;
  using Record = SheetPartList;
  static std::int64_t load(const char* path, Record& list) { return LoadGroupPart(path, &list); }
  static std::int64_t save(const char* path, Record& list, int version) { return SaveGroupPart(path, list, version); }
  static std::int64_t walk(auto& io, Record& list) {
    codec::GroupPartFile<std::vector<TorvPart>> file{list.parts};
    return statusOf(io.walk(file));
  }
  static std::int64_t read(codec::InStream& stream, int version, Record& list) {
    return ReadGroupPart(stream, version, list);
  }
};

template <>
struct FileRecord<frame::FileKind::specialTool> {
  static constexpr frame::FileKind kKind = frame::FileKind::specialTool;
  using Record = OldSpecialTool;
  static std::int64_t load(const char* path, Record& tool) { return LoadOldSpecialTool(path, &tool); }
  static std::int64_t save(const char* path, Record& tool, int version) { return SaveSpecialTool(path, tool, version); }
  static std::int64_t walk(auto& io, Record& tool) { return statusOf(io.walk(tool)); }
  static std::int64_t read(codec::InStream& stream, int version, Record& tool) {
    return ReadSpecialTool(stream, version, tool);
  }
};

template <>
struct FileRecord<frame::FileKind::machine> {
  static constexpr frame::FileKind kKind = frame::FileKind::machine;
  using Record = OldMachine;
  static std::int64_t load(const char* path, Record& machine) { return LoadOldMachine(path, &machine); }
  static std::int64_t save(const char* path, Record& machine, int version) {
    return SaveMachine(path, machine, version);
  }
  static std::int64_t walk(auto& io, Record& machine) { return statusOf(io.walk(machine, MachineForm<ShapeList>{})); }
  static std::int64_t read(codec::InStream& stream, int version, Record& machine) {
    return ReadOldMachine(stream, version, nullptr, machine);
  }
};

template <>
struct FileRecord<frame::FileKind::material> {
  static constexpr frame::FileKind kKind = frame::FileKind::material;
  using Record = OldMaterial;
  static std::int64_t load(const char* path, Record& material) { return LoadOldMaterial(path, &material); }
  static std::int64_t save(const char* path, Record& material, int version) {
    return SaveMaterial(path, material, version);
  }
  static std::int64_t walk(auto& io, Record& material) {
    if (!io.record(FIELDS(material.params))) {
      const bool hasNoLayout =
          io.stop() == codec::Stop::refused && paramFormToRead(material.params.version) == ParamForm::none;
      return hasNoLayout ? frame::kWrongVersion : frame::kDamaged;
    }
    return statusOf(frame::isParamTableVersion(io.version()) || io.walk(material));
  }
  static std::int64_t read(codec::InStream& stream, int version, Record& material) {
    const int status = ReadParamTable(stream, material.params);
    return status != 0 || frame::isParamTableVersion(version) ? status : ReadOldMaterialBody(stream, version, material);
  }
};

template <>
struct FileRecord<frame::FileKind::toolInventory> {
  static constexpr frame::FileKind kKind = frame::FileKind::toolInventory;
  using Record = OldToolInventory;
  static std::int64_t load(const char* path, Record& inventory) { return LoadOldToolInventory(path, &inventory); }
  static std::int64_t save(const char* path, Record& inventory, int version) {
    return SaveToolInventory(path, inventory, version);
  }
  static std::int64_t walk(auto& io, Record& inventory) { return statusOf(io.walk(inventory)); }
  static std::int64_t read(codec::InStream& stream, int version, Record& inventory) {
    return ReadToolInventory(stream, version, inventory);
  }
};

template <>
struct FileRecord<frame::FileKind::macro> {
  static constexpr frame::FileKind kKind = frame::FileKind::macro;
  using Record = OldMacro;
  static std::int64_t load(const char* path, Record& macro) { return LoadOldMacro(path, &macro); }
  static std::int64_t save(const char* path, Record& macro, int version) { return SaveMacro(path, macro, version); }
  static std::int64_t walk(auto& io, Record& macro) { return statusOf(io.walk(macro)); }
  static std::int64_t read(codec::InStream& stream, int version, Record& macro) {
    return ReadMacro(stream, version, macro);
  }
};

template <>
struct FileRecord<frame::FileKind::sheet> {
  static constexpr frame::FileKind kKind = frame::FileKind::sheet;
  using Record = OldSheet;
  static std::int64_t load(const char* path, Record& sheet) { return LoadOldSheet(path, &sheet); }
  static std::int64_t save(const char* path, Record& sheet, int version) {
    return SaveOldSheet(path, &sheet, static_cast<std::uint16_t>(version));
  }
  static std::int64_t walk(auto& io, Record& sheet) { return statusOf(io.walk(sheet)); }
  static std::int64_t read(codec::InStream& stream, int version, Record& sheet) {
    return ReadOldSheet(stream, version, sheet);
  }
};

// Calls use(FileRecord<kind>()).
template <class Use>
decltype(auto) withFileRecord(frame::FileKind kind, Use&& use) {
  using frame::FileKind;
  switch (kind) {
    case FileKind::part:
      return use(FileRecord<FileKind::part>());
    case FileKind::groupPart:
      return use(FileRecord<FileKind::groupPart>());
    case FileKind::specialTool:
      return use(FileRecord<FileKind::specialTool>());
    case FileKind::machine:
      return use(FileRecord<FileKind::machine>());
    case FileKind::material:
      return use(FileRecord<FileKind::material>());
    case FileKind::toolInventory:
      return use(FileRecord<FileKind::toolInventory>());
    case FileKind::macro:
      return use(FileRecord<FileKind::macro>());
    default:
      return use(FileRecord<FileKind::sheet>());
  }
}

}  // namespace oldtorvio
