// SPDX-License-Identifier: MIT
#include "line/worker/library_file.h"

#include <string>
#include <vector>

#include "support/files.h"
#include "support/scratch_dir.h"

#include <gtest/gtest.h>

namespace line {
namespace {

using namespace std::string_literals;

// The first 20 bytes of an ELF file, of 64 bits and little-endian.
std::string Elf(char type, char machine) {
  return "\x7F"
         "ELF\x02\x01\x01"s +
         std::string(9, '\0') + type + "\0"s + machine + "\0"s;
}

std::string BigEndianElf(char machine) {
  return "\x7F"
         "ELF\x02\x02\x01"s +
         std::string(9, '\0') + "\0\3\0"s + machine;
}

const std::string kMachOLibrary = "\xCF\xFA\xED\xFE\x0C\0\0\x01\0\0\0\0\x06\0\0\0"s;
const std::string kMachOProgram = "\xCF\xFA\xED\xFE\x0C\0\0\x01\0\0\0\0\x02\0\0\0"s;
const std::string kFatLibrary = "\xCA\xFE\xBA\xBE\0\0\0\x02\x01\0\0\x07"s + std::string(16, '\0') +
                                "\x01\0\0\x0C"s + std::string(16, '\0');

struct Case {
  std::string bytes;
  std::string what;
};

#ifdef __x86_64__
constexpr char kOther = '\xB7';
constexpr const char* kOtherName = "arm64";
constexpr const char* kOwnName = "x86-64";
#else
constexpr char kOther = '\x3E';
constexpr const char* kOtherName = "x86-64";
constexpr const char* kOwnName = "arm64";
#endif

TEST(LibraryFile, SaysWhatTheFirstBytesAre) {
  const std::string needs = ", but this program needs an ELF library for "s + kOwnName;
  const std::vector<Case> cases = {
      {"", "is not a library"},
      {"\x7F", "is not a library"},
      {"#!/bin/sh\n", "is not a library"},
      {"\xCA\xFE\xBA\xBE\0\0\0\x41"s, "is not a library"},  // a Java class
      {"\x7F"
       "ELF",
       "is an ELF file, but not a library"},
      {Elf(2, kOther), "is an ELF file, but not a library"},
      {Elf(3, kOther), "is an ELF library for "s + kOtherName + needs},
      {Elf(3, '\x7E'), "is an ELF library for machine 126" + needs},
      {BigEndianElf(22), "is an ELF library for s390x" + needs},
      {kMachOProgram, "is a Mach-O file, but not a library"},
      {kMachOLibrary, "is a Mach-O library for arm64" + needs},
      {kFatLibrary, "is a Mach-O library for x86-64 and arm64" + needs},
  };
  const ScratchDir directory;
  for (const Case& one : cases) {
    GivenFile(directory / "plugin", one.bytes);
    const auto problem = LookAtLibraryFile(directory / "plugin");
    ASSERT_TRUE(problem) << one.what;
    EXPECT_EQ(problem->what, one.what);
    EXPECT_FALSE(problem->advice.empty());
  }
}

TEST(LibraryFile, FindsNothingWrongWithALibraryForThisMachine) {
  const ScratchDir directory;
  GivenFile(directory / "plugin", ReadWholeFile("/proc/self/exe").substr(0, 64));
  // An executable that the loader may put anywhere has the type of a library.
  EXPECT_FALSE(LookAtLibraryFile(directory / "plugin"));
}

TEST(LibraryFile, SaysWhyAFileCannotBeRead) {
  const ScratchDir directory;
  EXPECT_EQ(LookAtLibraryFile(directory / "nowhere")->what, "is missing");
  EXPECT_EQ(LookAtLibraryFile(directory / "")->what, "cannot be read: Is a directory");
}

TEST(LibraryFile, ListsNamesAsPeopleDo) {
  EXPECT_EQ(Listed(std::vector<std::string>{}), "");
  EXPECT_EQ(Listed(std::vector<std::string>{"A"}), "A");
  EXPECT_EQ(Listed(std::vector<std::string>{"A", "B"}), "A and B");
  EXPECT_EQ(Listed(std::vector<std::string>{"A", "B", "C"}), "A, B and C");
}

}  // namespace
}  // namespace line
