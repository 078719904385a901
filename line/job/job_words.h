// SPDX-License-Identifier: MIT
//
// Texts of a job made fit for one unit at one place.
#ifndef ZVISP_LINE_JOB_JOB_WORDS_H_
#define ZVISP_LINE_JOB_JOB_WORDS_H_

#include <string>
#include <vector>

#include "line/job/job.h"

namespace line {

// {unit} and {place} replaced, once: what a serial holds is not replaced again. Other braces
// stay.
std::string Expanded(const std::string& text, const std::string& unit, const std::string& place);
std::vector<std::string> Expanded(std::vector<std::string> words, const std::string& unit,
                                  const std::string& place);

// zvisp's words of a step, with the options of the place in front. REQUIRES: the step does not
// read.
std::vector<std::string> WordsOf(const JobStep& step, const JobPlace& place,
                                 const std::string& unit);

// Why the serial must not be in the step's words, in a sentence; empty when it may. Words name
// files, and a serial must not lead to another directory.
std::string WhyNotInWords(const JobStep& step, const std::string& unit);

}  // namespace line

#endif  // ZVISP_LINE_JOB_JOB_WORDS_H_
