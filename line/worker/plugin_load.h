// SPDX-License-Identifier: MIT
//
// Why a plug-in is refused, by name: zvisp itself gives a code, and says nothing of a missing
// export. Here a library is opened as zvisp opens it, and every name is looked up.
#ifndef ZVISP_LINE_WORKER_PLUGIN_LOAD_H_
#define ZVISP_LINE_WORKER_PLUGIN_LOAD_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "line/worker/library_file.h"
#include "plugin/export.h"

namespace line {

// Which exports a library has. Both lists are in the order of the plug-in interface.
struct ExportsFound {
  std::vector<std::string> present, absent;
};

// Of the names that the interface needs so.
ExportsFound FindExports(void* library, const std::vector<zvisp::ExportName>& names,
                         zvisp::ExportNeed need);

// Why the loader refused a file that is a library for this machine; `reason` is its text.
LoadProblem ExplainLoaderReason(const std::string& path, const std::string& reason);

// What is wrong with the calls of a library that has none of `absent`.
LoadProblem ExplainMissing(const std::vector<std::string>& absent);

// For a result of zvisp by which a plug-in, or its call for the action, is missing: what is
// missing, why, and what to do, without a full stop; empty for every other result. Opens the
// plug-in, which runs what it does when it is loaded, but calls nothing of it.
std::string ExplainNotLoaded(std::uint32_t code, std::uint32_t action,
                             const std::string& plugin_directory);

}  // namespace line

#endif  // ZVISP_LINE_WORKER_PLUGIN_LOAD_H_
