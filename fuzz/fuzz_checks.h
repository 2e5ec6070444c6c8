// What the fuzz targets share: a failed expectation ends the process, which the fuzzer reports.
#pragma once
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
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
  const auto again = std::make_unique<std::remove_const_t<Record>>();
  oldtorvio::frame::InStream stream(first);
  expect(read(stream, *again) == 0);
  expect(stream.left() == 0);
  const auto second = stored([&](auto& out) { return write(out, *again); });
  expect(first == second);
}

}  // namespace fuzzing
