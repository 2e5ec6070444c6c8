// Parameter tables in their five layouts.
#pragma once
#include <algorithm>
#include <functional>
#include <memory>
#include <set>
#include <string>

#include "tests/support/stored_forms/walkers.h"

namespace testing_support {

// Of the table in a sheet, unless it has one of its own.
inline int tableVersionOf(int sheetVersion) { return sheetVersion < 60 ? 52 : sheetVersion; }

struct ParamForm {
  int version = 180;  // selects the layout
  std::int32_t nameLength = 9;
  bool writer = false;     // as a writer lays it out: there are no old layouts then
  bool checksName = true;  // what a cut leaves of an old name is checked separately
};

template <class M>
void storedParamTable(M& m, const ParamForm& form, ParamTable& t) {
  const int version = form.version;
  const bool isOld = version >= 500 && !form.writer;
  std::set<int> ints, reals, texts;
  const auto run = [](std::initializer_list<std::pair<int, int>> ranges, std::set<int>& seen, auto&& store) {
    for (const auto& [first, last] : ranges)
      for (int n = first; n <= last; ++n) {
        seen.insert(n);
        store(n);
      }
  };
  const auto integer = [&](int n) { m.number(t.intParams[n]); };
  const auto shortInteger = [&](int n) { m.template narrow<std::int16_t>(t.intParams[n]); };
  const auto real = [&](int n) { m.number(t.realParams[n]); };
  const auto single = [&](int n) { m.template narrow<float>(t.realParams[n]); };
  const auto text = [&](int n) { m.block(t.textParams[n]); };

  m.fixed(t.version, version);
  since(m, version >= 60 && !isOld, [&](auto& n) { n.block(t.title); });
  if (version == 52) {
    run({{55, 89}, {101, 125}}, ints, integer);
    run({{55, 89}, {101, 125}}, reals, real);
  } else if (isOld && version == 500) {
    const auto r = [&](int n) { run({{n, n}}, reals, single); };
    const auto i = [&](int first, int last) { run({{first, last}}, ints, shortInteger); };
    r(55), i(55, 55), r(56), r(57), i(56, 59), r(58), i(60, 63), r(59), r(60), r(61);
  } else if (isOld) {
    run({{55, 89}}, ints, shortInteger);
    if (version == 502) run({{101, 125}}, ints, shortInteger);
    run({{55, 89}}, reals, real);
    if (version == 502) run({{101, 125}}, reals, real);
  } else {
    for (auto [seen, store] :
         {std::pair<std::set<int>*, std::function<void(int)>>{&ints, integer}, {&reals, real}, {&texts, text}}) {
      run({{55, 89}, {101, 125}, {401, 500}}, *seen, store);
      if (version >= 80) run({{551, 600}}, *seen, store);
    }
  }
  since(m, !isOld, [&](auto& n) { n.fixed(t.nameLength, form.nameLength); });
  if (form.checksName) {
    const int stored = isOld ? 21 : form.nameLength;
    m.together(static_cast<std::size_t>(stored));
    for (int n = 0; n < 256; ++n) since(m, n < stored, [&](auto& o) { o.number(t.name[n]); });
  }
  // What the layout does not store.
  since(m, false, [&](auto& n) {
    for (int i = 0; i < ParamTable::kNumbers; ++i) {
      if (!ints.contains(i)) n.number(t.intParams[i]);
      if (!reals.contains(i)) n.number(t.realParams[i]);
      if (!texts.contains(i)) n.block(t.textParams[i]);
    }
  });
}

inline Bytes paramBytes(const ParamForm& form) {
  Maker m;
  const auto scratch = std::make_unique<ParamTable>();
  storedParamTable(m, form, *scratch);
  return m.bytes;
}
// A table with the values that it holds, but the version and name length of the form.
inline Bytes heldParamBytes(const ParamForm& form, const ParamTable& table) {
  const auto held = std::make_unique<ParamTable>(table);
  held->version = static_cast<std::uint16_t>(form.version);
  held->nameLength = form.nameLength;
  Maker m = Maker::ofHeldValues();
  storedParamTable(m, form, *held);
  return m.bytes;
}
// A table of zeros with that name; from version 500 on it has none.
inline Bytes zeroParamBytes(int version, const std::string& name = "") {
  const std::size_t nameSize = version >= 500 ? 0 : std::min<std::size_t>(name.size() + 1, 256);
  const auto nameLength = static_cast<std::int32_t>(nameSize);
  const std::size_t size = paramBytes({version, nameLength}).size();
  const Bytes word = Bytes().u16(static_cast<std::uint16_t>(version));
  if (version >= 500) return Bytes(word).zeros(size - 2);
  return Bytes(word).zeros(size - 2 - 4 - nameSize).i32(nameLength).text(nameSize, name);
}

}  // namespace testing_support
