// SPDX-License-Identifier: MIT
#include "line/event/printer.h"

#include <cstdio>

#include "line/event/event_json.h"

namespace line {

namespace {

class JsonPrinter : public Printer {
 public:
  void Take(const Event& event) override {
    const std::string line = ToJsonLine(event);
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fflush(stdout);
  }
};

// Errors only.
class QuietPrinter : public Printer {
 public:
  void Take(const Event& event) override {
    const ErrorEvent* const error = std::get_if<ErrorEvent>(&event.body);
    if (error == nullptr) return;
    std::fprintf(stderr, "zvisp-line: %s\n", error->text.c_str());
    std::fflush(stderr);
  }
};

}  // namespace

std::unique_ptr<Printer> MakePrinter(const PrinterOptions& options) {
  if (options.json) return std::make_unique<JsonPrinter>();
  return std::make_unique<QuietPrinter>();
}

}  // namespace line
