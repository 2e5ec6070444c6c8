// The test program of a mutation run. tests/mutation/mutate.py requests one mutant after another; each runs
// in a fork of this process, which is loaded but has not run any test.
//
//   list                          prints the full name of each test on a line, then an empty line
//   run ID MS:TEST,TEST MS:TEST   runs the groups of tests (by number) in this order with mutant ID active,
//                                 each group for at most MS milliseconds, up to the first failure. Prints
//                                 "passed", or how the run ended and the number of the test
//   touch MS:TEST                 as run without a mutant; also prints the places that were evaluated
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "tests/mutation/switch.h"
#include "torvio/explain/format_table.h"

namespace {

// ctest checks this with a script, which cannot run mutants.
TEST(FormatPages, TablesAreTheOutputOfTorvioFormat) {
  namespace explain = oldtorvio::explain;
  const std::string mark = "<!-- format ", end = "<!-- end -->";
  int tables = 0;
  for (const auto& page : std::filesystem::directory_iterator(OLDTORVIO_FORMAT_PAGES)) {
    std::ifstream file(page.path());
    const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    for (std::size_t at = 0; (at = text.find(mark, at)) != std::string::npos; ++tables) {
      at += mark.size();
      const std::string name = text.substr(at, text.find(' ', at) - at);
      const std::size_t from = text.find('\n', at) + 1;
      std::string expected = explain::recordTable(name);
      for (const oldtorvio::frame::FileKindInfo& kind : oldtorvio::frame::kFileKinds)
        if (kind.name == name) expected = explain::formatTable(kind.kind);
      EXPECT_EQ(text.substr(from, text.find(end, from) - from), expected) << name;
    }
  }
  EXPECT_GT(tables, 0);
}

namespace mutation = oldtorvio_mutation;

struct Shared {
  int test;    // the running test, or the first that failed
  int failed;  // whether a test has failed
};

std::vector<std::string> testNames() {
  std::vector<std::string> names;
  const auto& all = *testing::UnitTest::GetInstance();
  for (int s = 0; s < all.total_test_suite_count(); ++s) {
    const auto& suite = *all.GetTestSuite(s);
    for (int t = 0; t < suite.total_test_count(); ++t)
      names.push_back(std::string(suite.name()) + "." + suite.GetTestInfo(t)->name());
  }
  return names;
}

class Watch : public testing::EmptyTestEventListener {
 public:
  Watch(const std::vector<std::string>& names, Shared& shared) : names_(names), shared_(shared) {}

 private:
  void OnTestStart(const testing::TestInfo& info) override {
    if (shared_.failed != 0) return;
    const std::string name = std::string(info.test_suite_name()) + "." + info.name();
    for (std::size_t i = 0; i < names_.size(); ++i)
      if (names_[i] == name) shared_.test = static_cast<int>(i);
  }
  void OnTestEnd(const testing::TestInfo& info) override {
    if (info.result()->Failed()) shared_.failed = 1;
  }

  const std::vector<std::string>& names_;
  Shared& shared_;
};

void limit(int what, rlim_t most) {
  const rlimit both{most, most};
  (void)setrlimit(what, &both);
}

void endIn(long milliseconds) {
  itimerval timer{};
  timer.it_value = {milliseconds / 1000, milliseconds % 1000 * 1000};
  (void)setitimer(ITIMER_REAL, &timer, nullptr);
}

// In the fork: never returns.
[[noreturn]] void runGroups(int mutant, std::istringstream& groups, const std::vector<std::string>& names) {
  (void)setpgid(0, 0);
  const int nowhere = open("/dev/null", O_RDWR);
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) (void)dup2(nowhere, stream);
  limit(RLIMIT_AS, rlim_t{6} << 30U);
  limit(RLIMIT_FSIZE, rlim_t{1} << 29U);
  limit(RLIMIT_CORE, 0);
  (void)setenv("OLDTORVIO_MUTANT", std::to_string(mutant).c_str(), 1);
  mutation::active = mutant;
  for (std::string group; groups >> group;) {
    const std::size_t colon = group.find(':');
    endIn(std::atol(group.c_str()));
    std::string filter;
    std::istringstream numbers(group.substr(colon + 1));
    for (std::string number; std::getline(numbers, number, ',');) filter += names[std::stoul(number)] + ":";
    GTEST_FLAG_SET(filter, filter);
    if (RUN_ALL_TESTS() != 0) _exit(1);
  }
  _exit(0);
}

std::string answerFor(int mutant, std::istringstream& groups, const std::vector<std::string>& names, Shared& shared) {
  shared = {-1, 0};
  std::cout.flush();
  const pid_t child = fork();
  if (child == 0) runGroups(mutant, groups, names);
  int status = 0;
  (void)waitpid(child, &status, 0);
  (void)kill(-child, SIGKILL);  // processes that the child has started
  if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return "passed";
  const char* how = "crashed";
  if (WIFEXITED(status) && shared.failed != 0) how = "failed";
  if (WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM) how = "hung";
  return std::string(how) + " " + std::to_string(shared.test);
}

int serve() {
  const std::vector<std::string> names = testNames();
  void* const page = mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (page == MAP_FAILED) return 1;
  auto& shared = *static_cast<Shared*>(page);
  auto& listeners = testing::UnitTest::GetInstance()->listeners();
  delete listeners.Release(listeners.default_result_printer());
  listeners.Append(new Watch(names, shared));
  GTEST_FLAG_SET(fail_fast, true);

  for (std::string line; std::getline(std::cin, line);) {
    std::istringstream words(line);
    std::string verb;
    words >> verb;
    if (verb == "list") {
      for (const std::string& name : names) std::cout << name << '\n';
      std::cout << std::endl;
    } else if (verb == "run") {
      int mutant = 0;
      words >> mutant;
      std::cout << answerFor(mutant, words, names, shared) << std::endl;
    } else if (verb == "touch") {
      std::memset(mutation::touched, 0, mutation::kMost);
      std::cout << answerFor(0, words, names, shared) << ";";
      for (int id = 0; id < mutation::kMost; ++id)
        if (mutation::touched[id] != 0) std::cout << ' ' << id;
      std::cout << std::endl;
    }
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  bool isDeathTest = false;
  for (int i = 1; i < argc; ++i)
    isDeathTest = isDeathTest || std::strstr(argv[i], "internal_run_death_test") != nullptr;
  testing::InitGoogleTest(&argc, argv);
  return std::getenv("OLDTORVIO_MUTATION_SERVE") != nullptr && !isDeathTest ? serve() : RUN_ALL_TESTS();
}
