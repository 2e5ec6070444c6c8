// The bytes of one file, read once, so that a pipe can be walked as often as an ordinary file.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>
#include <string>

namespace oldtorvio::explain {

class FileContent {
 public:
  // Keeps an endless device from using all memory. Real files are much smaller.
  static constexpr std::uint64_t kLargestMiB = 1024;

  // Opens the file, reads it to its end and closes it.
  explicit FileContent(const std::string& path, std::uint64_t largestMiB = kLargestMiB);
  // Reads an open file from its current position to its end. It stays open.
  explicit FileContent(std::FILE* file, std::uint64_t largestMiB = kLargestMiB) { readAll(file, largestMiB); }

  // Why the file could not be read, as a text to print after its name: "cannot be opened: No such file or directory",
  // "is a folder". Empty if it was read.
  const std::string& error() const { return error_; }
  // Everything in the file; nothing after an error.
  std::span<const std::byte> bytes() const { return {bytes_.get(), size_}; }

 private:
  void readAll(std::FILE* file, std::uint64_t largestMiB);
  void fail(const std::string& error);

  std::unique_ptr<std::byte[]> bytes_;
  std::size_t size_ = 0;
  std::string error_;
};

}  // namespace oldtorvio::explain
