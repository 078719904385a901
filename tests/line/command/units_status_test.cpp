// SPDX-License-Identifier: MIT
//
// Which exit status counts when units end in different ways.
#include "line/command/units_status.h"

#include <csignal>

#include <gtest/gtest.h>

namespace line {
namespace {

UnitEnd Ended(Outcome outcome, UnitState state = UnitState::kUntouched) {
  UnitEnd end;
  end.outcome = outcome;
  end.state = state;
  end.touched = state != UnitState::kUntouched;
  return end;
}

const UnitEnd kGood = Ended(Outcome::kPassed, UnitState::kIdentical);
const UnitEnd kReset = Ended(Outcome::kPassed);
const UnitEnd kBad = Ended(Outcome::kFailed);
const UnitEnd kOther = Ended(Outcome::kDifferent, UnitState::kDifferent);
const UnitEnd kRefused = Ended(Outcome::kRefused);
const UnitEnd kInUse = Ended(Outcome::kUnavailable);
const UnitEnd kDoubt = Ended(Outcome::kCrashed, UnitState::kUncertain);

UnitEnd Called(UnitEnd end) {
  end.touched = true;
  return end;
}
UnitEnd Lost(UnitEnd end) {
  end.recorded = false;
  return end;
}
UnitEnd Interrupted(UnitEnd end) {
  end.interrupted = true;
  return end;
}
UnitEnd WithoutHook(UnitEnd end) {
  end.hook_failed = true;
  return end;
}

struct Row {
  std::vector<UnitEnd> ends;
  int status;
};

// clang-format off
const Row kRows[] = {
  {{kGood, kReset}, 0},
  {{kGood, kBad}, 1},
  {{kGood, kRefused}, 1},
  {{kReset, kInUse}, 1},
  {{kOther, kRefused}, 1},
  {{kBad, kBad}, 1},
  {{kRefused, kBad, kInUse}, 2},
  {{kInUse, kBad}, 3},
  {{Called(kInUse), Called(kInUse)}, 3},
  {{Called(kInUse), kGood}, 1},
  {{Lost(kReset), kGood}, 0},
  {{Lost(kGood), kGood}, 4},
  {{Lost(kOther), Interrupted(kBad)}, 4},
  {{kGood, Interrupted(kRefused)}, 143},
  {{kDoubt, Lost(kGood), Interrupted(kBad)}, 5},
  {{Ended(Outcome::kInterrupted, UnitState::kProgramming)}, 5},
  {{WithoutHook(kGood), kGood}, 0},
};
// clang-format on

TEST(UnitsStatusTest, TheFirstThatAppliesCounts) {
  for (const Row& row : kRows) {
    EXPECT_EQ(StatusOfUnits(row.ends, SIGTERM, false), row.status) << &row - kRows;
  }
}

TEST(UnitsStatusTest, ARequiredHookThatFailsCounts) {
  EXPECT_EQ(StatusOfUnits({WithoutHook(kGood)}, 0, true), 4);
  EXPECT_EQ(StatusOfUnits({WithoutHook(kDoubt)}, 0, true), 5);
  EXPECT_EQ(StatusOfUnits({kGood}, 0, true), 0);
}

TEST(UnitsStatusTest, EverySignalHasItsStatus) {
  EXPECT_EQ(StatusOfSignal(SIGHUP), 129);
  EXPECT_EQ(StatusOfSignal(SIGINT), 130);
  EXPECT_EQ(StatusOfSignal(SIGTERM), 143);
}

TEST(UnitsStatusTest, TheSummaryCountsEveryUnitTwice) {
  const SummaryEvent summary = SummaryOf({kGood, kReset, kDoubt, kRefused});
  ASSERT_EQ(summary.outcomes.size(), 8u);
  ASSERT_EQ(summary.states.size(), 6u);
  EXPECT_EQ(summary.outcomes[0], (std::pair{Outcome::kPassed, std::uint64_t{2}}));
  EXPECT_EQ(summary.outcomes[3], (std::pair{Outcome::kRefused, std::uint64_t{1}}));
  EXPECT_EQ(summary.outcomes[6], (std::pair{Outcome::kCrashed, std::uint64_t{1}}));
  EXPECT_EQ(summary.outcomes[7], (std::pair{Outcome::kInterrupted, std::uint64_t{0}}));
  EXPECT_EQ(summary.states[0], (std::pair{UnitState::kUntouched, std::uint64_t{2}}));
  EXPECT_EQ(summary.states[5], (std::pair{UnitState::kUncertain, std::uint64_t{1}}));
}

}  // namespace
}  // namespace line
