// The lists of versions, and the kinds of files.
#include "src/frame/versions.h"

#include <gtest/gtest.h>

#include "src/frame/file_kinds.h"

namespace {

using namespace oldtorvio::frame;

TEST(Versions, ListsContainExactlyTheirNumbers) {
  int parts = 0, specialTools = 0;
  for (int v = -70000; v < 70000; ++v) {
    parts += kPartVersions.has(v) ? 1 : 0;
    specialTools += kSpecialToolVersions.has(v) ? 1 : 0;
  }
  EXPECT_EQ(parts, 39);
  EXPECT_EQ(specialTools, 34);
  EXPECT_TRUE(kPartVersions.has(100));
  EXPECT_FALSE(kPartVersions.has(53));
  EXPECT_FALSE(kPartVersions.has(6));
  EXPECT_FALSE(kSpecialToolVersions.has(61));
  EXPECT_FALSE(kSpecialToolVersions.has(80));
}

TEST(FileKinds, OnlySpecialToolsHaveAnExtensionOfTheirOwn) {
  for (const FileKindInfo& info : kFileKinds) {
    const bool isTool = info.kind == FileKind::specialTool;
    EXPECT_EQ(info.extension, isTool ? ".spt" : "") << info.name;
  }
}

}  // namespace
