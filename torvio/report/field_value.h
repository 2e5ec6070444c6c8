// Values of fields for people and programs: decoded texts in which nothing can have an effect.
#pragma once
#include <cstddef>
#include <span>
#include <string>

#include "torvio/explain/map_fields.h"
#include "torvio/values/text_encoding.h"

namespace oldtorvio::report {

// The text with its active characters escaped (values::isActive): what a file says must not control a terminal or
// reorder a page.
std::string inert(std::string_view utf8);

// Appends the value as JSON: a number; a text up to its first NUL; bytes as hexadecimal digits; null for reserved bytes.
// Numbers that JSON lacks are "NaN", "Infinity" and "-Infinity". `file` is the complete file.
void appendJsonValue(std::string& to, const explain::MapField& field, std::span<const std::byte> file,
                     const values::TextEncoding& encoding);

// Appends the value as the map prints it, but with decoded texts: `"Träger" (no NUL)`.
void appendDecodedValue(std::string& to, const explain::MapField& field, std::span<const std::byte> file,
                        const values::TextEncoding& encoding);

// What the JSON value leaves out: "no NUL", "2 nonzero bytes after the NUL", the bits of a NaN. Empty for most fields.
std::string noteOf(const explain::MapField& field, std::span<const std::byte> file);

}  // namespace oldtorvio::report
