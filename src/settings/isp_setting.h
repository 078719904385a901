// SPDX-License-Identifier: MIT
//
// The settings file, "IspSetting.ini" next to the executable unless another is named: where it is,
// and the firmware list that is written into it. The syntax is that of settings/profile.h; the
// settings record's LoadSetting and SaveSetting (plugin/command_setting.h) are defined here, too.
//
// The scalar settings are only ever read and the firmware list is only ever written. The list's
// keys are in section "ISP_Fw": "fwFileCount", and for each number N "fwN_TargetBank",
// "fwN_FileBank" and "fwN_Path".
#ifndef ZVISP_SETTINGS_ISP_SETTING_H_
#define ZVISP_SETTINGS_ISP_SETTING_H_

#include <string>

#include "base/zv_string.h"
#include "plugin/command_setting.h"

// Stores the full path of "IspSetting.ini" next to the executable; an empty text when it does not
// fit `output_size` wide units with its terminating zero.
void GetDefaultSettingFilePathName(wchar_t* output, unsigned int output_size);

namespace zvisp {

// Stores the full path of the settings file that the operator named, UTF-8 and relative to the
// executable's directory, or of the default one when the text is empty. The path is cut so that
// its terminating zero fits, and zeros fill the rest.
void FillSettingFilePath(const std::string& setting_file,
                         wchar_t (&wszSettingFilePath)[kPathCapacity]);

// The text of key "strFwPrefix" in section "ISP_Fw" of the settings file: the beginning of the
// wanted firmware's file name, as UTF-8, cut to 259 wide units. Empty when there is none.
std::string ReadFwPrefix(const wchar_t* settings);

}  // namespace zvisp

// Stores the number of 65536-byte banks that the file needs, a partial one counted whole. For a
// file that cannot be read, or is not an ordinary file, prints "File open fail! %s\n" with the
// path, leaves the count alone and returns false.
bool GetFwBankCount(CCpZvString path, unsigned int& banks);

// Writes the firmware list of one file that fills its banks in order from `start_bank` on into the
// settings file. Writes nothing when the banks cannot be counted (see GetFwBankCount); prints
// "Open file error " and a newline for each key that cannot be written.
void SaveFwPathFromFile(CCpZvString fw, CCpZvString settings, unsigned int start_bank);

#endif  // ZVISP_SETTINGS_ISP_SETTING_H_
