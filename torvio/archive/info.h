// What a file contains at a glance.
#pragma once
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "torvio/archive/verdict.h"
#include "torvio/values/text_encoding.h"

namespace oldtorvio::archive {

// A text in UTF-8, or the digits of a number. Numbers that JSON does not have ("nan") have no digits.
struct InfoValue {
  std::string text;
  bool isNumber = false;
};

// One line: "plate  96 x 48, 0.0625 thick". In JSON, a value for each key.
struct InfoFact {
  std::string label;
  std::string text;
  std::vector<std::pair<std::string, InfoValue>> values;
};

// In JSON, an array of objects.
struct InfoTable {
  std::string key;  // also its label
  std::vector<std::string> columns;
  std::vector<std::vector<InfoValue>> rows;  // as many values as columns
};

struct Info {
  Verdict verdict = Verdict::foreign;
  std::string kind;  // empty for a foreign file
  std::optional<int> version;
  std::string remark;  // the fault, or why a file could not be read; empty if all is well
  std::optional<explain::Fault> fault;
  std::vector<InfoFact> facts;
  std::vector<InfoTable> tables;
};

// For a damaged file, only what was read before the fault; for any other that cannot be loaded, only the verdict.
Info infoOf(std::string_view path, std::span<const std::byte> bytes, const JudgeOptions& options,
            const values::TextEncoding& encoding);
Info unreadableInfo(std::string_view reason);

// A block of aligned lines with at most `mostRows` rows of each table. `name` is UTF-8. No text of the file breaks a
// line or affects a terminal.
std::string infoText(std::string_view name, const Info& info, std::size_t mostRows);
// One line with one JSON object, with all rows.
std::string infoJson(std::string_view name, const Info& info);

}  // namespace oldtorvio::archive
