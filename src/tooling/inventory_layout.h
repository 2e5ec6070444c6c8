// Stored form of a tool inventory after its version word.
#pragma once
#include "OldTorvIO/tool_inventory.h"
#include "src/frame/codec/describe.h"
#include "src/records/small_layouts.h"
#include "src/records/tool_layout.h"

namespace oldtorvio::codec {

template <>
struct Layout<InventoryEntry> {
  static constexpr std::size_t kMinStoredSize = 544;
  static bool describe(auto& io, auto& e) {
    return io.fields(FIELDS(e.entryHead, e.entryWord, e.entryNameA, e.entryByteA, e.entryByteB, e.entryNameB,
                            e.entryShortA, e.entryShortB))
        && io.since(130, FIELDS(e.entryNameC))
        && io.optionalTail([&] { return io.since(150, FIELDS(e.entryLateWord, e.entryLateReals)); })
        && io.record(FIELDS(e.entrySteps));
  }
};

// The name of a special tool's file.
template <std::size_t N>
struct Layout<std::array<char, N>> {
  static constexpr std::size_t kMinStoredSize = N;
  static bool describe(auto& io, auto& itself) { return io.sized(FIELDS(itself), static_cast<std::int32_t>(N)); }
};

template <>
struct Layout<OldToolInventory> {
  static bool describe(auto& io, auto& v) {
    std::int32_t toolCount = io.countOf(v.tools);
    return io.fields(FIELDS(toolCount))
        && io.onlyRead([](auto& reader) { return reader.below(54, [&] { return reader.require(custom("nothing after this is read", false)); }); })
        && io.rows(20, [&](std::size_t i) { return io.fields(FIELDS(v.pairFirst[i], v.pairSecond[i])); })
        && io.clear(FIELDS(v.tools))
        && io.list(FIELDS(v.tools), appended(toolCount), false)
        && io.list(FIELDS(v.entries), kCountFirst)
        && io.list(FIELDS(v.specialToolFiles), kReplaced);
  }
};

}  // namespace oldtorvio::codec
