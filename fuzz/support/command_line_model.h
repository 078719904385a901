// SPDX-License-Identifier: MIT
//
// A small model of judgement: from the raw arguments and the slots of a command line that was
// accepted, what the two records must hold.
#ifndef ZVISP_FUZZ_SUPPORT_COMMAND_LINE_MODEL_H_
#define ZVISP_FUZZ_SUPPORT_COMMAND_LINE_MODEL_H_

#include "cmdline/isp_args_parse.h"

// Breaks a promise where a record holds something else than the model. `directory` is the working
// directory, with a "/" at the end.
void CheckAgainstModel(const STRUCT_CP_ISP_CMD_ARGS& args, const CCpIspArgsParse& parser,
                       const std::string& directory);

#endif  // ZVISP_FUZZ_SUPPORT_COMMAND_LINE_MODEL_H_
