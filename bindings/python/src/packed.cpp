#include "bindings/python/src/packed.h"

#include <bit>
#include <cstdint>
#include <cstring>
#include <unordered_map>

#include "bindings/python/src/convert.h"

namespace oldtorvio::python {
namespace {

[[noreturn]] void raiseDamaged() {
  raise(PyExc_ValueError, "these bytes are not a record that this version has packed");
}

// FNV-1a over everything that the bytes depend on.
class Fingerprint {
 public:
  void add(std::string_view text) {
    for (const char c : text) addByte(static_cast<std::uint8_t>(c));
    addByte(0xFF);
  }
  void add(std::uint64_t number) {
    for (int i = 0; i < 64; i += 8) addByte(static_cast<std::uint8_t>(number >> i));
  }
  void add(const Type& type) {
    add(static_cast<std::uint64_t>(type.form));
    add(type.form == Form::lazyArray || type.form == Form::list ? type.count : type.size);
    if (type.element != nullptr) add(*type.element);
    for (const TypeMember& member : type.members) {
      add(member.name);
      add(*member.type);
    }
  }
  std::uint64_t value() const { return value_; }

 private:
  void addByte(std::uint8_t byte) { value_ = (value_ ^ byte) * 0x100000001B3U; }

  std::uint64_t value_ = 0xCBF29CE484222325U;
};

std::uint64_t fingerprintOf(const Type& type) {
  static std::unordered_map<const Type*, std::uint64_t> known;
  const auto found = known.find(&type);
  if (found != known.end()) return found->second;
  Fingerprint fingerprint;
  fingerprint.add(std::endian::native == std::endian::little ? "little" : "big");
  fingerprint.add(type);
  return known[&type] = fingerprint.value();
}

const std::byte* elementAt(const Type& type, const void* at, std::size_t i) {
  return static_cast<const std::byte*>(at) + i * type.element->size;
}

class Packer {
 public:
  explicit Packer(std::string& to) : to_(to) {}

  void number(std::uint64_t value) { block(&value, sizeof value); }
  void add(const Type& type, const void* at) {
    if (isPlain(type)) return block(at, type.size);
    switch (type.form) {
      case Form::text: {
        const auto& text = *static_cast<const std::string*>(at);
        number(text.size());
        return block(text.data(), text.size());
      }
      case Form::array:
        for (std::size_t i = 0; i < type.count; ++i) add(*type.element, elementAt(type, at, i));
        return;
      case Form::list: {
        const std::size_t length = type.length(at);
        number(length);
        const void* const data = type.data(at);
        if (isPlain(*type.element)) return block(data, length * type.element->size);
        for (std::size_t i = 0; i < length; ++i) add(*type.element, elementAt(type, data, i));
        return;
      }
      case Form::lazyArray: {
        std::size_t length = type.count;
        while (length > 0 && type.lazyAt(at, length - 1) == type.unwritten) --length;
        number(length);
        for (std::size_t i = 0; i < length; ++i) add(*type.element, type.lazyAt(at, i));
        return;
      }
      default:
        for (const TypeMember& member : type.members) add(*member.type, values::memberIn(at, member));
    }
  }

 private:
  void block(const void* data, std::size_t size) {
    if (size > 0) to_.append(static_cast<const char*>(data), size);
  }
  std::string& to_;
};

class Unpacker {
 public:
  explicit Unpacker(std::string_view from) : from_(from) {}

  std::uint64_t number() {
    std::uint64_t value = 0;
    block(&value, sizeof value);
    return value;
  }
  void add(const Type& type, void* at) {
    if (isPlain(type)) return block(at, type.size);
    switch (type.form) {
      case Form::text: {
        const std::size_t size = count(1);
        static_cast<std::string*>(at)->assign(from_.substr(0, size));
        from_.remove_prefix(size);
        return;
      }
      case Form::array:
        for (std::size_t i = 0; i < type.count; ++i) add(*type.element, element(type, at, i));
        return;
      case Form::list: {
        // Each element takes at least its fixed members.
        const std::size_t length = count(smallest(*type.element));
        type.resize(at, length);
        void* const data = const_cast<void*>(type.data(at));
        if (isPlain(*type.element)) return block(data, length * type.element->size);
        for (std::size_t i = 0; i < length; ++i) add(*type.element, element(type, data, i));
        return;
      }
      case Form::lazyArray: {
        const std::uint64_t length = number();
        if (length > type.count) raiseDamaged();
        for (std::size_t i = 0; i < length; ++i) add(*type.element, type.lazySet(at, i));
        return;
      }
      default:
        for (const TypeMember& member : type.members) add(*member.type, values::memberIn(at, member));
    }
  }
  bool isAtEnd() const { return from_.empty(); }

 private:
  static std::byte* element(const Type& type, void* at, std::size_t i) {
    return static_cast<std::byte*>(at) + i * type.element->size;
  }
  static std::size_t smallest(const Type& type) {
    if (isPlain(type)) return type.size;
    if (type.form == Form::array) return type.count * smallest(*type.element);
    if (type.form != Form::record) return sizeof(std::uint64_t);
    std::size_t size = 0;
    for (const TypeMember& member : type.members) size += smallest(*member.type);
    return size;
  }
  std::size_t count(std::size_t sizeOfEach) {
    const std::uint64_t length = number();
    if (length > from_.size() / sizeOfEach) raiseDamaged();
    return static_cast<std::size_t>(length);
  }
  void block(void* to, std::size_t size) {
    if (size > from_.size()) raiseDamaged();
    if (size > 0) std::memcpy(to, from_.data(), size);
    from_.remove_prefix(size);
  }
  std::string_view from_;
};

}  // namespace

void pack(std::string& to, const Type& type, const void* at) {
  Packer packer(to);
  packer.number(fingerprintOf(type));
  packer.add(type, at);
}

void unpack(std::string_view from, const Type& type, void* at) {
  Unpacker unpacker(from);
  if (unpacker.number() != fingerprintOf(type)) raiseDamaged();
  unpacker.add(type, at);
  if (!unpacker.isAtEnd()) raiseDamaged();
}

}  // namespace oldtorvio::python
