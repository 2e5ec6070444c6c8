// What the fuzz targets share: a failed expectation ends the process, which the fuzzer reports.
#pragma once
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <span>
#include <type_traits>
#include <vector>

#include "src/frame/reader.h"
#include "src/frame/stream.h"
#include "src/frame/writer.h"

namespace fuzzing {

inline void expect(bool holds) {
  if (!holds) std::abort();
}

// The version word in front of every file; false for a file without one.
inline bool readVersion(oldtorvio::frame::InStream& stream, int& version) {
  std::int16_t word = 0;
  if (!oldtorvio::frame::readRecord(stream, 0, word)) return false;
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

template <class Write>
std::vector<std::byte> stored(Write&& write) {
  oldtorvio::frame::OutStream out;
  expect(write(out));
  return {out.bytes().begin(), out.bytes().end()};
}

// A record that was loaded can be saved, and what is saved loads and saves again as the same bytes:
// whatever a load repairs is settled after the first.
template <class Record, class Read, class Write>
void expectSettled(Record& record, Read&& read, Write&& write) {
  const auto first = stored([&](auto& out) { return write(out, record); });
  auto& again = fresh<std::remove_const_t<Record>, 1>();
  oldtorvio::frame::InStream stream(first);
  expect(read(stream, again) == 0);
  expect(stream.left() == 0);
  const auto second = stored([&](auto& out) { return write(out, again); });
  expect(first == second);
}

}  // namespace fuzzing
