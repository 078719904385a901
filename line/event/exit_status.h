// SPDX-License-Identifier: MIT
//
// The exit statuses of zvisp-line. Which of them counts when several apply: command/units_status.h.
#ifndef ZVISP_LINE_EVENT_EXIT_STATUS_H_
#define ZVISP_LINE_EVENT_EXIT_STATUS_H_

namespace line {

// Never a count, never a mask. Scripts know the numbers: never renumber.
enum ExitStatus : int {
  kExitPassed = 0,       // every unit passed and is recorded
  kExitFailed = 1,       // a unit failed or differs; no unit is uncertain
  kExitRefused = 2,      // refused before any unit was touched
  kExitUnavailable = 3,  // no unit touched: plug-in, interface or record not available
  kExitNotRecorded = 4,  // touched, but a result could not be recorded
  kExitUncertain = 5,    // at least one unit is uncertain
  kExitHangUp = 129,     // the operator's signal kept a unit from starting, or ended one
  kExitInterrupt = 130,
  kExitTerminate = 143,
};

}  // namespace line

#endif  // ZVISP_LINE_EVENT_EXIT_STATUS_H_
