// SPDX-License-Identifier: MIT
int InAnAbsentLibrary(void);
int IspFlash(void* setting);

int IspFlash(void* setting) {
  return setting == 0 ? 1 : InAnAbsentLibrary();
}
