// SPDX-License-Identifier: MIT
#ifndef ZVISP_LINE_JOB_STEP_NAME_H_
#define ZVISP_LINE_JOB_STEP_NAME_H_

#include <cstdint>
#include <string>

namespace line {

// How events name the step that a single run is: "program" for the actions that program firmware,
// else the action's option without its dashes.
std::string StepNameOf(std::uint32_t enumActionType);

}  // namespace line

#endif  // ZVISP_LINE_JOB_STEP_NAME_H_
