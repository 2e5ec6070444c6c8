// The smaller queries of sheet files.
#include <algorithm>
#include <bit>
#include <memory>

#include "OldTorvIO.h"
#include "src/frame/text/text.h"
#include "src/sheet/sheet_file.h"

using namespace oldtorvio;
using namespace oldtorvio::codec;
using namespace oldtorvio::frame;

extern "C" int64_t GetOldClampInfo(const char* path, uint32_t* word, float* first, float* second, float* third,
                                   float* positions, uint32_t* count, float* spacing) noexcept {
  return withSheet(path, isKnownSheetVersion, [&](const OldSheet& sheet, int) {
    const ClampInfo& clamps = sheet.clampInfo;
    *word = clamps.clampWord1;
    *first = std::bit_cast<float>(clamps.clampWord2);
    *second = std::bit_cast<float>(clamps.clampWord3);
    *third = std::bit_cast<float>(clamps.clampWord4);
    // All eight positions of the machine; the sheet's own are not returned.
    std::ranges::copy(sheet.machine.clampInfo.clampPositions, positions);
    *count = static_cast<std::uint32_t>(clamps.clampCount);
    *spacing = clamps.clampSpacing;
  });
}

extern "C" int64_t GetOldVLMQMaterialName(const char* path, char* text3, char* text5) noexcept {
  return withSheet(path, isKnownSheetVersion, [&](const OldSheet& sheet, int) {
    copyOut(text3, fixedText(sheet.partTexts[2]));
    copyOut(text5, fixedText(sheet.partTexts[4]));
  });
}

extern "C" int64_t GetOldSkeletonUtil(const char* path, float* utilization) noexcept {
  return withSheet(path, isKnownSheetVersion, [&](const OldSheet& sheet, int) { *utilization = sheet.utilization; });
}

extern "C" int64_t GetSheetDriverFlags(const char* path, int32_t* flags) noexcept {
  return guarded(kDamaged, [&]() -> std::int64_t {
    const auto sheet = std::make_unique<OldSheet>();
    const std::int64_t status = LoadOldSheet(path, sheet.get());
    // With status 1, too, as far as they were read.
    if (status == kDone || status == kDamaged) std::ranges::copy(sheet->paramTable.intParams, flags);
    return status;
  });
}

extern "C" int64_t GetSheetSequenceListSize(const char* path, uint32_t* count) noexcept {
  return guarded(kDamaged, [&]() -> std::int64_t {
    const auto sheet = std::make_unique<OldSheet>();
    const std::int64_t status = LoadOldSheet(path, sheet.get());
    if (status == kDone) *count = static_cast<std::uint32_t>(sheet->workList.size());
    return status;
  });
}
