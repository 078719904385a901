// SPDX-License-Identifier: MIT
//
// The two printers for people. Tests make them without a terminal.
#ifndef ZVISP_LINE_EVENT_LINE_PRINTERS_H_
#define ZVISP_LINE_EVENT_LINE_PRINTERS_H_

#include <cstdio>
#include <functional>
#include <memory>
#include <string>

#include "line/event/batch_rows.h"
#include "line/event/printer.h"

namespace line {

inline constexpr TerminalSize kUsualSize = {80, 24};

struct Colours {
  bool out = false;  // on standard output
  bool err = false;  // on standard error
};

// `size` gives the terminal's size at this moment.
std::unique_ptr<Printer> MakeTerminalPrinter(Colours colours, std::function<TerminalSize()> size);

// Of progress: a line every ten seconds, every line for kAlways, none for kNever.
std::unique_ptr<Printer> MakePlainPrinter(Colours colours, When progress);

// Writes and flushes.
void WriteText(std::FILE* stream, const std::string& text);

}  // namespace line

#endif  // ZVISP_LINE_EVENT_LINE_PRINTERS_H_
