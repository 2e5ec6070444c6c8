// A map as JSON, one object per line.
#pragma once
#include <cstddef>
#include <span>
#include <string>

#include "torvio/explain/file_map.h"
#include "torvio/explain/map_fields.h"
#include "torvio/explain/map_filter.h"
#include "torvio/values/text_encoding.h"

namespace oldtorvio::report {

// {"offset":2,"size":4,"field":"width","type":"f32","value":12.5}, and "note" if noteOf() is not empty. All of these
// functions append a newline, too.
void appendJsonField(std::string& to, const explain::MapField& field, std::span<const std::byte> file,
                     const values::TextEncoding& encoding);
// {"offset":40,"size":0,"field":"machine","remark":"..."}
void appendJsonRemark(std::string& to, const explain::MapLine& line);
// A remark, or the fields of the line that the filter accepts.
void appendJsonLine(std::string& to, const explain::MapLine& line, const explain::MapFilter& filter,
                    std::span<const std::byte> file, const values::TextEncoding& encoding);
// {"offset":40,"field":"width","fault":"needs 4 bytes, the file has 2"}
void appendJsonFault(std::string& to, const explain::Fault& fault);

}  // namespace oldtorvio::report
