// What torvio asks the operating system about files and folders, by names in UTF-8 on every host.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <system_error>

namespace oldtorvio::archive {

// std::fopen.
std::FILE* openFile(const std::string& name, const char* mode);

bool existsFile(const std::string& name);
bool isFolder(const std::string& name);
// Whether two names refer to the same file or folder.
bool isSameFile(const std::string& one, const std::string& other);
// What no other file or folder has at the same time, whatever its name is.
struct FileIdentity {
  std::uint64_t device = 0, number = 0;
  bool operator==(const FileIdentity&) const = default;
};
std::optional<FileIdentity> identityOf(const std::string& name);
std::optional<FileIdentity> identityOf(std::FILE* file);
// The name after the last folder.
std::string lastName(const std::string& path);

// Whether lines of text files end with "\r\n". If so, no file name contains either character.
#if defined(_WIN32)
inline constexpr bool kLinesEndWithCrLf = true;
#else
inline constexpr bool kLinesEndWithCrLf = false;
#endif

struct FileMeasures {
  std::uint64_t size = 0;
  std::int64_t modified = 0;  // in nanoseconds since 1970
};
// Size and time of a regular file; nothing for anything else.
std::optional<FileMeasures> measuresOf(const std::string& name);

// The entries of a folder, in the order of the system.
class FolderEntries {
 public:
  enum class Type { file, folder, other };  // a link to a folder, a pipe and a device are other
  struct Entry {
    std::string name;
    Type type = Type::other;
    std::error_code error;  // why the type is not known
  };

  // Sets the error if the folder cannot be opened.
  FolderEntries(const std::string& folder, std::error_code& error);
  FolderEntries(const FolderEntries&) = delete;
  FolderEntries& operator=(const FolderEntries&) = delete;
  ~FolderEntries();

  // The next entry; nothing after the last. Sets the error if the folder cannot be read further.
  std::optional<Entry> next(std::error_code& error);
  bool isAtEnd() const { return search_ == nullptr; }

 private:
  struct Search;
  std::unique_ptr<Search> search_;  // none at the end: the folder is closed then
};

}  // namespace oldtorvio::archive
