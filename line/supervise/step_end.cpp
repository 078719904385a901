// SPDX-License-Identifier: MIT
//
// The second half of a step: from the result of its action to the end of its worker.
#include <unistd.h>

#include <cstring>
#include <utility>

#include "line/supervise/step_run.h"

namespace line {

// The first result of the action counts; what comes when nothing was asked for is passed over.
void StepRun::OnResult(const ResultMessage& result) {
  if (m_call_is_pending) return;
  if (m_stage == Stage::kRunning) {
    OnActionResult(result);
  } else {
    OnDumpResult(result);
  }
}

void StepRun::OnActionResult(const ResultMessage& result) {
  const std::uint32_t code = result.code;
  Verdict verdict = JudgeResult(m_trace, code, m_request.wanted);
  if (!result.missing.empty()) verdict.meaning = result.missing;
  if (verdict.outcome != Outcome::kPassed || !m_request.reads_back || m_ended_by_us) {
    Finish(verdict, code);
    return;
  }
  Emit(StateEvent{verdict.state, m_end.state, m_trace.last});
  m_end.state = verdict.state;
  m_result.code = code;
  m_result.code_source = verdict.code_source;
  StartReadBack();
}

void StepRun::StartReadBack() {
  m_stage = Stage::kReadingBack;
  m_request.where.phase = Phase::kReadBack;
  m_result.last_percent.reset();
  m_result.compared_bytes = 0;
  DumpNextRange();
}

std::string StepRun::DumpFile() const {
  return m_request.dump_prefix + std::to_string(m_next_range);
}

void StepRun::DumpNextRange() {
  const ReadBack::Range& range = m_read_back.Ranges()[m_next_range];
  m_worker.Send(Encode(DumpMessage{range.address, range.length, DumpFile()}));
}

void StepRun::OnDumpResult(const ResultMessage& result) {
  ReadBack::Finding finding;
  if (result.code != 0) {
    m_result.code = result.code;
    finding.failure = "the flash cannot be read back";
    if (!result.missing.empty()) finding.failure += ": " + result.missing;
  } else {
    finding = m_read_back.Compare(m_read_back.Ranges()[m_next_range], DumpFile());
  }
  // At once: the dumps of a whole flash together would need its size on the disk.
  unlink(DumpFile().c_str());
  *m_result.compared_bytes += finding.compared_bytes;
  ++m_next_range;
  const bool more = m_next_range < m_read_back.Ranges().size();
  if (finding.failure.empty() && !finding.difference && more) {
    DumpNextRange();
  } else {
    FinishReadBack(finding);
  }
}

void StepRun::FinishReadBack(const ReadBack::Finding& finding) {
  m_result.difference = finding.difference;
  Verdict verdict = {Outcome::kPassed, UnitState::kIdentical, "plug-in",
                     "the flash holds the planned bytes"};
  if (!finding.failure.empty()) {
    // Without a call, the plug-in was not there.
    verdict.outcome = m_trace.last.empty() ? Outcome::kUnavailable : Outcome::kFailed;
    // Reading failed, which says nothing against what was programmed.
    verdict.state = m_end.state;
    verdict.meaning = finding.failure;
  } else if (finding.difference) {
    verdict.outcome = Outcome::kDifferent;
    verdict.state = UnitState::kDifferent;
    verdict.meaning = "the flash differs from the planned bytes";
  }
  Finish(verdict, m_result.code);
}

void StepRun::Finish(const Verdict& verdict, std::optional<std::uint32_t> code) {
  ReportOutput(true);
  m_result.outcome = m_ended_by_us.value_or(verdict.outcome);
  m_result.state = verdict.state;
  m_result.code = code;
  m_result.code_source = verdict.code_source;
  m_result.meaning = verdict.meaning;
  if (m_trace.last == "GetScalerType" && code) {
    m_result.value = std::to_string(*code);
    if (m_request.wanted.scaler_type) {
      m_result.expected = std::to_string(*m_request.wanted.scaler_type);
    }
  }
  m_result.duration_ms = MonotonicMs() - m_started_ms;
  m_end.outcome = m_result.outcome;
  m_end.state = m_result.state;
  m_end.interrupted = m_result.outcome == Outcome::kInterrupted;
  m_end.duration_ms = m_result.duration_ms;
  Emit(m_result);
  m_awaited = m_reporting.record.Last();
  m_stage = Stage::kRecording;
  OnRecorded();
}

void StepRun::OnResultRecorded(bool on_disk) {
  m_end.recorded = on_disk;
  m_stage = m_process_end ? Stage::kDone : Stage::kEnding;
  m_worker.Send(FrameBytes(MessageType::kBye, ""));
  // It only has to end itself now.
  m_kill_at_ms = MonotonicMs() + kGraceMs;
}

Verdict StepRun::WithoutResult(const ProcessEnd& end) const {
  std::string meaning = "the plug-in ended its process with exit status " +
                        std::to_string(end.exit_status.value_or(0));
  if (m_ended_by_us == Outcome::kTimedOut) {
    meaning = "the time-out ended the run";
  } else if (m_ended_by_us == Outcome::kInterrupted) {
    meaning = "the operator ended the run";
  } else if (end.signal) {
    meaning = "the process of the plug-in was ended by signal " + std::to_string(*end.signal) +
              " (" + strsignal(*end.signal) + ")";
  }
  Verdict verdict = JudgeMissingResult(m_trace, Outcome::kCrashed, std::move(meaning));
  // Programming had succeeded before the read-back began.
  if (m_stage == Stage::kReadingBack) verdict.state = m_end.state;
  return verdict;
}

void StepRun::OnProcessEnded() {
  if (m_stage == Stage::kDone) return;
  if (!m_process_end) {
    m_process_end = m_worker.TakeEnd();
    if (!m_process_end) return;
    // What it said last counts.
    for (const Frame& frame : m_worker.ReceiveRest()) {
      Take(frame);
    }
  }
  if (m_stage == Stage::kJudging || m_stage == Stage::kLocking) {
    EmitError("worker-broken", "The worker ended before the run began; try the words with zvisp.");
    EndWithoutStart(kExitUnavailable);
  } else if (m_stage == Stage::kRunning || m_stage == Stage::kReadingBack) {
    // A worker that ended while it asked has not made the call.
    if (m_call_is_pending) m_trace.writing -= 1;
    m_call_is_pending = false;
    m_result.signal = m_process_end->signal;
    Finish(WithoutResult(*m_process_end), {});
  } else if (m_stage == Stage::kEnding) {
    m_stage = Stage::kDone;
  }
}

}  // namespace line
