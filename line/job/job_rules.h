// SPDX-License-Identifier: MIT
//
// What the values of a job must be beyond their types. Each function takes a table of the file and
// what was read from it, and adds what is wrong to `errors`. A key of a wrong type was reported
// before and is passed over.
#ifndef ZVISP_LINE_JOB_JOB_RULES_H_
#define ZVISP_LINE_JOB_JOB_RULES_H_

#include "line/job/job.h"
#include "line/job/job_keys.h"

namespace line {

void CheckPattern(const TomlValue& table, const Job& job, JobErrors& errors);
void CheckLine(const TomlValue& table, const JobLine& line, JobErrors& errors);
void CheckFirmware(const TomlValue& table, JobFirmware& file, JobErrors& errors);
void CheckPlugin(const TomlValue& table, Job& job, JobErrors& errors);
void CheckReadBack(const TomlValue& table, const Job& job, JobErrors& errors);
void CheckHook(const TomlValue& table, JobHook& hook, JobErrors& errors);
void CheckStep(const TomlValue& table, const JobStep& step, JobErrors& errors);
// Of a `read` table; turns the digits in `equals` into bytes.
void CheckRead(const TomlValue& table, JobRead& read, JobErrors& errors);
void CheckPlace(const TomlValue& table, const JobPlace& place, JobErrors& errors);

// All steps and places together.
void CheckNamesOfSteps(const Job& job, JobErrors& errors);
void CheckPlaces(const Job& job, JobErrors& errors);

}  // namespace line

#endif  // ZVISP_LINE_JOB_JOB_RULES_H_
