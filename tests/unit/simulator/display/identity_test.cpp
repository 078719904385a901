// SPDX-License-Identifier: MIT
#include "display/identity.h"

#include <gtest/gtest.h>

namespace {

using simulator::Identity;

TEST(Identity, AnEmptyFileLeavesTheDefaults) {
  Identity identity;
  EXPECT_TRUE(ParseIdentity("", identity).Ok());
  EXPECT_EQ(identity.version, "1.0");
  EXPECT_EQ(identity.user_info, "simulated display");
  EXPECT_EQ(identity.scaler_type, 1u);
}

TEST(Identity, EveryKeyCanBeSet) {
  Identity identity;
  const char* const text =
      "# bench 4\nversion = 2.10\nuser_info=Line 4, slot b\nscaler_type = 0x1F\n";
  EXPECT_TRUE(ParseIdentity(text, identity).Ok());
  EXPECT_EQ(identity.version, "2.10");
  EXPECT_EQ(identity.user_info, "Line 4, slot b");
  EXPECT_EQ(identity.scaler_type, 31u);
}

TEST(Identity, ASlipIsRefusedWithItsLine) {
  for (const char* const slip : {"colour = red", "version", "scaler_type = big", "scaler_type ="}) {
    Identity identity;
    const auto outcome = simulator::ParseIdentity("version = 2\n\n" + std::string(slip), identity);
    EXPECT_EQ(outcome.code, 0x5A2Du) << slip;
    EXPECT_EQ(outcome.why, "line 3 of its identity file is illegal") << slip;
  }
}

}  // namespace
