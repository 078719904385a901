// SPDX-License-Identifier: MIT
//
// Values that zvisp would cut, wrap around or replace on their way into the record.
#ifndef ZVISP_LINE_JOB_VALUE_RULES_H_
#define ZVISP_LINE_JOB_VALUE_RULES_H_

#include <vector>

#include "line/job/judged_words.h"
#include "line/job/option_scan.h"

namespace line {

// One refusal for each such value.
void RefuseChangedValues(const OptionScan& scan, const JudgedWords& judged,
                         std::vector<Refusal>& refusals);

}  // namespace line

#endif  // ZVISP_LINE_JOB_VALUE_RULES_H_
