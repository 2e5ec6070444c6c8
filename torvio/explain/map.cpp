#include "torvio/explain/map.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>

namespace oldtorvio::explain {
namespace {

// "block(r.x, r.y)" and "as<T>(r.kind)" name what is in their parentheses; "r.x" names "x".
std::string nameOf(std::string_view one) {
  one.remove_prefix(std::min(one.find_first_not_of(' '), one.size()));
  if (const auto open = one.find('('); open != std::string_view::npos) {
    std::string all;
    for (const std::string& inner : fieldNames(one.substr(open + 1, one.rfind(')') - open - 1)))
      all.append(all.empty() ? "" : ", ").append(inner);
    return all;
  }
  if (const auto dot = one.find('.'); dot != std::string_view::npos) one.remove_prefix(dot + 1);
  return std::string(one);
}

template <class T>
void printShortest(std::string& to, T value) {
  char digits[64];
  to.append(digits, std::to_chars(std::begin(digits), std::end(digits), value).ptr);
}

// Standard libraries print NaNs differently: "-nan" is also "-nan(snan)" or "-nan(ind)".
template <class T>
void printReal(std::string& to, T value) {
  if (std::isnan(value))
    to += std::signbit(value) ? "-nan" : "nan";
  else
    printShortest(to, value);
}

// "1 byte", "2 bytes".
std::string plural(std::uint64_t count, const char* what) {
  return std::to_string(count) + ' ' + what + (count == 1 ? "" : "s");
}

void printHex(std::string& to, unsigned value) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  to += kDigits[(value >> 4U) & 0xFU];
  to += kDigits[value & 0xFU];
}

// "01 x 10000, 00 x 30000": long blocks are mostly runs.
void printRuns(std::string& to, const std::uint8_t* bytes, std::size_t width) {
  for (std::size_t i = 0; i < width;) {
    std::size_t end = i + 1;
    while (end < width && bytes[end] == bytes[i]) ++end;
    if (i > 0) to += ", ";
    printHex(to, bytes[i]);
    if (end - i > 1) to.append(" x ").append(std::to_string(end - i));
    i = end;
  }
}

void printStored(std::string& to, const StoredForm& form, const std::byte* from, std::size_t size) {
  if (form.kind == StoredForm::Kind::text)
    printText(to, reinterpret_cast<const char*>(from), size);
  else if (form.kind == StoredForm::Kind::bytes)
    printBytes(to, reinterpret_cast<const std::uint8_t*>(from), size);
  else
    form.print(to, from);
}

}  // namespace

std::vector<std::string> fieldNames(std::string_view stringised) {
  std::vector<std::string> names;
  int depth = 0;
  std::size_t from = 0;
  for (std::size_t i = 0; i <= stringised.size(); ++i) {
    const char c = i < stringised.size() ? stringised[i] : ',';
    if (c == '(' || c == '<' || c == '[') ++depth;
    if (c == ')' || c == '>' || c == ']') --depth;
    if (c != ',' || depth != 0) continue;
    names.push_back(nameOf(stringised.substr(from, i - from)));
    from = i + 1;
  }
  return names;
}

void printValue(std::string& to, std::int64_t value) { printShortest(to, value); }
void printValue(std::string& to, float value) { printReal(to, value); }
void printValue(std::string& to, double value) { printReal(to, value); }

void printText(std::string& to, const char* field, std::size_t width) {
  std::size_t length = 0;
  while (length < width && field[length] != '\0') ++length;
  to += '"';
  for (std::size_t i = 0; i < length; ++i) {
    const auto c = static_cast<unsigned char>(field[i]);
    if (c == '"' || c == '\\') to += '\\';
    if (c < 0x20 || c >= 0x7F) {
      to += "\\x";
      printHex(to, c);
    } else {
      to += static_cast<char>(c);
    }
  }
  to += '"';
  if (length == width) to += " (no NUL)";
  std::size_t leftover = 0;
  for (std::size_t i = length; i < width; ++i) leftover += field[i] != '\0' ? 1U : 0U;
  if (leftover > 0) to.append(" (").append(plural(leftover, "nonzero byte")).append(" after the NUL)");
}

void printBytes(std::string& to, const std::uint8_t* bytes, std::size_t width) {
  constexpr std::size_t kPlain = 64;
  if (width > kPlain) return printRuns(to, bytes, width);
  for (std::size_t i = 0; i < width; ++i) {
    if (i > 0) to += ' ';
    printHex(to, bytes[i]);
  }
}

bool Mapper::text(std::string& to, std::uint64_t size) {
  const std::uint64_t at = in_.position();
  if (!in_.append(to, size)) {
    endsHere({"text"}, size);
    return false;
  }
  if (!isReported(at)) return true;
  std::string value;
  printText(value, to.data(), to.size());
  report(size, {"text"}, std::move(value), kText);
  return true;
}

bool Mapper::drop(std::size_t size) {
  const std::uint64_t at = in_.position();
  if (!in_.skip(size)) {
    endsHere({"reserved"}, size);
    return false;
  }
  static constexpr StoredForm kReserved;
  if (isReported(at)) report(size, {"reserved"}, "(dropped)", {&kReserved, 1});
  return true;
}

const std::byte* Mapper::field(const Name& name, std::size_t size, std::span<const StoredForm> forms) {
  const std::uint64_t at = in_.position();
  const std::byte* const from = in_.run(size);
  if (from == nullptr) {
    endsHere(name, size);
    return nullptr;
  }
  in_.consume(size);
  if (!isReported(at)) return from;
  std::string value;
  const std::byte* next = from;
  for (const StoredForm& form : forms) {
    if (!value.empty()) value += ' ';
    printStored(value, form, next, form.size > 0 ? form.size : size);
    next += form.size;
  }
  report(size, name, std::move(value), forms);
  return from;
}

void Mapper::endsHere(const Name& name, std::uint64_t size) {
  fault_ = Fault{in_.position(), pathOf(name),
                 "needs " + plural(size, "byte") + ", the file has " + std::to_string(in_.left())};
  in_.toEnd();
  (void)fellShort();
}

bool Mapper::isReported(std::uint64_t offset) {
  lastOffset_ = offset;
  if (in_.position() > offset) walked_ = in_.position();
  return sink_ != nullptr && wanted_.overlaps(offset, in_.position() - offset);
}

void Mapper::report(std::uint64_t size, const Name& name, std::string value, std::span<const StoredForm> forms) {
  sink_({lastOffset_, size, pathOf(name), std::move(value), forms, path().size()});
}

void Mapper::refusedHere() {
  fault_ = Fault{in_.position(), pathOf({kRest.data()}), "is not read in a file of this version"};
}

void Mapper::forgiven() {
  if (!fault_) return;
  remark("fails at " + fault_->path + " (" + fault_->reason + "), which is tolerated there");
  if (!tolerated_) tolerated_ = fault_;
  fault_.reset();
}

void Mapper::remark(std::string text) {
  if (sink_ == nullptr) return;
  const std::string_view around = path();
  sink_({in_.position(), 0, std::string(around.substr(0, around.size() - (around.empty() ? 0 : 1))), std::move(text)});
}

void Mapper::leave() {
  row_ = levels_.back().row;
  levels_.pop_back();
  if (named_ <= levels_.size()) return;
  named_ = levels_.size();
  path_.resize(levels_.empty() ? 0 : levels_.back().pathSize);
}

const std::string& Mapper::path() {
  for (; named_ < levels_.size(); ++named_) {
    Level& next = levels_[named_];
    appendName(path_, next.name, next.row);
    path_ += '.';
    next.pathSize = path_.size();
  }
  return path_;
}

std::string Mapper::pathOf(const Name& name) {
  std::string path = this->path();
  appendName(path, name, row_);
  return path;
}

// "itself" is an element without fields of its own, "[i]" the current row.
void Mapper::appendName(std::string& path, const Name& name, std::int64_t row) {
  const std::string& text = names_.of(name.names)[name.at];
  if (text == "itself") return path.pop_back();
  const std::size_t from = path.size();
  path += text;
  if (const auto at = path.find("[i]", from); at != std::string::npos) path.replace(at + 1, 1, std::to_string(row));
  if (name.index >= 0) path.append("[").append(std::to_string(name.index)).append("]");
}

}  // namespace oldtorvio::explain
