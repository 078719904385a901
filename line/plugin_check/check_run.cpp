// SPDX-License-Identifier: MIT
#include "line/plugin_check/check_run.h"

#include <poll.h>
#include <signal.h>

#include <cstring>

#include "line/event/event.h"
#include "line/event/session.h"

namespace line {

namespace {

constexpr int kPollMs = 50;
// A plug-in may need its time to leave the display in order.
constexpr std::uint64_t kGraceMs = 2000;

std::string SecondsOf(std::uint64_t milliseconds) {
  const std::string tenths = std::to_string(milliseconds / 100 % 10);
  return std::to_string(milliseconds / 1000) + (tenths == "0" ? "" : "." + tenths) + " seconds";
}

}  // namespace

std::optional<CheckAnswer> CheckRun::Run(const CheckRequest& request, const std::vector<int>& lock,
                                         int directory_lock, std::string& error) {
  if (!m_output.Open(error) ||
      !m_process.Start(m_output.Descriptor(), directory_lock, error, kCheckCommand)) {
    return std::nullopt;
  }
  m_started_ms = MonotonicMs();
  m_process.SendWith(lock, Encode(request));
  if (!WaitForEnd()) return std::nullopt;
  return m_answer ? *m_answer : WithoutAnswer();
}

// False when a signal has come. The destructor of the process ends it then.
bool CheckRun::WaitForEnd() {
  while (!m_end) {
    pollfd entries[] = {{m_process.Socket(), POLLIN, 0}, {m_signals.Descriptor(), POLLIN, 0}};
    poll(entries, 2, kPollMs);
    if (const std::vector<int> signals = m_signals.Take(); !signals.empty()) {
      m_stop_signal = signals.front();
      return false;
    }
    for (const Frame& frame : m_process.Receive()) {
      Take(frame);
    }
    m_end = m_process.TakeEnd();
    EndLateProcess(MonotonicMs());
  }
  for (const Frame& frame : m_process.ReceiveRest()) {
    Take(frame);
  }
  return true;
}

// The first answer counts: what a plug-in's second process sends comes later.
void CheckRun::Take(const Frame& frame) {
  if (m_answer) return;
  if (const auto call = Decode<CallMessage>(frame)) m_call = call->name;
  m_answer = Decode<CheckAnswer>(frame);
}

void CheckRun::EndLateProcess(std::uint64_t now_ms) {
  if (m_timeout_ms == 0 || now_ms < m_started_ms + m_timeout_ms) return;
  if (!m_is_late) m_process.Signal(SIGTERM);
  m_is_late = true;
  if (now_ms >= m_started_ms + m_timeout_ms + kGraceMs) m_process.Signal(SIGKILL);
}

CheckAnswer CheckRun::WithoutAnswer() const {
  CheckAnswer answer;
  answer.outcome = static_cast<std::uint32_t>(CheckOutcome::kFailed);
  answer.has_returned = false;
  if (m_is_late) {
    answer.text = "It did not return within " + SecondsOf(m_timeout_ms) + " from " + m_call +
                  ": end every wait by a time limit.";
  } else if (m_end->signal) {
    answer.text =
        "It ended its process by signal " + std::to_string(*m_end->signal) + " (" +
        strsignal(*m_end->signal) + ") in " + m_call + ": " +
        (*m_end->signal == SIGABRT ? "let no exception leave a call, call no abort, and " : "") +
        "run this check under a debugger or a sanitizer.";
  } else {
    answer.text = "It ended its process with exit status " +
                  std::to_string(m_end->exit_status.value_or(0)) + " in " + m_call +
                  ": return a code instead, and close no descriptor of the host.";
  }
  return answer;
}

}  // namespace line
