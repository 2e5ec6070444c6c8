#include "torvio/archive/plausibility.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <memory>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>

#include "src/file_records.h"
#include "src/frame/codec/reader.h"
#include "src/frame/codec/reading.h"

namespace oldtorvio::archive {
namespace {

using namespace codec;
using frame::FileKind;

// ---- The evidence of single fields. Zeros say nothing: all files are full of them, whatever they are. Integers say
// little, since flags, colours and codes are integers, too; those too large for a count are evidence against a kind,
// because texts and floats read in the wrong place look like that.

constexpr Evidence kPlausibleFloat = 1.5F, kOddFloat = -3;
constexpr Evidence kUsualNumber = 0.25F, kLargeNumber = -1;
// Two characters of UTF-16 are above it.
constexpr std::int64_t kLargestUsual = 1 << 20;

template <class T>
Evidence ofFloat(T value) {
  if (value == 0) return 0;
  const T size = std::fabs(value);
  return size >= static_cast<T>(1e-5) && size <= static_cast<T>(1e7) ? kPlausibleFloat : kOddFloat;
}

Evidence ofNumber(std::int64_t value) {
  if (value == 0) return 0;
  return value <= kLargestUsual && value >= -kLargestUsual ? kUsualNumber : kLargeNumber;
}

template <class Byte>
bool areZeros(const Byte* bytes, std::size_t size) {
  return size == 0 || (bytes[0] == Byte{0} && std::memcmp(bytes, bytes + 1, size - 1) == 0);
}

// A name that ends at a NUL with zeros after it is the best sign there is. Files may have any bytes after the NUL.
// Other data has control characters instead, or no NUL: a text file.
Evidence ofText(const char* text, std::size_t size, bool isFixed) {
  const void* const end = std::memchr(text, 0, size);
  const std::size_t length = end != nullptr ? static_cast<std::size_t>(static_cast<const char*>(end) - text) : size;
  const bool isClean = areZeros(text + length, size - length);
  if (length == 0) return isClean ? 0.0F : -2.0F;
  std::size_t foreign = 0;
  for (std::size_t i = 0; i < length; ++i) {
    const auto c = static_cast<unsigned char>(text[i]);
    if (c < 0x20 || c == 0x7F) return -5;
    foreign += c >= 0x80 ? 1U : 0U;
  }
  // Names in other scripts are possible, but so are numbers.
  if (2 * foreign > length) return length > 2 ? 0.0F : -1.0F;
  if (isFixed && length == size) return -2;
  const auto characters = static_cast<Evidence>(std::min<std::size_t>(length, 8));
  return isClean ? characters + 2 : std::max(characters - 4, -1.0F);
}

// Reads like the reader and weighs what it reads. Contents are weighed separately from structure (counts, widths,
// refused values): fields may contain anything, so that odd contents by themselves never exclude a kind.
class Weigher : public Reading<Weigher> {
 public:
  Weigher(std::span<const std::byte> bytes, std::size_t start, std::size_t most, int version)
      : Reading(version),
        begin_(bytes.data()),
        at_(begin_ + start),
        end_(begin_ + bytes.size()),
        limit_(begin_ + std::min(most, bytes.size())) {}

  // Call it after the walk.
  Plausibility result(bool isComplete) {
    if (!stopped_) structure_ += ofEnd(isComplete || hasEnded_);
    // From some place on the bytes may be damaged.
    constexpr Evidence kOfDamage = -6;
    const bool endsExactly = !stopped_ && (isComplete || hasEnded_) && at_ == end_;
    return {std::max(total(), peak_ + kOfDamage), stopped_ && !isHopeless_, endsExactly};
  }

  // ---- what a walker supplies ----

  template <class Names, class... T>
  [[nodiscard]] bool fields(const Fields<Names, T...>& f) {
    return std::apply([&](auto&... m) { return (item(m) && ...); }, f.members);
  }
  template <class Names, class M>
  [[nodiscard]] bool fieldOf(const Names&, std::size_t, M& member) {
    return item(member);
  }
  template <class Names, class M>
  [[nodiscard]] bool indexed(const Names&, std::size_t, M& member) {
    return item(member);
  }
  template <class Names, std::size_t N, class T>
  [[nodiscard]] bool numbers(const Names&, T (&members)[N], std::size_t count) {
    const Alike row(*this, kMostOfRow);
    for (std::size_t i = 0; i < count; ++i)
      if (!item(members[i])) return false;
    return true;
  }
  template <class Names, class M>
  [[nodiscard]] bool sizedField(const Names&, M& field, std::size_t size) {
    const std::byte* from = take(size);
    if (from == nullptr) return false;
    std::memcpy(std::data(field), from, size);
    if constexpr (std::is_same_v<std::remove_cvref_t<decltype(field[0])>, char>)
      content(ofText(std::data(field), size, true));
    return true;
  }
  bool text(std::string& to, std::uint64_t size) {
    const std::byte* from = take(size);
    if (from == nullptr) return false;
    to.append(reinterpret_cast<const char*>(from), static_cast<std::size_t>(size));
    content(ofText(to.data(), to.size(), false));
    return true;
  }
  bool drop(std::size_t size) {
    const std::byte* from = take(size);
    if (from == nullptr) return false;
    content(areZeros(from, size) ? 1.0F : -1.0F);
    return true;
  }
  // Up to the end of this walk, so that lists reserve no more than it can fill.
  std::uint64_t left() const { return static_cast<std::uint64_t>(std::max<std::ptrdiff_t>(limit_ - at_, 0)); }
  bool has(std::size_t size) const { return leftOfFile() >= size; }
  std::uint64_t position() const { return static_cast<std::uint64_t>(at_ - begin_); }

  // ---- verbs that say something themselves ----

  template <class Stored = void, class X>
  [[nodiscard]] bool slice(const X& x, std::size_t first, std::size_t last) {
    const Alike row(*this, kMostOfRow);
    return Reading::slice<Stored>(x, first, last);
  }
  template <class X>
  [[nodiscard]] bool sized(const X& x, std::int32_t size) {
    structure(size < 1 || static_cast<std::size_t>(size) > sizeof x.only() ? kRefused : kAccepted);
    return Reading::sized(x, size);
  }
  template <class X, class... Longest>
  [[nodiscard]] bool lengthText(const X& x, Longest... longest) {
    weighStoredCount(1);
    return Reading::lengthText(x, longest...);
  }
  template <class Names, Test kTest, std::size_t kCount>
  [[nodiscard]] bool require(const Condition<Names, kTest, kCount>& condition) {
    if (!condition.holds)
      structure(kRefused);
    else if (condition.value != 0)
      structure(kAccepted);
    return Reading::require(condition);
  }
  [[nodiscard]] bool require(const CustomCondition& condition) { return Reading::require(condition); }
  template <class X, class Rule, class... A>
  [[nodiscard]] bool list(const X& x, Rule rule, const A&... more) {
    const std::size_t least = minStoredSizeOf(x);
    if constexpr (Rule::kCount == CountFrom::file)
      weighStoredCount(least);
    else if constexpr (Rule::kCount == CountFrom::caller)
      weighCount(rule.count, least);
    const Alike elements(*this, kMostOfList);
    return Reading::list(x, rule, more...);
  }

  void refusedHere() { hasEnded_ = true; }
  void forgiven() {
    if (!stopped_) structure(-3);
    Reading::forgiven();
  }

 private:
  static constexpr Evidence kAccepted = 3, kRefused = -8;

  // The numbers of an array are alike, and so are the elements of a list: many of them count only as a few.
  class Alike {
   public:
    Alike(Weigher& weigher, Evidence most) : weigher_(weigher), outer_(weigher.alike_), most_(most) {
      weigher_.alike_ = this;
    }
    ~Alike() { weigher_.alike_ = outer_; }
    Alike(const Alike&) = delete;
    Alike& operator=(const Alike&) = delete;

    // How much of the evidence counts; evidence against a structure always counts in full.
    Evidence ofContent(Evidence evidence) {
      evidence = std::clamp(evidence, -1.5F * most_ - content_, most_ - content_);
      content_ += evidence;
      return outer_ != nullptr ? outer_->ofContent(evidence) : evidence;
    }
    Evidence ofStructure(Evidence evidence) {
      evidence = std::min(evidence, most_ - structure_);
      structure_ += evidence;
      return outer_ != nullptr ? outer_->ofStructure(evidence) : evidence;
    }

   private:
    Weigher& weigher_;
    Alike* outer_;
    Evidence most_;
    Evidence content_ = 0, structure_ = 0;
  };
  static constexpr Evidence kMostOfRow = 4, kMostOfList = 12;

  template <class M>
  bool item(M& member) {
    using Item = wire::ItemOf<M>;
    if constexpr (Item::kIsRow) {
      const Alike row(*this, kMostOfRow);
      for (auto& number : member)
        if (!item(number)) return false;
      return true;
    } else {
      const std::byte* from = take(Item::kWidth);
      if (from == nullptr) return false;
      Item::load(member, from);
      weigh(member);
      return true;
    }
  }

  template <Number T>
  void weigh(T value) {
    if constexpr (std::is_floating_point_v<T>)
      content(ofFloat(value));
    else if constexpr (std::is_signed_v<T> && sizeof(T) >= sizeof(std::int32_t))
      content(ofNumber(value));
  }
  template <std::size_t N>
  void weigh(const char (&text)[N]) {
    content(ofText(text, N, true));
  }
  template <std::size_t N>
  void weigh(const std::uint8_t (&)[N]) {}
  template <class Stored, class T>
  void weigh(const As<Stored, T>& as) {
    weigh(static_cast<Stored>(as.member));
  }
  template <class T>
  void weigh(const NonZero<T>& number) {
    weigh(number.stored);
  }
  template <class... T>
  void weigh(const Block<T...>& block) {
    std::apply([&](auto&... m) { (weigh(m), ...); }, block.members);
  }

  // A count that fits is unlikely in other data, where it is a text, a float or a part of one. A count that does not
  // fit is what a truncated file has, unless the count is absurd.
  void weighCount(std::int64_t count, std::size_t least) {
    constexpr std::int64_t kAbsurd = 1'000'000;
    if (count == 0) return;
    const bool fits = count > 0 && static_cast<std::uint64_t>(count) <= leftOfFile() / least;
    if (fits)
      structure(kAccepted);
    else
      structure(count < -100 || count > kAbsurd ? kRefused : -1);
  }
  void weighStoredCount(std::size_t least) {
    std::int32_t count = 0;
    if (stopped_ || leftOfFile() < sizeof count) return;
    wire::Item<std::int32_t>::load(count, at_);
    weighCount(count, least);
  }
  template <class X>
  std::size_t minStoredSizeOf(const X& x) const {
    if constexpr (std::tuple_size_v<decltype(x.members)> == 2)
      return std::apply([&](auto&... lists) { return (minStoredSizeOfElement<decltype(lists)>() + ...); }, x.members);
    else
      return minStoredSizeOfElement<decltype(x.only())>();
  }
  template <class List>
  std::size_t minStoredSizeOfElement() const {
    using L = std::remove_cvref_t<List>;
    if constexpr (requires { typename L::Row; })
      return minStoredSizeOfRecord<typename L::Row>();
    else
      return minStoredSizeOfRecord<typename L::value_type>();
  }
  template <class Record>
  std::size_t minStoredSizeOfRecord() const {
    if constexpr (requires { Layout<Record>::minStoredSize(0); })
      return Layout<Record>::minStoredSize(version());
    else
      return Layout<Record>::kMinStoredSize;
  }

  // The evidence of where a walk ends by itself. Only a file of that kind is likely to end there, too.
  Evidence ofEnd(bool isComplete) const {
    if (!isComplete) return -3;
    if (at_ == end_) return std::min(std::log2(static_cast<Evidence>(position())), 10.0F);
    if (hasEnded_) return 0;
    return leftOfFile() > position() ? -12.0F : -6.0F;
  }

  std::uint64_t leftOfFile() const { return static_cast<std::uint64_t>(end_ - at_); }
  const std::byte* take(std::uint64_t size) {
    if (stopped_ || (size > left() && size <= leftOfFile())) {
      stopped_ = true;
      (void)refuseSilently();
      return nullptr;
    }
    if (size > leftOfFile()) {
      at_ = end_;
      (void)fellShort();
      return nullptr;
    }
    const std::byte* from = at_;
    at_ += size;
    return from;
  }

  void content(Evidence evidence) {
    if (evidence == 0) return;
    content_ += alike_ != nullptr ? alike_->ofContent(evidence) : evidence;
    peak_ = std::max(peak_, total());
  }
  void structure(Evidence evidence) {
    // The walk is over.
    if (stopped_) return;
    structure_ += alike_ != nullptr ? alike_->ofStructure(evidence) : evidence;
    peak_ = std::max(peak_, total());
    if (structure_ < kHopeless) stopped_ = isHopeless_ = true;
  }
  Evidence total() const { return std::max(content_, kAnyContent) + structure_; }

  // The most that odd contents can weigh.
  static constexpr Evidence kAnyContent = -4;
  static constexpr Evidence kHopeless = -30;

  const std::byte* begin_;
  const std::byte* at_;
  const std::byte* end_;
  const std::byte* limit_;
  Evidence content_ = 0, structure_ = 0, peak_ = 0;
  Alike* alike_ = nullptr;
  bool stopped_ = false;  // at the limit, or hopeless
  bool isHopeless_ = false;
  bool hasEnded_ = false;  // at a point after which a load reads nothing
};

// ---- Kinds.

// Those with small records first. The large records take longer to create than the beginning of a file takes to walk.
constexpr std::array kByRecordSize{FileKind::macro, FileKind::groupPart, FileKind::specialTool, FileKind::toolInventory,
                                   FileKind::part,  FileKind::material,  FileKind::machine,     FileKind::sheet};
static_assert(kByRecordSize.size() == frame::kFileKindCount);
constexpr bool isLarge(FileKind kind) {
  return kind == FileKind::material || kind == FileKind::machine || kind == FileKind::sheet;
}

// The records that walks over a beginning fill. A sheet contains a machine, and a machine a material, so that one sheet
// serves for all three. A walk may find what an earlier one left, but always the same for the same bytes.
class Records {
 public:
  template <class File, class Use>
  auto with(File file, const Use& use) {
    if constexpr (isLarge(File::kKind)) {
      if (!sheet_) sheet_ = std::make_unique<OldSheet>();
      if constexpr (File::kKind == FileKind::sheet)
        return use(file, *sheet_);
      else if constexpr (File::kKind == FileKind::machine)
        return use(file, sheet_->machine);
      else
        return use(file, sheet_->machine.material);
    } else {
      return use(file, *std::make_unique<typename File::Record>());
    }
  }

 private:
  std::unique_ptr<OldSheet> sheet_;
};

Plausibility weighed(std::span<const std::byte> bytes, FileKind kind, int version, std::size_t most, Records& records) {
  Weigher io(bytes, startsWithTable(kind, version) ? 0 : sizeof(std::int16_t), most, version);
  const bool isComplete = withFileRecord(kind, [&](auto file) {
    return records.with(file, [&](auto walker, auto& record) { return walker.walk(io, record) == frame::kDone; });
  });
  Plausibility found = io.result(isComplete);
  // Few other files begin with a version that the suite has written. Higher ones are accepted as well.
  constexpr Evidence kOfKnownVersion = 5, kOfUnknownVersion = -10;
  const bool isKnown = version <= frame::VersionSet::kHighest || startsWithTable(kind, version);
  found.evidence += isKnown ? kOfKnownVersion : kOfUnknownVersion;
  return found;
}

struct Candidate {
  FileKind kind;
  Plausibility plausibility;

  Evidence evidence() const { return plausibility.evidence; }
};

// A lead of this size decides; with this much evidence a kind is certain.
constexpr Evidence kLead = 12, kCertain = 26;

// The kinds that fit a beginning: all that come close to the best.
class Candidates {
 public:
  Candidates(std::span<const std::byte> bytes, int version) {
    Records records;
    for (const FileKind kind : kByRecordSize) {
      if (!frame::infoOf(kind).accepts(version)) continue;
      if (isLarge(kind) && isCertain()) break;
      all_[count_++] = {kind, weighed(bytes, kind, version, kBeginning, records)};
    }
    const Evidence most = count_ > 0 ? best().evidence() : 0;
    const auto* const end =
        std::remove_if(begin(), begin() + count_, [most](const Candidate& c) { return c.evidence() <= most - kLead; });
    count_ = static_cast<std::size_t>(end - begin());
  }
  std::span<Candidate> close() { return {begin(), count_}; }
  // One that ends at the end of the file is likelier than one that does not.
  const Candidate& likeliest() const {
    const auto rank = [](const Candidate& c) {
      return std::pair(c.plausibility.endsExactly && c.evidence() >= kMinEvidence, c.evidence());
    };
    return *std::max_element(all_.data(), all_.data() + count_,
                             [&](const Candidate& a, const Candidate& b) { return rank(a) < rank(b); });
  }

 private:
  Candidate* begin() { return all_.data(); }
  const Candidate& best() const {
    return *std::max_element(all_.data(), all_.data() + count_,
                             [](const Candidate& a, const Candidate& b) { return a.evidence() < b.evidence(); });
  }
  bool isCertain() const {
    if (count_ == 0 || best().evidence() < kCertain) return false;
    return std::all_of(all_.data(), all_.data() + count_, [this](const Candidate& c) {
      return c.kind == best().kind || c.evidence() <= best().evidence() - kLead;
    });
  }

  std::array<Candidate, frame::kFileKindCount> all_;
  std::size_t count_ = 0;
};

}  // namespace

Plausibility plausibilityOf(std::span<const std::byte> bytes, FileKind kind, int version, std::size_t most) {
  Records records;
  return weighed(bytes, kind, version, most, records);
}

std::optional<int> versionOf(std::span<const std::byte> bytes) {
  InStream stream(bytes);
  std::int16_t version = 0;
  return readUnversioned(stream, version) ? std::optional<int>(version) : std::nullopt;
}

std::optional<FileKind> likeliestKind(std::span<const std::byte> bytes) {
  const auto version = versionOf(bytes);
  if (!version) return std::nullopt;
  Candidates candidates(bytes, *version);
  const std::span<Candidate> close = candidates.close();
  if (close.empty()) return std::nullopt;
  // Judges by the complete file where its beginning leaves a choice or a doubt.
  if (close.size() > 1 || close[0].evidence() < 2 * kMinEvidence)
    for (Candidate& c : close)
      if (c.plausibility.isPartial) c.plausibility = plausibilityOf(bytes, c.kind, *version, kWholeFile);
  const Candidate& found = candidates.likeliest();
  if (found.evidence() < kMinEvidence) return std::nullopt;
  return found.kind;
}

}  // namespace oldtorvio::archive
