// SPDX-License-Identifier: MIT
#include "base/file_identity.h"

namespace zvisp {

FileIdentity LookAtFile(const std::string& path) {
  struct stat status = {};
  if (stat(path.c_str(), &status) != 0) return {};
  const timespec change = ChangeTime(status);
  return {true,
          static_cast<std::uint64_t>(status.st_dev),
          static_cast<std::uint64_t>(status.st_ino),
          static_cast<std::uint64_t>(status.st_size),
          static_cast<std::int64_t>(change.tv_sec),
          static_cast<std::int64_t>(change.tv_nsec)};
}

}  // namespace zvisp
