// SPDX-License-Identifier: MIT
#include "line/worker/last_words.h"

#include <memory>
#include <string>

#include "line/event/session.h"
#include "line/journal/journal.h"

namespace line {

namespace {

// The steps that follow are not run by anybody, so without them the unit has not passed.
UnitResultEvent ResultOfUnit(const GoMessage& go, Outcome of_step, UnitState state) {
  UnitResultEvent result;
  result.outcome = of_step;
  result.state = state;
  result.attempt = go.attempt;
  if (of_step != Outcome::kPassed) {
    result.failed_step = go.step;
  } else if (!go.is_last) {
    result.outcome = Outcome::kInterrupted;
    result.reason = "what follows after " + go.step + " was not run: " + kParentGone;
  }
  return result;
}

}  // namespace

void RecordLastWords(const GoMessage& go, const Verdict& verdict,
                     std::optional<std::uint32_t> code) {
  std::string failure;
  const std::unique_ptr<Journal> journal = Journal::Open(go.data_directory, failure);
  if (journal == nullptr) return;
  JournalSink sink(*journal);
  Session session;
  session.Add(sink);
  Where where = {go.run, go.unit, go.place, go.comm, go.step, go.step_index, {}, go.job_name};
  const UnitState state = StateAfter(static_cast<UnitState>(go.state_before), verdict.state);
  ResultEvent result;
  result.outcome = verdict.outcome;
  result.state = state;
  result.code = code;
  result.code_source = verdict.code_source;
  result.meaning = verdict.meaning;
  session.Emit(where, result);
  // The unit's result says whether the step's result is on the disk, so it waits for it.
  const bool recorded = journal->WaitFor(sink.Last());
  UnitResultEvent unit_result = ResultOfUnit(go, verdict.outcome, state);
  unit_result.recorded = recorded;
  // A result of the unit belongs to none of its steps.
  where.step.clear();
  where.step_index.reset();
  session.Emit(where, unit_result);
  journal->WaitFor(sink.Last());
}

}  // namespace line
