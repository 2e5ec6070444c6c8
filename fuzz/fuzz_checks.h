// What the fuzz targets share: a failed expectation ends the process, which the fuzzer reports.
//
// Each load is made twice, by the reader and by a walker that takes one field after the other: both must have the same
// status, end at the same place in the file and fill the same record, whether the load succeeds or fails, and also if
// the record already holds data.
#pragma once
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

#include "fuzz/record_pair.h"
#include "src/file_records.h"
#include "src/frame/codec/reader.h"
#include "src/frame/codec/stream.h"
#include "src/frame/codec/writer.h"

namespace fuzzing {

inline Bytes bytesOf(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const std::byte*>(data), size};
}

inline void expect(bool holds) {
  if (!holds) std::abort();
}

// The version word at the beginning of every file; false for a file without one.
inline bool readVersion(oldtorvio::codec::InStream& stream, int& version) {
  std::int16_t word = 0;
  if (!oldtorvio::codec::readRecord(stream, 0, word)) return false;
  version = word;
  return true;
}

// A new record, in the place of the last of its kind and number: taking such large blocks from the system
// and giving them back would cost more than most loads.
template <class Record, int kNumber = 0>
Record& fresh() {
  static std::optional<Record> record;
  record.emplace();
  return *record;
}

// Records that were made the same way, one by the reader and one by the walker.
template <class Record>
struct RecordPair {
  Record& read;
  Record& walked;

  static RecordPair fresh() { return {fuzzing::fresh<Record>(), fuzzing::fresh<Record, 2>()}; }
  template <class Change>
  void both(Change&& change) const {
    change(read);
    change(walked);
  }
};

// Loads the bytes over both: read(stream, record) gives the reader's status, walk(record) what the walker
// came to. The status is that of both.
template <class Record, class Read, class Walk>
int loadPair(Bytes body, const RecordPair<Record>& pair, Read&& read, Walk&& walk) {
  oldtorvio::codec::InStream stream(body);
  const int status = read(stream, pair.read);
  const Walked walked = walk(pair.walked);
  expect(walked.status == status && walked.left == stream.left());
  expect(equalContents(pair.read, pair.walked));
  return status;
}

// Loads the bytes after the version word of a file.
template <oldtorvio::frame::FileKind kKind, class Record>
int loadFilePair(Bytes body, int version, const RecordPair<Record>& pair) {
  return loadPair(
      body, pair,
      [&](auto& in, Record& to) { return static_cast<int>(oldtorvio::FileRecord<kKind>::read(in, version, to)); },
      [&](Record& to) { return walkFile<kKind>(body, version, to); });
}

// The bytes as a file that only this process uses.
class ScratchFile {
 public:
  explicit ScratchFile(Bytes file) {
    std::FILE* const to = std::fopen(path(), "wb");
    expect(to != nullptr && std::fwrite(file.data(), 1, file.size(), to) == file.size());
    expect(std::fclose(to) == 0);
  }
  static const char* path() {
    static const Place place;
    return place.path.c_str();
  }

 private:
  struct Place {
    Place() {
      const std::filesystem::path memory = "/dev/shm";
      const auto folder = std::filesystem::is_directory(memory) ? memory : std::filesystem::temp_directory_path();
      path = (folder / ("oldtorvio_fuzz_" + std::to_string(std::random_device()()))).string();
    }
    ~Place() {
      std::error_code ignored;
      std::filesystem::remove(path, ignored);
    }
    std::string path;
  };
};

// A record that `load` fills from the scratch file is the one that its parts made from memory.
template <class Record, class Load>
void expectLoadedByPath(std::int64_t status, const RecordPair<Record>& pair, Load&& load) {
  auto& again = fresh<Record, 3>();
  expect(load(ScratchFile::path(), &again) == status);
  expect(equalContents(again, pair.walked));
}

template <class Write>
std::vector<std::byte> stored(Write&& write) {
  oldtorvio::codec::OutStream out;
  expect(write(out));
  return {out.bytes().begin(), out.bytes().end()};
}

// A record that was loaded can be saved, and what is saved loads and saves again as the same bytes:
// whatever a load corrects, it corrects the first time.
template <class Record, class Read, class Write>
void expectStable(Record& record, Read&& read, Write&& write) {
  const auto first = stored([&](auto& out) { return write(out, record); });
  auto& again = fresh<std::remove_const_t<Record>, 1>();
  oldtorvio::codec::InStream stream(first);
  expect(read(stream, again) == 0);
  expect(stream.left() == 0);
  const auto second = stored([&](auto& out) { return write(out, again); });
  expect(first == second);
}

}  // namespace fuzzing
