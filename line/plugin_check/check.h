// SPDX-License-Identifier: MIT
//
// A check of a plug-in: one rule of plugin/zvisp_plugin.h, held against the library in a process of
// its own. What a plug-in does there ends that process and nothing else.
#ifndef ZVISP_LINE_PLUGIN_CHECK_CHECK_H_
#define ZVISP_LINE_PLUGIN_CHECK_CHECK_H_

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "line/event/event.h"

namespace line {

// What a check found; `text` says what was seen and what to do.
struct Finding {
  CheckOutcome outcome = CheckOutcome::kPassed;
  std::string text = {};
};

inline Finding Passed(std::string text = "") {
  return {CheckOutcome::kPassed, std::move(text)};
}
inline Finding Warned(std::string text) {
  return {CheckOutcome::kWarning, std::move(text)};
}
inline Finding Failed(std::string text) {
  return {CheckOutcome::kFailed, std::move(text)};
}
// Of a library that the check before could load.
inline Finding NotLoaded() {
  return Failed("It did not load as it did before: look for what changes between two loads.");
}

// What a check works with, in its own process.
struct CheckContext {
  std::string file;       // of the plug-in, an absolute path
  std::string directory;  // for files of the check's own, writable by this user alone
  bool with_device = false;
  // To be called before every call of the plug-in: says to the parent what the call is, which is
  // all that it knows when the call does not return.
  std::function<void(const std::string& call)> announce;
};

enum class PluginKind { kAny, kIsp, kSign };

// What a check needs before it makes sense.
enum class Needs {
  kNothing,  // runs first: whether the library loads at all
  kLoading,  // the library loads
  kExports,  // it also exports what zvisp looks up
  kDevice,   // and a faulty plug-in might write to a display: --with-device
  kReturns,  // it has what zvisp looks up, and the calls of the checks before return
};

struct CheckRow {
  const char* id;  // for scripts: never change
  PluginKind kind;
  Needs needs;
  Finding (*run)(const CheckContext& context);
  const char* title;  // what a good plug-in does
};

// Every check, in the order in which they run. The first one is that which needs nothing.
const std::vector<CheckRow>& AllChecks();

// Null when there is none.
const CheckRow* FindCheck(const std::string& id);

}  // namespace line

#endif  // ZVISP_LINE_PLUGIN_CHECK_CHECK_H_
