// Loads and saves. All work on files is done without the GIL.
#include <pybind11/stl.h>

#if defined(__linux__)
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <system_error>

#include "bindings/python/src/classes.h"
#include "bindings/python/src/functions.h"
#include "torvio/archive/plausibility.h"
#include "torvio/archive/verdict.h"
#include "torvio/explain/file_content.h"
#include "torvio/explain/kind_names.h"
#include "torvio/values/compiled_records.h"
#include "torvio/values/json_reader.h"
#include "torvio/values/json_writer.h"

namespace oldtorvio::python {
namespace {

using frame::FileKind;
using Bytes = std::span<const std::byte>;

// The contents of a file. Large files are read into huge pages on Linux: without them, half of the time of the read
// goes to page faults.
class Contents {
 public:
  explicit Contents(const std::string& path) {
    if (!readLarge(path)) content_.emplace(path);
  }
  std::string error() const { return content_ ? content_->error() : ""; }
  Bytes bytes() const { return content_ ? content_->bytes() : Bytes(large_.get(), size_); }

 private:
  // False for any file but a large one that could be read completely.
  bool readLarge(const std::string& path) {
#if defined(__linux__)
    constexpr std::size_t kHugePage = 2U << 20U;
    struct stat about {};
    const auto isLarge = [&] {
      return S_ISREG(about.st_mode) && about.st_size >= static_cast<off_t>(2 * kHugePage) &&
             static_cast<std::uint64_t>(about.st_size) <= explain::FileContent::kLargestMiB << 20U;
    };
    // Checked before the file is opened: a pipe must be opened only once.
    if (::stat(path.c_str(), &about) != 0 || !isLarge()) return false;
    struct Close {
      int file;
      ~Close() { (void)::close(file); }
    };
    const Close open{::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)};
    if (open.file < 0 || ::fstat(open.file, &about) != 0 || !isLarge()) return false;
    const std::size_t room = (static_cast<std::size_t>(about.st_size) / kHugePage + 1) * kHugePage;
    large_.reset(static_cast<std::byte*>(std::aligned_alloc(kHugePage, room)));
    if (!large_) return false;
    (void)::madvise(large_.get(), room, MADV_HUGEPAGE);
    while (size_ < room) {
      const ssize_t got = ::read(open.file, large_.get() + size_, room - size_);
      if (got == 0) return true;
      if (got > 0)
        size_ += static_cast<std::size_t>(got);
      else if (errno != EINTR)
        return false;
    }
    return false;  // it has grown
#else
    (void)path;
    return false;
#endif
  }

  struct Free {
    void operator()(std::byte* block) const { std::free(block); }
  };
  std::unique_ptr<std::byte, Free> large_;
  std::size_t size_ = 0;
  std::optional<explain::FileContent> content_;
};

struct Loaded {
  std::optional<FileKind> kind;
  std::shared_ptr<void> record;
  std::int64_t status = frame::kNotOpened;
  std::optional<int> version;
  std::string reason, field;
  std::optional<std::uint64_t> offset;
};

void loadAs(Loaded& loaded, Bytes bytes, FileKind kind, std::string_view path) {
  loaded.kind = kind;
  withFileRecord(kind, [&](auto file) {
    constexpr FileKind kKind = decltype(file)::kKind;
    values::LoadedRecord<kKind> one = values::loadRecord<kKind>(bytes, path);
    loaded.record = std::move(one.record);
    loaded.status = one.status;
    loaded.version = one.version;
  });
  if (loaded.status == frame::kDone) return;
  const explain::FileReport report = explain::checkFile(bytes, kind);
  if (!report.fault) return;
  loaded.reason = explain::describe(*report.fault);
  loaded.field = report.fault->path;
  loaded.offset = report.fault->offset;
}

void loadBytes(Loaded& loaded, Bytes bytes, std::optional<FileKind> kind, const std::string& path) {
  // Not archive::judge with the contents, which would walk the file once more: here it sees only the extension.
  if (!kind) kind = archive::judge(path, {}, {}).kind;
  if (!kind) kind = archive::likeliestKind(bytes);
  if (kind) return loadAs(loaded, bytes, *kind, path);
  loaded.status = frame::kWrongVersion;
  loaded.version = archive::versionOf(bytes);
  loaded.reason = "not a file of a known kind";
}

// A load of the library, which reads a sound file piece by piece. Returns whether it succeeded.
bool loadSound(Loaded& loaded, FileKind kind, const std::string& path) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) return false;  // a pipe can be read only once
  return withFileRecord(kind, [&](auto file) {
    auto record = std::make_shared<typename decltype(file)::Record>();
    loaded.status = file.load(path.c_str(), *record);
    if (loaded.status != frame::kDone) return false;
    loaded.kind = kind;
    loaded.record = std::move(record);
    return true;
  });
}

std::optional<FileKind> kindNamed(const std::optional<std::string>& name) {
  if (!name) return std::nullopt;
  const auto kind = explain::kindNamed(*name);
  if (!kind) raise(PyExc_ValueError, "no kind of file: " + *name);
  return kind;
}

// (record or None, kind or None, status, version or None, reason, field, offset or None)
py::tuple resultOf(Loaded& loaded) {
  const py::object record =
      loaded.record ? viewOf(values::typeOfRecord(*loaded.kind), std::move(loaded.record)) : py::none();
  const py::object kind = loaded.kind ? py::object(py::str(std::string(frame::infoOf(*loaded.kind).name))) : py::none();
  return py::make_tuple(record, kind, loaded.status, loaded.version, loaded.reason, loaded.field, loaded.offset);
}

py::tuple loadFile(const std::string& path, const std::optional<std::string>& kindName) {
  const std::optional<FileKind> kind = kindNamed(kindName);
  Loaded loaded;
  {
    const py::gil_scoped_release released;
    if (!kind || !loadSound(loaded, *kind, path)) {
      const Contents content(path);
      loaded.reason = content.error();
      if (loaded.reason.empty())
        loadBytes(loaded, content.bytes(), kind, path);
      else
        loaded.status = frame::kNotOpened;
    }
  }
  return resultOf(loaded);
}

py::tuple loadMemory(const py::bytes& data, const std::optional<std::string>& kindName, const std::string& path) {
  const std::optional<FileKind> kind = kindNamed(kindName);
  const std::string_view bytes(data);
  Loaded loaded;
  {
    const py::gil_scoped_release released;
    loadBytes(loaded, std::as_bytes(std::span(bytes)), kind, path);
  }
  return resultOf(loaded);
}

FileKind savedKindOf(const View* view) {
  const std::optional<FileKind> kind = kindOf(*view->type);
  if (!kind) raise(PyExc_TypeError, std::string(view->type->name) + " is not the record of a file");
  return *kind;
}

// (bytes, status, reason)
py::tuple dumps(const py::object& object, int version) {
  View* const view = recordIn(object.ptr());
  // The save uses the record without owning it.
  const values::JsonRecord record{savedKindOf(view), version, "", {std::shared_ptr<void>(), writable(view)}, ""};
  const Busy busy(view);
  codec::OutStream stream;
  std::int64_t status = frame::kNotSaved;
  std::string reason;
  {
    const py::gil_scoped_release released;
    status = values::storeRecord(stream, record, version);
    if (status != frame::kDone) reason = values::refusalOf(record, status, version);
  }
  const auto bytes = stream.bytes();
  return py::make_tuple(py::bytes(reinterpret_cast<const char*>(bytes.data()), bytes.size()), status, reason);
}

std::string jsonOf(const py::object& object, int version, const std::string& encoding, bool isPretty) {
  View* const view = recordIn(object.ptr());
  const FileKind kind = savedKindOf(view);
  if (!values::TextEncoding::named(encoding)) raise(PyExc_LookupError, "no code page of OldTorvIO: " + encoding);
  const void* const record = readable(view);
  const Busy busy(view);
  const py::gil_scoped_release released;
  std::string text;
  values::writeJson([&](std::string_view piece) { text += piece; }, {kind, version, encoding}, record, nullptr,
                    isPretty);
  return text;
}

}  // namespace

void addFileFunctions(py::module_& module) {
  module.def("_load", loadFile);
  module.def("_loads", loadMemory);
  module.def("_dumps", dumps);
  module.def("_json", jsonOf);
}

}  // namespace oldtorvio::python
