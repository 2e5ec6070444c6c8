#include "torvio/manual/manual_page.h"

#include <algorithm>
#include <cctype>
#include <string_view>
#include <vector>

#include "torvio/cli/help_text.h"
#include "torvio/manual/options.h"

namespace torvio {
namespace {

// ---- roff ---------------------------------------------------------------------------------------------

// Without a change of font. An ASCII hyphen is "\-", so that it is copied as one.
std::string escaped(std::string_view text) {
  std::string roff;
  for (const char c : text) {
    switch (c) {
      case '\\':
        roff += "\\e";
        break;
      case '-':
        roff += "\\-";
        break;
      case '\'':
        roff += "\\(aq";
        break;
      case '"':
        roff += "\\(dq";
        break;
      case '~':
        roff += "\\(ti";
        break;
      case '^':
        roff += "\\(ha";
        break;
      case '`':
        roff += "\\(ga";
        break;
      default:
        roff += c;
    }
  }
  return roff;
}
std::string bold(std::string_view text) { return "\\fB" + escaped(text) + "\\fR"; }
std::string italic(std::string_view text) { return "\\fI" + escaped(text) + "\\fR"; }

// A line of text. At its beginning, a dot would be a request.
std::string line(const std::string& roff) { return (roff.starts_with('.') ? "\\&" : "") + roff + "\n"; }

std::string section(const std::string& title) { return ".SH " + title + "\n"; }

std::string upperCase(std::string text) {
  for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

// ---- texts of a help ------------------------------------------------------------------------------------

// The names of values: "FILE", "KIND=.EXT".
std::vector<std::string> valueNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::Option* option : app.get_options())
    if (option->get_positional() || option->get_type_size() > 0) names.push_back(valueName(*option));
  return names;
}

// Options are bold, and names of values are in italics.
std::string marked(const std::string& text, const std::vector<std::string>& values) {
  const auto isOfWord = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '-'; };
  std::string roff;
  for (std::size_t at = 0; at < text.size();) {
    if (!isOfWord(text[at])) {
      roff += escaped(text.substr(at++, 1));
      continue;
    }
    std::size_t end = at;
    while (end < text.size() && isOfWord(text[end])) ++end;
    const std::string word = text.substr(at, end - at);
    const bool isOption = word.size() > 2 && word.starts_with("--") && word[2] != '-';
    // "A" may also begin a sentence.
    const bool isValue = word.size() > 1 && std::find(values.begin(), values.end(), word) != values.end();
    roff += isOption ? bold(word) : isValue ? italic(word) : escaped(word);
    at = end;
  }
  return roff;
}

std::string partsIn(const std::vector<HelpPart>& parts, const std::vector<std::string>& values) {
  std::string roff;
  for (const HelpPart& part : parts) {
    if (part.term.empty())
      roff += ".PP\n" + line(marked(part.text, values));
    else
      roff += ".TP\n" + line(bold(part.term)) + line(marked(part.text, values));
  }
  return roff;
}

// The sections with that title, or all others.
std::string sectionsOf(const CLI::App& app, const std::string& title) {
  std::string roff;
  for (const HelpSection& part : helpSections(app.get_footer()))
    if (part.title == title) roff += partsIn(part.parts, valueNames(app));
  return roff;
}

// ---- options --------------------------------------------------------------------------------------------

// "\fB\-o\fR, \fB\-\-output\fR \fIOUT\fR".
std::string termFor(const CLI::Option& option) {
  std::string roff;
  for (const std::string& name : namesOf(option)) roff += (roff.empty() ? "" : ", ") + bold(name);
  return option.get_type_size() == 0 ? roff : roff + " " + italic(valueName(option));
}

std::string entry(const std::string& term, const std::string& text) { return ".TP\n" + line(term) + line(text); }

std::string argumentEntries(const CLI::App& app) {
  std::string roff;
  for (const CLI::Option* option : argumentsOf(app))
    roff += entry(italic(valueName(*option)), marked(option->get_description(), valueNames(app)) + ".");
  return roff;
}

std::string optionSection(const CLI::App& app) {
  std::string roff = section("OPTIONS");
  for (const CLI::Option* option : optionsOf(app))
    roff += entry(termFor(*option), marked(option->get_description(), valueNames(app)) + ".");
  return roff;
}

std::string synopsisOf(const CLI::App& app) {
  std::string roff = "[" + italic("OPTIONS") + "]";
  for (const CLI::Option* option : optionsOf(app))
    if (option->get_required()) roff += " " + bold(option->get_name()) + " " + italic(valueName(*option));
  for (const CLI::Option* option : argumentsOf(app)) {
    const std::string dots = option->get_expected_max() > 1 ? "..." : "";
    const std::string value = italic(valueName(*option)) + dots;
    roff += option->get_required() ? " " + value : " [" + value + "]";
  }
  return roff;
}

std::string head(const std::string& page, const std::string& summary) {
  std::string text = summary;
  if (text.size() > 1 && std::islower(static_cast<unsigned char>(text[1])) != 0)
    text[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(text[0])));
  while (text.ends_with('.')) text.pop_back();
  return ".TH " + upperCase(escaped(page)) + " 1 \"\" \"torvio " TORVIO_VERSION "\" \"User Commands\"\n" +
         // Examples are copied, and words of the command line are not divided.
         ".nh\n.ad l\n" + section("NAME") + escaped(page) + " \\- " + escaped(text) + "\n" + section("SYNOPSIS");
}

std::string seeAlso(const std::vector<std::string>& pages) {
  std::string roff = section("SEE ALSO");
  for (const std::string& page : pages) roff += bold(page) + "(1)" + (&page == &pages.back() ? "\n" : ",\n");
  return roff;
}

std::string pageName(const CLI::App& command) { return "torvio-" + command.get_name(); }

}  // namespace

std::string toolPage(const CommandLine& tool) {
  const CLI::App& app = tool.tool();
  std::string roff = head(app.get_name(), app.get_description());
  roff += line(bold(app.get_name()) + " " + italic("COMMAND") + " [" + italic("OPTIONS") + "] [" + italic("ARGUMENT") +
               "...]");
  roff += ".br\n" + line(bold(app.get_name()) + " " + bold("--version") + " | " + bold("--help"));
  roff += section("DESCRIPTION") + line(escaped(app.get_description())) + sectionsOf(app, "");
  roff += section("COMMANDS");
  std::vector<std::string> pages;
  for (const CLI::App* command : tool.commands()) {
    pages.push_back(pageName(*command));
    roff += entry(bold(pages.back()) + "(1)", escaped(command->get_description()) + ".");
  }
  roff += optionSection(app) + section("EXIT STATUS") + sectionsOf(app, "Exit code");
  return roff + seeAlso(pages);
}

std::string commandPage(const CommandLine& tool, const CLI::App& command) {
  std::string roff = head(pageName(command), command.get_description());
  roff += line(bold("torvio " + command.get_name()) + " " + synopsisOf(command));
  roff += section("DESCRIPTION") + line(escaped(command.get_description()) + ".");
  roff += argumentEntries(command) + sectionsOf(command, "") + optionSection(command);
  if (const std::string codes = sectionsOf(command, "Exit code"); !codes.empty())
    roff += section("EXIT STATUS") + codes;
  if (const std::string examples = sectionsOf(command, "Examples"); !examples.empty())
    roff += section("EXAMPLES") + examples;
  std::vector<std::string> pages = {"torvio"};
  for (const CLI::App* other : tool.commands())
    if (other != &command) pages.push_back(pageName(*other));
  return roff + seeAlso(pages);
}

}  // namespace torvio
