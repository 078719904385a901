// SPDX-License-Identifier: MIT
//
// The signals of the operator and of ended workers, as something to poll for. One object a process.
#ifndef ZVISP_LINE_SUPERVISE_STOP_SIGNALS_H_
#define ZVISP_LINE_SUPERVISE_STOP_SIGNALS_H_

#include <signal.h>

#include <vector>

namespace line {

class StopSignals {
 public:
  // Takes over SIGINT, SIGTERM, SIGHUP and SIGCHLD; one that was ignored stays so, as under nohup.
  // Whoever started this process may have blocked them; without SIGCHLD no end would be noticed.
  StopSignals();
  // Gives them back.
  ~StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

  // Becomes readable when one has come.
  int Descriptor() const;
  // The signals since the last call, in their order, SIGCHLD left out.
  std::vector<int> Take();

 private:
  struct Kept {
    int signal;
    struct sigaction action;
  };
  std::vector<Kept> m_kept;
  sigset_t m_blocked_before;
};

}  // namespace line

#endif  // ZVISP_LINE_SUPERVISE_STOP_SIGNALS_H_
