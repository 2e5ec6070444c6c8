// Counts the calls by which the library uses files, and makes one of them fail. The linker redirects the test program's
// calls here; without a watch they are passed on unchanged.
#pragma once
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <set>
#include <vector>

namespace testing_support {

enum class IoCall : std::uint8_t {
  open,
  buffer,  // choosing how it is buffered
  query,   // what a file is and how large
  read,
  write,
  close,
  folder,  // opening a folder, reading an entry, asking what an entry is
};
inline constexpr std::size_t kIoCalls = 7;
inline constexpr std::size_t kNever = static_cast<std::size_t>(-1);

struct IoFault {
  IoCall call = IoCall::open;
  std::size_t n = 0;      // the n-th call, from 0
  bool forGood = false;   // and all after it
  int error = EIO;        // what errno says
  std::size_t bytes = 0;  // read or written all the same, none by later calls
};

// Watches this thread's calls while it lives; one at a time.
class IoWatch {
 public:
  explicit IoWatch(const IoFault& fault);
  ~IoWatch();
  IoWatch(const IoWatch&) = delete;
  IoWatch& operator=(const IoWatch&) = delete;

  // Calls act() before the n-th call.
  void before(IoCall call, std::size_t n, std::function<void()> act);

  bool happened() const { return happened_; }
  const std::array<std::size_t, kIoCalls>& counts() const { return counts_; }
  // Bytes of each read or write that moved.
  const std::vector<std::size_t>& moved(IoCall call) const { return call == IoCall::read ? read_ : written_; }
  // Files and folders that were opened, are open, and were closed without being open.
  std::size_t opened() const { return opened_; }
  std::size_t stillOpen() const { return open_.size(); }
  std::size_t closedInVain() const { return closedInVain_; }

  // For the calls themselves.
  bool fails(IoCall call);
  std::size_t bytesBeforeFailure();
  void noteOpened(const void* file);
  bool noteClosed(const void* file);
  void noteMoved(IoCall call, std::size_t bytes) { (call == IoCall::read ? read_ : written_).push_back(bytes); }

 private:
  IoFault fault_;
  bool happened_ = false;
  std::array<std::size_t, kIoCalls> counts_{};
  std::vector<std::size_t> read_, written_;
  std::set<const void*> open_;
  std::size_t opened_ = 0, closedInVain_ = 0;
  IoCall actCall_ = IoCall::open;
  std::size_t actAt_ = 0;
  std::function<void()> act_;
};

}  // namespace testing_support
