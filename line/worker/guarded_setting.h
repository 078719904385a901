// SPDX-License-Identifier: MIT
//
// The record of a run, at the end of its pages: a plug-in that writes past the record hits a page
// that nobody may touch and ends its worker, instead of damaging it unseen.
#ifndef ZVISP_LINE_WORKER_GUARDED_SETTING_H_
#define ZVISP_LINE_WORKER_GUARDED_SETTING_H_

#include "plugin/command_setting.h"

namespace line {

// Zeroed memory for a record with the guard after its last byte; null when memory is exhausted. It
// stays until the process ends.
STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* MakeGuardedSetting();

}  // namespace line

#endif  // ZVISP_LINE_WORKER_GUARDED_SETTING_H_
