// tests/support/host.h on a system of files only: no threads, no processes, no environment but the program's own.
#include "tests/support/host.h"

#include <cxxabi.h>
#include <sys/stat.h>

#include <cstdlib>

// The C++ runtime lacks these; an exception ends the program.
void* __cxxabiv1::__cxa_allocate_exception(std::size_t) throw() {
  (void)std::fputs("an exception was thrown\n", stderr);
  std::abort();
}
void __cxxabiv1::__cxa_throw(void*, std::type_info*, void* (*)(void*)) { std::abort(); }
// There is no shell.
extern "C" int system(const char*) { return -1; }

namespace testing_support {

bool isCounted() { return false; }

void setEnvironment(const char* name, const std::string& value) { (void)setenv(name, value.c_str(), 1); }
void unsetEnvironment(const char* name) { (void)unsetenv(name); }

bool runOnStackOf(std::size_t, void (*)(void*), void*) { return false; }

std::size_t openFiles() {
  std::size_t count = 0;
  for (int file = 0; file < 512; ++file) {
    struct stat found {};
    count += fstat(file, &found) == 0 ? 1 : 0;
  }
  return count;
}

std::FILE* unwritableFile() {
  constexpr const char* kEmpty = "/tmp/empty";
  if (std::FILE* file = std::fopen(kEmpty, "w")) (void)std::fclose(file);
  return std::fopen(kEmpty, "r");
}

int runCommand(const std::string&, std::string&, const std::string&) { return -1; }

double processorSecondsOfCommands() { return 0; }

}  // namespace testing_support
