// SPDX-License-Identifier: MIT
//
// zvisp-line: the words of the command line go to the commands.
#include <string>
#include <vector>

#include "app/standard_streams.h"
#include "line/command/commands.h"

int main(int argc, char** argv) {
  PrepareStandardStreams();
  return line::RunCommandLine({argv + (argc > 0 ? 1 : 0), argv + argc});
}
