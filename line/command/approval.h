// SPDX-License-Identifier: MIT
//
// Whether zvisp's words may run at all.
#ifndef ZVISP_LINE_COMMAND_APPROVAL_H_
#define ZVISP_LINE_COMMAND_APPROVAL_H_

#include "line/command/options.h"
#include "line/event/exit_status.h"
#include "line/event/session.h"
#include "line/job/judged_words.h"
#include "line/job/option_scan.h"

namespace line {

// Reports zvisp's own refusal, then everything that zvisp-line refuses beyond it, an `error` event
// each. kExitPassed when there is none, else kExitRefused.
ExitStatus ApproveWords(const Options& options, const OptionScan& scan, const JudgedWords& judged,
                        Session& session);

}  // namespace line

#endif  // ZVISP_LINE_COMMAND_APPROVAL_H_
