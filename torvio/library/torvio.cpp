#include "torvio/include/torvio.h"

#include <cerrno>
#include <cstdio>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "torvio/archive/drawn_card.h"
#include "torvio/archive/info.h"
#include "torvio/archive/result_json.h"
#include "torvio/compare/diff_json.h"
#include "torvio/convert/convert.h"
#include "torvio/convert/recover.h"
#include "torvio/explain/format_table.h"
#include "torvio/explain/kind_names.h"
#include "torvio/explain/map_filter.h"
#include "torvio/library/answer.h"
#include "torvio/library/input.h"
#include "torvio/report/field_value.h"
#include "torvio/report/format_json.h"
#include "torvio/report/kaitai.h"
#include "torvio/report/map_json.h"
#include "torvio/report/map_page.h"
#include "torvio/values/json_reader.h"
#include "torvio/values/json_schema.h"
#include "torvio/values/json_writer.h"

namespace {

using namespace oldtorvio;
using namespace oldtorvio::library;

void allow(std::uint32_t flags, std::uint32_t known) {
  if ((flags & ~known) != 0) fail(badArgument("flags has a value that this function does not know"));
}

const char* required(const char* text, const char* name) {
  if (text == nullptr) fail(badArgument(std::string(name) + " is NULL"));
  return text;
}

std::string_view asText(std::span<const std::byte> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// ---- what a file is ----

bool loads(archive::Verdict verdict) {
  return verdict == archive::Verdict::sound || verdict == archive::Verdict::soundWithLosses;
}

void check(Answer& answer, const Input& input) {
  archive::ExamineOptions options;
  options.judge.kind = input.kind();
  archive::FileResult result;
  const InputBytes file(input);
  if (file.error().empty()) {
    result = archive::examineBytes(input.name(), file.bytes(), options);
    if (result.report.fault)
      answer.note(damaged(*result.report.fault));
    else if (!loads(result.verdict))
      answer.note(damaged(archive::whyForeign(result)));
  } else {
    result.path = input.name();
    result.error = file.error();
    answer.note(notRead(file.error()));
  }
  answer.append(archive::resultJson(result));
}

void info(Answer& answer, const Input& input) {
  const InputBytes file(input);
  archive::Info found;
  if (file.error().empty()) {
    found = archive::infoOf(input.name(), file.bytes(), {input.kind(), {}}, input.encoding());
    if (found.fault)
      answer.note(damaged(*found.fault));
    else if (!loads(found.verdict))
      answer.note(damaged("not a file of a known kind"));
  } else {
    found = archive::unreadableInfo(file.error());
    answer.note(notRead(file.error()));
  }
  answer.append(archive::infoJson(values::fileNameAsUtf8(input.name()), found));
}

// ---- complete contents ----

void json(Answer& answer, const Input& input, bool isPretty) {
  const InputBytes file(input);
  const auto bytes = file.bytesOrFail();
  archive::Judgement judgement = archive::judge(input.name(), bytes, {input.kind(), {}});
  if (!judgement.kind) judgement.report = explain::mapFile(bytes, std::nullopt, [](const explain::MapLine&) {});
  values::writeFileAsJson([&](std::string_view text) { answer.append(text); }, bytes, judgement.kind, judgement.report,
                          input.encodingName(), isPretty);
  if (judgement.report.fault) answer.note(damaged(*judgement.report.fault));
}

values::JsonRecord recordOf(const Input& input) {
  if (input.path() == nullptr) {
    return values::readJson(asText(input.memory()));
  }
  const OpenFile file(input.path());
  if (!file.error().empty()) fail(notRead(file.error()));
  return values::readJson([&](char* to, std::size_t size) {
    const std::size_t got = std::fread(to, 1, size, file.handle());
    if (got < size && std::ferror(file.handle()) != 0) fail(notRead("cannot be read: " + systemError(errno)));
    return got;
  });
}

void fromJson(Answer& answer, const Input& input, std::int32_t version) {
  const values::JsonRecord read = recordOf(input);
  if (!read.error.empty()) fail(refused(read.error));
  if (version == 0) version = read.version;
  codec::OutStream stream;
  const std::int64_t status = values::storeLoadable(stream, read, version);
  if (status != frame::kDone) fail(refused(values::refusalOf(read, status, version)));
  answer.append(asText(stream.bytes()));
}

// ---- bytes and their meaning ----

explain::MapFilter filterOf(const char* find, const char* range) {
  explain::MapFilter filter;
  if (find != nullptr) {
    std::string error;
    filter.path = explain::PathPattern::parsed(find, error);
    if (!filter.path) fail(badArgument("find is not a field path: " + error));
  }
  if (range != nullptr) {
    filter.range = explain::OffsetRange::parsed(range);
    if (!filter.range) fail(badArgument("range is neither an offset nor a range of offsets"));
  }
  return filter;
}

void map(Answer& answer, const Input& input, const explain::MapFilter& filter, bool isPage) {
  const InputBytes file(input);
  const auto bytes = file.bytesOrFail();
  const auto kind = archive::judge(input.name(), bytes, {input.kind(), {}}).kind;
  explain::FileReport report;
  if (isPage) {
    report::MapPageText page = report::mapPage(archive::nameOfFile(input.name()), bytes, kind, input.encoding());
    if (!page.refusal.empty()) fail(refused(page.refusal));
    answer.append(page.html);
    report = std::move(page.report);
  } else {
    std::string text;
    report = explain::mapFile(
        bytes, kind,
        [&](const explain::MapLine& line) {
          if (!filter.isEmpty() && !filter.accepts(line)) return;
          text.clear();
          report::appendJsonLine(text, line, filter, bytes, input.encoding());
          answer.append(text);
        },
        filter.wanted());
    if (report.fault) {
      text.clear();
      report::appendJsonFault(text, *report.fault);
      answer.append(text);
    }
  }
  if (report.fault) answer.note(damaged(*report.fault));
}

void format(Answer& answer, const std::string& name, const std::string& language) {
  const auto kind = explain::kindNamed(name);
  const std::vector<explain::FormatRow> rows = kind ? explain::formatRows(*kind) : explain::recordRows(name);
  if (rows.empty()) fail(badArgument("name is neither a kind of file nor a record"));
  if (language == "markdown") {
    answer.append(explain::markdownOf(rows));
  } else if (language == "json") {
    answer.append(report::formatJson(rows));
  } else if (language == "kaitai") {
    if (!kind) fail(refused("Kaitai descriptions exist only for kinds of files"));
    const report::KaitaiDescription description = report::kaitaiDescription(*kind);
    if (!description.problems.empty()) fail(refused("cannot be described for Kaitai: " + description.problems.front()));
    answer.append(description.text);
  } else {
    fail(badArgument("language is not one of markdown, json, kaitai"));
  }
}

// ---- pictures ----

void drawPicture(Answer& answer, const Input& input) {
  const InputBytes file(input);
  const archive::DrawnCard drawn =
      archive::drawCard(input.name(), archive::nameOfFile(input.name()), file.bytesOrFail(), {input.kind(), {}},
                        input.encoding(), 0, false);
  if (drawn.card.svg.empty()) fail(refused(drawn.error));
  answer.append(drawn.card.svg);
  if (drawn.fault) answer.note(damaged(*drawn.fault));
}

archive::DrawnCard cardOf(const Input& input, std::size_t number) {
  const InputBytes file(input);
  const std::string name = archive::nameOfFile(input.name());
  if (!file.error().empty()) return {{name, file.error(), ""}, file.error(), std::nullopt};
  return archive::drawCard(input.name(), name, file.bytes(), {input.kind(), {}}, input.encoding(), number, true);
}

void drawPage(Answer& answer, const torvio_input* inputs, std::size_t count, const char* title) {
  std::vector<Input> files;
  for (std::size_t i = 0; i < count; ++i) files.emplace_back(inputs + i);
  std::string heading = title != nullptr ? values::fileNameAsUtf8(title) : "";
  if (title == nullptr && count == 1) heading = archive::nameOfFile(files[0].name());
  if (heading.empty()) heading = "Contact sheet";
  answer.append(draw::pageHead(heading, count));
  bool isComplete = true;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t number = i + 1;
    const archive::DrawnCard drawn = cardOf(files[i], number);
    answer.append(draw::pageCard(drawn.card, number));
    if (drawn.error.empty() || !std::exchange(isComplete, false)) continue;
    Problem problem = drawn.fault ? damaged(*drawn.fault) : damaged(drawn.error);
    problem.message = "file " + std::to_string(number) + ": " + drawn.error;
    answer.note(std::move(problem));
  }
  answer.append(draw::pageEnd());
}

// ---- differences ----

class ComparedInput {
 public:
  ComparedInput(const Input& input, const char* side, const char* part) : input_(input), side_(side), file_(input) {
    if (!file_.error().empty()) fail(notRead(side_ + file_.error()));
    judgement_ = archive::judge(input.name(), file_.bytes(), {input.kind(), {}});
    if (!judgement_.kind) {
      judgement_.report = explain::mapFile(file_.bytes(), std::nullopt, [](const explain::MapLine&) {});
      fail(refused(side_ + (judgement_.report.fault ? judgement_.report.fault->reason : "of unknown kind")));
    }
    compared_ = {file_.bytes(), *judgement_.kind, {}, input.name()};
    if (part != nullptr && !isPart()) compared_.part = part;
  }

  bool isPart() const { return *judgement_.kind == frame::FileKind::part; }
  const compare::FileToCompare& side() const { return compared_; }
  compare::JudgedFile judged() const { return {input_.name(), *judgement_.kind, judgement_.report}; }
  std::optional<Problem> damage() const {
    if (!judgement_.report.fault) return std::nullopt;
    Problem problem = damaged(*judgement_.report.fault);
    problem.message.insert(0, side_);
    return problem;
  }

 private:
  const Input& input_;
  std::string side_;  // what errors begin with
  InputBytes file_;
  archive::Judgement judgement_;
  compare::FileToCompare compared_;
};

// Returns whether they are the same.
bool diff(Answer& answer, const Input& inputA, const Input& inputB, const char* part,
          const compare::DiffOptions& options) {
  const ComparedInput a(inputA, "a: ", part), b(inputB, "b: ", part);
  if (part != nullptr && a.isPart() && b.isPart()) fail(badArgument("part is for sheets and group part files"));
  std::uint64_t printed = 0;
  const compare::FileDifferences found = compare::diffFiles(a.side(), b.side(), options, [&](const auto& difference) {
    answer.append(compare::differenceJson(difference));
    ++printed;
    return true;
  });
  if (!found.error.empty()) {
    const char* const side = found.errorIn == compare::Side::a ? "a: " : found.errorIn == compare::Side::b ? "b: " : "";
    fail(refused(side + report::inert(values::fileNameAsUtf8(found.error))));
  }
  answer.append(compare::summaryJson(found, printed, a.judged(), b.judged()));
  if (auto damage = a.damage() ? a.damage() : b.damage()) answer.note(std::move(*damage));
  return found.areSame;
}

// ---- new files of old ones ----

// Answers with the new file that make(bytes, kind) makes from the input, and with its report, even without a file.
template <class Make>
torvio_status newFile(const torvio_input* file, std::uint32_t flags, std::uint32_t known, torvio_buffer** result,
                      torvio_buffer** report, torvio_error** error, const Make& make) noexcept {
  if (report != nullptr) *report = nullptr;
  const torvio_status status = answered(result, error, [&](Answer& answer) {
    allow(flags, known);
    const Input input(file);
    const InputBytes contents(input);
    const auto bytes = contents.bytesOrFail();
    const auto kind = archive::judge(input.name(), bytes, {input.kind(), {}}).kind;
    if (!kind) {
      const explain::FileReport unknown = explain::mapFile(bytes, std::nullopt, [](const explain::MapLine&) {});
      fail(refused(unknown.fault ? unknown.fault->reason : "of unknown kind"));
    }
    const auto made = make(bytes, *kind, input.encodingName());
    if (report != nullptr) {
      Answer text;
      text.append(convert::jsonOf(made.report, values::fileNameAsUtf8(input.name()), made.error));
      *report = text.release();
    }
    if (!made.error.empty()) fail(refused(made.error));
    answer.append(asText(made.bytes));
  });
  if (report != nullptr && status != TORVIO_OK && status != TORVIO_REFUSED) {
    torvio_free(*report);
    *report = nullptr;
  }
  return status;
}

// ---- the library ----

std::string versionsOf(const frame::FileKindInfo& kind) {
  constexpr int kHighest = INT16_MAX;
  std::string text;
  for (int version = 0; version <= kHighest; ++version) {
    if (!kind.accepts(version)) continue;
    const int first = version;
    while (version < kHighest && kind.accepts(version + 1)) ++version;
    text += (text.empty() ? "[" : ",[") + std::to_string(first) + "," + std::to_string(version) + "]";
  }
  return "[" + text + "]";
}

void appendNames(std::string& to, const std::vector<std::string>& names) {
  to += '[';
  for (const std::string& name : names) values::appendJsonString(to += &name == &names.front() ? "" : ",", name);
  to += ']';
}

std::string supported() {
  std::string text = "{\"version\":\"" TORVIO_VERSION "\",\"kinds\":[";
  for (const frame::FileKindInfo& kind : frame::kFileKinds) {
    if (text.back() != '[') text += ',';
    text.append("{\"name\":\"").append(kind.name).append("\",\"versions\":").append(versionsOf(kind));
    text.append(",\"drawable\":").append(draw::canDraw(kind.kind) ? "true}" : "false}");
  }
  appendNames(text += "],\"records\":", explain::recordNames());
  appendNames(text += ",\"encodings\":", values::TextEncoding::names());
  return text + "}\n";
}

}  // namespace

extern "C" {

void torvio_free(const void* result_or_error) noexcept { ::operator delete(const_cast<void*>(result_or_error)); }

torvio_status torvio_check(const torvio_input* input, uint32_t flags, torvio_buffer** result,
                           torvio_error** error) noexcept {
  return answered(result, error, [&](Answer& answer) {
    allow(flags, 0);
    check(answer, Input(input));
  });
}

torvio_status torvio_info(const torvio_input* input, uint32_t flags, torvio_buffer** result,
                          torvio_error** error) noexcept {
  return answered(result, error, [&](Answer& answer) {
    allow(flags, 0);
    info(answer, Input(input));
  });
}

torvio_status torvio_json(const torvio_input* input, uint32_t flags, torvio_buffer** result,
                          torvio_error** error) noexcept {
  return answered(result, error, [&](Answer& answer) {
    allow(flags, TORVIO_PRETTY);
    json(answer, Input(input), (flags & TORVIO_PRETTY) != 0);
  });
}

torvio_status torvio_from_json(const torvio_input* input, int32_t version, uint32_t flags, torvio_buffer** result,
                               torvio_error** error) noexcept {
  return answered(result, error, [&](Answer& answer) {
    allow(flags, 0);
    if (version < INT16_MIN || version > INT16_MAX) fail(badArgument("version is not within -32768 and 32767"));
    fromJson(answer, Input(input), version);
  });
}

torvio_status torvio_schema(const char* kind, torvio_buffer** result, torvio_error** error) noexcept {
  return answered(result, error, [&](Answer& answer) {
    const auto known = explain::kindNamed(required(kind, "kind"));
    if (!known) fail(badArgument("kind is not a kind of file"));
    answer.append(values::jsonSchema(*known));
  });
}

torvio_status torvio_map(const torvio_input* input, const char* find, const char* range, uint32_t flags,
                         torvio_buffer** result, torvio_error** error) noexcept {
  return answered(result, error, [&](Answer& answer) {
    allow(flags, TORVIO_PAGE);
    const bool isPage = (flags & TORVIO_PAGE) != 0;
    if (isPage && (find != nullptr || range != nullptr)) fail(badArgument("a page has no find and no range"));
    map(answer, Input(input), filterOf(find, range), isPage);
  });
}

torvio_status torvio_format(const char* name, const char* language, torvio_buffer** result,
                            torvio_error** error) noexcept {
  return answered(result, error, [&](Answer& answer) {
    format(answer, required(name, "name"), language != nullptr ? language : "markdown");
  });
}

torvio_status torvio_draw(const torvio_input* input, uint32_t flags, torvio_buffer** result,
                          torvio_error** error) noexcept {
  return answered(result, error, [&](Answer& answer) {
    allow(flags, 0);
    drawPicture(answer, Input(input));
  });
}

torvio_status torvio_draw_page(const torvio_input* inputs, size_t count, const char* title, uint32_t flags,
                               torvio_buffer** result, torvio_error** error) noexcept {
  return answered(result, error, [&](Answer& answer) {
    allow(flags, 0);
    if (inputs == nullptr) fail(badArgument("inputs is NULL"));
    if (count == 0) fail(badArgument("count is 0"));
    drawPage(answer, inputs, count, title);
  });
}

torvio_status torvio_diff(const torvio_input* a, const torvio_input* b, const char* part, double tolerance,
                          uint32_t flags, int32_t* same, torvio_buffer** result, torvio_error** error) noexcept {
  bool areSame = false;
  const torvio_status status = answered(result, error, [&](Answer& answer) {
    allow(flags, TORVIO_COMMON);
    constexpr double kLargest = 1e300;
    if (!(tolerance >= 0 && tolerance <= kLargest)) fail(badArgument("tolerance is not within 0 and 1e300"));
    const Input inputA(a), inputB(b);
    if (inputA.encodingName() != inputB.encodingName()) fail(badArgument("the encodings of a and b differ"));
    compare::DiffOptions options;
    options.tolerance = tolerance;
    options.encoding = inputA.encodingName();
    options.commonOnly = (flags & TORVIO_COMMON) != 0;
    options.longestValue = 0;
    areSame = diff(answer, inputA, inputB, part, options);
  });
  if (same != nullptr && (status == TORVIO_OK || status == TORVIO_DAMAGED)) *same = areSame ? 1 : 0;
  return status;
}

torvio_status torvio_convert(const torvio_input* input, int32_t version, uint32_t flags, torvio_buffer** result,
                             torvio_buffer** report, torvio_error** error) noexcept {
  const auto make = [&](auto bytes, frame::FileKind kind, const std::string& encoding) {
    if (version < 0 || version > INT16_MAX) fail(badArgument("version is not within 0 and 32767"));
    return convert::convert(bytes, kind, version, {(flags & TORVIO_ALLOW_LOSS) != 0, encoding});
  };
  return newFile(input, flags, TORVIO_ALLOW_LOSS, result, report, error, make);
}

torvio_status torvio_recover(const torvio_input* input, uint32_t flags, torvio_buffer** result, torvio_buffer** report,
                             torvio_error** error) noexcept {
  const auto make = [](auto bytes, frame::FileKind kind, const std::string& encoding) {
    convert::Recovered recovered = convert::recover(bytes, kind, encoding);
    if (recovered.isSound) recovered.bytes.assign(bytes.begin(), bytes.end());
    return recovered;
  };
  return newFile(input, flags, 0, result, report, error, make);
}

torvio_status torvio_supported(torvio_buffer** result, torvio_error** error) noexcept {
  return answered(result, error, [](Answer& answer) { answer.append(supported()); });
}

const char* torvio_version(void) noexcept { return TORVIO_VERSION; }

}  // extern "C"
