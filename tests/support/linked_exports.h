// The exports of the library that the program is linked with.
#pragma once
#include "tests/support/exports.h"

namespace testing_support {

inline Exports linkedExports() {
  Exports all;
#define X(name) all.name.set(&::name);
#include "exports.inc"
#undef X
  return all;
}

}  // namespace testing_support
