// SPDX-License-Identifier: MIT
//
// The dispatcher: loads the plug-ins, checks signatures, programs the boot code, and calls the one
// export that belongs to the action.
#ifndef ZVISP_APP_EXECUTE_PROCESS_H_
#define ZVISP_APP_EXECUTE_PROCESS_H_

#include <cstdint>

#include "base/zv_string.h"
#include "plugin/command_setting.h"
#include "plugin/digital_sign_args.h"
#include "plugin/sign_verify_plugin.h"

namespace zvisp {

// Result codes of the tool itself; 0 is success, and codes of the plug-ins pass through unchanged.
inline constexpr std::uint32_t kIspPluginNotLoaded = 3431;  // 0xD67
inline constexpr std::uint32_t kRecordNotAllocated = 3433;  // 0xD69
inline constexpr std::uint32_t kNoHubDevice = 11021;        // 0x2B0D

}  // namespace zvisp

// The records of the run that is under way; null outside of a run. Owned by main.
extern STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* g_pstISPSetting;
extern STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS* g_pstDigitalSignArgs;

// Callbacks for the ISP plug-in. This tool leaves them null; a host with a user interface sets
// them before ExecuteProcess.
extern void (*g_funcReturnProg)(int percent);
extern void (*g_funcShowMsg)(wchar_t* message);
extern void* (*g_funcZvGetHubDev)();

// A host that keeps a record of its runs sets this: it is called with the export's name directly
// before every call that hands a record to the ISP plug-in (the boot code's, the key's, the
// action's), and not for an export that the plug-in lacks. This tool leaves it null.
extern void (*g_funcBeforeIspCall)(const char* exportName);

// Runs the action of `setting` and returns its result code. The plug-in names are relative to the
// executable's directory; `device` is handed to the ISP plug-in and may be null. Prints what the
// plug-in loaders print, and "Get Key From Flash ...\n" before it reads a key from the device.
// Where a signature is verified before firmware is programmed, the verified file has to be in the
// map, unless that is empty, and unchanged until the call that programs; else the result is
// kVerificationFailed. In a set-uid process it prints one line and loads no plug-in: the result is
// kIspPluginNotLoaded, for signing and verifying, too.
// A run that ends early leaves its plug-ins loaded until the process ends.
std::uint32_t ExecuteProcess(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting,
                             STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS* signArgs, CCpZvString& ispPlugIn,
                             CCpZvString& signPlugIn, void* device);

namespace zvisp {

// The same with the plug-ins in a directory of the host's choice, which ends in "/"; empty, no
// plug-in is found. The boot code's name is still resolved against the executable's directory.
std::uint32_t ExecuteProcessFrom(const CCpZvString& plugInDirectory,
                                 STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting,
                                 STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS* signArgs,
                                 const CCpZvString& ispPlugIn, const CCpZvString& signPlugIn,
                                 void* device);

}  // namespace zvisp

// Loads the signature plug-in from plugInPath; the directory is not used. Returns 0, or 16388
// after the loader's message.
std::uint32_t LoadSignVerfiyDll(CCpSignVerify& signVerify, CCpZvString directory,
                                CCpZvString plugInPath);

#endif  // ZVISP_APP_EXECUTE_PROCESS_H_
