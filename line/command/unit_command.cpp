// SPDX-License-Identifier: MIT
//
// The commands for one display: run and readback.
#include <memory>
#include <optional>
#include <utility>

#include "line/command/approval.h"
#include "line/command/commands.h"
#include "line/command/hello.h"
#include "line/command/paths.h"
#include "line/command/units_status.h"
#include "line/job/plan.h"
#include "line/job/step_name.h"
#include "line/job/strictness.h"
#include "line/journal/history.h"
#include "line/journal/journal.h"
#include "line/supervise/batch_run.h"
#include "line/supervise/private_copies.h"

using namespace zvisp;

namespace line {

namespace {

ExitStatus Report(Session& session, ExitStatus status, std::string id, std::string text) {
  session.Emit({}, ErrorEvent{std::move(id), std::move(text), "", {}, {}});
  return status;
}

// One display: everything between the options and the exit status.
class UnitCommand {
 public:
  UnitCommand(const Options& options, Session& session)
      : m_options(options), m_session(session), m_scan(ScanOptions(options.words)) {}

  ExitStatus Run();

 private:
  ExitStatus Prepare();
  UnitRequest Request();
  StepRequest Step() const;
  ExitStatus Approve(JudgedWords& words, UnitRequest& request);
  void FillIn(const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING& setting, UnitRequest& request) const;
  void OnStart();
  ExitStatus Finish(const UnitEnd& end, int stop_signal) const;
  bool ReadsBack() const { return m_options.readback || ReadsOnly(); }
  bool ReadsOnly() const { return m_options.command == Command::kReadback; }

  const Options& m_options;
  Session& m_session;
  std::string m_data;
  std::vector<AddressRange> m_ignored;
  std::unique_ptr<Journal> m_journal;
  std::unique_ptr<JournalSink> m_record;
  std::unique_ptr<PrivateCopies> m_copies;
  OptionScan m_scan;
  std::optional<PlanEvent> m_plan;
  Where m_where;  // of the unit
};

ExitStatus UnitCommand::Prepare() {
  for (const std::string& text : m_options.ignore) {
    const std::optional<AddressRange> range = ParseAddressRange(text);
    if (!range) {
      return Report(m_session, kExitRefused, "ignore",
                    "--ignore " + text + " is not a range; give FIRST-LAST, as 0x1F0000-0x1FFFFF.");
    }
    m_ignored.push_back(*range);
  }
  std::string error = m_options.unit.empty() ? "" : WhyNoSerial(m_options.unit);
  if (!error.empty()) return Report(m_session, kExitRefused, "serial", error);
  // Whatever can fail without the display is tried first: record, disk, directory for the copies.
  m_data = AbsolutePath(DataDirectory(m_options.data));
  m_journal = Journal::Open(m_data, error);
  if (m_journal == nullptr) return Report(m_session, kExitUnavailable, "record", error);
  m_record = std::make_unique<JournalSink>(*m_journal);
  m_copies = PrivateCopies::Make(error);
  if (m_copies == nullptr) return Report(m_session, kExitUnavailable, "private-copies", error);
  return kExitPassed;
}

ExitStatus UnitCommand::Approve(JudgedWords& words, UnitRequest& request) {
  const ExitStatus approval = ApproveWords(m_options, m_scan, words, m_session);
  if (approval != kExitPassed) return approval;
  request.is_unsigned = ProgramsUnsignedFiles(m_scan, words);
  std::string error = ReadsBack() ? WhyNoReadBack(*words.setting) : "";
  if (!error.empty()) return Report(m_session, kExitRefused, "read-back", error);
  if (!UseCopies(*m_copies, words, error)) {
    return Report(m_session, kExitRefused, "private-copies", error);
  }
  // After the copies: what is hashed is what the plug-in reads.
  m_plan = MakePlan(m_scan, words, error);
  if (!m_plan) return Report(m_session, kExitRefused, "file", error);
  FillIn(*words.setting, request);
  return kExitPassed;
}

void UnitCommand::FillIn(const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING& setting,
                         UnitRequest& request) const {
  Where& where = request.where;
  where.comm = setting.enumCommID;
  where.place = "comm-" + std::to_string(setting.enumCommID);
  // A display without a serial is known by its place.
  if (where.unit.empty()) where.unit = where.place;
  request.steps.front().name = ReadsOnly() ? "readback" : StepNameOf(setting.enumActionType);
  request.attempt = HistoryOf(m_data, where.unit, "").attempts + 1;
}

void UnitCommand::OnStart() {
  m_session.Emit({}, MakeHello(PluginDirectory(m_options.plugins)));
  m_session.Emit(m_where, *m_plan);
}

StepRequest UnitCommand::Step() const {
  StepRequest step;
  step.words = m_options.words;
  step.plugin_directory = PluginDirectory(m_options.plugins);
  step.data_directory = m_data;
  step.timeout_s = m_options.timeout_s;
  step.wanted = {m_options.nothing_written, m_options.expect};
  step.reads_back = ReadsBack();
  step.reads_only = ReadsOnly();
  step.ignored = m_ignored;
  step.copies_lock = m_copies->LockDescriptor();
  step.dump_prefix = m_copies->PathFor("dump-");
  return step;
}

UnitRequest UnitCommand::Request() {
  UnitRequest request;
  request.where.run = NewUuid();
  request.where.unit = m_options.unit;
  request.wait_ms = static_cast<std::uint64_t>(m_options.wait_s * 1000);
  request.steps.push_back(Step());
  request.always_has_result = false;
  request.approve = [this](JudgedWords& words, UnitRequest& completed) {
    const ExitStatus status = Approve(words, completed);
    m_where = completed.where;
    return status;
  };
  request.on_start = [this] { OnStart(); };
  return request;
}

ExitStatus UnitCommand::Finish(const UnitEnd& end, int stop_signal) const {
  if (!end.started && !end.interrupted) return end.status;
  return StatusOfUnits({end}, stop_signal, false);
}

ExitStatus UnitCommand::Run() {
  const ExitStatus prepared = Prepare();
  if (prepared != kExitPassed) return prepared;
  // From here on every event is recorded. What was refused before is only printed.
  m_session.Add(*m_record);
  const Reporting reporting = {m_session, *m_journal, *m_record};
  std::vector<UnitRequest> units;
  units.push_back(Request());
  BatchRun batch(std::move(units), {}, reporting);
  batch.Run();
  const ExitStatus status = Finish(batch.Ends().front(), batch.StopSignal());
  m_session.Remove(*m_record);
  return status;
}

}  // namespace

ExitStatus RunUnit(const Options& options, Session& session) {
  return UnitCommand(options, session).Run();
}

}  // namespace line
