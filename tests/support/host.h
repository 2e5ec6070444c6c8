// What the tests ask of the host beyond the standard library, once for each system.
#pragma once
#include <gtest/gtest.h>

#include <csignal>
#include <cstddef>
#include <cstdio>
#include <string>

namespace testing_support {

void setEnvironment(const char* name, const std::string& value);
void unsetEnvironment(const char* name);

// Runs work(data) on a thread with a stack of that many bytes; false if there is no such thread.
bool runOnStackOf(std::size_t bytes, void (*work)(void*), void* data);

// Whether this build counts what is reached, for which its library holds memory of its own.
bool isCounted();

// The separator of folders, and whether names that differ by case are two files.
#if defined(_WIN32)
inline constexpr const char* kSeparator = "\\";
inline constexpr bool kNamesDifferByCase = false;
#else
inline constexpr const char* kSeparator = "/";
inline constexpr bool kNamesDifferByCase = true;
#endif

// How many files the process has open.
std::size_t openFiles();

// A file without content that takes none.
std::FILE* unwritableFile();

// Runs a command of the host's shell; the exit code (-1 for a process that a signal ended) and what it
// printed. Its error output goes to the file `errorsTo`, by default to none.
#if defined(_WIN32)
inline constexpr const char* kNullDevice = "NUL";
#else
inline constexpr const char* kNullDevice = "/dev/null";
#endif
int runCommand(const std::string& command, std::string& output, const std::string& errorsTo = kNullDevice);

// Whether commands are those of a POSIX shell, and files may be pipes, sockets and links.
#if defined(_WIN32)
inline constexpr bool kIsPosix = false;
#else
inline constexpr bool kIsPosix = true;
#endif

// Processor time of all commands so far; 0 on hosts that do not measure it.
double processorSecondsOfCommands();

#if defined(_WIN32)
// The folder of the one "win.ini" that this host has.
std::string systemFolder();
// Held by the one test that has changed it: all processes look at the same.
class SystemFolderLock {
 public:
  SystemFolderLock();
  ~SystemFolderLock();
  SystemFolderLock(const SystemFolderLock&) = delete;
  SystemFolderLock& operator=(const SystemFolderLock&) = delete;

 private:
  void* mutex_;
};
#endif

// A processor that is emulated runs no program from within another, so no death test in a fresh process.
#if defined(TESTS_ARE_EMULATED)
inline constexpr bool kStartsProcesses = false;
#else
inline constexpr bool kStartsProcesses = true;
#endif

// For EXPECT_EXIT: the process ended as the library ends it.
inline auto endedByTheLibrary() {
#if defined(_WIN32)
  return testing::ExitedWithCode(3);
#else
  return testing::KilledBySignal(SIGABRT);
#endif
}

}  // namespace testing_support
