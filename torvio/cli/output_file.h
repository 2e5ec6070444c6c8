// Files that commands create.
#pragma once
#include <cstddef>
#include <cstdio>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "torvio/archive/host_files.h"

namespace torvio {

// A file that appears under its name once it is complete: until then it has another name in the same folder. A file
// of that name is replaced, but not a folder, device or link, and a link that appears in the meantime is not followed.
// Except on Windows, the file beside it is removed if SIGINT, SIGTERM or SIGHUP ends the process.
class OutputFile {
 public:
  explicit OutputFile(const std::string& path);
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  // Removes the file unless it was committed.
  ~OutputFile();

  // Why it could not be created, written or committed, as a text to print after its name; empty if it could.
  const std::string& error() const { return error_; }
  // Unbuffered; null after an error.
  std::FILE* handle() const { return file_; }
  // Writes all of the file, reads it again and compares the two. False if that fails.
  bool write(std::span<const std::byte> bytes);
  // Closes the file and gives it its name. False if that fails: then the file of that name is as it was.
  bool commit();

 private:
  class Place;  // a folder and two names in it

  void fail(const std::string& what, int error);

  std::unique_ptr<Place> place_;
  std::FILE* file_ = nullptr;
  std::string error_;
};

// Text for a file that appears once it is complete, or for standard output: "" and "-". Each member throws OutputError,
// which names the reason but not the file.
class OutputText {
 public:
  explicit OutputText(const std::string& path);

  void write(std::string_view text);
  // Call it after the last write.
  void commit();

 private:
  std::optional<OutputFile> file_;  // none for standard output
};

using oldtorvio::archive::isSameFile;

}  // namespace torvio
