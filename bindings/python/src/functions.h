// The functions of the module, by source file.
#pragma once
#include <pybind11/pybind11.h>

namespace oldtorvio::python {

void addRecordFunctions(pybind11::module_& module);     // record_functions.cpp: members by name, texts, pickles
void addFileFunctions(pybind11::module_& module);       // files.cpp: loads and saves
void addCompanionFunctions(pybind11::module_& module);  // companion.cpp: the functions of torvio.h
void addQuestions(pybind11::module_& module);           // questions.cpp: the queries of OldTorvIO.h
void addScan(pybind11::module_& module);                // scan.cpp: archives and catalogues
void addPartBuilder(pybind11::module_& module);         // part_builder.cpp

}  // namespace oldtorvio::python
