// SPDX-License-Identifier: MIT
#include "app/execute_process.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <memory>
#include <new>
#include <optional>

#include "app/verified_file.h"
#include "base/path.h"
#include "cmdline/isp_args_parse.h"
#include "firmware/bank_map.h"
#include "firmware/firmware_slots.h"
#include "plugin/fresh_setting.h"
#include "plugin/isp_plugin.h"
#include "plugin/zeroed.h"

using namespace zvisp;

STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* g_pstISPSetting = nullptr;
STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS* g_pstDigitalSignArgs = nullptr;
void (*g_funcReturnProg)(int percent) = nullptr;
void (*g_funcShowMsg)(wchar_t* message) = nullptr;
void* (*g_funcZvGetHubDev)() = nullptr;
void (*g_funcBeforeIspCall)(const char* exportName) = nullptr;

namespace {

using Setting = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;

constexpr std::uint32_t kHubCommId = 6;
constexpr std::uint32_t kNewBootCode = 1;
constexpr unsigned int kBootFirmwareSlot = 0;

// Everything that the steps of a run share.
struct Run {
  Setting* setting;
  STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS* sign_args;
  CCpZvString sign_plugin_path;
  void* device;
  CCpIsp isp;
  CCpSignVerify sign_verify;
  std::optional<VerifiedFile> verified_file;  // set when the signature was checked
};

// Without a directory there is no plug-in in it: a bare name would make the loader look in the
// working directory.
CCpZvString InDirectory(const CCpZvString& directory, const CCpZvString& name) {
  return directory.IsEmpty() ? CCpZvString() : directory + name;
}

// Every call that gets a record is made here. A call that is not bound enters no plug-in, so the
// host does not hear of it.
template <typename IspExport, typename... Arguments>
int CallPlugIn(const IspExport& call, Arguments... arguments) {
  if (g_funcBeforeIspCall != nullptr && call.IsBound()) g_funcBeforeIspCall(call.Symbol());
  return call(arguments...);
}

template <auto kExport>
int Call(CCpIsp& isp, Setting* setting) {
  return CallPlugIn(isp.*kExport, setting);
}

int MergeFwInfo(CCpIsp& isp, Setting* setting) {
  switch (setting->enumMergeFwInfoType) {
    case CP_MERGE_FW_INFO_WRITE:
      return CallPlugIn(isp.SetMergeFwInfo, setting);
    case CP_MERGE_FW_INFO_READ:
      return CallPlugIn(isp.GetMergeFwInfo, setting, nullptr);
    default:
      return 0;
  }
}

struct ActionRow {
  std::uint32_t action;
  int (*call)(CCpIsp&, Setting*);
};

// An action that has no row (9 to 14) succeeds without touching the device: scripts rely on it.
// clang-format off
constexpr ActionRow kActions[] = {
  // action                                   call
  {CP_ISPTOOL_ACTION_ISP,                     Call<&CCpIsp::IspFlash>},
  {CP_ISPTOOL_ACTION_ISP_USER,                Call<&CCpIsp::IspFlash>},
  {CP_ISPTOOL_ACTION_ISP_DIFF,                Call<&CCpIsp::IspFlash>},
  {CP_ISPTOOL_ACTION_ISP_COPY,                Call<&CCpIsp::IspFlash>},
  {CP_ISPTOOL_ACTION_FACTORY_ISP,             Call<&CCpIsp::IspFlash>},
  {CP_ISPTOOL_ACTION_RECORD_VERSION,          Call<&CCpIsp::RecordFWVersion>},
  {CP_ISPTOOL_ACTION_GET_STATUS,              Call<&CCpIsp::GetFWInfo>},
  {CP_ISPTOOL_ACTION_DUMP_FLASH,              Call<&CCpIsp::DumpFlash>},
  {CP_ISPTOOL_ACTION_USER_DEFINED_INFO,       Call<&CCpIsp::GetUserDefinedInfoFromDDCCI>},
  {CP_ISPTOOL_ACTION_ERASE,                   Call<&CCpIsp::ChipEraseFlash>},
  {CP_ISPTOOL_ACTION_EDP_ISP,                 Call<&CCpIsp::IspEeprom>},
  {CP_ISPTOOL_ACTION_ENTER_ISP_MODE,          Call<&CCpIsp::EnterISPModeExport>},
  {CP_ISPTOOL_ACTION_RESET_MCU,               Call<&CCpIsp::ResetMCUExport>},
  {CP_ISPTOOL_ACTION_MERGE_FW_INFO,           MergeFwInfo},
  {CP_ISPTOOL_ACTION_SEND_USER_DEFINED_INFO,  Call<&CCpIsp::SendUserDefinedInfo>},
  {CP_ISPTOOL_ACTION_I2C_WRITE,               Call<&CCpIsp::I2CWriteExport>},
  {CP_ISPTOOL_ACTION_GET_SCALER_TYPE,         Call<&CCpIsp::GetScalerType>},
};
// clang-format on

std::uint32_t Dispatch(Run& run) {
  const std::uint32_t action = run.setting->enumActionType;
  const auto is_action = [action](const ActionRow& row) { return row.action == action; };
  const auto row = std::find_if(std::begin(kActions), std::end(kActions), is_action);
  if (row == std::end(kActions)) return 0;
  // The last look before the call: what happens between the two is not seen (docs/signing.md).
  if (run.verified_file && ProgramsFirmware(action) && !run.verified_file->IsUnchanged()) {
    return kVerificationFailed;
  }
  return static_cast<std::uint32_t>(row->call(run.isp, run.setting));
}

std::uint32_t LoadSignPlugIn(Run& run) {
  return LoadSignVerfiyDll(run.sign_verify, {}, run.sign_plugin_path);
}

std::uint32_t Verify(Run& run, char* key) {
  return static_cast<std::uint32_t>(run.sign_verify.VerifySignature(run.sign_args, key));
}

// The plug-in's last call may have reset the display; the host then has a new device.
std::uint32_t RefreshHubDevice(Run& run) {
  if (run.setting->enumCommID != kHubCommId) return 0;
  if (g_funcZvGetHubDev == nullptr || run.device == nullptr) return 0;
  void* const device = g_funcZvGetHubDev();
  if (device == nullptr) return kNoHubDevice;
  run.isp.SetIDev(device);
  return 0;
}

std::uint32_t VerifyWithDeviceKey(Run& run) {
  unsigned char key[kDeviceKeyCapacity] = {};
  const ZeroedPtr<Setting> copy = MakeFreshSetting();
  if (copy == nullptr) return kRecordNotAllocated;
  CopyBytes(*copy, *run.setting);
  copy->ClearMapFW();
  std::printf("Get Key From Flash ...\n");
  const int result = CallPlugIn(run.isp.GetKeyFromFlash, copy.get(), key);
  if (result != 0) return static_cast<std::uint32_t>(result);
  return Verify(run, reinterpret_cast<char*>(key));
}

// A genuine file does not speak for another one. The map's paths are shorter than the request's, so
// a long path may be cut there and lead elsewhere. A host's own record may program without a map.
bool ProgramsOtherFiles(const Run& run) {
  return ProgramsFirmware(run.setting->enumActionType) && run.setting->stMapFw.ulCount != 0 &&
         !run.verified_file->IsIn(run.setting->stMapFw);
}

// Verifies the file of --fw alone: not the other slots, not in factory mode, no hardware signature.
std::uint32_t CheckSignature(Run& run) {
  if (run.setting->enumIspMode != ISP_MODE_NORMAL) return 0;
  if (run.setting->enumDigitalSignatureType != CP_DIGITAL_SIGNATURE_SW) return 0;
  if (const std::uint32_t result = LoadSignPlugIn(run); result != 0) return result;
  const bool key_is_on_device =
      run.sign_args->enumSwMode == CP_DIGITAL_SIGNATURE_SW_MODE_EXTERNAL_NEXT_KEY;
  run.verified_file.emplace(*run.sign_args);
  const std::uint32_t result = key_is_on_device ? VerifyWithDeviceKey(run) : Verify(run, nullptr);
  if (result != 0) return result;
  if (!run.verified_file->IsUnchanged() || ProgramsOtherFiles(run)) return kVerificationFailed;
  return RefreshHubDevice(run);
}

// Null when memory is exhausted, for the parser itself or for the records that it holds.
std::unique_ptr<CCpIspArgsParse> MakeParser() {
  try {
    return std::make_unique<CCpIspArgsParse>();
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

// Turns the boot-code path into a record of its own, by the rules of the command line and with
// default communication settings, and programs it.
std::uint32_t ProgramBootCode(Run& run) {
  const std::unique_ptr<CCpIspArgsParse> parser = MakeParser();
  const ZeroedPtr<Setting> boot_setting = MakeFreshSetting();
  if (parser == nullptr || boot_setting == nullptr) return kRecordNotAllocated;
  boot_setting->enumActionType = CP_ISPTOOL_ACTION_ISP;
  parser->SetISPCmdSetting(*boot_setting);
  parser->SetCurrentDir(GetCurrentProcessDir(nullptr).GetUtf8String());
  parser->InsertCommandFwFile(kBootFirmwareSlot, run.setting->szBootFwPath);
  FwBankMap bank_map;
  // A refusal has printed its reason; the plug-in then gets a map without that file.
  static_cast<void>(parser->JudgeFwMap(bank_map));
  CopyBytes(*boot_setting, parser->GetISPCmdSetting());
  CopyMapFwToCStyleStruct(boot_setting->stMapFw, bank_map);
  return static_cast<std::uint32_t>(CallPlugIn(run.isp.IspFlash, boot_setting.get()));
}

std::uint32_t ProgramBootCodeInFactory(Run& run) {
  if (run.setting->enumBootCodeType != kNewBootCode) return 0;
  if (run.setting->enumIspMode != ISP_MODE_FACTORY) return 0;
  if (run.setting->szBootFwPath[0] == '\0') return 0;
  if (const std::uint32_t result = ProgramBootCode(run); result != 0) return result;
  return RefreshHubDevice(run);
}

std::uint32_t SignOrVerifyFile(Run& run) {
  if (const std::uint32_t result = LoadSignPlugIn(run); result != 0) return result;
  if (run.setting->enumActionType == CP_ISPTOOL_ACTION_VERIFY) return Verify(run, nullptr);
  return static_cast<std::uint32_t>(run.sign_verify.SignFw(run.sign_args));
}

std::uint32_t RunOnDevice(Run& run, const CCpZvString& isp_plugin_path) {
  if (!run.isp.LoadIspDllFile(isp_plugin_path.GetString())) return kIspPluginNotLoaded;
  run.isp.SetIDev(run.device);
  run.isp.SetUIFunction(g_funcReturnProg, g_funcShowMsg, g_funcZvGetHubDev);
  if (const std::uint32_t result = CheckSignature(run); result != 0) return result;
  if (const std::uint32_t result = ProgramBootCodeInFactory(run); result != 0) return result;
  const std::uint32_t result = Dispatch(run);
  run.isp.FreeIspDllFile();
  return result;
}

// A plug-in is code that its caller may have written: with the rights of another user it could do
// anything in that user's name. The group's rights alone, which give access to a device, are fine.
bool RefuseForeignUser() {
  if (getuid() == geteuid()) return false;
  std::printf(
      "Plug-ins are not loaded into a set-uid program: remove the set-uid bit of the executable\n");
  return true;
}

}  // namespace

std::uint32_t ExecuteProcess(STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting,
                             STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS* signArgs, CCpZvString& ispPlugIn,
                             CCpZvString& signPlugIn, void* device) {
  return zvisp::ExecuteProcessFrom(GetCurrentProcessDir(nullptr), setting, signArgs, ispPlugIn,
                                   signPlugIn, device);
}

std::uint32_t zvisp::ExecuteProcessFrom(const CCpZvString& plugInDirectory,
                                        STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING* setting,
                                        STRUCT_C_STYLE_CP_DIGITAL_SIGN_ARGS* signArgs,
                                        const CCpZvString& ispPlugIn, const CCpZvString& signPlugIn,
                                        void* device) {
  if (RefuseForeignUser()) return kIspPluginNotLoaded;
  Run run = {.setting = setting,
             .sign_args = signArgs,
             .sign_plugin_path = InDirectory(plugInDirectory, signPlugIn),
             .device = device,
             .isp = {},
             .sign_verify = {},
             .verified_file = {}};
  if (setting->enumActionType == CP_ISPTOOL_ACTION_SIGN ||
      setting->enumActionType == CP_ISPTOOL_ACTION_VERIFY) {
    return SignOrVerifyFile(run);
  }
  return RunOnDevice(run, InDirectory(plugInDirectory, ispPlugIn));
}

std::uint32_t LoadSignVerfiyDll(CCpSignVerify& signVerify, CCpZvString /*directory*/,
                                // cppcheck-suppress passedByValue  ; callers know the signature
                                CCpZvString plugInPath) {
  return signVerify.LoadSignVerfiyDllFile(plugInPath.GetString()) ? 0 : kSignPluginNotLoaded;
}
