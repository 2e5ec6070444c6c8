// The state of a mutation run in one process: see switch.h.
#include "tests/mutation/switch.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>

namespace oldtorvio_mutation {
namespace {

unsigned char unshared[kMost];

}  // namespace

int active = 0;
unsigned char* touched = unshared;

namespace {

// Runs before all other constructors, which may evaluate places already.
[[gnu::constructor(101)]] void begin() {
  if (const char* id = std::getenv("OLDTORVIO_MUTANT")) active = std::atoi(id);
  const char* path = std::getenv("OLDTORVIO_MUTATION_TOUCHED");
  if (path == nullptr) return;
  const int file = ::open(path, O_RDWR | O_CREAT, 0600);
  if (file < 0 || ::ftruncate(file, kMost) != 0) return;
  void* const shared = ::mmap(nullptr, kMost, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
  (void)::close(file);
  if (shared != MAP_FAILED) touched = static_cast<unsigned char*>(shared);
}

}  // namespace
}  // namespace oldtorvio_mutation
