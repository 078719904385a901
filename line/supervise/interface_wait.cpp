// SPDX-License-Identifier: MIT
#include "line/supervise/interface_wait.h"

#include <utility>

namespace line {

namespace {

constexpr std::uint64_t kBetweenShortTriesMs = 10;
constexpr std::uint64_t kBetweenTriesMs = 50;

}  // namespace

void InterfaceWait::Begin(const InterfaceUse& use, std::string holder, std::uint64_t wait_ms,
                          std::uint64_t now_ms) {
  m_use = use;
  m_holder = std::move(holder);
  m_deadline_ms = now_ms + wait_ms;
  m_state = State::kWaiting;
  m_tries = 0;
  Try(now_ms);
}

void InterfaceWait::OnTick(std::uint64_t now_ms) {
  if (m_state == State::kWaiting && now_ms >= m_next_ms) Try(now_ms);
}

void InterfaceWait::Try(std::uint64_t now_ms) {
  ++m_tries;
  const bool is_last = m_tries >= kShortTries && now_ms >= m_deadline_ms;
  switch (m_lock.Take(m_use, m_holder, m_reason)) {
    case InterfaceLock::Answer::kTaken:
      m_state = State::kTaken;
      break;
    case InterfaceLock::Answer::kNotAvailable:
      m_state = State::kNotAvailable;
      break;
    case InterfaceLock::Answer::kInUse:
      if (is_last) m_state = State::kInUse;
      break;
  }
  m_next_ms = now_ms + (m_tries < kShortTries ? kBetweenShortTriesMs : kBetweenTriesMs);
}

}  // namespace line
