// SPDX-License-Identifier: MIT
#include "signer/hex.h"

namespace signer {
namespace {

// Lower case only: each value has one spelling, so a signature file cannot change unnoticed.
constexpr std::string_view kDigits = "0123456789abcdef";

}  // namespace

std::string ToHex(const unsigned char* bytes, std::size_t count) {
  std::string text;
  text.reserve(2 * count);
  for (std::size_t i = 0; i < count; ++i) {
    text.push_back(kDigits[bytes[i] >> 4]);
    text.push_back(kDigits[bytes[i] & 0x0F]);
  }
  return text;
}

bool FromHex(std::string_view text, unsigned char* bytes, std::size_t count) {
  if (text.size() != 2 * count) return false;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t high = kDigits.find(text[2 * i]);
    const std::size_t low = kDigits.find(text[2 * i + 1]);
    if (high == std::string_view::npos || low == std::string_view::npos) return false;
    bytes[i] = static_cast<unsigned char>(high << 4 | low);
  }
  return true;
}

}  // namespace signer
