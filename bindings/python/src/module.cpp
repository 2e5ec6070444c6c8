// oldtorvio._core: what the package oldtorvio consists of in C++.
#include <pybind11/pybind11.h>

#include "bindings/python/src/classes.h"
#include "bindings/python/src/functions.h"

PYBIND11_MODULE(_core, module) {
  using namespace oldtorvio::python;
  module.doc() = "Records and functions of OldTorvIO. Import oldtorvio.";
  addClasses(module);
  addRecordFunctions(module);
  addFileFunctions(module);
  addCompanionFunctions(module);
  addQuestions(module);
  addScan(module);
  addPartBuilder(module);
}
