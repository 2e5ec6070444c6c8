// What all pictures have in common: a head with the facts, a drawing to scale, tables, a key and notes.
#pragma once
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "OldTorvIO/fixed_text.h"
#include "OldTorvIO/machine_parts.h"
#include "OldTorvIO/tool_station.h"
#include "torvio/draw/svg.h"
#include "torvio/explain/read_members.h"
#include "torvio/values/text_encoding.h"

namespace oldtorvio::draw {

// The file that a picture shows. All texts are UTF-8.
struct FileNote {
  std::string name;           // without its folder
  std::string kind;           // "sheet, version 180"
  std::string fault;          // why not all of the file could be read; empty for a sound file
  explain::ReadMembers read;  // what was read
  // Why the fault does not mean damage, or what a load tolerated.
  bool isUnreadVersion = false;
  std::string tolerated = {};
};

struct PictureOptions {
  values::TextEncoding encoding;
  // Begins the identifiers in the picture: several pictures on one page need different ones.
  std::string idPrefix = "p";
  bool isInline = false;  // part of a page: without an XML declaration
};

inline constexpr const char *kInk = "#1f2933", *kMuted = "#5b6875", *kRule = "#c5cdd5", *kPaper = "#fcfbf8",
                            *kPlate = "#e8ebee", *kPart = "#dbe5ee", *kHole = "#ffffff", *kAccent = "#a3420b";
// Colours light enough for dark text; neighbours also differ in grey.
const char* partColour(std::size_t index);

inline constexpr double kPictureWidth = 1400, kMargin = 50, kContentWidth = kPictureWidth - 2 * kMargin;

// Length units to coordinates: y points up in files and down in SVG.
struct View {
  double left = 0, bottom = 0;  // length units at the lower left corner of the drawing
  double scale = 1;
  Point corner;  // coordinates of that corner
  Point at(double x, double y) const { return {corner.x + (x - left) * scale, corner.y - (y - bottom) * scale}; }
};

// Keeps texts from overlapping.
class LabelSpace {
 public:
  // Returns false and claims nothing if one of the boxes overlaps one claimed before.
  bool claim(const std::vector<Box>& boxes);

 private:
  static constexpr double kCell = 48;
  template <class Use>
  static void forCells(const Box& box, Use&& use);
  bool isFree(const Box& box) const;

  std::map<std::pair<int, int>, std::vector<Box>> cells_;
};

class Picture {
 public:
  Picture(FileNote file, const PictureOptions& options) : file_(std::move(file)), options_(options) {}

  std::string decoded(std::string_view bytes) const {
    std::string text;
    options_.encoding.appendUtf8(text, bytes);
    return text;
  }
  template <std::size_t N>
  std::string decoded(const char (&field)[N]) const {
    return decoded(fixedText(field));
  }
  std::string id(std::string_view name) const { return options_.idPrefix + std::string(name); }

  // Call these two before head().
  void title(std::string_view utf8) { title_ = utf8; }
  void fact(std::string_view name, std::string_view value);  // an empty value is left out
  // Draws the title, the facts and, for a damaged file, why it is not complete. The drawing comes below.
  void head();

  Svg& svg() { return svg_; }
  double y() const { return y_; }
  void moveTo(double y) { y_ = y; }

  // A view of the world in an area at the current position, centred and as large as fits. Moves below it.
  View fit(const Box& world, double left, double top, double right, double bottom, double mostHeight);
  // Draws the size of a rectangle above and to the left of it.
  void dimensions(const Box& drawn, double width, double height);
  // Draws a bar of a round length. Moves below it.
  void scaleBar(const View& view);
  // Draws the directions of x and y at the corner of a rectangle.
  void axes(Point corner);
  void clamps(const View& view, const float (&positions)[8], std::int32_t count, const Box& plate, std::string_view of);

  void heading(std::string_view utf8);
  // Adds the meaning of a mark to the key: `mark` draws it into a box.
  template <class Mark>
  void key(std::string_view utf8, Mark&& mark) {
    Svg icon;
    mark(icon, Box{0, 0, 26, 16});
    keys_.emplace_back(icon.take(), utf8);
  }
  void assume(std::string_view utf8) { assumed_.emplace_back(utf8); }
  void leaveOut(std::string_view utf8) { leftOut_.emplace_back(utf8); }
  // "3 parts, drawn: ...": nothing for 0.
  void leaveOut(std::uint64_t count, std::string_view one, std::string_view many, std::string_view why);

  // Draws the key and the notes, and returns the complete picture.
  std::string take();

 private:
  double notes(const std::vector<std::string>& lines, std::string_view caption, double x, double y, double width);

  FileNote file_;
  const PictureOptions& options_;
  std::string title_, description_;
  std::vector<std::pair<std::string, std::string>> facts_;
  std::vector<std::pair<std::string, std::string>> keys_;
  std::vector<std::string> assumed_, leftOut_;
  Svg svg_;
  double y_ = kMargin;
};

// A grid of the stations that hold a tool with its outline, all to one scale. `uses` counts the shapes of each station.
void stationTable(Picture& picture, const ToolStationList& list, bool (*holdsTool)(const ToolStation&, const OldTool&),
                  const std::vector<std::uint64_t>* uses);

// "96 x 48".
std::string sizesText(double width, double height);
inline bool isLength(float value) { return value > 0 && value <= 3.4e38F; }

}  // namespace oldtorvio::draw
