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

// A later run adds to the file of an earlier one. Results passed to add() are written in transactions of many files;
// a process that ends without finish() loses at most the last transaction, never half of a result.
class Catalogue {
 public:
  // Whether this build has SQLite. Without it the constructor throws.
  static bool isAvailable();

  // Opens the catalogue, or creates it if there is no file or an empty one. Any other file is refused and unchanged.
  // `settings` describes how files are judged: files that were judged in another way are unknown. Here and later, a
  // lock that another process holds longer than `longestWait` is an error.
  Catalogue(const std::string& path, const std::string& settings,
            std::chrono::milliseconds longestWait = std::chrono::seconds(10));
  Catalogue(const Catalogue&) = delete;
  Catalogue& operator=(const Catalogue&) = delete;
  // Writes what was added.
  ~Catalogue();

  // What is known of the file of that path, if it has the same size and time. May be called from any thread.
  std::optional<FileResult> find(const FileResult& file) const;
  // Whether this is the catalogue itself or a file that SQLite keeps beside it, by any path. Such a file must not be
  // opened: SQLite would lose its locks when it is closed. May be called from any thread.
  bool isOwnFile(const std::string& path) const;

  // Replaces what is known of that path.
  void add(FileResult result);

  // Writes what was added, and removes the files in these folders that this run has not seen. Call it after a complete
  // scan, with the folders that were read completely.
  void finish(const std::vector<std::string>& completeFolders);

 private:
  class Database;
  std::unique_ptr<Database> database_;
};

// The path as a catalogue stores it: absolute, without "." and doubled separators.
std::string cataloguePath(const std::string& path);

// The settings of a catalogue: all that affects the verdict and the rows of a file, except the file itself.
std::string catalogueSettings(std::string_view torvioVersion, const JudgeOptions& judge, std::string_view encoding);

// The paths that are folders and were read completely, for finish(). Those in `unread` were not.
std::vector<std::string> completeFolders(const std::vector<std::string>& paths, const std::vector<std::string>& unread);

}  // namespace oldtorvio::archive
