// SPDX-License-Identifier: MIT
#include "plugin/zeroed.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::size_t kBlockBytes = 4096;  // a page, the unit in which memory is made real

constexpr unsigned char kZeros[kBlockBytes] = {};

}  // namespace

void ZeroBytes(void* memory, std::size_t bytes) {
  auto* const to = static_cast<unsigned char*>(memory);
  for (std::size_t at = 0; at < bytes; at += kBlockBytes) {
    CopyDifferingBytes(to + at, kZeros, std::min(kBlockBytes, bytes - at));
  }
}

void CopyDifferingBytes(void* to, const void* from, std::size_t bytes) {
  auto* const target = static_cast<unsigned char*>(to);
  const auto* const source = static_cast<const unsigned char*>(from);
  for (std::size_t at = 0; at < bytes; at += kBlockBytes) {
    const std::size_t length = std::min(kBlockBytes, bytes - at);
    if (std::memcmp(target + at, source + at, length) == 0) continue;
    std::memcpy(target + at, source + at, length);
  }
}

void CopyBytesOntoZeros(void* to, const void* from, std::size_t bytes) {
  auto* const target = static_cast<unsigned char*>(to);
  const auto* const source = static_cast<const unsigned char*>(from);
  for (std::size_t at = 0; at < bytes; at += kBlockBytes) {
    const std::size_t length = std::min(kBlockBytes, bytes - at);
    if (std::memcmp(source + at, kZeros, length) == 0) continue;
    std::memcpy(target + at, source + at, length);
  }
}
