// SPDX-License-Identifier: MIT
//
// A plan in words: the table of banks, the files, the picture of the flash, the totals.
#ifndef ZVISP_LINE_EVENT_PLAN_TEXT_H_
#define ZVISP_LINE_EVENT_PLAN_TEXT_H_

#include <string>
#include <vector>

#include "line/event/event.h"

namespace line {

// Without the warnings, which are for standard error. In the picture a letter is a file,
// by the order of the slots, and "." for a bank that is left alone; it shows 256 banks, or 512
// when a target is above 255.
std::vector<std::string> PlanLines(const PlanEvent& plan);

}  // namespace line

#endif  // ZVISP_LINE_EVENT_PLAN_TEXT_H_
