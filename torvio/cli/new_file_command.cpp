#include "torvio/cli/new_file_command.h"

#include <new>

#include "torvio/archive/verdict.h"
#include "torvio/cli/file_text.h"
#include "torvio/cli/output.h"
#include "torvio/cli/output_file.h"
#include "torvio/explain/file_content.h"
#include "torvio/values/json.h"
#include "torvio/values/text_encoding.h"

namespace torvio {

using namespace oldtorvio;

void NewFileCommand::addShared(CLI::App& command) {
  encoding_ = values::kDefaultEncoding;
  addFile(command, "IN", input_, "The file")->required();
  addFile(command, "OUT", output_, "The new file; with --dry-run it may be left out");
  command.add_flag("--dry-run", isDryRun_, "Only print the report; the exit code is the same");
  command.add_flag("--json", isJson_, "Print the report as a JSON object on one line");
  addJudging(command, judge_);
  addEncoding(command, encoding_);
}

ExitCode NewFileCommand::run() try {
  if (output_.empty() && !isDryRun_) return usageError(name(), "OUT is required, or --dry-run");
  if (output_ == "-")
    return usageError(name(), "OUT cannot be -, since the report is printed; \"./-\" is a file of that name");
  if (isInputToo(name(), output_, {input_})) return kUsageError;
  return make();
} catch (const std::bad_alloc&) {
  return failed(input_, kNoMemory, kNotReadOrWritten);
}

ExitCode NewFileCommand::make() const {
  const explain::FileContent file(input_);
  if (!file.error().empty()) return failed(input_, file.error(), kNotReadOrWritten);
  const auto kind = archive::judge(input_, file.bytes(), judge_).kind;
  if (!kind)
    return failed(input_, explain::mapFile(file.bytes(), kind, nullptr).fault.value_or(explain::Fault{}).reason,
                  kDamaged);
  const Made made = make(file.bytes(), *kind);
  if (isDryRun_ || made.bytes.empty()) {
    report(made, false);
    return made.error.empty() ? kSound : failed(input_, made.error, kDamaged);
  }
  const ExitCode code = write(made);
  if (code == kSound) report(made, true);
  return code;
}

ExitCode NewFileCommand::write(const Made& made) const {
  OutputFile output(output_);
  if (output.handle() != nullptr && output.write(made.bytes) && output.commit()) return kSound;
  return failed(output_, output.error(), kNotReadOrWritten);
}

void NewFileCommand::report(const Made& made, bool isWritten) const {
  if (isJson_) return print(convert::jsonOf(made.report, values::fileNameAsUtf8(input_), made.error, isWritten));
  print(onOneLine(input_) + ": " + made.summary + "\n" + convert::textOf(made.report));
  if (isWritten) print("  written: " + onOneLine(output_) + ", " + convert::bytesText(made.report.newSize) + "\n");
}

ExitCode NewFileCommand::failed(const std::string& file, const std::string& why, ExitCode code) const {
  printError(onOneLine(file) + ": " + why);
  return code;
}

std::string newFileHelp() {
  return "OUT is replaced once the new file is complete and has been read back without a\n"
         "difference. A link, a folder or IN itself is not replaced.\n\n" +
         wrapped("Kinds", kindNames()) + "\n" + wrapped("Encodings", values::TextEncoding::names());
}

}  // namespace torvio
