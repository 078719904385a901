/* SPDX-License-Identifier: MIT */
/* Answers IspFlash with the communication number that it was given, and refuses the rest. */
#include <plugin/zvisp_plugin.h>

enum { kRefused = 1 };

int IspFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting) {
  return (int)setting->enumCommID;
}

int RecordFWVersion(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting) {
  (void)setting;
  return kRefused;
}

int GetKeyFromFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting, unsigned char* key) {
  (void)setting;
  (void)key;
  return kRefused;
}

int DumpFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting) {
  (void)setting;
  return kRefused;
}

void SetCommInterface(CZvComm* comm) {
  (void)comm;
}

void SetUIFunction(ZvReturnProgress progress, ZvShowMessage message, ZvGetHubDevice hub_device) {
  (void)progress;
  (void)message;
  (void)hub_device;
}
