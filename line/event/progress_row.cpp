// SPDX-License-Identifier: MIT
#include "line/event/progress_row.h"

#include <algorithm>

#include "line/event/screen_text.h"
#include "line/event/time_text.h"

namespace line {

namespace {

constexpr std::size_t kBarAtMost = 40;
constexpr std::size_t kBarAtLeast = 6;  // less than this shows nothing
// A remaining time is shown once there is enough to estimate it from.
constexpr int kKnownFromPercent = 3;
constexpr std::uint64_t kKnownFromMs = 2000;

}  // namespace

ProgressRow::ProgressRow(const std::string& place, const std::string& unit, std::uint64_t mono_ms)
    : m_place(CleanText(place)),
      m_unit(CleanText(unit)),
      m_doing("waits"),
      m_step_start_ms(mono_ms),
      m_phase_start_ms(mono_ms) {}

void ProgressRow::Follow(const Event& event) {
  if (const WaitEvent* const wait = std::get_if<WaitEvent>(&event.body)) {
    m_step_start_ms = event.mono_ms;
    m_holder = CleanText(wait->text);
    m_doing = wait->reason == WaitReason::kHook ? "waits for its hook" : "waits";
  }
  if (std::holds_alternative<UnitStartEvent>(event.body)) {
    m_doing = "starts";
    m_holder.clear();
  }
  if (std::holds_alternative<StartEvent>(event.body)) {
    m_phase.reset();
    m_step_start_ms = event.mono_ms;
    m_phase_start_ms = event.mono_ms;
    m_percent.reset();
    m_doing = CleanText(event.where.step);
  }
  if (event.where.phase.has_value() && event.where.phase != m_phase) {
    m_phase = event.where.phase;
    m_phase_start_ms = event.mono_ms;
    m_percent.reset();
    m_doing = NameOf(*m_phase);
  }
  if (const ProgressEvent* const progress = std::get_if<ProgressEvent>(&event.body)) {
    m_percent = progress->percent;
    m_percent_ms = event.mono_ms;
  }
}

std::string ProgressRow::Bar(std::size_t columns) const {
  const std::size_t inside = std::min(columns, kBarAtMost) - 2;
  const std::size_t filled = inside * static_cast<std::size_t>(*m_percent) / 100;
  return "[" + std::string(filled, '#') + std::string(inside - filled, '-') + "]";
}

// The rest of the phase at the pace of its reported part, less the time since that report. Empty
// when too little is known, and when the estimate has run out.
std::string ProgressRow::Remaining(std::uint64_t mono_ms) const {
  if (!m_percent || *m_percent < kKnownFromPercent || *m_percent >= 100) return "";
  const std::uint64_t taken = m_percent_ms - m_phase_start_ms;
  if (taken < kKnownFromMs) return "";
  const auto percent = static_cast<std::uint64_t>(*m_percent);
  const std::uint64_t at_the_report = taken * (100 - percent) / percent;
  const std::uint64_t since = mono_ms - std::min(m_percent_ms, mono_ms);
  if (since >= at_the_report) return "";
  return ", " + DurationText(at_the_report - since) + " left";
}

std::string ProgressRow::Elapsed(std::uint64_t mono_ms) const {
  return "  " + DurationText(mono_ms - std::min(m_step_start_ms, mono_ms));
}

std::string ProgressRow::Percent() const {
  if (!m_percent) return "";
  const std::string percent = std::to_string(*m_percent);
  return " " + std::string(3 - percent.size(), ' ') + percent + " %";
}

std::string ProgressRow::Doing(std::size_t doing, std::size_t bar, std::size_t columns,
                               std::uint64_t mono_ms) const {
  if (!m_percent) {
    return m_doing + Elapsed(mono_ms) + (m_holder.empty() ? "" : "  " + m_holder);
  }
  std::string text = Padded(CutToColumns(m_doing, doing), doing);
  if (bar > 0) text += " " + Bar(bar);
  text += Percent() + Elapsed(mono_ms);
  const std::string remaining = Remaining(mono_ms);
  return Columns(text) + remaining.size() <= columns ? text + remaining : text;
}

std::string ProgressRow::Text(std::size_t columns, std::uint64_t mono_ms) const {
  std::string serial = m_unit.empty() ? "" : " " + m_unit;
  const std::string tail = Percent() + Elapsed(mono_ms);
  std::string remaining = Remaining(mono_ms);
  const std::size_t bar_needs = m_percent ? kBarAtLeast + 1 : 0;
  const auto taken = [&] {
    return Columns(m_place) + Columns(serial) + 1 + Columns(m_doing) + tail.size() +
           remaining.size();
  };
  // The least important goes first; each line measures what is left after the line before.
  if (taken() + bar_needs > columns) remaining.clear();
  if (taken() + bar_needs > columns) serial.clear();
  std::string bar;
  if (m_percent && taken() + bar_needs <= columns) bar = " " + Bar(columns - taken() - 1);
  return CutToColumns(m_place + serial + " " + m_doing + bar + tail + remaining, columns);
}

}  // namespace line
