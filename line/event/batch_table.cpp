// SPDX-License-Identifier: MIT
#include "line/event/batch_table.h"

#include <algorithm>
#include <utility>

#include "line/event/screen_text.h"

namespace line {

namespace {

// A longer serial moves the rest of its own line only.
constexpr std::size_t kPaddedAtMost = 24;

std::string EndText(const UnitResultEvent& result, const std::string& why) {
  const bool has_passed = result.outcome == Outcome::kPassed;
  return (has_passed ? "PASS  " : "FAIL  ") + std::string(NameOf(result.state)) +
         (why.empty() ? "" : ": " + why) + (result.recorded ? "" : " (not recorded)");
}

BatchEnd EndOf(const UnitResultEvent& result, const std::string& failure) {
  const std::string reason = CleanText(result.reason);
  std::string why = failure + (failure.empty() || reason.empty() ? "" : "; ") + reason;
  const bool has_passed = result.outcome == Outcome::kPassed;
  if (why.empty() && !has_passed) why = WordsOf(result.outcome);
  return {has_passed, result.state, EndText(result, why), EndText(result, reason)};
}

bool IsInDoubt(const std::optional<BatchEnd>& end) {
  return end && (end->state == UnitState::kUncertain || end->state == UnitState::kProgramming);
}

}  // namespace

bool BatchTable::Follow(const Event& event) {
  const auto row = std::find_if(m_rows.begin(), m_rows.end(), [&event](const Row& one) {
    return one.unit.place == event.where.place;
  });
  if (row == m_rows.end()) return false;
  if (const ResultEvent* const step = std::get_if<ResultEvent>(&event.body)) {
    row->failure = step->outcome == Outcome::kPassed ? "" : FailureText(event.where, *step);
  }
  if (const UnitResultEvent* const unit = std::get_if<UnitResultEvent>(&event.body)) {
    row->end = EndOf(*unit, row->failure);
  }
  return true;
}

const BatchEnd* BatchTable::EndAt(const std::string& place) const {
  const auto row = std::find_if(m_rows.begin(), m_rows.end(),
                                [&place](const Row& one) { return one.unit.place == place; });
  return row == m_rows.end() || !row->end ? nullptr : &*row->end;
}

std::vector<TextLine> BatchTable::Lines() const {
  std::size_t place = 0, serial = 0;
  for (const Row& row : m_rows) {
    place = std::max(place, Columns(CleanText(row.unit.place)));
    serial = std::max(serial, Columns(CleanText(row.unit.unit)));
  }
  std::vector<TextLine> lines;
  for (const Row& row : m_rows) {
    const bool has_passed = row.end && row.end->has_passed;
    // Never seen: the batch reports every unit. If it did not, a blank would look like a pass.
    const std::string end = row.end ? row.end->text : "FAIL  no result was reported";
    lines.push_back({true, has_passed ? Tone::kGood : Tone::kBad,
                     Padded(CleanText(row.unit.place), std::min(place, kPaddedAtMost)) + "  " +
                         Padded(CleanText(row.unit.unit), std::min(serial, kPaddedAtMost)) + "  " +
                         end});
  }
  return lines;
}

std::vector<TextLine> BatchTable::Advice() const {
  std::string names;
  for (const Row& row : m_rows) {
    if (IsInDoubt(row.end)) names += (names.empty() ? "" : ", ") + CleanText(row.unit.place);
  }
  if (names.empty()) return {};
  return {{false, Tone::kBad,
           "zvisp-line: Perhaps half-written: " + names +
               ". Leave each powered and connected, remove the cause, and program it again; "
               "zvisp-line journal doctor names its run."}};
}

}  // namespace line
