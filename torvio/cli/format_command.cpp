#include <string>
#include <vector>

#include "torvio/cli/commands.h"
#include "torvio/cli/output.h"
#include "torvio/explain/format_table.h"
#include "torvio/report/format_json.h"
#include "torvio/report/kaitai.h"

namespace torvio {
namespace {

using namespace oldtorvio;

std::vector<std::string> recordNames() {
  std::vector<std::string> names;
  for (const std::string_view record : explain::recordNames()) names.emplace_back(record);
  return names;
}

// Prints the stored form of a kind of file or of an embedded record as a Markdown table, or that of a kind as a
// description from which Kaitai Struct makes readers.
class FormatCommand : public Command {
 public:
  CLI::App* addTo(CLI::App& tool) override {
    CLI::App* command = tool.add_subcommand("format", "Print the stored form of a kind of file as a Markdown table");
    std::vector<std::string> tables = kindNames();
    for (const std::string& record : recordNames()) tables.push_back(record);
    command->add_option("KIND", table_, "A kind of file, or a record that files embed")
        ->required()
        ->check(oneOf(tables, "kind or record", "Kinds and records"));
    CLI::Option* as = command->add_option("--as", language_, "markdown, or kaitai: a .ksy file of Kaitai Struct")
                          ->type_name("LANGUAGE")
                          ->take_last()
                          ->check(oneOf({kMarkdown, kKaitai}, "language", "Languages"));
    command->add_flag("--json", isJson_, "Print a JSON object for each row, one per line")->excludes(as);
    addOutput(*command, output_);
    command->footer(wrapped("Kinds", kindNames()) + "\n\n" + wrapped("Records", recordNames()) +
                    "\n\nAn object of --json has fields (a list of names), storedAs (how each of them is\n"
                    "stored; empty for a rule about earlier fields) and condition."
                    "\n\nKaitai descriptions exist only for kinds of files; their text says what they\nleave out."
                    "\n\nExamples:\n"
                    "  torvio format sheet\n"
                    "      Print every field of a sheet file in the order of its bytes.\n"
                    "  torvio format sheet --as kaitai -o sheet.ksy\n"
                    "      Make a definition for Kaitai Struct.\n\n" +
                    kExitCodesWithoutFiles);
    return command;
  }

  ExitCode run() override {
    const auto kind = kindNamed(table_);
    if (language_ == kKaitai) return printKaitai(kind);
    const std::vector<explain::FormatRow> rows = kind ? explain::formatRows(*kind) : explain::recordRows(table_);
    return write(isJson_ ? report::formatJson(rows) : explain::markdownOf(rows));
  }

 private:
  static constexpr const char* kMarkdown = "markdown";
  static constexpr const char* kKaitai = "kaitai";

  ExitCode printKaitai(std::optional<frame::FileKind> kind) const {
    if (!kind) {
      printError("format: " + inQuotes(table_) + " is a record; Kaitai descriptions exist only for kinds of files\n" +
                 wrapped("Kinds", kindNames()));
      return kUsageError;
    }
    const report::KaitaiDescription description = report::kaitaiDescription(*kind);
    if (!description.problems.empty()) {
      printError("format: a " + table_ + " file cannot be described for Kaitai: " + description.problems.front());
      return kUsageError;
    }
    return write(description.text);
  }

  ExitCode write(const std::string& text) const {
    return writeOutput(output_, [&](OutputText& output) {
      output.write(text);
      return kSound;
    });
  }

  std::string table_, language_ = kMarkdown, output_;
  bool isJson_ = false;
};

}  // namespace

std::unique_ptr<Command> makeFormatCommand() { return std::make_unique<FormatCommand>(); }

}  // namespace torvio
