// Files that a caller of torvio.h passes, by path or in memory.
#pragma once
#include <cstddef>
#include <cstdio>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "src/frame/file_kinds.h"
#include "torvio/explain/file_content.h"
#include "torvio/include/torvio.h"
#include "torvio/values/text_encoding.h"

namespace oldtorvio::library {

// The message of the system for an error, as UTF-8.
std::string systemError(int error);

// A file that is opened to be read, by a path in UTF-8.
class OpenFile {
 public:
  explicit OpenFile(const char* path);

  // Why it could not be opened; empty if it was.
  const std::string& error() const { return error_; }
  std::FILE* handle() const { return file_.get(); }

 private:
  struct Close {
    void operator()(std::FILE* file) const { (void)std::fclose(file); }
  };
  std::unique_ptr<std::FILE, Close> file_;
  std::string error_;
};

// The caller's torvio_input, checked. Fails if it is not valid.
class Input {
 public:
  explicit Input(const torvio_input* input);

  const char* path() const { return input_.path; }  // null for a file in memory
  std::span<const std::byte> memory() const { return {static_cast<const std::byte*>(input_.data), input_.size}; }
  const std::string& name() const { return name_; }
  std::optional<frame::FileKind> kind() const { return kind_; }
  const values::TextEncoding& encoding() const { return encoding_; }
  std::string encodingName() const;

 private:
  torvio_input input_;
  std::string name_;
  std::optional<frame::FileKind> kind_;
  values::TextEncoding encoding_;
};

// The bytes of an input, or why there are none.
class InputBytes {
 public:
  explicit InputBytes(const Input& input);

  const std::string& error() const { return error_; }
  std::span<const std::byte> bytes() const { return bytes_; }
  // Fails after an error.
  std::span<const std::byte> bytesOrFail() const;

 private:
  std::optional<explain::FileContent> content_;
  std::span<const std::byte> bytes_;
  std::string error_;
};

}  // namespace oldtorvio::library
