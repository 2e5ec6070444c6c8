// Loads and saves of part files against what they cannot be faster than, and against one fread a
// field.
#include <benchmark/benchmark.h>

#include "OldTorvIO.h"
#include "bench/fread_walker.h"
#include "bench/part_files.h"
#include "bench/suites.h"
#include "src/part/part_io.h"
#include "src/part/part_layout.h"

namespace {

using namespace oldtorvio;

using bench::finish;
using bench::folder;
using bench::freadLoad;
using bench::require;

std::vector<std::byte> bytesOf(const TorvPart& part) {
  frame::OutStream out;
  require(WritePartBody(out, bench::kVersion, false, part), "a part that cannot be written");
  return {out.bytes().begin(), out.bytes().end()};
}

struct PartCase {
  std::string path;
  std::unique_ptr<TorvPart> part;
  std::vector<std::byte> content;

  PartCase(const char* name, std::unique_ptr<TorvPart> made) : path(folder().path(name)), part(std::move(made)) {
    require(SavePart(path.c_str(), *part, bench::kVersion) == 0, "a part that cannot be saved");
    content = bench::contentOf(path);
    TorvPart library, fread;
    require(LoadOldPart(path.c_str(), &library) == 0, "a part that cannot be loaded");
    require(freadLoad(path, fread, PartForm{}), "a part that fread cannot load");
    require(bytesOf(library) == bytesOf(*part) && bytesOf(fread) == bytesOf(*part), "loads that differ");
  }
};

struct GroupCase {
  std::string path = folder().path("group");
  SheetPartList list = bench::groupOfParts();
  std::vector<std::byte> content;

  GroupCase() {
    require(SaveGroupPart(path.c_str(), list, bench::kVersion) == 0, "a group that cannot be saved");
    content = bench::contentOf(path);
  }
};

void loadPart(benchmark::State& state, const PartCase& one) {
  for (auto _ : state) {
    const auto part = std::make_unique<TorvPart>();
    if (LoadOldPart(one.path.c_str(), part.get()) != 0) state.SkipWithError("load");
    benchmark::DoNotOptimize(part->shapes.shapes.data());
  }
  finish(state, one.content.size());
}
void loadPartFloor(benchmark::State& state, const PartCase& one) {
  for (auto _ : state) {
    const auto part = std::make_unique<TorvPart>();
    bench::floorLoad(one.path, *one.part, *part);
    benchmark::DoNotOptimize(part->shapes.shapes.data());
  }
  finish(state, one.content.size());
}
void loadPartFread(benchmark::State& state, const PartCase& one) {
  for (auto _ : state) {
    const auto part = std::make_unique<TorvPart>();
    if (!freadLoad(one.path, *part, PartForm{})) state.SkipWithError("load");
    benchmark::DoNotOptimize(part->shapes.shapes.data());
  }
  finish(state, one.content.size());
}
void savePart(benchmark::State& state, const PartCase& one) {
  const std::string path = folder().path("saved");
  for (auto _ : state)
    if (SavePart(path.c_str(), *one.part, bench::kVersion) != 0) state.SkipWithError("save");
  finish(state, one.content.size());
}
void saveFloor(benchmark::State& state, const std::vector<std::byte>& content) {
  const std::string path = folder().path("saved");
  for (auto _ : state) bench::floorSave(path, content);
  finish(state, content.size());
}
void queryPart(benchmark::State& state, const PartCase& one) {
  char materialType[257];
  float width = 0, height = 0, thickness = 0;
  for (auto _ : state)
    if (GetOldPartInfo(one.path.c_str(), materialType, &width, &height, &thickness) != 0) state.SkipWithError("query");
  finish(state, one.content.size());
}
void loadGroup(benchmark::State& state, const GroupCase& one) {
  for (auto _ : state) {
    SheetPartList list;
    if (LoadGroupPart(one.path.c_str(), &list) != 0) state.SkipWithError("load");
    benchmark::DoNotOptimize(list.parts.data());
  }
  finish(state, one.content.size());
}
void loadGroupFloor(benchmark::State& state, const GroupCase& one) {
  for (auto _ : state) {
    SheetPartList list;
    bench::floorLoad(one.path, one.list, list);
    benchmark::DoNotOptimize(list.parts.data());
  }
  finish(state, one.content.size());
}
void loadGroupFread(benchmark::State& state, const GroupCase& one) {
  for (auto _ : state) {
    SheetPartList list;
    frame::GroupPartFile<std::vector<TorvPart>> file{list.parts};
    if (!freadLoad(one.path, file)) state.SkipWithError("load");
    benchmark::DoNotOptimize(list.parts.data());
  }
  finish(state, one.content.size());
}
void saveGroup(benchmark::State& state, const GroupCase& one) {
  const std::string path = folder().path("saved");
  for (auto _ : state)
    if (SaveGroupPart(path.c_str(), one.list, bench::kVersion) != 0) state.SkipWithError("save");
  finish(state, one.content.size());
}
void walkMemoryRead(benchmark::State& state, const PartCase& one) {
  const auto body = std::span(one.content).subspan(2);
  for (auto _ : state) {
    const auto part = std::make_unique<TorvPart>();
    frame::InStream stream(body);
    if (ReadPartBody(stream, bench::kVersion, false, *part) != 0) state.SkipWithError("read");
    benchmark::DoNotOptimize(part->shapes.shapes.data());
  }
  finish(state, body.size());
}
void walkMemoryWrite(benchmark::State& state, const PartCase& one) {
  for (auto _ : state) {
    frame::OutStream stream;
    if (!WritePartBody(stream, bench::kVersion, false, *one.part)) state.SkipWithError("write");
    benchmark::DoNotOptimize(stream.bytes().data());
  }
  finish(state, one.content.size());
}

}  // namespace

void bench::registerParts() {
  static const PartCase small("small", bench::smallPart());
  static const PartCase large("large", bench::largePart());
  static const GroupCase group;

  using benchmark::RegisterBenchmark;
  for (const auto& [name, one] :
       {std::pair<std::string, const PartCase*>{"SmallPart", &small}, {"LargePart", &large}}) {
    RegisterBenchmark(("Load" + name + "/library").c_str(), loadPart, std::cref(*one));
    RegisterBenchmark(("Load" + name + "/floor").c_str(), loadPartFloor, std::cref(*one));
    RegisterBenchmark(("Load" + name + "/fread").c_str(), loadPartFread, std::cref(*one));
    RegisterBenchmark(("Save" + name + "/library").c_str(), savePart, std::cref(*one));
    RegisterBenchmark(("Save" + name + "/floor").c_str(), saveFloor, std::cref(one->content));
  }
  RegisterBenchmark("LoadGroupPart/library", loadGroup, std::cref(group));
  RegisterBenchmark("LoadGroupPart/floor", loadGroupFloor, std::cref(group));
  RegisterBenchmark("LoadGroupPart/fread", loadGroupFread, std::cref(group));
  RegisterBenchmark("SaveGroupPart/library", saveGroup, std::cref(group));
  RegisterBenchmark("SaveGroupPart/floor", saveFloor, std::cref(group.content));
  RegisterBenchmark("LargePartInMemory/read", walkMemoryRead, std::cref(large));
  RegisterBenchmark("LargePartInMemory/write", walkMemoryWrite, std::cref(large));
  RegisterBenchmark("GetOldPartInfo/query", queryPart, std::cref(large));
  RegisterBenchmark("GetOldPartInfo/load", loadPart, std::cref(large));
}
