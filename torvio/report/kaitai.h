// Kinds of files in the language of Kaitai Struct, from the descriptions of their stored forms.
#pragma once
#include <string>
#include <vector>

#include "torvio/explain/file_map.h"

namespace oldtorvio::report {

struct KaitaiDescription {
  std::string text;                   // a .ksy file
  std::vector<std::string> problems;  // what the language cannot express; if there is any, do not use the text
};

// Files of that kind from version 52 on, as a load reads them.
KaitaiDescription kaitaiDescription(frame::FileKind kind);

}  // namespace oldtorvio::report
