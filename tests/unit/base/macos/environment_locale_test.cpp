// SPDX-License-Identifier: MIT
//
// The locale as macOS decides it. This program is linked with the source file of that platform, so
// its rule is tried wherever the tests run.
#include "base/environment_locale.h"

#include <langinfo.h>

#include <clocale>
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

using namespace zvisp;

namespace {

std::string EncodingWith(const char* variable, const char* locale) {
  for (const char* const name : {"LC_ALL", "LC_CTYPE", "LANG"})
    unsetenv(name);
  if (locale != nullptr) setenv(variable, locale, 1);
  std::setlocale(LC_ALL, "C");
  const ScopedEnvironmentLocale environment;
  return nl_langinfo(CODESET);
}

TEST(EnvironmentLocaleOfMacOS, IsUtf8WhenTheEnvironmentNamesNone) {
  EXPECT_EQ(EncodingWith("LC_ALL", nullptr), "UTF-8");
}

TEST(EnvironmentLocaleOfMacOS, IsUtf8InPlaceOfCAndPosix) {
  for (const char* const variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    EXPECT_EQ(EncodingWith(variable, "C"), "UTF-8") << variable;
    EXPECT_EQ(EncodingWith(variable, "POSIX"), "UTF-8") << variable;
  }
}

TEST(EnvironmentLocaleOfMacOS, IsTheOneThatTheEnvironmentNames) {
  EXPECT_EQ(EncodingWith("LANG", "C.UTF-8"), "UTF-8");
  EXPECT_FALSE(ReadsPathsOfTheSystem("C"));
  EXPECT_FALSE(ReadsPathsOfTheSystem("POSIX"));
  EXPECT_TRUE(ReadsPathsOfTheSystem("en_US.ISO8859-1"));
}

TEST(EnvironmentLocaleOfMacOS, GivesTheCharacterTypeBackAtTheEnd) {
  EncodingWith("LC_ALL", "C");
  EXPECT_STREQ(std::setlocale(LC_CTYPE, nullptr), "C");
}

}  // namespace
