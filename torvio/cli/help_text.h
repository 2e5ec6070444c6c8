// Help texts: their layout on a terminal, and their parts for manual pages.
#pragma once
#include <cstddef>
#include <string>
#include <vector>

namespace torvio {

inline constexpr std::size_t kHelpWidth = 80;

// The text in lines of at most `width` characters, unless a word is longer. Existing line breaks stay.
std::string inLines(const std::string& text, std::size_t width);

// One part of a section: a paragraph, or an entry of a list, which has a term.
struct HelpPart {
  std::string term;
  std::string text;  // on one line
};

struct HelpSection {
  std::string title;  // "Exit code" or "Examples"; empty for everything else
  std::vector<HelpPart> parts;
};

// The parts of the end of a help text:
// - a line "Exit code:" or "Examples:" begins a section, which ends at a blank line;
// - a line that is indented by two blanks is an entry of a list: a term, two or more blanks, a text. A line that is
//   indented further continues the text, which may begin there;
// - after a comma, an indented line continues a list of names such as "Kinds: part, group-part,";
// - a line such as "Kinds: ..." begins a paragraph, and so does a line after a blank one.
std::vector<HelpSection> helpSections(const std::string& text);

}  // namespace torvio
