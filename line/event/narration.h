// SPDX-License-Identifier: MIT
//
// What is printed of the events in words. Of one unit, that is what LinesOf says of each event. A
// batch says less of each unit, and ends with a table of them all.
#ifndef ZVISP_LINE_EVENT_NARRATION_H_
#define ZVISP_LINE_EVENT_NARRATION_H_

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "line/event/batch_table.h"
#include "line/event/event_text.h"

namespace line {

class Narration {
 public:
  // `has_rows`: rows show what goes well, so lines say only what does not.
  explicit Narration(bool has_rows) : m_has_rows(has_rows) {}

  // The lines that the event is worth now.
  std::vector<TextLine> Tell(const Event& event);

  // Null when there is no batch.
  const BatchTable* Table() const { return m_table ? &*m_table : nullptr; }

 private:
  std::vector<TextLine> TellOfBatch(const Event& event);
  std::vector<TextLine> Warnings(const Event& event);
  std::vector<TextLine> UnitEnd(const Event& event) const;
  std::vector<TextLine> TheEnd(const Event& event);

  bool m_has_rows;
  bool m_has_begun = false;  // something was said of a unit
  bool m_is_told = false;    // the table was printed
  std::optional<BatchTable> m_table;
  std::set<std::string> m_warnings;  // that were printed
};

}  // namespace line

#endif  // ZVISP_LINE_EVENT_NARRATION_H_
