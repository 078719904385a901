// SPDX-License-Identifier: MIT
//
// A text file of either family of settings/profile.h, read or written line by line.
#ifndef ZVISP_SETTINGS_PROFILE_STREAM_H_
#define ZVISP_SETTINGS_PROFILE_STREAM_H_

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "base/ordinary_file.h"
#include "settings/profile.h"
#include "settings/profile_family.h"

namespace zvisp {

// A line or a part of one, in the units of the family.
template <typename Family>
using ProfileText = std::basic_string<typename Family::Char>;

template <typename Family>
using ProfileLines = std::vector<ProfileText<Family>>;

// Closes itself. Nothing shows that a disk is full. Lines are for files that are open.
template <typename Family>
class ProfileStream {
 public:
  using Char = typename Family::Char;

  // The mode is "r" or "w". Only an ordinary file opens.
  ProfileStream(const Char* name, const char* mode)
      : m_file(OpenOrdinaryFile(Family::FileName(name).c_str(), mode)) {}

  bool IsOpen() const { return m_file != nullptr; }

  // Whether something that was written did not reach the file.
  bool HasFailed() const { return std::ferror(m_file.get()) != 0; }

  // Takes the next line, without its newline, unchanged. False at the end of the file,
  // at a line that is too long and at text that cannot be decoded; the file is then of no more use.
  bool ReadLine(ProfileText<Family>& line) {
    line.clear();
    Char unit = 0;
    ProfileInput input = Family::Get(m_file.get(), unit);
    while (input == ProfileInput::kUnit && unit != kLineEnd) {
      if (line.size() == kProfileValueCapacity - 1) return false;
      line.push_back(unit);
      input = Family::Get(m_file.get(), unit);
    }
    return input == ProfileInput::kUnit || (input == ProfileInput::kEnd && !line.empty());
  }

  // Each line is handed to the system before the next one. A program that crashes leaves the lines
  // that it wrote; a full disk may cut the last one short.
  void WriteLines(const ProfileLines<Family>& lines) {
    for (const ProfileText<Family>& line : lines) {
      WriteLine(line);
    }
  }

 private:
  static constexpr Char kLineEnd = '\n';

  void WriteLine(const ProfileText<Family>& line) {
    for (const Char unit : line) {
      Family::Put(m_file.get(), unit);
    }
    Family::Put(m_file.get(), kLineEnd);
    std::fflush(m_file.get());
  }

  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  typename Family::Encoding m_encoding;
  std::unique_ptr<std::FILE, Close> m_file;
};

}  // namespace zvisp

#endif  // ZVISP_SETTINGS_PROFILE_STREAM_H_
