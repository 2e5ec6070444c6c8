// Which fields of a map `--find` and `--offset` choose.
#include "torvio/explain/map_filter.h"

#include <gtest/gtest.h>

namespace {

using oldtorvio::explain::MapFilter;
using oldtorvio::explain::MapLine;
using oldtorvio::explain::OffsetRange;
using oldtorvio::explain::PathPattern;
using oldtorvio::explain::StoredForm;

bool matches(std::string_view pattern, std::string_view path) {
  std::string error;
  const auto parsed = PathPattern::parsed(pattern, error);
  EXPECT_TRUE(parsed.has_value()) << pattern << ": " << error;
  return parsed && parsed->matches(path);
}

TEST(PathPatterns, MatchNamesThatFollowEachOtherAnywhereInAPath) {
  const struct {
    const char* pattern;
    const char* path;
    bool matches;
  } cases[] = {
      {"x", "shapes.shapes[3].x", true},
      {"x", "shapes.shapes[3].x1", false},
      {"x", "x.width", true},
      {"shapes", "shapes.shapes[3].x", true},
      {"shape", "shapes.shapes[3].x", false},
      {"shapes.x", "shapes.shapes[3].x", true},
      {"shapes.shapes.x", "shapes.shapes[3].x", true},
      {"shapes.shapes.shapes", "shapes.shapes[3].x", false},
      {"shapes.y", "shapes.shapes[3].x", false},
      {"shapes[3]", "shapes.shapes[3].x", true},
      {"shapes[4]", "shapes.shapes[3].x", false},
      {"shapes[3].x", "shapes.shapes[3].x", true},
      {"shapes[3].x", "shapes.shapes[13].x", false},
      {"shapes[*].x", "shapes.shapes[13].x", true},
      {"shapes[*].x", "shapes.x", false},
      {"shapes[2..5].x", "shapes.shapes[5].x", true},
      {"shapes[2..5].x", "shapes.shapes[6].x", false},
      {"shapes[6..].x", "shapes.shapes[6].x", true},
      {"shapes[..6].x", "shapes.shapes[7].x", false},
      {"words", "words[1][2]", true},
      {"words[1]", "words[1][2]", true},
      {"words[1][2]", "words[1][2]", true},
      {"words[1][3]", "words[1][2]", false},
      {"words[2]", "words[1][2]", false},
      {"words[1][2][0]", "words[1][2]", false},
      {"*Count", "tool.firstValueCount", true},
      {"*Count", "tool.firstValueCounts", false},
      {"t*l.*Value*", "tool.firstValueCount", true},
      {"val?e", "s.value", true},
      {"val?e", "s.vale", false},
      {"*", "anything", true},
      {"value*", "s.value", true},
      {"value*", "s.valu", false},
      {"parts.**.x", "parts[0].shapes.shapes[1].x", true},
      {"parts.**.x", "parts[0].x", true},
      {"parts.**.x", "shapes.x", false},
      {"parts[1].**.x", "parts[0].shapes.shapes[1].x", false},
      {"parts.**.shapes[1].**.x", "parts[0].shapes.shapes[1].x", true},
      {"**", "a", true},
      {"**.b.**", "a.b", true},
      {"**.b.**", "a.c", false},
      {"X", "x", false},
      {"x", "", false},
  };
  for (const auto& one : cases)
    EXPECT_EQ(matches(one.pattern, one.path), one.matches) << one.pattern << ' ' << one.path;
}

TEST(PathPatterns, AreRefusedWithAReason) {
  for (const char* text :
       {"", ".", "a.", ".a", "a..b", "[1]", "a[", "a[]", "a[x]", "a[1", "a]", "a[1]b", "a[2..1]", "a[-1]", "a[1.2]"}) {
    std::string error;
    const auto pattern = PathPattern::parsed(text, error);
    EXPECT_FALSE(pattern.has_value()) << text;
    EXPECT_FALSE(error.empty()) << text;
  }
}

TEST(MapFilters, ChooseALineOfABlockByAnyOfItsFields) {
  const StoredForm four{StoredForm::Kind::number, "f32", 4, nullptr};
  const StoredForm forms[] = {four, four};
  const MapLine line{20, 8, "origin.x, y", "1 2", forms, 7};
  const auto accepts = [&](const char* path, std::optional<OffsetRange> range) {
    MapFilter filter;
    std::string error;
    if (path != nullptr) filter.path = PathPattern::parsed(path, error);
    filter.range = range;
    return filter.accepts(line);
  };
  EXPECT_TRUE(accepts(nullptr, std::nullopt));
  EXPECT_TRUE(accepts("x", std::nullopt));
  EXPECT_TRUE(accepts("origin.y", std::nullopt));
  EXPECT_FALSE(accepts("z", std::nullopt));
  EXPECT_TRUE(accepts("y", OffsetRange{24, 24}));
  EXPECT_FALSE(accepts("y", OffsetRange{23, 23})) << "that byte belongs to x";
  EXPECT_FALSE(accepts(nullptr, OffsetRange{28, 30}));
}

TEST(MapFilters, ARemarkIsChosenByItsPlaceAndPath) {
  MapLine remark;
  remark.offset = 20;
  remark.path = "shapes.shapes[3]";
  MapFilter filter;
  std::string error;
  filter.path = PathPattern::parsed("shapes", error);
  EXPECT_TRUE(filter.accepts(remark));
  filter.path = PathPattern::parsed("marks", error);
  EXPECT_FALSE(filter.accepts(remark));
}

}  // namespace
