// The stored forms as tables, made from the descriptions themselves.
#pragma once
#include <string>
#include <string_view>
#include <vector>

#include "torvio/explain/file_map.h"

namespace oldtorvio::explain {

// Consecutive fields that are stored alike.
struct FormatRow {
  std::vector<std::string> fields;
  std::string storedAs;   // empty: a rule for fields of earlier rows
  std::string condition;  // and rules for the values, separated by "; "; empty without any
};

// A file of that kind from its first byte. For part files, the layout from version 52 on.
std::vector<FormatRow> formatRows(FileKind kind);
// What files embed, and the layouts of the oldest parts, by name: "clamp-info", "part-2-3". Empty for a
// name that is not one of recordNames().
std::vector<FormatRow> recordRows(std::string_view name);

// The same in Markdown, with numbered rows.
std::string markdownOf(const std::vector<FormatRow>& rows);
std::string formatTable(FileKind kind);
std::string recordTable(std::string_view name);
std::vector<std::string> recordNames();

}  // namespace oldtorvio::explain
