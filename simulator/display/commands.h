// SPDX-License-Identifier: MIT
//
// What each call of the plug-in does on an opened display. The text of an outcome does not name the
// display; the caller adds that.
#ifndef ZVISP_SIMULATOR_DISPLAY_COMMANDS_H_
#define ZVISP_SIMULATOR_DISPLAY_COMMANDS_H_

#include "display/display.h"
#include "display/host.h"
#include "plugin/zvisp_plugin.h"

namespace simulator {

using Setting = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;
using Command = Outcome (*)(Display&, const Setting&, const Host&);

// Programs the firmware map; actions 4 to 7 and 17, any other is refused.
Outcome ProgramFlash(Display& display, const Setting& setting, const Host& host);

// Stores a version in the display's state, chosen by enumVersionLocationType: 3 the bytes of the
// version text in flash, in hexadecimal; 4 and 6 the CRC-32 of the firmware map's banks; any other
// the version that the display reports of itself. Refuses one that would be longer than
// kRecordedVersionLimit.
Outcome RecordVersion(Display& display, const Setting& setting, const Host& host);

// Copies the verify key stored in the display into `key`, kDeviceKeyCapacity bytes, and fills the
// rest with zeros.
Outcome ReadVerifyKey(Display& display, unsigned char* key);

// Says the display's user-defined information.
Outcome SayUserInfo(Display& display, const Setting& setting, const Host& host);

// Programs the e-DP EEPROM, which raises its version by one, or says its version; by
// enumEdpIspMode, any other value is refused.
Outcome ProgramEeprom(Display& display, const Setting& setting, const Host& host);

// Enters ISP mode, which lasts until the MCU is reset.
Outcome EnterIspMode(Display& display, const Setting& setting, const Host& host);
Outcome ResetMcu(Display& display, const Setting& setting, const Host& host);

// The outcome's code is the scaler type.
Outcome ReadScalerType(Display& display, const Setting& setting, const Host& host);

}  // namespace simulator

#endif  // ZVISP_SIMULATOR_DISPLAY_COMMANDS_H_
