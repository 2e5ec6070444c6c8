// How far a long run is, on standard error if that is a terminal.
#pragma once
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <string>

namespace torvio {

bool isTerminal(std::FILE* file);

// A line that is rewritten a few times a second: "1200 of 40000 files, 850 files/s, 45 s left".
class Progress {
 public:
  // Without a terminal nothing is printed.
  Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress() { clear(); }

  bool isShown() const { return isShown_; }
  // Sets how many files there are, once it is known. For any thread.
  void setTotal(std::uint64_t total) { total_ = total; }

  // One more file is done.
  void count();
  // Removes the line, before something else is printed on the terminal.
  void clear();

 private:
  using Clock = std::chrono::steady_clock;

  void show(Clock::time_point now);

  bool isShown_;
  std::atomic<std::uint64_t> total_ = 0;
  std::uint64_t done_ = 0;
  bool isLineThere_ = false;
  Clock::time_point began_, next_;
};

// "850 files, 45 s left", for a run of that many seconds.
std::string progressText(std::uint64_t done, std::uint64_t total, double seconds);

}  // namespace torvio
