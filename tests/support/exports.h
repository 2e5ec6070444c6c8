// The library's functions as a host finds them: by the names in the list of exports and no others.
#pragma once
#include <cstddef>
#include <string>
#include <vector>

#include "OldTorvIO.h"

namespace testing_support {

// One function, wherever it comes from, and how often it was called.
template <class Function>
class Export;

template <class Result, class... Arguments>
class Export<Result(Arguments...) noexcept> {
 public:
  using Pointer = Result (*)(Arguments...) noexcept;

  Result operator()(Arguments... arguments) const {
    ++calls_;
    return function_(arguments...);
  }
  void set(Pointer function) { function_ = function; }
  void set(void* symbol) { function_ = reinterpret_cast<Pointer>(symbol); }
  bool isSet() const { return function_ != nullptr; }
  std::size_t calls() const { return calls_; }

 private:
  Pointer function_ = nullptr;
  mutable std::size_t calls_ = 0;
};

// exports.inc has a line X(name) for each line of the list.
struct Exports {
#define X(name) Export<decltype(::name)> name;
#include "exports.inc"
#undef X

  // visit(name, function) for each.
  template <class Visit>
  void each(Visit&& visit) {
#define X(name) visit(#name, name);
#include "exports.inc"
#undef X
  }
};

inline std::vector<std::string> exportNames() {
  return {
#define X(name) #name,
#include "exports.inc"
#undef X
  };
}

}  // namespace testing_support
