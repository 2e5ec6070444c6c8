#include <algorithm>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "torvio/archive/drawn_card.h"
#include "torvio/archive/verdict.h"
#include "torvio/cli/commands.h"
#include "torvio/cli/file_text.h"
#include "torvio/cli/output.h"
#include "torvio/cli/output_file.h"
#include "torvio/explain/file_content.h"

namespace torvio {
namespace {

using namespace oldtorvio;

struct Drawn {
  draw::Card card;
  std::string error;  // what is printed about the file; empty if all of it is drawn
  ExitCode code = kSound;
};

// Draws one file as SVG, or several on one HTML page.
class DrawCommand : public Command {
 public:
  CLI::App* addTo(CLI::App& tool) override {
    CLI::App* command = tool.add_subcommand("draw", "Draw a sheet, part, group part or machine to scale, as SVG");
    addFiles(*command, "FILE", files_, "The files; several only with --html")->required();
    addOutput(*command, output_);
    command->add_flag("--html", isPage_, "Write an HTML page with the pictures of all files");
    addJudging(*command, judge_);
    addEncoding(*command, encoding_);
    command->footer(
        "OUT is replaced only by a complete picture. An OUT that ends in \".html\" implies\n--html. For a damaged "
        "file, what can be read is drawn. What the files do not say\nis named in the picture as an assumption.\n\n"
        "Examples:\n"
        "  torvio draw nest.sheet -o nest.svg\n"
        "      Draw a nest with its parts, clamps and tools.\n"
        "  torvio draw *.sheet -o nests.html\n"
        "      Make a page with a picture of each nest.\n\n" +
        wrapped("Encodings", values::TextEncoding::names()) + "\n\n" + fileHelp(kExitCodesOfPictures));
    return command;
  }

  ExitCode run() override {
    const bool isPage = isPage_ || isPageName(output_);
    if (!isPage && files_.size() > 1) return usageError("draw", "several files need --html");
    if (isInputToo("draw", output_, files_)) return kUsageError;
    return isPage ? writePage() : writePicture();
  }

 private:
  ExitCode writePicture() const {
    const Drawn drawn = drawFile(files_.front(), 0, false);
    if (!drawn.error.empty()) printError(onOneLine(files_.front()) + ": " + drawn.error);
    if (drawn.card.svg.empty()) return drawn.code;
    return writeOutput(output_, [&](OutputText& output) {
      output.write(drawn.card.svg);
      return drawn.code;
    });
  }

  ExitCode writePage() const {
    return writeOutput(output_, [&](OutputText& output) {
      const std::string title = files_.size() == 1 ? archive::nameOfFile(files_.front()) : "Contact sheet";
      output.write(draw::pageHead(title, files_.size()));
      ExitCode worst = kSound;
      for (std::size_t i = 0; i < files_.size(); ++i) {
        const Drawn drawn = drawFile(files_[i], i + 1, true);
        if (!drawn.error.empty()) printError(onOneLine(files_[i]) + ": " + drawn.error);
        output.write(draw::pageCard(drawn.card, i + 1));
        worst = std::max(worst, drawn.code);
      }
      output.write(draw::pageEnd());
      return worst;
    });
  }

  Drawn drawFile(const std::string& path, std::size_t number, bool isInline) const try {
    const std::string name = archive::nameOfFile(path);
    const explain::FileContent file(path);
    if (!file.error().empty()) return {{name, file.error(), ""}, file.error(), kNotReadOrWritten};
    archive::DrawnCard drawn =
        archive::drawCard(path, name, file.bytes(), judge_, encodingNamed(encoding_), number, isInline);
    const ExitCode code = drawn.error.empty() ? kSound : kDamaged;
    return {std::move(drawn.card), std::move(drawn.error), code};
  } catch (const std::bad_alloc&) {
    return {{archive::nameOfFile(path), kNoMemory, ""}, kNoMemory, kNotReadOrWritten};
  }

  std::vector<std::string> files_;
  std::string output_, encoding_;
  bool isPage_ = false;
  archive::JudgeOptions judge_;
};

}  // namespace

std::unique_ptr<Command> makeDrawCommand() { return std::make_unique<DrawCommand>(); }

}  // namespace torvio
