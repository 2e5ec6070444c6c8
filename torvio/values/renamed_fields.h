// Fields that layouts keep in a local until the record has been read, and the members that they become.
#pragma once
#include <array>
#include <string_view>

namespace oldtorvio::values {

struct RenamedField {
  std::string_view field, member;
};

// The fields of a row of bindings, and the columns of its pattern.
inline constexpr std::array kBindColumns{RenamedField{"first", "bindFirst"}, RenamedField{"second", "bindSecond"},
                                         RenamedField{"third", "bindThird"}, RenamedField{"fourth", "bindFourth"},
                                         RenamedField{"fifth", "bindFifth"}};

// Of a sheet.
inline constexpr RenamedField kMachinePath{"machinePath", "machine.path"};

}  // namespace oldtorvio::values
