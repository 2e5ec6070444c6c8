#include <algorithm>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "torvio/archive/verdict.h"
#include "torvio/cli/commands.h"
#include "torvio/cli/file_text.h"
#include "torvio/cli/output.h"
#include "torvio/cli/output_file.h"
#include "torvio/draw/contact_sheet.h"
#include "torvio/draw/draw.h"
#include "torvio/explain/file_content.h"

namespace torvio {
namespace {

using namespace oldtorvio;

std::string nameOf(const std::string& path) {
  const std::size_t folder = path.find_last_of("/\\");
  return values::fileNameAsUtf8(folder == std::string::npos ? path : path.substr(folder + 1));
}

bool isPageName(const std::string& path) { return path.ends_with(".html") || path.ends_with(".htm"); }

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
    addFile(*command, "-o,--output", output_, "Write to this file instead of standard output")->type_name("OUT");
    command->add_flag("--html", isPage_, "Write an HTML page with the pictures of all files");
    addKind(*command, judge_.kind);
    addEncoding(*command, encoding_);
    command->footer(
        "OUT is replaced only by a complete picture; an OUT that ends in \".html\" implies --html.\nOf a damaged file, "
        "what can be read is drawn. What the files do not say is named\nin the picture as an assumption.\n\n" +
        fileHelp());
    return command;
  }

  ExitCode run() override {
    const bool isPage = isPage_ || isPageName(output_);
    if (!isPage && files_.size() > 1) return wrong("several files need --html");
    const bool isFile = !output_.empty() && output_ != "-";
    for (const std::string& file : files_)
      if (isFile && isSameFile(file, output_))
        return wrong(inQuotes(output_) + " is both a file to draw and the output");
    try {
      return isPage ? writePage() : writePicture();
    } catch (const OutputError& error) {
      if (!isFile) throw;
      printError(onOneLine(output_) + ": " + error.what());
      return kNotReadOrWritten;
    }
  }

 private:
  static ExitCode wrong(const std::string& error) {
    printError("draw: " + error + "\nTry \"torvio draw --help\".");
    return kUsageError;
  }

  ExitCode writePicture() const {
    const Drawn drawn = drawFile(files_.front(), 0, false);
    if (!drawn.error.empty()) printError(onOneLine(files_.front()) + ": " + drawn.error);
    if (drawn.card.svg.empty()) return drawn.code;
    OutputText output(output_);
    output.write(drawn.card.svg);
    output.commit();
    return drawn.code;
  }

  ExitCode writePage() const {
    OutputText output(output_);
    const std::string title = files_.size() == 1 ? nameOf(files_.front()) : "Contact sheet";
    output.write(draw::pageHead(title, files_.size()));
    ExitCode worst = kSound;
    for (std::size_t i = 0; i < files_.size(); ++i) {
      const Drawn drawn = drawFile(files_[i], i + 1, true);
      if (!drawn.error.empty()) printError(onOneLine(files_[i]) + ": " + drawn.error);
      output.write(draw::pageCard(drawn.card, i + 1));
      worst = std::max(worst, drawn.code);
    }
    output.write(draw::pageEnd());
    output.commit();
    return worst;
  }

  Drawn drawFile(const std::string& path, std::size_t number, bool isInline) const try {
    Drawn drawn;
    drawn.card.name = nameOf(path);
    const auto refuse = [&](const std::string& error, ExitCode code) {
      drawn.card.note = drawn.error = error;
      drawn.code = code;
      return drawn;
    };
    const explain::FileContent file(path);
    if (!file.error().empty()) return refuse(file.error(), kNotReadOrWritten);
    const archive::Judgement judgement = archive::judge(path, file.bytes(), judge_);
    const auto kind = judgement.kind;
    const bool isRefused = judgement.verdict == archive::Verdict::refusedVersion && !judgement.report.endsInRest();
    if (!kind || isRefused) return refuse("cannot be drawn: not a file of a known kind and version", kDamaged);
    if (!draw::canDraw(*kind))
      return refuse("cannot be drawn: a " + std::string(frame::infoOf(*kind).name) + " file has no picture, only " +
                        draw::kDrawableKinds + " have",
                    kDamaged);
    draw::PictureOptions options;
    options.encoding = values::TextEncoding::named(encoding_).value_or(values::TextEncoding());
    options.idPrefix = "f" + std::to_string(number);
    options.isInline = isInline;
    draw::DrawnFile picture = draw::drawFile(file.bytes(), *kind, drawn.card.name, options);
    drawn.card.svg = std::move(picture.svg);
    const char* const fault = picture.isUnreadVersion ? "not read further" : "damaged";
    drawn.card.note = picture.kind + (picture.fault.empty() ? "" : std::string(", ") + fault);
    if (!picture.fault.empty()) {
      drawn.error = std::string(fault) + " " + picture.fault + "; what was read is drawn";
      drawn.code = kDamaged;
    }
    return drawn;
  } catch (const std::bad_alloc&) {
    return {{nameOf(path), kNoMemory, ""}, kNoMemory, kNotReadOrWritten};
  }

  std::vector<std::string> files_;
  std::string output_;
  bool isPage_ = false;
  archive::JudgeOptions judge_;
  std::string encoding_{values::kDefaultEncoding};
};

}  // namespace

std::unique_ptr<Command> makeDrawCommand() { return std::make_unique<DrawCommand>(); }

}  // namespace torvio
