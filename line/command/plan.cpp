// SPDX-License-Identifier: MIT
//
// plan: what a run would do, without touching anything.
#include <optional>

#include "line/command/approval.h"
#include "line/command/commands.h"
#include "line/job/plan.h"
#include "line/supervise/judge_words.h"

namespace line {

ExitStatus RunPlan(const Options& options, Session& session) {
  std::string error;
  const auto verdicts = JudgeInWorker({options.words}, error);
  if (!verdicts.has_value()) {
    session.Emit({}, ErrorEvent{"worker", error, "", {}, {}});
    return kExitUnavailable;
  }
  const JudgedWords& judged = verdicts->front();
  const OptionScan scan = ScanOptions(options.words);
  const ExitStatus approval = ApproveWords(options, scan, judged, session);
  if (approval != kExitPassed) return approval;
  session.Emit({}, MessageEvent{Source::kTool, Level::kInfo, "zvisp accepts these words.", false});
  // From the original files: a plan promises nothing about a later run, so it makes no copies.
  const std::optional<PlanEvent> plan = MakePlan(scan, judged, error);
  if (!plan.has_value()) {
    session.Emit({}, ErrorEvent{"file", error, "", {}, {}});
    return kExitRefused;
  }
  session.Emit({}, *plan);
  return kExitPassed;
}

}  // namespace line
