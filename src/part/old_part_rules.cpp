#include "src/part/old_part_rules.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <numbers>
#include <span>
#include <string_view>

#include "src/frame/codec/reader.h"
#include "src/records/shape_groups.h"

namespace oldtorvio {
namespace {

static_assert(std::bit_cast<std::uint32_t>(kFullTurnVersion5) == 0x40C90F09U);
static_assert(std::bit_cast<std::uint32_t>(kFullTurnVersion3) == 0x40C90FD4U);

constexpr int kTypes = 26;
constexpr int kArc = 9;

enum class Class : std::uint8_t { other, contour, head };

Class classOf(std::int8_t type) {
  switch (type) {
    case 10:
    case 11:
    case 12:
    case 13:
      return Class::contour;
    case kGroupHead:
      return Class::head;
    default:
      return Class::other;
  }
}

// Computed in double precision, so that the result does not depend on the host's single-precision functions.
float cosine(float angle) { return static_cast<float>(std::cos(static_cast<double>(angle))); }
float sine(float angle) { return static_cast<float>(std::sin(static_cast<double>(angle))); }

struct Turn {
  float u, w;

  void angle(float& a) const {
    const float p = u * cosine(a) - w * sine(a);
    const float q = u * sine(a) + w * cosine(a);
    const auto r = static_cast<float>(std::sqrt(static_cast<double>(p * p + q * q)));
    a = static_cast<float>(std::atan2(static_cast<double>(q / r), static_cast<double>(p)));
  }
  void vector(float& a, float& b) const {
    const float turnedA = u * a - w * b;
    b = u * b + w * a;
    a = turnedA;
  }
};

void turnDirection(Shape& shape, Turn by) {
  switch (shape.type) {
    case 2:
    case 5:
    case 9:
    case 12:
    case 13:
      return by.angle(shape.values[1]);
    case 3:
    case 6:
    case 7:
    case 14:
    case 15:
    case 16:
    case 20:
    case 21:
    case 23:
    case 25:
      return by.angle(shape.values[2]);
    case 8:
    case 11:
      return by.angle(shape.values[4]);
    case 4:
    case 10:
      return by.vector(shape.values[0], shape.values[1]);
    default:
      return;
  }
}

std::uint16_t shortAt(const std::uint8_t* from) {
  return static_cast<std::uint16_t>(from[0] | static_cast<unsigned>(from[1]) << 8U);
}

bool isNearlyZero(float value) { return std::fabs(static_cast<double>(value)) < 0.0001; }

// The text occupies the bytes of the fields from setupShort2 to setupByte4 in the memory of a little-endian host. On a
// big-endian host the fields get the same values.
void setContinuationText(SetupEntry& e, std::string_view text) {
  std::array<std::byte, OldSetupRecord::kTextSize> image{};
  std::memcpy(image.data(), text.data(), text.size());
  codec::InStream stream{std::span<const std::byte>(image)};
  codec::Reader io(stream);
  (void)io.fields(FIELDS(e.setupShort2, e.setupByte1, e.memoryByte1, e.setupShort3, e.setupByte2, e.memoryByte2,
                         e.setupShort4, e.setupByte3, e.memoryBytes, e.setupBlock, e.setupWord1, e.setupByte4));
}

void setBlock(SetupEntry& entry, float first, float second) {
  codec::wire::Item<float>::store(first, reinterpret_cast<std::byte*>(entry.setupBlock));
  codec::wire::Item<float>::store(second, reinterpret_cast<std::byte*>(entry.setupBlock) + 4);
}

}  // namespace

int oldValueCount(std::int8_t type) {
  constexpr std::array<std::uint8_t, kTypes> kCounts = {0, 1, 4, 3, 4, 5, 3, 9, 7, 4, 3, 5, 3,
                                                        4, 3, 3, 3, 0, 4, 5, 4, 3, 0, 4, 0, 4};
  return type >= 0 && type < kTypes ? kCounts[static_cast<std::size_t>(type)] : 0;
}

bool keepsFirstFlag(std::int8_t type) { return classOf(type) == Class::contour; }

void limitToFullTurn(Shape& shape, float fullTurn) {
  if (shape.type != 2 && shape.type != 5) return;
  float& angle = shape.values[2];
  if (std::fabs(static_cast<double>(angle)) * 180.0 / std::numbers::pi > 360.0) angle = std::copysign(fullTurn, angle);
}

void fixDegenerateArc(Shape& shape) {
  if (shape.type == kArc && shape.values[4] < 1.7453292e-05F) shape.values[4] = 1.5707964F;
}

void OldShapeConverter::convert(Shape& shape, std::size_t before) {
  const Class kind = classOf(shape.type);
  if ((shape.type == 15 || shape.type == 16) && std::fabs(shape.values[1]) > std::fabs(shape.values[0]))
    shape.values[1] = shape.values[0];
  if (kind == Class::head) {
    if (!hasItems_) shape.values[0] = static_cast<float>(before + 2);
    headAngle_ = shape.values[2];
    headX_ = shape.x;
    headY_ = shape.y;
  }
  if ((shape.flags & kGroupMember) != 0) toGroupFrame(shape);
  if (hasItems_)
    shape.auxWord += 1;
  else
    shape.auxWord = kind == Class::contour ? static_cast<std::int32_t>(before + 2) : 0;
  shape.flags &= 0xFFF3U;
  fixDegenerateArc(shape);
}

// A member is stored with absolute coordinates; a load makes them relative to its head. Every step rounds to single.
void OldShapeConverter::toGroupFrame(Shape& shape) const {
  const float c = cosine(headAngle_), s = sine(headAngle_);
  const float x = shape.x, y = shape.y;
  shape.x = x * c + (-(headX_ * c) - headY_ * s) + y * s;
  shape.y = -x * s + (headX_ * s - headY_ * c) + y * c;
  turnDirection(shape, {c, -s});
}

std::uint16_t OldSetupRecord::type() const { return shortAt(bytes); }
std::int16_t OldSetupRecord::textCount() const { return static_cast<std::int16_t>(shortAt(bytes + 4)); }
float OldSetupRecord::real(int index) const {
  float value = 0;
  codec::wire::Item<float>::load(value, reinterpret_cast<const std::byte*>(bytes) + 12 + 4 * index);
  return value;
}

bool OldSetupRecord::carriesText() const {
  const int kind = type();
  return kind == 7 || kind == 9 || kind >= 15;
}

int OldSetupRecord::bytesAfter() const {
  switch (type()) {
    case 1:
    case 2:
    case 3:
    case 5:
    case 6:
      return 2 * 8;
    case 4:
      return 3 * 8;
    case 7:
    case 10:
    case 11:
    case 12:
      return 8;
    case 13:
    case 14:
      return 4 + 8;
    default:
      return 0;
  }
}

SetupEntry setupEntryOf(const OldSetupRecord& record) {
  constexpr std::uint8_t kNone = '0';
  SetupEntry entry;
  const float r1 = record.real(1), r2 = record.real(2), r3 = record.real(3);
  entry.setupShort1 = record.type();
  entry.setupByte1 = entry.setupByte2 = entry.setupByte3 = kNone;
  setBlock(entry, r1, r2);
  entry.setupWord1 = std::bit_cast<std::uint32_t>(r3);
  entry.setupByte4 = record.byteB();
  entry.setupWord2 = std::bit_cast<std::uint32_t>(record.real(0));
  entry.setupShort5 = 7;
  entry.setupWord3 = std::bit_cast<std::uint32_t>(1.0F);
  if (record.carriesText()) return entry;

  const auto setRamp = [&](float depth, float first, float second, float word) {
    if (isNearlyZero(depth)) {
      entry.setupWord1 = 0;
      return;
    }
    setBlock(entry, first, second);
    entry.setupWord1 = std::bit_cast<std::uint32_t>(word);
    entry.setupByte4 = r1 / r2 > 0 ? 1 : 2;
  };
  switch (record.type()) {
    case 10:
      entry.setupWord1 = 0;
      entry.setupByte2 = entry.setupByte3 = entry.setupByte4 = 0;
      return entry;
    case 4:
      entry.setupByte4 = record.byteB() == 0 ? 1 : 2;
      break;
    case 5:
    case 6:
      entry.setupByte4 = static_cast<std::uint8_t>(record.byteB() + 1);
      break;
    case 11:
      setRamp(r1, r1, r3, r2);
      break;
    case 12:
      setRamp(r2, r3, r2, r1);
      break;
    default:
      break;
  }
  if (std::fabs(std::bit_cast<float>(entry.setupWord1)) > 30000.0F) entry.setupWord1 = 0;
  return entry;
}

void appendText(SetupList& list, const OldSetupRecord& record, const std::string& text) {
  constexpr std::size_t kPiece = OldSetupRecord::kTextSize;
  const std::size_t pieces = (text.size() + kPiece - 1) / kPiece;
  SetupEntry& head = list.entries.emplace_back(setupEntryOf(record));
  head.setupShort3 = static_cast<std::uint16_t>(pieces);
  head.setupByte1 = record.type() == 7 ? '0' : 0;
  head.setupByte2 = head.setupByte3 = head.setupByte4 = 0;

  constexpr std::uint16_t kContinuation = 8;
  for (std::size_t i = 0; i < pieces; ++i) {
    SetupEntry& piece = list.entries.emplace_back();
    piece.setupShort1 = kContinuation;
    setContinuationText(piece, std::string_view(text).substr(i * kPiece, kPiece));
  }
}

bool ContinuationFilter::keeps(const SetupEntry& entry) {
  switch (entry.setupShort1) {
    case 7:
    case 9:
    case 15:
    case 16:
    case 17:
      remaining_ = static_cast<std::int16_t>(entry.setupShort3);
      return true;
    case 8:
      if (remaining_ < 1) return false;
      --remaining_;
      return true;
    default:
      return true;
  }
}

}  // namespace oldtorvio
