// The library keeps the part builder and the records that some queries load once for the process: one thread at a time
// may use them. Lock this without the GIL, which another thread may need to go on.
#pragma once
#include <mutex>

namespace oldtorvio::python {

std::mutex& processRecords();

}  // namespace oldtorvio::python
