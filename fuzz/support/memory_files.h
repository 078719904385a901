// SPDX-License-Identifier: MIT
//
// Files in memory for the targets that read and write many small files. Linked into a target, this
// takes the place of base/ordinary_file.h: the product then opens these files and no others.
#ifndef ZVISP_FUZZ_SUPPORT_MEMORY_FILES_H_
#define ZVISP_FUZZ_SUPPORT_MEMORY_FILES_H_

#include <string>
#include <string_view>

// Makes the file, or gives it a new content.
void GivenMemoryFile(const std::string& path, std::string_view content);

// The content; empty without such a file.
const std::string& MemoryFile(const std::string& path);

// How many streams on these files are open. They have no descriptor that would show a leak.
int OpenMemoryStreams();

#endif  // ZVISP_FUZZ_SUPPORT_MEMORY_FILES_H_
