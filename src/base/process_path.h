// SPDX-License-Identifier: MIT
//
// The one thing that macOS and Linux tell in different ways; a source file for each.
#ifndef ZVISP_BASE_PROCESS_PATH_H_
#define ZVISP_BASE_PROCESS_PATH_H_

#include <cstddef>

// Writes the full path of the running executable, links resolved, into `buffer` of `capacity`
// bytes, which must be zeroed; leaves it empty on failure and always NUL-terminated.
void ReadProcessPath(char* buffer, std::size_t capacity);

#endif  // ZVISP_BASE_PROCESS_PATH_H_
