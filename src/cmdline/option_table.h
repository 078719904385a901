// SPDX-License-Identifier: MIT
//
// The utility's long options, one row each: its name, its argument, its effect on the raw argument
// record and, for an option with a bit, the number that the bit means in the judged record. The
// scanner gets its options from here; the manual and the completions are compared with it.
#ifndef ZVISP_CMDLINE_OPTION_TABLE_H_
#define ZVISP_CMDLINE_OPTION_TABLE_H_

#include <algorithm>
#include <bit>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>
#include <variant>

#include "cmdline/isp_cmd_args.h"
#include "cmdline/option_scanner.h"
#include "plugin/command_setting.h"
#include "plugin/digital_sign_args.h"

namespace zvisp {

// A member of the raw argument record with one bit for each option of a kind.
using BitField = std::uint32_t STRUCT_CP_ISP_CMD_ARGS::*;

// What an option does with the raw argument record.
struct AddBits {  // ORs its value into a bit field
  BitField field;
  std::uint32_t number;  // what this bit alone means in the judged record
};
struct StoreText {
  std::string STRUCT_CP_ISP_CMD_ARGS::*text;
};
struct SetSwitch {
  std::int32_t STRUCT_CP_ISP_CMD_ARGS::*field;
  std::int32_t setting;
};
struct InsertFwFile {
  unsigned int slot;
};
struct InsertStartBank {
  unsigned int slot;
};
struct TakeFirmware {};  // --fw: a text and slot 0 at once
struct SearchFirmware {};
struct ChooseEdpMode {};

using OptionEffect = std::variant<AddBits, StoreText, SetSwitch, InsertFwFile, InsertStartBank,
                                  TakeFirmware, SearchFirmware, ChooseEdpMode>;

struct OptionRow {
  const char* name;
  int argument;  // kNoArgument or kRequiredArgument
  int value;     // AddBits: the bit; others: a code that only the scanner's messages show
  OptionEffect effect;
};

using Args = STRUCT_CP_ISP_CMD_ARGS;

constexpr AddBits Action(ENUM_CP_ISPTOOL_ACTION_TYPE number) {
  return {&Args::ulActionBits, number};
}
constexpr AddBits Signature(ENUM_CP_DIGITAL_SIGNATURE_TYPE number) {
  return {&Args::ulSignatureTypeBits, number};
}
constexpr AddBits Version(ENUM_VERSION_LOCATION_TYPE number) {
  return {&Args::ulInformationBits, number};
}
constexpr AddBits Merge(ENUM_CP_MERGE_FW_INFO_TYPE number) {
  return {&Args::ulReadWriteBits, number};
}

// In registration order, which decides the order of names in the scanner's messages.
// clang-format off
inline constexpr OptionRow kOptions[] = {
  // name                argument     value      effect
  {"verify",              kNoArgument, 0x1,       Action(CP_ISPTOOL_ACTION_VERIFY)},
  {"sign",                kNoArgument, 0x2,       Action(CP_ISPTOOL_ACTION_SIGN)},
  {"erase",               kNoArgument, 0x4,       Action(CP_ISPTOOL_ACTION_ERASE)},
  {"isp",                 kNoArgument, 0x8,       Action(CP_ISPTOOL_ACTION_ISP)},
  {"ispuser",             kNoArgument, 0x10,      Action(CP_ISPTOOL_ACTION_ISP_USER)},
  {"ispdiff",             kNoArgument, 0x20,      Action(CP_ISPTOOL_ACTION_ISP_DIFF)},
  {"ispcopy",             kNoArgument, 0x40,      Action(CP_ISPTOOL_ACTION_ISP_COPY)},
  // Kept quirk: --factoryisp alone is refused, because its bit means no action.
  {"factoryisp",          kNoArgument, 0x10000,   Action(CP_ISPTOOL_ACTION_UNDEFINED)},
  {"recordver",           kNoArgument, 0x80,      Action(CP_ISPTOOL_ACTION_RECORD_VERSION)},
  {"srstatus",            kNoArgument, 0x100,     Action(CP_ISPTOOL_ACTION_SR_STATUS)},
  {"flashtype",           kNoArgument, 0x200,     Action(CP_ISPTOOL_ACTION_FLASH_TYPE)},
  {"readsr",              kNoArgument, 0x400,     Action(CP_ISPTOOL_ACTION_READ_SR)},
  {"writesr",             kNoArgument, 0x800,     Action(CP_ISPTOOL_ACTION_WRITE_SR)},
  {"readsafeguard",       kNoArgument, 0x1000,    Action(CP_ISPTOOL_ACTION_READ_SAFEGUARD)},
  {"writesafeguard",      kNoArgument, 0x2000,    Action(CP_ISPTOOL_ACTION_WRITE_SAFEGUARD)},
  {"resetmcu",            kNoArgument, 0x4000,    Action(CP_ISPTOOL_ACTION_RESET_MCU)},
  {"dumpflash",           kNoArgument, 0x8000,    Action(CP_ISPTOOL_ACTION_DUMP_FLASH)},
  {"getstatus",           kNoArgument, 0x20000,   Action(CP_ISPTOOL_ACTION_GET_STATUS)},
  {"userdefinedinfo",     kNoArgument, 0x40000,   Action(CP_ISPTOOL_ACTION_USER_DEFINED_INFO)},
  {"edpisp",              kNoArgument, 0x80000,   Action(CP_ISPTOOL_ACTION_EDP_ISP)},
  {"enterispmode",        kNoArgument, 0x100000,  Action(CP_ISPTOOL_ACTION_ENTER_ISP_MODE)},
  {"mergefwinfo",         kNoArgument, 0x200000,  Action(CP_ISPTOOL_ACTION_MERGE_FW_INFO)},
  {"senduserdefinedinfo", kNoArgument, 0x400000,  Action(CP_ISPTOOL_ACTION_SEND_USER_DEFINED_INFO)},
  {"i2cwrite",            kNoArgument, 0x800000,  Action(CP_ISPTOOL_ACTION_I2C_WRITE)},
  {"getscalertype",       kNoArgument, 0x1000000, Action(CP_ISPTOOL_ACTION_GET_SCALER_TYPE)},
  // name                argument           value      effect
  {"boot",               kRequiredArgument, 42,        StoreText{&Args::strBoot}},
  {"newboot",            kNoArgument,       40,        SetSwitch{&Args::bNewBoot, 1}},
  {"ispchannel",         kNoArgument,       49,        SetSwitch{&Args::bIspChannel, 1}},
  {"factory",            kNoArgument,       41,        SetSwitch{&Args::nIspMode, 2}},
  {"sw",                 kNoArgument,       0x1,       Signature(CP_DIGITAL_SIGNATURE_SW)},
  {"hw",                 kNoArgument,       0x2,       Signature(CP_DIGITAL_SIGNATURE_HW)},
  {"dsmode",             kRequiredArgument, 8,         StoreText{&Args::strSignatureMode}},
  {"reg",                kNoArgument,       0x1,       Version(VERSION_LOCATION_REG)},
  {"ddcci",              kNoArgument,       0x2,       Version(VERSION_LOCATION_DDCCI)},
  {"flash",              kNoArgument,       0x4,       Version(VERSION_LOCATION_FLASH)},
  {"fwbin",              kNoArgument,       0x8,       Version(VERSION_LOCATION_FW_BIN)},
  {"cmd",                kNoArgument,       0x10,      Version(VERSION_LOCATION_CMD)},
  {"fwbincmd",           kNoArgument,       0x20,      Version(VERSION_LOCATION_FW_BIN_CMD)},
  {"copydiffer",         kNoArgument,       0x40,      Version(VERSION_LOCATION_COPY_DIFFER)},
  {"userdefined",        kRequiredArgument, 0x80,      Version(VERSION_LOCATION_USER_DEFINED)},
  {"veraddr",            kRequiredArgument, 44,        StoreText{&Args::strVerAddr}},
  {"totalverlen",        kRequiredArgument, 45,        StoreText{&Args::strTotalVerLen}},
  {"majorverlen",        kRequiredArgument, 46,        StoreText{&Args::strMajorVerLen}},
  {"subverlen",          kRequiredArgument, 47,        StoreText{&Args::strSubVerLen}},
  {"recordvermode",      kRequiredArgument, 48,        StoreText{&Args::strRecordVerMode}},
  {"dumpaddr",           kRequiredArgument, 50,        StoreText{&Args::strDumpAddr}},
  {"dumplen",            kRequiredArgument, 51,        StoreText{&Args::strDumpLen}},
  {"dumpname",           kRequiredArgument, 52,        StoreText{&Args::strDumpName}},
  {"comm",               kRequiredArgument, 15,        StoreText{&Args::strComm}},
  {"fw",                 kRequiredArgument, 1,         TakeFirmware{}},
  {"signfile",           kRequiredArgument, 2,         StoreText{&Args::strSignFile}},
  {"keypair",            kRequiredArgument, 3,         StoreText{&Args::strKeyPair}},
  {"vkfile",             kRequiredArgument, 4,         StoreText{&Args::strVerifyKeyFile}},
  {"skfile",             kRequiredArgument, 5,         StoreText{&Args::strSignKeyFile}},
  {"subcert",            kRequiredArgument, 6,         StoreText{&Args::strSubCertFile}},
  {"nextvkfile",         kRequiredArgument, 7,         StoreText{&Args::strNextVerifyKeyFile}},
  {"bank",               kRequiredArgument, 16,        InsertStartBank{0}},
  {"settingfile",        kRequiredArgument, 53,        StoreText{&Args::strSettingFile}},
  {"fw1",                kRequiredArgument, 17,        InsertFwFile{1}},
  {"bank1",              kRequiredArgument, 18,        InsertStartBank{1}},
  {"fw2",                kRequiredArgument, 19,        InsertFwFile{2}},
  {"bank2",              kRequiredArgument, 20,        InsertStartBank{2}},
  {"fw3",                kRequiredArgument, 21,        InsertFwFile{3}},
  {"bank3",              kRequiredArgument, 22,        InsertStartBank{3}},
  {"fw4",                kRequiredArgument, 23,        InsertFwFile{4}},
  {"bank4",              kRequiredArgument, 24,        InsertStartBank{4}},
  {"fw5",                kRequiredArgument, 25,        InsertFwFile{5}},
  {"bank5",              kRequiredArgument, 26,        InsertStartBank{5}},
  {"fw6",                kRequiredArgument, 27,        InsertFwFile{6}},
  {"bank6",              kRequiredArgument, 28,        InsertStartBank{6}},
  {"fw7",                kRequiredArgument, 29,        InsertFwFile{7}},
  {"bank7",              kRequiredArgument, 30,        InsertStartBank{7}},
  {"fw8",                kRequiredArgument, 31,        InsertFwFile{8}},
  {"bank8",              kRequiredArgument, 32,        InsertStartBank{8}},
  {"fw9",                kRequiredArgument, 33,        InsertFwFile{9}},
  {"bank9",              kRequiredArgument, 34,        InsertStartBank{9}},
  {"comparever",         kNoArgument,       38,        SetSwitch{&Args::bCompareVer, 1}},
  {"flagaddr",           kRequiredArgument, 36,        StoreText{&Args::strFlagAddr}},
  {"flagdata",           kRequiredArgument, 37,        StoreText{&Args::strFlagData}},
  {"slave",              kRequiredArgument, 35,        StoreText{&Args::strSlave}},
  {"searchfw",           kRequiredArgument, 39,        SearchFirmware{}},
  {"edpmode",            kRequiredArgument, 54,        ChooseEdpMode{}},
  {"read",               kNoArgument,       0x1,       Merge(CP_MERGE_FW_INFO_READ)},
  {"write",              kRequiredArgument, 0x2,       Merge(CP_MERGE_FW_INFO_WRITE)},
  {"writedata",          kRequiredArgument, 55,        StoreText{&Args::strWriteData}},
  {"ddccicmd",           kNoArgument,       56,        SetSwitch{&Args::bDdcciCmd, 1}},
};
// clang-format on

// The member that an option's bit goes to; null for an option without one.
constexpr BitField FieldOf(const OptionRow& row) {
  const AddBits* const effect = std::get_if<AddBits>(&row.effect);
  return effect == nullptr ? nullptr : effect->field;
}

// A bit is single; a code is not one of the scanner's own.
constexpr bool IsLegal(const OptionRow& row) {
  return FieldOf(row) != nullptr ? std::has_single_bit(static_cast<std::uint32_t>(row.value))
                                 : 0 < row.value && row.value < kScanMissingArgument;
}

constexpr bool Clash(const OptionRow& row, const OptionRow& other) {
  return std::string_view(row.name) == other.name ||
         (FieldOf(row) == FieldOf(other) && row.value == other.value);
}

constexpr bool AllRowsDiffer() {
  for (const OptionRow* row = std::begin(kOptions); row != std::end(kOptions); ++row) {
    const auto clashes = [row](const OptionRow& other) { return Clash(*row, other); };
    if (std::any_of(row + 1, std::end(kOptions), clashes)) return false;
  }
  return true;
}

static_assert(std::all_of(std::begin(kOptions), std::end(kOptions), IsLegal),
              "a single bit, or a code below those of the scanner");
static_assert(AllRowsDiffer(), "each name once, each value once within its field");

}  // namespace zvisp

#endif  // ZVISP_CMDLINE_OPTION_TABLE_H_
