// The numbered parameters of materials and sheets.
#pragma once
#include <cstdint>

namespace oldtorvio {

// Parameters are numbered from 0 to 600; each has an integer, a real and a text. Files store the numbers 55 to 89, 101
// to 125, 401 to 500 and 551 to 600, the older layouts only some of these; all others keep their value in a load. About
// 56 KiB: allocate it on the heap if the stack is small.
struct ParamTable {
  static constexpr int kNumbers = 601;

  std::uint16_t version = 0;  // of the table itself; selects its layout, in every kind of file
  char title[256] = {};       // raw; versions 60 to 499
  // In a sheet: the driver flags. For the numbers 490 and 492, a load ignores a stored 0.
  std::int32_t intParams[kNumbers] = {};
  double realParams[kNumbers] = {};
  char textParams[kNumbers][81] = {};  // raw; versions 60 to 499
  std::int32_t nameLength = 0;         // stored bytes of name, 1 to 256; 0 cannot be stored
  // Raw. The layouts 500 to 502 store 21 bytes, of which a file may have only the first, and no nameLength.
  char name[256] = {};
};

}  // namespace oldtorvio
