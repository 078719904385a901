// SPDX-License-Identifier: MIT
//
// What zvisp makes of its words. A worker judges them once (supervise/judge_words.h), with all that
// zvisp prints; everything afterwards, the plan and the run, works on this.
#ifndef ZVISP_LINE_JOB_JUDGED_WORDS_H_
#define ZVISP_LINE_JOB_JUDGED_WORDS_H_

#include <string>
#include <vector>

#include "cmdline/isp_cmd_args.h"
#include "firmware/bank_map.h"
#include "plugin/command_setting.h"
#include "plugin/digital_sign_args.h"
#include "plugin/zeroed.h"

namespace line {

struct JudgedWords {
  bool accepted = false;        // zvisp's verdict
  std::string said;             // what zvisp printed, standard output and error together
  STRUCT_CP_ISP_CMD_ARGS args;  // the values as typed, and the file that a search found
  zvisp::FwBankMap slots;       // files and start banks as typed
  // The records that the plug-ins get; only meaningful when accepted. Null when memory was
  // exhausted.
  zvisp::ZeroedPtr<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING> setting;
  zvisp::ZeroedPtr<STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS> sign_args;
};

}  // namespace line

#endif  // ZVISP_LINE_JOB_JUDGED_WORDS_H_
