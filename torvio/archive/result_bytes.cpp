#include "torvio/archive/result_bytes.h"

#include <bit>
#include <concepts>
#include <cstdint>
#include <type_traits>
#include <utility>

namespace oldtorvio::archive {
namespace {

template <class T, class Record>
concept IsA = std::same_as<std::remove_const_t<T>, Record>;

// Each record is described once, for both directions. A new member does not compile until it is named here.
void describe(auto& io, IsA<explain::Fault> auto& fault) {
  auto& [offset, path, reason] = fault;
  io(offset, path, reason);
}
void describe(auto& io, IsA<explain::FileReport> auto& report) {
  auto& [status, version, walked, size, fault, tolerated] = report;
  io(status, version, walked, size, fault, tolerated);
}
void describe(auto& io, IsA<Warning> auto& warning) {
  auto& [code, field, text] = warning;
  io(code, field, text);
}
void describe(auto& io, IsA<PartFacts> auto& part) {
  auto& [name, path, material, workOrder, width, height, thickness, quantity] = part;
  io(name, path, material, workOrder, width, height, thickness, quantity);
}
void describe(auto& io, IsA<ToolFacts> auto& tool) {
  auto& [list, number, shapeCode, dimension1, dimension2, dimension3, orientation, specialTool] = tool;
  io(list, number, shapeCode, dimension1, dimension2, dimension3, orientation, specialTool);
}
void describe(auto& io, IsA<Facts> auto& facts) {
  auto& [name, assembly, material, materialGroup, materialType, machine, workOrder, width, height, thickness, partCount,
         placementCount, shapeCount, stationCount, toolCount, parts, tools] = facts;
  io(name, assembly, material, materialGroup, materialType, machine, workOrder, width, height, thickness, partCount,
     placementCount, shapeCount, stationCount, toolCount, parts, tools);
}
void describe(auto& io, IsA<FileResult> auto& result) {
  [[maybe_unused]] auto& [path, isNamed, isFolder, verdict, error, kind, report, warnings, facts, modified, size,
                          isKnown] = result;
  io(path, isNamed, isFolder, verdict, error, kind, report, warnings, facts, modified, size);
}

class Packer {
 public:
  template <class... T>
  void operator()(const T&... values) {
    (put(values), ...);
  }
  std::string take() { return std::move(bytes_); }

 private:
  void putWord(std::uint64_t word) {
    for (unsigned i = 0; i < 8; ++i) bytes_ += static_cast<char>(word >> (8 * i) & 0xFFU);
  }
  void put(bool value) { bytes_ += value ? '\1' : '\0'; }
  void put(std::integral auto value) { putWord(static_cast<std::uint64_t>(value)); }
  void put(double value) { putWord(std::bit_cast<std::uint64_t>(value)); }
  void put(Verdict value) { putWord(static_cast<std::uint64_t>(value)); }
  void put(explain::FileKind value) { putWord(static_cast<std::uint64_t>(value)); }
  void put(const std::string& text) {
    putWord(text.size());
    bytes_ += text;
  }
  template <class T>
  void put(const std::optional<T>& value) {
    put(value.has_value());
    if (value) put(*value);
  }
  template <class T>
  void put(const std::vector<T>& list) {
    putWord(list.size());
    for (const T& element : list) put(element);
  }
  template <class Record>
  void put(const Record& record) requires requires(Packer& io) {
    describe(io, record);
  }
  { describe(*this, record); }

  std::string bytes_;
};

// After a failure all values are those of a new object.
class Unpacker {
 public:
  explicit Unpacker(std::string_view bytes) : rest_(bytes) {}

  template <class... T>
  void operator()(T&... values) {
    (get(values), ...);
  }
  bool hasFailed() const { return hasFailed_; }
  bool isAtEnd() const { return rest_.empty(); }

 private:
  std::string_view take(std::uint64_t count) {
    if (hasFailed_ || count > rest_.size()) {
      hasFailed_ = true;
      return {};
    }
    const std::string_view taken = rest_.substr(0, static_cast<std::size_t>(count));
    rest_.remove_prefix(taken.size());
    return taken;
  }
  std::uint64_t getWord() {
    std::uint64_t word = 0;
    const std::string_view bytes = take(8);
    for (std::size_t i = bytes.size(); i > 0; --i) word = word << 8U | static_cast<unsigned char>(bytes[i - 1]);
    return word;
  }
  // A number below the limit.
  std::uint64_t getChoice(std::uint64_t limit) {
    const std::uint64_t word = getWord();
    if (word < limit) return word;
    hasFailed_ = true;
    return 0;
  }

  void get(bool& value) {
    const std::string_view byte = take(1);
    hasFailed_ = hasFailed_ || static_cast<unsigned char>(byte[0]) > 1;
    value = !hasFailed_ && byte[0] != 0;
  }
  template <std::integral T>
  void get(T& value) {
    value = static_cast<T>(getWord());
  }
  void get(double& value) { value = std::bit_cast<double>(getWord()); }
  void get(Verdict& value) { value = static_cast<Verdict>(getChoice(kVerdicts)); }
  void get(explain::FileKind& value) { value = static_cast<explain::FileKind>(getChoice(frame::kFileKindCount)); }
  void get(std::string& text) { text = take(getWord()); }
  template <class T>
  void get(std::optional<T>& value) {
    bool isThere = false;
    get(isThere);
    if (isThere) get(value.emplace());
  }
  template <class T>
  void get(std::vector<T>& list) {
    // Every element consumes bytes, so that a false count fails at their end.
    for (std::uint64_t count = getWord(); count > 0 && !hasFailed_; --count) get(list.emplace_back());
  }
  template <class Record>
  void get(Record& record) requires requires(Unpacker& io) {
    describe(io, record);
  }
  { describe(*this, record); }

  std::string_view rest_;
  bool hasFailed_ = false;
};

constexpr std::string_view kMark = "torvio results 1\n";

}  // namespace

std::string packedResults(std::span<const FileResult> results) {
  Packer packer;
  for (const FileResult& result : results) packer(result);
  return std::string(kMark) + packer.take();
}

std::optional<std::vector<FileResult>> unpackedResults(std::string_view bytes) {
  if (!bytes.starts_with(kMark)) return std::nullopt;
  Unpacker unpacker(bytes.substr(kMark.size()));
  std::vector<FileResult> results;
  while (!unpacker.isAtEnd()) {
    unpacker(results.emplace_back());
    if (unpacker.hasFailed()) return std::nullopt;
  }
  return results;
}

}  // namespace oldtorvio::archive
