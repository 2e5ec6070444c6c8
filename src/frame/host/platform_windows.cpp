#if defined(_WIN32)
#include <io.h>
#include <sys/stat.h>
#include <windows.h>

#include <vector>

#include "src/frame/host/platform.h"

namespace oldtorvio::frame {

// Windows does not open folders as files.
bool isFolder(std::FILE*) noexcept { return false; }

std::optional<std::uint64_t> sizeOfFile(std::FILE* file) noexcept {
  struct _stati64 info {};
  if (::_fstati64(::_fileno(file), &info) != 0 || (info.st_mode & _S_IFMT) != _S_IFREG || info.st_size < 0)
    return std::nullopt;
  return static_cast<std::uint64_t>(info.st_size);
}

std::string profileText(std::string_view section, std::string_view key, std::size_t size) {
  std::vector<char> value(size);
  const DWORD length = ::GetPrivateProfileStringA(std::string(section).c_str(), std::string(key).c_str(), "",
                                                  value.data(), static_cast<DWORD>(size), "win.ini");
  return std::string(value.data(), length);
}

void walkFolder(const std::string& folder,
                const std::function<bool(const std::string& name, const std::string& path)>& visit) {
  struct Search {
    HANDLE handle;
    ~Search() {
      if (handle != INVALID_HANDLE_VALUE) (void)::FindClose(handle);
    }
  };
  WIN32_FIND_DATAA found{};
  const Search search{::FindFirstFileA((folder + "\\*").c_str(), &found)};
  if (search.handle == INVALID_HANDLE_VALUE) return;
  do {
    if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) continue;
    if (!visit(found.cFileName, folder + "\\" + found.cFileName)) return;
  } while (::FindNextFileA(search.handle, &found) != 0);
}

std::optional<std::string> findFile(const std::string& path) {
  return ::_access(path.c_str(), 0) == 0 ? std::optional(path) : std::nullopt;
}

}  // namespace oldtorvio::frame
#endif
