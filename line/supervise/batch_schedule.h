// SPDX-License-Identifier: MIT
//
// Which unit of a batch may start when, and which is never started. Pure rules: no process, no
// clock.
#ifndef ZVISP_LINE_SUPERVISE_BATCH_SCHEDULE_H_
#define ZVISP_LINE_SUPERVISE_BATCH_SCHEDULE_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "line/journal/interface_lock.h"

namespace line {

struct BatchRules {
  unsigned jobs_at_once = 16;    // at least 1
  std::uint64_t stagger_ms = 0;  // between the starts of two units
  bool first_article = false;    // one unit first; the others start when it has passed
  unsigned stop_after = 0;       // so many failures in a row; 0: never
};

class BatchSchedule {
 public:
  // How a unit ended, as far as the rules ask. One that was not started (its hook refused it, its
  // interface is in use) or that the operator ended says nothing about the others.
  enum class UnitVerdict { kPassed, kFailed, kUncounted };

  // One interface for each unit, in the order in which the units shall start. Two units never work
  // at one interface at the same time, and one that has to be alone overlaps no other.
  BatchSchedule(const BatchRules& rules, std::vector<InterfaceUse> units);

  // The next unit that may start, which counts as running from now on; nothing while none may.
  std::optional<std::size_t> TakeNext(std::uint64_t now_ms);
  // After TakeNext: when the time alone lets the next unit start.
  std::optional<std::uint64_t> WakesAtMs() const { return m_wakes_at_ms; }

  void OnEnd(std::size_t unit, UnitVerdict verdict);

  // The operator's signal: nothing more is started.
  void Stop();

  // The units that are never started now, each of them once; WhyNot says why.
  std::vector<std::size_t> TakeLeftOut();
  const std::string& WhyNot() const { return m_why_not; }

  // Nothing waits to be started.
  bool IsEmpty() const { return m_waiting.empty(); }

 private:
  bool MayStart(std::size_t unit) const;

  BatchRules m_rules;
  std::vector<InterfaceUse> m_units;
  std::vector<std::size_t> m_waiting;  // in their order
  std::vector<std::size_t> m_running;
  std::optional<std::uint64_t> m_last_start_ms;
  std::optional<std::uint64_t> m_wakes_at_ms;
  bool m_needs_first_article;
  unsigned m_failures_in_a_row = 0;
  std::string m_why_not;  // empty: units may start
};

}  // namespace line

#endif  // ZVISP_LINE_SUPERVISE_BATCH_SCHEDULE_H_
