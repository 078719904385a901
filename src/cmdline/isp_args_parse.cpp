// SPDX-License-Identifier: MIT
//
// The face of the parser. The work is done elsewhere; most members below only add what the parser
// holds (directory, slots, records) and forward to the function of their name in firmware/.
#include "cmdline/isp_args_parse.h"

#include "cmdline/command_line_reader.h"
#include "firmware/firmware_slots.h"

using namespace zvisp;

int CCpIspArgsParse::ParseArgs(int argc, char** argv) {
  if (argv == nullptr) return 0;
  STRUCT_CP_ISP_CMD_ARGS args;
  return ParseArgs(argc, argv, args);
}

int CCpIspArgsParse::ParseArgs(int argc, char** argv, STRUCT_CP_ISP_CMD_ARGS& args) {
  if (!ReadCommandLine(argc, argv, m_current_dir, m_slots, args, m_setting->wszSettingFilePath)) {
    return 0;
  }
  return JudgeArgument(args);
}

void CCpIspArgsParse::SetISPCmdSetting(const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING& setting) {
  // Byte for byte: an assignment need not copy the padding, and a plug-in sees that as well.
  CopyBytes(*m_setting, setting);
}

int CCpIspArgsParse::InsertCommandFwFile(unsigned int slot, const std::string& path) {
  return ::InsertCommandFwFile(m_slots, slot, m_transform.ConvertStringToWString(path));
}

int CCpIspArgsParse::InsertCommandStartBank(unsigned int slot, const std::string& text) {
  return ::InsertCommandStartBank(m_slots, slot, text);
}

int CCpIspArgsParse::GetFwBankCount(std::string& path, unsigned int& banks) const {
  return ::GetFwBankCount(m_current_dir, path, banks);
}

int CCpIspArgsParse::JudgeFwMap(FwBankMap& bankMap) const {
  return ::JudgeFwMap(m_slots, m_current_dir, *m_setting, bankMap);
}

void CCpIspArgsParse::FindFile(const std::string& dir, FileNames& out,
                               const std::string& ext) const {
  ::FindFile(dir, out, ext);
}

int CCpIspArgsParse::GetBinNameFromPrefixSetting(std::string& fwName,
                                                 const std::string& settingFile) {
  return ::GetBinNameFromPrefixSetting(m_current_dir, settingFile, m_setting->wszSettingFilePath,
                                       fwName);
}

int CCpIspArgsParse::GetUserDefinedInfoFromTxt(STRUCT_CP_GET_USER_DEFINED_BIN_INFO& info) const {
  return ::GetUserDefinedInfoFromTxt(m_current_dir, info);
}

int CCpIspArgsParse::GetUserDefinedBinNameFromTxt(std::string& fwName) const {
  return ::GetUserDefinedBinNameFromTxt(m_current_dir, fwName);
}

int CCpIspArgsParse::FindBinUseVersionInfo(FileNames& out, const FileNames& candidates,
                                           ENUM_FIND_BIN_MODE_USE_VER_MODE& mode,
                                           const std::string& version) const {
  return ::FindBinUseVersionInfo(out, candidates, mode, version);
}
