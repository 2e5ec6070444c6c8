// One table with a call of every export on content with which it succeeds: for what is true of all exports.
#pragma once
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tests/support/exports.h"
#include "tests/support/files.h"
#include "tests/support/long_tests.h"

namespace testing_support {

// A folder with a file of each kind, found by their names, and special tools.
class Samples {
 public:
  // With `many`, the main list of each file has so many elements more, and all files are of the newest version. Group
  // parts and sheets are never older than 152: below, there are no group parts, and no load reads a saved sheet.
  explicit Samples(std::size_t many = 0, int version = 180);

  std::string path(const std::string& name) const {
    const auto moved = moved_.find(name);
    return moved != moved_.end() ? moved->second : folder_.path(name);
  }
  // From now on the file of that name is at another path.
  void move(const std::string& name, const std::string& path) { moved_[name] = path; }
  const Bytes& content(const std::string& name) const { return contents_.at(name); }
  // Give the file other content, in place or as a new file, and its first content again.
  void change(const std::string& name, const Bytes& content) const { writeFile(path(name), content); }
  void replace(const std::string& name, const Bytes& content) const;
  void restore(const std::string& name) const { replace(name, content(name)); }
  std::size_t many() const { return many_; }

 private:
  void add(const std::string& name, const Bytes& content);

  std::size_t many_;
  TempFolder folder_;
  WinIni ini_{WinIni::folderSetting(folder_.path() + "/")};
  std::map<std::string, Bytes> contents_;
  std::map<std::string, std::string> moved_;
};

struct PreparedCall {
  std::function<std::int64_t()> call;   // its status; for a pointer 1, or 0 if it is null
  std::function<std::string()> answer;  // everything that it may change, byte by byte
  std::function<void()> renew;          // what a second call needs before it
};

struct ExportCall {
  enum class Files : std::uint8_t {
    none,
    loaded,  // reads `input`
    edited,  // reads `input` and writes it again
    saved,   // writes `input`
    tools,   // looks for special tools
  };
  std::string name;
  std::string form;  // where a function has several calls
  Files files = Files::none;
  std::string input;
  std::int64_t whenDone = 0;
  // What it returns if memory runs out, in the order of its allocations; empty if it makes none.
  std::vector<std::int64_t> withoutMemory;
  // What it returns if the first, second, ... file that it opens cannot be opened.
  std::vector<std::int64_t> notOpened;
  // A failure changes nothing.
  bool allOrNothing = false;
  std::function<PreparedCall(const Exports&, const Samples&)> prepare;
  // It works on data that exist once in the process and keep their memory.
  bool keepsRoom = false;

  std::string title() const { return form.empty() ? name : name + ", " + form; }
};

// In the order of their names.
const std::vector<ExportCall>& exportCalls();

// Of every age, for the samples of what does not depend on one version.
inline std::vector<int> sampleVersions() {
  if (isLongRun()) return {60, 90, 101, 110, 130, 152, 160, 161, 162, 170, 180};
  return {60, 152, 180};
}

}  // namespace testing_support
