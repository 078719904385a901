// SPDX-License-Identifier: MIT
#ifndef ZVISP_LINE_JOB_JOB_ERROR_H_
#define ZVISP_LINE_JOB_JOB_ERROR_H_

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "line/job/job.h"

namespace line {

// What is wrong at one place of a job file, or with what a job is run for: a name for scripts, and
// a sentence.
struct JobError {
  std::string id, text;
  JobPosition position;  // zeros when it is not about the file
};

using JobErrors = std::vector<JobError>;

// Into the order of the file.
inline void SortByPosition(JobErrors& errors) {
  std::stable_sort(errors.begin(), errors.end(), [](const JobError& left, const JobError& right) {
    return std::pair(left.position.line, left.position.column) <
           std::pair(right.position.line, right.position.column);
  });
}

}  // namespace line

#endif  // ZVISP_LINE_JOB_JOB_ERROR_H_
