// SPDX-License-Identifier: MIT
//
// What the record knows of one serial, found without reading the whole record: an index next to it
// (DATA/journal/units.index) is brought up to date with the lines that came since, and asked. The
// index is made again when it is missing or does not fit the record, which alone is the truth.
#ifndef ZVISP_LINE_JOURNAL_HISTORY_H_
#define ZVISP_LINE_JOURNAL_HISTORY_H_

#include <cstdint>
#include <string>
#include <vector>

namespace line {

struct UnitHistory {
  std::uint64_t attempts = 0;  // runs that were started
  // The newest run that was started and has ended has passed. A unit that was never started says
  // nothing about the display.
  bool last_has_passed = false;
};

// All runs of `unit`; with the name of a job, those of jobs of that name. What cannot be read
// counts as never run.
UnitHistory HistoryOf(const std::string& data_directory, const std::string& unit,
                      const std::string& job_name);

// The same of many units, in their order, in the time of one.
std::vector<UnitHistory> HistoriesOf(const std::string& data_directory,
                                     const std::vector<std::string>& units,
                                     const std::string& job_name);

}  // namespace line

#endif  // ZVISP_LINE_JOURNAL_HISTORY_H_
