// What the baselines share: files read and written with one call, records filled by memcpy.
#pragma once
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "OldTorvIO/shape.h"
#include "OldTorvIO/tool_station.h"

namespace bench {

inline constexpr int kVersion = 180;

// An uninitialised buffer for the bytes of a file.
struct Bytes {
  explicit Bytes(std::size_t count) : all(std::make_unique_for_overwrite<char[]>(count)), size(count) {}
  std::unique_ptr<char[]> all;
  std::size_t size;
};

// Reads the complete file with one call.
Bytes readAtOnce(const std::string& path);
std::vector<std::byte> contentOf(const std::string& path);

// A folder that is removed at the end of the program.
class Folder {
 public:
  Folder();
  ~Folder();
  std::string path(const char* name) const { return (folder_ / name).string(); }

 private:
  std::filesystem::path folder_;
};

// The floor of a save: the same bytes copied to a buffer by memcpy and written with one call.
void floorSave(const std::string& path, const std::vector<std::byte>& content);

// Fills from a block of stored bytes, repeatedly: only the number of copied bytes matters.
class Source {
 public:
  explicit Source(const Bytes& bytes) : bytes_(bytes.all.get()), size_(bytes.size) {}
  void fill(void* to, std::size_t size) {
    if (size_ - at_ < size) at_ = 0;
    std::memcpy(to, bytes_ + at_, size);
    at_ += size;
  }

 private:
  const char* bytes_;
  std::size_t size_;
  std::size_t at_ = 0;
};

template <class T>
void fillNumbers(Source& from, const std::vector<T>& like, std::vector<T>& to) {
  to.resize(like.size());
  for (T& one : to) from.fill(static_cast<void*>(&one), sizeof one);
}

void fillShapes(Source& from, const std::vector<oldtorvio::Shape>& like, std::vector<oldtorvio::Shape>& to);
void fillStations(Source& from, const oldtorvio::ToolStationList& like, oldtorvio::ToolStationList& to);

// A different shape for each number; every 16th has a text and every 8th a note.
oldtorvio::Shape shapeNumber(int i);
void addStation(oldtorvio::ToolStationList& list, int number);

// Ends the program with a message if the condition is false: the benchmark itself is wrong then.
void require(bool condition, const char* what);

}  // namespace bench
