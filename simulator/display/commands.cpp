// SPDX-License-Identifier: MIT
#include "display/commands.h"

#include <algorithm>

#include "display/crc32.h"
#include "display/program_plan.h"
#include "display/programmer.h"

namespace simulator {
namespace {

bool IsProgramming(std::uint32_t action) {
  return (action >= CP_ISPTOOL_ACTION_ISP && action <= CP_ISPTOOL_ACTION_ISP_COPY) ||
         action == CP_ISPTOOL_ACTION_FACTORY_ISP;
}

Outcome VersionInFlash(const Display& display, const STRUCT_READ_VERSION_FROM_FLASH_SETTING& where,
                       std::string& version) {
  if (where.ulVerAddr > kFlashBytes || where.ulTotalVerLen > kFlashBytes - where.ulVerAddr) {
    return Refuse(Code::kOutsideFlash,
                  Format("the version at 0x%X is outside its flash", where.ulVerAddr));
  }
  BankBytes bytes(where.ulTotalVerLen);
  Outcome read = display.Read(where.ulVerAddr, where.ulTotalVerLen, bytes.data());
  version = Format("flash 0x%06X", where.ulVerAddr);
  for (const std::uint8_t byte : bytes) {
    version += Format(" %02X", byte);
  }
  return read;
}

Outcome VersionOfFirmware(const STRUCT_C_STYLE_MAP_FW& map, std::string& version) {
  ProgramPlan plan;
  if (Outcome planned = PlanFirmware(map, plan); !planned.Ok()) return planned;
  std::uint32_t crc = 0;
  for (const BankJob& job : plan) {
    crc = Crc32(job.bytes.data(), job.bytes.size(), crc);
  }
  version = Format("firmware crc32 %08X", crc);
  return Done();
}

Outcome ChooseVersion(const Display& display, const Setting& setting, std::string& version) {
  switch (setting.enumVersionLocationType) {
    case VERSION_LOCATION_FLASH:
      return VersionInFlash(display, setting.stReadVersionFromFlash, version);
    case VERSION_LOCATION_FW_BIN:
    case VERSION_LOCATION_FW_BIN_CMD:
      return VersionOfFirmware(setting.stMapFw, version);
    default:
      version = "display " + display.GetIdentity().version;
      return Done();
  }
}

}  // namespace

Outcome ProgramFlash(Display& display, const Setting& setting, const Host& host) {
  if (!IsProgramming(setting.enumActionType)) {
    return Refuse(Code::kUnsupportedAction,
                  Format("action %u programs no flash", setting.enumActionType));
  }
  ProgramPlan plan;
  if (Outcome planned = PlanProgramming(display, setting, plan); !planned.Ok()) return planned;
  std::size_t programmed = 0;
  Outcome done = RunPlan(display, plan, host, programmed);
  if (done.Ok() && setting.enumActionType == CP_ISPTOOL_ACTION_ISP_DIFF) {
    host.Say(Format("%zu of %zu banks rewritten", programmed, plan.size()));
  }
  return done;
}

Outcome RecordVersion(Display& display, const Setting& setting, const Host&) {
  std::string version;
  if (Outcome chosen = ChooseVersion(display, setting, version); !chosen.Ok()) return chosen;
  display.GetState().recorded_version = version;
  return display.SaveState();
}

Outcome ReadVerifyKey(Display& display, unsigned char* key) {
  if (key == nullptr) return Refuse(Code::kIllegalRecord, "no buffer for the verify key");
  std::string stored;
  if (Outcome read = display.ReadKey(kDeviceKeyCapacity, stored); !read.Ok()) return read;
  std::fill(std::copy(stored.begin(), stored.end(), key), key + kDeviceKeyCapacity, 0);
  return Done();
}

Outcome SayUserInfo(Display& display, const Setting&, const Host& host) {
  host.Say("User-defined information: " + display.GetIdentity().user_info);
  return Done();
}

Outcome ProgramEeprom(Display& display, const Setting& setting, const Host& host) {
  State& state = display.GetState();
  switch (setting.enumEdpIspMode) {
    case EDP_ISP_MODE_ISP:
      ++state.eeprom_version;
      return display.SaveState();
    case EDP_ISP_MODE_READ_VERSION:
      host.Say(Format("e-DP EEPROM version: %u", state.eeprom_version));
      return Done();
    default:
      return Refuse(Code::kUnsupportedAction,
                    Format("there is no e-DP mode %u", setting.enumEdpIspMode));
  }
}

Outcome EnterIspMode(Display& display, const Setting&, const Host&) {
  display.GetState().isp_mode = true;
  return display.SaveState();
}

Outcome ResetMcu(Display& display, const Setting&, const Host&) {
  State& state = display.GetState();
  state.isp_mode = false;
  ++state.resets;
  return display.SaveState();
}

Outcome ReadScalerType(Display& display, const Setting&, const Host&) {
  return {display.GetIdentity().scaler_type, ""};
}

}  // namespace simulator
