// SPDX-License-Identifier: MIT
#include "base/file_identity.h"

timespec ChangeTime(const struct stat& status) {
  return status.st_ctim;
}
