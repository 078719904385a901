// SPDX-License-Identifier: MIT
//
// batch: a job at all its places at once.
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <utility>

#include "line/command/batch_units.h"
#include "line/command/commands.h"
#include "line/command/hello.h"
#include "line/command/judged_job.h"
#include "line/command/paths.h"
#include "line/command/units_status.h"
#include "line/job/job_file.h"
#include "line/job/judged_files.h"
#include "line/job/lock_down.h"
#include "line/job/serials.h"
#include "line/journal/journal.h"
#include "line/journal/record_reader.h"
#include "line/supervise/batch_run.h"
#include "line/supervise/private_copies.h"
#include "line/worker/library_file.h"

namespace line {

namespace {

class BatchCommand {
 public:
  BatchCommand(const Options& options, Session& session)
      : m_options(options),
        m_session(session),
        m_data(AbsolutePath(DataDirectory(options.data))),
        m_plugins(PluginDirectory(options.plugins)),
        m_judged(m_job, options.job, session) {}

  ExitStatus Run();

 private:
  using PathOf = std::function<std::string(const std::string&)>;

  ExitStatus ReadJob();
  ExitStatus ReadUnits();
  ExitStatus EnterDirectory();
  ExitStatus Judge();
  ExitStatus Check();
  ExitStatus CopyFiles();
  ExitStatus OpenRecord();
  ExitStatus Work();

  ExitStatus Refuse(const JobErrors& errors);
  ExitStatus NotAvailable(const char* id, const std::string& text);
  ExitStatus CheckFiles(const UsedFiles& used, const PathOf& path_of);
  ExitStatus CheckPlugin();
  HelloEvent Hello() const;
  std::vector<UnitRequest> Requests();

  const Options& m_options;
  Session& m_session;
  std::string m_data, m_plugins;
  Job m_job;
  Serials m_serials;
  JudgedJob m_judged;
  std::map<std::string, std::string> m_hashes;  // of what plug-ins read
  std::unique_ptr<PrivateCopies> m_copies;
  std::unique_ptr<Journal> m_journal;
  std::unique_ptr<JournalSink> m_record;
};

// kExitPassed when there is none.
ExitStatus BatchCommand::Refuse(const JobErrors& errors) {
  m_judged.Report(errors);
  return errors.empty() ? kExitPassed : kExitRefused;
}

ExitStatus BatchCommand::NotAvailable(const char* id, const std::string& text) {
  m_judged.Report({{id, text, {}}});
  return kExitUnavailable;
}

ExitStatus BatchCommand::ReadJob() {
  JobReading reading = ReadJobFile(m_options.job);
  m_job = std::move(reading.job);
  return Refuse(reading.errors);
}

ExitStatus BatchCommand::ReadUnits() {
  if (m_options.check && m_options.units.empty()) {
    m_serials = PlacesInsteadOfSerials(m_job, m_options.skip);
    return Refuse(m_serials.errors);
  }
  m_serials = ReadSerials(m_job, m_options.units, m_options.skip);
  // To ask the record writes its index, and a check touches nothing.
  if (!m_serials.errors.empty() || m_options.check) return Refuse(m_serials.errors);
  // What cannot be read may say that a display has passed.
  const std::string failure = m_job.once ? WhyRecordIsUnreadable(m_data) : "";
  if (!failure.empty()) return NotAvailable("record", failure);
  AskRecord(m_job, m_data, m_serials);
  return Refuse(m_serials.errors);
}

// Every relative path of a job is relative to it.
ExitStatus BatchCommand::EnterDirectory() {
  if (chdir(m_job.directory.c_str()) == 0) return kExitPassed;
  return Refuse({{"job-directory",
                  "Cannot enter " + m_job.directory + ": " + std::strerror(errno) +
                      "; make the job's directory accessible.",
                  {}}});
}

ExitStatus BatchCommand::Judge() {
  return m_judged.Judge(m_serials.units);
}

ExitStatus BatchCommand::CheckFiles(const UsedFiles& used, const PathOf& path_of) {
  LockDown found = CheckLockDown(m_job, used, path_of);
  for (const JobError& warning : found.warnings) {
    m_session.Emit({},
                   MessageEvent{Source::kTool, Level::kWarning,
                                m_options.job + ":" + std::to_string(warning.position.line) + ":" +
                                    std::to_string(warning.position.column) + ": " + warning.text,
                                false});
  }
  for (const JobErrors& more :
       {CheckPluginFile(m_job, IspPluginIn(m_plugins)), CheckHookPrograms(m_job)}) {
    found.errors.insert(found.errors.end(), more.begin(), more.end());
  }
  SortByPosition(found.errors);
  for (const auto& [name, hash] : found.hashes) {
    m_hashes[OneNameOf(path_of(name))] = hash;
  }
  const ExitStatus status = Refuse(found.errors);
  return status == kExitPassed ? CheckPlugin() : status;
}

// One that cannot be loaded would fail at every place. Nothing of it runs here.
ExitStatus BatchCommand::CheckPlugin() {
  const std::string path = IspPluginIn(m_plugins);
  const std::optional<LoadProblem> problem = LookAtLibraryFile(path);
  if (!problem) return kExitPassed;
  return NotAvailable(
      "plugin", "The ISP plug-in " + path + " " + problem->what + "; " + problem->advice + ".");
}

HelloEvent BatchCommand::Hello() const {
  HelloEvent hello = MakeHello(m_plugins);
  hello.job = HelloEvent::Job{m_job.name, m_job.path, m_job.sha256, {}};
  return hello;
}

ExitStatus BatchCommand::Check() {
  const ExitStatus checked =
      CheckFiles(m_judged.Files(), [](const std::string& name) { return name; });
  if (checked != kExitPassed) return checked;
  m_session.Emit({}, Hello());
  const ExitStatus planned = m_judged.EmitPlans();
  if (planned != kExitPassed) return planned;
  const auto counted = [](std::size_t count, const char* what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
  };
  m_session.Emit({}, MessageEvent{Source::kTool, Level::kInfo,
                                  "The job can run: " + counted(m_job.steps.size(), "step") +
                                      " at " + counted(m_serials.units.size(), "place") + ".",
                                  false});
  return kExitPassed;
}

// What is hashed is what the plug-ins read. So the copies are made first.
ExitStatus BatchCommand::CopyFiles() {
  const UsedFiles used = m_judged.Files();
  std::string error;
  m_copies = PrivateCopies::Make(error);
  if (m_copies == nullptr) return NotAvailable("private-copies", error);
  if (!m_job.line.copy) return CheckFiles(used, [](const std::string& name) { return name; });
  for (JudgedUnit& unit : m_judged.Units()) {
    for (JudgedStep& step : unit.steps) {
      if (!UseCopies(*m_copies, step.words, error)) return Refuse({{"private-copies", error, {}}});
    }
  }
  return CheckFiles(used, [this](const std::string& name) {
    std::string ignored;
    return m_copies->CopyOf(name, ignored);
  });
}

ExitStatus BatchCommand::OpenRecord() {
  std::string error;
  m_journal = Journal::Open(m_data, error);
  if (m_journal == nullptr) return NotAvailable("record", error);
  m_record = std::make_unique<JournalSink>(*m_journal);
  return kExitPassed;
}

std::vector<UnitRequest> BatchCommand::Requests() {
  const BatchUnits units = {m_job,
                            *m_copies,
                            m_judged.Ignored(),
                            m_hashes,
                            m_plugins,
                            m_data,
                            static_cast<std::uint64_t>(m_options.wait_s * 1000)};
  std::vector<UnitRequest> requests;
  for (JudgedUnit& unit : m_judged.Units()) {
    requests.push_back(units.RequestFor(unit));
  }
  return requests;
}

// Everything that is reported from here on is recorded.
ExitStatus BatchCommand::Work() {
  m_session.Add(*m_record);
  HelloEvent hello = Hello();
  for (const UnitAtPlace& unit : m_serials.units) {
    const JobPlace& place = m_job.places[unit.place];
    hello.job->units.push_back({place.name, unit.unit, place.comm});
  }
  m_session.Emit({}, hello);
  ExitStatus status = m_judged.EmitPlans();
  if (status == kExitPassed) {
    const BatchRules rules = {m_job.line.jobs_at_once, m_job.line.stagger_ms,
                              m_job.line.first_article, m_job.line.stop_after};
    BatchRun batch(Requests(), rules, {m_session, *m_journal, *m_record});
    batch.Run();
    const std::vector<UnitEnd> ends = batch.Ends();
    m_session.Emit({}, SummaryOf(ends));
    status = StatusOfUnits(ends, batch.StopSignal(), m_job.hook.required);
  }
  m_session.Remove(*m_record);
  return status;
}

ExitStatus BatchCommand::Run() {
  using Part = ExitStatus (BatchCommand::*)();
  const std::vector<Part> judgement = {&BatchCommand::ReadJob, &BatchCommand::ReadUnits,
                                       &BatchCommand::EnterDirectory, &BatchCommand::Judge};
  const std::vector<Part> work = {&BatchCommand::CopyFiles, &BatchCommand::OpenRecord,
                                  &BatchCommand::Work};
  std::vector<Part> parts = judgement;
  if (m_options.check) {
    parts.push_back(&BatchCommand::Check);
  } else {
    parts.insert(parts.end(), work.begin(), work.end());
  }
  for (const Part part : parts) {
    const ExitStatus status = (this->*part)();
    if (status != kExitPassed) return status;
  }
  return kExitPassed;
}

}  // namespace

ExitStatus RunBatch(const Options& options, Session& session) {
  return BatchCommand(options, session).Run();
}

}  // namespace line
