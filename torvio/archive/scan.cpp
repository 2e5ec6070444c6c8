#include "torvio/archive/scan.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <filesystem>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>
#include <utility>

#include "torvio/archive/host_files.h"
#include "torvio/explain/file_content.h"

namespace oldtorvio::archive {
namespace {

std::string inWords(const std::error_code& error) { return std::generic_category().message(error.value()); }

bool endsWithSeparator(const std::string& path) {
  return path.ends_with('/') || (std::filesystem::path::preferred_separator == '\\' && path.ends_with('\\'));
}

}  // namespace

// ---- which files -------------------------------------------------------------------------------------

// One folder of the walk. It is closed as soon as its names are read, so that a deep tree does not use up all the files
// that a process may open.
class FileNames::Folder {
 public:
  explicit Folder(const std::string& path) : path_(endsWithSeparator(path) ? path : path + "/") {
    std::error_code error;
    entries_.emplace(path, error);
    if (error) error_ = "cannot be opened: " + inWords(error);
  }

  const std::string& error() const { return error_; }

  // The next file; else the next folder.
  std::optional<FoundFile> nextFile() {
    if (files_.empty()) return std::nullopt;
    const File file = std::move(files_.back());
    files_.pop_back();
    if (!file.error) return FoundFile{path_ + file.name, false, {}, false};
    return FoundFile{path_ + file.name, false, "cannot be opened: " + inWords(file.error), true};
  }
  std::optional<std::string> nextFolder() {
    if (folders_.empty()) return std::nullopt;
    std::string path = path_ + folders_.back();
    folders_.pop_back();
    return path;
  }
  // Reads more names; call it after all others were taken. False at the end.
  bool readMore() {
    files_.clear();
    folders_.clear();
    std::error_code error;
    for (std::size_t count = 0; count < kSortedNames; ++count) {
      const auto entry = entries_->next(error);
      if (error) error_ = "cannot be read to its end: " + inWords(error);
      if (!entry) break;
      if (entry->type == FolderEntries::Type::file || entry->error) files_.push_back({entry->name, entry->error});
      if (entry->type == FolderEntries::Type::folder) folders_.push_back(entry->name);
    }
    // The next name is taken from the back.
    std::sort(files_.begin(), files_.end(), [](const File& a, const File& b) { return a.name > b.name; });
    std::sort(folders_.begin(), folders_.end(), std::greater<>());
    return !files_.empty() || !folders_.empty() || !entries_->isAtEnd();
  }
  std::string takeError() { return std::exchange(error_, {}); }
  const std::string& path() const { return path_; }

 private:
  struct File {
    std::string name;
    std::error_code error;  // why it is not known whether it is a file
  };

  std::string path_;
  std::string error_;
  std::optional<FolderEntries> entries_;
  std::vector<File> files_;
  std::vector<std::string> folders_;
};

FileNames::FileNames(std::vector<std::string> paths) : paths_(std::move(paths)) {}
FileNames::FileNames(std::vector<std::string> paths, std::FILE* list, char separator)
    : paths_(std::move(paths)), list_(list), separator_(separator) {}
FileNames::~FileNames() = default;

std::optional<FoundFile> FileNames::next() {
  while (true) {
    if (folders_.empty()) {
      nameError_.clear();
      const auto root = nextRoot();
      if (!root) return std::nullopt;
      if (!nameError_.empty()) return FoundFile{*root, true, nameError_, false};
      if (!isFolder(*root)) return FoundFile{*root, true, {}, false};
      if (auto failed = enter(*root, true)) return failed;
      continue;
    }
    Folder& folder = *folders_.back();
    if (auto file = folder.nextFile()) return file;
    if (auto inner = folder.nextFolder()) {
      if (auto failed = enter(*inner, false)) return failed;
      continue;
    }
    const bool hasMore = folder.readMore();
    if (std::string error = folder.takeError(); !error.empty()) return FoundFile{folder.path(), false, error, true};
    if (!hasMore) folders_.pop_back();
  }
}

std::optional<FoundFile> FileNames::enter(const std::string& path, bool isNamed) {
  auto folder = std::make_unique<Folder>(path);
  if (!folder->error().empty()) return FoundFile{path, isNamed, folder->error(), true};
  folders_.push_back(std::move(folder));
  return std::nullopt;
}

std::optional<std::string> FileNames::nextRoot() {
  if (at_ < paths_.size()) return std::move(paths_[at_++]);
  while (list_ != nullptr) {
    std::string name;
    bool isTooLong = false, isEnd = false;
    while (true) {
      const int c = std::getc(list_);
      isEnd = c == EOF;
      if (isEnd || c == static_cast<unsigned char>(separator_)) break;
      isTooLong = isTooLong || name.size() == kLongestName;
      if (!isTooLong) name += static_cast<char>(c);
    }
    if (isEnd) {
      hasFailed_ = std::ferror(list_) != 0;
      list_ = nullptr;
      // A name that was read in part is dropped.
      if (hasFailed_) return std::nullopt;
    }
    if (kLinesEndWithCrLf && separator_ == '\n' && name.ends_with('\r')) name.pop_back();
    if (name.empty()) continue;
    if (isTooLong) nameError_ = "is not a file name: longer than " + std::to_string(kLongestName) + " bytes";
    if (name.find('\0') != std::string::npos) nameError_ = "is not a file name: it contains a NUL";
    return name;
  }
  return std::nullopt;
}

// ---- what they are -----------------------------------------------------------------------------------

namespace {

// Sets size and time of a regular file.
void setSizeAndTime(FileResult& result) {
  const auto measures = measuresOf(result.path);
  if (!measures) return;
  result.size = measures->size;
  result.modified = measures->modified;
}

// Several large files at a time could use up all memory.
constexpr std::uint64_t kLargeFile = 64U << 20U;
std::mutex largeFiles;

}  // namespace

bool isExcluded(const FoundFile& file, const ScanOptions& options) {
  return file.error.empty() && options.isExcluded && options.isExcluded(file.path);
}

FileResult measure(const FoundFile& file) {
  FileResult result;
  result.path = file.path;
  result.isNamed = file.isNamed;
  result.isFolder = file.isFolder;
  result.error = file.error;
  if (result.error.empty()) setSizeAndTime(result);
  return result;
}

std::optional<FileResult> withoutReading(const FileResult& measured, const ScanOptions& options) {
  if (!measured.error.empty()) return measured;
  if (!options.known || !measured.modified) return std::nullopt;
  auto known = options.known(measured);
  if (known) {
    known->path = measured.path;
    known->isNamed = measured.isNamed;
    known->isKnown = true;
  }
  return known;
}

FileResult examine(const FoundFile& file, const ScanOptions& options) {
  FileResult result;
  try {
    result = measure(file);
    if (auto known = withoutReading(result, options)) return std::move(*known);
    std::unique_lock<std::mutex> alone;
    if (result.size.value_or(0) >= kLargeFile) alone = std::unique_lock(largeFiles);
    const explain::FileContent content(result.path);
    result.error = content.error();
    if (result.error.empty()) examineContents(result, content.bytes(), options);
  } catch (const std::bad_alloc&) {
    result.path = file.path;
    result.isNamed = file.isNamed;
    result.verdict = Verdict::unreadable;
    result.error = "cannot be read: not enough memory";
  }
  return result;
}

// ---- several at a time -------------------------------------------------------------------------------

namespace {

std::size_t weightOf(const FileResult& result) {
  std::size_t weight = sizeof(FileResult) + result.path.size() + result.warnings.size() * 256;
  if (result.facts) weight += result.facts->parts.size() * 400 + result.facts->tools.size() * 200;
  return weight;
}

// Results wait here until those before them are taken. Its threads share it, and may outlive the scan.
class Pipeline {
 public:
  Pipeline(std::shared_ptr<FileNames> names, const ScanOptions& options)
      : names_(std::move(names)), options_(options), waiting_(kWindow) {}

  void work() {
    while (const auto next = nextName()) {
      std::optional<FileResult> result;
      std::exception_ptr error;
      try {
        result = examine(next->file, options_);
      } catch (...) {
        error = std::current_exception();
      }
      if (!put(next->number, std::move(result), error)) break;
    }
    const std::lock_guard lock(mutex_);
    --running_;
    changed_.notify_all();
  }

  // The next result in the order of the names; nothing after the last.
  std::optional<FileResult> take() {
    std::unique_lock lock(mutex_);
    std::optional<FileResult>& place = waiting_[taken_ % kWindow];
    changed_.wait(lock, [&] { return place || error_ || (isAtEnd_ && taken_ == named_); });
    if (error_) std::rethrow_exception(error_);
    if (!place) return std::nullopt;
    std::optional<FileResult> result = std::exchange(place, std::nullopt);
    ++taken_;
    weight_ -= weightOf(*result);
    hasRoom_.notify_all();
    return result;
  }

  void start() {
    const std::lock_guard lock(mutex_);
    ++running_;
  }
  void notStarted() {
    const std::lock_guard lock(mutex_);
    --running_;
  }
  // Asks the threads to end. Returns whether all of them have ended within a second.
  bool stop() {
    std::unique_lock lock(mutex_);
    isStopped_ = true;
    hasRoom_.notify_all();
    return changed_.wait_for(lock, std::chrono::seconds(1), [&] { return running_ == 0; });
  }

 private:
  static constexpr std::size_t kWindow = 256;
  static constexpr std::size_t kMostWeight = 16U << 20U;

  struct Numbered {
    std::uint64_t number;
    FoundFile file;
  };

  std::optional<Numbered> nextName() {
    // One thread at a time takes a name; the others may continue with their files.
    const std::lock_guard turn(namesMutex_);
    std::uint64_t number = 0;
    {
      std::unique_lock lock(mutex_);
      const auto hasRoom = [&] { return named_ == taken_ || (named_ - taken_ < kWindow && weight_ < kMostWeight); };
      hasRoom_.wait(lock, [&] { return hasRoom() || isStopped_ || isAtEnd_; });
      if (isStopped_ || isAtEnd_) return std::nullopt;
      number = named_;
    }
    std::optional<FoundFile> file;
    std::exception_ptr error;
    try {
      do file = names_->next();
      while (file && isExcluded(*file, options_));
    } catch (...) {
      error = std::current_exception();
    }
    const std::lock_guard lock(mutex_);
    if (isStopped_) return std::nullopt;
    if (error && !error_) error_ = error;
    if (!file) {
      isAtEnd_ = true;
      changed_.notify_all();
      return std::nullopt;
    }
    ++named_;
    return Numbered{number, std::move(*file)};
  }

  bool put(std::uint64_t number, std::optional<FileResult> result, const std::exception_ptr& error) {
    const std::lock_guard lock(mutex_);
    if (isStopped_) return false;
    if (error) {
      if (!error_) error_ = error;
      changed_.notify_all();
      return false;
    }
    weight_ += weightOf(*result);
    waiting_[number % kWindow] = std::move(result);
    if (number == taken_) changed_.notify_all();
    return true;
  }

  const std::shared_ptr<FileNames> names_;
  const ScanOptions options_;
  std::mutex namesMutex_;

  std::mutex mutex_;
  std::condition_variable changed_, hasRoom_;
  std::vector<std::optional<FileResult>> waiting_;  // by number, from taken_ to named_
  std::uint64_t named_ = 0, taken_ = 0;
  std::size_t weight_ = 0;  // roughly the bytes of the waiting results
  unsigned running_ = 0;
  bool isAtEnd_ = false, isStopped_ = false;
  std::exception_ptr error_;
};

void scanAlone(FileNames& names, const ScanOptions& options, const std::function<void(FileResult&)>& take) {
  while (const auto file = names.next()) {
    if (isExcluded(*file, options)) continue;
    FileResult result = examine(*file, options);
    take(result);
  }
}

}  // namespace

void scan(const std::shared_ptr<FileNames>& names, const ScanOptions& options,
          const std::function<void(FileResult&)>& take) {
  if (options.jobs <= 1) return scanAlone(*names, options, take);

  const auto pipeline = std::make_shared<Pipeline>(names, options);
  std::vector<std::thread> threads;
  // Joins the threads, or detaches them if one still waits for a pipe after an error.
  struct Ending {
    Pipeline& pipeline;
    std::vector<std::thread>& threads;
    ~Ending() {
      const bool haveEnded = pipeline.stop();
      for (std::thread& thread : threads) haveEnded ? thread.join() : thread.detach();
    }
  } const ending{*pipeline, threads};

  threads.reserve(options.jobs);
  for (unsigned i = 0; i < options.jobs; ++i) {
    pipeline->start();
    try {
      threads.emplace_back([pipeline] { pipeline->work(); });
    } catch (const std::system_error&) {
      // Fewer threads will do, or none.
      pipeline->notStarted();
      break;
    }
  }
  if (threads.empty()) return scanAlone(*names, options, take);
  while (auto result = pipeline->take()) take(*result);
}

}  // namespace oldtorvio::archive
