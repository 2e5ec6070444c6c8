// A reader of the same layouts that takes one field after the other, without windows, runs or fast paths. From a file,
// by one fread for each as simple programs do, it is a baseline of the benchmarks. From memory, the fuzz targets compare
// the library's reader with it: see fuzz/fuzz_checks.h.
#pragma once
#include <cstdio>
#include <cstring>
#include <span>
#include <string>

#include "src/frame/codec/reading.h"
#include "src/frame/host/platform.h"

namespace testing_support {

namespace codec = oldtorvio::codec;
namespace frame = oldtorvio::frame;

class FileSource {
 public:
  FileSource(std::FILE* file) : file_(file) {}  // NOLINT: converts from a file
  std::uint64_t size() const { return frame::sizeOfFile(file_).value_or(0); }
  bool read(void* to, std::size_t size) { return std::fread(to, size, 1, file_) == 1; }
  void toEnd() { (void)std::fseek(file_, 0, SEEK_END); }

 private:
  std::FILE* file_;
};

class MemorySource {
 public:
  MemorySource(std::span<const std::byte> all) : left_(all) {}  // NOLINT: converts from bytes
  std::uint64_t size() const { return left_.size(); }
  bool read(void* to, std::size_t size) {
    if (size > left_.size()) return false;
    std::memcpy(to, left_.data(), size);
    left_ = left_.subspan(size);
    return true;
  }
  void toEnd() { left_ = {}; }

 private:
  std::span<const std::byte> left_;
};

template <class Source>
class FieldReader : public codec::Reading<FieldReader<Source>> {
 public:
  FieldReader(Source source, int version)
      : codec::Reading<FieldReader>(version), source_(source), size_(source_.size()), left_(size_) {}

  template <class Names, class... T>
  [[nodiscard]] bool fields(const codec::Fields<Names, T...>& f) {
    return std::apply([&](auto&... m) { return (one(m) && ...); }, f.members);
  }
  template <class Names, class M>
  [[nodiscard]] bool fieldOf(const Names&, std::size_t, M& member) {
    return one(member);
  }
  template <class Names, std::size_t N, class T>
  [[nodiscard]] bool numbers(const Names&, T (&members)[N], std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
      if (!one(members[i])) return false;
    return true;
  }
  template <class Names, class M>
  [[nodiscard]] bool indexed(const Names&, std::size_t, M& member) {
    return one(member);
  }
  template <class Names, class M>
  [[nodiscard]] bool sizedField(const Names&, M& field, std::size_t size) {
    // A field that is not complete in the file is not changed.
    return has(size) ? take(std::data(field), size) : endsHere();
  }
  bool text(std::string& to, std::uint64_t size) {
    if (size > left_) return endsHere();
    to.resize(static_cast<std::size_t>(size));
    return take(to.data(), to.size());
  }
  bool drop(std::size_t size) {
    char byte = 0;
    for (; size > 0; --size)
      if (!take(&byte, 1)) return false;
    return true;
  }
  std::uint64_t left() const { return left_; }
  bool has(std::size_t size) const { return size <= left_; }
  std::uint64_t position() const { return size_ - left_; }

 private:
  template <class M>
  bool one(M& member) {
    using Item = codec::wire::ItemOf<M>;
    if constexpr (Item::kIsRow) {
      for (auto& number : member)
        if (!one(number)) return false;
      return true;
    } else {
      std::byte stored[Item::kWidth];
      if (!take(stored, Item::kWidth)) return false;
      Item::load(member, stored);
      return true;
    }
  }
  bool take(void* to, std::size_t size) {
    if (size == 0 || !source_.read(to, size)) return endsHere();
    left_ -= size;
    return true;
  }
  // A read beyond the end consumes the rest of the file.
  bool endsHere() {
    source_.toEnd();
    left_ = 0;
    return this->fellShort();
  }

  Source source_;
  std::uint64_t size_;
  std::uint64_t left_;
};

using FreadReader = FieldReader<FileSource>;
using MemoryReader = FieldReader<MemorySource>;

}  // namespace testing_support
