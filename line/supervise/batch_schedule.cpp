// SPDX-License-Identifier: MIT
#include "line/supervise/batch_schedule.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace line {

namespace {

bool Exclude(const InterfaceUse& left, const InterfaceUse& right) {
  const bool alone = left.alone || right.alone || left.comm == 0 || right.comm == 0;
  return alone || left.comm == right.comm;
}

std::string Failures(unsigned count) {
  return count == 1 ? "a unit did not pass"
                    : std::to_string(count) + " units in a row did not pass";
}

}  // namespace

BatchSchedule::BatchSchedule(const BatchRules& rules, std::vector<InterfaceUse> units)
    : m_rules(rules),
      m_units(std::move(units)),
      m_waiting(m_units.size()),
      m_needs_first_article(rules.first_article) {
  std::iota(m_waiting.begin(), m_waiting.end(), std::size_t{0});
}

bool BatchSchedule::MayStart(std::size_t unit) const {
  return std::none_of(m_running.begin(), m_running.end(), [this, unit](std::size_t other) {
    return Exclude(m_units[unit], m_units[other]);
  });
}

std::optional<std::size_t> BatchSchedule::TakeNext(std::uint64_t now_ms) {
  m_wakes_at_ms.reset();
  const std::size_t at_once = m_needs_first_article ? 1 : m_rules.jobs_at_once;
  if (!m_why_not.empty() || m_running.size() >= at_once) return std::nullopt;
  const auto next = std::find_if(m_waiting.begin(), m_waiting.end(),
                                 [this](std::size_t unit) { return MayStart(unit); });
  if (next == m_waiting.end()) return std::nullopt;
  if (m_last_start_ms && now_ms < *m_last_start_ms + m_rules.stagger_ms) {
    m_wakes_at_ms = *m_last_start_ms + m_rules.stagger_ms;
    return std::nullopt;
  }
  const std::size_t unit = *next;
  m_waiting.erase(next);
  m_running.push_back(unit);
  m_last_start_ms = now_ms;
  return unit;
}

void BatchSchedule::OnEnd(std::size_t unit, UnitVerdict verdict) {
  std::erase(m_running, unit);
  if (verdict == UnitVerdict::kPassed) {
    m_needs_first_article = false;
    m_failures_in_a_row = 0;
  } else if (verdict == UnitVerdict::kFailed) {
    ++m_failures_in_a_row;
    const bool too_many = m_rules.stop_after > 0 && m_failures_in_a_row >= m_rules.stop_after;
    if (!m_why_not.empty()) return;
    if (m_needs_first_article) {
      m_why_not = "the first article did not pass";
    } else if (too_many) {
      m_why_not = Failures(m_rules.stop_after);
    }
  }
}

void BatchSchedule::Stop() {
  if (m_why_not.empty()) m_why_not = "the operator stopped the batch";
}

std::vector<std::size_t> BatchSchedule::TakeLeftOut() {
  if (m_why_not.empty()) return {};
  return std::exchange(m_waiting, {});
}

}  // namespace line
