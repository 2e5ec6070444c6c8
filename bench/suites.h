// The benchmarks by file family, and what they share.
#pragma once
#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

#include "bench/floor.h"
#include "bench/fread_walker.h"

namespace bench {

void registerParts();
void registerMachinesAndTools();

const Folder& folder();

// The version word and the body, one fread a field.
template <class Record, class... More>
bool freadLoad(const std::string& path, Record& record, const More&... more) {
  std::FILE* file = std::fopen(path.c_str(), "rb");
  FreadReader io(file, kVersion);
  std::int16_t version = 0;
  const bool ok = io.fields(F(version)) && io.whole(record, more...);
  std::fclose(file);
  return ok;
}

inline void finish(benchmark::State& state, std::size_t bytes) {
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(bytes));
}

}  // namespace bench
