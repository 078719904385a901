// SPDX-License-Identifier: MIT
//
// Carries out a programming plan, bank by bank.
#ifndef ZVISP_SIMULATOR_DISPLAY_PROGRAMMER_H_
#define ZVISP_SIMULATOR_DISPLAY_PROGRAMMER_H_

#include <cstddef>

#include "display/display.h"
#include "display/host.h"
#include "display/program_plan.h"

namespace simulator {

// Erases, writes and verifies each bank of the plan before it continues with the next, so that a
// run that ends early leaves the later banks as they were. Reports the progress after each of the
// three. Stops at the first refusal. `programmed` is how many banks were programmed, without those
// that were skipped.
Outcome RunPlan(Display& display, const ProgramPlan& plan, const Host& host,
                std::size_t& programmed);

}  // namespace simulator

#endif  // ZVISP_SIMULATOR_DISPLAY_PROGRAMMER_H_
