// The options and arguments of a command, in the order of its help.
#pragma once
#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace torvio {

inline std::vector<const CLI::Option*> optionsOf(const CLI::App& app) {
  return app.get_options([](const CLI::Option* option) { return !option->get_positional(); });
}
inline std::vector<const CLI::Option*> argumentsOf(const CLI::App& app) {
  return app.get_options([](const CLI::Option* option) { return option->get_positional(); });
}

// "-o", "--output".
inline std::vector<std::string> namesOf(const CLI::Option& option) {
  std::vector<std::string> names;
  for (const std::string& name : option.get_snames()) names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
  return names;
}

}  // namespace torvio
