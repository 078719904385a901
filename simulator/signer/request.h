// SPDX-License-Identifier: MIT
//
// The two requests of the tool, each judged by the type and mode in its record.
#ifndef ZVISP_SIMULATOR_SIGNER_REQUEST_H_
#define ZVISP_SIMULATOR_SIGNER_REQUEST_H_

#include "plugin/zvisp_plugin.h"

namespace signer {

// Signs szFwFile into szSignatureFile:
//   software mode 2  with a training key pair
//   software mode 3  with the sign key file
//   software mode 4  with the sign key file; binds the next verify key
//   hardware         with the sign key file, or a training key pair when there is none; binds the
//                    next verify key. The hardware mode changes nothing here
// Returns false, after printing why, when it refuses.
bool SignFirmware(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS& args);

// Verifies szFwFile against szSignatureFile:
//   software mode 1  with the key of the sub-certificate, which the verify key has signed
//   software mode 2  with a training key pair
//   software mode 3  with the verify key file
//   software mode 4  with the device's key; without one, with the verify key file, or, when that
//                    was not given either, the next verify key file. The next verify key that the
//                    signature binds must be the one in the next verify key file, if that was given
// `device_key` is null or kDeviceKeyCapacity bytes. Returns false, after printing why, when the
// firmware is not genuine or that cannot be decided.
bool VerifyFirmware(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS& args, const char* device_key);

}  // namespace signer

#endif  // ZVISP_SIMULATOR_SIGNER_REQUEST_H_
