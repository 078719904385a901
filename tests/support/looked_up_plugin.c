/* SPDX-License-Identifier: MIT
 *
 * A library with every export of both plug-in interfaces, those that are never looked up included,
 * that notes the order in which they are looked up: the loader calls the resolver of an indirect
 * function each time that its name is looked up. */
#include "support/looked_up_plugin.h"

#define VISIBLE __attribute__((visibility("default")))

VISIBLE struct LookedUp looked_up;

static int Answer(void) {
  return 1;
}

/* clang-format off */
#define EXPORT(name) \
  __attribute__((unused)) static int (*name##LookedUp(void))(void) { \
    looked_up.names[looked_up.count++] = #name; \
    return Answer; \
  } \
  VISIBLE int name(void) __attribute__((ifunc(#name "LookedUp")));

EXPORT(ChipEraseFlash)
EXPORT(DumpFlash)
EXPORT(EnterISPModeExport)
EXPORT(GetFWInfo)
EXPORT(GetKeyFromFlash)
EXPORT(GetMergeFwInfo)
EXPORT(GetScalerType)
EXPORT(GetUserDefinedInfoFromDDCCI)
EXPORT(I2CWriteExport)
EXPORT(IspEeprom)
EXPORT(IspFlash)
EXPORT(RecordFWVersion)
EXPORT(ResetMCUExport)
EXPORT(SendUserDefinedInfo)
EXPORT(SetCommInterface)
EXPORT(SetIDev)
EXPORT(SetMergeFwInfo)
EXPORT(SetUIFunction)
EXPORT(SignFwExport)
EXPORT(VerifySignatureExport)
/* clang-format on */
