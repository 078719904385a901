// SPDX-License-Identifier: MIT
//
// The rows are the last thing on the screen, and the cursor is at the end of the last of them. What
// else is printed goes above: the rows are erased, the line is written, the rows are drawn again.
#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "line/event/batch_rows.h"
#include "line/event/event_text.h"
#include "line/event/line_printers.h"
#include "line/event/narration.h"
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
  TerminalPrinter(Colours colours, std::function<TerminalSize()> size)
      : m_colours(colours), m_size(std::move(size)) {}

  ~TerminalPrinter() override { WriteText(stderr, Erased()); }

  void Take(const Event& event) override {
    m_now_ms = event.mono_ms;
    const bool has_printed = Print(m_narration.Tell(event));
    const bool is_news = m_batch ? FollowBatch(event) : Follow(event);
    // Progress comes often; the eye does not need all of it.
    if (has_printed || is_news || m_now_ms - m_drawn_ms >= kRedrawMs) Draw();
  }

  void Tick(std::uint64_t mono_ms) override {
    m_now_ms = mono_ms;
    Draw();
  }

 private:
  // True when a row came, changed or went.
  bool Follow(const Event& event);
  bool FollowBatch(const Event& event);
  // True when there was a line; the rows are then erased.
  bool Print(const std::vector<TextLine>& lines);
  std::vector<TextLine> Rows() const;
  void Draw();
  // What erases the rows.
  std::string Erased();

  Colours m_colours;
  std::function<TerminalSize()> m_size;
  Narration m_narration{true};
  std::optional<ProgressRow> m_row;  // of the one unit
  std::optional<BatchRows> m_batch;
  std::vector<std::size_t> m_drawn;  // columns of each row on the screen
  std::uint64_t m_now_ms = 0, m_drawn_ms = 0;
};

bool TerminalPrinter::Follow(const Event& event) {
  if (const HelloEvent* const hello = std::get_if<HelloEvent>(&event.body)) {
    if (m_narration.Table() == nullptr) return false;
    m_batch.emplace(hello->job->units, event.mono_ms);
    return true;
  }
  if (std::holds_alternative<UnitStartEvent>(event.body)) {
    m_row.emplace(event.where.place, event.where.unit, event.mono_ms);
    return true;
  }
  if (std::holds_alternative<UnitResultEvent>(event.body) ||
      std::holds_alternative<EndEvent>(event.body)) {
    m_row.reset();
    return true;
  }
  if (m_row) m_row->Follow(event);
  return std::holds_alternative<StartEvent>(event.body);
}

bool TerminalPrinter::FollowBatch(const Event& event) {
  // The table has been printed in the place of the rows.
  if (std::holds_alternative<SummaryEvent>(event.body) ||
      std::holds_alternative<EndEvent>(event.body)) {
    m_batch.reset();
    return true;
  }
  return m_batch->Follow(event, *m_narration.Table());
}

bool TerminalPrinter::Print(const std::vector<TextLine>& lines) {
  if (!lines.empty()) WriteText(stderr, Erased());
  for (const TextLine& line : lines) {
    const bool coloured = line.is_result ? m_colours.out : m_colours.err;
    WriteText(line.is_result ? stdout : stderr, (coloured ? Coloured(line) : line.text) + "\n");
  }
  return !lines.empty();
}

std::vector<TextLine> TerminalPrinter::Rows() const {
  TerminalSize size = m_size();
  size.columns = std::max(size.columns, kFreeColumns + 1) - kFreeColumns;
  // With a row in the first line, the last message would never be seen.
  size.lines = std::max<std::size_t>(size.lines, 2) - 1;
  if (m_batch) return m_batch->Texts(size, m_now_ms);
  if (m_row) return {{false, Tone::kPlain, m_row->Text(size.columns, m_now_ms)}};
  return {};
}

void TerminalPrinter::Draw() {
  // In one piece, so that the eye never sees the erased rows.
  std::string text = Erased();
  m_drawn_ms = m_now_ms;
  for (const TextLine& row : Rows()) {
    if (!m_drawn.empty()) text += "\r\n";
    m_drawn.push_back(Columns(row.text));
    text += m_colours.err ? Coloured(row) : row.text;
  }
  if (!text.empty()) WriteText(stderr, text);
}

// A terminal that became narrower has broken the rows into more lines.
std::string TerminalPrinter::Erased() {
  if (m_drawn.empty()) return "";
  const std::size_t columns = std::max<std::size_t>(m_size().columns, 1);
  const bool is_one = m_drawn.size() == 1;
  std::size_t lines = 0;
  for (const std::size_t drawn : std::exchange(m_drawn, {})) {
    lines += std::max<std::size_t>((drawn + columns - 1) / columns, 1);
  }
  std::string text = "\r";
  if (is_one) {
    if (lines > 1) text += "\x1b[" + std::to_string(lines - 1) + "A";
    return text + "\x1b[J";
  }
  // Line by line: when all of the screen is erased at once, some terminals save it in their
  // history, ten times a second.
  text += "\x1b[K";
  while (--lines > 0) {
    text += "\x1b[A\x1b[K";
  }
  return text;
}

}  // namespace

std::unique_ptr<Printer> MakeTerminalPrinter(Colours colours, std::function<TerminalSize()> size) {
  return std::make_unique<TerminalPrinter>(colours, std::move(size));
}

}  // namespace line
