// SPDX-License-Identifier: MIT
//
// Whether zvisp's words may run at all.
#ifndef ZVISP_LINE_COMMAND_APPROVAL_H_
#define ZVISP_LINE_COMMAND_APPROVAL_H_

#include <vector>

#include "line/command/options.h"
#include "line/event/exit_status.h"
#include "line/event/session.h"
#include "line/job/judged_words.h"
#include "line/job/option_scan.h"
#include "line/job/strictness.h"

namespace line {

inline constexpr const char* kNoWords = "There are no words of zvisp; give them after \"--\".";

// zvisp's own refusal, or everything that zvisp-line refuses beyond it; empty when the words may
// run.
std::vector<Refusal> WhyNotApproved(const Strictness& strictness, const OptionScan& scan,
                                    const JudgedWords& judged);

// Reports them, an `error` event each. kExitPassed when there is none, else kExitRefused.
ExitStatus ApproveWords(const Options& options, const OptionScan& scan, const JudgedWords& judged,
                        Session& session);

}  // namespace line

#endif  // ZVISP_LINE_COMMAND_APPROVAL_H_
