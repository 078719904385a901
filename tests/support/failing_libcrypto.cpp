// SPDX-License-Identifier: MIT
//
// Preloaded into a run to exhaust its memory at one point: of the blocks that libcrypto asks for,
// the one with the number ZVISP_FAIL_LIBCRYPTO_AT, counted from 1, is refused.
#include <link.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

// The C library's own, which need no look-up that would allocate.
extern "C" void* __libc_malloc(std::size_t bytes);
extern "C" void* __libc_realloc(void* block, std::size_t bytes);

namespace {

struct Range {
  std::uintptr_t begin = 0;
  std::uintptr_t end = 0;
};

int FindLibcrypto(dl_phdr_info* image, std::size_t, void* found) {
  if (image->dlpi_name == nullptr || std::strstr(image->dlpi_name, "/libcrypto.so") == nullptr) {
    return 0;
  }
  Range& range = *static_cast<Range*>(found);
  range.begin = image->dlpi_addr;
  for (int i = 0; i < image->dlpi_phnum; ++i) {
    const auto& part = image->dlpi_phdr[i];
    if (part.p_type == PT_LOAD) range.end = image->dlpi_addr + part.p_vaddr + part.p_memsz;
  }
  return 1;
}

bool IsRefused(const void* caller) {
  static const char* const at = std::getenv("ZVISP_FAIL_LIBCRYPTO_AT");
  static Range libcrypto;
  static long asked = 0;
  if (at == nullptr) return false;
  if (libcrypto.end == 0) dl_iterate_phdr(FindLibcrypto, &libcrypto);
  const auto address = reinterpret_cast<std::uintptr_t>(caller);
  if (address < libcrypto.begin || address >= libcrypto.end) return false;
  return ++asked == std::strtol(at, nullptr, 10);
}

}  // namespace

extern "C" void* malloc(std::size_t bytes) noexcept {
  return IsRefused(__builtin_return_address(0)) ? nullptr : __libc_malloc(bytes);
}

extern "C" void* realloc(void* block, std::size_t bytes) noexcept {
  return IsRefused(__builtin_return_address(0)) ? nullptr : __libc_realloc(block, bytes);
}
