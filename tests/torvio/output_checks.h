// Checks of what torvio prints, whatever the files and their names contain.
#pragma once
#include <cstddef>
#include <string>
#include <string_view>

namespace testing_support {

// Each returns what is wrong; empty if nothing is.

// UTF-8 without characters that affect a terminal or the text around them, except newlines.
std::string plainFault(std::string_view output);
// A text between markup or in an attribute: no controls, and only entities that are escapes.
std::string textFault(std::string_view text);
// One SVG document or element: balanced elements of the few kinds that a picture has, quoted attributes without
// references to anywhere else.
std::string svgFault(std::string_view svg);
// An HTML page: known elements, quoted attributes that run nothing and refer to nothing outside, and so many scripts.
std::string htmlFault(std::string_view page, std::size_t scripts);

}  // namespace testing_support
