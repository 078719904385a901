// SPDX-License-Identifier: MIT
//
// Which display is at which place of a job, and whether the job may be run for it.
#ifndef ZVISP_LINE_JOB_SERIALS_H_
#define ZVISP_LINE_JOB_SERIALS_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "line/job/job.h"
#include "line/job/job_error.h"

namespace line {

// A place that takes part.
struct UnitAtPlace {
  std::size_t place = 0;  // index in the job
  std::string unit;       // its serial
  std::uint64_t attempt = 1;
};

struct Serials {
  std::vector<UnitAtPlace> units;  // in the order of the job
  JobErrors errors;                // without a position; with any, nothing may be started
};

// `units` are PLACE=SERIAL, as --unit gives them; `skipped` the places of --skip.
Serials ReadSerials(const Job& job, const std::vector<std::string>& units,
                    const std::vector<std::string>& skipped);

// Without serials: {unit} is the place's name. For a check of the job.
Serials PlacesInsteadOfSerials(const Job& job, const std::vector<std::string>& skipped);

// Counts the attempts by what the record knows, and refuses serials that have passed the job
// already, unless it allows that.
void AskRecord(const Job& job, const std::string& data_directory, Serials& serials);

}  // namespace line

#endif  // ZVISP_LINE_JOB_SERIALS_H_
