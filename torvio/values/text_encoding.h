// Texts of files as UTF-8 and back. Files contain bytes of a Windows or DOS code page, and do not say of which.
#pragma once
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace oldtorvio::values {

inline constexpr std::string_view kDefaultEncoding = "cp1252";

// A code page. Each byte has one character and each character at most one byte, so that texts convert back unchanged.
class TextEncoding {
 public:
  TextEncoding();  // kDefaultEncoding

  // In the order of the help.
  static std::vector<std::string> names();
  static std::optional<TextEncoding> named(std::string_view name);

  void appendUtf8(std::string& to, std::string_view bytes) const;
  // Nothing if the text is not UTF-8 or has a character that the code page lacks.
  std::optional<std::string> bytesOf(std::string_view utf8) const;

 private:
  explicit TextEncoding(const char16_t* upper) : upper_(upper) {}

  const char16_t* upper_;  // the characters of the bytes from 0x80 on
};

// The first character of a text, and how many bytes it takes: none if the text does not begin with one in UTF-8.
struct Utf8Character {
  char32_t code = 0;
  std::size_t size = 0;
};
Utf8Character firstCharacter(std::string_view text);

// Whether a character may change what a terminal or page does with the text around it: controls, separators of lines,
// and what changes the direction of text.
bool isActive(char32_t code);
// Appends four digits, for a character below U+10000.
void appendCodeInHex(std::string& to, char32_t code);

// Appends the text in quotation marks with its active characters escaped. Bytes that are not UTF-8 stay unchanged:
// decode texts of files with TextEncoding, and names of files with fileNameAsUtf8, before.
void appendJsonString(std::string& to, std::string_view utf8);

// The name of a file, which may contain any bytes, as UTF-8: bytes that are not UTF-8 become U+FFFD.
std::string fileNameAsUtf8(std::string_view name);

// The text with control characters ("\n", "\x1b", "\u202e") and bytes that are not UTF-8 ("\xe4") escaped, so that it
// takes one line and does not affect the terminal. Backslashes are not escaped: Windows paths contain many.
std::string onOneLine(std::string_view text);

}  // namespace oldtorvio::values
