// Pictures and what info prints: of any file, also of a damaged one, of bounded size and without effects of its texts.
//
// An input has a byte for the kind, and the file.
#include <algorithm>
#include <string>
#include <string_view>

#include "fuzz/fuzz_checks.h"
#include "torvio/archive/info.h"
#include "torvio/draw/draw.h"
#include "torvio/values/text_encoding.h"

using namespace oldtorvio;

namespace {

// UTF-8, in which only newlines act on a terminal.
void expectPlain(std::string_view text) {
  while (!text.empty()) {
    const auto [code, size] = values::firstCharacter(text);
    fuzzing::expect(size > 0 && (code == '\n' || !values::isActive(code)));
    text.remove_prefix(size);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 1) return 0;
  const frame::FileKind kind = frame::kFileKinds[data[0] % frame::kFileKinds.size()].kind;
  const fuzzing::Bytes file = fuzzing::bytesOf(data + 1, size - 1);
  constexpr std::size_t kLargestPicture = 32U << 20U, kMostRows = 20;

  archive::JudgeOptions options;
  options.kind = kind;
  const archive::Info info = archive::infoOf("file", file, options, {});
  const std::string text = archive::infoText("file", info, kMostRows), json = archive::infoJson("file", info);
  expectPlain(text);
  expectPlain(json);
  fuzzing::expect(std::count(json.begin(), json.end(), '\n') == 1);

  const draw::DrawnFile drawn = draw::drawFile(file, kind, "file", {});
  fuzzing::expect(drawn.svg.size() <= kLargestPicture);
  expectPlain(drawn.svg);
  if (drawn.svg.empty()) return 0;
  fuzzing::expect(drawn.svg.starts_with("<?xml") && drawn.svg.ends_with("</svg>\n"));
  return 0;
}
