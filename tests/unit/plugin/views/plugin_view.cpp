// SPDX-License-Identifier: MIT
#include "plugin/zvisp_plugin.h"

#ifdef ZVISP_RECORD_OPERATIONS
#error "this is not the view of a plug-in"
#endif

#include "unit/plugin/views/plugin_views.h"
#include "unit/plugin/views/record_layout.inc"

const size_t* LayoutInCxxPlugin(size_t* count) {
  *count = sizeof kLayout / sizeof kLayout[0];
  return kLayout;
}

int WideToUtf8InCxx(const wchar_t* wide, size_t wide_capacity, char* utf8, size_t utf8_capacity) {
  return ZvWideToUtf8(wide, wide_capacity, utf8, utf8_capacity);
}
