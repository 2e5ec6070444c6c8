// Help texts: their lines on a terminal, and their parts for manual pages.
#include "torvio/cli/help_text.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace torvio;

TEST(HelpText, LinesEndBetweenWords) {
  EXPECT_EQ(inLines("one two three", 80), "one two three");
  EXPECT_EQ(inLines("one two three", 7), "one two\nthree");
  EXPECT_EQ(inLines("one two three", 8), "one two\nthree");
  EXPECT_EQ(inLines("one two three", 3), "one\ntwo\nthree");
  EXPECT_EQ(inLines("one\ntwo three", 7), "one\ntwo\nthree");
  EXPECT_EQ(inLines("", 7), "");
}

TEST(HelpText, HasSectionsParagraphsAndEntries) {
  const auto sections = helpSections(
      "A paragraph\nof two lines.\nNames: a, b,\n  c\n  term one  its text,\n    more of it\n  term two\n      "
      "below\n\n"
      "Examples:\n  torvio x\n      Do it.\n\nThe end.\n\nExit code:\n  0  fine\n  1  not\nAnd more.");
  ASSERT_EQ(sections.size(), 3U);
  const auto textOf = [](const HelpSection& section) {
    std::string text = section.title;
    for (const HelpPart& part : section.parts) text += (part.term.empty() ? "|" : "[" + part.term + "]") + part.text;
    return text;
  };
  EXPECT_EQ(textOf(sections[0]),
            "|A paragraph of two lines.|Names: a, b, c[term one]its text, more of it[term two]below|The end.");
  EXPECT_EQ(textOf(sections[1]), "Examples[torvio x]Do it.");
  EXPECT_EQ(textOf(sections[2]), "Exit code[0]fine[1]not|And more.");
}

}  // namespace
