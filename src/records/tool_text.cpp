#include "src/records/tool_text.h"

#include "src/frame/text/text.h"
#include "src/records/tool_layout.h"

namespace oldtorvio {

using namespace codec;
using namespace frame;

std::string toolText(const OldTool& tool) {
  std::string text;
  if (tool.shapeCode == 0) return text;
  appendInteger(text, tool.shapeCode);
  text += ' ';
  if (tool.shapeCode == kSpecialTool) {
    text += baseName(fixedText(tool.specialToolPath));
    text += ' ';
  } else {
    for (const float dimension : {tool.dimension1, tool.dimension2, tool.dimension3}) {
      appendFixed3(text, static_cast<double>(dimension));
      text += ' ';
    }
  }
  appendFixed3(text, static_cast<double>(tool.orientation));
  return text;
}

}  // namespace oldtorvio
