// SPDX-License-Identifier: MIT
//
// What a file is, seen through its descriptor: which one, of what kind, and whether it changed.
#ifndef ZVISP_SIMULATOR_FILES_FILE_LOOK_H_
#define ZVISP_SIMULATOR_FILES_FILE_LOOK_H_

#include <sys/stat.h>

#include <string>

#include "files/file_io.h"

namespace simulator {

// Looks at an open file; false on failure (errno says why).
bool LookAt(const FileHandle& file, struct stat& look);

inline bool IsOrdinaryFile(const struct stat& look) {
  return S_ISREG(look.st_mode);
}

// Whether both looks are at one file, by whatever names it was opened.
bool IsSameFile(const struct stat& a, const struct stat& b);
// Whether the file of this path is the one that was checked. A path without a file is another one.
bool IsFileAt(const std::string& path, const struct stat& look);

// Whether one file was not changed between two looks at it. A change of its permissions or of its
// links counts as a change. Two writes within one tick of the system's clock can look alike.
bool IsUnchanged(const struct stat& before, const struct stat& after);

}  // namespace simulator

#endif  // ZVISP_SIMULATOR_FILES_FILE_LOOK_H_
