// A host that loads the shared library by its path, calls it by name, unloads it and loads it again.
#include "tests/support/host.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "OldTorvIO/records.h"
#include "tests/support/comma_locale.h"
#include "tests/support/export_calls.h"
#include "tests/support/sanitizers.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif
#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace {

using namespace testing_support;
using namespace oldtorvio;

// Sanitizers enlarge every stack frame.
constexpr std::size_t kSmallStack = kIsSanitized ? 1U << 20U : 64U << 10U;

// One handle of the library.
class Library {
 public:
  Library() {
#if defined(_WIN32)
    handle_ = LoadLibraryA(OLDTORVIO_LIBRARY);
#else
    handle_ = dlopen(OLDTORVIO_LIBRARY, RTLD_NOW | RTLD_LOCAL);
#endif
    if (handle_ == nullptr) {
      ADD_FAILURE() << "cannot be loaded: " << OLDTORVIO_LIBRARY;
      std::exit(2);
    }
    exports_.each([&](const char* name, auto& function) { function.set(symbol(name)); });
  }
  ~Library() {
#if defined(_WIN32)
    EXPECT_NE(FreeLibrary(handle_), 0);
#else
    EXPECT_EQ(dlclose(handle_), 0);
#endif
  }
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  Exports& exports() { return exports_; }
  const Exports* operator->() const { return &exports_; }

  static bool isLoaded() {
#if defined(_WIN32)
    return GetModuleHandleA("OldTorvIO.dll") != nullptr;
#else
    void* const again = dlopen(OLDTORVIO_LIBRARY, RTLD_NOW | RTLD_NOLOAD);
    if (again != nullptr) (void)dlclose(again);
    return again != nullptr;
#endif
  }

 private:
#if defined(_WIN32)
  void* symbol(const char* name) const { return reinterpret_cast<void*>(GetProcAddress(handle_, name)); }
  HMODULE handle_;
#else
  void* symbol(const char* name) const { return dlsym(handle_, name); }
  void* handle_;
#endif
  Exports exports_;
};

// Runs work() on a thread with a small stack.
void onSmallStack(const std::function<void()>& work) {
  EXPECT_TRUE(runOnStackOf(
      kSmallStack, [](void* one) { (*static_cast<const std::function<void()>*>(one))(); },
      const_cast<void*>(static_cast<const void*>(&work))));
}
void here(const std::function<void()>& work) { work(); }

using Outputs = std::map<std::string, std::string>;

// The outputs of every export, each called by run(call).
template <class Run>
Outputs outputsOf(const Exports& exports, const Samples& samples, const Run& run) {
  Outputs outputs;
  for (const ExportCall& call : exportCalls()) {
    const PreparedCall p = call.prepare(exports, samples);
    std::int64_t status = 0;
    run([&] { status = p.call(); });
    EXPECT_EQ(status, call.whenDone) << call.title();
    outputs[call.title()] = p.answer();
    if (call.files == ExportCall::Files::edited) samples.restore(call.input);
  }
  return outputs;
}

void expectSame(const Outputs& a, const Outputs& b) {
  ASSERT_EQ(a.size(), b.size());
  for (const auto& [title, output] : a) EXPECT_TRUE(output == b.at(title)) << title;
}

TEST(Host, FindsEveryExportByItsName) {
  Library library;
  std::size_t found = 0;
  library.exports().each([&](const char* name, const auto& function) {
    EXPECT_TRUE(function.isSet()) << name;
    ++found;
  });
  EXPECT_EQ(found, 45U);
}

TEST(Host, GetsTheSameOutputsWithADecimalCommaOnASmallStackAndAfterAReload) {
  const Samples samples;
  Outputs plain;
  for (int round = 0; round < 2; ++round) {
    {
      Library library;
      const Outputs inC = outputsOf(library.exports(), samples, here);
      if (round == 0) plain = inC;
      expectSame(plain, inC);
      expectSame(plain, outputsOf(library.exports(), samples, onSmallStack));
      {
        const CommaLocale comma;
        if (comma.isSet()) {
          expectSame(plain, outputsOf(library.exports(), samples, here));
          expectSame(plain, outputsOf(library.exports(), samples, onSmallStack));
        }
      }
      library.exports().each([](const char* name, const auto& function) { EXPECT_GE(function.calls(), 2U) << name; });
    }
    EXPECT_FALSE(Library::isLoaded());
  }
  // The outputs contain numbers in which a comma would show.
  EXPECT_NE(plain.at("GetOldSheetInfoByName, width").find('.'), std::string::npos);
  EXPECT_NE(plain.at("GetOldPartTool").find('.'), std::string::npos);
}

TEST(Host, HasALocaleWithADecimalComma) {
  const CommaLocale comma;
  if (!comma.isSet()) GTEST_SKIP() << "neither a locale with a decimal comma nor its sources are installed";
  char text[16];
  (void)std::snprintf(text, sizeof text, "%.1f", 0.5);
  EXPECT_STREQ(text, "0,5");
}

TEST(Host, LoadsAndUnloadsOnASmallStack) {
  for (int round = 0; round < 3; ++round) {
    std::optional<Library> library;
    onSmallStack([&] { library.emplace(); });
    EXPECT_TRUE(Library::isLoaded());
    (*library)->InitTorvPart(1, 2, 3, 4, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    onSmallStack([&] { library.reset(); });
    EXPECT_FALSE(Library::isLoaded());
  }
}

// The state of the process, checked through the functions that return it.
class State {
 public:
  explicit State(const Samples& samples) : samples_(samples) {}

  void fill(const Library& library) {
    const std::uint32_t values[9] = {};
    library->InitTorvPart(1, 2, 3, 4, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(library->AddPatIntoGroupPat(1, 0, 0, 1, 0, values), 1);
    MachineInformation machine{};
    EXPECT_EQ(library->LoadOldMachineInformation(samples_.path("machine").c_str(), &machine), 0);
    EXPECT_EQ(machine.infoStationCount, 1);
    std::uint32_t count = 0;
    EXPECT_EQ(library->LoadOldToolInventoryForCount(samples_.path("inventory").c_str(), &count), 0);
    EXPECT_EQ(count, 2U);
    EXPECT_EQ(library->LoadOldSheetInformation(samples_.path("sheet").c_str()), 0);
    EXPECT_EQ(openTool(library, "tool.spt"), 2U);
  }

  bool builderIsEmpty(const Library& library) const {
    return library->SaveTorvPart(samples_.path("state").c_str(), 180) == -2;
  }
  bool specialToolIsEmpty(const Library& library) const {
    std::int32_t type = -77;
    float f = 0;
    library->GetShapeAt(0, &type, &f, &f, &f, &f, &f, &f);
    return type == -77;
  }
  void queryInventory(const Library& library) const {
    char name[257];
    float f = 0;
    std::int32_t n = 0;
    library->GetOldToolInventoryInformation(0, name, &f, &f, &f, &f, &n, &f, &f, &f, &f, &f, &f, &n, &f, &f, &f, &f, &f,
                                            &f);
  }
  void queryMachine(const Library& library) const {
    char path[257];
    float f[6] = {};
    std::int32_t n = 0;
    library->LoadOldStationToolFromMachine(0, &n, &n, f, f, f, &n, f, f, f, f, f, &n, f, f, path, f, f, &n);
  }

 private:
  std::uint32_t openTool(const Library& library, const std::string& name) const {
    std::uint32_t count = 0;
    float f = 0;
    std::int32_t n = 0;
    std::uint8_t b = 0;
    EXPECT_EQ(library->OpenSpecialToolFile(samples_.path(name).c_str(), &count, &f, &f, &f, &f, &f, &n, &f, &f, &f, &f,
                                           &f, &f, &n, &f, &f, &f, &f, &f, &f, &f, &f, &b),
              0);
    return count;
  }

  const Samples& samples_;
};

TEST(Host, AReloadedLibraryHasNoState) {
  const Samples samples;
  State state(samples);
  {
    const Library library;
    state.fill(library);
    EXPECT_FALSE(state.builderIsEmpty(library));
    EXPECT_FALSE(state.specialToolIsEmpty(library));
    state.queryInventory(library);
    state.queryMachine(library);
  }
  ASSERT_FALSE(Library::isLoaded());
  const Library library;
  EXPECT_TRUE(state.builderIsEmpty(library));
  EXPECT_TRUE(state.specialToolIsEmpty(library));
  EXPECT_EXIT(state.queryInventory(library), endedByTheLibrary(), "");
  EXPECT_EXIT(state.queryMachine(library), endedByTheLibrary(), "");
}

TEST(Host, ALibraryWithAnotherHandleKeepsItsState) {
  const Samples samples;
  State state(samples);
  std::optional<Library> first(std::in_place);
  const Library second;
  state.fill(*first);
  first.reset();
  EXPECT_TRUE(Library::isLoaded());
  EXPECT_FALSE(state.builderIsEmpty(second));
  EXPECT_FALSE(state.specialToolIsEmpty(second));
  state.queryInventory(second);
  state.queryMachine(second);
  (void)outputsOf(*second.operator->(), samples, here);
}

TEST(Host, RecordsOutliveTheLibrary) {
  const Samples samples;
  const auto part = std::make_unique<TorvPart>();
  const auto sheet = std::make_unique<OldSheet>();
  {
    const Library library;
    ASSERT_EQ(library->LoadOldPart(samples.path("part").c_str(), part.get()), 0);
    ASSERT_EQ(library->LoadOldSheet(samples.path("sheet").c_str(), sheet.get()), 0);
  }
  ASSERT_FALSE(Library::isLoaded());
  const std::size_t shapes = part->shapes.shapes.size();
  ASSERT_GT(shapes, 0U);
  part->shapes.shapes.push_back(part->shapes.shapes.front());
  EXPECT_EQ(sheet->partList.parts.size(), 1U);
  sheet->partList.parts.clear();
  const Library library;
  part->nestShapeGroups.clear();
  EXPECT_EQ(library->LoadOldPart(samples.path("part").c_str(), part.get()), 0);
  EXPECT_EQ(part->shapes.shapes.size(), shapes);
}

// Under the leak sanitizer the exit code would differ if memory of the library were leaked.
TEST(Host, TheProcessMayEndWhileTheLibraryHoldsState) {
  const Samples samples;
  enum class End { loaded, unloadedAtExit, unloaded };
  const auto endWithState = [&](End end) {
    static Library* kept = nullptr;
    static std::unique_ptr<Library> unloadedAtExit;
    kept = new Library;
    State(samples).fill(*kept);
    (void)outputsOf(kept->exports(), samples, here);
    if (end == End::unloaded) delete std::exchange(kept, nullptr);
    if (end == End::unloadedAtExit) unloadedAtExit.reset(std::exchange(kept, nullptr));
    std::exit(testing::Test::HasFailure() ? 1 : 7);
  };
  EXPECT_EXIT(endWithState(End::loaded), testing::ExitedWithCode(7), "");
  EXPECT_EXIT(endWithState(End::unloadedAtExit), testing::ExitedWithCode(7), "");
  EXPECT_EXIT(endWithState(End::unloaded), testing::ExitedWithCode(7), "");
}

#if defined(__GLIBC__)
TEST(Host, LoadingAndUnloadingLeaksNoMemory) {
  if (testing_support::isCounted()) GTEST_SKIP() << "memory of the coverage counters is not distinguished";
  if (kIsSanitized) GTEST_SKIP() << "the sanitizer looks for leaks itself";
  const char* const tunables = std::getenv("GLIBC_TUNABLES");
  if (tunables == nullptr || std::string(tunables).find("tcache_count=0") == std::string::npos)
    GTEST_SKIP() << "the heap reports freed memory in its caches as allocated unless GLIBC_TUNABLES has tcache_count=0";
  const Samples samples;
  const auto cycle = [&] {
    const Library library;
    State(samples).fill(library);
    (void)outputsOf(*library.operator->(), samples, here);
  };
  // The loader keeps some memory at first.
  for (int i = 0; i < 10; ++i) cycle();
  const auto before = mallinfo2().uordblks;
  for (int i = 0; i < 20; ++i) cycle();
  EXPECT_EQ(mallinfo2().uordblks, before);
}
#endif

}  // namespace
