// What the baselines share: files read and written with one call, records filled by memcpy.
#pragma once
#include <cstddef>
#include <cstdio>
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

// The window that files are read and written through, as large as the library's.
inline constexpr std::size_t kWindow = 256 * 1024;

// The floor of a save: the same bytes copied to a window by memcpy and written with one call for each window.
void floorSave(const std::string& path, const std::vector<std::byte>& content);

// How the floor of a load reads its file: all of it with one call, or through a window.
enum class Reads { atOnce, throughWindow };

// Fills records from the bytes of a file. Only the number of copied bytes matters: at the end of the file it starts
// again with what is in memory.
class Source {
 public:
  Source(const std::string& path, Reads reads);
  ~Source();
  Source(const Source&) = delete;
  Source& operator=(const Source&) = delete;

  void fill(void* to, std::size_t size) {
    if (size_ - at_ < size) next();
    std::memcpy(to, bytes_.get() + at_, size);
    at_ += size;
  }
  // What the fills have not used is read, too.
  void readToEnd();

 private:
  void next();

  std::FILE* file_;
  std::unique_ptr<char[]> bytes_;
  std::size_t capacity_;
  std::size_t size_ = 0;  // of the bytes in memory
  std::size_t at_ = 0;
  bool atEnd_ = false;
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
