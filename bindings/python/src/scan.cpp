// Archives: files in batches, their results as bytes for other processes, and the catalogue.
#include <pybind11/stl.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "bindings/python/src/functions.h"
#include "torvio/archive/batches.h"
#include "torvio/archive/catalogue.h"
#include "torvio/archive/result_bytes.h"
#include "torvio/archive/result_json.h"
#include "torvio/explain/kind_names.h"
#include "torvio/values/text_encoding.h"

namespace py = pybind11;

namespace oldtorvio::python {
namespace {

using archive::FileResult;
using Text = std::optional<std::string>;

explain::FileKind kindOf(const std::string& name) {
  if (const auto kind = explain::kindNamed(name)) return *kind;
  throw py::value_error("unknown kind: " + values::onOneLine(name));
}

// How files are judged, and what is kept of them.
struct Options {
  Options(const Text& kind, const std::vector<std::pair<std::string, std::string>>& extensions,
          const std::string& encodingName, bool withFacts) {
    if (kind) scan.judge.kind = kindOf(*kind);
    for (const auto& [extension, kindName] : extensions) {
      if (extension.empty()) throw py::value_error("an extension is empty");
      scan.judge.extensions.push_back({extension, kindOf(kindName)});
    }
    const auto encoding = values::TextEncoding::named(encodingName);
    if (!encoding) throw py::value_error("unknown encoding: " + values::onOneLine(encodingName));
    scan.encoding = *encoding;
    scan.withFacts = withFacts;
    settings = archive::catalogueSettings(TORVIO_VERSION, scan.judge, encodingName);
  }

  archive::ScanOptions scan;
  std::string settings;
};

struct Results {
  std::vector<FileResult> all;
};

Results resultsIn(const std::string& packed) {
  auto all = archive::unpackedResults(packed);
  if (!all) throw std::runtime_error("the results of a worker are incomplete, or of another version of oldtorvio");
  return {std::move(*all)};
}

struct Catalogue {
  Catalogue(const std::string& path, const Options& options)
      : file(std::make_shared<archive::Catalogue>(path, options.settings)) {}
  archive::Catalogue& open() const {
    if (!file) throw std::runtime_error("the catalogue is closed");
    return *file;
  }
  std::shared_ptr<archive::Catalogue> file;
};

archive::Batches batchesOf(const std::vector<std::string>& paths, const Catalogue* catalogue, std::uint64_t bytes) {
  archive::ScanOptions options;
  if (catalogue != nullptr) {
    options.known = [file = catalogue->file](const FileResult& measured) { return file->find(measured); };
    options.isExcluded = [file = catalogue->file](const std::string& path) { return file->isOwnFile(path); };
  }
  return {std::make_shared<archive::FileNames>(paths), std::move(options), bytes};
}

using Names = std::vector<std::pair<std::string, bool>>;  // paths, and whether the caller named them

py::bytes examined(const Options& options, const Names& names) {
  std::string packed;
  {
    const py::gil_scoped_release released;
    std::vector<FileResult> results;
    results.reserve(names.size());
    for (const auto& [path, isNamed] : names)
      results.push_back(archive::examine({path, isNamed, {}, false}, options.scan));
    packed = archive::packedResults(results);
  }
  return packed;
}

// The result for a file that could not be examined for a reason outside the file.
py::bytes notExamined(const std::string& path, bool isNamed, const std::string& reason) {
  FileResult result = archive::measure({path, isNamed, {}, false});
  result.error = reason;
  return archive::packedResults({&result, 1});
}

py::object nextOf(archive::Batches& batches) {
  std::optional<archive::Batch> batch;
  {
    const py::gil_scoped_release released;
    batch = batches.next();
  }
  if (!batch) return py::none();
  py::list files;
  for (const archive::FoundFile& file : batch->files) files.append(py::make_tuple(py::bytes(file.path), file.isNamed));
  return py::make_tuple(files, Results{std::move(batch->ready)});
}

}  // namespace

void addScan(py::module_& module) {
  py::class_<Options>(module, "_ScanOptions")
      .def(py::init<const Text&, const std::vector<std::pair<std::string, std::string>>&, const std::string&, bool>());

  py::class_<Results>(module, "_Results")
      .def(py::init(&resultsIn))
      .def("__len__", [](const Results& results) { return results.all.size(); })
      // (verdict, whether it is from an earlier run, whether it has warnings, path of a folder that could not be read)
      .def("overview",
           [](const Results& results) {
             py::list rows;
             for (const FileResult& one : results.all) {
               const std::string_view verdict = archive::nameOf(one.verdict);
               rows.append(py::make_tuple(py::str(verdict.data(), verdict.size()), one.isKnown, !one.warnings.empty(),
                                          one.isFolder ? py::object(py::bytes(one.path)) : py::none()));
             }
             return rows;
           })
      .def("json", [](const Results& results) {
        std::string lines;
        for (const FileResult& one : results.all) lines += archive::resultJson(one);
        return py::bytes(lines);
      });

  py::class_<Catalogue>(module, "_Catalogue")
      .def(py::init<const std::string&, const Options&>(), py::call_guard<py::gil_scoped_release>())
      // Takes the results over. Folders that could not be read have no row.
      .def(
          "add",
          [](Catalogue& catalogue, Results& results) {
            for (FileResult& one : std::exchange(results.all, {}))
              if (!one.isFolder) catalogue.open().add(std::move(one));
          },
          py::call_guard<py::gil_scoped_release>())
      .def(
          "finish",
          [](Catalogue& catalogue, const std::vector<std::string>& paths, const std::vector<std::string>& unread) {
            catalogue.open().finish(archive::completeFolders(paths, unread));
            catalogue.file.reset();
          },
          py::call_guard<py::gil_scoped_release>())
      // Writes what was added; the run stays unfinished.
      .def(
          "close", [](Catalogue& catalogue) { catalogue.file.reset(); }, py::call_guard<py::gil_scoped_release>());

  py::class_<archive::Batches>(module, "_Batches").def(py::init(&batchesOf)).def("next", &nextOf);

  module.def("_examine", &examined);
  module.def("_not_examined", &notExamined);
  module.def("_catalogue_path", [](const std::string& path) { return py::bytes(archive::cataloguePath(path)); });
}

}  // namespace oldtorvio::python
