// SPDX-License-Identifier: MIT
//
// New command-setting records on the heap, made without touching the bank entries that they do not
// use.
//
// The system hands out fresh memory as zeros and makes a page of it real when it is first touched.
// The 256 bank entries are 66 pages, of which a run needs one or two; to touch them all would take
// a tenth of a run's start. Only memory that is known to be zero may keep its unused entries
// untouched, so both functions allocate it themselves: neither can be used on a record that has
// been in use. For such a record there is CopyBytes (plugin/zeroed.h).
#ifndef ZVISP_PLUGIN_FRESH_SETTING_H_
#define ZVISP_PLUGIN_FRESH_SETTING_H_

#include "plugin/command_setting.h"
#include "plugin/zeroed.h"

namespace zvisp {

// A record with the bytes that the constructor gives over zeroed memory. The caller owns it; null
// when memory is exhausted.
ZeroedPtr<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING> MakeFreshSetting();

// A record with the bytes of `from`, but its bank entries from ulCount on are zero. The caller owns
// it; null when memory is exhausted.
//
// REQUIRES, for a copy of every byte: `from` was made here and never had more bank entries than
// now. Entries above ulCount are not copied.
ZeroedPtr<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING> MakeFreshCopy(
    const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING& from);

}  // namespace zvisp

#endif  // ZVISP_PLUGIN_FRESH_SETTING_H_
