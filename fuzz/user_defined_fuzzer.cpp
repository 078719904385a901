// SPDX-License-Identifier: MIT
//
// The user-defined identification. Input: the file "IspUserDefined.txt", in a directory with some
// firmware files.
//
// Promises: what is accepted has modes in their ranges, no blanks and at least one text; a search
// that succeeds names a file of the directory that fits the texts, and one that fails names none.
#include <algorithm>
#include <iterator>

#include "firmware/firmware_search.h"
#include "support/fuzzing.h"
#include "support/memory_files.h"

namespace {

constexpr const char* kNames[] = {"fw_1.bin", "SI_Model-Panel_1.2.bin", "Model.bin", "a1b2.bin"};

void CheckInfo(const STRUCT_CP_GET_USER_DEFINED_BIN_INFO& info) {
  PROMISE(info.nRecordSIMode <= 2 && info.nRecordModelMode <= 2);
  PROMISE(info.nRecordPanelMode <= 2 && info.nRecordVersionMode <= 2);
  PROMISE(!info.strSIName.empty() || !info.strModelName.empty() || !info.strPanelName.empty() ||
          !info.strVersion.empty());
  for (const std::string* const text : {&info.strSIName, &info.strModelName, &info.strPanelName}) {
    PROMISE(text->find('\0') == std::string::npos);
  }
}

bool Fits(const std::string& name, std::uint32_t ignored, const std::string& text) {
  return ignored != 0 || name.find(text) != std::string::npos;
}

void CheckFound(const std::string& name, const STRUCT_CP_GET_USER_DEFINED_BIN_INFO& info) {
  PROMISE(std::find(std::begin(kNames), std::end(kNames), name) != std::end(kNames));
  PROMISE(Fits(name, info.bIgnoreSIName, info.strSIName));
  PROMISE(Fits(name, info.bIgnoreModelName, info.strModelName));
  PROMISE(Fits(name, info.bIgnorePanelName, info.strPanelName));
  if (info.eFindBinUseVerMode == FIND_BIN_USE_VER_MODE_CONTAINS) {
    PROMISE(Fits(name, info.bIgnoreVersionName, info.strVersion));
  }
}

}  // namespace

void PrepareTarget() {
  for (const char* const name : kNames) {
    WriteFile(FuzzDirectory() + name, "");
  }
}

void FuzzInput(const std::uint8_t* data, std::size_t size) {
  GivenMemoryFile(FuzzDirectory() + "IspUserDefined.txt", InputLines(data, size).Rest());
  STRUCT_CP_GET_USER_DEFINED_BIN_INFO info;
  const int accepted = GetUserDefinedInfoFromTxt(FuzzDirectory(), info);
  PROMISE(accepted == 0 || accepted == 1);
  if (accepted != 0) CheckInfo(info);

  std::string name = "untouched";
  const int found = GetUserDefinedBinNameFromTxt(FuzzDirectory(), name);
  PROMISE(found == 0 || accepted == 1);
  PROMISE((found == 0) == (name == "untouched"));
  if (found != 0) CheckFound(name, info);
  PROMISE(OpenMemoryStreams() == 0);
}
