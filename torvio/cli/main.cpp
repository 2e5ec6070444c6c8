// torvio: shows what is in a file, and where a damaged file fails.
#include <new>

#include "torvio/cli/command_line.h"
#include "torvio/cli/output.h"

#if defined(_WIN32)
#include <windows.h>

#include <string>
#include <vector>

#include "torvio/explain/file_names.h"
#endif

namespace {

int runTorvio(int argc, char** argv) {
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

#if defined(_WIN32)
// The console shows UTF-8 and understands escape sequences until the program ends.
class ConsoleSettings {
 public:
  ConsoleSettings() {
    (void)::SetConsoleOutputCP(CP_UTF8);
    isChanged_ = ::GetConsoleMode(console_, &mode_) != 0 &&
                 ::SetConsoleMode(console_, mode_ | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
  }
  ConsoleSettings(const ConsoleSettings&) = delete;
  ConsoleSettings& operator=(const ConsoleSettings&) = delete;
  ~ConsoleSettings() {
    if (isChanged_) (void)::SetConsoleMode(console_, mode_);
    (void)::SetConsoleOutputCP(codePage_);
  }

 private:
  UINT codePage_ = ::GetConsoleOutputCP();
  HANDLE console_ = ::GetStdHandle(STD_ERROR_HANDLE);
  DWORD mode_ = 0;
  bool isChanged_ = false;
};
#endif

}  // namespace

#if defined(_WIN32)
// The command line in UTF-16 can express all file names; the code page of the system lacks some characters.
int wmain(int argc, wchar_t** argv) {
  const ConsoleSettings console;
  std::vector<std::string> arguments;
  for (int i = 0; i < argc; ++i) arguments.push_back(oldtorvio::explain::narrowName(argv[i]));
  std::vector<char*> pointers;
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  return runTorvio(argc, pointers.data());
}
#else
int main(int argc, char** argv) { return runTorvio(argc, argv); }
#endif
