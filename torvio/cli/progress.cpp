#include "torvio/cli/progress.h"

#include <cmath>
#include <cstdlib>
#include <string_view>

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

namespace torvio {

bool isTerminal(std::FILE* file) {
#if defined(_WIN32)
  return _isatty(_fileno(file)) != 0;
#else
  return isatty(fileno(file)) != 0;
#endif
}

namespace {

// "45 s", "12 min", "3 h 20 min".
std::string inWords(double seconds) {
  const auto whole = static_cast<std::uint64_t>(std::llround(seconds));
  if (whole < 100) return std::to_string(whole) + " s";
  const std::uint64_t minutes = (whole + 30) / 60;
  if (minutes < 100) return std::to_string(minutes) + " min";
  return std::to_string(minutes / 60) + " h " + std::to_string(minutes % 60) + " min";
}

}  // namespace

std::string progressText(std::uint64_t done, std::uint64_t total, double seconds) {
  std::string text = std::to_string(done);
  if (total >= done && total > 0) text += " of " + std::to_string(total);
  text += " files";
  if (seconds <= 0 || done == 0) return text;
  const double rate = static_cast<double>(done) / seconds;
  text += ", " + std::to_string(std::llround(rate)) + " files/s";
  if (total >= done && total > 0) text += ", " + inWords(static_cast<double>(total - done) / rate) + " left";
  return text;
}

namespace {

// Whether a line can be rewritten.
bool isDumb() {
  const char* const terminal = std::getenv("TERM");
  return terminal != nullptr && std::string_view(terminal) == "dumb";
}

}  // namespace

Progress::Progress()
    : isShown_(isTerminal(stderr) && !isDumb()), began_(Clock::now()), next_(began_ + std::chrono::milliseconds(500)) {}

void Progress::count() {
  ++done_;
  if (!isShown_) return;
  if (const auto now = Clock::now(); now >= next_) show(now);
}

void Progress::show(Clock::time_point now) {
  const double seconds = std::chrono::duration<double>(now - began_).count();
  (void)std::fprintf(stderr, "\r\x1b[K%s", progressText(done_, total_, seconds).c_str());
  (void)std::fflush(stderr);
  isLineThere_ = true;
  next_ = now + std::chrono::milliseconds(200);
}

void Progress::clear() {
  if (!isLineThere_) return;
  (void)std::fputs("\r\x1b[K", stderr);
  (void)std::fflush(stderr);
  isLineThere_ = false;
}

}  // namespace torvio
