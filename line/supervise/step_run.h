// SPDX-License-Identifier: MIT
//
// One attempt of one step: a worker from its start to its end, and what is reported and recorded of
// it. A step never waits: its unit calls it when something has happened.
#ifndef ZVISP_LINE_SUPERVISE_STEP_RUN_H_
#define ZVISP_LINE_SUPERVISE_STEP_RUN_H_

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "line/event/event.h"
#include "line/event/session.h"
#include "line/job/judged_words.h"
#include "line/journal/journal.h"
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
  std::string name;
  std::vector<std::string> words;  // zvisp's, when `judged` is empty: the step's worker judges them
  // Words that may run: they were judged and approved, and the paths in the records are those of
  // private copies, or of files that are listed in `checked_files`. Of a read step, whose words
  // dump the flash, only the display that they lead to counts.
  std::optional<JudgedWords> judged;
  std::optional<FlashRead> read;
  std::string plugin_directory;  // absolute, ends in "/"
  std::string data_directory;    // absolute
  std::optional<double> timeout_s;
  Wanted wanted;
  bool reads_back = false;
  bool reads_only = false;  // read back without a run before
  std::vector<AddressRange> ignored;
  int copies_lock = -1;
  std::string dump_prefix;  // of the files for what is read; the rest of a name follows
  std::vector<FileFacts> checked_files;  // must be the same before and after the run
};

// What a step needs to know of its unit.
struct StepPlace {
  Where where;  // of the unit
  std::uint32_t index = 0;
  std::uint64_t attempt = 1;
  UnitState state = UnitState::kUntouched;  // that earlier steps have left
  bool is_last = true;
};

// What became of a step.
struct StepEnd {
  Outcome outcome = Outcome::kUnavailable;
  UnitState state = UnitState::kUntouched;  // of the unit
  bool touched = false;                     // a call that writes was begun
  bool recorded = true;                     // the result is on the disk
  std::uint64_t duration_ms = 0;
};

class StepRun {
 public:
  // The request must outlive the step.
  StepRun(const StepRequest& request, const Reporting& reporting)
      : m_request(request), m_reporting(reporting) {}

  // Starts the worker, and lets it judge the request's words when they are not judged yet. False,
  // with a sentence in `error`, when it cannot be started.
  bool StartWorker(std::string& error);
  bool HasWorker() const { return m_stage != Stage::kIdle; }
  // The verdict, once it has come.
  std::optional<JudgedWords> TakeVerdict() { return std::exchange(m_verdict, std::nullopt); }
  // The worker has ended, or said what cannot be read, before Go.
  bool IsBroken() const { return m_stage == Stage::kBroken; }

  // Plans what is read back. False, with a sentence in `error`, when it cannot be. REQUIRES: the
  // request is judged.
  bool Prepare(std::string& error);

  // Runs the step: hands the lock's files to the worker and lets it begin. The files must stay open
  // until the step is done. REQUIRES: StartWorker and Prepare.
  void Go(const StepPlace& place, const std::vector<int>& lock_files);

  // There is a result, and the worker has ended.
  bool IsDone() const { return m_stage == Stage::kDone; }
  const StepEnd& End() const { return m_end; }

  // What to poll for; -1 for nothing.
  int Socket() const { return m_worker.Socket(); }
  bool WantsToSend() const { return m_worker.WantsToSend(); }

  void OnReadable();
  void OnWritable() { m_worker.SendQueued(); }
  void OnRecorded();  // fates of the record have changed
  void OnTick(std::uint64_t now_ms);
  void OnProcessEnded();  // of some worker, perhaps this one

  // Ends the worker of a step that runs: the operator wants that.
  void Interrupt(std::uint64_t now_ms) { EndWorker(Outcome::kInterrupted, now_ms); }

 private:
  // A worker that should end (SIGTERM, or its Bye) gets SIGKILL after so long.
  static constexpr std::uint64_t kGraceMs = 10000;

  enum class Stage {
    kIdle,
    kJudging,
    kRunning,
    kReadingBack,
    kRecording,
    kEnding,
    kDone,
    kBroken,
  };

  void Take(const Frame& frame);
  void OnJudged(const Frame& frame);
  void OnCall(const Frame& frame);
  void OnProgress(int percent);
  void OnMessage(const TextMessage& message);
  void OnResult(const ResultMessage& result);
  void AnswerCall(bool may);
  void OnActionResult(const ResultMessage& result);
  void OnDumpResult(const ResultMessage& result);

  bool Runs() const { return m_stage == Stage::kRunning || m_stage == Stage::kReadingBack; }
  bool ReadsOnly() const { return m_request.reads_only || m_request.read.has_value(); }
  GoMessage MakeGo(const StepPlace& place) const;
  void StartReadBack();
  void DumpNextRange();
  void FinishReadBack(const ReadBack::Finding& finding);
  void FinishRead(const ResultMessage& result);
  Verdict WithoutDump(const ResultMessage& result) const;
  void Finish(const Verdict& verdict, std::optional<std::uint32_t> code);
  void OnResultRecorded(bool on_disk);
  void EndWorker(Outcome why, std::uint64_t now_ms);
  Verdict WithoutResult(const ProcessEnd& end) const;
  void ReportOutput(bool is_end);
  void Emit(EventBody body) { m_reporting.session.Emit(m_where, std::move(body)); }
  std::string DumpFile() const;

  const StepRequest& m_request;
  Reporting m_reporting;
  WorkerProcess m_worker;
  OutputFollower m_output;
  std::optional<JudgedWords> m_verdict;
  Where m_where;
  CallTrace m_trace;
  bool m_has_boot_code = false;
  ReadBack m_read_back;
  std::vector<ReadBack::Range> m_ranges;  // to be dumped
  Stage m_stage = Stage::kIdle;
  UnitState m_before = UnitState::kUntouched;
  StepEnd m_end;
  ResultEvent m_result;
  Journal::Ticket m_awaited = 0;  // the line that the next step waits for; 0 for none
  bool m_call_is_pending = false;
  std::size_t m_next_range = 0;
  std::uint64_t m_started_ms = 0;
  std::uint64_t m_kill_at_ms = 0;  // 0: the worker was not asked to end
  std::optional<Outcome> m_ended_by_us;
  std::optional<ProcessEnd> m_process_end;
  std::uint64_t m_messages = 0;
};

// True when the record programs boot code, whose own record goes to interface 0.
bool ProgramsBootCode(const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING& setting);

}  // namespace line

#endif  // ZVISP_LINE_SUPERVISE_STEP_RUN_H_
