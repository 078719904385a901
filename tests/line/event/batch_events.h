// SPDX-License-Identifier: MIT
//
// Events of a batch, as tests of printers need them.
#ifndef ZVISP_TESTS_LINE_EVENT_BATCH_EVENTS_H_
#define ZVISP_TESTS_LINE_EVENT_BATCH_EVENTS_H_

#include <string>
#include <utility>
#include <vector>

#include "event/events.h"

namespace line {

// Display ZP0000000N at place AN.
inline BatchUnit BatchUnitOf(int number) {
  return {"A" + std::to_string(number), "ZP0000000" + std::to_string(number),
          static_cast<std::uint32_t>(number)};
}

inline Event BatchHello(int units) {
  HelloEvent hello;
  hello.job = HelloEvent::Job{"panel", "/panel.toml", "aa", {}};
  for (int number = 1; number <= units; ++number)
    hello.job->units.push_back(BatchUnitOf(number));
  Event event = At(0, std::move(hello));
  event.where = {};
  return event;
}

// An event of that display.
inline Event Of(int number, std::uint64_t ms, EventBody body, std::optional<Phase> phase = {}) {
  Event event = At(ms, std::move(body), phase);
  const BatchUnit unit = BatchUnitOf(number);
  event.where.run = "r" + std::to_string(number);
  event.where.place = unit.place;
  event.where.unit = unit.unit;
  event.where.comm = unit.comm;
  event.where.job_name = "panel";
  return event;
}

inline std::vector<Event> StartOf(int number, std::uint64_t ms) {
  return {Of(number, ms, UnitStartEvent{}), Of(number, ms, StartEvent{})};
}

inline std::vector<Event> PassOf(int number, std::uint64_t ms) {
  return {Of(number, ms, PassedResult()), Of(number, ms, PassedUnit())};
}

inline std::vector<Event> CrashOf(int number, std::uint64_t ms) {
  ResultEvent step;
  step.outcome = Outcome::kCrashed;
  step.state = UnitState::kUncertain;
  step.signal = 11;
  step.last_percent = 42;
  UnitResultEvent unit;
  unit.outcome = step.outcome;
  unit.state = step.state;
  unit.failed_step = "program";
  return {Of(number, ms, step), Of(number, ms, unit)};
}

inline Event RefusalOf(int number, std::uint64_t ms) {
  UnitResultEvent unit;
  unit.outcome = Outcome::kRefused;
  unit.reason = "the first article did not pass";
  return Of(number, ms, unit);
}

}  // namespace line

#endif  // ZVISP_TESTS_LINE_EVENT_BATCH_EVENTS_H_
