// The differences between two records, one for each member.
#pragma once
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "torvio/convert/complete_save.h"
#include "torvio/convert/report.h"

namespace oldtorvio::convert {

// Whether a difference at this path of `before` or, for an element that only `after` has, of `after` matters.
using PathFilter = std::function<bool(std::string_view path)>;

// In the order of the members. Texts in the values are decoded from that encoding.
template <frame::FileKind kKind>
std::vector<Loss> lossesOf(const typename FileRecord<kKind>::Record& before,
                           const typename FileRecord<kKind>::Record& after, const std::string& encoding,
                           const PathFilter& matters = {});

}  // namespace oldtorvio::convert
