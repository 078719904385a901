// SPDX-License-Identifier: MIT
#include "line/command/approval.h"

#include "line/event/screen_text.h"
#include "line/job/strictness.h"

namespace line {

namespace {

// zvisp's own lines in one.
std::string ZvispRefuses(const std::string& said) {
  std::string text = "zvisp refuses its words:";
  for (const std::string& one : CleanLines(said)) {
    if (!one.empty()) text += " " + one;
  }
  return text;
}

}  // namespace

ExitStatus ApproveWords(const Options& options, const OptionScan& scan, const JudgedWords& judged,
                        Session& session) {
  std::vector<Refusal> refusals;
  if (!judged.accepted) {
    // The rules of zvisp-line need judged records. Without them only the scan has something to add.
    refusals.push_back({"zvisp-refuses", ZvispRefuses(judged.said)});
    refusals.insert(refusals.end(), scan.refusals.begin(), scan.refusals.end());
  } else {
    refusals = FindRefusals(scan, judged, {options.allow_unsigned, options.expect});
  }
  for (const Refusal& refusal : refusals) {
    session.Emit({}, ErrorEvent{refusal.id, refusal.text, "", {}, {}});
  }
  return refusals.empty() ? kExitPassed : kExitRefused;
}

}  // namespace line
