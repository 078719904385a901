// SPDX-License-Identifier: MIT
#include "support/comm_expected.h"

#include <cstddef>
#include <cstring>
#include <tuple>
#include <type_traits>

using namespace zvisp;

namespace comm_expected {

namespace {

using u8 = unsigned char;
using u16 = unsigned short;
using u32 = unsigned int;
using Inc = STRUCT_ENUM_INC_TYPE;
using Cpu = STRUCT_ENUM_CPU_TYPE;
using SysCmd = STRUCT_ENUM_SYS_DEVICE_CMD_TYPE;

template <typename Type>
constexpr void AddWords(WordSizes& sizes, std::size_t& count) {
  if constexpr (std::is_class_v<Type>) {
    sizes[count++] = 8;  // the records that are passed by value fill two words
    sizes[count++] = 8;
  } else {
    sizes[count++] = std::is_reference_v<Type> ? 8 : static_cast<int>(sizeof(Type));
  }
}

template <auto kMethod, typename Signature>
struct Calls;

template <auto kMethod, typename Result, typename... Arguments>
struct Calls<kMethod, Result(Arguments...)> {
  static_assert(std::is_same_v<decltype(kMethod), Result (CZvComm::*)(Arguments...)>,
                "the class declares this operation differently");

  static long long Call(CZvComm& comm) {
    std::tuple<std::remove_reference_t<Arguments>...> zeros{};
    return std::apply(
        [&comm](auto&... arguments) -> long long {
          if constexpr (std::is_void_v<Result>) {
            (comm.*kMethod)(arguments...);
            return 0;
          } else {
            return static_cast<long long>((comm.*kMethod)(arguments...));
          }
        },
        zeros);
  }

  static constexpr WordSizes ArgumentSizes() {
    WordSizes sizes = {};
    [[maybe_unused]] std::size_t count = 0;
    (AddWords<Arguments>(sizes, count), ...);
    return sizes;
  }

  static constexpr int ResultSize() {
    if constexpr (std::is_void_v<Result>) {
      return 0;
    } else {
      return sizeof(Result);
    }
  }
};

}  // namespace

// clang-format off
#define ROW(slot, unloaded, name, ...) \
  {slot, unloaded, #name, Calls<&CZvComm::name, __VA_ARGS__>::Call, \
   Calls<&CZvComm::name, __VA_ARGS__>::ArgumentSizes(), \
   Calls<&CZvComm::name, __VA_ARGS__>::ResultSize()}

const std::array<Operation, 148> kOperations = {{
    // slot, answer when unloaded, name, signature
    ROW(  5, 6, Initiallize, int()),
    ROW(  6, 6, GetCommCount, u16()),
    ROW(  7, 0, GetCommID, STRUCT_ENUM_COMM_ID()),
    ROW(  8, 6, GetCommName, int(wchar_t*, u16)),
    ROW(  9, 6, GetAllCommName, int(wchar_t (*)[256])),
    ROW( 10, 6, GetCommFile, int(STRUCT_COMM_INFO*)),
    ROW( 11, 6, SetCommByIndex, int(u16)),
    ROW( 12, 6, SetCommByID, int(STRUCT_ENUM_COMM_ID)),
    ROW( 13, 0, SetDebugSlave, void(u8)),
    ROW( 14, 0, SetIspSlave, void(u8)),
    ROW( 15, 0, SetIspContinuousSlave, void(u8)),
    ROW( 16, 0, GetDebugSlave, u8()),
    ROW( 17, 0, GetIspSlave, u8()),
    ROW( 18, 0, GetIspContinuousSlave, u8()),
    ROW( 19, 0, SetDebugMode, void(STRUCT_ENUM_DEBUG_TYPE)),
    ROW( 20, 0, GetDebugMode, STRUCT_ENUM_DEBUG_TYPE()),
    ROW( 21, 0, GetI2CPageLength, u16()),
    ROW( 22, 0, GetNativePageLength, u16()),
    ROW( 23, 6, I2CWrite, int(u8, u8, u16, u8*)),
    ROW( 24, 6, I2CRead, int(u8, u8, u16, u8*)),
    ROW( 25, 6, I2CWriteByte, int(u8, u8, u8)),
    ROW( 26, 6, I2CCurrentRead, int(u8, u16, u8*)),
    ROW( 27, 6, I2CWordWrite, int(u8, u16, u16, u8*)),
    ROW( 28, 6, I2C2SubWrite, int(u8, u8, u8, u16, u8*)),
    ROW( 29, 6, I2C2SubRead, int(u8, u8, u8, u16, u8*)),
    ROW( 30, 6, I2CWordRead, int(u8, u16, u16, u8*)),
    ROW( 31, 6, I2CWriteEx, int(u8, u8, u16, u8*, Inc)),
    ROW( 32, 6, I2CReadEx, int(u8, u8, u16, u8*, Inc)),
    ROW( 33, 6, I2CCurrentReadEx, int(u8, u16, u8*, Inc)),
    ROW( 34, 6, I2CWordWriteEx, int(u8, u16, u16, u8*, Inc)),
    ROW( 35, 6, I2CWordReadEx, int(u8, u16, u16, u8*, Inc)),
    ROW( 36, 6, I2C2SubWriteEx, int(u8, u8, u8, u16, u8*, Inc)),
    ROW( 37, 6, I2C2SubReadEx, int(u8, u8, u8, u16, u8*, Inc)),
    ROW( 38, 6, AdjustOption, int()),
    ROW( 39, 6, SetI2CSpeed, int(u16)),
    ROW( 40, 0, GetI2CSpeed, u16()),
    ROW( 41, 6, SetAuxMode, int(STRUCT_AUXMODE_STRUCT)),
    ROW( 42, 6, SetWaitingMode, int(STRUCT_WAITING_STRUCT)),
    ROW( 43, 6, GetWaitingMode, int(STRUCT_WAITING_STRUCT*)),
    ROW( 44, 6, ReadReg, int(u8, u8*)),
    ROW( 45, 6, WriteReg, int(u8, u8)),
    ROW( 46, 6, ReadRegs, int(u8, u16, u8*, Inc)),
    ROW( 47, 6, WriteRegs, int(u8, u16, u8*, Inc)),
    ROW( 48, 6, WriteRegBit, int(u8, u8, u8)),
    ROW( 49, 6, WritePortRegBit, int(u8, u8, u8, u8)),
    ROW( 50, 6, ReadRegEx, int(u16, u8*)),
    ROW( 51, 6, WriteRegEx, int(u16, u8)),
    ROW( 52, 6, ReadRegsEx, int(u16, u16, u8*, Inc)),
    ROW( 53, 6, WriteRegsEx, int(u16, u16, u8*, Inc)),
    ROW( 54, 6, WriteRegBitEx, int(u16, u8, u8)),
    ROW( 55, 6, WritePortRegBitEx, int(u16, u8, u8, u8)),
    ROW( 56, 6, ReadSysDevice, int(u8, u8, u8, u8*, SysCmd)),
    ROW( 57, 6, WriteSysDevice, int(u8, u8, u8, u8*, SysCmd)),
    ROW( 58, 6, ReadWordSysDevice, int(u8, u16, u8, u8*, SysCmd)),
    ROW( 59, 6, WriteWordSysDevice, int(u8, u16, u8, u8*, SysCmd)),
    ROW( 60, 6, ScalerStop, int()),
    ROW( 61, 6, ScalerRun, int()),
    ROW( 62, 6, WriteMcuReg, int(u16, u8)),
    ROW( 63, 6, WriteMcuRegBit, int(u16, u8, u8)),
    ROW( 64, 6, ReadMcuReg, int(u16, u8*)),
    ROW( 65, 6, WriteMcuRegs, int(u16, u16, u8*, Inc)),
    ROW( 66, 6, ReadMcuRegs, int(u16, u16, u8*, Inc)),
    ROW( 67, 6, WriteContinuousMcuReg, int(u8, u16, u8*, Inc)),
    ROW( 68, 6, ReadContinuousMcuReg, int(u8, u16, u8*, Inc)),
    ROW( 69, 6, ReleaseDev, int()),
    ROW( 70, 6, NativeWrite, int(int, u16, u8*)),
    ROW( 71, 6, NativeRead, int(int, u16, u8*)),
    ROW( 72, 6, SetConfigFilePath, int(wchar_t*)),
    ROW( 73, 6, GetDeviceHandler, int(void**)),
    ROW( 74, 6, ResetFirmware, int()),
    ROW( 75, 6, EnterIspMode, int(u16)),
    ROW( 76, 6, GetSMBUSDataType, int()),
    ROW( 77, 6, SetSMBUSDataType, int(u32)),
    ROW( 78, 6, GetDeviceCount, int()),
    ROW( 79, 6, RemoveDevice, int()),
    ROW( 80, 6, AutoDetectSlaveAddr, int()),
    ROW( 81, 6, DDCCIWrite, int(u8, u8, u8, u8*)),
    ROW( 82, 6, DDCCIRead, int(u8, u8, u8, u8*)),
    ROW( 83, 6, SetFTDIGetAck, int(int)),
    ROW( 84, 6, GetFTDIGetAckStatus, int()),
    ROW( 85, 6, GetUsbDevicePath, int(u8, wchar_t*)),
    ROW( 86, 6, SelectUsbByDevicePath, int(wchar_t*)),
    ROW( 87, 6, SelectUsbByIndex, int(u8)),
    ROW( 88, 6, I2CMasterInitial, int(STRUCT_ENUM_IIC_MASTER_SPEED)),
    ROW( 89, 6, I2CMasterCurrentRead, int(u8, u16, u8*)),
    ROW( 90, 6, I2CMasterCurrentReadEx, int(u8, u16, u8*, Inc)),
    ROW( 91, 6, I2CMasterRead, int(u8, u8, u16, u8*)),
    ROW( 92, 6, I2CMasterReadEx, int(u8, u8, u16, u8*, Inc)),
    ROW( 93, 6, I2CMasterWordRead, int(u8, u16, u16, u8*)),
    ROW( 94, 6, I2CMasterWordReadEx, int(u8, u16, u16, u8*, Inc)),
    ROW( 95, 6, I2CMasterCurrentWrite, int(u8, u16, u8*)),
    ROW( 96, 6, I2CMasterCurrentWriteEx, int(u8, u16, u8*, Inc)),
    ROW( 97, 6, I2CMasterWrite, int(u8, u8, u16, u8*)),
    ROW( 98, 6, I2CMasterWriteByte, int(u8, u8, u8)),
    ROW( 99, 6, I2CMasterWriteEx, int(u8, u8, u16, u8*, Inc)),
    ROW(100, 6, I2CMasterWordWrite, int(u8, u16, u16, u8*)),
    ROW(101, 6, I2CMasterWordWriteEx, int(u8, u16, u16, u8*, Inc)),
    ROW(102, 6, WriteFlashData, int(u32, u16, u8*)),
    ROW(103, 6, ReadFlashData, int(u32, u16, u8*)),
    ROW(104, 6, SetCmdLine, int(wchar_t*)),
    ROW(105, 6, GetSpecialCommType, int()),
    ROW(106, 6, SetSpecialCommType, int(STRUCT_ENUM_SPECIAL_COMM_TYPE)),
    ROW(107, 6, Read32BitRegEx, int(u32, u32*)),
    ROW(108, 6, Write32BitRegEx, int(u32, u32)),
    ROW(109, 6, Read32BitRegsEx, int(u32, u16, u32*, Inc)),
    ROW(110, 6, Write32BitRegsEx, int(u32, u16, u32*, Inc)),
    ROW(111, 6, ReadDDRRegEx, int(u32, u32*)),
    ROW(112, 6, WriteDDRRegEx, int(u32, u32)),
    ROW(113, 6, ReadDDRRegsEx, int(u32, u16, u32*, Inc)),
    ROW(114, 6, WriteDDRRegsEx, int(u32, u16, u32*, Inc)),
    ROW(115, 6, ReadPWM2SPIReg, int(u8, u8, u8, u8*)),
    ROW(116, 6, WritePWM2SPIReg, int(u8, u8, u8, u8*)),
    ROW(117, 6, ReadPWM2SPIDev, int(u8, u8, u8, u16*)),
    ROW(118, 6, WritePWM2SPIDev, int(u8, u8, u8, u16*)),
    ROW(119, 6, ReadPWM2SPIWordReg, int(u16, u16, u16, u16*)),
    ROW(120, 6, WritePWM2SPIWordReg, int(u16, u16, u16, u16*)),
    ROW(121, 6, ReadPWM2SPIWordDev, int(u16, u16, u16, u16*)),
    ROW(122, 6, WritePWM2SPIWordDev, int(u16, u16, u16, u16*)),
    ROW(123, 6, I2CWriteSegment, int(u8, u8, u8, u8, u16, u8*)),
    ROW(124, 6, I2CWriteSegmentEx, int(u8, u8, u8, u8, u16, u8*, Inc)),
    ROW(125, 6, I2CReadSegment, int(u8, u8, u8, u8, u16, u8*)),
    ROW(126, 6, I2CReadSegmentEx, int(u8, u8, u8, u8, u16, u8*, Inc)),
    ROW(127, 0, DebugMessageEventStart, void()),
    ROW(128, 0, DebugMessageEventFinish, void()),
    ROW(129, 0, DebugMessageStart, void()),
    ROW(130, 0, DebugMessageEnd, void()),
    ROW(131, 6, DebugMessageGetValue, int()),
    ROW(132, 6, DebugMessageGetString, int()),
    ROW(133, 6, AutoEnterIspMode, int(u16)),
    ROW(134, 0, SetIDevInComm, void(void*)),
    ROW(135, 6, SendUsbPacket, int(u8, u16, u16, u16, void*)),
    ROW(136, 6, ReceiveUsbPacket, int(u8, u16, u16, u16, void*)),
    ROW(137, 6, SectorErase, int(u8, u8)),
    ROW(138, 6, BankErase, int(u8)),
    ROW(139, 6, ConfigProgramFlash, int(u8)),
    ROW(140, 6, ReadAuxSniffer, int()),
    ROW(141, 6, NeedSetMcuDefault, int()),
    ROW(142, 6, CompleteIspFlowInISPBoard, int()),
    ROW(143, 6, AuxSnifferStart, int()),
    ROW(144, 6, GetAuxSnifferConfigPara, int(u16&, u16&)),
    ROW(145, 6, SetNewZorvaneUSBMode, int(STRUCT_ENUM_NEW_ZORVANEUSB_MODE)),
    ROW(146, 6, SetI2CDebugPort, int(int, int)),
    ROW(147, 6, SetI2CoverAUXDebugPort, int()),
    ROW(148, 6, ReadDDRCPURegEx, int(u32, u32*, Cpu)),
    ROW(149, 6, WriteDDRCPURegEx, int(u32, u32, Cpu)),
    ROW(150, 6, ReadDDRCPURegsEx, int(u32, u16, u32*, Inc, Cpu)),
    ROW(151, 6, WriteDDRCPURegsEx, int(u32, u16, u32*, Inc, Cpu)),
    ROW(152, 6, CheckSnifferBoardCustomerId, int(u8*, u8)),
}};
#undef ROW

const std::array<const char*, 115> kLookUpOrder = {
    "GetI2CPageLength",
    "GetNativePageLength",
    "I2CWrite",
    "I2CRead",
    "I2CWriteByte",
    "I2CCurrentRead",
    "I2CWordWrite",
    "I2CWordRead",
    "I2CWriteEx",
    "I2CReadEx",
    "I2CCurrentReadEx",
    "I2CWordWriteEx",
    "I2CWordReadEx",
    "AdjustOption",
    "SetI2CSpeed",
    "GetI2CSpeed",
    "SetAuxMode",
    "SetWaitingMode",
    "GetWaitingMode",
    "Initiallize",
    "GetCommCount",
    "GetCommID",
    "GetCommName",
    "GetAllCommName",
    "SetCommByIndex",
    "SetCommByID",
    "GetCommFile",
    "SetDebugSlave",
    "SetIspSlave",
    "SetIspContinuousSlave",
    "GetDebugSlave",
    "GetIspSlave",
    "GetIspContinuousSlave",
    "SetDebugMode",
    "GetDebugMode",
    "ReadReg",
    "WriteReg",
    "ReadRegs",
    "WriteRegs",
    "WriteRegBit",
    "WritePortRegBit",
    "ReadRegEx",
    "WriteRegEx",
    "ReadRegsEx",
    "WriteRegsEx",
    "WriteRegBitEx",
    "WritePortRegBitEx",
    "ReadSysDevice",
    "WriteSysDevice",
    "ReadWordSysDevice",
    "WriteWordSysDevice",
    "ScalerStop",
    "ScalerRun",
    "WriteMcuReg",
    "WriteMcuRegBit",
    "ReadMcuReg",
    "WriteMcuRegs",
    "ReadMcuRegs",
    "WriteContinuousMcuReg",
    "ReadContinuousMcuReg",
    "ReleaseDev",
    "NativeWrite",
    "NativeRead",
    "SetSettingFilePath",
    "GetDeviceHandler",
    "ResetFirmware",
    "EnterIspMode",
    "GetSMBUSDataType",
    "SetSMBUSDataType",
    "GetDeviceCount",
    "RemoveDevice",
    "AutoDetectSlaveAddr",
    "DDCCIWrite",
    "DDCCIRead",
    "SetFTDIGetAck",
    "GetFTDIGetAckStatus",
    "I2CMasterInitial",
    "I2CMasterCurrentRead",
    "I2CMasterCurrentReadEx",
    "I2CMasterRead",
    "I2CMasterReadEx",
    "I2CMasterWordRead",
    "I2CMasterWordReadEx",
    "I2CMasterCurrentWrite",
    "I2CMasterCurrentWriteEx",
    "I2CMasterWrite",
    "I2CMasterWriteByte",
    "I2CMasterWriteEx",
    "I2CMasterWordWrite",
    "I2CMasterWordWriteEx",
    "GetUsbDevicePath",
    "SelectUsbByDevicePath",
    "SelectUsbByIndex",
    "ReadFlashData",
    "WriteFlashData",
    "SetCmdLine",
    "Read32BitRegEx",
    "Write32BitRegEx",
    "Read32BitRegsEx",
    "Write32BitRegsEx",
    "ReadDDRRegEx",
    "WriteDDRRegEx",
    "ReadDDRRegsEx",
    "WriteDDRRegsEx",
    "ReadPWM2SPIReg",
    "WritePWM2SPIReg",
    "ReadPWM2SPIDev",
    "WritePWM2SPIDev",
    "I2CWriteSegment",
    "I2CWriteSegmentEx",
    "I2CReadSegment",
    "I2CReadSegmentEx",
    "AutoEnterIspMode",
    "SetSpecialCommType",
    "GetSpecialCommType",
};
// clang-format on

const char* ExportOf(const Operation& operation) {
  if (std::strcmp(operation.name, "SetConfigFilePath") == 0) return "SetSettingFilePath";
  for (const char* const symbol : kLookUpOrder) {
    if (std::strcmp(operation.name, symbol) == 0) return symbol;
  }
  return nullptr;
}

}  // namespace comm_expected
