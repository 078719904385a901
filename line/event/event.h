// SPDX-License-Identifier: MIT
//
// What zvisp-line reports: one struct for each type of event, and the envelope around it. The same
// events feed the printers and the record. Field names are those of the JSON (event_json.h); a
// field that does not apply is an empty optional or an empty text, and is left out there.
#ifndef ZVISP_LINE_EVENT_EVENT_H_
#define ZVISP_LINE_EVENT_EVENT_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace line {

// What is known of a display.
enum class UnitState {
  kUntouched,
  kProgramming,  // a writing call is under way, or its end was never seen
  kProgrammed,   // the call returned 0
  kIdentical,    // read back, equal in all compared bytes
  kDifferent,    // read back, a byte differs
  kUncertain,    // a writing call was begun, and failed, was ended, or crashed
};

// How a step, and a unit, ended.
enum class Outcome {
  kPassed,
  kFailed,
  kDifferent,
  kRefused,
  kUnavailable,
  kTimedOut,
  kCrashed,
  kInterrupted,
};

enum class Phase { kPrepare, kSignature, kBoot, kProgram, kReadBack };

// What a unit waits for before it starts.
enum class WaitReason {
  kInterface,  // someone else uses it
  kHook,       // a program that the job names is asked
};

// What a check of a plug-in found. A warning is not a failure.
enum class CheckOutcome { kPassed, kWarning, kFailed, kNotRun };

enum class Level { kInfo, kWarning, kError };
enum class Source { kTool, kPlugin, kOutput };  // kOutput: what a plug-in printed

// The names that the events carry: "programming", "timed_out", "read-back", "hook", "plug-in".
std::string_view NameOf(UnitState state);
std::string_view NameOf(Outcome outcome);
std::string_view NameOf(CheckOutcome outcome);
std::string_view NameOf(Phase phase);
std::string_view NameOf(WaitReason reason);
std::string_view NameOf(Level level);
std::string_view NameOf(Source source);
// The way back; nothing for a name that is none.
std::optional<UnitState> StateNamed(std::string_view name);
std::optional<Outcome> OutcomeNamed(std::string_view name);

// What an event is about.
struct Where {
  std::string run;    // UUIDv7: one attempt of one unit at one place, all steps
  std::string unit;   // its serial
  std::string place;  // "comm-N" without a job
  std::optional<std::uint32_t> comm;
  std::string step;
  std::optional<std::uint32_t> step_index;
  std::optional<Phase> phase;
  std::string job_name;
};

struct FileFacts {
  std::string path, sha256;
};

// A unit of a batch.
struct BatchUnit {
  std::string place, unit;
  std::optional<std::uint32_t> comm;
};

struct HelloEvent {
  struct Job {
    std::string name, path, sha256;
    std::vector<BatchUnit> units;  // in the order of the job; empty when nothing will be started
  };
  std::string tool_version, host, operator_name;
  std::int64_t pid = 0;
  std::optional<FileFacts> plugin;
  std::optional<Job> job;
};

struct PlannedFile {
  std::uint32_t slot = 0;
  std::string path;
  std::uint64_t bytes = 0;
  std::string sha256;
  std::uint32_t start_bank = 0;
};

struct PlannedBank {
  std::uint32_t target = 0, slot = 0, file_bank = 0;
  std::uint32_t bytes = 0;  // that the file has for it; 65536 but for a short last one
  std::string sha256;       // of those bytes
};

struct Warning {
  std::string id, text;
};

struct PlanEvent {
  std::string action;
  std::vector<PlannedFile> files;
  std::vector<PlannedBank> banks;
  std::vector<Warning> warnings;
};

// Before a unit's start, each time when what it waits for changes.
struct WaitEvent {
  WaitReason reason = WaitReason::kInterface;
  std::string text;  // who uses the interface; a sentence without its full stop; empty for a hook
};

struct UnitStartEvent {
  std::uint64_t attempt = 1;  // counts by serial, and by job name within a job
  bool is_unsigned = false;   // --allow-unsigned let banks through that no signature covers
};

struct StartEvent {
  std::optional<double> timeout_s;
};

struct StateEvent {
  UnitState state = UnitState::kUntouched, previous = UnitState::kUntouched;
  std::string call;  // the export that is about to be called, or has returned
};

struct ProgressEvent {
  int percent = 0;
  std::uint64_t elapsed_ms = 0;  // since the step's start
};

struct MessageEvent {
  Source source = Source::kTool;
  Level level = Level::kInfo;
  std::string text;
  bool truncated = false;
};

struct Difference {
  std::uint32_t bank = 0;
  std::uint64_t address = 0;  // in flash, bytes
  std::uint8_t expected = 0, actual = 0;
};

// A step that started has exactly one.
struct ResultEvent {
  Outcome outcome = Outcome::kFailed;
  UnitState state = UnitState::kUntouched;
  std::optional<std::uint32_t> code;  // null in the JSON when no result arrived
  std::string code_source;            // "tool" or "plug-in"
  std::string meaning;
  std::optional<std::string> value, expected;
  std::optional<int> signal;
  std::optional<int> last_percent;
  std::optional<std::uint64_t> compared_bytes;
  std::optional<Difference> difference;
  std::uint64_t duration_ms = 0;
};

// A unit has exactly one.
struct UnitResultEvent {
  Outcome outcome = Outcome::kFailed;
  UnitState state = UnitState::kUntouched;
  std::uint64_t attempt = 1;
  std::string failed_step;
  bool recorded = true;
  std::uint64_t duration_ms = 0;
  std::string reason;  // why it was not started, or what a hook said
};

struct ErrorEvent {
  std::string id, text, file;
  std::optional<std::uint32_t> line, column;
};

// An uncertain unit was cleared by hand; `where` names its run and the unit.
struct ResolvedEvent {
  std::string note;
};

// A unit that may be half-written; `where` names its run, place and step.
struct FindingEvent {
  UnitState state = UnitState::kUncertain;
  std::optional<int> last_percent;
  std::string since;  // time of the event that left it so
};

// A rule of the plug-in header, held against a plug-in.
struct CheckEvent {
  std::string id, title;
  CheckOutcome outcome = CheckOutcome::kNotRun;
  std::string text;  // what was seen, and what to do; often empty when it passed
};

struct SummaryEvent {
  std::vector<std::pair<Outcome, std::uint64_t>> outcomes;
  std::vector<std::pair<UnitState, std::uint64_t>> states;
  std::vector<std::pair<CheckOutcome, std::uint64_t>> checks = {};  // of check-plugin only
};

struct EndEvent {
  int exit_status = 0;
  bool interrupted = false;
};

using EventBody =
    std::variant<HelloEvent, PlanEvent, WaitEvent, UnitStartEvent, StartEvent, StateEvent,
                 ProgressEvent, MessageEvent, ResultEvent, UnitResultEvent, ErrorEvent,
                 ResolvedEvent, FindingEvent, CheckEvent, SummaryEvent, EndEvent>;

struct Event {
  std::int64_t time_ms = 0;   // since 1970, UTC
  std::uint64_t mono_ms = 0;  // a clock that is never set
  std::string session;        // UUIDv7: one process
  std::uint64_t seq = 0;      // from 0, no gaps within a session
  Where where;
  EventBody body;
};

// Whoever wants events: a printer, the record.
class EventSink {
 public:
  virtual ~EventSink() = default;
  virtual void Take(const Event& event) = 0;
  // Called about ten times a second while something runs, for clocks that are shown.
  virtual void Tick(std::uint64_t /*mono_ms*/) {}
};

}  // namespace line

#endif  // ZVISP_LINE_EVENT_EVENT_H_
