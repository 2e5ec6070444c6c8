#include "torvio/report/map_json.h"

#include "torvio/report/field_value.h"

namespace oldtorvio::report {

void appendJsonField(std::string& to, const explain::MapField& field, std::span<const std::byte> file,
                     const values::TextEncoding& encoding) {
  to.append("{\"offset\":").append(std::to_string(field.offset)).append(",\"size\":");
  to.append(std::to_string(field.size)).append(",\"field\":");
  values::appendJsonString(to, field.path);
  to.append(",\"type\":\"").append(field.form->type).append("\",\"value\":");
  appendJsonValue(to, field, file, encoding);
  if (const std::string note = noteOf(field, file); !note.empty()) {
    to.append(",\"note\":");
    values::appendJsonString(to, note);
  }
  to.append("}\n");
}

void appendJsonRemark(std::string& to, const explain::MapLine& line) {
  to.append("{\"offset\":").append(std::to_string(line.offset)).append(",\"size\":0,\"field\":");
  values::appendJsonString(to, line.path);
  to.append(",\"remark\":");
  values::appendJsonString(to, line.value);
  to.append("}\n");
}

void appendJsonLine(std::string& to, const explain::MapLine& line, const explain::MapFilter& filter,
                    std::span<const std::byte> file, const values::TextEncoding& encoding) {
  if (line.size == 0) appendJsonRemark(to, line);
  explain::eachField(line, [&](const explain::MapField& field) {
    if (filter.accepts(field.offset, field.size, field.path)) appendJsonField(to, field, file, encoding);
  });
}

void appendJsonFault(std::string& to, const explain::Fault& fault) {
  to.append("{\"offset\":").append(std::to_string(fault.offset)).append(",\"field\":");
  values::appendJsonString(to, fault.path);
  to.append(",\"fault\":");
  values::appendJsonString(to, fault.reason);
  to.append("}\n");
}

}  // namespace oldtorvio::report
