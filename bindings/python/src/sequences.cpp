// Arrays, which have a fixed length, and lists. Both convert an element when it is accessed.
#include <algorithm>
#include <array>

#include "bindings/python/src/classes.h"
#include "bindings/python/src/convert.h"

namespace oldtorvio::python {
namespace {

PyTypeObject* arrayClass = nullptr;
PyTypeObject* listClass = nullptr;

// A message names the elements of a member; a view that is an element itself does not know its member.
Subject subjectOf(const View* view, std::size_t i) {
  const auto index = static_cast<Py_ssize_t>(i);
  if (view->parent != nullptr && view->parent->type->form == Form::record)
    for (const TypeMember& member : view->parent->type->members)
      if (member.offset == view->place) return {view->parent->type->name, member.name, index};
  return {view->type->form == Form::list ? "List" : "Array", "", index};
}

std::size_t lengthOf(View* view) {
  return view->type->form == Form::list ? view->type->length(readable(view)) : view->type->count;
}

const void* elementAt(const Type& type, const void* at, std::size_t i) {
  if (type.form == Form::lazyArray) return type.lazyAt(at, i);
  const void* const first = type.form == Form::list ? type.data(at) : at;
  return static_cast<const std::byte*>(first) + i * type.element->size;
}
void* elementToWrite(const Type& type, void* at, std::size_t i) {
  if (type.form == Form::lazyArray) return type.lazySet(at, i);
  return const_cast<void*>(elementAt(type, at, i));
}

// The element, which must exist.
PyObject* get(View* view, std::size_t i) {
  const Type& element = *view->type->element;
  if (isView(element)) return viewOf(view, i, element).release().ptr();
  const void* const at = readable(view);
  // The list may have become shorter while another thread had it.
  if (view->type->form == Form::list && i >= view->type->length(at)) raise(PyExc_IndexError, "index out of range");
  return toPython(element, elementAt(*view->type, at, i));
}

std::size_t checkedIndex(View* view, Py_ssize_t i) {
  const auto length = static_cast<Py_ssize_t>(lengthOf(view));
  if (i < 0) i += length;
  if (i < 0 || i >= length) raise(PyExc_IndexError, "index out of range");
  return static_cast<std::size_t>(i);
}

std::size_t checkedIndex(View* view, PyObject* key) {
  const Py_ssize_t i = PyNumber_AsSsize_t(key, PyExc_IndexError);
  if (i == -1 && PyErr_Occurred() != nullptr) throw py::error_already_set();
  return checkedIndex(view, i);
}

// The indices of a slice, in its order.
std::vector<std::size_t> indicesOf(View* view, PyObject* slice) {
  Py_ssize_t start = 0, stop = 0, step = 0;
  if (PySlice_Unpack(slice, &start, &stop, &step) != 0) throw py::error_already_set();
  const Py_ssize_t count = PySlice_AdjustIndices(static_cast<Py_ssize_t>(lengthOf(view)), &start, &stop, step);
  std::vector<std::size_t> indices(static_cast<std::size_t>(count));
  for (std::size_t i = 0; i < indices.size(); ++i)
    indices[i] = static_cast<std::size_t>(start + static_cast<Py_ssize_t>(i) * step);
  return indices;
}

// ---- changes -----------------------------------------------------------------------------------------

// Replaces an element. In a list, a view of the old element keeps it.
void set(View* view, std::size_t i, Converted& value) {
  void* const at = writable(view);
  if (view->type->form == Form::list && i >= view->type->length(at)) raise(PyExc_IndexError, "index out of range");
  Detachment replaced;
  if (view->type->form == Form::list) {
    replaced.addElements(view, [&](std::size_t place) { return place == i; });
  } else if (const auto child = view->children.find(i); child != view->children.end()) {
    replaced.addAllIn(child->second);
  }
  void* const element = elementToWrite(*view->type, at, i);
  replaced.commit();
  value.moveTo(element);
}

// Removes elements by their indices, which must exist and be sorted and unique.
void removeElements(View* list, const std::vector<std::size_t>& indices) {
  if (indices.empty()) return;
  const Type& type = *list->type;
  void* const at = writable(list);
  const std::size_t length = type.length(at);
  if (indices.back() >= length) raise(PyExc_IndexError, "index out of range");
  Detachment removed;
  removed.addElements(list,
                      [&](std::size_t place) { return std::binary_search(indices.begin(), indices.end(), place); });
  Move move(list, [&](std::size_t place) {
    const auto found = std::lower_bound(indices.begin(), indices.end(), place);
    if (found != indices.end() && *found == place) return Move::kGone;
    return place - static_cast<std::size_t>(found - indices.begin());
  });
  removed.commit();
  std::size_t to = indices.front(), next = 0;
  for (std::size_t from = to; from < length; ++from) {
    if (next < indices.size() && indices[next] == from)
      ++next;
    else
      type.element->swap(elementToWrite(type, at, to++), elementToWrite(type, at, from));
  }
  type.resize(at, to);
  move.commit();
}

// moveTo(i, address) moves the new elements to their places.
template <class MoveTo>
void insertElements(View* list, std::size_t before, std::size_t count, const MoveTo& moveTo) {
  if (count == 0) return;
  const Type& type = *list->type;
  void* const at = writable(list);
  const std::size_t length = type.length(at);
  before = std::min(before, length);
  Move move(list, [&](std::size_t place) { return place < before ? place : place + count; });
  if (count == 1)
    type.append(at);  // takes memory for more than one
  else
    type.resize(at, length + count);
  for (std::size_t i = length; i-- > before;)
    type.element->swap(elementToWrite(type, at, i), elementToWrite(type, at, i + count));
  for (std::size_t i = 0; i < count; ++i) moveTo(i, elementToWrite(type, at, before + i));
  move.commit();
}

void insertElements(View* list, std::size_t before, std::vector<Converted>& values) {
  insertElements(list, before, values.size(), [&](std::size_t i, void* to) { values[i].moveTo(to); });
}

std::vector<Converted> convertedElements(View* list, PyObject* values, std::size_t first) {
  if (PyUnicode_Check(values) || PyBytes_Check(values))
    raise(PyExc_TypeError, subjectOf(list, first).text() + ": needs a sequence of elements");
  const auto elements = py::reinterpret_steal<py::object>(PySequence_List(values));
  if (!elements) throw py::error_already_set();
  const auto count = static_cast<std::size_t>(PyList_GET_SIZE(elements.ptr()));
  std::vector<Converted> converted;
  converted.reserve(count);
  for (std::size_t i = 0; i < count; ++i)
    converted.emplace_back(*list->type->element, PyList_GET_ITEM(elements.ptr(), static_cast<Py_ssize_t>(i)),
                           subjectOf(list, first + i));
  return converted;
}

void insertOne(View* list, std::size_t before, PyObject* value) {
  std::vector<Converted> values;
  values.emplace_back(*list->type->element, value, subjectOf(list, before));
  insertElements(list, before, values);
}

std::vector<std::size_t> sorted(std::vector<std::size_t> indices) {
  std::sort(indices.begin(), indices.end());
  return indices;
}

void setSlice(View* view, PyObject* slice, PyObject* value) {
  std::vector<std::size_t> indices = indicesOf(view, slice);
  if (value == nullptr) return removeElements(view, sorted(std::move(indices)));
  Py_ssize_t start = 0, stop = 0, step = 0;
  if (PySlice_Unpack(slice, &start, &stop, &step) != 0) throw py::error_already_set();
  PySlice_AdjustIndices(static_cast<Py_ssize_t>(lengthOf(view)), &start, &stop, step);
  std::vector<Converted> values = convertedElements(view, value, static_cast<std::size_t>(start));
  const bool isList = view->type->form == Form::list;
  if (values.size() == indices.size()) {
    for (std::size_t i = 0; i < values.size(); ++i) set(view, indices[i], values[i]);
  } else if (!isList || step != 1) {
    raise(PyExc_ValueError,
          "cannot assign " + std::to_string(values.size()) + " elements to " + std::to_string(indices.size()));
  } else {
    removeElements(view, indices);
    insertElements(view, static_cast<std::size_t>(start), values);
  }
}

// ---- what the interpreter calls ----------------------------------------------------------------------

template <class Body>
PyObject* answered(const Body& body) {
  return guarded<PyObject*>(nullptr, body);
}

Py_ssize_t length(PyObject* self) {
  return guarded(Py_ssize_t{-1}, [&] { return static_cast<Py_ssize_t>(lengthOf(asView(self))); });
}

PyObject* item(PyObject* self, Py_ssize_t i) {
  return answered([&] { return get(asView(self), checkedIndex(asView(self), i)); });
}

PyObject* subscript(PyObject* self, PyObject* key) {
  return answered([&]() -> PyObject* {
    View* const view = asView(self);
    if (PySlice_Check(key) == 0) return get(view, checkedIndex(view, key));
    py::list elements;
    for (const std::size_t i : indicesOf(view, key))
      elements.append(py::reinterpret_steal<py::object>(get(view, checkedIndex(view, static_cast<Py_ssize_t>(i)))));
    return elements.release().ptr();
  });
}

int setSubscript(PyObject* self, PyObject* key, PyObject* value) {
  return guarded(-1, [&] {
    View* const view = asView(self);
    if (value == nullptr && view->type->form != Form::list) raise(PyExc_TypeError, "an array has a fixed length");
    if (PySlice_Check(key) != 0) {
      setSlice(view, key, value);
    } else if (value == nullptr) {
      removeElements(view, {checkedIndex(view, key)});
    } else {
      const std::size_t i = checkedIndex(view, key);
      Converted converted(*view->type->element, value, subjectOf(view, i));
      set(view, i, converted);
    }
    return 0;
  });
}

PyObject* toList(PyObject* self, PyObject*) {
  return answered([&]() -> PyObject* {
    View* const view = asView(self);
    py::list elements;
    for (std::size_t i = 0; i < lengthOf(view); ++i) {
      auto element = py::reinterpret_steal<py::object>(get(view, i));
      if (isView(*view->type->element) && view->type->element->form != Form::record)
        element = py::reinterpret_steal<py::object>(toList(element.ptr(), nullptr));
      if (!element) throw py::error_already_set();
      elements.append(std::move(element));
    }
    return elements.release().ptr();
  });
}

bool isSequence(PyObject* object) {
  return Py_TYPE(object) == arrayClass || Py_TYPE(object) == listClass || PyList_Check(object) != 0 ||
         PyTuple_Check(object) != 0;
}

PyObject* compare(PyObject* self, PyObject* other, int operation) {
  return answered([&]() -> PyObject* {
    if ((operation != Py_EQ && operation != Py_NE) || !isSequence(other)) Py_RETURN_NOTIMPLEMENTED;
    View* const view = asView(self);
    const auto answer = [&](bool isEqual) { return PyBool_FromLong(isEqual == (operation == Py_EQ) ? 1 : 0); };
    if (Py_TYPE(other) == Py_TYPE(self) && asView(other)->type == view->type) {
      const auto [one, two] = bothReadable(view, asView(other));
      return answer(values::equalContents(*view->type, one, two));
    }
    if (PyObject_Size(other) != static_cast<Py_ssize_t>(lengthOf(view))) return answer(false);
    for (std::size_t i = 0; i < lengthOf(view); ++i) {
      const auto mine = py::reinterpret_steal<py::object>(get(view, i));
      const auto its = py::reinterpret_steal<py::object>(PySequence_GetItem(other, static_cast<Py_ssize_t>(i)));
      if (!its) throw py::error_already_set();
      if (!mine.equal(its)) return answer(false);
    }
    return answer(true);
  });
}

PyObject* describe(PyObject* self) {
  return answered([&]() -> PyObject* {
    constexpr std::size_t kMostElements = 4;
    View* const view = asView(self);
    const std::size_t length = lengthOf(view);
    const bool isRecord = view->type->element->form == Form::record;
    const std::size_t shown = isRecord ? std::min(length, kMostElements) : std::min<std::size_t>(length, 20);
    std::string text = view->type->form == Form::list ? "List([" : "Array([";
    for (std::size_t i = 0; i < shown; ++i) {
      const auto element = py::reinterpret_steal<py::object>(get(view, i));
      text += (i > 0 ? ", " : "") + std::string(py::repr(element));
    }
    if (shown < length) text += std::string(shown > 0 ? ", " : "") + "... " + std::to_string(length) + " in all";
    return py::str(text + "])").release().ptr();
  });
}

PyObject* iterate(PyObject* self) { return PySeqIter_New(self); }

PyObject* indexOf(PyObject* self, PyObject* value) {
  const Py_ssize_t index = PySequence_Index(self, value);
  return index < 0 ? nullptr : PyLong_FromSsize_t(index);
}

PyObject* countOf(PyObject* self, PyObject* value) {
  const Py_ssize_t count = PySequence_Count(self, value);
  return count < 0 ? nullptr : PyLong_FromSsize_t(count);
}

PyObject* reduce(PyObject* self, PyObject*) {
  return answered([&]() -> PyObject* {
    const auto elements = py::reinterpret_steal<py::object>(toList(self, nullptr));
    if (!elements) throw py::error_already_set();
    return py::make_tuple(py::handle(reinterpret_cast<PyObject*>(&PyList_Type)), py::make_tuple(elements))
        .release()
        .ptr();
  });
}

// ---- of lists only

PyObject* append(PyObject* self, PyObject* value) {
  return answered([&]() -> PyObject* {
    insertOne(asView(self), SIZE_MAX, value);
    Py_RETURN_NONE;
  });
}

PyObject* add(PyObject* self, PyObject* arguments, PyObject* keywords) {
  return answered([&]() -> PyObject* {
    View* const list = asView(self);
    const Type& element = *list->type->element;
    if (element.form != Form::record) raise(PyExc_TypeError, "add() makes records; use append()");
    if (PyTuple_GET_SIZE(arguments) != 0) raise(PyExc_TypeError, "add() takes the members of the new record by name");
    const auto made = py::reinterpret_steal<py::object>(
        PyObject_Call(reinterpret_cast<PyObject*>(classOf(element)), arguments, keywords));
    if (!made) throw py::error_already_set();
    insertOne(list, SIZE_MAX, made.ptr());
    return get(list, lengthOf(list) - 1);
  });
}

PyObject* insert(PyObject* self, PyObject* const* arguments, Py_ssize_t count) {
  return answered([&]() -> PyObject* {
    if (count != 2) raise(PyExc_TypeError, "insert() takes an index and an element");
    Py_ssize_t before = PyNumber_AsSsize_t(arguments[0], nullptr);
    if (before == -1 && PyErr_Occurred() != nullptr) throw py::error_already_set();
    View* const list = asView(self);
    if (before < 0) before = std::max<Py_ssize_t>(before + static_cast<Py_ssize_t>(lengthOf(list)), 0);
    insertOne(list, static_cast<std::size_t>(before), arguments[1]);
    Py_RETURN_NONE;
  });
}

PyObject* extend(PyObject* self, PyObject* elements) {
  return answered([&]() -> PyObject* {
    View* const list = asView(self);
    const Type& type = *list->type;
    if (Py_TYPE(elements) == listClass && asView(elements)->type == &type) {
      // Creates no view for each element; the list may be the same.
      const std::shared_ptr<void> copies = type.make();
      type.assign(copies.get(), readable(asView(elements)));
      insertElements(list, SIZE_MAX, type.length(copies.get()),
                     [&](std::size_t i, void* to) { type.element->swap(elementToWrite(type, copies.get(), i), to); });
    } else {
      std::vector<Converted> values = convertedElements(list, elements, lengthOf(list));
      insertElements(list, SIZE_MAX, values);
    }
    Py_RETURN_NONE;
  });
}

PyObject* extendInPlace(PyObject* self, PyObject* elements) {
  PyObject* const done = extend(self, elements);
  if (done == nullptr) return nullptr;
  Py_DECREF(done);
  Py_INCREF(self);
  return self;
}

PyObject* pop(PyObject* self, PyObject* const* arguments, Py_ssize_t count) {
  return answered([&]() -> PyObject* {
    if (count > 1) raise(PyExc_TypeError, "pop() takes an index at most");
    View* const list = asView(self);
    const std::size_t i = count == 1 ? checkedIndex(list, arguments[0]) : checkedIndex(list, Py_ssize_t{-1});
    // A view of a record takes it along.
    auto element = py::reinterpret_steal<py::object>(get(list, i));
    removeElements(list, {i});
    return element.release().ptr();
  });
}

PyObject* removeFirst(PyObject* self, PyObject* value) {
  return answered([&]() -> PyObject* {
    const Py_ssize_t i = PySequence_Index(self, value);
    if (i < 0) throw py::error_already_set();
    removeElements(asView(self), {checkedIndex(asView(self), i)});
    Py_RETURN_NONE;
  });
}

std::vector<std::size_t> allIndices(View* list) {
  std::vector<std::size_t> all(lengthOf(list));
  for (std::size_t i = 0; i < all.size(); ++i) all[i] = i;
  return all;
}

PyObject* clear(PyObject* self, PyObject*) {
  return answered([&]() -> PyObject* {
    removeElements(asView(self), allIndices(asView(self)));
    Py_RETURN_NONE;
  });
}

PyObject* reverse(PyObject* self, PyObject*) {
  return answered([&]() -> PyObject* {
    View* const list = asView(self);
    void* const at = writable(list);
    const std::size_t length = list->type->length(at);
    Move move(list, [&](std::size_t place) { return length - 1 - place; });
    for (std::size_t i = 0; i < length / 2; ++i)
      list->type->element->swap(elementToWrite(*list->type, at, i), elementToWrite(*list->type, at, length - 1 - i));
    move.commit();
    Py_RETURN_NONE;
  });
}

#define COMMON_METHODS                                                                                           \
  {"tolist", toList, METH_NOARGS, "A Python list of all elements; arrays and lists in it become Python lists."}, \
      {"index", indexOf, METH_O, "The first position of an equal element."},                                     \
      {"count", countOf, METH_O, "How many elements are equal to this one."},                                    \
      {"__reduce__", reduce, METH_NOARGS, "A copy is a Python list."}, {                                         \
    "__class_getitem__", Py_GenericAlias, METH_O | METH_CLASS, "For annotations."                                \
  }

template <class Function>
PyCFunction method(Function* function) {  // whatever arguments it takes
  return reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(function));
}

PyMethodDef arrayMethods[] = {COMMON_METHODS, {nullptr, nullptr, 0, nullptr}};
PyMethodDef listMethods[] = {
    COMMON_METHODS,
    {"append", append, METH_O, "Appends a copy of the element."},
    {"add", method(add), METH_VARARGS | METH_KEYWORDS, "Appends a new record with these members and returns it."},
    {"insert", method(insert), METH_FASTCALL, "Inserts a copy of the element before the index."},
    {"extend", extend, METH_O, "Appends copies of all elements."},
    {"pop", method(pop), METH_FASTCALL, "Removes the element, by default the last, and returns it."},
    {"remove", removeFirst, METH_O, "Removes the first equal element."},
    {"clear", clear, METH_NOARGS, "Removes all elements."},
    {"reverse", reverse, METH_NOARGS, "Reverses the order."},
    {nullptr, nullptr, 0, nullptr},
};

PyTypeObject* add(py::module_& module, const char* name, const char* about, PyMethodDef* methods, bool isList) {
  std::array<PyType_Slot, 16> slots{{
      {Py_tp_dealloc, slot(endView)},
      {Py_tp_richcompare, slot(compare)},
      {Py_tp_hash, slot(PyObject_HashNotImplemented)},
      {Py_tp_repr, slot(describe)},
      {Py_tp_iter, slot(iterate)},
      {Py_tp_methods, methods},
      {Py_tp_members, weakReferences},
      {Py_tp_doc, const_cast<char*>(about)},
      {Py_sq_length, slot(length)},
      {Py_sq_item, slot(item)},
      {Py_mp_length, slot(length)},
      {Py_mp_subscript, slot(subscript)},
      {Py_mp_ass_subscript, slot(setSubscript)},
  }};
  if (isList) slots[13] = {Py_sq_inplace_concat, slot(extendInPlace)};
  PyType_Spec description{name, sizeof(View), 0, kClassFlags | Py_TPFLAGS_DISALLOW_INSTANTIATION | Py_TPFLAGS_SEQUENCE,
                          slots.data()};
  return addClass(module, description, nullptr);
}

}  // namespace

void addSequenceClasses(py::module_& module) {
  arrayClass = add(module, "oldtorvio.Array", "An array of a record. Its length is fixed.", arrayMethods, false);
  listClass =
      add(module, "oldtorvio.List", "A list of a record. It holds copies of what is put into it.", listMethods, true);
}

PyTypeObject* sequenceClass(Form form) { return form == Form::list ? listClass : arrayClass; }

}  // namespace oldtorvio::python
