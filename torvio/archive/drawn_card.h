// Files in memory, of any kind, as pictures on a page.
#pragma once
#include <cstddef>
#include <optional>
#include <span>
#include <string>

#include "torvio/archive/verdict.h"
#include "torvio/draw/contact_sheet.h"
#include "torvio/draw/draw.h"

namespace oldtorvio::archive {

struct DrawnCard {
  draw::Card card;    // without a picture if the file cannot be drawn
  std::string error;  // why not all of the file is drawn; empty if it is
  std::optional<explain::Fault> fault;
};

// Judges the bytes and draws what it can. `path` is only a hint of the kind. The identifiers in the picture contain the
// number of the file on its page.
DrawnCard drawCard(const std::string& path, const std::string& name, std::span<const std::byte> bytes,
                   const JudgeOptions& judge, const values::TextEncoding& encoding, std::size_t number, bool isInline);

// The name of a file without its folders, as UTF-8.
std::string nameOfFile(const std::string& path);

}  // namespace oldtorvio::archive
