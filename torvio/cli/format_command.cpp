#include <string>
#include <vector>

#include "torvio/cli/commands.h"
#include "torvio/cli/output.h"
#include "torvio/explain/format_table.h"

namespace torvio {
namespace {

std::vector<std::string> recordNames() {
  std::vector<std::string> names;
  for (const std::string_view record : oldtorvio::explain::recordNames()) names.emplace_back(record);
  return names;
}

// Prints the stored form of a kind of file, or of a record that files embed, as a Markdown table.
class FormatCommand : public Command {
 public:
  CLI::App* addTo(CLI::App& tool) override {
    CLI::App* command = tool.add_subcommand("format", "Print the stored form of a kind of file as a Markdown table");
    std::vector<std::string> tables = kindNames();
    for (const std::string& record : recordNames()) tables.push_back(record);
    command->add_option("KIND", table_, "A kind of file, or a record that files embed")
        ->required()
        ->check(oneOf(tables, "kind or record", "Kinds and records"));
    command->footer(wrapped("Kinds", kindNames()) + "\n\n" + wrapped("Records", recordNames()) +
                    "\n\nExit code: 0, 2 for a wrong command line, 3 if the output could not be written.");
    return command;
  }

  ExitCode run() override {
    const auto kind = kindNamed(table_);
    print(kind ? oldtorvio::explain::formatTable(*kind) : oldtorvio::explain::recordTable(table_));
    return kSound;
  }

 private:
  std::string table_;
};

}  // namespace

std::unique_ptr<Command> makeFormatCommand() { return std::make_unique<FormatCommand>(); }

}  // namespace torvio
