// A verb whose answer is dropped would let a chain run on behind a failure.
#include "src/frame/reader.h"

int main() {
  oldtorvio::frame::InStream in{std::span<const std::byte>()};
  oldtorvio::frame::Reader io(in, 180);
  int value = 0;
#if defined(MENDED)
  return io.fields(F(value)) ? 0 : 1;
#else
  io.fields(F(value));
  return 0;
#endif
}
