#include "torvio/report/map_page.h"

#include <algorithm>

#include "torvio/report/field_value.h"
#include "torvio/report/map_page_assets.h"
#include "torvio/report/sha256.h"

namespace oldtorvio::report {
namespace {

constexpr std::uint64_t kPerChunk = 128;
// Limits on the beginnings of rows that have a number, and on those that were seen once.
constexpr std::size_t kMostBeginnings = 10'000, kMostSeen = 50'000;
constexpr std::string_view kRemark = "!", kFault = "!!";  // instead of a type

// For text between tags and in quoted attributes.
std::string escaped(std::string_view text) {
  std::string all;
  for (const char c : text) {
    if (c == '&')
      all += "&amp;";
    else if (c == '<')
      all += "&lt;";
    else if (c == '>')
      all += "&gt;";
    else if (c == '"')
      all += "&quot;";
    else if (c == '\'')
      all += "&#39;";
    else
      all += c;
  }
  return all;
}

// Inside a JSON string, where nothing may end the element that the JSON is in.
void appendScriptText(std::string& to, std::string_view text) {
  std::string json;
  values::appendJsonString(json, text);
  for (const char c : std::string_view(json).substr(1, json.size() - 2)) {
    if (c == '<')
      to += "\\u003c";
    else if (c == '>')
      to += "\\u003e";
    else if (c == '&')
      to += "\\u0026";
    else
      to += c;
  }
}

// Pages show only the start of long values: all of their bytes are on the left.
void shorten(std::string& value, std::uint64_t size) {
  constexpr std::size_t kLongest = 600;
  if (value.size() <= kLongest) return;
  std::size_t end = kLongest;
  while (end > 0 && (static_cast<unsigned char>(value[end]) & 0xC0U) == 0x80U) --end;
  value.resize(end);
  value.append("\u2026 (").append(std::to_string(size)).append(" bytes)");
}

std::string hashSource(std::string_view text) {
  std::string source = "'sha256-";
  appendBase64(source, sha256(std::as_bytes(std::span(text))));
  return source + "'";
}

std::string policy() {
  return "default-src 'none'; script-src " + hashSource(kMapPageScript) + "; style-src " + hashSource(kMapPageStyle) +
         "; base-uri 'none'; form-action 'none'; require-trusted-types-for 'script'";
}

constexpr std::string_view kBody = R"page(<div class="tools" role="search">
<form id="finder"><label for="find">Find</label><input type="search" id="find" placeholder="Field or value" autocomplete="off" spellcheck="false"><button type="submit">Next</button><button type="button" id="back">Previous</button></form>
<form id="goer"><label for="go-to">Byte</label><input id="go-to" placeholder="500 or 0x1f4" autocomplete="off" spellcheck="false"><button type="submit">Go</button></form>
<output id="said"></output>
<span class="keys"><kbd>Tab</kbd> other side <kbd>↑</kbd> <kbd>↓</kbd> <kbd>PgUp</kbd> <kbd>PgDn</kbd> <kbd>Home</kbd> <kbd>End</kbd> move <kbd>/</kbd> find</span>
</div>
<main>
<section class="bytes"><div class="head" aria-hidden="true"><span class="at">offset</span><span class="hex-head"><span>0</span><span>1</span><span>2</span><span>3</span><span>4</span><span>5</span><span>6</span><span>7</span><span>8</span><span>9</span><span>a</span><span>b</span><span>c</span><span>d</span><span>e</span><span>f</span></span><span class="chars-head">text</span></div>
<div class="pane" id="bytes" tabindex="0" role="application" aria-label="Bytes of the file. Arrow keys move from byte to byte." aria-describedby="detail"></div></section>
<section class="fields"><div class="head" aria-hidden="true"><span>offset</span><span class="number">size</span><span class="type">type</span><span>field</span><span>value</span></div>
<div class="pane" id="fields" tabindex="0" role="listbox" aria-label="Fields of the file"></div></section>
</main>
<footer id="detail" aria-live="polite"><div class="name" id="name"></div><div class="value" id="value"></div><div class="where" id="where"></div></footer>
<noscript><p>This page shows its fields with the script that it contains. Allow scripts for it.</p></noscript>
)page";

struct Verdict {
  std::string look, text;
};
Verdict verdictOf(const explain::FileReport& report) {
  if (report.fault) return {"bad", report.fault->path == "version" ? "refused" : "damaged"};
  if (report.tolerated) return {"warn", "sound up to a tolerated fault"};
  if (report.walked < report.size) return {"warn", "sound, " + report.unread()};
  return {"good", "sound"};
}

}  // namespace

MapPage::MapPage(std::string_view fileName, std::span<const std::byte> bytes, const values::TextEncoding& encoding)
    : fileName_(inert(values::fileNameAsUtf8(fileName))), bytes_(bytes), encoding_(encoding) {}

void MapPage::add(const explain::MapLine& line) {
  if (hasTooManyFields()) return;
  if (line.size == 0) return addRow(line.offset, 0, line.path, kRemark, inert(line.value));
  explain::eachField(line, [this](const explain::MapField& field) {
    std::string value;
    appendDecodedValue(value, field, bytes_, encoding_);
    shorten(value, field.size);
    addRow(field.offset, field.size, field.path, field.form->type, value);
    ++fields_;
  });
}

// One line of a chunk, see decodeChunk() of map_page.js. Most lines begin like those of the same field in other
// elements of a list: these beginnings are stored once.
void MapPage::addRow(std::uint64_t offset, std::uint64_t size, std::string_view path, std::string_view type,
                     std::string_view value) {
  if (rows_ % kPerChunk == 0) {
    if (rows_ > 0) chunks_ += "\"],\n";
    chunks_.append("[").append(std::to_string(offset)).append(",\"");
    lastPath_.clear();
    end_ = offset;
  } else {
    chunks_ += "\\n";
  }
  const auto shared = std::mismatch(path.begin(), path.end(), lastPath_.begin(), lastPath_.end()).first - path.begin();
  std::string beginning = std::to_string(shared) + "|";
  beginning.append(path.substr(static_cast<std::size_t>(shared))).append("|").append(std::to_string(size));
  if (offset != end_) beginning.append("@").append(std::to_string(offset));
  beginning.append("|").append(type);
  if (const auto known = numbers_.find(beginning); known != numbers_.end()) {
    chunks_.append(std::to_string(known->second));
  } else {
    chunks_.append("=");
    appendScriptText(chunks_, beginning);
    remember(beginning);
  }
  chunks_.append("|");
  appendScriptText(chunks_, value);
  lastPath_ = path;
  end_ = offset + size;
  ++rows_;
}

// A beginning gets a number when it is seen for the second time.
void MapPage::remember(const std::string& beginning) {
  if (numbers_.size() == kMostBeginnings) return;
  if (seen_.erase(beginning) > 0) {
    if (!numbers_.empty()) beginnings_ += ",";
    beginnings_ += "\"";
    appendScriptText(beginnings_, beginning);
    beginnings_ += "\"";
    numbers_.emplace(beginning, numbers_.size());
    return;
  }
  if (seen_.size() == kMostSeen) seen_.clear();
  seen_.insert(beginning);
}

std::string MapPage::html(std::string_view kindName, const explain::FileReport& report) {
  if (report.fault) addRow(report.fault->offset, 0, report.fault->path, kFault, inert(report.fault->reason));
  const Verdict verdict = verdictOf(report);
  const std::string name = escaped(fileName_);

  std::string page = "<!doctype html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n";
  page.append("<meta http-equiv=\"Content-Security-Policy\" content=\"").append(policy()).append("\">\n");
  page.append("<meta name=\"referrer\" content=\"no-referrer\">\n");
  page.append("<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n");
  page.append("<title>").append(name).append("</title>\n<style>").append(kMapPageStyle).append("</style>\n");
  page.append("</head>\n<body>\n<header><h1>")
      .append(name)
      .append("</h1><ul class=\"facts\" id=\"facts\"></ul></header>\n");
  page.append(kBody);
  page.append("<script type=\"application/json\" id=\"data\">{\"kind\":\"").append(kindName).append("\",\"version\":");
  page.append(report.version ? std::to_string(*report.version) : "null");
  page.append(",\"verdict\":\"").append(verdict.text).append("\",\"look\":\"").append(verdict.look);
  page.append("\",\"count\":").append(std::to_string(rows_)).append(",\"fieldCount\":").append(std::to_string(fields_));
  page.append(",\"perChunk\":").append(std::to_string(kPerChunk)).append(",\"bytes\":\"");
  appendBase64(page, bytes_);
  page.append("\",\"beginnings\":[")
      .append(beginnings_)
      .append("],\"chunks\":[")
      .append(chunks_)
      .append(rows_ > 0 ? "\"]" : "")
      .append("]}</script>\n");
  page.append("<script>").append(kMapPageScript).append("</script>\n</body>\n</html>\n");
  return page;
}

MapPageText mapPage(std::string_view fileName, std::span<const std::byte> bytes, std::optional<explain::FileKind> kind,
                    const values::TextEncoding& encoding) {
  constexpr std::uint64_t kMiB = 1024 * 1024;
  const std::string tooLarge = "is too large for a page, which shows up to ";
  if (bytes.size() > MapPage::kLargestMiB * kMiB)
    return {"", tooLarge + std::to_string(MapPage::kLargestMiB) + " MiB", {}};
  MapPage page(fileName, bytes, encoding);
  MapPageText text;
  text.report = explain::mapFile(bytes, kind, [&](const explain::MapLine& line) { page.add(line); });
  if (page.hasTooManyFields())
    text.refusal = tooLarge + std::to_string(MapPage::kMostFields) + " fields";
  else
    text.html = page.html(kind ? frame::infoOf(*kind).name : std::string_view(), text.report);
  return text;
}

}  // namespace oldtorvio::report
