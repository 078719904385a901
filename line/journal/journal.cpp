// SPDX-License-Identifier: MIT
#include "line/journal/journal.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <condition_variable>
#include <map>
#include <mutex>
#include <set>
#include <thread>
#include <utility>
#include <vector>

#include "line/event/event_json.h"
#include "line/event/time_text.h"
#include "line/journal/record_file.h"

namespace line {

namespace {

struct QueuedLine {
  Journal::Ticket ticket;
  std::string day, text;
  bool flush;
};

constexpr std::size_t kDayLength = 10;  // of "2026-11-21"

bool NeedsFlush(const EventBody& body) {
  return std::holds_alternative<StateEvent>(body) || std::holds_alternative<ResultEvent>(body) ||
         std::holds_alternative<UnitResultEvent>(body) ||
         std::holds_alternative<ResolvedEvent>(body);
}

// A plan's hundreds of banks follow from its files.
std::string RecordedLine(const Event& event) {
  const PlanEvent* const plan = std::get_if<PlanEvent>(&event.body);
  if (plan == nullptr || plan->banks.empty()) return ToJsonLine(event);
  Event shortened = event;
  std::get<PlanEvent>(shortened.body).banks.clear();
  return ToJsonLine(shortened);
}

// Which lines of `progress` are kept: the first of each ten percent of a step.
class ProgressFilter {
 public:
  bool Keeps(const Event& event) {
    const std::string key = event.where.run + " " + event.where.step +
                            (event.where.phase ? std::string(NameOf(*event.where.phase)) : "");
    if (const ProgressEvent* const progress = std::get_if<ProgressEvent>(&event.body)) {
      const int decade = progress->percent / 10;
      return std::exchange(m_decades[key], decade + 1) != decade + 1;
    }
    if (std::holds_alternative<UnitResultEvent>(event.body)) m_decades.clear();
    // A finding only repeats what the record says.
    return !std::holds_alternative<FindingEvent>(event.body);
  }

 private:
  std::map<std::string, int> m_decades;  // last decade and 1; 0 before the first line
};

}  // namespace

// The thread that writes, and what it shares with the callers.
class Journal::Writer {
 public:
  bool Open(const std::string& data_directory, std::string& error);
  ~Writer();

  Ticket Append(const Event& event);
  Fate FateOf(Ticket ticket) const;
  bool WaitFor(Ticket ticket);
  int WakeUpDescriptor() const { return m_wake_up_read.Number(); }
  void ClearWakeUp();
  std::string Failure() const;

 private:
  void Work();
  void WriteBatch(const std::vector<QueuedLine>& batch);
  void Settle(const std::vector<QueuedLine>& batch, bool is_written, const std::string& error);

  RecordFiles m_files;
  Descriptor m_wake_up_read, m_wake_up_write;
  ProgressFilter m_filter;  // of the thread that appends

  mutable std::mutex m_mutex;
  std::condition_variable m_has_work, m_has_settled;
  std::vector<QueuedLine> m_queue;
  Ticket m_last_ticket = 0;
  Ticket m_settled = 0;
  std::set<Ticket> m_lost;
  std::string m_failure;
  bool m_stops = false;
  std::thread m_thread;
};

bool Journal::Writer::Open(const std::string& data_directory, std::string& error) {
  if (!m_files.Open(data_directory, error)) return false;
  int ends[2] = {-1, -1};
  if (pipe(ends) != 0) {
    error = "The record cannot be kept: no descriptor is free; raise the limit with ulimit -n.";
    return false;
  }
  m_wake_up_read = Descriptor(ends[0]);
  m_wake_up_write = Descriptor(ends[1]);
  for (const int end : ends) {
    fcntl(end, F_SETFL, O_NONBLOCK);
    fcntl(end, F_SETFD, FD_CLOEXEC);
  }
  // The operator's signals are for the thread that serves the run.
  sigset_t all, before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  m_thread = std::thread([this] { Work(); });
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  return true;
}

Journal::Writer::~Writer() {
  {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_stops = true;
  }
  m_has_work.notify_one();
  if (m_thread.joinable()) m_thread.join();
}

Journal::Ticket Journal::Writer::Append(const Event& event) {
  if (!m_filter.Keeps(event)) return 0;
  QueuedLine line = {0, TimeText(event.time_ms).substr(0, kDayLength), RecordedLine(event),
                     NeedsFlush(event.body)};
  const std::lock_guard<std::mutex> lock(m_mutex);
  // Numbered and queued under one lock, so the order of tickets is the order of lines.
  line.ticket = ++m_last_ticket;
  m_queue.push_back(std::move(line));
  m_has_work.notify_one();
  return m_last_ticket;
}

Journal::Fate Journal::Writer::FateOf(Ticket ticket) const {
  const std::lock_guard<std::mutex> lock(m_mutex);
  if (m_lost.count(ticket) != 0) return Fate::kLost;
  return ticket <= m_settled ? Fate::kOnDisk : Fate::kPending;
}

bool Journal::Writer::WaitFor(Ticket ticket) {
  std::unique_lock<std::mutex> lock(m_mutex);
  m_has_settled.wait(lock, [&] { return m_settled >= ticket; });
  return m_lost.count(ticket) == 0;
}

void Journal::Writer::ClearWakeUp() {
  char bytes[64];
  while (read(m_wake_up_read.Number(), bytes, sizeof bytes) > 0) {
  }
}

std::string Journal::Writer::Failure() const {
  const std::lock_guard<std::mutex> lock(m_mutex);
  return m_failure;
}

void Journal::Writer::Work() {
  std::unique_lock<std::mutex> lock(m_mutex);
  while (true) {
    m_has_work.wait(lock, [this] { return m_stops || !m_queue.empty(); });
    // Stopped, and nothing left: what was queued before the stop is still written.
    if (m_queue.empty()) return;
    const std::vector<QueuedLine> queue = std::exchange(m_queue, {});
    lock.unlock();
    // One batch for each run of lines of a day: a flush serves all of them.
    for (auto first = queue.begin(); first != queue.end();) {
      auto last = first;
      while (last != queue.end() && last->day == first->day) {
        ++last;
      }
      WriteBatch({first, last});
      first = last;
    }
    lock.lock();
  }
}

void Journal::Writer::WriteBatch(const std::vector<QueuedLine>& batch) {
  std::string lines, error;
  bool flush = false;
  for (const QueuedLine& line : batch) {
    lines += line.text;
    flush = flush || line.flush;
  }
  const bool is_written = m_files.Append(batch.front().day, lines, flush, error);
  Settle(batch, is_written, error);
}

void Journal::Writer::Settle(const std::vector<QueuedLine>& batch, bool is_written,
                             const std::string& error) {
  {
    const std::lock_guard<std::mutex> lock(m_mutex);
    // Batches are written in order, so every ticket up to this one has its fate.
    m_settled = batch.back().ticket;
    for (const QueuedLine& line : batch) {
      if (!is_written) m_lost.insert(line.ticket);
    }
    if (!is_written && m_failure.empty()) m_failure = error;
  }
  m_has_settled.notify_all();
  // A full pipe already wakes whoever polls.
  static_cast<void>(write(m_wake_up_write.Number(), "", 1) == 1);
}

std::unique_ptr<Journal> Journal::Open(const std::string& data_directory, std::string& error) {
  if (data_directory.empty()) {
    error = kNoDataDirectory;
    return nullptr;
  }
  auto writer = std::make_unique<Writer>();
  if (!writer->Open(data_directory, error)) return nullptr;
  return std::unique_ptr<Journal>(new Journal(std::move(writer)));
}

Journal::Journal(std::unique_ptr<Writer> writer) : m_writer(std::move(writer)) {}
Journal::~Journal() = default;
Journal::Ticket Journal::Append(const Event& event) {
  return m_writer->Append(event);
}
Journal::Fate Journal::FateOf(Ticket ticket) const {
  return m_writer->FateOf(ticket);
}
bool Journal::WaitFor(Ticket ticket) {
  return m_writer->WaitFor(ticket);
}
int Journal::WakeUpDescriptor() const {
  return m_writer->WakeUpDescriptor();
}
void Journal::ClearWakeUp() {
  m_writer->ClearWakeUp();
}
bool Journal::IsHealthy() const {
  return Failure().empty();
}
std::string Journal::Failure() const {
  return m_writer->Failure();
}

}  // namespace line
