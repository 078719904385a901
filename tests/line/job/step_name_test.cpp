// SPDX-License-Identifier: MIT
#include "line/job/step_name.h"

#include <gtest/gtest.h>

namespace line {
namespace {

TEST(StepName, IsProgramForWhatProgramsFirmwareElseTheOption) {
  const struct {
    std::uint32_t action;
    const char* name;
  } kCases[] = {{4, "program"},       {5, "program"},          {6, "program"},
                {7, "program"},       {8, "recordver"},        {15, "resetmcu"},
                {16, "dumpflash"},    {19, "userdefinedinfo"}, {20, "edpisp"},
                {21, "enterispmode"}, {25, "getscalertype"}};
  for (const auto& test : kCases) {
    EXPECT_EQ(StepNameOf(test.action), test.name);
  }
}

}  // namespace
}  // namespace line
