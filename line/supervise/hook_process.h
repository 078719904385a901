// SPDX-License-Identifier: MIT
//
// A hook: a program of the line's operator that is asked or informed about one unit. It can fail,
// hang or print without end, and nothing here waits for it.
#ifndef ZVISP_LINE_SUPERVISE_HOOK_PROCESS_H_
#define ZVISP_LINE_SUPERVISE_HOOK_PROCESS_H_

#include <cstdint>
#include <string>
#include <vector>

#include "line/supervise/child_process.h"
#include "line/supervise/output_drain.h"

namespace line {

class HookProcess {
 public:
  HookProcess() = default;
  // Ends the whole process group at once, and waits for the hook.
  ~HookProcess() = default;
  HookProcess(const HookProcess&) = delete;
  HookProcess& operator=(const HookProcess&) = delete;

  // Starts the program `words[0]` with its arguments, in `directory` (absolute; empty: the working
  // directory). A program with a "/" is relative to `directory`, another one is found in PATH.
  // `input` is its whole standard input. `timeout_ms` 0 means none. False, with a sentence in
  // `error`, when it cannot be started. REQUIRES: `words` is not empty; one start an object.
  bool Start(const std::vector<std::string>& words, const std::string& directory,
             const std::string& input, std::uint64_t timeout_ms, std::string& error);

  bool IsRunning() const { return m_process.IsRunning(); }

  // To be called several times a second, with MonotonicMs(). When the time is over, the hook's
  // process group gets SIGTERM, and 2 s later SIGKILL.
  void OnTick(std::uint64_t now_ms);
  // To be called when some child has ended, perhaps this one. What a hook leaves in its process
  // group is ended with it.
  void OnProcessEnded();
  // Ends the hook as when its time is over.
  void Interrupt(std::uint64_t now_ms);

  // After its end: empty when it ended by itself with status 0. Else why not, with the first line
  // that it printed, cleaned and cut: "./may-program ended with exit status 1: serial is unknown".
  const std::string& Complaint() const { return m_complaint; }

 private:
  void End(std::uint64_t now_ms, std::string reason);

  std::string m_name;
  OutputDrain m_output;
  ChildProcess m_process;  // below its output, so that it ends first
  std::uint64_t m_timeout_ms = 0, m_started_ms = 0;
  std::uint64_t m_kill_at_ms = 0;  // 0: nobody has ended it
  std::string m_ended_by_us;       // why; empty: it ends by itself
  std::string m_complaint;
};

}  // namespace line

#endif  // ZVISP_LINE_SUPERVISE_HOOK_PROCESS_H_
