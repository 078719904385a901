// SPDX-License-Identifier: MIT
//
// Numbers in text, splitting, trimming, and copying into the fixed buffers of the records.
// A "blank" is the space U+0020 and nothing else.
#ifndef ZVISP_BASE_STRING_UTIL_H_
#define ZVISP_BASE_STRING_UTIL_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// Reads the whole text as a number with optional leading white space and sign: decimal, "0x"
// hexadecimal or leading-zero octal. On failure returns false and sets the value to -1. Empty text
// is 0; out-of-range numbers are not detected; a trailing blank is a failure.
bool StringtoInt(const std::string& text, int& value);

// Splits at each character of `delimiters`. Empty pieces are dropped unless keep_empty is not 0;
// a delimiter at the end never gives a trailing empty piece.
std::vector<std::string> StringSplit(const std::string& text, const char* delimiters,
                                     int keep_empty);

// Removes every blank.
void DeleteBlankW(std::wstring& text);

// Removes everything from the first blank on and then never returns; returns at once when there is
// no blank. Only the narrow profile family uses it, on files without blanks.
void DeleteBlankA(std::string& text);

// Removes the blanks at both ends.
void StringTrimW(std::wstring& text);

namespace zvisp {

// Copies UTF-8 text into a buffer of `capacity` bytes and fills the rest with zeros. Text that is
// too long is cut so that the terminating zero fits, never inside a character.
void CopyUtf8ToBuffer(std::string_view text, char* buffer, std::size_t capacity);

// Copies at most `limit` wide units, and never so many that the terminating zero does not fit,
// into a buffer of `capacity` units and fills the rest with zeros.
void CopyWideToBuffer(std::wstring_view text, std::size_t limit, wchar_t* buffer,
                      std::size_t capacity);

}  // namespace zvisp

#endif  // ZVISP_BASE_STRING_UTIL_H_
