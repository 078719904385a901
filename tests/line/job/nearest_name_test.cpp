// SPDX-License-Identifier: MIT
#include "line/job/nearest_name.h"

#include <gtest/gtest.h>

namespace line {
namespace {

const std::vector<std::string> kNames = {"stagger_ms", "stop_after", "once", "copy"};

TEST(NearestNameTest, FindsOneSlipInThreeLetters) {
  EXPECT_EQ(NearestName("staggr_ms", kNames), "stagger_ms");    // removed
  EXPECT_EQ(NearestName("stopp_after", kNames), "stop_after");  // added
  EXPECT_EQ(NearestName("onec", kNames), "once");               // swapped
  EXPECT_EQ(NearestName("kopy", kNames), "copy");               // changed
  EXPECT_EQ(NearestName("once", kNames), "once");
}

TEST(NearestNameTest, WhatIsFarIsNothing) {
  EXPECT_EQ(NearestName("kops", kNames), "");
  EXPECT_EQ(NearestName("telephone", kNames), "");
  EXPECT_EQ(NearestName("", kNames), "");
  EXPECT_EQ(NearestName(std::string(5000, 'o'), kNames), "");
}

}  // namespace
}  // namespace line
