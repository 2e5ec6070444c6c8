#include "bench/floor.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "src/frame/text/text.h"

namespace bench {

using namespace oldtorvio;

Bytes readAtOnce(const std::string& path) {
  std::FILE* file = std::fopen(path.c_str(), "rb");
  (void)std::setvbuf(file, nullptr, _IONBF, 0);
  std::fseek(file, 0, SEEK_END);
  Bytes bytes(static_cast<std::size_t>(std::ftell(file)));
  std::fseek(file, 0, SEEK_SET);
  if (std::fread(bytes.all.get(), 1, bytes.size, file) != bytes.size) std::abort();
  std::fclose(file);
  return bytes;
}

std::vector<std::byte> contentOf(const std::string& path) {
  const Bytes bytes = readAtOnce(path);
  const auto* from = reinterpret_cast<const std::byte*>(bytes.all.get());
  return {from, from + bytes.size};
}

Folder::Folder() : folder_(std::filesystem::temp_directory_path() / "oldtorvio_bench") {
  std::filesystem::create_directories(folder_);
}
Folder::~Folder() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

void floorSave(const std::string& path, const std::vector<std::byte>& content) {
  // Allocated for each save, because a save cannot keep a buffer either.
  const auto window = std::make_unique_for_overwrite<std::byte[]>(std::min(content.size(), kWindow));
  std::FILE* file = std::fopen(path.c_str(), "wb");
  (void)std::setvbuf(file, nullptr, _IONBF, 0);
  for (std::size_t at = 0; at < content.size();) {
    const std::size_t size = std::min(content.size() - at, kWindow);
    std::memcpy(window.get(), content.data() + at, size);
    if (std::fwrite(window.get(), 1, size, file) != size) std::abort();
    at += size;
  }
  std::fclose(file);
}

Source::Source(const std::string& path, Reads reads) : file_(std::fopen(path.c_str(), "rb")) {
  (void)std::setvbuf(file_, nullptr, _IONBF, 0);
  std::fseek(file_, 0, SEEK_END);
  const auto all = static_cast<std::size_t>(std::ftell(file_));
  std::fseek(file_, 0, SEEK_SET);
  capacity_ = reads == Reads::atOnce ? all : std::min(all, kWindow);
  bytes_ = std::make_unique_for_overwrite<char[]>(capacity_);
  next();
}
Source::~Source() { std::fclose(file_); }

void Source::next() {
  at_ = 0;
  if (atEnd_) return;
  const std::size_t size = std::fread(bytes_.get(), 1, capacity_, file_);
  atEnd_ = size < capacity_ || size == 0;
  size_ = std::max(size_, size);
}
void Source::readToEnd() {
  while (!atEnd_) next();
}

void fillShapes(Source& from, const std::vector<Shape>& like, std::vector<Shape>& to) {
  to.reserve(like.size());
  for (const Shape& one : like) {
    Shape& shape = to.emplace_back();
    // The numbers that version 180 stores, and the text and the note if there are any.
    from.fill(&shape, 96);
    shape.textFlag = one.textFlag;
    if (one.textFlag > 0) from.fill(shape.text, sizeof shape.text);
    if (!one.note.empty()) shape.note.assign(one.note.data(), one.note.size());
  }
}

void fillStations(Source& from, const ToolStationList& like, ToolStationList& to) {
  to.stations.reserve(like.stations.size());
  to.tools.reserve(like.stations.size());
  for (std::size_t i = 0; i < like.stations.size(); ++i) {
    from.fill(static_cast<void*>(&to.stations.emplace_back()), 200);
    OldTool& tool = to.tools.emplace_back();
    from.fill(tool.tailText, sizeof tool.tailText);
    from.fill(&tool.firstValues, 96);
  }
}

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

void addStation(ToolStationList& list, int number) {
  ToolStation& station = list.stations.emplace_back();
  station.stationNumber = number;
  station.toolCount = 1;
  station.valueCount = 1;
  OldTool& tool = list.tools.emplace_back();
  tool.shapeCode = 1;
  tool.dimension1 = static_cast<float>(number);
}

void require(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "the benchmark is wrong: %s\n", what);
  std::exit(1);
}

}  // namespace bench
