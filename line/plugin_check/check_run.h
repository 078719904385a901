// SPDX-License-Identifier: MIT
//
// One check, as its parent sees it: the process, its time limit, and what its end means.
#ifndef ZVISP_LINE_PLUGIN_CHECK_CHECK_RUN_H_
#define ZVISP_LINE_PLUGIN_CHECK_CHECK_RUN_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "line/plugin_check/check_process.h"
#include "line/supervise/output_follower.h"
#include "line/supervise/stop_signals.h"
#include "line/supervise/worker_process.h"

namespace line {

class CheckRun {
 public:
  // `timeout_ms` 0: without a limit.
  CheckRun(StopSignals& signals, std::uint64_t timeout_ms)
      : m_signals(signals), m_timeout_ms(timeout_ms) {}

  // Runs the check and waits for its end; a crash, a hang and an exit of the plug-in are answers
  // as well. `lock` is the open files of a lock that the process is to hold, `directory_lock` an
  // open file that it keeps open. Nothing when it cannot be started, with a sentence in `error`,
  // or when a signal has come, which is then in StopSignal.
  std::optional<CheckAnswer> Run(const CheckRequest& request, const std::vector<int>& lock,
                                 int directory_lock, std::string& error);
  int StopSignal() const { return m_stop_signal; }

 private:
  bool WaitForEnd();
  void Take(const Frame& frame);
  void EndLateProcess(std::uint64_t now_ms);
  CheckAnswer WithoutAnswer() const;

  StopSignals& m_signals;
  std::uint64_t m_timeout_ms;
  WorkerProcess m_process;
  OutputFollower m_output;
  std::string m_call = "starting";  // what the process was doing when it was last heard of
  std::optional<CheckAnswer> m_answer;
  std::optional<ProcessEnd> m_end;
  std::uint64_t m_started_ms = 0;
  bool m_is_late = false;
  int m_stop_signal = 0;
};

}  // namespace line

#endif  // ZVISP_LINE_PLUGIN_CHECK_CHECK_RUN_H_
