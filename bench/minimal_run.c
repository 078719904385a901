// SPDX-License-Identifier: MIT
//
// The least that any program does which opens an ISP plug-in and hands it a zeroed record.
// Usage: minimal_run PLUGIN
#include <dlfcn.h>
#include <stdlib.h>
#include <string.h>

enum { kRecordBytes = 275328 };

int main(int argc, char** argv) {
  void* const library = argc == 2 ? dlopen(argv[1], RTLD_NOW) : NULL;
  if (library == NULL) return 1;
  void* const address = dlsym(library, "IspFlash");
  if (address == NULL) return 1;
  int (*isp_flash)(void*) = NULL;
  memcpy(&isp_flash, &address, sizeof isp_flash);
  void* const record = calloc(1, kRecordBytes);
  const int result = isp_flash(record);
  free(record);
  dlclose(library);
  return result;
}
