// Texts of files as UTF-8, and file names and texts in JSON.
#include "torvio/values/text_encoding.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

using oldtorvio::values::TextEncoding;

TEST(TextEncodings, EveryByteHasOneCharacterAndComesBackExactly) {
  ASSERT_GE(TextEncoding::names().size(), 5U);
  for (const std::string& name : TextEncoding::names()) {
    const auto encoding = TextEncoding::named(name);
    ASSERT_TRUE(encoding) << name;
    std::set<std::string> characters;
    for (int byte = 0; byte < 256; ++byte) {
      const std::string one(1, static_cast<char>(byte));
      std::string utf8;
      encoding->appendUtf8(utf8, one);
      EXPECT_EQ(encoding->bytesOf(utf8), one) << name << ' ' << byte;
      EXPECT_EQ(oldtorvio::values::fileNameAsUtf8(utf8), utf8) << name << ' ' << byte;
      characters.insert(utf8);
    }
    EXPECT_EQ(characters.size(), 256U) << name;
  }
}

TEST(TextEncodings, BytesHaveTheCharactersOfTheirCodePage) {
  const struct {
    const char* encoding;
    const char* bytes;
    const char* utf8;
  } cases[] = {{"cp1252", "\x80 \xE4\xD6", "\u20AC \u00E4\u00D6"},
               {"cp1250", "\xB3\x9C", "\u0142\u015B"},
               {"cp1251", "\xC6\xE8", "\u0416\u0438"},
               {"cp437", "\x84\xE1", "\u00E4\u00DF"},
               {"latin1", "\x80\xFC", "\u0080\u00FC"},
               {"cp1252", "\x81", "\u0081"}};
  for (const auto& one : cases) {
    std::string utf8;
    TextEncoding::named(one.encoding)->appendUtf8(utf8, one.bytes);
    EXPECT_EQ(utf8, one.utf8) << one.encoding;
  }
  std::string utf8;
  TextEncoding().appendUtf8(utf8, "\x80");
  EXPECT_EQ(utf8, "\u20AC");
}

TEST(TextEncodings, CharactersThatACodePageLacksAreRefused) {
  for (const char* utf8 : {"\u0416", "a\u0142", "\U0001F600", "\x80", "\xC3", "\xE2\x82", "\xC0\x80", "\xE0\x80\x80"})
    EXPECT_EQ(TextEncoding().bytesOf(utf8), std::nullopt) << utf8;
  EXPECT_EQ(TextEncoding().bytesOf(""), "");
}

TEST(JsonStrings, ControlCharactersQuotesAndBackslashesAreEscaped) {
  std::string json;
  oldtorvio::values::appendJsonString(json, std::string("a\"b\\c\n\t\r\x1b\x7f\0d\u00E4", 14));
  EXPECT_EQ(json, "\"a\\\"b\\\\c\\n\\t\\r\\u001b\\u007f\\u0000d\u00E4\"");
}

TEST(FileNames, BytesThatAreNotUtf8AreReplaced) {
  const struct {
    const char* name;
    const char* utf8;
  } cases[] = {{"plain", "plain"},
               {"\u00E4\u20AC\U0001F600", "\u00E4\u20AC\U0001F600"},
               {"a\xE4", "a\uFFFD"},
               {"\xF0\x9F\x98", "\uFFFD\uFFFD\uFFFD"},
               {"\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD"},
               {"\xF0\x80\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"},
               {"\xF4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD"},
               {"\xFF\xFEz", "\uFFFD\uFFFDz"}};
  for (const auto& one : cases) EXPECT_EQ(oldtorvio::values::fileNameAsUtf8(one.name), one.utf8);
}

}  // namespace
