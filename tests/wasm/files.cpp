// What the tests use of std::filesystem, by the C library. Errors without an error code end the program: there are no
// exceptions.
#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <vector>

template class std::basic_filebuf<char>;
template class std::basic_ifstream<char>;
template class std::basic_ofstream<char>;

_LIBCPP_BEGIN_NAMESPACE_FILESYSTEM

namespace {

// What a function of the C library returned, 0 if it succeeded.
bool done(int result, const char* what, const path& about, error_code* error) {
  if (error != nullptr) error->clear();
  if (result == 0) return true;
  if (error != nullptr) {
    error->assign(errno, generic_category());
    return false;
  }
  std::perror((std::string(what) + " " + about.string()).c_str());
  std::abort();
}

vector<path> entriesOf(const path& folder, error_code* error) {
  vector<path> entries;
  DIR* const open = ::opendir(folder.c_str());
  if (!done(open == nullptr ? -1 : 0, "opendir", folder, error)) return entries;
  while (const dirent* entry = ::readdir(open)) {
    const string_view name = entry->d_name;
    if (name != "." && name != "..") entries.push_back(folder / name);
  }
  (void)::closedir(open);
  return entries;
}

}  // namespace

file_status __status(const path& p, error_code* error) {
  struct stat found {};
  if (error != nullptr) error->clear();
  if (::stat(p.c_str(), &found) != 0) return file_status(file_type::not_found);
  return file_status(S_ISDIR(found.st_mode) ? file_type::directory : file_type::regular);
}

bool __create_directory(const path& p, error_code* error) {
  if (is_directory(__status(p, error))) return false;
  return done(::mkdir(p.c_str(), 0777), "mkdir", p, error);
}

bool __create_directories(const path& p, error_code* error) {
  if (p.has_parent_path() && !is_directory(__status(p.parent_path(), error)))
    (void)__create_directories(p.parent_path(), error);
  return __create_directory(p, error);
}

uintmax_t __file_size(const path& p, error_code* error) {
  struct stat found {};
  return done(::stat(p.c_str(), &found), "stat", p, error) ? static_cast<uintmax_t>(found.st_size) : uintmax_t(-1);
}

void __resize_file(const path& p, uintmax_t size, error_code* error) {
  (void)done(::truncate(p.c_str(), static_cast<off_t>(size)), "truncate", p, error);
}

bool __remove(const path& p, error_code* error) {
  const file_status status = __status(p, error);
  if (!exists(status)) return false;
  return done(is_directory(status) ? ::rmdir(p.c_str()) : ::unlink(p.c_str()), "remove", p, error);
}

uintmax_t __remove_all(const path& p, error_code* error) {
  uintmax_t count = 0;
  if (is_directory(__status(p, error)))
    for (const path& entry : entriesOf(p, error)) count += __remove_all(entry, error);
  return count + (__remove(p, error) ? 1 : 0);
}

void __rename(const path& from, const path& to, error_code* error) {
  (void)done(::rename(from.c_str(), to.c_str()), "rename", from, error);
}

bool __copy_file(const path& from, const path& to, copy_options, error_code* error) {
  ifstream in(from, ios::binary);
  ofstream out(to, ios::binary);
  out << in.rdbuf();
  return done(in && out.flush() ? 0 : -1, "copy", from, error);
}

path __temp_directory_path(error_code* error) {
  if (error != nullptr) error->clear();
  return "/tmp";
}

path __current_path(error_code* error) {
  char text[4096] = {};
  return done(::getcwd(text, sizeof text) == nullptr ? -1 : 0, "getcwd", {}, error) ? text : "";
}

void __current_path(const path& p, error_code* error) { (void)done(::chdir(p.c_str()), "chdir", p, error); }

class __dir_stream {
 public:
  vector<directory_entry> entries;
  size_t at = 0;
  void add(path p) {
    entries.emplace_back();
    entries.back().__assign_iter_entry(std::move(p), directory_entry::__create_iter_result(file_type::unknown));
  }
};

directory_iterator::directory_iterator(const path& p, error_code* error, directory_options) {
  auto stream = std::make_shared<__dir_stream>();
  for (path& entry : entriesOf(p, error)) stream->add(std::move(entry));
  if (!stream->entries.empty()) __imp_ = std::move(stream);
}

directory_iterator& directory_iterator::__increment(error_code* error) {
  if (error != nullptr) error->clear();
  if (++__imp_->at == __imp_->entries.size()) __imp_.reset();
  return *this;
}

const directory_entry& directory_iterator::__dereference() const { return __imp_->entries[__imp_->at]; }

_LIBCPP_END_NAMESPACE_FILESYSTEM
