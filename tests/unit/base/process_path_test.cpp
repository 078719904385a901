// SPDX-License-Identifier: MIT
#include "base/process_path.h"

#include <cstring>

#include <gtest/gtest.h>

using namespace zvisp;

namespace {

TEST(ReadProcessPath, StaysInsideItsBufferAndTerminatesThePath) {
  constexpr std::size_t kCapacity = 8;
  char buffer[kCapacity + 2] = {};
  buffer[kCapacity] = '#';
  buffer[kCapacity + 1] = '#';
  ReadProcessPath(buffer, kCapacity);
  EXPECT_LT(strnlen(buffer, kCapacity), kCapacity);
  EXPECT_EQ(buffer[kCapacity], '#');
  EXPECT_EQ(buffer[kCapacity + 1], '#');
}

}  // namespace
