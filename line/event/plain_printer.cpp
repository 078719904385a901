// SPDX-License-Identifier: MIT
#include <cstdint>
#include <map>
#include <utility>

#include "line/event/event_text.h"
#include "line/event/line_printers.h"
#include "line/event/narration.h"

namespace line {

namespace {

// Often enough to show that a run is alive, and seldom enough for a log file.
constexpr std::uint64_t kNowAndThenMs = 10000;

class PlainPrinter : public Printer {
 public:
  PlainPrinter(Colours colours, When progress) : m_colours(colours), m_progress(progress) {}

  void Take(const Event& event) override {
    for (const TextLine& line : m_narration.Tell(event)) {
      const bool coloured = line.is_result ? m_colours.out : m_colours.err;
      WriteText(line.is_result ? stdout : stderr, (coloured ? Coloured(line) : line.text) + "\n");
    }
    // A step that is shorter than the interval gets no line of progress.
    if (std::holds_alternative<StartEvent>(event.body)) m_last_ms[event.where.run] = event.mono_ms;
    if (std::holds_alternative<UnitResultEvent>(event.body)) m_last_ms.erase(event.where.run);
    if (std::holds_alternative<ProgressEvent>(event.body) && IsWorthALine(event)) {
      WriteText(stderr, ProgressLine(event) + "\n");
    }
  }

 private:
  bool IsWorthALine(const Event& event) {
    if (m_progress != When::kAuto) return m_progress == When::kAlways;
    std::uint64_t& last = m_last_ms.try_emplace(event.where.run, event.mono_ms).first->second;
    if (event.mono_ms - last < kNowAndThenMs) return false;
    last = event.mono_ms;
    return true;
  }

  Colours m_colours;
  When m_progress;
  Narration m_narration{false};
  std::map<std::string, std::uint64_t> m_last_ms;  // by run: of its last line, or its start
};

}  // namespace

std::unique_ptr<Printer> MakePlainPrinter(Colours colours, When progress) {
  return std::make_unique<PlainPrinter>(colours, progress);
}

}  // namespace line
