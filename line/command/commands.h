// SPDX-License-Identifier: MIT
//
// The commands, one thin source each: they report by events and return the exit status.
#ifndef ZVISP_LINE_COMMAND_COMMANDS_H_
#define ZVISP_LINE_COMMAND_COMMANDS_H_

#include "line/command/options.h"
#include "line/event/exit_status.h"
#include "line/event/session.h"

namespace line {

// `session` already has the printer that the options ask for. The caller sends the `end` event.
ExitStatus RunPlan(const Options& options, Session& session);
// run and readback.
ExitStatus RunUnit(const Options& options, Session& session);
ExitStatus RunBatch(const Options& options, Session& session);
ExitStatus RunJobInit(const Options& options, Session& session);
ExitStatus RunCheckPlugin(const Options& options, Session& session);
ExitStatus RunJournalShow(const Options& options, Session& session);
ExitStatus RunJournalDoctor(const Options& options, Session& session);
ExitStatus RunJournalResolve(const Options& options, Session& session);

// Judges the words, runs the command, and prints what it reports.
int RunCommandLine(const std::vector<std::string>& arguments);

}  // namespace line

#endif  // ZVISP_LINE_COMMAND_COMMANDS_H_
