// SPDX-License-Identifier: MIT
//
// What zvisp forgives and zvisp-line refuses: words that somebody did not mean so.
#ifndef ZVISP_LINE_JOB_STRICTNESS_H_
#define ZVISP_LINE_JOB_STRICTNESS_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "line/job/judged_words.h"
#include "line/job/option_scan.h"

namespace line {

struct Strictness {
  bool allow_unsigned = false;          // --allow-unsigned
  std::optional<std::uint32_t> expect;  // --expect
};

// Everything that is wrong with words that zvisp accepts, in the order of a table; empty when they
// may run. REQUIRES: the records still hold the original paths, not those of private copies.
std::vector<Refusal> FindRefusals(const OptionScan& scan, const JudgedWords& judged,
                                  const Strictness& strictness);

// True when a software signature is checked and does not cover all files that are programmed.
bool ProgramsUnsignedFiles(const OptionScan& scan, const JudgedWords& judged);

// Why a serial is none, in one sentence; empty when it is one: UTF-8 without control characters,
// not blank, at most 128 bytes.
std::string WhyNoSerial(const std::string& serial);

}  // namespace line

#endif  // ZVISP_LINE_JOB_STRICTNESS_H_
