// Files without a fault and without bytes that a load ignores.
#pragma once
#include <gtest/gtest.h>

#include <span>

#include "src/frame/file_kinds.h"
#include "tests/support/bytes.h"
#include "torvio/convert/convert.h"
#include "torvio/explain/file_map.h"

namespace testing_support {

inline bool isSound(std::span<const std::byte> bytes, oldtorvio::frame::FileKind kind) {
  const oldtorvio::explain::FileReport report = oldtorvio::explain::checkFile(bytes, kind);
  return report.endsExactly() && !report.tolerated;
}

// What a save stores after a load of the file: a load may replace values before it.
inline Bytes cleanCopy(const Bytes& file, oldtorvio::frame::FileKind kind, int version) {
  const oldtorvio::convert::Converted copy = oldtorvio::convert::convert(file.span(), kind, version, {true, "cp1252"});
  EXPECT_EQ(copy.error, "");
  return Bytes::of(copy.bytes);
}

}  // namespace testing_support
