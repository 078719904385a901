// SPDX-License-Identifier: MIT
#include "plugin/zeroed.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "plugin/command_setting.h"

#include <gtest/gtest.h>

namespace {

// Neither a multiple of a page nor less than one.
constexpr std::size_t kBytes = 3 * 4096 + 100;

struct ByteCase {
  std::size_t at;
  unsigned char value;
};

// The edges of the pages, and the last byte of all.
constexpr ByteCase kSingleBytes[] = {{0, 1},    {4095, 2},  {4096, 3},
                                     {8191, 4}, {12288, 5}, {kBytes - 1, 6}};

TEST(Zeroed, ZeroesEveryByteAndNoneBehind) {
  std::vector<unsigned char> memory(kBytes + 1, 0xA5);
  ZeroBytes(memory.data(), kBytes);
  EXPECT_EQ(std::count(memory.begin(), memory.end(), 0), static_cast<long>(kBytes));
  EXPECT_EQ(memory[kBytes], 0xA5);
}

TEST(Zeroed, CopiesAByteThatDiffersWhereverItStands) {
  for (const ByteCase& single : kSingleBytes) {
    std::vector<unsigned char> from(kBytes, 0x11);
    std::vector<unsigned char> to = from;
    from[single.at] = single.value;
    CopyDifferingBytes(to.data(), from.data(), kBytes);
    EXPECT_EQ(to, from) << single.at;
  }
}

TEST(Zeroed, CopiesAByteOntoZerosWhereverItStands) {
  for (const ByteCase& single : kSingleBytes) {
    std::vector<unsigned char> from(kBytes);
    from[single.at] = single.value;
    std::vector<unsigned char> to(kBytes);
    CopyBytesOntoZeros(to.data(), from.data(), kBytes);
    EXPECT_EQ(to, from) << single.at;
  }
}

TEST(Zeroed, CopiesNothingBehindTheEnd) {
  const std::vector<unsigned char> from(kBytes + 1, 0x77);
  std::vector<unsigned char> to(kBytes + 1);
  CopyBytesOntoZeros(to.data(), from.data(), kBytes);
  EXPECT_EQ(to[kBytes - 1], 0x77);
  EXPECT_EQ(to[kBytes], 0);
}

TEST(Zeroed, CopyOnTheHeapHasEveryByteOfTheRecord) {
  using Setting = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;
  const auto original = MakeZeroed<Setting>();
  std::memset(static_cast<void*>(original.get()), 0x5A, sizeof(Setting));
  const auto copy = MakeCopy(*original);
  ASSERT_NE(copy, nullptr);
  EXPECT_NE(copy.get(), original.get());
  EXPECT_EQ(std::memcmp(copy.get(), original.get(), 275328), 0);
}

}  // namespace
