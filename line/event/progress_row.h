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
  ProgressRow(const std::string& place, const std::string& unit, std::uint64_t mono_ms);

  void Follow(const Event& event);
  const std::string& Place() const { return m_place; }  // cleaned, and so is the unit
  const std::string& Unit() const { return m_unit; }

  // At most `columns` columns, without a newline. What has no room is left out, the least
  // important first: remaining time, serial, bar. Nothing is shown that the plug-in did not
  // report: without a percentage, there is no bar.
  std::string Text(std::size_t columns, std::uint64_t mono_ms) const;

  // For rows below each other: "program   [##------]  42 %  0:31, 0:43 left". What is done gets
  // `doing` columns and the bar `bar` (0: no bar), so that all rows have them at one column. The
  // remaining time is there when it fits into `columns`; the rest may be longer.
  std::string Doing(std::size_t doing, std::size_t bar, std::size_t columns,
                    std::uint64_t mono_ms) const;

 private:
  std::string Bar(std::size_t columns) const;
  std::string Elapsed(std::uint64_t mono_ms) const;
  std::string Percent() const;
  std::string Remaining(std::uint64_t mono_ms) const;

  std::string m_place, m_unit, m_doing;
  std::string m_holder;  // who uses the interface
  std::optional<Phase> m_phase;
  std::optional<int> m_percent;
  std::uint64_t m_step_start_ms, m_phase_start_ms;
  std::uint64_t m_percent_ms = 0;  // when the last percentage arrived
};

}  // namespace line

#endif  // ZVISP_LINE_EVENT_PROGRESS_ROW_H_
