#include "torvio/compare/member_tree.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <utility>

namespace oldtorvio::compare {
namespace {

using values::Form;
using values::Type;

// Records that have a name.
struct NamedRecord {
  std::string_view record, member;
};
constexpr std::array kNamedRecords{
    NamedRecord{"TorvPart", "partName"},       NamedRecord{"OldTool", "name"},
    NamedRecord{"OldTool", "specialToolPath"}, NamedRecord{"OldMaterial", "name"},
    NamedRecord{"NamedWorkList", "listName"},  NamedRecord{"InventoryEntry", "entryNameA"}};

bool isFloat(Form form) { return form == Form::float32 || form == Form::float64; }

double floatAt(Form form, const void* at) {
  if (form == Form::float64) {
    double value = 0;
    std::memcpy(&value, at, sizeof value);
    return value;
  }
  float value = 0;
  std::memcpy(&value, at, sizeof value);
  return double{value};
}

const void* at(const void* value, std::size_t offset) { return static_cast<const std::byte*>(value) + offset; }

std::string_view bytesOf(const Type& type, const void* value) {
  if (type.form == Form::text) return *static_cast<const std::string*>(value);
  return {static_cast<const char*>(value), type.size};
}

class TreeMaker {
 public:
  TreeMaker(const DiffOptions& options, const TreatmentOf& treatmentOf)
      : options_(options), treatmentOf_(treatmentOf) {}

  MemberNode made(const Type& type, const std::string& path, bool isInElement) {
    MemberNode node;
    node.type = &type;
    switch (type.form) {
      case Form::array:
        setElement(node, path);
        setEntries(node, path, isInElement);
        node.isBytes = node.entries.empty() && node.element->isBytes;
        break;
      case Form::list:
      case Form::lazyArray:
        setElement(node, path);
        break;
      case Form::pair:
      case Form::record:
        addMembers(node, path, isInElement);
        break;
      case Form::text:
        break;
      default:
        node.isBytes = !isFloat(type.form) || options_.tolerance == 0;
    }
    return node;
  }

 private:
  void setElement(MemberNode& node, const std::string& path) {
    auto element = std::make_unique<MemberNode>(made(*node.type->element, path, true));
    node.isComplete = element->isComplete;
    node.element = std::move(element);
  }
  void setEntries(MemberNode& node, const std::string& path, bool isInElement) {
    if (!treatmentOf_ || isInNotStored_) return;
    std::vector<Treatment> entries(node.type->count);
    bool areAlike = true;
    for (std::size_t i = 0; i < entries.size(); ++i) {
      entries[i] = treatmentOf_(path, isInElement, i);
      if (!entries[i].isLeftOut && entries[i].notStoredIn == Side::none) continue;
      areAlike = false;
      node.isComplete = node.isComplete && entries[i].notStoredIn == Side::none;
    }
    if (!areAlike) node.entries = std::move(entries);
  }
  void addMembers(MemberNode& node, const std::string& path, bool isInElement) {
    for (const values::TypeMember& member : node.type->members) {
      if (!member.isStored && options_.storedOnly) continue;
      const std::string memberPath = node.type->form == Form::pair ? path
                                     : path.empty()                ? std::string(member.name)
                                                                   : path + '.' + std::string(member.name);
      Treatment treatment = treatmentOf_ ? treatmentOf_(memberPath, isInElement, std::nullopt) : Treatment();
      if (treatment.isLeftOut) continue;
      // A member that one side does not store is one value, whatever is in it.
      if (isInNotStored_) treatment.notStoredIn = Side::none;
      const bool outer = std::exchange(isInNotStored_, isInNotStored_ || treatment.notStoredIn != Side::none);
      MemberNode one = made(*member.type, memberPath, isInElement);
      isInNotStored_ = outer;
      one.name = member.name;
      one.offset = member.offset;
      one.notStoredIn = treatment.notStoredIn;
      one.isFirstOnly = treatment.isFirstOnly;
      if (one.notStoredIn != Side::none || !one.isComplete) node.isComplete = false;
      node.members.push_back(std::move(one));
    }
    for (std::size_t i = 0; i < node.members.size(); ++i) {
      const MemberNode& one = node.members[i];
      if (one.notStoredIn != Side::none) continue;
      if (!one.isBytes)
        node.rest.push_back(i);
      else if (!node.runs.empty() && node.runs.back().offset + node.runs.back().size == one.offset)
        node.runs.back().size += one.type->size;
      else
        node.runs.push_back({one.offset, one.type->size});
    }
    node.isBytes = node.rest.empty() && node.runs.size() == 1 && node.runs.front().size == node.type->size;
    for (const NamedRecord& named : kNamedRecords)
      for (std::size_t i = 0; i < node.members.size(); ++i)
        if (named.record == node.type->name && named.member == node.members[i].name) node.names.push_back(i);
  }

  const DiffOptions& options_;
  const TreatmentOf& treatmentOf_;
  bool isInNotStored_ = false;
};

// ---- hashes

constexpr std::uint64_t kSeed = 0x9E3779B97F4A7C15U;

std::uint64_t mixed(std::uint64_t hash, std::uint64_t word) {
  hash = (hash ^ word) * 0xD6E8FEB86659FD93U;
  return hash ^ (hash >> 32U);
}
std::uint64_t mixedBytes(std::uint64_t hash, std::string_view bytes) {
  hash = mixed(hash, bytes.size());
  while (bytes.size() >= sizeof(std::uint64_t)) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes.data(), sizeof word);
    hash = mixed(hash, word);
    bytes.remove_prefix(sizeof word);
  }
  std::uint64_t word = 0;
  // An empty view may have no bytes at all.
  if (!bytes.empty()) std::memcpy(&word, bytes.data(), bytes.size());
  return mixed(hash, word);
}
// Numbers that differ by less than the tolerance mostly have the same word.
std::uint64_t floatWord(Form form, const void* value, double tolerance) {
  const double number = floatAt(form, value);
  if (!std::isfinite(number))
    return mixedBytes(kSeed, {static_cast<const char*>(value), form == Form::float64 ? 8U : 4U});
  const double rounded = std::round(number / tolerance);
  return rounded == 0 ? 0 : std::bit_cast<std::uint64_t>(rounded);
}

std::uint64_t hashed(std::uint64_t hash, const MemberNode& node, const void* value, double tolerance) {
  const Type& type = *node.type;
  if (node.isBytes) return mixedBytes(hash, {static_cast<const char*>(value), type.size});
  switch (type.form) {
    case Form::text:
      return mixedBytes(hash, bytesOf(type, value));
    case Form::array:
      for (std::size_t i = 0; i < type.count; ++i)
        if (node.hasEntry(i)) hash = hashed(hash, *node.element, at(value, i * type.element->size), tolerance);
      return hash;
    case Form::list: {
      const std::size_t count = node.lengthOf(value);
      hash = mixed(hash, count);
      const void* first = type.data(value);
      if (node.element->isBytes) return mixedBytes(hash, {static_cast<const char*>(first), count * type.element->size});
      for (std::size_t i = 0; i < count; ++i)
        hash = hashed(hash, *node.element, at(first, i * type.element->size), tolerance);
      return hash;
    }
    case Form::lazyArray:
      for (std::size_t i = 0; i < type.count; ++i) {
        const void* one = type.lazyAt(value, i);
        // An allocated element may still have its default value.
        if (one == type.unwritten || areSame(*node.element, one, type.unwritten, 0)) continue;
        hash = hashed(mixed(hash, i), *node.element, one, tolerance);
      }
      return hash;
    case Form::pair:
    case Form::record:
      for (const MemberNode::Run& run : node.runs)
        hash = mixedBytes(hash, {static_cast<const char*>(at(value, run.offset)), run.size});
      for (const std::size_t i : node.rest)
        hash = hashed(hash, node.members[i], at(value, node.members[i].offset), tolerance);
      return hash;
    default:
      return mixed(hash, floatWord(type.form, value, tolerance));
  }
}

bool haveSameElements(const MemberNode& node, const void* a, const void* b, std::size_t count, double tolerance) {
  if (count == 0) return true;
  const std::size_t size = node.type->size;
  if (node.isBytes) return std::memcmp(a, b, count * size) == 0;
  for (std::size_t i = 0; i < count; ++i)
    if (!areSame(node, at(a, i * size), at(b, i * size), tolerance)) return false;
  return true;
}

template <class T>
int orderOfNumbers(const void* a, const void* b) {
  T ofA{}, ofB{};
  std::memcpy(&ofA, a, sizeof ofA);
  std::memcpy(&ofB, b, sizeof ofB);
  return (ofB < ofA ? 1 : 0) - (ofA < ofB ? 1 : 0);
}
int orderOfNumbers(Form form, const void* a, const void* b) {
  switch (form) {
    case Form::int8:
      return orderOfNumbers<std::int8_t>(a, b);
    case Form::uint8:
      return orderOfNumbers<std::uint8_t>(a, b);
    case Form::int16:
      return orderOfNumbers<std::int16_t>(a, b);
    case Form::uint16:
      return orderOfNumbers<std::uint16_t>(a, b);
    case Form::int32:
      return orderOfNumbers<std::int32_t>(a, b);
    // Real numbers are ordered by their bits, which differ unless the numbers are the same.
    case Form::float64:
      return orderOfNumbers<std::uint64_t>(a, b);
    default:
      return orderOfNumbers<std::uint32_t>(a, b);
  }
}
int orderOfElements(const MemberNode& node, const void* a, const void* b, std::size_t count) {
  int order = 0;
  for (std::size_t i = 0; i < count && order == 0; ++i)
    order = orderOf(node, at(a, i * node.type->size), at(b, i * node.type->size));
  return order;
}

// Longer arrays of numbers are one value in a sketch.
constexpr std::size_t kLongestSketched = 32;

}  // namespace

bool MemberNode::isLeaf() const {
  switch (type->form) {
    case Form::array:
    case Form::list:
    case Form::lazyArray:
    case Form::record:
      return false;
    default:
      return true;
  }
}

MemberNode memberTree(const Type& type, const DiffOptions& options, const TreatmentOf& treatmentOf) {
  return TreeMaker(options, treatmentOf).made(type, "", false);
}

bool areSame(const MemberNode& node, const void* a, const void* b, double tolerance) {
  const Type& type = *node.type;
  if (node.isBytes) return std::memcmp(a, b, type.size) == 0;
  switch (type.form) {
    case Form::text:
      return bytesOf(type, a) == bytesOf(type, b);
    case Form::array:
      if (node.entries.empty()) return haveSameElements(*node.element, a, b, type.count, tolerance);
      for (std::size_t i = 0; i < type.count; ++i)
        if (node.hasEntry(i) &&
            !areSame(*node.element, at(a, i * type.element->size), at(b, i * type.element->size), tolerance))
          return false;
      return true;
    case Form::list:
      return node.lengthOf(a) == node.lengthOf(b) &&
             haveSameElements(*node.element, type.data(a), type.data(b), node.lengthOf(a), tolerance);
    case Form::lazyArray:
      for (std::size_t i = 0; i < type.count; ++i) {
        const void *const ofA = type.lazyAt(a, i), *const ofB = type.lazyAt(b, i);
        if (ofA != ofB && !areSame(*node.element, ofA, ofB, tolerance)) return false;
      }
      return true;
    case Form::pair:
    case Form::record:
      for (const MemberNode::Run& run : node.runs)
        if (std::memcmp(at(a, run.offset), at(b, run.offset), run.size) != 0) return false;
      for (const std::size_t i : node.rest)
        if (!areSame(node.members[i], at(a, node.members[i].offset), at(b, node.members[i].offset), tolerance))
          return false;
      return true;
    default: {
      if (std::memcmp(a, b, type.size) == 0) return true;
      const double ofA = floatAt(type.form, a), ofB = floatAt(type.form, b);
      return std::isfinite(ofA) && std::isfinite(ofB) && std::fabs(ofA - ofB) <= tolerance;
    }
  }
}

int orderOf(const MemberNode& node, const void* a, const void* b) {
  const Type& type = *node.type;
  int order = 0;
  switch (type.form) {
    case Form::text:
    case Form::fixedText:
    case Form::bytes:
      return bytesOf(type, a).compare(bytesOf(type, b));
    case Form::array:
      for (std::size_t i = 0; i < type.count && order == 0; ++i)
        if (node.hasEntry(i))
          order = orderOf(*node.element, at(a, i * type.element->size), at(b, i * type.element->size));
      return order;
    case Form::list: {
      const std::size_t ofA = node.lengthOf(a), ofB = node.lengthOf(b);
      order = orderOfElements(*node.element, type.data(a), type.data(b), std::min(ofA, ofB));
      return order != 0 ? order : (ofB < ofA ? 1 : 0) - (ofA < ofB ? 1 : 0);
    }
    case Form::lazyArray:
      for (std::size_t i = 0; i < type.count && order == 0; ++i) {
        const void *const ofA = type.lazyAt(a, i), *const ofB = type.lazyAt(b, i);
        if (ofA != ofB) order = orderOf(*node.element, ofA, ofB);
      }
      return order;
    case Form::pair:
    case Form::record:
      for (const MemberNode& member : node.members) {
        if (member.notStoredIn == Side::none) order = orderOf(member, at(a, member.offset), at(b, member.offset));
        if (order != 0) break;
      }
      return order;
    default:
      return orderOfNumbers(type.form, a, b);
  }
}

std::uint64_t hashOf(const MemberNode& node, const void* value, double tolerance) {
  return hashed(kSeed, node, value, tolerance);
}

const MemberNode* nameMember(const MemberNode& node, const void* record) {
  for (const std::size_t i : node.names) {
    const MemberNode& member = node.members[i];
    const std::string_view bytes = bytesOf(*member.type, at(record, member.offset));
    if (!bytes.empty() && (member.type->form == Form::text || bytes.front() != '\0')) return &member;
  }
  return nullptr;
}

std::string_view nameOf(const MemberNode& node, const void* record) {
  const MemberNode* member = nameMember(node, record);
  if (member == nullptr) return {};
  const std::string_view bytes = bytesOf(*member->type, at(record, member->offset));
  return member->type->form == Form::text ? bytes : bytes.substr(0, bytes.find('\0'));
}

void appendSketch(Sketch& to, const MemberNode& node, const void* value, double tolerance) {
  const Type& type = *node.type;
  if (type.form == Form::record || type.form == Form::pair) {
    for (const MemberNode& member : node.members)
      if (member.notStoredIn == Side::none) appendSketch(to, member, at(value, member.offset), tolerance);
  } else if (type.form == Form::array && type.count <= kLongestSketched) {
    for (std::size_t i = 0; i < type.count; ++i)
      if (node.hasEntry(i)) appendSketch(to, *node.element, at(value, i * type.element->size), tolerance);
  } else {
    const std::uint64_t hash = hashOf(node, value, tolerance);
    // mixed() has folded the high half into the low one. To do it again would undo it.
    to.push_back(static_cast<std::uint32_t>(hash));
  }
}

double similarity(const std::uint32_t* a, const std::uint32_t* b, const Sketch& fresh) {
  std::size_t common = 0, all = 0;
  for (std::size_t i = 0; i < fresh.size(); ++i) {
    if (a[i] == b[i] && a[i] == fresh[i]) continue;
    ++all;
    if (a[i] == b[i]) ++common;
  }
  return all == 0 ? 1 : static_cast<double>(common) / static_cast<double>(all);
}

}  // namespace oldtorvio::compare
