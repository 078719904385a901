// SPDX-License-Identifier: MIT
//
// Memory for a record that is handed to a plug-in, with something around it that shows when the
// plug-in writes outside.
#ifndef ZVISP_LINE_PLUGIN_CHECK_GUARDED_BYTES_H_
#define ZVISP_LINE_PLUGIN_CHECK_GUARDED_BYTES_H_

#include <cstddef>

namespace line {

// A page that nobody may touch is directly there; on the other side, and with kNone on both, are
// bytes of a pattern.
enum class Guard { kNone, kBefore, kAfter };

// Zeroed bytes. They stay until the process ends.
class GuardedBytes {
 public:
  // `size` is a multiple of 4, and of 8 for a record that needs it. Memory exhaustion throws
  // std::bad_alloc.
  GuardedBytes(std::size_t size, Guard guard);

  unsigned char* Begin() const { return m_begin; }
  // Whether every byte of the pattern is as it was.
  bool IsPatternWhole() const;

 private:
  unsigned char* m_memory = nullptr;  // what may be touched
  std::size_t m_room = 0;
  unsigned char* m_begin = nullptr;
  std::size_t m_size;
};

}  // namespace line

#endif  // ZVISP_LINE_PLUGIN_CHECK_GUARDED_BYTES_H_
