// The queries of OldTorvIO.h that take a path, and those of a loaded sheet. Each returns (status, outputs...); texts
// are bytes. oldtorvio/questions.py names the outputs.
#include <pybind11/stl.h>

#include <algorithm>
#include <array>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "OldTorvIO.h"
#include "bindings/python/src/classes.h"
#include "bindings/python/src/functions.h"
#include "bindings/python/src/process_records.h"
#include "src/sheet/nest.h"

namespace oldtorvio::python {
namespace {

// Room for any text of one field.
using FieldText = std::array<char, 264>;

py::bytes bytesOf(const FieldText& text) {
  return {text.data(), static_cast<std::size_t>(std::find(text.begin(), text.end(), '\0') - text.begin())};
}
// A list of numbers for Python.
template <class Numbers>
py::tuple tupleOf(const Numbers& numbers, std::size_t count) {
  py::tuple tuple(count);
  for (std::size_t i = 0; i < count; ++i) tuple[i] = numbers[i];
  return tuple;
}

// Calls a query without the GIL.
template <class Ask>
std::int64_t asked(const Ask& ask) {
  const py::gil_scoped_release released;
  return ask();
}
// Calls a query that uses a record of the process.
template <class Ask>
std::int64_t askedAlone(const Ask& ask) {
  const py::gil_scoped_release released;
  const std::lock_guard lock(processRecords());
  return ask();
}

// Asks for a text of unknown length: ask(text, size, length) copies the text only if its length is below the size. The
// file may change between two calls.
template <class Ask>
py::tuple askedForText(const Ask& ask) {
  std::string text;
  std::uint32_t length = 0;
  const std::int64_t status = asked([&] {
    std::int64_t one = ask(text.data(), 0, &length);
    while (one == 0 && length >= text.size()) {
      text.assign(std::size_t{length} + 1, '\0');
      one = ask(text.data(), static_cast<std::int32_t>(text.size()), &length);
    }
    return one;
  });
  return py::make_tuple(status, py::bytes(text.data(), status == 0 ? length : 0));
}

// ---- parts

py::tuple partInfo(const std::string& path) {
  FieldText material{};
  float width = 0, height = 0, thickness = 0;
  const auto status = asked([&] { return GetOldPartInfo(path.c_str(), material.data(), &width, &height, &thickness); });
  return py::make_tuple(status, bytesOf(material), width, height, thickness);
}

py::tuple partInfoByKey(const std::string& path, const std::string& key) {
  FieldText value{};
  const auto status = asked([&] { return GetOldPartInfo_v1(path.c_str(), key.c_str(), value.data()); });
  return py::make_tuple(status, bytesOf(value));
}

py::tuple partTools(const std::string& path) {
  return askedForText([&](char* text, std::int32_t size, std::uint32_t* length) {
    return GetOldPartTool(path.c_str(), text, size, length);
  });
}

py::tuple specialToolsOfPart(const std::string& path) {
  std::string text;
  const std::int64_t status = asked([&]() -> std::int64_t {
    // Two commas, at most 256 characters of a path for each tool, and a NUL.
    const auto part = std::make_unique<TorvPart>();
    if (const std::int64_t loaded = LoadOldPart(path.c_str(), part.get()); loaded != 0) return loaded;
    text.assign(part->toolStations.tools.size() * 258 + 1, '\0');
    return GetOldSptFromPart(path.c_str(), text.data());
  });
  return py::make_tuple(status, py::bytes(text.c_str()));
}

py::tuple specialToolsOfGroupPart(const std::string& path) {
  return askedForText([&](char* text, std::int32_t size, std::uint32_t* length) {
    return GetOldSptFromGroupPart(path.c_str(), text, size, length);
  });
}

// ---- special tools, inventories, machines

struct SpecialToolShape {
  std::int32_t type = 0;
  std::array<float, 6> numbers{};
};

py::tuple specialTool(const std::string& path) {
  std::uint32_t shapeCount = 0;
  std::array<float, 5> dimensions{};
  std::int32_t firstCount = 0, secondCount = 0;
  std::array<float, 6> first{}, second{};
  std::array<float, 2> extra{};
  std::uint8_t lateFlag = 0;
  std::vector<SpecialToolShape> shapes;
  const auto status = askedAlone([&]() -> std::int64_t {
    const std::int64_t opened = OpenSpecialToolFile(
        path.c_str(), &shapeCount, &dimensions[0], &dimensions[1], &dimensions[2], &dimensions[3], &dimensions[4],
        &firstCount, &first[0], &first[1], &first[2], &first[3], &first[4], &first[5], &secondCount, &second[0],
        &second[1], &second[2], &second[3], &second[4], &second[5], &extra[0], &extra[1], &lateFlag);
    shapes.resize(shapeCount);
    for (std::size_t i = 0; i < shapes.size(); ++i) {
      auto& [type, n] = shapes[i];
      GetShapeAt(static_cast<std::int32_t>(i), &type, &n[0], &n[1], &n[2], &n[3], &n[4], &n[5]);
    }
    return opened;
  });
  py::list shapeList;
  for (const SpecialToolShape& shape : shapes) {
    const auto& n = shape.numbers;
    shapeList.append(py::make_tuple(shape.type, n[0], n[1], py::make_tuple(n[2], n[3], n[4], n[5])));
  }
  return py::make_tuple(status, shapeList, dimensions[0], dimensions[1],
                        tupleOf(std::vector<float>{dimensions[2], dimensions[3], dimensions[4]}, 3), firstCount,
                        tupleOf(first, 6), secondCount, tupleOf(second, 6), tupleOf(extra, 2), lateFlag);
}

py::tuple inventoryCount(const std::string& path) {
  std::uint32_t count = 0;
  const auto status = askedAlone([&] { return LoadOldToolInventoryForCount(path.c_str(), &count); });
  return py::make_tuple(status, count);
}

py::tuple machineInformation(const std::string& path) {
  MachineInformation about{};
  const auto status = askedAlone([&] { return LoadOldMachineInformation(path.c_str(), &about); });
  const auto text = [](const char(&field)[256]) {
    return py::bytes(field, static_cast<std::size_t>(std::find(field, field + 256, '\0') - field));
  };
  return py::make_tuple(status, about.infoKind, about.infoVersion, about.infoSizeX, about.infoSizeY,
                        text(about.infoText1), text(about.infoText2), about.infoStationWord, about.infoExtra1,
                        about.infoExtra2, about.infoStationMode, about.infoStationCount);
}

py::tuple machineName(const std::string& path) {
  FieldText displayName{}, text2{}, secondText{}, lateText{};
  std::uint32_t kind = 0;
  const auto status = askedAlone([&] {
    return GetOldVLMQMachineName(path.c_str(), displayName.data(), &kind, text2.data(), secondText.data(),
                                 lateText.data());
  });
  return py::make_tuple(status, bytesOf(displayName), kind, bytesOf(text2), bytesOf(secondText), bytesOf(lateText));
}

py::tuple machineDatas(const std::string& path) {
  std::array<float, 2> size{};
  std::array<float, 4> limits{}, area{};
  // Integers, although their type says otherwise.
  std::int32_t clampCount = 0, blockMode = 0;
  static_assert(sizeof clampCount == sizeof(float));
  const auto status = asked([&] {
    return GetMachineDatasForQD(path.c_str(), &size[0], &size[1], reinterpret_cast<float*>(&clampCount),
                                reinterpret_cast<float*>(&blockMode), &limits[0], &limits[1], &limits[2], &limits[3],
                                &area[0], &area[1], &area[2], &area[3]);
  });
  return py::make_tuple(status, size[0], size[1], clampCount, blockMode, tupleOf(limits, 4), tupleOf(area, 4));
}

// ---- sheets

py::tuple sheetInformation(const std::string& path) {
  return py::make_tuple(askedAlone([&] { return LoadOldSheetInformation(path.c_str()); }));
}

// Whether GetOldSheetInfo would end the process: a nest uses the number after the last station, or a station without a
// tool.
bool hasImpossibleTool(const OldSheet& sheet) {
  const ToolStationList& list = stationListOf(sheet.machine);
  const auto stations = static_cast<std::int64_t>(list.stations.size());
  const auto tools = static_cast<std::int64_t>(list.tools.size());
  bool isImpossible = false;
  const auto see = [&](std::int64_t number, bool isOfSlot) {
    if (number < 1 || number > stations + 1) return;
    if (isOfSlot && number > stations)
      isImpossible = true;
    else if (number > tools)
      isImpossible |= !isOfSlot || list.stations[static_cast<std::size_t>(number - 1)].toolCount != 0;
  };
  eachToolUse(sheet, [&](const ToolUse& use) { see(use.number, use.slot != nullptr); });
  if (const auto special = specialStationOf(sheet)) see(*special, false);
  return isImpossible;
}

py::tuple sheetInfo(const std::string& path) {
  std::array<FieldText, 9> texts{};
  float width = 0, height = 0, thickness = 0;
  double lateValue = 0;
  std::string names, tools;
  std::int32_t namesLength = 0, toolsLength = 0;
  bool isImpossible = false;
  const auto status = asked([&]() -> std::int64_t {
    {
      const auto sheet = std::make_unique<OldSheet>();
      isImpossible = LoadOldSheet(path.c_str(), sheet.get()) == 0 && hasImpossibleTool(*sheet);
    }
    if (isImpossible) return 1;
    const auto ask = [&] {
      return GetOldSheetInfo(path.c_str(), texts[0].data(), texts[1].data(), texts[2].data(), texts[3].data(),
                             texts[4].data(), texts[5].data(), texts[6].data(), texts[7].data(), texts[8].data(),
                             &width, &height, &thickness, &lateValue, names.data(),
                             static_cast<std::int32_t>(names.size()), &namesLength, tools.data(),
                             static_cast<std::int32_t>(tools.size()), &toolsLength);
    };
    std::int64_t one = ask();
    const auto fits = [](const std::string& text, std::int32_t length) {
      return length == 0 || static_cast<std::size_t>(length) < text.size();
    };
    while (one == 0 && !(fits(names, namesLength) && fits(tools, toolsLength))) {
      names.assign(static_cast<std::size_t>(namesLength) + 1, '\0');
      tools.assign(static_cast<std::size_t>(toolsLength) + 1, '\0');
      one = ask();
    }
    return one;
  });
  py::list fields;
  for (const FieldText& text : texts) fields.append(bytesOf(text));
  return py::make_tuple(status, isImpossible, fields, width, height, thickness, lateValue, py::bytes(names.c_str()),
                        py::bytes(tools.c_str()));
}

py::tuple clampInfo(const std::string& path) {
  std::uint32_t word = 0, count = 0;
  std::array<float, 3> words{};
  std::array<float, 8> positions{};
  float spacing = 0;
  const auto status = asked([&] {
    return GetOldClampInfo(path.c_str(), &word, &words[0], &words[1], &words[2], positions.data(), &count, &spacing);
  });
  return py::make_tuple(status, word, words[0], words[1], words[2], tupleOf(positions, 8), count, spacing);
}

py::tuple materialNames(const std::string& path) {
  FieldText text3{}, text5{};
  const auto status = asked([&] { return GetOldVLMQMaterialName(path.c_str(), text3.data(), text5.data()); });
  return py::make_tuple(status, bytesOf(text3), bytesOf(text5));
}

py::tuple skeletonUtilization(const std::string& path) {
  float utilization = 0;
  const auto status = asked([&] { return GetOldSkeletonUtil(path.c_str(), &utilization); });
  return py::make_tuple(status, utilization);
}

py::tuple driverFlags(const std::string& path) {
  constexpr std::size_t kFlags = 601;
  std::vector<std::int32_t> flags(kFlags);
  const auto status = asked([&] { return GetSheetDriverFlags(path.c_str(), flags.data()); });
  return py::make_tuple(status, tupleOf(flags, kFlags));
}

py::tuple sequenceSize(const std::string& path) {
  std::uint32_t count = 0;
  const auto status = asked([&] { return GetSheetSequenceListSize(path.c_str(), &count); });
  return py::make_tuple(status, count);
}

// ---- of a loaded sheet

const OldSheet& sheetIn(const py::object& object) {
  View* const view = recordIn(object.ptr());
  if (kindOf(*view->type) != frame::FileKind::sheet)
    raise(PyExc_TypeError, "needs OldSheet, not " + std::string(view->type->name));
  return *static_cast<const OldSheet*>(readable(view));
}

py::tuple sheetInfoByName(const py::object& object, const std::string& key) {
  const OldSheet& sheet = sheetIn(object);
  // A path, a name, a work order and three numbers for each part; or one text.
  std::string value(sheet.partList.parts.size() * 1024 + 1024, '\0');
  const std::int64_t status = GetOldSheetInfoByName(&sheet, key.c_str(), value.data());
  return py::make_tuple(status, py::bytes(value.c_str()));
}

py::tuple partGroups(const py::object& object) {
  const OldSheet& sheet = sheetIn(object);
  std::size_t patterns = 0;
  for (const TorvPart& part : sheet.partList.parts) patterns += part.patterns.size();
  std::string value(patterns * 11 + sheet.partList.parts.size() + 1, '\0');
  const std::int64_t status = GetOldSheetInfoPartGroupIDs(&sheet, value.data());
  return py::make_tuple(status, py::bytes(value.c_str()));
}

}  // namespace

std::mutex& processRecords() {
  static std::mutex mutex;
  return mutex;
}

void addQuestions(py::module_& module) {
  module.def("_GetOldPartInfo", partInfo);
  module.def("_GetOldPartInfo_v1", partInfoByKey);
  module.def("_GetOldPartTool", partTools);
  module.def("_GetOldSptFromPart", specialToolsOfPart);
  module.def("_GetOldSptFromGroupPart", specialToolsOfGroupPart);
  module.def("_OpenSpecialToolFile", specialTool);
  module.def("_LoadOldToolInventoryForCount", inventoryCount);
  module.def("_LoadOldMachineInformation", machineInformation);
  module.def("_GetOldVLMQMachineName", machineName);
  module.def("_GetMachineDatasForQD", machineDatas);
  module.def("_LoadOldSheetInformation", sheetInformation);
  module.def("_GetOldSheetInfo", sheetInfo);
  module.def("_GetOldClampInfo", clampInfo);
  module.def("_GetOldVLMQMaterialName", materialNames);
  module.def("_GetOldSkeletonUtil", skeletonUtilization);
  module.def("_GetSheetDriverFlags", driverFlags);
  module.def("_GetSheetSequenceListSize", sequenceSize);
  module.def("_GetOldSheetInfoByName", sheetInfoByName);
  module.def("_GetOldSheetInfoPartGroupIDs", partGroups);
}

}  // namespace oldtorvio::python
