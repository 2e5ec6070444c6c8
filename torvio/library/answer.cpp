#include "torvio/library/answer.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace oldtorvio::library {

#if defined(__cpp_exceptions)
void fail(Problem problem) { throw problem; }
#endif

void Answer::append(std::string_view bytes) {
  if (bytes.empty()) return;
  if (bytes.size() > capacity_ - used_) {
    // The first piece may well be all of it.
    constexpr std::size_t kLargest = std::numeric_limits<std::size_t>::max() / 2;
    if (bytes.size() > kLargest - used_) fail({TORVIO_NO_MEMORY, "not enough memory", "", TORVIO_NO_OFFSET});
    reserve(std::max(used_ + bytes.size(), std::min(capacity_, kLargest / 2) * 2));
  }
  std::memcpy(data() + used_, bytes.data(), bytes.size());
  used_ += bytes.size();
}

torvio_buffer* Answer::release() {
  if (!block_) reserve(0);
  data()[used_] = '\0';
  auto* const buffer = new (block_.get()) torvio_buffer{data(), used_};
  (void)block_.release();
  return buffer;
}

void Answer::reserve(std::size_t size) {
  std::unique_ptr<void, Delete> larger(::operator new(sizeof(torvio_buffer) + size + 1));
  if (used_ > 0) std::memcpy(static_cast<char*>(larger.get()) + sizeof(torvio_buffer), data(), used_);
  block_ = std::move(larger);
  capacity_ = size;
}

torvio_error* newError(torvio_status status, std::string_view message, std::string_view field,
                       std::uint64_t offset) noexcept {
  void* const block = ::operator new(sizeof(torvio_error) + message.size() + field.size() + 2, std::nothrow);
  if (block == nullptr) return nullptr;
  char* at = static_cast<char*>(block) + sizeof(torvio_error);
  const auto copied = [&at](std::string_view text) {
    char* const begin = at;
    at = std::copy(text.begin(), text.end(), at);
    *at++ = '\0';
    return begin;
  };
  char* const first = copied(message);
  char* const second = copied(field);
  return new (block) torvio_error{first, second, offset, status};
}

}  // namespace oldtorvio::library
