// Records as JSON: what the writer, the reader and the schemas agree on. docs/json.md describes the text.
#pragma once
#include <optional>
#include <string>
#include <string_view>

#include "src/frame/file_kinds.h"
#include "torvio/explain/file_map.h"
#include "torvio/values/text_encoding.h"

namespace oldtorvio::values {

// Raise it with every change after which an existing reader would misread the text.
inline constexpr int kJsonFormat = 1;

namespace json_names {

// Members of the document, in the order in which they are written.
inline constexpr std::string_view kFormat = "format", kKind = "kind", kVersion = "version", kEncoding = "encoding",
                                  kRecord = "record", kTolerated = "tolerated", kUnread = "unread", kFault = "fault";
// May be in a document that a person or an editor has made.
inline constexpr std::string_view kSchema = "$schema";
// Members of a fault.
inline constexpr std::string_view kOffset = "offset", kField = "field", kReason = "reason";
// Members of a fixed text with bytes after its NUL, and of a float that is not a JSON number.
inline constexpr std::string_view kText = "text", kAfter = "after", kBits = "bits";

}  // namespace json_names

// What a document says about the file besides its record.
struct JsonHead {
  std::optional<frame::FileKind> kind;
  std::optional<int> version;
  std::string encoding{kDefaultEncoding};
};

}  // namespace oldtorvio::values
