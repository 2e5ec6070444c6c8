// Values as bytes for pickles: complete, and small to read. They begin with a fingerprint of the record, so that a
// program with other records refuses them.
#pragma once
#include <string>
#include <string_view>

#include "bindings/python/src/view.h"

namespace oldtorvio::python {

void pack(std::string& to, const Type& type, const void* at);
// Raises ValueError for bytes that pack() has not made from such a value.
void unpack(std::string_view from, const Type& type, void* at);

}  // namespace oldtorvio::python
