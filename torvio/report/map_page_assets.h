// Style and script of the page, from the files map_page.css and map_page.js.
#pragma once
#include <string_view>

namespace oldtorvio::report {

extern const std::string_view kMapPageStyle;
extern const std::string_view kMapPageScript;

}  // namespace oldtorvio::report
