// SPDX-License-Identifier: MIT
#include "display/state.h"

#include <gtest/gtest.h>

namespace {

using simulator::State;

TEST(State, TheFileHasOneLineForEachField) {
  State state;
  state.calls = 7;
  state.resets = 2;
  state.eeprom_version = 3;
  state.isp_mode = true;
  state.recorded_version = "display 1.0";
  EXPECT_EQ(FormatState(state),
            "calls = 7\nresets = 2\neeprom_version = 3\nmode = isp\n"
            "recorded_version = display 1.0\n");
  EXPECT_EQ(FormatState(simulator::ParseState(FormatState(state))), FormatState(state));
}

TEST(State, AMissingOrDamagedLineLeavesTheDefault) {
  const State state = simulator::ParseState("calls = many\nnonsense\nresets\nmode = sideways\n");
  EXPECT_EQ(FormatState(state), FormatState(State()));
}

TEST(State, ARecordedVersionThatIsTooLongIsDropped) {
  const auto version = [](std::size_t length) {
    return simulator::ParseState("recorded_version = " + std::string(length, 'v')).recorded_version;
  };
  EXPECT_EQ(version(1024), std::string(1024, 'v'));
  EXPECT_EQ(version(1025), "");
}

}  // namespace
