// A list verb takes one list: of two, one would silently be ignored.
#include "src/frame/codec/reader.h"

int main() {
  oldtorvio::codec::InStream in{std::span<const std::byte>()};
  oldtorvio::codec::Reader io(in, 180);
  std::vector<std::uint32_t> one, other;
#if defined(CORRECTED)
  return io.countFirst(FIELDS(one)) && io.countFirst(FIELDS(other)) ? 0 : 1;
#else
  return io.countFirst(FIELDS(one, other)) ? 0 : 1;
#endif
}
