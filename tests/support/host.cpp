#include "tests/support/host.h"

#include <cstdlib>

#if defined(_WIN32)
#include <io.h>
#include <process.h>
#include <windows.h>
#else
#include <pthread.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <filesystem>
#include <iterator>
#endif

#if defined(__linux__)
// There only in builds that count.
extern "C" int __llvm_profile_write_file() __attribute__((weak));
#endif

namespace testing_support {
namespace {

struct Task {
  void (*work)(void*);
  void* data;
};

std::string outputOf(std::FILE* pipe) {
  std::string output;
  char block[4096];
  for (std::size_t n = 0; (n = std::fread(block, 1, sizeof block, pipe)) > 0;) output.append(block, n);
  return output;
}

}  // namespace

#if defined(__linux__)
bool isCounted() { return &__llvm_profile_write_file != nullptr; }
#else
bool isCounted() { return false; }
#endif

#if defined(_WIN32)

void setEnvironment(const char* name, const std::string& value) { (void)_putenv_s(name, value.c_str()); }
void unsetEnvironment(const char* name) { (void)_putenv_s(name, ""); }

bool runOnStackOf(std::size_t bytes, void (*work)(void*), void* data) {
  Task task{work, data};
  const auto run = [](void* one) -> unsigned {
    static_cast<Task*>(one)->work(static_cast<Task*>(one)->data);
    return 0;
  };
  const auto thread = reinterpret_cast<HANDLE>(
      _beginthreadex(nullptr, static_cast<unsigned>(bytes), run, &task, STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr));
  if (thread == nullptr) return false;
  (void)WaitForSingleObject(thread, INFINITE);
  (void)CloseHandle(thread);
  return true;
}

// Those of the runtime: what else the process holds comes and goes.
std::size_t openFiles() {
  std::size_t count = 0;
  for (int file = 0; file < 512; ++file) count += _get_osfhandle(file) == -1 ? 0 : 1;
  return count;
}

std::FILE* unwritableFile() { return std::fopen("NUL", "r"); }

int runCommand(const std::string& command, std::string& output, const std::string& errorsTo) {
  std::FILE* pipe = _popen((command + " 2>" + errorsTo).c_str(), "r");
  output = outputOf(pipe);
  return _pclose(pipe);
}

double processorSecondsOfCommands() { return 0; }

std::string systemFolder() {
  char folder[MAX_PATH] = {};
  (void)GetWindowsDirectoryA(folder, sizeof folder);
  return folder;
}

// The child of a death test runs its test anew while the parent, which waits for it, holds the lock.
SystemFolderLock::SystemFolderLock()
    : mutex_(testing::internal::InDeathTestChild() ? nullptr
                                                   : CreateMutexA(nullptr, FALSE, "oldtorvio_tests_win_ini")) {
  if (mutex_ != nullptr) (void)WaitForSingleObject(mutex_, INFINITE);
}
SystemFolderLock::~SystemFolderLock() {
  if (mutex_ == nullptr) return;
  (void)ReleaseMutex(mutex_);
  (void)CloseHandle(mutex_);
}

#else

void setEnvironment(const char* name, const std::string& value) { (void)setenv(name, value.c_str(), 1); }
void unsetEnvironment(const char* name) { (void)unsetenv(name); }

bool runOnStackOf(std::size_t bytes, void (*work)(void*), void* data) {
  Task task{work, data};
  const auto run = [](void* one) -> void* {
    static_cast<Task*>(one)->work(static_cast<Task*>(one)->data);
    return nullptr;
  };
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  pthread_t thread;
  const bool started =
      pthread_attr_setstacksize(&attributes, bytes) == 0 && pthread_create(&thread, &attributes, run, &task) == 0;
  if (started) pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
  return started;
}

std::size_t openFiles() {
  using Entries = std::filesystem::directory_iterator;
  return static_cast<std::size_t>(std::distance(Entries("/proc/self/fd"), Entries()));
}

std::FILE* unwritableFile() { return std::fopen("/dev/null", "r"); }

int runCommand(const std::string& command, std::string& output, const std::string& errorsTo) {
  std::FILE* pipe = popen(("{ " + command + "\n} 2>" + errorsTo).c_str(), "r");
  output = outputOf(pipe);
  const int status = pclose(pipe);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

double processorSecondsOfCommands() {
  struct rusage used {};
  (void)getrusage(RUSAGE_CHILDREN, &used);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
  };
  return seconds(used.ru_utime) + seconds(used.ru_stime);
}

#endif

}  // namespace testing_support
