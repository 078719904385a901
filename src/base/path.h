// SPDX-License-Identifier: MIT
//
// Directories, full paths and tests of files. Narrow paths are UTF-8. Nothing here prints; a
// function that cannot answer gives an empty text or false.
#ifndef ZVISP_BASE_PATH_H_
#define ZVISP_BASE_PATH_H_

#include <cstdint>
#include <string>

#include "base/zv_string.h"

// The directory, ending in "/", of the running executable, or, for an address that is not null, of
// the loaded image (executable or library) that holds it. Empty when the system does not say or the
// environment's locale cannot read the path.
CCpZvString GetCurrentProcessDir(void* address);

// The path with links, "." and ".." resolved. Where that fails, what the platform resolved until
// then: usually the path up to the first name that does not exist.
std::string GetAbsolutePath(const std::string& path);

// True when the first "/" leads the path, or the first ":\" or "://" follows one character: "/x",
// "C:\x", "C://x". Everything else, the empty path included, is relative.
bool IsAbsolutePath(const std::string& path);

// The path itself when it is absolute, else the resolved join of base and path. The join puts no
// separator between the two, so a base that is not empty ends in "/".
std::string GetFileFullPath(const std::string& path, const std::string& base);

// True when the path can be opened for reading and is not a directory.
bool PathFileExist(const std::string& path);

namespace zvisp {

// Stores the size in bytes of a regular file that can be opened for reading; false, with the size
// untouched, for anything else.
bool GetRegularFileSize(const std::string& path, std::uint64_t& bytes);

}  // namespace zvisp

// A host with a user interface would ask for a file here; the command line has no dialogs. Leaves
// the path as it is and returns true.
bool PopupDlgToGetOpenFilePath(const CCpZvString& title, CCpZvString& path);

#endif  // ZVISP_BASE_PATH_H_
