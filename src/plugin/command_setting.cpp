// SPDX-License-Identifier: MIT
#include "plugin/command_setting.h"

#include <algorithm>
#include <iterator>

#include "plugin/setting_defaults.h"

using namespace zvisp;

// The constructors are not inline: a compiler that sees the zero fill and the construction together
// may drop the fill as a dead store.

namespace {

// Kept quirk: of 256. Plug-ins rely on the count; the rest is what the memory was.
constexpr std::size_t kTargetBanksClearedByConstructor = 64;
constexpr std::uint8_t kUnsetByte = 0xFF;

template <typename Array>
void Zero(Array& array) {
  std::fill(std::begin(array), std::end(array), 0);
}

}  // namespace

STRUCT_C_STYLE_FW_BANK_SETTING::STRUCT_C_STYLE_FW_BANK_SETTING() {
  ulReserved = 0;
  ulFileBank = 0;
  Zero(wszPath);
}

STRUCT_C_STYLE_MAP_FW::STRUCT_C_STYLE_MAP_FW() {
  ulCount = 0;
  std::fill_n(ulTargetBank, kTargetBanksClearedByConstructor, 0);
}

STRUCT_FLAG_SETTING::STRUCT_FLAG_SETTING() {
  ulFlagLength = 0;
  std::fill(std::begin(ucFlagData), std::end(ucFlagData), kUnsetByte);
  ulFlagAddr = 0;
  ulReserved = 0;
}

STRUCT_READ_VERSION_FROM_FLASH_SETTING::STRUCT_READ_VERSION_FROM_FLASH_SETTING() {
  enumRecordVerMode = 0;
  ulVerAddr = 0;
  ulTotalVerLen = 0;
  ulMajorVerLen = 0;
  ulSubVerLen = 0;
}

STRUCT_READ_USER_DEFINED_VERSION_SETTING::STRUCT_READ_USER_DEFINED_VERSION_SETTING() {
  ulReserved = 0;
}

STRUCT_DUMP_FLASH_SETTING::STRUCT_DUMP_FLASH_SETTING() {
  ulDumpAddr = 0;
  ulDumpLen = 0;
  Zero(wszDumpFile);
}

STRUCT_I2C_WRITE_ACTION_TYPE_SETTING::STRUCT_I2C_WRITE_ACTION_TYPE_SETTING() {
  ucSlave = kUnsetByte;
  ucSubAddr = kUnsetByte;
  ucDataLen = 1;
  std::fill(std::begin(ucData), std::end(ucData), kUnsetByte);
  bDdcciCmd = 0;
}

STRUCT_MERGE_FW_INFO_SETTING::STRUCT_MERGE_FW_INFO_SETTING() {
  ulLength = 0;
  Zero(ucData);
}

// cppcheck-suppress uninitMemberVar
STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING::STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING() {
  SetScalarDefaults(*this);
}

void STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING::ClearMapFW() {
  stMapFw.ulCount = 0;
  Zero(stMapFw.ulTargetBank);
  for (STRUCT_C_STYLE_FW_BANK_SETTING& bank : stMapFw.stBank) {
    bank.ulReserved = 0;
  }
  // Only the first entry loses its file: plug-ins have always seen the others unchanged here.
  stMapFw.stBank[0].ulFileBank = 0;
  Zero(stMapFw.stBank[0].wszPath);
}
