// SPDX-License-Identifier: MIT
//
// A plug-in in C99 that reports what a call finds around it, one line each, and answers with a code
// whose low 8 bits are 0.
#include <locale.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include "plugin/zvisp_plugin.h"

enum { kCodeWithoutLowBits = 0x100, kUnused = 1 };

static void ReportProcess(void) {
  char directory[1024];
  const mode_t mask = umask(0);
  umask(mask);
  printf("LC_CTYPE %s\nLC_NUMERIC %s\n", setlocale(LC_CTYPE, NULL), setlocale(LC_NUMERIC, NULL));
  printf("umask %03o\n", (unsigned)mask);
  printf("directory %s\n", getcwd(directory, sizeof directory));
  printf("SIGPIPE %s\n", signal(SIGPIPE, SIG_IGN) == SIG_IGN ? "ignored" : "not ignored");
}

int IspFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting) {
  const wchar_t* const wide = setting->stMapFw.stBank[0].wszPath;
  char path[kPathUtf8Capacity];
  FILE* file = NULL;
  ReportProcess();
  printf("wcstombs %s\n", wcstombs(NULL, wide, 0) == (size_t)-1 ? "refuses the path" : "converts");
  if (ZvWideToUtf8(wide, kPathCapacity, path, sizeof path)) file = fopen(path, "rb");
  printf("ZvWideToUtf8 %s\n", file == NULL ? "finds no file" : "finds the file");
  if (file != NULL) fclose(file);
  return kCodeWithoutLowBits;
}

int RecordFWVersion(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting) {
  (void)setting;
  return kUnused;
}

int GetKeyFromFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting, unsigned char* key) {
  (void)setting;
  (void)key;
  return kUnused;
}

int DumpFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting) {
  (void)setting;
  return kUnused;
}

void SetCommInterface(CZvComm* comm) {
  (void)comm;
}

void SetUIFunction(ZvReturnProgress progress, ZvShowMessage message, ZvGetHubDevice hub_device) {
  (void)progress;
  (void)message;
  (void)hub_device;
}
