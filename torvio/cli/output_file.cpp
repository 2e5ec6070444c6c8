#include "torvio/cli/output_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <random>
#include <system_error>

#include "torvio/cli/output.h"

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>

#include "torvio/explain/file_names.h"
#else
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace torvio {
namespace {

std::string temporaryName() {
  static constexpr char kHex[] = "0123456789abcdef";
  std::random_device random;
  std::string name = ".torvio-";
  for (int i = 0; i < 4; ++i)
    for (std::uint32_t bits = random(), k = 0; k < 4; ++k, bits >>= 4U) name += kHex[bits & 0xFU];
  return name + ".tmp";
}

}  // namespace

#if defined(_WIN32)

using oldtorvio::explain::systemName;

class OutputFile::Place {
 public:
  explicit Place(const std::string& path) : path_(systemName(path)) {
    const std::size_t separator = path.find_last_of("/\\:");
    temporary_ = systemName(path.substr(0, separator == std::string::npos ? 0 : separator + 1) + temporaryName());
  }

  // What keeps the name from being replaced.
  std::string obstacle() const {
    const DWORD attributes = ::GetFileAttributesW(path_.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return "";
    if ((attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0) return "is a link";
    return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? "is a folder" : "";
  }
  std::FILE* create() const {
    const int file =
        ::_wopen(temporary_.c_str(), _O_RDWR | _O_CREAT | _O_EXCL | _O_BINARY | _O_NOINHERIT, _S_IREAD | _S_IWRITE);
    return file < 0 ? nullptr : ::_fdopen(file, "w+b");
  }
  bool rename() const {
    if (::MoveFileExW(temporary_.c_str(), path_.c_str(), MOVEFILE_REPLACE_EXISTING) != 0) return true;
    errno = EACCES;
    return false;
  }
  void remove() const { (void)::DeleteFileW(temporary_.c_str()); }

 private:
  std::wstring path_, temporary_;
};

#else

// The temporary file of the command, which a signal that ends the process removes. A command has one at a time.
constexpr std::size_t kLongestName = 64;
volatile int unfinishedFolder = -1;
char unfinishedName[kLongestName];

extern "C" void removeUnfinished(int signal) {
  if (unfinishedFolder >= 0) (void)::unlinkat(unfinishedFolder, unfinishedName, 0);
  // The default action is back, and is taken when this returns.
  (void)::raise(signal);
}

void removeOnSignal(int folder, const std::string& name) {
  unfinishedFolder = -1;
  unfinishedName[name.copy(unfinishedName, kLongestName - 1)] = '\0';
  unfinishedFolder = folder;
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction before {};
    // One that is ignored stays so, as after nohup.
    if (::sigaction(signal, nullptr, &before) != 0 || before.sa_handler != SIG_DFL) continue;
    struct sigaction action {};
    action.sa_handler = removeUnfinished;
    action.sa_flags = static_cast<int>(SA_RESETHAND);
    (void)::sigaction(signal, &action, nullptr);
  }
}

// The folder is opened once: both names are in it, even if its path leads elsewhere later.
class OutputFile::Place {
 public:
  explicit Place(const std::string& path) {
    const std::size_t separator = path.rfind('/');
    const std::string folder = separator == std::string::npos ? "." : path.substr(0, separator + 1);
    name_ = separator == std::string::npos ? path : path.substr(separator + 1);
    if (name_.empty()) name_ = ".";
    folder_ = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  }
  Place(const Place&) = delete;
  Place& operator=(const Place&) = delete;
  ~Place() {
    unfinishedFolder = -1;
    if (folder_ >= 0) (void)::close(folder_);
  }

  // What keeps the name from being replaced.
  std::string obstacle() const {
    struct stat info {};
    if (folder_ < 0 || ::fstatat(folder_, name_.c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0) return "";
    if (S_ISLNK(info.st_mode)) return "is a link";
    if (S_ISDIR(info.st_mode)) return "is a folder";
    return S_ISREG(info.st_mode) ? "" : "is not a regular file";
  }
  std::FILE* create() const {
    if (folder_ < 0) return nullptr;
    constexpr mode_t kForAll = 0666, kPermissions = 0777;
    struct stat before {};
    const bool isReplacing = ::fstatat(folder_, name_.c_str(), &before, AT_SYMLINK_NOFOLLOW) == 0;
    removeOnSignal(folder_, temporary_);
    const int file = ::openat(folder_, temporary_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kForAll);
    if (file < 0) return nullptr;
    // The new file has the permissions of the one that it replaces.
    if (isReplacing && S_ISREG(before.st_mode)) (void)::fchmod(file, before.st_mode & kPermissions);
    return ::fdopen(file, "w+b");
  }
  bool rename() const { return ::renameat(folder_, temporary_.c_str(), folder_, name_.c_str()) == 0; }
  void remove() const { (void)::unlinkat(folder_, temporary_.c_str(), 0); }

 private:
  int folder_ = -1;
  std::string name_, temporary_ = temporaryName();
};

#endif

OutputFile::OutputFile(const std::string& path) : place_(std::make_unique<Place>(path)) {
  const int opened = errno;
  error_ = place_->obstacle();
  if (!error_.empty()) return;
  errno = opened;
  file_ = place_->create();
  if (file_ == nullptr) {
    fail("cannot be created", errno);
    return;
  }
  // The writers have their own buffers.
  (void)std::setvbuf(file_, nullptr, _IONBF, 0);
}

OutputFile::~OutputFile() {
  if (file_ == nullptr) return;
  (void)std::fclose(file_);
  place_->remove();
}

bool OutputFile::write(std::span<const std::byte> bytes) {
  if (file_ == nullptr) return false;
  if (std::fwrite(bytes.data(), 1, bytes.size(), file_) != bytes.size()) {
    fail("cannot be written", errno);
    return false;
  }
  constexpr std::size_t kStep = 64U << 10U;
  const auto read = std::make_unique_for_overwrite<std::byte[]>(kStep);
  std::rewind(file_);
  for (std::size_t from = 0, got = kStep; got == kStep; from += got) {
    got = std::fread(read.get(), 1, kStep, file_);
    const auto expected = bytes.subspan(from, std::min(kStep, bytes.size() - from));
    if (got == expected.size() && std::equal(expected.begin(), expected.end(), read.get())) continue;
    error_ = "cannot be written: what is read back is not what was written";
    return false;
  }
  return true;
}

bool OutputFile::commit() {
  if (file_ == nullptr) return false;
  const bool isClosed = std::fclose(file_) == 0;
  file_ = nullptr;
  if (isClosed && place_->rename()) return true;
  fail("cannot be written", errno);
  place_->remove();
  return false;
}

void OutputFile::fail(const std::string& what, int error) {
  error_ = what + ": " + std::generic_category().message(error);
}

OutputText::OutputText(const std::string& path) {
  if (path.empty() || path == "-") return;
  file_.emplace(path);
  if (!file_->error().empty()) throw OutputError(file_->error());
}

void OutputText::write(std::string_view text) {
  if (!file_) return print(text);
  if (std::fwrite(text.data(), 1, text.size(), file_->handle()) != text.size()) throw OutputError(errno);
}

void OutputText::commit() {
  if (file_ && !file_->commit()) throw OutputError(file_->error());
}

}  // namespace torvio
