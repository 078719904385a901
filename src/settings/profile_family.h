// SPDX-License-Identifier: MIT
//
// What the wide and the narrow family of settings/profile.h do differently; all else is shared.
#ifndef ZVISP_SETTINGS_PROFILE_FAMILY_H_
#define ZVISP_SETTINGS_PROFILE_FAMILY_H_

#include <ios>
#include <string>

struct WideFamily {
  using Char = wchar_t;

  // The name to hand to the system; empty, which no file has, when the locale cannot write it.
  static std::string FileName(const wchar_t* name);
  // Gives a stream that is not open yet the encoding of its file.
  static void Prepare(std::wios& stream);
  // True when the stream ended at bytes that are no text. The C++ runtimes show that in different
  // ways, one of them as an ordinary end of the file.
  static bool EndedInBadText(const std::wios& stream);
  static bool CanBeWritten(const wchar_t* text);

  // Header lines, and every line that is written back.
  static void TrimLine(std::wstring& line);
  // Name and value, as the reader takes them.
  static void TrimKeyPart(std::wstring& part);

  static void ReportUnreadableFile() {}
  static long long ParseInt(const wchar_t* text);
};

struct NarrowFamily {
  using Char = char;

  static std::string FileName(const char* name) { return name; }
  static void Prepare(std::ios& /*stream*/) {}
  static bool EndedInBadText(const std::ios& /*stream*/) { return false; }
  static bool CanBeWritten(const char* /*text*/) { return true; }

  static void TrimLine(std::string& line);
  static void TrimKeyPart(std::string& /*part*/) {}

  static void ReportUnreadableFile();
  static long long ParseInt(const char* text);
};

#endif  // ZVISP_SETTINGS_PROFILE_FAMILY_H_
