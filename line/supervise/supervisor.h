// SPDX-License-Identifier: MIT
//
// The loop that serves the units: one thread, any number of them, nothing in it waits for one of
// them alone.
#ifndef ZVISP_LINE_SUPERVISE_SUPERVISOR_H_
#define ZVISP_LINE_SUPERVISE_SUPERVISOR_H_

#include <poll.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "line/supervise/batch_schedule.h"
#include "line/supervise/stop_signals.h"
#include "line/supervise/unit_run.h"

namespace line {

class Supervisor {
 public:
  using Units = std::vector<std::unique_ptr<UnitRun>>;

  // All of them must outlive the supervisor. `schedule` names a unit by its place in `units`.
  Supervisor(const Reporting& reporting, Units& units, BatchSchedule& schedule)
      : m_reporting(reporting), m_units(units), m_schedule(schedule) {}

  // Starts the units as the schedule lets them, and returns when all of them are done. The first
  // signal of the operator starts nothing new, and says so; the second one ends what runs. Two
  // SIGHUP at once count as one.
  void Run();

  // The operator's first signal; 0 for none.
  int StopSignal() const { return m_stop_signal; }

 private:
  // A unit from its start until it is done.
  struct Served {
    std::size_t index;
    UnitRun* unit;
    bool has_ended;  // the schedule knows
  };

  void FollowSchedule();
  void StartNext();
  bool NoteEnds();
  void LeaveOut();
  std::uint64_t NextWake(std::uint64_t next_tick_ms) const;
  void WaitForSomething(std::uint64_t wake_ms);
  void TakeSignals();
  void Stop(int signal);
  void Say(std::string text);

  Reporting m_reporting;
  Units& m_units;
  BatchSchedule& m_schedule;
  std::vector<Served> m_served;
  std::vector<pollfd> m_polled;  // kept, so that a wait needs no memory
  bool m_may_start_more = false;
  StopSignals m_signals;
  int m_stop_signal = 0;
  std::uint64_t m_stopped_ms = 0;
};

}  // namespace line

#endif  // ZVISP_LINE_SUPERVISE_SUPERVISOR_H_
