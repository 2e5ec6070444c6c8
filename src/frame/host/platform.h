// All that the library asks of the operating system, with one implementation for each. Code that depends on the host
// belongs here only.
#pragma once
#include <cstdint>
#include <cstdio>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace oldtorvio::frame {

// An open file, closed by its destructor. Call close() for a file that was written: a full disk may only show there.
class File {
 public:
  // Returns a closed File for a null path, for a folder and if the file cannot be opened.
  static File openToRead(const char* path) noexcept;
  static File openToWrite(const char* path) noexcept;

  File(const File&) = delete;
  File& operator=(const File&) = delete;
  ~File() { (void)close(); }

  explicit operator bool() const { return handle_ != nullptr; }
  std::FILE* handle() const { return handle_; }
  bool close() noexcept;

 private:
  explicit File(std::FILE* handle) : handle_(handle) {}
  std::FILE* handle_;
};

// Whether `file` is a folder that the system opened like a file.
bool isFolder(std::FILE* file) noexcept;
// The size of a regular file; nothing for a pipe or device.
std::optional<std::uint64_t> sizeOfFile(std::FILE* file) noexcept;

// The value of a key in "win.ini", at most `size` - 1 characters; empty if there is none. The case of section and key
// is ignored; outer blanks and one pair of quotes are removed.
std::string profileText(std::string_view section, std::string_view key, std::size_t size);

// Paths of special tools use "\" as their separator. A host whose separator is "/" tries a path unchanged first, then
// with "/" in place of each "\".

// Calls visit(name, path) for each file of the folder, in the system's order, until it returns false. Subfolders are
// skipped. `path` opens the file on this host.
void walkFolder(const std::string& folder,
                const std::function<bool(const std::string& name, const std::string& path)>& visit);
// The path under which the file or folder exists on this host; nothing if it does not exist.
std::optional<std::string> findFile(const std::string& path);

}  // namespace oldtorvio::frame
