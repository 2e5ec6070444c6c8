#include "bench/suites.h"

namespace bench {

const Folder& folder() {
  static const Folder folder;
  return folder;
}

}  // namespace bench

int main(int argc, char** argv) {
  bench::registerParts();
  bench::registerMachinesAndTools();
  bench::registerSheets();
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
