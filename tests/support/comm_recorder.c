// SPDX-License-Identifier: MIT
//
// A communication library whose exports note how they were called; with LOG_LOOK_UPS, also that
// they were looked up. make_comm_recorders.sh links it whole, and without each of its exports.
#include "support/comm_recorder.h"

#define VISIBLE __attribute__((visibility("default")))

VISIBLE struct CommRecorder comm_recorder;

static CommWord Record(const char* name, const CommWord* arguments) {
  comm_recorder.called = name;
  ++comm_recorder.calls;
  for (int i = 0; i < kCommArguments; ++i) {
    comm_recorder.arguments[i] = arguments[i];
  }
  return comm_recorder.answer;
}

// clang-format off
// All arguments of the interface are integers or pointers, which travel alike in words.
#define WORDS CommWord a, CommWord b, CommWord c, CommWord d, CommWord e, CommWord f, CommWord g
#define BODY(name) { \
    const CommWord arguments[kCommArguments] = {a, b, c, d, e, f, g}; \
    return Record(#name, arguments); \
  }

#ifdef LOG_LOOK_UPS
// The loader calls the resolver of an indirect function each time that its name is looked up.
#define EXPORT(name) \
  static CommWord name##Body(WORDS) BODY(name) \
  static CommWord (*name##LookedUp(void))(WORDS) { \
    comm_recorder.looked_up[comm_recorder.look_ups++] = #name; \
    return name##Body; \
  } \
  VISIBLE CommWord name(WORDS) __attribute__((ifunc(#name "LookedUp")));
#else
#define EXPORT(name) VISIBLE CommWord name(WORDS) BODY(name)
#endif

EXPORT(GetI2CPageLength)
EXPORT(GetNativePageLength)
EXPORT(I2CWrite)
EXPORT(I2CRead)
EXPORT(I2CWriteByte)
EXPORT(I2CCurrentRead)
EXPORT(I2CWordWrite)
EXPORT(I2CWordRead)
EXPORT(I2CWriteEx)
EXPORT(I2CReadEx)
EXPORT(I2CCurrentReadEx)
EXPORT(I2CWordWriteEx)
EXPORT(I2CWordReadEx)
EXPORT(AdjustOption)
EXPORT(SetI2CSpeed)
EXPORT(GetI2CSpeed)
EXPORT(SetAuxMode)
EXPORT(SetWaitingMode)
EXPORT(GetWaitingMode)
EXPORT(Initiallize)
EXPORT(GetCommCount)
EXPORT(GetCommID)
EXPORT(GetCommName)
EXPORT(GetAllCommName)
EXPORT(SetCommByIndex)
EXPORT(SetCommByID)
EXPORT(GetCommFile)
EXPORT(SetDebugSlave)
EXPORT(SetIspSlave)
EXPORT(SetIspContinuousSlave)
EXPORT(GetDebugSlave)
EXPORT(GetIspSlave)
EXPORT(GetIspContinuousSlave)
EXPORT(SetDebugMode)
EXPORT(GetDebugMode)
EXPORT(ReadReg)
EXPORT(WriteReg)
EXPORT(ReadRegs)
EXPORT(WriteRegs)
EXPORT(WriteRegBit)
EXPORT(WritePortRegBit)
EXPORT(ReadRegEx)
EXPORT(WriteRegEx)
EXPORT(ReadRegsEx)
EXPORT(WriteRegsEx)
EXPORT(WriteRegBitEx)
EXPORT(WritePortRegBitEx)
EXPORT(ReadSysDevice)
EXPORT(WriteSysDevice)
EXPORT(ReadWordSysDevice)
EXPORT(WriteWordSysDevice)
EXPORT(ScalerStop)
EXPORT(ScalerRun)
EXPORT(WriteMcuReg)
EXPORT(WriteMcuRegBit)
EXPORT(ReadMcuReg)
EXPORT(WriteMcuRegs)
EXPORT(ReadMcuRegs)
EXPORT(WriteContinuousMcuReg)
EXPORT(ReadContinuousMcuReg)
EXPORT(ReleaseDev)
EXPORT(NativeWrite)
EXPORT(NativeRead)
EXPORT(SetSettingFilePath)
EXPORT(GetDeviceHandler)
EXPORT(ResetFirmware)
EXPORT(EnterIspMode)
EXPORT(GetSMBUSDataType)
EXPORT(SetSMBUSDataType)
EXPORT(GetDeviceCount)
EXPORT(RemoveDevice)
EXPORT(AutoDetectSlaveAddr)
EXPORT(DDCCIWrite)
EXPORT(DDCCIRead)
EXPORT(SetFTDIGetAck)
EXPORT(GetFTDIGetAckStatus)
EXPORT(I2CMasterInitial)
EXPORT(I2CMasterCurrentRead)
EXPORT(I2CMasterCurrentReadEx)
EXPORT(I2CMasterRead)
EXPORT(I2CMasterReadEx)
EXPORT(I2CMasterWordRead)
EXPORT(I2CMasterWordReadEx)
EXPORT(I2CMasterCurrentWrite)
EXPORT(I2CMasterCurrentWriteEx)
EXPORT(I2CMasterWrite)
EXPORT(I2CMasterWriteByte)
EXPORT(I2CMasterWriteEx)
EXPORT(I2CMasterWordWrite)
EXPORT(I2CMasterWordWriteEx)
EXPORT(GetUsbDevicePath)
EXPORT(SelectUsbByDevicePath)
EXPORT(SelectUsbByIndex)
EXPORT(ReadFlashData)
EXPORT(WriteFlashData)
EXPORT(SetCmdLine)
EXPORT(Read32BitRegEx)
EXPORT(Write32BitRegEx)
EXPORT(Read32BitRegsEx)
EXPORT(Write32BitRegsEx)
EXPORT(ReadDDRRegEx)
EXPORT(WriteDDRRegEx)
EXPORT(ReadDDRRegsEx)
EXPORT(WriteDDRRegsEx)
EXPORT(ReadPWM2SPIReg)
EXPORT(WritePWM2SPIReg)
EXPORT(ReadPWM2SPIDev)
EXPORT(WritePWM2SPIDev)
EXPORT(I2CWriteSegment)
EXPORT(I2CWriteSegmentEx)
EXPORT(I2CReadSegment)
EXPORT(I2CReadSegmentEx)
EXPORT(AutoEnterIspMode)
EXPORT(SetSpecialCommType)
EXPORT(GetSpecialCommType)
// clang-format on
