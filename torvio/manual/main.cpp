// Writes the manual pages of torvio and its completions for bash and zsh: torvio_manual FOLDER
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include "torvio/manual/completion.h"
#include "torvio/manual/manual_page.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: torvio_manual FOLDER\n";
    return 2;
  }
  const std::filesystem::path folder(argv[1]);
  const auto write = [&](const std::string& name, const std::string& text) {
    const std::filesystem::path path = folder / name;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    file << text;
    file.close();
    if (!file.good()) std::cerr << "cannot write " << path << "\n";
    return file.good();
  };
  const torvio::CommandLine line;
  bool isWritten = write("man/man1/torvio.1", torvio::toolPage(line)) &&
                   write("bash-completion/completions/torvio", torvio::bashCompletion(line)) &&
                   write("zsh/site-functions/_torvio", torvio::zshCompletion(line));
  for (const CLI::App* command : line.commands())
    isWritten =
        isWritten && write("man/man1/torvio-" + command->get_name() + ".1", torvio::commandPage(line, *command));
  return isWritten ? 0 : 1;
}
