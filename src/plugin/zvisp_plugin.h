// SPDX-License-Identifier: MIT
//
// What a plug-in author includes: the calls that the tool looks up in an ISP plug-in
// ("PlugIn/libIsp.dylib" next to the executable) and in a signature plug-in
// ("libSignVerify.dylib" next to the executable), and the records that they receive.
//
// 1. Ownership: the tool owns every pointer that it passes. Records, keys and texts are valid until
//    the call returns; callbacks and a communication object are valid until the library is
//    unloaded. A plug-in keeps copies, and frees nothing. It may write into the command-setting
//    record, of which the tool reads back only enumActionType.
// 2. Errors: an ISP call returns 0 for success, any other 32-bit code is printed in hexadecimal
//    and its low 8 bits become the exit status. A signature call returns non-zero for success.
// 3. Callbacks may each be null; they are called on the thread that called the plug-in.
// 4. No C++ exception and no C++ type may cross the edge.
// 5. Every call is made from one thread, one after another. The library is unloaded with dlclose
//    at the end of a completed run, and stays loaded until the process ends otherwise.
#ifndef ZVISP_PLUGIN_ZVISP_PLUGIN_H_
#define ZVISP_PLUGIN_ZVISP_PLUGIN_H_

#include "plugin/command_setting.h"
#include "plugin/digital_sign_args.h"

#ifdef __cplusplus
#define ZVISP_PLUGIN_EXPORT extern "C" __attribute__((visibility("default")))
class CZvComm;
#else
#define ZVISP_PLUGIN_EXPORT __attribute__((visibility("default")))
typedef struct CZvComm CZvComm;
#endif

// Progress in percent, 0..100.
typedef void (*ZvReturnProgress)(int percent);
// A message for the operator; the text is NUL-terminated and only valid during the call.
typedef void (*ZvShowMessage)(wchar_t* message);
// The device that a hub is connected to, or null when there is none.
typedef void* (*ZvGetHubDevice)(void);

// ISP plug-in. The tool refuses a library that lacks one of the first six.

// Programs the banks of stMapFw: actions 4 (isp), 5 (ispuser), 6 (ispdiff), 7 (ispcopy), 17.
ZVISP_PLUGIN_EXPORT int IspFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting);
// Hands over the communication object of a host that has one; this tool never calls it.
ZVISP_PLUGIN_EXPORT void SetCommInterface(CZvComm* comm);
// Records the firmware version: action 8.
ZVISP_PLUGIN_EXPORT int RecordFWVersion(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting);
// Reads the verify key of the device into key, kDeviceKeyCapacity zeroed bytes.
ZVISP_PLUGIN_EXPORT int GetKeyFromFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting,
                                        unsigned char* key);
// Hands over the host's callbacks, each of them possibly null; called right after loading.
ZVISP_PLUGIN_EXPORT void SetUIFunction(ZvReturnProgress progress, ZvShowMessage message,
                                       ZvGetHubDevice hub_device);
// Reads stDumpFlash.ulDumpLen bytes at ulDumpAddr into the file wszDumpFile: action 16.
ZVISP_PLUGIN_EXPORT int DumpFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting);

// Optional: without it, its action ends with code 6.

// Reads the user-defined information: action 19.
ZVISP_PLUGIN_EXPORT int GetUserDefinedInfoFromDDCCI(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting);
// Programs the e-DP EEPROM or reads its version (enumEdpIspMode): action 20.
ZVISP_PLUGIN_EXPORT int IspEeprom(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting);
// Puts the chip into ISP mode: action 21.
ZVISP_PLUGIN_EXPORT int EnterISPModeExport(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting);
// Resets the chip's MCU: action 15.
ZVISP_PLUGIN_EXPORT int ResetMCUExport(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting);
// Returns the scaler type itself, not a result code: action 25.
ZVISP_PLUGIN_EXPORT int GetScalerType(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting);

// Signature plug-in. The tool refuses a library that lacks either.

// Signs szFwFile into szSignatureFile; non-zero for success.
ZVISP_PLUGIN_EXPORT int SignFwExport(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS* args);
// Verifies szFwFile against szSignatureFile; non-zero when it is genuine. device_key is null, or
// the kDeviceKeyCapacity bytes that GetKeyFromFlash read (software mode 4).
ZVISP_PLUGIN_EXPORT int VerifySignatureExport(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS* args,
                                              char* device_key);

#endif  // ZVISP_PLUGIN_ZVISP_PLUGIN_H_
