// SPDX-License-Identifier: MIT
#include "line/supervise/unnamed_file.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "line/supervise/child_process.h"

namespace line {

int OpenUnnamedFile(std::string& error) {
  char path[] = "/tmp/zvisp-line-XXXXXX";
  int file = mkstemp(path);
  if (file >= 0) {
    unlink(path);
    file = MovedUp(file);
  }
  if (file >= 0) return file;
  error = std::string("No file can be made in /tmp: ") + std::strerror(errno) +
          "; make room there, or make it writable.";
  return -1;
}

}  // namespace line
