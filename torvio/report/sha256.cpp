#include "torvio/report/sha256.h"

#include <algorithm>
#include <bit>
#include <string_view>
#include <vector>

namespace oldtorvio::report {
namespace {

constexpr std::size_t kBlock = 64;

// FIPS 180-4: the fractions of the cube roots of the first 64 primes.
constexpr std::array<std::uint32_t, kBlock> kRounds{
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

std::uint32_t bigEndianAt(const std::byte* from) {
  return std::to_integer<std::uint32_t>(from[0]) << 24U | std::to_integer<std::uint32_t>(from[1]) << 16U |
         std::to_integer<std::uint32_t>(from[2]) << 8U | std::to_integer<std::uint32_t>(from[3]);
}

void mix(std::array<std::uint32_t, 8>& state, const std::byte* block) {
  std::array<std::uint32_t, kBlock> w{};
  for (std::size_t i = 0; i < 16; ++i) w[i] = bigEndianAt(block + 4 * i);
  for (std::size_t i = 16; i < kBlock; ++i) {
    const std::uint32_t s0 = std::rotr(w[i - 15], 7) ^ std::rotr(w[i - 15], 18) ^ (w[i - 15] >> 3U);
    const std::uint32_t s1 = std::rotr(w[i - 2], 17) ^ std::rotr(w[i - 2], 19) ^ (w[i - 2] >> 10U);
    w[i] = w[i - 16] + s0 + w[i - 7] + s1;
  }
  auto [a, b, c, d, e, f, g, h] = state;
  for (std::size_t i = 0; i < kBlock; ++i) {
    const std::uint32_t s1 = std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25);
    const std::uint32_t t1 = h + s1 + ((e & f) ^ (~e & g)) + kRounds[i] + w[i];
    const std::uint32_t s0 = std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22);
    const std::uint32_t t2 = s0 + ((a & b) ^ (a & c) ^ (b & c));
    h = g, g = f, f = e, e = d + t1, d = c, c = b, b = a, a = t1 + t2;
  }
  const std::array<std::uint32_t, 8> mixed{a, b, c, d, e, f, g, h};
  for (std::size_t i = 0; i < state.size(); ++i) state[i] += mixed[i];
}

}  // namespace

std::array<std::byte, 32> sha256(std::span<const std::byte> bytes) {
  std::array<std::uint32_t, 8> state{0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a,
                                     0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
  std::size_t at = 0;
  for (; bytes.size() - at >= kBlock; at += kBlock) mix(state, bytes.data() + at);
  // The rest, a 1 bit, and the number of bits at the end of the last block.
  const std::span<const std::byte> rest = bytes.subspan(at);
  std::vector<std::byte> last(rest.begin(), rest.end());
  last.push_back(std::byte{0x80});
  while (last.size() % kBlock != kBlock - 8) last.push_back(std::byte{0});
  const std::uint64_t bits = std::uint64_t{bytes.size()} * 8;
  for (unsigned shift = 64; shift > 0; shift -= 8) last.push_back(static_cast<std::byte>(bits >> (shift - 8)));
  for (std::size_t from = 0; from < last.size(); from += kBlock) mix(state, last.data() + from);

  std::array<std::byte, 32> digest{};
  for (std::size_t i = 0; i < digest.size(); ++i)
    digest[i] = static_cast<std::byte>(state[i / 4] >> (24 - 8 * (i % 4)));
  return digest;
}

void appendBase64(std::string& to, std::span<const std::byte> bytes) {
  constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  to.reserve(to.size() + (bytes.size() + 2) / 3 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
    std::uint32_t group = 0;
    for (std::size_t n = 0; n < 3; ++n)
      group = group << 8U | (n < count ? std::to_integer<std::uint32_t>(bytes[i + n]) : 0U);
    for (std::size_t n = 0; n < 4; ++n) to += n <= count ? kDigits[(group >> (18 - 6 * n)) & 0x3FU] : '=';
  }
}

}  // namespace oldtorvio::report
