// SPDX-License-Identifier: MIT
//
// Events of one run, as tests of printers need them.
#ifndef ZVISP_TESTS_LINE_EVENT_EVENTS_H_
#define ZVISP_TESTS_LINE_EVENT_EVENTS_H_

#include <string>
#include <utility>

#include "line/event/event.h"

namespace line {

// An event of run "r1" of display ZP00000001 at comm-3, so many milliseconds after the start.
inline Event At(std::uint64_t ms, EventBody body, std::optional<Phase> phase = {}) {
  Event event;
  event.time_ms = 1795262400000 + static_cast<std::int64_t>(ms);  // 2026-11-21T12:00:00Z
  event.mono_ms = 1000000 + ms;
  event.session = "0192a0b0-0000-7000-8000-000000000001";
  event.where = {"r1", "ZP00000001", "comm-3", 3, "program", 0, phase, ""};
  event.body = std::move(body);
  return event;
}

inline Event ProgressAt(std::uint64_t ms, int percent) {
  return At(ms, ProgressEvent{percent, ms}, Phase::kProgram);
}

inline ResultEvent PassedResult() {
  ResultEvent result;
  result.outcome = Outcome::kPassed;
  result.state = UnitState::kProgrammed;
  result.code = 0;
  result.duration_ms = 31500;
  return result;
}

inline UnitResultEvent PassedUnit() {
  UnitResultEvent result;
  result.outcome = Outcome::kPassed;
  result.state = UnitState::kProgrammed;
  return result;
}

}  // namespace line

#endif  // ZVISP_TESTS_LINE_EVENT_EVENTS_H_
