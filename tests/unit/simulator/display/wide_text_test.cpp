// SPDX-License-Identifier: MIT
#include "display/wide_text.h"

#include <gtest/gtest.h>

namespace {

using simulator::ToUtf8;
using simulator::ToWide;

struct Pair {
  std::wstring wide;
  std::string utf8;
};

const Pair kPairs[] = {
    {L"", ""},
    {L"/tmp/fw.bin", "/tmp/fw.bin"},
    {L"\x7F\x80", "\x7F\xC2\x80"},
    {L"\x7FF\x800", "\xDF\xBF\xE0\xA0\x80"},
    {L"\xFFFD\xFFFF", "\xEF\xBF\xBD\xEF\xBF\xBF"},
    {L"\x10000\x10FFFF", "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"},
};

TEST(WideText, EveryLengthOfSequenceConvertsBothWays) {
  for (const auto& [wide, utf8] : kPairs) {
    EXPECT_EQ(ToUtf8(wide.c_str(), wide.size() + 1), utf8);
    EXPECT_EQ(ToWide(utf8), wide) << utf8;
  }
}

TEST(WideText, ABufferWithoutATerminatingZeroIsNoText) {
  EXPECT_EQ(ToUtf8(L"abcd", 4), std::nullopt);
  EXPECT_EQ(ToUtf8(L"abcd", 5), "abcd");
  EXPECT_EQ(ToUtf8(L"", 0), std::nullopt);
}

TEST(WideText, AUnitThatIsNoCharacterIsNoText) {
  for (const int unit : {0xD800, 0xDFFF, 0x110000, -1}) {
    const wchar_t buffer[] = {L'a', static_cast<wchar_t>(unit), 0};
    EXPECT_EQ(ToUtf8(buffer, 3), std::nullopt) << unit;
  }
}

TEST(WideText, BytesThatAreNoUtf8BecomeReplacements) {
  const Pair kBroken[] = {
      {L"a\xFFFD", "a\x80"},
      {L"\xFFFD", "\xC3"},
      {L"\xFFFDx", "\xE2x"},
      {L"\xFFFD\xFFFD", "\xC0\x80"},
      {L"\xFFFD\xFFFD\xFFFD", "\xED\xA0\x80"},
      {L"\xFFFD\xFFFD\xFFFD\xFFFD", "\xF4\x90\x80\x80"},
      {L"\xFFFD", "\xFF"},
  };
  for (const auto& [wide, utf8] : kBroken)
    EXPECT_EQ(ToWide(utf8), wide);
}

}  // namespace
