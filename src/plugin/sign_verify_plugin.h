// SPDX-License-Identifier: MIT
//
// CCpSignVerify: the proxy of the signature plug-in, the library that does the cryptography.
// Destroying the proxy does not unload the library; FreeSignVerfiyDllFile does.
#ifndef ZVISP_PLUGIN_SIGN_VERIFY_PLUGIN_H_
#define ZVISP_PLUGIN_SIGN_VERIFY_PLUGIN_H_

#include <vector>

#include "plugin/digital_sign_args.h"
#include "plugin/export.h"

namespace zvisp {

// Result codes of signing and verifying.
inline constexpr int kSigningFailed = 16386;        // 0x4002
inline constexpr int kVerificationFailed = 16387;   // 0x4003
inline constexpr int kSignPluginNotLoaded = 16388;  // 0x4004

}  // namespace zvisp

class CCpSignVerify {
 public:
  CCpSignVerify() { Init(); }
  virtual ~CCpSignVerify() = default;
  CCpSignVerify(const CCpSignVerify&) = delete;
  CCpSignVerify& operator=(const CCpSignVerify&) = delete;

  // Forgets the library and both calls without closing it.
  void Init();

  // Loads the library at a full path; a library that was loaded before is closed first. Returns
  // false after printing "dlopen - " or "dlsym - " with the loader's reason when it cannot be
  // opened or lacks an export; no call is bound then.
  bool LoadSignVerfiyDllFile(const wchar_t* path);

  // Closes the library, if one is loaded, and unbinds both calls.
  void FreeSignVerfiyDllFile();

  // The calls of the plug-in interface, those that are looked up first and in the order of the
  // look-up. The tool does not ask; a host may name with it what a library lacks.
  static std::vector<zvisp::ExportName> ExportNames();

  // 0, or kSigningFailed, or kSignPluginNotLoaded.
  int SignFw(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS* args) const;

  // 0, or kVerificationFailed, or kSignPluginNotLoaded. `key` is null or the kDeviceKeyCapacity
  // bytes of the key that was read from the device.
  int VerifySignature(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS* args, char* key) const;

 private:
  struct Table;

  void* m_library = nullptr;
  zvisp::Export<int(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS*)> m_sign;
  zvisp::Export<int(const STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS*, char*)> m_verify;
};

#endif  // ZVISP_PLUGIN_SIGN_VERIFY_PLUGIN_H_
