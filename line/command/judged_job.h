// SPDX-License-Identifier: MIT
//
// All words of a job, for every unit, as zvisp judges them; and everything that is wrong with them.
#ifndef ZVISP_LINE_COMMAND_JUDGED_JOB_H_
#define ZVISP_LINE_COMMAND_JUDGED_JOB_H_

#include <string>
#include <vector>

#include "line/event/exit_status.h"
#include "line/event/session.h"
#include "line/job/job.h"
#include "line/job/job_error.h"
#include "line/job/judged_words.h"
#include "line/job/lock_down.h"
#include "line/job/option_scan.h"
#include "line/job/serials.h"
#include "line/supervise/read_back.h"

namespace line {

// A step for one unit. Of a `read`, the words are those of a dump of its bytes.
struct JudgedStep {
  OptionScan scan;
  JudgedWords words;
};

struct JudgedUnit {
  UnitAtPlace at;
  std::vector<JudgedStep> steps;  // those of the job
};

class JudgedJob {
 public:
  // Errors begin with `file`, the job's path as the operator knows it. All three must outlive
  // the object.
  JudgedJob(const Job& job, const std::string& file, Session& session)
      : m_job(job), m_file(file), m_session(session) {}

  // Reports mistakes of the job that are known already.
  void Report(const JobErrors& errors);

  // Judges all steps of all units in one worker, and reports every refusal. kExitPassed when there
  // is none. REQUIRES: the working directory is the job's.
  ExitStatus Judge(const std::vector<UnitAtPlace>& units);

  // Every file that the steps use. To be asked before private copies are in the records.
  UsedFiles Files() const;

  // Emits what each step would write: once when all units write the same, else for each of them.
  // Hashes a set of files once when it is the same for all. kExitRefused when a file cannot be
  // read, which is reported.
  ExitStatus EmitPlans();

  std::vector<JudgedUnit>& Units() { return m_units; }
  const std::vector<AddressRange>& Ignored() const { return m_ignored; }

 private:
  std::vector<Refusal> RefusalsOf(const JobStep& step, const JudgedStep& judged) const;
  void ReportOf(std::size_t step);
  ErrorEvent At(JobPosition position, const std::string& id, const std::string& text) const;
  Where WhereOf(std::size_t step, const JudgedUnit* unit) const;
  bool EmitPlansOf(std::size_t step, std::string& error);

  const Job& m_job;
  const std::string& m_file;
  Session& m_session;
  std::vector<AddressRange> m_ignored;
  std::vector<JudgedUnit> m_units;
  bool m_is_approved = true;
};

}  // namespace line

#endif  // ZVISP_LINE_COMMAND_JUDGED_JOB_H_
