// SPDX-License-Identifier: MIT
//
// From a judged job to what the engine runs.
#ifndef ZVISP_LINE_COMMAND_BATCH_UNITS_H_
#define ZVISP_LINE_COMMAND_BATCH_UNITS_H_

#include <map>
#include <string>
#include <vector>

#include "line/command/judged_job.h"
#include "line/job/job.h"
#include "line/supervise/private_copies.h"
#include "line/supervise/unit_run.h"

namespace line {

struct BatchUnits {
  const Job& job;
  const PrivateCopies& copies;
  std::vector<AddressRange> ignored;
  std::map<std::string, std::string> hashes;  // of what plug-ins read, by its one name
  std::string plugin_directory, data_directory;
  std::uint64_t wait_ms = 0;

  // Takes the records out of the unit.
  UnitRequest RequestFor(JudgedUnit& unit) const;

 private:
  // What a worker compares before and after its step: no display may get other bytes than those
  // that were checked, and a plug-in or a hook can change files, private copies too.
  std::vector<FileFacts> CheckedFiles(const JudgedWords& words) const;
  StepRequest StepFor(const JobStep& step, JudgedStep& judged) const;
};

}  // namespace line

#endif  // ZVISP_LINE_COMMAND_BATCH_UNITS_H_
