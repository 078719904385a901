// SPDX-License-Identifier: MIT
#include "line/supervise/step_run.h"

#include <signal.h>
#include <unistd.h>

#include <cstring>
#include <utility>

namespace line {

namespace {

// More than any run needs. A plug-in that floods its host must not fill the disk with the record.
constexpr std::uint64_t kMostMessages = 10000;

std::string_view PathOf(const char (&text)[kPathCapacity]) {
  return {text, strnlen(text, sizeof text)};
}

bool ProgramsBootCode(const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING& setting) {
  return setting.enumIspMode == ISP_MODE_FACTORY && !PathOf(setting.szBootFwPath).empty();
}

std::string HolderOf(const Where& where) {
  return "process " + std::to_string(getpid()) + " (unit " + where.unit + ", user " +
         std::to_string(geteuid()) + ")";
}

// zvisp programs the boot code first, so of its writing calls the first is the boot code's.
Phase PhaseOf(const CallTrace& trace, bool boot_code) {
  if (trace.last == "GetKeyFromFlash") return Phase::kSignature;
  if (trace.last == "DumpFlash") return Phase::kReadBack;
  return boot_code && trace.writing == 1 ? Phase::kBoot : Phase::kProgram;
}

}  // namespace

StepRun::StepRun(StepRequest request, const Reporting& reporting)
    : m_request(std::move(request)), m_reporting(reporting) {}

void StepRun::EmitError(std::string id, std::string text) {
  ErrorEvent error;
  error.id = std::move(id);
  error.text = std::move(text);
  Emit(std::move(error));
}

void StepRun::EndWithoutStart(ExitStatus status) {
  m_end.status = status;
  // The worker waits for the parent and has called nothing, so it can be ended at once.
  m_worker.Signal(SIGKILL);
  m_stage = Stage::kDone;
}

void StepRun::Start() {
  std::string error;
  if (m_output.Open(error) && m_worker.Start(m_output.Descriptor(), m_request.copies_lock, error)) {
    m_worker.Send(Encode(WordsMessage{m_request.words}));
    return;
  }
  EmitError("worker-not-started", error);
  m_end.status = kExitUnavailable;
  m_stage = Stage::kDone;
}

void StepRun::OnReadable() {
  for (const Frame& frame : m_worker.Receive()) {
    if (m_stage != Stage::kDone) Take(frame);
  }
}

// A frame that does not belong to the stage is passed over: a plug-in may have written it.
void StepRun::Take(const Frame& frame) {
  const bool runs = m_stage == Stage::kRunning || m_stage == Stage::kReadingBack;
  if (m_stage == Stage::kJudging && frame.type == MessageType::kJudged) OnJudged(frame);
  if (!runs) return;
  if (frame.type == MessageType::kCall) OnCall(frame);
  if (const auto progress = Decode<ProgressMessage>(frame)) OnProgress(progress->percent);
  if (const auto message = Decode<TextMessage>(frame)) OnMessage(*message);
  if (const auto result = Decode<ResultMessage>(frame)) OnResult(*result);
}

void StepRun::OnJudged(const Frame& frame) {
  std::optional<JudgedWords> words = DecodeJudged(frame);
  if (!words) {
    EmitError("worker-broken", "The worker's verdict cannot be read; try the words with zvisp.");
    EndWithoutStart(kExitUnavailable);
    return;
  }
  m_words = std::move(*words);
  m_words.said = m_output.TakeText();
  // It puts the private copies into the records, so everything below sees the copies.
  const ExitStatus status = m_request.approve(m_words, m_request);
  if (status != kExitPassed) {
    EndWithoutStart(status);
    return;
  }
  const auto& setting = *m_words.setting;
  m_trace.edp_mode = setting.enumEdpIspMode;
  std::string error;
  if (m_request.reads_back && !m_read_back.Plan(setting, m_request.ignored, error)) {
    EmitError("read-back", error);
    EndWithoutStart(kExitRefused);
    return;
  }
  m_stage = Stage::kLocking;
  m_interface.Begin({setting.enumCommID, ProgramsBootCode(setting)}, HolderOf(m_request.where),
                    m_request.wait_ms, MonotonicMs());
  OnLockTried();
}

void StepRun::OnLockTried() {
  switch (m_interface.Now()) {
    case InterfaceWait::State::kTaken:
      OnLocked();
      break;
    case InterfaceWait::State::kInUse:
      EmitError("interface-in-use",
                m_interface.Reason() + "; wait for its end, or give --wait SECONDS.");
      EndWithoutStart(kExitUnavailable);
      break;
    case InterfaceWait::State::kNotAvailable:
      EmitError("lock-not-available", m_interface.Reason());
      EndWithoutStart(kExitUnavailable);
      break;
    default:
      if (m_interface.IsLong() && !std::exchange(m_told_of_wait, true)) {
        Emit(WaitEvent{WaitReason::kInterface, m_interface.Reason()});
      }
  }
}

GoMessage StepRun::GoFor(const JudgedWords& words) const {
  GoMessage go;
  go.setting = PackSetting(*words.setting);
  go.sign_args.assign(reinterpret_cast<const char*>(words.sign_args.get()),
                      sizeof *words.sign_args);
  go.plugin_directory = m_request.plugin_directory;
  go.data_directory = m_request.data_directory;
  go.run = m_request.where.run;
  go.unit = m_request.where.unit;
  go.place = m_request.where.place;
  go.step = m_request.where.step;
  go.comm = words.setting->enumCommID;
  go.attempt = m_request.attempt;
  go.reads_only = m_request.reads_only;
  go.reads_back = m_request.reads_back;
  go.has_expected = m_request.wanted.scaler_type.has_value();
  go.expected = m_request.wanted.scaler_type.value_or(0);
  go.nothing_written = m_request.wanted.nothing_written;
  return go;
}

void StepRun::OnLocked() {
  // Only with the lock: a run that had to wait in vain leaves no start in the record.
  m_request.on_start();
  m_end.started = true;
  m_started_ms = MonotonicMs();
  m_request.where.phase = Phase::kPrepare;
  Emit(StartEvent{m_request.timeout_s});
  m_stage = Stage::kRunning;
  m_worker.SendWith(m_interface.Files(), FrameBytes(MessageType::kLock, ""));
  m_worker.Send(Encode(GoFor(m_words)));
  if (m_request.reads_only) StartReadBack();
}

// The plug-in is not called before the disk has the line that says so.
void StepRun::OnCall(const Frame& frame) {
  const auto call = Decode<CallMessage>(frame);
  if (!call || m_call_is_pending) return;
  const UnitState previous = m_end.state;
  const bool writes = m_trace.Begin(call->name);
  m_request.where.phase = PhaseOf(m_trace, ProgramsBootCode(*m_words.setting));
  if (!writes) {
    m_worker.Send(Encode(MayCallMessage{true}));
    return;
  }
  m_end.state = UnitState::kProgramming;
  Emit(StateEvent{UnitState::kProgramming, previous, call->name});
  m_awaited = m_reporting.record.Last();
  m_call_is_pending = true;
  OnRecorded();
}

void StepRun::OnRecorded() {
  if (m_awaited == 0) return;
  const Journal::Fate fate = m_reporting.journal.FateOf(m_awaited);
  if (fate == Journal::Fate::kPending) return;
  m_awaited = 0;
  const bool on_disk = fate == Journal::Fate::kOnDisk;
  if (m_stage == Stage::kRecording) {
    OnResultRecorded(on_disk);
  } else if (m_call_is_pending) {
    AnswerCall(on_disk);
  }
}

void StepRun::AnswerCall(bool may) {
  m_call_is_pending = false;
  m_worker.Send(Encode(MayCallMessage{may}));
  if (may) return;
  // The worker ends without the call, which leaves the display as it was before.
  m_trace.writing -= 1;
  Finish(JudgeMissingResult(m_trace, Outcome::kUnavailable,
                            "the record cannot be written: " + m_reporting.journal.Failure()),
         {});
}

void StepRun::OnProgress(int percent) {
  // A percentage from a plug-in can be anything, and often comes many times.
  if (percent < 0 || percent > 100 || m_result.last_percent == percent) return;
  m_result.last_percent = percent;
  Emit(ProgressEvent{percent, MonotonicMs() - m_started_ms});
}

void StepRun::OnMessage(const TextMessage& message) {
  if (++m_messages > kMostMessages) return;
  MessageEvent event;
  event.source = Source::kPlugin;
  event.text = message.text;
  event.truncated = message.truncated || m_messages == kMostMessages;
  Emit(std::move(event));
}

void StepRun::ReportOutput(bool is_end) {
  for (std::string& text : m_output.TakeLines(is_end)) {
    MessageEvent event;
    event.source = Source::kOutput;
    event.truncated = text.size() > kLongestText;
    if (event.truncated) text.resize(kLongestText);
    event.text = std::move(text);
    Emit(std::move(event));
  }
  if (!is_end || m_output.DroppedBytes() == 0) return;
  MessageEvent event;
  event.source = Source::kOutput;
  event.level = Level::kWarning;
  event.text = std::to_string(m_output.DroppedBytes()) + " more bytes of output were not kept";
  event.truncated = true;
  Emit(std::move(event));
}

// Before the run begins there is nothing to end softly (see EndWithoutStart). Later a plug-in may
// need its time to leave the display in order.
void StepRun::EndWorker(Outcome why, std::uint64_t now_ms) {
  const bool runs = m_stage == Stage::kRunning || m_stage == Stage::kReadingBack;
  if (!runs || m_ended_by_us) return;
  m_ended_by_us = why;
  m_kill_at_ms = now_ms + kGraceMs;
  m_worker.Signal(SIGTERM);
}

std::optional<std::uint64_t> StepRun::WakesAtMs() const {
  if (m_stage != Stage::kLocking) return std::nullopt;
  return m_interface.NextTryMs();
}

void StepRun::OnTick(std::uint64_t now_ms) {
  if (m_stage == Stage::kLocking) {
    m_interface.OnTick(now_ms);
    OnLockTried();
  }
  const bool runs = m_stage == Stage::kRunning || m_stage == Stage::kReadingBack;
  if (runs) ReportOutput(false);
  if (m_request.timeout_s && *m_request.timeout_s > 0 &&
      static_cast<double>(now_ms - m_started_ms) >= *m_request.timeout_s * 1000) {
    EndWorker(Outcome::kTimedOut, now_ms);
  }
  if (m_kill_at_ms != 0 && now_ms >= m_kill_at_ms) m_worker.Signal(SIGKILL);
}

void StepRun::StartNothingNew() {
  if (m_stage != Stage::kJudging && m_stage != Stage::kLocking) return;
  m_end.interrupted = true;
  EmitError("interrupted", "The run was stopped before it began; its display is untouched.");
  EndWithoutStart(kExitInterrupt);
}

void StepRun::Interrupt(std::uint64_t now_ms) {
  StartNothingNew();
  EndWorker(Outcome::kInterrupted, now_ms);
}

}  // namespace line
