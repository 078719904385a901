// SPDX-License-Identifier: MIT
//
// Reads a job from its file (TOML).
#ifndef ZVISP_LINE_JOB_JOB_FILE_H_
#define ZVISP_LINE_JOB_JOB_FILE_H_

#include <string>
#include <string_view>
#include <vector>

#include "line/job/job.h"
#include "line/job/job_error.h"

namespace line {

struct JobReading {
  Job job;           // only meaningful without errors
  JobErrors errors;  // everything that is wrong, in the order of the file
};

// The file's own facts in the job are filled in: path, directory, hash.
JobReading ReadJobFile(const std::string& path);

// The same of a text, without the facts of a file.
JobReading ReadJobText(std::string_view text);

// Every key that a job may have, as "line.stagger_ms" or "step.read.addr"; a file of [firmware] is
// called FILE: "firmware.FILE.bytes".
std::vector<std::string> JobKeyNames();

}  // namespace line

#endif  // ZVISP_LINE_JOB_JOB_FILE_H_
