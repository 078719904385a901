// SPDX-License-Identifier: MIT
//
// Who runs what, for the start of what a command reports.
#ifndef ZVISP_LINE_COMMAND_HELLO_H_
#define ZVISP_LINE_COMMAND_HELLO_H_

#include <string>

#include "line/event/event.h"

namespace line {

// "1.0.9".
std::string ToolVersion();

// With the path and the hash of the ISP plug-in in `plugin_directory`, which ends in "/"; without,
// when it cannot be read.
HelloEvent MakeHello(const std::string& plugin_directory);

}  // namespace line

#endif  // ZVISP_LINE_COMMAND_HELLO_H_
