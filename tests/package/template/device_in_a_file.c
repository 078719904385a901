/* SPDX-License-Identifier: MIT */
/* The template's device.c, written for a display that is the file "flash" in the working
 * directory. */
#include "device.h"

#include <stdio.h>
#include <string.h>

enum { kBankBytes = 65536, kCannotOpen = 0x2003, kCannotWrite = 0x2004 };

static FILE* g_flash;

int DeviceOpen(uint32_t interface_number, uint32_t slave) {
  (void)slave;
  if (interface_number != 7) return kCannotOpen;
  g_flash = fopen("flash", "r+b");
  if (g_flash == NULL) g_flash = fopen("flash", "w+b");
  return g_flash == NULL ? kCannotOpen : 0;
}

void DeviceClose(void) {
  fclose(g_flash);
}

int DeviceRead(uint32_t address, unsigned char* bytes, size_t length) {
  size_t got;
  fseek(g_flash, (long)address, SEEK_SET);
  got = fread(bytes, 1, length, g_flash);
  memset(bytes + got, 0xFF, length - got);
  return 0;
}

int DeviceProgramBank(uint32_t bank, const unsigned char* bytes) {
  static unsigned char read_back[kBankBytes];
  fseek(g_flash, (long)bank * kBankBytes, SEEK_SET);
  if (fwrite(bytes, 1, kBankBytes, g_flash) != kBankBytes) return kCannotWrite;
  DeviceRead(bank * kBankBytes, read_back, kBankBytes);
  return memcmp(read_back, bytes, kBankBytes) == 0 ? 0 : kDeviceDiffers;
}
