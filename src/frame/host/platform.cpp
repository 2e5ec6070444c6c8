#include "src/frame/host/platform.h"

namespace oldtorvio::frame {
namespace {

std::FILE* opened(const char* path, const char* mode) noexcept {
  std::FILE* file = path == nullptr ? nullptr : std::fopen(path, mode);
  // InStream and OutStream have buffers of their own; a second one would only cost a copy.
  if (file != nullptr) (void)std::setvbuf(file, nullptr, _IONBF, 0);
  return file;
}

}  // namespace

File File::openToRead(const char* path) noexcept {
  std::FILE* file = opened(path, "rb");
  if (file != nullptr && isFolder(file)) {
    (void)std::fclose(file);
    file = nullptr;
  }
  return File(file);
}

File File::openToWrite(const char* path) noexcept { return File(opened(path, "wb")); }

bool File::close() noexcept {
  std::FILE* file = handle_;
  handle_ = nullptr;
  return file == nullptr || std::fclose(file) == 0;
}

}  // namespace oldtorvio::frame
