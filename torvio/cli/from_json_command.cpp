#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <limits>
#include <memory>
#include <new>
#include <optional>
#include <span>
#include <string>
#include <system_error>

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#endif

#include "src/frame/host/platform.h"
#include "torvio/archive/host_files.h"
#include "torvio/cli/commands.h"
#include "torvio/cli/output.h"
#include "torvio/cli/output_file.h"
#include "torvio/convert/sheet_surplus.h"
#include "torvio/values/json_reader.h"

namespace torvio {
namespace {

using namespace oldtorvio;

std::string inWords(int error) { return std::generic_category().message(error); }

// The text that could not be read, and why.
struct ReadError {
  std::string reason;
};

// The JSON text: a file, or standard input.
class Input {
 public:
  explicit Input(const std::string& path) : owned_(path.empty() ? nullptr : archive::openFile(path, "rb")) {
    if (!path.empty() && !owned_) throw ReadError{"cannot be opened: " + inWords(errno)};
    file_ = owned_ ? owned_.get() : stdin;
    if (frame::isFolder(file_)) throw ReadError{"is a folder"};
#if defined(_WIN32)
    (void)::_setmode(::_fileno(file_), _O_BINARY);
#endif
    // The reader has its own buffer.
    (void)std::setvbuf(file_, nullptr, _IONBF, 0);
  }

  std::size_t read(char* to, std::size_t size) {
    const std::size_t got = std::fread(to, 1, size, file_);
    if (got < size && std::ferror(file_) != 0) throw ReadError{"cannot be read: " + inWords(errno)};
    return got;
  }

 private:
  struct Close {
    void operator()(std::FILE* file) const { (void)std::fclose(file); }
  };
  std::unique_ptr<std::FILE, Close> owned_;
  std::FILE* file_ = nullptr;
};

// Makes a file from the JSON of its record.
class FromJsonCommand : public Command {
 public:
  CLI::App* addTo(CLI::App& tool) override {
    CLI::App* command = tool.add_subcommand("from-json", "Make a file from the JSON of its record");
    addFile(*command, "IN", input_, "The JSON text; without it standard input");
    addFile(*command, "-o,--output", output_, "The file to make")->type_name("OUT")->take_last()->required();
    command->add_option("--version", version_, "Save in this version instead of the one of the JSON")
        ->type_name("VERSION")
        ->take_last()
        ->check(inRange(int{std::numeric_limits<std::int16_t>::min()}, int{std::numeric_limits<std::int16_t>::max()}));
    command->footer(
        "\"torvio json\" prints this JSON. OUT is replaced once the new file is\n"
        "complete; - is standard output. A member that is unknown, missing or of another\n"
        "type is an error. \"torvio schema\" describes the JSON.\n\n"
        "Below version 152, the save of a sheet or machine stores bytes that no load\n"
        "expects: \"torvio convert\" makes a file without them. A file that a load does\n"
        "not read to its end is reported.\n\n"
        "Examples:\n"
        "  torvio from-json nest.json -o nest.sheet\n"
        "      Make a file from JSON that was edited.\n"
        "  torvio json old.sheet | torvio from-json --version 180 -o new.sheet\n"
        "      Save a file in another version.\n\n"
        "Exit code:\n"
        "  0  the file was made\n"
        "  1  the JSON is refused, or its record cannot be saved in this version\n"
        "  2  the command line is wrong\n"
        "  3  the JSON could not be read, or the file could not be written");
    return command;
  }

  ExitCode run() override try {
    if (isInputToo("from-json", output_, {input_})) return kUsageError;
    Input input(input_);
    const values::JsonRecord read = values::readJson([&](char* to, std::size_t size) { return input.read(to, size); });
    if (!read.error.empty()) return failed(inputName() + ": " + read.error, kDamaged);
    return save(read);
  } catch (const ReadError& error) {
    return failed(inputName() + ": " + error.reason, kNotReadOrWritten);
  } catch (const std::bad_alloc&) {
    return failed(inputName() + ": cannot be read: not enough memory", kNotReadOrWritten);
  }

 private:
  ExitCode save(const values::JsonRecord& read) const {
    const int version = version_.value_or(read.version);
    std::optional<OutputFile> output;
    if (output_ != "-") output.emplace(output_);
    if (output && output->handle() == nullptr) return notWritten(*output);
    codec::OutStream stream;
    const std::int64_t status = values::storeLoadable(stream, read, version);
    if (status != frame::kDone) return failed(inputName() + ": " + values::refusalOf(read, status, version), kDamaged);
    if (output && !(output->write(stream.bytes()) && output->commit())) return notWritten(*output);
    if (!output) printBytes(stream.bytes());
    warnOfMisread(stream.bytes(), read.kind, version);
    return kSound;
  }

  static void printBytes(std::span<const std::byte> bytes) {
#if defined(_WIN32)
    (void)::_setmode(::_fileno(stdout), _O_BINARY);
#endif
    print({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
  }

  // Some saves store what no load expects.
  void warnOfMisread(std::span<const std::byte> bytes, frame::FileKind kind, int version) const {
    const explain::FileReport report = explain::checkFile(bytes, kind);
    if (report.endsExactly()) return;
    std::string text = (output_ == "-" ? "standard output" : onOneLine(output_)) + ": a load does not read this file " +
                       "to its end: " + (report.fault ? explain::describe(*report.fault) : report.unread());
    if (convert::surplusOf(bytes, kind, report))
      text += "; \"torvio convert --version " + std::to_string(version) + "\" fixes it";
    printError(text);
  }

  ExitCode notWritten(const OutputFile& output) const {
    return failed(onOneLine(output_) + ": " + output.error(), kNotReadOrWritten);
  }

  std::string inputName() const { return input_.empty() ? "standard input" : onOneLine(input_); }
  static ExitCode failed(const std::string& message, ExitCode code) {
    printError(message);
    return code;
  }

  std::string input_, output_;
  std::optional<int> version_;
};

}  // namespace

std::unique_ptr<Command> makeFromJsonCommand() { return std::make_unique<FromJsonCommand>(); }

}  // namespace torvio
