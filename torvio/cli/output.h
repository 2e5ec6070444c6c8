// Output of torvio: lost output is an error, and file names cannot break lines.
#pragma once
#include <exception>
#include <string>
#include <string_view>
#include <utility>

#include "torvio/values/text_encoding.h"

namespace torvio {

// Output that could not be written.
class OutputError : public std::exception {
 public:
  explicit OutputError(int error);
  // An error with a text instead of a number of the system.
  explicit OutputError(std::string text) : error_(0), text_(std::move(text)) {}
  const char* what() const noexcept override { return text_.c_str(); }
  // Whether the reader of a pipe has closed it, as `head` does: no message is printed then.
  bool isClosedPipe() const;

 private:
  int error_;
  std::string text_;
};

// Writes to standard output. Throws OutputError as soon as a write fails, which ends a long run.
void print(std::string_view text);
// Call it after the last print(): some errors only show when the output is flushed and closed.
void finishOutput();

// Prints "torvio: " and the text on standard error, after flushing standard output.
void printError(std::string_view text);

using oldtorvio::values::onOneLine;

}  // namespace torvio
