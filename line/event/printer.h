// SPDX-License-Identifier: MIT
//
// What the operator sees of the events. Three ways to print them, one sink each:
//   JSON       every event as a line on standard output, and nothing else anywhere
//   terminal   rows on standard error that are redrawn in place, results on standard output
//   plain      lines with the place in front, without an escape byte or a carriage return
// Every event is flushed as it is written.
#ifndef ZVISP_LINE_EVENT_PRINTER_H_
#define ZVISP_LINE_EVENT_PRINTER_H_

#include <cstdint>
#include <memory>

#include "line/event/event.h"

namespace line {

enum class When { kAuto, kAlways, kNever };

struct PrinterOptions {
  bool json = false;
  bool quiet = false;           // errors and units that did not pass, on standard error
  When progress = When::kAuto;  // kAuto: rows on a terminal, now and then a line elsewhere
  When color = When::kAuto;     // kAuto: on a terminal, unless NO_COLOR is set
};

class Printer : public EventSink {};

// Never null.
std::unique_ptr<Printer> MakePrinter(const PrinterOptions& options);

}  // namespace line

#endif  // ZVISP_LINE_EVENT_PRINTER_H_
