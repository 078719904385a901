// SPDX-License-Identifier: MIT
//
// One process as the events see it: stamps each event and hands it to every sink, in the order in
// which the sinks were added. For one thread.
#ifndef ZVISP_LINE_EVENT_SESSION_H_
#define ZVISP_LINE_EVENT_SESSION_H_

#include <cstdint>
#include <string>
#include <vector>

#include "line/event/event.h"

namespace line {

// A new UUIDv7: 36 characters, ascending with the time in milliseconds.
std::string NewUuid();

// Milliseconds of the clock that is never set.
std::uint64_t MonotonicMs();

class Session {
 public:
  Session() : m_id(NewUuid()) {}
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  const std::string& Id() const { return m_id; }

  // The sink must outlive the session, or be removed from it.
  void Add(EventSink& sink) { m_sinks.push_back(&sink); }
  void Remove(EventSink& sink) { std::erase(m_sinks, &sink); }

  void Emit(const Where& where, EventBody body);

  // Passes the time on to every sink.
  void Tick(std::uint64_t mono_ms);

 private:
  std::string m_id;
  std::uint64_t m_next_seq = 0;
  std::vector<EventSink*> m_sinks;
};

}  // namespace line

#endif  // ZVISP_LINE_EVENT_SESSION_H_
