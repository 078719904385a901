// SPDX-License-Identifier: MIT
//
// The rows are the last thing on the screen, and the cursor is at the end of the last of them. What
// else is printed goes above: the rows are erased, the line is written, the rows are drawn again.
#include <algorithm>
#include <utility>
#include <vector>

#include "line/event/event_text.h"
#include "line/event/line_printers.h"
#include "line/event/progress_row.h"
#include "line/event/screen_text.h"

namespace line {

namespace {

constexpr std::uint64_t kRedrawMs = 100;
// Some terminals go to the next line when the last column is filled, and Ctrl-C prints "^C" after
// the row, which must not break it.
constexpr std::size_t kFreeColumns = 3;

class TerminalPrinter : public Printer {
 public:
  TerminalPrinter(Colours colours, std::function<std::size_t()> columns)
      : m_colours(colours), m_columns(std::move(columns)) {}

  ~TerminalPrinter() override { Erase(); }

  void Take(const Event& event) override {
    m_now_ms = event.mono_ms;
    const bool has_printed = Print(LinesOf(event));
    const bool is_news = Follow(event);
    // Progress comes often; the eye does not need all of it.
    if (has_printed || is_news || m_now_ms - m_drawn_ms >= kRedrawMs) Draw();
  }

  void Tick(std::uint64_t mono_ms) override {
    m_now_ms = mono_ms;
    Draw();
  }

 private:
  // True when a row came or went.
  bool Follow(const Event& event);
  // True when there was a line; the rows are then erased.
  bool Print(const std::vector<TextLine>& lines);
  void Draw();
  void Erase();

  Colours m_colours;
  std::function<std::size_t()> m_columns;
  std::vector<ProgressRow> m_rows;
  std::vector<std::size_t> m_drawn;  // columns of each row on the screen
  std::uint64_t m_now_ms = 0, m_drawn_ms = 0;
};

bool TerminalPrinter::Follow(const Event& event) {
  const auto row = std::find_if(m_rows.begin(), m_rows.end(), [&event](const ProgressRow& one) {
    return one.Run() == event.where.run;
  });
  if (std::holds_alternative<UnitStartEvent>(event.body) && row == m_rows.end()) {
    m_rows.emplace_back(event);
    return true;
  }
  if (std::holds_alternative<UnitResultEvent>(event.body) && row != m_rows.end()) {
    m_rows.erase(row);
    return true;
  }
  if (std::holds_alternative<EndEvent>(event.body)) {
    m_rows.clear();
    return true;
  }
  if (row != m_rows.end()) row->Follow(event);
  return std::holds_alternative<StartEvent>(event.body);
}

bool TerminalPrinter::Print(const std::vector<TextLine>& lines) {
  if (!lines.empty()) Erase();
  for (const TextLine& line : lines) {
    const bool coloured = line.is_result ? m_colours.out : m_colours.err;
    WriteText(line.is_result ? stdout : stderr, (coloured ? Coloured(line) : line.text) + "\n");
  }
  return !lines.empty();
}

void TerminalPrinter::Draw() {
  Erase();
  m_drawn_ms = m_now_ms;
  const std::size_t columns = std::max(m_columns(), kFreeColumns + 1) - kFreeColumns;
  std::string text;
  for (const ProgressRow& row : m_rows) {
    const std::string row_text = row.Text(columns, m_now_ms);
    m_drawn.push_back(Columns(row_text));
    text += (text.empty() ? "" : "\r\n") + row_text;
  }
  if (!text.empty()) WriteText(stderr, text);
}

// A terminal that became narrower has broken the rows into more lines.
void TerminalPrinter::Erase() {
  if (m_drawn.empty()) return;
  const std::size_t columns = std::max<std::size_t>(m_columns(), 1);
  std::size_t lines = 0;
  for (const std::size_t drawn : std::exchange(m_drawn, {})) {
    lines += std::max<std::size_t>((drawn + columns - 1) / columns, 1);
  }
  std::string text = "\r";
  if (lines > 1) text += "\x1b[" + std::to_string(lines - 1) + "A";
  WriteText(stderr, text + "\x1b[J");
}

}  // namespace

std::unique_ptr<Printer> MakeTerminalPrinter(Colours colours,
                                             std::function<std::size_t()> columns) {
  return std::make_unique<TerminalPrinter>(colours, std::move(columns));
}

}  // namespace line
