// The functions of torvio.h. Each returns (status, result or None, message, field, offset or None), followed by its
// other outputs.
#include <pybind11/stl.h>

#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "bindings/python/src/convert.h"
#include "bindings/python/src/functions.h"
#include "torvio/include/torvio.h"

namespace oldtorvio::python {
namespace {

struct Free {
  void operator()(const void* object) const { torvio_free(object); }
};
using Buffer = std::unique_ptr<torvio_buffer, Free>;
using Failure = std::unique_ptr<torvio_error, Free>;

// A file: its path as bytes of the file system, or its contents.
class Source {
 public:
  Source(const std::optional<std::string>& path, const py::object& data, const std::optional<std::string>& name,
         const std::optional<std::string>& kind, const std::optional<std::string>& encoding)
      : path_(path), name_(name), kind_(kind), encoding_(encoding), data_(data) {
    const auto text = [](const std::optional<std::string>& one) { return one ? one->c_str() : nullptr; };
    if (!path_) {
      const std::string_view bytes(data_);
      input_.data = bytes.data();
      input_.size = bytes.size();
    }
    input_.path = text(path_);
    input_.name = text(name_);
    input_.kind = text(kind_);
    input_.encoding = text(encoding_);
  }
  Source(const Source&) = delete;
  Source& operator=(const Source&) = delete;
  const torvio_input& input() const { return input_; }

 private:
  std::optional<std::string> path_, name_, kind_, encoding_;
  py::bytes data_;
  torvio_input input_{};
};

py::object bytesOf(const Buffer& buffer) {
  return buffer ? py::object(py::bytes(buffer->data, buffer->size)) : py::none();
}

// call(result, error) runs without the GIL.
template <class Call>
py::tuple answered(const Call& call) {
  torvio_buffer* result = nullptr;
  torvio_error* error = nullptr;
  torvio_status status = TORVIO_INTERNAL_ERROR;
  {
    const py::gil_scoped_release released;
    status = call(&result, &error);
  }
  const Buffer buffer(result);
  const Failure failure(error);
  if (status == TORVIO_NO_MEMORY) throw std::bad_alloc();
  const auto utf8 = [](const char* text) {
    return py::reinterpret_steal<py::object>(
        PyUnicode_DecodeUTF8(text, static_cast<Py_ssize_t>(std::strlen(text)), "replace"));
  };
  const std::optional<std::uint64_t> offset =
      failure && failure->offset != TORVIO_NO_OFFSET ? std::optional(failure->offset) : std::nullopt;
  return py::make_tuple(status, bytesOf(buffer), utf8(failure ? failure->message : ""),
                        utf8(failure ? failure->field : ""), offset);
}

const char* textOrNull(const std::optional<std::string>& text) { return text ? text->c_str() : nullptr; }

using Text = std::optional<std::string>;

}  // namespace

void addCompanionFunctions(py::module_& module) {
  py::class_<Source>(module, "_Source")
      .def(py::init<const Text&, const py::object&, const Text&, const Text&, const Text&>());
  module.def("_check", [](const Source& file) {
    return answered([&](auto... outputs) { return torvio_check(&file.input(), 0, outputs...); });
  });
  module.def("_info", [](const Source& file) {
    return answered([&](auto... outputs) { return torvio_info(&file.input(), 0, outputs...); });
  });
  module.def("_file_json", [](const Source& file, bool isPretty) {
    return answered(
        [&](auto... outputs) { return torvio_json(&file.input(), isPretty ? TORVIO_PRETTY : 0, outputs...); });
  });
  module.def("_from_json", [](const Source& file, int version) {
    return answered([&](auto... outputs) { return torvio_from_json(&file.input(), version, 0, outputs...); });
  });
  module.def("_map", [](const Source& file, const Text& find, const Text& range, bool isPage) {
    return answered([&](auto... outputs) {
      return torvio_map(&file.input(), textOrNull(find), textOrNull(range), isPage ? TORVIO_PAGE : 0, outputs...);
    });
  });
  module.def("_draw", [](const Source& file) {
    return answered([&](auto... outputs) { return torvio_draw(&file.input(), 0, outputs...); });
  });
  module.def("_draw_page", [](const std::vector<const Source*>& files, const Text& title) {
    std::vector<torvio_input> inputs;
    for (const Source* file : files) inputs.push_back(file->input());
    return answered([&](auto... outputs) {
      return torvio_draw_page(inputs.data(), inputs.size(), textOrNull(title), 0, outputs...);
    });
  });
  module.def("_diff", [](const Source& a, const Source& b, const Text& part, double tolerance, bool commonOnly) {
    std::int32_t same = 0;
    const py::tuple answer = answered([&](auto... outputs) {
      return torvio_diff(&a.input(), &b.input(), textOrNull(part), tolerance, commonOnly ? TORVIO_COMMON : 0, &same,
                         outputs...);
    });
    return answer + py::make_tuple(same != 0);
  });
  module.def("_convert", [](const Source& file, int version, bool allowLoss) {
    torvio_buffer* report = nullptr;
    const py::tuple answer = answered([&](auto* result, auto* error) {
      return torvio_convert(&file.input(), version, allowLoss ? TORVIO_ALLOW_LOSS : 0, result, &report, error);
    });
    return answer + py::make_tuple(bytesOf(Buffer(report)));
  });
  module.def("_recover", [](const Source& file) {
    torvio_buffer* report = nullptr;
    const py::tuple answer =
        answered([&](auto* result, auto* error) { return torvio_recover(&file.input(), 0, result, &report, error); });
    return answer + py::make_tuple(bytesOf(Buffer(report)));
  });
  module.def("_schema", [](const std::string& kind) {
    return answered([&](auto... outputs) { return torvio_schema(kind.c_str(), outputs...); });
  });
  module.def("_format", [](const std::string& name, const Text& language) {
    return answered([&](auto... outputs) { return torvio_format(name.c_str(), textOrNull(language), outputs...); });
  });
  module.def("_supported", [] { return answered([](auto... outputs) { return torvio_supported(outputs...); }); });
  module.attr("__version__") = torvio_version();
}

}  // namespace oldtorvio::python
