// Compares loads and saves of part files with their floor and with one fread per field.
#include <benchmark/benchmark.h>

#include <functional>

#include "OldTorvIO.h"
#include "bench/part_files.h"
#include "bench/suites.h"
#include "src/part/part_io.h"
#include "src/part/part_layout.h"

namespace {

using namespace oldtorvio;

using bench::finish;
using bench::folder;
using bench::freadLoad;
using bench::registerTimed;
using bench::require;

std::vector<std::byte> bytesOf(const TorvPart& part) {
  codec::OutStream out;
  require(WritePartBody(out, bench::kVersion, false, part), "a part that cannot be written");
  return {out.bytes().begin(), out.bytes().end()};
}

bool freadPart(const std::string& path, TorvPart& to) { return freadLoad(path, to, PartForm{}); }
bool freadGroup(const std::string& path, SheetPartList& to) {
  codec::GroupPartFile<std::vector<TorvPart>> file{to.parts};
  return freadLoad(path, file);
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
    require(freadPart(path, fread), "a part that fread cannot load");
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
    SheetPartList library, fread;
    require(LoadGroupPart(path.c_str(), &library) == 0, "a group that cannot be loaded");
    require(freadGroup(path, fread), "a group that fread cannot load");
    const std::string again = folder().path("group again");
    for (const SheetPartList* loaded : {&library, &fread})
      require(SaveGroupPart(again.c_str(), *loaded, bench::kVersion) == 0 && bench::contentOf(again) == content,
              "loads that differ");
  }
};

template <class Save>
void registerSaves(const std::string& name, const std::vector<std::byte>& content, Save save) {
  const std::string path = folder().path("saved");
  registerTimed(name + "/library", content.size(), [=] { require(save(path.c_str()) == 0, "a save that fails"); });
  registerTimed(name + "/floor", content.size(), [=, &content] { bench::floorSave(path, content); });
}

void walkMemoryRead(benchmark::State& state, const PartCase& one) {
  const auto body = std::span(one.content).subspan(2);
  for (auto _ : state) {
    const auto part = std::make_unique<TorvPart>();
    codec::InStream stream(body);
    if (ReadPartBody(stream, bench::kVersion, false, *part) != 0) state.SkipWithError("read");
    benchmark::DoNotOptimize(part->shapes.shapes.data());
  }
  finish(state, body.size());
}
void walkMemoryWrite(benchmark::State& state, const PartCase& one) {
  for (auto _ : state) {
    codec::OutStream stream;
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

  for (const auto& [name, one] :
       {std::pair<std::string, const PartCase*>{"SmallPart", &small}, {"LargePart", &large}}) {
    registerLoads("Load" + name, one->path, *one->part, LoadOldPart, freadPart, fillPart);
    registerSaves("Save" + name, one->content,
                  [part = one->part.get()](const char* path) { return SavePart(path, *part, kVersion); });
  }
  registerLoads("LoadGroupPart", group.path, group.list, LoadGroupPart, freadGroup, fillGroup);
  registerSaves("SaveGroupPart", group.content,
                [](const char* path) { return SaveGroupPart(path, group.list, kVersion); });
  registerQuery("GetOldPartInfo", "LoadLargePart", large.path, [](const char* path) {
    char materialType[257];
    float width = 0, height = 0, thickness = 0;
    return GetOldPartInfo(path, materialType, &width, &height, &thickness);
  });
  benchmark::RegisterBenchmark("LargePartInMemory/read", walkMemoryRead, std::cref(large));
  benchmark::RegisterBenchmark("LargePartInMemory/write", walkMemoryWrite, std::cref(large));
}
