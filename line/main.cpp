// SPDX-License-Identifier: MIT
//
// zvisp-line: the words of the command line go to the commands, to a worker, or to a check.
#include <csignal>
#include <cstring>
#include <string>
#include <vector>

#include "app/standard_streams.h"
#include "line/command/commands.h"
#include "line/plugin_check/check_process.h"
#include "line/worker/worker.h"

using namespace zvisp;

int main(int argc, char** argv) {
  PrepareStandardStreams();
  // A reader that leaves must not end a run in the middle.
  std::signal(SIGPIPE, SIG_IGN);
  // Nor the limit of a file's size: the write fails, and the status says so.
  std::signal(SIGXFSZ, SIG_IGN);
  if (argc > 2 && std::strcmp(argv[1], line::kWorkerCommand) == 0) {
    return line::RunWorker(argv[2]);
  }
  if (argc > 2 && std::strcmp(argv[1], line::kCheckCommand) == 0) line::RunCheckProcess();
  return line::RunCommandLine({argv + (argc > 0 ? 1 : 0), argv + argc});
}
