#if defined(_WIN32)
#include <io.h>
#include <windows.h>

#include <cerrno>

#include "torvio/archive/host_files.h"
#include "torvio/explain/file_names.h"

namespace oldtorvio::archive {
namespace {

using explain::narrowName, explain::systemName, explain::wideName;

// As one of the errors that have the same text on all hosts.
std::error_code lastError() {
  const std::error_code error(static_cast<int>(::GetLastError()), std::system_category());
  const std::error_condition condition = error.default_error_condition();
  if (condition.category() != std::generic_category()) return std::make_error_code(std::errc::io_error);
  return {condition.value(), std::generic_category()};
}

std::optional<BY_HANDLE_FILE_INFORMATION> informationOf(HANDLE handle) {
  BY_HANDLE_FILE_INFORMATION found{};
  if (handle == INVALID_HANDLE_VALUE || ::GetFileType(handle) != FILE_TYPE_DISK ||
      ::GetFileInformationByHandle(handle, &found) == 0)
    return std::nullopt;
  return found;
}

class Handle {
 public:
  // For the attributes of a file or folder.
  explicit Handle(const std::string& name)
      : handle_(::CreateFileW(systemName(name).c_str(), FILE_READ_ATTRIBUTES,
                              FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                              FILE_FLAG_BACKUP_SEMANTICS, nullptr)) {}
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  ~Handle() {
    if (handle_ != INVALID_HANDLE_VALUE) (void)::CloseHandle(handle_);
  }

  std::optional<BY_HANDLE_FILE_INFORMATION> information() const { return informationOf(handle_); }

 private:
  HANDLE handle_;
};

bool isFolder(const BY_HANDLE_FILE_INFORMATION& about) {
  return (about.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

std::uint64_t joined(DWORD high, DWORD low) { return std::uint64_t{high} << 32U | low; }

FileIdentity identityIn(const BY_HANDLE_FILE_INFORMATION& about) {
  return {about.dwVolumeSerialNumber, joined(about.nFileIndexHigh, about.nFileIndexLow)};
}

}  // namespace

std::FILE* openFile(const std::string& name, const char* mode) {
  const std::wstring wide = systemName(name);
  if (wide.empty()) {
    errno = ENOENT;
    return nullptr;
  }
  return ::_wfopen(wide.c_str(), wideName(mode).c_str());
}

bool existsFile(const std::string& name) {
  return ::GetFileAttributesW(systemName(name).c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool isFolder(const std::string& name) {
  const DWORD attributes = ::GetFileAttributesW(systemName(name).c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool isSameFile(const std::string& one, const std::string& other) {
  // Open together: otherwise the number of the first could become that of another file.
  const Handle first(one), second(other);
  const auto a = first.information(), b = second.information();
  return a && b && a->dwVolumeSerialNumber == b->dwVolumeSerialNumber && a->nFileIndexHigh == b->nFileIndexHigh &&
         a->nFileIndexLow == b->nFileIndexLow;
}

std::optional<FileIdentity> identityOf(const std::string& name) {
  const Handle file(name);
  const auto about = file.information();
  return about ? std::optional(identityIn(*about)) : std::nullopt;
}
std::optional<FileIdentity> identityOf(std::FILE* file) {
  const auto about = informationOf(reinterpret_cast<HANDLE>(::_get_osfhandle(::_fileno(file))));
  return about ? std::optional(identityIn(*about)) : std::nullopt;
}

std::string lastName(const std::string& path) { return path.substr(path.find_last_of("/\\:") + 1); }

std::optional<FileMeasures> measuresOf(const std::string& name) {
  const Handle file(name);
  const auto about = file.information();
  if (!about || isFolder(*about)) return std::nullopt;
  // The system counts from 1601, in steps of 100 ns.
  constexpr std::int64_t kFrom1601To1970 = 116'444'736'000'000'000, kStep = 100;
  const auto time =
      static_cast<std::int64_t>(joined(about->ftLastWriteTime.dwHighDateTime, about->ftLastWriteTime.dwLowDateTime));
  return FileMeasures{joined(about->nFileSizeHigh, about->nFileSizeLow), (time - kFrom1601To1970) * kStep};
}

struct FolderEntries::Search {
  HANDLE handle = INVALID_HANDLE_VALUE;
  WIN32_FIND_DATAW found{};  // the next entry

  Search() = default;
  Search(const Search&) = delete;
  Search& operator=(const Search&) = delete;
  ~Search() {
    if (handle != INVALID_HANDLE_VALUE) (void)::FindClose(handle);
  }
};

namespace {

FolderEntries::Type typeOf(const WIN32_FIND_DATAW& found) {
  if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) return FolderEntries::Type::file;
  const bool isLink = (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
                      (found.dwReserved0 == IO_REPARSE_TAG_SYMLINK || found.dwReserved0 == IO_REPARSE_TAG_MOUNT_POINT);
  return isLink ? FolderEntries::Type::other : FolderEntries::Type::folder;
}

}  // namespace

FolderEntries::FolderEntries(const std::string& folder, std::error_code& error) : search_(std::make_unique<Search>()) {
  // With these two characters the name may be a long one, see systemName().
  search_->handle =
      ::FindFirstFileW(systemName(folder + (folder.ends_with('/') ? "*" : "/*")).c_str(), &search_->found);
  if (search_->handle != INVALID_HANDLE_VALUE) return;
  // The root of an empty drive has no entries, not even ".".
  if (::GetLastError() != ERROR_FILE_NOT_FOUND) error = lastError();
  search_.reset();
}

FolderEntries::~FolderEntries() = default;

std::optional<FolderEntries::Entry> FolderEntries::next(std::error_code& error) {
  while (search_) {
    const std::wstring_view name = search_->found.cFileName;
    const bool isEntry = name != L"." && name != L"..";
    Entry entry{narrowName(name), typeOf(search_->found), {}};
    if (::FindNextFileW(search_->handle, &search_->found) == 0) {
      if (::GetLastError() != ERROR_NO_MORE_FILES) error = lastError();
      search_.reset();
    }
    if (isEntry) return entry;
  }
  return std::nullopt;
}

}  // namespace oldtorvio::archive
#endif
