// SPDX-License-Identifier: MIT
#include "line/supervise/unnamed_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "line/supervise/child_process.h"

namespace line {

namespace {

// A batch makes one for each worker, and a name that is made only to be removed takes most of the
// time for it.
int OpenWithoutName() {
#ifdef O_TMPFILE
  const int file = open("/tmp", O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
  if (file >= 0) return file;
#endif
  // Not every file system can do that.
  char path[] = "/tmp/zvisp-line-XXXXXX";
  const int named = mkstemp(path);
  if (named >= 0) unlink(path);
  return named;
}

}  // namespace

int OpenUnnamedFile(std::string& error) {
  const int unnamed = OpenWithoutName();
  const int file = unnamed < 0 ? -1 : MovedUp(unnamed);
  if (file >= 0) return file;
  const int failure = errno;
  error = std::string("No file can be made in /tmp: ") + std::strerror(failure) + "; " +
          (failure == EMFILE ? RemedyFor(failure) : "make room there, or make it writable") + ".";
  return -1;
}

}  // namespace line
