// The benchmarks of each file family, and what they share.
//
// Names are CASE/library, CASE/floor and CASE/fread, or QUERY/query/CASE for a query that is compared with the load
// CASE. A load has two floors, CASE/at once and CASE/window, of which the faster counts.
#pragma once
#include <benchmark/benchmark.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>

#include "bench/floor.h"
#include "bench/heap_meter.h"
#include "tests/support/field_reader.h"

namespace bench {

void registerParts();
void registerMachinesAndTools();
void registerSheets();

const Folder& folder();

// Reads the version word and the body with one fread per field.
template <class Record, class... More>
bool freadLoad(const std::string& path, Record& record, const More&... more) {
  std::FILE* file = std::fopen(path.c_str(), "rb");
  testing_support::FreadReader io(file, kVersion);
  std::int16_t version = 0;
  const bool ok = io.fields(FIELDS(version)) && io.walk(record, more...);
  std::fclose(file);
  return ok;
}

inline void finish(benchmark::State& state, std::size_t bytes) {
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(bytes));
}

struct Nothing {
  void operator()() const {}
};

// Times once(). prepare() before each call is not timed. The heap is measured in a separate call, once per benchmark.
template <class Prepare, class Once>
void registerPrepared(const std::string& name, std::size_t bytes, Prepare prepare, Once once) {
  const auto peak = std::make_shared<std::optional<std::size_t>>();
  benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
    if (!*peak) {
      prepare();
      *peak = peakOf(once);
    }
    for (auto _ : state) {
      if constexpr (!std::is_same_v<Prepare, Nothing>) {
        state.PauseTiming();
        prepare();
        state.ResumeTiming();
      }
      once();
    }
    finish(state, bytes);
    state.counters["peak"] = static_cast<double>(**peak);
  });
}

template <class Once>
void registerTimed(const std::string& name, std::size_t bytes, Once once) {
  registerPrepared(name, bytes, Nothing(), once);
}

// Reads the file and fills a record from it. The bytes are freed before it returns.
template <class Record, class Fill>
std::unique_ptr<Record> floorLoad(const std::string& path, Reads reads, const Record& like, Fill fill) {
  Source from(path, reads);
  auto record = std::make_unique<Record>();
  fill(from, like, *record);
  from.readToEnd();
  return record;
}

// library(path, record) returns a status, fread(path, record) whether it succeeded; fill(source, like, record) belongs
// to the floor. `like` has to outlive the benchmarks.
template <class Record, class Load, class Walk, class Fill>
void registerLoads(const std::string& name, const std::string& path, const Record& like, Load library, Walk fread,
                   Fill fill) {
  const auto size = static_cast<std::size_t>(std::filesystem::file_size(path));
  registerTimed(name + "/library", size, [=] {
    const auto record = std::make_unique<Record>();
    require(library(path.c_str(), record.get()) == 0, "a load that fails");
    benchmark::DoNotOptimize(record.get());
  });
  registerTimed(name + "/at once", size, [=, &like] {
    const auto record = floorLoad(path, Reads::atOnce, like, fill);
    benchmark::DoNotOptimize(record.get());
  });
  registerTimed(name + "/window", size, [=, &like] {
    const auto record = floorLoad(path, Reads::throughWindow, like, fill);
    benchmark::DoNotOptimize(record.get());
  });
  registerTimed(name + "/fread", size, [=] {
    const auto record = std::make_unique<Record>();
    require(fread(path, *record), "a load that fails");
    benchmark::DoNotOptimize(record.get());
  });
}

// query(path) returns a status.
template <class Query>
void registerQuery(const std::string& name, const std::string& load, const std::string& path, Query query) {
  registerTimed(name + "/query/" + load, static_cast<std::size_t>(std::filesystem::file_size(path)),
                [=] { require(query(path.c_str()) == 0, "a query that fails"); });
}

}  // namespace bench
