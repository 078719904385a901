// SPDX-License-Identifier: MIT
//
// All that a plug-in includes: the calls that the tools look up in an ISP plug-in
// ("PlugIn/libIsp.dylib" next to the executable) and in a signature plug-in ("libSignVerify.dylib"
// next to it), the records that they receive, and the way from a record's path to a file. C99 and
// later, C++11 and later. The example "plugin" that is installed with this header is one to start
// from. Two hosts call a plug-in: zvisp, and zvisp-line for production lines.
//
// Results
//  1. An ISP call returns 0 for success. zvisp prints any other 32-bit code in hexadecimal and ends
//     with its low 8 bits as the exit status. So a code such as 0x100 ends with exit status 0: the
//     low 8 bits must not all be 0. Codes of the tools' own are 6, 0xD67, 0xD69, 0x2B0D and 0x4002
//     to 0x4004; use others. A signature call returns non-zero for success.
//  2. A call that is not meant for enumActionType, or whose record makes no sense, returns a code
//     and touches nothing. An empty map (ulCount 0) does reach IspFlash: a firmware file of 0
//     bytes has no bank, and neither has boot code whose file cannot be opened.
//
// Memory
//  3. The host owns every pointer that it passes. Records, keys and texts are valid until the call
//     returns, callbacks and a communication object until the library is unloaded. A plug-in keeps
//     copies, and frees nothing.
//  4. A plug-in may write into the command-setting record, of which the host reads back only
//     enumActionType; and never past its end, where zvisp-line has a page that ends the process.
//
// Paths
//  5. wszPath of a bank is the full path of a file, in zvisp-line of a private copy of it. The
//     file's last bank may be shorter than kFwBankBytes; what the rest of that bank of flash then
//     holds is the plug-in's choice. wszDumpFile is a path as typed: it may be relative.
//  6. Calls run with the locale "C" for characters (LC_CTYPE), while the other categories are the
//     user's, who may write a comma in numbers. wcstombs refuses a path that is not ASCII:
//     ZvWideToUtf8 below converts it, and the tools open the same files by the same bytes.
//
// Process
//  7. The working directory and the umask are the user's. A call leaves both, the locale, the
//     signals and all descriptors as they were. SIGPIPE is ignored. It never calls exit or abort.
//  8. Every call is made from one thread, one after another. Callbacks may each be null, and are
//     called on that thread: in zvisp all are null, in zvisp-line only the hub device is.
//  9. No C++ exception and no C++ type may cross the edge.
// 10. zvisp unloads an ISP plug-in with dlclose at the end of a completed run; a run that fails
//     before the call of its action leaves it loaded. A signature plug-in stays loaded. What is
//     loaded when the process ends gets no call any more, in zvisp-line no destructor either.
//     zvisp-line loads a plug-in again in the same process to read the flash back.
// 11. Print nothing while the library is loaded or unloaded: scripts look for the result in the
//     last bytes of the output.
#ifndef ZVISP_PLUGIN_ZVISP_PLUGIN_H_
#define ZVISP_PLUGIN_ZVISP_PLUGIN_H_

// In C++, too, the records are plain structs here: "STRUCT_FLAG_SETTING flag;" calls no constructor
// of the tool, which a plug-in could not link, and holds what the memory held, as in C.
#ifdef ZVISP_RECORD_OPERATIONS
#error "include plugin/zvisp_plugin.h before command_setting.h and digital_sign_args.h, or instead"
#endif
#ifndef ZVISP_PLAIN_RECORDS
#define ZVISP_PLAIN_RECORDS 1
#endif

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
// With --boot, --newboot, --factory and a signature type it is called twice. The first record is
// the boot code's: action 4, the banks of that file, and otherwise what a record begins with:
// interface 0, slave 0x94 with bAutoSlaveAddr -1, enumIspMode 0, no settings file. Only the second
// has the interface and slave of the run; enumBootCodeType is 1 and enumIspMode 2 there.
ZVISP_PLUGIN_EXPORT int IspFlash(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting);
// Hands over the communication object of a host that has one; neither tool ever calls it.
ZVISP_PLUGIN_EXPORT void SetCommInterface(CZvComm* comm);
// Records the firmware version: action 8.
ZVISP_PLUGIN_EXPORT int RecordFWVersion(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting);
// Reads the verify key of the device into key, kDeviceKeyCapacity zeroed bytes: software signature
// mode 4, before IspFlash. The record is a copy of the run's with an empty map (ulCount 0).
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
// Returns the scaler type itself, not a result code: action 25. Its low 8 bits are the exit status.
ZVISP_PLUGIN_EXPORT int GetScalerType(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting);

// Signature plug-in. The tool refuses a library that lacks either. With --sign or --verify and no
// signature type on the command line the record is all zero: refuse enumActionType 0.

// Signs szFwFile into szSignatureFile; non-zero for success.
ZVISP_PLUGIN_EXPORT int SignFwExport(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS* args);
// Verifies szFwFile against szSignatureFile; non-zero when it is genuine. device_key is null, or
// the kDeviceKeyCapacity bytes that GetKeyFromFlash read (software mode 4).
ZVISP_PLUGIN_EXPORT int VerifySignatureExport(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS* args,
                                              char* device_key);

// Bytes that hold every path of a record in UTF-8, terminating zero included.
enum { kPathUtf8Capacity = 4 * (kPathCapacity - 1) + 1 };

#ifdef __cplusplus
#define ZVISP_CAST(type, value) static_cast<type>(value)
#else
#define ZVISP_CAST(type, value) ((type)(value))
#endif

// Writes wide text of a record into utf8, whatever the locale is. Reads up to the terminating zero,
// at most wide_capacity units; writes at most utf8_capacity bytes, terminating zero included.
// Returns 1; or 0 when there is no terminating zero, when a unit is not a character (a surrogate,
// or above 0x10FFFF) or when utf8 is too small: the text is then empty, never a part of the path.
//
//   char path[kPathUtf8Capacity];
//   if (!ZvWideToUtf8(bank->wszPath, kPathCapacity, path, sizeof path)) return kMyBadPathCode;
static inline int ZvWideToUtf8(const wchar_t* wide, size_t wide_capacity, char* utf8,
                               size_t utf8_capacity) {
  size_t used = 0;
  size_t i;
  for (i = 0; i < wide_capacity; ++i) {
    // Units, not bytes. NOLINTNEXTLINE(bugprone-signed-char-misuse)
    const uint32_t unit = ZVISP_CAST(uint32_t, wide[i]);
    // The first byte has the highest bits; each of the `rest` bytes after it has six more.
    uint32_t rest = unit < 0x80U ? 0U : unit < 0x800U ? 1U : unit < 0x10000U ? 2U : 3U;
    const uint32_t lead_mark = rest == 0U ? 0U : (0xFFU << (7U - rest)) & 0xFFU;
    if (unit > 0x10FFFFU || (unit >= 0xD800U && unit <= 0xDFFFU)) break;
    if (utf8_capacity - used < 1U + rest) break;
    utf8[used++] = ZVISP_CAST(char, lead_mark | (unit >> (6U * rest)));
    if (unit == 0U) return 1;
    while (rest > 0U) {
      --rest;
      utf8[used++] = ZVISP_CAST(char, 0x80U | ((unit >> (6U * rest)) & 0x3FU));
    }
  }
  if (utf8_capacity > 0U) utf8[0] = '\0';
  return 0;
}

#undef ZVISP_CAST

#endif  // ZVISP_PLUGIN_ZVISP_PLUGIN_H_
