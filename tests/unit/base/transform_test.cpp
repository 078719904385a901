// SPDX-License-Identifier: MIT
#include "base/transform.h"

#include <clocale>
#include <cstdlib>
#include <memory>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

namespace {

static_assert(std::has_virtual_destructor_v<CCpTransform>);

const CCpTransform kTransform;

// The locale that the environment names, and the one that is current in the process.
void GivenLocales(const char* environment, const char* current) {
  setenv("LC_ALL", environment, 1);
  ASSERT_NE(std::setlocale(LC_ALL, current), nullptr);
}

constexpr struct {
  const wchar_t* wide;
  const char* utf8;
} kSamePairs[] = {
    {L"", ""},
    {L"plain.bin", "plain.bin"},
    {L"\x01\x7F", "\x01\x7F"},
    {L"\u0080", "\xC2\x80"},
    {L"\u0080\u07FF", "\xC2\x80\xDF\xBF"},
    {L"\u0800\uFFFD", "\xE0\xA0\x80\xEF\xBF\xBD"},
    {L"\U00010000\U0010FFFF", "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"},
    {L"\uFEFFmark", "\xEF\xBB\xBFmark"},
};

TEST(Transform, ConvertsBetweenWideTextAndUtf8) {
  for (const auto& row : kSamePairs) {
    EXPECT_EQ(kTransform.ConvertUnicodeStringToUTF8(row.wide), row.utf8);
    EXPECT_EQ(kTransform.ConvertUTF8StringToUnicode(row.utf8), row.wide);
    EXPECT_EQ(kTransform.ConvertStringToWString(row.utf8), row.wide);
  }
}

TEST(Transform, GivesNothingForInvalidUtf8) {
  for (const char* const invalid :
       {"\x80", "ok\xFF", "\xC3", "\xE2\x82", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80"}) {
    EXPECT_EQ(kTransform.ConvertUTF8StringToUnicode(invalid), L"") << invalid;
  }
}

TEST(Transform, GivesNothingForInvalidWideText) {
  for (const unsigned int unit : {0xD800u, 0xDFFFu, 0x110000u, 0x80000000u, 0xFFFFFFFFu}) {
    const std::wstring text = {L'o', L'k', static_cast<wchar_t>(unit)};
    EXPECT_EQ(kTransform.ConvertUnicodeStringToUTF8(text), "") << unit;
  }
}

TEST(Transform, EndsAtTheFirstZero) {
  EXPECT_EQ(kTransform.ConvertUnicodeStringToUTF8(std::wstring(L"ab\0cd", 5)), "ab");
  EXPECT_EQ(kTransform.ConvertUTF8StringToUnicode(std::string("ab\0cd", 5)), L"ab");
}

TEST(Transform, KeepsUpTo10239BytesOfUtf8) {
  EXPECT_EQ(kTransform.ConvertUnicodeStringToUTF8(std::wstring(10239, L'x')),
            std::string(10239, 'x'));
  EXPECT_EQ(kTransform.ConvertUnicodeStringToUTF8(std::wstring(5119, L'\u00FC') + L"x").size(),
            10239u);
}

TEST(Transform, LosesWideTextThatNeeds10240BytesWhole) {
  EXPECT_EQ(kTransform.ConvertUnicodeStringToUTF8(std::wstring(10240, L'x')), "");
  EXPECT_EQ(kTransform.ConvertUnicodeStringToUTF8(std::wstring(5120, L'\u00FC')), "");
  EXPECT_EQ(kTransform.ConvertUnicodeStringToUTF8(std::wstring(100000, L'x')), "");
}

TEST(Transform, LosesUtf8TextOf10240CharactersWhole) {
  EXPECT_EQ(kTransform.ConvertUTF8StringToUnicode(std::string(10239, 'x')),
            std::wstring(10239, L'x'));
  EXPECT_EQ(kTransform.ConvertUTF8StringToUnicode(std::string(10240, 'x')), L"");
  std::string umlauts = "\xC3\xBC";
  while (umlauts.size() < 2 * 10239)
    umlauts += "\xC3\xBC";
  EXPECT_EQ(kTransform.ConvertUTF8StringToUnicode(umlauts), std::wstring(10239, L'\u00FC'));
  EXPECT_EQ(kTransform.ConvertUTF8StringToUnicode(umlauts + "\xC3\xBC"), L"");
}

TEST(Transform, NarrowsIntoTheEncodingOfTheEnvironment) {
  GivenLocales("C.UTF-8", "C");
  EXPECT_EQ(kTransform.ConvertUnicodeStringToANSI(L"a\u00FC\u20AC"), "a\xC3\xBC\xE2\x82\xAC");
  EXPECT_EQ(kTransform.ConvertWCHARToANSIString(L"a\u00FC\u20AC"), "a\xC3\xBC\xE2\x82\xAC");
  const std::unique_ptr<char[]> owned(kTransform.ConvertWCHARToCHAR(L"a\u00FC\u20AC"));
  EXPECT_STREQ(owned.get(), "a\xC3\xBC\xE2\x82\xAC");
}

TEST(Transform, GivesNothingForWideTextThatTheLocaleCannotExpress) {
  GivenLocales("C", "C");
  EXPECT_EQ(kTransform.ConvertUnicodeStringToANSI(L"a\u20AC"), "");
  EXPECT_EQ(kTransform.ConvertWCHARToANSIString(L"a\u20AC"), "");
  EXPECT_EQ(kTransform.ConvertWCHARToCHAR(L"a\u20AC"), nullptr);
}

TEST(Transform, NarrowsAsciiInTheCLocale) {
  GivenLocales("C", "C");
  EXPECT_EQ(kTransform.ConvertUnicodeStringToANSI(L"plain"), "plain");
  EXPECT_EQ(kTransform.ConvertWCHARToANSIString(L"plain"), "plain");
}

TEST(Transform, NarrowsEmptyTextToAnEmptyOwnedArray) {
  const std::unique_ptr<char[]> owned(kTransform.ConvertWCHARToCHAR(L""));
  ASSERT_NE(owned, nullptr);
  EXPECT_STREQ(owned.get(), "");
}

TEST(Transform, NarrowsUpToTheFirstZero) {
  GivenLocales("C.UTF-8", "C");
  EXPECT_EQ(kTransform.ConvertUnicodeStringToANSI(std::wstring(L"ab\0cd", 5)), "ab");
}

TEST(Transform, NarrowsTextOfAnyLength) {
  GivenLocales("C.UTF-8", "C");
  EXPECT_EQ(kTransform.ConvertUnicodeStringToANSI(std::wstring(50000, L'\u00FC')).size(), 100000u);
}

TEST(Transform, WidensFromTheEncodingOfTheEnvironment) {
  GivenLocales("C.UTF-8", "C");
  EXPECT_EQ(kTransform.ConvertCHARToUnicodeString("a\xC3\xBC\xE2\x82\xAC"), L"a\u00FC\u20AC");
  EXPECT_EQ(kTransform.ConvertCHARToUnicodeString(""), L"");
}

TEST(Transform, GivesNothingForTextThatTheLocaleCannotRead) {
  GivenLocales("C.UTF-8", "C.UTF-8");
  for (const char* const invalid : {"ok\xFF", "\xC3", "\xED\xA0\x80"}) {
    EXPECT_EQ(kTransform.ConvertCHARToUnicodeString(invalid), L"") << invalid;
    EXPECT_EQ(kTransform.ConvertANSIStringToUnicode(invalid), L"") << invalid;
  }
}

TEST(Transform, MeasuresStandardStringsUnderTheCurrentLocale) {
  GivenLocales("C.UTF-8", "C.UTF-8");
  EXPECT_EQ(kTransform.ConvertANSIStringToUnicode("a\xC3\xBC"), L"a\u00FC");
  GivenLocales("C.UTF-8", "C");
  EXPECT_EQ(kTransform.ConvertANSIStringToUnicode("plain"), L"plain");
  EXPECT_EQ(kTransform.ConvertANSIStringToUnicode("a\xC3\xBC"), L"")
      << "the C locale cannot measure it";
}

TEST(Transform, ConvertsMeasuredStringsUnderTheEnvironmentsLocale) {
  GivenLocales("C", "C.UTF-8");
  EXPECT_EQ(kTransform.ConvertANSIStringToUnicode("plain"), L"plain");
  EXPECT_EQ(kTransform.ConvertANSIStringToUnicode("a\xC3\xBC"), L"")
      << "the C locale cannot convert what the current one measured";
}

TEST(Transform, SwitchesTheOtherCategoriesEvenWhenTheMeasurementFails) {
  GivenLocales("C.UTF-8", "C");
  EXPECT_EQ(kTransform.ConvertANSIStringToUnicode("\xC3\xBC"), L"");
  EXPECT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C");
  EXPECT_STREQ(std::setlocale(LC_NUMERIC, nullptr), "C.UTF-8");
}

TEST(Transform, RestoresTheCharacterTypeOnly) {
  GivenLocales("C.UTF-8", "C");
  EXPECT_EQ(kTransform.ConvertUnicodeStringToANSI(L"\u00FC"), "\xC3\xBC");
  EXPECT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C");
  for (const int category : {LC_COLLATE, LC_MONETARY, LC_NUMERIC, LC_TIME}) {
    EXPECT_STREQ(std::setlocale(category, nullptr), "C.UTF-8") << category;
  }
}

TEST(Transform, TakesNullPointersForEmptyText) {
  EXPECT_EQ(kTransform.ConvertWCHARToANSIString(nullptr), "");
  EXPECT_EQ(kTransform.ConvertWCHARToCHAR(nullptr), nullptr);
  EXPECT_EQ(kTransform.ConvertCHARToUnicodeString(nullptr), L"");
}

}  // namespace
