// Records, arrays and lists as Python objects that convert nothing.
//
// A View is a place: a member of the record of another view, an element of its array or list, or a record of its own.
// It keeps its parent alive, and every access computes the address from the top, so that no address outlives a list
// that grows. At most one view of a place exists, so that a list can update the views of its elements: they move with
// their element, and a view whose element is removed or replaced takes the element along and becomes the view of a
// separate record.
//
// All functions need the GIL unless they say otherwise. No address of a value may be kept across a call that can run
// Python code, which may change the record: convert first, get the address afterwards.
#pragma once
#include <pybind11/pybind11.h>

#include <cstddef>
#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "torvio/values/types.h"

namespace oldtorvio::python {

namespace py = pybind11;
using values::Form;
using values::Type;
using values::TypeMember;

struct View {
  PyObject head;
  const Type* type;
  View* parent;                                     // null if the view owns its value
  std::size_t place;                                // offset of a member, index of an element
  std::unordered_map<std::size_t, View*> children;  // by place; a child removes itself when it ends
  std::shared_ptr<void> storage;                    // of the value, if the view owns it
  PyObject* weakReferences;
  bool isBusy;  // a thread reads the value, which the view owns, without the GIL
};

// A view that owns a new value. Both functions throw py::error_already_set.
py::object viewOf(const Type& type, std::shared_ptr<void> value);
// The view of that place, which may exist already.
py::object viewOf(View* parent, std::size_t place, const Type& type);
// Ends a view, as tp_dealloc.
void endView(PyObject* self);

// Whether values of that type are views. All others are converted.
bool isView(const Type& type);
inline View* asView(PyObject* object) { return reinterpret_cast<View*>(object); }

// The address of the value. The first is for reading only: it allocates no elements of lazy arrays. Both wait while
// another thread reads the record without the GIL, and throw py::error_already_set.
const void* readable(View* view);
void* writable(View* view);
// The addresses of two values at once.
std::pair<const void*, const void*> bothReadable(View* one, View* other);

// Keeps all Python threads from the record while a function uses it without the GIL.
class Busy {
 public:
  explicit Busy(View* view);
  ~Busy();
  Busy(const Busy&) = delete;
  Busy& operator=(const Busy&) = delete;

 private:
  View* top_;
};

// Makes the views of elements that are about to be removed or overwritten independent. It allocates first: if that
// fails, nothing has changed. Unreferenced views end with it, which may run Python code.
class Detachment {
 public:
  // Adds the views of the elements of a list for whose place isRemoved returns true.
  template <class IsRemoved>
  void addElements(View* list, const IsRemoved& isRemoved) {
    for (const auto& [place, child] : list->children)
      if (isRemoved(place)) add(child);
  }
  // Adds the views of the elements of all lists in that value.
  void addAllIn(View* view);
  void commit();

 private:
  void add(View* element);

  struct Pending {
    py::object view;
    std::shared_ptr<void> storage;
    py::object parent;  // the former parent of the view
  };
  std::vector<Pending> pending_;
};

// Gives the views of the elements of a list other places. It allocates first, as Detachment does.
class Move {
 public:
  // placeOf(place) is the new place of an element, or kGone.
  template <class PlaceOf>
  Move(View* list, const PlaceOf& placeOf) : list_(list) {
    moved_.reserve(list->children.size());
    for (const auto& [place, child] : list->children)
      if (const std::size_t to = placeOf(place); to != kGone) moved_.emplace(to, child);
  }
  void commit() noexcept;

  static constexpr std::size_t kGone = static_cast<std::size_t>(-1);

 private:
  View* list_;
  std::unordered_map<std::size_t, View*> moved_;
};

[[noreturn]] void raise(PyObject* exception, const std::string& message);

// For functions that the interpreter calls: exceptions of C++ become those of Python.
template <class Result, class Body>
Result guarded(Result failure, const Body& body) noexcept {
  try {
    return body();
  } catch (py::error_already_set& error) {
    error.restore();
  } catch (const py::builtin_exception& error) {
    error.set_error();
  } catch (const std::bad_alloc&) {
    PyErr_NoMemory();
  } catch (const std::length_error&) {
    PyErr_NoMemory();
  } catch (const std::exception& error) {
    PyErr_SetString(PyExc_RuntimeError, error.what());
  }
  return failure;
}

}  // namespace oldtorvio::python
