// SPDX-License-Identifier: MIT
#include "line/supervise/supervisor.h"

#include <signal.h>

#include <algorithm>
#include <string>
#include <utility>

namespace line {

namespace {

// Clocks, time-outs and what plug-ins print are served ten times a second.
constexpr std::uint64_t kTickMs = 100;
// A terminal that is closed sends SIGHUP twice, once itself and once by its shell; nobody asked a
// second time for that.
constexpr std::uint64_t kSameHangUpMs = 2000;

// Milliseconds for poll.
int UntilMs(std::uint64_t ms) {
  const std::uint64_t now = MonotonicMs();
  return now >= ms ? 0 : static_cast<int>(ms - now);
}

BatchSchedule::UnitVerdict VerdictOf(const UnitEnd& end) {
  if (!end.started || end.outcome == Outcome::kInterrupted) {
    return BatchSchedule::UnitVerdict::kUncounted;
  }
  return end.outcome == Outcome::kPassed ? BatchSchedule::UnitVerdict::kPassed
                                         : BatchSchedule::UnitVerdict::kFailed;
}

}  // namespace

void Supervisor::Run() {
  std::uint64_t next_tick = MonotonicMs() + kTickMs;
  for (FollowSchedule(); !m_served.empty() || !m_schedule.IsEmpty(); FollowSchedule()) {
    const std::uint64_t wake = NextWake(next_tick);
    WaitForSomething(m_may_start_more ? 0 : wake);
    const std::uint64_t now = MonotonicMs();
    if (now < wake) continue;
    if (now >= next_tick) {
      next_tick = now + kTickMs;
      m_reporting.session.Tick(now);
    }
    for (const Served& served : m_served) {
      served.unit->OnTick(now);
    }
  }
}

// A unit may end when it has hardly been started, which lets the next one start.
void Supervisor::FollowSchedule() {
  do {
    LeaveOut();
    StartNext();
  } while (NoteEnds());
}

// One at a time: those that run are served before the next one starts.
void Supervisor::StartNext() {
  const std::optional<std::size_t> next = m_schedule.TakeNext(MonotonicMs());
  m_may_start_more = next.has_value();
  if (!next) return;
  UnitRun& unit = *m_units[*next];
  m_served.push_back({*next, &unit, false});
  unit.Start();
}

// True when the schedule has heard of an end.
bool Supervisor::NoteEnds() {
  bool is_news = false;
  for (Served& served : m_served) {
    if (served.has_ended || !served.unit->HasEnded()) continue;
    served.has_ended = true;
    is_news = true;
    m_schedule.OnEnd(served.index, VerdictOf(served.unit->End()));
  }
  std::erase_if(m_served, [](const Served& served) { return served.unit->IsDone(); });
  return is_news;
}

void Supervisor::LeaveOut() {
  const Outcome outcome = m_stop_signal != 0 ? Outcome::kInterrupted : Outcome::kRefused;
  for (const std::size_t index : m_schedule.TakeLeftOut()) {
    UnitRun& unit = *m_units[index];
    unit.Decline(outcome, m_schedule.WhyNot());
    // Its hook may have to hear of it.
    m_served.push_back({index, &unit, true});
  }
}

std::uint64_t Supervisor::NextWake(std::uint64_t next_tick_ms) const {
  std::uint64_t wake = std::min(next_tick_ms, m_schedule.WakesAtMs().value_or(next_tick_ms));
  for (const Served& served : m_served) {
    wake = std::min(wake, served.unit->WakesAtMs().value_or(wake));
  }
  return wake;
}

void Supervisor::WaitForSomething(std::uint64_t wake_ms) {
  m_polled.clear();
  m_polled.push_back({m_signals.Descriptor(), POLLIN, 0});
  m_polled.push_back({m_reporting.journal.WakeUpDescriptor(), POLLIN, 0});
  for (const Served& served : m_served) {
    const short wanted = served.unit->WantsToSend() ? POLLIN | POLLOUT : POLLIN;
    // poll passes over a negative descriptor, so entry i + 2 always belongs to unit i.
    m_polled.push_back({served.unit->Socket(), wanted, 0});
  }
  if (poll(m_polled.data(), static_cast<nfds_t>(m_polled.size()), UntilMs(wake_ms)) <= 0) return;
  if (m_polled[1].revents != 0) {
    m_reporting.journal.ClearWakeUp();
    for (const Served& served : m_served) {
      served.unit->OnRecorded();
    }
  }
  for (std::size_t i = 0; i < m_served.size(); ++i) {
    const short events = m_polled[i + 2].revents;
    if ((events & POLLOUT) != 0) m_served[i].unit->OnWritable();
    if ((events & ~POLLOUT) != 0) m_served[i].unit->OnReadable();
  }
  // Last, so that what a worker said before its end has been heard.
  if (m_polled[0].revents != 0) TakeSignals();
}

void Supervisor::TakeSignals() {
  const std::vector<int> signals = m_signals.Take();
  for (const Served& served : m_served) {
    served.unit->OnProcessEnded();
  }
  for (const int signal : signals) {
    Stop(signal);
  }
}

void Supervisor::Stop(int signal) {
  const bool first = m_stop_signal == 0;
  const std::uint64_t now = MonotonicMs();
  if (first) {
    m_stop_signal = signal;
    m_stopped_ms = now;
    m_schedule.Stop();
  } else if (signal == SIGHUP && now - m_stopped_ms < kSameHangUpMs) {
    return;
  }
  for (const Served& served : m_served) {
    if (first) {
      served.unit->StartNothingNew();
    } else {
      served.unit->Interrupt(now);
    }
  }
  const bool all_done = std::all_of(m_served.begin(), m_served.end(),
                                    [](const Served& served) { return served.unit->IsDone(); });
  if (all_done) return;
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
