// SPDX-License-Identifier: MIT
//
// What a programming call will do, worked out and checked in full before the first bank is
// erased: a request that cannot be carried out leaves the display as it was.
#ifndef ZVISP_SIMULATOR_DISPLAY_PROGRAM_PLAN_H_
#define ZVISP_SIMULATOR_DISPLAY_PROGRAM_PLAN_H_

#include <cstdint>
#include <vector>

#include "display/display.h"
#include "plugin/zvisp_plugin.h"

namespace simulator {

// With CP_ISPTOOL_ACTION_ISP_COPY, the copy of a bank lies this many banks above it.
inline constexpr std::uint32_t kCopyDistance = kBankCount / 2;

struct BankJob {
  std::uint32_t bank = 0;
  BankBytes bytes;
  bool only_if_different = false;  // a bank that holds these bytes already is left alone
};

// The banks in the order in which they are programmed, each of them once.
using ProgramPlan = std::vector<BankJob>;

// Reads and checks the firmware map alone: the banks of the files, the last bank of a file padded
// with 0xFF. Refuses, in this order: more entries than the map holds, an empty map, a target
// outside the flash, targets that do not ascend, a path that is not ended inside its field, and a
// file that is unreadable, too short, or changes while it is read. Each file is opened once.
Outcome PlanFirmware(const STRUCT_C_STYLE_MAP_FW& map, ProgramPlan& plan);

// PlanFirmware for the record's action, and what the action adds: with 5 the user flag, laid over
// the bank's new bytes, or over what `display` holds where the firmware does not reach; with 6
// only banks that differ; with 7 a copy of each bank kCopyDistance above.
Outcome PlanProgramming(const Display& display,
                        const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING& setting, ProgramPlan& plan);

}  // namespace simulator

#endif  // ZVISP_SIMULATOR_DISPLAY_PROGRAM_PLAN_H_
