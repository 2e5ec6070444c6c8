#include "torvio/report/kaitai.h"

#include <algorithm>
#include <memory>

#include "src/file_records.h"
#include "torvio/report/kaitai_printer.h"

namespace oldtorvio::report {
namespace {

// "version == 52 or (version >= 60 and version <= 62)", of the versions that `has` accepts.
template <class Has>
std::string versionsText(const std::string& version, const Has& has) {
  constexpr int kHighest = 32767;
  std::string all;
  for (int first = 0; first <= kHighest; ++first) {
    if (!has(first)) continue;
    int last = first;
    while (last < kHighest && has(last + 1)) ++last;
    all.append(all.empty() ? "" : " or ");
    if (last == first)
      all.append(version).append(" == ").append(std::to_string(first));
    else if (last == kHighest)
      all.append(version).append(" >= ").append(std::to_string(first));
    else
      all.append("(")
          .append(version)
          .append(" >= ")
          .append(std::to_string(first))
          .append(" and ")
          .append(version)
          .append(" <= ")
          .append(std::to_string(last))
          .append(")");
    first = last;
  }
  return all;
}

std::string titleOf(std::string_view kind) {
  std::string title(kind);
  std::replace(title.begin(), title.end(), '-', ' ');
  title[0] = static_cast<char>(title[0] - 'a' + 'A');
  return title + " file";
}

constexpr const char* kDoc =
    "Printed from the stored forms that OldTorvIO reads. \"-orig-id\" is the name of a field there: [] is the index of "
    "an "
    "element, [i] that of the row it is in, counted from \"-first-index\".\n"
    "Texts are in a code page that the file does not name; change \"encoding\" for another.\n"
    "What this description leaves out:\n"
    "- A text of size 0 or below is a failed read, here an empty text or an error of the runtime.\n"
    "- A count below 0 is a count of 0.";

}  // namespace

KaitaiDescription kaitaiDescription(frame::FileKind kind) {
  const frame::FileKindInfo& info = frame::infoOf(kind);
  KaitaiPrinter printer;
  const auto isTable = [&](int version) { return startsWithTable(kind, version); };
  const auto isMain = [&](int version) {
    return version >= frame::kFirstMainVersion && info.accepts(version) && !isTable(version);
  };
  const std::string tables = versionsText("first_word", isTable);
  if (!tables.empty()) {
    printer.addInstance("  first_word:\n    pos: 0\n    type: s2\n");
    printer.addInstance(
        "  starts_with_table:\n    doc: The file is a table, which begins with its own version word.\n    value: \"" +
        tables + "\"\n");
    printer.bodyCondition("not starts_with_table");
  }
  printer.versionWord(versionsText("{v}", isMain), tables.empty() ? std::string() : "not starts_with_table");
  withFileRecord(kind, [&](auto file) {
    const auto record = std::make_unique<typename decltype(file)::Record>();
    (void)file.walk(printer, *record);
  });
  std::string id = "torvio_" + std::string(info.name);
  std::replace(id.begin(), id.end(), '-', '_');
  std::string doc = kDoc;
  if (info.accepts(2)) doc += "\n- Files of versions 2, 3 and 5 have other layouts, see the format tables.";
  const std::string text = printer.ksy(id, titleOf(info.name), doc);
  return {text, printer.problems()};
}

}  // namespace oldtorvio::report
