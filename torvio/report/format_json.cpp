#include "torvio/report/format_json.h"

#include "torvio/values/text_encoding.h"

namespace oldtorvio::report {

std::string formatJson(const std::vector<explain::FormatRow>& rows) {
  std::string text;
  for (const explain::FormatRow& row : rows) {
    text += "{\"fields\":[";
    for (std::size_t i = 0; i < row.fields.size(); ++i)
      values::appendJsonString(text += i == 0 ? "" : ",", row.fields[i]);
    values::appendJsonString(text += "],\"storedAs\":", row.storedAs);
    values::appendJsonString(text += ",\"condition\":", row.condition);
    text += "}\n";
  }
  return text;
}

}  // namespace oldtorvio::report
