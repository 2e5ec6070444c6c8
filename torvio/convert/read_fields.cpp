#include "torvio/convert/read_fields.h"

#include <algorithm>

#include "torvio/convert/member_path.h"
#include "torvio/convert/report.h"
#include "torvio/values/renamed_fields.h"

namespace oldtorvio::convert {

std::string memberPathOf(std::string_view fieldPath) {
  if (fieldPath == values::kMachinePath.field) return std::string(values::kMachinePath.member);
  // The trailer values of a list of shapes are stored after it, or in a machine for those of its sheet.
  if (fieldPath.ends_with("].trailerValue")) {
    if (fieldPath.starts_with("machine.")) fieldPath.remove_prefix(std::string_view("machine.").size());
    const std::size_t bracket = fieldPath.rfind('[');
    return std::string(fieldPath.substr(0, bracket)).append(".shapes").append(fieldPath.substr(bracket));
  }
  return std::string(fieldPath);
}

void ReadFields::see(const explain::MapLine& line) {
  if (line.size == 0) return;
  explain::eachField(line, [this](const explain::MapField& field) {
    ++count_;
    std::string pattern = withoutIndexes(memberPathOf(field.path));
    // One row of the five columns.
    constexpr std::string_view kRow = ".bindings[].";
    if (const std::size_t row = pattern.find(kRow); row != std::string::npos)
      for (const auto& column : values::kBindColumns)
        add(pattern.substr(0, row + 1).append(column.member).append("[]"));
    add(std::move(pattern));
  });
}

void ReadFields::add(std::string pattern) {
  // The members of most fields are already known.
  while (!pattern.empty() && patterns_.insert(pattern).second) {
    const std::size_t dot = pattern.rfind('.');
    pattern.resize(dot == std::string::npos ? 0 : dot);
  }
}

bool ReadFields::lacksOwnerOf(const values::Type& root, std::string_view path) const {
  const values::Type* type = &root;
  for (const PathStep& step : stepsOf(path)) {
    const auto member = std::find_if(type->members.begin(), type->members.end(),
                                     [&](const values::TypeMember& one) { return one.name == step.name; });
    if (member == type->members.end()) return false;
    type = member->type;
    const std::string pattern = withoutIndexes(path.substr(0, step.end));
    const bool isOwner = type->form == values::Form::record || type->form == values::Form::list;
    if (isOwner && !has(pattern) && !has(pattern + "[]")) return true;
    for (std::size_t i = 0; i < step.indexes.size() && type->element != nullptr; ++i) type = type->element;
  }
  return false;
}

}  // namespace oldtorvio::convert
