// Texts of files as UTF-8 and back. Files hold bytes of a Windows or DOS code page, and do not say which.
#pragma once
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace oldtorvio::values {

// A code page. Each byte has one character and each character at most one byte, so that texts survive both ways.
class TextEncoding {
 public:
  TextEncoding();  // cp1252

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

// Appends the text in quotation marks with its control characters escaped. C1 controls and what is no UTF-8 stay as
// they are: decode texts of files with TextEncoding and names of files with fileNameAsUtf8 first.
void appendJsonString(std::string& to, std::string_view utf8);

// The name of a file, which may hold any bytes, as UTF-8: bytes that are none become U+FFFD.
std::string fileNameAsUtf8(std::string_view name);

}  // namespace oldtorvio::values
