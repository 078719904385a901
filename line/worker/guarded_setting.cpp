// SPDX-License-Identifier: MIT
#include "line/worker/guarded_setting.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>

namespace line {

STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* MakeGuardedSetting() {
  constexpr std::size_t kRecord = sizeof(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING);
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  const std::size_t pages = (kRecord + page - 1) / page * page;
  void* const memory =
      mmap(nullptr, pages + page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) return nullptr;
  auto* const begin = static_cast<unsigned char*>(memory);
  if (mprotect(begin + pages, page, PROT_NONE) != 0) return nullptr;
  // The record ends where the guard begins. Its size is a multiple of 8, so its start is aligned.
  void* const record = begin + pages - kRecord;
  return static_cast<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING*>(record);
}

}  // namespace line
