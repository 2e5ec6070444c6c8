// Sheet files as they can be read back at every version.
#pragma once
#include <stdexcept>

#include "src/machine/machine_io.h"
#include "src/sheet/sheet_io.h"
#include "tests/support/bytes.h"

namespace testing_support {

// Below version 152 a save stores words behind the machine that no load expects there: how many bytes.
inline std::size_t lateMachineBytes(int version) { return version < 151 ? 37 : version < 152 ? 1 : 0; }

// The body that a save stores behind the version word.
inline Bytes sheetBody(oldtorvio::OldSheet& sheet, int version) {
  bool ok = false;
  Bytes body = written([&](auto& to) { return oldtorvio::WriteOldSheet(to, version, sheet); }, &ok);
  if (!ok) throw std::runtime_error("the sheet cannot be stored");
  return body;
}

// Stored bytes from behind the machine to the end of the file.
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

}  // namespace testing_support
