// Stored form of a tool inventory behind its version word.
#pragma once
#include "OldTorvIO/tool_inventory.h"
#include "src/frame/describe.h"
#include "src/records/small_layouts.h"
#include "src/records/tool_layout.h"

namespace oldtorvio::frame {

template <>
struct Layout<InventoryEntry> {
  static constexpr std::size_t kLeast = 544;
  static bool describe(auto& io, auto& e) {
    return io.fields(F(e.entryHead, e.entryWord, e.entryNameA, e.entryByteA, e.entryByteB, e.entryNameB, e.entryShortA,
                       e.entryShortB))
        && io.since(130, F(e.entryNameC))
        && io.tail([&] { return io.since(150, F(e.entryLateWord, e.entryLateReals)); })
        && io.record(F(e.entrySteps));
  }
};

// The name of a special tool's file.
template <std::size_t N>
struct Layout<std::array<char, N>> {
  static constexpr std::size_t kLeast = N;
  static bool describe(auto& io, auto& itself) { return io.sized(F(itself), static_cast<std::int32_t>(N)); }
};

template <>
struct Layout<OldToolInventory> {
  static bool describe(auto& io, auto& v) {
    std::int32_t toolCount = io.countOf(v.tools);
    return io.fields(F(toolCount))
        && io.onlyRead([](auto& reader) { return reader.below(54, [&] { return reader.notReadOn(); }); })
        && io.rows(20, [&](std::size_t i) { return io.fields(F(v.pairFirst[i], v.pairSecond[i])); })
        && io.clear(F(v.tools))
        && io.appendRun(toolCount, F(v.tools), false)
        && io.countFirst(F(v.entries))
        && io.countThenClear(F(v.specialToolFiles));
  }
};

}  // namespace oldtorvio::frame
