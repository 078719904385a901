// SPDX-License-Identifier: MIT
//
// The record: DATA/journal/YYYY-MM-DD.jsonl, one event a line, the UTC day of the event. It is the
// truth about every display, so lines reach the disk before anything depends on them.
//
// Several processes append to one record. Each line is written whole, under a lock of the record;
// a line that another writer left unfinished is ended first. Writing and flushing is the work of
// one thread of the journal's own: Append never waits for a disk.
#ifndef ZVISP_LINE_JOURNAL_JOURNAL_H_
#define ZVISP_LINE_JOURNAL_JOURNAL_H_

#include <cstdint>
#include <memory>
#include <string>

#include "line/event/event.h"

namespace line {

// `given` (of --data) when it is not empty, else $XDG_STATE_HOME/zvisp, else ~/.local/state/zvisp,
// on macOS ~/Library/Application Support/zvisp. Empty when none of them is known.
std::string DataDirectory(const std::string& given);

class Journal {
 public:
  // Names a line in the order of Append; 0 for an event that is not recorded.
  using Ticket = std::uint64_t;
  enum class Fate { kPending, kOnDisk, kLost };

  // Makes the directories that are missing (mode 0700) and tries the record: it must be writable,
  // and its disk must have 16 MB free. Null, with one sentence in `error`, when not: nothing may
  // start then (exit status 3).
  static std::unique_ptr<Journal> Open(const std::string& data_directory, std::string& error);

  // Writes and flushes what is queued.
  ~Journal();
  Journal(const Journal&) = delete;
  Journal& operator=(const Journal&) = delete;

  // Queues the line. `state`, `result`, `unit_result` and `resolved` are flushed to the disk;
  // of `progress`, each step's first line in every ten percent is kept, and written only.
  Ticket Append(const Event& event);

  // Never waits.
  Fate FateOf(Ticket ticket) const;
  // Waits until the line is on the disk, or lost. True for on the disk, and for ticket 0.
  bool WaitFor(Ticket ticket);

  // Becomes readable when fates have changed: for poll. ClearWakeUp before asking for fates.
  int WakeUpDescriptor() const;
  void ClearWakeUp();

  // False from the first line on that could not be written or flushed; why, in one sentence.
  bool IsHealthy() const;
  std::string Failure() const;

 private:
  class Writer;
  explicit Journal(std::unique_ptr<Writer> writer);
  std::unique_ptr<Writer> m_writer;
};

// Hands the events of a session to the record, and remembers the ticket of the last one.
class JournalSink : public EventSink {
 public:
  explicit JournalSink(Journal& journal) : m_journal(journal) {}
  void Take(const Event& event) override { m_last = m_journal.Append(event); }
  Journal::Ticket Last() const { return m_last; }

 private:
  Journal& m_journal;
  Journal::Ticket m_last = 0;
};

}  // namespace line

#endif  // ZVISP_LINE_JOURNAL_JOURNAL_H_
