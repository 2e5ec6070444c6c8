#include "tests/torvio/corpus.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <memory>
#include <random>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "src/file_records.h"
#include "src/frame/codec/writer.h"
#include "tests/support/random_records.h"
#include "tests/support/sheet_files.h"
#include "tests/support/stored_forms/oldest_parts.h"
#include "torvio/values/compiled_records.h"

namespace testing_support {

using namespace oldtorvio;
using frame::FileKind;

namespace {

using Random = RandomRecords;

// Number between the two, both included.
int between(Random& random, int least, int most) { return least + random.upTo(most - least); }
std::size_t below(Random& random, std::size_t end) {
  return static_cast<std::size_t>(random.upTo(static_cast<int>(end) - 1));
}

template <class Write>
Bytes body(const Write& write) {
  bool ok = false;
  Bytes bytes = written(write, &ok);
  if (!ok) throw std::runtime_error("a made record cannot be stored");
  return bytes;
}

// ---- the oldest parts, which nothing writes ----------------------------------------------------------------

float size(Random& random) { return static_cast<float>(random.upTo(300000)) / 100.0F; }

Shape oldestShape(Random& random) {
  Shape s;
  s.type = static_cast<std::int8_t>(random.upTo(25));
  s.auxWord = random.upTo(4);
  s.flags = static_cast<std::uint32_t>(random.upTo(2)) * 128U;
  s.x = size(random);
  s.y = size(random);
  for (int i = 0; i < oldestValueCount(s.type); ++i) s.values[i] = random.flip() ? 0 : size(random);
  return s;
}
PatternItem oldestItem(Random& random) {
  PatternItem item;
  item.itemWord1 = static_cast<std::uint32_t>(random.upTo(100));
  item.toolNumber = random.upTo(30);
  return item;
}
SetupEntry oldestEntry(Random& random) {
  SetupEntry e;
  e.setupShort1 = static_cast<std::uint16_t>(between(random, 1, 17));
  e.setupShort2 = static_cast<std::uint16_t>(random.upTo(3));
  e.setupShort3 = static_cast<std::uint16_t>(random.upTo(100));
  e.setupByte3 = 1;
  const float first = size(random), second = size(random);
  setFromBytes(e.setupBlock, Bytes().f32(first).f32(second).span());
  e.setupWord1 = static_cast<std::uint32_t>(random.upTo(9));
  e.setupWord3 = static_cast<std::uint32_t>(random.upTo(1));
  return e;
}

Bytes version5Part(Random& random) {
  static constexpr std::string_view kNames[] = {"BRACKET", "COVER 12", "", "A-4711", "PLATE", "left door"};
  const auto part = std::make_unique<TorvPart>();
  TorvPart& p = *part;
  const auto put = [](auto& text, std::string_view value) {
    std::fill(std::begin(text), std::end(text), '\0');
    std::copy(value.begin(), value.end(), text);
  };
  const auto putName = [&](auto& text) { put(text, kNames[random.upTo(5)]); };
  putName(p.partName);
  p.width = size(random);
  p.height = size(random);
  putName(p.productName);
  putName(p.assemblyName);
  put(p.materialName, "1.4301");
  p.partKind = 1;
  p.partWord1 = random.upTo(3);
  p.thickness = static_cast<float>(random.upTo(60)) / 10.0F;
  for (int n = random.upTo(40); n > 0; --n) p.shapes.shapes.push_back(oldestShape(random));
  for (int n = random.upTo(2); n > 0; --n) {
    Pattern& pattern = p.patterns.emplace_back();
    const int items = random.upTo(10);
    pattern.originX = size(random);
    pattern.originY = size(random);
    for (int k = 0; k < items; ++k) pattern.items.push_back(oldestItem(random));
  }
  for (int n = random.upTo(4); n > 0; --n) p.setupList.entries.push_back(oldestEntry(random));
  p.setupList.current = oldestEntry(random);
  p.setupList.tailWord2 = static_cast<std::uint32_t>(random.upTo(9));
  for (int n = random.upTo(5); n > 0; --n) {
    MarkEntry& mark = p.marks.emplace_back();
    mark.markWord1 = static_cast<std::uint32_t>(random.upTo(9));
    mark.markShort = static_cast<std::uint16_t>(random.upTo(9));
    mark.markWord2 = std::bit_cast<std::uint32_t>(size(random));
    mark.markWord3 = std::bit_cast<std::uint32_t>(size(random));
  }
  return version5File(p);
}

Bytes version3Part(Random& random, int version) {
  Version3File file;
  file.version = version;
  file.ignored = 0;
  file.hasItems = random.flip() ? 1 : 0;
  file.width = size(random);
  file.height = size(random);
  file.hasSlots = random.flip() ? 1 : 0;
  for (int n = random.upTo(40); n > 0; --n) file.shapes.push_back(oldestShape(random));
  file.last = {};
  if (file.hasItems == 1) {
    std::vector<PatternItem> items;
    for (std::size_t i = 0; i < file.shapes.size(); ++i) items.push_back(oldestItem(random));
    file.last = version3Items(items);
  }
  return file.bytes();
}

// ---- all kinds ----------------------------------------------------------------------------------------------

std::vector<int> versionsOf(FileKind kind) {
  std::vector<int> versions;
  if (kind == FileKind::part) versions = {2, 3, 5};
  for (int v = frame::kFirstMainVersion; v <= frame::VersionSet::kHighest; ++v)
    if (frame::infoOf(kind).accepts(v)) versions.push_back(v);
  return versions;
}

template <FileKind kKind>
Bytes soundFileOf(Random& random, int version) {
  using Record = typename FileRecord<kKind>::Record;
  if constexpr (kKind == FileKind::groupPart) {
    std::vector<TorvPart> parts(static_cast<std::size_t>(between(random, 1, 3)));
    for (TorvPart& part : parts) {
      random.record(part, version);
      random.name(part.partName);
    }
    const codec::GroupPartFile<const std::vector<TorvPart>> file{parts, static_cast<std::int32_t>(parts.size()) - 1,
                                                                 random.flip() ? 256 : between(random, 20, 256)};
    return Bytes().i16(version).add(body([&](auto& to) { return codec::writeRecord(to, version, file); }));
  } else if constexpr (kKind == FileKind::sheet) {
    const auto sheet = random.newRecord<Record>(version);
    random.paramTable(sheet->paramTable, version < 60 ? 52 : version);
    return readableSheetFile(*sheet, version);
  } else {
    if (kKind == FileKind::part && version <= frame::kVersion5)
      return version == frame::kVersion5 ? version5Part(random) : version3Part(random, version);
    const auto record = std::make_unique<Record>();
    if constexpr (kKind == FileKind::material)
      random.record(*record, version, [&] { return random.upTo(4) == 0 ? 52 : version; });
    else
      random.record(*record, version);
    const values::SavedRecord saved = values::saveRecord<kKind>(*record, version);
    if (saved.status != 0) throw std::runtime_error("a made record cannot be stored");
    return Bytes::of(saved.bytes);
  }
}

Bytes soundFile(Random& random, FileKind kind, int version) {
  return withFileRecord(kind, [&](auto file) { return soundFileOf<decltype(file)::kKind>(random, version); });
}

// Lists of the large kinds contain lists of lists. A few files have none of anything.
int mostElements(Random& random, FileKind kind) {
  const bool isLarge = kind == FileKind::machine || kind == FileKind::material || kind == FileKind::sheet;
  static constexpr int kMost[] = {1, 2, 3, 4, 6, 8, 12, 16};
  if (random.upTo(19) == 0) return 0;
  return kMost[random.upTo(isLarge ? 3 : kind == FileKind::part || kind == FileKind::groupPart ? 6 : 7)];
}

// ---- damage ---------------------------------------------------------------------------------------------------

Bytes randomBytes(Random& random, std::size_t size) {
  std::vector<std::uint32_t> words(size / 4 + 1);
  for (std::uint32_t& word : words) random.bits(word);
  return bytesOf(words).cut(size);
}

std::string damage(Random& random, Bytes& bytes, std::size_t& intact) {
  std::vector<std::byte> all(bytes.span().begin(), bytes.span().end());
  std::string done;
  const int form = random.upTo(2);
  if (form == 0) {
    const std::size_t size = below(random, all.size());
    all.resize(size);
    intact = size;
    done = "cut at " + std::to_string(size);
  } else if (form == 1) {
    const std::size_t from = below(random, all.size());
    const std::size_t most = std::min({all.size() - from, all.size() / 4 + 1, std::size_t{4096}});
    const std::size_t size = 1 + below(random, most);
    intact = from;
    const Bytes noise = randomBytes(random, size);
    const int by = random.upTo(3);
    for (std::size_t i = 0; i < size; ++i)
      all[from + i] = by == 0   ? noise.span()[i]
                      : by == 1 ? std::byte{0}
                      : by == 2 ? std::byte{0xFF}
                                : all[size - 1 - i];
    static constexpr const char* kBy[] = {"random bytes", "zeros", "FF", "other bytes"};
    done = "overwritten at " + std::to_string(from) + " for " + std::to_string(size) + " by " + kBy[by];
  } else {
    done = "flipped at";
    for (int n = between(random, 1, 8); n > 0; --n) {
      const std::size_t at = below(random, all.size());
      all[at] ^= static_cast<std::byte>(1U << static_cast<unsigned>(random.upTo(7)));
      intact = std::min(intact, at);
      done += " " + std::to_string(at);
    }
  }
  bytes = Bytes::of(all);
  return done;
}

std::uint32_t seedOf(std::uint32_t seed, std::uint32_t number) { return seed * 1000003U + number; }

}  // namespace

MadeFile madeFile(std::uint32_t seed, std::uint32_t number) {
  Random choices(seedOf(seed, number));
  const auto kind = static_cast<FileKind>(number % frame::kFileKinds.size());
  const std::vector<int> versions = versionsOf(kind);
  MadeFile made{kind, versions[below(choices, versions.size())], "none", 0, {}};
  Random random(seedOf(seed, number) + 7, mostElements(choices, kind), Random::Content::plausible);
  made.bytes = soundFile(random, kind, made.version);
  made.intact = made.bytes.size();
  if (choices.upTo(2) == 0) made.damage = damage(choices, made.bytes, made.intact);
  return made;
}

Bytes foreignFile(std::uint32_t seed, std::uint32_t number) {
  Random random(seedOf(seed, number) + 99);
  static constexpr std::size_t kSizes[] = {0, 1, 2, 3, 10, 100, 500, 2000, 9000, 40000};
  const std::size_t size = number / kForeignForms == 0 ? 5000 : kSizes[random.upTo(9)] + below(random, 50);
  const auto startingWith = [&](std::string_view start) {
    return Bytes().text(start.size(), start).add(randomBytes(random, size));
  };
  // A format whose first word is a version that files of this suite have.
  const auto version = static_cast<std::uint8_t>(between(random, 52, 180));
  static constexpr std::string_view kText =
      "The quick brown fox jumps over the lazy dog; #define SIZE 12\n\tint main() {}\r\n";
  const auto text = [&](std::size_t width) {
    Bytes b;
    while (b.size() < size) {
      const int from = random.upTo(60);
      for (const char c : kText.substr(static_cast<std::size_t>(from))) {
        b.u8(static_cast<std::uint8_t>(c));
        b.zeros(width - 1);
      }
    }
    return b;
  };
  switch (number % kForeignForms) {
    case 0:
      return randomBytes(random, size);
    case 1:
      return text(1);
    case 2:
      return Bytes().zeros(size);
    case 3:
      return Bytes().fill(size, 0xFF);
    case 4:
      return startingWith("\x89PNG\r\n\x1A\n");
    case 5:
      return startingWith(
          "\x7F"
          "ELF\2\1\1");
    case 6:
      return startingWith("PK\3\4");
    case 7:
      return text(2);
    case 8:
      return Bytes().u16(0xFEFF).add(text(2));
    case 9:
      return Bytes().u16(version).add(randomBytes(random, size));
    case 10:
      return Bytes().u16(version).zeros(size + 300);
    default: {
      // Small numbers, as in tables of other programs.
      Bytes b = Bytes().u16(version);
      while (b.size() < size) b.i32(random.flip() ? 0 : random.upTo(1000));
      return b;
    }
  }
}

bool isTableOfNumbers(std::uint32_t number) { return number % kForeignForms == kForeignForms - 1; }

}  // namespace testing_support
