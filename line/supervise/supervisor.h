// SPDX-License-Identifier: MIT
//
// The loop that serves the workers: one thread, any number of steps, nothing in it waits for one of
// them alone.
#ifndef ZVISP_LINE_SUPERVISE_SUPERVISOR_H_
#define ZVISP_LINE_SUPERVISE_SUPERVISOR_H_

#include <cstdint>
#include <memory>
#include <vector>

#include "line/supervise/step_run.h"
#include "line/supervise/stop_signals.h"

namespace line {

class Supervisor {
 public:
  explicit Supervisor(const Reporting& reporting) : m_reporting(reporting) {}

  // Starts the steps, and returns when all of them are done. The first signal of the operator
  // starts nothing new, and says so; the second one ends what runs. Two SIGHUP at once count as
  // one.
  void Run(const std::vector<StepRun*>& steps);

  // The operator's first signal; 0 for none.
  int StopSignal() const { return m_stop_signal; }

 private:
  void WaitForSomething(const std::vector<StepRun*>& steps, std::uint64_t wake_ms);
  void TakeSignals(const std::vector<StepRun*>& steps);
  void Stop(const std::vector<StepRun*>& steps, int signal);
  void Say(std::string text);

  Reporting m_reporting;
  StopSignals m_signals;
  int m_stop_signal = 0;
  std::uint64_t m_stopped_ms = 0;
};

}  // namespace line

#endif  // ZVISP_LINE_SUPERVISE_SUPERVISOR_H_
