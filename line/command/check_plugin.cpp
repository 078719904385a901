// SPDX-License-Identifier: MIT
//
// check-plugin: holds a plug-in against the rules of its header.
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "line/command/commands.h"
#include "line/command/paths.h"
#include "line/command/units_status.h"
#include "line/event/screen_text.h"
#include "line/plugin_check/plugin_check.h"

namespace line {

namespace {

constexpr double kUsualSeconds = 10;

ExitStatus Refuse(Session& session, std::string id, std::string text) {
  session.Emit({}, ErrorEvent{std::move(id), std::move(text), "", {}, {}});
  return kExitUnavailable;
}

// Empty when the file can be read.
std::string WhyUnreadable(const std::string& file) {
  struct stat facts = {};
  std::string reason;
  if (stat(file.c_str(), &facts) != 0 || access(file.c_str(), R_OK) != 0) {
    reason = std::strerror(errno);
  } else if (!S_ISREG(facts.st_mode)) {
    reason = "not an ordinary file";
  }
  if (reason.empty()) return "";
  return "The plug-in " + CleanText(file) + " cannot be read: " + reason +
         "; give the path of its file.";
}

ExitStatus StatusOf(const PluginCheckEnd& end) {
  for (const auto& [outcome, count] : end.summary.checks) {
    if (outcome == CheckOutcome::kFailed) return kExitFailed;
  }
  return kExitPassed;
}

}  // namespace

ExitStatus RunCheckPlugin(const Options& options, Session& session) {
  // As in zvisp: a plug-in is code that its caller may have written.
  if (getuid() != geteuid()) {
    return Refuse(session, "set-uid",
                  "Plug-ins are not loaded into a set-uid program: remove the set-uid bit of the "
                  "executable.");
  }
  const std::string unreadable = WhyUnreadable(options.plugin_file);
  if (!unreadable.empty()) return Refuse(session, "file", unreadable);
  PluginCheckOptions wanted;
  // By a bare name, the loader would look in its own directories.
  wanted.file = AbsolutePath(options.plugin_file);
  wanted.with_device = options.with_device;
  wanted.timeout_ms = static_cast<std::uint64_t>(options.timeout_s.value_or(kUsualSeconds) * 1000);
  const PluginCheckEnd end =
      CheckPlugin(wanted, [&session](const CheckEvent& row) { session.Emit({}, EventBody(row)); });
  if (end.stop_signal != 0) return StatusOfSignal(end.stop_signal);
  if (!end.is_complete) return Refuse(session, end.error_id, end.error);
  session.Emit({}, end.summary);
  return StatusOf(end);
}

}  // namespace line
