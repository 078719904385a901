// SPDX-License-Identifier: MIT
//
// How the units of a batch ended: the table at its end.
#ifndef ZVISP_LINE_EVENT_BATCH_TABLE_H_
#define ZVISP_LINE_EVENT_BATCH_TABLE_H_

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "line/event/event.h"
#include "line/event/event_text.h"

namespace line {

struct BatchEnd {
  bool has_passed = false;
  UnitState state = UnitState::kUntouched;
  std::string text;   // "FAIL  uncertain: program crashed, signal 11"
  std::string brief;  // without what the step's own line says: "FAIL  uncertain"
};

class BatchTable {
 public:
  explicit BatchTable(const std::vector<BatchUnit>& units) : m_rows(units.begin(), units.end()) {}

  // False when the event is not about a place of this batch.
  bool Follow(const Event& event);
  // Null while the unit at the place has not ended.
  const BatchEnd* EndAt(const std::string& place) const;

  // A line for each unit, in the order of the job: place, serial, PASS or FAIL, state, why.
  std::vector<TextLine> Lines() const;
  // What to do about the uncertain units; empty when there is none.
  std::vector<TextLine> Advice() const;

 private:
  struct Row {
    explicit Row(BatchUnit of) : unit(std::move(of)) {}

    BatchUnit unit;
    std::string failure;  // of its last step that did not pass
    std::optional<BatchEnd> end;
  };

  std::vector<Row> m_rows;
};

}  // namespace line

#endif  // ZVISP_LINE_EVENT_BATCH_TABLE_H_
