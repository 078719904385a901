// SPDX-License-Identifier: MIT
#include "base/ordinary_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zvisp {

namespace {

constexpr mode_t kNewFileMode = 0666;  // the user's mask takes away from it, as with fopen

bool IsOrdinary(int descriptor) {
  struct stat status = {};
  return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

}  // namespace

std::FILE* OpenOrdinaryFile(const char* path, const char* mode) {
  const int access = mode[0] == 'r' ? O_RDONLY : O_WRONLY | O_CREAT | O_TRUNC;
  // Without O_NONBLOCK the call itself would wait; an ordinary file does not notice it.
  const int descriptor = open(path, access | O_NONBLOCK | O_CLOEXEC, kNewFileMode);
  if (descriptor < 0) return nullptr;
  std::FILE* const file = IsOrdinary(descriptor) ? fdopen(descriptor, mode) : nullptr;
  if (file == nullptr) close(descriptor);
  return file;
}

}  // namespace zvisp
