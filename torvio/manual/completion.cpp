#include "torvio/manual/completion.h"

#include <string_view>
#include <vector>

#include "torvio/manual/options.h"

namespace torvio {
namespace {

constexpr const char* kHead = "of torvio " TORVIO_VERSION ", made of the options of its commands.\n";

// In single quotation marks, for both shells.
std::string shellWord(std::string_view text) {
  std::string word = "'";
  for (const char c : text) c == '\'' ? void(word += "'\\''") : word.push_back(c);
  return word + "'";
}

std::string joined(const std::vector<std::string>& words, std::string_view separator) {
  std::string text;
  for (const std::string& word : words) text.append(text.empty() ? "" : separator).append(word);
  return text;
}

// ---- bash -----------------------------------------------------------------------------------------------

std::vector<std::string> optionNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::Option* option : optionsOf(app))
    for (const std::string& name : namesOf(*option)) names.push_back(name);
  return names;
}

std::string bashValues(const CLI::Option& option) {
  if (takesFile(option)) return "FILE";
  const std::vector<std::string> values = acceptedValues(option);
  return values.empty() ? "NONE" : shellWord(joined(values, " "));
}

// Sets options, arguments and, if $option is an option with a value, values.
std::string bashCase(const CLI::App& command) {
  std::string text = "    " + command.get_name() + ")\n      options=" + shellWord(joined(optionNames(command), " "));
  text += "\n      arguments=";
  const auto arguments = argumentsOf(command);
  text += arguments.empty() ? "NONE" : bashValues(*arguments.front());
  text += "\n      case $option in\n";
  for (const CLI::Option* option : optionsOf(command))
    if (option->get_type_size() > 0)
      text += "        " + joined(namesOf(*option), " | ") + ") values=" + bashValues(*option) + " ;;\n";
  return text + "      esac ;;\n";
}

// ---- zsh ------------------------------------------------------------------------------------------------

std::string escapedForZsh(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '[' || c == ']' || c == ':' || c == '\\') escaped += '\\';
    escaped += c;
  }
  return escaped;
}

std::string zshAction(const CLI::Option& option) {
  if (takesFile(option)) return "_files";
  const std::vector<std::string> values = acceptedValues(option);
  if (values.empty()) return " ";
  // No blank is added after a value that is not complete yet.
  if (values.front().ends_with('.')) return "{compadd -S \"\" -- " + joined(values, " ") + "}";
  return "(" + joined(values, " ") + ")";
}

// One argument of _arguments.
std::string zshOption(const CLI::Option& option) {
  const std::vector<std::string> names = namesOf(option);
  const bool hasValue = option.get_type_size() > 0, isRepeated = option.get_items_expected_max() > 1;
  std::string rest = "[" + escapedForZsh(option.get_description()) + "]";
  if (hasValue) rest += ":" + escapedForZsh(valueName(option)) + ":" + zshAction(option);
  std::string text;
  for (const std::string& name : names) {
    std::string form = isRepeated ? "*" : names.size() > 1 ? "(" + joined(names, " ") + ")" : "";
    form += name;
    if (hasValue) form += name.starts_with("--") ? "=" : "+";
    text += " \\\n        " + shellWord(form + rest);
  }
  return text;
}

std::string zshArgument(const CLI::Option& argument) {
  const std::string start = argument.get_items_expected_max() > 1 ? "*:" : argument.get_required() ? ":" : "::";
  const std::string form = start + escapedForZsh(valueName(argument)) + ":" + zshAction(argument);
  return " \\\n        " + shellWord(form);
}

}  // namespace

std::string bashCompletion(const CommandLine& line) {
  std::vector<std::string> commands;
  std::string cases;
  for (const CLI::App* command : line.commands()) {
    commands.push_back(command->get_name());
    cases += bashCase(*command);
  }
  return std::string("# Completion for bash ") + kHead + R"(
_torvio() {
  COMPREPLY=()
  # "--kind=part" is one word here, although readline divides it.
  local -a words=()
  local word isDivided=
  for word in "${COMP_WORDS[@]:1:COMP_CWORD}"; do
    if [[ ${#words[@]} -gt 0 && ($word == = || -n $isDivided) ]]; then
      words[-1]+=$word
    else
      words+=("$word")
    fi
    isDivided=
    [[ $word == = ]] && isDivided=1
  done
  local current=${words[-1]} divided=${COMP_WORDS[COMP_CWORD]}
  [[ $divided == = ]] && divided=
  # What readline does not replace.
  local kept=${current%"$divided"}

  local command= option= isFile= i
  for ((i = 0; i < ${#words[@]} - 1; ++i)); do
    word=${words[i]}
    if [[ -z $command ]]; then
      [[ $word == -* ]] || command=$word
    elif [[ $word == -- && ${words[i - 1]} != --files-from ]]; then
      isFile=1
    fi
  done
  if [[ -n $command ]]; then
    option=${words[-2]}
    [[ $current == --*=* ]] && option=${current%%=*}
  fi

  local options= arguments=NONE values=
  case $command in
    '')
      options=)" +
         shellWord(joined(optionNames(line.tool()), " ")) + "\n      arguments=" + shellWord(joined(commands, " ")) +
         " ;;\n" + cases + R"(  esac
  [[ -n $isFile ]] && values=$arguments
  local candidates=$arguments
  if [[ -n $values ]]; then
    candidates=$values
    [[ $current == --*=* && -z $isFile && $values != FILE && $values != NONE ]] && candidates="$option=${values// / $option=}"
  elif [[ $current == -* ]]; then
    candidates=$options
  fi
  # Without a reply, readline completes names of files.
  [[ $candidates == FILE ]] && return
  compopt +o default +o bashdefault 2>/dev/null
  [[ $candidates == NONE ]] && return
  for word in $candidates; do
    if [[ $word == "$current"* ]]; then
      COMPREPLY+=("${word#"$kept"}")
      [[ $word == *. ]] && compopt -o nospace 2>/dev/null
    fi
  done
}

complete -o default -o bashdefault -F _torvio torvio
)";
}

std::string zshCompletion(const CommandLine& line) {
  std::string text = "#compdef torvio\n# Completion for zsh ";
  text += kHead;
  text += "\n_torvio() {\n  local curcontext=$curcontext state\n  local -a line commands\n  typeset -A opt_args\n";
  text += "  _arguments -C";
  for (const CLI::Option* option : optionsOf(line.tool())) text += zshOption(*option);
  text += " \\\n        '1:COMMAND:->command' \\\n        '*::ARGUMENT:->arguments' && return\n";
  text += "  case $state in\n    command)\n      commands=(";
  for (const CLI::App* command : line.commands())
    text += "\n        " + shellWord(command->get_name() + ":" + command->get_description());
  text += ")\n      _describe -t commands command commands ;;\n    arguments)\n      case $words[1] in\n";
  for (const CLI::App* command : line.commands()) {
    text += "      " + command->get_name() + ")\n        _arguments -S";
    for (const CLI::Option* option : optionsOf(*command)) text += zshOption(*option);
    for (const CLI::Option* argument : argumentsOf(*command)) text += zshArgument(*argument);
    text += " ;;\n";
  }
  return text + "      esac ;;\n  esac\n}\n\n_torvio \"$@\"\n";
}

}  // namespace torvio
