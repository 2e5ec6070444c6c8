#include <string>

#include "torvio/cli/commands.h"
#include "torvio/values/json_schema.h"

namespace torvio {
namespace {

// Prints the JSON Schema of what `json` prints for files of a kind.
class SchemaCommand : public Command {
 public:
  CLI::App* addTo(CLI::App& tool) override {
    CLI::App* command = tool.add_subcommand("schema", "Print the JSON Schema of what json prints for a kind of file");
    command->add_option("KIND", kind_, "A kind of file")->required()->check(oneOf(kindNames(), "kind", "Kinds"));
    addOutput(*command, output_);
    command->footer(wrapped("Kinds", kindNames()) +
                    "\n\nExamples:\n"
                    "  torvio schema sheet -o sheet.schema.json\n"
                    "      For an editor or a validator.\n\n" +
                    kExitCodesWithoutFiles);
    return command;
  }

  ExitCode run() override {
    return writeOutput(output_, [this](OutputText& output) {
      output.write(oldtorvio::values::jsonSchema(*kindNamed(kind_)));
      return kSound;
    });
  }

 private:
  std::string kind_, output_;
};

}  // namespace

std::unique_ptr<Command> makeSchemaCommand() { return std::make_unique<SchemaCommand>(); }

}  // namespace torvio
