// SPDX-License-Identifier: MIT
#include "display/crc32.h"

#include <gtest/gtest.h>

namespace {

constexpr std::uint8_t kDigits[] = {'1', '2', '3', '4', '5', '6', '7', '8', '9'};

TEST(Crc32, GivesTheCheckValueOfTheAlgorithm) {
  EXPECT_EQ(simulator::Crc32(kDigits, 9), 0xCBF43926u);
  EXPECT_EQ(simulator::Crc32(kDigits, 0), 0u);
}

TEST(Crc32, GoesOnFromTheBytesBefore) {
  EXPECT_EQ(simulator::Crc32(kDigits + 4, 5, simulator::Crc32(kDigits, 4)), 0xCBF43926u);
}

}  // namespace
