// SPDX-License-Identifier: MIT
#include "app/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

namespace zvisp {

void PrepareStandardStreams() {
  // A file that is opened gets the lowest free number, so the loop ends above the three.
  int descriptor = open("/dev/null", O_RDWR);
  while (descriptor >= 0 && descriptor <= STDERR_FILENO) {
    descriptor = open("/dev/null", O_RDWR);
  }
  if (descriptor > STDERR_FILENO) close(descriptor);
  std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
}

}  // namespace zvisp
