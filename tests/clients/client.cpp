// A C++ program of another project. It includes only the main header and takes a folder to write to. Its exit code says
// whether everything worked.
#include <OldTorvIO.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

namespace {

int failures = 0;

void expect(bool condition, const char* what) {
  if (condition) return;
  std::printf("false: %s\n", what);
  ++failures;
}

void buildAndLoadPart(const std::string& folder) {
  const std::string path = folder + "/client_cpp.part";
  const std::uint32_t values[9] = {0x3F000000};  // a radius of 0.5, as bits
  InitTorvPart(24, 12, 0.0625F, 1, "PLATE", nullptr, "STEEL", nullptr, nullptr, nullptr);
  AddPatternToTorvPart(6, 7, 1, 0, values, 0, 0, 0, 0, 0, 0, nullptr, 0, 0, 0, 0);
  expect(SaveTorvPart(path.c_str(), 180) == 0, "the part is saved");

  const auto part = std::make_unique<TorvPart>();
  expect(LoadOldPart(path.c_str(), part.get()) == 0, "the part is loaded");
  expect(part->width == 24 && part->height == 12, "the part has its size");
  expect(part->shapes.shapes.size() == 1 && part->shapes.shapes[0].y == 7, "the part has its shape");
  expect(oldtorvio::fixedText(part->partFullDosName) == path, "the part has its path");
}

void fillAndLoadSheet(const std::string& folder) {
  const std::string path = folder + "/client_cpp.sheet";
  const auto sheet = std::make_unique<OldSheet>();
  sheet->width = 40;
  sheet->partList.parts.resize(2);
  expect(SaveOldSheet(path.c_str(), sheet.get(), 180) == 0, "the sheet is saved");

  OldSheet* loaded = nullptr;
  expect(GetOldSheetHandle(path.c_str(), &loaded) == 0 && loaded != nullptr, "the sheet is loaded");
  if (loaded == nullptr) return;
  expect(loaded->width == 40 && loaded->partList.parts.size() == 2, "the sheet has what was saved");
  loaded->partList.parts.clear();  // memory of the library, freed by the program
  FreeSheetHandle(loaded);
}

}  // namespace

int main(int argc, char** argv) {
  const std::string folder = argc > 1 ? argv[1] : ".";
  buildAndLoadPart(folder);
  fillAndLoadSheet(folder);
  return failures == 0 ? 0 : 1;
}
