// SPDX-License-Identifier: MIT
//
// Prints every key that the reader of jobs knows, one a line, and then each mistake of the job on
// standard input: what compare_job_keys.py looks at.
#include <cstdio>
#include <iostream>
#include <iterator>

#include "line/job/job_file.h"

int main() {
  for (const std::string& name : line::JobKeyNames())
    std::puts(name.c_str());
  const std::string job{std::istreambuf_iterator<char>(std::cin), {}};
  for (const line::JobError& error : line::ReadJobText(job).errors) {
    std::printf("line %u: %s\n", static_cast<unsigned>(error.position.line), error.text.c_str());
  }
  return 0;
}
