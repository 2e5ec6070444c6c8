#include "torvio/cli/output_file.h"

#include <cerrno>
#include <filesystem>
#include <random>
#include <system_error>

#include "torvio/cli/output.h"

namespace torvio {
namespace {

namespace fs = std::filesystem;

std::string randomSuffix() {
  constexpr std::string_view kDigits = "0123456789abcdefghijklmnopqrstuvwxyz";
  std::random_device random;
  std::string suffix = ".";
  for (int i = 0; i < 8; ++i) suffix += kDigits[random() % kDigits.size()];
  return suffix + ".tmp";
}

}  // namespace

OutputFile::OutputFile(const std::string& path) : path_(path) {
  if (path.empty() || path == "-") return;
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (fs::is_directory(status)) throw OutputError(EISDIR);
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    file_ = std::fopen(path.c_str(), "wb");
  } else {
    // A link stays a link to the new file.
    const fs::path target = fs::is_symlink(path, error) ? fs::weakly_canonical(path, error) : fs::path(path);
    if (!error && !target.empty()) path_ = target.string();
    temporary_ = (fs::path(path_).parent_path() / (".torvio" + randomSuffix())).string();
    file_ = std::fopen(temporary_.c_str(), "wb");
  }
  if (file_ == nullptr) {
    const int failure = errno;
    temporary_.clear();
    throw OutputError(failure);
  }
}

OutputFile::~OutputFile() {
  if (file_ != nullptr) (void)std::fclose(file_);
  std::error_code ignored;
  if (!temporary_.empty()) fs::remove(temporary_, ignored);
}

void OutputFile::write(std::string_view text) {
  if (file_ == nullptr) return print(text);
  if (std::fwrite(text.data(), 1, text.size(), file_) != text.size()) throw OutputError(errno);
}

void OutputFile::keep() {
  if (file_ == nullptr) return;
  std::FILE* const file = file_;
  file_ = nullptr;
  if (std::fclose(file) != 0) throw OutputError(errno);
  if (temporary_.empty()) return;
  std::error_code error;
  fs::rename(temporary_, path_, error);
  if (error) throw OutputError(error.value());
  temporary_.clear();
}

bool isSameFile(const std::string& one, const std::string& other) {
  std::error_code error;
  return fs::equivalent(one, other, error) && !error;
}

}  // namespace torvio
