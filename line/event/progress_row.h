// SPDX-License-Identifier: MIT
//
// The row of a display that is being worked on: who, what, a bar, percent, elapsed, remaining.
#ifndef ZVISP_LINE_EVENT_PROGRESS_ROW_H_
#define ZVISP_LINE_EVENT_PROGRESS_ROW_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "line/event/event.h"

namespace line {

// What is known of it; follows the events of its run.
class ProgressRow {
 public:
  explicit ProgressRow(const Event& first);

  void Follow(const Event& event);
  const std::string& Run() const { return m_run; }

  // At most `columns` columns, without a newline. What has no room is left out, the least
  // important first: remaining time, serial, bar. Nothing is shown that the plug-in did not
  // report: without a percentage, there is no bar.
  std::string Text(std::size_t columns, std::uint64_t mono_ms) const;

 private:
  std::string Bar(std::size_t columns) const;
  std::string Remaining(std::uint64_t mono_ms) const;

  std::string m_run, m_place, m_unit, m_doing;
  std::optional<Phase> m_phase;
  std::optional<int> m_percent;
  std::uint64_t m_step_start_ms, m_phase_start_ms;
  std::uint64_t m_percent_ms = 0;  // when the last percentage arrived
};

}  // namespace line

#endif  // ZVISP_LINE_EVENT_PROGRESS_ROW_H_
