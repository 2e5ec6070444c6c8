// The result of a scan as an SQLite database, see docs/catalogue.md.
#pragma once
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "torvio/archive/scan.h"

namespace oldtorvio::archive {

// A catalogue that cannot be opened, read or written.
class CatalogueError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A later run adds to the file of an earlier one. What add() was called for is written in transactions of many files;
// a process that ends without finish() loses at most the last of them, never half a file.
class Catalogue {
 public:
  // Whether this build has SQLite. Without it the constructor throws.
  static bool isAvailable();

  // Opens the catalogue, or creates it if there is no file or an empty one. Any other file is refused and unchanged.
  // `settings` describes how files are judged: files that were judged in another way are unknown. Here and later, a lock
  // of another process that stays longer than `longestWait` is an error.
  Catalogue(const std::string& path, const std::string& settings,
            std::chrono::milliseconds longestWait = std::chrono::seconds(10));
  Catalogue(const Catalogue&) = delete;
  Catalogue& operator=(const Catalogue&) = delete;
  // Writes what was added.
  ~Catalogue();

  // What is known of a file of that path, if it has the same size and time. For any thread.
  std::optional<FileResult> find(const FileResult& file) const;
  // Whether this is the catalogue itself or a file that SQLite keeps beside it, by any path. Such a file must not be
  // opened: SQLite would lose its locks when it is closed. For any thread.
  bool isOwnFile(const std::string& path) const;

  // Replaces what is known of that path.
  void add(FileResult result);

  // Writes what was added, and removes the files in these folders that this run has not seen. Call it after a complete
  // scan; the folders are those of which all was read.
  void finish(const std::vector<std::string>& completeFolders);

 private:
  class Database;
  std::unique_ptr<Database> database_;
};

// The path as a catalogue has it: absolute, without "." and doubled separators.
std::string cataloguePath(const std::string& path);

// What decides about a verdict and the rows of a file, apart from the file: the settings of a catalogue.
std::string catalogueSettings(std::string_view torvioVersion, const JudgeOptions& judge, std::string_view encoding);

// The paths that are folders of which everything was read, for finish(). Of those in `unread`, not all was.
std::vector<std::string> completeFolders(const std::vector<std::string>& paths, const std::vector<std::string>& unread);

}  // namespace oldtorvio::archive
