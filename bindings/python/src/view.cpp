#include "bindings/python/src/view.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <new>

#include "bindings/python/src/classes.h"

namespace oldtorvio::python {
namespace {

// Threads wait here for a record that another thread reads without the GIL.
std::mutex busyMutex;
std::condition_variable busyEnded;
int busyCount = 0;  // changes under the GIL

View* topOf(View* view) {
  while (view->parent != nullptr) view = view->parent;
  return view;
}

bool isBusy(View* view) { return busyCount > 0 && topOf(view)->isBusy; }

void waitUntilIdle(View* view) {
  while (isBusy(view)) {
    const py::gil_scoped_release released;
    std::unique_lock lock(busyMutex);
    busyEnded.wait_for(lock, std::chrono::milliseconds(20));
  }
}

[[noreturn]] void raiseGone() { raise(PyExc_ReferenceError, "the list no longer has this element"); }

const std::byte* listElement(const Type& list, const void* at, std::size_t index) {
  if (index >= list.length(at)) raiseGone();
  return static_cast<const std::byte*>(list.data(at)) + index * list.element->size;
}

const void* addressForReading(const View* view) {
  if (view->parent == nullptr) return view->storage.get();
  const void* const at = addressForReading(view->parent);
  const Type& type = *view->parent->type;
  switch (type.form) {
    case Form::record:
      return static_cast<const std::byte*>(at) + view->place;
    case Form::array:
      return static_cast<const std::byte*>(at) + view->place * type.element->size;
    case Form::lazyArray:
      return type.lazyAt(at, view->place);
    default:
      return listElement(type, at, view->place);
  }
}

void* addressForWriting(View* view) {
  if (view->parent == nullptr) return view->storage.get();
  void* const at = addressForWriting(view->parent);
  const Type& type = *view->parent->type;
  switch (type.form) {
    case Form::record:
      return static_cast<std::byte*>(at) + view->place;
    case Form::array:
      return static_cast<std::byte*>(at) + view->place * type.element->size;
    case Form::lazyArray:
      return type.lazySet(at, view->place);
    default:
      // The list is not const.
      return const_cast<std::byte*>(listElement(type, at, view->place));
  }
}

py::object newView(const Type& type) {
  PyTypeObject* const pythonClass = classOf(type);
  PyObject* const object = pythonClass->tp_alloc(pythonClass, 0);
  if (object == nullptr) throw py::error_already_set();
  View* const view = asView(object);
  view->type = &type;
  new (&view->children) decltype(view->children);
  new (&view->storage) decltype(view->storage);
  return py::reinterpret_steal<py::object>(object);
}

}  // namespace

void raise(PyObject* exception, const std::string& message) {
  PyErr_SetString(exception, message.c_str());
  throw py::error_already_set();
}

bool isView(const Type& type) {
  return type.form == Form::record || type.form == Form::array || type.form == Form::list ||
         type.form == Form::lazyArray;
}

py::object viewOf(const Type& type, std::shared_ptr<void> value) {
  py::object made = newView(type);
  asView(made.ptr())->storage = std::move(value);
  return made;
}

py::object viewOf(View* parent, std::size_t place, const Type& type) {
  const auto found = parent->children.find(place);
  if (found != parent->children.end())
    return py::reinterpret_borrow<py::object>(reinterpret_cast<PyObject*>(found->second));
  py::object made = newView(type);
  View* const view = asView(made.ptr());
  parent->children.emplace(place, view);
  view->place = place;
  view->parent = parent;
  Py_INCREF(parent);
  return made;
}

void endView(PyObject* self) {
  View* const view = asView(self);
  PyTypeObject* const pythonClass = Py_TYPE(self);
  View* const parent = view->parent;
  // Done first: what follows may run Python code, which must not find this view any more.
  if (parent != nullptr) parent->children.erase(view->place);
  if (view->weakReferences != nullptr) PyObject_ClearWeakRefs(self);
  std::destroy_at(&view->children);
  std::destroy_at(&view->storage);
  pythonClass->tp_free(self);
  Py_DECREF(pythonClass);
  Py_XDECREF(parent);
}

const void* readable(View* view) {
  waitUntilIdle(view);
  return addressForReading(view);
}

void* writable(View* view) {
  waitUntilIdle(view);
  return addressForWriting(view);
}

std::pair<const void*, const void*> bothReadable(View* one, View* other) {
  // While this waits for one, another thread may begin with the other.
  while (isBusy(one) || isBusy(other)) {
    waitUntilIdle(one);
    waitUntilIdle(other);
  }
  return {addressForReading(one), addressForReading(other)};
}

Busy::Busy(View* view) {
  waitUntilIdle(view);
  top_ = topOf(view);
  Py_INCREF(top_);
  top_->isBusy = true;
  ++busyCount;
}

Busy::~Busy() {
  top_->isBusy = false;
  --busyCount;
  Py_DECREF(top_);
  { const std::lock_guard lock(busyMutex); }
  busyEnded.notify_all();
}

void Detachment::add(View* element) {
  pending_.push_back(
      {py::reinterpret_borrow<py::object>(reinterpret_cast<PyObject*>(element)), element->type->make(), {}});
}

void Detachment::addAllIn(View* view) {
  for (const auto& [place, child] : view->children) {
    if (view->type->form == Form::list)
      add(child);
    else
      addAllIn(child);
  }
}

void Detachment::commit() {
  for (Pending& pending : pending_) {
    View* const view = asView(pending.view.ptr());
    view->type->swap(pending.storage.get(), addressForWriting(view));
    view->storage = std::move(pending.storage);
    View* const parent = std::exchange(view->parent, nullptr);
    parent->children.erase(view->place);
    view->place = 0;
    pending.parent = py::reinterpret_steal<py::object>(reinterpret_cast<PyObject*>(parent));
  }
}

void Move::commit() noexcept {
  for (const auto& [place, child] : moved_) child->place = place;
  list_->children.swap(moved_);
}

}  // namespace oldtorvio::python
