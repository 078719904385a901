// SPDX-License-Identifier: MIT
//
// Bytes over a local socket, and open files with them: the process at the other end gets
// descriptors of its own for the same open files, and so shares the locks that belong to them.
#ifndef ZVISP_LINE_WORKER_PASSED_FILES_H_
#define ZVISP_LINE_WORKER_PASSED_FILES_H_

#include <sys/types.h>

#include <cstddef>
#include <vector>

namespace line {

// The most files that one call passes on.
inline constexpr std::size_t kMostPassedFiles = 4;

// As send(2); `files` go with the first byte. Sends at least one byte, or none of anything.
ssize_t SendWithFiles(int socket, const char* bytes, std::size_t count,
                      const std::vector<int>& files, int flags);

// As recv(2); the descriptors that came are appended to `files`, and are closed by exec.
ssize_t ReceiveWithFiles(int socket, char* bytes, std::size_t count, std::vector<int>& files);

}  // namespace line

#endif  // ZVISP_LINE_WORKER_PASSED_FILES_H_
