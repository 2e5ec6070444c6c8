// SVG elements as text: numbers without a locale, escaped texts, tags that always match.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace oldtorvio::draw {

struct Point {
  double x = 0, y = 0;
};

// Coordinates of SVG: y points down.
struct Box {
  double x = 0, y = 0, width = 0, height = 0;
  double right() const { return x + width; }
  double bottom() const { return y + height; }
};

// At most two digits after the point, never an exponent; values that are not numbers or exceed a million become the
// nearest coordinate that every viewer accepts.
void appendCoordinate(std::string& to, double value);
// For people: six significant digits, or nine of a long number: "10.5", "1e+30"; "?" for any value that is not finite.
std::string sizeText(double value);
// "1,234,567".
std::string countText(std::uint64_t count);
// "1 part", "1,234 parts".
std::string countText(std::uint64_t count, std::string_view one, std::string_view many);

// UTF-8 as content or attribute of XML and HTML: markup is escaped; controls, marks that change the direction of
// text, and what XML does not allow become U+FFFD.
void appendEscaped(std::string& to, std::string_view utf8);
std::string escaped(std::string_view utf8);

// The largest width of a text in the usual sans-serif fonts, from built-in tables: no font is read.
double textWidth(std::string_view utf8, double fontSize, bool isBold = false);
// The text, shortened with an ellipsis if it is wider; empty if not even one character fits.
std::string shortened(std::string_view utf8, double width, double fontSize, bool isBold = false);
// The text in lines of at most that width.
std::vector<std::string> inLines(std::string_view utf8, double width, double fontSize);

// Writes elements. Every element that was opened is closed, by take() at the latest.
class Svg {
 public:
  Svg& open(const char* element);
  // Sets an attribute of the element opened last, before it has content.
  Svg& set(std::string_view attribute, double value);
  Svg& set(std::string_view attribute, std::string_view utf8);
  Svg& content(std::string_view utf8);
  // Complete elements, as another Svg has written them.
  Svg& raw(std::string_view elements);
  Svg& close();

  Svg& rect(const Box& box);  // left open for more attributes
  Svg& line(Point from, Point to);
  Svg& path(std::string_view data);
  struct TextStyle {
    double size = 13;
    const char* fill = "#1f2933";
    const char* anchor = "start";
    bool isBold = false;
    double turn = 0;  // in degrees, about the position of the text
  };
  // A complete element. `at` is the base line.
  Svg& text(Point at, std::string_view utf8, const TextStyle& style);

  std::size_t size() const { return text_.size(); }
  std::string take();

 private:
  void endTag();

  std::string text_;
  std::vector<const char*> elements_;
  bool isTagOpen_ = false;
};

// Path data.
class Path {
 public:
  Path& move(Point to) { return add('M', to); }
  Path& line(Point to) { return add('L', to); }
  // A circular arc in the direction of increasing angles on paper (y up).
  Path& arc(double radius, bool isLarge, Point to);
  Path& close();
  bool empty() const { return data_.empty(); }
  const std::string& data() const { return data_; }

 private:
  Path& add(char command, Point to);
  std::string data_;
};

}  // namespace oldtorvio::draw
