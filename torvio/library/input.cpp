#include "torvio/library/input.h"

#include <cerrno>
#include <system_error>

#include "src/frame/host/platform.h"
#include "torvio/explain/file_names.h"
#include "torvio/explain/kind_names.h"
#include "torvio/library/answer.h"
#include "torvio/values/json.h"

#if defined(_WIN32)
#include <windows.h>
#endif

namespace oldtorvio::library {
namespace {

std::string listed(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
  return text;
}

}  // namespace

// The locale of the process determines the language and code page of the system's messages.
std::string systemError(int error) { return values::fileNameAsUtf8(std::generic_category().message(error)); }

OpenFile::OpenFile(const char* path) {
#if defined(_WIN32)
  const std::wstring name = explain::systemName(path);
  if (name.empty()) {
    error_ = *path == '\0' ? "cannot be opened: the path is empty" : "cannot be opened: the path is not UTF-8";
    return;
  }
  file_.reset(::_wfopen(name.c_str(), L"rbN"));
  const int error = errno;
  const DWORD attributes = file_ ? 0 : ::GetFileAttributesW(name.c_str());
  const bool isFolder = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
#else
  file_.reset(std::fopen(path, "rbe"));
  const int error = errno;
  const bool isFolder = file_ && frame::isFolder(file_.get());
#endif
  if (isFolder) {
    file_.reset();
    error_ = "is a folder";
  } else if (!file_) {
    error_ = "cannot be opened: " + systemError(error);
  } else {
    // The readers have their own buffers.
    (void)std::setvbuf(file_.get(), nullptr, _IONBF, 0);
  }
}

Input::Input(const torvio_input* input) {
  if (input == nullptr) fail(badArgument("input is NULL"));
  input_ = *input;
  if (input_.path == nullptr && input_.data == nullptr) fail(badArgument("input has neither a path nor data"));
  if (input_.path != nullptr && input_.data != nullptr) fail(badArgument("input has both a path and data"));
  if (input_.name != nullptr)
    name_ = input_.name;
  else if (input_.path != nullptr)
    name_ = input_.path;
  if (input_.kind != nullptr) {
    kind_ = explain::kindNamed(input_.kind);
    if (!kind_) fail(badArgument("the kind of the input is not one of " + listed(explain::kindNames())));
  }
  if (input_.encoding != nullptr) {
    const auto encoding = values::TextEncoding::named(input_.encoding);
    if (!encoding)
      fail(badArgument("the encoding of the input is not one of " + listed(values::TextEncoding::names())));
    encoding_ = *encoding;
  }
}

std::string Input::encodingName() const {
  return input_.encoding != nullptr ? input_.encoding : std::string(values::kDefaultEncoding);
}

InputBytes::InputBytes(const Input& input) {
  if (input.path() == nullptr) {
    bytes_ = input.memory();
    return;
  }
  const OpenFile file(input.path());
  error_ = file.error();
  if (!error_.empty()) return;
  content_.emplace(file.handle());
  error_ = values::fileNameAsUtf8(content_->error());
  bytes_ = content_->bytes();
}

std::span<const std::byte> InputBytes::bytesOrFail() const {
  if (!error_.empty()) fail(notRead(error_));
  return bytes_;
}

}  // namespace oldtorvio::library
