// SPDX-License-Identifier: MIT
#include "line/command/units_status.h"

#include <signal.h>

#include <algorithm>

namespace line {

namespace {

bool IsUncertain(const UnitEnd& end) {
  return end.state == UnitState::kUncertain || end.state == UnitState::kProgramming;
}

// An untouched display needs no record: nothing has to be known about it.
bool IsLost(const UnitEnd& end) {
  return !end.recorded && (end.touched || end.state != UnitState::kUntouched);
}

// Of units none of which was touched or has passed.
ExitStatus StatusOfUntouched(const std::vector<UnitEnd>& ends) {
  const auto ended = [&ends](Outcome outcome) {
    return std::any_of(ends.begin(), ends.end(),
                       [outcome](const UnitEnd& end) { return end.outcome == outcome; });
  };
  if (ended(Outcome::kRefused)) return kExitRefused;
  return ended(Outcome::kUnavailable) ? kExitUnavailable : kExitFailed;
}

}  // namespace

ExitStatus StatusOfSignal(int signal) {
  switch (signal) {
    case SIGHUP:
      return kExitHangUp;
    case SIGTERM:
      return kExitTerminate;
    default:
      return kExitInterrupt;
  }
}

ExitStatus StatusOfUnits(const std::vector<UnitEnd>& ends, int stop_signal, bool hook_required) {
  const auto any = [&ends](auto is_so) { return std::any_of(ends.begin(), ends.end(), is_so); };
  const auto has_passed = [](const UnitEnd& end) { return end.outcome == Outcome::kPassed; };
  if (any(IsUncertain)) return kExitUncertain;
  const bool hook_failed = any([](const UnitEnd& end) { return end.hook_failed; });
  if (any(IsLost) || (hook_required && hook_failed)) return kExitNotRecorded;
  if (any([](const UnitEnd& end) { return end.interrupted; })) return StatusOfSignal(stop_signal);
  if (std::all_of(ends.begin(), ends.end(), has_passed)) return kExitPassed;
  // A call that promises to have written nothing leaves its display untouched.
  const bool is_touched = any(
      [&](const UnitEnd& end) { return end.state != UnitState::kUntouched || has_passed(end); });
  return is_touched ? kExitFailed : StatusOfUntouched(ends);
}

SummaryEvent SummaryOf(const std::vector<UnitEnd>& ends) {
  SummaryEvent summary;
  for (int i = 0; i <= static_cast<int>(Outcome::kInterrupted); ++i) {
    const auto outcome = static_cast<Outcome>(i);
    const auto count = std::count_if(
        ends.begin(), ends.end(), [outcome](const UnitEnd& end) { return end.outcome == outcome; });
    summary.outcomes.emplace_back(outcome, static_cast<std::uint64_t>(count));
  }
  for (int i = 0; i <= static_cast<int>(UnitState::kUncertain); ++i) {
    const auto state = static_cast<UnitState>(i);
    const auto count = std::count_if(ends.begin(), ends.end(),
                                     [state](const UnitEnd& end) { return end.state == state; });
    summary.states.emplace_back(state, static_cast<std::uint64_t>(count));
  }
  return summary;
}

}  // namespace line
