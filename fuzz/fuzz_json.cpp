// JSON: any text is read or refused with a message on one line. What was read is written as the same JSON again, and its
// file has the same bytes whether its record comes from JSON or from a load.
#include <string>
#include <string_view>

#include "fuzz/fuzz_checks.h"
#include "torvio/values/json_reader.h"
#include "torvio/values/json_writer.h"
#include "torvio/values/text_encoding.h"

using namespace oldtorvio;

namespace {

// The record of a document that was written.
values::JsonRecord readAgain(const std::string& text, frame::FileKind kind, int version, const std::string& encoding) {
  values::JsonRecord again = values::readJson(text);
  fuzzing::expect(again.record != nullptr && again.kind == kind);
  fuzzing::expect(again.version == version && again.encoding == encoding);
  return again;
}

template <frame::FileKind kKind>
void expectLossless(typename FileRecord<kKind>::Record& record, int version, const std::string& encoding) {
  const std::string text = values::jsonOf<kKind>(record, version, encoding);
  const values::JsonRecord again = readAgain(text, kKind, version, encoding);
  fuzzing::expect(values::jsonOf<kKind>(again.as<kKind>(), version, encoding) == text);
  const std::string pretty = values::jsonOf<kKind>(record, version, encoding, true);
  const values::JsonRecord fromPretty = readAgain(pretty, kKind, version, encoding);
  fuzzing::expect(values::jsonOf<kKind>(fromPretty.as<kKind>(), version, encoding) == text);
  // A save changes its record.
  const values::SavedRecord saved = values::saveRecord<kKind>(record, version);
  const values::SavedRecord savedAgain = values::saveRecord<kKind>(again.as<kKind>(), version);
  fuzzing::expect(saved.status == savedAgain.status && saved.bytes == savedAgain.bytes);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const values::JsonRecord read = values::readJson(text);
  fuzzing::expect((read.record == nullptr) == !read.error.empty());
  if (read.record == nullptr) {
    fuzzing::expect(values::onOneLine(read.error) == read.error);
    return 0;
  }
  withFileRecord(read.kind, [&](auto file) {
    constexpr frame::FileKind kKind = decltype(file)::kKind;
    expectLossless<kKind>(read.as<kKind>(), read.version, read.encoding);
    const values::SavedRecord saved = values::saveRecord<kKind>(read.as<kKind>(), read.version);
    if (saved.status != 0) return;
    const auto loaded = values::loadRecord<kKind>(saved.bytes);
    if (loaded.status == 0) expectLossless<kKind>(*loaded.record, read.version, read.encoding);
  });
  return 0;
}
