/* SPDX-License-Identifier: MIT */
/* Your display. Nothing here touches one yet, so every call fails: a plug-in that has not done its
 * work must never report success. */
#include "device.h"

int DeviceOpen(uint32_t interface_number, uint32_t slave) {
  (void)interface_number;
  (void)slave;
  return kDeviceNotWritten; /* YOUR CODE */
}

void DeviceClose(void) { /* YOUR CODE */
}

int DeviceProgramBank(uint32_t bank, const unsigned char* bytes) {
  (void)bank;
  (void)bytes;
  return kDeviceNotWritten; /* YOUR CODE */
}

int DeviceRead(uint32_t address, unsigned char* bytes, size_t length) {
  (void)address;
  (void)bytes;
  (void)length;
  return kDeviceNotWritten; /* YOUR CODE */
}
