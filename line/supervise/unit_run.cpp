// SPDX-License-Identifier: MIT
#include "line/supervise/unit_run.h"

#include <unistd.h>

#include <utility>

namespace line {

namespace {

std::string HolderOf(const Where& where) {
  return "process " + std::to_string(getpid()) + " (unit " + where.unit + ", user " +
         std::to_string(geteuid()) + ")";
}

}  // namespace

UnitRun::UnitRun(UnitRequest request, const Reporting& reporting)
    : m_request(std::move(request)), m_reporting(reporting) {}

InterfaceUse UnitRun::Use() const {
  InterfaceUse use;
  for (const StepRequest& step : m_request.steps) {
    if (!step.judged) continue;
    use.comm = step.judged->setting->enumCommID;
    use.alone = use.alone || ProgramsBootCode(*step.judged->setting);
  }
  return use;
}

int UnitRun::Socket() const {
  return m_step == nullptr || m_step->IsDone() ? -1 : m_step->Socket();
}

std::optional<std::uint64_t> UnitRun::WakesAtMs() const {
  if (m_stage != Stage::kLocking) return std::nullopt;
  return m_interface.NextTryMs();
}

void UnitRun::Start() {
  if (m_request.steps.front().judged) {
    BeginLock();
    return;
  }
  std::string error;
  m_stage = Stage::kJudging;
  m_step = std::make_unique<StepRun>(m_request.steps.front(), m_reporting);
  if (!m_step->StartWorker(error)) {
    Refuse({kExitUnavailable, Outcome::kUnavailable, "worker-not-started", error});
  }
}

void UnitRun::OnVerdict(JudgedWords words) {
  const ExitStatus status = m_request.approve(words, m_request);
  if (status != kExitPassed) {
    m_step.reset();
    m_end.status = status;
    m_stage = Stage::kDone;
    return;
  }
  m_request.steps.front().judged = std::move(words);
  BeginLock();
}

void UnitRun::BeginLock() {
  // What can be wrong with a later step is found before the first one has touched the display.
  for (const StepRequest& step : m_request.steps) {
    std::string error;
    if (StepRun(step, m_reporting).Prepare(error)) continue;
    Refuse({kExitRefused, Outcome::kRefused, "read-back", error});
    return;
  }
  m_stage = Stage::kLocking;
  m_interface.Begin(Use(), HolderOf(m_request.where), m_request.wait_ms, MonotonicMs());
  OnLockTried();
}

void UnitRun::OnLockTried() {
  switch (m_interface.Now()) {
    case InterfaceWait::State::kTaken:
      AskHook();
      break;
    case InterfaceWait::State::kInUse:
      Refuse({kExitUnavailable, Outcome::kUnavailable, "interface-in-use",
              m_interface.Reason() + "; wait for its end, or give --wait SECONDS."});
      break;
    case InterfaceWait::State::kNotAvailable:
      Refuse({kExitUnavailable, Outcome::kUnavailable, "lock-not-available", m_interface.Reason()});
      break;
    default:
      if (m_interface.IsLong() && !std::exchange(m_told_of_wait, true)) {
        Emit(WaitEvent{WaitReason::kInterface, m_interface.Reason()});
      }
  }
}

void UnitRun::AskHook() {
  if (m_request.before_words.empty()) {
    StartUnit();
    return;
  }
  std::string error;
  m_stage = Stage::kAsking;
  Emit(WaitEvent{WaitReason::kHook, ""});
  m_hook = std::make_unique<HookProcess>();
  if (!m_hook->Start(m_request.before_words, m_request.hook_directory, "",
                     m_request.hook_timeout_ms, error)) {
    // One that stayed would pass for the other hook, and end the unit before its record.
    m_hook.reset();
    Refuse({kExitRefused, Outcome::kRefused, "hook", error});
  }
}

void UnitRun::OnHookAnswered() {
  const std::string complaint = std::exchange(m_hook, nullptr)->Complaint();
  if (!complaint.empty() && !m_is_ended) {
    Refuse({kExitRefused, Outcome::kRefused, "hook", complaint});
  } else if (m_is_stopped) {
    StopBeforeStart();
  } else {
    StartUnit();
  }
}

void UnitRun::StopBeforeStart() {
  m_end.interrupted = true;
  Refuse({kExitInterrupt, Outcome::kInterrupted, "interrupted",
          "The run was stopped before it began; its display is untouched."});
}

void UnitRun::Refuse(const Refusal& why) {
  // A worker that waits for its step has called nothing, so it is ended at once.
  m_step.reset();
  m_interface.Release();
  m_end.status = why.status;
  m_end.outcome = why.outcome;
  m_end.reason = why.reason;
  if (m_request.always_has_result) {
    EmitResult();
    return;
  }
  Where where = m_request.where;
  if (m_request.steps.front().judged) {
    where.step = m_request.steps.front().name;
    where.step_index = 0;
  }
  m_reporting.session.Emit(where, ErrorEvent{why.id, why.reason, "", {}, {}});
  m_stage = Stage::kDone;
}

void UnitRun::Decline(Outcome outcome, std::string reason) {
  const bool interrupted = outcome == Outcome::kInterrupted;
  m_end.interrupted = interrupted;
  Refuse({interrupted ? kExitInterrupt : kExitRefused, outcome, "not-started", std::move(reason)});
}

// A worker for the next step, unless it has one already.
bool UnitRun::MakeStep(std::string& error) {
  if (m_step == nullptr) {
    m_step = std::make_unique<StepRun>(m_request.steps[m_index], m_reporting);
  }
  return (m_step->HasWorker() || m_step->StartWorker(error)) && m_step->Prepare(error);
}

void UnitRun::StartUnit() {
  std::string error;
  if (!MakeStep(error)) {
    Refuse({kExitUnavailable, Outcome::kUnavailable, "worker-not-started", error});
    return;
  }
  // Only with the lock: a run that had to wait in vain leaves no start in the record.
  m_stage = Stage::kRunning;
  m_end.started = true;
  m_started_ms = MonotonicMs();
  if (m_request.on_start) m_request.on_start();
  Emit(UnitStartEvent{m_request.attempt, m_request.is_unsigned});
  RunStep();
}

void UnitRun::RunStep() {
  const bool is_last = m_index + 1 == m_request.steps.size();
  m_step->Go({m_request.where, static_cast<std::uint32_t>(m_index), m_request.attempt, m_end.state,
              is_last},
             m_interface.Files());
}

void UnitRun::OnStepDone() {
  const StepEnd end = m_step->End();
  m_step.reset();
  m_end.outcome = end.outcome;
  m_end.state = end.state;
  m_end.touched = m_end.touched || end.touched;
  m_end.recorded = m_end.recorded && end.recorded;
  m_end.interrupted = end.outcome == Outcome::kInterrupted;
  if (end.outcome != Outcome::kPassed) {
    m_end.failed_step = m_request.steps[m_index].name;
    EndUnit();
  } else if (++m_index == m_request.steps.size()) {
    EndUnit();
  } else {
    StartNextStep();
  }
}

void UnitRun::StartNextStep() {
  std::string error;
  const std::string& name = m_request.steps[m_index].name;
  if (m_is_stopped) {
    m_end.outcome = Outcome::kInterrupted;
    m_end.interrupted = true;
    m_end.reason = "stopped before the step " + name;
    EndUnit();
  } else if (!MakeStep(error)) {
    m_end.outcome = Outcome::kUnavailable;
    m_end.failed_step = name;
    m_end.reason = error;
    EndUnit();
  } else {
    RunStep();
  }
}

void UnitRun::EndUnit() {
  m_interface.Release();
  m_end.duration_ms = MonotonicMs() - m_started_ms;
  EmitResult();
}

// A step that ended, or a verdict that came, lets the unit continue.
void UnitRun::Advance() {
  const bool is_before_start = m_stage == Stage::kJudging || m_stage == Stage::kLocking;
  if (m_step != nullptr && is_before_start && m_step->IsBroken()) {
    Refuse({kExitUnavailable, Outcome::kUnavailable, "worker-broken",
            "The worker ended before the run began; try the words with zvisp."});
  } else if (m_stage == Stage::kJudging) {
    if (std::optional<JudgedWords> words = m_step->TakeVerdict()) OnVerdict(std::move(*words));
  } else if (m_stage == Stage::kRunning && m_step->IsDone()) {
    OnStepDone();
  } else if (m_hook != nullptr && !m_hook->IsRunning()) {
    m_stage == Stage::kAsking ? OnHookAnswered() : OnHookTold();
  }
}

// What happened a moment before may have ended the step whose socket was polled.
void UnitRun::OnReadable() {
  if (m_step != nullptr) m_step->OnReadable();
  Advance();
}

void UnitRun::OnWritable() {
  if (m_step != nullptr) m_step->OnWritable();
}

void UnitRun::OnTick(std::uint64_t now_ms) {
  if (m_stage == Stage::kLocking) {
    m_interface.OnTick(now_ms);
    OnLockTried();
  }
  if (m_step != nullptr) m_step->OnTick(now_ms);
  if (m_hook != nullptr) m_hook->OnTick(now_ms);
  Advance();
}

void UnitRun::OnProcessEnded() {
  if (m_step != nullptr) m_step->OnProcessEnded();
  if (m_hook != nullptr) m_hook->OnProcessEnded();
  Advance();
}

void UnitRun::StartNothingNew() {
  m_is_stopped = true;
  if (m_stage == Stage::kJudging || m_stage == Stage::kLocking) StopBeforeStart();
}

void UnitRun::Interrupt(std::uint64_t now_ms) {
  StartNothingNew();
  m_is_ended = true;
  if (m_step != nullptr) m_step->Interrupt(now_ms);
  if (m_hook != nullptr) m_hook->Interrupt(now_ms);
  Advance();
}

}  // namespace line
