// SPDX-License-Identifier: MIT
#include "line/worker/last_words.h"

#include <memory>
#include <string>

#include "line/event/session.h"
#include "line/journal/journal.h"

namespace line {

void RecordLastWords(const GoMessage& go, const Verdict& verdict,
                     std::optional<std::uint32_t> code) {
  std::string failure;
  const std::unique_ptr<Journal> journal = Journal::Open(go.data_directory, failure);
  if (journal == nullptr) return;
  JournalSink sink(*journal);
  Session session;
  session.Add(sink);
  Where where = {go.run, go.unit, go.place, go.comm, go.step, 0, {}, ""};
  ResultEvent result;
  result.outcome = verdict.outcome;
  result.state = verdict.state;
  result.code = code;
  result.code_source = verdict.code_source;
  result.meaning = verdict.meaning;
  session.Emit(where, result);
  // The unit's result says whether the step's result is on the disk, so it waits for it.
  const bool recorded = journal->WaitFor(sink.Last());
  UnitResultEvent unit_result;
  unit_result.outcome = verdict.outcome;
  unit_result.state = verdict.state;
  unit_result.attempt = go.attempt;
  unit_result.failed_step = verdict.outcome == Outcome::kPassed ? "" : go.step;
  unit_result.recorded = recorded;
  // A result of the unit belongs to none of its steps.
  where.step.clear();
  where.step_index.reset();
  session.Emit(where, unit_result);
  journal->WaitFor(sink.Last());
}

}  // namespace line
