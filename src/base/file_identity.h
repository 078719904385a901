// SPDX-License-Identifier: MIT
//
// Whether a path still leads to the same, unchanged file as it did before.
#ifndef ZVISP_BASE_FILE_IDENTITY_H_
#define ZVISP_BASE_FILE_IDENTITY_H_

#include <sys/stat.h>

#include <cstdint>
#include <string>

namespace zvisp {

// What one look at a path showed. Two looks are equal when both found the same file with the same
// size and change time, or when neither found one. Writing, renaming another file over the path, a
// change of the mode and a new hard link all make a difference. The system's clock ticks every few
// milliseconds, so a write within the same tick as the first look may make none.
struct FileIdentity {
  bool found = false;  // when false, the other fields are 0
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::uint64_t bytes = 0;
  std::int64_t change_seconds = 0;
  std::int64_t change_nanoseconds = 0;

  bool operator==(const FileIdentity&) const = default;
};

// Looks at a path (UTF-8) and follows links. Opens nothing and prints nothing.
FileIdentity LookAtFile(const std::string& path);

// The change time in a status, a field that macOS and Linux name differently.
timespec ChangeTime(const struct stat& status);

}  // namespace zvisp

#endif  // ZVISP_BASE_FILE_IDENTITY_H_
