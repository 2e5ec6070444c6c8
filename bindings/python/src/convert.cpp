#include "bindings/python/src/convert.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

#include "bindings/python/src/classes.h"

namespace oldtorvio::python {
namespace {

struct IntegerForm {
  std::int64_t lowest, highest;
  const char* name;
};
template <class T>
constexpr IntegerForm integerForm(const char* name) {
  return {std::numeric_limits<T>::lowest(), std::numeric_limits<T>::max(), name};
}
// In the order of Form.
constexpr IntegerForm kIntegers[] = {integerForm<std::int8_t>("int8"),   integerForm<std::uint8_t>("uint8"),
                                     integerForm<std::int16_t>("int16"), integerForm<std::uint16_t>("uint16"),
                                     integerForm<std::int32_t>("int32"), integerForm<std::uint32_t>("uint32")};

template <class T>
T at(const void* address) {
  T value;
  std::memcpy(&value, address, sizeof value);
  return value;
}
template <class T>
void put(void* address, T value) {
  std::memcpy(address, &value, sizeof value);
}

PyObject* checked(PyObject* object) {
  if (object == nullptr) throw py::error_already_set();
  return object;
}

PyObject* bytesOf(const void* data, std::size_t size) {
  return checked(PyBytes_FromStringAndSize(static_cast<const char*>(data), static_cast<Py_ssize_t>(size)));
}

// Replaces the error that is set by one of the same class that names its subject.
[[noreturn]] void raiseAbout(const Subject& subject) {
  py::error_already_set error;
  const std::string reason = py::str(error.value());
  raise(error.type().ptr(), subject.text() + ": " + reason);
}

void storeInteger(Form form, void* address, PyObject* object, const Subject& subject) {
  const IntegerForm& limits = kIntegers[static_cast<std::size_t>(form)];
  const auto index = py::reinterpret_steal<py::object>(PyNumber_Index(object));
  if (!index) raiseAbout(subject);
  int overflow = 0;
  const long long value = PyLong_AsLongLongAndOverflow(index.ptr(), &overflow);
  if (value == -1 && PyErr_Occurred() != nullptr) throw py::error_already_set();
  if (overflow != 0 || value < limits.lowest || value > limits.highest)
    raise(PyExc_OverflowError, subject.text() + " is out of range: " + limits.name + " is from " +
                                   std::to_string(limits.lowest) + " to " + std::to_string(limits.highest));
  switch (form) {
    case Form::int8:
      return put(address, static_cast<std::int8_t>(value));
    case Form::uint8:
      return put(address, static_cast<std::uint8_t>(value));
    case Form::int16:
      return put(address, static_cast<std::int16_t>(value));
    case Form::uint16:
      return put(address, static_cast<std::uint16_t>(value));
    case Form::int32:
      return put(address, static_cast<std::int32_t>(value));
    default:
      return put(address, static_cast<std::uint32_t>(value));
  }
}

void storeReal(Form form, void* address, PyObject* object, const Subject& subject) {
  const double value = PyFloat_AsDouble(object);
  if (value == -1 && PyErr_Occurred() != nullptr) raiseAbout(subject);
  if (form == Form::float64) return put(address, value);
  const auto single = static_cast<float>(value);
  if (std::isinf(single) && !std::isinf(value))
    raise(PyExc_OverflowError, subject.text() + " is out of range for a number of 32 bits");
  put(address, single);
}

void storeFixedText(const Type& type, void* address, PyObject* object, const Subject& subject) {
  const BytesLike text(object, subject);
  const std::string_view bytes = text.bytes();
  if (bytes.size() > type.count)
    raise(PyExc_ValueError, subject.text() + " has room for " + std::to_string(type.count) + " bytes, not for " +
                                std::to_string(bytes.size()));
  if (bytes.find('\0') != std::string_view::npos)
    raise(PyExc_ValueError, subject.text() + ": a text ends at its first NUL; set_raw sets all bytes of the field");
  if (!bytes.empty()) std::memcpy(address, bytes.data(), bytes.size());
  std::memset(static_cast<std::byte*>(address) + bytes.size(), 0, type.count - bytes.size());
}

void storeBlock(const Type& type, void* address, PyObject* object, const Subject& subject) {
  const BytesLike block(object, subject);
  const std::string_view bytes = block.bytes();
  if (bytes.size() > type.count)
    raise(PyExc_ValueError, subject.text() + " has room for " + std::to_string(type.count) + " bytes, not for " +
                                std::to_string(bytes.size()));
  if (!bytes.empty()) std::memcpy(address, bytes.data(), bytes.size());
  std::memset(static_cast<std::byte*>(address) + bytes.size(), 0, type.count - bytes.size());
}

// The elements of any iterable except str and bytes, which are hardly ever meant as sequences.
py::object elementsOf(PyObject* object, const Subject& subject) {
  if (PyUnicode_Check(object) || PyBytes_Check(object))
    raise(PyExc_TypeError, subject.text() + " needs a sequence, not " + classNameOf(object));
  auto elements = py::reinterpret_steal<py::object>(PySequence_List(object));
  if (!elements) raiseAbout(subject);
  return elements;
}
PyObject* element(const py::object& elements, std::size_t i) {
  return PyList_GET_ITEM(elements.ptr(), static_cast<Py_ssize_t>(i));
}
std::size_t lengthOf(const py::object& elements) { return static_cast<std::size_t>(PyList_GET_SIZE(elements.ptr())); }

[[noreturn]] void raiseLength(const Subject& subject, const char* rule, std::size_t wanted, std::size_t found) {
  raise(PyExc_ValueError,
        subject.text() + " needs " + rule + std::to_string(wanted) + " elements, not " + std::to_string(found));
}

Subject elementOf(Subject subject, std::size_t i) {
  subject.index = static_cast<Py_ssize_t>(i);
  return subject;
}

// Stores a value of a plain type. A failure may leave a part of the value.
void storePlain(const Type& type, void* address, PyObject* object, const Subject& subject) {
  if (type.form <= Form::uint32) return storeInteger(type.form, address, object, subject);
  if (values::isNumber(type.form)) return storeReal(type.form, address, object, subject);
  if (type.form == Form::fixedText) return storeFixedText(type, address, object, subject);
  if (type.form == Form::bytes) return storeBlock(type, address, object, subject);
  const py::object elements = elementsOf(object, subject);
  const bool isPair = type.form == Form::pair;
  const std::size_t wanted = isPair ? type.members.size() : type.count;
  if (lengthOf(elements) != wanted) raiseLength(subject, "", wanted, lengthOf(elements));
  for (std::size_t i = 0; i < wanted; ++i) {
    const Type& one = isPair ? *type.members[i].type : *type.element;
    void* const to = static_cast<std::byte*>(address) + (isPair ? type.members[i].offset : i * one.size);
    storePlain(one, to, element(elements, i), elementOf(subject, i));
  }
}

}  // namespace

std::string Subject::text() const {
  std::string text(record);
  if (!member.empty()) text.append(".").append(member);
  if (index >= 0) text.append("[").append(std::to_string(index)).append("]");
  return text;
}

BytesLike::BytesLike(PyObject* object, const Subject& subject) {
  if (PyUnicode_Check(object))
    raise(PyExc_TypeError, subject.text() + " is bytes: use set_text, or encode(text, encoding)");
  if (PyObject_GetBuffer(object, &buffer_, PyBUF_SIMPLE) != 0) raiseAbout(subject);
}

bool isPlain(const Type& type) {
  switch (type.form) {
    case Form::text:
    case Form::list:
    case Form::lazyArray:
    case Form::record:
      return false;
    case Form::array:
      return isPlain(*type.element);
    case Form::pair:
      return isPlain(*type.members[0].type) && isPlain(*type.members[1].type);
    default:
      return true;
  }
}

PyObject* toPython(const Type& type, const void* address) {
  switch (type.form) {
    case Form::int8:
      return checked(PyLong_FromLong(at<std::int8_t>(address)));
    case Form::uint8:
      return checked(PyLong_FromLong(at<std::uint8_t>(address)));
    case Form::int16:
      return checked(PyLong_FromLong(at<std::int16_t>(address)));
    case Form::uint16:
      return checked(PyLong_FromLong(at<std::uint16_t>(address)));
    case Form::int32:
      return checked(PyLong_FromLong(at<std::int32_t>(address)));
    case Form::uint32:
      return checked(PyLong_FromUnsignedLong(at<std::uint32_t>(address)));
    case Form::float32:
      return checked(PyFloat_FromDouble(static_cast<double>(at<float>(address))));
    case Form::float64:
      return checked(PyFloat_FromDouble(at<double>(address)));
    case Form::text: {
      const auto& text = *static_cast<const std::string*>(address);
      return bytesOf(text.data(), text.size());
    }
    case Form::fixedText: {
      const void* const end = std::memchr(address, 0, type.count);
      const auto size = end != nullptr ? static_cast<const char*>(end) - static_cast<const char*>(address)
                                       : static_cast<std::ptrdiff_t>(type.count);
      return bytesOf(address, static_cast<std::size_t>(size));
    }
    case Form::bytes:
      return bytesOf(address, type.count);
    case Form::pair: {
      // Both are numbers or texts, whose conversion runs no Python code; a new tuple may.
      const auto convert = [&](std::size_t i) {
        return py::reinterpret_steal<py::object>(
            toPython(*type.members[i].type, static_cast<const std::byte*>(address) + type.members[i].offset));
      };
      const py::object first = convert(0), second = convert(1);
      return checked(PyTuple_Pack(2, first.ptr(), second.ptr()));
    }
    default:
      raise(PyExc_SystemError, "a view is not converted");
  }
}

Converted::Converted(const Type& type, PyObject* object, const Subject& subject) : type_(&type) {
  if (values::isNumber(type.form)) {
    storePlain(type, number_, object, subject);
  } else if (isPlain(type)) {
    block_ = std::make_unique<std::byte[]>(type.size);
    storePlain(type, block_.get(), object, subject);
  } else if (type.form == Form::text) {
    const BytesLike text(object, subject);
    value_ = std::make_shared<std::string>(text.bytes());
  } else if (type.form == Form::record) {
    if (!isOfClass(object, type))
      raise(PyExc_TypeError, subject.text() + " needs " + std::string(type.name) + ", not " + classNameOf(object));
    value_ = type.make();
    type.assign(value_.get(), readable(asView(object)));
  } else {
    convertElements(object, subject);
  }
}

void Converted::convertElements(PyObject* object, const Subject& subject) {
  const py::object elements = elementsOf(object, subject);
  const std::size_t length = lengthOf(elements);
  if (type_->form == Form::array && length != type_->count) raiseLength(subject, "", type_->count, length);
  if (type_->form == Form::lazyArray && length > type_->count) raiseLength(subject, "at most ", type_->count, length);
  elements_.reserve(length);
  for (std::size_t i = 0; i < length; ++i)
    elements_.emplace_back(*type_->element, element(elements, i), elementOf(subject, i));
  if (type_->form == Form::array) return;
  value_ = type_->make();
  if (type_->form == Form::list) type_->resize(value_.get(), length);
  for (std::size_t i = 0; i < length; ++i) {
    void* const to =
        type_->form == Form::lazyArray
            ? type_->lazySet(value_.get(), i)
            : static_cast<std::byte*>(const_cast<void*>(type_->data(value_.get()))) + i * type_->element->size;
    elements_[i].moveTo(to);
  }
  elements_.clear();
}

void Converted::moveTo(void* at) {
  if (value_) {
    type_->swap(value_.get(), at);
  } else if (block_) {
    std::memcpy(at, block_.get(), type_->size);
  } else if (type_->form == Form::array) {
    for (std::size_t i = 0; i < elements_.size(); ++i)
      elements_[i].moveTo(static_cast<std::byte*>(at) + i * type_->element->size);
  } else {
    std::memcpy(at, number_, type_->size);
  }
}

}  // namespace oldtorvio::python
