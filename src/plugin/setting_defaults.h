// SPDX-License-Identifier: MIT
//
// The defaults of the command-setting record's own fields, once for the constructor and for
// plugin/fresh_setting.h.
#ifndef ZVISP_PLUGIN_SETTING_DEFAULTS_H_
#define ZVISP_PLUGIN_SETTING_DEFAULTS_H_

#include "plugin/command_setting.h"

namespace zvisp {

// Sets every scalar field and both texts to their defaults. Leaves the sub-records, the padding,
// enumSWDigitalSignatureMode and enumMergeFwInfoType as the memory was.
void SetScalarDefaults(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING& setting);

}  // namespace zvisp

#endif  // ZVISP_PLUGIN_SETTING_DEFAULTS_H_
