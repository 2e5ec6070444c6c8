#include "torvio/report/map_json.h"

#include "torvio/report/field_value.h"

namespace oldtorvio::report {

void appendJsonField(std::string& to, const explain::MapField& field, std::span<const std::byte> file,
                     const values::TextEncoding& encoding) {
  to.append("{\"offset\":").append(std::to_string(field.offset)).append(",\"size\":");
  to.append(std::to_string(field.size)).append(",\"path\":");
  appendInertJsonString(to, field.path);
  to.append(",\"type\":\"").append(field.form->type).append("\",\"value\":");
  appendJsonValue(to, field, file, encoding);
  if (const std::string note = noteOf(field, file); !note.empty()) {
    to.append(",\"note\":");
    appendInertJsonString(to, note);
  }
  to.append("}\n");
}

void appendJsonRemark(std::string& to, const explain::MapLine& line) {
  to.append("{\"offset\":").append(std::to_string(line.offset)).append(",\"size\":0,\"path\":");
  appendInertJsonString(to, line.path);
  to.append(",\"remark\":");
  appendInertJsonString(to, line.value);
  to.append("}\n");
}

void appendJsonFault(std::string& to, const explain::Fault& fault) {
  to.append("{\"offset\":").append(std::to_string(fault.offset)).append(",\"path\":");
  appendInertJsonString(to, fault.path);
  to.append(",\"fault\":");
  appendInertJsonString(to, fault.reason);
  to.append("}\n");
}

}  // namespace oldtorvio::report
