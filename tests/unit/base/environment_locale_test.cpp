// SPDX-License-Identifier: MIT
#include "base/environment_locale.h"

#include <clocale>
#include <cstdlib>
#include <cwchar>
#include <string>

#include "base/transform.h"

#include <gtest/gtest.h>

using namespace zvisp;

namespace {

constexpr const char* kUnknown = "xx_YY.no-such-locale";

// All that a remote shell may hand on.
constexpr struct {
  int category;
  const char* variable;
} kCategories[] = {{LC_CTYPE, "LC_CTYPE"},       {LC_COLLATE, "LC_COLLATE"},
                   {LC_MESSAGES, "LC_MESSAGES"}, {LC_MONETARY, "LC_MONETARY"},
                   {LC_NUMERIC, "LC_NUMERIC"},   {LC_TIME, "LC_TIME"}};

class EnvironmentLocale : public testing::Test {
 protected:
  EnvironmentLocale() {
    for (const char* const name : {"LC_ALL", "LANG"})
      unsetenv(name);
    for (const auto& [category, name] : kCategories)
      unsetenv(name);
    std::setlocale(LC_ALL, "C");
  }
};

// Whether the character type that is current reads the two bytes of U+00FC as one character.
bool ReadsUtf8() {
  std::mbstate_t state = {};
  wchar_t character = 0;
  return std::mbrtowc(&character, "\xC3\xBC", 2, &state) == 2 && character == L'\u00FC';
}

TEST_F(EnvironmentLocale, IsTheOneThatTheEnvironmentNames) {
  for (const char* const variable : {"LANG", "LC_CTYPE", "LC_ALL"}) {
    setenv(variable, "C.UTF-8", 1);
    const ScopedEnvironmentLocale environment;
    EXPECT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C.UTF-8") << variable;
    EXPECT_TRUE(ReadsUtf8()) << variable;
    unsetenv(variable);
  }
}

TEST_F(EnvironmentLocale, IsTheCLocaleWhenTheEnvironmentNamesNoneOrThat) {
  {
    const ScopedEnvironmentLocale unset;
    EXPECT_FALSE(ReadsUtf8());
  }
  setenv("LC_ALL", "C", 1);
  const ScopedEnvironmentLocale named;
  EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C");
  EXPECT_FALSE(ReadsUtf8());
}

TEST_F(EnvironmentLocale, FallsBackToUtf8WhenTheMachineLacksTheOneNamed) {
  setenv("LC_ALL", kUnknown, 1);
  const ScopedEnvironmentLocale environment;
  EXPECT_TRUE(ReadsUtf8());
}

TEST_F(EnvironmentLocale, FallsBackToUtf8WhenTheMachineLacksThatOfTheCharacterTypeAlone) {
  setenv("LANG", "C", 1);
  setenv("LC_CTYPE", kUnknown, 1);
  const ScopedEnvironmentLocale environment;
  EXPECT_TRUE(ReadsUtf8());
}

TEST_F(EnvironmentLocale, TakesNothingFromTheOthersWhenOneCategoryIsUnknown) {
  setenv("LANG", "C.UTF-8", 1);
  for (const auto& [unknown, variable] : kCategories) {
    std::setlocale(LC_ALL, "C");
    setenv(variable, kUnknown, 1);
    const ScopedEnvironmentLocale environment;
    for (const auto& [category, name] : kCategories) {
      const bool is_left = category == unknown && category != LC_CTYPE;
      EXPECT_STREQ(std::setlocale(category, nullptr), is_left ? "C" : "C.UTF-8")
          << variable << name;
    }
    unsetenv(variable);
  }
}

TEST_F(EnvironmentLocale, KeepsTheCharacterTypeThatIsNamedWhenAnotherCategoryIsUnknown) {
  setenv("LC_CTYPE", "C", 1);
  for (const auto& [category, variable] : kCategories) {
    if (category == LC_CTYPE) continue;
    setenv(variable, kUnknown, 1);
    const ScopedEnvironmentLocale environment;
    EXPECT_FALSE(ReadsUtf8()) << variable;
    unsetenv(variable);
  }
}

TEST_F(EnvironmentLocale, KeepsNamesThatAreNotAsciiWorkingUnderAnUnknownLocale) {
  setenv("LC_ALL", kUnknown, 1);
  const CCpTransform transform;
  EXPECT_EQ(transform.ConvertUnicodeStringToANSI(L"\u00FC.bin"), "\xC3\xBC.bin");
  EXPECT_EQ(transform.ConvertCHARToUnicodeString("\xC3\xBC.bin"), L"\u00FC.bin");
}

TEST_F(EnvironmentLocale, GivesTheCharacterTypeBackAtTheEnd) {
  setenv("LC_ALL", "C.UTF-8", 1);
  { const ScopedEnvironmentLocale environment; }
  EXPECT_FALSE(ReadsUtf8());
  EXPECT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C");
}

TEST_F(EnvironmentLocale, LeavesTheOtherCategoriesSwitched) {
  setenv("LC_ALL", "C.UTF-8", 1);
  { const ScopedEnvironmentLocale environment; }
  for (const int category : {LC_COLLATE, LC_MONETARY, LC_NUMERIC, LC_TIME}) {
    EXPECT_STREQ(std::setlocale(category, nullptr), "C.UTF-8") << category;
  }
}

TEST_F(EnvironmentLocale, RestoresTheCharacterTypeThatWasCurrent) {
  std::setlocale(LC_CTYPE, "C.UTF-8");
  setenv("LC_ALL", "C", 1);
  {
    const ScopedEnvironmentLocale environment;
    EXPECT_FALSE(ReadsUtf8());
  }
  EXPECT_TRUE(ReadsUtf8());
}

TEST_F(EnvironmentLocale, LeavesTheCharacterTypeSwitchedWhenToldToKeepIt) {
  setenv("LC_ALL", "C.UTF-8", 1);
  {
    ScopedEnvironmentLocale environment;
    environment.Keep();
  }
  EXPECT_TRUE(ReadsUtf8());
}

TEST_F(EnvironmentLocale, NestsWithoutLosingTheOuterOne) {
  setenv("LC_ALL", "C.UTF-8", 1);
  const ScopedEnvironmentLocale outer;
  { const ScopedEnvironmentLocale inner; }
  EXPECT_TRUE(ReadsUtf8());
}

}  // namespace
