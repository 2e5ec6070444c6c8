#include "torvio/compare/diff_json.h"

#include <string_view>

#include "torvio/values/fault_json.h"
#include "torvio/values/text_encoding.h"

namespace oldtorvio::compare {
namespace {

std::string_view nameOf(Difference::Change change) {
  using Change = Difference::Change;
  switch (change) {
    case Change::changed:
      return "changed";
    case Change::onlyInA:
      return "onlyInA";
    case Change::onlyInB:
      return "onlyInB";
    default:
      return "moved";
  }
}

void appendText(std::string& to, std::string_view key, std::string_view utf8) {
  to.append(",\"").append(key).append("\":");
  values::appendJsonString(to, utf8);
}
void appendJson(std::string& to, std::string_view key, const std::string& json) {
  if (!json.empty()) to.append(",\"").append(key).append("\":").append(json);
}

void appendFile(std::string& to, std::string_view key, const JudgedFile& file, const ComparedFile& compared) {
  to.append(",\"").append(key).append("\":{\"path\":");
  values::appendJsonString(to, values::fileNameAsUtf8(file.name));
  appendText(to, "kind", frame::infoOf(file.kind).name);
  if (compared.version) appendJson(to, "version", std::to_string(*compared.version));
  if (!compared.place.empty()) appendText(to, "place", compared.place);
  appendJson(to, "part", compared.part);
  const explain::FileReport& report = file.report;
  if (report.fault) {
    appendJson(to, "fault", values::faultJson(*report.fault));
  } else if (report.walked < report.size) {
    appendJson(to, "unread", std::to_string(report.size - report.walked));
  }
  to += '}';
}

}  // namespace

std::string differenceJson(const Difference& difference) {
  std::string text = "{\"change\":\"";
  text.append(nameOf(difference.change)).append("\"");
  if (!difference.pathInA.empty()) appendText(text, "fieldInA", difference.pathInA);
  if (!difference.pathInB.empty()) appendText(text, "fieldInB", difference.pathInB);
  appendJson(text, "a", difference.a);
  appendJson(text, "b", difference.b);
  appendJson(text, "name", difference.name);
  if (difference.notStoredIn != Side::none)
    appendText(text, "notStoredIn", difference.notStoredIn == Side::a ? "a" : "b");
  return text + "}\n";
}

std::string summaryJson(const FileDifferences& found, std::uint64_t printed, const JudgedFile& a, const JudgedFile& b) {
  std::string text = "{\"summary\":{\"same\":";
  text.append(found.areSame ? "true" : "false").append(",\"differences\":").append(std::to_string(found.differences));
  text.append(",\"printed\":").append(std::to_string(printed));
  text.append(",\"notStored\":").append(std::to_string(found.notStored));
  appendFile(text, "a", a, found.a);
  appendFile(text, "b", b, found.b);
  return text + "}}\n";
}

}  // namespace oldtorvio::compare
