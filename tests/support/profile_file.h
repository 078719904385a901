// SPDX-License-Identifier: MIT
//
// A settings file of a test, and what the wide family's reader and writer do with it.
#ifndef ZVISP_TESTS_SUPPORT_PROFILE_FILE_H_
#define ZVISP_TESTS_SUPPORT_PROFILE_FILE_H_

#include <stdlib.h>

#include <ostream>
#include <string>
#include <string_view>

#include "base/transform.h"
#include "settings/profile.h"
#include "support/files.h"
#include "support/printed.h"
#include "support/scratch_dir.h"

#include <gtest/gtest.h>

// What a read gave: its result, and what was then in the output buffer, which held "untouched".
struct ProfileRead {
  unsigned int length;
  std::wstring output;

  bool operator==(const ProfileRead& other) const {
    return length == other.length && output == other.output;
  }
};

inline void PrintTo(const ProfileRead& read, std::ostream* stream) {
  *stream << read.length << " \"" << CCpTransform().ConvertUnicodeStringToUTF8(read.output) << '"';
}

// The file, in a directory of its own. The environment's locale is "C.UTF-8" from here on.
class ProfileFile {
 public:
  // The file does not exist yet.
  ProfileFile() { setenv("LC_ALL", "C.UTF-8", 1); }
  explicit ProfileFile(std::string_view content) : ProfileFile() { Put(content); }

  std::string Directory() const { return m_directory.Path(); }
  std::string Path() const { return m_directory / "test.ini"; }
  std::wstring WidePath() const { return CCpTransform().ConvertUTF8StringToUnicode(Path()); }
  void Put(std::string_view content) const { GivenFile(Path(), content); }
  std::string Content() const { return ReadWholeFile(Path()); }

  ProfileRead Read(const wchar_t* section, const wchar_t* key) const {
    wchar_t output[zvisp::kProfileValueCapacity] = L"untouched";
    const unsigned int length = CpZvGetPrivateProfileStringW(
        section, key, L"default", output, zvisp::kProfileValueCapacity, WidePath().c_str());
    return {length, output};
  }
  int ReadInt(const wchar_t* section, const wchar_t* key, int default_value) const {
    return CpZvGetPrivateProfileIntW(section, key, default_value, WidePath().c_str());
  }
  int Write(const wchar_t* section, const wchar_t* key, const wchar_t* value) const {
    return CpZvWritePrivateProfileStringW(section, key, value, WidePath().c_str());
  }

 private:
  ScratchDir m_directory;
};

#endif  // ZVISP_TESTS_SUPPORT_PROFILE_FILE_H_
