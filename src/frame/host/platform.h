// What the library asks of the operating system, once for each system: the only place where a
// description of the host belongs.
#pragma once
#include <cstdint>
#include <cstdio>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace oldtorvio::frame {

// Open files close with their owner. A file that was written is closed with close(), whose answer
// may be the first to tell that the disk is full.
class File {
 public:
  // Null paths, folders and files that cannot be opened give a closed File.
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

// Whether a folder was opened as if it were a file.
bool isFolder(std::FILE* file) noexcept;
// Bytes of a regular file, nothing for a pipe or device.
std::optional<std::uint64_t> sizeOfFile(std::FILE* file) noexcept;

// The value of a key of "win.ini", at most `size` - 1 characters, empty when there is none. Section
// and key without regard to case; outer blanks and one pair of quotes are taken off.
std::string profileText(std::string_view section, std::string_view key, std::size_t size);

// The paths of special tools are separated by "\". Where the host's separator is "/", a path is tried as it
// is first, and with each "\" as "/" second.
//
// Calls visit(name, path) for each file of the folder (no folders) in the system's order until it returns
// false. `path` opens the file on this host.
void walkFolder(const std::string& folder,
                const std::function<bool(const std::string& name, const std::string& path)>& visit);
// The path under which this host has the file (or folder), nothing if it has none.
std::optional<std::string> findFile(const std::string& path);

}  // namespace oldtorvio::frame
