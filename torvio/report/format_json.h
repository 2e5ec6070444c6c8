// Stored forms as JSON.
#pragma once
#include <string>
#include <vector>

#include "torvio/explain/format_table.h"

namespace oldtorvio::report {

// One object per line for each row: {"fields":["width","height"],"storedAs":"f32","condition":"since 60"}
std::string formatJson(const std::vector<explain::FormatRow>& rows);

}  // namespace oldtorvio::report
