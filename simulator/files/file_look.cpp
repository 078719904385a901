// SPDX-License-Identifier: MIT
#include "files/file_look.h"

namespace simulator {
namespace {

// The time of the last change of content or status, which no program can set back.
const timespec& ChangeTime(const struct stat& look) {
#ifdef __APPLE__
  return look.st_ctimespec;
#else
  return look.st_ctim;
#endif
}

}  // namespace

bool LookAt(const FileHandle& file, struct stat& look) {
  return fstat(file.Get(), &look) == 0;
}

bool IsSameFile(const struct stat& a, const struct stat& b) {
  return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

bool IsFileAt(const std::string& path, const struct stat& look) {
  struct stat found = {};
  return stat(path.c_str(), &found) == 0 && IsSameFile(found, look);
}

bool IsUnchanged(const struct stat& before, const struct stat& after) {
  const timespec& first = ChangeTime(before);
  const timespec& second = ChangeTime(after);
  return IsSameFile(before, after) && before.st_size == after.st_size &&
         first.tv_sec == second.tv_sec && first.tv_nsec == second.tv_nsec;
}

}  // namespace simulator
