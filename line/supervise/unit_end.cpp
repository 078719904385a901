// SPDX-License-Identifier: MIT
//
// The end of a unit: its result, the record of it, and the hook that gets it.
#include <utility>

#include "line/event/event_json.h"
#include "line/supervise/unit_run.h"

namespace line {

namespace {

class LastLine : public EventSink {
 public:
  void Take(const Event& event) override { m_line = ToJsonLine(event); }
  std::string TakeText() { return std::move(m_line); }

 private:
  std::string m_line;
};

}  // namespace

void UnitRun::EmitResult() {
  UnitResultEvent result;
  result.outcome = m_end.outcome;
  result.state = m_end.state;
  result.attempt = m_request.attempt;
  result.failed_step = m_end.failed_step;
  result.recorded = m_end.recorded;
  result.duration_ms = m_end.duration_ms;
  result.reason = m_end.reason;
  LastLine line;
  m_reporting.session.Add(line);
  Emit(std::move(result));
  m_reporting.session.Remove(line);
  m_result_line = line.TakeText();
  m_awaited = m_reporting.record.Last();
  m_stage = Stage::kRecording;
  OnRecorded();
}

void UnitRun::OnRecorded() {
  if (m_step != nullptr) m_step->OnRecorded();
  if (m_stage == Stage::kRecording) {
    const Journal::Fate fate = m_reporting.journal.FateOf(m_awaited);
    if (fate == Journal::Fate::kPending) return;
    m_end.recorded = m_end.recorded && fate == Journal::Fate::kOnDisk;
    TellHook();
  }
  Advance();
}

void UnitRun::TellHook() {
  if (m_request.after_words.empty()) {
    m_stage = Stage::kDone;
    return;
  }
  std::string error;
  m_stage = Stage::kTelling;
  m_hook = std::make_unique<HookProcess>();
  if (!m_hook->Start(m_request.after_words, m_request.hook_directory, m_result_line,
                     m_request.hook_timeout_ms, error)) {
    m_hook.reset();
    OnHookFailed(error);
  }
}

void UnitRun::OnHookTold() {
  const std::string complaint = std::exchange(m_hook, nullptr)->Complaint();
  if (complaint.empty()) {
    m_stage = Stage::kDone;
  } else {
    OnHookFailed(complaint);
  }
}

void UnitRun::OnHookFailed(const std::string& why) {
  m_end.hook_failed = true;
  MessageEvent event;
  event.level = Level::kWarning;
  event.text = why;
  Emit(std::move(event));
  m_stage = Stage::kDone;
}

}  // namespace line
