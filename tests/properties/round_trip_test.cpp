// Random content of every kind at every version: what is saved loads, and saves as the same bytes.
// The short form runs in every build; OLDTORVIO_LONG_TESTS=1 takes a hundred times the content.
#include <gtest/gtest.h>

#include <memory>

#include "OldTorvIO.h"
#include "src/frame/codec/writer.h"
#include "src/part/part_io.h"
#include "src/part/part_layout.h"
#include "src/tooling/special_tool_io.h"
#include "src/tooling/special_tool_layout.h"
#include "tests/support/files.h"
#include "tests/support/long_tests.h"
#include "tests/support/random_records.h"
#include "tests/support/stored_forms/versions.h"

namespace {

using namespace oldtorvio;
using namespace testing_support;

int rounds() { return isLongRun() ? 500 : 5; }

TEST(RoundTrip, PartsInBothFormsAtEveryVersion) {
  for (int round = 0; round < rounds(); ++round)
    for (const int version : allVersions())
      for (const bool embedded : {false, true}) {
        RandomRecords random(static_cast<std::uint32_t>(round * 1000 + version));
        const auto made = random.newRecord<TorvPart>(version);
        const Bytes stored = written([&](auto& s) { return WritePartBody(s, version, embedded, *made); });
        const auto loaded = std::make_unique<TorvPart>();
        std::size_t consumed = 0;
        ASSERT_EQ(readFrom(
                      stored, [&](auto& s) { return ReadPartBody(s, version, embedded, *loaded); }, &consumed),
                  0);
        ASSERT_EQ(consumed, stored.size());
        ASSERT_EQ(written([&](auto& s) { return WritePartBody(s, version, embedded, *loaded); }), stored) << version;
      }
}

TEST(RoundTrip, GroupPartFilesAtEveryVersion) {
  const TempFolder folder;
  for (int round = 0; round < rounds(); ++round)
    for (int version = 152; version <= kLastVersion; ++version) {
      RandomRecords random(static_cast<std::uint32_t>(round * 1000 + version));
      SheetPartList made;
      random.record(made, version, 1 + random.upTo(2));
      const std::string first = folder.path("first"), second = folder.path("second");
      const std::int32_t nameSize = 1 + random.upTo(255);
      ASSERT_EQ(SaveGroupPart(first.c_str(), made, version, nameSize), 0);
      SheetPartList loaded;
      ASSERT_EQ(LoadGroupPart(first.c_str(), &loaded), 0);
      ASSERT_EQ(SaveGroupPart(second.c_str(), loaded, version, nameSize), 0);
      ASSERT_EQ(TempFolder::read(second), TempFolder::read(first));
    }
}

TEST(RoundTrip, SpecialToolFilesAtEveryVersion) {
  for (int round = 0; round < 10 * rounds(); ++round)
    for (const int version : allVersions()) {
      RandomRecords random(static_cast<std::uint32_t>(round * 1000 + version));
      OldSpecialTool made, loaded;
      random.record(made, version);
      const Bytes stored = written([&](auto& s) { return WriteSpecialTool(s, version, made); });
      ASSERT_EQ(readFrom(stored, [&](auto& s) { return ReadSpecialTool(s, version, loaded); }), 0);
      const Bytes again = written([&](auto& s) { return WriteSpecialTool(s, version, loaded); });
      ASSERT_EQ(again, stored);
    }
}

// ---- minimum stored sizes ------------------------------------------------------------------------

template <class Record, class... More>
void expectAtLeastMinStoredSize(const char* name, const More&... more) {
  const auto record = std::make_unique<Record>();
  const Bytes stored = written([&](auto& s) { return codec::writeRecord(s, 52, *record, more...); });
  EXPECT_GE(stored.size(), codec::Layout<Record>::kMinStoredSize) << name;
}

TEST(MinStoredSize, NoRecordIsStoredShorterThanIt) {
  expectAtLeastMinStoredSize<OldTool>("tool", false);
  expectAtLeastMinStoredSize<ToolStation>("station");
  expectAtLeastMinStoredSize<ProcessSlot>("slot");
  expectAtLeastMinStoredSize<SetupEntry>("setup entry");
  expectAtLeastMinStoredSize<ProfileRecord>("profile");
  expectAtLeastMinStoredSize<PatternItem>("item");
  expectAtLeastMinStoredSize<WorkEntry>("work");
  expectAtLeastMinStoredSize<MarkEntry>("mark");
  expectAtLeastMinStoredSize<Pattern>("pattern", true);
  expectAtLeastMinStoredSize<PlacedShapeList>("placed shapes");
  expectAtLeastMinStoredSize<ContourGroup>("contour group");
  expectAtLeastMinStoredSize<BindingSet>("binding set");
  expectAtLeastMinStoredSize<TorvPart>("part", PartForm{PartForm::sheet});
  const auto atLeast = [](const auto& record, int version, const auto&... more) {
    using Form = codec::Layout<std::remove_cvref_t<decltype(record)>>;
    const Bytes stored = written([&](auto& s) { return codec::writeRecord(s, version, record, more...); });
    EXPECT_GE(stored.size(), Form::minStoredSize(version)) << version;
    EXPECT_GE(Form::minStoredSize(version), Form::kMinStoredSize) << version;
  };
  for (int version = 52; version <= kLastVersion; ++version) {
    atLeast(TorvPart(), version, PartForm{PartForm::sheet});
    atLeast(Pattern(), version, true);
    atLeast(ProfileRecord(), version);
  }
  Shape smallest;
  smallest.valueCount = smallest.extraCount = 0;
  EXPECT_EQ(written([&](auto& s) { return codec::writeRecord(s, 52, smallest); }).size(),
            codec::Layout<Shape>::kMinStoredSize);
  // A step table may end before its count.
  EXPECT_EQ(codec::Layout<StepTable>::kMinStoredSize, 20U);
}

}  // namespace
