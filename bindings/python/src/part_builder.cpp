// The part builder as an object. The library has one per process, so every object remembers what was added to it, and
// adds that again if another object has used the builder of the library in between.
#include <pybind11/stl.h>

#include <array>
#include <bit>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "OldTorvIO.h"
#include "bindings/python/src/functions.h"
#include "bindings/python/src/process_records.h"
#include "bindings/python/src/view.h"
#include "src/tooling/special_tool_io.h"

namespace oldtorvio::python {
namespace {

using Text = std::optional<std::string>;
using Values = std::vector<float>;

const char* textOrNull(const Text& text) { return text ? text->c_str() : nullptr; }

// Raises an exception for texts that would end the process.
void checkText(const char* name, const Text& text, std::size_t longest) {
  if (text && text->size() > longest)
    raise(PyExc_ValueError, std::string(name) + " has at most " + std::to_string(longest) + " bytes");
  if (text && text->find('\0') != std::string::npos) raise(PyExc_ValueError, std::string(name) + " contains a NUL");
}
// The same for the path of the file of a special tool, which begins with the configured folder.
void checkTool(const std::string& name, std::size_t longest) {
  constexpr std::size_t kSeparatorAndExtension = 5;
  checkText("toolName", name, longest);
  if (GetSpecialToolFolder().size() + name.size() + kSeparatorAndExtension > longest)
    raise(PyExc_ValueError, "the path of the special tool is too long");
}

class PartBuilder {
 public:
  PartBuilder(float width, float height, float thickness, std::int16_t kind, const Text& partName,
              const Text& assemblyName, const Text& materialName, const Text& customText1, const Text& customText2,
              const Text& customText3) {
    constexpr std::size_t kLongest = 255, kLongestShort = 20;
    checkText("partName", partName, kLongest);
    checkText("assemblyName", assemblyName, kLongestShort);
    checkText("materialName", materialName, kLongestShort);
    checkText("customText1", customText1, kLongest);
    checkText("customText2", customText2, kLongest);
    checkText("customText3", customText3, kLongest);
    steps_.push_back([=]() -> std::int32_t {
      InitTorvPart(width, height, thickness, kind, textOrNull(partName), textOrNull(assemblyName),
                   textOrNull(materialName), textOrNull(customText1), textOrNull(customText2), textOrNull(customText3));
      return 0;
    });
  }
  PartBuilder(const PartBuilder&) = delete;
  PartBuilder& operator=(const PartBuilder&) = delete;
  ~PartBuilder() {
    const py::gil_scoped_release released;
    const std::lock_guard lock(processRecords());
    if (current == this) current = nullptr;
  }

  std::int32_t addPattern(float x, float y, std::uint8_t type, std::uint32_t flags, const Values& values,
                          std::uint32_t itemWord1, float itemWord2, const std::array<float, 4>& pairs,
                          const Text& toolName, std::int16_t itemShort1, std::int16_t itemShort2, float itemWord3,
                          float itemWord4) {
    if (toolName) checkTool(*toolName, 255);
    return add([=, bits = bitsOf(values)] {
      return AddPatternToTorvPart(x, y, type, flags, bits.data(), itemWord1, itemWord2, pairs[0], pairs[1], pairs[2],
                                  pairs[3], textOrNull(toolName), itemShort1, itemShort2, itemWord3, itemWord4);
    });
  }
  std::int32_t addGroup(float x, float y, float angle, const std::string& toolName) {
    checkTool(toolName, 255);
    return add([=] { return AddGroupPatIntoTorvPart(x, y, angle, toolName.c_str()); });
  }
  std::int32_t addToGroup(std::int32_t groupIndex, float x, float y, std::uint8_t type, const Values& values) {
    if (groupIndex < 1 || groupIndex > shapeCount_)
      raise(PyExc_IndexError,
            "the part has no shape " + std::to_string(groupIndex) + ": it has " + std::to_string(shapeCount_));
    return add([=, next = shapeCount_ + 1, bits = bitsOf(values)]() -> std::int32_t {
      // It returns the number of shapes in 16 bits.
      const std::uint16_t count = AddPatIntoGroupPat(groupIndex, x, y, type, 0, bits.data());
      return count == static_cast<std::uint16_t>(next) ? next : -1;
    });
  }
  std::int64_t save(const std::string& path, std::int16_t version) {
    constexpr std::size_t kLongest = 259;
    if (path.size() > kLongest) raise(PyExc_ValueError, "the path has at most 259 bytes");
    return alone([&] { return SaveTorvPart(path.c_str(), version); });
  }
  std::int32_t shapeCount() const { return shapeCount_; }

 private:
  using Step = std::function<std::int32_t()>;
  using Bits = std::array<std::uint32_t, 9>;

  static Bits bitsOf(const Values& values) {
    Bits bits{};
    if (values.size() > bits.size()) raise(PyExc_ValueError, "a shape has at most 9 values");
    for (std::size_t i = 0; i < values.size(); ++i) bits[i] = std::bit_cast<std::uint32_t>(values[i]);
    return bits;
  }

  // Calls body while the builder of the library has everything that was added to this one.
  template <class Body>
  std::invoke_result_t<Body> alone(const Body& body) {
    const py::gil_scoped_release released;
    const std::lock_guard lock(processRecords());
    if (current != this) {
      current = nullptr;
      for (const Step& step : steps_)
        if (step() < 0) throw std::runtime_error("a special tool of the part can no longer be loaded");
      current = this;
    }
    return body();
  }
  std::int32_t add(const Step& step) {
    steps_.reserve(steps_.size() + 1);
    return alone([&] {
      const std::int32_t count = step();
      if (count < 0) return count;
      steps_.push_back(step);
      return shapeCount_ = count;
    });
  }

  static inline const PartBuilder* current = nullptr;  // the object whose part the library has

  std::vector<Step> steps_;
  std::int32_t shapeCount_ = 0;
};

}  // namespace

void addPartBuilder(py::module_& module) {
  py::class_<PartBuilder>(module, "_PartBuilder")
      .def(py::init<float, float, float, std::int16_t, const Text&, const Text&, const Text&, const Text&, const Text&,
                    const Text&>())
      .def("add_pattern", &PartBuilder::addPattern)
      .def("add_group", &PartBuilder::addGroup)
      .def("add_to_group", &PartBuilder::addToGroup)
      .def("save", &PartBuilder::save)
      .def("shape_count", &PartBuilder::shapeCount);
}

}  // namespace oldtorvio::python
