// SPDX-License-Identifier: MIT
#include <cstdio>
#include <memory>

#include "line/command/commands.h"

namespace line {

namespace {

struct CommandRow {
  Command command;
  ExitStatus (*run)(const Options& options, Session& session);
};

// clang-format off
constexpr CommandRow kCommands[] = {
  // command                 run
  {Command::kPlan,           RunPlan},
  {Command::kRun,            RunUnit},
  {Command::kReadback,       RunUnit},
  {Command::kBatch,          RunBatch},
  {Command::kJobInit,        RunJobInit},
  {Command::kCheckPlugin,    RunCheckPlugin},
  {Command::kJournalShow,    RunJournalShow},
  {Command::kJournalDoctor,  RunJournalDoctor},
  {Command::kJournalResolve, RunJournalResolve},
};
// clang-format on

ExitStatus Dispatch(const Options& options, Session& session) {
  for (const CommandRow& row : kCommands) {
    if (row.command == options.command) return row.run(options, session);
  }
  // Never reached: every command has a row.
  return kExitRefused;
}

ExitStatus Refuse(const std::string& text, Session& session) {
  session.Emit({}, ErrorEvent{"command-line", text, "", {}, {}});
  return kExitRefused;
}

}  // namespace

int RunCommandLine(const std::vector<std::string>& arguments) {
  const ParsedOptions parsed = ParseOptions(arguments);
  if (parsed.kind == ParsedOptions::Kind::kText) {
    std::fputs(parsed.text.c_str(), stdout);
    return kExitPassed;
  }
  const Options& options = parsed.options;
  // Of a refused command line as well: its error is an event like all others.
  const std::unique_ptr<Printer> printer =
      MakePrinter({options.json, options.quiet, options.progress, options.color});
  Session session;
  session.Add(*printer);
  const ExitStatus status = parsed.kind == ParsedOptions::Kind::kRefused
                                ? Refuse(parsed.text, session)
                                : Dispatch(options, session);
  // The statuses of signals are the highest ones.
  const bool interrupted = status >= kExitHangUp;
  session.Emit({}, EndEvent{status, interrupted});
  return status;
}

}  // namespace line
