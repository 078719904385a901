// SPDX-License-Identifier: MIT
#include "line/event/printer.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "line/event/event_json.h"
#include "line/event/event_text.h"
#include "line/event/line_printers.h"

namespace line {

namespace {

class JsonPrinter : public Printer {
 public:
  void Take(const Event& event) override { WriteText(stdout, ToJsonLine(event)); }
};

bool IsTrouble(const EventBody& body) {
  const auto* const result = std::get_if<UnitResultEvent>(&body);
  if (result != nullptr) return result->outcome != Outcome::kPassed;
  return std::holds_alternative<ErrorEvent>(body);
}

// Errors, and the displays that did not pass: a display in doubt must be named to somebody.
class QuietPrinter : public Printer {
 public:
  void Take(const Event& event) override {
    if (!IsTrouble(event.body)) return;
    for (const TextLine& line : LinesOf(event)) {
      WriteText(stderr, line.text + "\n");
    }
  }
};

bool IsTerminal(int descriptor) {
  // A dumb terminal cannot move its cursor, so rows cannot be redrawn there.
  const char* const kind = std::getenv("TERM");
  return isatty(descriptor) == 1 && (kind == nullptr || std::string(kind) != "dumb");
}

bool WantsColour(const PrinterOptions& options, int descriptor) {
  if (options.color != When::kAuto) return options.color == When::kAlways;
  // By the custom of NO_COLOR an empty variable counts as not set.
  const char* const no_color = std::getenv("NO_COLOR");
  return (no_color == nullptr || *no_color == '\0') && IsTerminal(descriptor);
}

TerminalSize SizeOfTerminal() {
  winsize size = {};
  if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return kUsualSize;
  return {size.ws_col, size.ws_row == 0 ? kUsualSize.lines : size.ws_row};
}

}  // namespace

void WriteText(std::FILE* stream, const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stream);
  std::fflush(stream);
}

std::unique_ptr<Printer> MakePrinter(const PrinterOptions& options) {
  if (options.json) return std::make_unique<JsonPrinter>();
  if (options.quiet) return std::make_unique<QuietPrinter>();
  const Colours colours = {WantsColour(options, STDOUT_FILENO),
                           WantsColour(options, STDERR_FILENO)};
  if (IsTerminal(STDERR_FILENO) && options.progress != When::kNever) {
    return MakeTerminalPrinter(colours, SizeOfTerminal);
  }
  return MakePlainPrinter(colours, options.progress);
}

}  // namespace line
