// Small files of every kind with something in each of their lists.
#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tests/support/bytes.h"
#include "tests/support/random_records.h"
#include "torvio/explain/file_map.h"

namespace testing_support {

namespace explain = oldtorvio::explain;

Bytes machineFile(int version);
Bytes materialFile(int version);
Bytes inventoryFile(int version);
Bytes macroFile(int version);
Bytes sheetFile(int version);

// Random content, with an element at least where a list brings others.
void fullMachine(RandomRecords& random, oldtorvio::OldMachine* m, int version);
// One part that uses the station, a list of each kind.
void fullSheet(oldtorvio::OldSheet& s, int version);

struct Kind {
  explain::FileKind kind;
  std::string name;
  std::vector<int> versions;
  Bytes (*file)(int version);
  std::int64_t (*load)(const char* path);
  std::size_t recordSize;  // of what `load` loads into
};

// Into a record of its own.
template <class Record, auto load>
std::int64_t loadAnew(const char* path) {
  const auto record = std::make_unique<Record>();
  return load(path, record.get());
}

const std::vector<Kind>& kinds();

// Whether the field of that path, as in maps, counts what follows.
bool isCount(const std::string& path);

}  // namespace testing_support
