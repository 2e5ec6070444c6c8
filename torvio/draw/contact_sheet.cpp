#include "torvio/draw/contact_sheet.h"

#include "torvio/draw/svg.h"

namespace oldtorvio::draw {

std::string pageHead(std::string_view title, std::size_t files) {
  const std::string name = escaped(title);
  return R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src 'unsafe-inline'">
<title>)" +
         name +
         R"(</title>
<style>
body { margin: 2rem; background: #eef0f1; color: #1f2933; font: 15px/1.4 Helvetica, Arial, sans-serif }
h1 { font-size: 1.6rem; margin: 0 }
header p { margin: .2rem 0 1.4rem; color: #5b6875 }
main { display: grid; grid-template-columns: repeat(auto-fill, minmax(min(30rem, 100%), 1fr)); gap: 1.2rem }
figure { margin: 0; padding: .8rem; background: #fcfbf8; border: 1px solid #c5cdd5; border-radius: 6px }
figure:target { grid-column: 1 / -1; order: -1 }
figure a { display: block; height: 22rem; overflow: hidden; cursor: zoom-in }
figure:target a { height: auto; cursor: auto }
svg { display: block; width: 100%; height: auto }
figcaption { margin-top: .6rem; border-top: 1px solid #c5cdd5; padding-top: .5rem; overflow-wrap: anywhere }
figcaption span { color: #5b6875 }
.none { display: grid; place-items: center; height: 22rem; padding: 0 2rem; color: #a3420b; text-align: center }
figure:target .none { height: auto }
@media print { body { margin: 0; background: none } figure { break-inside: avoid } figure a { height: auto } }
</style>
</head>
<body>
<header><h1>)" +
         name + "</h1>\n<p>" + countText(files, "file", "files") +
         ". Select a picture to enlarge it.</p></header>\n<main>\n";
}

std::string pageCard(const Card& card, std::size_t number) {
  const std::string id = "file" + std::to_string(number);
  std::string text = "<figure id=\"" + id + "\">\n";
  if (card.svg.empty())
    text += "<div class=\"none\">" + escaped(card.note) + "</div>\n";
  else
    text += "<a href=\"#" + id + "\">\n" + card.svg + "</a>\n";
  text += "<figcaption><b>" + escaped(card.name) + "</b>";
  if (!card.svg.empty()) text += " <span>" + escaped(card.note) + "</span>";
  return text + "</figcaption>\n</figure>\n";
}

std::string pageEnd() { return "</main>\n</body>\n</html>\n"; }

}  // namespace oldtorvio::draw
