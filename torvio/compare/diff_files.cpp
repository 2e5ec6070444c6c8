// Files: which of their records are compared, and which members of these.
#include <algorithm>
#include <array>
#include <charconv>
#include <memory>
#include <utility>
#include <vector>

#include "torvio/compare/diff.h"
#include "torvio/compare/differ.h"
#include "torvio/compare/stored_members.h"
#include "torvio/explain/read_members.h"
#include "torvio/values/compiled_records.h"
#include "torvio/values/text_encoding.h"

namespace oldtorvio::compare {
namespace {

using frame::FileKind;
using values::Form;
using values::Type;

constexpr std::string_view kParts = "parts", kPatterns = "patterns", kVersion = "version";

// The members that place a part on a sheet. A load of a part file resets most of them.
constexpr std::array kPlacement{std::string_view("headWord"),    std::string_view("gridCount1"),
                                std::string_view("gridCount2"),  std::string_view("gridStep1"),
                                std::string_view("gridStep2"),   std::string_view("originX"),
                                std::string_view("originY"),     std::string_view("rotationCos"),
                                std::string_view("rotationSin"), std::string_view("patternWord")};

std::string nameOfKind(FileKind kind) {
  std::string name(frame::infoOf(kind).name);
  std::replace(name.begin(), name.end(), '-', ' ');
  return (name.find_first_of("aeiou") == 0 ? "an " : "a ") + name;
}

std::string joined(const std::string& path, std::string_view member) {
  return path.empty() ? std::string(member) : path + '.' + std::string(member);
}

struct Loaded {
  std::shared_ptr<const void> record;
  std::int64_t status = 0;
  std::optional<int> version;
  bool isRefused = false;
};

Loaded loaded(std::span<const std::byte> bytes, FileKind kind) {
  return withFileRecord(kind, [&](auto file) {
    // Without its path: files with the same contents are the same wherever they are.
    auto one = values::loadRecord<decltype(file)::kKind>(bytes);
    Loaded all;
    all.status = one.status;
    all.version = one.version;
    all.isRefused = !one.version || !frame::infoOf(kind).accepts(*one.version);
    all.record = std::move(one.record);
    return all;
  });
}

// The value in a record that is compared.
struct Value {
  const Type* type = nullptr;
  const void* at = nullptr;
  std::string path;    // with positions
  std::string member;  // without
  bool isInElement = false;
};

// The first member of that type that is not in a list.
std::optional<Value> memberOfType(const Value& record, const Type& type) {
  if (record.type == &type) return record;
  for (const values::TypeMember& member : record.type->members) {
    if (member.type->form != Form::record) continue;
    const Value one{member.type, values::memberIn(record.at, member), joined(record.path, member.name),
                    joined(record.member, member.name), false};
    if (auto found = memberOfType(one, type)) return found;
  }
  return std::nullopt;
}

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// "plate" of "C:\PARTS\PLATE.PRT".
std::string stemOf(std::string_view path) {
  if (const auto slash = path.find_last_of("/\\:"); slash != std::string_view::npos) path.remove_prefix(slash + 1);
  if (const auto dot = path.rfind('.'); dot != std::string_view::npos && dot > 0) path = path.substr(0, dot);
  std::string stem(path);
  std::transform(stem.begin(), stem.end(), stem.begin(), lower);
  return stem;
}

template <std::size_t N>
std::string_view textOf(const char (&field)[N]) {
  const std::string_view all(field, N);
  return all.substr(0, all.find('\0'));
}

class FileDiffer {
 public:
  FileDiffer(const FileToCompare& a, const FileToCompare& b, const DiffOptions& options, const DifferenceSink& sink)
      : files_{&a, &b},
        options_(options),
        sink_(sink),
        encoding_(values::TextEncoding::named(options.encoding).value_or(values::TextEncoding())) {}

  FileDifferences result(const std::function<void(const FileDifferences&)>& begins) && {
    if (load() && choose()) {
      if (begins) begins(result_);
      compare();
    }
    return std::move(result_);
  }

 private:
  static constexpr std::array kSides{Side::a, Side::b};

  bool fail(std::string error, Side side) {
    result_.error = std::move(error);
    result_.errorIn = side;
    return false;
  }
  ComparedFile& fileAt(std::size_t side) { return side == 0 ? result_.a : result_.b; }
  FileKind kindAt(std::size_t side) const { return files_[side]->kind; }
  bool hasOneKind() const { return kindAt(0) == kindAt(1); }

  bool load() {
    for (std::size_t side = 0; side < 2; ++side) {
      loaded_[side] = loaded(files_[side]->bytes, kindAt(side));
      fileAt(side).status = loaded_[side].status;
      fileAt(side).version = loaded_[side].version;
    }
    for (std::size_t side = 0; side < 2; ++side) {
      if (!loaded_[side].isRefused) continue;
      if (!loaded_[side].version) return fail("has no version word", kSides[side]);
      return fail("version " + std::to_string(*loaded_[side].version) + " is not one of " + nameOfKind(kindAt(side)),
                  kSides[side]);
    }
    return true;
  }

  // ---- what is compared

  bool choose() {
    for (std::size_t side = 0; side < 2; ++side)
      values_[side] = {&values::typeOfRecord(kindAt(side)), loaded_[side].record.get(), {}, {}, false};
    const bool isPartWanted = !files_[0]->part.empty() || !files_[1]->part.empty();
    const bool isPartThere = kindAt(0) == FileKind::part || kindAt(1) == FileKind::part;
    if (isPartWanted || (isPartThere && !hasOneKind())) return choosePart(0) && choosePart(1);
    for (std::size_t side = 0; side < 2; ++side) {
      if (auto inner = memberOfType(values_[side], *values_[1 - side].type)) {
        values_[side] = std::move(*inner);
        fileAt(side).place = values_[side].path;
        return true;
      }
    }
    return failToCompare();
  }
  bool failToCompare() {
    return fail(nameOfKind(kindAt(0)) + " cannot be compared with " + nameOfKind(kindAt(1)), Side::none);
  }

  const std::vector<TorvPart>* partsAt(std::size_t side) const {
    const void* record = loaded_[side].record.get();
    if (kindAt(side) == FileKind::sheet) return &static_cast<const OldSheet*>(record)->partList.parts;
    if (kindAt(side) == FileKind::groupPart) return &static_cast<const SheetPartList*>(record)->parts;
    return nullptr;
  }

  bool choosePart(std::size_t side) {
    if (kindAt(side) == FileKind::part) return true;
    const std::vector<TorvPart>* parts = partsAt(side);
    if (parts == nullptr && files_[side]->part.empty()) return failToCompare();
    if (parts == nullptr) return fail(nameOfKind(kindAt(side)) + " has no parts", kSides[side]);
    const std::optional<std::size_t> chosen =
        files_[side]->part.empty() ? partLike(*parts, files_[1 - side]->path) : partCalled(*parts, files_[side]->part);
    if (!chosen) return fail(missingPart(side, *parts), kSides[side]);
    const std::string list = kindAt(side) == FileKind::sheet ? "partList.parts" : std::string(kParts);
    values_[side] = {&values::typeOfRecord(FileKind::part), &(*parts)[*chosen],
                     list + '[' + std::to_string(*chosen) + ']', list, true};
    fileAt(side).place = values_[side].path;
    fileAt(side).part = quoted(textOf((*parts)[*chosen].partName));
    return true;
  }

  // Finds a part by its name, or by its position.
  std::optional<std::size_t> partCalled(const std::vector<TorvPart>& parts, const std::string& name) const {
    if (const auto bytes = encoding_.bytesOf(name))
      for (std::size_t i = 0; i < parts.size(); ++i)
        if (textOf(parts[i].partName) == *bytes) return i;
    std::size_t position = 0;
    const char* const end = name.data() + name.size();
    const auto [stop, error] = std::from_chars(name.data(), end, position);
    if (error != std::errc() || stop != end || position >= parts.size()) return std::nullopt;
    return position;
  }
  // Finds a part by the name of its file, or because there is no other.
  std::optional<std::size_t> partLike(const std::vector<TorvPart>& parts, const std::string& path) const {
    const std::string stem = encoding_.bytesOf(stemOf(path)).value_or(stemOf(path));
    for (std::size_t i = 0; i < parts.size() && !stem.empty(); ++i)
      if (stem == stemOf(textOf(parts[i].partName)) || stem == stemOf(textOf(parts[i].partFullDosName))) return i;
    if (parts.size() == 1) return 0;
    return std::nullopt;
  }
  std::string missingPart(std::size_t side, const std::vector<TorvPart>& parts) const {
    if (parts.empty()) return "has no parts";
    constexpr std::size_t kMostNames = 10;
    const std::string& part = files_[side]->part;
    std::string text = "has no part " + (part.empty() ? "with the name of the part file" : "called \"" + part + "\"");
    text += "; its parts are ";
    for (std::size_t i = 0; i < std::min(parts.size(), kMostNames); ++i)
      text.append(i == 0 ? "" : ", ").append(quoted(textOf(parts[i].partName)));
    if (parts.size() > kMostNames)
      text.append(" and ").append(std::to_string(parts.size() - kMostNames)).append(" more");
    return text;
  }
  std::string quoted(std::string_view bytes) const {
    std::string utf8, json;
    encoding_.appendUtf8(utf8, bytes);
    values::appendJsonString(json, utf8);
    return json;
  }

  // ---- how it is compared

  // Whether the values come from the same place of the same kind of file.
  bool haveOneForm() const { return hasOneKind() && values_[0].member == values_[1].member; }

  void setUpTreatments() {
    const bool haveOneVersion = loaded_[0].version == loaded_[1].version;
    for (std::size_t side = 0; side < 2; ++side) {
      const int version = loaded_[side].version.value_or(0), other = loaded_[1 - side].version.value_or(0);
      if (!haveOneForm() || !haveOneVersion) stored_[side].emplace(kindAt(side), version);
      if (!haveOneForm()) {
        // What this kind of file would store in the version of the other file.
        const bool hasOther = frame::infoOf(kindAt(side)).accepts(other);
        storedAsOther_[side].emplace(kindAt(side), hasOther ? other : frame::VersionSet::kHighest);
      }
      if (loaded_[side].status != 0) read_[side] = explain::ReadMembers(files_[side]->bytes, kindAt(side));
    }
  }

  Treatment treatmentOf(const std::string& path, bool isInElement, std::optional<std::size_t> entry) const {
    Treatment treatment;
    for (std::size_t side = 0; side < 2; ++side)
      if (!isInElement && !values_[side].isInElement && !read_[side].has(joined(values_[side].member, path)))
        treatment.isLeftOut = true;
    if (stored_[0] && stored_[1]) {
      const std::array isStored{isStoredIn(stored_, 0, path, entry), isStoredIn(stored_, 1, path, entry)};
      if (isStored[0] != isStored[1]) {
        const std::size_t lacking = isStored[0] ? 1 : 0;
        // A kind of file that never stores the member has no value to compare.
        if (options_.commonOnly || (!haveOneForm() && !isStoredIn(storedAsOther_, lacking, path, entry)))
          treatment.isLeftOut = true;
        treatment.notStoredIn = kSides[lacking];
      }
    }
    if (options_.commonOnly && loaded_[0].version != loaded_[1].version && isVersionWord(path))
      treatment.isLeftOut = true;
    if (isOneOnSheet() && isPlacement(path)) treatment.isLeftOut = true;
    treatment.isFirstOnly = isOneOnSheet() && isPatterns(path);
    return treatment;
  }
  using Stored = std::array<std::optional<StoredMembers>, 2>;
  bool isStoredIn(const Stored& stored, std::size_t side, const std::string& path,
                  std::optional<std::size_t> entry) const {
    const std::string full = joined(values_[side].member, path);
    return entry ? stored[side]->hasEntry(full, *entry) : stored[side]->has(full);
  }
  bool isVersionWord(const std::string& path) const {
    return path == kVersion || (kindAt(0) == FileKind::specialTool && path == "tool.fileVersion");
  }

  // Whether a part or list of parts on a sheet is compared with one elsewhere.
  bool isOneOnSheet() const {
    const auto isOnSheet = [&](std::size_t side) {
      return kindAt(side) == FileKind::sheet && values_[side].member.starts_with("partList");
    };
    return isOnSheet(0) != isOnSheet(1);
  }
  static bool isPatterns(std::string_view path) { return path == kPatterns || path == "parts.patterns"; }
  static bool isPlacement(std::string_view path) {
    const auto dot = path.rfind('.');
    if (dot == std::string_view::npos || !isPatterns(path.substr(0, dot))) return false;
    return std::find(kPlacement.begin(), kPlacement.end(), path.substr(dot + 1)) != kPlacement.end();
  }

  void compare() {
    setUpTreatments();
    const DifferenceSink counting = [this](const Difference& difference) {
      ++result_.differences;
      if (difference.notStoredIn != Side::none) ++result_.notStored;
      return sink_(difference);
    };
    bool continues = true, areSame = true;
    // Some records do not keep the version of their file.
    const bool keepsVersion = std::any_of(values_[0].type->members.begin(), values_[0].type->members.end(),
                                          [](const auto& member) { return member.name == kVersion; });
    if (haveOneForm() && values_[0].path.empty() && !keepsVersion && !options_.commonOnly &&
        loaded_[0].version != loaded_[1].version) {
      areSame = false;
      Difference difference;
      difference.pathInA = difference.pathInB = kVersion;
      difference.a = std::to_string(*loaded_[0].version);
      difference.b = std::to_string(*loaded_[1].version);
      continues = counting(difference);
    }
    if (continues) {
      const MemberNode tree =
          memberTree(*values_[0].type, options_, [this](const std::string& path, bool isInElement, auto entry) {
            return treatmentOf(path, isInElement, entry);
          });
      Differ differ(options_, counting, values_[0].path, values_[1].path);
      areSame = differ.compare(tree, values_[0].at, values_[1].at) && areSame;
    }
    result_.areSame = areSame;
  }

  std::array<const FileToCompare*, 2> files_;
  const DiffOptions& options_;
  const DifferenceSink& sink_;
  values::TextEncoding encoding_;
  std::array<Loaded, 2> loaded_;
  std::array<Value, 2> values_;
  Stored stored_, storedAsOther_;
  std::array<explain::ReadMembers, 2> read_;
  FileDifferences result_;
};

}  // namespace

FileDifferences diffFiles(const FileToCompare& a, const FileToCompare& b, const DiffOptions& options,
                          const DifferenceSink& sink, const std::function<void(const FileDifferences&)>& begins) {
  return FileDiffer(a, b, options, sink).result(begins);
}

}  // namespace oldtorvio::compare
