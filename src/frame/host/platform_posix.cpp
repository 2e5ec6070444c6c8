#if !defined(_WIN32)
#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <vector>

#include "src/frame/host/platform.h"
#include "src/frame/text/profile_text.h"

namespace oldtorvio::frame {
namespace {

bool isFolder(const std::string& path) {
  struct stat info {};
  return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

// The path unchanged and, if it contains "\", with "/" in place of each.
std::vector<std::string> spellingsOf(const std::string& path) {
  std::vector<std::string> all{path};
  if (path.find('\\') == std::string::npos) return all;
  std::replace_copy(path.begin(), path.end(), std::back_inserter(all.emplace_back()), '\\', '/');
  return all;
}

std::string contentOf(const std::string& path) {
  constexpr std::size_t kLargestConfiguration = 1U << 20U;
  std::string all;
  File file = File::openToRead(path.c_str());
  if (!file) return all;
  char block[1024];
  for (std::size_t n = 0;
       all.size() < kLargestConfiguration && (n = std::fread(block, 1, sizeof block, file.handle())) > 0;)
    all.append(block, n);
  return all;
}

}  // namespace

// POSIX opens folders; only reading them fails.
bool isFolder(std::FILE* file) noexcept {
  struct stat info {};
  return ::fstat(::fileno(file), &info) == 0 && S_ISDIR(info.st_mode);
}

std::optional<std::uint64_t> sizeOfFile(std::FILE* file) noexcept {
  struct stat info {};
  if (::fstat(::fileno(file), &info) != 0 || !S_ISREG(info.st_mode)) return std::nullopt;
  return static_cast<std::uint64_t>(info.st_size);
}

std::string profileText(std::string_view section, std::string_view key, std::size_t size) {
  const auto environment = [](const char* name) {
    const char* value = std::getenv(name);
    return std::string(value == nullptr ? "" : value);
  };
  // Relative entries are ignored: the working directory may belong to someone else.
  const auto lookIn = [&](const std::string& folder) {
    if (folder.empty() || folder.front() != '/') return std::string();
    return profileValue(contentOf(folder + "/OldTorvIO/win.ini"), section, key, size);
  };

  std::string home = environment("XDG_CONFIG_HOME");
  if (home.empty() && !environment("HOME").empty()) home = environment("HOME") + "/.config";
  std::string value = lookIn(home);
  if (!value.empty()) return value;

  std::string folders = environment("XDG_CONFIG_DIRS");
  if (folders.empty()) folders = "/etc/xdg";
  for (std::size_t from = 0; from <= folders.size() && value.empty();) {
    const std::size_t to = std::min(folders.find(':', from), folders.size());
    value = lookIn(folders.substr(from, to - from));
    from = to + 1;
  }
  return value;
}

void walkFolder(const std::string& folder,
                const std::function<bool(const std::string& name, const std::string& path)>& visit) {
  std::vector<std::string> spellings = spellingsOf(folder);
  // A final "\" may be just the separator before the file name.
  if (folder.size() > 1 && folder.back() == '\\')
    spellings.insert(spellings.begin() + 1, folder.substr(0, folder.size() - 1));

  const auto closeFolder = [](DIR* open) { (void)::closedir(open); };
  for (const std::string& spelling : spellings) {
    const std::unique_ptr<DIR, decltype(closeFolder)> open(::opendir(spelling.c_str()), closeFolder);
    if (!open) continue;
    while (const dirent* entry = ::readdir(open.get())) {
      const std::string name(entry->d_name);
      const std::string path = std::string(spelling).append("/").append(name);
      if (isFolder(path)) continue;
      if (!visit(name, path)) return;
    }
    return;
  }
}

std::optional<std::string> findFile(const std::string& path) {
  for (const std::string& spelling : spellingsOf(path))
    if (::access(spelling.c_str(), F_OK) == 0) return spelling;
  return std::nullopt;
}

}  // namespace oldtorvio::frame
#endif
