// A verb whose result is discarded would let a chain continue after a failure.
#include "src/frame/codec/reader.h"

int main() {
  oldtorvio::codec::InStream in{std::span<const std::byte>()};
  oldtorvio::codec::Reader io(in, 180);
  int value = 0;
#if defined(CORRECTED)
  return io.fields(FIELDS(value)) ? 0 : 1;
#else
  io.fields(FIELDS(value));
  return 0;
#endif
}
