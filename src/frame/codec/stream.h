// Byte streams: a bounded window over a file (or a block of memory) to read from, and a buffer to
// write to that reaches the file in large blocks.
//
// Invariants: a read that cannot be met in full leaves its target untouched, and the reader then moves
// the stream to its end. Nothing is allocated for a size that the file merely claims.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace oldtorvio::codec {

class InStream {
 public:
  explicit InStream(std::span<const std::byte> memory);
  // Reads from the file's current position (assumed to be its start) to its end. The caller still owns
  // the file, which must outlive the stream.
  explicit InStream(std::FILE* file);

  InStream(const InStream&) = delete;
  InStream& operator=(const InStream&) = delete;

  // Bytes up to the end: exact for memory and regular files, for anything else those in the window,
  // which may be fewer.
  std::uint64_t left() const { return static_cast<std::uint64_t>(end_ - at_) + after_; }
  std::uint64_t position() const { return base_ + static_cast<std::uint64_t>(at_ - begin_); }

  // A pointer to `size` bytes in the window (size at most kLargestRun), or null when fewer are left;
  // nothing is consumed.
  const std::byte* run(std::size_t size) {
    if (static_cast<std::size_t>(end_ - at_) >= size) [[likely]]
      return at_;
    return refill(size);
  }
  void consume(std::size_t size) { at_ += size; }
  // The bytes that can be read without moving the window.
  std::span<const std::byte> window() const { return {at_, end_}; }

  // Appends exactly `size` bytes to `text`, or nothing.
  bool append(std::string& text, std::uint64_t size);
  bool skip(std::uint64_t size);
  void toEnd();

  // Whether a reader failed where the format tolerates it.
  bool wasForgiven() const { return wasForgiven_; }
  void noteForgiven() { wasForgiven_ = true; }

  static constexpr std::size_t kLargestRun = 40960;

 private:
  const std::byte* refill(std::size_t size);
  void load();

  const std::byte* begin_ = nullptr;
  const std::byte* at_ = nullptr;
  const std::byte* end_ = nullptr;
  std::uint64_t base_ = 0;   // position of begin_ in the file
  std::uint64_t after_ = 0;  // bytes of the file after the window
  bool sizeKnown_ = true;
  bool wasForgiven_ = false;
  std::FILE* file_ = nullptr;
  std::unique_ptr<std::byte[]> window_;
  std::size_t capacity_ = 0;
};

class OutStream {
 public:
  OutStream() = default;                // collects in memory: see bytes()
  explicit OutStream(std::FILE* file);  // the caller still owns the file

  OutStream(const OutStream&) = delete;
  OutStream& operator=(const OutStream&) = delete;

  // Room for `size` bytes at the end of what is stored, or null when the file takes no more. The
  // caller fills all of it.
  std::byte* room(std::size_t size) {
    if (capacity_ - used_ < size && !makeRoom(size)) [[unlikely]]
      return nullptr;
    std::byte* at = buffer_.get() + used_;
    used_ += size;
    return at;
  }
  // Room that is already allocated, and taking from it.
  std::span<std::byte> free() { return {buffer_.get() + used_, capacity_ - used_}; }
  void take(std::size_t size) { used_ += size; }
  // Writes what is collected to the file. False once anything could not be written.
  bool flush();

  std::span<const std::byte> bytes() const { return {buffer_.get(), used_}; }
  // Whether anything could not be written.
  bool failed() const { return failed_; }
  // Bytes stored so far, including those that were written to the file.
  std::uint64_t position() const { return handedOver_ + used_; }

 private:
  bool makeRoom(std::size_t size);
  // Writes the first `size` bytes of the buffer and moves the rest to its front.
  bool handOver(std::size_t size);

  std::unique_ptr<std::byte[]> buffer_;
  std::size_t used_ = 0;
  std::uint64_t handedOver_ = 0;
  std::size_t capacity_ = 0;
  std::FILE* file_ = nullptr;
  bool failed_ = false;
};

}  // namespace oldtorvio::codec
