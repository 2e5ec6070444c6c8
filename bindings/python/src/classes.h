// The Python classes: one for each record, made at import of what Type says of it, one for arrays and one for lists.
#pragma once
#include <pybind11/pybind11.h>
#include <structmember.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bindings/python/src/view.h"
#include "src/frame/file_kinds.h"

namespace oldtorvio::python {

// Makes all classes and adds them to the module.
void addClasses(py::module_& module);
// Array and List, see sequences.cpp.
void addSequenceClasses(py::module_& module);
PyTypeObject* sequenceClass(Form form);
// What the classes of all views have. Their objects never get another class: it would find other members.
inline constexpr unsigned kClassFlags = Py_TPFLAGS_DEFAULT | Py_TPFLAGS_IMMUTABLETYPE;
extern PyMemberDef weakReferences[];
template <class Function>
void* slot(Function* function) {
  return reinterpret_cast<void*>(function);
}
// Makes a class, adds it to the module under its name, and returns it.
PyTypeObject* addClass(py::module_& module, PyType_Spec& description, PyObject* base);

// All records that files consist of, each once; what a record contains comes before it.
const std::vector<const Type*>& recordTypes();
const Type* recordTypeNamed(std::string_view name);

PyTypeObject* classOf(const Type& type);
bool isOfClass(PyObject* object, const Type& type);
// The view of a record, array or list; throws TypeError for any other object.
View* viewIn(PyObject* object, const char* wanted = "a record, array or list");
View* recordIn(PyObject* object);
// The name of its class without the module.
std::string classNameOf(PyObject* object);
// The kind of file that this record is the record of.
std::optional<frame::FileKind> kindOf(const Type& type);

// Short texts for people: of a value, of what a view is ("4 Shape").
std::string described(const Type& type, const void* at);

}  // namespace oldtorvio::python
