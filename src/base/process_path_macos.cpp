// SPDX-License-Identifier: MIT
#include <libproc.h>
#include <unistd.h>

#include <cstdint>

#include "base/process_path.h"

namespace zvisp {

void ReadProcessPath(char* buffer, std::size_t capacity) {
  const int length = proc_pidpath(getpid(), buffer, static_cast<std::uint32_t>(capacity - 1));
  buffer[length < 0 ? 0 : length] = '\0';
}

}  // namespace zvisp
