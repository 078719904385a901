// SPDX-License-Identifier: MIT
#include "base/file_identity.h"

namespace zvisp {

timespec ChangeTime(const struct stat& status) {
  return status.st_ctimespec;
}

}  // namespace zvisp
