// SPDX-License-Identifier: MIT
//
// The frame around every call that the tool makes: it opens the display, writes the journal, lets
// the faults strike, tells the operator why a call was refused, and lets no exception out.
#ifndef ZVISP_SIMULATOR_DISPLAY_PLUGIN_CALL_H_
#define ZVISP_SIMULATOR_DISPLAY_PLUGIN_CALL_H_

#include "display/commands.h"
#include "display/host.h"

namespace simulator {

// Makes a call on the display that `setting` names. Says "Display NN: why" for a refusal and
// "Display NN (simulated): what" for a call that worked. Returns the code for the tool.
int CallDisplay(const char* name, const Setting* setting, const Host& host,
                Command command) noexcept;

// GetKeyFromFlash, the one call with a second argument.
int CallReadVerifyKey(const Setting* setting, unsigned char* key, const Host& host) noexcept;

}  // namespace simulator

#endif  // ZVISP_SIMULATOR_DISPLAY_PLUGIN_CALL_H_
