// SPDX-License-Identifier: MIT
//
// Runs units next to each other by the rules of a batch. A single unit is a batch of one.
#ifndef ZVISP_LINE_SUPERVISE_BATCH_RUN_H_
#define ZVISP_LINE_SUPERVISE_BATCH_RUN_H_

#include <memory>
#include <vector>

#include "line/supervise/batch_schedule.h"
#include "line/supervise/supervisor.h"
#include "line/supervise/unit_run.h"

namespace line {

class BatchRun {
 public:
  BatchRun(std::vector<UnitRequest> units, const BatchRules& rules, const Reporting& reporting);

  // Returns when every unit has its result and every hook has ended. hello, plan, summary and end
  // are the caller's events.
  void Run();

  // In the order of the requests.
  std::vector<UnitEnd> Ends() const;
  // The operator's first signal; 0 for none.
  int StopSignal() const { return m_supervisor.StopSignal(); }

 private:
  std::vector<std::unique_ptr<UnitRun>> m_units;
  BatchSchedule m_schedule;
  Supervisor m_supervisor;
};

}  // namespace line

#endif  // ZVISP_LINE_SUPERVISE_BATCH_RUN_H_
