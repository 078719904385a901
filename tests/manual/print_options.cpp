// SPDX-License-Identifier: MIT
//
// Prints the tool's own option table, one option a line: its name, and "value" or "alone".
#include <cstdio>

#include "cmdline/option_table.h"

using namespace zvisp;

int main() {
  for (const OptionRow& row : kOptions) {
    std::printf("%s %s\n", row.name, row.argument == kRequiredArgument ? "value" : "alone");
  }
  return 0;
}
