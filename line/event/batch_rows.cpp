// SPDX-License-Identifier: MIT
#include "line/event/batch_rows.h"

#include <algorithm>
#include <iterator>

#include "line/event/screen_text.h"

namespace line {

namespace {

constexpr std::size_t kPlaceAtMost = 16;
constexpr std::size_t kSerialAtMost = 20;
constexpr std::size_t kDoing = 9;       // "signature", "read-back"
constexpr std::size_t kNumbers = 13;    // " 100 %  12:34"
constexpr std::size_t kRemaining = 12;  // ", 12:34 left"
constexpr std::size_t kBarAtLeast = 6;
constexpr std::size_t kBarAtMost = 40;
// A bar of this length is worth more than the remaining time.
constexpr std::size_t kBarComfort = 20;

}  // namespace

BatchRows::BatchRows(const std::vector<BatchUnit>& units, std::uint64_t mono_ms) {
  for (const BatchUnit& unit : units) {
    m_rows.push_back(
        {unit.place, ProgressRow(unit.place, unit.unit, mono_ms), Stage::kWaiting, ""});
  }
}

bool BatchRows::Follow(const Event& event, const BatchTable& table) {
  const auto row = std::find_if(m_rows.begin(), m_rows.end(), [&event](const Row& one) {
    return one.place == event.where.place;
  });
  if (row == m_rows.end()) return false;
  row->progress.Follow(event);
  const Stage before = row->stage;
  if (const BatchEnd* const end = table.EndAt(row->place)) {
    row->stage = end->has_passed ? Stage::kPassed : Stage::kFailed;
    row->end = end->text;
  } else if (std::holds_alternative<WaitEvent>(event.body)) {
    row->stage = Stage::kHeldUp;
  } else if (std::holds_alternative<UnitStartEvent>(event.body)) {
    row->stage = Stage::kUnderWay;
  }
  return row->stage != before || std::holds_alternative<StartEvent>(event.body);
}

BatchRows::Layout BatchRows::LayoutFor(std::size_t columns) const {
  Layout layout = {columns, 0, 0, 0};
  std::size_t serial = 0;
  for (const Row& row : m_rows) {
    layout.place = std::max(layout.place, std::min(Columns(row.progress.Place()), kPlaceAtMost));
    serial = std::max(serial, std::min(Columns(row.progress.Unit()), kSerialAtMost));
  }
  // Blanks between the texts included.
  std::size_t taken = layout.place + 1 + kDoing + 1 + kNumbers;
  if (taken + serial + 1 + kBarAtLeast <= columns) {
    layout.serial = serial;
    taken += serial + 1;
  }
  const std::size_t room = columns - std::min(taken, columns);
  const bool has_remaining = room >= kBarComfort + kRemaining;
  layout.bar = std::min(room - (has_remaining ? kRemaining : 0), kBarAtMost);
  if (layout.bar < kBarAtLeast) layout.bar = 0;
  return layout;
}

std::vector<bool> BatchRows::Shown(std::size_t lines) const {
  std::vector<bool> shown(m_rows.size(), m_rows.size() <= lines);
  if (m_rows.size() <= lines) return shown;
  std::size_t left = lines - 1;  // the last one counts the others
  for (const Stage stage :
       {Stage::kUnderWay, Stage::kFailed, Stage::kHeldUp, Stage::kWaiting, Stage::kPassed}) {
    for (std::size_t i = 0; i < m_rows.size() && left > 0; ++i) {
      if (m_rows[i].stage != stage) continue;
      shown[i] = true;
      --left;
    }
  }
  return shown;
}

TextLine BatchRows::TextOf(const Row& row, const Layout& layout, std::uint64_t mono_ms) const {
  std::string text = Padded(CutToColumns(row.progress.Place(), layout.place), layout.place) + " ";
  if (layout.serial > 0) {
    text += Padded(CutToColumns(row.progress.Unit(), layout.serial), layout.serial) + " ";
  }
  Tone tone = Tone::kPlain;
  switch (row.stage) {
    case Stage::kWaiting:
      text += "waits";
      break;
    case Stage::kHeldUp:
    case Stage::kUnderWay:
      text += row.progress.Doing(kDoing, layout.bar,
                                 layout.columns - std::min(Columns(text), layout.columns), mono_ms);
      break;
    case Stage::kPassed:
    case Stage::kFailed:
      text += row.end;
      tone = row.stage == Stage::kPassed ? Tone::kGood : Tone::kBad;
      break;
  }
  return {false, tone, CutToColumns(text, layout.columns)};
}

std::string BatchRows::Others(const std::vector<bool>& shown) const {
  constexpr const char* kWords[] = {" under way", " FAIL", " held up", " waiting", " PASS"};
  std::size_t counts[std::size(kWords)] = {};
  std::size_t all = 0;
  for (std::size_t i = 0; i < m_rows.size(); ++i) {
    if (shown[i]) continue;
    ++counts[static_cast<std::size_t>(m_rows[i].stage)];
    ++all;
  }
  std::string text = "and " + std::to_string(all) + " more";
  const char* separator = ": ";
  for (std::size_t i = 0; i < std::size(kWords); ++i) {
    if (counts[i] == 0) continue;
    text += separator + std::to_string(counts[i]) + kWords[i];
    separator = ", ";
  }
  return text;
}

std::vector<TextLine> BatchRows::Texts(const TerminalSize& size, std::uint64_t mono_ms) const {
  const Layout layout = LayoutFor(size.columns);
  const std::vector<bool> shown = Shown(std::max<std::size_t>(size.lines, 1));
  std::vector<TextLine> texts;
  for (std::size_t i = 0; i < m_rows.size(); ++i) {
    if (shown[i]) texts.push_back(TextOf(m_rows[i], layout, mono_ms));
  }
  if (texts.size() < m_rows.size()) {
    texts.push_back({false, Tone::kPlain, CutToColumns(Others(shown), size.columns)});
  }
  return texts;
}

}  // namespace line
