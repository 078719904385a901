// SPDX-License-Identifier: MIT
//
// A first pass of zvisp's scanner over its words, which finds what zvisp complains about and then
// forgives. Nothing is decided from printed text, and nothing is printed.
#ifndef ZVISP_LINE_JOB_OPTION_SCAN_H_
#define ZVISP_LINE_JOB_OPTION_SCAN_H_

#include <cstdint>
#include <string>
#include <vector>

#include "cmdline/option_table.h"

namespace line {

// Why words are refused: a name for scripts, and one sentence that says what, where and what to do.
struct Refusal {
  std::string id, text;
  std::string word = {};  // the one that is wrong, when it is one alone
};

struct GivenOption {
  const zvisp::OptionRow* row = nullptr;
  std::string value;  // empty for an option that takes none
};

struct OptionScan {
  std::vector<GivenOption> options;  // in their order
  std::vector<Refusal> refusals;

  // The value that was given last, or null.
  const std::string* ValueOf(std::string_view name) const;
  bool Has(std::string_view name) const { return ValueOf(name) != nullptr; }
};

// `words` are zvisp's, without a program's name.
OptionScan ScanOptions(const std::vector<std::string>& words);

// Name of the action's option, without dashes; empty when there is none.
std::string ActionNameOf(const OptionScan& scan);

}  // namespace line

#endif  // ZVISP_LINE_JOB_OPTION_SCAN_H_
