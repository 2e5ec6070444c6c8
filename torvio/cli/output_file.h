// A file that a command writes: complete under its name, or not there at all.
#pragma once
#include <cstdio>
#include <string>
#include <string_view>

namespace torvio {

// Writes to a temporary file beside `path`, which keep() renames; without it the temporary file is removed and what was
// at `path` stays. What is no ordinary file (a pipe, a device) is written directly; "-" and "" are standard output.
class OutputFile {
 public:
  explicit OutputFile(const std::string& path);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  // Throws OutputError as soon as a write fails.
  void write(std::string_view text);
  // Call it after the last write: some errors only show here.
  void keep();

 private:
  std::string path_, temporary_;  // without a temporary file, `path_` is written
  std::FILE* file_ = nullptr;     // none for standard output
};

// Whether the two names are one file.
bool isSameFile(const std::string& one, const std::string& other);

}  // namespace torvio
