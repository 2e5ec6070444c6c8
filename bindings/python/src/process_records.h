// The library has the part builder and the records that some queries load once per process: one thread at a time may
// use them. Lock this without the GIL, which another thread may need to continue.
#pragma once
#include <mutex>

namespace oldtorvio::python {

std::mutex& processRecords();

}  // namespace oldtorvio::python
