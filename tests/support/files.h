// SPDX-License-Identifier: MIT
//
// Files that a test starts from, and reading back what a run left. A file that cannot be made or
// read throws std::runtime_error with its path.
#ifndef ZVISP_TESTS_SUPPORT_FILES_H_
#define ZVISP_TESTS_SUPPORT_FILES_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Bytes that differ from one 64 KiB bank to the next and from one seed to another.
std::string Pattern(std::size_t bytes, unsigned seed = 1);

// Writes a file with this content; missing directories above it are made. Returns the path.
std::string GivenFile(const std::string& path, std::string_view content);

// Writes a file of so many bytes of Pattern(). Returns the path.
std::string GivenFirmware(const std::string& path, std::size_t bytes, unsigned seed = 1);

// Makes a file of a size without giving it content, so that it takes no room. Returns the path.
std::string GivenSparseFile(const std::string& path, std::uint64_t bytes);

// Makes a directory and those above it. Returns the path.
std::string GivenDirectory(const std::string& path);

std::string ReadWholeFile(const std::string& path);

bool FileExists(const std::string& path);

#endif  // ZVISP_TESTS_SUPPORT_FILES_H_
