#include "tests/support/io_faults.h"

#include <algorithm>
#include <utility>

namespace {

using testing_support::IoCall;
using testing_support::IoWatch;

thread_local IoWatch* watch = nullptr;

bool fails(IoCall call) { return watch != nullptr && watch->fails(call); }

// Takes the watch away while it does something of its own.
class Unwatched {
 public:
  Unwatched() : watch_(std::exchange(watch, nullptr)) {}
  ~Unwatched() { watch = watch_; }
  Unwatched(const Unwatched&) = delete;
  Unwatched& operator=(const Unwatched&) = delete;

 private:
  IoWatch* watch_;
};

}  // namespace

namespace testing_support {

IoWatch::IoWatch(const IoFault& fault) : fault_(fault) { watch = this; }
IoWatch::~IoWatch() { watch = nullptr; }

void IoWatch::before(IoCall call, std::size_t n, std::function<void()> act) {
  actCall_ = call;
  actAt_ = n;
  act_ = std::move(act);
}

bool IoWatch::fails(IoCall call) {
  const std::size_t n = counts_[static_cast<std::size_t>(call)]++;
  if (act_ && call == actCall_ && n == actAt_) {
    const Unwatched own;
    act_();
  }
  if (call != fault_.call || (fault_.forGood ? n < fault_.n : n != fault_.n)) return false;
  happened_ = true;
  errno = fault_.error;
  return true;
}

std::size_t IoWatch::bytesBeforeFailure() { return std::exchange(fault_.bytes, 0); }

void IoWatch::noteOpened(const void* file) {
  const Unwatched own;
  ++opened_;
  open_.insert(file);
}

bool IoWatch::noteClosed(const void* file) {
  const Unwatched own;
  if (open_.erase(file) == 1) return true;
  ++closedInVain_;
  return false;
}

}  // namespace testing_support

// The names by which the linker replaces those of the host.
#define OPENS(name)                                                   \
  std::FILE* __real_##name(const char* path, const char* mode);       \
  std::FILE* __wrap_##name(const char* path, const char* mode) {      \
    if (fails(IoCall::open)) return nullptr;                          \
    std::FILE* const file = __real_##name(path, mode);                \
    if (watch != nullptr && file != nullptr) watch->noteOpened(file); \
    return file;                                                      \
  }
#define QUERIES(name, Key, kind)              \
  int __real_##name(Key what, void* answer);  \
  int __wrap_##name(Key what, void* answer) { \
    if (fails(IoCall::kind)) return -1;       \
    return __real_##name(what, answer);       \
  }
#define READS_FOLDER(name)                     \
  void* __real_##name(void* folder);           \
  void* __wrap_##name(void* folder) {          \
    if (fails(IoCall::folder)) return nullptr; \
    return __real_##name(folder);              \
  }

extern "C" {

OPENS(fopen)

int __real_setvbuf(std::FILE* file, char* buffer, int mode, std::size_t size);
int __wrap_setvbuf(std::FILE* file, char* buffer, int mode, std::size_t size) {
  if (fails(IoCall::buffer)) return -1;
  return __real_setvbuf(file, buffer, mode, size);
}

std::size_t __real_fread(void* to, std::size_t size, std::size_t count, std::FILE* file);
std::size_t __wrap_fread(void* to, std::size_t size, std::size_t count, std::FILE* file) {
  const bool failing = fails(IoCall::read);
  const std::size_t wanted = failing ? std::min(count, watch->bytesBeforeFailure() / size) : count;
  const std::size_t got = wanted == 0 ? 0 : __real_fread(to, size, wanted, file);
  if (watch != nullptr) watch->noteMoved(IoCall::read, got * size);
  return got;
}

std::size_t __real_fwrite(const void* from, std::size_t size, std::size_t count, std::FILE* file);
std::size_t __wrap_fwrite(const void* from, std::size_t size, std::size_t count, std::FILE* file) {
  const bool failing = fails(IoCall::write);
  const std::size_t wanted = failing ? std::min(count, watch->bytesBeforeFailure() / size) : count;
  const std::size_t put = wanted == 0 ? 0 : __real_fwrite(from, size, wanted, file);
  if (watch != nullptr) watch->noteMoved(IoCall::write, put * size);
  return put;
}

// A file is closed also where that fails, as the host does it.
int __real_fclose(std::FILE* file);
int __wrap_fclose(std::FILE* file) {
  const bool failing = fails(IoCall::close);
  if (watch != nullptr && !watch->noteClosed(file)) return EOF;
  const int error = errno;
  const int result = __real_fclose(file);
  if (!failing) return result;
  errno = error;
  return EOF;
}

#if !defined(_WIN32)

OPENS(fopen64)
QUERIES(fstat, int, query)
QUERIES(fstat64, int, query)
QUERIES(stat, const char*, folder)
QUERIES(stat64, const char*, folder)
READS_FOLDER(readdir)
READS_FOLDER(readdir64)

void* __real_opendir(const char* path);
void* __wrap_opendir(const char* path) {
  if (fails(IoCall::folder)) return nullptr;
  void* const folder = __real_opendir(path);
  if (watch != nullptr && folder != nullptr) watch->noteOpened(folder);
  return folder;
}

int __real_closedir(void* folder);
int __wrap_closedir(void* folder) {
  if (watch != nullptr && !watch->noteClosed(folder)) return -1;
  return __real_closedir(folder);
}

int __real_access(const char* path, int mode);
int __wrap_access(const char* path, int mode) {
  if (fails(IoCall::folder)) return -1;
  return __real_access(path, mode);
}

#endif
}
