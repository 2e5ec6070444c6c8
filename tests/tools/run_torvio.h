// Runs torvio as a user does: as a shell command. Returns what it prints and its exit code.
#pragma once
#include <string>

#include "tests/support/files.h"
#include "tests/support/host.h"

namespace testing_support {

struct Outcome {
  int code = -1;
  std::string output;
  std::string errors;
};

inline std::string asText(const Bytes& bytes) {
  return {reinterpret_cast<const char*>(bytes.span().data()), bytes.size()};
}

// Runs any shell command.
inline Outcome runShell(const std::string& command) {
  const TempFolder folder;
  Outcome run;
  run.code = runCommand(command, run.output, folder.path("errors"));
  run.errors = asText(TempFolder::read(folder.path("errors")));
  // Windows ends lines with "\r\n".
  std::erase(run.errors, '\r');
  return run;
}

// The beginning of a command that runs in that folder.
inline std::string changeFolder(const std::string& folder) { return (kIsPosix ? "cd " : "cd /d ") + folder + " && "; }

inline Outcome torvio(const std::string& arguments) { return runShell(std::string(TORVIO_COMMAND) + " " + arguments); }

}  // namespace testing_support
