// torvio: shows what is in a file, and where a damaged file fails.
#include <new>

#include "torvio/cli/command_line.h"
#include "torvio/cli/output.h"

int main(int argc, char** argv) {
  try {
    const torvio::ExitCode code = torvio::CommandLine().run(argc, argv);
    torvio::finishOutput();
    return code;
  } catch (const torvio::OutputError& error) {
    if (!error.isClosedPipe()) torvio::printError(error.what());
  } catch (const std::bad_alloc&) {
    torvio::printError("not enough memory");
  }
  return torvio::kNotReadOrWritten;
}
