// Files of an archive, found and examined one after the other by several threads.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "torvio/archive/examine.h"

namespace oldtorvio::archive {

// ---- which files -------------------------------------------------------------------------------------

struct FoundFile {
  std::string path;
  bool isNamed = true;  // by the caller, not found in a folder
  std::string error;    // why a folder, or what may be one, cannot be read, or a name is not a file name
  bool isFolder = false;
};

// Walks files and folders. In a folder, its files come first and then its folders, each sorted by the bytes of their
// names; a folder of more than kSortedNames is sorted piece by piece, so that memory is bounded. Links to folders,
// pipes, sockets and devices are skipped unless they are named. Links to files are treated as files.
class FileNames {
 public:
  static constexpr std::size_t kSortedNames = 50'000;
  static constexpr std::size_t kLongestName = 65'536;

  explicit FileNames(std::vector<std::string> paths);
  // These paths and then the names in `list`, each followed by the separator. The list is read as names are needed, and
  // stays open. A line may end as lines of this system do.
  FileNames(std::vector<std::string> paths, std::FILE* list, char separator);
  FileNames(const FileNames&) = delete;
  FileNames& operator=(const FileNames&) = delete;
  ~FileNames();

  std::optional<FoundFile> next();
  // Whether the list could not be read to its end.
  bool hasFailed() const { return hasFailed_; }

 private:
  class Folder;

  std::optional<std::string> nextRoot();
  std::optional<FoundFile> enter(const std::string& path, bool isNamed);

  std::vector<std::string> paths_;
  std::size_t at_ = 0;
  std::FILE* list_ = nullptr;
  char separator_ = '\n';
  bool hasFailed_ = false;
  std::string nameError_;
  std::vector<std::unique_ptr<Folder>> folders_;  // the innermost is last
};

// ---- what they are -----------------------------------------------------------------------------------

struct ScanOptions : ExamineOptions {
  unsigned jobs = 1;
  // Called from several threads with path, time and size of a regular file; returns what an earlier run found, if
  // anything. The file is then not read.
  std::function<std::optional<FileResult>(const FileResult&)> known;
  // Called from several threads: whether to skip a file.
  std::function<bool(const std::string&)> isExcluded;
};

// Whether a scan skips the file.
bool isExcluded(const FoundFile& file, const ScanOptions& options);

// What is known before a file is read: name, size and time, or why it cannot be one. The verdict is not yet set.
FileResult measure(const FoundFile& file);
// The result for a file that need not be read, because an earlier run examined it or because it cannot be one.
std::optional<FileResult> withoutReading(const FileResult& measured, const ScanOptions& options);

FileResult examine(const FoundFile& file, const ScanOptions& options);

// Examines all files with options.jobs threads, each of which has one file in memory, and calls take(result) in the
// calling thread, in the order of the names. Memory is bounded however many files there are. If take() throws, no more
// files are opened. A thread that still waits for a pipe then keeps running; it touches nothing of the caller.
void scan(const std::shared_ptr<FileNames>& names, const ScanOptions& options,
          const std::function<void(FileResult&)>& take);

}  // namespace oldtorvio::archive
