// SPDX-License-Identifier: MIT
//
// Prints every key that the reader of jobs knows, one a line: what compare_job_keys.py compares.
#include <cstdio>

#include "line/job/job_file.h"

int main() {
  for (const std::string& name : line::JobKeyNames())
    std::puts(name.c_str());
  return 0;
}
