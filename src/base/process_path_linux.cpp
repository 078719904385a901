// SPDX-License-Identifier: MIT
#include <unistd.h>

#include "base/process_path.h"

namespace zvisp {

void ReadProcessPath(char* buffer, std::size_t capacity) {
  // readlink writes no terminating zero, so one byte is kept for it.
  const ssize_t length = readlink("/proc/self/exe", buffer, capacity - 1);
  buffer[length < 0 ? 0 : length] = '\0';
}

}  // namespace zvisp
