// SPDX-License-Identifier: MIT
//
// Judgement: the raw arguments become the two records of a run.
//
// The order of the checks decides which message comes first when several things are wrong, and
// scripts match the messages. A check that does not concern the action is still made unless a
// comment says otherwise, so a line with a bad --comm is refused whatever it does.
#include <cstdio>

#include "base/string_util.h"
#include "cmdline/isp_args_parse.h"
#include "firmware/firmware_slots.h"
#include "plugin/digital_sign_args_handle.h"
#include "settings/isp_setting.h"

using namespace zvisp;

namespace {

bool IsSigningAction(std::uint32_t action) {
  return action == CP_ISPTOOL_ACTION_SIGN || action == CP_ISPTOOL_ACTION_VERIFY;
}

int Refuse(const char* message) {
  std::fputs(message, stdout);
  return 0;
}

using Args = STRUCT_CP_ISP_CMD_ARGS;

// The texts of a signed run, each of which goes into a buffer of kSignTextCapacity bytes.
constexpr std::string Args::*kSignatureTexts[] = {
    &Args::strBoot,          &Args::strFw,
    &Args::strSignFile,      &Args::strKeyPair,
    &Args::strVerifyKeyFile, &Args::strSignKeyFile,
    &Args::strSubCertFile,   &Args::strNextVerifyKeyFile,
};

bool FitsASignedRun(const std::string& path) {
  if (path.size() < kSignTextCapacity) return true;
  std::printf("Path is too long for a signed run: %s\n", path.c_str());
  return false;
}

// A path that is cut names another file. Then one file would be verified and another programmed,
// or a signature would be written over the firmware.
bool FitASignedRun(const Args& args, bool default_signature_file, const std::string& directory) {
  for (std::string Args::*const text : kSignatureTexts) {
    if (!FitsASignedRun(args.*text)) return false;
  }
  return !default_signature_file || FitsASignedRun(DefaultSignatureFile(args.strFw, directory));
}

}  // namespace

int CCpIspArgsParse::JudgeArgument(STRUCT_CP_ISP_CMD_ARGS args) {
  if (JudgeAction(args) == 0) return 0;
  m_setting->enumBootCodeType = static_cast<std::uint32_t>(args.bNewBoot);
  m_setting->enumIspMode = static_cast<std::uint32_t>(args.nIspMode);
  if (JudgeMergeFwInfo(args) == 0) return 0;
  // Set here because a parser can judge twice, and the record may come from its caller.
  m_setting->enumDigitalSignatureType = CP_DIGITAL_SIGNATURE_NONE;
  if (args.ulSignatureTypeBits != 0) {
    if (JudgeDigitalSignature(args) == 0) return 0;
    // To sign or verify files needs no device, bank map or settings file.
    if (IsSigningAction(m_setting->enumActionType)) return 1;
  }
  if (JudgeVersionLocation(args) == 0) return 0;
  if (JudgeCommunication(args) == 0) return 0;
  if (JudgeFirmware(args) == 0) return 0;
  m_setting->bCompareVer = static_cast<std::uint32_t>(args.bCompareVer);
  m_setting->bIspChannel = static_cast<std::uint32_t>(args.bIspChannel);
  if (JudgeActionParameters(args) == 0) return 0;
  FillSettingFilePath(args.strSettingFile, m_setting->wszSettingFilePath);
  m_setting->enumEdpIspMode = static_cast<std::uint32_t>(args.nEdpIspMode);
  return 1;
}

int CCpIspArgsParse::JudgeAction(const STRUCT_CP_ISP_CMD_ARGS& args) {
  if (args.ulActionBits != 0 && JudgeUniqueAttribute(args.ulActionBits) == 0) {
    return Refuse("Action type undefined or more than one type!\n");
  }
  GetActionType(args.ulActionBits, m_setting->enumActionType);
  // No action at all, or --factoryisp.
  if (m_setting->enumActionType == CP_ISPTOOL_ACTION_UNDEFINED) {
    return Refuse("Action type undefined or illegal!\n");
  }
  return 1;
}

int CCpIspArgsParse::JudgeMergeFwInfo(const STRUCT_CP_ISP_CMD_ARGS& args) {
  // Without --read and --write the field keeps what the record had. Both together count as --read.
  // A --write before --mergefwinfo has lost its text, and an empty command is accepted.
  if (args.ulReadWriteBits == 0) return 1;
  GetMergeFwInfoType(args.ulReadWriteBits, m_setting->enumMergeFwInfoType);
  if (m_setting->enumMergeFwInfoType != CP_MERGE_FW_INFO_WRITE) return 1;
  return GetMergeFwInfoCmd(args.strMergeCommand, m_setting->stMergeFwInfo);
}

int CCpIspArgsParse::JudgeDigitalSignature(const STRUCT_CP_ISP_CMD_ARGS& args) {
  if (JudgeSignatureTypeAndMode(args) == 0) return 0;
  // The device plug-in gets the settings record only, so it needs a copy of the mode.
  m_setting->enumSWDigitalSignatureMode = m_sign_args->enumSwMode;
  // strFw is slot 0: the files of --fw1 to --fw9 are never signed or verified.
  if (args.strFw.empty()) return Refuse("Program fw path is undefined!\n");
  const std::uint32_t action = m_setting->enumActionType;
  const bool default_signature_file = action == CP_ISPTOOL_ACTION_SIGN && args.strSignFile.empty();
  if (!FitASignedRun(args, default_signature_file, m_current_dir)) return 0;
  CopySignatureTexts(args);
  if (!IsSigningAction(action) && !ProgramsFirmware(action)) {
    // Kept quirk: the message says the opposite of what it means. Scripts match this text.
    return Refuse("Digital signature type should not be defined only when program fw!\n");
  }
  return ValidateSignatureArguments();
}

int CCpIspArgsParse::JudgeSignatureTypeAndMode(const STRUCT_CP_ISP_CMD_ARGS& args) {
  if (JudgeUniqueAttribute(args.ulSignatureTypeBits) == 0) {
    return Refuse("Digital signature type is undefined or more than one type!\n");
  }
  GetDigitalSignatureType(args.ulSignatureTypeBits, m_setting->enumDigitalSignatureType);
  m_sign_args->enumSignatureType = m_setting->enumDigitalSignatureType;
  int read = 0;
  switch (m_sign_args->enumSignatureType) {
    case CP_DIGITAL_SIGNATURE_SW:
      read = GetDigitalSignatureSwMode(args.strSignatureMode, m_sign_args->enumSwMode);
      break;
    case CP_DIGITAL_SIGNATURE_HW:
      read = GetDigitalSignatureHwMode(args.strSignatureMode, m_sign_args->enumHwMode);
      break;
    default:
      return Refuse("Digital signature type is illegal!\n");
  }
  return read != 0 ? 1 : Refuse("Digital signature mode is illegal!\n");
}

// Kept quirk: --boot is copied here and nowhere else, so that boot code is programmed only with a
// signature type.
void CCpIspArgsParse::CopySignatureTexts(const STRUCT_CP_ISP_CMD_ARGS& args) {
  const auto copy = [](const std::string& text, char(&buffer)[kSignTextCapacity]) {
    CopyUtf8ToBuffer(text, buffer, kSignTextCapacity);
  };
  copy(args.strBoot, m_setting->szBootFwPath);
  copy(args.strFw, m_sign_args->szFwFile);
  copy(args.strSignFile, m_sign_args->szSignatureFile);
  copy(args.strKeyPair, m_sign_args->szKeyPair);
  copy(args.strVerifyKeyFile, m_sign_args->szVerifyKeyFile);
  copy(args.strSignKeyFile, m_sign_args->szSignKeyFile);
  copy(args.strSubCertFile, m_sign_args->szSubCertFile);
  copy(args.strNextVerifyKeyFile, m_sign_args->szNextVerifyKeyFile);
}

int CCpIspArgsParse::ValidateSignatureArguments() {
  CCpDigitalSignArgsHandle validator;
  validator.SetCurrentDir(GetCurrentDir());
  const bool signs = m_setting->enumActionType == CP_ISPTOOL_ACTION_SIGN;
  const bool is_software = m_sign_args->enumSignatureType == CP_DIGITAL_SIGNATURE_SW;
  if (IsSigningAction(m_setting->enumActionType)) {
    m_sign_args->enumActionType =
        signs ? CP_DIGITAL_SIGNATURE_ACTION_SIGN : CP_DIGITAL_SIGNATURE_ACTION_VERIFY;
    return validator.JudgeArgument(&*m_sign_args) ? 1 : 0;
  }
  // Only a software signature is verified before programming, and not in factory mode.
  if (!is_software) return 1;
  m_sign_args->enumActionType = CP_DIGITAL_SIGNATURE_ACTION_VERIFY;
  if (m_setting->enumIspMode == ISP_MODE_FACTORY) return 1;
  if (m_sign_args->enumSwMode == CP_DIGITAL_SIGNATURE_SW_MODE_EXTERNAL_NEXT_KEY) {
    // The key comes from the device later. The call makes the paths absolute and may print a
    // refusal, but the verdict is that of the signature plug-in.
    static_cast<void>(validator.JudgeArgumentFwFileAndSigFile(&*m_sign_args));
    return 1;
  }
  return validator.JudgeArgument(&*m_sign_args) ? 1 : 0;
}

int CCpIspArgsParse::JudgeVersionLocation(const STRUCT_CP_ISP_CMD_ARGS& args) {
  m_setting->enumVersionLocationType = VERSION_LOCATION_NONE;
  if (args.ulInformationBits == 0) return 1;
  if (JudgeUniqueAttribute(args.ulInformationBits) == 0) {
    return Refuse("Get version location type undefined or more than one type!\n");
  }
  if (GetVersionType(args.ulInformationBits, args.strUserDefined,
                     m_setting->enumVersionLocationType,
                     m_setting->enumUserDefinedVersionType) == 0) {
    return Refuse("Get version type fail\n");
  }
  switch (m_setting->enumVersionLocationType) {
    case VERSION_LOCATION_FLASH:
      // The place in flash is judged for every action, and a --flash without one is accepted.
      if (GetReadVersionFromFlashSetting(args, m_setting->stReadVersionFromFlash) != 0) return 1;
      return Refuse("Version location type flash setting is illegal\n");
    case VERSION_LOCATION_NONE:  // a bit that no option has, from a caller of JudgeArgument
      return Refuse("Version location type is illegal!\n");
    default:
      return 1;
  }
}

int CCpIspArgsParse::JudgeCommunication(const STRUCT_CP_ISP_CMD_ARGS& args) {
  if (GetCommID(args.strComm, m_setting->enumCommID) == 0) return 0;
  return GetSlaveAddress(args.strSlave, m_setting->bAutoSlaveAddr, m_setting->ucSlaveAddr);
}

int CCpIspArgsParse::JudgeFirmware(const STRUCT_CP_ISP_CMD_ARGS& args) {
  // Before the slots, because JudgeFwMap accepts a search that left no file in them.
  m_setting->bSearchFw = static_cast<std::uint32_t>(args.bSearchFw);
  FwBankMap bank_map;
  if (JudgeFwMap(bank_map) == 0) return 0;
  CopyMapFwToCStyleStruct(m_setting->stMapFw, bank_map);
  return 1;
}

int CCpIspArgsParse::JudgeActionParameters(const STRUCT_CP_ISP_CMD_ARGS& args) {
  // Texts for another action are ignored, even bad ones.
  switch (m_setting->enumActionType) {
    case CP_ISPTOOL_ACTION_ISP_USER:
      return GetUserFlag(args.strFlagAddr, args.strFlagData, m_setting->stFlagSetting);
    case CP_ISPTOOL_ACTION_DUMP_FLASH:
      return GetDumpFlashSetting(args, m_setting->stDumpFlash);
    case CP_ISPTOOL_ACTION_I2C_WRITE:
      return GetI2CWriteActionTypeSetting(args, m_setting->stI2CWriteAction);
    default:
      return 1;
  }
}
