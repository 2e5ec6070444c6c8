#include "torvio/convert/report.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "torvio/values/fault_json.h"
#include "torvio/values/text_encoding.h"

namespace oldtorvio::convert {
namespace {

constexpr std::array<std::string_view, 3> kEffects{"lost", "changed", "added"};
std::string_view nameOf(Loss::Effect effect) { return kEffects[static_cast<std::size_t>(effect)]; }

// A value for a line, cut between two characters. JSON text has its active characters escaped already.
std::string shortened(std::string_view json) {
  constexpr std::size_t kMost = 48;
  if (json.size() <= kMost) return json.empty() ? "none" : std::string(json);
  std::size_t end = 0;
  while (end < kMost - 3) end += std::max<std::size_t>(1, values::firstCharacter(json.substr(end)).size);
  return std::string(json.substr(0, std::min(end, json.size()))) + "...";
}

// "machineWord108" is "machineWord" and 108.
struct Numbered {
  std::string_view stem;
  std::optional<unsigned> number;
};
Numbered numbered(std::string_view name) {
  const std::size_t end = name.find_last_not_of("0123456789");
  if (end == std::string_view::npos || end + 1 == name.size() || name.size() - end > 8) return {name, {}};
  unsigned number = 0;
  (void)std::from_chars(name.data() + end + 1, name.data() + name.size(), number);
  return {name.substr(0, end + 1), number};
}

// Runs of numbered names become one: "setting8 to setting12".
std::vector<std::string> withRuns(const std::vector<std::string>& names) {
  std::vector<std::string> runs;
  for (std::size_t i = 0; i < names.size();) {
    const Numbered first = numbered(names[i]);
    std::size_t end = i + 1;
    for (unsigned next = first.number.value_or(0) + 1; first.number && end < names.size(); ++end, ++next)
      if (const Numbered one = numbered(names[end]); one.stem != first.stem || one.number != next) break;
    if (end - i > 2)
      runs.push_back(names[i] + " to " + names[end - 1]);
    else
      for (std::size_t k = i; k < end; ++k) runs.push_back(names[k]);
    i = end;
  }
  return runs;
}

void appendWrapped(std::string& to, const std::vector<std::string>& names) {
  constexpr std::size_t kWidth = 96;
  std::string line;
  for (std::size_t i = 0; i < names.size(); ++i) {
    const std::string one = names[i] + (i + 1 < names.size() ? "," : "");
    if (!line.empty() && line.size() + one.size() + 5 > kWidth) {
      to.append("    ").append(line).append("\n");
      line.clear();
    }
    line.append(line.empty() ? "" : " ").append(one);
  }
  if (!line.empty()) to.append("    ").append(line).append("\n");
}

std::string lineOf(const Loss& loss) {
  std::string line = "    " + loss.member;
  const bool isOne = loss.count == 1;
  if (isOne && loss.path != loss.member) line = "    " + loss.path;
  line += ": ";
  if (!isOne) line += std::to_string(loss.count) + " times, first " + loss.path + ": ";
  switch (loss.effect) {
    case Loss::Effect::added:
      return line + shortened(loss.after) + "\n";
    case Loss::Effect::lost:
      return line + shortened(loss.before) + (loss.after.empty() ? "" : ", now " + shortened(loss.after)) + "\n";
    default:
      return line + shortened(loss.before) + " becomes " + shortened(loss.after) + "\n";
  }
}

void appendLosses(std::string& to, const Report& report, Loss::Effect effect, std::string_view caption) {
  std::string lines;
  std::uint64_t members = 0;
  for (const Loss& loss : report.losses)
    if (loss.effect == effect) {
      lines += lineOf(loss);
      ++members;
    }
  if (members == 0) return;
  to.append("  ").append(plural(members, "member", "members")).append(caption).append(":\n").append(lines);
}

class Json {
 public:
  void open(char bracket) {
    text_ += bracket;
    isFirst_ = true;
  }
  void close(char bracket) {
    text_ += bracket;
    isFirst_ = false;
  }
  void next() {
    if (!isFirst_) text_ += ',';
    isFirst_ = false;
  }
  // Writes an array with an object for each element, whose members put() writes.
  template <class T, class Put>
  void list(std::string_view name, const std::vector<T>& elements, const Put& put) {
    key(name);
    open('[');
    for (const T& element : elements) {
      next();
      open('{');
      put(element);
      close('}');
    }
    close(']');
  }
  void key(std::string_view name) {
    next();
    text_.append("\"").append(name).append("\":");
  }
  void text(std::string_view name, std::string_view utf8) {
    key(name);
    values::appendJsonString(text_, values::fileNameAsUtf8(utf8));
  }
  void element(std::string_view utf8) {
    next();
    values::appendJsonString(text_, utf8);
  }
  void number(std::string_view name, std::uint64_t value) {
    key(name);
    text_ += std::to_string(value);
  }
  void raw(std::string_view name, std::string_view json) {
    key(name);
    text_ += json;
  }
  std::string& result() { return text_; }

 private:
  std::string text_;
  bool isFirst_ = true;
};

}  // namespace

std::string plural(std::uint64_t count, std::string_view one, std::string_view many) {
  return std::to_string(count).append(" ").append(count == 1 ? one : many);
}

std::string withoutIndexes(std::string_view path) {
  std::string pattern;
  bool isInside = false;
  for (const char c : path) {
    if (c == ']') isInside = false;
    if (!isInside) pattern += c;
    if (c == '[') isInside = true;
  }
  return pattern;
}

std::string textOf(const Report& report) {
  std::string text;
  if (report.fault) text += "  breaks " + explain::describe(*report.fault) + "\n";
  for (const LeftOut& bytes : report.leftOut)
    text += "  left out: " + bytesText(bytes.size) + " from " + explain::hexOffset(bytes.offset) +
            " on: " + bytes.reason + "\n";
  for (const ShorterList& list : report.shorter) {
    text += "  shorter: " + list.list + " has " + std::to_string(list.kept);
    text += list.stored ? " of " + plural(*list.stored, "element", "elements")
                        : (list.kept == 1 ? " element" : " elements");
    if (!list.brokenAt.empty()) text += "; the next one breaks in " + list.brokenAt;
    text += "\n";
  }
  appendLosses(text, report, Loss::Effect::lost, " lost");
  appendLosses(text, report, Loss::Effect::changed, " changed");
  appendLosses(text, report, Loss::Effect::added, " added");
  if (!report.defaults.empty()) {
    text += "  not read; these have the defaults of a new record:\n";
    appendWrapped(text, withRuns(report.defaults));
  }
  for (const std::string& note : report.notes) text += "  " + note + "\n";
  return text;
}

std::string jsonOf(const Report& report, std::string_view fileUtf8, std::string_view error,
                   std::optional<bool> isWritten) {
  Json json;
  json.open('{');
  if (!fileUtf8.empty()) json.text("path", fileUtf8);
  json.text("kind", frame::infoOf(report.kind).name);
  json.raw("from", report.from ? std::to_string(*report.from) : "null");
  json.raw("to", std::to_string(report.to));
  json.number("size", report.size);
  json.number("newSize", report.newSize);
  if (isWritten) json.raw("written", *isWritten ? "true" : "false");
  if (!error.empty()) json.text("error", error);
  if (report.fault) json.raw("fault", values::faultJson(*report.fault));
  json.list("leftOut", report.leftOut, [&json](const LeftOut& bytes) {
    json.number("offset", bytes.offset);
    json.number("size", bytes.size);
    json.text("reason", bytes.reason);
  });
  json.list("shorter", report.shorter, [&json](const ShorterList& list) {
    json.text("list", list.list);
    json.number("kept", list.kept);
    json.raw("stored", list.stored ? std::to_string(*list.stored) : "null");
    json.text("brokenAt", list.brokenAt);
  });
  json.list("losses", report.losses, [&json](const Loss& loss) {
    json.text("effect", nameOf(loss.effect));
    json.text("member", loss.member);
    json.number("count", loss.count);
    json.text("first", loss.path);
    json.text("before", loss.before);
    json.text("after", loss.after);
  });
  for (const auto& [name, list] : {std::pair("defaults", &report.defaults), std::pair("notes", &report.notes)}) {
    json.key(name);
    json.open('[');
    for (const std::string& one : *list) json.element(one);
    json.close(']');
  }
  json.close('}');
  return std::move(json.result()) + "\n";
}

}  // namespace oldtorvio::convert
