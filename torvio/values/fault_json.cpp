#include "torvio/values/fault_json.h"

#include <string_view>

#include "torvio/values/json.h"
#include "torvio/values/text_encoding.h"

namespace oldtorvio::values {

std::string faultJson(const explain::Fault& fault) {
  std::string text = "{";
  const auto appendKey = [&text](std::string_view key) { text.append("\"").append(key).append("\":"); };
  appendKey(json_names::kOffset);
  text.append(std::to_string(fault.offset)).append(",");
  appendKey(json_names::kField);
  appendJsonString(text, fault.path);
  text += ',';
  appendKey(json_names::kReason);
  appendJsonString(text, fault.reason);
  return text + "}";
}

}  // namespace oldtorvio::values
