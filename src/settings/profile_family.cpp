// SPDX-License-Identifier: MIT
#include "settings/profile_family.h"

#include <stdio.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cwchar>

#include "base/string_util.h"
#include "base/transform.h"

namespace zvisp {

namespace {

// What mbrtowc and wcrtomb return instead of lengths.
constexpr auto kNoCharacter = static_cast<std::size_t>(-1);
constexpr auto kIncomplete = static_cast<std::size_t>(-2);

constexpr unsigned char kFirstBeyondAscii = 0x80;

}  // namespace

std::string WideFamily::FileName(const wchar_t* name) {
  return CCpTransform().ConvertUnicodeStringToANSI(name);
}

bool WideFamily::CanBeWritten(const wchar_t* text) {
  return *text == L'\0' || !CCpTransform().ConvertWCHARToANSIString(text).empty();
}

// The encodings of the C libraries write numbers above Unicode's, which they do not read again.
bool WideFamily::ReadsBack(const std::wstring& line) {
  constexpr wchar_t kLastCharacter = 0x10FFFF;
  std::wstring trimmed = line;
  TrimLine(trimmed);
  return trimmed == line && std::none_of(line.begin(), line.end(), [](wchar_t unit) {
           return unit == L'\n' || unit > kLastCharacter;
         });
}

// The bytes are decoded here, because the C libraries' own wide streams differ at a file that ends
// inside a character.
ProfileInput WideFamily::Get(std::FILE* file, wchar_t& unit) {
  std::mbstate_t state = {};
  char byte = 0;
  ProfileInput input = NarrowFamily::Get(file, byte);
  // A shortcut for nearly every byte: where a character begins, an ASCII byte is that character in
  // UTF-8, ISO 8859, EUC and GB 18030. A few old encodings differ, such as Shift_JIS with a yen
  // sign at 0x5C; their bytes are read as ASCII, too.
  if (input == ProfileInput::kUnit && static_cast<unsigned char>(byte) < kFirstBeyondAscii) {
    unit = static_cast<wchar_t>(byte);
    return ProfileInput::kUnit;
  }
  while (input == ProfileInput::kUnit) {
    const std::size_t length = std::mbrtowc(&unit, &byte, 1, &state);
    if (length != kIncomplete) {
      return length == kNoCharacter ? ProfileInput::kBadText : ProfileInput::kUnit;
    }
    input = NarrowFamily::Get(file, byte);
  }
  return std::mbsinit(&state) != 0 ? input : ProfileInput::kBadText;
}

void WideFamily::Put(std::FILE* file, wchar_t unit) {
  std::mbstate_t state = {};
  char bytes[MB_LEN_MAX];
  const std::size_t length = std::wcrtomb(bytes, unit, &state);
  if (length != kNoCharacter) std::fwrite(bytes, 1, length, file);
}

void WideFamily::TrimLine(std::wstring& line) {
  StringTrimW(line);
}

void WideFamily::TrimKeyPart(std::wstring& part) {
  StringTrimW(part);
}

long long WideFamily::ParseInt(const wchar_t* text) {
  return std::wcstoll(text, nullptr, 0);
}

// What cannot be read counts as bad text. The file is not shared with another thread, so it is not
// locked for each byte.
ProfileInput NarrowFamily::Get(std::FILE* file, char& unit) {
  const int byte = getc_unlocked(file);
  if (byte == EOF) return std::ferror(file) != 0 ? ProfileInput::kBadText : ProfileInput::kEnd;
  unit = static_cast<char>(byte);
  return ProfileInput::kUnit;
}

void NarrowFamily::Put(std::FILE* file, char unit) {
  std::putc(unit, file);
}

void NarrowFamily::TrimLine(std::string& line) {
  DeleteBlankA(line);
}

void NarrowFamily::ReportUnreadableFile() {
  std::printf("Error \n");
}

long long NarrowFamily::ParseInt(const char* text) {
  return std::strtoll(text, nullptr, 0);
}

}  // namespace zvisp
