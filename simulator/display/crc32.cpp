// SPDX-License-Identifier: MIT
#include "display/crc32.h"

#include <array>

namespace simulator {
namespace {

// The CRC of each single byte, made at compile time, so that a byte costs one step and not eight.
constexpr std::array<std::uint32_t, 256> MakeTable() {
  std::array<std::uint32_t, 256> table = {};
  for (std::uint32_t byte = 0; byte < table.size(); ++byte) {
    std::uint32_t value = byte;
    for (int bit = 0; bit < 8; ++bit) {
      value = (value & 1U) != 0 ? (value >> 1) ^ 0xEDB88320U : value >> 1;
    }
    table[byte] = value;
  }
  return table;
}

constexpr std::array<std::uint32_t, 256> kTable = MakeTable();

}  // namespace

std::uint32_t Crc32(const std::uint8_t* bytes, std::size_t length, std::uint32_t crc) {
  crc = ~crc;
  for (std::size_t i = 0; i < length; ++i) {
    crc = kTable[(crc ^ bytes[i]) & 0xFFU] ^ (crc >> 8);
  }
  return ~crc;
}

}  // namespace simulator
