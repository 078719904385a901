// SPDX-License-Identifier: MIT
//
// Reads a command line, option by option, into the raw argument record and the firmware slots.
// Nothing is judged here: what the values mean is checked afterwards (cmdline/isp_args_parse.h).
#ifndef ZVISP_CMDLINE_COMMAND_LINE_READER_H_
#define ZVISP_CMDLINE_COMMAND_LINE_READER_H_

#include <string>

#include "cmdline/isp_cmd_args.h"
#include "firmware/bank_map.h"
#include "plugin/command_setting.h"

namespace zvisp {

// Reads argv[1] to argv[argc - 1] and reorders the pointers of `argv` as the scanner does. Returns
// true at the end, and false at the first option that refuses the command line; the outputs then
// keep what was read before it.
//
// --searchfw lists `directory`, UTF-8 text that ends in "/"; empty, it means the working directory.
//
// Outputs, all owned by the caller:
//   slots               the files and start banks, added to what is there already
//   args                the values as typed. REQUIRES: a new record
//   wszSettingFilePath  the settings file that --searchfw=prefix has read; otherwise left alone
//
// Prints on standard output, and continues:
//   "illegal option ' %c '!\n"                      after each message of the scanner
//   "non-option ARGV-elements: %s %s ... \n"        at the end, when words are left over; as they
//                                                   are, without those that are null
// Prints on standard output, and returns false:
//   "cann't find bin file!\n"                       --searchfw=auto in a directory without one
//   "auto search fw parameter illegal!\n"           another value of --searchfw
//   "wrong edp isp mode!"                           another value of --edpmode
//   the message of the slot or the search that refused (firmware/)
//   nothing                                         --fw and --searchfw together
bool ReadCommandLine(int argc, char** argv, const std::string& directory, FwBankMap& slots,
                     STRUCT_CP_ISP_CMD_ARGS& args, wchar_t (&wszSettingFilePath)[kPathCapacity]);

}  // namespace zvisp

#endif  // ZVISP_CMDLINE_COMMAND_LINE_READER_H_
