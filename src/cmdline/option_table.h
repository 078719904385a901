// SPDX-License-Identifier: MIT
//
// The utility's long options, one row each. Adding an option is adding a row here; the scanner's
// registration, the reading of values, the manual and the completions follow from it or are
// checked against it.
#ifndef ZVISP_CMDLINE_OPTION_TABLE_H_
#define ZVISP_CMDLINE_OPTION_TABLE_H_

#include <cstdint>
#include <string>
#include <variant>

#include "cmdline/isp_cmd_args.h"
#include "cmdline/option_scanner.h"

// A member of the raw argument record with one bit for each option of a kind.
using BitField = std::uint32_t STRUCT_CP_ISP_CMD_ARGS::*;

// What an option does with the raw argument record.
struct AddBits {  // ORs its value into a bit field, without an argument of its own
  BitField bits;
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
  int value;     // AddBits: the bit; others: the code that the scanner returns
  OptionEffect effect;
};

using Args = STRUCT_CP_ISP_CMD_ARGS;

// In registration order, which decides the order of names in the scanner's messages.
// clang-format off
inline constexpr OptionRow kOptions[] = {
  // name                argument           value      effect
  {"verify",             kNoArgument,       0x1,       AddBits{&Args::ulActionBits}},
  {"sign",               kNoArgument,       0x2,       AddBits{&Args::ulActionBits}},
  {"erase",              kNoArgument,       0x4,       AddBits{&Args::ulActionBits}},
  {"isp",                kNoArgument,       0x8,       AddBits{&Args::ulActionBits}},
  {"ispuser",            kNoArgument,       0x10,      AddBits{&Args::ulActionBits}},
  {"ispdiff",            kNoArgument,       0x20,      AddBits{&Args::ulActionBits}},
  {"ispcopy",            kNoArgument,       0x40,      AddBits{&Args::ulActionBits}},
  {"factoryisp",         kNoArgument,       0x10000,   AddBits{&Args::ulActionBits}},
  {"recordver",          kNoArgument,       0x80,      AddBits{&Args::ulActionBits}},
  {"srstatus",           kNoArgument,       0x100,     AddBits{&Args::ulActionBits}},
  {"flashtype",          kNoArgument,       0x200,     AddBits{&Args::ulActionBits}},
  {"readsr",             kNoArgument,       0x400,     AddBits{&Args::ulActionBits}},
  {"writesr",            kNoArgument,       0x800,     AddBits{&Args::ulActionBits}},
  {"readsafeguard",      kNoArgument,       0x1000,    AddBits{&Args::ulActionBits}},
  {"writesafeguard",     kNoArgument,       0x2000,    AddBits{&Args::ulActionBits}},
  {"resetmcu",           kNoArgument,       0x4000,    AddBits{&Args::ulActionBits}},
  {"dumpflash",          kNoArgument,       0x8000,    AddBits{&Args::ulActionBits}},
  {"getstatus",          kNoArgument,       0x20000,   AddBits{&Args::ulActionBits}},
  {"userdefinedinfo",    kNoArgument,       0x40000,   AddBits{&Args::ulActionBits}},
  {"edpisp",             kNoArgument,       0x80000,   AddBits{&Args::ulActionBits}},
  {"enterispmode",       kNoArgument,       0x100000,  AddBits{&Args::ulActionBits}},
  {"mergefwinfo",        kNoArgument,       0x200000,  AddBits{&Args::ulActionBits}},
  {"senduserdefinedinfo", kNoArgument,      0x400000,  AddBits{&Args::ulActionBits}},
  {"i2cwrite",           kNoArgument,       0x800000,  AddBits{&Args::ulActionBits}},
  {"getscalertype",      kNoArgument,       0x1000000, AddBits{&Args::ulActionBits}},
  {"boot",               kRequiredArgument, 42,        StoreText{&Args::strBoot}},
  {"newboot",            kNoArgument,       40,        SetSwitch{&Args::bNewBoot, 1}},
  {"ispchannel",         kNoArgument,       49,        SetSwitch{&Args::bIspChannel, 1}},
  {"factory",            kNoArgument,       41,        SetSwitch{&Args::nIspMode, 2}},
  {"sw",                 kNoArgument,       0x1,       AddBits{&Args::ulSignatureTypeBits}},
  {"hw",                 kNoArgument,       0x2,       AddBits{&Args::ulSignatureTypeBits}},
  {"dsmode",             kRequiredArgument, 8,         StoreText{&Args::strSignatureMode}},
  {"reg",                kNoArgument,       0x1,       AddBits{&Args::ulInformationBits}},
  {"ddcci",              kNoArgument,       0x2,       AddBits{&Args::ulInformationBits}},
  {"flash",              kNoArgument,       0x4,       AddBits{&Args::ulInformationBits}},
  {"fwbin",              kNoArgument,       0x8,       AddBits{&Args::ulInformationBits}},
  {"cmd",                kNoArgument,       0x10,      AddBits{&Args::ulInformationBits}},
  {"fwbincmd",           kNoArgument,       0x20,      AddBits{&Args::ulInformationBits}},
  {"copydiffer",         kNoArgument,       0x40,      AddBits{&Args::ulInformationBits}},
  {"userdefined",        kRequiredArgument, 0x80,      AddBits{&Args::ulInformationBits}},
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
  {"read",               kNoArgument,       0x1,       AddBits{&Args::ulReadWriteBits}},
  {"write",              kRequiredArgument, 0x2,       AddBits{&Args::ulReadWriteBits}},
  {"writedata",          kRequiredArgument, 55,        StoreText{&Args::strWriteData}},
  {"ddccicmd",           kNoArgument,       56,        SetSwitch{&Args::bDdcciCmd, 1}},
};
// clang-format on

#endif  // ZVISP_CMDLINE_OPTION_TABLE_H_
