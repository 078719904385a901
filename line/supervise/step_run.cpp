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

// zvisp programs the boot code first, so of its writing calls the first is the boot code's.
Phase PhaseOf(const CallTrace& trace, bool boot_code) {
  if (trace.last == "GetKeyFromFlash") return Phase::kSignature;
  if (trace.last == "DumpFlash") return Phase::kReadBack;
  return boot_code && trace.writing == 1 ? Phase::kBoot : Phase::kProgram;
}

}  // namespace

bool ProgramsBootCode(const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING& setting) {
  return setting.enumIspMode == ISP_MODE_FACTORY && !PathOf(setting.szBootFwPath).empty();
}

bool StepRun::StartWorker(std::string& error) {
  if (!m_output.Open(error) ||
      !m_worker.Start(m_output.Descriptor(), m_request.copies_lock, error)) {
    return false;
  }
  m_stage = Stage::kJudging;
  if (!m_request.judged) m_worker.Send(Encode(WordsMessage{m_request.words}));
  return true;
}

void StepRun::OnReadable() {
  for (const Frame& frame : m_worker.Receive()) {
    Take(frame);
  }
}

// A frame that does not belong to the stage is passed over: a plug-in may have written it.
void StepRun::Take(const Frame& frame) {
  if (m_stage == Stage::kJudging && frame.type == MessageType::kJudged) OnJudged(frame);
  if (!Runs()) return;
  if (frame.type == MessageType::kCall) OnCall(frame);
  if (const auto progress = Decode<ProgressMessage>(frame)) OnProgress(progress->percent);
  if (const auto message = Decode<TextMessage>(frame)) OnMessage(*message);
  if (const auto result = Decode<ResultMessage>(frame)) OnResult(*result);
}

void StepRun::OnJudged(const Frame& frame) {
  m_verdict = DecodeJudged(frame);
  if (m_verdict) {
    m_verdict->said = m_output.TakeText();
  } else {
    m_stage = Stage::kBroken;
  }
}

bool StepRun::Prepare(std::string& error) {
  const auto& setting = *m_request.judged->setting;
  m_trace.edp_mode = setting.enumEdpIspMode;
  m_has_boot_code = ProgramsBootCode(setting);
  if (m_request.read) {
    m_ranges = {{m_request.read->address, m_request.read->length}};
    return true;
  }
  if (!m_request.reads_back) return true;
  if (!m_read_back.Plan(setting, m_request.ignored, error)) return false;
  m_ranges = m_read_back.Ranges();
  return true;
}

GoMessage StepRun::MakeGo(const StepPlace& place) const {
  const JudgedWords& words = *m_request.judged;
  GoMessage go;
  go.setting = PackSetting(*words.setting);
  go.sign_args.assign(reinterpret_cast<const char*>(words.sign_args.get()),
                      sizeof *words.sign_args);
  go.plugin_directory = m_request.plugin_directory;
  go.data_directory = m_request.data_directory;
  go.run = m_where.run;
  go.unit = m_where.unit;
  go.place = m_where.place;
  go.job_name = m_where.job_name;
  go.step = m_where.step;
  go.step_index = place.index;
  go.comm = words.setting->enumCommID;
  go.attempt = place.attempt;
  go.state_before = static_cast<std::uint32_t>(place.state);
  go.is_last = place.is_last;
  go.reads_only = ReadsOnly();
  go.reads_back = m_request.reads_back;
  go.has_expected = m_request.wanted.scaler_type.has_value();
  go.expected = m_request.wanted.scaler_type.value_or(0);
  go.nothing_written = m_request.wanted.nothing_written;
  for (const FileFacts& file : m_request.checked_files) {
    go.checked_files.push_back(file.path);
    go.checked_sha256.push_back(file.sha256);
  }
  return go;
}

void StepRun::Go(const StepPlace& place, const std::vector<int>& lock_files) {
  m_where = place.where;
  m_where.step = m_request.name;
  m_where.step_index = place.index;
  m_where.phase = Phase::kPrepare;
  m_before = place.state;
  m_end.state = place.state;
  m_started_ms = MonotonicMs();
  Emit(StartEvent{m_request.timeout_s});
  m_stage = Stage::kRunning;
  m_worker.SendWith(lock_files, FrameBytes(MessageType::kLock, ""));
  m_worker.Send(Encode(MakeGo(place)));
  if (ReadsOnly()) StartReadBack();
}

// The plug-in is not called before the disk has the line that says so.
void StepRun::OnCall(const Frame& frame) {
  const auto call = Decode<CallMessage>(frame);
  if (!call || m_call_is_pending) return;
  const UnitState previous = m_end.state;
  const bool writes = m_trace.Begin(call->name);
  m_where.phase = PhaseOf(m_trace, m_has_boot_code);
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

// A plug-in may need its time to leave the display in order.
void StepRun::EndWorker(Outcome why, std::uint64_t now_ms) {
  if (!Runs() || m_ended_by_us) return;
  m_ended_by_us = why;
  m_kill_at_ms = now_ms + kGraceMs;
  m_worker.Signal(SIGTERM);
  // A process that stopped itself gets the other signal only when it continues.
  m_worker.Signal(SIGCONT);
}

void StepRun::OnTick(std::uint64_t now_ms) {
  if (Runs()) ReportOutput(false);
  // A tick may be older than a start that it has caused, so nothing is subtracted.
  if (m_request.timeout_s && *m_request.timeout_s > 0 &&
      static_cast<double>(now_ms) >=
          static_cast<double>(m_started_ms) + *m_request.timeout_s * 1000) {
    EndWorker(Outcome::kTimedOut, now_ms);
  }
  if (m_kill_at_ms != 0 && now_ms >= m_kill_at_ms) m_worker.Signal(SIGKILL);
}

}  // namespace line
