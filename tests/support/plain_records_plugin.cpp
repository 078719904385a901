// SPDX-License-Identifier: MIT
//
// A plug-in in C++11 that declares every record, as a global and as a local object. It loads only
// where none of them calls a constructor of the tool. IspFlash takes the run's record apart into
// them and answers with the sum of what it finds there.
#include <cstring>
#include <type_traits>

#include "plugin/zvisp_plugin.h"

namespace {

STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING g_setting;
STRUCT_C_STYLE_MAP_FW g_map;
STRUCT_C_STYLE_FW_BANK_SETTING g_bank;
STRUCT_FLAG_SETTING g_flag;
STRUCT_READ_VERSION_FROM_FLASH_SETTING g_version;
STRUCT_READ_USER_DEFINED_VERSION_SETTING g_user_version;
STRUCT_DUMP_FLASH_SETTING g_dump;
STRUCT_I2C_WRITE_ACTION_TYPE_SETTING g_i2c;
STRUCT_MERGE_FW_INFO_SETTING g_merge;
STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS g_sign;

template <typename... Records>
struct ArePlain : std::true_type {};

template <typename First, typename... Others>
struct ArePlain<First, Others...>
    : std::integral_constant<bool, std::is_trivial<First>::value &&
                                       std::is_standard_layout<First>::value &&
                                       ArePlain<Others...>::value> {};

static_assert(ArePlain<decltype(g_setting), decltype(g_map), decltype(g_bank), decltype(g_flag),
                       decltype(g_version), decltype(g_user_version), decltype(g_dump),
                       decltype(g_i2c), decltype(g_merge), decltype(g_sign)>::value,
              "a plug-in sees plain structs");

bool IsZero(const void* record, std::size_t size) {
  const unsigned char* const bytes = static_cast<const unsigned char*>(record);
  return bytes[0] == 0 && std::memcmp(bytes, bytes + 1, size - 1) == 0;
}

// A global object is zero, as in C: no constructor has run.
bool AreGlobalsZero() {
  return IsZero(&g_setting, sizeof g_setting) && IsZero(&g_map, sizeof g_map) &&
         IsZero(&g_bank, sizeof g_bank) && IsZero(&g_flag, sizeof g_flag) &&
         IsZero(&g_version, sizeof g_version) && IsZero(&g_user_version, sizeof g_user_version) &&
         IsZero(&g_dump, sizeof g_dump) && IsZero(&g_i2c, sizeof g_i2c) &&
         IsZero(&g_merge, sizeof g_merge) && IsZero(&g_sign, sizeof g_sign);
}

// The bytes of the path as one number, so that a test sees that it was converted.
int SumOfPath(const STRUCT_C_STYLE_FW_BANK_SETTING& bank) {
  char path[kPathUtf8Capacity];
  if (ZvWideToUtf8(bank.wszPath, kPathCapacity, path, sizeof path) == 0) return -1;
  return static_cast<int>(std::strlen(path));
}

}  // namespace

int IspFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting) {
  if (!AreGlobalsZero()) return 1;
  STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING local = *setting;
  STRUCT_C_STYLE_MAP_FW map = local.stMapFw;
  STRUCT_C_STYLE_FW_BANK_SETTING bank = map.stBank[0];
  STRUCT_FLAG_SETTING flag = local.stFlagSetting;
  STRUCT_READ_VERSION_FROM_FLASH_SETTING version = local.stReadVersionFromFlash;
  STRUCT_READ_USER_DEFINED_VERSION_SETTING user_version = local.stReadUserDefinedVersion;
  STRUCT_DUMP_FLASH_SETTING dump = local.stDumpFlash;
  STRUCT_I2C_WRITE_ACTION_TYPE_SETTING i2c = local.stI2CWriteAction;
  STRUCT_MERGE_FW_INFO_SETTING merge = local.stMergeFwInfo;
  STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS sign = STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS();
  g_setting = local;
  if (std::memcmp(&g_setting, setting, sizeof g_setting) != 0) return 2;
  if (version.ulVerAddr != 0 || user_version.ulReserved != 0 || dump.ulDumpLen != 0) return 3;
  if (i2c.ucDataLen != 1 || merge.ulLength != 0 || !IsZero(&sign, sizeof sign)) return 4;
  const uint32_t sum =
      map.ulCount * 0x10000 + local.enumCommID * 0x1000 + flag.ulFlagLength * 0x100;
  return static_cast<int>(sum) + SumOfPath(bank);
}

int RecordFWVersion(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING*) {
  return 5;
}

int GetKeyFromFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING*, unsigned char*) {
  return 5;
}

int DumpFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING*) {
  return 5;
}

void SetCommInterface(CZvComm*) {}

void SetUIFunction(ZvReturnProgress, ZvShowMessage, ZvGetHubDevice) {}
