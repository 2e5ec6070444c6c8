// Records with anything that they can hold, whether or not files store it.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <random>

#include "torvio/values/all_members.h"

namespace testing_support {

namespace values = oldtorvio::values;

class AnyContent {
 public:
  explicit AnyContent(std::uint32_t seed) : engine_(seed) {}

  template <class T>
  void fill(T& value) {
    if constexpr (values::Number<T>) {
      const std::uint64_t bits = chance(3) ? engine_() | static_cast<std::uint64_t>(engine_()) << 32U : engine_() % 100;
      std::memcpy(&value, &bits, sizeof value);
    } else if constexpr (values::FixedText<T>) {
      // Full of them, or with a NUL somewhere and then zeros or anything.
      const std::size_t size = std::size(value), nul = engine_() % (size + 1);
      const bool isDirty = chance(3);
      for (std::size_t i = 0; i < size; ++i) value[i] = i < nul || isDirty ? any() : '\0';
      if (nul < size) value[nul] = '\0';
    } else if constexpr (values::Text<T>) {
      value.clear();
      for (std::size_t n = engine_() % 20; n > 0; --n) value += any();
    } else if constexpr (values::Array<T>) {
      const bool isEmpty = chance(3);
      for (auto& element : value)
        if (!isEmpty || chance(50)) fill(element);
    } else if constexpr (values::kIsPair<T>) {
      fill(value.first);
      fill(value.second);
    } else if constexpr (values::List<T>) {
      value.clear();
      for (std::size_t n = engine_() % 3; n > 0; --n) fill(value.emplace_back());
    } else if constexpr (values::Lazy<T>) {
      if (chance(2)) fill(value[engine_() % T::size()]);
      if (chance(2)) (void)value[engine_() % T::size()];
    } else {
      values::Members<T>::of(value, [this](const values::MemberInfo&, auto& member) { this->fill(member); });
    }
  }

 private:
  bool chance(unsigned one) { return engine_() % one == 0; }
  char any() { return static_cast<char>(1 + engine_() % 255); }

  std::mt19937 engine_;
};

}  // namespace testing_support
