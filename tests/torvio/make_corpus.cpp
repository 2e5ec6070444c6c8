// Writes the corpus that judge_report reads: files of all kinds, some of them damaged, and the list truth.tsv with
// name, kind, version and damage of each, and the bytes before the damage.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include "tests/support/files.h"
#include "tests/torvio/corpus.h"

int main(int argc, char** argv) {
  if (argc < 2 || argc > 4) {
    std::cerr << "usage: make_corpus FOLDER [FILES [SEED]]\n";
    return 2;
  }
  const std::filesystem::path folder(argv[1]);
  const auto files = static_cast<std::uint32_t>(argc > 2 ? std::strtoul(argv[2], nullptr, 10) : 10000);
  const auto seed = static_cast<std::uint32_t>(argc > 3 ? std::strtoul(argv[3], nullptr, 10) : 1);
  std::filesystem::create_directories(folder);
  std::ofstream truth(folder / "truth.tsv", std::ios::binary);
  truth << "name\tkind\tversion\tdamage\tintact\n";
  for (std::uint32_t i = 0; i < files; ++i) {
    const testing_support::MadeFile made = testing_support::madeFile(seed, i);
    char name[32];
    (void)std::snprintf(name, sizeof name, "%05u", static_cast<unsigned>(i));
    testing_support::writeFile((folder / name).string(), made.bytes);
    truth << name << '\t' << oldtorvio::frame::infoOf(made.kind).name << '\t' << made.version << '\t' << made.damage
          << '\t' << made.intact << '\n';
  }
  truth.close();
  if (truth.good()) return 0;
  std::cerr << "the list cannot be written\n";
  return 3;
}
