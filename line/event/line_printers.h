// SPDX-License-Identifier: MIT
//
// The two printers for people. Tests make them without a terminal.
#ifndef ZVISP_LINE_EVENT_LINE_PRINTERS_H_
#define ZVISP_LINE_EVENT_LINE_PRINTERS_H_

#include <cstddef>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>

#include "line/event/printer.h"

namespace line {

inline constexpr std::size_t kUsualColumns = 80;

struct Colours {
  bool out = false;  // on standard output
  bool err = false;  // on standard error
};

// `columns` gives the terminal's width at this moment.
std::unique_ptr<Printer> MakeTerminalPrinter(Colours colours, std::function<std::size_t()> columns);

// Of progress: a line every ten seconds, every line for kAlways, none for kNever.
std::unique_ptr<Printer> MakePlainPrinter(Colours colours, When progress);

// Writes and flushes.
void WriteText(std::FILE* stream, const std::string& text);

}  // namespace line

#endif  // ZVISP_LINE_EVENT_LINE_PRINTERS_H_
