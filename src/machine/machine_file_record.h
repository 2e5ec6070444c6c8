// Machine files, as src/frame/file_record.h describes.
#pragma once
#include "OldTorvIO.h"
#include "src/frame/file_record.h"
#include "src/machine/machine_io.h"
#include "src/machine/machine_layout.h"

namespace oldtorvio {

template <>
struct FileRecord<frame::FileKind::machine> {
  static constexpr frame::FileKind kKind = frame::FileKind::machine;
  using Record = OldMachine;
  static void setVersion(Record& machine, int version) { machine.version = static_cast<std::int16_t>(version); }
  static std::int64_t read(codec::InStream& stream, int version, Record& machine) {
    return ReadOldMachine(stream, version, nullptr, machine);
  }
  static bool store(codec::OutStream& stream, int version, Record& machine) {
    return WriteOldMachine(stream, version, nullptr, machine, false);
  }
  static std::int64_t walk(auto& io, Record& machine) {
    return frame::statusOf(io.walk(machine, MachineForm<ShapeList>{}));
  }
  static std::int64_t load(const char* path, Record& machine) { return LoadOldMachine(path, &machine); }
  static std::int64_t save(const char* path, Record& machine, int version) {
    return SaveMachine(path, machine, version);
  }
};

}  // namespace oldtorvio
