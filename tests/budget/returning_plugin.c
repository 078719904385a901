// SPDX-License-Identifier: MIT
// A plug-in that costs nothing: every call that the tool insists on returns 0 at once.
#include "plugin/zvisp_plugin.h"

int IspFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting) {
  (void)setting;
  return 0;
}

int RecordFWVersion(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting) {
  (void)setting;
  return 0;
}

int DumpFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting) {
  (void)setting;
  return 0;
}

int GetKeyFromFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting, unsigned char* key) {
  (void)setting;
  (void)key;
  return 0;
}

void SetCommInterface(CZvComm* comm) {
  (void)comm;
}

void SetUIFunction(ZvReturnProgress progress, ZvShowMessage message, ZvGetHubDevice hub_device) {
  (void)progress;
  (void)message;
  (void)hub_device;
}
