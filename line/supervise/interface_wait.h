// SPDX-License-Identifier: MIT
//
// Takes the lock of an interface for a run, without ever waiting in a call: the supervisor's loop
// asks again and again until the lock is taken, or the time for it is over.
#ifndef ZVISP_LINE_SUPERVISE_INTERFACE_WAIT_H_
#define ZVISP_LINE_SUPERVISE_INTERFACE_WAIT_H_

#include <cstdint>
#include <string>
#include <vector>

#include "line/journal/interface_lock.h"

namespace line {

class InterfaceWait {
 public:
  enum class State { kIdle, kWaiting, kTaken, kInUse, kNotAvailable };

  // `holder` is one line about this run, for others who find the interface in use. Tries at once.
  void Begin(const InterfaceUse& use, std::string holder, std::uint64_t wait_ms,
             std::uint64_t now_ms);
  // Tries again when it is time to.
  void OnTick(std::uint64_t now_ms);
  void Release() { m_lock.Release(); }

  // kTaken, kInUse and kNotAvailable are final.
  State Now() const { return m_state; }
  // Who has the interface ("Interface 3 is in use by ..."), or a sentence about the lock.
  const std::string& Reason() const { return m_reason; }
  // When OnTick has something to do next; only while waiting.
  std::uint64_t NextTryMs() const { return m_next_ms; }
  // Somebody else holds the interface, and so long that the operator should know.
  bool IsLong() const { return m_state == State::kWaiting && m_tries >= kShortTries; }

  // The open files of a lock that is taken.
  std::vector<int> Files() const { return m_lock.Files(); }

 private:
  // Somebody who only asks whether an interface is free holds it for a moment.
  static constexpr unsigned kShortTries = 4;

  void Try(std::uint64_t now_ms);

  InterfaceLock m_lock;
  InterfaceUse m_use;
  std::string m_holder, m_reason;
  State m_state = State::kIdle;
  unsigned m_tries = 0;
  std::uint64_t m_deadline_ms = 0;
  std::uint64_t m_next_ms = 0;
};

}  // namespace line

#endif  // ZVISP_LINE_SUPERVISE_INTERFACE_WAIT_H_
