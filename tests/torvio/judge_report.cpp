// Measures judge() over a corpus of make_corpus and over files that are something else: a table of what was judged right
// and wrong, and what it costs to find out the kind.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "tests/torvio/corpus.h"
#include "torvio/archive/plausibility.h"
#include "torvio/archive/verdict.h"
#include "torvio/explain/file_content.h"

namespace {

using namespace oldtorvio;
using archive::Judgement;
using archive::Verdict;
using Clock = std::chrono::steady_clock;

bool isVerbose = false;

struct Row {
  std::size_t files = 0, right = 0, wrong = 0, foreign = 0, wrongSound = 0;

  void count(const Judgement& judgement, frame::FileKind kind) {
    ++files;
    if (judgement.kind == kind) {
      ++right;
    } else if (!judgement.kind) {
      ++foreign;
    } else {
      ++wrong;
      if (judgement.verdict == Verdict::sound || judgement.verdict == Verdict::soundWithLosses) ++wrongSound;
    }
  }
  void add(const Row& row) {
    files += row.files;
    right += row.right;
    wrong += row.wrong;
    foreign += row.foreign;
    wrongSound += row.wrongSound;
  }
  void print(const std::string& name) const {
    const auto share = [this](std::size_t n) { return files > 0 ? 100.0 * double(n) / double(files) : 0.0; };
    std::printf("%-26s %6zu  %6zu  %5zu (%5.2f %%)  %5zu (%5.2f %%)  %5zu\n", name.c_str(), files, right, wrong,
                share(wrong), foreign, share(foreign), wrongSound);
  }
};

// Seconds that `fn` takes, which is called as often as makes it measurable.
template <class Fn>
double secondsOf(const Fn& fn) {
  double best = 1e9;
  for (int i = 0; i < 5; ++i) {
    const auto start = Clock::now();
    fn();
    best = std::min(best, std::chrono::duration<double>(Clock::now() - start).count());
  }
  return best;
}

struct Listed {
  std::string name;
  frame::FileKind kind;
  std::string damage;
  std::size_t intact;
};

std::vector<Listed> truthOf(const std::filesystem::path& folder) {
  std::vector<Listed> all;
  std::ifstream list(folder / "truth.tsv");
  std::string line;
  std::getline(list, line);
  while (std::getline(list, line)) {
    std::istringstream fields(line);
    Listed one;
    std::string kind, version, intact;
    std::getline(fields, one.name, '\t');
    std::getline(fields, kind, '\t');
    std::getline(fields, version, '\t');
    std::getline(fields, one.damage, '\t');
    std::getline(fields, intact, '\t');
    one.intact = std::strtoul(intact.c_str(), nullptr, 10);
    const auto* info = std::find_if(frame::kFileKinds.begin(), frame::kFileKinds.end(),
                                    [&](const frame::FileKindInfo& i) { return i.name == kind; });
    if (info == frame::kFileKinds.end()) continue;
    one.kind = info->kind;
    all.push_back(one);
  }
  return all;
}

void reportCorpus(const std::filesystem::path& folder) {
  const std::vector<Listed> files = truthOf(folder);
  std::map<std::string, Row> rows;
  constexpr std::size_t kBeginning = 256;
  Row beginnings[2];
  double guess[2] = {}, check[2] = {};
  for (const Listed& file : files) {
    const explain::FileContent content((folder / file.name).string());
    const Judgement judgement = archive::judge("", content.bytes(), {});
    const bool isDamaged = file.damage != "none";
    const std::string name = std::string(frame::infoOf(file.kind).name) + (isDamaged ? ", damaged" : ", sound");
    rows[name].count(judgement, file.kind);
    if (isDamaged) beginnings[file.intact >= kBeginning ? 1 : 0].count(judgement, file.kind);
    if (isVerbose && judgement.kind != file.kind)
      std::printf("%s: %s, %zu bytes, version %d, %s: judged %s, %s\n", file.name.c_str(), name.c_str(),
                  content.bytes().size(), judgement.report.version.value_or(-1), file.damage.c_str(),
                  judgement.kind ? std::string(frame::infoOf(*judgement.kind).name).c_str() : "-",
                  std::string(archive::nameOf(judgement.verdict)).c_str());
    guess[isDamaged ? 1 : 0] += secondsOf([&] { (void)archive::likeliestKind(content.bytes()); });
    check[isDamaged ? 1 : 0] += secondsOf([&] { (void)explain::checkFile(content.bytes(), file.kind); });
  }
  std::printf("%-26s %6s  %6s  %16s  %16s  %s\n", "made files", "files", "right", "wrong", "called foreign",
              "wrong, called sound");
  Row all[2];
  for (const auto& [name, row] : rows) {
    row.print(name);
    all[name.ends_with("damaged") ? 1 : 0].add(row);
  }
  all[0].print("all sound");
  all[1].print("all damaged");
  beginnings[0].print("  in the first 256 bytes");
  beginnings[1].print("  only after these");
  std::printf("\n%-24s %10s %10s\n", "microseconds per file", "guess", "check");
  for (const int i : {0, 1})
    std::printf("%-26s %10.2f %10.2f\n", i == 0 ? "sound" : "damaged", 1e6 * guess[i] / double(all[i].files),
                1e6 * check[i] / double(all[i].files));
  std::printf("%-26s %10.2f %10.2f\n", "all", 1e6 * (guess[0] + guess[1]) / double(files.size()),
              1e6 * (check[0] + check[1]) / double(files.size()));
}

// Counts of those called one of ours.
class ForeignRow {
 public:
  void count(const std::string& name, std::span<const std::byte> bytes) {
    ++files_;
    const Judgement judgement = archive::judge("", bytes, {});
    if (judgement.verdict == Verdict::foreign) return;
    ++ours_;
    std::printf("%s: judged %s, %s\n", name.c_str(), std::string(frame::infoOf(*judgement.kind).name).c_str(),
                std::string(archive::nameOf(judgement.verdict)).c_str());
  }
  void print(const std::string& name) const {
    std::printf("%-40s %6zu files, %4zu called one of ours (%.3f %%)\n", name.c_str(), files_, ours_,
                files_ > 0 ? 100.0 * double(ours_) / double(files_) : 0.0);
  }

 private:
  std::size_t files_ = 0, ours_ = 0;
};

// At most so many files of a folder, evenly spread over all of it.
void reportFolder(const std::string& folder, std::size_t most) {
  std::vector<std::string> paths;
  std::error_code ignored;
  for (auto at = std::filesystem::recursive_directory_iterator(
           folder, std::filesystem::directory_options::skip_permission_denied, ignored);
       at != std::filesystem::recursive_directory_iterator(); at.increment(ignored))
    if (at->is_regular_file(ignored) && !at->is_symlink(ignored)) paths.push_back(at->path().string());
  std::sort(paths.begin(), paths.end());
  ForeignRow row;
  const std::size_t files = std::min(most, paths.size());
  for (std::size_t i = 0; i < files; ++i) {
    const std::string& path = paths[i * paths.size() / files];
    const explain::FileContent content(path);
    if (content.error().empty()) row.count(path, content.bytes());
  }
  row.print(folder);
}

}  // namespace

int main(int argc, char** argv) {
  constexpr std::size_t kMostOfFolder = 5000;
  constexpr std::uint32_t kGenerated = 1200;
  int first = 1;
  if (argc > first && std::strcmp(argv[first], "-v") == 0) {
    isVerbose = true;
    ++first;
  }
  if (argc <= first) {
    std::cerr << "usage: judge_report [-v] CORPUS_FOLDER [FOREIGN_FOLDER...]\n";
    return 2;
  }
  reportCorpus(argv[first]);
  std::printf("\n");
  ForeignRow generated;
  for (std::uint32_t i = 0; i < kGenerated; ++i)
    generated.count("generated " + std::to_string(i), testing_support::foreignFile(1, i).span());
  generated.print("generated");
  for (int i = first + 1; i < argc; ++i) reportFolder(argv[i], kMostOfFolder);
  return 0;
}
