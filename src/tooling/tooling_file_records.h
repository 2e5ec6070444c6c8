// Special tool, tool inventory and macro files, as src/frame/file_record.h describes.
#pragma once
#include "OldTorvIO.h"
#include "src/frame/file_record.h"
#include "src/frame/text/text.h"
#include "src/tooling/inventory_io.h"
#include "src/tooling/inventory_layout.h"
#include "src/tooling/macro_io.h"
#include "src/tooling/macro_layout.h"
#include "src/tooling/special_tool_io.h"
#include "src/tooling/special_tool_layout.h"

namespace oldtorvio {

template <>
struct FileRecord<frame::FileKind::specialTool> {
  static constexpr frame::FileKind kKind = frame::FileKind::specialTool;
  using Record = OldSpecialTool;
  static void setVersion(Record& tool, int version) { tool.tool.fileVersion = static_cast<std::int16_t>(version); }
  static std::int64_t read(codec::InStream& stream, int version, Record& tool) {
    return ReadSpecialTool(stream, version, tool);
  }
  static bool store(codec::OutStream& stream, int version, const Record& tool) {
    return WriteSpecialTool(stream, version, tool);
  }
  static std::int64_t walk(auto& io, Record& tool) { return frame::statusOf(io.walk(tool)); }
  static std::int64_t load(const char* path, Record& tool) { return LoadOldSpecialTool(path, &tool); }
  static std::int64_t save(const char* path, Record& tool, int version) { return SaveSpecialTool(path, tool, version); }
};

template <>
struct FileRecord<frame::FileKind::toolInventory> {
  static constexpr frame::FileKind kKind = frame::FileKind::toolInventory;
  using Record = OldToolInventory;
  static void setVersion(Record& inventory, int version) { inventory.version = static_cast<std::int16_t>(version); }
  static void prepare(Record& inventory, int, std::string_view path) { frame::setPath(inventory.path, path); }
  static std::int64_t read(codec::InStream& stream, int version, Record& inventory) {
    return ReadToolInventory(stream, version, inventory);
  }
  static bool store(codec::OutStream& stream, int version, const Record& inventory) {
    return WriteToolInventory(stream, version, inventory);
  }
  static std::int64_t walk(auto& io, Record& inventory) { return frame::statusOf(io.walk(inventory)); }
  static std::int64_t load(const char* path, Record& inventory) { return LoadOldToolInventory(path, &inventory); }
  static std::int64_t save(const char* path, Record& inventory, int version) {
    return SaveToolInventory(path, inventory, version);
  }
};

template <>
struct FileRecord<frame::FileKind::macro> {
  static constexpr frame::FileKind kKind = frame::FileKind::macro;
  using Record = OldMacro;
  static void setVersion(Record& macro, int version) { macro.version = static_cast<std::int16_t>(version); }
  static std::int64_t read(codec::InStream& stream, int version, Record& macro) {
    return ReadMacro(stream, version, macro);
  }
  static bool store(codec::OutStream& stream, int version, const Record& macro) {
    return WriteMacro(stream, version, macro);
  }
  static std::int64_t walk(auto& io, Record& macro) { return frame::statusOf(io.walk(macro)); }
  static std::int64_t load(const char* path, Record& macro) { return LoadOldMacro(path, &macro); }
  static std::int64_t save(const char* path, Record& macro, int version) { return SaveMacro(path, macro, version); }
};

}  // namespace oldtorvio
