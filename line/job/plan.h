// SPDX-License-Identifier: MIT
//
// What a run would write where.
#ifndef ZVISP_LINE_JOB_PLAN_H_
#define ZVISP_LINE_JOB_PLAN_H_

#include <optional>
#include <string>

#include "line/event/event.h"
#include "line/job/judged_words.h"
#include "line/job/option_scan.h"

namespace line {

// Reads and hashes every bank that the judged record programs. Paths in the plan are the slots';
// what is read are the files that the record names, private copies or not. Nothing, with one
// sentence in `error`, when a file cannot be read.
std::optional<PlanEvent> MakePlan(const OptionScan& scan, const JudgedWords& judged,
                                  std::string& error);

}  // namespace line

#endif  // ZVISP_LINE_JOB_PLAN_H_
