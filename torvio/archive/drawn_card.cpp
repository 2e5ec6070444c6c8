#include "torvio/archive/drawn_card.h"

#include <utility>

namespace oldtorvio::archive {

DrawnCard drawCard(const std::string& path, const std::string& name, std::span<const std::byte> bytes,
                   const JudgeOptions& judge, const values::TextEncoding& encoding, std::size_t number, bool isInline) {
  DrawnCard drawn;
  drawn.card.name = name;
  const auto refuse = [&](const std::string& error) {
    drawn.card.note = drawn.error = error;
    return drawn;
  };
  const Judgement judgement = archive::judge(path, bytes, judge);
  const auto kind = judgement.kind;
  const bool isRefused = judgement.verdict == Verdict::refusedVersion && !judgement.report.endsInRest();
  if (!kind || isRefused) return refuse("cannot be drawn: not a file of a known kind and version");
  if (!draw::canDraw(*kind))
    return refuse("cannot be drawn: a " + std::string(frame::infoOf(*kind).name) + " file has no picture; only " +
                  draw::kDrawableKinds + " do");
  draw::PictureOptions options;
  options.encoding = encoding;
  options.idPrefix = "f" + std::to_string(number);
  options.isInline = isInline;
  draw::DrawnFile picture = draw::drawFile(bytes, *kind, name, options);
  drawn.card.svg = std::move(picture.svg);
  const std::string fault = picture.isUnreadVersion ? "not read further" : "damaged";
  drawn.card.note = picture.kind + (picture.fault.empty() ? "" : ", " + fault);
  drawn.fault = judgement.report.fault;
  if (!picture.fault.empty()) drawn.error = fault + " " + picture.fault + "; what was read is drawn";
  return drawn;
}

std::string nameOfFile(const std::string& path) {
  const std::size_t folder = path.find_last_of("/\\");
  return values::fileNameAsUtf8(folder == std::string::npos ? path : path.substr(folder + 1));
}

}  // namespace oldtorvio::archive
