// SPDX-License-Identifier: MIT
#include "line/worker/verdict.h"

#include <gtest/gtest.h>

namespace line {
namespace {

CallTrace Calls(const std::vector<std::string>& names, std::uint32_t edp_mode = 0) {
  CallTrace trace;
  trace.edp_mode = edp_mode;
  for (const std::string& name : names) {
    trace.Begin(name);
  }
  return trace;
}

TEST(Verdict, TellsWhichCallsWrite) {
  constexpr struct {
    const char* name;
    std::uint32_t edp_mode;
    bool writes;
  } kCases[] = {
      {"IspFlash", 0, true},         {"RecordFWVersion", 0, true}, {"IspEeprom", 1, true},
      {"IspEeprom", 2, false},       {"IspEeprom", 0, false},      {"DumpFlash", 0, false},
      {"GetKeyFromFlash", 0, false}, {"ResetMCUExport", 0, false}, {"GetScalerType", 0, false},
  };
  for (const auto& test : kCases) {
    CallTrace trace;
    trace.edp_mode = test.edp_mode;
    EXPECT_EQ(trace.Begin(test.name), test.writes) << test.name << " " << test.edp_mode;
  }
}

TEST(Verdict, OfAResultFollowsFromTheCallsBeforeIt) {
  const Wanted wanted = {{0x5A26, 0x5A29}, {}};
  const struct {
    std::vector<std::string> calls;
    std::uint32_t code;
    Outcome outcome;
    UnitState state;
  } kCases[] = {
      {{"IspFlash"}, 0, Outcome::kPassed, UnitState::kProgrammed},
      {{"IspFlash"}, 1, Outcome::kFailed, UnitState::kUncertain},
      {{"IspFlash"}, 256, Outcome::kFailed, UnitState::kUncertain},
      {{"IspFlash"}, 0xFFFFFF00, Outcome::kFailed, UnitState::kUncertain},
      {{"IspFlash"}, 0x5A26, Outcome::kUnavailable, UnitState::kUntouched},
      {{"IspFlash", "IspFlash"}, 0x5A26, Outcome::kFailed, UnitState::kUncertain},
      {{"IspFlash"}, 6, Outcome::kFailed, UnitState::kUncertain},
      {{"IspFlash"}, 0xD67, Outcome::kFailed, UnitState::kUncertain},
      {{}, 0xD67, Outcome::kUnavailable, UnitState::kUntouched},
      {{}, 6, Outcome::kUnavailable, UnitState::kUntouched},
      {{}, 0x4004, Outcome::kUnavailable, UnitState::kUntouched},
      {{}, 0x4003, Outcome::kFailed, UnitState::kUntouched},
      {{"GetKeyFromFlash"}, 0x4003, Outcome::kFailed, UnitState::kUntouched},
      {{"GetKeyFromFlash"}, 0x5A29, Outcome::kUnavailable, UnitState::kUntouched},
      {{"GetKeyFromFlash"}, 6, Outcome::kFailed, UnitState::kUntouched},
      {{"DumpFlash"}, 0, Outcome::kPassed, UnitState::kUntouched},
      {{"DumpFlash"}, 2, Outcome::kFailed, UnitState::kUntouched},
      {{"GetScalerType"}, 6, Outcome::kPassed, UnitState::kUntouched},
  };
  for (const auto& test : kCases) {
    const Verdict verdict = JudgeResult(Calls(test.calls), {test.code}, wanted);
    EXPECT_EQ(verdict.outcome, test.outcome) << test.calls.size() << " " << test.code;
    EXPECT_EQ(verdict.state, test.state) << test.calls.size() << " " << test.code;
    EXPECT_NE(verdict.meaning, "");
  }
}

TEST(Verdict, AScalerTypePassesWhenItIsTheExpectedOne) {
  const Wanted wanted = {{}, 3};
  EXPECT_EQ(JudgeResult(Calls({"GetScalerType"}), {3}, wanted).outcome, Outcome::kPassed);
  EXPECT_EQ(JudgeResult(Calls({"GetScalerType"}), {6}, wanted).outcome, Outcome::kFailed);
  EXPECT_EQ(JudgeResult(Calls({}), {6}, wanted).outcome, Outcome::kUnavailable);
}

TEST(Verdict, WithoutAResultAWritingCallLeavesTheDisplayUncertain) {
  for (const Outcome outcome : {Outcome::kCrashed, Outcome::kTimedOut, Outcome::kInterrupted}) {
    const Verdict wrote = JudgeMissingResult(Calls({"IspFlash"}), outcome, "why");
    EXPECT_EQ(wrote.state, UnitState::kUncertain);
    EXPECT_EQ(wrote.outcome, outcome);
    EXPECT_EQ(wrote.meaning, "why");
    EXPECT_EQ(JudgeMissingResult(Calls({"GetKeyFromFlash"}), outcome, "").state,
              UnitState::kUntouched);
  }
}

TEST(Verdict, AFileThatChangedSpoilsWhatEndedWell) {
  const ResultMessage passed = {0, "", "main.bin"};
  Verdict verdict = JudgeResult(Calls({"IspFlash"}), passed, {});
  EXPECT_EQ(verdict.outcome, Outcome::kFailed);
  EXPECT_EQ(verdict.state, UnitState::kUncertain);
  EXPECT_EQ(verdict.meaning, "main.bin changed while it was used");
  verdict = JudgeResult(Calls({}), passed, {});
  EXPECT_EQ(verdict.outcome, Outcome::kFailed);
  EXPECT_EQ(verdict.state, UnitState::kUntouched);
  EXPECT_EQ(verdict.meaning, "main.bin is not what was checked, so nothing is done");
  const ResultMessage promised = {0x5A26, "", "main.bin"};
  EXPECT_EQ(JudgeResult(Calls({"IspFlash"}), promised, {{0x5A26}, {}}).state,
            UnitState::kUntouched);
}

TEST(Verdict, AStepThatWritesNothingLeavesTheStateAlone) {
  for (const UnitState before :
       {UnitState::kUntouched, UnitState::kProgrammed, UnitState::kIdentical}) {
    EXPECT_EQ(StateAfter(before, UnitState::kUntouched), before);
    EXPECT_EQ(StateAfter(before, UnitState::kUncertain), UnitState::kUncertain);
    EXPECT_EQ(StateAfter(before, UnitState::kProgrammed), UnitState::kProgrammed);
  }
}

}  // namespace
}  // namespace line
