// SPDX-License-Identifier: MIT
//
// An ISP plug-in that touches no device and writes every call down (see recording_plugin.h).
//
// LACKS_<Name> leaves a required call out, LACKS_OPTIONAL the optional ones; WITH_NEVER_BOUND adds
// those that the tool must not look up.
#include "plugin/zvisp_plugin.h"
#include "support/record_offsets.h"
#include "support/recording_plugin.h"

namespace {

using Setting = STRUCT_C_STYLE_CP_ISP_COMMAND_SETTING;

// What the tool has to hand over, by the layout that plug-ins are built against.
[[maybe_unused]] constexpr std::size_t kKeyBytes = 1220;

[[maybe_unused]] int Record(const char* name, Setting* setting) {
  RecordedCall call(name);
  return call.Keep("record", setting, setting_at::kRecordBytes)
      .Overwrite(setting, setting_at::kRecordBytes)
      .Answer(0);
}

[[maybe_unused]] const char* NullOrSet(bool is_null) {
  return is_null ? " null" : " set";
}

}  // namespace

#ifndef LACKS_IspFlash
int IspFlash(Setting* setting) {
  return Record("IspFlash", setting);
}
#endif

#ifndef LACKS_SetCommInterface
void SetCommInterface(CZvComm* comm) {
  RecordedCall("SetCommInterface", NullOrSet(comm == nullptr)).Answer(0);
}
#endif

#ifndef LACKS_RecordFWVersion
int RecordFWVersion(Setting* setting) {
  return Record("RecordFWVersion", setting);
}
#endif

#ifndef LACKS_GetKeyFromFlash
// Answers with a key whose bytes count up, so that a test can follow it.
int GetKeyFromFlash(Setting* setting, unsigned char* key) {
  RecordedCall call("GetKeyFromFlash", NullOrSet(key == nullptr));
  call.Keep("record", setting, setting_at::kRecordBytes).Keep("key", key, kKeyBytes);
  for (std::size_t i = 0; i < kKeyBytes; ++i)
    key[i] = static_cast<unsigned char>(i);
  return call.Answer(0);
}
#endif

#ifndef LACKS_SetUIFunction
void SetUIFunction(ZvReturnProgress progress, ZvShowMessage message, ZvGetHubDevice hub_device) {
  const std::string arguments = std::string(NullOrSet(progress == nullptr)) +
                                NullOrSet(message == nullptr) + NullOrSet(hub_device == nullptr);
  RecordedCall("SetUIFunction", arguments);
}
#endif

#ifndef LACKS_DumpFlash
int DumpFlash(Setting* setting) {
  return Record("DumpFlash", setting);
}
#endif

#ifndef LACKS_OPTIONAL
int GetUserDefinedInfoFromDDCCI(Setting* setting) {
  return Record("GetUserDefinedInfoFromDDCCI", setting);
}

int IspEeprom(Setting* setting) {
  return Record("IspEeprom", setting);
}

int EnterISPModeExport(Setting* setting) {
  return Record("EnterISPModeExport", setting);
}

int ResetMCUExport(Setting* setting) {
  return Record("ResetMCUExport", setting);
}

int GetScalerType(Setting* setting) {
  return Record("GetScalerType", setting);
}
#endif

#ifdef WITH_NEVER_BOUND
ZVISP_PLUGIN_EXPORT int SetIDev(void* device) {
  return RecordedCall("SetIDev", NullOrSet(device == nullptr)).Answer(0);
}

ZVISP_PLUGIN_EXPORT int GetFWInfo(Setting* setting) {
  return Record("GetFWInfo", setting);
}

ZVISP_PLUGIN_EXPORT int SendUserDefinedInfo(Setting* setting) {
  return Record("SendUserDefinedInfo", setting);
}

ZVISP_PLUGIN_EXPORT int ChipEraseFlash(Setting* setting) {
  return Record("ChipEraseFlash", setting);
}

ZVISP_PLUGIN_EXPORT int GetMergeFwInfo(Setting* setting, unsigned char* /*info*/) {
  return Record("GetMergeFwInfo", setting);
}

ZVISP_PLUGIN_EXPORT int SetMergeFwInfo(Setting* setting) {
  return Record("SetMergeFwInfo", setting);
}

ZVISP_PLUGIN_EXPORT int I2CWriteExport(Setting* setting) {
  return Record("I2CWriteExport", setting);
}
#endif
