// SPDX-License-Identifier: MIT
//
// All steps of one unit at one place: its interface is held from the first step to the last, a hook
// may refuse it before, another gets the result, and the first step that does not pass ends it. A
// unit never waits: the supervisor calls it when something has happened.
#ifndef ZVISP_LINE_SUPERVISE_UNIT_RUN_H_
#define ZVISP_LINE_SUPERVISE_UNIT_RUN_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "line/event/exit_status.h"
#include "line/journal/interface_lock.h"
#include "line/supervise/hook_process.h"
#include "line/supervise/interface_wait.h"
#include "line/supervise/step_run.h"

namespace line {

struct UnitRequest {
  Where where;  // of the unit: run, unit, place, comm and job_name
  std::uint64_t attempt = 1;
  bool is_unsigned = false;
  std::uint64_t wait_ms = 0;       // for an interface in use
  std::vector<StepRequest> steps;  // in order; at least one
  // Hooks: program and arguments; empty for none.
  std::vector<std::string> before_words, after_words;
  std::string hook_directory;         // absolute
  std::uint64_t hook_timeout_ms = 0;  // 0: none

  // A unit that does not start has a unit_result that says why. Without this it has an error.
  bool always_has_result = true;
  // For the only step, when it is not judged yet: approves what the worker made of its words, puts
  // the private copies into the records, and completes this request by what is known now.
  // kExitPassed lets the unit continue; with anything else it has reported why not.
  std::function<ExitStatus(JudgedWords&, UnitRequest&)> approve;
  std::function<void()> on_start;  // directly before unit_start; may be empty
};

// What became of a unit.
struct UnitEnd {
  bool started = false;             // there is a unit_start
  bool touched = false;             // a call that writes was begun
  ExitStatus status = kExitPassed;  // of a unit that did not start: why not
  Outcome outcome = Outcome::kInterrupted;
  UnitState state = UnitState::kUntouched;
  bool recorded = true;      // its results are on the disk
  bool interrupted = false;  // the operator kept it, or one of its steps, from starting or ended it
  bool hook_failed = false;  // the hook that gets the result
  std::string failed_step, reason;
  std::uint64_t duration_ms = 0;
};

class UnitRun {
 public:
  UnitRun(UnitRequest request, const Reporting& reporting);

  // The interface that it needs, as far as its steps are judged: alone when one has boot code.
  InterfaceUse Use() const;

  void Start();
  // Instead of Start: reports that the unit is not started, and why. `outcome` is kRefused,
  // kUnavailable or kInterrupted.
  void Decline(Outcome outcome, std::string reason);

  // The unit has its result, and its interface is free.
  bool HasEnded() const { return m_stage >= Stage::kRecording; }
  // So has the hook that gets the result.
  bool IsDone() const { return m_stage == Stage::kDone; }
  const UnitEnd& End() const { return m_end; }

  // What to poll for; -1 for nothing.
  int Socket() const;
  bool WantsToSend() const { return m_step != nullptr && m_step->WantsToSend(); }
  // When OnTick has something to do before the next tick of all.
  std::optional<std::uint64_t> WakesAtMs() const;

  void OnReadable();
  void OnWritable();
  void OnRecorded();  // fates of the record have changed
  void OnTick(std::uint64_t now_ms);
  void OnProcessEnded();  // of some child, perhaps this unit's

  // The operator's first signal: a step or a hook that runs finishes, and nothing follows.
  void StartNothingNew();
  // The second one: ends what runs.
  void Interrupt(std::uint64_t now_ms);

 private:
  enum class Stage { kIdle, kJudging, kLocking, kAsking, kRunning, kRecording, kTelling, kDone };

  // Why a unit does not start.
  struct Refusal {
    ExitStatus status;
    Outcome outcome;
    const char* id;
    std::string reason;
  };

  void Advance();
  bool MakeStep(std::string& error);
  void OnVerdict(JudgedWords words);
  void BeginLock();
  void OnLockTried();
  void AskHook();
  void OnHookAnswered();
  void StartUnit();
  void RunStep();
  void OnStepDone();
  void StartNextStep();
  void EndUnit();
  void StopBeforeStart();
  void Refuse(const Refusal& why);
  void EmitResult();
  void TellHook();
  void OnHookTold();
  void OnHookFailed(const std::string& why);
  void Emit(EventBody body) { m_reporting.session.Emit(m_request.where, std::move(body)); }

  UnitRequest m_request;
  Reporting m_reporting;
  Stage m_stage = Stage::kIdle;
  UnitEnd m_end;
  InterfaceWait m_interface;
  bool m_told_of_wait = false;
  bool m_is_stopped = false;  // by the operator's first signal
  bool m_is_ended = false;    // by the second one
  std::size_t m_index = 0;    // of the step that runs, or is the next
  std::unique_ptr<StepRun> m_step;
  std::unique_ptr<HookProcess> m_hook;
  std::string m_result_line;  // unit_result, for the hook
  Journal::Ticket m_awaited = 0;
  std::uint64_t m_started_ms = 0;
};

}  // namespace line

#endif  // ZVISP_LINE_SUPERVISE_UNIT_RUN_H_
