// SPDX-License-Identifier: MIT
//
// The identification of the wanted firmware, from section "UserDefinedInfo" of the file
// "IspUserDefined.txt" (syntax: settings/profile.h).
#ifndef ZVISP_FIRMWARE_USER_DEFINED_INFO_H_
#define ZVISP_FIRMWARE_USER_DEFINED_INFO_H_

#include <cstdint>
#include <string>

// Key "FindBinUseVerMode": how the version selects files. A file may hold a negative number, which
// selects none.
enum ENUM_FIND_BIN_MODE_USE_VER_MODE : std::int32_t {
  FIND_BIN_USE_VER_MODE_CONTAINS = 0,      // the name contains the version
  FIND_BIN_USE_VER_MODE_EXCEPT_MAJOR = 1,  // "bin" does not directly follow the major number
};

// The fields carry the keys' names without their prefix. Texts are ready to be looked for in file
// names: blanks are removed, numbers are turned into text.
struct STRUCT_CP_GET_USER_DEFINED_BIN_INFO {
  // How the text is written in the file: 0 as text; 1 or 2 as character codes, and the version as
  // numbers, separated by blanks.
  std::uint32_t nRecordSIMode = 0;
  std::uint32_t nRecordModelMode = 0;
  std::uint32_t nRecordPanelMode = 0;
  std::uint32_t nRecordVersionMode = 0;

  std::string strSIName;  // the system integrator
  std::string strModelName;
  std::string strPanelName;
  std::string strVersion;

  // Not 0: this text is not looked for.
  std::uint32_t bIgnoreSIName = 0;
  std::uint32_t bIgnoreModelName = 0;
  std::uint32_t bIgnorePanelName = 0;
  std::uint32_t bIgnoreVersionName = 0;

  ENUM_FIND_BIN_MODE_USE_VER_MODE eFindBinUseVerMode = FIND_BIN_USE_VER_MODE_CONTAINS;
};

// Reads `dir` + "IspUserDefined.txt", without a separator between the two. Returns 1 when the
// identification can be used, else 0; the fields read until then are stored either way.
// Prints, without a newline:
//   "Record si mode setting error!"          or "model", "panel": mode stays as it was, not fatal
//   "Record version mode setting error!"     fatal
//   "Find bin version mode setting error!"   fatal
//   "Ignore setting error!"                  fatal: all four texts are ignored
// Fatal without a message: a piece of a list of numbers is not a number; all four texts are empty,
// as they are when the file is missing. Codes that are not characters add nothing to their text.
int GetUserDefinedInfoFromTxt(const std::string& dir, STRUCT_CP_GET_USER_DEFINED_BIN_INFO& info);

#endif  // ZVISP_FIRMWARE_USER_DEFINED_INFO_H_
