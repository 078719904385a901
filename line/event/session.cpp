// SPDX-License-Identifier: MIT
#include "line/event/session.h"

#include <sys/time.h>
#include <time.h>

#include <array>
#include <cstdio>
#include <random>

namespace line {

namespace {

std::int64_t NowMs() {
  timespec now = {};
  clock_gettime(CLOCK_REALTIME, &now);
  return std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1000000;
}

// 48 bits of time, then random bits around the version (7) and the variant (binary 10).
std::array<std::uint8_t, 16> UuidBytes() {
  std::array<std::uint8_t, 16> bytes = {};
  // From the system, because many hosts make such numbers in the same millisecond.
  std::random_device random;
  for (std::size_t i = 6; i < bytes.size(); ++i) {
    bytes[i] = static_cast<std::uint8_t>(random());
  }
  const auto now = static_cast<std::uint64_t>(NowMs());
  for (std::size_t i = 0; i < 6; ++i) {
    bytes[i] = static_cast<std::uint8_t>(now >> (40 - 8 * i));
  }
  bytes[6] = static_cast<std::uint8_t>(0x70 | (bytes[6] & 0x0F));
  bytes[8] = static_cast<std::uint8_t>(0x80 | (bytes[8] & 0x3F));
  return bytes;
}

}  // namespace

std::string NewUuid() {
  std::string text;
  std::size_t i = 0;
  for (const std::uint8_t byte : UuidBytes()) {
    if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
    text += "0123456789abcdef"[byte >> 4];
    text += "0123456789abcdef"[byte & 15];
    ++i;
  }
  return text;
}

std::uint64_t MonotonicMs() {
  timespec now = {};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<std::uint64_t>(now.tv_sec) * 1000 +
         static_cast<std::uint64_t>(now.tv_nsec) / 1000000;
}

void Session::Emit(const Where& where, EventBody body) {
  const Event event = {NowMs(), MonotonicMs(), m_id, m_next_seq++, where, std::move(body)};
  for (EventSink* const sink : m_sinks) {
    sink->Take(event);
  }
}

void Session::Tick(std::uint64_t mono_ms) {
  for (EventSink* const sink : m_sinks) {
    sink->Tick(mono_ms);
  }
}

}  // namespace line
