// SPDX-License-Identifier: MIT
//
// journal show, doctor and resolve.
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>

#include "line/command/commands.h"
#include "line/event/event_json.h"
#include "line/event/screen_text.h"
#include "line/journal/doctor.h"
#include "line/journal/interface_lock.h"
#include "line/journal/journal.h"

namespace line {

namespace {

ExitStatus Fail(Session& session, ExitStatus status, const char* id, std::string text) {
  session.Emit({}, ErrorEvent{id, std::move(text), "", {}, {}});
  return status;
}

void ReportSkipped(Session& session, const SkippedLine& line) {
  session.Emit({}, MessageEvent{Source::kTool, Level::kWarning,
                                "The record has a line that is not an event and was skipped: " +
                                    line.file + ", line " + std::to_string(line.number) + ".",
                                false});
}

// One recorded line for people: time, place, unit, type, and what it says.
std::string InWords(const RecordedEvent& event) {
  std::string text = event.time;
  const auto add = [&text](const std::string& word) {
    if (!word.empty()) text += "  " + CleanText(word);
  };
  add(event.where.place);
  add(event.where.unit);
  add(event.type);
  add(event.where.step);
  if (event.outcome) add(std::string(NameOf(*event.outcome)));
  if (event.state) add(std::string(NameOf(*event.state)));
  if (event.percent) add(std::to_string(*event.percent) + " %");
  add(event.note);
  add(event.text);
  add(event.reason);
  add(event.where.run);
  return text;
}

// A mistyped --data must not look like a record in which every display is well.
bool IsMissing(const Options& options, Session& session) {
  std::error_code ignored;
  if (options.data.empty() || std::filesystem::exists(options.data + "/journal", ignored)) {
    return false;
  }
  Fail(session, kExitUnavailable, "record",
       "There is no record in " + CleanText(options.data) + "; check --data.");
  return true;
}

// A mistyped serial must not look like a display to which nothing happened.
void ReportNothingFound(const Options& options, const std::string& data, Session& session) {
  std::string what;
  if (!options.unit.empty()) what += " of display " + CleanText(options.unit);
  if (!options.run.empty()) what += " of run " + CleanText(options.run);
  session.Emit(
      {}, MessageEvent{Source::kTool, Level::kWarning,
                       "The record in " + CleanText(data) + " has no event" + what + ".", false});
}

bool IsWanted(const Options& options, const RecordedEvent& event) {
  return (options.unit.empty() || event.where.unit == options.unit) &&
         (options.run.empty() || event.where.run == options.run);
}

}  // namespace

ExitStatus RunJournalShow(const Options& options, Session& session) {
  if (IsMissing(options, session)) return kExitUnavailable;
  const std::string data = DataDirectory(options.data);
  bool is_found = false;
  const std::string failure = ForEachRecordLine(data, [&](const RecordLine& line) {
    const std::optional<RecordedEvent> event = FromJsonLine(line.text);
    if (!event.has_value()) {
      if (line.is_ended) ReportSkipped(session, {std::string(line.file), line.number});
      return;
    }
    if (!IsWanted(options, *event)) return;
    is_found = true;
    if (options.quiet) return;
    const std::string text = options.json ? std::string(line.text) : InWords(*event);
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fputc('\n', stdout);
  });
  std::fflush(stdout);
  if (!failure.empty()) return Fail(session, kExitUnavailable, "record", failure);
  if (!is_found) ReportNothingFound(options, data, session);
  return kExitPassed;
}

ExitStatus RunJournalDoctor(const Options& options, Session& session) {
  if (IsMissing(options, session)) return kExitUnavailable;
  const DoctorReport report = Examine(DataDirectory(options.data), IsInterfaceFree);
  for (const SkippedLine& line : report.skipped) {
    ReportSkipped(session, line);
  }
  for (const Doubt& doubt : report.doubts) {
    session.Emit(doubt.where, doubt.finding);
  }
  // What cannot be read may name more displays than these.
  if (!report.failure.empty()) Fail(session, kExitUnavailable, "record", report.failure);
  if (!report.doubts.empty()) return kExitUncertain;
  return report.failure.empty() ? kExitPassed : kExitUnavailable;
}

ExitStatus RunJournalResolve(const Options& options, Session& session) {
  const std::string data = DataDirectory(options.data);
  if (CleanText(options.note).find_first_not_of(' ') == std::string::npos) {
    return Fail(session, kExitRefused, "note",
                "The note of --note is blank; say why the display is clear.");
  }
  const DoctorReport report = Examine(data, IsInterfaceFree);
  for (const Doubt& doubt : report.doubts) {
    if (doubt.where.run != options.run) continue;
    std::string error;
    const std::unique_ptr<Journal> journal = Journal::Open(data, error);
    if (journal == nullptr) return Fail(session, kExitUnavailable, "record", error);
    JournalSink sink(*journal);
    session.Add(sink);
    session.Emit(doubt.where, ResolvedEvent{options.note});
    const bool is_recorded = journal->WaitFor(sink.Last());
    session.Remove(sink);
    if (is_recorded) return kExitPassed;
    return Fail(session, kExitNotRecorded, "record", journal->Failure());
  }
  if (!report.failure.empty()) return Fail(session, kExitUnavailable, "record", report.failure);
  return Fail(session, kExitRefused, "run",
              "No display is in doubt because of run " + CleanText(options.run) +
                  "; zvisp-line journal doctor names the runs.");
}

}  // namespace line
