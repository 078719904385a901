// SPDX-License-Identifier: MIT
//
// The table of check-plugin, in words: a line for each check, and what was seen below it.
#ifndef ZVISP_LINE_EVENT_CHECK_TEXT_H_
#define ZVISP_LINE_EVENT_CHECK_TEXT_H_

#include <string>
#include <vector>

#include "line/event/event_text.h"

namespace line {

// "PASS     is a library that loads"; a short text is on the same line, a longer one in lines of at
// most 80 columns below it, unless a word is longer.
std::vector<TextLine> LinesOfCheck(const CheckEvent& check);

// "3 passed, 1 failed"; empty when the summary is of something else.
std::string CountsOfChecks(const SummaryEvent& summary);

}  // namespace line

#endif  // ZVISP_LINE_EVENT_CHECK_TEXT_H_
