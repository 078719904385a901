// SPDX-License-Identifier: MIT
//
// CCpTransform: conversions between wide text (UTF-32), UTF-8, and the multibyte text of the
// user's locale (called ANSI in the names). A failed conversion is never reported: its result is
// empty, or a null pointer where a pointer is returned. Text ends at its first zero.
#ifndef ZVISP_BASE_TRANSFORM_H_
#define ZVISP_BASE_TRANSFORM_H_

#include <string>

class CCpTransform {
 public:
  virtual ~CCpTransform() = default;

  // Limited to 10239 bytes of UTF-8: longer text is lost whole, not cut.
  std::string ConvertUnicodeStringToUTF8(const std::wstring& text) const;
  // Limited to 10239 wide units: longer text is lost whole, not cut.
  std::wstring ConvertUTF8StringToUnicode(const std::string& text) const;
  // The same as ConvertUTF8StringToUnicode.
  std::wstring ConvertStringToWString(const std::string& text) const;

  // The locale conversions switch the process to the environment's locale and back (see
  // base/environment_locale.h). A null pointer gives an empty text, and ConvertWCHARToCHAR then
  // returns a null pointer.
  std::string ConvertUnicodeStringToANSI(const std::wstring& text) const;
  std::string ConvertWCHARToANSIString(const wchar_t* text) const;
  // The caller owns the array and frees it with array delete.
  char* ConvertWCHARToCHAR(const wchar_t* text) const;
  // Measures under the locale that is current at the call and converts under the environment's:
  // text that the current locale cannot read gives the empty result.
  std::wstring ConvertANSIStringToUnicode(const std::string& text) const;
  // Reads the text under the environment's locale only.
  std::wstring ConvertCHARToUnicodeString(const char* text) const;
};

#endif  // ZVISP_BASE_TRANSFORM_H_
