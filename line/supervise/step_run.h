// SPDX-License-Identifier: MIT
//
// One attempt of one step: a worker from its start to its end, and what is reported and recorded of
// it. A step never waits: the supervisor calls it when something has happened.
#ifndef ZVISP_LINE_SUPERVISE_STEP_RUN_H_
#define ZVISP_LINE_SUPERVISE_STEP_RUN_H_

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "line/event/event.h"
#include "line/event/exit_status.h"
#include "line/event/session.h"
#include "line/job/judged_words.h"
#include "line/journal/journal.h"
#include "line/supervise/interface_wait.h"
#include "line/supervise/output_follower.h"
#include "line/supervise/read_back.h"
#include "line/supervise/worker_process.h"
#include "line/worker/verdict.h"

namespace line {

// Where a step reports to. All of it must outlive the step.
struct Reporting {
  Session& session;
  Journal& journal;
  JournalSink& record;
};

struct StepRequest {
  Where where;                     // of the run; approve fills in the rest
  std::vector<std::string> words;  // zvisp's
  std::string plugin_directory;    // ends in "/"
  std::string data_directory;      // absolute
  std::uint64_t wait_ms = 0;       // for an interface in use
  std::optional<double> timeout_s;
  std::uint64_t attempt = 1;
  Wanted wanted;
  bool reads_back = false;
  bool reads_only = false;  // read back without a run before
  std::vector<AddressRange> ignored;
  int copies_lock = -1;
  std::string dump_prefix;  // of the files for what is read back; a number follows

  // Judges what the worker made of the words, puts the private copies into the records, and
  // completes the request by what is known now. kExitPassed lets the step continue; with anything
  // else it has reported why not.
  std::function<ExitStatus(JudgedWords&, StepRequest&)> approve;
  // The interface is locked and the plug-in is about to be called.
  std::function<void()> on_start;
};

// What became of a step.
struct StepEnd {
  bool started = false;             // on_start was called, and there is a result
  ExitStatus status = kExitPassed;  // of one that did not start: why not
  Outcome outcome = Outcome::kRefused;
  UnitState state = UnitState::kUntouched;
  bool recorded = true;      // the result is on the disk
  bool interrupted = false;  // the operator kept it from starting, or ended it
  std::uint64_t duration_ms = 0;
};

class StepRun {
 public:
  StepRun(StepRequest request, const Reporting& reporting);

  // Starts the worker. On failure the step is done.
  void Start();

  bool IsDone() const { return m_stage == Stage::kDone; }
  const StepEnd& End() const { return m_end; }

  // What to poll for; -1 for nothing.
  int Socket() const { return m_worker.Socket(); }
  bool WantsToSend() const { return m_worker.WantsToSend(); }

  void OnReadable();
  void OnWritable() { m_worker.SendQueued(); }
  void OnRecorded();  // fates of the record have changed
  void OnTick(std::uint64_t now_ms);
  // When OnTick has something to do before the next tick of all.
  std::optional<std::uint64_t> WakesAtMs() const;
  void OnProcessEnded();  // of some worker, perhaps this one

  // The operator's first signal: what has not been started, is not; what runs, finishes.
  void StartNothingNew();
  // The second one: ends the worker.
  void Interrupt(std::uint64_t now_ms);

 private:
  // A worker that should end (SIGTERM, or its Bye) gets SIGKILL after so long.
  static constexpr std::uint64_t kGraceMs = 10000;

  enum class Stage { kJudging, kLocking, kRunning, kReadingBack, kRecording, kEnding, kDone };

  void Take(const Frame& frame);
  void OnJudged(const Frame& frame);
  void OnLockTried();
  void OnLocked();
  void OnCall(const Frame& frame);
  void OnProgress(int percent);
  void OnMessage(const TextMessage& message);
  void OnResult(const ResultMessage& result);
  void AnswerCall(bool may);
  void OnActionResult(const ResultMessage& result);
  void OnDumpResult(const ResultMessage& result);

  GoMessage GoFor(const JudgedWords& words) const;
  void StartReadBack();
  void DumpNextRange();
  void FinishReadBack(const ReadBack::Finding& finding);
  void Finish(const Verdict& verdict, std::optional<std::uint32_t> code);
  void OnResultRecorded(bool on_disk);
  void EndWithoutStart(ExitStatus status);
  void EndWorker(Outcome why, std::uint64_t now_ms);
  Verdict WithoutResult(const ProcessEnd& end) const;
  void ReportOutput(bool is_end);
  void Emit(EventBody body) { m_reporting.session.Emit(m_request.where, std::move(body)); }
  void EmitError(std::string id, std::string text);
  std::string DumpFile() const;

  StepRequest m_request;
  Reporting m_reporting;
  InterfaceWait m_interface;
  WorkerProcess m_worker;
  OutputFollower m_output;
  JudgedWords m_words;
  CallTrace m_trace;
  ReadBack m_read_back;
  Stage m_stage = Stage::kJudging;
  StepEnd m_end;
  ResultEvent m_result;
  Journal::Ticket m_awaited = 0;  // the line that the next step waits for; 0 for none
  bool m_call_is_pending = false;
  bool m_told_of_wait = false;
  std::size_t m_next_range = 0;
  std::uint64_t m_started_ms = 0;
  std::uint64_t m_kill_at_ms = 0;  // 0: the worker was not asked to end
  std::optional<Outcome> m_ended_by_us;
  std::optional<ProcessEnd> m_process_end;
  std::uint64_t m_messages = 0;
};

}  // namespace line

#endif  // ZVISP_LINE_SUPERVISE_STEP_RUN_H_
