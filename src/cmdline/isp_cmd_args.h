// SPDX-License-Identifier: MIT
//
// The raw argument record: what the command line says, before anything is judged. Texts are the
// bytes as typed, switches are 0 or 1.
#ifndef ZVISP_CMDLINE_ISP_CMD_ARGS_H_
#define ZVISP_CMDLINE_ISP_CMD_ARGS_H_

#include <cstdint>
#include <string>

struct STRUCT_CP_ISP_CMD_ARGS {
  std::uint32_t ulActionBits = 0;         // one bit per action option
  std::uint32_t ulSignatureTypeBits = 0;  // --sw 1, --hw 2
  std::uint32_t ulInformationBits = 0;    // one bit per version-location option
  std::uint32_t ulReadWriteBits = 0;      // --read 1, --write 2
  std::string strUserDefined;             // --userdefined
  std::string strComm;                    // --comm
  std::string strFw;                      // --fw, or the file that --searchfw found
  std::string strSignFile;                // --signfile
  std::string strKeyPair;                 // --keypair
  std::string strVerifyKeyFile;           // --vkfile
  std::string strSignKeyFile;             // --skfile
  std::string strSubCertFile;             // --subcert
  std::string strNextVerifyKeyFile;       // --nextvkfile
  std::string strSlave;                   // --slave
  std::string strMergeCommand;            // --write after --mergefwinfo
  std::string strVerAddr;                 // --veraddr
  std::string strTotalVerLen;             // --totalverlen
  std::string strMajorVerLen;             // --majorverlen
  std::string strSubVerLen;               // --subverlen
  std::string strRecordVerMode;           // --recordvermode
  std::string strDumpAddr;                // --dumpaddr
  std::string strDumpLen;                 // --dumplen
  std::string strDumpName;                // --dumpname
  std::string strSettingFile;             // --settingfile
  std::string strSearchMode;              // --searchfw
  std::int32_t bIspChannel = 0;           // --ispchannel
  std::int32_t bCompareVer = 0;           // --comparever
  std::int32_t bSearchFw = 0;             // --searchfw was given
  std::int32_t bFw = 0;                   // --fw was given
  std::int32_t bDdcciCmd = 0;             // --ddccicmd
  std::string strFlagAddr;                // --flagaddr
  std::string strFlagData;                // --flagdata
  std::int32_t bNewBoot = 0;              // --newboot
  std::int32_t nIspMode = 1;              // 1 normal, 2 --factory
  std::string strSignatureMode;           // --dsmode
  std::string strBoot;                    // --boot
  std::int32_t nEdpIspMode = 0;           // --edpmode: "isp" 1, "readver" 2
  std::string strWriteData;               // --writedata
};

#endif  // ZVISP_CMDLINE_ISP_CMD_ARGS_H_
