// SPDX-License-Identifier: MIT
#include "line/plugin_check/guarded_bytes.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <new>

namespace line {

namespace {

constexpr unsigned char kPattern = 0xA5;
// So far around a record without guards even a plug-in that overruns it does no harm.
constexpr std::size_t kMarginPages = 32;

}  // namespace

GuardedBytes::GuardedBytes(std::size_t size, Guard guard) : m_size(size) {
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  const std::size_t margin = guard == Guard::kNone ? kMarginPages * page : 0;
  m_room = (size + page - 1) / page * page + 2 * margin;
  void* const memory =
      mmap(nullptr, m_room + 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) throw std::bad_alloc();
  auto* const first = static_cast<unsigned char*>(memory);
  m_memory = first + page;
  if (mprotect(first, page, PROT_NONE) != 0 || mprotect(m_memory + m_room, page, PROT_NONE) != 0) {
    throw std::bad_alloc();
  }
  m_begin = guard == Guard::kAfter ? m_memory + m_room - size : m_memory + margin;
  std::memset(m_memory, kPattern, m_room);
  std::memset(m_begin, 0, size);
}

bool GuardedBytes::IsPatternWhole() const {
  const auto is_pattern = [](unsigned char byte) { return byte == kPattern; };
  return std::all_of(m_memory, m_begin, is_pattern) &&
         std::all_of(m_begin + m_size, m_memory + m_room, is_pattern);
}

}  // namespace line
