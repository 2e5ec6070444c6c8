// Most verbs take one member: of two, one would silently be ignored.
#include "src/frame/codec/reader.h"

int main() {
  oldtorvio::codec::InStream in{std::span<const std::byte>()};
  oldtorvio::codec::Reader io(in, 180);
  char one[4] = {}, other[4] = {};
#if defined(CORRECTED)
  return io.sized(FIELDS(one), 4) && io.sized(FIELDS(other), 4) ? 0 : 1;
#else
  return io.sized(FIELDS(one, other), 4) ? 0 : 1;
#endif
}
