// SPDX-License-Identifier: MIT
//
// The header's conversion of a record's path, as C and as C++ compile it. Buffers on the heap have
// exactly the size that is given, so that a sanitizer or valgrind sees a byte too many.
#include <string>
#include <string_view>
#include <vector>

#include "unit/plugin/views/plugin_views.h"

#include <gtest/gtest.h>

namespace {

using Conversion = int (*)(const wchar_t*, std::size_t, char*, std::size_t);

class WideToUtf8 : public testing::TestWithParam<Conversion> {
 protected:
  // Converts the units, which hold the terminating zero or not, into a buffer of so many bytes.
  int Convert(std::wstring_view units, std::size_t bytes) {
    const std::vector<wchar_t> wide(units.begin(), units.end());
    std::vector<char> utf8(bytes, 'x');
    const int converted = GetParam()(wide.data(), wide.size(), utf8.data(), utf8.size());
    m_bytes.assign(utf8.begin(), utf8.end());
    return converted;
  }

  std::string m_bytes;
};

std::wstring_view Zero(std::wstring_view units) {
  return {units.data(), units.size() + 1};
}

struct CharacterRow {
  std::wstring text;
  std::string utf8;
};

const CharacterRow kCharacters[] = {
    // first and last character of each length
    {L"", ""},
    {L"\x01", "\x01"},
    {L"\x7F", "\x7F"},
    {L"\x80", "\xC2\x80"},
    {L"\x7FF", "\xDF\xBF"},
    {L"\x800", "\xE0\xA0\x80"},
    {L"\xD7FF", "\xED\x9F\xBF"},
    {L"\xE000", "\xEE\x80\x80"},
    {L"\xFFFF", "\xEF\xBF\xBF"},
    {L"\x10000", "\xF0\x90\x80\x80"},
    {L"\x10FFFF", "\xF4\x8F\xBF\xBF"},
    {L"/firmware/\x00E9\x4E2D\x1F4FA.bin", "/firmware/\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x93\xBA.bin"},
};

TEST_P(WideToUtf8, EveryCharacterIsWrittenInItsShortestForm) {
  for (const CharacterRow& row : kCharacters) {
    EXPECT_EQ(Convert(Zero(row.text), row.utf8.size() + 1), 1) << row.utf8;
    EXPECT_EQ(m_bytes, row.utf8 + '\0');
  }
}

TEST_P(WideToUtf8, ABufferThatIsTooSmallIsLeftWithAnEmptyText) {
  for (const CharacterRow& row : kCharacters) {
    for (std::size_t bytes = 1; bytes <= row.utf8.size(); ++bytes) {
      EXPECT_EQ(Convert(Zero(row.text), bytes), 0) << row.utf8 << ", " << bytes;
      EXPECT_EQ(m_bytes[0], '\0');
    }
  }
}

TEST_P(WideToUtf8, NothingIsWrittenIntoABufferOfNoBytes) {
  char untouched = 'x';
  EXPECT_EQ(GetParam()(L"a", 2, &untouched, 0), 0);
  EXPECT_EQ(GetParam()(L"", 1, &untouched, 0), 0);
  EXPECT_EQ(untouched, 'x');
}

TEST_P(WideToUtf8, ATextWithoutATerminatingZeroIsRefusedAndNotReadPastItsEnd) {
  for (const std::wstring_view units : {L"", L"a", L"\x10FFFF\x10FFFF"}) {
    EXPECT_EQ(Convert(units, 1037), 0);
    EXPECT_EQ(m_bytes[0], '\0');
  }
}

TEST_P(WideToUtf8, UnitsThatAreNotCharactersAreRefused) {
  for (const unsigned unit :
       {0xD800u, 0xDBFFu, 0xDC00u, 0xDFFFu, 0x110000u, 0x80000000u, 0xFFFFFFFFu}) {
    const std::wstring text = {L'a', static_cast<wchar_t>(unit), L'b'};
    EXPECT_EQ(Convert(Zero(text), 1037), 0) << unit;
    EXPECT_EQ(m_bytes[0], '\0') << unit;
  }
}

TEST_P(WideToUtf8, WhatComesAfterTheTerminatingZeroDoesNotCount) {
  const std::wstring text = {L'a', L'\0', static_cast<wchar_t>(0xD800)};
  EXPECT_EQ(Convert(text, 2), 1);
  EXPECT_EQ(m_bytes, std::string("a\0", 2));
}

TEST_P(WideToUtf8, TheLongestPathOfARecordFitsTheCapacityThatTheHeaderNames) {
  const std::wstring longest(259, static_cast<wchar_t>(0x10FFFF));
  EXPECT_EQ(Convert(Zero(longest), 1037), 1);
  EXPECT_EQ(Convert(Zero(longest), 1036), 0);
}

INSTANTIATE_TEST_SUITE_P(InCAndCxx, WideToUtf8, testing::Values(WideToUtf8InC, WideToUtf8InCxx),
                         [](const testing::TestParamInfo<Conversion>& language) {
                           return language.index == 0 ? "C" : "Cxx";
                         });

}  // namespace
