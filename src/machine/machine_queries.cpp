// Loads of machine files, and queries of the current machine and of machine files.
#include <algorithm>
#include <bit>
#include <memory>

#include "OldTorvIO.h"
#include "src/frame/text/text.h"
#include "src/machine/machine_file_record.h"
#include "src/records/tool_layout.h"

namespace oldtorvio {
namespace {

using namespace codec;
using namespace frame;

// Never reset: what a file does not store keeps the value of the previous machine.
OldMachine currentMachine;

// Loads the current machine and, on success, calls setOutputs(version). A fault after the version word returns 0 too.
template <class SetOutputs>
std::int64_t loadCurrent(const char* path, SetOutputs&& setOutputs) noexcept {
  return loadFile(
      path,
      [&](int version) {
        FileRecord<FileKind::machine>::setVersion(currentMachine, version);
        setPath(currentMachine.path, path);
      },
      isKnownSheetVersion,
      [&](InStream& stream, int version) -> std::int64_t {
        attempt([&] {
          if (ReadOldMachine(stream, version, nullptr, currentMachine) == 0) setOutputs(version);
        });
        return kDone;
      });
}

struct StationLimits {
  float minX = 999999.0F, minY = 999999.0F, maxX = 0, maxY = 0;
};

StationLimits limitsOf(const ToolStationList& list) {
  StationLimits all;
  for (const ToolStation& station : list.stations) {
    all.minX = std::min(all.minX, station.limits[0]);
    all.minY = std::min(all.minY, station.limits[1]);
    all.maxX = std::max(all.maxX, station.limits[2]);
    all.maxY = std::max(all.maxY, station.limits[3]);
  }
  return all;
}

constexpr int kWithoutStationLimits = 1;
constexpr int kWithoutWorkArea = 2;

}  // namespace
}  // namespace oldtorvio

using namespace oldtorvio;

extern "C" int64_t LoadOldMachine(const char* path, OldMachine* machine) noexcept {
  return loadRecord<FileKind::machine>(path, machine);
}

extern "C" int32_t LoadOldMachineInformation(const char* path, MachineInformation* information) noexcept {
  return static_cast<std::int32_t>(loadCurrent(path, [&](int version) {
    const OldMachine& m = currentMachine;
    information->infoKind = m.machineKind;
    information->infoVersion = version;
    information->infoSizeX = m.sizeX;
    information->infoSizeY = m.sizeY;
    copyText(information->infoText1, m.secondText);
    copyText(information->infoText2, m.machineText2);
    information->infoStationWord = static_cast<std::int32_t>(m.stationWord);
    information->infoExtra1 = m.stationsA.extraWords[0];
    information->infoExtra2 = m.stationsA.extraWords[1];
    information->infoStationMode = static_cast<std::int32_t>(m.stationsA.stationModeCode);
    information->infoStationCount = static_cast<std::int32_t>(m.stationsA.stations.size());
  }));
}

extern "C" void LoadOldStationToolFromMachine(int32_t index, int32_t* stationNumber, int32_t* stationType,
                                              float* orientation, float* realF, float* stationValue,
                                              int32_t* valueCount, float* values, float* limit0, float* limit1,
                                              float* limit2, float* limit3, int32_t* shapeCode, float* dimensions,
                                              float* offsets, char* specialToolPath, float* pairValue0,
                                              float* pairValue1, int32_t* wordF) noexcept {
  const ToolStationList& list = currentMachine.stationsA;
  // After a load that failed inside a tool, the last station has none.
  if (index < 0 || static_cast<std::size_t>(index) >= std::min(list.stations.size(), list.tools.size())) EndProcess();
  const ToolStation& station = list.stations[static_cast<std::size_t>(index)];
  const OldTool& tool = list.tools[static_cast<std::size_t>(index)];

  *stationNumber = station.stationNumber;
  *stationType = station.stationType;
  *orientation = station.orientation;
  *realF = station.realF;
  *stationValue = station.stationValue;
  *valueCount = station.valueCount;
  *limit0 = station.limits[0];
  *limit1 = station.limits[1];
  *limit2 = station.limits[2];
  *limit3 = station.limits[3];
  *pairValue0 = station.pairValues[0];
  *pairValue1 = station.pairValues[1];
  *wordF = station.wordF;
  const bool hasTool = station.toolCount >= 1;
  *shapeCode = hasTool ? tool.shapeCode : 0;
  dimensions[0] = hasTool ? tool.dimension1 : 0;
  dimensions[1] = hasTool ? tool.dimension2 : 0;
  dimensions[2] = hasTool ? tool.dimension3 : 0;
  for (int i = 0; i < 6; ++i) values[i] = i < station.valueCount ? station.values[i] : 0;
  std::copy(std::begin(station.offsets), std::end(station.offsets), offsets);
  if (*shapeCode == kSpecialTool) copyOut(specialToolPath, fixedText(tool.specialToolPath));
}

extern "C" int64_t GetOldVLMQMachineName(const char* path, char* displayName, uint32_t* kind, char* text2,
                                         char* secondText, char* lateText) noexcept {
  return loadCurrent(path, [&](int) {
    const OldMachine& m = currentMachine;
    copyOut(displayName, fixedText(m.displayName));
    *kind = static_cast<std::uint32_t>(m.machineKind);
    copyOut(text2, fixedText(m.machineText2));
    copyOut(secondText, fixedText(m.secondText));
    copyOut(lateText, fixedText(m.lateText1));
  });
}

extern "C" int64_t GetMachineDatasForQD(const char* path, float* sizeX, float* sizeY, float* clampCount,
                                        float* blockMode, float* stationMinX, float* stationMinY, float* stationMaxX,
                                        float* stationMaxY, float* area0, float* area1, float* area2,
                                        float* area3) noexcept {
  const auto keepNothing = [](int) {};
  return loadFile(path, keepNothing, isMachineVersion, [&](InStream& stream, int version) -> std::int64_t {
    const auto machine = std::make_unique<OldMachine>();
    const int status = ReadOldMachine(stream, version, nullptr, *machine);
    if (status != 0) return status;

    *sizeX = machine->sizeX;
    *sizeY = machine->sizeY;
    // These two outputs are 32-bit integers in the bytes of a float.
    *clampCount = std::bit_cast<float>(machine->clampInfo.clampCount);
    *blockMode = std::bit_cast<float>(machine->blockMode);
    StationLimits limits = limitsOf(machine->stationsA);
    if (machine->machineKind == kWithoutStationLimits) limits = {0, 0, 0, 0};
    *stationMinX = limits.minX;
    *stationMinY = limits.minY;
    *stationMaxX = limits.maxX;
    *stationMaxY = limits.maxY;
    WorkArea area = machine->workArea;
    if (machine->machineKind == kWithoutWorkArea)
      std::fill(std::begin(area.areaValues), std::end(area.areaValues), 0.0F);
    *area0 = area.areaValues[0];
    *area1 = area.areaValues[1];
    *area2 = area.areaValues[2];
    *area3 = area.areaValues[3];
    return kDone;
  });
}
