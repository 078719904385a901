// SPDX-License-Identifier: MIT
//
// Picks the firmware file out of a directory: by a name prefix from the settings file, or by the
// identification texts of firmware/user_defined_info.h. Files that fit alike are never ranked:
// programming the wrong one costs a display, so anything but exactly one match is refused.
//
// A directory is UTF-8 text that is empty, for the working directory, or ends in "/". File names
// are bare names as the system gives them, any bytes. Messages go to standard output.
#ifndef ZVISP_FIRMWARE_FIRMWARE_SEARCH_H_
#define ZVISP_FIRMWARE_FIRMWARE_SEARCH_H_

#include <string>
#include <vector>

#include "firmware/user_defined_info.h"
#include "plugin/command_setting.h"

namespace zvisp {

using FileNames = std::vector<std::string>;

}  // namespace zvisp

// Appends, in the directory's own order, each name in `dir` that ends with `ext`, case counted,
// and is longer than it. Directories and every other kind of entry are listed, too. A directory
// that cannot be opened has no entries.
void FindFile(const std::string& dir, zvisp::FileNames& out, const std::string& ext);

// Stores in `fw_name` the only ".bin" name that begins with, and is longer than, the text of key
// "strFwPrefix" in section "ISP_Fw" of the settings file, and returns 1. Otherwise leaves it alone,
// prints one of these and returns 0:
//   "Cannot find bin in current dir!\n"
//   "Cannot fw prefix setting!\n"                    the prefix is missing or empty
//   "find %d match fw base on prefix %s, fail!\n"    the count is 0 or more than 1
// The settings file is the one that FillSettingFilePath gives for `setting_file`; its path is
// stored in wszSettingFilePath, by later failures too, once the directory has a ".bin" name.
int GetBinNameFromPrefixSetting(const std::string& dir, const std::string& setting_file,
                                wchar_t (&wszSettingFilePath)[kPathCapacity], std::string& fw_name);

// Stores in `fw_name` the only ".bin" name that fits the identification in "IspUserDefined.txt" of
// the directory, and returns 1. Each text that is not ignored and not empty must occur somewhere in
// the name; the version selects as FindBinUseVersionInfo says. Otherwise leaves it alone, prints
// one of these and returns 0:
//   "get userdefined info fail!\n"
//   "cann't find fw use userdefined SI name info!\n"         or "model", "panel", "version"
//   "%d bin file find user userdefined info!\n"              the count is 0 or more than 1
int GetUserDefinedBinNameFromTxt(const std::string& dir, std::string& fw_name);

// Appends the candidates that the version selects. Always returns 1.
//   Mode 0: those that contain the version.
//   Mode 1: all but those whose first occurrence of the major number with its "." is directly
//           followed by "bin": for "1.2.3", "fw_1.bin" is dropped and "fw_2.0.bin" kept. Blanks
//           inside the version count as "."; a version without either selects nothing.
//   Any other mode: none.
int FindBinUseVersionInfo(zvisp::FileNames& out, const zvisp::FileNames& candidates,
                          ENUM_FIND_BIN_MODE_USE_VER_MODE& mode, const std::string& version);

#endif  // ZVISP_FIRMWARE_FIRMWARE_SEARCH_H_
