// SPDX-License-Identifier: MIT
#include "support/command_line_model.h"

#include <limits.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <optional>

#include "support/fuzzing.h"

namespace {

using Args = STRUCT_CP_ISP_CMD_ARGS;
using Setting = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;
using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t kBankBytes = 65536;
constexpr std::uint32_t kLastStartBank = 255;
constexpr std::uint32_t kLastBank = 510;
constexpr std::size_t kBankPathUnits = 256;
constexpr std::uint8_t kUnset = 0xFF;

// A number as the tool reads it: by the C library, then cut to 32 bits.
std::optional<std::int32_t> Number(const std::string& text) {
  char* end = nullptr;
  const long value = std::strtol(text.c_str(), &end, 0);
  if (*end != '\0') return std::nullopt;
  return static_cast<std::int32_t>(value);
}

// A list that was accepted.
Bytes ByteList(const std::string& text, char delimiter) {
  Bytes bytes;
  for (std::size_t start = 0; start <= text.size();) {
    const std::size_t end = std::min(text.find(delimiter, start), text.size());
    if (end > start) {
      const auto byte = Number(text.substr(start, end - start));
      PROMISE(byte && *byte >= 0 && *byte <= 0xFF);
      bytes.push_back(static_cast<std::uint8_t>(*byte));
    }
    start = end + 1;
  }
  return bytes;
}

// Whether the array holds the bytes and nothing else after them.
template <std::size_t kCapacity>
bool HoldsOnly(const std::uint8_t (&array)[kCapacity], const Bytes& bytes, std::uint8_t rest) {
  const std::size_t count = std::min(bytes.size(), kCapacity);
  return std::equal(array, array + count, bytes.begin()) &&
         std::all_of(array + count, array + kCapacity, [rest](auto byte) { return byte == rest; });
}

template <typename Unit, std::size_t kCapacity>
bool IsTerminated(const Unit (&text)[kCapacity]) {
  return std::find(std::begin(text), std::end(text), Unit{}) != std::end(text);
}

void CheckTexts(const CCpIspArgsParse& parser) {
  const Setting& setting = parser.GetISPCmdSetting();
  PROMISE(IsTerminated(setting.szBootFwPath));
  PROMISE(IsTerminated(setting.wszSettingFilePath));
  PROMISE(IsTerminated(setting.stDumpFlash.wszDumpFile));
  const auto& sign = parser.GetDigitalSignArgs();
  for (const auto* const text :
       {&sign.szFwFile, &sign.szSignatureFile, &sign.szKeyPair, &sign.szVerifyKeyFile,
        &sign.szSignKeyFile, &sign.szSubCertFile, &sign.szNextVerifyKeyFile}) {
    PROMISE(IsTerminated(*text));
  }
}

void CheckRanges(const Setting& setting) {
  PROMISE(setting.enumActionType >= 1 && setting.enumActionType <= 25);
  PROMISE(setting.enumVersionLocationType <= 8);
  PROMISE(setting.enumUserDefinedVersionType <= 3);
  PROMISE(setting.enumDigitalSignatureType <= 2);
  PROMISE(setting.enumSWDigitalSignatureMode <= 4);
  PROMISE(setting.enumCommID <= 16);
  PROMISE(setting.enumIspMode == 1 || setting.enumIspMode == 2);
  PROMISE(setting.ulReserved == 0);
}

// The file as programming names it, and its size; both empty when it cannot be programmed.
std::wstring FullPath(const CCpZvString& name, const std::string& directory, std::size_t& bytes) {
  const std::string given = name.GetUtf8String();
  const bool absolute = given.find('/') == 0 || given.find(":\\") == 1 || given.find("://") == 1;
  char resolved[PATH_MAX] = {};
  if (absolute) {
    PROMISE(given.size() < sizeof resolved);
    std::strcpy(resolved, given.c_str());
  } else {
    PROMISE(realpath((directory + given).c_str(), resolved) != nullptr);
  }
  struct stat look = {};
  PROMISE(stat(resolved, &look) == 0 && S_ISREG(look.st_mode));
  bytes = static_cast<std::size_t>(look.st_size);
  CCpZvString path;
  path = std::string(resolved);
  return path.GetString();
}

// The entry of a target bank; null when there is none.
const STRUCT_C_STYLE_FW_BANK_SETTING* EntryOf(const STRUCT_C_STYLE_MAP_FW& map,
                                              std::uint32_t bank) {
  const auto* const end = map.ulTargetBank + map.ulCount;
  const auto* const found = std::lower_bound(map.ulTargetBank, end, bank);
  return found == end || *found != bank ? nullptr : &map.stBank[found - map.ulTargetBank];
}

// Every bank of the slot's file, in order; returns how many there are.
std::size_t CheckSlot(const STRUCT_FW_BANK_SETTING& slot, const STRUCT_C_STYLE_MAP_FW& map,
                      const std::string& directory) {
  PROMISE(slot.ulBank <= kLastStartBank);
  std::size_t bytes = 0;
  const std::wstring path = FullPath(slot.strFwPath, directory, bytes).substr(0, kBankPathUnits);
  const std::size_t banks = (bytes + kBankBytes - 1) / kBankBytes;
  for (std::uint32_t bank = 0; bank < banks; ++bank) {
    const auto* const entry = EntryOf(map, slot.ulBank + bank);
    PROMISE(entry != nullptr);
    PROMISE(entry->ulFileBank == bank);
    PROMISE(entry->ulReserved == 0);
    PROMISE(IsTerminated(entry->wszPath));
    PROMISE(path == entry->wszPath);
  }
  return banks;
}

void CheckOrder(const STRUCT_C_STYLE_MAP_FW& map) {
  PROMISE(map.ulCount <= kMapFwCapacity);
  for (std::uint32_t i = 0; i < map.ulCount; ++i) {
    PROMISE(map.ulTargetBank[i] <= kLastBank);
    PROMISE(i == 0 || map.ulTargetBank[i - 1] < map.ulTargetBank[i]);
  }
}

bool Programs(const Setting& setting) {
  const std::uint32_t action = setting.enumActionType;
  return (action >= 4 && action <= 7) || action == 17;
}

// To sign and verify files needs no map; with a signature type those actions end before it.
bool HasMap(const Setting& setting) {
  const std::uint32_t location = setting.enumVersionLocationType;
  return Programs(setting) || (setting.enumActionType == 8 && (location == 4 || location == 6));
}

// Every slot's banks, and no bank that no slot has.
void CheckBankMap(const CCpIspArgsParse& parser, const std::string& directory) {
  const auto& map = parser.GetISPCmdSetting().stMapFw;
  CheckOrder(map);
  std::size_t banks = 0;
  if (HasMap(parser.GetISPCmdSetting())) {
    for (const auto& [number, slot] : parser.GetSlots())
      banks += CheckSlot(slot, map, directory);
  }
  PROMISE(map.ulCount == banks);
}

// What is verified before programming is what is programmed from slot 0.
void CheckVerifiedPath(const CCpIspArgsParse& parser, const std::string& directory) {
  const Setting& setting = parser.GetISPCmdSetting();
  if (!Programs(setting) || setting.enumDigitalSignatureType != CP_DIGITAL_SIGNATURE_SW ||
      setting.enumIspMode == ISP_MODE_FACTORY) {
    return;
  }
  const auto slot = parser.GetSlots().find(0);
  PROMISE(slot != parser.GetSlots().end());
  std::size_t bytes = 0;
  const std::wstring programmed = FullPath(slot->second.strFwPath, directory, bytes);
  CCpZvString verified;
  verified = std::string(parser.GetDigitalSignArgs().szFwFile);
  // In mode 4 a file that is not accepted keeps its name as typed; the run then ends before it
  // programs.
  const bool as_typed = setting.enumSWDigitalSignatureMode == 4 &&
                        slot->second.strFwPath.GetUtf8String() == verified.GetUtf8String();
  PROMISE(programmed == verified.GetString() || as_typed);
}

void CheckUserFlag(const Args& args, const Setting& setting) {
  const STRUCT_FLAG_SETTING& flag = setting.stFlagSetting;
  const bool given =
      setting.enumActionType == CP_ISPTOOL_ACTION_ISP_USER && !args.strFlagAddr.empty();
  const Bytes bytes = given ? ByteList(args.strFlagData, ',') : Bytes();
  PROMISE(flag.ulFlagLength == (bytes.size() & 0xFF));
  PROMISE(flag.ulFlagAddr ==
          (given ? static_cast<std::uint32_t>(Number(args.strFlagAddr).value_or(0)) : 0));
  PROMISE(HoldsOnly(flag.ucFlagData, bytes, kUnset));
  PROMISE(flag.ulReserved == 0);
}

// The byte between the data and the switch belongs to nobody.
bool IsPaddingZero(const STRUCT_I2C_WRITE_ACTION_TYPE_SETTING& i2c) {
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(&i2c);
  constexpr std::size_t kAfterData =
      offsetof(STRUCT_I2C_WRITE_ACTION_TYPE_SETTING, ucData) + kI2cDataCapacity;
  return std::all_of(bytes + kAfterData,
                     bytes + offsetof(STRUCT_I2C_WRITE_ACTION_TYPE_SETTING, bDdcciCmd),
                     [](std::uint8_t byte) { return byte == 0; });
}

void CheckI2c(const Args& args, const Setting& setting) {
  const STRUCT_I2C_WRITE_ACTION_TYPE_SETTING& i2c = setting.stI2CWriteAction;
  PROMISE(IsPaddingZero(i2c));
  if (setting.enumActionType != CP_ISPTOOL_ACTION_I2C_WRITE) {
    PROMISE(i2c.bDdcciCmd == 0 && i2c.ucDataLen == 1 && HoldsOnly(i2c.ucData, {}, kUnset));
    return;
  }
  const Bytes bytes = ByteList(args.strWriteData, ',');
  const bool ddcci = args.bDdcciCmd != 0;
  const std::size_t header = ddcci ? 3 : 2;
  PROMISE(bytes.size() >= 3 && bytes.size() <= 2 + kI2cDataCapacity);
  PROMISE(i2c.bDdcciCmd == (ddcci ? 1 : 0));
  PROMISE(i2c.ucSlave == bytes[0] && i2c.ucSubAddr == bytes[1]);
  PROMISE(i2c.ucDataLen == ((bytes.size() - header) & 0xFF));
  PROMISE(!ddcci || i2c.ucDataLen == (bytes[2] & 0x7F));
  PROMISE(
      HoldsOnly(i2c.ucData, Bytes(bytes.begin() + static_cast<int>(header), bytes.end()), kUnset));
}

void CheckMerge(const Args& args, const Setting& setting) {
  const STRUCT_MERGE_FW_INFO_SETTING& merge = setting.stMergeFwInfo;
  const Bytes bytes = setting.enumMergeFwInfoType == CP_MERGE_FW_INFO_WRITE
                          ? ByteList(args.strMergeCommand, '.')
                          : Bytes();
  PROMISE(bytes.size() <= kMergeFwInfoCapacity);
  PROMISE(merge.ulLength == bytes.size());
  PROMISE(HoldsOnly(merge.ucData, bytes, 0));
}

// Only a run with a signature type has boot code, and never a path that was cut.
void CheckBoot(const Args& args, const Setting& setting) {
  const bool given = setting.enumDigitalSignatureType != CP_DIGITAL_SIGNATURE_NONE;
  PROMISE(setting.szBootFwPath == (given ? args.strBoot : ""));
}

}  // namespace

void CheckAgainstModel(const Args& args, const CCpIspArgsParse& parser,
                       const std::string& directory) {
  const Setting& setting = parser.GetISPCmdSetting();
  CheckTexts(parser);
  CheckRanges(setting);
  CheckBankMap(parser, directory);
  CheckVerifiedPath(parser, directory);
  CheckUserFlag(args, setting);
  CheckI2c(args, setting);
  CheckMerge(args, setting);
  CheckBoot(args, setting);
}
