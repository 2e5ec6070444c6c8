#include "torvio/explain/file_content.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "src/frame/platform.h"

namespace oldtorvio::map {
namespace {

std::string inWords(int error) { return std::generic_category().message(error); }

}  // namespace

FileContent::FileContent(const std::string& path, std::uint64_t largestMiB) {
  errno = 0;
  const frame::File file = frame::File::openToRead(path.c_str());
  const int error = errno;
  std::error_code ignored;
  if (file)
    readAll(file.handle(), largestMiB);
  else if (std::filesystem::is_directory(path, ignored))
    error_ = "is a folder";
  else
    error_ = "cannot be opened: " + inWords(error);
}

void FileContent::readAll(std::FILE* file, std::uint64_t largestMiB) {
  constexpr std::uint64_t kFirstBuffer = 64U << 10U;
  const std::uint64_t largest = largestMiB << 20U;
  // One byte more than the file should have: the read that fetches its last byte then also meets its end.
  const std::uint64_t expected = frame::sizeOfFile(file).value_or(0);
  std::uint64_t capacity = 0;
  for (std::uint64_t larger = expected > 0 ? expected + 1 : kFirstBuffer;; larger = capacity * 2) {
    larger = std::min(larger, largest + 1);
    auto grown = std::make_unique_for_overwrite<std::byte[]>(static_cast<std::size_t>(larger));
    if (size_ > 0) std::memcpy(grown.get(), bytes_.get(), size_);
    bytes_ = std::move(grown);
    capacity = larger;

    const std::size_t room = static_cast<std::size_t>(capacity) - size_;
    const std::size_t got = std::fread(bytes_.get() + size_, 1, room, file);
    const int error = errno;
    size_ += got;
    if (std::ferror(file) != 0)
      error_ = "cannot be read: " + inWords(error);
    else if (size_ > largest)
      error_ = "is larger than " + std::to_string(largestMiB) + " MiB";
    if (!error_.empty()) {
      bytes_.reset();
      size_ = 0;
      return;
    }
    if (got < room) return;
  }
}

}  // namespace oldtorvio::map
