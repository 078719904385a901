// SPDX-License-Identifier: MIT
#include "display/key_values.h"

#include <gtest/gtest.h>

namespace {

TEST(KeyValues, LinesThatSaySomethingKeepTheirNumbers) {
  const auto lines = simulator::SplitLines("# note\n\n  one \t\r\n#\ntwo");
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0].number, 3u);
  EXPECT_EQ(lines[0].text, "one");
  EXPECT_EQ(lines[1].number, 5u);
  EXPECT_EQ(lines[1].text, "two");
  EXPECT_TRUE(simulator::SplitLines("").empty());
}

TEST(KeyValues, APairIsSplitAtItsFirstEqualsSign) {
  const auto pair = simulator::SplitKeyValue("user_info =  a = b");
  ASSERT_TRUE(pair);
  EXPECT_EQ(pair->key, "user_info");
  EXPECT_EQ(pair->value, "a = b");
  EXPECT_EQ(simulator::SplitKeyValue("key=")->value, "");
}

TEST(KeyValues, ALineWithoutKeyOrEqualsSignIsNoPair) {
  for (const char* const text : {"", "key", "= value", " =", "="})
    EXPECT_FALSE(simulator::SplitKeyValue(text)) << text;
}

TEST(KeyValues, NumbersAreDecimalOrHexadecimal) {
  const struct {
    const char* text;
    std::uint32_t number;
  } kNumbers[] = {{"0", 0}, {"42", 42}, {"007", 7}, {"0x5a2E", 0x5A2E}, {"4294967295", 0xFFFFFFFF}};
  for (const auto& [text, number] : kNumbers)
    EXPECT_EQ(simulator::ParseNumber(text), number) << text;
}

TEST(KeyValues, WhatIsNoNumberOf32BitsIsRefused) {
  for (const char* const text :
       {"", "x", "-1", "+1", "1 ", " 1", "0x", "4294967296", "1.5", "0x-1"})
    EXPECT_EQ(simulator::ParseNumber(text), std::nullopt) << text;
}

}  // namespace
