// SPDX-License-Identifier: MIT
#ifndef ZVISP_LINE_COMMAND_PATHS_H_
#define ZVISP_LINE_COMMAND_PATHS_H_

#include <string>

namespace line {

// A plug-in may change the working directory, so a relative path is made a full one at the start.
// An empty path stays empty.
std::string AbsolutePath(const std::string& path);

// The directory of the plug-ins, ending in "/": the one that --plugins gives, else the program's.
std::string PluginDirectory(const std::string& given);

// The ISP plug-in of such a directory.
std::string IspPluginIn(const std::string& plugin_directory);

}  // namespace line

#endif  // ZVISP_LINE_COMMAND_PATHS_H_
