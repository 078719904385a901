// SPDX-License-Identifier: MIT
// A library that is not where the loader looks for it.
int InAnAbsentLibrary(void);

int InAnAbsentLibrary(void) {
  return 1;
}
