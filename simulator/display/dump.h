// SPDX-License-Identifier: MIT
//
// The dump of a display's flash into a file of the caller.
#ifndef ZVISP_SIMULATOR_DISPLAY_DUMP_H_
#define ZVISP_SIMULATOR_DISPLAY_DUMP_H_

#include "display/display.h"
#include "display/host.h"
#include "plugin/zvisp_plugin.h"

namespace simulator {

// Writes the range of stDumpFlash to its file, and reports the progress. The file is only made
// when the range lies inside the flash. A file of a simulated display, by whatever name, is refused
// and stays as it is.
Outcome DumpToFile(Display& display, const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING& setting,
                   const Host& host);

}  // namespace simulator

#endif  // ZVISP_SIMULATOR_DISPLAY_DUMP_H_
