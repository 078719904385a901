// SPDX-License-Identifier: MIT
#include "line/event/narration.h"

#include <utility>

#include "line/event/screen_text.h"

namespace line {

namespace {

using Lines = std::vector<TextLine>;

void Append(Lines& lines, Lines more) {
  lines.insert(lines.end(), std::make_move_iterator(more.begin()),
               std::make_move_iterator(more.end()));
}

// What a row shows, or what of many displays at once nobody can read.
bool IsForRows(const Event& event) {
  if (const ResultEvent* const result = std::get_if<ResultEvent>(&event.body)) {
    return result->outcome == Outcome::kPassed;
  }
  if (const MessageEvent* const message = std::get_if<MessageEvent>(&event.body)) {
    return message->level == Level::kInfo && !event.where.place.empty();
  }
  return std::holds_alternative<WaitEvent>(event.body);
}

}  // namespace

Lines Narration::Tell(const Event& event) {
  const HelloEvent* const hello = std::get_if<HelloEvent>(&event.body);
  if (hello != nullptr && hello->job && !hello->job->units.empty()) {
    m_table.emplace(hello->job->units);
  }
  return m_table ? TellOfBatch(event) : LinesOf(event);
}

Lines Narration::TellOfBatch(const Event& event) {
  const bool is_known = m_table->Follow(event);
  if (std::holds_alternative<PlanEvent>(event.body)) return Warnings(event);
  m_has_begun = m_has_begun || is_known;
  if (std::holds_alternative<UnitResultEvent>(event.body) && is_known) return UnitEnd(event);
  if (std::holds_alternative<SummaryEvent>(event.body) ||
      std::holds_alternative<EndEvent>(event.body)) {
    return TheEnd(event);
  }
  if (m_has_rows && IsForRows(event)) return {};
  return LinesOf(event);
}

// All places may have the same plan; each warning is printed once.
Lines Narration::Warnings(const Event& event) {
  Event warnings = event;
  std::get<PlanEvent>(warnings.body).files.clear();
  warnings.where.run = "of a batch";
  Lines lines;
  for (TextLine& line : LinesOf(warnings)) {
    if (m_warnings.insert(line.text).second) lines.push_back(std::move(line));
  }
  return lines;
}

// The table comes when the last one has ended, which may take long.
Lines Narration::UnitEnd(const Event& event) const {
  if (m_has_rows) return {};
  const BatchEnd& end = *m_table->EndAt(event.where.place);
  return {{false, end.has_passed ? Tone::kGood : Tone::kBad,
           CleanText(event.where.place) + ": " + CleanText(event.where.unit) + "  " + end.brief}};
}

Lines Narration::TheEnd(const Event& event) {
  // Without any unit the batch was refused, and the message said so.
  if (!m_has_begun || std::exchange(m_is_told, true)) return {};
  Lines lines = m_table->Lines();
  Append(lines, LinesOf(event));
  Append(lines, m_table->Advice());
  return lines;
}

}  // namespace line
