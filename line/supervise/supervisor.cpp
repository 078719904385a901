// SPDX-License-Identifier: MIT
#include "line/supervise/supervisor.h"

#include <poll.h>
#include <signal.h>

#include <algorithm>
#include <string>
#include <utility>

namespace line {

namespace {

// Clocks, time-outs and what plug-ins print are served ten times a second.
constexpr int kTickMs = 100;
// A terminal that is closed sends SIGHUP twice, once itself and once by its shell; nobody asked a
// second time for that.
constexpr std::uint64_t kSameHangUpMs = 2000;

bool AllAreDone(const std::vector<StepRun*>& steps) {
  return std::all_of(steps.begin(), steps.end(),
                     [](const StepRun* step) { return step->IsDone(); });
}

std::uint64_t NextWake(const std::vector<StepRun*>& steps, std::uint64_t next_tick) {
  std::uint64_t wake = next_tick;
  for (const StepRun* const step : steps) {
    wake = std::min(wake, step->WakesAtMs().value_or(wake));
  }
  return wake;
}

// Milliseconds for poll.
int WaitUntil(std::uint64_t ms) {
  const std::uint64_t now = MonotonicMs();
  return now >= ms ? 0 : static_cast<int>(ms - now);
}

}  // namespace

void Supervisor::Run(const std::vector<StepRun*>& steps) {
  for (StepRun* const step : steps) {
    step->Start();
  }
  std::uint64_t next_tick = MonotonicMs() + kTickMs;
  while (!AllAreDone(steps)) {
    const std::uint64_t wake = NextWake(steps, next_tick);
    WaitForSomething(steps, wake);
    const std::uint64_t now = MonotonicMs();
    if (now < wake) continue;
    if (now >= next_tick) {
      next_tick = now + kTickMs;
      m_reporting.session.Tick(now);
    }
    for (StepRun* const step : steps) {
      step->OnTick(now);
    }
  }
}

void Supervisor::WaitForSomething(const std::vector<StepRun*>& steps, std::uint64_t wake_ms) {
  std::vector<pollfd> entries = {{m_signals.Descriptor(), POLLIN, 0},
                                 {m_reporting.journal.WakeUpDescriptor(), POLLIN, 0}};
  for (const StepRun* const step : steps) {
    const short wanted = step->WantsToSend() ? POLLIN | POLLOUT : POLLIN;
    // poll passes over a negative descriptor, so entry i + 2 always belongs to step i.
    entries.push_back({step->IsDone() ? -1 : step->Socket(), wanted, 0});
  }
  if (poll(entries.data(), static_cast<nfds_t>(entries.size()), WaitUntil(wake_ms)) <= 0) return;
  if (entries[1].revents != 0) {
    m_reporting.journal.ClearWakeUp();
    for (StepRun* const step : steps) {
      step->OnRecorded();
    }
  }
  for (std::size_t i = 0; i < steps.size(); ++i) {
    const short events = entries[i + 2].revents;
    if ((events & POLLOUT) != 0) steps[i]->OnWritable();
    if ((events & ~POLLOUT) != 0) steps[i]->OnReadable();
  }
  // Last, so that what a worker said before its end has been heard.
  if (entries[0].revents != 0) TakeSignals(steps);
}

void Supervisor::TakeSignals(const std::vector<StepRun*>& steps) {
  const std::vector<int> signals = m_signals.Take();
  for (StepRun* const step : steps) {
    step->OnProcessEnded();
  }
  for (const int signal : signals) {
    Stop(steps, signal);
  }
}

void Supervisor::Stop(const std::vector<StepRun*>& steps, int signal) {
  const bool first = m_stop_signal == 0;
  const std::uint64_t now = MonotonicMs();
  if (first) {
    m_stop_signal = signal;
    m_stopped_ms = now;
  } else if (signal == SIGHUP && now - m_stopped_ms < kSameHangUpMs) {
    return;
  }
  for (StepRun* const step : steps) {
    if (first) {
      step->StartNothingNew();
    } else {
      step->Interrupt(now);
    }
  }
  if (AllAreDone(steps)) return;
  Say(first ? "Nothing new is started, and what runs is finished; once more ends it now."
            : "What runs is ended; its displays may be half-written.");
}

void Supervisor::Say(std::string text) {
  MessageEvent event;
  event.level = Level::kWarning;
  event.text = std::move(text);
  m_reporting.session.Emit({}, std::move(event));
}

}  // namespace line
