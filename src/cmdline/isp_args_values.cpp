// SPDX-License-Identifier: MIT
//
// The readers of single option values. Numbers are decimal, hexadecimal (0x) or octal (0).
#include <algorithm>
#include <cstdio>
#include <iterator>
#include <variant>

#include "base/string_util.h"
#include "base/transform.h"
#include "cmdline/isp_args_parse.h"
#include "cmdline/option_table.h"

using namespace zvisp;

namespace {

constexpr std::uint32_t kCountMask = 0xFF;
constexpr std::uint64_t kMaxVersionEnd = 0xFFFFFF;
constexpr std::uint32_t kMaxTotalVersionLength = 256;
constexpr std::size_t kMinI2cBytes = 3;
constexpr std::size_t kMaxI2cBytes = 258;
constexpr std::uint8_t kDdcciLengthMask = 0x7F;

// The number of the option that has exactly these bits of the field; without one, 0.
std::uint32_t NumberOf(BitField field, std::uint32_t bits) {
  const auto has_bits = [field, bits](const OptionRow& row) {
    return FieldOf(row) == field && static_cast<std::uint32_t>(row.value) == bits;
  };
  const auto row = std::find_if(std::begin(kOptions), std::end(kOptions), has_bits);
  return row == std::end(kOptions) ? 0 : std::get<AddBits>(row->effect).number;
}

bool IsWithin(int value, int low, int high) {
  return low <= value && value <= high;
}

// Reads a number of 32 bits. Text from 0x80000000 on is a negative int, and the cast restores it.
bool ReadU32(const std::string& text, std::uint32_t& number) {
  int value = 0;
  if (!StringtoInt(text, value)) return false;
  number = static_cast<std::uint32_t>(value);
  return true;
}

// Reads the pieces of a list as bytes and drops empty pieces; false when a piece is not a byte.
bool ReadBytes(const std::string& text, const char* delimiter, std::vector<std::uint8_t>& bytes) {
  for (const std::string& piece : StringSplit(text, delimiter, 0)) {
    int value = 0;
    if (!StringtoInt(piece, value) || !IsWithin(value, 0, 0xFF)) return false;
    bytes.push_back(static_cast<std::uint8_t>(value));
  }
  return true;
}

int ReadSignatureMode(const std::string& text, int highest, std::uint32_t& mode) {
  if (text.empty()) return 1;
  int value = 0;
  if (!StringtoInt(text, value)) {
    std::printf("Parameter illegal! --dsmode %s \n", text.c_str());
    return 0;
  }
  if (!IsWithin(value, 1, highest)) {
    std::printf("Parameter out of range! --dsmode %s \n", text.c_str());
    return 0;
  }
  mode = static_cast<std::uint32_t>(value);
  return 1;
}

std::uint32_t ReadRecordVersionMode(const std::string& text) {
  int mode = 0;
  // Kept quirk: a mode that is not a number is not refused, it is mode 2.
  if (text.empty() || !StringtoInt(text, mode) || !IsWithin(mode, 0, 1)) return 2;
  return static_cast<std::uint32_t>(mode);
}

bool IsVersionPlaceLegal(const STRUCT_READ_VERSION_FROM_FLASH_SETTING& setting) {
  // 64 bits, because a sum that wraps around would pass.
  const std::uint64_t parts = std::uint64_t{setting.ulMajorVerLen} + setting.ulSubVerLen;
  const std::uint64_t end = std::uint64_t{setting.ulVerAddr} + setting.ulTotalVerLen;
  return setting.ulTotalVerLen <= kMaxTotalVersionLength && parts <= setting.ulTotalVerLen &&
         setting.ulMajorVerLen != 0 && end <= kMaxVersionEnd;
}

bool IsBinName(const std::string& name) {
  return name.size() >= 5 && name.compare(name.size() - 4, 4, ".bin") == 0;
}

}  // namespace

int CCpIspArgsParse::JudgeUniqueAttribute(std::uint32_t bits) {
  int count = 0;
  for (; bits != 0; bits &= bits - 1)
    ++count;
  return count == 1 ? 1 : 0;
}

void CCpIspArgsParse::GetActionType(std::uint32_t bits, std::uint32_t& enumActionType) {
  enumActionType = NumberOf(&STRUCT_CP_ISP_CMD_ARGS::ulActionBits, bits);
}

void CCpIspArgsParse::GetDigitalSignatureType(std::uint32_t bits,
                                              std::uint32_t& enumSignatureType) {
  enumSignatureType = NumberOf(&STRUCT_CP_ISP_CMD_ARGS::ulSignatureTypeBits, bits);
}

void CCpIspArgsParse::GetMergeFwInfoType(std::uint32_t bits, std::uint32_t& enumMergeFwInfoType) {
  enumMergeFwInfoType = NumberOf(&STRUCT_CP_ISP_CMD_ARGS::ulReadWriteBits, bits);
}

int CCpIspArgsParse::GetVersionType(std::uint32_t bits, const std::string& user_defined,
                                    std::uint32_t& enumVersionLocationType,
                                    std::uint32_t& enumUserDefinedVersionType) {
  enumVersionLocationType = NumberOf(&STRUCT_CP_ISP_CMD_ARGS::ulInformationBits, bits);
  if (enumVersionLocationType != VERSION_LOCATION_USER_DEFINED) return 1;
  int version = 0;
  if (!StringtoInt(user_defined, version)) {
    std::printf("User defined version mode illegal, mode is: %s\n", user_defined.c_str());
    return 0;
  }
  if (!IsWithin(version, USER_DEFINED_VERSION_1, USER_DEFINED_VERSION_3)) {
    std::printf("Get user defined version mode fail, mode is: %s\n", user_defined.c_str());
    return 0;
  }
  enumUserDefinedVersionType = static_cast<std::uint32_t>(version);
  return 1;
}

int CCpIspArgsParse::GetCommID(const std::string& text, std::uint32_t& enumCommID) {
  enumCommID = 0;
  if (text.empty()) return 1;
  int comm = 0;
  if (!StringtoInt(text, comm)) {
    std::printf("Parameter illegal! --comm %s \n", text.c_str());
    return 0;
  }
  if (!IsWithin(comm, 1, 16)) {
    // Kept quirk: no blank before the newline, unlike the other messages. Scripts match this text.
    std::printf("Parameter out of range! --comm %s\n", text.c_str());
    return 0;
  }
  enumCommID = static_cast<std::uint32_t>(comm);
  return 1;
}

int CCpIspArgsParse::GetSlaveAddress(const std::string& text, std::int32_t& bAutoSlaveAddr,
                                     std::uint8_t& ucSlaveAddr) {
  bAutoSlaveAddr = 1;
  ucSlaveAddr = 0;
  if (text.empty()) return 1;
  int slave = 0;
  if (!StringtoInt(text, slave)) {
    std::printf("Parameter illegal! --slave %s \n", text.c_str());
    return 0;
  }
  if (slave == 0) return 1;  // find it automatically
  bAutoSlaveAddr = 0;
  if (!IsWithin(slave, 1, 254)) {
    std::printf("Parameter out of range! --slave %s \n", text.c_str());
    return 0;
  }
  ucSlaveAddr = static_cast<std::uint8_t>(slave);
  return 1;
}

int CCpIspArgsParse::GetDigitalSignatureSwMode(const std::string& text, std::uint32_t& enumSwMode) {
  return ReadSignatureMode(text, 4, enumSwMode);
}

int CCpIspArgsParse::GetDigitalSignatureHwMode(const std::string& text, std::uint32_t& enumHwMode) {
  return ReadSignatureMode(text, 2, enumHwMode);
}

int CCpIspArgsParse::GetUserFlag(const std::string& address, const std::string& data,
                                 STRUCT_FLAG_SETTING& flag) {
  if (address.empty()) return 1;
  if (!ReadU32(address, flag.ulFlagAddr)) {
    std::printf("Parameter illegal! --flagaddr %s \n", address.c_str());
    return 0;
  }
  std::vector<std::uint8_t> bytes;
  if (!ReadBytes(data, ",", bytes)) {
    std::printf("Parameter illegal! --flagdata %s \n", data.c_str());
    return 0;
  }
  // Kept quirk: the plug-in gets the low 8 bits of the count. So a list is never too long: bytes
  // after the 1220th are dropped.
  flag.ulFlagLength = static_cast<std::uint32_t>(bytes.size()) & kCountMask;
  bytes.resize(kUserFlagCapacity, 0xFF);
  std::copy(bytes.begin(), bytes.end(), flag.ucFlagData);
  return 1;
}

int CCpIspArgsParse::GetReadVersionFromFlashSetting(
    const STRUCT_CP_ISP_CMD_ARGS& args, STRUCT_READ_VERSION_FROM_FLASH_SETTING& setting) {
  const bool has_address = !args.strVerAddr.empty();
  const bool has_total = !args.strTotalVerLen.empty();
  const bool has_major = !args.strMajorVerLen.empty();
  const bool has_sub = !args.strSubVerLen.empty();
  // All of them or none; only the length of the sub-version may be left out.
  if (!has_address && !has_total && !has_major && !has_sub) return 1;
  if (!has_address || !has_total || !has_major) return 0;
  if (!ReadU32(args.strVerAddr, setting.ulVerAddr) ||
      !ReadU32(args.strTotalVerLen, setting.ulTotalVerLen) ||
      !ReadU32(args.strMajorVerLen, setting.ulMajorVerLen)) {
    return 0;
  }
  setting.ulSubVerLen = 0;
  if (has_sub && !ReadU32(args.strSubVerLen, setting.ulSubVerLen)) return 0;
  setting.enumRecordVerMode = ReadRecordVersionMode(args.strRecordVerMode);
  return IsVersionPlaceLegal(setting) ? 1 : 0;
}

int CCpIspArgsParse::GetDumpFlashSetting(const STRUCT_CP_ISP_CMD_ARGS& args,
                                         STRUCT_DUMP_FLASH_SETTING& dump) {
  if (args.strDumpAddr.empty() && args.strDumpLen.empty()) return 0;
  if (!ReadU32(args.strDumpAddr, dump.ulDumpAddr)) return 0;
  if (!ReadU32(args.strDumpLen, dump.ulDumpLen) || dump.ulDumpLen == 0) return 0;
  // Kept quirk: a name without ".bin" is replaced, not refused.
  const std::string name = IsBinName(args.strDumpName) ? args.strDumpName : "dumpFile.bin";
  CopyWideToBuffer(CCpTransform().ConvertUTF8StringToUnicode(name), kPathCapacity, dump.wszDumpFile,
                   kPathCapacity);
  return 1;
}

int CCpIspArgsParse::GetMergeFwInfoCmd(const std::string& text,
                                       STRUCT_MERGE_FW_INFO_SETTING& merge) {
  if (text.empty()) return 1;
  std::vector<std::uint8_t> bytes;
  const bool are_bytes = ReadBytes(text, ".", bytes);
  // Kept quirk: no newline. Scripts match the line that this and the next message make together.
  if (are_bytes && bytes.size() > kMergeFwInfoCapacity) {
    std::printf("Input Flag Length: 0x%zx ,Max Flag Count: 0x%x", bytes.size(),
                static_cast<unsigned int>(kMergeFwInfoCapacity));
  }
  if (!are_bytes || bytes.size() > kMergeFwInfoCapacity) {
    std::printf("Parameter illegal! --MergeFw --write %s \n", text.c_str());
    return 0;
  }
  // All of the record's bytes are written: a longer command may have been there before.
  merge.ulLength = static_cast<std::uint32_t>(bytes.size()) & kCountMask;
  bytes.resize(kMergeFwInfoCapacity, 0);
  std::copy(bytes.begin(), bytes.end(), merge.ucData);
  return 1;
}

int CCpIspArgsParse::GetI2CCmdFromString(const std::string& text,
                                         std::vector<std::uint8_t>& bytes) {
  return ReadBytes(text, ",", bytes) && bytes.size() >= kMinI2cBytes ? 1 : 0;
}

int CCpIspArgsParse::GetI2CWriteActionTypeSetting(const STRUCT_CP_ISP_CMD_ARGS& args,
                                                  STRUCT_I2C_WRITE_ACTION_TYPE_SETTING& i2c) {
  std::vector<std::uint8_t> bytes;
  if (GetI2CCmdFromString(args.strWriteData, bytes) == 0 || bytes.size() > kMaxI2cBytes) return 0;
  i2c.bDdcciCmd = static_cast<std::uint32_t>(args.bDdcciCmd);
  // A DDC/CI command has its own length in the third byte, next to a flag in the highest bit.
  i2c.ucSlave = bytes[0];
  i2c.ucSubAddr = bytes[1];
  const std::size_t header = i2c.bDdcciCmd != 0 ? 3 : 2;
  const std::size_t data_length = bytes.size() - header;
  // Kept quirk: the low 8 bits of the count, so 256 bytes of data have the length 0.
  i2c.ucDataLen = static_cast<std::uint8_t>(data_length);
  if (i2c.bDdcciCmd != 0) {
    i2c.ucDataLen = bytes[2] & kDdcciLengthMask;
    if (i2c.ucDataLen != data_length) return 0;
  }
  std::copy(bytes.begin() + static_cast<std::ptrdiff_t>(header), bytes.end(), i2c.ucData);
  return 1;
}
