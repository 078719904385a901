// SPDX-License-Identifier: MIT
//
// The plug-in's edge: the calls that the tool looks up, each handed to the simulated display that
// the record's communication number names. A plug-in for real hardware replaces everything below
// this file and keeps its shape.
#include "display/dump.h"
#include "display/plugin_call.h"

using simulator::CallDisplay;

namespace {

// The tool hands the callbacks over once, right after loading, and calls from one thread.
simulator::Host g_host;

}  // namespace

void SetUIFunction(ZvReturnProgress progress, ZvShowMessage message, ZvGetHubDevice) {
  // A simulated display is never connected through a hub.
  g_host = {progress, message};
}

void SetCommInterface(CZvComm*) {
  // A simulated display is reached without a communication object.
}

int IspFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting) {
  return CallDisplay("IspFlash", setting, g_host, simulator::ProgramFlash);
}

int RecordFWVersion(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting) {
  return CallDisplay("RecordFWVersion", setting, g_host, simulator::RecordVersion);
}

int GetKeyFromFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting, unsigned char* key) {
  return simulator::CallReadVerifyKey(setting, key, g_host);
}

int DumpFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting) {
  return CallDisplay("DumpFlash", setting, g_host, simulator::DumpToFile);
}

int GetUserDefinedInfoFromDDCCI(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting) {
  return CallDisplay("GetUserDefinedInfoFromDDCCI", setting, g_host, simulator::SayUserInfo);
}

int IspEeprom(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting) {
  return CallDisplay("IspEeprom", setting, g_host, simulator::ProgramEeprom);
}

int EnterISPModeExport(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting) {
  return CallDisplay("EnterISPModeExport", setting, g_host, simulator::EnterIspMode);
}

int ResetMCUExport(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting) {
  return CallDisplay("ResetMCUExport", setting, g_host, simulator::ResetMcu);
}

int GetScalerType(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting) {
  return CallDisplay("GetScalerType", setting, g_host, simulator::ReadScalerType);
}
