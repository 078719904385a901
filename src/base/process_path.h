// SPDX-License-Identifier: MIT
//
// The one question that macOS and Linux answer in different ways; there is a source file for each.
#ifndef ZVISP_BASE_PROCESS_PATH_H_
#define ZVISP_BASE_PROCESS_PATH_H_

#include <cstddef>

namespace zvisp {

// Writes the full path of the running executable, links resolved, into `buffer` of `capacity`
// bytes, which must be zeroed; leaves it empty on failure and always NUL-terminated.
void ReadProcessPath(char* buffer, std::size_t capacity);

}  // namespace zvisp

#endif  // ZVISP_BASE_PROCESS_PATH_H_
