// SPDX-License-Identifier: MIT
//
// CCpIspArgsParse turns a command line into the two records of a run.
//
// ParseArgs reads the options (command_line_reader.cpp), JudgeArgument checks them and fills the
// records (isp_args_judge.cpp), with one function for each option value (isp_args_values.cpp). What
// concerns firmware is done in firmware/; the members of those names forward to it.
//
// Every operation that returns int returns 1 for success. For a refusal it returns 0, after it has
// printed its reason, if it has one, in one line on standard output. After a refusal the records
// may be partly filled and must not be used.
#ifndef ZVISP_CMDLINE_ISP_ARGS_PARSE_H_
#define ZVISP_CMDLINE_ISP_ARGS_PARSE_H_

#include <cstdint>
#include <string>
#include <vector>

#include "base/transform.h"
#include "cmdline/isp_cmd_args.h"
#include "firmware/bank_map.h"
#include "firmware/firmware_search.h"
#include "plugin/command_setting.h"
#include "plugin/digital_sign_args.h"
#include "plugin/fresh_setting.h"
#include "plugin/zeroed.h"

class CCpIspArgsParse {
 public:
  // Reads and judges a command line; see cmdline/command_line_reader.h for what that prints. A null
  // vector is refused without a word.
  int ParseArgs(int argc, char** argv);
  // The same for a host that also asks what was typed: REQUIRES a new record, which belongs to the
  // caller. After a refusal by an option it holds what was read before that option.
  int ParseArgs(int argc, char** argv, STRUCT_CP_ISP_CMD_ARGS& args);

  // The files and start banks as typed.
  const zvisp::FwBankMap& GetSlots() const { return m_slots; }

  // Judges the raw arguments and fills both records. For --sign and --verify with a signature type
  // the result is that of CCpDigitalSignArgsHandle.
  int JudgeArgument(STRUCT_CP_ISP_CMD_ARGS args);

  // The judged records, owned by the parser.
  const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING& GetISPCmdSetting() const { return *m_setting; }
  void SetISPCmdSetting(const STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING& setting);
  const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS& GetDigitalSignArgs() const { return *m_sign_args; }

  // The directory of relative firmware and key names and of the searches: UTF-8, ends in "/".
  // Empty, as at first, it means the working directory.
  std::string GetCurrentDir() const { return m_current_dir; }
  void SetCurrentDir(const std::string& directory) { m_current_dir = directory; }

  // The firmware slots and the bank map; see firmware/firmware_slots.h.
  int InsertCommandFwFile(unsigned int slot, const std::string& path);
  int InsertCommandStartBank(unsigned int slot, const std::string& text);
  int GetFwBankCount(std::string& path, unsigned int& banks) const;
  int JudgeFwMap(zvisp::FwBankMap& bankMap) const;

  // The firmware searches; see firmware/firmware_search.h.
  void FindFile(const std::string& dir, zvisp::FileNames& out, const std::string& ext) const;
  int GetBinNameFromPrefixSetting(std::string& fwName, const std::string& settingFile);
  int GetUserDefinedInfoFromTxt(STRUCT_CP_GET_USER_DEFINED_BIN_INFO& info) const;
  int GetUserDefinedBinNameFromTxt(std::string& fwName) const;
  int FindBinUseVersionInfo(zvisp::FileNames& out, const zvisp::FileNames& candidates,
                            ENUM_FIND_BIN_MODE_USE_VER_MODE& mode,
                            const std::string& version) const;

  // 1 when exactly one bit is set.
  static int JudgeUniqueAttribute(std::uint32_t bits);

  // Option bits to the numbers of the records; bits without a number give 0.
  static void GetActionType(std::uint32_t bits, std::uint32_t& enumActionType);
  static void GetDigitalSignatureType(std::uint32_t bits, std::uint32_t& enumSignatureType);
  static void GetMergeFwInfoType(std::uint32_t bits, std::uint32_t& enumMergeFwInfoType);
  // Reads the user-defined text for the bit of --userdefined.
  static int GetVersionType(std::uint32_t bits, const std::string& user_defined,
                            std::uint32_t& enumVersionLocationType,
                            std::uint32_t& enumUserDefinedVersionType);

  // Option texts to values. An empty text is accepted where the option is not required.
  static int GetCommID(const std::string& text, std::uint32_t& enumCommID);
  static int GetSlaveAddress(const std::string& text, std::int32_t& bAutoSlaveAddr,
                             std::uint8_t& ucSlaveAddr);
  static int GetDigitalSignatureSwMode(const std::string& text, std::uint32_t& enumSwMode);
  static int GetDigitalSignatureHwMode(const std::string& text, std::uint32_t& enumHwMode);
  static int GetUserFlag(const std::string& address, const std::string& data,
                         STRUCT_FLAG_SETTING& flag);
  static int GetReadVersionFromFlashSetting(const STRUCT_CP_ISP_CMD_ARGS& args,
                                            STRUCT_READ_VERSION_FROM_FLASH_SETTING& setting);
  static int GetDumpFlashSetting(const STRUCT_CP_ISP_CMD_ARGS& args,
                                 STRUCT_DUMP_FLASH_SETTING& dump);
  static int GetMergeFwInfoCmd(const std::string& text, STRUCT_MERGE_FW_INFO_SETTING& merge);
  static int GetI2CWriteActionTypeSetting(const STRUCT_CP_ISP_CMD_ARGS& args,
                                          STRUCT_I2C_WRITE_ACTION_TYPE_SETTING& i2c);
  // At least three bytes, separated by commas.
  static int GetI2CCmdFromString(const std::string& text, std::vector<std::uint8_t>& bytes);

 private:
  // The steps of JudgeArgument.
  int JudgeAction(const STRUCT_CP_ISP_CMD_ARGS& args);
  int JudgeMergeFwInfo(const STRUCT_CP_ISP_CMD_ARGS& args);
  int JudgeDigitalSignature(const STRUCT_CP_ISP_CMD_ARGS& args);
  int JudgeSignatureTypeAndMode(const STRUCT_CP_ISP_CMD_ARGS& args);
  void CopySignatureTexts(const STRUCT_CP_ISP_CMD_ARGS& args);
  int ValidateSignatureArguments();
  int JudgeVersionLocation(const STRUCT_CP_ISP_CMD_ARGS& args);
  int JudgeCommunication(const STRUCT_CP_ISP_CMD_ARGS& args);
  int JudgeFirmware(const STRUCT_CP_ISP_CMD_ARGS& args);
  int JudgeActionParameters(const STRUCT_CP_ISP_CMD_ARGS& args);

  std::string m_current_dir;
  zvisp::FwBankMap m_slots;
  CCpTransform m_transform;
  zvisp::Zeroed<STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING> m_setting{zvisp::MakeFreshSetting()};
  zvisp::Zeroed<STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS> m_sign_args;
};

#endif  // ZVISP_CMDLINE_ISP_ARGS_PARSE_H_
