// A list that leaves out a member must not compile where it is used, however small the member is.
#include "torvio/values/equal.h"

namespace oldtorvio {

struct Small {
  std::uint8_t first = 0, forgotten = 0;
  std::uint32_t last = 0;
};

namespace values {
#if defined(CORRECTED)
MEMBERS(Small, first, forgotten, last);
#else
MEMBERS(Small, first, last);
#endif
}  // namespace values

}  // namespace oldtorvio

int main() { return oldtorvio::Small() == oldtorvio::Small() ? 0 : 1; }
