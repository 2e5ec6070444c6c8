// A list verb takes one list: naming two would silently leave one out.
#include "src/frame/reader.h"

int main() {
  oldtorvio::frame::InStream in{std::span<const std::byte>()};
  oldtorvio::frame::Reader io(in, 180);
  std::vector<std::uint32_t> one, other;
#if defined(MENDED)
  return io.countFirst(F(one)) && io.countFirst(F(other)) ? 0 : 1;
#else
  return io.countFirst(F(one, other)) ? 0 : 1;
#endif
}
