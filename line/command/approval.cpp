// SPDX-License-Identifier: MIT
#include "line/command/approval.h"

#include "line/event/screen_text.h"

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

std::vector<Refusal> WhyNotApproved(const Strictness& strictness, const OptionScan& scan,
                                    const JudgedWords& judged) {
  if (judged.accepted) return FindRefusals(scan, judged, strictness);
  if (scan.options.empty() && scan.refusals.empty()) return {{"no-words", kNoWords}};
  // The rules of zvisp-line need judged records. Without them only the scan has something to add.
  std::vector<Refusal> refusals = {{"zvisp-refuses", ZvispRefuses(judged.said)}};
  refusals.insert(refusals.end(), scan.refusals.begin(), scan.refusals.end());
  return refusals;
}

ExitStatus ApproveWords(const Options& options, const OptionScan& scan, const JudgedWords& judged,
                        Session& session) {
  const std::vector<Refusal> refusals =
      WhyNotApproved({options.allow_unsigned, options.expect}, scan, judged);
  for (const Refusal& refusal : refusals) {
    session.Emit({}, ErrorEvent{refusal.id, refusal.text, "", {}, {}});
  }
  return refusals.empty() ? kExitPassed : kExitRefused;
}

}  // namespace line
