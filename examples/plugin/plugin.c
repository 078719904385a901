/* SPDX-License-Identifier: MIT */
/* An ISP plug-in to start from. It checks what it is asked before it touches the display, and
 * leaves the display to device.c, which is yours to write. The rules that it keeps are the first
 * lines of plugin/zvisp_plugin.h. */
#include <plugin/zvisp_plugin.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "device.h"

typedef STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING Setting;
typedef STRUCT_C_STYLE_MAP_FW Map;

/* Result codes: the low 8 bits are the exit status, so they are never all 0. */
enum {
  kWrongAction = 0x1001,
  kEmptyMap = 0x1002,
  kBadMap = 0x1003,
  kBadPath = 0x1004,
  kNoFile = 0x1005,
  kShortFile = 0x1006,
  kNoMemory = 0x1007,
  kBadRange = 0x1008,
  kDumpNotWritten = 0x1009,
  kNotSupported = 0x100A
};

/* What the bytes after the end of a file are programmed with. */
enum { kPadding = 0xFF };

static ZvReturnProgress g_progress;

static void ShowProgress(uint32_t done, uint32_t of) {
  if (g_progress != NULL) g_progress((int)(100U * done / of));
}

static int OpenDisplay(const Setting* setting) {
  return DeviceOpen(setting->enumCommID, setting->bAutoSlaveAddr == 0 ? setting->ucSlaveAddr : 0U);
}

static int CheckMap(const Map* map) {
  uint32_t i;
  if (map->ulCount == 0) return kEmptyMap;
  if (map->ulCount > kMapFwCapacity) return kBadMap;
  for (i = 0; i < map->ulCount; ++i) {
    if (map->ulTargetBank[i] >= kDeviceBanks) return kBadMap;
    if (map->stBank[i].ulFileBank >= kMapFwCapacity) return kBadMap;
    if (i > 0 && map->ulTargetBank[i] <= map->ulTargetBank[i - 1]) return kBadMap;
  }
  return 0;
}

/* Reads the bytes of one entry of the map; the rest of a short last bank stays as it is. */
static int ReadFileBank(const STRUCT_C_STYLE_FW_BANK_SETTING* bank, unsigned char* bytes) {
  char path[kPathUtf8Capacity];
  size_t length = 0;
  FILE* file;
  if (!ZvWideToUtf8(bank->wszPath, kPathCapacity, path, sizeof path)) return kBadPath;
  file = fopen(path, "rb");
  if (file == NULL) return kNoFile;
  if (fseek(file, (long)bank->ulFileBank * kFwBankBytes, SEEK_SET) == 0) {
    length = fread(bytes, 1, kFwBankBytes, file);
  }
  fclose(file);
  return length == 0 ? kShortFile : 0;
}

/* Reads all files, so that none is missing half way through. */
static int ReadFiles(const Map* map, unsigned char* image) {
  uint32_t i;
  for (i = 0; i < map->ulCount; ++i) {
    const int code = ReadFileBank(&map->stBank[i], image + (size_t)i * kFwBankBytes);
    if (code != 0) return code;
  }
  return 0;
}

static int ProgramBanks(const Setting* setting, const unsigned char* image) {
  const Map* const map = &setting->stMapFw;
  uint32_t i;
  int code = OpenDisplay(setting);
  if (code != 0) return code;
  for (i = 0; i < map->ulCount && code == 0; ++i) {
    code = DeviceProgramBank(map->ulTargetBank[i], image + (size_t)i * kFwBankBytes);
    if (code == 0) ShowProgress(i + 1, map->ulCount);
  }
  DeviceClose();
  return code;
}

int IspFlash(Setting* setting) {
  unsigned char* image;
  int code;
  /* Add the actions that your display knows; the boot code comes as this one, too. */
  if (setting->enumActionType != CP_ISPTOOL_ACTION_ISP) return kWrongAction;
  code = CheckMap(&setting->stMapFw);
  if (code != 0) return code;
  image = (unsigned char*)malloc((size_t)setting->stMapFw.ulCount * kFwBankBytes);
  if (image == NULL) return kNoMemory;
  memset(image, kPadding, (size_t)setting->stMapFw.ulCount * kFwBankBytes);
  code = ReadFiles(&setting->stMapFw, image);
  if (code == 0) code = ProgramBanks(setting, image);
  free(image);
  return code;
}

static int WriteDump(const char* path, const unsigned char* bytes, size_t length) {
  FILE* const file = fopen(path, "wb");
  size_t written;
  if (file == NULL) return kDumpNotWritten;
  written = fwrite(bytes, 1, length, file);
  /* A full disk may show only here. */
  if (fclose(file) != 0 || written != length) return kDumpNotWritten;
  return 0;
}

int DumpFlash(Setting* setting) {
  const STRUCT_DUMP_FLASH_SETTING* const dump = &setting->stDumpFlash;
  const uint64_t end = (uint64_t)dump->ulDumpAddr + dump->ulDumpLen;
  char path[kPathUtf8Capacity];
  unsigned char* bytes;
  int code;
  if (setting->enumActionType != CP_ISPTOOL_ACTION_DUMP_FLASH) return kWrongAction;
  if (dump->ulDumpLen == 0 || end > (uint64_t)kDeviceBanks * kFwBankBytes) return kBadRange;
  if (!ZvWideToUtf8(dump->wszDumpFile, kPathCapacity, path, sizeof path)) return kBadPath;
  bytes = (unsigned char*)malloc(dump->ulDumpLen);
  if (bytes == NULL) return kNoMemory;
  code = OpenDisplay(setting);
  if (code == 0) {
    code = DeviceRead(dump->ulDumpAddr, bytes, dump->ulDumpLen);
    DeviceClose();
  }
  if (code == 0) code = WriteDump(path, bytes, dump->ulDumpLen);
  free(bytes);
  return code;
}

void SetUIFunction(ZvReturnProgress progress, ZvShowMessage message, ZvGetHubDevice hub_device) {
  (void)message;
  (void)hub_device;
  g_progress = progress;
}

/* Required, so they are here; refuse what your display cannot do. */

int RecordFWVersion(Setting* setting) {
  (void)setting;
  return kNotSupported;
}

int GetKeyFromFlash(Setting* setting, unsigned char* key) {
  (void)setting;
  (void)key;
  return kNotSupported;
}

void SetCommInterface(CZvComm* comm) {
  (void)comm;
}
