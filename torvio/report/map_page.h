// A map as one HTML page: bytes and fields side by side. It needs no other file, makes no connection, and shows whatever
// the file says as text.
#pragma once
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "torvio/explain/file_map.h"
#include "torvio/explain/map_fields.h"
#include "torvio/values/text_encoding.h"

namespace oldtorvio::report {

class MapPage {
 public:
  // Limits on the bytes and fields of a file, beyond which a browser would be slow.
  static constexpr std::uint64_t kLargestMiB = 16;
  static constexpr std::uint64_t kMostFields = 3'000'000;

  // The bytes must outlive this object. `fileName` may have any bytes.
  MapPage(std::string_view fileName, std::span<const std::byte> bytes, const values::TextEncoding& encoding);

  // Each line of the map, in order.
  void add(const explain::MapLine& line);
  bool hasTooManyFields() const { return fields_ > kMostFields; }

  // `kindName` is empty for a file of unknown kind.
  std::string html(std::string_view kindName, const explain::FileReport& report);

 private:
  void addRow(std::uint64_t offset, std::uint64_t size, std::string_view path, std::string_view type,
              std::string_view value);
  void remember(const std::string& beginning);

  std::string fileName_;
  std::span<const std::byte> bytes_;
  values::TextEncoding encoding_;
  std::string chunks_;    // as JSON
  std::string lastPath_;  // in the current chunk
  std::uint64_t end_ = 0;
  std::string beginnings_;  // as JSON
  std::unordered_map<std::string, std::size_t> numbers_;
  std::unordered_set<std::string> seen_;
  std::uint64_t rows_ = 0, fields_ = 0;
};

struct MapPageText {
  std::string html;     // empty if the file is too large
  std::string refusal;  // why it is too large, as a text to print after its name
  explain::FileReport report;
};
// The page of a file in memory.
MapPageText mapPage(std::string_view fileName, std::span<const std::byte> bytes, std::optional<explain::FileKind> kind,
                    const values::TextEncoding& encoding);

}  // namespace oldtorvio::report
