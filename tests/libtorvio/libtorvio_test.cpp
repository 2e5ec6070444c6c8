// Every function of libtorvio when memory runs out, in many threads at a time, on a small stack and in a process whose
// locale has a decimal comma.
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/allocation_meter.h"
#include "tests/support/comma_locale.h"
#include "tests/support/files.h"
#include "tests/support/kind_files.h"
#include "tests/support/sanitizers.h"
#include "tests/support/special_tool_files.h"
#include "tests/support/stored_forms/parts.h"
#include "torvio/include/torvio.h"

namespace {

using namespace testing_support;

struct Outcome {
  torvio_status status = TORVIO_OK;
  bool hasResult = false;
  std::string result, message, field;
  std::uint64_t offset = 0;

  friend bool operator==(const Outcome&, const Outcome&) = default;
};

// Calls a function, copies what it returns and frees it.
template <class Function>
Outcome called(const Function& function) {
  torvio_buffer* result = nullptr;
  torvio_error* error = nullptr;
  Outcome outcome;
  outcome.status = function(&result, &error);
  if (result != nullptr) {
    outcome.hasResult = true;
    outcome.result.assign(result->data, result->size);
  }
  if (error != nullptr) {
    outcome.message = error->message;
    outcome.field = error->field;
    outcome.offset = error->offset;
  }
  torvio_free(result);
  torvio_free(error);
  return outcome;
}

// Calls a function that has a report as well. It is freed; that it is there is all that is known of it.
template <class Function>
torvio_status withReport(const Function& function, torvio_buffer** result) {
  torvio_buffer* report = nullptr;
  const torvio_status status = function(&report);
  EXPECT_TRUE(*result == nullptr || report != nullptr);
  EXPECT_TRUE(report == nullptr || status == TORVIO_OK || status == TORVIO_REFUSED);
  torvio_free(report);
  return status;
}

struct Call {
  std::string name;
  std::function<torvio_status(torvio_buffer**, torvio_error**)> run;
};

torvio_input inputOf(const Bytes& file, const char* kind) {
  torvio_input input{};
  input.data = file.span().data();
  input.size = file.size();
  input.kind = kind;
  input.name = "file";
  return input;
}

// A file of each kind, sound and damaged, and its JSON.
class Samples {
 public:
  Samples() {
    for (const Kind& kind : kinds()) {
      const int version = kind.versions.back();
      add(kind.name, kind.file(version));
      add(kind.name, kind.file(version).cut(kind.file(version).size() * 2 / 3));
    }
    for (const Sample& sample : samples_) {
      const torvio_input input = inputOf(sample.bytes, sample.kind.c_str());
      jsons_.push_back(called([&](auto result, auto error) { return torvio_json(&input, 0, result, error); }).result);
    }
    for (const Sample& sample : samples_) inputs_.push_back(inputOf(sample.bytes, sample.kind.c_str()));
  }

  // All functions that return a result, for all files. The samples have to outlive them.
  std::vector<Call> calls() const {
    std::vector<Call> all;
    for (std::size_t i = 0; i < inputs_.size(); ++i) {
      const torvio_input* const input = &inputs_[i];
      const std::string of = " of " + samples_[i].kind + (i % 2 == 0 ? "" : ", damaged");
      all.push_back({"check" + of, [=](auto r, auto e) { return torvio_check(input, 0, r, e); }});
      all.push_back({"info" + of, [=](auto r, auto e) { return torvio_info(input, 0, r, e); }});
      all.push_back({"json" + of, [=](auto r, auto e) { return torvio_json(input, TORVIO_PRETTY, r, e); }});
      all.push_back({"map" + of, [=](auto r, auto e) { return torvio_map(input, "**.*Count", nullptr, 0, r, e); }});
      all.push_back(
          {"page" + of, [=](auto r, auto e) { return torvio_map(input, nullptr, nullptr, TORVIO_PAGE, r, e); }});
      all.push_back({"draw" + of, [=](auto r, auto e) { return torvio_draw(input, 0, r, e); }});
      // With the same file, sound or damaged.
      const torvio_input* const other = &inputs_[i ^ 1U];
      all.push_back(
          {"diff" + of, [=](auto r, auto e) { return torvio_diff(input, other, nullptr, 0, 0, nullptr, r, e); }});
      all.push_back({"convert" + of, [=](auto r, auto e) {
                       return withReport(
                           [=](auto report) { return torvio_convert(input, 152, TORVIO_ALLOW_LOSS, r, report, e); }, r);
                     }});
      all.push_back({"recover" + of, [=](auto r, auto e) {
                       return withReport([=](auto report) { return torvio_recover(input, 0, r, report, e); }, r);
                     }});
      const std::string& json = jsons_[i];
      all.push_back({"from_json" + of, [&json](auto r, auto e) {
                       torvio_input text{};
                       text.data = json.data();
                       text.size = json.size();
                       return torvio_from_json(&text, 0, 0, r, e);
                     }});
    }
    all.push_back({"draw_page", [this](auto r, auto e) {
                     return torvio_draw_page(inputs_.data(), inputs_.size(), nullptr, 0, r, e);
                   }});
    all.push_back({"schema", [](auto r, auto e) { return torvio_schema("macro", r, e); }});
    all.push_back({"format", [](auto r, auto e) { return torvio_format("macro", nullptr, r, e); }});
    all.push_back({"kaitai", [](auto r, auto e) { return torvio_format("macro", "kaitai", r, e); }});
    all.push_back({"supported", [](auto r, auto e) { return torvio_supported(r, e); }});
    all.push_back({"refused", [](auto r, auto e) { return torvio_check(nullptr, 0, r, e); }});
    return all;
  }

 private:
  struct Sample {
    std::string kind;
    Bytes bytes;
  };
  void add(const std::string& kind, Bytes bytes) { samples_.push_back({kind, std::move(bytes)}); }

  std::vector<Sample> samples_;
  std::vector<std::string> jsons_;
  std::vector<torvio_input> inputs_;
};

// An implementation that keeps something from call to call does so in the first.
std::vector<Outcome> outcomesOf(const std::vector<Call>& calls) {
  std::vector<Outcome> all;
  all.reserve(calls.size());
  for (const Call& call : calls) all.push_back(called(call.run));
  return all;
}

TEST(Libtorvio, EveryFunctionHasAResultForItsSamples) {
  const Samples samples;
  for (const Call& call : samples.calls()) {
    const Outcome outcome = called(call.run);
    const bool isRefused = outcome.status == TORVIO_REFUSED || outcome.status == TORVIO_BAD_ARGUMENT;
    EXPECT_TRUE(outcome.status == TORVIO_OK || outcome.status == TORVIO_DAMAGED || isRefused) << call.name;
    EXPECT_EQ(outcome.hasResult, !isRefused) << call.name;
    EXPECT_EQ(outcome.message.empty(), outcome.status == TORVIO_OK) << call.name;
    if (outcome.status == TORVIO_INTERNAL_ERROR) ADD_FAILURE() << call.name << ": " << outcome.message;
  }
}

TEST(Libtorvio, PartIsNotSavedAsWhatALoadMisreads) {
  const Bytes file = storedPartFile(180);
  const torvio_input part = inputOf(file, "part");
  const std::string json = called([&](auto r, auto e) { return torvio_json(&part, 0, r, e); }).result;
  torvio_input text{};
  text.data = json.data();
  text.size = json.size();
  for (const int version : {2, 3, 5, 52}) {
    const Outcome outcome = called([&](auto r, auto e) { return torvio_from_json(&text, version, 0, r, e); });
    EXPECT_EQ(outcome.status, version < 52 ? TORVIO_REFUSED : TORVIO_OK) << version;
    EXPECT_EQ(outcome.hasResult, version >= 52) << version;
  }
}

TEST(Libtorvio, FileByItsPathAndInMemoryIsTheSame) {
  const TempFolder folder;
  for (const Kind& kind : kinds()) {
    const Bytes bytes = kind.file(kind.versions.back());
    const std::string path = folder.path("Tr\xC3\xA4ger");
    // The name is UTF-8 on every host; that of a plain stream would be in the code page of Windows.
    std::ofstream(std::filesystem::path(std::u8string(path.begin(), path.end())), std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.span().data()), static_cast<std::streamsize>(bytes.size()));
    torvio_input inMemory = inputOf(bytes, kind.name.c_str()), onDisk{};
    inMemory.name = path.c_str();
    onDisk.path = path.c_str();
    onDisk.kind = kind.name.c_str();
    for (const auto function : {torvio_check, torvio_info, torvio_json, torvio_draw})
      EXPECT_EQ(called([&](auto r, auto e) { return function(&inMemory, 0, r, e); }),
                called([&](auto r, auto e) { return function(&onDisk, 0, r, e); }))
          << kind.name;
  }
}

TEST(Libtorvio, NameIsAHintOfTheKind) {
  const Bytes bytes = Bytes().i16(180).zeros(10);
  torvio_input input = inputOf(bytes, nullptr);
  input.name = "a.SPT";
  const auto check = [&](auto r, auto e) { return torvio_check(&input, 0, r, e); };
  EXPECT_NE(called(check).result.find("\"kind\":\"special-tool\""), std::string::npos);
  input.name = "a";
  EXPECT_EQ(called(check).result.find("\"kind\":"), std::string::npos);
}

TEST(Libtorvio, EncodingOfTheInputDecodesItsTexts) {
  const Bytes table = Bytes().i16(180).zeros(2);
  torvio_input input = inputOf(table, "part");
  input.encoding = "cp437";
  const auto json = [&](auto r, auto e) { return torvio_json(&input, 0, r, e); };
  EXPECT_NE(called(json).result.find("\"encoding\":\"cp437\""), std::string::npos);
  input.encoding = nullptr;
  EXPECT_NE(called(json).result.find("\"encoding\":\"cp1252\""), std::string::npos);
}

TEST(Libtorvio, NamesThatAreNotUtf8AndActiveCharactersHaveNoEffect) {
  const Bytes bytes = Bytes().i16(180);
  torvio_input input = inputOf(bytes, "part");
  input.name = "a\x1B[31m\n<script>\xFF";
  for (const Outcome& outcome :
       {called([&](auto r, auto e) { return torvio_check(&input, 0, r, e); }),
        called([&](auto r, auto e) { return torvio_info(&input, 0, r, e); }),
        called([&](auto r, auto e) { return torvio_draw(&input, 0, r, e); }),
        called([&](auto r, auto e) { return torvio_draw_page(&input, 1, nullptr, 0, r, e); }),
        called([&](auto r, auto e) { return torvio_draw_page(&input, 1, input.name, 0, r, e); }),
        called([&](auto r, auto e) { return torvio_map(&input, nullptr, nullptr, TORVIO_PAGE, r, e); })}) {
    EXPECT_EQ(outcome.status, TORVIO_DAMAGED);
    EXPECT_EQ(outcome.result.find('\x1B'), std::string::npos);
    EXPECT_EQ(outcome.result.find('\xFF'), std::string::npos);
    const bool isJson = outcome.result.starts_with('{');
    if (isJson)
      EXPECT_EQ(outcome.result.find('\n'), outcome.result.size() - 1);
    else
      EXPECT_EQ(outcome.result.find("[31m\n<script>"), std::string::npos);
  }
}

TEST(Libtorvio, EveryFailingAllocationIsReportedAndNothingIsLost) {
  const Samples samples;
  const std::vector<Call> calls = samples.calls();
  // What is made once, by the first call.
  const std::vector<Outcome> expected = outcomesOf(calls);
  std::size_t failed = 0;
  for (std::size_t i = 0; i < calls.size(); ++i) {
    for (const bool forGood : {false, true}) {
      bool happened = true;
      for (std::size_t n = 0; happened; n += 1 + n / 16) {
        const AllocationMeter meter;
        torvio_buffer* result = nullptr;
        torvio_error* error = nullptr;
        torvio_status status = TORVIO_OK;
        {
          const FailingAllocation failing(n, forGood);
          status = calls[i].run(&result, &error);
          happened = failing.happened();
        }
        if (status == TORVIO_NO_MEMORY) {
          ++failed;
          EXPECT_EQ(result, nullptr) << calls[i].name;
          EXPECT_TRUE(error == nullptr || std::string(error->message) == "not enough memory") << calls[i].name;
          EXPECT_TRUE(forGood || error != nullptr) << calls[i].name << " " << n;
        } else {
          // Some algorithms do without memory that they ask for, and an error may lack its object.
          EXPECT_EQ(status, expected[i].status) << calls[i].name << " " << n;
          ASSERT_EQ(result != nullptr, expected[i].hasResult) << calls[i].name << " " << n;
          const std::string text = result != nullptr ? std::string(result->data, result->size) : std::string();
          EXPECT_EQ(text, expected[i].result) << calls[i].name << " " << n;
        }
        torvio_free(result);
        torvio_free(error);
        EXPECT_EQ(meter.held(), 0) << calls[i].name << " " << n;
      }
    }
  }
#if defined(_WIN32)
  // A DLL has allocation functions of its own.
  EXPECT_EQ(failed, 0U);
#else
  EXPECT_GT(failed, calls.size());
#endif
}

TEST(Libtorvio, EightThreadsGetTheSameResultsAsOne) {
  const Samples samples;
  const std::vector<Call> calls = samples.calls();
  std::atomic<bool> begins = false;
  std::vector<std::vector<Outcome>> outcomes(8);
  std::vector<std::thread> threads;
  for (auto& mine : outcomes)
    threads.emplace_back([&] {
      while (!begins) std::this_thread::yield();
      mine = outcomesOf(calls);
    });
  begins = true;
  for (std::thread& thread : threads) thread.join();
  const std::vector<Outcome> expected = outcomesOf(calls);
  for (const auto& mine : outcomes)
    for (std::size_t i = 0; i < calls.size(); ++i) EXPECT_EQ(mine[i], expected[i]) << calls[i].name;
}

TEST(Libtorvio, LocaleWithADecimalCommaChangesNothing) {
  const Samples samples;
  const std::vector<Call> calls = samples.calls();
  const std::vector<Outcome> expected = outcomesOf(calls);
  const CommaLocale locale;
  if (!locale.isSet()) GTEST_SKIP() << "this host has no locale with a decimal comma";
  const std::vector<Outcome> found = outcomesOf(calls);
  for (std::size_t i = 0; i < calls.size(); ++i) EXPECT_EQ(found[i], expected[i]) << calls[i].name;
}

TEST(Libtorvio, EveryFunctionWorksOnTheStackThatTheHeaderNames) {
  if (kIsSanitized) GTEST_SKIP() << "sanitizers enlarge every stack frame";
  constexpr std::size_t kStack = std::size_t{128} * 1024;
  const Samples samples;
  const std::vector<Call> calls = samples.calls();
  std::vector<Outcome> found(calls.size());
  struct Work {
    const std::vector<Call>* calls;
    std::vector<Outcome>* found;
  } work{&calls, &found};
  if (!runOnStackOf(
          kStack, [](void* data) { *static_cast<Work*>(data)->found = outcomesOf(*static_cast<Work*>(data)->calls); },
          &work))
    GTEST_SKIP() << "no thread with such a stack";
  EXPECT_EQ(found, outcomesOf(calls));
}

}  // namespace
