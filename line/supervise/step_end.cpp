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
  const Verdict verdict = JudgeResult(m_trace, result, m_request.wanted);
  std::optional<std::uint32_t> code = result.code;
  // Nothing was called.
  if (!result.changed_file.empty() && m_trace.last.empty()) code.reset();
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
  m_where.phase = Phase::kReadBack;
  m_result.last_percent.reset();
  m_result.compared_bytes = 0;
  DumpNextRange();
}

// A file of its own for each: the steps of a batch have one directory.
std::string StepRun::DumpFile() const {
  return m_request.dump_prefix + m_where.run + "-" + std::to_string(*m_where.step_index) + "-" +
         std::to_string(m_next_range);
}

void StepRun::DumpNextRange() {
  const ReadBack::Range& range = m_ranges[m_next_range];
  m_worker.Send(Encode(DumpMessage{range.address, range.length, DumpFile()}));
}

void StepRun::OnDumpResult(const ResultMessage& result) {
  if (result.code != 0) m_result.code = result.code;
  if (m_request.read) {
    FinishRead(result);
    return;
  }
  ReadBack::Finding finding;
  if (result.code == 0) finding = m_read_back.Compare(m_ranges[m_next_range], DumpFile());
  // At once: the dumps of a whole flash together would need its size on the disk.
  unlink(DumpFile().c_str());
  *m_result.compared_bytes += finding.compared_bytes;
  ++m_next_range;
  if (result.code != 0) {
    Finish(WithoutDump(result), m_result.code);
  } else if (finding.failure.empty() && !finding.difference && m_next_range < m_ranges.size()) {
    DumpNextRange();
  } else {
    FinishReadBack(finding);
  }
}

// Reading failed, which says nothing against what was programmed.
Verdict StepRun::WithoutDump(const ResultMessage& result) const {
  // Without a call, the plug-in was not there.
  Verdict verdict = {m_trace.last.empty() ? Outcome::kUnavailable : Outcome::kFailed, m_end.state,
                     "plug-in", "the flash cannot be read back"};
  if (!result.missing.empty()) verdict.meaning += ": " + result.missing;
  return verdict;
}

void StepRun::FinishReadBack(const ReadBack::Finding& finding) {
  m_result.difference = finding.difference;
  Verdict verdict = {Outcome::kPassed, UnitState::kIdentical, "plug-in",
                     "the flash holds the planned bytes"};
  if (!finding.failure.empty()) {
    verdict = {Outcome::kFailed, m_end.state, "plug-in", finding.failure};
  } else if (finding.difference) {
    verdict = {Outcome::kDifferent, UnitState::kDifferent, "plug-in",
               "the flash differs from the planned bytes"};
  }
  Finish(verdict, m_result.code);
}

// What a read finds says nothing about planned bytes, so the state stays what it was.
void StepRun::FinishRead(const ResultMessage& result) {
  Verdict verdict = WithoutDump(result);
  if (result.code == 0) {
    const ReadFinding finding = CompareRead(*m_request.read, DumpFile());
    verdict = {Outcome::kPassed, m_end.state, "plug-in", "the flash holds the expected bytes"};
    if (!finding.failure.empty()) {
      verdict.outcome = Outcome::kFailed;
      verdict.meaning = finding.failure;
    } else {
      m_result.compared_bytes = m_request.read->length;
      m_result.value = finding.value;
      m_result.expected = finding.expected;
    }
    if (finding.value != finding.expected) {
      verdict.outcome = Outcome::kDifferent;
      verdict.meaning = "the flash does not hold the expected bytes";
    }
  }
  unlink(DumpFile().c_str());
  Finish(verdict, m_result.code);
}

void StepRun::Finish(const Verdict& verdict, std::optional<std::uint32_t> code) {
  ReportOutput(true);
  m_result.outcome = m_ended_by_us.value_or(verdict.outcome);
  m_result.state = StateAfter(m_before, verdict.state);
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
  m_end.touched = m_trace.writing > 0;
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
  if (m_stage == Stage::kIdle || IsDone() || IsBroken()) return;
  if (!m_process_end) {
    m_process_end = m_worker.TakeEnd();
    if (!m_process_end) return;
    // What it said last counts.
    for (const Frame& frame : m_worker.ReceiveRest()) {
      Take(frame);
    }
  }
  if (m_stage == Stage::kJudging) {
    m_stage = Stage::kBroken;
  } else if (Runs()) {
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
