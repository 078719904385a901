// SPDX-License-Identifier: MIT
//
// Finds in the record every unit that may be half-written.
//
// A unit is judged by its newest run that has touched it: a run that ended with the unit untouched
// says nothing about what an earlier one left. A run whose interface is held at this moment
// is still under way, and is left out.
#ifndef ZVISP_LINE_JOURNAL_DOCTOR_H_
#define ZVISP_LINE_JOURNAL_DOCTOR_H_

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "line/event/event.h"
#include "line/journal/record_reader.h"

namespace line {

// A unit whose last state is `programming` or `uncertain`.
struct Doubt {
  Where where;  // its run, unit, place, interface and step
  FindingEvent finding;
};

struct DoctorReport {
  std::vector<Doubt> doubts;  // the oldest first
  std::vector<SkippedLine> skipped;
  std::string failure;  // a sentence about what cannot be read of the record, or empty
};

// `is_free` says whether no process holds an interface (0: none was named).
DoctorReport Examine(const std::string& data_directory,
                     const std::function<bool(std::uint32_t comm)>& is_free);

}  // namespace line

#endif  // ZVISP_LINE_JOURNAL_DOCTOR_H_
