// SPDX-License-Identifier: MIT
//
// From what became of units to the exit status and the counts of a command.
#ifndef ZVISP_LINE_COMMAND_UNITS_STATUS_H_
#define ZVISP_LINE_COMMAND_UNITS_STATUS_H_

#include <vector>

#include "line/event/event.h"
#include "line/event/exit_status.h"
#include "line/supervise/unit_run.h"

namespace line {

// Of the operator's signal.
ExitStatus StatusOfSignal(int signal);

// The status of all units together; the first that applies counts: uncertain, not recorded, the
// signal, refused, unavailable (both only when no unit was touched), failed, passed. `stop_signal`
// is the operator's first one, 0 for none; with `hook_required`, a hook that failed counts like a
// result that is not recorded.
ExitStatus StatusOfUnits(const std::vector<UnitEnd>& ends, int stop_signal, bool hook_required);

// How many units ended how. Every outcome and every state has its count, 0 as well.
SummaryEvent SummaryOf(const std::vector<UnitEnd>& ends);

}  // namespace line

#endif  // ZVISP_LINE_COMMAND_UNITS_STATUS_H_
