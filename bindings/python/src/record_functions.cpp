// Functions for records that are not attributes: fixed texts as they are stored, code pages, pickles, and the table
// from which type stubs are made.
#include <algorithm>
#include <cstring>
#include <optional>

#include "bindings/python/src/classes.h"
#include "bindings/python/src/convert.h"
#include "bindings/python/src/functions.h"
#include "bindings/python/src/packed.h"
#include "torvio/values/text_encoding.h"

namespace oldtorvio::python {
namespace {

// ---- fixed texts as they are stored ------------------------------------------------------------------

// A member of a record or an element of an array or list.
struct Part {
  const Type* type = nullptr;
  const TypeMember* member = nullptr;
  std::size_t index = 0;
};

Part partOf(View* view, const py::object& key) {
  if (view->type->form == Form::record) {
    const std::string name = py::cast<std::string>(key);
    for (const TypeMember& member : view->type->members)
      if (member.name == name) return {member.type, &member, 0};
    raise(PyExc_AttributeError, std::string(view->type->name) + " has no member " + name);
  }
  const Py_ssize_t index = PyNumber_AsSsize_t(key.ptr(), PyExc_IndexError);
  if (index == -1 && PyErr_Occurred() != nullptr) throw py::error_already_set();
  if (index < 0) raise(PyExc_IndexError, "index out of range");
  return {view->type->element, nullptr, static_cast<std::size_t>(index)};
}

// The bytes of a fixed text.
const void* storedAt(View* view, const Part& part, const void* at) {
  if (part.type->form != Form::fixedText)
    raise(PyExc_TypeError, "only texts of a fixed size have bytes after their end");
  if (part.member != nullptr) return values::memberIn(at, *part.member);
  const Type& type = *view->type;
  if (part.index >= (type.form == Form::list ? type.length(at) : type.count))
    raise(PyExc_IndexError, "index out of range");
  const void* const first = type.form == Form::list ? type.data(at) : at;
  return static_cast<const std::byte*>(first) + part.index * part.type->size;
}

py::bytes raw(const py::object& owner, const py::object& key) {
  View* const view = viewIn(owner.ptr());
  const Part part = partOf(view, key);
  return {static_cast<const char*>(storedAt(view, part, readable(view))), part.type->size};
}

void setRaw(const py::object& owner, const py::object& key, const py::object& data) {
  View* const view = viewIn(owner.ptr());
  const Part part = partOf(view, key);
  const BytesLike block(data.ptr(), {part.member != nullptr ? view->type->name : "Array",
                                     part.member != nullptr ? part.member->name : "", -1});
  void* const to = const_cast<void*>(storedAt(view, part, writable(view)));
  if (block.bytes().size() != part.type->size)
    raise(PyExc_ValueError,
          "the field has " + std::to_string(part.type->size) + " bytes, not " + std::to_string(block.bytes().size()));
  std::memcpy(to, block.bytes().data(), part.type->size);
}

// ---- code pages --------------------------------------------------------------------------------------

values::TextEncoding encodingNamed(const std::string& name) {
  const auto encoding = values::TextEncoding::named(name);
  if (!encoding) raise(PyExc_LookupError, "no code page of OldTorvIO: " + name);
  return *encoding;
}

py::str decode(const py::object& text, const std::string& encoding) {
  const values::TextEncoding page = encodingNamed(encoding);
  const BytesLike bytes(text.ptr(), {"text", "", -1});
  std::string utf8;
  page.appendUtf8(utf8, bytes.bytes());
  return py::str(utf8);
}

py::bytes encode(const py::str& text, const std::string& encoding) {
  const auto bytes = encodingNamed(encoding).bytesOf(py::cast<std::string>(text));
  if (!bytes) raise(PyExc_ValueError, "the text has a character that " + encoding + " lacks");
  return py::bytes(*bytes);
}

// ---- pickles -----------------------------------------------------------------------------------------

py::object restore(const std::string& name, const py::bytes& packed) {
  const Type* const type = recordTypeNamed(name);
  if (type == nullptr) raise(PyExc_ValueError, "no record of this version: " + name);
  std::shared_ptr<void> record = type->make();
  unpack(std::string_view(packed), *type, record.get());
  return viewOf(*type, std::move(record));
}

// ---- what members there are --------------------------------------------------------------------------

// ("int32",), ("fixedText", 256), ("list", element), ("record", name), ("pair", first, second), ...
py::tuple formOf(const Type& type) {
  static constexpr const char* kNames[] = {"int8",    "uint8",     "int16", "uint16",    "int32", "uint32",
                                           "float32", "float64",   "text",  "fixedText", "bytes", "array",
                                           "list",    "lazyArray", "pair",  "record"};
  const char* const name = kNames[static_cast<std::size_t>(type.form)];
  switch (type.form) {
    case Form::fixedText:
    case Form::bytes:
      return py::make_tuple(name, type.count);
    case Form::array:
    case Form::lazyArray:
      return py::make_tuple(name, formOf(*type.element), type.count);
    case Form::list:
      return py::make_tuple(name, formOf(*type.element));
    case Form::pair:
      return py::make_tuple(name, formOf(*type.members[0].type), formOf(*type.members[1].type));
    case Form::record:
      return py::make_tuple(name, py::str(type.name.data(), type.name.size()));
    default:
      return py::make_tuple(name);
  }
}

py::list membersOf(const Type& type) {
  py::list members;
  for (const TypeMember& member : type.members)
    members.append(
        py::make_tuple(py::str(member.name.data(), member.name.size()), formOf(*member.type), member.isStored));
  return members;
}

// (name, kind of file or None, members) of each record.
py::list allRecords() {
  py::list all;
  for (const Type* type : recordTypes()) {
    const auto kind = kindOf(*type);
    const py::object kindName = kind ? py::object(py::str(std::string(frame::infoOf(*kind).name))) : py::none();
    all.append(py::make_tuple(py::str(type->name.data(), type->name.size()), kindName, membersOf(*type)));
  }
  return all;
}

}  // namespace

void addRecordFunctions(py::module_& module) {
  module.def("raw", raw, py::arg("owner"), py::arg("member"),
             "All bytes of a text of a fixed size: of that member of a record, or element of an array or list.");
  module.def("set_raw", setRaw, py::arg("owner"), py::arg("member"), py::arg("data"),
             "Sets all bytes of a text of a fixed size.");
  module.def("decode", decode, py::arg("text"), py::arg("encoding") = std::string(values::kDefaultEncoding),
             "A text of a file as str. Every byte has a character, so that encode() returns the same bytes.");
  module.def("encode", encode, py::arg("text"), py::arg("encoding") = std::string(values::kDefaultEncoding),
             "A str as the bytes of a file. Raises ValueError for a character that the code page lacks.");
  module.def("_restore", restore);
  module.def("_records", allRecords);
}

}  // namespace oldtorvio::python
