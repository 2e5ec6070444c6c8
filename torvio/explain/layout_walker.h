// What walkers over layouts without a file have in common: they see a layout as a reader does, but know no value and no
// count.
#pragma once
#include <cstddef>
#include <cstdint>

#include "src/frame/codec/describe.h"

namespace oldtorvio::explain {

// A base of the walker Self. Verbs that it declares itself replace these.
template <class Self>
class LayoutWalker : public codec::ReadingSide<Self> {
 public:
  static constexpr codec::Stop stop() { return codec::Stop::none; }
  static constexpr bool has(std::size_t) { return true; }

  template <class R>
  static R& unchanged(R& record) {
    return record;
  }
  template <class V>
  std::int32_t countOf(const V&) const {
    return 0;
  }
  template <class X>
  [[nodiscard]] bool clear(const X&) {
    return true;
  }
};

}  // namespace oldtorvio::explain
