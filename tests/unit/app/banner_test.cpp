// SPDX-License-Identifier: MIT
#include "app/banner.h"

#include <unistd.h>

#include <cstdio>
#include <string>

#include "support/files.h"
#include "support/printed.h"
#include "support/scratch_dir.h"
#include "support/unprivileged.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace zvisp;

namespace {

TEST(Banner, IsOneYellowLineWithTheVersion) {
  EXPECT_EQ(Printed(ShowToolVersion),
            "\033[33mZorvane Unix ISP Utility V1.0.9, Copyright (c) 2026 the authors, MIT License, "
            "without warranty of any kind\r\n\033[m");
}

TEST(Banner, TheVersionIsThreeBytes) {
  static_assert(sizeof g_ucszVersion == 3);
  EXPECT_EQ(g_ucszVersion[0], 1);
  EXPECT_EQ(g_ucszVersion[1], 0);
  EXPECT_EQ(g_ucszVersion[2], 9);
}

TEST(Banner, TheResultIsSuccessOrACodeOrTheScalerType) {
  constexpr struct {
    std::uint32_t action;
    std::uint32_t result;
    const char* printed;
  } kCases[] = {
      {4, 0, "\033[32mSuccess\n\033[m"},
      {0, 0, "\033[32mSuccess\n\033[m"},
      {4, 6, "\033[31mFail! Error Code: 0x6\n\033[m"},
      {4, 3431, "\033[31mFail! Error Code: 0xD67\n\033[m"},
      {0, 3433, "\033[31mFail! Error Code: 0xD69\n\033[m"},
      {1, 0xFFFFFFFF, "\033[31mFail! Error Code: 0xFFFFFFFF\n\033[m"},
      {24, 25, "\033[31mFail! Error Code: 0x19\n\033[m"},
      {25, 0, "\033[32mCurrent ScalerType:0!!\n\033[m"},
      {25, 3, "\033[32mCurrent ScalerType:3!!\n\033[m"},
      {25, 3431, "\033[32mCurrent ScalerType:3431!!\n\033[m"},
      {25, 0xFFFFFFFF, "\033[32mCurrent ScalerType:-1!!\n\033[m"},
  };
  for (const auto& test : kCases) {
    EXPECT_EQ(Printed([&] { ShowResult(test.action, test.result); }), test.printed);
  }
}

// What is left of the prints of a process that crashes right after them.
std::string LeftByACrash(void (*print)()) {
  const ScratchDir directory;
  const std::string path = directory / "output";
  InChild([&] {
    if (std::freopen(path.c_str(), "w", stdout) == nullptr) return 1;
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    print();
    _exit(0);
  });
  return ReadWholeFile(path);
}

TEST(Banner, ACrashLeavesTheTerminalWithoutColour) {
  EXPECT_THAT(LeftByACrash(ShowToolVersion), testing::EndsWith("\033[m"));
  EXPECT_EQ(LeftByACrash([] { ShowResult(4, 0); }), "\033[32mSuccess\n\033[m");
  EXPECT_EQ(LeftByACrash([] { ShowResult(4, 6); }), "\033[31mFail! Error Code: 0x6\n\033[m");
}

}  // namespace
