// SPDX-License-Identifier: MIT
//
// Preloaded into a run to exhaust its memory at one point: of the zeroed blocks of
// ZVISP_FAIL_CALLOC_BYTES bytes, all but the first ZVISP_FAIL_CALLOC_AFTER are refused.
#include <cstddef>
#include <cstdlib>

// The C library's own, which needs no look-up that would allocate.
extern "C" void* __libc_calloc(std::size_t count, std::size_t bytes);

extern "C" void* calloc(std::size_t count, std::size_t bytes) noexcept {
  static long served = 0;
  const char* const refused = std::getenv("ZVISP_FAIL_CALLOC_BYTES");
  const char* const after = std::getenv("ZVISP_FAIL_CALLOC_AFTER");
  if (refused != nullptr && after != nullptr && count == 1 &&
      bytes == std::strtoul(refused, nullptr, 10) && served++ >= std::strtol(after, nullptr, 10)) {
    return nullptr;
  }
  return __libc_calloc(count, bytes);
}
