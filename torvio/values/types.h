// The contents of records, described at run time. The descriptions are made from Members, so that reading and writing
// JSON, and its schemas, need no code for each record.
#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "src/frame/file_kinds.h"

namespace oldtorvio::values {

enum class Form : std::uint8_t {
  int8,
  uint8,
  int16,
  uint16,
  int32,
  uint32,
  float32,
  float64,
  text,       // std::string
  fixedText,  // an array of char
  bytes,      // an array of uint8
  array,      // any other array
  list,
  lazyArray,
  pair,
  record,
};

constexpr bool isNumber(Form form) { return form <= Form::float64; }

struct Type;

struct TypeMember {
  std::string_view name;
  std::size_t offset = 0;  // in the record or pair
  const Type* type = nullptr;
  bool isStored = true;
};

struct Type {
  Form form{};
  std::size_t size = 0;           // in memory
  std::size_t count = 0;          // elements of an array or lazy array, bytes of a fixed text or block
  const Type* element = nullptr;  // of an array, list or lazy array

  std::string_view name;              // of a record
  std::vector<TypeMember> members;    // of a record; both of a pair
  std::shared_ptr<const void> fresh;  // a new record

  // Creates a value of this type. Arrays are never created by themselves.
  std::shared_ptr<void> (*make)() = nullptr;
  void (*assign)(void* to, const void* from) = nullptr;
  void (*swap)(void* one, void* other) = nullptr;

  // Lists. Their elements are contiguous.
  std::size_t (*length)(const void* list) = nullptr;
  const void* (*data)(const void* list) = nullptr;
  void* (*append)(void* list) = nullptr;
  void (*clear)(void* list) = nullptr;
  void (*resize)(void* list, std::size_t length) = nullptr;

  // Lazy arrays. lazyAt allocates nothing; an element that was never written is at `unwritten`.
  const void* (*lazyAt)(const void* array, std::size_t i) = nullptr;
  void* (*lazySet)(void* array, std::size_t i) = nullptr;
  const void* unwritten = nullptr;
};

// The record of that kind of file.
const Type& typeOfRecord(frame::FileKind kind);
// A new record of that kind.
std::shared_ptr<void> newRecord(frame::FileKind kind);

inline const void* memberIn(const void* record, const TypeMember& member) {
  return static_cast<const std::byte*>(record) + member.offset;
}
inline void* memberIn(void* record, const TypeMember& member) {
  return static_cast<std::byte*>(record) + member.offset;
}

// Whether both values of that type are equal, as equalContents in equal.h finds for records of one type.
bool equalContents(const Type& type, const void* one, const void* other);

}  // namespace oldtorvio::values
