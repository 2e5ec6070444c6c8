#include "torvio/explain/file_content.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>

#include "src/frame/host/platform.h"

namespace oldtorvio::explain {
namespace {

#if !defined(_WIN32)
// Whether a folder can be opened depends on the system; stat works on all.
bool isFolder(const std::string& path) {
  struct stat info {};
  return ::stat(path.c_str(), &info) == 0 && (info.st_mode & S_IFMT) == S_IFDIR;
}
#endif

std::string inWords(int error) { return std::generic_category().message(error); }

}  // namespace

#if !defined(_WIN32)
FileContent::FileContent(const std::string& path, std::uint64_t largestMiB) {
  const frame::File file = frame::File::openToRead(path.c_str());
  const int error = errno;
  if (file)
    readAll(file.handle(), largestMiB);
  else if (isFolder(path))
    error_ = "is a folder";
  else
    error_ = "cannot be opened: " + inWords(error);
}
#endif

void FileContent::readAll(std::FILE* file, std::uint64_t largestMiB) {
  constexpr std::uint64_t kFirstBuffer = 64U << 10U;
  const std::uint64_t largest = largestMiB << 20U;
  const std::uint64_t expected = frame::sizeOfFile(file).value_or(0);
  // One byte more than the expected size: the read that returns the last byte then also detects the end.
  std::uint64_t capacity = std::max(expected + 1, kFirstBuffer);
  std::size_t got = 0, room = 0;
  do {
    if (expected > largest || size_ > largest) return fail("is larger than " + std::to_string(largestMiB) + " MiB");
    capacity = std::min(capacity, largest + 1);
    auto larger = std::make_unique_for_overwrite<std::byte[]>(static_cast<std::size_t>(capacity));
    if (size_ > 0) std::memcpy(larger.get(), bytes_.get(), size_);
    bytes_ = std::move(larger);
    room = static_cast<std::size_t>(capacity) - size_;
    capacity *= 2;

    got = std::fread(bytes_.get() + size_, 1, room, file);
    if (std::ferror(file) != 0) return fail("cannot be read: " + inWords(errno));
    size_ += got;
  } while (got == room);
}

void FileContent::fail(const std::string& error) {
  error_ = error;
  bytes_.reset();
  size_ = 0;
}

}  // namespace oldtorvio::explain
