// SPDX-License-Identifier: MIT
//
// The command-setting record: everything an ISP plug-in learns about a run.
//
// A plug-in is built apart from the tool and reads the record by byte offset, so this is a wire
// format: 275328 bytes, little-endian, natural alignment. The layout is proved at the end of the
// file. A plug-in includes plugin/zvisp_plugin.h and sees plain structs; by itself in C++, this
// header has the constructors and operations that the tool and hosts link.
//
// Prefixes of the fields: `ul` u32, `uc` u8, `b` u32 truth, `enum` u32 enumeration, `n` i32,
// `sz` narrow UTF-8, `wsz` wide (4-byte units), both NUL-terminated inside their capacity,
// `st` sub-record. A trailing comment gives the offset in bytes inside the record of the field.
//
// A record is always constructed over zeroed memory (see plugin/zeroed.h): the constructors leave
// some fields alone, and a plug-in must never see stale bytes there.
#ifndef ZVISP_PLUGIN_COMMAND_SETTING_H_
#define ZVISP_PLUGIN_COMMAND_SETTING_H_

#include <stddef.h>
#include <stdint.h>
#include <wchar.h>

#include "plugin/record_language.h"

// The numbers of all enumerations here reach plug-ins: never renumber them.

// What a run does; the comment names the long option that selects it.
typedef enum ENUM_CP_ISPTOOL_ACTION_TYPE {
  CP_ISPTOOL_ACTION_UNDEFINED = 0,
  CP_ISPTOOL_ACTION_VERIFY = 1,                   // --verify
  CP_ISPTOOL_ACTION_SIGN = 2,                     // --sign
  CP_ISPTOOL_ACTION_ERASE = 3,                    // --erase
  CP_ISPTOOL_ACTION_ISP = 4,                      // --isp
  CP_ISPTOOL_ACTION_ISP_USER = 5,                 // --ispuser
  CP_ISPTOOL_ACTION_ISP_DIFF = 6,                 // --ispdiff
  CP_ISPTOOL_ACTION_ISP_COPY = 7,                 // --ispcopy
  CP_ISPTOOL_ACTION_RECORD_VERSION = 8,           // --recordver
  CP_ISPTOOL_ACTION_SR_STATUS = 9,                // --srstatus
  CP_ISPTOOL_ACTION_FLASH_TYPE = 10,              // --flashtype
  CP_ISPTOOL_ACTION_READ_SR = 11,                 // --readsr
  CP_ISPTOOL_ACTION_WRITE_SR = 12,                // --writesr
  CP_ISPTOOL_ACTION_READ_SAFEGUARD = 13,          // --readsafeguard
  CP_ISPTOOL_ACTION_WRITE_SAFEGUARD = 14,         // --writesafeguard
  CP_ISPTOOL_ACTION_RESET_MCU = 15,               // --resetmcu
  CP_ISPTOOL_ACTION_DUMP_FLASH = 16,              // --dumpflash
  CP_ISPTOOL_ACTION_FACTORY_ISP = 17,             // no option reaches it
  CP_ISPTOOL_ACTION_GET_STATUS = 18,              // --getstatus
  CP_ISPTOOL_ACTION_USER_DEFINED_INFO = 19,       // --userdefinedinfo
  CP_ISPTOOL_ACTION_EDP_ISP = 20,                 // --edpisp
  CP_ISPTOOL_ACTION_ENTER_ISP_MODE = 21,          // --enterispmode
  CP_ISPTOOL_ACTION_MERGE_FW_INFO = 22,           // --mergefwinfo
  CP_ISPTOOL_ACTION_SEND_USER_DEFINED_INFO = 23,  // --senduserdefinedinfo
  CP_ISPTOOL_ACTION_I2C_WRITE = 24,               // --i2cwrite
  CP_ISPTOOL_ACTION_GET_SCALER_TYPE = 25          // --getscalertype
} ENUM_CP_ISPTOOL_ACTION_TYPE;

// Where a firmware version is read from; the comment names the long option.
typedef enum ENUM_VERSION_LOCATION_TYPE {
  VERSION_LOCATION_NONE = 0,
  VERSION_LOCATION_REG = 1,          // --reg
  VERSION_LOCATION_DDCCI = 2,        // --ddcci
  VERSION_LOCATION_FLASH = 3,        // --flash
  VERSION_LOCATION_FW_BIN = 4,       // --fwbin
  VERSION_LOCATION_CMD = 5,          // --cmd
  VERSION_LOCATION_FW_BIN_CMD = 6,   // --fwbincmd
  VERSION_LOCATION_COPY_DIFFER = 7,  // --copydiffer
  VERSION_LOCATION_USER_DEFINED = 8  // --userdefined N
} ENUM_VERSION_LOCATION_TYPE;

// The N of --userdefined; its meaning lies in the plug-in.
typedef enum ENUM_USER_DEFINED_VERSION_TYPE {
  USER_DEFINED_VERSION_NONE = 0,
  USER_DEFINED_VERSION_1 = 1,
  USER_DEFINED_VERSION_2 = 2,
  USER_DEFINED_VERSION_3 = 3
} ENUM_USER_DEFINED_VERSION_TYPE;

// Direction of --mergefwinfo.
typedef enum ENUM_CP_MERGE_FW_INFO_TYPE {
  CP_MERGE_FW_INFO_READ = 0,  // --read
  CP_MERGE_FW_INFO_WRITE = 1  // --write
} ENUM_CP_MERGE_FW_INFO_TYPE;

// --edpmode of --edpisp.
typedef enum ENUM_EDP_ISP_MODE {
  EDP_ISP_MODE_NONE = 0,
  EDP_ISP_MODE_ISP = 1,          // "isp"
  EDP_ISP_MODE_READ_VERSION = 2  // "readver"
} ENUM_EDP_ISP_MODE;

// How the boot code and the application are programmed.
typedef enum ENUM_ISP_MODE {
  ISP_MODE_NONE = 0,
  ISP_MODE_NORMAL = 1,
  ISP_MODE_FACTORY = 2  // --factory
} ENUM_ISP_MODE;

// Sizes of the record's arrays and of the units it counts in.
enum {
  kFwBankBytes = 65536,      // one bank of flash
  kMapFwCapacity = 256,      // bank entries of STRUCT_C_STYLE_MAP_FW
  kPathCapacity = 260,       // bytes or wide units of every path field, terminating zero included
  kUserFlagCapacity = 1220,  // bytes of STRUCT_FLAG_SETTING::ucFlagData
  kI2cDataCapacity = 256,    // bytes of STRUCT_I2C_WRITE_ACTION_TYPE_SETTING::ucData
  kMergeFwInfoCapacity = 16  // bytes of STRUCT_MERGE_FW_INFO_SETTING::ucData
};

// One bank of flash: which 65536 bytes of which file go there. 1056 bytes.
typedef struct STRUCT_C_STYLE_FW_BANK_SETTING {
  uint64_t ulReserved;             //    0 always 0
  uint32_t ulFileBank;             //    8 index of the bank inside its file, 0 = the file's first
  wchar_t wszPath[kPathCapacity];  //   12 full path of the file, at most 256 units
#ifdef ZVISP_RECORD_OPERATIONS
  STRUCT_C_STYLE_FW_BANK_SETTING();
#endif
} STRUCT_C_STYLE_FW_BANK_SETTING;

// The banks to program, ascending by target bank. 271368 bytes.
typedef struct STRUCT_C_STYLE_MAP_FW {
  uint32_t ulCount;                                       //    0 number of valid entries
  uint32_t ulTargetBank[kMapFwCapacity];                  //    4 flash bank that entry i programs
  STRUCT_C_STYLE_FW_BANK_SETTING stBank[kMapFwCapacity];  // 1032 what entry i programs there
#ifdef ZVISP_RECORD_OPERATIONS
  // Leaves ulTargetBank[64..255] as the memory was: plug-ins rely on ulCount, not on zeros.
  STRUCT_C_STYLE_MAP_FW();
#endif
} STRUCT_C_STYLE_MAP_FW;

// The user flag of --ispuser. 1232 bytes.
typedef struct STRUCT_FLAG_SETTING {
  uint32_t ulFlagLength;                  //    0 number of flag bytes, its low 8 bits only
  uint8_t ucFlagData[kUserFlagCapacity];  //    4 --flagdata, unused bytes 0xFF
  uint32_t ulFlagAddr;                    // 1224 --flagaddr, flash address in bytes
  uint32_t ulReserved;                    // 1228 always 0
#ifdef ZVISP_RECORD_OPERATIONS
  STRUCT_FLAG_SETTING();
#endif
} STRUCT_FLAG_SETTING;

// Where the version text lies in flash (version location 3). 20 bytes, all zero by default.
typedef struct STRUCT_READ_VERSION_FROM_FLASH_SETTING {
  uint32_t enumRecordVerMode;  //  0 --recordvermode: 0, 1, or 2 for everything else
  uint32_t ulVerAddr;          //  4 --veraddr, flash address in bytes
  uint32_t ulTotalVerLen;      //  8 --totalverlen, bytes, at most 256
  uint32_t ulMajorVerLen;      // 12 --majorverlen, bytes, not 0
  uint32_t ulSubVerLen;        // 16 --subverlen, bytes
#ifdef ZVISP_RECORD_OPERATIONS
  STRUCT_READ_VERSION_FROM_FLASH_SETTING();
#endif
} STRUCT_READ_VERSION_FROM_FLASH_SETTING;

// Kept for plug-ins; the tool never writes it. 4 bytes.
typedef struct STRUCT_READ_USER_DEFINED_VERSION_SETTING {
  uint32_t ulReserved;  // 0 always 0
#ifdef ZVISP_RECORD_OPERATIONS
  STRUCT_READ_USER_DEFINED_VERSION_SETTING();
#endif
} STRUCT_READ_USER_DEFINED_VERSION_SETTING;

// What --dumpflash reads and where it goes. 1048 bytes.
typedef struct STRUCT_DUMP_FLASH_SETTING {
  uint32_t ulDumpAddr;                 // 0 --dumpaddr, flash address in bytes
  uint32_t ulDumpLen;                  // 4 --dumplen, bytes, not 0
  wchar_t wszDumpFile[kPathCapacity];  // 8 --dumpname as typed, or "dumpFile.bin"
#ifdef ZVISP_RECORD_OPERATIONS
  STRUCT_DUMP_FLASH_SETTING();
#endif
} STRUCT_DUMP_FLASH_SETTING;

// The bytes of --i2cwrite. 264 bytes.
typedef struct STRUCT_I2C_WRITE_ACTION_TYPE_SETTING {
  uint8_t ucSlave;                   //   0 first byte of --writedata
  uint8_t ucSubAddr;                 //   1 second byte of --writedata
  uint8_t ucDataLen;                 //   2 number of bytes in ucData
  uint8_t ucData[kI2cDataCapacity];  //   3 the bytes, unused ones 0xFF
  uint32_t bDdcciCmd;                // 260 1 with --ddccicmd
#ifdef ZVISP_RECORD_OPERATIONS
  STRUCT_I2C_WRITE_ACTION_TYPE_SETTING();
#endif
} STRUCT_I2C_WRITE_ACTION_TYPE_SETTING;

// The bytes of --mergefwinfo --write. 20 bytes.
typedef struct STRUCT_MERGE_FW_INFO_SETTING {
  uint32_t ulLength;                     // 0 number of bytes in ucData, at most 16
  uint8_t ucData[kMergeFwInfoCapacity];  // 4 the bytes
#ifdef ZVISP_RECORD_OPERATIONS
  STRUCT_MERGE_FW_INFO_SETTING();
#endif
} STRUCT_MERGE_FW_INFO_SETTING;

// One whole run. 275328 bytes.
typedef struct STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING {
  uint32_t enumActionType;              //  0 ENUM_CP_ISPTOOL_ACTION_TYPE
  uint32_t enumDigitalSignatureType;    //  4 0 none, 1 software, 2 hardware
  uint32_t enumSWDigitalSignatureMode;  //  8 software-signature mode 1..4; constructor leaves it
  uint32_t enumVersionLocationType;     // 12 ENUM_VERSION_LOCATION_TYPE
  uint32_t enumUserDefinedVersionType;  // 16 1..3 with version location 8
  uint32_t enumMergeFwInfoType;         // 20 ENUM_CP_MERGE_FW_INFO_TYPE; constructor leaves it
  uint32_t enumCommID;                  // 24 communication interface 1..16, 0 = not given
  uint32_t enumEdpIspMode;              // 28 ENUM_EDP_ISP_MODE
  int32_t bAutoSlaveAddr;               // 32 1 detect, 0 use ucSlaveAddr, -1 not judged: boot code
  uint8_t ucSlaveAddr;                  // 36 --slave, 1..254
  uint32_t bSearchFw;                   // 40 1 with --searchfw
  uint32_t bCompareVer;                 // 44 1 with --comparever
  uint32_t bIspChannel;                 // 48 1 with --ispchannel
  uint32_t enumBootCodeType;            // 52 1 with --newboot
  uint32_t enumIspMode;                 // 56 ENUM_ISP_MODE, 0 for boot code
  uint32_t ulReserved;                  // 60 always 0
  uint32_t ulProgStartBank;             // 64 from the settings file only, in banks
  STRUCT_C_STYLE_MAP_FW stMapFw;        // 72
  STRUCT_FLAG_SETTING stFlagSetting;    // 271440 action 5
  STRUCT_READ_VERSION_FROM_FLASH_SETTING stReadVersionFromFlash;      // 272672 version location 3
  STRUCT_READ_USER_DEFINED_VERSION_SETTING stReadUserDefinedVersion;  // 272692
  STRUCT_DUMP_FLASH_SETTING stDumpFlash;                              // 272696 action 16
  STRUCT_I2C_WRITE_ACTION_TYPE_SETTING stI2CWriteAction;              // 273744 action 24
  wchar_t wszSettingFilePath[kPathCapacity];   // 274008 full path of the settings file
  char szBootFwPath[kPathCapacity];            // 275048 --boot as typed, with a signature type
  STRUCT_MERGE_FW_INFO_SETTING stMergeFwInfo;  // 275308 action 22

#ifdef ZVISP_RECORD_OPERATIONS
  // Sets the defaults. Leaves enumSWDigitalSignatureMode, enumMergeFwInfoType, the padding and
  // stMapFw.ulTargetBank[64..255] as the memory was.
  STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING();

  // Empties the firmware map: count, all target banks, and every entry's ulReserved. The file bank
  // and path of entries 1..255 stay as they are; a plug-in that reads only ulCount entries sees
  // none of them.
  void ClearMapFW();

  // Reads the scalar settings from the file wszSettingFilePath; a missing key gets its default.
  // Prints nothing. Returns the value stored in ulProgStartBank.
  uint32_t LoadSetting();

  // Writes the firmware list to the file wszSettingFilePath. Prints "Open file error " and a
  // newline for each key when the file cannot be opened for writing.
  void SaveSetting();
#endif
} STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;

// clang-format off
#define ZVISP_AT ZVISP_RECORD_CHECK_AT
#define ZVISP_SIZE ZVISP_RECORD_CHECK_SIZE

ZVISP_RECORD_CHECK(wide_text_must_travel_as_4_byte_units, sizeof(wchar_t) == 4);

ZVISP_AT(STRUCT_C_STYLE_FW_BANK_SETTING, ulReserved,     0);
ZVISP_AT(STRUCT_C_STYLE_FW_BANK_SETTING, ulFileBank,     8);
ZVISP_AT(STRUCT_C_STYLE_FW_BANK_SETTING, wszPath,       12);
ZVISP_SIZE(STRUCT_C_STYLE_FW_BANK_SETTING, 1056);

ZVISP_AT(STRUCT_C_STYLE_MAP_FW, ulCount,         0);
ZVISP_AT(STRUCT_C_STYLE_MAP_FW, ulTargetBank,    4);
ZVISP_AT(STRUCT_C_STYLE_MAP_FW, stBank,       1032);
ZVISP_SIZE(STRUCT_C_STYLE_MAP_FW, 271368);

ZVISP_AT(STRUCT_FLAG_SETTING, ulFlagLength,    0);
ZVISP_AT(STRUCT_FLAG_SETTING, ucFlagData,      4);
ZVISP_AT(STRUCT_FLAG_SETTING, ulFlagAddr,   1224);
ZVISP_AT(STRUCT_FLAG_SETTING, ulReserved,   1228);
ZVISP_SIZE(STRUCT_FLAG_SETTING, 1232);

ZVISP_AT(STRUCT_READ_VERSION_FROM_FLASH_SETTING, enumRecordVerMode,  0);
ZVISP_AT(STRUCT_READ_VERSION_FROM_FLASH_SETTING, ulVerAddr,          4);
ZVISP_AT(STRUCT_READ_VERSION_FROM_FLASH_SETTING, ulTotalVerLen,      8);
ZVISP_AT(STRUCT_READ_VERSION_FROM_FLASH_SETTING, ulMajorVerLen,     12);
ZVISP_AT(STRUCT_READ_VERSION_FROM_FLASH_SETTING, ulSubVerLen,       16);
ZVISP_SIZE(STRUCT_READ_VERSION_FROM_FLASH_SETTING, 20);

ZVISP_AT(STRUCT_READ_USER_DEFINED_VERSION_SETTING, ulReserved, 0);
ZVISP_SIZE(STRUCT_READ_USER_DEFINED_VERSION_SETTING, 4);

ZVISP_AT(STRUCT_DUMP_FLASH_SETTING, ulDumpAddr,  0);
ZVISP_AT(STRUCT_DUMP_FLASH_SETTING, ulDumpLen,   4);
ZVISP_AT(STRUCT_DUMP_FLASH_SETTING, wszDumpFile, 8);
ZVISP_SIZE(STRUCT_DUMP_FLASH_SETTING, 1048);

ZVISP_AT(STRUCT_I2C_WRITE_ACTION_TYPE_SETTING, ucSlave,     0);
ZVISP_AT(STRUCT_I2C_WRITE_ACTION_TYPE_SETTING, ucSubAddr,   1);
ZVISP_AT(STRUCT_I2C_WRITE_ACTION_TYPE_SETTING, ucDataLen,   2);
ZVISP_AT(STRUCT_I2C_WRITE_ACTION_TYPE_SETTING, ucData,      3);
ZVISP_AT(STRUCT_I2C_WRITE_ACTION_TYPE_SETTING, bDdcciCmd, 260);
ZVISP_SIZE(STRUCT_I2C_WRITE_ACTION_TYPE_SETTING, 264);

ZVISP_AT(STRUCT_MERGE_FW_INFO_SETTING, ulLength, 0);
ZVISP_AT(STRUCT_MERGE_FW_INFO_SETTING, ucData,   4);
ZVISP_SIZE(STRUCT_MERGE_FW_INFO_SETTING, 20);

ZVISP_AT(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING, enumActionType,                  0);
ZVISP_AT(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING, enumDigitalSignatureType,        4);
ZVISP_AT(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING, enumSWDigitalSignatureMode,      8);
ZVISP_AT(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING, enumVersionLocationType,        12);
ZVISP_AT(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING, enumUserDefinedVersionType,     16);
ZVISP_AT(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING, enumMergeFwInfoType,            20);
ZVISP_AT(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING, enumCommID,                     24);
ZVISP_AT(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING, enumEdpIspMode,                 28);
ZVISP_AT(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING, bAutoSlaveAddr,                 32);
ZVISP_AT(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING, ucSlaveAddr,                    36);
ZVISP_AT(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING, bSearchFw,                      40);
ZVISP_AT(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING, bCompareVer,                    44);
ZVISP_AT(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING, bIspChannel,                    48);
ZVISP_AT(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING, enumBootCodeType,               52);
ZVISP_AT(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING, enumIspMode,                    56);
ZVISP_AT(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING, ulReserved,                     60);
ZVISP_AT(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING, ulProgStartBank,                64);
ZVISP_AT(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING, stMapFw,                        72);
ZVISP_AT(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING, stFlagSetting,              271440);
ZVISP_AT(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING, stReadVersionFromFlash,     272672);
ZVISP_AT(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING, stReadUserDefinedVersion,   272692);
ZVISP_AT(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING, stDumpFlash,                272696);
ZVISP_AT(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING, stI2CWriteAction,           273744);
ZVISP_AT(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING, wszSettingFilePath,         274008);
ZVISP_AT(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING, szBootFwPath,               275048);
ZVISP_AT(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING, stMergeFwInfo,              275308);
ZVISP_SIZE(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING, 275328);

#undef ZVISP_AT
#undef ZVISP_SIZE
// clang-format on

#endif  // ZVISP_PLUGIN_COMMAND_SETTING_H_
