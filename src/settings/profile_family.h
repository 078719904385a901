// SPDX-License-Identifier: MIT
//
// What the wide and the narrow family of settings/profile.h do differently; all else is shared.
#ifndef ZVISP_SETTINGS_PROFILE_FAMILY_H_
#define ZVISP_SETTINGS_PROFILE_FAMILY_H_

#include <cstdio>
#include <string>

#include "base/environment_locale.h"

namespace zvisp {

// What comes next in a file: a unit of the family, the end, or bytes that are not text.
enum class ProfileInput { kUnit, kEnd, kBadText };

struct WideFamily {
  using Char = wchar_t;
  // Held while a file is open: its bytes are text in the encoding of the environment.
  using Encoding = ScopedEnvironmentLocale;

  // The name to hand to the system; empty, which no file has, when the locale cannot write it.
  static std::string FileName(const wchar_t* name);
  static bool CanBeWritten(const wchar_t* text);

  // Whether a line that is written is one line, the same, when it is read again.
  static bool ReadsBack(const std::wstring& line);

  static ProfileInput Get(std::FILE* file, wchar_t& unit);
  static void Put(std::FILE* file, wchar_t unit);

  // Header lines, and every line that is written back.
  static void TrimLine(std::wstring& line);
  // Name and value, as the reader takes them.
  static void TrimKeyPart(std::wstring& part);

  static void ReportUnreadableFile() {}
  static long long ParseInt(const wchar_t* text);
};

struct NarrowFamily {
  using Char = char;
  struct Encoding {};

  static std::string FileName(const char* name) { return name; }
  static bool CanBeWritten(const char* /*text*/) { return true; }

  static bool ReadsBack(const std::string& line) { return line.find('\n') == std::string::npos; }

  static ProfileInput Get(std::FILE* file, char& unit);
  static void Put(std::FILE* file, char unit);

  static void TrimLine(std::string& line);
  static void TrimKeyPart(std::string& /*part*/) {}

  static void ReportUnreadableFile();
  static long long ParseInt(const char* text);
};

}  // namespace zvisp

#endif  // ZVISP_SETTINGS_PROFILE_FAMILY_H_
