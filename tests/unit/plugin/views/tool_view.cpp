// SPDX-License-Identifier: MIT
#include "plugin/command_setting.h"
#include "plugin/digital_sign_args.h"

#ifndef ZVISP_RECORD_OPERATIONS
#error "this is not the view of the tool"
#endif

#include "unit/plugin/views/plugin_views.h"
#include "unit/plugin/views/record_layout.inc"

const size_t* LayoutInTheTool(size_t* count) {
  *count = sizeof kLayout / sizeof kLayout[0];
  return kLayout;
}
