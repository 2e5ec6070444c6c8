// The stored forms as tables in Markdown, made from the descriptions themselves.
#pragma once
#include <string>
#include <string_view>
#include <vector>

#include "torvio/explain/file_map.h"

namespace oldtorvio::explain {

// A file of that kind from its first byte. Of part files the layout from version 52 on.
std::string formatTable(FileKind kind);

// What files embed, and the layouts of the oldest parts, by name: "clamp-info", "part-3". Empty for a
// name that is none of recordNames().
std::string recordTable(std::string_view name);
std::vector<std::string> recordNames();

}  // namespace oldtorvio::explain
