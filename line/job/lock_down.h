// SPDX-License-Identifier: MIT
//
// Holds the files that a job programs, and the plug-in and the hooks that it runs, against what the
// job says of them. A file that the job does not list must not be used.
#ifndef ZVISP_LINE_JOB_LOCK_DOWN_H_
#define ZVISP_LINE_JOB_LOCK_DOWN_H_

#include <functional>
#include <map>
#include <string>

#include "line/job/job.h"
#include "line/job/job_error.h"

namespace line {

// Files that the steps use, by their one name (judged_files.h), and where the job's first step is
// that uses each.
using UsedFiles = std::map<std::string, JobPosition>;

struct LockDown {
  JobErrors errors, warnings;                 // in the order of the file
  std::map<std::string, std::string> hashes;  // of the used files, by their one name
};

// `path_of` gives, for the one name of a used file, the path whose bytes count: a private copy, or
// the file itself. Each used file is hashed once. REQUIRES: the working directory is the job's.
LockDown CheckLockDown(const Job& job, const UsedFiles& used,
                       const std::function<std::string(const std::string&)>& path_of);

// Why the plug-in in this file is not the job's; nothing when it is, or the job takes any.
JobErrors CheckPluginFile(const Job& job, const std::string& path);

// Hooks of the job that cannot be started as it is now. A program without a "/" is looked for in
// PATH when it is started, and is not judged. REQUIRES: the working directory is the job's.
JobErrors CheckHookPrograms(const Job& job);

}  // namespace line

#endif  // ZVISP_LINE_JOB_LOCK_DOWN_H_
