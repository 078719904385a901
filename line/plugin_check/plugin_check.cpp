// SPDX-License-Identifier: MIT
#include "line/plugin_check/plugin_check.h"

#include <unistd.h>

#include <memory>
#include <optional>

#include "line/event/session.h"
#include "line/plugin_check/check.h"
#include "line/plugin_check/check_run.h"
#include "line/supervise/interface_wait.h"
#include "line/supervise/private_copies.h"

namespace line {

namespace {

class Checks {
 public:
  Checks(const PluginCheckOptions& options,
         const std::function<void(const CheckEvent& row)>& report)
      : m_options(options), m_report(report) {}

  PluginCheckEnd Run() {
    m_end.is_complete = Prepare();
    for (const CheckRow& row : AllChecks()) {
      if (!m_end.is_complete) break;
      if (IsOfThisKind(row)) m_end.is_complete = RunRow(row);
    }
    return m_end;
  }

 private:
  bool Fail(const char* id, std::string error) {
    m_end.error_id = id;
    m_end.error = std::move(error);
    return false;
  }

  bool Prepare() {
    std::string error;
    m_directory = PrivateCopies::Make(error);
    if (m_directory == nullptr) return Fail("private-copies", error);
    return TakeLock();
  }

  // The calls name no interface, so nobody can say which display a plug-in reaches.
  bool TakeLock() {
    m_lock.Begin({0, true}, "process " + std::to_string(getpid()) + " (check-plugin)", 0,
                 MonotonicMs());
    while (m_lock.Now() == InterfaceWait::State::kWaiting) {
      usleep(1000);
      m_lock.OnTick(MonotonicMs());
    }
    if (m_lock.Now() == InterfaceWait::State::kTaken) return true;
    const bool in_use = m_lock.Now() == InterfaceWait::State::kInUse;
    return Fail(in_use ? "interface-in-use" : "lock-not-available",
                m_lock.Reason() + (in_use ? "; check the plug-in when it has ended." : ""));
  }

  bool IsOfThisKind(const CheckRow& row) const {
    // What does not load shows no exports, and no other row says more than that.
    if (row.kind == PluginKind::kAny) return true;
    if (row.kind == PluginKind::kSign) return m_is_sign;
    return m_is_isp || !m_is_sign;
  }

  // Why the row makes no sense; empty when it does.
  std::string WhyNot(const CheckRow& row) const {
    const bool exports_missing =
        row.kind == PluginKind::kSign ? m_lacks_sign_export : m_lacks_isp_export;
    if (row.needs != Needs::kNothing && !m_loads) return "It does not load.";
    if (row.needs >= Needs::kExports && exports_missing) {
      return "A required call is missing.";
    }
    if (row.needs == Needs::kDevice && !m_options.with_device) {
      return "Needs --with-device.";
    }
    if (row.needs == Needs::kReturns && !m_calls_return) return "Its calls do not return.";
    return "";
  }

  bool RunRow(const CheckRow& row) {
    CheckEvent event = {row.id, row.title, CheckOutcome::kNotRun, WhyNot(row)};
    if (event.text.empty() && !RunInProcess(row, event)) return false;
    Count(event.outcome);
    m_report(event);
    return true;
  }

  bool RunInProcess(const CheckRow& row, CheckEvent& event) {
    CheckRun run(m_signals, m_options.timeout_ms);
    std::string error;
    // No path in a record may be cut: the directory's is short, and the plug-in's is in none.
    const std::optional<CheckAnswer> answer =
        run.Run({row.id, m_options.file, m_directory->PathFor(""), m_options.with_device},
                m_lock.Files(), m_directory->LockDescriptor(), error);
    m_end.stop_signal = run.StopSignal();
    if (!answer) return Fail("check-not-started", error);
    event.outcome = static_cast<CheckOutcome>(answer->outcome);
    event.text = answer->text;
    Learn(row, *answer, event.outcome != CheckOutcome::kFailed);
    return true;
  }

  // What later rows depend on.
  void Learn(const CheckRow& row, const CheckAnswer& answer, bool is_good) {
    if (row.needs == Needs::kNothing) {
      m_loads = is_good;
      m_is_isp = answer.has_isp_export;
      m_is_sign = answer.has_sign_export;
    }
    // Checks of all calls make these again, and would only fail in the same way.
    const bool is_refusal = row.needs == Needs::kExports || row.needs == Needs::kDevice;
    if (is_refusal && !answer.has_returned) m_calls_return = false;
    if (std::string(row.id) == "isp-exports") m_lacks_isp_export = !is_good;
    if (std::string(row.id) == "sign-exports") m_lacks_sign_export = !is_good;
  }

  void Count(CheckOutcome outcome) {
    for (auto& [counted, count] : m_end.summary.checks) {
      if (counted != outcome) continue;
      ++count;
      return;
    }
    m_end.summary.checks.emplace_back(outcome, 1);
  }

  const PluginCheckOptions& m_options;
  const std::function<void(const CheckEvent& row)>& m_report;
  StopSignals m_signals;
  InterfaceWait m_lock;
  std::unique_ptr<PrivateCopies> m_directory;
  bool m_loads = false, m_is_isp = false, m_is_sign = false;
  bool m_lacks_isp_export = false, m_lacks_sign_export = false;
  bool m_calls_return = true;
  PluginCheckEnd m_end;
};

}  // namespace

PluginCheckEnd CheckPlugin(const PluginCheckOptions& options,
                           const std::function<void(const CheckEvent& row)>& report) {
  return Checks(options, report).Run();
}

}  // namespace line
