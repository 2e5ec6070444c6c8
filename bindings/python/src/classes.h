// The Python classes: one for each record, made at import from its Type, one for arrays and one for lists.
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
// The flags of the classes of all views. Their objects never change their class: it would have other members.
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
// The name of the class of an object, without the module.
std::string classNameOf(PyObject* object);
// The kind of file whose record this is, if it is one.
std::optional<frame::FileKind> kindOf(const Type& type);

// Short texts for people: of a value, or of a view ("4 Shape").
std::string described(const Type& type, const void* at);

}  // namespace oldtorvio::python
