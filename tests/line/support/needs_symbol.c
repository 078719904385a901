// SPDX-License-Identifier: MIT
int NobodyHasThisSymbol(void);
int IspFlash(void* setting);

int IspFlash(void* setting) {
  return setting == 0 ? 1 : NobodyHasThisSymbol();
}
