// What a function of torvio.h returns: its status, the bytes of its result and its error. Exceptions end here.
#pragma once
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "torvio/explain/file_map.h"
#include "torvio/include/torvio.h"

namespace oldtorvio::library {

// The contents of an error.
struct Problem {
  torvio_status status = TORVIO_OK;
  std::string message;
  std::string field;
  std::uint64_t offset = TORVIO_NO_OFFSET;
};

// Ends a function without a result.
[[noreturn]] void fail(Problem problem);

inline Problem badArgument(std::string message) {
  return {TORVIO_BAD_ARGUMENT, std::move(message), "", TORVIO_NO_OFFSET};
}
inline Problem notRead(std::string message) { return {TORVIO_NOT_READ, std::move(message), "", TORVIO_NO_OFFSET}; }
inline Problem refused(std::string message) { return {TORVIO_REFUSED, std::move(message), "", TORVIO_NO_OFFSET}; }
inline Problem damaged(std::string message) { return {TORVIO_DAMAGED, std::move(message), "", TORVIO_NO_OFFSET}; }
inline Problem damaged(const explain::Fault& fault) {
  return {TORVIO_DAMAGED, explain::describe(fault), fault.path, fault.offset};
}

// A result while it grows. It is one block, which begins with its torvio_buffer, so that a large result is not copied
// at the end.
class Answer {
 public:
  void append(std::string_view bytes);
  // The function returns this status together with its result.
  void note(Problem problem) { problem_ = std::move(problem); }

  const Problem& problem() const { return problem_; }
  torvio_buffer* release();

 private:
  struct Delete {
    void operator()(void* block) const { ::operator delete(block); }
  };
  void reserve(std::size_t size);
  char* data() const { return static_cast<char*>(block_.get()) + sizeof(torvio_buffer); }

  std::unique_ptr<void, Delete> block_;
  std::size_t used_ = 0, capacity_ = 0;  // without the NUL
  Problem problem_;
};

// Null if there is no memory for it.
torvio_error* newError(torvio_status status, std::string_view message, std::string_view field,
                       std::uint64_t offset) noexcept;

// Runs body(answer) for a function that has these outputs.
template <class Body>
torvio_status answered(torvio_buffer** result, torvio_error** error, const Body& body) noexcept {
  if (result != nullptr) *result = nullptr;
  if (error != nullptr) *error = nullptr;
  const auto failed = [&](torvio_status status, std::string_view message, std::string_view field = {},
                          std::uint64_t offset = TORVIO_NO_OFFSET) {
    if (error != nullptr && status != TORVIO_OK) *error = newError(status, message, field, offset);
    return status;
  };
  const auto failedBy = [&](const Problem& problem) {
    return failed(problem.status, problem.message, problem.field, problem.offset);
  };
  [[maybe_unused]] constexpr const char* kNoMemory = "not enough memory";
  const auto run = [&] {
    Answer answer;
    body(answer);
    *result = answer.release();
    return failedBy(answer.problem());
  };
  if (result == nullptr) return failed(TORVIO_BAD_ARGUMENT, "result is NULL");
#if defined(__cpp_exceptions)
  try {
    return run();
  } catch (const Problem& problem) {
    return failedBy(problem);
  } catch (const std::bad_alloc&) {
    return failed(TORVIO_NO_MEMORY, kNoMemory);
  } catch (const std::length_error&) {
    return failed(TORVIO_NO_MEMORY, kNoMemory);
  } catch (const std::exception& unexpected) {
    return failed(TORVIO_INTERNAL_ERROR, unexpected.what());
  } catch (...) {
    return failed(TORVIO_INTERNAL_ERROR, "unknown");
  }
#else
  return run();
#endif
}

}  // namespace oldtorvio::library
