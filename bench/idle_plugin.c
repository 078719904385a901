// SPDX-License-Identifier: MIT
//
// An ISP plug-in that does nothing and says that all went well.
#define IDLE_EXPORT __attribute__((visibility("default")))

IDLE_EXPORT int IspFlash(void* setting);
IDLE_EXPORT int RecordFWVersion(void* setting);
IDLE_EXPORT int GetKeyFromFlash(void* setting, void* key);
IDLE_EXPORT int DumpFlash(void* setting);
IDLE_EXPORT void SetCommInterface(void* device);
IDLE_EXPORT void SetUIFunction(void* progress, void* message, void* hub);

int IspFlash(void* setting) {
  (void)setting;
  return 0;
}

int RecordFWVersion(void* setting) {
  (void)setting;
  return 0;
}

int GetKeyFromFlash(void* setting, void* key) {
  (void)setting;
  (void)key;
  return 0;
}

int DumpFlash(void* setting) {
  (void)setting;
  return 0;
}

void SetCommInterface(void* device) {
  (void)device;
}

void SetUIFunction(void* progress, void* message, void* hub) {
  (void)progress;
  (void)message;
  (void)hub;
}
