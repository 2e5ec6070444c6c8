// Values of members as Python objects and back. Numbers, texts, blocks of bytes and pairs are converted; everything
// else is a view.
#pragma once
#include "bindings/python/src/view.h"

namespace oldtorvio::python {

// What a message names: "Shape.values[3]".
struct Subject {
  std::string_view record, member;
  Py_ssize_t index = -1;

  std::string text() const;
};

// The Python value of a type that is not a view. Returns a new reference, or throws.
PyObject* toPython(const Type& type, const void* at);

// A Python object converted to a value of that type, before it takes its place: the conversion may run Python code.
class Converted {
 public:
  Converted(const Type& type, PyObject* object, const Subject& subject);
  Converted(Converted&&) = default;

  // Runs no Python code and allocates no memory, except for elements of lazy arrays.
  void moveTo(void* at);

 private:
  void convertElements(PyObject* object, const Subject& subject);

  const Type* type_;
  std::unique_ptr<std::byte[]> block_;  // of a value that owns no memory
  std::byte number_[8] = {};
  std::shared_ptr<void> value_;      // of any other
  std::vector<Converted> elements_;  // of an array, element by element
};

// The bytes of a bytes-like object. Code that runs while they are in use must not run Python code.
class BytesLike {
 public:
  BytesLike(PyObject* object, const Subject& subject);
  ~BytesLike() { PyBuffer_Release(&buffer_); }
  BytesLike(const BytesLike&) = delete;
  BytesLike& operator=(const BytesLike&) = delete;
  std::string_view bytes() const {
    return {static_cast<const char*>(buffer_.buf), static_cast<std::size_t>(buffer_.len)};
  }

 private:
  Py_buffer buffer_{};
};

// Whether a value consists only of its own bytes: numbers, fixed texts, blocks, and arrays and pairs of these.
bool isPlain(const Type& type);

}  // namespace oldtorvio::python
