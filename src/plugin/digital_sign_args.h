// SPDX-License-Identifier: MIT
//
// The digital-signature record: one signing or verification request to the signature plug-in.
//
// A wire format like the command-setting record (plugin/command_setting.h, which also explains the
// field prefixes): 1840 bytes, little-endian, every byte zero after construction. All texts are
// UTF-8 and NUL-terminated inside their 260 bytes.
#ifndef ZVISP_PLUGIN_DIGITAL_SIGN_ARGS_H_
#define ZVISP_PLUGIN_DIGITAL_SIGN_ARGS_H_

#include <stddef.h>
#include <stdint.h>

#include "plugin/record_language.h"

// The numbers of all enumerations here reach plug-ins: never renumber them.

typedef enum ENUM_CP_DIGITAL_SIGNATURE_ACTION_TYPE {
  CP_DIGITAL_SIGNATURE_ACTION_NONE = 0,
  CP_DIGITAL_SIGNATURE_ACTION_SIGN = 1,
  CP_DIGITAL_SIGNATURE_ACTION_VERIFY = 2
} ENUM_CP_DIGITAL_SIGNATURE_ACTION_TYPE;

typedef enum ENUM_CP_DIGITAL_SIGNATURE_TYPE {
  CP_DIGITAL_SIGNATURE_NONE = 0,
  CP_DIGITAL_SIGNATURE_SW = 1,  // --sw
  CP_DIGITAL_SIGNATURE_HW = 2   // --hw
} ENUM_CP_DIGITAL_SIGNATURE_TYPE;

typedef enum ENUM_CP_DIGITAL_SIGNATURE_SW_MODE {
  CP_DIGITAL_SIGNATURE_SW_MODE_NONE = 0,
  CP_DIGITAL_SIGNATURE_SW_MODE_TAVERO = 1,            // verify key file and sub-certificate
  CP_DIGITAL_SIGNATURE_SW_MODE_INTERNAL_KEY = 2,      // internal key pair, chosen by index
  CP_DIGITAL_SIGNATURE_SW_MODE_EXTERNAL_KEY = 3,      // external key files
  CP_DIGITAL_SIGNATURE_SW_MODE_EXTERNAL_NEXT_KEY = 4  // external keys, and the next verify key
} ENUM_CP_DIGITAL_SIGNATURE_SW_MODE;

// The meaning of the hardware modes lies in the signature plug-in.
typedef enum ENUM_CP_DIGITAL_SIGNATURE_HW_MODE {
  CP_DIGITAL_SIGNATURE_HW_MODE_NONE = 0,
  CP_DIGITAL_SIGNATURE_HW_MODE_1 = 1,
  CP_DIGITAL_SIGNATURE_HW_MODE_2 = 2,
  CP_DIGITAL_SIGNATURE_HW_MODE_3 = 3,
  CP_DIGITAL_SIGNATURE_HW_MODE_4 = 4
} ENUM_CP_DIGITAL_SIGNATURE_HW_MODE;

enum {
  kSignTextCapacity = 260,   // bytes of every text field, terminating zero included
  kDeviceKeyCapacity = 1220  // bytes of the verify key that a device gives (GetKeyFromFlash)
};

typedef struct STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS {
  uint32_t enumActionType;                      //    0 ENUM_CP_DIGITAL_SIGNATURE_ACTION_TYPE
  uint32_t enumSignatureType;                   //    4 ENUM_CP_DIGITAL_SIGNATURE_TYPE
  uint32_t enumSwMode;                          //    8 --dsmode with --sw, 1..4
  uint32_t enumHwMode;                          //   12 --dsmode with --hw, 1..2
  int32_t nKeyPairIndex;                        //   16 --keypair, 0..4
  char szFwFile[kSignTextCapacity];             //   20 --fw, full path
  char szSignatureFile[kSignTextCapacity];      //  280 --signfile, full path
  char szKeyPair[kSignTextCapacity];            //  540 --keypair as typed
  char szVerifyKeyFile[kSignTextCapacity];      //  800 --vkfile
  char szSignKeyFile[kSignTextCapacity];        // 1060 --skfile
  char szSubCertFile[kSignTextCapacity];        // 1320 --subcert
  char szNextVerifyKeyFile[kSignTextCapacity];  // 1580 --nextvkfile
#ifdef ZVISP_RECORD_OPERATIONS
  STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS();
#endif
} STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS;

// clang-format off
#define ZVISP_AT(field, offset) \
  ZVISP_RECORD_CHECK_AT(STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS, field, offset)

ZVISP_AT(enumActionType,         0);
ZVISP_AT(enumSignatureType,      4);
ZVISP_AT(enumSwMode,             8);
ZVISP_AT(enumHwMode,            12);
ZVISP_AT(nKeyPairIndex,         16);
ZVISP_AT(szFwFile,              20);
ZVISP_AT(szSignatureFile,      280);
ZVISP_AT(szKeyPair,            540);
ZVISP_AT(szVerifyKeyFile,      800);
ZVISP_AT(szSignKeyFile,       1060);
ZVISP_AT(szSubCertFile,       1320);
ZVISP_AT(szNextVerifyKeyFile, 1580);
ZVISP_RECORD_CHECK_SIZE(STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS, 1840);

#undef ZVISP_AT
// clang-format on

#endif  // ZVISP_PLUGIN_DIGITAL_SIGN_ARGS_H_
