#include "bindings/python/src/classes.h"

#include <algorithm>
#include <cstring>
#include <deque>
#include <unordered_map>

#include "bindings/python/src/convert.h"
#include "bindings/python/src/packed.h"

namespace oldtorvio::python {
namespace {

using frame::FileKind;

// ---- all records -------------------------------------------------------------------------------------

void collect(const Type& type, std::vector<const Type*>& found) {
  if (type.element != nullptr) collect(*type.element, found);
  if (type.form != Form::record && type.form != Form::pair) return;
  if (std::find(found.begin(), found.end(), &type) != found.end()) return;
  for (const TypeMember& member : type.members) collect(*member.type, found);
  if (type.form == Form::record) found.push_back(&type);
}

struct Classes {
  std::unordered_map<const Type*, PyTypeObject*> byType;
  PyTypeObject* record = nullptr;
};
Classes& classes() {
  static Classes all;
  return all;
}

// ---- members -----------------------------------------------------------------------------------------

const TypeMember& memberOf(void* closure) { return *static_cast<const TypeMember*>(closure); }

PyObject* getMember(PyObject* self, void* closure) {
  return guarded<PyObject*>(nullptr, [&] {
    const TypeMember& member = memberOf(closure);
    View* const view = asView(self);
    if (isView(*member.type)) return viewOf(view, member.offset, *member.type).release().ptr();
    return toPython(*member.type, values::memberIn(readable(view), member));
  });
}

int setMember(PyObject* self, PyObject* value, void* closure) {
  return guarded(-1, [&] {
    const TypeMember& member = memberOf(closure);
    View* const view = asView(self);
    const Subject subject{view->type->name, member.name};
    if (value == nullptr) raise(PyExc_AttributeError, subject.text() + " cannot be deleted");
    Converted converted(*member.type, value, subject);
    void* const record = writable(view);
    Detachment replaced;
    if (const auto child = view->children.find(member.offset); child != view->children.end())
      replaced.addAllIn(child->second);
    replaced.commit();
    converted.moveTo(values::memberIn(record, member));
    return 0;
  });
}

// ---- records -----------------------------------------------------------------------------------------

const Type* typeOfClass(PyTypeObject* pythonClass) {
  for (const auto& [type, one] : classes().byType)
    if (one == pythonClass && type->form == Form::record) return type;
  return nullptr;
}

PyObject* newRecord(PyTypeObject* pythonClass, PyObject* arguments, PyObject* keywords) {
  return guarded<PyObject*>(nullptr, [&] {
    const Type* const type = typeOfClass(pythonClass);
    if (type == nullptr) raise(PyExc_TypeError, "only records of files can be made");
    if (PyTuple_GET_SIZE(arguments) != 0)
      raise(PyExc_TypeError, std::string(type->name) + "() takes its members by name only");
    py::object record = viewOf(*type, type->make());
    PyObject *name = nullptr, *value = nullptr;
    Py_ssize_t position = 0;
    while (keywords != nullptr && PyDict_Next(keywords, &position, &name, &value) != 0)
      if (PyObject_SetAttr(record.ptr(), name, value) != 0) throw py::error_already_set();
    return record.release().ptr();
  });
}

PyObject* compareRecords(PyObject* self, PyObject* other, int operation) {
  return guarded<PyObject*>(nullptr, [&] {
    if ((operation != Py_EQ && operation != Py_NE) || Py_TYPE(self) != Py_TYPE(other)) Py_RETURN_NOTIMPLEMENTED;
    const auto [one, two] = bothReadable(asView(self), asView(other));
    return PyBool_FromLong(values::equalContents(*asView(self)->type, one, two) == (operation == Py_EQ) ? 1 : 0);
  });
}

// The members that differ from a new record, as far as they fit a line.
PyObject* describeRecord(PyObject* self) {
  return guarded<PyObject*>(nullptr, [&] {
    constexpr std::size_t kMostMembers = 8;
    View* const view = asView(self);
    const Type& type = *view->type;
    const void* const record = readable(view);
    std::string text = std::string(type.name) + "(";
    std::size_t written = 0, left = 0;
    for (const TypeMember& member : type.members) {
      const void* const at = values::memberIn(record, member);
      if (values::equalContents(*member.type, at, values::memberIn(type.fresh.get(), member))) continue;
      if (written == kMostMembers) {
        ++left;
        continue;
      }
      if (written++ > 0) text += ", ";
      text.append(member.name).append("=").append(described(*member.type, at));
    }
    if (left > 0) text += ", and " + std::to_string(left) + " more";
    return py::str(text + ")").release().ptr();
  });
}

PyObject* copyOfRecord(PyObject* self, PyObject*) {
  return guarded<PyObject*>(nullptr, [&] {
    View* const view = asView(self);
    std::shared_ptr<void> copy = view->type->make();
    view->type->assign(copy.get(), readable(view));
    return viewOf(*view->type, std::move(copy)).release().ptr();
  });
}

PyObject* reduceRecord(PyObject* self, PyObject*) {
  return guarded<PyObject*>(nullptr, [&] {
    View* const view = asView(self);
    std::string packed;
    pack(packed, *view->type, readable(view));
    const py::object restore = py::module_::import("oldtorvio._saving").attr("restore");
    return py::make_tuple(restore,
                          py::make_tuple(py::str(view->type->name.data(), view->type->name.size()), py::bytes(packed)))
        .release()
        .ptr();
  });
}

PyMethodDef recordMethods[] = {
    {"__copy__", copyOfRecord, METH_NOARGS, "An independent record with the same values."},
    {"__deepcopy__", copyOfRecord, METH_O, "An independent record with the same values."},
    {"__reduce__", reduceRecord, METH_NOARGS, "For pickle."},
    {nullptr, nullptr, 0, nullptr},
};

PyTypeObject* addRecordClass(py::module_& module) {
  PyType_Slot slots[] = {
      {Py_tp_dealloc, slot(endView)},
      {Py_tp_new, slot(newRecord)},
      {Py_tp_richcompare, slot(compareRecords)},
      {Py_tp_hash, slot(PyObject_HashNotImplemented)},
      {Py_tp_repr, slot(describeRecord)},
      {Py_tp_methods, recordMethods},
      {Py_tp_members, weakReferences},
      {Py_tp_doc, const_cast<char*>("What all records have in common.")},
      {0, nullptr},
  };
  PyType_Spec description{"oldtorvio.Record", sizeof(View), 0, kClassFlags | Py_TPFLAGS_BASETYPE, slots};
  return addClass(module, description, nullptr);
}

void addClassOf(py::module_& module, const Type& type) {
  // The interpreter keeps pointers to names and members.
  static std::deque<std::string> texts;
  static std::deque<std::vector<PyGetSetDef>> attributes;
  const auto kept = [](std::string_view text) { return texts.emplace_back(text).c_str(); };
  std::vector<PyGetSetDef>& members = attributes.emplace_back();
  for (const TypeMember& member : type.members)
    members.push_back({kept(member.name), getMember, setMember, nullptr, const_cast<TypeMember*>(&member)});
  members.push_back({nullptr, nullptr, nullptr, nullptr, nullptr});

  const std::optional<FileKind> kind = kindOf(type);
  const std::string about =
      kind ? "The record of a " + std::string(frame::infoOf(*kind).name) + " file." : "A record that files embed.";
  PyType_Slot slots[] = {
      {Py_tp_getset, members.data()},
      {Py_tp_doc, const_cast<char*>(kept(about))},
      {0, nullptr},
  };
  PyType_Spec description{kept("oldtorvio." + std::string(type.name)), sizeof(View), 0, kClassFlags, slots};
  classes().byType[&type] = addClass(module, description, reinterpret_cast<PyObject*>(classes().record));
}

}  // namespace

PyMemberDef weakReferences[] = {
    {"__weaklistoffset__", T_PYSSIZET, offsetof(View, weakReferences), READONLY, nullptr},
    {nullptr, 0, 0, 0, nullptr},
};

PyTypeObject* addClass(py::module_& module, PyType_Spec& description, PyObject* base) {
  const auto bases = base != nullptr ? py::make_tuple(py::handle(base)) : py::tuple();
  PyObject* const made = PyType_FromSpecWithBases(&description, base != nullptr ? bases.ptr() : nullptr);
  if (made == nullptr) throw py::error_already_set();
  const char* const name = std::strrchr(description.name, '.') + 1;
  module.add_object(name, py::reinterpret_steal<py::object>(made).inc_ref());
  return reinterpret_cast<PyTypeObject*>(made);
}

void addClasses(py::module_& module) {
  addSequenceClasses(module);
  classes().record = addRecordClass(module);
  for (const Type* type : recordTypes()) addClassOf(module, *type);
}

const std::vector<const Type*>& recordTypes() {
  static const std::vector<const Type*> all = [] {
    std::vector<const Type*> found;
    for (const frame::FileKindInfo& info : frame::kFileKinds) collect(values::typeOfRecord(info.kind), found);
    return found;
  }();
  return all;
}

const Type* recordTypeNamed(std::string_view name) {
  for (const Type* type : recordTypes())
    if (type->name == name) return type;
  return nullptr;
}

PyTypeObject* classOf(const Type& type) {
  return type.form == Form::record ? classes().byType.at(&type) : sequenceClass(type.form);
}

bool isOfClass(PyObject* object, const Type& type) {
  return type.form == Form::record && Py_TYPE(object) == classes().byType.at(&type);
}

View* viewIn(PyObject* object, const char* wanted) {
  PyTypeObject* const one = Py_TYPE(object);
  if (PyType_IsSubtype(one, classes().record) == 0 && one != sequenceClass(Form::array) &&
      one != sequenceClass(Form::list))
    raise(PyExc_TypeError, std::string("needs ") + wanted + ", not " + classNameOf(object));
  return asView(object);
}

View* recordIn(PyObject* object) {
  if (PyType_IsSubtype(Py_TYPE(object), classes().record) == 0)
    raise(PyExc_TypeError, std::string("needs a record, not ") + classNameOf(object));
  return asView(object);
}

std::string classNameOf(PyObject* object) {
  const std::string name = Py_TYPE(object)->tp_name;
  return name.substr(name.rfind('.') + 1);
}

std::optional<FileKind> kindOf(const Type& type) {
  for (const frame::FileKindInfo& info : frame::kFileKinds)
    if (&values::typeOfRecord(info.kind) == &type) return info.kind;
  return std::nullopt;
}

std::string described(const Type& type, const void* at) {
  constexpr std::size_t kMostText = 60;
  const std::string element = type.element == nullptr                 ? ""
                              : type.element->form == Form::record    ? std::string(type.element->name)
                              : type.element->form == Form::fixedText ? "bytes"
                              : type.element->form <= Form::uint32    ? "int"
                              : values::isNumber(type.element->form)  ? "float"
                                                                      : "elements";
  switch (type.form) {
    case Form::record:
      return std::string(type.name) + "(...)";
    case Form::list:
      return "[" + std::to_string(type.length(at)) + " " + element + "]";
    case Form::lazyArray:
      return "[" + std::to_string(type.count) + " " + element + "]";
    case Form::array:
      if (!values::isNumber(type.element->form) || type.count > 9)
        return "[" + std::to_string(type.count) + " " + element + "]";
      {
        std::string text = "[";
        for (std::size_t i = 0; i < type.count; ++i)
          text += (i > 0 ? ", " : "") +
                  described(*type.element, static_cast<const std::byte*>(at) + i * type.element->size);
        return text + "]";
      }
    default: {
      const auto value = py::reinterpret_steal<py::object>(toPython(type, at));
      std::string text = py::repr(value);
      if (text.size() > kMostText) text = text.substr(0, kMostText) + "...";
      return text;
    }
  }
}

}  // namespace oldtorvio::python
