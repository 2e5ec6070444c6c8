// Records as JSON text.
#pragma once
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "torvio/values/compiled_records.h"
#include "torvio/values/json.h"
#include "torvio/values/types.h"

namespace oldtorvio::values {

// Takes the text piece by piece. An exception that it throws ends the writing.
using JsonSink = std::function<void(std::string_view)>;

// Writes a document. Without a record, or if the head has no kind, its record is null. `encoding` of the head is one
// of TextEncoding::names(). What the document says about the file besides comes from `report`, if there is one.
void writeJson(const JsonSink& sink, const JsonHead& head, const void* record, const explain::FileReport* report,
               bool isPretty = false);

// The document of a record in memory, to be saved at that version.
template <frame::FileKind kKind>
std::string jsonOf(const typename FileRecord<kKind>::Record& record, int version,
                   std::string_view encoding = kDefaultEncoding, bool isPretty = false) {
  std::string text;
  const JsonHead head{kKind, version, std::string(encoding)};
  writeJson([&](std::string_view piece) { text += piece; }, head, &record, nullptr, isPretty);
  return text;
}

// The document of the bytes of a file: its record, or what was read of it before a fault, and what `report` says, which
// must come from checkFile for these bytes and this kind. The record is null without a kind, or if the kind refuses the
// version.
void writeFileAsJson(const JsonSink& sink, std::span<const std::byte> bytes, std::optional<frame::FileKind> kind,
                     const explain::FileReport& report, const std::string& encoding, bool isPretty = false);

// Writes single values in the form that they have in a document, on one line.
class JsonValues {
 public:
  explicit JsonValues(std::string_view encoding);
  JsonValues(const JsonValues&) = delete;
  JsonValues& operator=(const JsonValues&) = delete;
  ~JsonValues();

  // Appends the value. If `atLeast` is not 0 and the value is much longer, only a beginning of at least that many bytes
  // is written.
  void append(std::string& to, const Type& type, const void* value, std::size_t atLeast = 0);

 private:
  class Writer;
  std::unique_ptr<Writer> writer_;
};

}  // namespace oldtorvio::values
