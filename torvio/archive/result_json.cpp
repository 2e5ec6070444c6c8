#include "torvio/archive/result_json.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "torvio/values/fault_json.h"
#include "torvio/values/text_encoding.h"

namespace oldtorvio::archive {
namespace {

// Whether any kind of file has that version.
bool isVersionOfAny(int version) {
  return std::any_of(frame::kFileKinds.begin(), frame::kFileKinds.end(),
                     [&](const frame::FileKindInfo& kind) { return kind.accepts(version); });
}

void appendMember(std::string& to, std::string_view name, std::string_view text) {
  to.append(",\"").append(name).append("\":");
  values::appendJsonString(to, text);
}
void appendMember(std::string& to, std::string_view name, std::int64_t number) {
  to.append(",\"").append(name).append("\":").append(std::to_string(number));
}

void appendFault(std::string& to, std::string_view name, const explain::Fault& fault) {
  to.append(",\"").append(name).append("\":").append(values::faultJson(fault));
}

}  // namespace

std::string whyForeign(const FileResult& result) {
  const auto& version = result.report.version;
  std::string text = std::to_string(result.report.size) + (result.report.size == 1 ? " byte" : " bytes");
  if (!version) return text + ", too short for a version";
  return text + ", " +
         (isVersionOfAny(*version) ? "unlike any kind of file"
                                   : std::to_string(*version) + " is not a version of any kind of file");
}

std::string resultJson(const FileResult& result) {
  std::string text = "{\"path\":";
  const std::string path = values::fileNameAsUtf8(result.path);
  values::appendJsonString(text, path);
  if (path != result.path) {
    // The name is not UTF-8: its bytes in hexadecimal digits.
    constexpr std::string_view kHex = "0123456789abcdef";
    text += ",\"pathBytes\":\"";
    for (const char c : result.path)
      text += {kHex[static_cast<unsigned char>(c) >> 4U], kHex[static_cast<unsigned char>(c) & 0xFU]};
    text += '"';
  }
  appendMember(text, "verdict", nameOf(result.verdict));
  if (!result.error.empty()) {
    appendMember(text, "error", result.error);
    return text + "}\n";
  }
  if (result.kind) appendMember(text, "kind", frame::infoOf(*result.kind).name);
  const explain::FileReport& report = result.report;
  if (report.version) appendMember(text, "version", std::int64_t{*report.version});
  appendMember(text, "size", static_cast<std::int64_t>(report.size));
  if (result.kind) {
    appendMember(text, "status", report.status);
    appendMember(text, "walked", static_cast<std::int64_t>(report.walked));
    if (report.fault)
      appendFault(text, "fault", *report.fault);
    else if (report.tolerated)
      appendFault(text, "tolerated", *report.tolerated);
  }
  if (!result.warnings.empty()) {
    text += ",\"warnings\":[";
    for (const Warning& warning : result.warnings) {
      if (&warning != &result.warnings.front()) text += ',';
      text += "{\"code\":";
      values::appendJsonString(text, warning.code);
      appendMember(text, "field", warning.field);
      appendMember(text, "text", warning.text);
      text += '}';
    }
    text += ']';
  }
  return text + "}\n";
}

}  // namespace oldtorvio::archive
