// SPDX-License-Identifier: MIT
#include "base/string_util.h"

#include <signal.h>
#include <unistd.h>

#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace zvisp;

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct NumberRow {
  const char* text;
  int value;
};

TEST(StringtoInt, ReadsTheWholeTextInAnyBase) {
  constexpr NumberRow kCases[] = {
      {"0", 0},
      {"7", 7},
      {"-5", -5},
      {"+5", 5},
      {"0x1F", 31},
      {"0X1f", 31},
      {"-0x10", -16},
      {"010", 8},
      {"-010", -8},
      {" 7", 7},
      {"\t\n 7", 7},
      {"2147483647", 2147483647},
      {"-2147483648", -2147483647 - 1},
  };
  for (const auto& row : kCases) {
    int value = 99;
    EXPECT_TRUE(StringtoInt(row.text, value)) << row.text;
    EXPECT_EQ(value, row.value) << row.text;
  }
}

TEST(StringtoInt, TakesEmptyTextForZero) {
  int value = 99;
  EXPECT_TRUE(StringtoInt("", value));
  EXPECT_EQ(value, 0);
}

TEST(StringtoInt, RefusesWhateverFollowsTheNumber) {
  for (const char* const text :
       {"12a", "7 ", "a", " ", "-", "0x", "0xG", "08", "1.5", "1,2", "- 5", "0x-5", "\xC2\xA0"}) {
    int value = 99;
    EXPECT_FALSE(StringtoInt(text, value)) << text;
    EXPECT_EQ(value, -1) << text;
  }
}

TEST(StringtoInt, CutsNumbersThatDoNotFit) {
  constexpr NumberRow kCases[] = {
      {"4294967295", -1},
      {"0xFFFFFFFF", -1},
      {"4294967296", 0},
      {"4294967297", 1},
      {"2147483648", -2147483647 - 1},
      {"99999999999999999999", -1},
      {"-99999999999999999999", 0},
  };
  for (const auto& row : kCases) {
    int value = 99;
    EXPECT_TRUE(StringtoInt(row.text, value)) << row.text;
    EXPECT_EQ(value, row.value) << row.text;
  }
}

TEST(StringSplit, DropsEmptyPieces) {
  EXPECT_THAT(StringSplit("a,,b,", ",", 0), ElementsAre("a", "b"));
  EXPECT_THAT(StringSplit(",a", ",", 0), ElementsAre("a"));
  EXPECT_THAT(StringSplit(",,,", ",", 0), IsEmpty());
}

TEST(StringSplit, KeepsEmptyPiecesOnRequestButNeverATrailingOne) {
  EXPECT_THAT(StringSplit("a,,b,", ",", 1), ElementsAre("a", "", "b"));
  EXPECT_THAT(StringSplit(",a", ",", 1), ElementsAre("", "a"));
  EXPECT_THAT(StringSplit(",", ",", 1), ElementsAre(""));
  EXPECT_THAT(StringSplit("a,b,,", ",", -1), ElementsAre("a", "b", ""));
}

TEST(StringSplit, GivesTheWholeTextWithoutADelimiter) {
  EXPECT_THAT(StringSplit("abc", ",", 0), ElementsAre("abc"));
  EXPECT_THAT(StringSplit("abc", "", 1), ElementsAre("abc"));
  EXPECT_THAT(StringSplit("", ",", 0), IsEmpty());
  EXPECT_THAT(StringSplit("", ",", 1), IsEmpty());
}

TEST(StringSplit, SplitsAtEachOfSeveralDelimiters) {
  EXPECT_THAT(StringSplit("a.b c", ". ", 0), ElementsAre("a", "b", "c"));
  EXPECT_THAT(StringSplit("a. b", ". ", 1), ElementsAre("a", "", "b"));
}

TEST(StringSplit, DoesNotTrimPieces) {
  EXPECT_THAT(StringSplit(" a , b ", ",", 0), ElementsAre(" a ", " b "));
}

struct WideRow {
  const wchar_t *before, *after;
};

TEST(DeleteBlankW, RemovesEverySpaceAndNothingElse) {
  constexpr WideRow kCases[] = {
      {L" a b ", L"ab"},
      {L"", L""},
      {L"   ", L""},
      {L"ab", L"ab"},
      {L"\ta \r\n", L"\ta\r\n"},
      {L"\u00A0 \u3000", L"\u00A0\u3000"},
  };
  for (const auto& row : kCases) {
    std::wstring text = row.before;
    DeleteBlankW(text);
    EXPECT_EQ(text, row.after);
  }
}

TEST(StringTrimW, RemovesTheSpacesAtBothEnds) {
  constexpr WideRow kCases[] = {
      // clang-format off
      {L"  a b  ", L"a b"},
      {L"", L""},
      {L"   ", L""},
      {L"ab", L"ab"},
      {L" a", L"a"},
      {L"a ", L"a"},
      {L"\t a \t", L"\t a \t"},
      {L" \ta", L"\ta"},
      // clang-format on
  };
  for (const auto& row : kCases) {
    std::wstring text = row.before;
    StringTrimW(text);
    EXPECT_EQ(text, row.after);
  }
}

TEST(DeleteBlankA, ReturnsAtOnceWithoutABlank) {
  for (const char* const unchanged : {"", "abc", "a\tb\r\n"}) {
    std::string text = unchanged;
    DeleteBlankA(text);
    EXPECT_EQ(text, unchanged);
  }
}

// The text that DeleteBlankA is working on; read by the alarm that ends it.
std::string g_blank_text;

void ReportAndExit(int) {
  const bool erased = g_blank_text == "ab";
  _exit(erased ? 42 : 1);
}

TEST(DeleteBlankADeathTest, ErasesFromTheFirstBlankOnAndNeverReturns) {
  EXPECT_EXIT(
      {
        g_blank_text = "ab c d";
        signal(SIGALRM, ReportAndExit);
        alarm(1);
        DeleteBlankA(g_blank_text);
        _exit(0);
      },
      testing::ExitedWithCode(42), "");
}

// A buffer between guards that must survive, filled with something else than zeros.
struct GuardedBytes {
  GuardedBytes() { std::memset(this, 0x5A, sizeof *this); }
  char before, buffer[8], after;
};

TEST(CopyUtf8ToBuffer, FillsTheRestWithZeros) {
  GuardedBytes bytes;
  CopyUtf8ToBuffer("abc", bytes.buffer, sizeof bytes.buffer);
  EXPECT_EQ(std::string(bytes.buffer, 8), std::string("abc\0\0\0\0\0", 8));
}

TEST(CopyUtf8ToBuffer, CutsSoThatTheTerminatingZeroFits) {
  GuardedBytes bytes;
  CopyUtf8ToBuffer("abcdefg", bytes.buffer, sizeof bytes.buffer);
  EXPECT_STREQ(bytes.buffer, "abcdefg");
  CopyUtf8ToBuffer("abcdefghijk", bytes.buffer, sizeof bytes.buffer);
  EXPECT_STREQ(bytes.buffer, "abcdefg");
  EXPECT_EQ(bytes.before, 0x5A);
  EXPECT_EQ(bytes.after, 0x5A);
}

TEST(CopyUtf8ToBuffer, NeverCutsInsideACharacter) {
  constexpr struct {
    const char *text, *expected;
  } kCases[] = {
      {"abcdef\xC3\xBC", "abcdef"},
      {"abcde\xE2\x82\xAC", "abcde"},
      {"abcd\xE2\x82\xAC", "abcd\xE2\x82\xAC"},
      {"abcd\xF0\x9F\x92\xBEx", "abcd"},
      {"abc\xF0\x9F\x92\xBEx", "abc\xF0\x9F\x92\xBE"},
      {"\xC3\xBC\xC3\xBC\xC3\xBC\xC3\xBC", "\xC3\xBC\xC3\xBC\xC3\xBC"},
  };
  for (const auto& row : kCases) {
    char buffer[8];
    CopyUtf8ToBuffer(row.text, buffer, sizeof buffer);
    EXPECT_STREQ(buffer, row.expected);
  }
}

TEST(CopyUtf8ToBuffer, DoesNotReadPastTheText) {
  char buffer[8];
  CopyUtf8ToBuffer(std::string_view("ab\x80", 2), buffer, sizeof buffer);
  EXPECT_STREQ(buffer, "ab");
}

TEST(CopyWideToBuffer, CutsAtTheLimitAndBeforeTheTerminatingZero) {
  wchar_t buffer[6] = {L'#', L'#', L'#', L'#', L'#', L'!'};
  CopyWideToBuffer(L"abcdefgh", 3, buffer, 5);
  EXPECT_EQ(std::wstring(buffer, 6), std::wstring(L"abc\0\0!", 6));
  CopyWideToBuffer(L"abcdefgh", 100, buffer, 5);
  EXPECT_EQ(std::wstring(buffer, 6), std::wstring(L"abcd\0!", 6));
  CopyWideToBuffer(L"x", 100, buffer, 5);
  EXPECT_EQ(std::wstring(buffer, 6), std::wstring(L"x\0\0\0\0!", 6));
}

}  // namespace
