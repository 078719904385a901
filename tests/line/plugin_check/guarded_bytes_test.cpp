// SPDX-License-Identifier: MIT
#include "line/plugin_check/guarded_bytes.h"

#include <algorithm>
#include <cstdint>

#include <gtest/gtest.h>

namespace line {
namespace {

constexpr std::size_t kSize = 275328;

void WriteAt(const GuardedBytes& bytes, std::ptrdiff_t offset) {
  volatile unsigned char* const begin = bytes.Begin();
  begin[offset] = 1;
}

TEST(GuardedBytes, AreZeroAlignedAndWritable) {
  for (const Guard guard : {Guard::kNone, Guard::kBefore, Guard::kAfter}) {
    const GuardedBytes bytes(kSize, guard);
    EXPECT_EQ(std::count(bytes.Begin(), bytes.Begin() + kSize, 0), std::ptrdiff_t{kSize});
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(bytes.Begin()) % 8, 0u);
    std::fill(bytes.Begin(), bytes.Begin() + kSize, 1);
    EXPECT_TRUE(bytes.IsPatternWhole());
  }
}

TEST(GuardedBytesDeathTest, AForbiddenPageIsRightThere) {
  const GuardedBytes before(kSize, Guard::kBefore);
  const GuardedBytes after(kSize, Guard::kAfter);
  EXPECT_DEATH(WriteAt(before, -1), "");
  EXPECT_DEATH(WriteAt(after, kSize), "");
}

TEST(GuardedBytes, ThePatternOnTheOtherSideShowsAWrite) {
  const GuardedBytes before(kSize, Guard::kBefore);
  WriteAt(before, kSize);
  EXPECT_FALSE(before.IsPatternWhole());
  const GuardedBytes after(kSize, Guard::kAfter);
  WriteAt(after, -1);
  EXPECT_FALSE(after.IsPatternWhole());
  const GuardedBytes none(kSize, Guard::kNone);
  WriteAt(none, kSize + 5000);
  EXPECT_FALSE(none.IsPatternWhole());
}

}  // namespace
}  // namespace line
