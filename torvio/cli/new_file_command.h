// What the commands that make a new file from an old one share.
#pragma once
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "torvio/cli/command.h"
#include "torvio/convert/report.h"

namespace torvio {

class NewFileCommand : public Command {
 public:
  ExitCode run() override;

 protected:
  // The outcome of the library for the bytes of the file.
  struct Made {
    std::vector<std::byte> bytes;  // of the new file; none after an error, or if there is nothing to write
    oldtorvio::convert::Report report;
    std::string error;
    std::string summary;  // in the printed report: "sheet of version 180 to version 152"
  };
  virtual std::string name() const = 0;  // of the command
  virtual Made make(std::span<const std::byte> bytes, oldtorvio::frame::FileKind kind) const = 0;

  // Adds the arguments and options that both have.
  void addShared(CLI::App& command);
  // The encoding of the texts in the report.
  const std::string& encoding() const { return encoding_; }

 private:
  ExitCode make() const;
  ExitCode write(const Made& made) const;
  void report(const Made& made, bool isWritten) const;
  ExitCode failed(const std::string& file, const std::string& why, ExitCode code) const;

  std::string input_, output_, encoding_;
  oldtorvio::archive::JudgeOptions judge_;
  bool isDryRun_ = false, isJson_ = false;
};

// The end of their help texts.
std::string newFileHelp();

}  // namespace torvio
