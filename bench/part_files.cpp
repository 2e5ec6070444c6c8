#include "bench/part_files.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>

#include "src/frame/text.h"

namespace bench {
namespace {

using namespace oldtorvio;

Shape shapeNumber(int i) {
  Shape shape;
  shape.type = static_cast<std::int8_t>(1 + i % 5);
  shape.auxWord = i;
  shape.x = static_cast<float>(i) * 0.5F;
  shape.y = static_cast<float>(i) * 0.25F;
  for (float& value : shape.values) value = static_cast<float>(i);
  if (i % 16 == 0) {
    shape.textFlag = 1;
    frame::setText(shape.text, "shape " + std::to_string(i));
  }
  if (i % 8 == 0) shape.note = "a note on shape " + std::to_string(i);
  return shape;
}

void addShapes(TorvPart& part, int count) {
  for (int i = 0; i < count; ++i) part.shapes.shapes.push_back(shapeNumber(i));
  part.patterns.emplace_back().items.resize(part.shapes.shapes.size());
}

void addStation(TorvPart& part) {
  ToolStation& station = part.toolStations.stations.emplace_back();
  station.stationNumber = 1;
  station.valueCount = 1;
  part.toolStations.tools.emplace_back().shapeCode = 1;
}

// Fills from a block of stored bytes, over and over: what is copied does not matter, how much does.
class Source {
 public:
  explicit Source(const std::vector<char>& bytes) : bytes_(bytes) {}
  void fill(void* to, std::size_t size) {
    if (bytes_.size() - at_ < size) at_ = 0;
    std::memcpy(to, bytes_.data() + at_, size);
    at_ += size;
  }

 private:
  const std::vector<char>& bytes_;
  std::size_t at_ = 0;
};

std::vector<char> readAtOnce(const std::string& path) {
  std::FILE* file = std::fopen(path.c_str(), "rb");
  (void)std::setvbuf(file, nullptr, _IONBF, 0);
  std::fseek(file, 0, SEEK_END);
  std::vector<char> bytes;
  const auto size = static_cast<std::size_t>(std::ftell(file));
  std::fseek(file, 0, SEEK_SET);
  bytes.resize(size);
  if (std::fread(bytes.data(), 1, size, file) != size) std::abort();
  std::fclose(file);
  return bytes;
}

void fillShapes(Source& from, const std::vector<Shape>& like, std::vector<Shape>& to) {
  to.reserve(like.size());
  for (const Shape& one : like) {
    Shape& shape = to.emplace_back();
    // The numbers that version 180 stores, and the text and note where there is one.
    from.fill(&shape, 96);
    shape.textFlag = one.textFlag;
    if (one.textFlag > 0) from.fill(shape.text, sizeof shape.text);
    if (!one.note.empty()) shape.note.assign(one.note.data(), one.note.size());
  }
}

template <class T>
void fillNumbers(Source& from, const std::vector<T>& like, std::vector<T>& to) {
  to.resize(like.size());
  for (T& one : to) from.fill(static_cast<void*>(&one), sizeof one);
}

void fillPart(Source& from, const TorvPart& like, TorvPart& to) {
  for (char(*text)[256] :
       {&to.noteText, &to.descriptionA, &to.descriptionB, &to.materialType, &to.descriptionC, &to.customTextA,
        &to.customTextB, &to.customText1, &to.customText2, &to.customText3, &to.customTextC, &to.customTextD,
        &to.customTextE, &to.finalTextA, &to.finalTextB, &to.finalTextC, &to.finalTextD})
    from.fill(*text, sizeof *text);
  fillShapes(from, like.shapes.shapes, to.shapes.shapes);
  to.toolStations.stations.reserve(like.toolStations.stations.size());
  for (std::size_t i = 0; i < like.toolStations.stations.size(); ++i) {
    from.fill(static_cast<void*>(&to.toolStations.stations.emplace_back()), 200);
    OldTool& tool = to.toolStations.tools.emplace_back();
    from.fill(tool.tailText, sizeof tool.tailText);
  }
  for (const Pattern& one : like.patterns) {
    Pattern& pattern = to.patterns.emplace_back();
    fillNumbers(from, one.items, pattern.items);
    fillNumbers(from, one.bindFirst, pattern.bindFirst);
    fillNumbers(from, one.bindSecond, pattern.bindSecond);
    fillNumbers(from, one.bindThird, pattern.bindThird);
    fillNumbers(from, one.bindFourth, pattern.bindFourth);
    fillNumbers(from, one.bindFifth, pattern.bindFifth);
  }
}

}  // namespace

std::unique_ptr<TorvPart> smallPart() {
  auto part = std::make_unique<TorvPart>();
  addShapes(*part, 10);
  addStation(*part);
  return part;
}

std::unique_ptr<TorvPart> largePart() {
  auto part = std::make_unique<TorvPart>();
  addShapes(*part, 20000);
  addStation(*part);
  Pattern& pattern = part->patterns.front();
  pattern.groupKind = 32001;
  for (std::uint32_t i = 0; i < 5000; ++i) {
    pattern.bindFirst.emplace_back(i, i + 1);
    pattern.bindSecond.emplace_back(i + 2, i + 3);
    pattern.bindThird.push_back(i);
    pattern.bindFourth.push_back(i);
    pattern.bindFifth.push_back(i);
  }
  return part;
}

SheetPartList groupOfParts() {
  SheetPartList list;
  for (int i = 0; i < 200; ++i) {
    TorvPart& part = list.parts.emplace_back();
    frame::setText(part.partName, "part " + std::to_string(i));
    addShapes(part, i % 10 == 0 ? 200 : 10);
    addStation(part);
  }
  return list;
}

std::vector<std::byte> contentOf(const std::string& path) {
  const std::vector<char> bytes = readAtOnce(path);
  const auto* from = reinterpret_cast<const std::byte*>(bytes.data());
  return {from, from + bytes.size()};
}

Folder::Folder() : folder_(std::filesystem::temp_directory_path() / "oldtorvio_bench") {
  std::filesystem::create_directories(folder_);
}
Folder::~Folder() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

void floorLoad(const std::string& path, const TorvPart& like, TorvPart& to) {
  const std::vector<char> bytes = readAtOnce(path);
  Source from(bytes);
  fillPart(from, like, to);
}

void floorLoad(const std::string& path, const SheetPartList& like, SheetPartList& to) {
  const std::vector<char> bytes = readAtOnce(path);
  Source from(bytes);
  to.parts.reserve(like.parts.size());
  for (const TorvPart& one : like.parts) {
    TorvPart& part = to.parts.emplace_back();
    from.fill(part.partName, sizeof part.partName);
    fillPart(from, one, part);
  }
}

void floorSave(const std::string& path, const std::vector<std::byte>& content) {
  // Made anew for each save, as a save cannot keep one either.
  const auto buffer = std::make_unique_for_overwrite<std::byte[]>(content.size());
  std::memcpy(buffer.get(), content.data(), content.size());
  std::FILE* file = std::fopen(path.c_str(), "wb");
  (void)std::setvbuf(file, nullptr, _IONBF, 0);
  if (std::fwrite(buffer.get(), 1, content.size(), file) != content.size()) std::abort();
  std::fclose(file);
}

}  // namespace bench
