// Four jobs on the files of a folder, and two files that cannot be read.
#include <bit>
#include <cstdint>
#include <iomanip>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "OldTorvIO.h"
#include "torvio.h"

namespace {

using oldtorvio::fixedText;

// Texts in records are bytes of a code page; this one is right for the letters of cp1252.
std::string utf8(std::string_view bytes) {
  std::string text;
  for (const char one : bytes) {
    const auto byte = static_cast<unsigned char>(one);
    if (byte < 0x80) {
      text += one;
    } else {
      text += static_cast<char>(0xC0 | byte >> 6);
      text += static_cast<char>(0x80 | (byte & 0x3F));
    }
  }
  return text;
}

std::string decimal(double number) {
  std::ostringstream text;
  text << std::fixed << std::setprecision(4) << number;
  return text.str();
}

struct Failure {
  const char* function;
  Status status;
};

void check(const char* function, Status status) {
  if (status != 0) throw Failure{function, status};
}

using SheetHandle = std::unique_ptr<OldSheet, void (*)(OldSheet*)>;

SheetHandle openSheet(const std::string& path) {
  OldSheet* sheet = nullptr;
  check("GetOldSheetHandle", GetOldSheetHandle(path.c_str(), &sheet));
  return {sheet, FreeSheetHandle};
}

void askParts(const std::string& path) {
  const SheetHandle sheet = openSheet(path);
  const auto value = [&](const char* key, std::size_t room = 264) {
    std::vector<char> text(room);
    check("GetOldSheetInfoByName", GetOldSheetInfoByName(sheet.get(), key, text.data()));
    return std::string(text.data());
  };
  const std::size_t count = std::stoul(value("part_count"));
  std::cout << value("width") << " x " << value("height") << ", " << count << " parts\n";
  // Six texts for each part: path, width, height, quantity, work order and ";".
  std::istringstream details(value("part_details_01", 1 + 1024 * count));
  std::string part, width, height, quantity, order, end;
  const auto next = [&](std::string& text) -> bool { return !!std::getline(details, text, '|'); };
  while (next(part) && next(width) && next(height) && next(quantity) && next(order) && next(end))
    std::cout << "  " << quantity << " of " << part << ", " << width << " x " << height << ", for " << order << "\n";
}

void walkNest(const std::string& path) {
  const auto sheet = std::make_unique<OldSheet>();  // too large for a stack
  check("LoadOldSheet", LoadOldSheet(path.c_str(), sheet.get()));
  for (const TorvPart& part : sheet->partList.parts) {
    std::cout << utf8(fixedText(part.partName)) << ": " << part.shapes.shapes.size() << " shapes\n";
    for (const oldtorvio::Pattern& pattern : part.patterns)
      std::cout << "  " << pattern.gridCount1 << " x " << pattern.gridCount2 << " at " << decimal(pattern.originX)
                << ", " << decimal(pattern.originY) << "\n";
  }
}

void buildPart(const std::string& path) {
  const std::uint32_t values[9] = {std::bit_cast<std::uint32_t>(0.5F)};
  InitTorvPart(24, 12, 0.0625F, 1, nullptr, nullptr, "STEEL", "Tr\xE4ger 7", nullptr, nullptr);  // cp1252
  AddPatternToTorvPart(6, 6, 1, 0, values, 0, 0, 0, 0, 0, 0, nullptr, 0, 0, 0, 0);
  AddPatternToTorvPart(18, 6, 1, 0, values, 0, 0, 0, 0, 0, 0, nullptr, 0, 0, 0, 0);
  check("SaveTorvPart", SaveTorvPart(path.c_str(), 180));

  const auto part = std::make_unique<TorvPart>();
  check("LoadOldPart", LoadOldPart(path.c_str(), part.get()));
  std::cout << decimal(part->width) << " x " << decimal(part->height) << " x " << decimal(part->thickness) << "\n";
  std::cout << utf8(fixedText(part->customText1)) << ": " << part->shapes.shapes.size() << " shapes, the last at "
            << decimal(part->shapes.shapes[1].x) << "\n";
}

void readRecord(const std::string& path) {
  const auto material = std::make_unique<OldMaterial>();
  check("LoadOldMaterial", LoadOldMaterial(path.c_str(), material.get()));
  std::cout << "material of version " << material->version << ": " << utf8(material->name) << "\n";
  for (const oldtorvio::MaterialEntry& entry : material->entryList)
    std::cout << "  " << entry.entryKey << ": " << utf8(fixedText(entry.entryText)) << "\n";
}

void report(void (*job)(const std::string&), const std::string& path) {
  try {
    job(path);
  } catch (const Failure& failure) {
    std::cout << failure.function << ": status " << failure.status << "\n";
  }
}

// The result shows what was read of a damaged file, the error says where it breaks.
void reportJson(const std::string& path) {
  torvio_input input{};
  input.path = path.c_str();
  torvio_buffer* result = nullptr;
  torvio_error* error = nullptr;
  const torvio_status status = torvio_json(&input, 0, &result, &error);
  const std::unique_ptr<const void, void (*)(const void*)> freed[] = {{result, torvio_free}, {error, torvio_free}};
  std::cout << "torvio_json: status " << status;
  if (error != nullptr && error->offset != TORVIO_NO_OFFSET)
    std::cout << ", at " << error->offset << " in " << error->field;
  std::cout << "\n";
  if (result == nullptr) return;
  const std::string_view text(result->data, result->size);
  int parts = 0;
  for (auto at = text.find("\"partName\":"); at != text.npos; at = text.find("\"partName\":", at + 1)) ++parts;
  std::cout << "  " << parts << " parts were read\n";
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: example FOLDER\n";
    return 2;
  }
  const std::string folder = std::string(argv[1]) + "/";
  try {
    std::cout << "Parts of a sheet\n";
    askParts(folder + "nest_180.sheet");
    std::cout << "A nest\n";
    walkNest(folder + "nest_180.sheet");
    std::cout << "A new part\n";
    buildPart(folder + "Tr\xC3\xA4ger.part");  // UTF-8
    std::cout << "A material\n";
    readRecord(folder + "steel.mat");
  } catch (const Failure& failure) {
    std::cerr << failure.function << ": status " << failure.status << "\n";
    return 1;
  }
  std::cout << "A file that does not exist\n";
  reportJson(folder + "nothing.sheet");
  report(
      [](const std::string& path) {
        char material[257];
        float width, height, thickness;
        check("GetOldPartInfo", GetOldPartInfo(path.c_str(), material, &width, &height, &thickness));
      },
      folder + "nothing.part");
  std::cout << "A damaged file\n";
  reportJson(folder + "damaged.sheet");
  report([](const std::string& path) { openSheet(path); }, folder + "damaged.sheet");
  return 0;
}
