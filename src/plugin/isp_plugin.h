// SPDX-License-Identifier: MIT
//
// CCpIsp: the proxy of the ISP plug-in, the library that does the device work.
//
// Each call of the plug-in is a member that is called like a function. A call that the library
// does not have, or that is never looked up, answers 6. Destroying the proxy does not unload the
// library; FreeIspDllFile does.
#ifndef ZVISP_PLUGIN_ISP_PLUGIN_H_
#define ZVISP_PLUGIN_ISP_PLUGIN_H_

#include <vector>

#include "plugin/command_setting.h"
#include "plugin/export.h"

class CZvComm;

namespace zvisp {

// The result of a call that is not bound.
inline constexpr int kExportNotBound = 6;

}  // namespace zvisp

class CCpIsp {
  using Setting = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;
  using SettingCall = zvisp::Export<int(Setting*), zvisp::kExportNotBound>;
  using SettingAndBytesCall = zvisp::Export<int(Setting*, unsigned char*), zvisp::kExportNotBound>;

 public:
  CCpIsp() { Init(); }
  virtual ~CCpIsp() = default;
  CCpIsp(const CCpIsp&) = delete;
  CCpIsp& operator=(const CCpIsp&) = delete;

  // Forgets the library and every call without closing it.
  void Init();

  // Loads the library at a full path; a library that was loaded before is closed first. Returns
  // false when it cannot be opened, after printing "dlopen - " with the loader's reason, or,
  // silently, when it lacks a required export; no call is bound then.
  bool LoadIspDllFile(const wchar_t* path);

  // Closes the library, if one is loaded, and unbinds every call.
  void FreeIspDllFile();

  // The calls of the plug-in interface, those that are looked up first and in the order of the
  // look-up. The tool does not ask; a host may name with it what a library lacks.
  static std::vector<zvisp::ExportName> ExportNames();

  // Hands the device to the plug-in: returns 1, or 0 when the call is not bound. It is never
  // looked up, so the answer is always 0.
  int SetIDev(void* device);

  // In the order of the plug-in interface. "Never looked up" is the contract of this tool, not a
  // gap: the actions of those calls end with code 6 whatever a library exports.
  SettingCall IspFlash;
  SettingAndBytesCall GetKeyFromFlash;
  zvisp::Export<void(CZvComm*)> SetCommInterface;
  SettingCall RecordFWVersion;
  zvisp::Export<void(void (*)(int), void (*)(wchar_t*), void* (*)())> SetUIFunction;
  SettingCall GetFWInfo;  // never looked up
  SettingCall DumpFlash;
  SettingCall GetUserDefinedInfoFromDDCCI;
  SettingCall SendUserDefinedInfo;  // never looked up
  SettingCall ChipEraseFlash;       // never looked up
  SettingCall IspEeprom;
  SettingCall EnterISPModeExport;
  SettingCall ResetMCUExport;
  SettingAndBytesCall GetMergeFwInfo;  // never looked up
  SettingCall SetMergeFwInfo;          // never looked up
  SettingCall I2CWriteExport;          // never looked up
  SettingCall GetScalerType;

 private:
  struct Table;

  void* m_library = nullptr;
  zvisp::Export<int(void*)> m_set_idev;
};

#endif  // ZVISP_PLUGIN_ISP_PLUGIN_H_
