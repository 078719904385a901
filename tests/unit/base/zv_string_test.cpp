// SPDX-License-Identifier: MIT
#include "base/zv_string.h"

#include <clocale>
#include <cstdlib>
#include <cwchar>
#include <string>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>

namespace {

static_assert(std::has_virtual_destructor_v<CCpZvString>);
static_assert(sizeof(wchar_t) == 4, "a wide character is a UTF-32 unit");
static_assert(std::is_same_v<decltype(CCpZvString() < L""), bool>);

std::wstring Value(const CCpZvString& text) {
  return text.GetString();
}

TEST(ZvString, IsEmptyAfterConstruction) {
  const CCpZvString text;
  EXPECT_TRUE(text.IsEmpty());
  EXPECT_EQ(text.GetLength(), 0);
  EXPECT_STREQ(text.GetString(), L"");
}

TEST(ZvString, IsConstructedFromWideText) {
  EXPECT_EQ(Value(CCpZvString(L"abc")), L"abc");
  EXPECT_EQ(Value(CCpZvString(L"abc", 2)), L"ab");
  EXPECT_EQ(Value(CCpZvString(3, L'x')), L"xxx");
}

TEST(ZvString, TakesANullPointerForEmptyText) {
  const wchar_t* const nothing = nullptr;
  CCpZvString text(nothing);
  EXPECT_TRUE(text.IsEmpty());
  EXPECT_TRUE(CCpZvString(nothing, 3).IsEmpty());
  text = L"abc";
  text = nothing;
  EXPECT_TRUE(text.IsEmpty());
}

TEST(ZvString, KeepsZerosInsideACountedText) {
  const CCpZvString text(L"a\0b", 3);
  EXPECT_EQ(text.GetLength(), 3);
  EXPECT_EQ(text.GetString()[2], L'b');
  EXPECT_EQ(CCpZvString(text).GetLength(), 3);
}

TEST(ZvString, TakesASubstringOfAnotherString) {
  const CCpZvString text(L"abcdef");
  EXPECT_EQ(Value(CCpZvString(text, 2, 3)), L"cde");
  EXPECT_EQ(Value(CCpZvString(text, 4, 100)), L"ef");
  EXPECT_EQ(Value(CCpZvString(text, 6, 1)), L"");
}

TEST(ZvString, TakesAnEmptySubstringFromPastTheEnd) {
  EXPECT_EQ(Value(CCpZvString(CCpZvString(L"abc"), 4, 1)), L"");
}

TEST(ZvString, IsAssignedFromEveryKindOfText) {
  wchar_t array[] = L"array";
  CCpZvString text(L"old");
  EXPECT_EQ(Value(text = CCpZvString(L"other")), L"other");
  EXPECT_EQ(Value(text = L"literal"), L"literal");
  EXPECT_EQ(Value(text = static_cast<wchar_t*>(array)), L"array");
  EXPECT_EQ(Value(text = L'c'), L"c");
  EXPECT_EQ(Value(text = std::wstring(L"standard")), L"standard");
  EXPECT_EQ(Value(text = std::string("utf8")), L"utf8");
}

TEST(ZvString, SurvivesAssignmentFromItsOwnText) {
  CCpZvString text(L"abcdef");
  text = text.GetString() + 2;
  EXPECT_EQ(Value(text), L"cdef");
  text = std::as_const(text);
  EXPECT_EQ(Value(text), L"cdef");
}

TEST(ZvString, ReadsNarrowTextAsUtf8) {
  CCpZvString text;
  text = std::string("gr\xC3\xBC\xC3\x9F \xE2\x82\xAC \xF0\x9F\x92\xBE");
  EXPECT_EQ(Value(text), L"gr\u00FC\u00DF \u20AC \U0001F4BE");
}

TEST(ZvString, IsEmptyAfterAssignmentOfInvalidUtf8) {
  for (const char* const invalid : {"abc\xFF", "\xC3", "\x80", "\xC0\xAF", "\xE2\x82"}) {
    CCpZvString text(L"old");
    text = std::string(invalid);
    EXPECT_TRUE(text.IsEmpty()) << invalid;
  }
}

TEST(ZvString, ComparesUnitByUnitAndCaseSensitively) {
  constexpr struct {
    const wchar_t *left, *right;
    bool less, equal;
  } kCases[] = {
      // clang-format off
      {L"abc", L"abc", false, true},
      {L"abc", L"abd", true, false},
      {L"ab", L"abc", true, false},
      {L"", L"a", true, false},
      {L"ABC", L"abc", true, false},
      {L"b", L"abc", false, false},
      {L"\u00E9", L"z", false, false},
      {L"\uFFFF", L"\U00010000", true, false},
      {L"\u00E9", L"e\u0301", false, false},
      // clang-format on
  };
  for (const auto& row : kCases) {
    const CCpZvString left(row.left);
    const CCpZvString right(row.right);
    EXPECT_EQ(left == right, row.equal) << row.left << L" and " << row.right;
    EXPECT_EQ(left != right, !row.equal) << row.left << L" and " << row.right;
    EXPECT_EQ(left < right, row.less) << row.left << L" and " << row.right;
    EXPECT_EQ(left <= right, row.less || row.equal) << row.left << L" and " << row.right;
    EXPECT_EQ(left > right, !row.less && !row.equal) << row.left << L" and " << row.right;
    EXPECT_EQ(left >= right, !row.less) << row.left << L" and " << row.right;
  }
}

TEST(ZvString, ComparesWithAWideTextOnTheRight) {
  const CCpZvString text(L"b");
  EXPECT_TRUE(text == L"b");
  EXPECT_TRUE(text != L"a");
  EXPECT_TRUE(text < L"c");
  EXPECT_TRUE(text <= L"b");
  EXPECT_TRUE(text > L"a");
  EXPECT_TRUE(text >= L"b");
}

TEST(ZvString, ComparesWithAWideTextOnTheLeft) {
  const CCpZvString text(L"b");
  EXPECT_TRUE(L"b" == text);
  EXPECT_TRUE(L"a" != text);
  EXPECT_TRUE(L"a" < text);
  EXPECT_TRUE(L"b" <= text);
  EXPECT_TRUE(L"c" > text);
  EXPECT_TRUE(L"b" >= text);
}

TEST(ZvString, ConcatenatesStringsTextsAndCharacters) {
  const CCpZvString left(L"ab");
  const CCpZvString right(L"cd");
  EXPECT_EQ(Value(left + right), L"abcd");
  EXPECT_EQ(Value(left + L"cd"), L"abcd");
  EXPECT_EQ(Value(L"ab" + right), L"abcd");
  EXPECT_EQ(Value(left + L'c'), L"abc");
  EXPECT_EQ(Value(L'b' + right), L"bcd");
  EXPECT_EQ(Value(left), L"ab");
}

TEST(ZvString, FormatsWideText) {
  CCpZvString text(L"old");
  text.Format(L"%ls%d_%ls=0x%X", L"fw", -7, L"Path", 0x1Fu);
  EXPECT_EQ(Value(text), L"fw-7_Path=0x1F");
}

TEST(ZvString, FormatsItsOwnValue) {
  CCpZvString text(L"ab");
  text.Format(L"%ls%ls", text.GetString(), text.GetString());
  EXPECT_EQ(Value(text), L"abab");
}

TEST(ZvString, FormatsUpTo1023Characters) {
  CCpZvString text;
  text.Format(L"%ls", std::wstring(1023, L'x').c_str());
  EXPECT_EQ(Value(text), std::wstring(1023, L'x'));
}

TEST(ZvString, NeverKeepsMoreThan1023CharactersOfAFormattedText) {
  for (const std::size_t length : {1024u, 1025u, 5000u}) {
    CCpZvString text(L"old");
    text.Format(L"%ls", std::wstring(length, L'x').c_str());
    EXPECT_LE(text.GetLength(), 1023);
    EXPECT_EQ(Value(text), std::wstring(static_cast<std::size_t>(text.GetLength()), L'x'));
  }
}

TEST(ZvString, LeftTakesTheFirstCharactersOrTheWholeString) {
  const CCpZvString text(L"abc");
  constexpr struct {
    int count;
    const wchar_t* expected;
  } kCases[] = {
      // clang-format off
      {0, L""},
      {1, L"a"},
      {2, L"ab"},
      {3, L"abc"},
      {10, L"abc"},
      {-1, L"abc"},
      // clang-format on
  };
  for (const auto& row : kCases) {
    EXPECT_EQ(Value(text.Left(row.count)), row.expected) << row.count;
  }
}

TEST(ZvString, RightTakesTheLastCharactersOrNothing) {
  const CCpZvString text(L"abc");
  constexpr struct {
    int count;
    const wchar_t* expected;
  } kCases[] = {
      // clang-format off
      {0, L""},
      {1, L"c"},
      {2, L"bc"},
      {3, L""},
      {10, L""},
      {-1, L""},
      // clang-format on
  };
  for (const auto& row : kCases) {
    EXPECT_EQ(Value(text.Right(row.count)), row.expected) << row.count;
  }
}

TEST(ZvString, CountsWideCharacters) {
  EXPECT_EQ(CCpZvString(L"\u20AC\U0001F4BEx").GetLength(), 3);
  EXPECT_FALSE(CCpZvString(L"x").IsEmpty());
}

TEST(ZvString, GivesTheSamePointerForBufferAndString) {
  CCpZvString text(L"abc");
  EXPECT_EQ(text.GetBuffer(), text.GetString());
  EXPECT_EQ(std::as_const(text).GetBuffer(), text.GetString());
  text.GetBuffer()[0] = L'X';
  EXPECT_EQ(Value(text), L"Xbc");
}

TEST(ZvString, GivesItsUtf8Form) {
  const CCpZvString text(L"\u00FC\u20AC\U0001F4BE");
  EXPECT_EQ(text.GetUtf8String(), "\xC3\xBC\xE2\x82\xAC\xF0\x9F\x92\xBE");
  EXPECT_STREQ(text.GetUtf8StringBuffer(), "\xC3\xBC\xE2\x82\xAC\xF0\x9F\x92\xBE");
  EXPECT_EQ(text.GetUtf8StringLength(), 9);
}

TEST(ZvString, HandsUtf8ToTheOperatingSystemWhateverTheLocale) {
  setenv("LC_ALL", "C", 1);
  const CCpZvString text(L"\u00FC");
  EXPECT_STREQ(text.GetStringBufferBaseOnOS(), "\xC3\xBC");
}

TEST(ZvString, KeepsUtf8TextOf10239BytesAndLosesLonger) {
  EXPECT_EQ(CCpZvString(10239, L'x').GetUtf8StringLength(), 10239);
  EXPECT_STREQ(CCpZvString(10240, L'x').GetUtf8StringBuffer(), "");
  EXPECT_EQ(CCpZvString(10240, L'x').GetUtf8String(), "");
  EXPECT_EQ(CCpZvString(10240, L'x').GetUtf8StringLength(), 0);
}

TEST(ZvString, GivesItsTextInTheEncodingOfTheLocale) {
  const CCpZvString text(L"\u00FC");
  setenv("LC_ALL", "C.UTF-8", 1);
  EXPECT_STREQ(text.GetAnsiString(), "\xC3\xBC");
  setenv("LC_ALL", "C", 1);
  EXPECT_STREQ(text.GetAnsiString(), "");
}

TEST(ZvString, KeepsNarrowPointersUntilTheNextNarrowConversion) {
  CCpZvString text(L"first");
  const char* const narrow = text.GetUtf8StringBuffer();
  text = L"second";
  EXPECT_STREQ(narrow, "first");
  text.Format(L"third");
  text = std::string("fourth");
  text = CCpZvString(L"fifth");
  EXPECT_STREQ(narrow, "first");
  EXPECT_STREQ(text.GetUtf8StringBuffer(), "fifth");
}

TEST(ZvString, ConvertsACopyAnew) {
  const CCpZvString text(L"original");
  const char* const narrow = text.GetUtf8StringBuffer();
  CCpZvString copy(text);
  EXPECT_STREQ(copy.GetUtf8StringBuffer(), "original");
  EXPECT_NE(copy.GetUtf8StringBuffer(), narrow);
  copy = L"copy";
  EXPECT_STREQ(copy.GetUtf8StringBuffer(), "copy");
  EXPECT_STREQ(narrow, "original");
}

TEST(ZvString, KeepsItsOwnNarrowTextWhenAnotherStringIsAssigned) {
  CCpZvString text(L"mine");
  const char* const narrow = text.GetUtf8StringBuffer();
  const CCpZvString other(L"other");
  other.ConverToUtf8String();
  text = other;
  EXPECT_STREQ(narrow, "mine");
  EXPECT_STREQ(text.GetUtf8StringBuffer(), "other");
}

}  // namespace
