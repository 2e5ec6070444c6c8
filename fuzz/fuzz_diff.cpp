// Comparisons: of any two files, also damaged ones. A file is the same as itself, and B compared with A has the
// differences of A compared with B.
//
// An input has a byte for the kinds, two for the size of A, A and B.
#include <algorithm>
#include <string>
#include <vector>

#include "fuzz/fuzz_checks.h"
#include "torvio/compare/diff.h"
#include "torvio/values/text_encoding.h"

using namespace oldtorvio;
using compare::Difference;

namespace {

struct Compared {
  compare::FileDifferences found;
  std::vector<Difference> all;
};

Compared compared(const compare::FileToCompare& a, const compare::FileToCompare& b) {
  Compared result;
  const compare::DiffOptions options;
  result.found = compare::diffFiles(a, b, options, [&](const Difference& one) {
    result.all.push_back(one);
    return true;
  });
  for (const Difference& one : result.all) {
    for (const std::string* text : {&one.pathInA, &one.pathInB, &one.a, &one.b, &one.name})
      fuzzing::expect(values::onOneLine(*text) == *text);
    fuzzing::expect(one.change != Difference::Change::onlyInA || one.pathInB.empty());
    fuzzing::expect(one.change != Difference::Change::onlyInB || one.pathInA.empty());
  }
  if (result.found.error.empty()) {
    fuzzing::expect(result.found.differences == result.all.size());
    fuzzing::expect(result.found.areSame == result.all.empty());
  }
  return result;
}

frame::FileKind kindOf(unsigned number) { return frame::kFileKinds[number % frame::kFileKinds.size()].kind; }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 3) return 0;
  const fuzzing::Bytes files = fuzzing::bytesOf(data + 3, size - 3);
  const std::size_t sizeOfA = std::min<std::size_t>(data[1] | static_cast<unsigned>(data[2]) << 8U, files.size());
  // Mostly of one kind.
  const unsigned first = data[0] & 7U, second = first ^ (data[0] >> 3U & 7U);
  const compare::FileToCompare a{files.first(sizeOfA), kindOf(first), {}, {}};
  const compare::FileToCompare b{files.subspan(sizeOfA), kindOf(second), {}, {}};

  for (const compare::FileToCompare* one : {&a, &b}) {
    const Compared same = compared(*one, *one);
    fuzzing::expect(!same.found.error.empty() || same.found.areSame);
  }
  const Compared forth = compared(a, b), back = compared(b, a);
  fuzzing::expect(forth.found.error.empty() == back.found.error.empty());
  if (!forth.found.error.empty()) return 0;
  fuzzing::expect(forth.found.areSame == back.found.areSame);
  fuzzing::expect(forth.found.a.status == back.found.b.status && forth.found.b.status == back.found.a.status);
  return 0;
}
