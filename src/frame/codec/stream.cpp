#include "src/frame/codec/stream.h"

#include <algorithm>

#include "src/frame/host/platform.h"

namespace oldtorvio::codec {
namespace {

// Large enough that the system calls vanish, small enough to stay in the processor's cache.
constexpr std::size_t kWindow = 256U << 10U;
constexpr std::size_t kFirstBuffer = 16U << 10U;
constexpr std::size_t kPage = 4U << 10U;
static_assert(kWindow > InStream::kLargestRun);

}  // namespace

InStream::InStream(std::span<const std::byte> memory)
    : begin_(memory.data()), at_(begin_), end_(begin_ + memory.size()) {}

InStream::InStream(std::FILE* file) : file_(file) {
  const auto size = frame::sizeOfFile(file);
  sizeKnown_ = size.has_value();
  after_ = size.value_or(0);
  capacity_ = sizeKnown_ ? static_cast<std::size_t>(std::min<std::uint64_t>(after_, kWindow)) : kWindow;
  window_ = std::make_unique_for_overwrite<std::byte[]>(capacity_);
  begin_ = at_ = end_ = window_.get();
  load();
}

// Fills the window from end_ on, as far as it has room and the file has bytes.
void InStream::load() {
  std::byte* const to = window_.get() + (end_ - begin_);
  const std::size_t room = capacity_ - static_cast<std::size_t>(end_ - begin_);
  const std::size_t wanted = sizeKnown_ ? static_cast<std::size_t>(std::min<std::uint64_t>(room, after_)) : room;
  const std::size_t got = wanted == 0 ? 0 : std::fread(to, 1, wanted, file_);
  end_ += got;
  if (!sizeKnown_) return;
  // A file that was truncated meanwhile, or cannot be read any further, ends here.
  after_ = got < wanted ? 0 : after_ - got;
}

const std::byte* InStream::refill(std::size_t size) {
  if (file_ == nullptr || (sizeKnown_ && left() < size)) return nullptr;
  const std::size_t kept = static_cast<std::size_t>(end_ - at_);
  base_ += static_cast<std::uint64_t>(at_ - begin_);
  std::memmove(window_.get(), at_, kept);
  at_ = begin_;
  end_ = begin_ + kept;
  load();
  return static_cast<std::size_t>(end_ - at_) >= size ? at_ : nullptr;
}

bool InStream::append(std::string& text, std::uint64_t size) {
  if (sizeKnown_ && size > left()) return false;
  const std::size_t before = text.size();
  while (size > 0) {
    const std::size_t step = static_cast<std::size_t>(std::min<std::uint64_t>(size, kLargestRun));
    const std::byte* from = run(step);
    if (from == nullptr) {
      text.resize(before);
      return false;
    }
    text.append(reinterpret_cast<const char*>(from), step);
    consume(step);
    size -= step;
  }
  return true;
}

bool InStream::skip(std::uint64_t size) {
  while (size > 0) {
    const std::size_t step = static_cast<std::size_t>(std::min<std::uint64_t>(size, kLargestRun));
    if (run(step) == nullptr) return false;
    consume(step);
    size -= step;
  }
  return true;
}

void InStream::toEnd() {
  base_ += after_;
  after_ = 0;
  at_ = end_;
}

OutStream::OutStream(std::FILE* file) : file_(file) {}

bool OutStream::flush() { return handOver(used_); }

bool OutStream::handOver(std::size_t size) {
  if (file_ == nullptr) return true;
  if (!failed_ && size > 0) failed_ = std::fwrite(buffer_.get(), 1, size, file_) != size;
  if (failed_) {
    // Nothing more can be stored: every later room() fails too.
    handedOver_ += used_;
    used_ = capacity_ = 0;
    return false;
  }
  used_ -= size;
  handedOver_ += size;
  if (used_ > 0) std::memmove(buffer_.get(), buffer_.get() + size, used_);
  return true;
}

bool OutStream::makeRoom(std::size_t size) {
  if (failed_) return false;
  if (file_ != nullptr && capacity_ >= kWindow) {
    // Complete pages only: the system then never has to come back to a page that was half written.
    if (!handOver(used_ - used_ % kPage)) return false;
    if (size <= capacity_ - used_) return true;
  }
  std::size_t larger = std::max(capacity_ * 4, kFirstBuffer);
  while (larger - used_ < size) larger *= 2;
  auto grown = std::make_unique_for_overwrite<std::byte[]>(larger);
  if (used_ > 0) std::memcpy(grown.get(), buffer_.get(), used_);
  buffer_ = std::move(grown);
  capacity_ = larger;
  return true;
}

}  // namespace oldtorvio::codec
