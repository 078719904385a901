// SPDX-License-Identifier: MIT
//
// The rows of a batch on a terminal: one for each unit, in the order of the job, from the first
// event to the table at the end.
#ifndef ZVISP_LINE_EVENT_BATCH_ROWS_H_
#define ZVISP_LINE_EVENT_BATCH_ROWS_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "line/event/batch_table.h"
#include "line/event/event.h"
#include "line/event/event_text.h"
#include "line/event/progress_row.h"

namespace line {

struct TerminalSize {
  std::size_t columns = 0, lines = 0;
};

class BatchRows {
 public:
  BatchRows(const std::vector<BatchUnit>& units, std::uint64_t mono_ms);

  // `table` has followed the event already. True when a row changed but for its progress.
  bool Follow(const Event& event, const BatchTable& table);

  // At most `size.lines` rows of at most `size.columns` columns. When there are more units, those
  // that are under way go first, then those that failed, and the last row counts the others.
  std::vector<TextLine> Texts(const TerminalSize& size, std::uint64_t mono_ms) const;

 private:
  // In the order of their importance.
  enum class Stage { kUnderWay, kFailed, kHeldUp, kWaiting, kPassed };
  struct Row {
    std::string place;  // as the events have it
    ProgressRow progress;
    Stage stage = Stage::kWaiting;
    std::string end;
  };
  struct Layout {
    std::size_t columns = 0, place = 0, serial = 0, bar = 0;  // 0: left out
  };

  Layout LayoutFor(std::size_t columns) const;
  // Which rows have room.
  std::vector<bool> Shown(std::size_t lines) const;
  TextLine TextOf(const Row& row, const Layout& layout, std::uint64_t mono_ms) const;
  std::string Others(const std::vector<bool>& shown) const;

  std::vector<Row> m_rows;
};

}  // namespace line

#endif  // ZVISP_LINE_EVENT_BATCH_ROWS_H_
