/* SPDX-License-Identifier: MIT */
/* The device, as plugin.c sees it: what you write for your display. Addresses and lengths are bytes
 * of its flash. Every function returns 0, or a code of yours: 0x2000 and above here, and never one
 * whose low 8 bits are 0. plugin.c has checked all that it passes. */
#ifndef DEVICE_H_
#define DEVICE_H_

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

enum {
  kDeviceBanks = 256,         /* banks of 65536 bytes in the flash of your display, at most 256 */
  kDeviceNotWritten = 0x2001, /* device.c is still the one of the template */
  kDeviceDiffers = 0x2002     /* the flash reads back differently from what was written */
};

/* Opens the display at an interface 1..16, or 0 when the command line named none. slave is its I2C
 * address, or 0 to detect it. */
int DeviceOpen(uint32_t interface_number, uint32_t slave);
/* Closes it, also after a failure of the calls below; not after one of DeviceOpen. */
void DeviceClose(void);
/* Erases a bank, writes all its 65536 bytes, reads them back and compares. */
int DeviceProgramBank(uint32_t bank, const unsigned char* bytes);
/* Reads a range of the flash. */
int DeviceRead(uint32_t address, unsigned char* bytes, size_t length);

#ifdef __cplusplus
}
#endif

#endif
