// SPDX-License-Identifier: MIT
#include "line/job/serial_pattern.h"

#include <chrono>

#include <gtest/gtest.h>

namespace line {
namespace {

bool Matches(const std::string& pattern, const std::string& serial) {
  std::string error;
  const auto expression = SerialPattern::Make(pattern, error);
  EXPECT_NE(expression, nullptr) << pattern << ": " << error;
  return expression != nullptr && expression->Matches(serial);
}

std::string WhyNot(const std::string& pattern) {
  std::string error;
  EXPECT_EQ(SerialPattern::Make(pattern, error), nullptr) << pattern;
  return error;
}

TEST(SerialPatternTest, MatchesTheWholeSerial) {
  EXPECT_TRUE(Matches("^ZP[0-9]{8}$", "ZP00000001"));
  EXPECT_TRUE(Matches("ZP\\d+|T.", "T1"));
  EXPECT_FALSE(Matches("ZP[0-9]{8}", "ZP000000011"));
  EXPECT_FALSE(Matches("ZP[0-9]{8}", "xZP00000001"));
  EXPECT_FALSE(Matches("ZP[0-9]{8}", "zp00000001"));
  EXPECT_FALSE(Matches("[^]*", std::string(129, 'a')));
}

TEST(SerialPatternTest, NoPatternTakesLong) {
  const std::string serial(128, 'a');
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(Matches("(a+)+b", serial));
  EXPECT_FALSE(Matches("(a|aa)*(a*)*b", serial));
  EXPECT_TRUE(Matches("(a{0,60}){0,60}", serial));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

TEST(SerialPatternTest, SaysWhatIsWrongWithAPattern) {
  EXPECT_EQ(WhyNot("[0-9"), "a \"[\" without \"]\"");
  EXPECT_EQ(WhyNot("(ZP"), "a \"(\" or \")\" without its other");
  EXPECT_EQ(WhyNot("a{2,1}"), "braces that hold no count");
  EXPECT_EQ(WhyNot("a\\"), "a backslash before a wrong character");
  EXPECT_EQ(WhyNot("[[:foo:]]"), "a class of characters without a name");
  EXPECT_EQ(WhyNot(std::string(1025, 'a')), "more than 1024 bytes");
}

// libc++ takes these, and gives up when a serial is matched.
#ifdef __GLIBCXX__
TEST(SerialPatternTest, SaysWhatItsLibraryCannotDo) {
  EXPECT_EQ(WhyNot("[9-0]"), "a range that ends before it begins");
  EXPECT_EQ(WhyNot("(a)\\1"), "counts that are too large, or back-references");
  EXPECT_EQ(WhyNot("((a{1,100}){1,100}){1,100}"), "counts that are too large, or back-references");
}
#endif

}  // namespace
}  // namespace line
