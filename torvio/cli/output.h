// What torvio prints: lost output is an error, and a name stays on its line.
#pragma once
#include <exception>
#include <string>
#include <string_view>

namespace torvio {

// Output that could not be written.
class OutputError : public std::exception {
 public:
  explicit OutputError(int error);
  const char* what() const noexcept override { return text_.c_str(); }
  // Whether the reader of a pipe has closed it, as `head` does: not worth a message.
  bool isClosedPipe() const;

 private:
  int error_;
  std::string text_;
};

// Writes to standard output. Throws OutputError as soon as a write fails, so that a long run ends
// there.
void print(std::string_view text);
// To be called after the last print(): some errors only show when the output is flushed and closed.
void finishOutput();

// "torvio: " and the text on standard error, after what has been printed so far.
void printError(std::string_view text);

// The text with its control characters escaped ("\n", "\x1b"), so that it takes one line and does
// nothing to a terminal. Backslashes stay as they are: file names of Windows are full of them.
std::string onOneLine(std::string_view text);

}  // namespace torvio
