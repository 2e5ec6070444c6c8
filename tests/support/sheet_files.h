// Sheet files as they can be read back at every version.
#pragma once
#include <memory>
#include <stdexcept>

#include "src/sheet/sheet_io.h"
#include "tests/support/stored_forms/sheets.h"

namespace testing_support {

// The body that a save stores after the version word.
inline Bytes sheetBody(oldtorvio::OldSheet& sheet, int version) {
  bool ok = false;
  Bytes body = written([&](auto& to) { return oldtorvio::WriteOldSheet(to, version, sheet); }, &ok);
  if (!ok) throw std::runtime_error("the sheet cannot be stored");
  return body;
}

// Stored bytes from the end of the machine to the end of the file, without blocks.
inline std::size_t bytesAfterMachine(const oldtorvio::OldSheet& s, int version) {
  SheetForm form;
  form.width = s.textWidth;
  form.extension = s.machine.hasExtension != 0;
  Maker m = Maker::ofHeldValues();
  storedSheetEnd(m, version, form, *std::make_unique<oldtorvio::OldSheet>(s));
  return m.bytes.size();
}

// The file of the sheet without the bytes that no load expects. blocks has to be empty.
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
  SheetForm form;
  form.writer = true;
  form.shapes = false;
  form.elements = 0;
  form.rows = form.clampRows = 0;
  form.machineWidth = machineWidth;
  const auto sheet = std::make_unique<oldtorvio::OldSheet>();
  Maker m = Maker::ofHeldValues();
  storedSheetFront(m, version, form, *sheet);
  storedSpareWord(m, version, form);
  m.raw(table);
  storedSheetMachine(m, version, form, *sheet);
  storedSheetEnd(m, version, form, *sheet);
  return m.bytes;
}

}  // namespace testing_support
