// SPDX-License-Identifier: MIT
//
// The functions of the table. Each runs in a process of its own, calls the plug-in, and says what
// it found.
#ifndef ZVISP_LINE_PLUGIN_CHECK_CHECKS_H_
#define ZVISP_LINE_PLUGIN_CHECK_CHECKS_H_

#include "line/plugin_check/check.h"

namespace line::checks {

// load_checks.cpp: of the library, which is not called but for SetUIFunction.
Finding Loads(const CheckContext& context);
Finding IspExports(const CheckContext& context);
Finding SignExports(const CheckContext& context);
Finding OptionalExports(const CheckContext& context);
Finding SilentLoad(const CheckContext& context);
Finding LoadSurroundings(const CheckContext& context);
Finding Unloads(const CheckContext& context);

// isp_checks.cpp: of the calls that the ISP plug-in takes.
Finding NullCallbacks(const CheckContext& context);
Finding SetCallbacks(const CheckContext& context);
Finding EmptyDump(const CheckContext& context);
Finding RecordKept(const CheckContext& context);
Finding RecordBounds(const CheckContext& context);
Finding CallSurroundings(const CheckContext& context);

// refusal_checks.cpp: of records that IspFlash must refuse.
Finding UnknownAction(const CheckContext& context);
Finding EmptyMap(const CheckContext& context);
Finding FullMap(const CheckContext& context);
Finding TooManyEntries(const CheckContext& context);
Finding TargetOrder(const CheckContext& context);
Finding EndlessPath(const CheckContext& context);
Finding MissingFile(const CheckContext& context);
Finding ShortFile(const CheckContext& context);

// sign_checks.cpp: of the calls that the signature plug-in takes.
Finding SignZeros(const CheckContext& context);
Finding SignMissingFile(const CheckContext& context);
Finding SignEndlessPath(const CheckContext& context);
Finding SignRecord(const CheckContext& context);
Finding SignSurroundings(const CheckContext& context);

}  // namespace line::checks

#endif  // ZVISP_LINE_PLUGIN_CHECK_CHECKS_H_
