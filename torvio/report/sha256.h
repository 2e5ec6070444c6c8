// SHA-256 and Base64, by which a Content-Security-Policy identifies scripts.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace oldtorvio::report {

std::array<std::byte, 32> sha256(std::span<const std::byte> bytes);

void appendBase64(std::string& to, std::span<const std::byte> bytes);

}  // namespace oldtorvio::report
