#include "torvio/explain/format_printer.h"

#include <algorithm>
#include <charconv>
#include <iterator>

namespace oldtorvio::explain {

std::vector<FormatRow> FormatPrinter::rows(const Walk& walk, Place place) {
  FormatPrinter printer(place);
  walk(printer);
  std::vector<FormatRow> all;
  all.reserve(printer.rows_.size());
  for (TableRow& row : printer.rows_) {
    std::string condition = conditionText(row.conditions);
    if (!row.condition.empty()) condition.append(condition.empty() ? "" : "; ").append(row.condition);
    all.push_back({std::move(row.names), std::move(row.stored), std::move(condition)});
  }
  return all;
}

std::int32_t FormatPrinter::numberCalled(const std::string& name) {
  nextCalled_ += 2;
  call(nextCalled_, name);
  call(std::int64_t{1} + nextCalled_, "1 + " + name);
  return nextCalled_;
}

std::int32_t FormatPrinter::shortNumberCalled(const std::string& name) {
  call(++nextShort_, name);
  return nextShort_;
}

bool FormatPrinter::isSize(std::string_view name) {
  for (const std::string_view end : {"Count", "count", "Length", "Width", "Size"})
    if (name.ends_with(end)) return true;
  return false;
}

std::string FormatPrinter::valueText(std::int64_t value) const {
  const auto called = called_.find(value);
  return called == called_.end() ? std::to_string(value) : called->second;
}

bool FormatPrinter::addReserved(const std::string& size) {
  remark("reserved", size, "dropped");
  return true;
}

void FormatPrinter::remark(const std::string& names, const std::string& stored, const std::string& condition) {
  const bool isField = !names.starts_with('(');
  rows_.push_back({{isField ? path_ + names : names}, stored, conditions_, condition});
}

// In a block, every name gets the path.
std::string FormatPrinter::pathOf(std::string names) const {
  for (std::size_t at = 0; (at = names.find(", ", at)) != std::string::npos; at += path_.size() + 2)
    names.insert(at + 2, path_);
  return path_ + names;
}

void FormatPrinter::add(std::size_t i, const std::string& stored, const std::string& rule) {
  const std::string condition = defaults_.empty() ? rule : defaults_[defaults_.size() == 1 ? 0 : i] + " below";
  if (names_[i] == "itself") names_[i] = "value";
  const bool joinsRow = rows_.size() > runFrom_ && rows_.back().stored == stored && rows_.back().condition == condition;
  if (joinsRow && !stored.starts_with("block"))
    rows_.back().names.push_back(name(i));
  else
    rows_.push_back({{name(i)}, stored, conditions_, condition});
}

// In the row of the field if that was just printed under the same conditions, otherwise in a row of its own.
void FormatPrinter::addRule(const std::string& name, const std::string& text) {
  for (auto row = rows_.rbegin(); row != rows_.rend(); ++row) {
    if (row->names.front().starts_with('(')) break;
    if (std::find(row->names.begin(), row->names.end(), name) == row->names.end()) continue;
    if (conditionText(row->conditions) != conditionText(conditions_)) break;
    row->condition.append(row->condition.empty() ? "" : "; ");
    row->condition.append(row->names.size() > 1 ? name + " " : "").append(text);
    return;
  }
  rows_.push_back({{name}, "", conditions_, text});
}

// Defaults are 32-bit floats and small integers: six digits are enough.
std::string FormatPrinter::defaultText(double value) {
  char digits[32];
  return {digits, std::to_chars(std::begin(digits), std::end(digits), value, std::chars_format::general, 6).ptr};
}

std::string FormatPrinter::conditionText(const std::vector<Condition>& conditions) {
  int since = 0;
  std::vector<std::string> texts;
  const auto isWriter = [](const Condition& one) { return one.text == kWriter; };
  const bool writes = std::any_of(conditions.begin(), conditions.end(), isWriter);
  for (const Condition& one : conditions) {
    since = std::max(since, one.since);
    if (writes && one.text == kTail) continue;
    if (!one.text.empty()) texts.push_back(one.text);
  }
  std::string all = since > 0 ? "since " + std::to_string(since) : std::string();
  for (const std::string& text : texts) all.append(all.empty() ? "" : ", ").append(text);
  return all;
}

}  // namespace oldtorvio::explain
