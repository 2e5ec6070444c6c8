// Sheet files as they can be read back at every version.
#pragma once
#include <memory>
#include <stdexcept>

#include "src/machine/machine_io.h"
#include "src/sheet/sheet_io.h"
#include "tests/support/bytes.h"

namespace testing_support {

// Below version 152 a save stores words after the machine that no load expects there: how many bytes.
inline std::size_t lateMachineBytes(int version) { return version < 151 ? 37 : version < 152 ? 1 : 0; }

// The body that a save stores after the version word.
inline Bytes sheetBody(oldtorvio::OldSheet& sheet, int version) {
  bool ok = false;
  Bytes body = written([&](auto& to) { return oldtorvio::WriteOldSheet(to, version, sheet); }, &ok);
  if (!ok) throw std::runtime_error("the sheet cannot be stored");
  return body;
}

// Stored bytes from the end of the machine to the end of the file.
inline std::size_t bytesAfterMachine(const oldtorvio::OldSheet& s, int version) {
  const auto sizeOf = [](auto&& write) { return written(write).size(); };
  const auto textWidth = static_cast<std::size_t>(s.textWidth);
  std::size_t size = s.machine.hasExtension == 0 ? 4 : sizeOf([&](auto& to) {
    return oldtorvio::WriteMachineExtensionEntries(to, s.machine.extension.extensionEntries);
  });
  if (version >= 60) {
    size += sizeOf([&](auto& to) { return oldtorvio::WriteSheetTextEntries(to, version, s.textEntries); });
    size += sizeOf([&](auto& to) { return oldtorvio::WriteNamedWorkLists(to, version, s.namedWorkLists); });
  }
  size += version >= 90 ? 3 * 4 : 0;
  size += version >= 102 ? 4 : 0;
  size += version >= 111 ? 5 * textWidth + 4 : 0;
  size += version >= 112 ? 4 * 256 : 0;
  size += version >= 130 ? 256 : 0;
  size += version >= 140 ? 8 : 0;
  size += version >= 152 ? 4 : 0;
  size += version >= 161 ? 256 : 0;
  return size;
}

// The file of the sheet without the words that no load expects. blocks has to be empty.
inline Bytes readableSheetFile(oldtorvio::OldSheet& sheet, int version) {
  const Bytes body = sheetBody(sheet, version);
  const std::size_t machineEnd = body.size() - bytesAfterMachine(sheet, version);
  return Bytes()
      .i16(version)
      .add(body.cut(machineEnd - lateMachineBytes(version)))
      .add(Bytes::of(body.span().subspan(machineEnd)));
}

// The body of a saved sheet that holds nothing but that parameter table and a machine of that text width.
inline Bytes freshSheetBody(int version, const Bytes& table, std::int32_t machineWidth = 256) {
  Bytes b;
  b.i32(256).zeros(256).f32(60).f32(45).u32(0x3D449BA6U).i32(0);
  if (version >= 100) b.i32(260).zeros(260).i32(-1).i32(1).i32(0);
  b.i32(0);                                                  // parts
  b.i32(-1).i32(0).i32(0);                                   // shapes
  b.i32(0).i32(0);                                           // work list, rows
  b.zeros(16).i32(2).f32(5.5F).f32(11.0F).f32(5.5F).i32(0);  // clamps and their rows
  if (version >= 154) b.i32(-1);                             // spare word
  b.add(table);
  b.zeros(version >= 54 ? 24 : 20);
  if (version >= 61) b.zeros(256);
  const auto machine = std::make_unique<oldtorvio::OldMachine>();
  machine->textWidth = machineWidth;
  b.add(written([&](auto& to) { return oldtorvio::WriteOldMachine(to, version, nullptr, *machine, false); }));
  b.i32(0);
  if (version >= 60) b.zeros(8);
  if (version >= 90) b.zeros(12);
  if (version >= 102) b.zeros(4);
  if (version >= 111) b.zeros(5 * 256 + 4);
  if (version >= 112) b.zeros(4 * 256);
  if (version >= 130) b.zeros(256);
  if (version >= 140) b.zeros(8);
  if (version >= 152) b.zeros(4);
  if (version >= 161) b.zeros(256);
  return b;
}

}  // namespace testing_support
