// Files and folders of one test's own, removed with it, and a "win.ini" to find special tools by.
#pragma once
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <span>
#include <sstream>
#include <string>

#include "tests/support/bytes.h"
#include "tests/support/host.h"

namespace testing_support {

// Writes a file, as far as the host lets it.
inline void writeFile(const std::string& path, const Bytes& bytes) {
  std::ofstream to(path, std::ios::binary);
  to.write(reinterpret_cast<const char*>(bytes.span().data()), static_cast<std::streamsize>(bytes.size()));
}

class TempFolder {
 public:
  TempFolder() {
    static int counter = 0;
    const auto base = std::filesystem::temp_directory_path();
    do {
      folder_ = base / ("oldtorvio_test_" + std::to_string(std::rand()) + "_" + std::to_string(++counter));
    } while (!std::filesystem::create_directory(folder_));
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  std::string path(const std::string& name = "") const {
    return name.empty() ? folder_.string() : (folder_ / name).string();
  }
  // Writes a file and returns its path.
  std::string write(const std::string& name, const Bytes& bytes) const {
    writeFile(path(name), bytes);
    return path(name);
  }
  // The same into a file of the same size, in place: much quicker where it is done by the thousand.
  std::string overwrite(const std::string& name, const Bytes& bytes) const {
    std::fstream to(path(name), std::ios::binary | std::ios::in | std::ios::out);
    if (!to) return write(name, bytes);
    to.write(reinterpret_cast<const char*>(bytes.span().data()), static_cast<std::streamsize>(bytes.size()));
    return path(name);
  }
  static Bytes read(const std::string& path) {
    std::ostringstream all;
    all << std::ifstream(path, std::ios::binary).rdbuf();
    return Bytes::of(std::as_bytes(std::span(all.view())));
  }

 private:
  std::filesystem::path folder_;
};

// While it lives, a variable of the environment has that value, or none.
class Environment {
 public:
  Environment(const char* name, const std::optional<std::string>& value) : name_(name) {
    if (const char* before = std::getenv(name)) before_ = before;
    set(value);
  }
  ~Environment() { set(before_); }
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

 private:
  void set(const std::optional<std::string>& value) const {
    if (value)
      setEnvironment(name_, *value);
    else
      unsetEnvironment(name_);
  }

  const char* name_;
  std::optional<std::string> before_;
};

// While it lives, special tools are looked for by the given text of "win.ini" and no other.
class WinIni {
 public:
#if defined(_WIN32)
  explicit WinIni(const std::string& content) : path_(systemFolder() + "\\win.ini"), before_(TempFolder::read(path_)) {
    // The child process of a death test changes a file that its parent uses afterwards.
    if (outermost_ == nullptr) {
      outermost_ = this;
      std::signal(SIGABRT, [](int) { outermost_->putBack(); });
    }
    std::ofstream(path_, std::ios::binary) << content;
  }
  ~WinIni() {
    putBack();
    if (outermost_ != this) return;
    std::signal(SIGABRT, SIG_DFL);
    outermost_ = nullptr;
  }
#else
  explicit WinIni(const std::string& content) {
    std::filesystem::create_directory(folder_.path("OldTorvIO"));
    std::ofstream(folder_.path("OldTorvIO") + "/win.ini", std::ios::binary) << content;
  }
#endif
  WinIni(const WinIni&) = delete;
  WinIni& operator=(const WinIni&) = delete;

  // A configuration whose folder of special tools is `folder`.
  static std::string folderSetting(const std::string& folder) {
    return "[Kestrada64bit]\nZRK_DEFAULT_SPECIAL_TOOL_PATH=" + folder + "\n";
  }

 private:
#if defined(_WIN32)
  void putBack() const {
    std::ofstream to(path_, std::ios::binary);
    to.write(reinterpret_cast<const char*>(before_.span().data()), static_cast<std::streamsize>(before_.size()));
  }

  inline static const WinIni* outermost_ = nullptr;
  SystemFolderLock lock_;
  std::string path_;
  Bytes before_;
#else
  TempFolder folder_;
  Environment home_{"XDG_CONFIG_HOME", folder_.path()};
  Environment others_{"XDG_CONFIG_DIRS", folder_.path("nothing")};
#endif
};

}  // namespace testing_support
