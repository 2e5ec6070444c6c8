#if defined(_WIN32)
#include <windows.h>

#include <cerrno>
#include <system_error>

#include "torvio/explain/file_content.h"
#include "torvio/explain/file_names.h"

namespace oldtorvio::explain {

// Unlike the library, which takes only short names in the code page of the system.
FileContent::FileContent(const std::string& path, std::uint64_t largestMiB) {
  const std::wstring name = systemName(path);
  const DWORD attributes = ::GetFileAttributesW(name.c_str());
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
    error_ = "is a folder";
    return;
  }
  errno = ENOENT;
  std::FILE* const file = name.empty() ? nullptr : ::_wfopen(name.c_str(), L"rbN");
  if (file == nullptr) {
    error_ = "cannot be opened: " + std::generic_category().message(errno);
    return;
  }
  // It is read in large blocks.
  (void)std::setvbuf(file, nullptr, _IONBF, 0);
  try {
    readAll(file, largestMiB);
  } catch (...) {
    (void)std::fclose(file);
    throw;
  }
  (void)std::fclose(file);
}

}  // namespace oldtorvio::explain
#endif
