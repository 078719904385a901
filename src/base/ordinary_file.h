// SPDX-License-Identifier: MIT
//
// Opening files that somebody names, without ever waiting for one.
#ifndef ZVISP_BASE_ORDINARY_FILE_H_
#define ZVISP_BASE_ORDINARY_FILE_H_

#include <cstdio>

namespace zvisp {

// Opens an ordinary file, or a link to one: mode "r" to read it, or "w" to create it or write it
// anew. Null for everything else, a directory, a device and a FIFO included: a FIFO would wait for
// its other end for ever. Prints nothing. The caller closes the file with fclose.
std::FILE* OpenOrdinaryFile(const char* path, const char* mode);

}  // namespace zvisp

#endif  // ZVISP_BASE_ORDINARY_FILE_H_
