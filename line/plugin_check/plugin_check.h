// SPDX-License-Identifier: MIT
//
// All checks of a plug-in, one after another.
#ifndef ZVISP_LINE_PLUGIN_CHECK_PLUGIN_CHECK_H_
#define ZVISP_LINE_PLUGIN_CHECK_PLUGIN_CHECK_H_

#include <cstdint>
#include <functional>
#include <string>

#include "line/event/event.h"

namespace line {

struct PluginCheckOptions {
  std::string file;  // an absolute path
  bool with_device = false;
  std::uint64_t timeout_ms = 0;  // of each check; 0: without a limit
};

// How the checks ended.
struct PluginCheckEnd {
  bool is_complete = false;     // every row was reported
  int stop_signal = 0;          // that kept further checks from running
  std::string error_id, error;  // a sentence, when the checks could not be run
  SummaryEvent summary;
};

// `report` gets each row as soon as it is known. A plug-in that has exports of one kind only gets
// the rows of that kind; one without any is taken for an ISP plug-in.
PluginCheckEnd CheckPlugin(const PluginCheckOptions& options,
                           const std::function<void(const CheckEvent& row)>& report);

}  // namespace line

#endif  // ZVISP_LINE_PLUGIN_CHECK_PLUGIN_CHECK_H_
