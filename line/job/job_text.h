// SPDX-License-Identifier: MIT
//
// Writes a job as the text of its file, with comments for somebody who has never seen one.
#ifndef ZVISP_LINE_JOB_JOB_TEXT_H_
#define ZVISP_LINE_JOB_JOB_TEXT_H_

#include <string>

#include "line/job/job.h"

namespace line {

// A basic string of TOML, in its quotes. REQUIRES: UTF-8.
std::string TomlText(const std::string& text);

// What ReadJobText reads again, for jobs whose steps are words of zvisp. `file` is the name that
// the comments call it.
std::string JobText(const Job& job, const std::string& file);

}  // namespace line

#endif  // ZVISP_LINE_JOB_JOB_TEXT_H_
