#if !defined(_WIN32)
#include <sys/stat.h>

#include <chrono>
#include <filesystem>

#include "torvio/archive/host_files.h"

namespace oldtorvio::archive {

namespace fs = std::filesystem;

std::FILE* openFile(const std::string& name, const char* mode) { return std::fopen(name.c_str(), mode); }

bool existsFile(const std::string& name) {
  std::error_code error;
  return fs::exists(name, error);
}

bool isFolder(const std::string& name) {
  std::error_code error;
  return fs::status(name, error).type() == fs::file_type::directory;
}

bool isSameFile(const std::string& one, const std::string& other) {
  std::error_code error;
  return fs::equivalent(one, other, error) && !error;
}

std::optional<FileIdentity> identityOf(const std::string& name) {
  struct stat info {};
  if (::stat(name.c_str(), &info) != 0) return std::nullopt;
  return FileIdentity{info.st_dev, info.st_ino};
}
std::optional<FileIdentity> identityOf(std::FILE* file) {
  struct stat info {};
  if (::fstat(::fileno(file), &info) != 0) return std::nullopt;
  return FileIdentity{info.st_dev, info.st_ino};
}

std::string lastName(const std::string& path) { return path.substr(path.rfind('/') + 1); }

std::optional<FileMeasures> measuresOf(const std::string& name) {
  std::error_code error;
  const fs::directory_entry entry{fs::path(name), error};
  if (error || !entry.is_regular_file(error) || error) return std::nullopt;
  const auto size = entry.file_size(error);
  if (error) return std::nullopt;
  const auto time = entry.last_write_time(error);
  if (error) return std::nullopt;
  using std::chrono::duration_cast, std::chrono::nanoseconds;
  return FileMeasures{size,
                      duration_cast<nanoseconds>(std::chrono::file_clock::to_sys(time).time_since_epoch()).count()};
}

struct FolderEntries::Search {
  fs::directory_iterator at;
};

namespace {

FolderEntries::Type typeOf(const fs::directory_entry& entry, std::error_code& error) {
  fs::file_type type = entry.symlink_status(error).type();
  // Removed since it was listed.
  if (type == fs::file_type::not_found) error.clear();
  if (type == fs::file_type::directory) return FolderEntries::Type::folder;
  if (type == fs::file_type::symlink) {
    std::error_code ofTarget;
    type = entry.status(ofTarget).type();
    // The target does not exist, or the link leads to itself: reported, not skipped.
    if (type == fs::file_type::not_found || type == fs::file_type::none) type = fs::file_type::regular;
  }
  return type == fs::file_type::regular ? FolderEntries::Type::file : FolderEntries::Type::other;
}

}  // namespace

FolderEntries::FolderEntries(const std::string& folder, std::error_code& error)
    : search_(std::make_unique<Search>(Search{fs::directory_iterator(fs::path(folder), error)})) {
  if (error || search_->at == fs::directory_iterator()) search_.reset();
}

FolderEntries::~FolderEntries() = default;

std::optional<FolderEntries::Entry> FolderEntries::next(std::error_code& error) {
  if (!search_) return std::nullopt;
  const fs::directory_entry& found = *search_->at;
  Entry entry{found.path().filename().string(), Type::other, {}};
  entry.type = typeOf(found, entry.error);
  search_->at.increment(error);
  if (search_->at == fs::directory_iterator()) search_.reset();
  return entry;
}

}  // namespace oldtorvio::archive
#endif
