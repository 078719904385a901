// SPDX-License-Identifier: MIT
//
// The layout of the records in each view of their headers: as the tool and hosts have it, as a
// plug-in in C++, and as one in C. Sizes, alignments and offsets, in the order of
// record_layout.inc; `count` gets their number. Next to it, the conversion of paths in both
// languages of plug-ins.
#ifndef ZVISP_TESTS_UNIT_PLUGIN_VIEWS_PLUGIN_VIEWS_H_
#define ZVISP_TESTS_UNIT_PLUGIN_VIEWS_PLUGIN_VIEWS_H_

#include <stddef.h>
#include <wchar.h>

#ifdef __cplusplus
extern "C" {
#endif
const size_t* LayoutInTheTool(size_t* count);
const size_t* LayoutInCxxPlugin(size_t* count);
const size_t* LayoutInCPlugin(size_t* count);

// ZvWideToUtf8 as each language compiles it.
int WideToUtf8InC(const wchar_t* wide, size_t wide_capacity, char* utf8, size_t utf8_capacity);
int WideToUtf8InCxx(const wchar_t* wide, size_t wide_capacity, char* utf8, size_t utf8_capacity);
#ifdef __cplusplus
}
#endif

#endif  // ZVISP_TESTS_UNIT_PLUGIN_VIEWS_PLUGIN_VIEWS_H_
