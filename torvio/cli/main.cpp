// torvio: what is in an old file, and where a damaged one breaks.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <map>

#include "torvio/cli/commands.h"

namespace {

constexpr int kMisuse = 2;

int run(int argc, char** argv) {
  CLI::App app{"Explains the older files of the suite byte by byte."};
  app.set_version_flag("--version", TORVIO_VERSION);
  app.require_subcommand(1);
  app.footer("Exit code: 0 all files are sound, 1 one is not, 2 misuse.");

  std::map<std::string, oldtorvio::map::FileKind> kinds;
  for (const auto& kind : oldtorvio::map::fileKinds()) kinds.emplace(kind.name, kind.kind);
  std::optional<oldtorvio::map::FileKind> forced;
  const auto addKind = [&](CLI::App& command) {
    command.add_option("--kind", forced, "Take the files as this kind instead of detecting it")
        ->transform(CLI::CheckedTransformer(kinds));
  };

  std::string file;
  CLI::App* map = app.add_subcommand("map", "Print offset, size, path and value of every field of a file");
  map->add_option("FILE", file, "The file")->required();
  addKind(*map);

  std::vector<std::string> files;
  CLI::App* check = app.add_subcommand("check", "Print one line a file: kind, version, status, bytes, fault");
  check->add_option("FILE", files, "The files")->required();
  addKind(*check);

  std::vector<std::string> names = torvio::kindNames();
  for (const std::string& record : torvio::recordNames()) names.push_back(record);
  std::string name;
  CLI::App* format = app.add_subcommand("format", "Print the stored form of a kind of file as a Markdown table");
  format->add_option("KIND", name, "A kind of file, or a record that files embed")
      ->required()
      ->check(CLI::IsMember(names));

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? 0 : kMisuse;
  }
  if (*format) return torvio::formatCommand(name);
  return *map ? torvio::mapCommand(file, forced) : torvio::checkCommand(files, forced);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception& error) {
    (void)std::fprintf(stderr, "torvio: %s\n", error.what());
    return kMisuse;
  }
}
