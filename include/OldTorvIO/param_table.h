// The numbered parameters of materials and sheets.
#pragma once
#include <cstdint>

namespace oldtorvio {

// Every number from 0 to 600 has an integer, a real and a text. Files store the numbers 55 to 89,
// 101 to 125, 401 to 500 and 551 to 600, the older layouts only some of these; all others keep what
// the record holds. About 56 KiB: keep it on the heap where stacks are small.
struct ParamTable {
  static constexpr int kNumbers = 601;

  std::uint16_t version = 0;  // the table's own: it selects the layout, whatever file holds it
  char title[256] = {};       // raw; versions 60 to 499
  // In a sheet the driver flags. A stored 0 of the numbers 490 and 492 keeps what the record holds.
  std::int32_t intParams[kNumbers] = {};
  double realParams[kNumbers] = {};
  char textParams[kNumbers][81] = {};  // raw; versions 60 to 499
  std::int32_t nameLength = 0;         // stored bytes of name, 1 to 256; 0 cannot be stored
  // Raw. The layouts 500 to 502 take 21 bytes of it, or one, and leave nameLength as it is.
  char name[256] = {};
};

}  // namespace oldtorvio
