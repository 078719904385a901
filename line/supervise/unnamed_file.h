// SPDX-License-Identifier: MIT
//
// A file of this process and of the children that get it.
#ifndef ZVISP_LINE_SUPERVISE_UNNAMED_FILE_H_
#define ZVISP_LINE_SUPERVISE_UNNAMED_FILE_H_

#include <string>

namespace line {

// Makes an empty file in /tmp that has no name: it goes with its last descriptor, even after a
// kill. The descriptor, as MovedUp gives it, belongs to the caller. -1, with a sentence in
// `error`, when there can be none.
int OpenUnnamedFile(std::string& error);

}  // namespace line

#endif  // ZVISP_LINE_SUPERVISE_UNNAMED_FILE_H_
