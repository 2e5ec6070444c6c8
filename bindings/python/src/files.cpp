// Loads and saves. All of the work on files is done without the GIL.
#include <pybind11/stl.h>

#include <filesystem>
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
  // As archive::judge, which would walk the file once more: without contents it only knows the extension.
  if (!kind) kind = archive::judge(path, {}, {}).kind;
  if (!kind) kind = archive::likeliestKind(bytes);
  if (kind) return loadAs(loaded, bytes, *kind, path);
  loaded.status = frame::kWrongVersion;
  loaded.version = archive::versionOf(bytes);
  loaded.reason = "not a file of a known kind";
}

// A load of the library reads a sound file piece by piece. Whether it was done.
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
      const explain::FileContent content(path);
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
  // A save may use the record, but does not own it.
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
